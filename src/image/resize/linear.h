// Bilinear resize: the pixels whose taps reach past the image one axis at a time, the others by a
// horizontal pass over source rows and a vertical pass over pairs of resampled rows.
#pragma once

#include "image/resize/image_view.h"
#include "image/resize/line_ring.h"
#include "image/resize/linear_half.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T, int kChannels>
ZOV_INLINE void FillPixels(const T* pixel, Zov8u* dst, int count) {
  for (int i = 0; i < count; ++i) {
    for (int c = 0; c < kChannels; ++c, dst += sizeof(T)) StoreAs(dst, pixel[c]);
  }
}

// One axis of a linear resize: near band, interior, far band.
struct LinearAxis {
  explicit LinearAxis(const ResizeAxis& a)
      : axis(a), bands(FindBands(a, 1)), interior(a.count - bands.near - bands.far) {}

  ResizeAxis axis;
  ResizeBands bands;
  int interior;
};

template <class T, int kChannels, class Kernel>
class LinearResize {
  using Line = typename Kernel::Line;
  using Weight = typename Kernel::Weight;
  static constexpr int kPixelBytes = kChannels * static_cast<int>(sizeof(T));

 public:
  LinearResize(SourceView src, TargetView dst, const ResizeGeometry& geometry, Zov8u* workBuffer)
      : src_(src),
        dst_{dst.Row(geometry.y.first) + geometry.x.first * kPixelBytes, dst.step},
        x_(geometry.x),
        y_(geometry.y),
        rowBytes_(std::int64_t{geometry.x.count} * kPixelBytes),
        arena_(workBuffer),
        kernel_(&arena_, x_.axis, x_.bands),
        lines_(arena_.Take<Line>(2 * kernel_.LineLength())) {}

  void Run() {
    BandRows(0, y_.bands.near, 0);
    InnerRows();
    BandRows(y_.axis.count - y_.bands.far, y_.bands.far, y_.axis.extent - 1);
  }

 private:
  // A written row of the interior: its upper source row and the weight of the lower one.
  struct RowSample {
    std::int32_t srcY;
    Weight weight;
  };
  RowSample SampleRow(int row) const {
    std::int32_t srcY;
    double fraction;
    LinearSamples(y_.axis, row, 1, &srcY, &fraction);
    return {srcY, Kernel::MakeWeight(fraction)};
  }

  // Of `rows` rows that are written together.
  RowWriter Writer(int row, int rows = 1) const {
    return RowWriter(dst_.Row(row), rows * dst_.step);
  }
  const Zov8u* LastPixel(const Zov8u* srcRow) const {
    return srcRow + static_cast<std::int64_t>(x_.axis.extent - 1) * kPixelBytes;
  }

  // Rows beyond the first or last source row: that row alone, resampled along x.
  void BandRows(int first, int count, int srcY) {
    if (count == 0) return;
    const Zov8u* const srcRow = src_.Row(srcY);
    if (x_.interior > 0) kernel_.ResampleBand(srcRow, lines_);
    for (int row = first; row < first + count; ++row) {
      if (x_.interior > 0) kernel_.StoreBand(lines_, Writer(row));
      BandColumns(srcRow, srcRow, Weight{}, row);
    }
  }

  // Columns beyond the first or last source column: that column alone, between two rows. The row
  // kernels have written something there.
  void BandColumns(const Zov8u* upper, const Zov8u* lower, Weight weight, int row) const {
    Zov8u* const target = dst_.Row(row);
    if (x_.bands.near > 0) BandRun(upper, lower, weight, target, x_.bands.near);
    if (x_.bands.far > 0) {
      BandRun(LastPixel(upper), LastPixel(lower), weight,
              target + static_cast<std::int64_t>(x_.axis.count - x_.bands.far) * kPixelBytes,
              x_.bands.far);
    }
  }

  static void BandRun(const Zov8u* upper, const Zov8u* lower, Weight weight, Zov8u* target,
                      int count) {
    T pixel[kChannels];
    for (int c = 0; c < kChannels; ++c) {
      constexpr int kElement = sizeof(T);
      pixel[c] =
          Kernel::Between(LoadAs<T>(upper + c * kElement), LoadAs<T>(lower + c * kElement), weight);
    }
    FillPixels<T, kChannels>(pixel, target, count);
  }

  void InnerRows() {
    if (y_.interior <= 0) return;
    // Two rows between the same source rows share the passes over the lines, unless they overlap.
    const bool rowsApart = dst_.step >= rowBytes_ || -dst_.step >= rowBytes_;
    LineRing<2, Line> ring(lines_, kernel_.LineLength());
    const int end = y_.bands.near + y_.interior;
    RowSample next = SampleRow(y_.bands.near);
    for (int row = y_.bands.near; row < end;) {
      const RowSample first = next;
      RowSample second = {-1, Weight{}};
      if (row + 1 < end) next = SampleRow(row + 1);
      const bool paired = row + 1 < end && rowsApart && next.srcY == first.srcY;
      if (paired) {
        second = next;
        if (row + 2 < end) next = SampleRow(row + 2);
      }
      const std::ptrdiff_t ahead = (next.srcY - first.srcY) * src_.step;
      if (x_.interior > 0) InnerRow(&ring, row, first, second, paired, ahead);
      const Zov8u* const upper = src_.Row(first.srcY);
      const Zov8u* const lower = src_.Row(first.srcY + 1);
      BandColumns(upper, lower, first.weight, row);
      if (paired) BandColumns(upper, lower, second.weight, row + 1);
      row += paired ? 2 : 1;
    }
  }

  void InnerRow(LineRing<2, Line>* ring, int row, const RowSample& first, const RowSample& second,
                bool paired, std::ptrdiff_t ahead) const {
    const auto upper = ring->Get(first.srcY);
    const Zov8u* const upperRow = upper.isNew ? src_.Row(first.srcY) : nullptr;
    if (!paired && Kernel::IsUpperOnly(first.weight)) {
      if (upper.isNew) kernel_.Resample(upperRow, upper.line);
      kernel_.StoreUpper(upper.line, Writer(row));
      return;
    }
    const auto lower = ring->Get(first.srcY + 1);
    const Zov8u* const lowerRow = lower.isNew ? src_.Row(first.srcY + 1) : nullptr;
    const LinePair<Line> lines = {upperRow, lowerRow, upper.line, lower.line, ahead};
    if (paired) {
      const Weight weights[2] = {first.weight, second.weight};
      const RowWriter writers[2] = {Writer(row, 2), Writer(row + 1, 2)};
      kernel_.template Combine<2>(lines, weights, writers);
    } else {
      const RowWriter writer = Writer(row);
      kernel_.template Combine<1>(lines, &first.weight, &writer);
    }
  }

  SourceView src_;
  TargetView dst_;  // from the first written pixel on
  LinearAxis x_;
  LinearAxis y_;
  std::int64_t rowBytes_;
  WorkArena arena_;
  Kernel kernel_;
  Line* lines_;
};

template <class T, int kChannels>
ZOV_NOINLINE void ResizeLinear(SourceView src, TargetView dst, const ResizeGeometry& geometry,
                               Zov8u* workBuffer) {
  if (SamplesMiddles(geometry.x) && SamplesMiddles(geometry.y)) {
    using Kernel = LinearHalf<T, kChannels>;
    LinearResize<T, kChannels, Kernel>(src, dst, geometry, workBuffer).Run();
  } else {
    using Kernel = typename LinearKernelOf<T, kChannels>::Type;
    LinearResize<T, kChannels, Kernel>(src, dst, geometry, workBuffer).Run();
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

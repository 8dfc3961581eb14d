// Bilinear resize: the pixels whose taps reach past the image one axis at a time, the others by a
// horizontal pass over source rows and a vertical pass over pairs of resampled rows.
#pragma once

#include "image/resize/image_view.h"
#include "image/resize/line_ring.h"
#include "image/resize/linear_8u.h"
#include "image/resize/linear_real.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T, int kChannels>
struct LinearKernelOf {
  using Type = LinearReal<T>;
};
template <int kChannels>
struct LinearKernelOf<Zov8u, kChannels> {
  using Type = Linear8u<kChannels>;
};

template <class T, int kChannels>
ZOV_INLINE void FillPixels(const T* pixel, Zov8u* dst, int count) {
  for (int i = 0; i < count; ++i) {
    for (int c = 0; c < kChannels; ++c, dst += sizeof(T)) StoreAs(dst, pixel[c]);
  }
}

// One axis of a linear resize: near band, interior, far band.
struct LinearAxis {
  explicit LinearAxis(const ResizeAxis& a)
      : axis(a), bands(FindLinearBands(a)), interior(a.count - bands.near - bands.far) {}

  ResizeAxis axis;
  ResizeBands bands;
  int interior;
};

template <class T, int kChannels>
class LinearResize {
  using Kernel = typename LinearKernelOf<T, kChannels>::Type;
  using Line = typename Kernel::Line;
  using Weight = typename Kernel::Weight;
  static constexpr int kPixelBytes = kChannels * static_cast<int>(sizeof(T));

 public:
  LinearResize(SourceView src, TargetView dst, const ResizeGeometry& geometry, Zov8u* workBuffer)
      : src_(src),
        dst_{dst.origin + geometry.x.first * kPixelBytes, dst.step},
        x_(geometry.x),
        y_(geometry.y),
        arena_(workBuffer),
        kernel_(&arena_, x_.axis, x_.bands.near, x_.interior),
        lines_(arena_.Take<Line>(2 * kernel_.LineLength())) {}

  void Run() {
    BandRows(0, y_.bands.near, 0);
    InnerRows();
    BandRows(y_.axis.count - y_.bands.far, y_.bands.far, y_.axis.extent - 1);
  }

 private:
  Zov8u* Target(int row) const { return dst_.Row(y_.axis.first + row); }
  Zov8u* InnerTarget(int row) const { return Target(row) + x_.bands.near * kPixelBytes; }
  const Zov8u* LastPixel(const Zov8u* srcRow) const {
    return srcRow + static_cast<std::int64_t>(x_.axis.extent - 1) * kPixelBytes;
  }

  // Rows beyond the first or last source row: that row alone, resampled along x.
  void BandRows(int first, int count, int srcY) {
    if (count == 0) return;
    const Zov8u* const srcRow = src_.Row(srcY);
    if (x_.interior > 0) kernel_.ResampleBand(srcRow, lines_);
    for (int row = first; row < first + count; ++row) {
      BandColumns(srcRow, srcRow, Weight{}, row);
      if (x_.interior > 0) kernel_.StoreBand(lines_, InnerTarget(row));
    }
  }

  // Columns beyond the first or last source column: that column alone, between two rows.
  void BandColumns(const Zov8u* upper, const Zov8u* lower, Weight weight, int row) const {
    Zov8u* const target = Target(row);
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
    LineRing<2, Line> ring(lines_, kernel_.LineLength());
    const auto resample = [this](int srcY, Line* line) { kernel_.Resample(src_.Row(srcY), line); };
    for (int i = 0; i < y_.interior; ++i) {
      const int row = y_.bands.near + i;
      std::int32_t srcY;
      double fraction;
      LinearSamples(y_.axis, row, 1, &srcY, &fraction);
      const Weight weight = Kernel::MakeWeight(fraction);
      BandColumns(src_.Row(srcY), src_.Row(srcY + 1), weight, row);
      if (x_.interior <= 0) continue;
      if (Kernel::IsUpperOnly(weight)) {
        kernel_.StoreUpper(ring.Get(srcY, resample), InnerTarget(row));
      } else {
        const Line* const upper = ring.Get(srcY, resample);
        const Line* const lower = ring.Get(srcY + 1, resample);
        kernel_.Combine(upper, lower, weight, InnerTarget(row));
      }
    }
  }

  SourceView src_;
  TargetView dst_;  // its origin moved to the first written column
  LinearAxis x_;
  LinearAxis y_;
  WorkArena arena_;
  Kernel kernel_;
  Line* lines_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Resize by the cubic kernels and by Lanczos: a horizontal pass over source rows, a vertical pass
// over lines. Pixels whose taps reach past the image take the same passes with fewer weights; their
// sums are not fused, and are rounded in one way at every level.
#pragma once

#include "image/resize/image_view.h"
#include "image/resize/kernel_columns_8u.h"
#include "image/resize/kernel_columns_real.h"
#include "image/resize/kernel_rows.h"
#include "image/resize/line_ring.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T, int kChannels, int kTaps>
struct KernelColumnsOf {
  using Real = T;
  using Type = KernelColumnsReal<T, kTaps>;
};
template <int kTaps>
struct KernelColumnsOf<Zov8u, 1, kTaps> {
  using Real = float;
  using Type = KernelColumns8u1<kTaps>;
};
template <int kTaps>
struct KernelColumnsOf<Zov8u, 4, kTaps> {
  using Real = float;
  using Type = KernelColumns8u4<kTaps>;
};

template <class T, int kChannels, int kTaps>
class KernelResize {
  using Columns = typename KernelColumnsOf<T, kChannels, kTaps>::Type;
  using Real = typename KernelColumnsOf<T, kChannels, kTaps>::Real;
  using Taps = KernelTaps<Real, kTaps>;
  using Ring = LineRing<kTaps, Real>;
  static constexpr int kPixelBytes = kChannels * static_cast<int>(sizeof(T));

 public:
  KernelResize(SourceView src, TargetView dst, const ResizeGeometry& geometry, const Kernel& kernel,
               Zov8u* workBuffer)
      : src_(src),
        dst_{dst.Row(geometry.y.first) + geometry.x.first * kPixelBytes, dst.step},
        kernel_(kernel),
        y_(geometry.y),
        width_(geometry.x.count),
        xBands_(FindBands(geometry.x, kTaps / 2)),
        yBands_(FindBands(geometry.y, kTaps / 2)),
        rowBytes_(std::int64_t{width_} * kPixelBytes),
        arena_(workBuffer),
        // Whole vectors of pixels, of columns and of bands that begin at any column.
        padded_((width_ + kPadding - 1) / kPadding * kPadding),
        columns_(&arena_, kernel, geometry.x, padded_),
        stride_(std::int64_t{padded_} * kChannels + kBandVector),
        lines_(arena_.Take<Real>(kTaps * stride_)) {}

  void Run() {
    BandRows(0, yBands_.near);
    InnerRows(yBands_.near, y_.count - yBands_.far);
    BandRows(y_.count - yBands_.far, y_.count);
  }

 private:
  static constexpr int kPadding = sizeof(T) == 1 ? Bytes::kBytes / kChannels : 8;
  static constexpr int kBandVector = 8;

  Taps TapsOfRow(int row) const {
    Taps taps;
    FindTaps(kernel_, y_, row, 1, &taps);
    return taps;
  }

  // The lines of `count` source rows from `first` on.
  template <bool kFused>
  void GetLines(Ring* ring, int first, int count, const Real** lines) const {
    for (int k = 0; k < count; ++k) {
      const auto entry = ring->Get(first + k);
      if (entry.isNew) columns_.template Resample<kFused>(src_.Row(first + k), entry.line);
      lines[k] = entry.line;
    }
  }

  void BandRows(int begin, int end) const {
    Ring ring(lines_, stride_);
    const Real* lines[kTaps];
    for (int row = begin; row < end; ++row) {
      const Taps taps = TapsOfRow(row);
      GetLines<false>(&ring, taps.first + taps.usedFrom, taps.used, lines);
      CombineBand<T>(lines, taps.weights + taps.usedFrom, taps.used, dst_.Row(row), 0,
                     std::int64_t{width_} * kChannels);
    }
  }

  void InnerRows(int begin, int end) const {
    // Two rows of the same lines share the vertical pass, unless they overlap. The weights of two
    // rows of six taps would not stay in registers.
    const bool rowsApart = dst_.step >= rowBytes_ || -dst_.step >= rowBytes_;
    const int most = kTaps == 4 && rowsApart ? 2 : 1;
    Ring ring(lines_, stride_);
    Taps next = {};
    if (begin < end) next = TapsOfRow(begin);
    for (int row = begin; row < end;) {
      Real weights[2 * kTaps];
      const int first = next.first;
      int rows = 0;
      do {
        for (int k = 0; k < kTaps; ++k) weights[rows * kTaps + k] = next.weights[k];
        ++rows;
        if (row + rows < end) next = TapsOfRow(row + rows);
      } while (rows < most && row + rows < end && next.first == first);

      const Real* lines[kTaps];
      GetLines<true>(&ring, first, kTaps, lines);
      InnerRow(row, rows, lines, weights);
      row += rows;
    }
  }

  void InnerRow(int row, int rows, const Real* const* lines, const Real* weights) const {
    const int farBegin = width_ - xBands_.far;
    if (xBands_.near < farBegin) {
      const std::int64_t elements = std::int64_t{width_} * kChannels;
      const std::ptrdiff_t ahead = rows * dst_.step;
      const RowWriter writers[2] = {RowWriter(dst_.Row(row), ahead),
                                    RowWriter(dst_.Row(row + rows - 1), ahead)};
      if constexpr (kTaps == 4) {
        if (rows == 2) CombineLines<T, kTaps, 2>(lines, weights, writers, elements);
      }
      if (rows == 1) CombineLines<T, kTaps, 1>(lines, weights, writers, elements);
    }
    for (int r = 0; r < rows; ++r) {
      Zov8u* const target = dst_.Row(row + r);
      const Real* const rowWeights = weights + r * kTaps;
      CombineBand<T>(lines, rowWeights, kTaps, target, 0, std::int64_t{xBands_.near} * kChannels);
      CombineBand<T>(lines, rowWeights, kTaps, target, std::int64_t{farBegin} * kChannels,
                     std::int64_t{width_} * kChannels);
    }
  }

  SourceView src_;
  TargetView dst_;  // from the first written pixel on
  Kernel kernel_;
  ResizeAxis y_;
  int width_;
  ResizeBands xBands_;
  ResizeBands yBands_;
  std::int64_t rowBytes_;
  WorkArena arena_;
  int padded_;
  Columns columns_;
  std::int64_t stride_;
  Real* lines_;
};

template <class T, int kChannels>
ZOV_NOINLINE void ResizeByKernel(std::uint32_t method, SourceView src, TargetView dst,
                                 const ResizeGeometry& geometry, Zov8u* workBuffer) {
  const Kernel kernel = {method,
                         kLevel == Level::sse2 ? Normalization::estimate : Normalization::division};
  if (method == ZOV_INTERP_LANCZOS) {
    KernelResize<T, kChannels, 6>(src, dst, geometry, kernel, workBuffer).Run();
  } else {
    KernelResize<T, kChannels, 4>(src, dst, geometry, kernel, workBuffer).Run();
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

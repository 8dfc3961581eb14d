// Blend and fade of the ring. The cost is that of the perimeter, so one build serves all levels.
#include "image/resize/edge_smoothing.h"

#include <cmath>
#include <cstring>

namespace zov {

namespace {

double FractionOf(double x) { return x - std::trunc(x); }

// How much of the pixel before the written ones the image covers, and of the one after them.
double NearCoverage(const ResizeAxis& axis) {
  const double fraction = FractionOf(axis.near);
  return fraction > 1e-10 ? 1 - fraction : 0;
}
double FarCoverage(const ResizeAxis& axis) {
  const double fraction = FractionOf(axis.far);
  return fraction + 1e-10 < 1 ? fraction : 0;
}

// What the sums of an element are formed in; coverages are floats for all.
template <class T>
struct RealOf {
  using Type = T;
};
template <>
struct RealOf<Zov8u> {
  using Type = float;
};

template <class T>
T ToPixel(typename RealOf<T>::Type value) {
  if constexpr (sizeof(T) > 1) {
    return value;
  } else {
    const double rounded = static_cast<double>(value) + 0.5000001;
    return static_cast<Zov8u>(rounded > 255 ? 255 : rounded < 0 ? 0 : rounded);
  }
}

// Pixels of the ring that lie one after the other.
struct Run {
  Zov8u* first;
  std::ptrdiff_t step;     // bytes to the next one
  std::ptrdiff_t nearest;  // bytes from each to its nearest written pixel
  int count;
};

template <class T, int kChannels>
void SmoothRun(bool blends, double coverage, const Run& run) {
  using Real = typename RealOf<T>::Type;
  if (coverage == 0) return;
  const float share = static_cast<float>(coverage);
  Zov8u* pixel = run.first;
  for (int i = 0; i < run.count; ++i, pixel += run.step) {
    T present[kChannels];
    T written[kChannels];
    std::memcpy(present, pixel, sizeof present);
    std::memcpy(written, pixel + run.nearest, sizeof written);
    for (int c = 0; c < kChannels; ++c) {
      const Real value = blends ? static_cast<Real>(present[c]) +
                                      static_cast<Real>(written[c] - present[c]) * Real{share}
                                : static_cast<Real>(written[c]) * Real{share};
      present[c] = ToPixel<T>(value);
    }
    std::memcpy(pixel, present, sizeof present);
  }
}

}  // namespace

template <class T, int kChannels>
void SmoothEdges(std::uint32_t flags, const ResizeGeometry& geometry, Zov8u* dst,
                 std::ptrdiff_t dstStep) {
  constexpr std::ptrdiff_t kPixel = kChannels * static_cast<std::ptrdiff_t>(sizeof(T));
  const bool blends = (flags & kEdgeBlend) != 0;
  const int width = geometry.x.count;
  const int height = geometry.y.count;
  const double left = NearCoverage(geometry.x);
  const double right = FarCoverage(geometry.x);
  const double top = NearCoverage(geometry.y);
  const double bottom = FarCoverage(geometry.y);
  // Places relative to the first written pixel.
  Zov8u* const origin = dst + geometry.y.first * dstStep + geometry.x.first * kPixel;
  const auto at = [&](std::ptrdiff_t x, std::ptrdiff_t y) {
    return origin + y * dstStep + x * kPixel;
  };
  const auto smooth = [&](double coverage, const Run& run) {
    SmoothRun<T, kChannels>(blends, coverage, run);
  };
  smooth(top, {at(0, -1), kPixel, dstStep, width});
  smooth(top * left, {at(-1, -1), 0, dstStep + kPixel, 1});
  smooth(top * right, {at(width, -1), 0, dstStep - kPixel, 1});
  smooth(bottom, {at(0, height), kPixel, -dstStep, width});
  smooth(bottom * left, {at(-1, height), 0, kPixel - dstStep, 1});
  smooth(bottom * right, {at(width, height), 0, -kPixel - dstStep, 1});
  smooth(left, {at(-1, 0), dstStep, kPixel, height});
  smooth(right, {at(width, 0), dstStep, -kPixel, height});
}

template void SmoothEdges<Zov8u, 1>(std::uint32_t, const ResizeGeometry&, Zov8u*, std::ptrdiff_t);
template void SmoothEdges<Zov8u, 4>(std::uint32_t, const ResizeGeometry&, Zov8u*, std::ptrdiff_t);
template void SmoothEdges<Zov32f, 1>(std::uint32_t, const ResizeGeometry&, Zov8u*, std::ptrdiff_t);
template void SmoothEdges<Zov64f, 1>(std::uint32_t, const ResizeGeometry&, Zov8u*, std::ptrdiff_t);

}  // namespace zov

// A resize pixel by pixel in double precision, from the mapping and the kernel of its method: taps
// clamped into the image, no tables, no bands, no passes. A further method adds its weights to
// TapsOf.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "kelozov/kelozov.h"

namespace zov::test {

struct Tap {
  int index;  // inside the image
  double weight;
};
using Taps = std::vector<Tap>;

// One axis of a resize: destination u lies at source (u - shift) / factor.
struct ReferenceAxis {
  double factor;
  double shift;
  int extent;  // of the whole source image

  double Inverse() const { return 1 / factor; }
  double Offset() const { return 0 - shift / factor; }
};

inline constexpr int kReferenceFlags = ZOV_EDGE_BLEND | ZOV_EDGE_FADE | ZOV_RESIZE_ANTIALIAS;
inline int MethodOf(int interpolation) { return interpolation & ~kReferenceFlags; }
inline bool IsAntialiased(int interpolation) {
  const int method = MethodOf(interpolation);
  return (interpolation & ZOV_RESIZE_ANTIALIAS) != 0 && method != ZOV_INTERP_NEAREST &&
         method != ZOV_INTERP_AREA;
}

// The method that an image too small for the taps of the asked one gets.
inline int MethodForImage(int method, ZovImageSize size) {
  const int side = std::min(size.width, size.height);
  const bool longKernel = method >= ZOV_INTERP_CUBIC && method != ZOV_INTERP_AREA;
  if (longKernel && side < 4) return ZOV_INTERP_LINEAR;
  return method == ZOV_INTERP_LANCZOS && side < 6 ? ZOV_INTERP_CUBIC : method;
}

// sinc(x) sinc(x / 3)
inline double LanczosWindow(double x) {
  const auto sinc = [](double z) {
    const double angle = std::numbers::pi * z;
    return z == 0 ? 1 : std::sin(angle) / angle;
  };
  return x < 3 ? sinc(x) * sinc(x / 3) : 0;
}

// The same between points a hundredth apart, joined by straight lines.
inline double LanczosPolygon(double x) {
  if (x >= 3) return 0;
  const double hundredths = x * 100;
  const double below = std::floor(hundredths);
  const double low = LanczosWindow(below / 100);
  return low + (LanczosWindow((below + 1) / 100) - low) * (hundredths - below);
}

// The family with the parameters B and C.
inline double TwoParameterCubic(double b, double c, double x) {
  if (x >= 2) return 0;
  if (x < 1) {
    return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + (6 - 2 * b)) / 6;
  }
  return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x +
          (8 * b + 24 * c)) /
         6;
}

// The cubic through four neighbours.
inline double LagrangeCubic(double x) {
  if (x >= 2) return 0;
  return x < 1 ? (1 - x) * (1 + x) * (2 - x) / 2 : (1 - x) * (2 - x) * (3 - x) / 6;
}

// Weight of a tap at the distance x from the sample.
inline double KernelAt(int method, double x, bool tabulated) {
  switch (method) {
    case ZOV_INTERP_LINEAR:
      return std::max(0.0, 1 - x);
    case ZOV_INTERP_CUBIC:
      return LagrangeCubic(x);
    case ZOV_INTERP_CUBIC_BSPLINE:
      return TwoParameterCubic(1, 0, x);
    case ZOV_INTERP_CUBIC_CATMULLROM:
      return TwoParameterCubic(0, 0.5, x);
    case ZOV_INTERP_CUBIC_MIXED:
      return TwoParameterCubic(0.5, 0.3, x);
    default:
      return tabulated ? LanczosPolygon(x) : LanczosWindow(x);
  }
}

inline int KernelRadiusOf(int method) {
  return method == ZOV_INTERP_LINEAR ? 1 : method == ZOV_INTERP_LANCZOS ? 3 : 2;
}

// The taps of a destination pixel along one axis. `isDouble` is set for images of 64-bit elements,
// whose Lanczos weights come from the sine itself.
inline Taps TapsOf(int interpolation, int pixel, const ReferenceAxis& axis, bool isDouble) {
  const int method = MethodOf(interpolation);
  const bool antialiased = IsAntialiased(interpolation);
  // The antialiased path counts from pixel edges, the others from pixel centres.
  const double centre =
      (pixel + 0.5) * axis.Inverse() + (antialiased ? axis.Offset() : axis.Offset() - 0.5);
  const double widening = antialiased ? std::max(1.0, axis.Inverse()) : 1;
  const double radius = KernelRadiusOf(method) * widening;
  const double compression = 1 / widening;
  Taps taps;
  double sum = 0;
  for (double j = std::ceil(centre - radius); j <= std::floor(centre + radius); ++j) {
    const double weight =
        KernelAt(method, std::abs(centre - j) * compression, !antialiased && !isDouble);
    taps.push_back({static_cast<int>(std::clamp(j, 0.0, axis.extent - 1.0)), weight});
    sum += weight;
  }
  // The cubic kernels sum to 1 by themselves.
  if (antialiased || method == ZOV_INTERP_LANCZOS) {
    for (Tap& tap : taps) tap.weight /= sum;
  }
  return taps;
}

// The value of a pixel; element(x, y) is the source.
template <class Element>
double ReferencePixel(const Taps& columns, const Taps& rows, Element element) {
  double value = 0;
  for (const Tap& row : rows) {
    double line = 0;
    for (const Tap& column : columns) line += column.weight * element(column.index, row.index);
    value += row.weight * line;
  }
  return value;
}

// The byte of an antialiased pixel, whose sums are defined to the last bit: lines in double
// precision, then rounded to single precision, as are the products and sums along the column.
template <class Element>
int AntialiasedByte(const Taps& columns, const Taps& rows, Element element) {
  float value = 0;
  for (const Tap& row : rows) {
    double line = 0;
    for (const Tap& column : columns) {
      line +=
          static_cast<double>(static_cast<float>(column.weight)) * element(column.index, row.index);
    }
    value += static_cast<float>(line) * static_cast<float>(row.weight);
  }
  return std::clamp(static_cast<int>(static_cast<double>(value) + 0.5000001), 0, 255);
}

// The value as a byte, rounded; either neighbour does when the value is within `hair` of a half.
inline int ByteOf(double value) {
  return static_cast<int>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
}
inline bool IsByteOf(double value, double hair, int byte) {
  return byte >= ByteOf(value - hair) && byte <= ByteOf(value + hair);
}

}  // namespace zov::test

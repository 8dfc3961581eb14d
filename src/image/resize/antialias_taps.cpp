// Weights of the antialiased path, in double precision.
#include "image/resize/antialias_taps.h"

#include <cmath>

#include "image/resize/kernel_taps.h"

namespace zov {

WidenedKernel::WidenedKernel(std::uint32_t method, const ResizeAxis& axis)
    : axis_(axis), method_(method), radius_(KernelRadius(method)), compression_(1) {
  if (axis.inverse < 1) return;
  // Across an image, the weights of a kernel so much wider no longer differ. A NaN ends here too.
  double most = axis.extent * 16384.0;
  if (most > 1 << 28) most = 1 << 28;
  const double wide = radius_ * axis.inverse;
  compression_ = wide < most ? 1 / axis.inverse : radius_ / most;
  radius_ = wide < most ? wide : most;
}

int WidenedKernel::MostTaps() const { return 2 * static_cast<int>(std::ceil(radius_)) + 1; }

WidenedKernel::Taps WidenedKernel::At(int pixel) const {
  double centre = (static_cast<double>(axis_.first) + pixel + 0.5) * axis_.inverse + axis_.offset;
  // A written pixel lies in the image but for a hair.
  const double end = axis_.extent + 1.0;
  centre = centre < end ? centre : end;
  centre = centre > -1 ? centre : -1;
  const double near = centre - radius_;
  std::int64_t first = static_cast<std::int64_t>(near);
  if (near != static_cast<double>(first)) first += near > 0 ? 1 : -1;
  const std::int64_t last = static_cast<std::int64_t>(centre + radius_);
  // Both ends can round outward; then the last tap lies where the kernel ends, and has no weight.
  const int count = static_cast<int>(last - first) + 1;
  const int most = MostTaps();
  return {centre, first, count < most ? count : most};
}

double WidenedKernel::WeightAt(const Taps& taps, int tap) const {
  const double distance =
      std::abs(taps.centre - static_cast<double>(taps.first + tap)) * compression_;
  const double weight = KernelAt(method_, distance);
  return method_ == ZOV_INTERP_LINEAR ? weight * compression_ : weight;
}

double WidenedKernel::SumOf(const Taps& taps) const {
  double sum = 0;
  for (int k = 0; k < taps.count; ++k) sum += WeightAt(taps, k);
  return sum;
}

namespace {

// Pixels at the same place between source pixels have the same weights. Distances from a centre are
// exact in double precision where the taps lie at or above 0.
bool SameWeights(const WidenedKernel::Taps& a, const WidenedKernel::Taps& b) {
  return a.first >= 0 && b.first >= 0 && a.count == b.count &&
         a.centre - static_cast<double>(a.first) == b.centre - static_cast<double>(b.first);
}

}  // namespace

template <class Real, class Stored>
bool WidenedKernel::GetWeights(int pixel, int known, int kept, std::int64_t stride,
                               Stored* table) const {
  constexpr int kLongestPeriod = 16;
  const Taps taps = At(pixel);
  Stored* const weights = table + pixel % kept * stride;
  for (int back = 1; back < kept && back <= kLongestPeriod && back <= known; ++back) {
    if (!SameWeights(taps, At(pixel - back))) continue;
    const Stored* const before = table + (pixel - back) % kept * stride;
    for (int k = 0; k < taps.count; ++k) weights[k] = before[k];
    return false;
  }
  // Weights of long kernels are computed twice rather than kept in double precision.
  constexpr int kKept = 64;
  double exact[kKept];
  double sum = 0;
  for (int k = 0; k < taps.count; ++k) {
    const double weight = WeightAt(taps, k);
    if (k < kKept) exact[k] = weight;
    sum += weight;
  }
  for (int k = 0; k < taps.count; ++k) {
    weights[k] = static_cast<Real>((k < kKept ? exact[k] : WeightAt(taps, k)) / sum);
  }
  return true;
}

template bool WidenedKernel::GetWeights<float>(int, int, int, std::int64_t, float*) const;
template bool WidenedKernel::GetWeights<float>(int, int, int, std::int64_t, double*) const;
template bool WidenedKernel::GetWeights<double>(int, int, int, std::int64_t, double*) const;

}  // namespace zov

// Weights of the cubic kernels and of Lanczos.
#include "image/resize/kernel_taps.h"

#include <emmintrin.h>

#include <cmath>
#include <numbers>

namespace zov {

namespace {

// ---- Cubic kernels -----------------------------------------------------------------------------

// Each gives the weight at the distance v, below 1 and from 1 to 2.
struct Lagrange {
  static double Inner(double v) { return (v * 0.5 * v - v - 0.5) * v + 1; }
  static double Outer(double v) { return (-1.0 / 6 * v * v + v - 11.0 / 6) * v + 1; }
};
struct BSpline {
  static double Inner(double v) { return (0.5 * v * v - v) * v + 2.0 / 3; }
  static double Outer(double v) { return (-1.0 / 6 * v * v + v) * v + (4.0 / 3 - v - v); }
};
struct CatmullRom {
  static double Inner(double v) { return (1.5 * v - 2.5) * v * v + 1; }
  static double Outer(double v) { return ((-0.5 * v + 2.5) * v - 4) * v + 2; }
};
struct Mixed {
  static double Inner(double v) { return (0.95 * v - 1.7) * v * v + 5.0 / 6; }
  static double Outer(double v) { return ((-23.0 / 60 * v + 2) * v - 3.4) * v + 28.0 / 15; }
};

// At 1 both forms meet but for the last place. Only the inner one of Lagrange is exactly 0 there,
// so that a resize to the same size copies.
template <class Shape>
double CubicAt(double v) {
  if (v < 1) return Shape::Inner(v);
  return v < 2 ? Shape::Outer(v) : 0;
}
template <>
double CubicAt<Lagrange>(double v) {
  if (v <= 1) return Lagrange::Inner(v);
  return v < 2 ? Lagrange::Outer(v) : 0;
}

template <class Shape, class Real>
void CubicWeights(Real t, Real* weights) {
  const Real d = -1 - t;
  for (int k = 0; k < 4; ++k) {
    const Real distance = d + static_cast<Real>(k);
    weights[k] = static_cast<Real>(CubicAt<Shape>(std::abs(static_cast<double>(distance))));
  }
}

template <class Real>
void CubicWeights(const Kernel& kernel, Real t, Real* weights) {
  switch (kernel.method) {
    case ZOV_INTERP_CUBIC:
      return CubicWeights<Lagrange>(t, weights);
    case ZOV_INTERP_CUBIC_BSPLINE:
      return CubicWeights<BSpline>(t, weights);
    case ZOV_INTERP_CUBIC_CATMULLROM:
      return CubicWeights<CatmullRom>(t, weights);
    default:
      return CubicWeights<Mixed>(t, weights);
  }
}

// ---- Lanczos -----------------------------------------------------------------------------------

// sin(pi * k / n), from the series in the first quarter of the wave.
constexpr double SineOfPart(int k, int n) {
  k %= 2 * n;
  if (k >= n) return -SineOfPart(k - n, n);
  if (2 * k > n) k = n - k;
  const double x = std::numbers::pi * k / n;
  double term = x;
  double sum = x;
  for (int i = 3; i < 30; i += 2) {
    term *= -x * x / (i * (i - 1));
    sum += term;
  }
  return sum;
}

// The kernel of three lobes at hundredths from 0 to 3, and one more.
struct LanczosTable {
  static constexpr int kLast = 300;

  constexpr LanczosTable() : values{} {
    values[0] = 1;
    for (int k = 1; k < kLast; ++k) {
      const double x = std::numbers::pi * k / 100;
      values[k] = static_cast<float>(SineOfPart(k, 100) / x * (SineOfPart(k, 300) / (x / 3)));
    }
  }
  float values[kLast + 2];
};
constexpr LanczosTable kLanczos;

// One tap after the other; a tap at or beyond a distance of 3 has no weight.
void LanczosWeights(float t, float* weights, float* sum) {
  float x = -2.0f - t;
  *sum = 0;
  for (int k = 0; k < 6; ++k, x += 1.0f) {
    weights[k] = 0;
    if (x > -3.0f && x < 3.0f) {
      const float u = static_cast<float>(std::abs(static_cast<double>(x)) * 100.0);
      const int entry = static_cast<int>(u);
      const float* const at = kLanczos.values + entry;
      weights[k] = at[0] + (at[1] - at[0]) * (u - static_cast<float>(entry));
    }
    *sum += weights[k];
  }
}

// Four taps at once: their distances limited to the end of the table.
__m128 LanczosAtFour(__m128 x) {
  const __m128 distance = _mm_min_ps(_mm_andnot_ps(_mm_set1_ps(-0.0f), x), _mm_set1_ps(3.0f));
  const __m128 u = _mm_mul_ps(distance, _mm_set1_ps(100.0f));
  const __m128i entry = _mm_cvttps_epi32(u);
  alignas(16) std::int32_t entries[4];
  _mm_store_si128(reinterpret_cast<__m128i*>(entries), entry);
  const auto pair = [&entries](int k) {
    return reinterpret_cast<const __m64*>(kLanczos.values + entries[k]);
  };
  const __m128 zero = _mm_setzero_ps();
  const __m128 low = _mm_loadh_pi(_mm_loadl_pi(zero, pair(0)), pair(1));
  const __m128 high = _mm_loadh_pi(_mm_loadl_pi(zero, pair(2)), pair(3));
  const __m128 at = _mm_shuffle_ps(low, high, 0x88);
  const __m128 next = _mm_shuffle_ps(low, high, 0xDD);
  return _mm_add_ps(at, _mm_mul_ps(_mm_sub_ps(next, at), _mm_sub_ps(u, _mm_cvtepi32_ps(entry))));
}

void LanczosWeights(const Kernel& kernel, float t, float* weights) {
  float sum;
  if (kernel.normalization == Normalization::estimate) {
    LanczosWeights(t, weights, &sum);
    const float e = _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(sum)));
    const float reciprocal = 2 * e - sum * e * e;
    for (int k = 0; k < 4; ++k) weights[k] *= reciprocal;
    for (int k = 4; k < 6; ++k) weights[k] /= sum;
    return;
  }
  const float x = -2.0f - t;
  const __m128 first = LanczosAtFour(_mm_add_ps(_mm_set1_ps(x), _mm_setr_ps(0, 1, 2, 3)));
  const __m128 last = LanczosAtFour(_mm_add_ps(_mm_set1_ps(x), _mm_setr_ps(4, 5, 4, 5)));
  _mm_storeu_ps(weights, first);
  _mm_storel_pi(reinterpret_cast<__m64*>(weights + 4), last);
  sum = 0;
  for (int k = 0; k < 6; ++k) sum += weights[k];
  const __m128 divisor = _mm_set1_ps(sum);
  _mm_storeu_ps(weights, _mm_div_ps(first, divisor));
  _mm_storel_pi(reinterpret_cast<__m64*>(weights + 4), _mm_div_ps(last, divisor));
}

double Sinc(double z) {
  if (z == 0) return 1;
  const double angle = std::numbers::pi * z;
  return std::sin(angle) / angle;
}

// sin(pi x) for x from 0 to 1, from the series in the half of the wave that rises.
double SineOfHalfWave(double x) {
  const double y = std::numbers::pi * (x > 0.5 ? 1 - x : x);
  const double z = y * y;
  double sum = 1.0 / 51090942171709440000.0;  // 21!
  sum = sum * z - 1.0 / 121645100408832000;
  sum = sum * z + 1.0 / 355687428096000;
  sum = sum * z - 1.0 / 1307674368000;
  sum = sum * z + 1.0 / 6227020800;
  sum = sum * z - 1.0 / 39916800;
  sum = sum * z + 1.0 / 362880;
  sum = sum * z - 1.0 / 5040;
  sum = sum * z + 1.0 / 120;
  sum = sum * z - 1.0 / 6;
  return y + y * z * sum;
}

// sinc(v) sinc(v / 3) from one sine, as sin(3a) = 3 sin(a) - 4 sin(a)^3.
double LanczosAt(double v) {
  if (!(v < 3)) return 0;
  if (v == 0) return 1;
  const double third = v / 3;
  const double sine = SineOfHalfWave(third);
  const double angle = std::numbers::pi * third;
  return (3 - 4 * sine * sine) * sine * sine / (3 * angle * angle);
}

void LanczosWeights(const Kernel&, double t, double* weights) {
  double x = -2.0 - t;
  double sum = 0;
  for (int k = 0; k < 6; ++k, x += 1.0) {
    weights[k] = x > -3.0 && x < 3.0 ? Sinc(x) * Sinc(x / 3.0) : 0;
    sum += weights[k];
  }
  for (int k = 0; k < 6; ++k) weights[k] /= sum;
}

}  // namespace

int KernelRadius(std::uint32_t method) {
  if (method == ZOV_INTERP_LINEAR) return 1;
  return method == ZOV_INTERP_LANCZOS ? 3 : 2;
}

double KernelAt(std::uint32_t method, double distance) {
  switch (method) {
    case ZOV_INTERP_LINEAR:
      return distance < 1 ? 1 - distance : 0;
    case ZOV_INTERP_CUBIC:
      return CubicAt<Lagrange>(distance);
    case ZOV_INTERP_CUBIC_BSPLINE:
      return CubicAt<BSpline>(distance);
    case ZOV_INTERP_CUBIC_CATMULLROM:
      return CubicAt<CatmullRom>(distance);
    case ZOV_INTERP_CUBIC_MIXED:
      return CubicAt<Mixed>(distance);
    default:
      return LanczosAt(distance);
  }
}

template <class Real, int kTaps>
void FindTaps(const Kernel& kernel, const ResizeAxis& axis, int begin, int count,
              KernelTaps<Real, kTaps>* taps) {
  constexpr int kReach = kTaps / 2;
  const SamplePosition position(axis);
  const double last = axis.extent - 1;
  for (int i = 0; i < count; ++i) {
    const double at = position(begin + i);
    double index = std::floor(at);
    const Real fraction = static_cast<Real>(at - index);
    // Also what an infinity or a NaN, which an inverse beyond the range of a double can bring,
    // needs to stay near the image.
    index = index < last ? index : last;
    index = index > -1 ? index : -1;
    const int first = static_cast<int>(index) - (kReach - 1);

    Real weights[kTaps];
    if constexpr (kTaps == 6) {
      LanczosWeights(kernel, fraction, weights);
    } else {
      CubicWeights(kernel, fraction, weights);
    }
    KernelTaps<Real, kTaps>& result = taps[i];
    const int lastFirst = axis.extent - kTaps;
    if (first >= 0 && first <= lastFirst) {
      result.first = first;
      result.usedFrom = 0;
      result.used = kTaps;
      for (int k = 0; k < kTaps; ++k) result.weights[k] = weights[k];
      continue;
    }
    result.first = first < 0 ? 0 : lastFirst;
    const auto place = [&](int k) {
      const std::int64_t tap = std::int64_t{first} + k;
      const std::int64_t end = axis.extent - 1;
      return static_cast<int>((tap < 0 ? 0 : tap < end ? tap : end) - result.first);
    };
    for (int k = 0; k < kTaps; ++k) result.weights[k] = 0;
    int used = place(0);
    result.usedFrom = used;
    result.weights[used] = weights[0];
    for (int k = 1; k < kTaps; ++k) {
      const bool coincides = place(k) == used;
      used = place(k);
      result.weights[used] = coincides ? result.weights[used] + weights[k] : weights[k];
    }
    result.used = used - result.usedFrom + 1;
  }
}

template void FindTaps(const Kernel&, const ResizeAxis&, int, int, KernelTaps<float, 4>*);
template void FindTaps(const Kernel&, const ResizeAxis&, int, int, KernelTaps<float, 6>*);
template void FindTaps(const Kernel&, const ResizeAxis&, int, int, KernelTaps<double, 4>*);
template void FindTaps(const Kernel&, const ResizeAxis&, int, int, KernelTaps<double, 6>*);

}  // namespace zov

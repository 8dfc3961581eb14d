// An independent real transform in long double, and what the FFT tests share.
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "support/levels.h"

namespace zov::test {

using Complex = std::complex<long double>;

inline constexpr long double kTwoPi = 6.283185307179586476925286766559005768L;

// exp(-2 pi i k / n)
inline Complex Root(std::size_t k, std::size_t n) {
  const long double angle = kTwoPi * static_cast<long double>(k % n) / static_cast<long double>(n);
  return {std::cos(angle), -std::sin(angle)};
}

// The plain recursion over even and odd elements: x[0], x[step], ... (n of them) to out.
inline void ReferenceStep(const float* x, std::size_t n, std::size_t step, Complex* out,
                          const std::vector<Complex>& roots) {
  if (n == 1) {
    out[0] = x[0];
    return;
  }
  const std::size_t half = n / 2;
  ReferenceStep(x, half, 2 * step, out, roots);
  ReferenceStep(x + step, half, 2 * step, out + half, roots);
  for (std::size_t k = 0; k < half; ++k) {
    const Complex w = roots[k * step];
    const Complex odd = out[half + k];
    const Complex turned = {w.real() * odd.real() - w.imag() * odd.imag(),
                            w.real() * odd.imag() + w.imag() * odd.real()};
    out[half + k] = out[k] - turned;
    out[k] += turned;
  }
}

// X[k] of real values for all k, in long double.
inline std::vector<Complex> ReferenceTransform(const std::vector<float>& x) {
  const std::size_t n = x.size();
  std::vector<Complex> roots(n / 2 + 1);
  for (std::size_t k = 0; k <= n / 2; ++k) roots[k] = Root(k, n);
  std::vector<Complex> out(n);
  ReferenceStep(x.data(), n, 1, out.data(), roots);
  return out;
}

inline std::vector<float> RandomSignal(std::size_t n) {
  std::minstd_rand random(static_cast<unsigned>(n + 1));
  std::vector<float> x(n);
  for (float& value : x) value = static_cast<float>(random() % 65536) / 32768.0f - 1.0f;
  return x;
}

// The exports of one element type.
template <class T>
struct Fft;

#define ZOV_FFT_EXPORTS(T, suffix)                                                       \
  template <>                                                                            \
  struct Fft<T> {                                                                        \
    using Spec = ZovFFTSpec_R_##suffix;                                                  \
    static auto Init(int level) { return ZOV_AT(level, zovsFFTInitAlloc_R_##suffix); }   \
    static auto Free(int level) { return ZOV_AT(level, zovsFFTFree_R_##suffix); }        \
    static auto Forward(int level) { return ZOV_AT(level, zovsFFTFwd_RToCCS_##suffix); } \
    static auto Inverse(int level) { return ZOV_AT(level, zovsFFTInv_CCSToR_##suffix); } \
  };
ZOV_FFT_EXPORTS(Zov32f, 32f)
ZOV_FFT_EXPORTS(Zov64f, 64f)
#undef ZOV_FFT_EXPORTS

// An object that releases itself.
template <class T>
class FftObject {
 public:
  FftObject(int level, int order, int flag) : level_(level) {
    status_ = Fft<T>::Init(level)(&spec_, order, flag, 0);
  }
  ~FftObject() {
    if (spec_ != nullptr) Fft<T>::Free(level_)(spec_);
  }
  FftObject(const FftObject&) = delete;
  FftObject& operator=(const FftObject&) = delete;
  ZovStatus status() const { return status_; }
  typename Fft<T>::Spec* get() const { return spec_; }

 private:
  int level_;
  ZovStatus status_;
  typename Fft<T>::Spec* spec_ = nullptr;
};

// Relative RMS error that a transform of an order may have: the mean growth is with the root of
// the order.
template <class T>
long double ErrorBound(int order) {
  const long double unit = sizeof(T) == 4 ? 0x1p-24L : 0x1p-53L;
  return unit * (1.0L + 0.6L * std::sqrt(static_cast<long double>(order + 1)));
}

}  // namespace zov::test

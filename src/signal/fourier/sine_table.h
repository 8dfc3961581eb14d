// Quarter waves of the sine: the one source of every twiddle factor.
#pragma once

#include <cstdint>

#include "kelozov/kelozov.h"

namespace zov {

// sin(2 pi k / n) for 0 <= k / n <= 1/8, summed at compile time beyond double precision.
constexpr long double SineOfEighth(long double k, long double n) {
  const long double x = 6.283185307179586476925286766559005768L * k / n;
  long double term = x;
  long double sum = x;
  for (int i = 1; i < 16; ++i) {
    term *= -x * x / static_cast<long double>(2 * i * (2 * i + 1));
    sum += term;
  }
  return sum;
}
constexpr long double CosineOfEighth(long double k, long double n) {
  const long double x = 6.283185307179586476925286766559005768L * k / n;
  long double term = 1;
  long double sum = 1;
  for (int i = 1; i < 16; ++i) {
    term *= -x * x / static_cast<long double>(2 * i * (2 * i - 1));
    sum += term;
  }
  return sum;
}

// cos(2 pi k / n) and sin(2 pi k / n), for the constants of straight-line kernels.
constexpr long double CosineOfTurn(int k, int n) {
  k = (k % n + n) % n;
  if (2 * k > n) k = n - k;
  const bool left = 4 * k > n;
  // Everything in units of half of 1/n, so that the reflections stay whole numbers.
  const int a = left ? n - 2 * k : 2 * k;
  const long double value = 4 * a <= n ? CosineOfEighth(a, 2 * n) : SineOfEighth(n - 2 * a, 4 * n);
  return left ? -value : value;
}
constexpr long double SineOfTurn(int k, int n) { return CosineOfTurn(4 * k - n, 4 * n); }

// The constant quarter wave, of 2^kSineTableOrder points: entry j is sin(2 pi j / 1024), j from 0
// to 256.
constexpr int kSineTableOrder = 10;
template <class T>
const T* ConstantQuarterSine();

// The quarter wave of 2^order points, order above kSineTableOrder.
template <class T>
void BuildQuarterSine(T* table, int order);

// W^k for W = exp(-2 pi i / 2^logLength), looked up in the quarter wave of 2^tableOrder points.
template <class T>
struct UnitRoots {
  const T* table;
  int tableOrder;

  // cos and -sin
  void At(std::int64_t k, int logLength, T& re, T& im) const {
    const std::int64_t quarter = std::int64_t{1} << (tableOrder - 2);
    const std::int64_t index = k << (tableOrder - logLength);
    const std::int64_t offset = index & (quarter - 1);
    const T sine = table[offset];
    const T cosine = table[quarter - offset];
    switch ((index >> (tableOrder - 2)) & 3) {
      case 0:
        re = cosine, im = -sine;
        break;
      case 1:
        re = -sine, im = -cosine;
        break;
      case 2:
        re = -cosine, im = sine;
        break;
      default:
        re = sine, im = cosine;
        break;
    }
  }
};

}  // namespace zov

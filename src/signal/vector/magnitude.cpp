// Magnitudes of complex floating-point arrays.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// The real parts, and the imaginary parts, of two registers of pairs. With 256 bits the shuffles
// stay within halves: the parts come in an order that Ordered puts right.
template <class V>
struct Parts {
  V re, im;
};
[[maybe_unused]] ZOV_INLINE Parts<Vec<float, 4>> Split(Vec<float, 4> a, Vec<float, 4> b) {
  return {{_mm_shuffle_ps(a.v, b.v, 0x88)}, {_mm_shuffle_ps(a.v, b.v, 0xDD)}};
}
[[maybe_unused]] ZOV_INLINE Parts<Vec<double, 2>> Split(Vec<double, 2> a, Vec<double, 2> b) {
  return {{_mm_unpacklo_pd(a.v, b.v)}, {_mm_unpackhi_pd(a.v, b.v)}};
}
[[maybe_unused]] ZOV_INLINE Vec<float, 4> Ordered(Vec<float, 4> x) { return x; }
[[maybe_unused]] ZOV_INLINE Vec<double, 2> Ordered(Vec<double, 2> x) { return x; }

#if defined(__AVX__)
ZOV_INLINE Parts<Vec<float, 8>> SplitHalves(__m256 a, __m256 b) {
  return {{_mm256_shuffle_ps(a, b, 0x88)}, {_mm256_shuffle_ps(a, b, 0xDD)}};
}
ZOV_INLINE Parts<Vec<double, 4>> SplitHalves(__m256d a, __m256d b) {
  return {{_mm256_unpacklo_pd(a, b)}, {_mm256_unpackhi_pd(a, b)}};
}
template <class V>
ZOV_INLINE Parts<V> Split256(V a, V b) {
#if defined(__AVX2__)
  return SplitHalves(a.v, b.v);
#else
  // Without a permutation across the halves at the end, they change places before.
  using Half = typename V::Native;
  const Half low = (Half)_mm256_permute2f128_pd((__m256d)a.v, (__m256d)b.v, 0x20);
  const Half high = (Half)_mm256_permute2f128_pd((__m256d)a.v, (__m256d)b.v, 0x31);
  return SplitHalves(low, high);
#endif
}
ZOV_INLINE Parts<Vec<float, 8>> Split(Vec<float, 8> a, Vec<float, 8> b) { return Split256(a, b); }
ZOV_INLINE Parts<Vec<double, 4>> Split(Vec<double, 4> a, Vec<double, 4> b) {
  return Split256(a, b);
}
template <class T, int N>
ZOV_INLINE Vec<T, N> Ordered(Vec<T, N> x) {
#if defined(__AVX2__)
  return {(typename Vec<T, N>::Native)_mm256_permute4x64_pd((__m256d)x.v, 0xD8)};
#else
  return x;
#endif
}
#endif

template <class T, int N>
ZOV_INLINE Vec<T, N> SumOfSquares(Interleaved<T, N> z) {
  const Parts<Vec<T, N>> parts = Split(z.low, z.high);
  return parts.re * parts.re + parts.im * parts.im;
}

struct Magnitude {
  template <class T, int N>
  ZOV_INLINE Vec<T, N> operator()(Interleaved<T, N> z) const {
    return Ordered(Sqrt(SumOfSquares(z)));
  }
};

}  // namespace

ZovStatus zovsMagnitude_32fc(const Zov32fc* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  Map(Magnitude{}, len, pDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsMagnitude_64fc(const Zov64fc* pSrc, Zov64f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  Map(Magnitude{}, len, pDst, pSrc);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

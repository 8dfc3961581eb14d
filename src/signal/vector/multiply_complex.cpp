// Complex products of arrays.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// (a + bi)(c + di) = (ac - bd) + (ad + bc)i, for the pairs of a register.
[[maybe_unused]] ZOV_INLINE Vec<double, 2> ComplexProduct(Vec<double, 2> x, Vec<double, 2> y) {
  const __m128d acAd = _mm_mul_pd(_mm_unpacklo_pd(x.v, x.v), y.v);
  // Two names for y, or from SSSE3 on the compiler takes palignr, which is slower between products.
  __m128d same = y.v;
  asm("" : "+x"(same));
  const __m128d swapped = _mm_shuffle_pd(y.v, same, 1);
  const __m128d bdBc = _mm_mul_pd(_mm_unpackhi_pd(x.v, x.v), swapped);
#if defined(__SSE3__)
  return {_mm_addsub_pd(acAd, bdBc)};
#else
  return {_mm_move_sd(_mm_add_pd(acAd, bdBc), _mm_sub_pd(acAd, bdBc))};
#endif
}
#if defined(__AVX__)
ZOV_INLINE Vec<double, 4> ComplexProduct(Vec<double, 4> x, Vec<double, 4> y) {
  const __m256d acAd = _mm256_mul_pd(_mm256_movedup_pd(x.v), y.v);
  const __m256d bdBc = _mm256_mul_pd(_mm256_permute_pd(x.v, 15), _mm256_permute_pd(y.v, 5));
  return {_mm256_addsub_pd(acAd, bdBc)};
}
#endif

struct MultiplyComplex {
  template <class V>
  ZOV_INLINE V operator()(V x, V y) const {
    return {ComplexProduct(x.low, y.low), ComplexProduct(x.high, y.high)};
  }
};

}  // namespace

ZovStatus zovsMul_64fc(const Zov64fc* pSrc1, const Zov64fc* pSrc2, Zov64fc* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc1, pSrc2, pDst)) return status;
  Map(MultiplyComplex{}, len, pDst, pSrc1, pSrc2);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

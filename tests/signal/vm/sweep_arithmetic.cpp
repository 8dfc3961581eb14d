#include "sweep_arithmetic.h"

#include <immintrin.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/cpu.h"

#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 35)
#define ZOV_VECTOR_LIBRARY 1
#define ZOV_VECTOR_FUNCTION(name) __m256d _ZGVdN4v_##name(__m256d);
extern "C" {
ZOV_VECTOR_FUNCTION(acos)
ZOV_VECTOR_FUNCTION(asin)
ZOV_VECTOR_FUNCTION(atan)
ZOV_VECTOR_FUNCTION(cos)
ZOV_VECTOR_FUNCTION(cosh)
ZOV_VECTOR_FUNCTION(exp)
ZOV_VECTOR_FUNCTION(log)
ZOV_VECTOR_FUNCTION(log10)
ZOV_VECTOR_FUNCTION(sin)
ZOV_VECTOR_FUNCTION(sinh)
ZOV_VECTOR_FUNCTION(tan)
ZOV_VECTOR_FUNCTION(tanh)
}
#endif

#define ZOV_AVX2 __attribute__((target("avx2")))

namespace zov::test {

namespace {

bool HasAvx2() { return zovDispatchIndex == kLevelCount - 1; }

#if ZOV_VECTOR_LIBRARY
using VectorFunction = __m256d (*)(__m256d);

// In the order of kUnaryFunctions.
constexpr VectorFunction kVectorFunctions[] = {
    _ZGVdN4v_acos, _ZGVdN4v_asin,  _ZGVdN4v_atan, _ZGVdN4v_cos,  _ZGVdN4v_cosh, _ZGVdN4v_exp,
    _ZGVdN4v_log,  _ZGVdN4v_log10, _ZGVdN4v_sin,  _ZGVdN4v_sinh, _ZGVdN4v_tan,  _ZGVdN4v_tanh};

ZOV_AVX2 void FillInVectors(VectorFunction function, const float* x, double* exact, int n) {
  for (int i = 0; i < n; i += 4) {
    _mm256_storeu_pd(exact + i, function(_mm256_cvtps_pd(_mm_loadu_ps(x + i))));
  }
}

void CheckReference(double actual, double expected, float x) {
  const bool same =
      std::isnan(expected)
          ? std::isnan(actual)
          : std::fabs(actual - expected) <= std::fabs(expected) * 1e-14 || actual == expected;
  if (same) return;
  std::fprintf(stderr, "the reference at %.9g is %.17g or %.17g\n", static_cast<double>(x), actual,
               expected);
  std::abort();
}
#endif

// Whether four results add nothing: finite ones with errors no larger than the worst, infinities,
// zeros and NaNs that are what they should be.
ZOV_AVX2 bool AddsNothing(const WorstError& worst, const float* result, const double* exact) {
  const __m256d sign = _mm256_set1_pd(-0.0);
  const __m128 narrow = _mm_loadu_ps(result);
  const __m256d e = _mm256_loadu_pd(exact);
  const __m256d error = _mm256_andnot_pd(sign, _mm256_sub_pd(_mm256_cvtps_pd(narrow), e));
  const __m256d magnitude = _mm256_andnot_pd(sign, e);
  const __m256d scale = _mm256_max_pd(magnitude, _mm256_set1_pd(0x1p-126));
  const __m256d unit = _mm256_and_pd(scale, _mm256_set1_pd(__builtin_inf()));
  const __m256d bound = _mm256_min_pd(_mm256_mul_pd(scale, _mm256_set1_pd(worst.relative)),
                                      _mm256_mul_pd(unit, _mm256_set1_pd(worst.units * 0x1p-23)));
  const __m256d small = _mm256_and_pd(_mm256_cmp_pd(error, bound, _CMP_LE_OQ),
                                      _mm256_cmp_pd(magnitude, _mm256_setzero_pd(), _CMP_GT_OQ));
  if (_mm256_movemask_pd(small) == 15) return true;
  // The others: the same bits as the rounded reference, which is no finite number but a zero.
  const __m128 rounded = _mm256_cvtpd_ps(e);
  const __m128 absolute = _mm_andnot_ps(_mm_set1_ps(-0.0F), rounded);
  const __m128 special =
      _mm_or_ps(_mm_cmpeq_ps(absolute, _mm_set1_ps(__builtin_inff())),
                _mm256_cvtpd_ps(_mm256_cmp_pd(e, _mm256_setzero_pd(), _CMP_EQ_OQ)));
  const __m128 same = (__m128)_mm_cmpeq_epi32(_mm_castps_si128(rounded), _mm_castps_si128(narrow));
  const __m128 bothNaN =
      _mm_and_ps(_mm_cmpunord_ps(narrow, narrow), _mm_cmpunord_ps(rounded, rounded));
  const int right = _mm_movemask_ps(_mm_or_ps(bothNaN, _mm_and_ps(special, same)));
  return (_mm256_movemask_pd(small) | right) == 15;
}

}  // namespace

void FillReference(const UnaryFunction& function, const float* x, double* exact, int n) {
#if ZOV_VECTOR_LIBRARY
  if (HasAvx2()) {
    FillInVectors(kVectorFunctions[&function - kUnaryFunctions], x, exact, n);
    for (int i = 0; i < n; i += 64) {
      CheckReference(exact[i], function.reference(static_cast<double>(x[i])), x[i]);
    }
    return;
  }
#endif
  for (int i = 0; i < n; ++i) exact[i] = function.reference(static_cast<double>(x[i]));
}

void AddErrors(WorstError& worst, const float* result, const double* exact, const float* x,
               const float* y, int n) {
  const bool fast = HasAvx2();
  for (int i = 0; i < n; i += 4) {
    if (fast && AddsNothing(worst, result + i, exact + i)) continue;
    for (int k = i; k < i + 4; ++k) worst.Add(result[k], exact[k], x[k], y ? y[k] : 0);
  }
}

}  // namespace zov::test

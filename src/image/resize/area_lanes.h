// Lanes of the area reduction: pixels widened to the sums they go into, weighted, and turned into
// pixels again.
#pragma once

#include "core/simd.h"
#include "image/resize/image_view.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Sums of 8-bit pixels with weights and of floats are float, those of doubles double. Whole 8-bit
// pixels are counted exactly.
template <class T, bool kWhole>
struct AreaSum {
  using Type = float;
};
template <>
struct AreaSum<double, false> {
  using Type = double;
};
template <>
struct AreaSum<double, true> {
  using Type = double;
};
template <>
struct AreaSum<Zov8u, true> {
  using Type = std::uint32_t;
};

// As many pixels as a vector of sums has lanes.
template <class Sum>
ZOV_INLINE Widest<Sum> LoadSums(const Zov8u* p, Zov32f) {
  return Widest<Sum>::Load(p);
}
template <class Sum>
ZOV_INLINE Widest<Sum> LoadSums(const Zov8u* p, Zov64f) {
  return Widest<Sum>::Load(p);
}
ZOV_INLINE Vec<std::int32_t, 4> WidenBytes4(const Zov8u* p) {
  const __m128i bytes = _mm_loadu_si32(p);
#if defined(__SSE4_1__)
  return {(Vec<std::int32_t, 4>::Native)_mm_cvtepu8_epi32(bytes)};
#else
  const __m128i zero = _mm_setzero_si128();
  const __m128i words = _mm_unpacklo_epi8(bytes, zero);
  return {(Vec<std::int32_t, 4>::Native)_mm_unpacklo_epi16(words, zero)};
#endif
}
template <class Sum>
ZOV_INLINE Widest<Sum> LoadSums(const Zov8u* p, Zov8u) {
  using V = Widest<Sum>;
#if defined(__AVX2__)
  const __m256i wide = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
  if constexpr (sizeof(Sum) == 4 && static_cast<Sum>(0.5) == 0) return {(typename V::Native)wide};
  return {(typename V::Native)_mm256_cvtepi32_ps(wide)};
#else
  if constexpr (static_cast<Sum>(0.5) == 0) {
    return {(typename V::Native)WidenBytes4(p).v};
  } else {
#if defined(__AVX__)
    const __m256i wide = _mm256_set_m128i((__m128i)WidenBytes4(p + 4).v,  //
                                          (__m128i)WidenBytes4(p).v);
    return {(typename V::Native)_mm256_cvtepi32_ps(wide)};
#else
    return {(typename V::Native)_mm_cvtepi32_ps((__m128i)WidenBytes4(p).v)};
#endif
  }
#endif
}

// Products of floats are formed in double and rounded once.
ZOV_INLINE VecF Weighted(VecF x, double weight) {
  const VecD w = VecD::Broadcast(weight);
#if defined(__AVX__)
  const __m256d low = _mm256_cvtps_pd(_mm256_castps256_ps128((__m256)x.v));
  const __m256d high = _mm256_cvtps_pd(_mm256_extractf128_ps((__m256)x.v, 1));
  return {(VecF::Native)_mm256_set_m128(_mm256_cvtpd_ps(_mm256_mul_pd(high, (__m256d)w.v)),
                                        _mm256_cvtpd_ps(_mm256_mul_pd(low, (__m256d)w.v)))};
#else
  const __m128d low = _mm_cvtps_pd((__m128)x.v);
  const __m128d high = _mm_cvtps_pd(_mm_movehl_ps((__m128)x.v, (__m128)x.v));
  return {(VecF::Native)_mm_movelh_ps(_mm_cvtpd_ps(_mm_mul_pd(low, (__m128d)w.v)),
                                      _mm_cvtpd_ps(_mm_mul_pd(high, (__m128d)w.v)))};
#endif
}
ZOV_INLINE VecD Weighted(VecD x, double weight) { return x * VecD::Broadcast(weight); }
ZOV_INLINE VecI<std::uint32_t> Weighted(VecI<std::uint32_t> x, double repeats) {
  const auto count = static_cast<std::uint32_t>(static_cast<std::int64_t>(repeats));
  return x * VecI<std::uint32_t>::Broadcast(count);
}
ZOV_INLINE float Weighted(float x, double weight) {
  return static_cast<float>(static_cast<double>(x) * weight);
}
ZOV_INLINE double Weighted(double x, double weight) { return x * weight; }
ZOV_INLINE std::uint32_t Weighted(std::uint32_t x, double repeats) {
  return x * static_cast<std::uint32_t>(static_cast<std::int64_t>(repeats));
}

// Exchanges rows and columns of a square of lanes.
ZOV_INLINE void TransposeLanes(VecF* v) {
#if defined(__AVX__)
  __m256 pairs[8];
  for (int i = 0; i < 8; i += 2) {
    pairs[i] = _mm256_unpacklo_ps((__m256)v[i].v, (__m256)v[i + 1].v);
    pairs[i + 1] = _mm256_unpackhi_ps((__m256)v[i].v, (__m256)v[i + 1].v);
  }
  __m256 quads[8];
  for (int i = 0; i < 8; i += 4) {
    quads[i] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0x44);
    quads[i + 1] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0xEE);
    quads[i + 2] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0x44);
    quads[i + 3] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0xEE);
  }
  for (int i = 0; i < 4; ++i) {
    v[i].v = (VecF::Native)_mm256_permute2f128_ps(quads[i], quads[i + 4], 0x20);
    v[i + 4].v = (VecF::Native)_mm256_permute2f128_ps(quads[i], quads[i + 4], 0x31);
  }
#else
  __m128 row[4] = {(__m128)v[0].v, (__m128)v[1].v, (__m128)v[2].v, (__m128)v[3].v};
  _MM_TRANSPOSE4_PS(row[0], row[1], row[2], row[3]);
  for (int i = 0; i < 4; ++i) v[i].v = (VecF::Native)row[i];
#endif
}
ZOV_INLINE void TransposeLanes(VecD* v) {
#if defined(__AVX__)
  const __m256d low0 = _mm256_unpacklo_pd((__m256d)v[0].v, (__m256d)v[1].v);
  const __m256d high0 = _mm256_unpackhi_pd((__m256d)v[0].v, (__m256d)v[1].v);
  const __m256d low1 = _mm256_unpacklo_pd((__m256d)v[2].v, (__m256d)v[3].v);
  const __m256d high1 = _mm256_unpackhi_pd((__m256d)v[2].v, (__m256d)v[3].v);
  v[0].v = (VecD::Native)_mm256_permute2f128_pd(low0, low1, 0x20);
  v[1].v = (VecD::Native)_mm256_permute2f128_pd(high0, high1, 0x20);
  v[2].v = (VecD::Native)_mm256_permute2f128_pd(low0, low1, 0x31);
  v[3].v = (VecD::Native)_mm256_permute2f128_pd(high0, high1, 0x31);
#else
  const __m128d low = _mm_unpacklo_pd((__m128d)v[0].v, (__m128d)v[1].v);
  const __m128d high = _mm_unpackhi_pd((__m128d)v[0].v, (__m128d)v[1].v);
  v[0].v = (VecD::Native)low;
  v[1].v = (VecD::Native)high;
#endif
}
ZOV_INLINE void TransposeLanes(VecI<std::uint32_t>* v) {
#if defined(__AVX__) && !defined(__AVX2__)
  __m128 row[4] = {(__m128)v[0].v, (__m128)v[1].v, (__m128)v[2].v, (__m128)v[3].v};
  _MM_TRANSPOSE4_PS(row[0], row[1], row[2], row[3]);
  for (int i = 0; i < 4; ++i) v[i].v = (VecI<std::uint32_t>::Native)row[i];
#else
  constexpr int kLanes = VecI<std::uint32_t>::kLanes;
  VecF rows[kLanes];
  for (int i = 0; i < kLanes; ++i) rows[i] = As<float>(v[i]);
  TransposeLanes(rows);
  for (int i = 0; i < kLanes; ++i) v[i] = As<std::uint32_t>(rows[i]);
#endif
}

// Four sums as doubles, in one vector or two.
struct FourDoubles {
  static constexpr int kVectors = 4 / VecD::kLanes;
  VecD part[kVectors];
};
ZOV_INLINE FourDoubles ToDoubles(Vec<float, 4> x) {
#if defined(__AVX__)
  return {{{(VecD::Native)_mm256_cvtps_pd((__m128)x.v)}}};
#else
  const __m128 high = _mm_movehl_ps((__m128)x.v, (__m128)x.v);
  return {{{(VecD::Native)_mm_cvtps_pd((__m128)x.v)}, {(VecD::Native)_mm_cvtps_pd(high)}}};
#endif
}
ZOV_INLINE FourDoubles ToDoubles(Vec<std::uint32_t, 4> x) {
  // Conversions know signed integers: half the range is taken off before and put back after.
  const __m128i below = _mm_xor_si128((__m128i)x.v, _mm_set1_epi32(INT32_MIN));
  const VecD half = VecD::Broadcast(2147483648.0);
#if defined(__AVX__)
  return {{VecD{(VecD::Native)_mm256_cvtepi32_pd(below)} + half}};
#else
  const __m128i high = _mm_shuffle_epi32(below, 0xEE);
  return {{VecD{(VecD::Native)_mm_cvtepi32_pd(below)} + half,
           VecD{(VecD::Native)_mm_cvtepi32_pd(high)} + half}};
#endif
}

// x * norm + 0.5 without its fraction. Level avx2 rounds the product and the sum once.
ZOV_INLINE __m128i RoundedMeans(FourDoubles x, VecD norm) {
  const VecD half = VecD::Broadcast(0.5);
  for (VecD& part : x.part) {
#if defined(__FMA__)
    part = MulAdd(part, norm, half);
#else
    part = part * norm + half;
#endif
  }
#if defined(__AVX__)
  return _mm256_cvttpd_epi32((__m256d)x.part[0].v);
#else
  return _mm_unpacklo_epi64(_mm_cvttpd_epi32((__m128d)x.part[0].v),
                            _mm_cvttpd_epi32((__m128d)x.part[1].v));
#endif
}

template <class Native>
ZOV_INLINE __m128i QuarterOf(Native v, int quarter) {
#if defined(__AVX__)
  if constexpr (sizeof(Native) == 32) {
    const __m256i bits = (__m256i)v;
    return quarter == 0 ? _mm256_castsi256_si128(bits) : _mm256_extractf128_si256(bits, 1);
  } else
#endif
  {
    static_cast<void>(quarter);
    return (__m128i)v;
  }
}

// Means of a vector of sums as pixels; those of 8 bits fill the low bytes.
ZOV_INLINE VecF MeansAs(VecF sums, VecD norm, Zov32f) { return Weighted(sums, norm.v[0]); }
ZOV_INLINE VecD MeansAs(VecD sums, VecD norm, Zov64f) { return sums * norm; }
template <class V>
ZOV_INLINE Vec128<Zov8u> MeansAs(V sums, VecD norm, Zov8u) {
  using Four = Vec<typename V::Lane, 4>;
  __m128i means[V::kLanes / 4];
  for (int i = 0; i < V::kLanes / 4; ++i) {
    const Four four = {(typename Four::Native)QuarterOf(sums.v, i)};
    means[i] = RoundedMeans(ToDoubles(four), norm);
  }
  const __m128i words = _mm_packs_epi32(means[0], means[V::kLanes / 4 - 1]);
  return {(Vec128<Zov8u>::Native)_mm_packus_epi16(words, words)};
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

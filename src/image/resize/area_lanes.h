// Lanes of the area reduction: pixels widened to the sums they go into,
// weighted, and turned into pixels again.
#pragma once

#include "core/simd.h"
#include "image/resize/image_view.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

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
ZOV_INLINE Widest<Sum> LoadWide(const Zov8u* p) {
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
ZOV_INLINE VecI<std::uint16_t> WidenToWords(const Zov8u* p) {
  using V = VecI<std::uint16_t>;
#if defined(__AVX2__)
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
  return {(V::Native)_mm256_cvtepu8_epi16(bytes)};
#else
  const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
  return {(V::Native)_mm_unpacklo_epi8(bytes, _mm_setzero_si128())};
#endif
}
template <class Sum>
ZOV_INLINE Widest<Sum> LoadSums(const Zov8u* p, Zov8u) {
  if constexpr (sizeof(Sum) == 2) {
    return WidenToWords(p);
  } else {
    return LoadWide<Sum>(p);
  }
}

// Products of floats are formed in double and rounded once. A weight that is a float needs no
// double for that.
ZOV_INLINE VecF Weighted(VecF x, double weight) {
  const float single = static_cast<float>(weight);
  if (static_cast<double>(single) == weight) return x * VecF::Broadcast(single);
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
ZOV_INLINE VecI<std::uint16_t> Weighted(VecI<std::uint16_t> x, double units) {
  return x * VecI<std::uint16_t>::Broadcast(static_cast<std::uint16_t>(static_cast<int>(units)));
}
ZOV_INLINE std::uint16_t Weighted(std::uint16_t x, double units) {
  return static_cast<std::uint16_t>(x * static_cast<int>(units));
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
  constexpr int kSide = VecI<std::uint32_t>::kLanes;
  VecF rows[kSide];
  for (int i = 0; i < kSide; ++i) rows[i] = As<float>(v[i]);
  TransposeLanes(rows);
  for (int i = 0; i < kSide; ++i) v[i] = As<std::uint32_t>(rows[i]);
#endif
}

ZOV_INLINE void TransposeLanes(VecI<std::uint16_t>* v) {
  using V = VecI<std::uint16_t>;
  constexpr int kSide = V::kLanes;
  // Three rounds that interleave the vectors of one half with those of the
  // other.
#if defined(__AVX2__)
  static_assert(kSide == 16);
  __m256i w[16];
  for (int i = 0; i < 16; ++i) w[i] = (__m256i)v[i].v;
  for (int round = 0; round < 3; ++round) {
    __m256i b[16];
    for (int half = 0; half < 16; half += 8) {
      for (int i = 0; i < 4; ++i) {
        b[half + 2 * i] = _mm256_unpacklo_epi16(w[half + i], w[half + i + 4]);
        b[half + 2 * i + 1] = _mm256_unpackhi_epi16(w[half + i], w[half + i + 4]);
      }
    }
    for (int i = 0; i < 16; ++i) w[i] = b[i];
  }
  for (int i = 0; i < 8; ++i) {
    v[i].v = (V::Native)_mm256_permute2x128_si256(w[i], w[i + 8], 0x20);
    v[i + 8].v = (V::Native)_mm256_permute2x128_si256(w[i], w[i + 8], 0x31);
  }
#else
  static_assert(kSide == 8);
  __m128i w[8];
  for (int i = 0; i < 8; ++i) w[i] = (__m128i)v[i].v;
  for (int round = 0; round < 3; ++round) {
    __m128i b[8];
    for (int i = 0; i < 4; ++i) {
      b[2 * i] = _mm_unpacklo_epi16(w[i], w[i + 4]);
      b[2 * i + 1] = _mm_unpackhi_epi16(w[i], w[i + 4]);
    }
    for (int i = 0; i < 8; ++i) w[i] = b[i];
  }
  for (int i = 0; i < 8; ++i) v[i].v = (V::Native)w[i];
#endif
}

// The same for groups of four lanes, the channels of a pixel.
template <class V>
ZOV_INLINE void TransposeGroups(V* v) {
  constexpr int kGroups = V::kLanes / 4;
  if constexpr (kGroups == 1) {
    static_cast<void>(v);
  } else if constexpr (V::kBytes == 16) {
    const __m128i low = _mm_unpacklo_epi64((__m128i)v[0].v, (__m128i)v[1].v);
    const __m128i high = _mm_unpackhi_epi64((__m128i)v[0].v, (__m128i)v[1].v);
    v[0].v = (typename V::Native)low;
    v[1].v = (typename V::Native)high;
  } else {
#if defined(__AVX__)
    if constexpr (kGroups == 2) {
      const __m256 low = _mm256_permute2f128_ps((__m256)v[0].v, (__m256)v[1].v, 0x20);
      const __m256 high = _mm256_permute2f128_ps((__m256)v[0].v, (__m256)v[1].v, 0x31);
      v[0].v = (typename V::Native)low;
      v[1].v = (typename V::Native)high;
    } else {
      VecD rows[4] = {As<double>(v[0]), As<double>(v[1]), As<double>(v[2]), As<double>(v[3])};
      TransposeLanes(rows);
      for (int i = 0; i < 4; ++i) v[i] = As<typename V::Lane>(rows[i]);
    }
#endif
  }
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
  // Conversions know signed integers: half the range is taken off before and
  // put back after.
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

// x * norm + 0.5 without its fraction. Level avx2 rounds the product and the
// sum once.
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

// x * norm + 0.5 of one sum.
ZOV_INLINE int RoundedMean(double x, double norm) {
#if defined(__FMA__)
  return static_cast<int>(__builtin_fma(x, norm, 0.5));
#else
  return static_cast<int>(x * norm + 0.5);
#endif
}

// Turns sums into pixels; those of 8 bits fill the low bytes of a vector.
template <class T, class Sum>
class AreaMeans {
 public:
  explicit AreaMeans(double norm) : norm_(VecD::Broadcast(norm)) {}

  T Mean(Sum sum) const { return Weighted(sum, norm_.v[0]); }

  ZOV_INLINE auto operator()(Widest<Sum> sums) const {
    if constexpr (sizeof(T) == 8) {
      return sums * norm_;
    } else if constexpr (sizeof(T) == 4) {
      return Weighted(sums, norm_.v[0]);
    } else {
      using V = Widest<Sum>;
      using Four = Vec<Sum, 4>;
      __m128i means[V::kLanes / 4];
      for (int i = 0; i < V::kLanes / 4; ++i) {
        const Four four = {(typename Four::Native)QuarterOf(sums.v, i)};
        means[i] = RoundedMeans(ToDoubles(four), norm_);
      }
      const __m128i words = _mm_packs_epi32(means[0], means[V::kLanes / 4 - 1]);
      return Vec128<Zov8u>{(Vec128<Zov8u>::Native)_mm_packus_epi16(words, words)};
    }
  }

 private:
  VecD norm_;
};

// Sums of 16 bits are divided by a multiplication of words. Setting up compares
// it with the definition for every sum that may occur.
template <>
class AreaMeans<Zov8u, std::uint16_t> {
  using WordVector = VecI<std::uint16_t>;

 public:
  explicit AreaMeans(double norm) {
    if (!(norm > 1e-5 && norm < 1)) return;
    double scale = 65536;
    while (scale * 2 * norm < 65535) {
      scale *= 2;
      ++shift_;
    }
    factor_ = static_cast<int>(scale * norm);
    if (factor_ < scale * norm) ++factor_;
    bias_ = static_cast<int>(0.5 / norm);
    exact_ = 255 / norm + bias_ + 1 < 65536;
    if (scale * norm == 32768) return;  // a power of two: the mean is the shifted sum
    // Both rise with the sum, so they are equal if they take each step at the
    // same one.
    for (int mean = 1; exact_ && mean <= 255; ++mean) {
      int sum = static_cast<int>((mean - 0.5) / norm);
      while (RoundedMean(sum, norm) >= mean) --sum;
      while (RoundedMean(sum, norm) < mean) ++sum;
      exact_ = Divide(sum) == mean && Divide(sum - 1) == mean - 1;
    }
  }

  // False when no multiplication gives the defined mean.
  bool IsExact() const { return exact_; }

  Zov8u Mean(int sum) const { return static_cast<Zov8u>(Divide(sum)); }
  ZOV_INLINE WordVector Words(WordVector sums) const {
    const WordVector biased = sums + WordVector::Broadcast(static_cast<std::uint16_t>(bias_));
    const WordVector factor = WordVector::Broadcast(static_cast<std::uint16_t>(factor_));
    const __m128i shift = _mm_cvtsi32_si128(shift_);
#if defined(__AVX2__)
    const __m256i high = _mm256_mulhi_epu16((__m256i)biased.v, (__m256i)factor.v);
    return {(WordVector::Native)_mm256_srl_epi16(high, shift)};
#else
    const __m128i high = _mm_mulhi_epu16((__m128i)biased.v, (__m128i)factor.v);
    return {(WordVector::Native)_mm_srl_epi16(high, shift)};
#endif
  }
  ZOV_INLINE Vec128<Zov8u> operator()(WordVector sums) const {
    const WordVector means = Words(sums);
    const __m128i low = QuarterOf(means.v, 0);
    const __m128i high = QuarterOf(means.v, WordVector::kBytes / 16 - 1);
    return {(Vec128<Zov8u>::Native)_mm_packus_epi16(low, high)};
  }

 private:
  int Divide(int sum) const {
    const auto product = static_cast<std::int64_t>(sum + bias_) * factor_;
    return static_cast<int>(product >> (16 + shift_));
  }

  int bias_ = 0;
  int factor_ = 0;
  int shift_ = 0;
  bool exact_ = false;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

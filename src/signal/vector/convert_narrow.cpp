// Conversions to a narrower type, which limit, scale and round.
#include "core/checks.h"
#include "core/cpu.h"
#include "core/entries.h"
#include "core/simd.h"
#include "signal/vector/convert.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kMax32f = 3.4028234663852886e38;

ZOV_INLINE void StoreHalf(__m128i x, void* p) { _mm_storel_epi64(static_cast<__m128i*>(p), x); }

// The limits are the first operands, so that a NaN passes through.
struct Narrow64f32f {
  static constexpr int kStep = 4;
  static ZOV_INLINE VecD Limit(VecD x) {
    return Max(VecD::Broadcast(-kMax32f), Min(VecD::Broadcast(kMax32f), x));
  }
  static ZOV_INLINE void Block(const Zov64f* pSrc, Zov32f* pDst) {
#if defined(__AVX__)
    _mm_storeu_ps(pDst, _mm256_cvtpd_ps(Limit(VecD::Load(pSrc)).v));
#else
    const __m128 low = _mm_cvtpd_ps(Limit(VecD::Load(pSrc)).v);
    const __m128 high = _mm_cvtpd_ps(Limit(VecD::Load(pSrc + 2)).v);
    _mm_storeu_ps(pDst, _mm_movelh_ps(low, high));
#endif
  }
  static ZOV_INLINE Zov32f One(Zov64f x) {
    return static_cast<Zov32f>(x > kMax32f ? kMax32f : x < -kMax32f ? -kMax32f : x);
  }
};

struct Narrow32s16s {
  static constexpr int kStep = kLevel >= Level::avx2 ? 16 : 8;
  static ZOV_INLINE void Block(const Zov32s* pSrc, Zov16s* pDst) {
#if defined(__AVX2__)
    const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pSrc));
    const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pSrc + 8));
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packs_epi32(low, high), 0xD8);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pDst), packed);
#else
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 4));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst), _mm_packs_epi32(low, high));
#endif
  }
  static ZOV_INLINE Zov16s One(Zov32s x) {
    return static_cast<Zov16s>(x > 32767 ? 32767 : x < -32768 ? -32768 : x);
  }
};

// Scale, limit, round. The limits are applied before rounding.
template <int kRound, bool kScaled>
struct Narrow32f16s {
  float scale;
  VecF scales = VecF::Broadcast(scale);

  static constexpr int kStep = VecF::kLanes;
  static constexpr bool kFinancial = kRound == ZOV_RND_FINANCIAL;

  ZOV_INLINE VecF Scaled(VecF x) const {
    if constexpr (kScaled) x = x * scales;
    x = Max(VecF::Broadcast(-32768.0F), Min(VecF::Broadcast(32767.0F), x));
    // Twice the magnitude: its truncated value, plus one, halved, is the nearest with ties away.
    if constexpr (kFinancial) x = AndNot(VecF::Broadcast(-0.0F), x + x);
    return x;
  }
  static ZOV_INLINE __m128i ToInteger(__m128 x) {
    return kRound == ZOV_RND_NEAR ? _mm_cvtps_epi32(x) : _mm_cvttps_epi32(x);
  }
  // Half of twice the magnitude plus one, with the sign of the element: 0 or -1 in `sign`.
  static ZOV_INLINE __m128i HalveWithSign(__m128i twice, __m128i sign) {
    const __m128i half = _mm_srli_epi32(_mm_add_epi32(twice, _mm_set1_epi32(1)), 1);
    return _mm_sub_epi32(_mm_xor_si128(half, sign), sign);
  }
  static ZOV_INLINE __m128i SignOf(const Zov32f* pSrc) {
    return _mm_srai_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc)), 31);
  }
  ZOV_INLINE void Block(const Zov32f* pSrc, Zov16s* pDst) const {
    const VecF x = Scaled(VecF::Load(pSrc));
#if defined(__AVX__)
    __m128i low;
    __m128i high;
    const __m256i rounded =
        kRound == ZOV_RND_NEAR ? _mm256_cvtps_epi32(x.v) : _mm256_cvttps_epi32(x.v);
    low = _mm256_castsi256_si128(rounded);
    high = _mm256_extractf128_si256(rounded, 1);
    if constexpr (kFinancial) {
      low = HalveWithSign(low, SignOf(pSrc));
      high = HalveWithSign(high, SignOf(pSrc + 4));
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst), _mm_packs_epi32(low, high));
#else
    __m128i rounded = ToInteger(x.v);
    if constexpr (kFinancial) rounded = HalveWithSign(rounded, SignOf(pSrc));
    StoreHalf(_mm_packs_epi32(rounded, rounded), pDst);
#endif
  }
  ZOV_INLINE Zov16s One(Zov32f x) const {
    // Through the vector form, so that the hardware's rounding is the same.
    Zov32f elements[kStep] = {x};
    Zov16s results[kStep];
    Block(elements, results);
    return results[0];
  }
};

template <int kRound, bool kScaled>
struct Narrow64f16s {
  double scale;
  VecD scales = VecD::Broadcast(scale);

  static constexpr int kStep = 4;

  // Limited, rounded and still a double, truncation left to do; a NaN becomes 0, the low half of
  // the hardware's answer.
  ZOV_INLINE VecD Rounded(VecD x) const {
    if constexpr (kScaled) x = x * scales;
    x = Limit(x);
    const VecD sign = x & VecD::Broadcast(-0.0);
    const VecD biased = x + (sign | VecD::Broadcast(0.5));
    if constexpr (kRound == ZOV_RND_FINANCIAL) {
      x = biased;
    } else if constexpr (kRound == ZOV_RND_NEAR) {
#if defined(__SSE4_1__)
      x = RoundEven(x);
#else
      // An odd result that the addition reached exactly was a tie: one step toward zero.
      const __m128i truncated = _mm_cvttpd_epi32(biased.v);
      const VecD whole = {_mm_cvtepi32_pd(truncated)};
      const __m128i odd = _mm_slli_epi32(truncated, 31);
      const __m128i oddWide = _mm_srai_epi32(_mm_unpacklo_epi32(odd, odd), 31);
      const VecD tie = As<double>((whole == biased) &
                                  Vec<std::int64_t, 2>{(Vec<std::int64_t, 2>::Native)oddWide});
      x = whole - (tie & (sign | VecD::Broadcast(1.0)));
#endif
    }
    return x;
  }
  static ZOV_INLINE VecD Limit(VecD x) {
    const VecD ordered = x & As<double>(x == x);
    return Max(VecD::Broadcast(-32768.0), Min(VecD::Broadcast(32767.0), ordered));
  }
#if defined(__AVX__)
  static ZOV_INLINE VecD RoundEven(VecD x) {
    return {_mm256_round_pd(x.v, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
  }
#elif defined(__SSE4_1__)
  static ZOV_INLINE VecD RoundEven(VecD x) {
    return {_mm_round_pd(x.v, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
  }
#endif
  ZOV_INLINE void Block(const Zov64f* pSrc, Zov16s* pDst) const {
#if defined(__AVX__)
    const __m128i rounded = _mm256_cvttpd_epi32(Rounded(VecD::Load(pSrc)).v);
#else
    const __m128i rounded = _mm_unpacklo_epi64(_mm_cvttpd_epi32(Rounded(VecD::Load(pSrc)).v),
                                               _mm_cvttpd_epi32(Rounded(VecD::Load(pSrc + 2)).v));
#endif
    StoreHalf(_mm_packs_epi32(rounded, rounded), pDst);
  }
  ZOV_INLINE Zov16s One(Zov64f x) const {
    Zov64f elements[kStep] = {x};
    Zov16s results[kStep];
    Block(elements, results);
    return results[0];
  }
};

// 2^-scaleFactor by repeated multiplication: 0 or infinity where binary32 ends, which is long
// before 200 products.
ZOV_INLINE float PowerByProducts(int scaleFactor) {
  const int f = scaleFactor < -200 ? -200 : scaleFactor > 200 ? 200 : scaleFactor;
  float power = 1;
  for (int i = f; i < 0; ++i) power *= 2.0F;
  for (int i = f; i > 0; --i) power *= 0.5F;
  return power;
}

template <template <int, bool> class Narrow, int kRound, class T>
ZOV_NOINLINE void NarrowArray(const T* pSrc, Zov16s* pDst, int len, T scale, bool scaled) {
  if (scaled) {
    ConvertArray(Narrow<kRound, true>{scale}, pSrc, pDst, len);
  } else {
    ConvertArray(Narrow<kRound, false>{scale}, pSrc, pDst, len);
  }
}

// Chooses the loop by the rounding mode.
template <template <int, bool> class Narrow, class T>
ZOV_INLINE void NarrowByMode(const T* pSrc, Zov16s* pDst, int len, int rndMode, T scale,
                             bool scaled) {
  if (rndMode == ZOV_RND_ZERO) {
    NarrowArray<Narrow, ZOV_RND_ZERO>(pSrc, pDst, len, scale, scaled);
  } else if (rndMode == ZOV_RND_NEAR) {
    NarrowArray<Narrow, ZOV_RND_NEAR>(pSrc, pDst, len, scale, scaled);
  } else {
    NarrowArray<Narrow, ZOV_RND_FINANCIAL>(pSrc, pDst, len, scale, scaled);
  }
}

}  // namespace

ZovStatus zovsConvert_64f32f(const Zov64f* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  ConvertArray(Narrow64f32f{}, pSrc, pDst, len);
  return zovStsNoErr;
}

ZovStatus zovsConvert_32s16s(const Zov32s* pSrc, Zov16s* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  ConvertPerhapsOverlapping(Narrow32s16s{}, pSrc, pDst, len);
  return zovStsNoErr;
}

ZovStatus zovsConvert_32f16s_Sfs(const Zov32f* pSrc, Zov16s* pDst, int len, int rndMode,
                                 int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  const float scale = PowerByProducts(scaleFactor);
  // From level 1 on the rounding of the thread is truncation while ties go away from zero.
  constexpr std::uint32_t kTruncate = 0x6000;
  const bool truncates =
      kLevel >= Level::sse3 && rndMode != ZOV_RND_ZERO && rndMode != ZOV_RND_NEAR;
  const std::uint32_t saved = truncates ? zovCpuSetRoundMode(kTruncate) : kTruncate;
  NarrowByMode<Narrow32f16s>(pSrc, pDst, len, rndMode, scale, scaleFactor != 0);
  if ((saved & kTruncate) != kTruncate) zovCpuSetRoundMode(saved);
  return zovStsNoErr;
}

ZovStatus zovsConvert_64f16s_Sfs(const Zov64f* pSrc, Zov16s* pDst, int len, int rndMode,
                                 int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  const double scale = PowerOfTwo(scaleFactor);
  NarrowByMode<Narrow64f16s>(pSrc, pDst, len, rndMode, scale, scaleFactor != 0);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

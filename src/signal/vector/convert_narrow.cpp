// Conversions to a narrower type, which limit, scale and round.
#include "core/checks.h"
#include "core/cpu.h"
#include "core/entries.h"
#include "core/simd.h"
#include "signal/vector/convert.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr float kMax32f = 3.4028234663852886e38F;

// An infinity of the conversion stands for what lies beyond the limits too. The limits are the
// first operands, so that a NaN passes through.
ZOV_INLINE VecF Limited32f(VecF x) {
  return Max(VecF::Broadcast(-kMax32f), Min(VecF::Broadcast(kMax32f), x));
}

using Quad = Vec<Zov32f, 4>;
template <class V>
ZOV_INLINE V LoadNarrowed(const Zov64f* pSrc) {
#if defined(__AVX__)
  if constexpr (V::kLanes == 8) {
    const __m256 low = _mm256_castps128_ps256(LoadNarrowed<Quad>(pSrc).v);
    return {_mm256_insertf128_ps(low, LoadNarrowed<Quad>(pSrc + 4).v, 1)};
  } else {
    return {_mm256_cvtpd_ps(_mm256_loadu_pd(pSrc))};
  }
#else
  const __m128 low = _mm_cvtpd_ps(_mm_loadu_pd(pSrc));
  const __m128 high = _mm_cvtpd_ps(_mm_loadu_pd(pSrc + 2));
  return {_mm_movelh_ps(low, high)};
#endif
}

struct Narrow64f32f {
  static constexpr int kStep = VecF::kLanes;
  static ZOV_INLINE void Block(const Zov64f* pSrc, Zov32f* pDst) {
    Limited32f(LoadNarrowed<VecF>(pSrc)).Store(pDst);
  }
  static ZOV_INLINE Zov32f One(Zov64f x) {
    const Zov32f y = static_cast<Zov32f>(x);
    return y > kMax32f ? kMax32f : y < -kMax32f ? -kMax32f : y;
  }
};

// Next to no element lies beyond the limits: whole passes of 32 are stored as they come, and true
// comes back if there was an infinity or a NaN, which makes a product that began with zero a NaN.
template <class V>
ZOV_INLINE bool StoreNarrowed(const Zov64f*& pSrc, Zov32f*& pDst, int len) {
  V product[4] = {V::Zero(), V::Zero(), V::Zero(), V::Zero()};
  for (const Zov32f* const end = pDst + len; pDst != end; pSrc += 32, pDst += 32) {
    for (int i = 0; i < 32; i += 2 * V::kLanes) {
      const V low = LoadNarrowed<V>(pSrc + i);
      const V high = LoadNarrowed<V>(pSrc + i + V::kLanes);
      low.Store(pDst + i);
      high.Store(pDst + i + V::kLanes);
      const int k = i / V::kLanes % 4;
      product[k] = product[k] * low;
      product[k + 1] = product[k + 1] * high;
    }
  }
  const V all = (product[0] * product[1]) * (product[2] * product[3]);
  return MoveMask(all == all) != (1U << V::kLanes) - 1;
}

// Limits the `stored` elements that lie before, then converts the others.
ZOV_NOINLINE ZovStatus NarrowByBlocks(const Zov64f* pSrc, Zov32f* pDst, int len, int stored) {
  for (Zov32f* p = pDst - stored; p != pDst; p += VecF::kLanes) Limited32f(VecF::Load(p)).Store(p);
  ConvertArray(Narrow64f32f{}, pSrc, pDst, len);
  return zovStsNoErr;
}

// By chunks, which are still in the nearest cache if they must be limited.
template <class V>
ZOV_INLINE ZovStatus NarrowByPasses(const Zov64f* pSrc, Zov32f* pDst, int len) {
  constexpr int kChunk = 1024;
  while (len >= 32) {
    const int count = len < kChunk ? len & ~31 : kChunk;
    len -= count;
    if (StoreNarrowed<V>(pSrc, pDst, count)) [[unlikely]] {
      return NarrowByBlocks(pSrc, pDst, len, count);
    }
  }
  if (len != 0) ConvertArray(Narrow64f32f{}, pSrc, pDst, len);
  return zovStsNoErr;
}
ZOV_NOINLINE ZovStatus NarrowLong(const Zov64f* pSrc, Zov32f* pDst, int len) {
  return NarrowByPasses<VecF>(pSrc, pDst, len);
}

// Whether the destination begins inside the source, past its first byte: what is written may be
// read later.
ZOV_INLINE bool WritesAhead(const Zov64f* pSrc, const Zov32f* pDst, int len) {
  const std::uintptr_t ahead =
      reinterpret_cast<std::uintptr_t>(pDst) - reinterpret_cast<std::uintptr_t>(pSrc);
  return ahead - 1 < static_cast<std::uintptr_t>(len) * sizeof(Zov64f) - 1;
}

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

// Scale, limit, round.
template <int kRound, bool kScaled>
struct Narrow32f16s {
  float scale;
  VecF scales = VecF::Broadcast(scale);

  static constexpr int kStep = 2 * VecF::kLanes;
  static constexpr bool kBlockOnly = true;
  static constexpr bool kFinancial = kRound == ZOV_RND_FINANCIAL;

  // The upper limit; the saturation of the packs below is the lower one, as the hardware converts
  // what lies below its range to its least integer.
  ZOV_INLINE VecF Scaled(VecF x) const {
    if constexpr (kScaled) x = x * scales;
    if constexpr (kFinancial) {
      // Twice the magnitude: its truncated value, plus one, halved, is the nearest with ties away.
      return Min(VecF::Broadcast(65536.0F), AndNot(VecF::Broadcast(-0.0F), x + x));
    } else {
      return Min(VecF::Broadcast(32767.0F), x);
    }
  }
  // Half of twice the magnitude plus one, with the sign of the element.
  static ZOV_INLINE __m128i HalveWithSign(__m128i twice, const Zov32f* pSrc) {
    const __m128i half = _mm_srli_epi32(_mm_add_epi32(twice, _mm_set1_epi32(1)), 1);
    const __m128i source = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc));
#if defined(__SSSE3__)
    return _mm_sign_epi32(half, source);
#else
    const __m128i sign = _mm_srai_epi32(source, 31);
    return _mm_sub_epi32(_mm_xor_si128(half, sign), sign);
#endif
  }
#if defined(__AVX2__)
  ZOV_INLINE __m256i Integers(const Zov32f* pSrc) const {
    const VecF x = Scaled(VecF::Load(pSrc));
    if constexpr (kRound == ZOV_RND_NEAR) return _mm256_cvtps_epi32(x.v);
    const __m256i rounded = _mm256_cvttps_epi32(x.v);
    if constexpr (!kFinancial) return rounded;
    const __m256i half = _mm256_srli_epi32(_mm256_add_epi32(rounded, _mm256_set1_epi32(1)), 1);
    return _mm256_sign_epi32(half, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pSrc)));
  }
  ZOV_INLINE void Block(const Zov32f* pSrc, Zov16s* pDst) const {
    const __m256i packed = _mm256_packs_epi32(Integers(pSrc), Integers(pSrc + 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pDst), _mm256_permute4x64_epi64(packed, 0xD8));
  }
#elif defined(__AVX__)
  ZOV_INLINE void Half(const Zov32f* pSrc, Zov16s* pDst) const {
    const VecF x = Scaled(VecF::Load(pSrc));
    const __m256i rounded =
        kRound == ZOV_RND_NEAR ? _mm256_cvtps_epi32(x.v) : _mm256_cvttps_epi32(x.v);
    __m128i low = _mm256_castsi256_si128(rounded);
    __m128i high = _mm256_extractf128_si256(rounded, 1);
    if constexpr (kFinancial) {
      low = HalveWithSign(low, pSrc);
      high = HalveWithSign(high, pSrc + 4);
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst), _mm_packs_epi32(low, high));
  }
  ZOV_INLINE void Block(const Zov32f* pSrc, Zov16s* pDst) const {
    Half(pSrc, pDst);
    Half(pSrc + 8, pDst + 8);
  }
#else
  ZOV_INLINE __m128i Integers(const Zov32f* pSrc) const {
    const VecF x = Scaled(VecF::Load(pSrc));
    if constexpr (kRound == ZOV_RND_NEAR) return _mm_cvtps_epi32(x.v);
    const __m128i rounded = _mm_cvttps_epi32(x.v);
    return kFinancial ? HalveWithSign(rounded, pSrc) : rounded;
  }
  ZOV_INLINE void Block(const Zov32f* pSrc, Zov16s* pDst) const {
    const __m128i packed = _mm_packs_epi32(Integers(pSrc), Integers(pSrc + 4));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst), packed);
  }
#endif
};

// To nearest is defined by the addition of one half, which takes the numbers next above one half in
// magnitude to a tie: they give 0. The sums here leave one half in their place and other numbers at
// their nearest integer. The low half of such a number is 1, whatever it is scaled with.
[[maybe_unused]] ZOV_INLINE VecD WithoutNextToHalf(VecD x) {
  const VecD half = VecD::Broadcast(0.5);
  return ((x + half) - VecD::Broadcast(1.0)) + half;
}

// From level 1 on the hardware rounds to nearest, in the mode that the routine sees to.
template <int kRound, bool kScaled>
struct Narrow64f16s {
  double scale;
  VecD scales = VecD::Broadcast(scale);

  static constexpr int kStep = 8;
  static constexpr bool kBlockOnly = true;
  static constexpr bool kByHardware = kRound == ZOV_RND_NEAR && kLevel >= Level::sse3;

  // Scaled, and with what is added for rounding.
  template <bool kLimited>
  ZOV_INLINE VecD Prepared(VecD x) const {
    if constexpr (kScaled) x = x * scales;
    // A NaN counts as 0, the low half of the hardware's answer to it.
    if constexpr (kLimited) {
      x = x & As<double>(x == x);
      x = Max(VecD::Broadcast(-32768.0), Min(VecD::Broadcast(32767.0), x));
    }
    if constexpr (kByHardware && kLimited) return WithoutNextToHalf(x);
    if constexpr (kRound == ZOV_RND_ZERO || kByHardware) return x;
    const VecD sign = x & VecD::Broadcast(-0.0);
    const VecD biased = x + (sign | VecD::Broadcast(0.5));
#if !defined(__SSE3__)
    if constexpr (kRound == ZOV_RND_NEAR) return OneLessAtTies(biased, sign);
#endif
    return biased;
  }
#if !defined(__SSE3__)
  // An odd result that the addition reached exactly was a tie: one step toward zero.
  static ZOV_INLINE VecD OneLessAtTies(VecD biased, VecD sign) {
    const __m128i truncated = _mm_cvttpd_epi32(biased.v);
    const VecD whole = {_mm_cvtepi32_pd(truncated)};
    const __m128i odd = _mm_slli_epi32(truncated, 31);
    const __m128i oddWide = _mm_srai_epi32(_mm_unpacklo_epi32(odd, odd), 31);
    const VecD tie =
        As<double>((whole == biased) & Vec<std::int64_t, 2>{(Vec<std::int64_t, 2>::Native)oddWide});
    return whole - (tie & (sign | VecD::Broadcast(1.0)));
  }
#endif
  template <bool kLimited>
  ZOV_INLINE __m128i Integers(const Zov64f* pSrc) const {
#if defined(__AVX__)
    const VecD x = Prepared<kLimited>(VecD::Load(pSrc));
    return kByHardware ? _mm256_cvtpd_epi32(x.v) : _mm256_cvttpd_epi32(x.v);
#else
    const VecD low = Prepared<kLimited>(VecD::Load(pSrc));
    const VecD high = Prepared<kLimited>(VecD::Load(pSrc + 2));
    if constexpr (kByHardware) {
      return _mm_unpacklo_epi64(_mm_cvtpd_epi32(low.v), _mm_cvtpd_epi32(high.v));
    } else {
      return _mm_unpacklo_epi64(_mm_cvttpd_epi32(low.v), _mm_cvttpd_epi32(high.v));
    }
#endif
  }
  // All ones in some lane if a number may be next to one half.
  static ZOV_INLINE __m128i NextToHalf(const Zov64f* pSrc) {
    // The high half is one of a NaN.
    const __m128i pattern = _mm_set1_epi64x(0x7FF0000000000001);
    __m128i found = _mm_setzero_si128();
    for (int i = 0; i < kStep; i += 2) {
      const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i));
      found = _mm_or_si128(found, _mm_cmpeq_epi32(x, pattern));
    }
    return found;
  }
  // The pack saturates what fits in 32 bits. For a NaN and what lies outside, the hardware answers
  // with its least integer; the block is then converted again, limited first.
  ZOV_INLINE void Block(const Zov64f* pSrc, Zov16s* pDst) const {
    __m128i low = Integers<false>(pSrc);
    __m128i high = Integers<false>(pSrc + 4);
    const __m128i least = _mm_set1_epi32(-0x7FFFFFFF - 1);
    __m128i misses = _mm_or_si128(_mm_cmpeq_epi32(low, least), _mm_cmpeq_epi32(high, least));
    if constexpr (kByHardware) misses = _mm_or_si128(misses, NextToHalf(pSrc));
    if (__builtin_expect(_mm_movemask_epi8(misses) != 0, 0)) {
      low = Integers<true>(pSrc);
      high = Integers<true>(pSrc + 4);
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst), _mm_packs_epi32(low, high));
  }
};

#if defined(__AVX2__)
// To nearest without conversions. Added to this, a number of 16 bits stands as an integer in the
// low half of the sum; so does 0 for the usual NaN.
constexpr double kLowHalf = 0x1.8p52;

template <bool kScaled>
struct Narrow64f16s<ZOV_RND_NEAR, kScaled> {
  double scale;
  VecD scales = VecD::Broadcast(scale);

  static constexpr int kStep = 16;
  static constexpr bool kBlockOnly = true;

  static ZOV_INLINE __m256i LowHalves(VecD a, VecD b) {
    return (__m256i)_mm256_shuffle_ps((__m256)a.v, (__m256)b.v, 0x88);
  }
  // The low halves saturated, in the order 0 1 4 5 8 9 12 13, 2 3 6 7 10 11 14 15.
  static ZOV_INLINE __m256i PackLowHalves(const VecD (&x)[4]) {
    return _mm256_packs_epi32(LowHalves(x[0], x[1]), LowHalves(x[2], x[3]));
  }
  template <bool kNextToHalf>
  ZOV_INLINE __m256i Integers(const VecD (&x)[4]) const {
    VecD y[4];
    for (int k = 0; k < 4; ++k) {
      y[k] = kScaled ? x[k] * scales : x[k];
      y[k] = Max(VecD::Broadcast(-32768.0), Min(VecD::Broadcast(32767.0), y[k]));
      if constexpr (kNextToHalf) y[k] = WithoutNextToHalf(y[k]);
      y[k] = y[k] + VecD::Broadcast(kLowHalf);
    }
    return _mm256_permutevar8x32_epi32(PackLowHalves(y), _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
  }
  ZOV_INLINE void Block(const Zov64f* pSrc, Zov16s* pDst) const {
    VecD x[4];
    for (int k = 0; k < 4; ++k) x[k] = VecD::Load(pSrc + 4 * k);
    __m256i result = Integers<false>(x);
    const __m256i suspects = _mm256_cmpeq_epi16(PackLowHalves(x), _mm256_set1_epi16(1));
    if (_mm256_movemask_epi8(suspects) != 0) [[unlikely]]
      result = Integers<true>(x);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pDst), result);
  }
};
#endif

// The rounding field of MXCSR: all ones truncate, zeros round to nearest.
constexpr std::uint32_t kRoundField = 0x6000;

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
  if (WritesAhead(pSrc, pDst, len)) [[unlikely]]
    return NarrowByBlocks(pSrc, pDst, len, 0);
  // Joining two halves takes longer than storing them one by one, except beyond the first-level
  // cache.
  constexpr int kLong = 4096;
  if (kLevel >= Level::avx && len > kLong) return NarrowLong(pSrc, pDst, len);
  return NarrowByPasses<Quad>(pSrc, pDst, len);
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
  const bool truncates =
      kLevel >= Level::sse3 && rndMode != ZOV_RND_ZERO && rndMode != ZOV_RND_NEAR;
  const std::uint32_t saved = truncates ? zovCpuSetRoundMode(kRoundField) : kRoundField;
  NarrowByMode<Narrow32f16s>(pSrc, pDst, len, rndMode, scale, scaleFactor != 0);
  if ((saved & kRoundField) != kRoundField) zovCpuSetRoundMode(saved);
  return zovStsNoErr;
}

ZovStatus zovsConvert_64f16s_Sfs(const Zov64f* pSrc, Zov16s* pDst, int len, int rndMode,
                                 int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  const double scale = PowerOfTwo(scaleFactor);
  const bool setsNear = kLevel >= Level::sse3 && rndMode == ZOV_RND_NEAR;
  const std::uint32_t saved = setsNear ? zovCpuSetRoundMode(0) : 0;
  NarrowByMode<Narrow64f16s>(pSrc, pDst, len, rndMode, scale, scaleFactor != 0);
  if ((saved & kRoundField) != 0) zovCpuSetRoundMode(saved);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Conversions to a wider type: exact, or with one scale.
#include "core/checks.h"
#include "core/entries.h"
#include "core/simd.h"
#include "signal/vector/convert.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// The first four elements of 16 bits as 32-bit lanes.
ZOV_INLINE __m128i Widen4(__m128i x) {
#if defined(__SSE4_1__)
  return _mm_cvtepi16_epi32(x);
#else
  return _mm_srai_epi32(_mm_unpacklo_epi16(x, x), 16);
#endif
}

ZOV_INLINE __m128i Widen4(const Zov16s* p) {
  return Widen4(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}

// One vector of floats from as many elements of 16 bits.
ZOV_INLINE VecF LoadAsFloat(const Zov16s* p) {
#if defined(__AVX2__)
  return {(VecF::Native)_mm256_cvtepi32_ps(
      _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))))};
#elif defined(__AVX__)
  return {(VecF::Native)_mm256_cvtepi32_ps(_mm256_setr_m128i(Widen4(p), Widen4(p + 4)))};
#else
  return {_mm_cvtepi32_ps(Widen4(p))};
#endif
}

struct Widen16s32f {
  static constexpr int kStep = VecF::kLanes;
  static ZOV_INLINE void Block(const Zov16s* pSrc, Zov32f* pDst) { LoadAsFloat(pSrc).Store(pDst); }
  static ZOV_INLINE Zov32f One(Zov16s x) { return x; }
};

struct Widen32f64f {
  static constexpr int kStep = VecD::kLanes;
  static ZOV_INLINE void Block(const Zov32f* pSrc, Zov64f* pDst) { LoadAsDouble(pSrc).Store(pDst); }
  static ZOV_INLINE Zov64f One(Zov32f x) { return static_cast<Zov64f>(x); }
};

template <bool kScaled>
struct Widen16s64f {
  double scale;
  VecD scales = VecD::Broadcast(scale);

  static constexpr int kStep = 4;
  ZOV_INLINE void Block(const Zov16s* pSrc, Zov64f* pDst) const {
    const __m128i x = Widen4(pSrc);
#if defined(__AVX__)
    Put({_mm256_cvtepi32_pd(x)}, pDst);
#else
    Put({_mm_cvtepi32_pd(x)}, pDst);
    Put({_mm_cvtepi32_pd(_mm_unpackhi_epi64(x, x))}, pDst + 2);
#endif
  }
  ZOV_INLINE void Put(VecD x, Zov64f* pDst) const {
    if constexpr (kScaled) x = x * scales;
    x.Store(pDst);
  }
  ZOV_INLINE Zov64f One(Zov16s x) const { return kScaled ? x * scale : x; }
};

// Full-scale 16-bit samples onto the closed range from -1 to 1: 1/32767.5 and 1/65535.
constexpr float kSampleScale = 3.0518044e-5F;
constexpr float kSampleOffset = 1.5259022e-5F;

struct ScaleSample {
  const VecF scales = VecF::Broadcast(kSampleScale);
  const VecF offsets = VecF::Broadcast(kSampleOffset);

  static constexpr int kStep = VecF::kLanes;
  ZOV_INLINE VecF Apply(VecF x) const { return x * scales + offsets; }
  ZOV_INLINE void Block(const Zov16s* pSrc, Zov32f* pDst) const {
    Apply(LoadAsFloat(pSrc)).Store(pDst);
  }
  static ZOV_INLINE Zov32f One(Zov16s x) {
    return static_cast<Zov32f>(x) * kSampleScale + kSampleOffset;
  }
};

// Both channels of interleaved pairs at once: a 32-bit lane holds the first in its low half.
ZOV_INLINE void SplitPairs(const ScaleSample& scale, const Zov16s* pSrc, Zov32f* pFirst,
                           Zov32f* pSecond, std::ptrdiff_t len) {
  std::ptrdiff_t i = 0;
#if defined(__AVX2__)
  for (; len - i >= 8; i += 8) {
    const __m256i x = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pSrc + 2 * i));
    const __m256i first = _mm256_srai_epi32(_mm256_slli_epi32(x, 16), 16);
    scale.Apply({_mm256_cvtepi32_ps(first)}).Store(pFirst + i);
    scale.Apply({_mm256_cvtepi32_ps(_mm256_srai_epi32(x, 16))}).Store(pSecond + i);
  }
#endif
  const auto scales = Vec<float, 4>::Broadcast(kSampleScale);
  const auto offsets = Vec<float, 4>::Broadcast(kSampleOffset);
  for (; len - i >= 4; i += 4) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 2 * i));
    const Vec<float, 4> first = {_mm_cvtepi32_ps(_mm_srai_epi32(_mm_slli_epi32(x, 16), 16))};
    const Vec<float, 4> second = {_mm_cvtepi32_ps(_mm_srai_epi32(x, 16))};
    (first * scales + offsets).Store(pFirst + i);
    (second * scales + offsets).Store(pSecond + i);
  }
  for (; i < len; ++i) {
    pFirst[i] = scale.One(pSrc[2 * i]);
    pSecond[i] = scale.One(pSrc[2 * i + 1]);
  }
}

// Element i of a channel, for i from 0 to 3, as floats. They are put together in a register: a
// vector loaded over single stores would wait for them.
ZOV_INLINE Vec<float, 4> GatherFour(const Zov16s* pSrc, std::ptrdiff_t channels) {
  __m128i x = _mm_cvtsi32_si128(pSrc[0]);
  x = _mm_insert_epi16(x, pSrc[channels], 1);
  x = _mm_insert_epi16(x, pSrc[2 * channels], 2);
  x = _mm_insert_epi16(x, pSrc[3 * channels], 3);
  return {_mm_cvtepi32_ps(Widen4(x))};
}

// One channel out of many.
ZOV_INLINE void SplitChannel(const ScaleSample& scale, const Zov16s* pSrc, std::ptrdiff_t channels,
                             Zov32f* pDst, int len) {
  const auto scales = Vec<float, 4>::Broadcast(kSampleScale);
  const auto offsets = Vec<float, 4>::Broadcast(kSampleOffset);
  int i = 0;
  for (; len - i >= 4; i += 4) {
    (GatherFour(pSrc, channels) * scales + offsets).Store(pDst + i);
    pSrc += 4 * channels;
  }
  for (; i < len; ++i) {
    pDst[i] = scale.One(*pSrc);
    pSrc += channels;
  }
}

}  // namespace

ZovStatus zovsConvert_16s32f(const Zov16s* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  ConvertArray(Widen16s32f{}, pSrc, pDst, len);
  return zovStsNoErr;
}

ZovStatus zovsConvert_32f64f(const Zov32f* pSrc, Zov64f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  ConvertArray(Widen32f64f{}, pSrc, pDst, len);
  return zovStsNoErr;
}

ZovStatus zovsConvert_16s64f_Sfs(const Zov16s* pSrc, Zov64f* pDst, int len, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if (scaleFactor == 0) {
    ConvertPerhapsOverlapping(Widen16s64f<false>{1.0}, pSrc, pDst, len);
  } else {
    ConvertPerhapsOverlapping(Widen16s64f<true>{PowerOfTwo(scaleFactor)}, pSrc, pDst, len);
  }
  return zovStsNoErr;
}

ZovStatus zovsSplitScaled_16s32f_D2L(const Zov16s* pSrc, Zov32f** ppDst, int numChannels,
                                     int length) {
  // The sizes come between the pointers, and every row is tested before any is written.
  if (pSrc == nullptr) return zovStsNullPtrErr;
  if (numChannels < 1 || length < 1) return zovStsSizeErr;
  if (ppDst == nullptr) return zovStsNullPtrErr;
  const std::int64_t srcLen = std::int64_t{numChannels} * length;
  bool overlap = false;
  for (int c = 0; c < numChannels; ++c) {
    if (ppDst[c] == nullptr) return zovStsNullPtrErr;
    overlap = overlap || Overlap(pSrc, srcLen, ppDst[c], length);
  }
  const ScaleSample scale;
  if (overlap) {
    for (int c = 0; c < numChannels; ++c) {
      for (std::int64_t i = 0; i < length; ++i) {
        ppDst[c][i] = scale.One(LoadElement(pSrc + i * numChannels + c));
      }
    }
  } else if (numChannels == 1) {
    ConvertArray(scale, pSrc, ppDst[0], length);
  } else if (numChannels == 2) {
    SplitPairs(scale, pSrc, ppDst[0], ppDst[1], length);
  } else {
    for (int c = 0; c < numChannels; ++c) {
      SplitChannel(scale, pSrc + c, numChannels, ppDst[c], length);
    }
  }
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

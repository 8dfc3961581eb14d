// The Hamming window of 16-bit samples. Level 0 truncates products in binary64; the levels above
// round products in binary32, all but those of the two ends.
#include "core/entries.h"
#include "signal/filter/window/factors.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

using Four = Vec<float, 4>;

// Sixteen-bit samples times factors, rounded to nearest with ties to even, saturated.
[[maybe_unused]] ZOV_INLINE void Multiply(Zov16s* p, __m128 factors) {
  const __m128i x = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
  const __m128i wide = _mm_srai_epi32(_mm_unpacklo_epi16(x, x), 16);
  const __m128i rounded = _mm_cvtps_epi32(_mm_mul_ps(_mm_cvtepi32_ps(wide), factors));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packs_epi32(rounded, rounded));
}
[[maybe_unused]] ZOV_INLINE void MultiplyOne(Zov16s* p, float factor) {
  const __m128i rounded =
      _mm_cvtsi32_si128(_mm_cvtss_si32(_mm_set_ss(static_cast<float>(*p) * factor)));
  *p = static_cast<Zov16s>(_mm_cvtsi128_si32(_mm_packs_epi32(rounded, rounded)));
}

// Sample `begin` and those that follow up to sample `end`, and their mirror images. The angle of
// sample `begin` is `at`; the lanes turn by four steps at a time.
[[maybe_unused]] ZOV_INLINE void WalkFour(Zov16s* pSrcDst, int len, int begin, int end,
                                          Rotation<double> at, Rotation<double> step) {
  Rotation<Four> angle;
  for (int lane = 0; lane < 4; ++lane) {
    angle.cosine.v[lane] = static_cast<float>(at.cosine);
    angle.sine.v[lane] = static_cast<float>(at.sine);
    at = at * step;
  }
  const Rotation<double> two = step * step;
  const Rotation<double> four = two * two;
  const Rotation<Four> turn = {Constant<Four>(four.cosine), Constant<Four>(four.sine)};

  Zov16s* const last = pSrcDst + (len - 1);
  int k = begin;
  for (; end - k >= 4; k += 4) {
    const Four factors = Hamming{}(angle.cosine);
    angle = angle * turn;
    Multiply(pSrcDst + k, factors.v);
    Multiply(last - k - 3, _mm_shuffle_ps(factors.v, factors.v, 0x1B));
  }
  const Four factors = Hamming{}(angle.cosine);
  for (int lane = 0; k < end; ++k, ++lane) {
    MultiplyOne(pSrcDst + k, factors.v[lane]);
    MultiplyOne(last - k, factors.v[lane]);
  }
}

}  // namespace

ZovStatus zovsWinHamming_16s_I(Zov16s* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  if constexpr (kLevel >= Level::sse3) {
    constexpr float kEnd = 0.54F - 0.46F;
    Zov16s* const last = pSrcDst + (len - 1);
    *pSrcDst = static_cast<Zov16s>(static_cast<float>(*pSrcDst) * kEnd);
    *last = static_cast<Zov16s>(static_cast<float>(*last) * kEnd);

    // In binary32 a rotation drifts, so every block begins with an angle from binary64.
    constexpr int kLog2Block = 9;
    constexpr int kBlock = 1 << kLog2Block;
    const double x = WindowAngle(len);
    const Rotation<double> step = {__builtin_cos(x), __builtin_sin(x)};
    Rotation<double> blockStep = step;
    for (int i = 0; i < kLog2Block; ++i) blockStep = blockStep * blockStep;
    Rotation<double> at = step;
    const int pairs = len / 2;
    for (int k = 1; k < pairs; k += kBlock) {
      WalkFour(pSrcDst, len, k, pairs - k < kBlock ? pairs : k + kBlock, at, step);
      at = at * blockStep;
    }
  } else {
    WalkPairs(pSrcDst, len, 0, RotatingFactor<Hamming>{{}, WindowRotation(len)});
  }
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

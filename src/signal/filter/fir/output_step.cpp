// Conversions at the two ends of the filters with 64f taps on narrower samples.
#include "signal/filter/fir/output_step.h"

#include "core/entries.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

void Widen(const Zov32f* from, Zov64f* to, std::int64_t count) {
  zovsConvert_32f64f(from, to, static_cast<int>(count));
}
void Widen(const Zov16s* from, Zov64f* to, std::int64_t count) {
  zovsConvert_16s64f_Sfs(from, to, static_cast<int>(count), 0);
}

void OutputNarrow::operator()(const Zov64f* sums, Zov32f* to, std::int64_t count) const {
  std::int64_t i = 0;
  for (; i + 4 <= count; i += 4) {
#if defined(__AVX__)
    _mm_storeu_ps(to + i, _mm256_cvtpd_ps(_mm256_loadu_pd(sums + i)));
#else
    _mm_storeu_ps(to + i, _mm_movelh_ps(_mm_cvtpd_ps(_mm_loadu_pd(sums + i)),
                                        _mm_cvtpd_ps(_mm_loadu_pd(sums + i + 2))));
#endif
  }
#if defined(__AVX__)
  // The compiler sees no wide result, but the processor counts a wide source.
  _mm256_zeroupper();
#endif
  for (; i < count; ++i) to[i] = static_cast<Zov32f>(sums[i]);
}

// 2^-scaleFactor, by its exponent field alone: levels 0, 1, 5 and 6 take seven bits of the scale
// factor, the last two in a binary32 number, which makes 0 of 2^-127; the others take it whole.
OutputScale::OutputScale(int scaleFactor) {
  const std::uint32_t value = static_cast<std::uint32_t>(scaleFactor);
  const std::uint32_t lowered = scaleFactor < 0 ? 0 - ((0 - value) & 127) : value & 127;
  if constexpr (kLevel >= Level::avx) {
    const std::uint32_t bits = (127 - lowered) << 23;
    Zov32f single;
    __builtin_memcpy(&single, &bits, sizeof single);
    factor = single;
  } else {
    const std::uint32_t whole = kLevel <= Level::sse3 ? lowered : value;
    const std::uint64_t bits = std::uint64_t{1023 - whole} << 52;
    __builtin_memcpy(&factor, &bits, sizeof factor);
  }
}

namespace {

#if ZOV_LEVEL <= 1
// Ties away from zero; a NaN becomes 0.
ZOV_INLINE __m128i RoundAway(VecD x) {
  x = x & As<double>(x == x);
  x = Max(Min(x, VecD::Broadcast(32767.0)), VecD::Broadcast(-32768.0));
  const VecD half = (x & VecD::Broadcast(-0.0)) | VecD::Broadcast(0.5);
  return _mm_cvttpd_epi32((x + half).v);
}
#endif

// Four sums as 32-bit integers.
ZOV_INLINE __m128i RoundFour(const Zov64f* sums, VecD factor) {
#if defined(__AVX__)
  return _mm256_cvtpd_epi32((VecD::Load(sums) * factor).v);
#else
  const VecD low = VecD::Load(sums) * factor;
  const VecD high = VecD::Load(sums + 2) * factor;
#if ZOV_LEVEL <= 1
  return _mm_unpacklo_epi64(RoundAway(low), RoundAway(high));
#else
  return _mm_unpacklo_epi64(_mm_cvtpd_epi32(low.v), _mm_cvtpd_epi32(high.v));
#endif
#endif
}

}  // namespace

void OutputScale::operator()(const Zov64f* sums, Zov16s* to, std::int64_t count) const {
  const VecD factors = VecD::Broadcast(factor);
  std::int64_t i = 0;
  for (; i + 4 <= count; i += 4) {
    const __m128i x = RoundFour(sums + i, factors);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + i), _mm_packs_epi32(x, x));
  }
  if (i == count) return;
  Zov64f last[4] = {};
  for (std::int64_t k = i; k < count; ++k) last[k - i] = sums[k];
  Zov16s results[4];
  const __m128i x = RoundFour(last, factors);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(results), _mm_packs_epi32(x, x));
  for (std::int64_t k = i; k < count; ++k) to[k] = results[k - i];
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Saturating and widening arithmetic of 16-bit lanes, and the scale rule of integer results.
#pragma once

#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// The 32-bit values of 16-bit lanes, in the order that the processor widens and narrows them.
template <int N>
struct ExactLanes {
  Vec<std::int32_t, N / 2> low, high;
};

// The instructions of one register width under names of their own.
#define ZOV_INTEGER_LANES(N, Register, prefix)                                                     \
  ZOV_INLINE Vec<std::int16_t, N> SumSaturated(Vec<std::int16_t, N> a, Vec<std::int16_t, N> b) {   \
    return {(Vec<std::int16_t, N>::Native)prefix##adds_epi16((Register)a.v, (Register)b.v)};       \
  }                                                                                                \
  ZOV_INLINE Vec<std::uint16_t, N> SumSaturated(Vec<std::uint16_t, N> a,                           \
                                                Vec<std::uint16_t, N> b) {                         \
    return {(Vec<std::uint16_t, N>::Native)prefix##adds_epu16((Register)a.v, (Register)b.v)};      \
  }                                                                                                \
  ZOV_INLINE Vec<std::int16_t, N> DifferenceSaturated(Vec<std::int16_t, N> a,                      \
                                                      Vec<std::int16_t, N> b) {                    \
    return {(Vec<std::int16_t, N>::Native)prefix##subs_epi16((Register)a.v, (Register)b.v)};       \
  }                                                                                                \
  ZOV_INLINE Vec<std::uint16_t, N> DifferenceSaturated(Vec<std::uint16_t, N> a,                    \
                                                       Vec<std::uint16_t, N> b) {                  \
    return {(Vec<std::uint16_t, N>::Native)prefix##subs_epu16((Register)a.v, (Register)b.v)};      \
  }                                                                                                \
  ZOV_INLINE Vec<std::int16_t, N> ProductSaturated(Vec<std::int16_t, N> a,                         \
                                                   Vec<std::int16_t, N> b) {                       \
    const Register low = prefix##mullo_epi16((Register)a.v, (Register)b.v);                        \
    const Register high = prefix##mulhi_epi16((Register)a.v, (Register)b.v);                       \
    return {(Vec<std::int16_t, N>::Native)prefix##packs_epi32(prefix##unpacklo_epi16(low, high),   \
                                                              prefix##unpackhi_epi16(low, high))}; \
  }                                                                                                \
  /* Products with one, added in pairs. */                                                         \
  ZOV_INLINE ExactLanes<N> ExactSum(Vec<std::int16_t, N> a, Vec<std::int16_t, N> b) {              \
    const Register one = prefix##set1_epi16(1);                                                    \
    const auto sum = [one](Register pairs) {                                                       \
      return Vec<std::int32_t, N / 2>{(Vec<std::int32_t, N / 2>::Native)                           \
                                          prefix##madd_epi16(pairs, one)};                         \
    };                                                                                             \
    return {sum(prefix##unpacklo_epi16((Register)a.v, (Register)b.v)),                             \
            sum(prefix##unpackhi_epi16((Register)a.v, (Register)b.v))};                            \
  }                                                                                                \
  ZOV_INLINE ExactLanes<N> Widened(Vec<std::uint16_t, N> a) {                                      \
    using Half = Vec<std::int32_t, N / 2>;                                                         \
    const Register zero{};                                                                         \
    return {Half{(Half::Native)prefix##unpacklo_epi16((Register)a.v, zero)},                       \
            Half{(Half::Native)prefix##unpackhi_epi16((Register)a.v, zero)}};                      \
  }                                                                                                \
  ZOV_INLINE Vec<std::int16_t, N> PackSaturated(ExactLanes<N> x, Vec<std::int16_t, N>) {           \
    return {                                                                                       \
        (Vec<std::int16_t, N>::Native)prefix##packs_epi32((Register)x.low.v, (Register)x.high.v)}; \
  }                                                                                                \
  ZOV_INLINE Vec<std::int16_t, N> ShiftedLeft(Vec<std::int16_t, N> x, int count) {                 \
    return {                                                                                       \
        (Vec<std::int16_t, N>::Native)prefix##sll_epi16((Register)x.v, _mm_cvtsi32_si128(count))}; \
  }                                                                                                \
  ZOV_INLINE Vec<std::uint16_t, N> ShiftedLeft(Vec<std::uint16_t, N> x, int count) {               \
    return {(Vec<std::uint16_t, N>::Native)prefix##sll_epi16((Register)x.v,                        \
                                                             _mm_cvtsi32_si128(count))};           \
  }                                                                                                \
  ZOV_INLINE Vec<std::int16_t, N> ShiftedRight(Vec<std::int16_t, N> x, int count) {                \
    return {                                                                                       \
        (Vec<std::int16_t, N>::Native)prefix##sra_epi16((Register)x.v, _mm_cvtsi32_si128(count))}; \
  }                                                                                                \
  ZOV_INLINE Vec<std::uint16_t, N> ShiftedRight(Vec<std::uint16_t, N> x, int count) {              \
    return {(Vec<std::uint16_t, N>::Native)prefix##srl_epi16((Register)x.v,                        \
                                                             _mm_cvtsi32_si128(count))};           \
  }                                                                                                \
  ZOV_INLINE Vec<std::int32_t, N / 2> ShiftedRight(Vec<std::int32_t, N / 2> x, int count) {        \
    return {(Vec<std::int32_t, N / 2>::Native)                                                     \
                prefix##sra_epi32((Register)x.v, _mm_cvtsi32_si128(count))};                       \
  }

ZOV_INTEGER_LANES(8, __m128i, _mm_)
#if defined(__AVX2__)
ZOV_INTEGER_LANES(16, __m256i, _mm256_)
#endif
#undef ZOV_INTEGER_LANES

template <int N>
ZOV_INLINE ExactLanes<N> ExactSum(Vec<std::uint16_t, N> a, Vec<std::uint16_t, N> b) {
  const ExactLanes<N> x = Widened(a);
  const ExactLanes<N> y = Widened(b);
  return {x.low + y.low, x.high + y.high};
}

// For values that are not negative.
template <int N>
ZOV_INLINE Vec<std::uint16_t, N> PackSaturated(ExactLanes<N> x, Vec<std::uint16_t, N>) {
#if defined(__AVX2__)
  if constexpr (N == 16) {
    return {(typename Vec<std::uint16_t, N>::Native)_mm256_packus_epi32((__m256i)x.low.v,
                                                                        (__m256i)x.high.v)};
  } else
#endif
  {
#if defined(__SSE4_1__)
    return {(typename Vec<std::uint16_t, N>::Native)_mm_packus_epi32((__m128i)x.low.v,
                                                                     (__m128i)x.high.v)};
#else
    // As signed numbers, moved by half the range and back.
    const auto half = Vec<std::int32_t, N / 2>::Broadcast(0x8000);
    const ExactLanes<N> moved = {x.low - half, x.high - half};
    return As<std::uint16_t>(PackSaturated(moved, Vec<std::int16_t, N>::Zero())) ^
           Vec<std::uint16_t, N>::Broadcast(0x8000);
#endif
  }
}

// x * 2^-count to the nearest integer, ties to even; count from 1 to 17.
template <int N>
ZOV_INLINE Vec<std::int32_t, N> RoundedRight(Vec<std::int32_t, N> x, int count) {
  using V = Vec<std::int32_t, N>;
  const V odd = ShiftedRight(x, count) & V::Broadcast(1);
  return ShiftedRight(x + V::Broadcast((1 << (count - 1)) - 1) + odd, count);
}

// x * 2^count, saturated; count from 1 to 15.
template <int N>
ZOV_INLINE Vec<std::uint16_t, N> LeftSaturated(Vec<std::uint16_t, N> x, int count) {
  using V = Vec<std::uint16_t, N>;
  const V most = V::Broadcast(static_cast<std::uint16_t>(0xFFFF >> count));
  const auto fits = DifferenceSaturated(x, most) == V::Zero();
  return ShiftedLeft(x, count) | AndNot(As<std::uint16_t>(fits), V::Broadcast(0xFFFF));
}
template <int N>
ZOV_INLINE Vec<std::int16_t, N> LeftSaturated(Vec<std::int16_t, N> x, int count) {
  using V = Vec<std::int16_t, N>;
  const V shifted = ShiftedLeft(x, count);
  const V limit = V{x.v >> 15} ^ V::Broadcast(0x7FFF);
  return Select(ShiftedRight(shifted, count) == x, shifted, limit);
}

// The limit on the side of x, and zero for zero.
template <int N>
ZOV_INLINE Vec<std::uint16_t, N> LimitOf(Vec<std::uint16_t, N> x) {
  using V = Vec<std::uint16_t, N>;
  return AndNot(As<std::uint16_t>(x == V::Zero()), V::Broadcast(0xFFFF));
}
template <int N>
ZOV_INLINE Vec<std::int16_t, N> LimitOf(Vec<std::int16_t, N> x) {
  using V = Vec<std::int16_t, N>;
  return AndNot(x == V::Zero(), V{x.v >> 15} ^ V::Broadcast(0x7FFF));
}

template <int N>
ZOV_INLINE Vec<std::int32_t, N> AbsSaturated(Vec<std::int32_t, N> x) {
  using V = Vec<std::int32_t, N>;
#if defined(__AVX2__)
  if constexpr (N == 8) {
    return {(typename V::Native)_mm256_min_epu32(_mm256_abs_epi32((__m256i)x.v),
                                                 _mm256_set1_epi32(INT32_MAX))};
  }
#endif
  // Unsigned, as the one magnitude beyond the range wraps; it stays negative and takes 1 off.
  using U = Vec<std::uint32_t, N>;
  const V sign{x.v >> 31};
  const U magnitude = As<std::uint32_t>(x ^ sign) - As<std::uint32_t>(sign);
  return As<std::int32_t>(magnitude - U{magnitude.v >> 31});
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Quotients with the bits of the hardware's division, formed by fused multiplication and addition.
// The divider gives one vector in three to five cycles; a loop that forms some of its vectors here
// meanwhile is faster by a third. (Square roots are not: their chain is longer than the wait.)
//
// They refine the hardware's approximation, whatever its last bits are, as long as its relative
// error is below 1.5 * 2^-12, and end with a fused residual. That rounds correctly for all operands
// in the range tested here but one mantissa, which the test excludes as well. The proof is by
// enumeration: of every operand of a binade that lies close enough to a rounding boundary, with
// every approximation of it.
#pragma once

#include "core/simd.h"
#include "kelozov/kelozov.h"

#if defined(__FMA__)

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace exact {

using Bits = Vec<std::int32_t, VecF::kLanes>;

ZOV_INLINE VecF Number(float x) { return VecF::Broadcast(x); }
ZOV_INLINE VecF NegativeMulAdd(VecF a, VecF b, VecF c) { return {_mm256_fnmadd_ps(a.v, b.v, c.v)}; }

// Where a bit pattern lies outside of [low, high), both taken as unsigned.
ZOV_INLINE Bits Outside(Bits x, std::uint32_t low, std::uint32_t high) {
  const Bits least = Bits::Broadcast(static_cast<std::int32_t>(0x80000000U - low));
  const Bits most = Bits::Broadcast(static_cast<std::int32_t>(0x80000000U + (high - low - 1)));
  return most < x + least;
}

// Where the bits of x that are clear in `any` are those of `pattern`.
ZOV_INLINE Bits Matches(Bits x, std::uint32_t any, std::uint32_t pattern) {
  return (x | Bits::Broadcast(static_cast<std::int32_t>(any))) ==
         Bits::Broadcast(static_cast<std::int32_t>(pattern));
}

constexpr std::uint32_t PowerOfTwo(int exponent) {
  return static_cast<std::uint32_t>(127 + exponent) << 23;
}

}  // namespace exact

// Dividends that Quotient takes: none of its steps leaves the normal numbers.
ZOV_INLINE bool IsDividend(float b) {
  const float size = b < 0 ? -b : b;
  return size >= 0x1p-40F && size <= 0x1p40F;
}

// Divisors that Quotient does not take: zeros, the extremes of the range, infinities and NaNs, and
// the largest mantissa, whose reciprocal lies next to the middle of two numbers.
ZOV_INLINE Vec<std::int32_t, VecF::kLanes> NoDivisor(VecF a) {
  using namespace exact;
  const Bits bits = As<std::int32_t>(a);
  return Outside(bits + bits, 2 * PowerOfTwo(-80), 2 * PowerOfTwo(80)) |
         Matches(bits, 0xFF800000, 0xFFFFFFFF);
}

// b / a. The reciprocal is refined until it is the nearest number, so that the residual of the
// quotient decides its last bit.
ZOV_INLINE VecF Quotient(VecF b, VecF a) {
  using namespace exact;
  VecF r = ApproxReciprocal(a);
  r = MulAdd(r, NegativeMulAdd(a, r, Number(1.0F)), r);
  r = MulAdd(r, NegativeMulAdd(a, r, Number(1.0F)), r);
  const VecF q = b * r;
  return MulAdd(NegativeMulAdd(q, a, b), r, q);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

#endif

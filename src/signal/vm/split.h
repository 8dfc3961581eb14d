// Exponent and fraction of a positive normal number, for the logarithms and the power.
#pragma once

#include "signal/vm/lanes.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// x = 2^exponent (1 + rest), 1 + rest from sqrt(1/2) to sqrt(2); the rest is exact.
struct BinarySplit {
  F exponent;
  F rest;
};

ZOV_INLINE BinarySplit SplitBinary(F x) {
  const I fromRootHalf = Bits(x) - Splat(0x3F3504F3);
  const I fraction = Bits(x) - (fromRootHalf & Splat(-0x800000));
  return {ToFloat(ShiftRight<23>(fromRootHalf)), FromBits(fraction) - Splat(1.0F)};
}

// Marks what is not a positive normal number. The sum moves the patterns of infinities and NaNs to
// the negative integers, and brings those of negative numbers no higher than that of zero.
ZOV_INLINE void MarkNotNormal(I& special, F x) {
#if defined(__AVX__) && !defined(__AVX2__)
  const auto below = _mm256_cmp_ps(x.v, Splat(0x1p-126F).v, _CMP_NGE_UQ);
  special = special | I{(I::Native)below} | IsAbove(x, 0x1.fffffep127F);
#else
  // With a limit that it knows, the compiler would make two instructions of the comparison.
  I limit = Splat(0x1000000);
  asm("" : "+x"(limit.v));
  special = special | (limit > Bits(x) + Splat(0x800000));
#endif
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

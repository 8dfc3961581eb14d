// Reduction of angles by multiples of pi, shared by sine, cosine and tangent.
#pragma once

#include "signal/vm/lanes.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Beyond this magnitude, the last below 10000, an angle takes the exact reduction, out of line.
constexpr float kLargestAngle = 9999.999F;

ZOV_INLINE void MarkLargeAngle(I& special, F x) {
  special = special | IsAbove(Abs(x), kLargestAngle);
}

// x - n pi / kDivisor for |n| < 2^13. The constant comes in parts whose products with n are exact,
// save the last; all are positive, so that a zero keeps its sign.
template <int kDivisor = 1>
ZOV_INLINE F TakeOffPi(F x, F n) {
#if defined(__FMA__)
  x = Fma(n, Splat(-0x1.921fb4p+1F / kDivisor), x);
  return Fma(n, Splat(-0x1.4442d2p-23F / kDivisor), x);
#else
  x = x - n * Splat(0x1.92p+1F / kDivisor);
  x = x - n * Splat(0x1.fbp-11F / kDivisor);
  x = x - n * Splat(0x1.51p-21F / kDivisor);
  return x - n * Splat(0x1.0b4612p-33F / kDivisor);
#endif
}

template <int kDivisor = 1>
ZOV_INLINE W TakeOffPi(W x, W n) {
  return Fma(n, Splat(-0x1.0b4611a626331p-33 / kDivisor),
             Fma(n, Splat(-0x1.921fb544p+1 / kDivisor), x));
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Sine and cosine: n multiples of pi are taken off, and the parity of n gives the sign of sin(r).
#include "signal/vm/angle.h"
#include "signal/vm/coefficients.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"
#include "signal/vm/special.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kInversePi = 0.3183098861837907;

ZOV_INLINE F ShortSine(F r, F shifted) {
  const F s = r * r;
  return FromBits(Bits(r * Polynomial(s, kSinA11)) ^ Bits(OddSign(shifted)));
}

ZOV_INLINE F LongSine(W r, W shifted) {
  return ToFloat(Xor(r * Polynomial(r * r, kSinA24), OddSign(shifted)));
}

struct SineKernel {
  static ZOV_NOINLINE float Special(ZovStatus& status, float x) { return SpecialSin(status, x); }
};

struct ShortSin : SineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLargeAngle(special, x);
    const F shifted = Fma(x, Splat(static_cast<float>(kInversePi)), Splat(kShifter));
    return ShortSine(TakeOffPi(x, shifted - Splat(kShifter)), shifted);
  }
};

struct LongSin : SineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLargeAngle(special, x);
    const W wide = ToDouble(x);
    const W shifted = Fma(wide, Splat(kInversePi), Splat(kWideShifter));
    return LongSine(TakeOffPi(wide, shifted - Splat(kWideShifter)), shifted);
  }
};

// cos(x) = (-1)^n sin(x - (n - 1/2) pi)
struct CosineKernel {
  static ZOV_NOINLINE float Special(ZovStatus& status, float x) { return SpecialCos(status, x); }
};

struct ShortCos : CosineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLargeAngle(special, x);
    const F turns = Fma(x, Splat(static_cast<float>(kInversePi)), Splat(0.5F));
    const F shifted = turns + Splat(kShifter);
    const F n = (shifted - Splat(kShifter)) - Splat(0.5F);
    return ShortSine(TakeOffPi(x, n), shifted);
  }
};

struct LongCos : CosineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLargeAngle(special, x);
    const W wide = ToDouble(x);
    const W shifted = Fma(wide, Splat(kInversePi), Splat(0.5)) + Splat(kWideShifter);
    const W n = (shifted - Splat(kWideShifter)) - Splat(0.5);
    return LongSine(TakeOffPi(wide, n), shifted);
  }
};

}  // namespace

const ZovVmKernelRow<UnaryKernel> kVmSin = {
    RunUnary<LongSin>, RunUnary<LongSin>, RunUnary<ShortSin>, 0, 0, 0};
const ZovVmKernelRow<UnaryKernel> kVmCos = {
    RunUnary<LongCos>, RunUnary<LongCos>, RunUnary<ShortCos>, 0, 0, 0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

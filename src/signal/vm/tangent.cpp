// Tangent: n multiples of pi/2 are taken off; an odd n turns tan(r) into -1 / tan(r).
#include "signal/vm/angle.h"
#include "signal/vm/coefficients.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"
#include "signal/vm/special.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kTwoOverPi = 0.6366197723675814;

struct TangentKernel {
  static ZOV_NOINLINE float Special(ZovStatus& status, float x) { return SpecialTan(status, x); }
};

struct ShortTan : TangentKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLargeAngle(special, x);
    const F shifted = Fma(x, Splat(static_cast<float>(kTwoOverPi)), Splat(kShifter));
    const F r = TakeOffPi<2>(x, shifted - Splat(kShifter));
    const F s = r * r;
    const F t = Fma(r * s, Polynomial(s, kTanA11), r);
    const F sign = OddSign(shifted);
    const F cotangent = FromBits(Bits(Reciprocal(t)) ^ Bits(sign));
    return SelectBySign(sign, cotangent, t);
  }
};

struct LongTan : TangentKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLargeAngle(special, x);
    const W wide = ToDouble(x);
    const W shifted = Fma(wide, Splat(kTwoOverPi), Splat(kWideShifter));
    const W r = TakeOffPi<2>(wide, shifted - Splat(kWideShifter));
    const W s = r * r;
    const W sine = r * Polynomial(s, kSinQuarterA24);
    const W cosine = Polynomial(s, kCosQuarterA24);
    const W sign = OddSign(shifted);
    const W quotient = SelectBySign(sign, cosine, sine) / SelectBySign(sign, sine, cosine);
    return ToFloat(Xor(quotient, sign));
  }
};

}  // namespace

const ZovVmKernelRow<UnaryKernel> kVmTan = {
    RunUnary<LongTan>, RunUnary<LongTan>, RunUnary<ShortTan>, 0, 0, 0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

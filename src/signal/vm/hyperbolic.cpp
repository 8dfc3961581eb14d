// Hyperbolic functions. With x / ln 2 = n + f and 2^f = E + f O in even and odd part,
//   cosh x = C E + S f O,  sinh x = S E + C f O,  C, S = (2^n +- 2^-n) / 2,
// which loses nothing near zero, where S is zero.
#include "signal/vm/coefficients.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"
#include "signal/vm/special.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kLog2E = 1.4426950408889634;

template <class V>
struct Parts {
  V even;     // E
  V odd;      // f O
  V cosine;   // C
  V negSine;  // -S: subtracting its product leaves the sign of a zero
};

ZOV_INLINE Parts<F> Split(F x) {
  const F log2e = Splat(static_cast<float>(kLog2E));
  const F shifted = Fma(x, log2e, Splat(kShifter));
  const F f = MulSub(x, log2e, shifted - Splat(kShifter));
  const F s = f * f;
  const I n = ShiftLeft<23>(Bits(shifted));
  const I half = Bits(Splat(0.5F));
  const F up = FromBits(half + n);
  const F down = FromBits(half - n);
  return {Polynomial(s, kExp2EvenA11), f * Polynomial(s, kExp2OddA11), up + down, down - up};
}

ZOV_INLINE Parts<W> Split(W x) {
  const W y = x * Splat(kLog2E);
  const W shifted = y + Splat(kWideShifter);
  const W n = shifted - Splat(kWideShifter);
  const W f = y - n;
  const W s = f * f;
  const W up = Scale(Splat(0.5), shifted);
  const W down = Scale(Splat(0.5), Splat(kWideShifter) - n);
  return {Polynomial(s, kExp2EvenA24), f * Polynomial(s, kExp2OddA24), up + down, down - up};
}

template <class V>
ZOV_INLINE V Cosh(Parts<V> p) {
  return NegatedFma(p.negSine, p.odd, p.cosine * p.even);
}
template <class V>
ZOV_INLINE V Sinh(Parts<V> p) {
  return NegatedFma(p.negSine, p.even, p.cosine * p.odd);
}

// From 87 on the powers of two are out of the range of a float.
ZOV_INLINE void MarkLarge(I& special, F x) { special = special | IsAbove(Abs(x), 87.0F); }

struct SinhKernel {
  static ZOV_NOINLINE float Special(ZovStatus& status, float x) { return SpecialSinh(status, x); }
};
struct ShortSinh : SinhKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLarge(special, x);
    return Sinh(Split(x));
  }
};
struct LongSinh : SinhKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLarge(special, x);
    return ToFloat(Sinh(Split(ToDouble(x))));
  }
};

struct CoshKernel {
  static ZOV_NOINLINE float Special(ZovStatus& status, float x) { return SpecialCosh(status, x); }
};
struct ShortCosh : CoshKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLarge(special, x);
    return Cosh(Split(x));
  }
};
struct LongCosh : CoshKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLarge(special, x);
    return ToFloat(Cosh(Split(ToDouble(x))));
  }
};

// No element is special: NaNs pass through the limits, which keep their second operand.
struct TanhKernel {
  static float Special(ZovStatus&, float x) { return x; }
};
struct ShortTanh : TanhKernel {
  static ZOV_INLINE F Evaluate(I&, F x) {
    const F limited = Min(Splat(5.2F), Max(Splat(-5.2F), x));
    const F s = limited * limited;
    const F y = limited * Polynomial(s, kTanhTopA11) * Reciprocal(Polynomial(s, kTanhBottomA11));
    return Min(Splat(1.0F), Max(Splat(-1.0F), y));
  }
};
struct LongTanh : TanhKernel {
  static ZOV_INLINE F Evaluate(I&, F x) {
    const F limited = Min(Splat(20.0F), Max(Splat(-20.0F), x));
    const Parts<W> p = Split(ToDouble(limited));
    return ToFloat(Sinh(p) / Cosh(p));
  }
};

}  // namespace

const ZovVmKernelRow<UnaryKernel> kVmSinh = {
    RunUnary<LongSinh>, RunUnary<LongSinh>, RunUnary<ShortSinh>, 0, 0, 0};
const ZovVmKernelRow<UnaryKernel> kVmCosh = {
    RunUnary<LongCosh>, RunUnary<LongCosh>, RunUnary<ShortCosh>, 0, 0, 0};
const ZovVmKernelRow<UnaryKernel> kVmTanh = {
    RunUnary<LongTanh>, RunUnary<LongTanh>, RunUnary<ShortTanh>, 0, 0, 0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

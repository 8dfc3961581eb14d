// Arc sine and arc cosine. In double precision, above 1/2: asin(x) = pi/2 - 2 asin(sqrt((1 - x) /
// 2)).
#include "signal/vm/coefficients.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"
#include "signal/vm/special.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr float kHalfPi = static_cast<float>(kPi / 2);

struct ArcSineKernel {
  static ZOV_INLINE void MarkOutside(I& special, F x) { special = special | IsAbove(Abs(x), 1.0F); }
  static ZOV_NOINLINE float Special(ZovStatus& status, float x) {
    return SpecialArcSine(status, x);
  }
};

// asin(x) = pi/2 - sqrt(1 - x) P(x), and below 1/48, where that difference loses bits, x itself.
struct ShortAsin : ArcSineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkOutside(special, x);
    const F a = Abs(x);
    const F y = FastSqrt(Splat(1.0F) - a) * Polynomial(a, kAsinA11);
    return Select(Splat(1.0F / 48) > a, a, Splat(kHalfPi) - y) ^ SignOf(x);
  }
};

// acos(x) = sqrt(1 - x) P(x); acos(-x) = pi - acos(x)
struct ShortAcos : ArcSineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkOutside(special, x);
    const F a = Abs(x);
    const F y = FastSqrt(Splat(1.0F) - a) * Polynomial(a, kAcosA11);
    const I negative = ShiftRight<31>(Bits(x));
    return FromBits(negative & Bits(Splat(static_cast<float>(kPi)))) + (y ^ SignOf(x));
  }
};

// asin(a) = w P of |x|, and whether it stands for pi/2 minus twice that.
struct WideArcSine {
  W value;
  WideMask upper;

  explicit ZOV_INLINE WideArcSine(W x) {
    const W a = Abs(x);
    upper = a > Splat(0.5);
    const W s = Select(upper, (Splat(1.0) - a) * Splat(0.5), a * a);
    const W w = Select(upper, Sqrt(s), a);
    value = Fma(w * s, Polynomial(s, kAsinA24), w);
  }
};

struct LongAsin : ArcSineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkOutside(special, x);
    const W wide = ToDouble(x);
    const WideArcSine y(wide);
    const W result = Select(y.upper, Splat(kPi / 2) - y.value - y.value, y.value);
    return ToFloat(Xor(result, SignOf(wide)));
  }
};

struct LongAcos : ArcSineKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkOutside(special, x);
    const W wide = ToDouble(x);
    const WideArcSine y(wide);
    const W twice = y.value + y.value;
    const WideMask negative = Splat(0.0) > wide;
    const W upper = Select(negative, Splat(kPi) - twice, twice);
    return ToFloat(Select(y.upper, upper, Splat(kPi / 2) - Xor(y.value, SignOf(wide))));
  }
};

}  // namespace

const ZovVmKernelRow<UnaryKernel> kVmAsin = {
    RunUnary<LongAsin>, RunUnary<LongAsin>, RunUnary<ShortAsin>, 0, 0, 0};
const ZovVmKernelRow<UnaryKernel> kVmAcos = {
    RunUnary<LongAcos>, RunUnary<LongAcos>, RunUnary<ShortAcos>, 0, 0, 0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

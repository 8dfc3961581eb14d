// x^y = 2^(y log2 x), for arrays of exponents and for one exponent.
#include "signal/vm/coefficients.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"
#include "signal/vm/special.h"
#include "signal/vm/split.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

struct PowerKernel {
  // The result is normal when the magnitude of y log2 x is below this; a NaN is not.
  static constexpr float kPowerEnd = 126.0F;
  static ZOV_INLINE void MarkExtreme(I& special, F power) {
    special = special | IsAbove(Abs(power), kPowerEnd);
  }
  static ZOV_NOINLINE float Special(ZovStatus& status, float x, float y) {
    return SpecialPow(status, x, y);
  }
};

struct ShortPow : PowerKernel {
  [[maybe_unused]] static constexpr bool kIsShort = true;
  static ZOV_INLINE F Evaluate(I& special, F x, F y) {
    MarkNotNormal(special, x);
    const BinarySplit s = SplitBinary(x);
    const F power = y * Fma(s.rest, Polynomial(s.rest, kLog2A11), s.exponent);
    MarkExtreme(special, power);
    const F shifted = power + Splat(kShifter);
    const F f = power - (shifted - Splat(kShifter));
    return Scale(Fma(f, Polynomial(f, kExp2A11), Splat(1.0F)), shifted);
  }
};

struct LongPow : PowerKernel {
  static ZOV_INLINE F Evaluate(I& special, F x, F y) {
    MarkNotNormal(special, x);
    const BinarySplit s = SplitBinary(x);
    // Beyond the sixth, terms are so small that single precision serves them.
    const W rest = ToDouble(s.rest);
    const W tail = ToDouble(Polynomial(s.rest, kLog2TailA24));
    const W power =
        ToDouble(y) * Fma(rest, PolynomialThen(rest, kLog2A24, tail), ToDouble(s.exponent));
    MarkExtreme(special, ToFloat(power));
    const W shifted = power + Splat(kWideShifter);
    const W f = power - (shifted - Splat(kWideShifter));
    return ToFloat(Scale(Fma(f, Polynomial(f, kExp2A24), Splat(1.0)), shifted));
  }
};

// The two lowest levels have one kernel for all classes.
template <bool kOneForAll>
struct Fastest {
  using Kernel = ShortPow;
};
template <>
struct Fastest<true> {
  using Kernel = LongPow;
};
using FastestPow = Fastest<(kLevel < Level::ssse3)>::Kernel;

}  // namespace

const ZovVmKernelRow<BinaryKernel> kVmPow = {
    RunBinary<LongPow>, RunBinary<LongPow>, RunBinary<FastestPow>, 0, 0, 0};
const ZovVmKernelRow<ConstantKernel> kVmPowx = {
    RunWithConstant<LongPow>, RunWithConstant<LongPow>, RunWithConstant<FastestPow>, 0, 0, 0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

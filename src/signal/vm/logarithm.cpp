// Natural and common logarithm: x = 2^e (1 + r), log x = e log 2 + r P(r).
#include "signal/vm/coefficients.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"
#include "signal/vm/special.h"
#include "signal/vm/split.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

struct Ln {
  static constexpr double kOfTwo = 0.6931471805599453;
  static constexpr const auto& kA11 = kLnA11;
  static constexpr const auto& kA21 = kLnA21;
  static constexpr const auto& kA24 = kLnA24;
  static constexpr auto kSpecial = SpecialLn;
};

struct Log10 {
  static constexpr double kOfTwo = 0.30102999566398120;
  static constexpr const auto& kA11 = kLog10A11;
  static constexpr const auto& kA21 = kLog10A21;
  static constexpr const auto& kA24 = kLog10A24;
  static constexpr auto kSpecial = SpecialLog10;
};

template <class Base>
struct LogKernel {
  static ZOV_NOINLINE float Special(ZovStatus& status, float x) {
    return Base::kSpecial(status, x);
  }
};

template <class Base>
struct ShortLog : LogKernel<Base> {
  static constexpr bool kIsShort = true;
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkNotNormal(special, x);
    const BinarySplit s = SplitBinary(x);
    return Fma(s.exponent, Splat(static_cast<float>(Base::kOfTwo)),
               s.rest * Polynomial(s.rest, Base::kA11));
  }
};

template <class Base>
struct MediumLog : LogKernel<Base> {
  static constexpr bool kIsShort = true;
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkNotNormal(special, x);
    const BinarySplit s = SplitBinary(x);
    return Fma(s.exponent, Splat(static_cast<float>(Base::kOfTwo)),
               s.rest * Polynomial(s.rest, Base::kA21));
  }
};

template <class Base>
struct LongLog : LogKernel<Base> {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkNotNormal(special, x);
    const BinarySplit s = SplitBinary(x);
    const W rest = ToDouble(s.rest);
    return ToFloat(
        Fma(ToDouble(s.exponent), Splat(Base::kOfTwo), rest * Polynomial(rest, Base::kA24)));
  }
};

}  // namespace

const ZovVmKernelRow<UnaryKernel> kVmLn = {
    RunUnary<MediumLog<Ln>>, RunUnary<LongLog<Ln>>, RunUnary<ShortLog<Ln>>, 0, 0, 0};
// The lowest level has one common logarithm for all classes.
constexpr bool kOneLog10 = kLevel == Level::sse2;
const ZovVmKernelRow<UnaryKernel> kVmLog10 = {
    kOneLog10 ? RunUnary<LongLog<Log10>> : RunUnary<MediumLog<Log10>>,
    RunUnary<LongLog<Log10>>,
    kOneLog10 ? RunUnary<LongLog<Log10>> : RunUnary<ShortLog<Log10>>,
    0,
    0,
    0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

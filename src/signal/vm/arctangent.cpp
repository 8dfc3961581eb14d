// Arc tangent, of a number and of a quotient: the smaller magnitude over the larger goes through a
// polynomial; pi/2, pi and the signs bring the result to its quadrant.
#include "signal/vm/coefficients.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"
#include "signal/vm/special.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kPi = 3.141592653589793;

// atan(z), 0 <= z <= 1
ZOV_INLINE F ShortArc(F z) {
  const F s = z * z;
  return Fma(z * s, Polynomial(s, kAtanA11), z);
}
ZOV_INLINE W LongArc(W z) {
  const W s = z * z;
  return Fma(z * s, Polynomial(s, kAtanA24), z);
}

struct ArcTangentKernel {
  // From 2^64 on the reciprocal is out of line.
  static ZOV_INLINE void MarkLarge(I& special, F x) {
    special = special | IsAbove(Abs(x), 0x1.fffffep63F);
  }
  static ZOV_NOINLINE float Special(ZovStatus&, float x) { return SpecialAtan(x); }
};

struct ShortAtan : ArcTangentKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLarge(special, x);
    const F one = Splat(1.0F);
    const F a = Abs(x);
    const I steep = a > one;
    const F arc = ShortArc(Select(steep, Reciprocal(Max(a, one)), a));
    return Select(steep, Splat(static_cast<float>(kPi / 2)) - arc, arc) ^ SignOf(x);
  }
};

struct LongAtan : ArcTangentKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    MarkLarge(special, x);
    const W one = Splat(1.0);
    const W wide = ToDouble(x);
    const W a = Abs(wide);
    const W arc = LongArc(Min(a, one) / Max(a, one));
    return ToFloat(Xor(Select(a > one, Splat(kPi / 2) - arc, arc), SignOf(wide)));
  }
};

// Ordinary operands have magnitudes from 2^-62 to 2^62: neither the quotient nor a reciprocal
// leaves the normal numbers. Zeros are special, too.
struct QuotientKernel {
  static ZOV_INLINE void MarkExtreme(I& special, F y, F x) {
    constexpr float kLowest = 0x1p-62F;
    constexpr float kHighest = 0x1p62F;
#if defined(__AVX__) && !defined(__AVX2__)
    const auto below = [](F a) { return F{_mm256_cmp_ps(a.v, Splat(kLowest).v, _CMP_NGE_UQ)}; };
    const F outside = below(Abs(y)) | below(Abs(x));
    special = special | Bits(outside) | IsAbove(Abs(y), kHighest) | IsAbove(Abs(x), kHighest);
#else
    const I a = AbsBits(y);
    const I b = AbsBits(x);
    const I lowest = Splat(__builtin_bit_cast(std::int32_t, kLowest));
    const I highest = Splat(__builtin_bit_cast(std::int32_t, kHighest));
#if defined(__AVX2__)
    special = special | (Min(a, b) - lowest) | (highest - Max(a, b));
#else
    special = special | (a - lowest) | (highest - a) | (b - lowest) | (highest - b);
#endif
#endif
  }
  static ZOV_NOINLINE float Special(ZovStatus&, float y, float x) { return SpecialAtan2(y, x); }
};

struct ShortAtan2 : QuotientKernel {
  static ZOV_INLINE F Evaluate(I& special, F y, F x) {
    MarkExtreme(special, y, x);
    const F a = Abs(y);
    const F b = Abs(x);
    const F arc = ShortArc(Min(a, b) * Reciprocal(Max(a, b)));
    const F first = Select(a > b, Splat(static_cast<float>(kPi / 2)) - arc, arc);
    // Left of the origin: pi - first.
    const F start = SelectBySign(x, Splat(static_cast<float>(kPi)), F::Zero());
    const F turned = start + (first ^ SignOf(x));
    return turned ^ SignOf(y);
  }
};

struct LongAtan2 : QuotientKernel {
  static ZOV_INLINE F Evaluate(I& special, F y, F x) {
    MarkExtreme(special, y, x);
    const W wideY = ToDouble(y);
    const W wideX = ToDouble(x);
    const W a = Abs(wideY);
    const W b = Abs(wideX);
    const W arc = LongArc(Min(a, b) / Max(a, b));
    const W first = Select(a > b, Splat(kPi / 2) - arc, arc);
    const W turned = Select(Splat(0.0) > wideX, Splat(kPi) - first, first);
    return ToFloat(Xor(turned, SignOf(wideY)));
  }
};

}  // namespace

const ZovVmKernelRow<UnaryKernel> kVmAtan = {
    RunUnary<LongAtan>, RunUnary<LongAtan>, RunUnary<ShortAtan>, 0, 0, 0};
const ZovVmKernelRow<BinaryKernel> kVmAtan2 = {
    RunBinary<LongAtan2>, RunBinary<LongAtan2>, RunBinary<ShortAtan2>, 0, 0, 0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

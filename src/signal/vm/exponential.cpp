// e^x. The method differs by level and class: a table in single precision up to SSE4, short
// polynomials in the A11 class from SSE3 on and in every class from AVX on.
#include "signal/vm/coefficients.h"
#include "signal/vm/exp2_table.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kLog2E = 1.4426950408889634;
// The last magnitude before 87.3365478515625, from which on e^-x is denormal.
constexpr float kOrdinaryEnd = 0x1.5d589ep6F;

// Above the first limit e^x overflows, below the second it is zero.
constexpr float kOverflowLimit = 88.72283F;
constexpr float kZeroLimit = kLevel >= Level::avx ? -103.97208F : -103.27893829345703F;

// 2^k e^r of the pattern below: the factor e^r in single precision and k in the low bits of a sum.
struct Scaled {
  F factor;
  F shifted;
};

// Double precision throughout; serves the elements near and below the smallest normal result too.
struct WideExp {
  struct Power {
    W shifted, f;
    explicit ZOV_INLINE Power(W x) {
      const W y = x * Splat(kLog2E);
      shifted = y + Splat(kWideShifter);
      f = y - (shifted - Splat(kWideShifter));
    }
  };
  static ZOV_INLINE W Extended(W x) {
    const auto [shifted, f] = Power(x);
    const W s = f * f;
    const W odd = (Splat(0.0013399931218481776) * s + Splat(0.05550328776967639)) * s +
                  Splat(0.6931472057372665);
    const W even = (Splat(0.00015345812020122585) * s + Splat(0.009618488957047724)) * s +
                   Splat(0.24022646890634758);
    return Scale(odd * f + Splat(1.0000000005541663) + even * s, shifted);
  }
#if !defined(__AVX__)
  // The reduction needs double precision, the polynomial of the A11 class does not. Where 2^k
  // leaves the exponents the element is special, and this result is dropped.
  static ZOV_INLINE F Result(F x) {
    const auto [wide, f] = Power(ToDouble(x));
    const F shifted{_mm_shuffle_ps(As<float>(wide.a).v, As<float>(wide.b).v, 0x88)};
    const F r = ToFloat(f);
    return Scale(Fma(r, Polynomial(r, kExp2A11), Splat(1.0F)), shifted);
  }
#endif
  static ZOV_INLINE double ResultAlone(float x) { return Extended(Splat(double{x})).a.v[0]; }
};

#if !defined(__AVX__)
ZOV_INLINE double LaneZero(F factor, F power) {
  const W y = ToDouble(factor) * ToDouble(power);
  return y.a.v[0];
}

// x = k ln 2 + i ln 2 / 128 + r: e^x = 2^k T[i] e^r, T[i] in two parts.
struct TableExp {
  static ZOV_INLINE Scaled Split(F x) {
    const F shifted = x * Splat(184.6649627685547F) + Splat(11534336.0F);
    const F m = shifted - Splat(11534336.0F);
    const F r = x - m * Splat(0.0054168701171875F) - m * Splat(-1.6577690757912933e-06F);
    const I index = Bits(shifted) & Splat(127);
    // Two at a time: fewer moves between the registers than one by one.
    const auto places = reinterpret_cast<__m128i>(index.v);
    const auto low2 = static_cast<std::uint64_t>(_mm_cvtsi128_si64(places));
    const auto high2 =
        static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_shuffle_epi32(places, 0xEE)));
    const Exp2Entry* const entry[] = {
        kExp2Table + static_cast<std::uint32_t>(low2), kExp2Table + (low2 >> 32),
        kExp2Table + static_cast<std::uint32_t>(high2), kExp2Table + (high2 >> 32)};
    const auto pair = [](const Exp2Entry* first, const Exp2Entry* second) {
      const __m128d low = _mm_load_sd(reinterpret_cast<const double*>(first));
      return _mm_castpd_ps(_mm_loadh_pd(low, reinterpret_cast<const double*>(second)));
    };
    const __m128 a = pair(entry[0], entry[1]);
    const __m128 b = pair(entry[2], entry[3]);
    const F high{_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))};
    const F low{_mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))};
    const F q = low + r + Splat(0.5F) * r * r;
    return {high + high * q, shifted};
  }
  static ZOV_INLINE I Exponent(F shifted) { return ShiftRight<7>(Bits(shifted)) + Splat(127); }
  static ZOV_INLINE F Result(F x) {
    const Scaled y = Split(x);
    return y.factor * FromBits(ShiftLeft<23>(Exponent(y.shifted)));
  }
  // 2^k may exceed the exponents of a float here.
  static ZOV_INLINE double ResultAlone(float x) {
    const Scaled y = Split(Splat(x));
    const I half = ShiftLeft<23>(Exponent(y.shifted) - Splat(1));
    return 2.0 * LaneZero(y.factor, FromBits(half));
  }
};
#else
// The formula of single elements, and of whole blocks with a special one among them.
struct AloneExp {
  static ZOV_INLINE Scaled Split(F x) {
    const F shifted = x * Splat(1.442695F) + Splat(kShifter);
    const F m = shifted - Splat(kShifter);
    const F r = x - m * Splat(0.69314575F) - m * Splat(1.4286068e-06F);
    F p = r * Splat(0.0083811125F) + Splat(0.041917525F);
    p = p * r + Splat(0.16666326F);
    p = p * r + Splat(0.4999887F);
    p = p * r + Splat(1.0000001F);
    p = p * r + Splat(1.0000001F);
    // The polynomial misses one by a unit in the last place.
    return {Select(I{x.v == F::Zero().v}, Splat(1.0F), p), shifted};
  }
  static ZOV_INLINE F Result(F x) {
    const Scaled y = Split(x);
    return Scale(y.factor, y.shifted);
  }
  static ZOV_INLINE double ResultAlone(float x) {
    const Scaled y = Split(Splat(x));
    // In two steps: the exponents go from -150 to 128.
    const I half = ShiftRight<1>(Bits(y.shifted) - Bits(Splat(kShifter)));
    const I rest = Bits(y.shifted) - Bits(Splat(kShifter)) - half;
    const W power = ToDouble(FromBits(ShiftLeft<23>(half + Splat(127)))) *
                    ToDouble(FromBits(ShiftLeft<23>(rest + Splat(127))));
    return (ToDouble(y.factor) * power).a.v[0];
  }
};

struct ShortExp {
  static ZOV_INLINE F Result(F x) {
    const F log2e = Splat(static_cast<float>(kLog2E));
    const F shifted = Fma(x, log2e, Splat(kShifter));
    const F f = Fma(x, log2e, Splat(kShifter) - shifted);
    return Scale(Fma(f, Polynomial(f, kExp2A11), Splat(1.0F)), shifted);
  }
};

struct MediumExp {
  static ZOV_INLINE F Result(F x) {
    const F shifted = Fma(x, Splat(static_cast<float>(kLog2E)), Splat(kShifter));
    const F m = shifted - Splat(kShifter);
    const F r = Fma(m, Splat(-1.4286068e-06F), Fma(m, Splat(-0.69314575F), x));
    return Scale(Fma(r, Polynomial(r, kExpA21), Splat(1.0F)), shifted);
  }
};

struct LongExp {
  static ZOV_INLINE W Extended(W x) {
    const W y = x * Splat(kLog2E);
    const W shifted = y + Splat(kWideShifter);
    const W f = y - (shifted - Splat(kWideShifter));
    return Scale(Fma(f, Polynomial(f, kExp2A24), Splat(1.0)), shifted);
  }
  static ZOV_INLINE F Result(F x) { return ToFloat(Extended(ToDouble(x))); }
  static ZOV_INLINE double ResultAlone(float x) { return Extended(Splat(double{x})).a.v[0]; }
};
#endif

// Ordinary elements by one method, those outside the ordinary range by another.
template <class Ordinary, class Alone>
struct ExpKernel {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    special = special | IsAbove(Abs(x), kOrdinaryEnd);
    return Ordinary::Result(x);
  }

  static ZOV_NOINLINE float Special(ZovStatus& status, float x) {
    if (x != x) return x + x;
    if (x > kOverflowLimit) {
      if (x < __builtin_inff()) status = zovStsOverflowWrn;
      return __builtin_inff();
    }
    if (x > 0.0F) return static_cast<float>(Alone::ResultAlone(x));
    if (x > -__builtin_inff()) status = zovStsUnderflowWrn;
    if (x < kZeroLimit) return 0.0F;
    if constexpr (kLevel < Level::avx) return static_cast<float>(WideExp::ResultAlone(x));
    return static_cast<float>(Alone::ResultAlone(x));
  }
};

#if defined(__AVX__)
// The A11 and A21 classes take single elements by a formula of their own.
template <class Ordinary>
struct ExpKernelWithRest : ExpKernel<Ordinary, AloneExp> {
  static ZOV_INLINE F EvaluateAlone(F x) { return AloneExp::Result(x); }
};
#endif

}  // namespace

#if defined(__AVX__)
const ZovVmKernelRow<UnaryKernel> kVmExp = {RunUnary<ExpKernelWithRest<MediumExp>>,
                                            RunUnary<ExpKernel<LongExp, LongExp>>,
                                            RunUnary<ExpKernelWithRest<ShortExp>>,
                                            0,
                                            0,
                                            0};
#else
using TableKernel = ExpKernel<TableExp, TableExp>;
using WideKernel = ExpKernel<WideExp, WideExp>;
// The lowest level has one kernel for all classes.
const ZovVmKernelRow<UnaryKernel> kVmExp = {
    RunUnary<TableKernel>,
    RunUnary<TableKernel>,
    kLevel == Level::sse2 ? RunUnary<TableKernel> : RunUnary<WideKernel>,
    0,
    0,
    0};
#endif

}  // namespace zov::ZOV_LEVEL_NAMESPACE

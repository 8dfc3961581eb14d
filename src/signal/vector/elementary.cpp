// Natural logarithm, exponential and arc tangent without an accuracy class. The lowest level works
// in double precision, four elements to a division; the others stand on vector kernels.
#include <math.h>

#include "core/checks.h"
#include "core/entries.h"
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr double kHalfPi = 1.5707963267948966;
constexpr std::uint32_t kNegativeNaN = 0xFFC00000;
constexpr std::uint32_t kPositiveNaN = 0x7FC00000;
constexpr std::uint32_t kQuietBit = 0x400000;

ZOV_INLINE std::uint32_t BitsOf(float x) { return __builtin_bit_cast(std::uint32_t, x); }
ZOV_INLINE float FloatOf(std::uint32_t bits) { return __builtin_bit_cast(float, bits); }
ZOV_INLINE bool IsQuietNaN(std::uint32_t bits) {
  return (bits & (kInfinityBits | kQuietBit)) == (kInfinityBits | kQuietBit);
}

// atan(x) = x - x P(x^2) / Q(x^2) for |x| < 1; beyond, the same of 1 / x, off pi/2.
constexpr double kArctanTop[] = {1.1139321843993106e-09, 0.16929808076717057, 0.14563069811407553,
                                 0.020972123400173};
constexpr double kArctanBottom[] = {0.5078944990310164, 0.7416239113090943, 0.2902606865063184,
                                    0.025449373192319054};
ZOV_INLINE double Cubic(double t, const double (&c)[4]) {
  return ((t * c[3] + c[2]) * t + c[1]) * t + c[0];
}
[[maybe_unused]] ZOV_INLINE F Cubic(F t, const double (&c)[4]) {
  const F high = Fma(t, Splat(static_cast<float>(c[3])), Splat(static_cast<float>(c[2])));
  const F middle = Fma(t, high, Splat(static_cast<float>(c[1])));
  return Fma(t, middle, Splat(static_cast<float>(c[0])));
}

// An infinity or a NaN; a signalling NaN counts as an infinity.
ZOV_INLINE float ArctanOfNonFinite(float x) {
  const std::uint32_t bits = BitsOf(x);
  if (IsQuietNaN(bits)) return FloatOf(bits >> 31 ? kNegativeNaN : kPositiveNaN);
  return static_cast<float>(bits >> 31 ? -kHalfPi : kHalfPi);
}

// Level sse2: elements taken one by one from the last to the first, special ones done on the spot,
// the others four at a time, so that they share a division.

// 1 / d for all four.
ZOV_INLINE void InvertTogether(const double (&d)[4], double (&inverse)[4]) {
  const double front = d[0] * d[1];
  const double back = d[2] * d[3];
  const double all = 1.0 / (front * back);
  inverse[0] = all * (d[1] * back);
  inverse[1] = all * (d[0] * back);
  inverse[2] = all * (front * d[3]);
  inverse[3] = all * (front * d[2]);
}

// A function is a type with
//   bool Special(float x, float& y)           whether y is the result without further ado
//   void Four(const float (&x)[4], float (&y)[4])  four ordinary elements
//   float One(float x)                        an ordinary element left over
template <class Function>
ZOV_INLINE void WalkBackwards(const float* pSrc, float* pDst, int len) {
  float x[4];
  int place[4];
  int held = 0;
  for (int i = len - 1; i >= 0; --i) {
    if (Function::Special(pSrc[i], pDst[i])) continue;
    x[held] = pSrc[i];
    place[held] = i;
    if (++held < 4) continue;
    float y[4];
    Function::Four(x, y);
    for (int k = 0; k < 4; ++k) pDst[place[k]] = y[k];
    held = 0;
  }
  for (int k = 0; k < held; ++k) pDst[place[k]] = Function::One(x[k]);
}

struct SerialExp {
  static ZOV_INLINE bool Special(float x, float& y) {
    const std::uint32_t bits = BitsOf(x);
    if ((bits & kInfinityBits) == 0) {
      y = 1.0F;
    } else if (bits >= 0xC2AEAC50) {  // the results below -87.33655 would be denormal
      y = IsQuietNaN(bits) ? FloatOf(kNegativeNaN) : 0.0F;
    } else if (bits >= 0x42B17218 && bits < 0x80000000) {  // those from 88.72284 on overflow
      y = IsQuietNaN(bits) ? x : __builtin_inff();
    } else {
      return false;
    }
    return true;
  }

  // With x = k ln 2 + r, e^r is the quotient of two cubics.
  static ZOV_INLINE void Four(const float (&x)[4], float (&y)[4]) {
    double numerator[4], denominator[4], power[4], inverse[4];
    for (int i = 0; i < 4; ++i) {
      const double wide = x[i];
      const double shifter = __builtin_copysign(0x1p52, wide);
      const double k = (wide * 1.4426950408889634 + shifter) - shifter;
      const double r = wide - k * 0.6931471805599453;
      const double s = r * r;
      const double even = 12.0 * (10.0 + s);
      const double odd = r * (60.0 + s);
      numerator[i] = even + odd;
      denominator[i] = even - odd;
      power[i] = __builtin_bit_cast(double, (static_cast<std::int64_t>(k) + 1023) << 52);
    }
    InvertTogether(denominator, inverse);
    for (int i = 0; i < 4; ++i) y[i] = static_cast<float>(numerator[i] * inverse[i] * power[i]);
  }

  static ZOV_INLINE float One(float x) { return static_cast<float>(exp(static_cast<double>(x))); }
};

struct SerialArctan {
  static ZOV_INLINE bool Special(float x, float& y) {
    if ((BitsOf(x) & kInfinityBits) != kInfinityBits) return false;
    y = ArctanOfNonFinite(x);
    return true;
  }

  static ZOV_INLINE bool Steep(float x) { return fabsf(x) >= 1.0F; }
  // The result for v, which is x or its reciprocal, and the quotient P / Q.
  static ZOV_INLINE float Finish(float x, double v, double quotient) {
    if (!Steep(x)) return static_cast<float>(v - v * quotient);
    return static_cast<float>((x < 0 ? -kHalfPi : kHalfPi) - v + v * quotient);
  }

  static ZOV_INLINE void Four(const float (&x)[4], float (&y)[4]) {
    double v[4], bottom[4], inverse[4];
    for (int i = 0; i < 4; ++i) {
      v[i] = Steep(x[i]) ? 1.0 / static_cast<double>(x[i]) : static_cast<double>(x[i]);
      bottom[i] = Cubic(v[i] * v[i], kArctanBottom);
    }
    InvertTogether(bottom, inverse);
    for (int i = 0; i < 4; ++i)
      y[i] = Finish(x[i], v[i], Cubic(v[i] * v[i], kArctanTop) * inverse[i]);
  }

  static ZOV_INLINE float One(float x) {
    const double v = Steep(x) ? 1.0 / static_cast<double>(x) : static_cast<double>(x);
    return Finish(x, v, Cubic(v * v, kArctanTop) / Cubic(v * v, kArctanBottom));
  }
};

// The first bad element decides here; a set sign bit is bad, whatever it belongs to.
[[maybe_unused]] ZOV_INLINE ZovStatus SerialLn(const float* pSrc, float* pDst, int len) {
  ZovStatus status = zovStsNoErr;
  for (int i = 0; i < len; ++i) {
    const float x = pSrc[i];
    const std::uint32_t bits = BitsOf(x);
    if (bits >> 31) {
      pDst[i] = FloatOf(kNegativeNaN);
      if (status == zovStsNoErr) status = zovStsLnNegArgWrn;
    } else if (IsQuietNaN(bits)) {
      pDst[i] = x;
    } else if (bits == 0) {
      pDst[i] = -__builtin_inff();
      if (status == zovStsNoErr) status = zovStsLnZeroArgWrn;
    } else {
      pDst[i] = static_cast<float>(log(static_cast<double>(x)));
    }
  }
  return status;
}

// m - v M, rounded once or, without fused instructions, by halves of twelve bits, whose products
// are exact.
ZOV_INLINE F Remainder(F m, F v, F M) {
#if defined(__FMA__)
  return NegatedFma(v, M, m);
#else
  const F high = FromBits(Splat(-0x1000));
  const F vHigh = v & high;
  const F vLow = v - vHigh;
  const F mHigh = M & high;
  const F mLow = M - mHigh;
  return ((m - vHigh * mHigh) - vHigh * mLow - vLow * mHigh) - vLow * mLow;
#endif
}

// The arc tangent in vectors of single precision, with what the reciprocal and pi/2 lose to
// rounding: below 1.4 units in the last place.
struct VectorArctan {
  static ZOV_INLINE F Evaluate(I& special, F x) {
    const F a = Abs(x);
    special = special | IsAbove(a, 0x1.fffffep127F);
    const F one = Splat(1.0F);
    const F dividend = Min(a, one);
    const F divisor = Max(a, one);
    const F v = dividend / divisor;
    const F left = Remainder(dividend, v, divisor) * v;
    const F t = v * v;
    const F quotient = Cubic(t, kArctanTop) / Cubic(t, kArctanBottom);
    const F flat = NegatedFma(v, quotient, v);
    constexpr float kHalfPiHigh = static_cast<float>(kHalfPi);
    constexpr float kHalfPiLow = static_cast<float>(kHalfPi - double{kHalfPiHigh});
    const F first = Splat(kHalfPiHigh) - v;
    const F lost = (Splat(kHalfPiHigh) - first) - v;
    const F steep = first + Fma(v, quotient, (Splat(kHalfPiLow) + lost) - left);
    // A zero of either sign gives +0.
    return (Select(a >= one, steep, flat) ^ SignOf(x)) + F::Zero();
  }
  static ZOV_NOINLINE float Special(ZovStatus&, float x) { return ArctanOfNonFinite(x); }
};

}  // namespace

ZovStatus zovsLn_32f(const Zov32f* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if constexpr (kLevel == Level::sse2) return SerialLn(pSrc, pDst, len);
  // The last bad element decides.
  switch (kVmLn.kernelA21(pSrc, pDst, len)) {
    case zovStsNoErr:
      return zovStsNoErr;
    case zovStsSingularityWrn:
      return zovStsLnZeroArgWrn;
    default:
      return zovStsLnNegArgWrn;
  }
}

ZovStatus zovsExp_32f(const Zov32f* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if constexpr (kLevel == Level::sse2) {
    WalkBackwards<SerialExp>(pSrc, pDst, len);
  } else {
    kVmExp.kernelA21(pSrc, pDst, len);
  }
  return zovStsNoErr;
}

ZovStatus zovsArctan_32f(const Zov32f* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if constexpr (kLevel == Level::sse2) {
    WalkBackwards<SerialArctan>(pSrc, pDst, len);
  } else {
    RunBlocks<VectorArctan, CallersEnvironment>(pDst, len, ArrayOperand{pSrc});
  }
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

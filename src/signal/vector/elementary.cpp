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
template <class V>
ZOV_INLINE V ArctanTop(V t) {
  return ((t * 0.020972123400173 + 0.14563069811407553) * t + 0.16929808076717057) * t +
         1.1139321843993106e-09;
}
template <class V>
ZOV_INLINE V ArctanBottom(V t) {
  return ((t * 0.025449373192319054 + 0.2902606865063184) * t + 0.7416239113090943) * t +
         0.5078944990310164;
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
      const double shifter = x[i] < 0 ? -0x1p52 : 0x1p52;
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
      bottom[i] = ArctanBottom(v[i] * v[i]);
    }
    InvertTogether(bottom, inverse);
    for (int i = 0; i < 4; ++i) y[i] = Finish(x[i], v[i], ArctanTop(v[i] * v[i]) * inverse[i]);
  }

  static ZOV_INLINE float One(float x) {
    const double v = Steep(x) ? 1.0 / static_cast<double>(x) : static_cast<double>(x);
    return Finish(x, v, ArctanTop(v * v) / ArctanBottom(v * v));
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

// The arc tangent in vectors. A zero of either sign gives +0, by the difference of two equal zeros.
struct VectorArctan {
  static ZOV_INLINE VecD Half(VecD x) {
    const VecD one = VecD::Broadcast(1.0);
    const VecD sign = x & VecD::Broadcast(-0.0);
    const auto steep = (x ^ sign) >= one;
    const VecD v = Select(steep, one / x, x);
    const VecD t = v * v;
    const VecD::Native quotient = ArctanTop(t.v) / ArctanBottom(t.v);
    const VecD flat = v - v * VecD{quotient};
    return Select(steep, (VecD::Broadcast(kHalfPi) | sign) - flat, flat);
  }
  static ZOV_INLINE F Evaluate(I& special, F x) {
    special = special | (AbsBits(x) > Splat(kInfinityBits - 1));
    const W wide = ToDouble(x);
    return ToFloat(W{Half(wide.a), Half(wide.b)});
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

// The vectors of the maths kernels: F, a register of floats; I, its bits as integers; and W, the
// same lanes in double precision, in two registers.
#pragma once

#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

using F = VecF;
using I = Vec<std::int32_t, F::kLanes>;
using L = Vec<std::int64_t, VecD::kLanes>;

constexpr std::int32_t kAbsMask = 0x7FFFFFFF;
constexpr std::int32_t kSignMask = INT32_MIN;
constexpr std::int32_t kInfinityBits = 0x7F800000;

struct W {
  VecD a, b;

  using Lane = double;
  static ZOV_INLINE W Broadcast(double x) { return {VecD::Broadcast(x), VecD::Broadcast(x)}; }
  friend ZOV_INLINE W operator+(W x, W y) { return {x.a + y.a, x.b + y.b}; }
  friend ZOV_INLINE W operator-(W x, W y) { return {x.a - y.a, x.b - y.b}; }
  friend ZOV_INLINE W operator*(W x, W y) { return {x.a * y.a, x.b * y.b}; }
  friend ZOV_INLINE W operator/(W x, W y) { return {x.a / y.a, x.b / y.b}; }
};

// A constant in every lane.
ZOV_INLINE F Splat(float x) { return F::Broadcast(x); }
ZOV_INLINE I Splat(std::int32_t x) { return I::Broadcast(x); }
ZOV_INLINE W Splat(double x) { return W::Broadcast(x); }

// a * b + c, with one rounding where the level has fused instructions and two where it has not. The
// classes of accuracy hold either way.
ZOV_INLINE F Fma(F a, F b, F c) {
#if defined(__FMA__)
  return MulAdd(a, b, c);
#else
  return a * b + c;
#endif
}
ZOV_INLINE W Fma(W a, W b, W c) {
#if defined(__FMA__)
  return {MulAdd(a.a, b.a, c.a), MulAdd(a.b, b.b, c.b)};
#else
  return a * b + c;
#endif
}

// a * b - c
ZOV_INLINE F MulSub(F a, F b, F c) {
#if defined(__FMA__)
  return {_mm256_fmsub_ps(a.v, b.v, c.v)};
#else
  return a * b - c;
#endif
}
// c - a * b; a zero in c keeps its sign where the product is +0.
ZOV_INLINE F NegatedFma(F a, F b, F c) {
#if defined(__FMA__)
  return {_mm256_fnmadd_ps(a.v, b.v, c.v)};
#else
  return c - a * b;
#endif
}
ZOV_INLINE W NegatedFma(W a, W b, W c) {
#if defined(__FMA__)
  return {{_mm256_fnmadd_pd(a.a.v, b.a.v, c.a.v)}, {_mm256_fnmadd_pd(a.b.v, b.b.v, c.b.v)}};
#else
  return c - a * b;
#endif
}

// c[kFirst] + c[kFirst + kStep] x + c[kFirst + 2 kStep] x^2 + ...
template <int kFirst, int kStep, class V, int N>
ZOV_INLINE V Horner(V x, const typename V::Lane (&c)[N]) {
  constexpr int kLast = kFirst + (N - 1 - kFirst) / kStep * kStep;
  V p = Splat(c[kLast]);
  for (int k = kLast - kStep; k >= kFirst; k -= kStep) p = Fma(p, x, Splat(c[k]));
  return p;
}

// c[0] + c[1] x + c[2] x^2 + ... Longer ones in two chains side by side, or four: a processor waits
// for the results of one chain longer than it works on them.
template <class V, int N>
ZOV_INLINE V Polynomial(V x, const typename V::Lane (&c)[N]) {
  if constexpr (N < 5) {
    return Horner<0, 1>(x, c);
  } else if constexpr (N < 10) {
    const V square = x * x;
    return Fma(x, Horner<1, 2>(square, c), Horner<0, 2>(square, c));
  } else {
    const V square = x * x;
    const V fourth = square * square;
    return Fma(square, Fma(x, Horner<3, 4>(fourth, c), Horner<2, 4>(fourth, c)),
               Fma(x, Horner<1, 4>(fourth, c), Horner<0, 4>(fourth, c)));
  }
}

// c[0] + c[1] x + ... + c[N - 1] x^(N-1) + tail x^N
template <class V>
ZOV_INLINE V PolynomialThen(V x, const typename V::Lane (&c)[6], V tail) {
  const V square = x * x;
  const V fourth = square * square;
  const V sixth = fourth * square;
  const V low = Fma(square, Fma(x, Splat(c[3]), Splat(c[2])), Fma(x, Splat(c[1]), Splat(c[0])));
  const V high = Fma(fourth, Fma(x, Splat(c[5]), Splat(c[4])), low);
  return Fma(sixth, tail, high);
}

ZOV_INLINE I Bits(F x) { return As<std::int32_t>(x); }
ZOV_INLINE F FromBits(I x) { return As<float>(x); }
ZOV_INLINE I AbsBits(F x) { return Bits(x) & Splat(kAbsMask); }
ZOV_INLINE F Abs(F x) { return FromBits(AbsBits(x)); }
ZOV_INLINE F SignOf(F x) { return FromBits(Bits(x) & Splat(kSignMask)); }
template <int kCount>
ZOV_INLINE I ShiftLeft(I x) {
  return {x.v << kCount};
}
template <int kCount>
ZOV_INLINE I ShiftRight(I x) {
  return {x.v >> kCount};
}

ZOV_INLINE F ToFloat(I x) { return {__builtin_convertvector(x.v, F::Native)}; }

ZOV_INLINE W ToDouble(F x) {
#if defined(__AVX__)
  return {{_mm256_cvtps_pd(_mm256_castps256_ps128(x.v))},
          {_mm256_cvtps_pd(_mm256_extractf128_ps(x.v, 1))}};
#else
  return {{_mm_cvtps_pd(x.v)}, {_mm_cvtps_pd(_mm_movehl_ps(x.v, x.v))}};
#endif
}

ZOV_INLINE F ToFloat(W x) {
#if defined(__AVX__)
  return {_mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(x.a.v)),
                               _mm256_cvtpd_ps(x.b.v), 1)};
#else
  return {_mm_movelh_ps(_mm_cvtpd_ps(x.a.v), _mm_cvtpd_ps(x.b.v))};
#endif
}

// Bitwise choices in double precision: the masks come from compares of W.
struct WideMask {
  L a, b;
};
ZOV_INLINE WideMask operator>(W x, W y) { return {x.a > y.a, x.b > y.b}; }
ZOV_INLINE W Select(WideMask mask, W x, W y) {
  return {Select(mask.a, x.a, y.a), Select(mask.b, x.b, y.b)};
}
ZOV_INLINE W Sqrt(W x) { return {Sqrt(x.a), Sqrt(x.b)}; }
ZOV_INLINE W Min(W x, W y) { return {Min(x.a, y.a), Min(x.b, y.b)}; }
ZOV_INLINE W Max(W x, W y) { return {Max(x.a, y.a), Max(x.b, y.b)}; }
ZOV_INLINE W Abs(W x) {
  const VecD mask = As<double>(L::Broadcast(INT64_MAX));
  return {x.a & mask, x.b & mask};
}
ZOV_INLINE W SignOf(W x) {
  const VecD mask = As<double>(L::Broadcast(INT64_MIN));
  return {x.a & mask, x.b & mask};
}
ZOV_INLINE W Xor(W x, W y) { return {x.a ^ y.a, x.b ^ y.b}; }

// Lanes of a magnitude above the limit, and NaNs.
ZOV_INLINE I IsAbove(F magnitude, float limit) {
#if defined(__AVX__) && !defined(__AVX2__)
  // This level compares integers in halves of a register at best.
  return {(I::Native)_mm256_cmp_ps(magnitude.v, Splat(limit).v, _CMP_NLE_UQ)};
#else
  return Bits(magnitude) > Splat(__builtin_bit_cast(std::int32_t, limit));
#endif
}

// sign bit of mask ? a : b
ZOV_INLINE F SelectBySign(F mask, F a, F b) {
#if defined(__AVX2__)
  return {_mm256_blendv_ps(b.v, a.v, mask.v)};
#elif defined(__AVX__)
  // The compiler would make an integer comparison of the intrinsic, lane by lane.
  F y;
  asm("vblendvps %3, %2, %1, %0" : "=x"(y.v) : "x"(b.v), "x"(a.v), "x"(mask.v));
  return y;
#else
  return Select(ShiftRight<31>(Bits(mask)), a, b);
#endif
}
ZOV_INLINE W SelectBySign(W mask, W a, W b) {
#if defined(__AVX2__)
  return {{_mm256_blendv_pd(b.a.v, a.a.v, mask.a.v)}, {_mm256_blendv_pd(b.b.v, a.b.v, mask.b.v)}};
#elif defined(__AVX__)
  W y;
  asm("vblendvpd %3, %2, %1, %0" : "=x"(y.a.v) : "x"(b.a.v), "x"(a.a.v), "x"(mask.a.v));
  asm("vblendvpd %3, %2, %1, %0" : "=x"(y.b.v) : "x"(b.b.v), "x"(a.b.v), "x"(mask.b.v));
  return y;
#else
  // A set sign bit makes the compared number negative.
  const auto negative = [](VecD m) { return VecD::Zero() > (m | VecD::Broadcast(1.0)); };
  return {Select(negative(mask.a), a.a, b.a), Select(negative(mask.b), a.b, b.b)};
#endif
}

// Adding the shifter rounds to an integer, which is left in the low bits of the sum.
constexpr float kShifter = 0x1.8p23F;
constexpr double kWideShifter = 0x1.8p52;

// x * 2^n, n in the low bits of a sum with the shifter; the result is normal.
ZOV_INLINE F Scale(F x, F shifted) { return FromBits(Bits(x) + ShiftLeft<23>(Bits(shifted))); }
ZOV_INLINE VecD Scale(VecD x, VecD shifted) {
  return As<double>(As<std::int64_t>(x) + L{As<std::int64_t>(shifted).v << 52});
}
ZOV_INLINE W Scale(W x, W shifted) { return {Scale(x.a, shifted.a), Scale(x.b, shifted.b)}; }

// The sign bit that an odd integer in the low bits of a sum with the shifter gives.
ZOV_INLINE F OddSign(F shifted) { return FromBits(ShiftLeft<31>(Bits(shifted))); }
ZOV_INLINE W OddSign(W shifted) {
  return {As<double>(L{As<std::int64_t>(shifted.a).v << 63}),
          As<double>(L{As<std::int64_t>(shifted.b).v << 63})};
}

// 1 / x to about 22 bits, for x whose reciprocal is normal.
ZOV_INLINE F Reciprocal(F x) {
  const F y = ApproxReciprocal(x);
#if defined(__FMA__)
  return Fma(y, NegatedFma(x, y, Splat(1.0F)), y);
#else
  return y * (Splat(2.0F) - x * y);
#endif
}

// The square root of x to about 22 bits, for x that is zero or normal.
ZOV_INLINE F FastSqrt(F x) {
  const F y = ApproxReciprocalSqrt(Max(x, Splat(0x1p-126F)));
  const F root = x * y;
#if defined(__FMA__)
  return Fma(root * Splat(0.5F), NegatedFma(root, y, Splat(1.0F)), root);
#else
  return (root * Splat(0.5F)) * (Splat(3.0F) - root * y);
#endif
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

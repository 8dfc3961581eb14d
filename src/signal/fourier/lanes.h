// Complex numbers in vectors, in two layouts of one interface: Interleaved holds pairs as memory
// does, Split holds the real and the imaginary parts of a group in a vector each. The short
// transforms below are written once for both.
#pragma once

#include <cstddef>
#include <utility>

#include "core/simd.h"
#include "signal/fourier/sine_table.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

using Index = std::ptrdiff_t;

template <class T>
using Lanes = Vec<T, kFloatVectorBytes / static_cast<int>(sizeof(T))>;

// a * b + c and c - a * b. The transforms agree between levels only to rounding, so they are fused
// where the level has the instruction.
template <class V>
ZOV_INLINE V Fma(V a, V b, V c) {
#if defined(__FMA__)
  return MulAdd(a, b, c);
#else
  return a * b + c;
#endif
}
template <class V>
ZOV_INLINE V Fnma(V a, V b, V c) {
#if defined(__FMA__)
  return NegMulAdd(a, b, c);
#else
  return c - a * b;
#endif
}

// A loop that is written out: calls f(Constant<i>) for each i below N.
template <int I>
struct Constant {
  static constexpr int value = I;
};
template <class F, int... I>
ZOV_INLINE void UnrollOver(F f, std::integer_sequence<int, I...>) {
  (f(Constant<I>{}), ...);
}
template <int N, class F>
ZOV_INLINE void Unroll(F f) {
  UnrollOver(f, std::make_integer_sequence<int, N>{});
}
#define ZOV_UNROLLED(i) [&](auto i) __attribute__((always_inline))

// (im, re) of each pair.
template <class T, int N>
ZOV_INLINE Vec<T, N> SwapParts(Vec<T, N> a) {
  if constexpr (N == 2) return {__builtin_shufflevector(a.v, a.v, 1, 0)};
  if constexpr (N == 4) return {__builtin_shufflevector(a.v, a.v, 1, 0, 3, 2)};
  if constexpr (N == 8) return {__builtin_shufflevector(a.v, a.v, 1, 0, 3, 2, 5, 4, 7, 6)};
}

// (re, re) and (im, im) of each pair.
template <class T, int N>
ZOV_INLINE Vec<T, N> RealParts(Vec<T, N> a) {
#if defined(__AVX__)
  if constexpr (N == 4 && sizeof(T) == 8) return {_mm256_movedup_pd(a.v)};
#endif
  if constexpr (N == 2) return {__builtin_shufflevector(a.v, a.v, 0, 0)};
  if constexpr (N == 4) return {__builtin_shufflevector(a.v, a.v, 0, 0, 2, 2)};
  if constexpr (N == 8) return {__builtin_shufflevector(a.v, a.v, 0, 0, 2, 2, 4, 4, 6, 6)};
}
template <class T, int N>
ZOV_INLINE Vec<T, N> ImagParts(Vec<T, N> a) {
  if constexpr (N == 2) return {__builtin_shufflevector(a.v, a.v, 1, 1)};
  if constexpr (N == 4) return {__builtin_shufflevector(a.v, a.v, 1, 1, 3, 3)};
  if constexpr (N == 8) return {__builtin_shufflevector(a.v, a.v, 1, 1, 3, 3, 5, 5, 7, 7)};
}

// Sign bits of the imaginary parts.
template <class T, int N>
ZOV_INLINE Vec<T, N> ImagSigns() {
  typename Vec<T, N>::Native v{};
  for (int i = 1; i < N; i += 2) v[i] = static_cast<T>(-0.0);
  return {v};
}
template <class T, int N>
ZOV_INLINE Vec<T, N> Conjugate(Vec<T, N> a) {
  return a ^ ImagSigns<T, N>();
}

template <class T>
struct Interleaved {
  using V = Lanes<T>;
  static constexpr int kLanes = V::kLanes / 2;
  V v;

  static ZOV_INLINE Interleaved Load(const T* p) { return {V::Load(p)}; }
  ZOV_INLINE void Store(T* p) const { v.Store(p); }

  friend ZOV_INLINE Interleaved operator+(Interleaved a, Interleaved b) { return {a.v + b.v}; }
  friend ZOV_INLINE Interleaved operator-(Interleaved a, Interleaved b) { return {a.v - b.v}; }
  friend ZOV_INLINE Interleaved operator*(Interleaved a, T x) { return {a.v * V::Broadcast(x)}; }

  // -i a
  ZOV_INLINE Interleaved MinusI() const { return {Conjugate(SwapParts(v))}; }

  // a w for the factors w = (re, im) given as (re, re) and (-im, im); and a conj(w).
  ZOV_INLINE Interleaved Times(V re, V im) const { return {Fma(SwapParts(v), im, v * re)}; }
  ZOV_INLINE Interleaved TimesConj(V re, V im) const { return {Fnma(SwapParts(v), im, v * re)}; }
  template <bool kConj>
  ZOV_INLINE Interleaved TimesConstant(T re, T im) const {
    const V factor = V::Broadcast(kConj ? im : -im) ^ ImagSigns<T, V::kLanes>();
    return Times(V::Broadcast(re), factor);
  }
};

template <class T>
struct Split {
  using V = Lanes<T>;
  static constexpr int kLanes = V::kLanes;
  V re, im;

  static ZOV_INLINE Split Load(const T* p) { return {V::Load(p), V::Load(p + kLanes)}; }
  // The same, into registers: compilers would read both operands of a product twice, as memory
  // operands of its four multiplications, and the loops are bound by their loads.
  static ZOV_INLINE Split LoadOnce(const T* p) {
    Split a = Load(p);
    __asm__("" : "+x"(a.re.v), "+x"(a.im.v));
    return a;
  }
  ZOV_INLINE void Store(T* p) const {
    re.Store(p);
    im.Store(p + kLanes);
  }

  friend ZOV_INLINE Split operator+(Split a, Split b) { return {a.re + b.re, a.im + b.im}; }
  friend ZOV_INLINE Split operator-(Split a, Split b) { return {a.re - b.re, a.im - b.im}; }
  friend ZOV_INLINE Split operator*(Split a, T x) {
    const V factor = V::Broadcast(x);
    return {a.re * factor, a.im * factor};
  }
  friend ZOV_INLINE Split operator*(Split a, Split b) {
    return {Fnma(a.im, b.im, a.re * b.re), Fma(a.re, b.im, a.im * b.re)};
  }
};

// (re - re', im + im') of each pair, and (re + re', im - im').
template <class V>
ZOV_INLINE V SubAdd(V a, V b) {
#if defined(__SSE3__)
  if constexpr (V::kBytes == 16 && V::kLanes == 4) return {_mm_addsub_ps(a.v, b.v)};
  if constexpr (V::kBytes == 16 && V::kLanes == 2) return {_mm_addsub_pd(a.v, b.v)};
#if defined(__AVX__)
  if constexpr (V::kLanes == 8) return {_mm256_addsub_ps(a.v, b.v)};
  if constexpr (V::kBytes == 32 && V::kLanes == 4) return {_mm256_addsub_pd(a.v, b.v)};
#endif
#else
  using T = typename V::Lane;
  return a + (b ^ (ImagSigns<T, V::kLanes>() ^ V::Broadcast(static_cast<T>(-0.0))));
#endif
}
template <class V>
ZOV_INLINE V AddSub(V a, V b) {
#if defined(__FMA__)
  return MulAddSub(a, V::Broadcast(1), b);
#else
  return a + (b ^ ImagSigns<typename V::Lane, V::kLanes>());
#endif
}

// SubAdd(a * b, c) and AddSub(a * b, c).
template <class V>
ZOV_INLINE V FusedSubAdd(V a, V b, V c) {
#if defined(__FMA__)
  return MulSubAdd(a, b, c);
#else
  return SubAdd(a * b, c);
#endif
}
template <class V>
ZOV_INLINE V FusedAddSub(V a, V b, V c) {
#if defined(__FMA__)
  return MulAddSub(a, b, c);
#else
  return AddSub(a * b, c);
#endif
}

// plus = a - i b and minus = a + i b; the other way round for the inverse.
template <bool kInverse, class T>
ZOV_INLINE void QuarterTurn(Interleaved<T> a, Interleaved<T> b, Interleaved<T>& plus,
                            Interleaved<T>& minus) {
  const Lanes<T> swapped = SwapParts(b.v);
  const Interleaved<T> down = {AddSub(a.v, swapped)};
  const Interleaved<T> up = {SubAdd(a.v, swapped)};
  plus = kInverse ? up : down;
  minus = kInverse ? down : up;
}
template <bool kInverse, class T>
ZOV_INLINE void QuarterTurn(Split<T> a, Split<T> b, Split<T>& plus, Split<T>& minus) {
  const Split<T> down = {a.re + b.im, a.im - b.re};
  const Split<T> up = {a.re - b.im, a.im + b.re};
  plus = kInverse ? up : down;
  minus = kInverse ? down : up;
}

inline constexpr double kSqrtHalf = 0.70710678118654752440;

// a times the first power of exp(-2 pi i / 8) over kSqrtHalf, and times the third over -kSqrtHalf,
// conjugated for the inverse.
template <bool kInverse, class T>
ZOV_INLINE void EighthTurnUnscaled(Interleaved<T>& a) {
  const Lanes<T> swapped = SwapParts(a.v);
  a.v = kInverse ? SubAdd(a.v, swapped) : AddSub(a.v, swapped);
}
template <bool kInverse, class T>
ZOV_INLINE void ThreeEighthsTurnUnscaled(Interleaved<T>& a) {
  EighthTurnUnscaled<!kInverse>(a);
}
template <bool kInverse, class T>
ZOV_INLINE void EighthTurnUnscaled(Split<T>& a) {
  static_assert(!kInverse, "the split layout runs the inverse with its parts exchanged");
  a = {a.re + a.im, a.im - a.re};
}
template <bool kInverse, class T>
ZOV_INLINE void ThreeEighthsTurnUnscaled(Split<T>& a) {
  static_assert(!kInverse, "the split layout runs the inverse with its parts exchanged");
  a = {a.re - a.im, a.re + a.im};
}
template <bool kInverse, class T>
ZOV_INLINE void EighthTurn(Interleaved<T>& a) {
  EighthTurnUnscaled<kInverse>(a);
  a = a * static_cast<T>(kSqrtHalf);
}
template <bool kInverse, class T>
ZOV_INLINE void ThreeEighthsTurn(Interleaved<T>& a) {
  ThreeEighthsTurnUnscaled<kInverse>(a);
  a = a * static_cast<T>(-kSqrtHalf);
}

// plus = a + b x and minus = a - b x.
template <class T>
ZOV_INLINE void PlusMinusScaled(Interleaved<T> a, Interleaved<T> b, double x, Interleaved<T>& plus,
                                Interleaved<T>& minus) {
  const Lanes<T> factor = Lanes<T>::Broadcast(static_cast<T>(x));
  plus.v = Fma(b.v, factor, a.v);
  minus.v = Fnma(b.v, factor, a.v);
}
template <class T>
ZOV_INLINE void PlusMinusScaled(Split<T> a, Split<T> b, double x, Split<T>& plus, Split<T>& minus) {
  const Lanes<T> factor = Lanes<T>::Broadcast(static_cast<T>(x));
  plus = {Fma(b.re, factor, a.re), Fma(b.im, factor, a.im)};
  minus = {Fnma(b.re, factor, a.re), Fnma(b.im, factor, a.im)};
}

// Transforms of 4 and 8 values, natural order in and out.
template <bool kInverse, class C>
ZOV_INLINE void Transform4(C& a0, C& a1, C& a2, C& a3) {
  const C s0 = a0 + a2;
  const C d0 = a0 - a2;
  const C s1 = a1 + a3;
  const C d1 = a1 - a3;
  a0 = s0 + s1;
  a2 = s0 - s1;
  QuarterTurn<kInverse>(d0, d1, a1, a3);
}

template <bool kInverse, class C>
ZOV_INLINE void Transform8(C& a0, C& a1, C& a2, C& a3, C& a4, C& a5, C& a6, C& a7) {
  Transform4<kInverse>(a0, a2, a4, a6);
  Transform4<kInverse>(a1, a3, a5, a7);
  EighthTurnUnscaled<kInverse>(a3);
  ThreeEighthsTurnUnscaled<kInverse>(a7);
  const C e0 = a0, e1 = a2, e2 = a4, e3 = a6;
  const C o0 = a1, o1 = a3, o2 = a5, o3 = a7;
  a0 = e0 + o0;
  a4 = e0 - o0;
  PlusMinusScaled(e1, o1, kSqrtHalf, a1, a5);
  QuarterTurn<kInverse>(e2, o2, a2, a6);
  PlusMinusScaled(e3, o3, -kSqrtHalf, a3, a7);
}

// a times exp(-2 pi i k / n), conjugated for the inverse.
template <int k, int n, bool kInverse, class T>
ZOV_INLINE Interleaved<T> Turn(Interleaved<T> a) {
  constexpr T kRe = static_cast<T>(CosineOfTurn(k, n));
  constexpr T kIm = static_cast<T>(-SineOfTurn(k, n));
  return a.template TimesConstant<kInverse>(kRe, kIm);
}

// A transform of 16 values in two halves, x[n] in, X[k] at x[k / 4 + k % 4 * 4]: the first, for
// each column n < 4 on its own, transforms x[n], x[n + 4], ... and turns the results, but for
// x[10], whose quarter turn is left to the second half.
template <int n, bool kInverse, class T>
ZOV_INLINE void Transform16Column(Interleaved<T> (&x)[16]) {
  Transform4<kInverse>(x[n], x[n + 4], x[n + 8], x[n + 12]);
  if constexpr (n == 1) {
    x[5] = Turn<1, 16, kInverse>(x[5]);
    EighthTurn<kInverse>(x[9]);
    x[13] = Turn<3, 16, kInverse>(x[13]);
  }
  if constexpr (n == 2) {
    EighthTurn<kInverse>(x[6]);
    ThreeEighthsTurn<kInverse>(x[14]);
  }
  if constexpr (n == 3) {
    x[7] = Turn<3, 16, kInverse>(x[7]);
    ThreeEighthsTurn<kInverse>(x[11]);
    x[15] = Turn<9, 16, kInverse>(x[15]);
  }
}
template <bool kInverse, class T>
ZOV_INLINE void Transform16Rows(Interleaved<T> (&x)[16]) {
  using C = Interleaved<T>;
  Transform4<kInverse>(x[0], x[1], x[2], x[3]);
  Transform4<kInverse>(x[4], x[5], x[6], x[7]);
  C s0, d0;
  QuarterTurn<kInverse>(x[8], x[10], s0, d0);
  const C s1 = x[9] + x[11];
  const C d1 = x[9] - x[11];
  x[8] = s0 + s1;
  x[10] = s0 - s1;
  QuarterTurn<kInverse>(d0, d1, x[9], x[11]);
  Transform4<kInverse>(x[12], x[13], x[14], x[15]);
}

// Transposes a square of complex values: vector j holds element j of each of the lanes, and holds
// the elements of lane j afterwards.
template <class T>
ZOV_INLINE void TransposeSquare(Interleaved<T>* x) {
  using V = Lanes<T>;
  if constexpr (V::kBytes == 16 && sizeof(T) == 4) {
    const V a = x[0].v;
    const V b = x[1].v;
    x[0].v = {__builtin_shufflevector(a.v, b.v, 0, 1, 4, 5)};
    x[1].v = {__builtin_shufflevector(a.v, b.v, 2, 3, 6, 7)};
  }
#if defined(__AVX__)
  if constexpr (V::kBytes == 32 && sizeof(T) == 8) {
    const __m256d a = x[0].v.v;
    const __m256d b = x[1].v.v;
    x[0].v.v = _mm256_permute2f128_pd(a, b, 0x20);
    x[1].v.v = _mm256_permute2f128_pd(a, b, 0x31);
  }
  if constexpr (V::kBytes == 32 && sizeof(T) == 4) {
    const __m256d a = (__m256d)x[0].v.v;
    const __m256d b = (__m256d)x[1].v.v;
    const __m256d c = (__m256d)x[2].v.v;
    const __m256d d = (__m256d)x[3].v.v;
    const __m256d ab0 = _mm256_unpacklo_pd(a, b);  // elements 0 and 2 of the pairs
    const __m256d ab1 = _mm256_unpackhi_pd(a, b);
    const __m256d cd0 = _mm256_unpacklo_pd(c, d);
    const __m256d cd1 = _mm256_unpackhi_pd(c, d);
    x[0].v.v = (typename V::Native)_mm256_permute2f128_pd(ab0, cd0, 0x20);
    x[1].v.v = (typename V::Native)_mm256_permute2f128_pd(ab1, cd1, 0x20);
    x[2].v.v = (typename V::Native)_mm256_permute2f128_pd(ab0, cd0, 0x31);
    x[3].v.v = (typename V::Native)_mm256_permute2f128_pd(ab1, cd1, 0x31);
  }
#endif
}

// Two interleaved vectors of neighbours as one split group and back. The lanes of a group stand in
// the order that shuffles within 16 bytes give; the twiddle tables have the same order.
template <class T>
ZOV_INLINE Split<T> ToSplit(Interleaved<T> a, Interleaved<T> b) {
  constexpr int N = Lanes<T>::kLanes;
  const auto x = a.v.v;
  const auto y = b.v.v;
  if constexpr (N == 2) {
    return {{__builtin_shufflevector(x, y, 0, 2)}, {__builtin_shufflevector(x, y, 1, 3)}};
  } else if constexpr (N == 4 && sizeof(T) == 4) {
    return {{__builtin_shufflevector(x, y, 0, 2, 4, 6)},
            {__builtin_shufflevector(x, y, 1, 3, 5, 7)}};
  } else if constexpr (N == 4) {
    return {{__builtin_shufflevector(x, y, 0, 4, 2, 6)},
            {__builtin_shufflevector(x, y, 1, 5, 3, 7)}};
  } else {
    return {{__builtin_shufflevector(x, y, 0, 2, 8, 10, 4, 6, 12, 14)},
            {__builtin_shufflevector(x, y, 1, 3, 9, 11, 5, 7, 13, 15)}};
  }
}
template <class T>
ZOV_INLINE void StoreInterleaved(Split<T> a, T* p) {
  constexpr int N = Lanes<T>::kLanes;
  using V = Lanes<T>;
  const auto x = a.re.v;
  const auto y = a.im.v;
  V first, second;
  if constexpr (N == 2) {
    first.v = __builtin_shufflevector(x, y, 0, 2);
    second.v = __builtin_shufflevector(x, y, 1, 3);
  } else if constexpr (N == 4 && sizeof(T) == 4) {
    first.v = __builtin_shufflevector(x, y, 0, 4, 1, 5);
    second.v = __builtin_shufflevector(x, y, 2, 6, 3, 7);
  } else if constexpr (N == 4) {
    first.v = __builtin_shufflevector(x, y, 0, 4, 2, 6);
    second.v = __builtin_shufflevector(x, y, 1, 5, 3, 7);
  } else {
    first.v = __builtin_shufflevector(x, y, 0, 8, 1, 9, 4, 12, 5, 13);
    second.v = __builtin_shufflevector(x, y, 2, 10, 3, 11, 6, 14, 7, 15);
  }
  first.Store(p);
  second.Store(p + N);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

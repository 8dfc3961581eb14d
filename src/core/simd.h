// Vectors of the level being built. Vec<T, N> holds N lanes of T; VecF and VecD fill the widest
// register that the level has for floating point, VecI<T> the widest for integers. Arithmetic,
// comparisons and bit operations are the compiler's own; what has a hardware meaning of its own
// (operand order of min and max, approximations, masks) is a named function.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <type_traits>

#include "core/level.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

inline constexpr int kFloatVectorBytes = kLevel >= Level::avx ? 32 : 16;
inline constexpr int kIntVectorBytes = kLevel >= Level::avx2 ? 32 : 16;

template <int kLaneBytes>
struct MaskLane;
template <>
struct MaskLane<1> {
  using Type = std::int8_t;
};
template <>
struct MaskLane<2> {
  using Type = std::int16_t;
};
template <>
struct MaskLane<4> {
  using Type = std::int32_t;
};
template <>
struct MaskLane<8> {
  using Type = std::int64_t;
};

// Integers wrap, so their sums are formed without a sign.
template <class T, bool kIsInteger = std::is_integral_v<T>>
struct SumLane {
  using Type = T;
};
template <class T>
struct SumLane<T, true> {
  using Type = std::make_unsigned_t<T>;
};

template <class T, int N>
struct Vec {
  using Lane = T;
  static constexpr int kLanes = N;
  static constexpr int kBytes = N * static_cast<int>(sizeof(T));
  using Mask = Vec<typename MaskLane<sizeof(T)>::Type, N>;

  typedef T Native __attribute__((vector_size(N * sizeof(T))));
  typedef T Anywhere __attribute__((vector_size(N * sizeof(T)), aligned(1), may_alias));
  typedef T Aligned __attribute__((vector_size(N * sizeof(T)), may_alias));

  typedef typename SumLane<T>::Type SumNative __attribute__((vector_size(N * sizeof(T))));

  Native v;

  static ZOV_INLINE Vec Load(const void* p) { return {*static_cast<const Anywhere*>(p)}; }
  static ZOV_INLINE Vec LoadAligned(const void* p) { return {*static_cast<const Aligned*>(p)}; }
  // No bit of x changes.
  static ZOV_INLINE Vec Broadcast(T x) {
    if constexpr (std::is_same_v<T, float>) {
#if defined(__AVX__)
      if constexpr (N == 8) return {(Native)_mm256_set1_ps(x)};
#endif
      if constexpr (N == 4) return {(Native)_mm_set1_ps(x)};
    } else if constexpr (std::is_same_v<T, double>) {
#if defined(__AVX__)
      if constexpr (N == 4) return {(Native)_mm256_set1_pd(x)};
#endif
      if constexpr (N == 2) return {(Native)_mm_set1_pd(x)};
    } else {
      return {x | Native{}};
    }
  }
  static ZOV_INLINE Vec Zero() { return {Native{}}; }

  ZOV_INLINE void Store(void* p) const { *static_cast<Anywhere*>(p) = v; }
  ZOV_INLINE void StoreAligned(void* p) const { *static_cast<Aligned*>(p) = v; }

  // Bypasses the cache; the address is aligned to the vector.
  ZOV_INLINE void Stream(void* p) const {
#if defined(__AVX__)
    if constexpr (kBytes == 32) {
      _mm256_stream_si256(static_cast<__m256i*>(p), (__m256i)v);
      return;
    }
#endif
    if constexpr (kBytes == 16) _mm_stream_si128(static_cast<__m128i*>(p), (__m128i)v);
  }

  friend ZOV_INLINE Vec operator+(Vec a, Vec b) {
    return {(Native)((SumNative)a.v + (SumNative)b.v)};
  }
  friend ZOV_INLINE Vec operator-(Vec a, Vec b) {
    return {(Native)((SumNative)a.v - (SumNative)b.v)};
  }
  friend ZOV_INLINE Vec operator*(Vec a, Vec b) {
    return {(Native)((SumNative)a.v * (SumNative)b.v)};
  }
  friend ZOV_INLINE Vec operator/(Vec a, Vec b) { return {a.v / b.v}; }
  friend ZOV_INLINE Vec operator&(Vec a, Vec b) { return FromBits(a.Bits() & b.Bits()); }
  friend ZOV_INLINE Vec operator|(Vec a, Vec b) { return FromBits(a.Bits() | b.Bits()); }
  friend ZOV_INLINE Vec operator^(Vec a, Vec b) { return FromBits(a.Bits() ^ b.Bits()); }
  friend ZOV_INLINE Vec operator~(Vec a) { return FromBits(~a.Bits()); }

  // Lane masks: all ones where the relation holds.
  friend ZOV_INLINE Mask operator<(Vec a, Vec b) {
    return Mask{(typename Mask::Native)(a.v < b.v)};
  }
  friend ZOV_INLINE Mask operator>(Vec a, Vec b) {
    return Mask{(typename Mask::Native)(a.v > b.v)};
  }
  friend ZOV_INLINE Mask operator<=(Vec a, Vec b) {
    return Mask{(typename Mask::Native)(a.v <= b.v)};
  }
  friend ZOV_INLINE Mask operator>=(Vec a, Vec b) {
    return Mask{(typename Mask::Native)(a.v >= b.v)};
  }
  friend ZOV_INLINE Mask operator==(Vec a, Vec b) {
    return Mask{(typename Mask::Native)(a.v == b.v)};
  }

  typedef std::int64_t BitsNative __attribute__((vector_size(N * sizeof(T))));
  ZOV_INLINE BitsNative Bits() const { return (BitsNative)v; }
  static ZOV_INLINE Vec FromBits(BitsNative bits) { return {(Native)bits}; }
};

using VecF = Vec<float, kFloatVectorBytes / 4>;
using VecD = Vec<double, kFloatVectorBytes / 8>;
template <class T>
using VecI = Vec<T, kIntVectorBytes / static_cast<int>(sizeof(T))>;
// The widest vector of the level for an element type.
template <class T>
struct WidestOf {
  using Type = VecI<T>;
};
template <>
struct WidestOf<float> {
  using Type = VecF;
};
template <>
struct WidestOf<double> {
  using Type = VecD;
};
template <class T>
using Widest = typename WidestOf<T>::Type;
template <class T>
using Vec128 = Vec<T, 16 / static_cast<int>(sizeof(T))>;

// The same bits as lanes of another type.
template <class To, class T, int N>
ZOV_INLINE Vec<To, N* static_cast<int>(sizeof(T)) / static_cast<int>(sizeof(To))> As(Vec<T, N> a) {
  using Result = Vec<To, N* static_cast<int>(sizeof(T)) / static_cast<int>(sizeof(To))>;
  return {(typename Result::Native)a.v};
}

// mask ? a : b, lane by lane; the lanes of the mask are all ones or all zeros.
template <class T, int N>
ZOV_INLINE Vec<T, N> Select(typename Vec<T, N>::Mask mask, Vec<T, N> a, Vec<T, N> b) {
  return {mask.v ? a.v : b.v};
}

// b & ~a
template <class T, int N>
ZOV_INLINE Vec<T, N> AndNot(Vec<T, N> a, Vec<T, N> b) {
  return Vec<T, N>::FromBits(~a.Bits() & b.Bits());
}

// a < b ? a : b and a > b ? a : b: the second operand when either is a NaN or both are zero.
ZOV_INLINE Vec<float, 4> Min(Vec<float, 4> a, Vec<float, 4> b) { return {_mm_min_ps(a.v, b.v)}; }
ZOV_INLINE Vec<float, 4> Max(Vec<float, 4> a, Vec<float, 4> b) { return {_mm_max_ps(a.v, b.v)}; }
ZOV_INLINE Vec<double, 2> Min(Vec<double, 2> a, Vec<double, 2> b) { return {_mm_min_pd(a.v, b.v)}; }
ZOV_INLINE Vec<double, 2> Max(Vec<double, 2> a, Vec<double, 2> b) { return {_mm_max_pd(a.v, b.v)}; }

// Of integers, where the order of operands does not matter.
template <class T, int N>
ZOV_INLINE Vec<T, N> Min(Vec<T, N> a, Vec<T, N> b) {
  static_assert(static_cast<T>(0.5) == 0, "floating point has the forms above");
  return {a.v < b.v ? a.v : b.v};
}
template <class T, int N>
ZOV_INLINE Vec<T, N> Max(Vec<T, N> a, Vec<T, N> b) {
  static_assert(static_cast<T>(0.5) == 0, "floating point has the forms above");
  return {a.v > b.v ? a.v : b.v};
}

#if !defined(__SSE4_1__)
// Without an instruction of their own, unsigned 16-bit lanes go through the saturated difference.
ZOV_INLINE Vec<std::uint16_t, 8> SaturatedDifference(Vec<std::uint16_t, 8> a,
                                                     Vec<std::uint16_t, 8> b) {
  return {(Vec<std::uint16_t, 8>::Native)_mm_subs_epu16((__m128i)a.v, (__m128i)b.v)};
}
ZOV_INLINE Vec<std::uint16_t, 8> Min(Vec<std::uint16_t, 8> a, Vec<std::uint16_t, 8> b) {
  return a - SaturatedDifference(a, b);
}
ZOV_INLINE Vec<std::uint16_t, 8> Max(Vec<std::uint16_t, 8> a, Vec<std::uint16_t, 8> b) {
  return b + SaturatedDifference(a, b);
}
#endif

ZOV_INLINE Vec<float, 4> Sqrt(Vec<float, 4> a) { return {_mm_sqrt_ps(a.v)}; }
ZOV_INLINE Vec<double, 2> Sqrt(Vec<double, 2> a) { return {_mm_sqrt_pd(a.v)}; }

// The processor's approximations, about 12 bits.
ZOV_INLINE Vec<float, 4> ApproxReciprocal(Vec<float, 4> a) { return {_mm_rcp_ps(a.v)}; }
ZOV_INLINE Vec<float, 4> ApproxReciprocalSqrt(Vec<float, 4> a) { return {_mm_rsqrt_ps(a.v)}; }

// One bit for each lane: its sign bit.
ZOV_INLINE unsigned MoveMask(Vec<float, 4> a) {
  return static_cast<unsigned>(_mm_movemask_ps(a.v));
}
ZOV_INLINE unsigned MoveMask(Vec<double, 2> a) {
  return static_cast<unsigned>(_mm_movemask_pd(a.v));
}
ZOV_INLINE unsigned MoveMask(Vec<std::int8_t, 16> a) {
  return static_cast<unsigned>(_mm_movemask_epi8((__m128i)a.v));
}
ZOV_INLINE unsigned MoveMask(Vec<std::int32_t, 4> a) {
  return static_cast<unsigned>(_mm_movemask_ps((__m128)a.v));
}
ZOV_INLINE unsigned MoveMask(Vec<std::int64_t, 2> a) {
  return static_cast<unsigned>(_mm_movemask_pd((__m128d)a.v));
}

#if defined(__AVX__)
ZOV_INLINE Vec<float, 8> Min(Vec<float, 8> a, Vec<float, 8> b) { return {_mm256_min_ps(a.v, b.v)}; }
ZOV_INLINE Vec<float, 8> Max(Vec<float, 8> a, Vec<float, 8> b) { return {_mm256_max_ps(a.v, b.v)}; }
ZOV_INLINE Vec<double, 4> Min(Vec<double, 4> a, Vec<double, 4> b) {
  return {_mm256_min_pd(a.v, b.v)};
}
ZOV_INLINE Vec<double, 4> Max(Vec<double, 4> a, Vec<double, 4> b) {
  return {_mm256_max_pd(a.v, b.v)};
}
ZOV_INLINE Vec<float, 8> Sqrt(Vec<float, 8> a) { return {_mm256_sqrt_ps(a.v)}; }
ZOV_INLINE Vec<double, 4> Sqrt(Vec<double, 4> a) { return {_mm256_sqrt_pd(a.v)}; }
ZOV_INLINE Vec<float, 8> ApproxReciprocal(Vec<float, 8> a) { return {_mm256_rcp_ps(a.v)}; }
ZOV_INLINE Vec<float, 8> ApproxReciprocalSqrt(Vec<float, 8> a) { return {_mm256_rsqrt_ps(a.v)}; }
ZOV_INLINE unsigned MoveMask(Vec<float, 8> a) {
  return static_cast<unsigned>(_mm256_movemask_ps(a.v));
}
ZOV_INLINE unsigned MoveMask(Vec<double, 4> a) {
  return static_cast<unsigned>(_mm256_movemask_pd(a.v));
}
ZOV_INLINE unsigned MoveMask(Vec<std::int32_t, 8> a) {
  return static_cast<unsigned>(_mm256_movemask_ps((__m256)a.v));
}
ZOV_INLINE unsigned MoveMask(Vec<std::int64_t, 4> a) {
  return static_cast<unsigned>(_mm256_movemask_pd((__m256d)a.v));
}
#endif

#if defined(__AVX2__)
ZOV_INLINE unsigned MoveMask(Vec<std::int8_t, 32> a) {
  return static_cast<unsigned>(_mm256_movemask_epi8((__m256i)a.v));
}
#endif

#if defined(__FMA__)
// a * b + c with one rounding; for routines that are defined with it.
ZOV_INLINE Vec<float, 4> MulAdd(Vec<float, 4> a, Vec<float, 4> b, Vec<float, 4> c) {
  return {_mm_fmadd_ps(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<float, 8> MulAdd(Vec<float, 8> a, Vec<float, 8> b, Vec<float, 8> c) {
  return {_mm256_fmadd_ps(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<double, 2> MulAdd(Vec<double, 2> a, Vec<double, 2> b, Vec<double, 2> c) {
  return {_mm_fmadd_pd(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<double, 4> MulAdd(Vec<double, 4> a, Vec<double, 4> b, Vec<double, 4> c) {
  return {_mm256_fmadd_pd(a.v, b.v, c.v)};
}
// a * b with the even lanes of c subtracted and the odd ones added, and the other way round.
ZOV_INLINE Vec<float, 8> MulSubAdd(Vec<float, 8> a, Vec<float, 8> b, Vec<float, 8> c) {
  return {_mm256_fmaddsub_ps(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<double, 4> MulSubAdd(Vec<double, 4> a, Vec<double, 4> b, Vec<double, 4> c) {
  return {_mm256_fmaddsub_pd(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<float, 8> MulAddSub(Vec<float, 8> a, Vec<float, 8> b, Vec<float, 8> c) {
  return {_mm256_fmsubadd_ps(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<double, 2> MulAddSub(Vec<double, 2> a, Vec<double, 2> b, Vec<double, 2> c) {
  return {_mm_fmsubadd_pd(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<double, 4> MulAddSub(Vec<double, 4> a, Vec<double, 4> b, Vec<double, 4> c) {
  return {_mm256_fmsubadd_pd(a.v, b.v, c.v)};
}
// c - a * b with one rounding.
ZOV_INLINE Vec<float, 8> NegMulAdd(Vec<float, 8> a, Vec<float, 8> b, Vec<float, 8> c) {
  return {_mm256_fnmadd_ps(a.v, b.v, c.v)};
}
ZOV_INLINE Vec<double, 4> NegMulAdd(Vec<double, 4> a, Vec<double, 4> b, Vec<double, 4> c) {
  return {_mm256_fnmadd_pd(a.v, b.v, c.v)};
}
#endif

// One vector of doubles from as many elements.
ZOV_INLINE VecD LoadAsDouble(const double* p) { return VecD::Load(p); }
ZOV_INLINE VecD LoadAsDouble(const float* p) {
#if defined(__AVX__)
  return {_mm256_cvtps_pd(_mm_loadu_ps(p))};
#else
  return {_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))))};
#endif
}

// The sum of the lanes, from the first to the last.
template <class T, int N>
ZOV_INLINE T AddLanes(Vec<T, N> x) {
  T sum = x.v[0];
  for (int i = 1; i < N; ++i) sum = static_cast<T>(sum + x.v[i]);
  return sum;
}

// A vector that covers fewer elements than it has lanes: a piece of kPiece bytes at `first` and
// one at `last`, which may overlap in memory, repeated until the vector is full. So every lane
// holds a real element, whatever the operation makes of it.
template <class V, int kPiece>
ZOV_INLINE V LoadEnds(const void* first, const void* last) {
  static_assert(V::kBytes >= 16 && kPiece * 2 <= V::kBytes);
#if defined(__AVX__)
  if constexpr (kPiece == 16) {
    const __m256i low = _mm256_castsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(first)));
    const __m128i high = _mm_loadu_si128(static_cast<const __m128i*>(last));
    return {(typename V::Native)_mm256_insertf128_si256(low, high, 1)};
  } else
#endif
  {
    __m128i x;
    if constexpr (kPiece == 8) {
      const __m128d low = (__m128d)_mm_loadl_epi64(static_cast<const __m128i*>(first));
      x = (__m128i)_mm_loadh_pd(low, static_cast<const double*>(last));
    } else if constexpr (kPiece == 4) {
      x = _mm_unpacklo_epi32(_mm_loadu_si32(first), _mm_loadu_si32(last));
      x = _mm_unpacklo_epi64(x, x);
    } else {
      static_assert(kPiece == 2);
      x = _mm_unpacklo_epi16(_mm_loadu_si16(first), _mm_loadu_si16(last));
      x = _mm_shuffle_epi32(x, 0);
    }
#if defined(__AVX__)
    if constexpr (V::kBytes == 32) {
      return {(typename V::Native)_mm256_insertf128_si256(_mm256_castsi128_si256(x), x, 1)};
    }
#endif
    if constexpr (V::kBytes == 16) return {(typename V::Native)x};
  }
}

// Stores what LoadEnds of the same shape loaded.
template <int kPiece, class V>
ZOV_INLINE void StoreEnds(V v, void* first, void* last) {
  static_assert(V::kBytes >= 16 && kPiece * 2 <= V::kBytes);
  __m128i x;
#if defined(__AVX__)
  if constexpr (V::kBytes == 32) {
    x = _mm256_castsi256_si128((__m256i)v.v);
    if constexpr (kPiece == 16) {
      _mm_storeu_si128(static_cast<__m128i*>(first), x);
      _mm_storeu_si128(static_cast<__m128i*>(last), _mm256_extractf128_si256((__m256i)v.v, 1));
    }
  } else
#endif
  {
    x = (__m128i)v.v;
  }
  if constexpr (kPiece == 8) {
    _mm_storel_epi64(static_cast<__m128i*>(first), x);
    _mm_storeh_pd(static_cast<double*>(last), (__m128d)x);
  } else if constexpr (kPiece == 4) {
    _mm_storeu_si32(first, x);
    _mm_storeu_si32(last, _mm_srli_epi64(x, 32));
  } else if constexpr (kPiece == 2) {
    _mm_storeu_si16(first, x);
    _mm_storeu_si16(last, _mm_srli_epi32(x, 16));
  }
}

// Bytes from p up to the next multiple of kAlignment.
template <int kAlignment>
ZOV_INLINE std::uintptr_t BytesToAlign(const void* p) {
  return (0 - reinterpret_cast<std::uintptr_t>(p)) & (kAlignment - 1);
}

template <int kAlignment>
ZOV_INLINE bool IsAligned(const void* p) {
  return (reinterpret_cast<std::uintptr_t>(p) & (kAlignment - 1)) == 0;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Magnitudes of complex 16-bit integers, scaled, rounded to nearest with ties to even, saturated.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

using Int16 = VecI<std::int16_t>;
using Int32 = VecI<std::int32_t>;
using Uint32 = VecI<std::uint32_t>;

// a[0] b[0] + a[1] b[1] for each pair of 16-bit lanes.
ZOV_INLINE Int32 PairProducts(Int16 a, Int16 b) {
#if defined(__AVX2__)
  return {(Int32::Native)_mm256_madd_epi16((__m256i)a.v, (__m256i)b.v)};
#else
  return {(Int32::Native)_mm_madd_epi16((__m128i)a.v, (__m128i)b.v)};
#endif
}

// x y of 32-bit lanes that hold 0 to 32767.
ZOV_INLINE Int32 ShortProduct(Int32 x, Int32 y) {
  return PairProducts(As<std::int16_t>(x), As<std::int16_t>(y));
}

// All lanes of both, saturated to 16 bits.
ZOV_INLINE Int16 Narrow(Int32 low, Int32 high) {
#if defined(__AVX2__)
  const __m256i halves = _mm256_packs_epi32((__m256i)low.v, (__m256i)high.v);
  return {(Int16::Native)_mm256_permute4x64_epi64(halves, 0xD8)};
#else
  return {(Int16::Native)_mm_packs_epi32((__m128i)low.v, (__m128i)high.v)};
#endif
}

ZOV_INLINE Int32 ShiftLeft(Int32 x, int count) { return {x.v << count}; }
ZOV_INLINE Int32 ShiftRight(Int32 x, int count) { return {x.v >> count}; }

// The truncated square root of m, 0 to 2^31. It may be one too large just below a square.
ZOV_INLINE Int32 Root(Int32 m) {
#if defined(__AVX2__)
  // 2^31 is read as negative.
  const __m256 x = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), _mm256_cvtepi32_ps((__m256i)m.v));
  return {(Int32::Native)_mm256_cvttps_epi32(_mm256_sqrt_ps(x))};
#else
  const __m128 x = _mm_andnot_ps(_mm_set1_ps(-0.0F), _mm_cvtepi32_ps((__m128i)m.v));
  return {(Int32::Native)_mm_cvttps_epi32(_mm_sqrt_ps(x))};
#endif
}

// Unsigned numbers in the order of signed ones.
constexpr std::uint32_t kBias = 0x80000000;
ZOV_INLINE Int32 Biased(Int32 x) {
  return As<std::int32_t>(As<std::uint32_t>(x) + Uint32::Broadcast(kBias));
}
ZOV_INLINE Int32 Biased(std::uint32_t x) {
  return Int32::Broadcast(static_cast<std::int32_t>(x + kBias));
}

// Applies Derived::Lanes to re^2 + im^2 of each element, at most 2^31 as an unsigned number.
template <class Derived>
struct OfSquares {
  ZOV_INLINE Int16 operator()(Interleaved<std::int16_t, Int16::kLanes> z) const {
    const Derived& self = static_cast<const Derived&>(*this);
    return Narrow(self.Lanes(PairProducts(z.low, z.low)), self.Lanes(PairProducts(z.high, z.high)));
  }
};

// Scale factors 1 to 15. With q = t >> scale, the value half way to q + 1 is the root of
// h^2 = (2q + 1)^2 4^(scale-1); above it, or on it when q is odd, the result is q + 1.
struct ScaledDown : OfSquares<ScaledDown> {
  int scale;
  explicit ZOV_INLINE ScaledDown(int factor) : scale(factor) {}

  ZOV_INLINE Int32 Lanes(Int32 m) const {
    const Int32 one = Int32::Broadcast(1);
    const Int32 q = ShiftRight(Root(m), scale);
    const Int32 halfWay = ShiftLeft(ShortProduct(q, q + one), 2 * scale);
    const Int32 square = Biased(halfWay + Int32::Broadcast(1 << (2 * scale - 2)));
    return q - (Biased(m) + (q & one) > square);
  }
};

// Scale factor 0, for numbers that saturate at 32768 and above.
ZOV_INLINE Int32 RoundedRoot(Int32 m) {
  const Int32 t = Root(m);
  return t - (m > ShortProduct(t, t) + t);
}
struct Unscaled : OfSquares<Unscaled> {
  ZOV_INLINE Int32 Lanes(Int32 m) const { return RoundedRoot(m); }
};

// Scale factors -1 to -14: the root of m 2^doublings, or what still gives 32767.
struct ScaledUp : OfSquares<ScaledUp> {
  static constexpr std::int32_t kLargest = 0x3FFF0000;
  int doublings;
  explicit ZOV_INLINE ScaledUp(int factor) : doublings(-2 * factor) {}

  ZOV_INLINE Int32 Lanes(Int32 m) const {
    const Int32 tooLarge = Biased(m) > Biased(static_cast<std::uint32_t>(kLargest >> doublings));
    return RoundedRoot(Select(tooLarge, Int32::Broadcast(kLargest), ShiftLeft(m, doublings)));
  }
};

// Scale factor 16: the root is at most 46341, so only one half rounds.
struct AboveHalf : OfSquares<AboveHalf> {
  ZOV_INLINE Int32 Lanes(Int32 m) const {
    return Int32::Zero() - (Biased(m) > Biased(std::uint32_t{1} << 30));
  }
};

// Scale factors from -15 down: all but 0 saturates.
struct Nonzero : OfSquares<Nonzero> {
  ZOV_INLINE Int32 Lanes(Int32 m) const {
    return AndNot(m == Int32::Zero(), Int32::Broadcast(32767));
  }
};

// Scale factors from 17 up.
struct Nothing {
  ZOV_INLINE Int16 operator()(Interleaved<std::int16_t, Int16::kLanes>) const {
    return Int16::Zero();
  }
};

}  // namespace

ZovStatus zovsMagnitude_16sc_Sfs(const Zov16sc* pSrc, Zov16s* pDst, int len, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if (scaleFactor == 0) {
    Map(Unscaled{}, len, pDst, pSrc);
  } else if (scaleFactor > 16) {
    Map(Nothing{}, len, pDst, pSrc);
  } else if (scaleFactor == 16) {
    Map(AboveHalf{}, len, pDst, pSrc);
  } else if (scaleFactor > 0) {
    Map(ScaledDown(scaleFactor), len, pDst, pSrc);
  } else if (scaleFactor >= -14) {
    Map(ScaledUp(scaleFactor), len, pDst, pSrc);
  } else {
    Map(Nonzero{}, len, pDst, pSrc);
  }
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

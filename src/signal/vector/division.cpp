// Quotients of arrays, with a rule for zero divisors in place of the hardware's.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"
#include "signal/vector/exact_refinement.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

using Mask = VecF::Mask;

constexpr Zov32u kInfinityBits = 0x7F800000;
constexpr Zov32u kDefaultNanBits = 0xFFC00000;

ZOV_INLINE VecF Constant(Zov32u bits) {
  return As<float>(Vec<Zov32u, VecF::kLanes>::Broadcast(bits));
}

// Division by zero as the sign of the dividend alone decides it: the infinity of that sign, or the
// NaN 0xFFC00000 for a zero or a NaN.
ZOV_INLINE VecF ExactQuotient(VecF divisor, VecF dividend, Mask divisorIsZero) {
  const VecF zero = As<float>(divisorIsZero);
  const VecF unordered = As<float>(dividend == dividend);
  // 0 / +0 is that NaN by itself, NaN / 0 is not.
  return AndNot(AndNot(unordered, zero), dividend) / AndNot(zero, divisor);
}

struct Divide {
  Mask sawZero = Mask::Zero();

  ZOV_INLINE VecF operator()(VecF divisor, VecF dividend) {
    const Mask isZero = divisor == VecF::Zero();
    sawZero = sawZero | isZero;
    return ExactQuotient(divisor, dividend, isZero);
  }
};

// The first vectors of a block are divided through the approximate reciprocal r of their divisor a:
// with e = 1 - a r, the quotient b / a is b r (1 + e + e^2), within 2 units of the last place. The
// others keep the divider busy meanwhile.
struct DivideBothWays {
  [[maybe_unused]] static constexpr int kVectors = kLevel >= Level::avx2 ? 8 : 4;
  Divide exact;

  template <int K, class Load1, class Load2>
  ZOV_INLINE Pack<VecF, K> Block(Load1 divisor, Load2 dividend) {
    Pack<VecF, K> quotient;
    if constexpr (K > 1) {
      constexpr int kRefined = K > 4 ? 3 : 1;
      Mask special = Mask::Zero();
      Unroll<K>([&](int k) __attribute__((always_inline)) {
        const VecF a = divisor(k);
        if (k < kRefined) {
          quotient.v[k] = Refined(a, dividend(k));
          special = special | OutOfRange(quotient.v[k]);
        } else {
          quotient.v[k] = dividend(k) / a;
          special = special | (a == VecF::Zero());
        }
      });
      if (MoveMask(special) == 0) [[likely]]
        return quotient;
      LoadAgain();
    }
    Unroll<K>([&](int k) __attribute__((always_inline)) {
      quotient.v[k] = exact(divisor(k), dividend(k));
    });
    return quotient;
  }

  static ZOV_INLINE VecF Refined(VecF a, VecF b) {
    const VecF one = VecF::Broadcast(1.0F);
    const VecF r = ApproxReciprocal(a);
    const VecF q = b * r;
#if defined(__FMA__)
    const VecF e = NegMulAdd(a, r, one);
    return MulAdd(MulAdd(e, q, q), e, q);
#else
    const VecF e = one - a * r;
    return q + (q + e * q) * e;
#endif
  }

  // Zero divisors, and those whose reciprocal is not a normal number, leave an infinity, a NaN or a
  // zero behind; below 2^-100 the terms of the sum may lose bits.
  static ZOV_INLINE Mask OutOfRange(VecF quotient) {
    constexpr Zov32u kLowest = (127 - 100) << 23;
    if constexpr (kLevel == Level::avx) {
      // No integer operations on the whole register at this level.
      const VecF size = AndNot(VecF::Broadcast(-0.0F), quotient);
      return ~((size >= Constant(kLowest)) & (size <= Constant(kInfinityBits - 1)));
    } else {
      // Twice the bits drop the sign. Moved so that the infinities become the lowest signed number,
      // one comparison serves both ends.
      using Bits = Vec<Zov32u, VecF::kLanes>;
      constexpr Zov32u kMove = 0x80000000U - 2 * kInfinityBits;
      constexpr auto kLeast = static_cast<Zov32s>(2 * kLowest + kMove);
      const Bits bits = As<Zov32u>(quotient);
      return As<Zov32s>(bits + bits + Bits::Broadcast(kMove)) < Mask::Broadcast(kLeast);
    }
  }
};

struct DivideConstant {
  VecF dividend, overZero;
  Mask sawZero = Mask::Zero();

  ZOV_INLINE explicit DivideConstant(Zov32f val)
      // A zero of either sign is divided as +0.
      : dividend(VecF::Broadcast(val == 0 ? 0.0F : val)),
        overZero(Constant(val > 0   ? kInfinityBits
                          : val < 0 ? kInfinityBits | 0x80000000U
                                    : kDefaultNanBits)) {}

  ZOV_INLINE VecF operator()(VecF divisor) {
    const Mask isZero = divisor == VecF::Zero();
    sawZero = sawZero | isZero;
    return Select(isZero, overZero, dividend / divisor);
  }
};

#if defined(__FMA__)
// The same bits. One vector of a block is formed without the divider, which is busy with the rest.
struct DivideConstantBothWays {
  static constexpr int kVectors = 4;
  DivideConstant exact;

  template <int K, class Load>
  ZOV_INLINE Pack<VecF, K> Block(Load load) {
    Pack<VecF, K> quotient;
    if constexpr (K > 1) {
      constexpr int kRefined = 1;
      Mask special = Mask::Zero();
      Unroll<K>([&](int k) __attribute__((always_inline)) {
        const VecF a = load(k);
        if (k < kRefined) {
          quotient.v[k] = Quotient(exact.dividend, a);
          special = special | NoDivisor(a);
        } else {
          quotient.v[k] = exact.dividend / a;
          special = special | (a == VecF::Zero());
        }
      });
      if (MoveMask(special) == 0) [[likely]]
        return quotient;
      LoadAgain();
    }
    Unroll<K>([&](int k) __attribute__((always_inline)) { quotient.v[k] = exact(load(k)); });
    return quotient;
  }
};
#endif

ZOV_INLINE ZovStatus StatusOf(Mask sawZero) {
  return MoveMask(sawZero) != 0 ? zovStsDivByZeroWrn : zovStsNoErr;
}

}  // namespace

ZovStatus zovsDiv_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc1, pSrc2, pDst)) return status;
  // Arrays that are not aligned to their elements get exact quotients at every level.
  if (kLevel >= Level::sse3 && IsAligned<4>(pSrc1) && IsAligned<4>(pSrc2) && IsAligned<4>(pDst)) {
    DivideBothWays op;
    Map(op, len, pDst, pSrc1, pSrc2);
    return StatusOf(op.exact.sawZero);
  }
  Divide op;
  Map(op, len, pDst, pSrc1, pSrc2);
  return StatusOf(op.sawZero);
}

ZovStatus zovsDivCRev_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
#if defined(__FMA__)
  // A short array is over before the longer chain of operations. That rounds to nearest only, and
  // raises flags of its own.
  constexpr unsigned kModes = _MM_ROUND_MASK | _MM_MASK_MASK;
  if (len > 128 && IsDividend(val) && (_mm_getcsr() & kModes) == _MM_MASK_MASK) {
    DivideConstantBothWays op{DivideConstant(val)};
    Map(op, len, pDst, pSrc);
    return StatusOf(op.exact.sawZero);
  }
#endif
  DivideConstant op(val);
  Map(op, len, pDst, pSrc);
  return StatusOf(op.sawZero);
}

ZovStatus zovsDivCRev_32f_I(Zov32f val, Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  return zovsDivCRev_32f(pSrcDst, val, pSrcDst, len);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

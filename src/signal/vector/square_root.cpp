// Square roots of arrays.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

using Mask = VecF::Mask;

// Correctly rounded. Whatever is not >= 0, a NaN too, counts as negative and gives 0xFFC00000.
struct ExactRoot {
  Mask sawNegative = Mask::Zero();

  ZOV_INLINE VecF operator()(VecF x) {
    const Mask good = x >= VecF::Zero();
    sawNegative = sawNegative | ~good;
    const VecF nan = As<float>(Vec<Zov32u, VecF::kLanes>::Broadcast(0xFFC00000));
    return Select(good, Sqrt(x), nan);
  }
};

// Through the approximate reciprocal square root r: with y = x r, one Newton step gives the root
// y (y r - 3) (-1/2), within 4 units of the last place.
struct RefinedRoot {
  [[maybe_unused]] static constexpr int kVectors = 4;
  Mask sawNegative = Mask::Zero();
  bool sawSpecial = false;

  template <int K, class Load>
  ZOV_INLINE Pack<VecF, K> Block(Load load) {
    Pack<VecF, K> root;
    VecF sum = VecF::Zero();
    // One of several vectors keeps the hardware's square root busy meanwhile; by its reciprocal a
    // denormal in it is as special as in the others.
    constexpr int kRefined = K > 1 ? K - 1 : 1;
    if constexpr (K > 1) {
      const VecF x = load(kRefined);
      root.v[kRefined] = Sqrt(x);
      sum = root.v[kRefined] + ApproxReciprocalSqrt(x);
    }
    Unroll<kRefined>([&](int k) __attribute__((always_inline)) {
      const VecF x = load(k);
      const VecF r = ApproxReciprocalSqrt(x);
      const VecF y = x * r;
#if defined(__FMA__)
      const VecF t = MulAdd(y, r, VecF::Broadcast(-3.0F));
#else
      const VecF t = y * r - VecF::Broadcast(3.0F);
#endif
      root.v[k] = y * t * VecF::Broadcast(-0.5F);
      sum = sum + root.v[k];
    });
    // Zeros, denormals, negative numbers, infinities and NaNs all leave an infinity or a NaN, and
    // so does a sum with one; the sum of good roots is far from overflow.
    const VecF difference = sum - sum;
    if (MoveMask(difference == difference) != (1U << VecF::kLanes) - 1) [[unlikely]] {
      sawSpecial = true;
      LoadAgain();
      Unroll<K>([&](int k) __attribute__((always_inline)) {
        const VecF x = load(k);
        root.v[k] = Sqrt(x);
        sawNegative = sawNegative | (x < VecF::Zero());
      });
    }
    return root;
  }
};

ZOV_INLINE Mask Roots(const Zov32f* pSrc, Zov32f* pDst, int len) {
  if constexpr (kLevel < Level::sse3) {
    ExactRoot op;
    Map(op, len, pDst, pSrc);
    return op.sawNegative;
  } else {
    // The refinement meets invalid operations and overflows of its own: none may trap or leave its
    // flag. A good block raises the inexact flag alone. So where that flag was up already, the
    // register need not be written, which costs more than a short array.
    const unsigned saved = _mm_getcsr();
    const bool masked = (saved & _MM_MASK_MASK) == _MM_MASK_MASK;
    if (!masked) _mm_setcsr(saved | _MM_MASK_MASK);
    RefinedRoot op;
    Map(op, len, pDst, pSrc);
    if (!masked || op.sawSpecial || (saved & _MM_EXCEPT_INEXACT) == 0) _mm_setcsr(saved);
    return op.sawNegative;
  }
}

}  // namespace

ZovStatus zovsSqrt_32f(const Zov32f* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  return MoveMask(Roots(pSrc, pDst, len)) != 0 ? zovStsSqrtNegArgWrn : zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

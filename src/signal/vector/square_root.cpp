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
  // Of these; a root of 32 bytes keeps it busy for as long as two of 16.
  [[maybe_unused]] static constexpr int kByHardware = kLevel < Level::avx ? 2 : 1;
  Mask sawNegative = Mask::Zero();

  template <int K, class Load>
  ZOV_INLINE Pack<VecF, K> Block(Load load) {
    Pack<VecF, K> root;
    VecF sum = VecF::Zero();
    // Some of several vectors keep the hardware's square root busy meanwhile.
    constexpr int kRefined = K > 1 ? K - kByHardware : 1;
    if constexpr (K > 1) {
      sum = root.v[kRefined] = Sqrt(load(kRefined));
      for (int k = kRefined + 1; k < K; ++k) {
        root.v[k] = Sqrt(load(k));
        sum = sum + root.v[k];
      }
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
    // The refinement meets invalid operations and overflows of its own, the hardware's square root
    // denormals: none may trap or leave its flag. Writing the register costs more than a short
    // array, so it is left alone where it came out as it was: mostly, once the inexact flag is up.
    const unsigned saved = _mm_getcsr();
    const bool masked = (saved & _MM_MASK_MASK) == _MM_MASK_MASK;
    if (!masked) _mm_setcsr(saved | _MM_MASK_MASK);
    RefinedRoot op;
    Map(op, len, pDst, pSrc);
    if (_mm_getcsr() != saved) _mm_setcsr(saved);
    return op.sawNegative;
  }
}

}  // namespace

ZovStatus zovsSqrt_32f(const Zov32f* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  return MoveMask(Roots(pSrc, pDst, len)) != 0 ? zovStsSqrtNegArgWrn : zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

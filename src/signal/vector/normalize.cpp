// Offset and scale: (x - vSub) / vDiv through one reciprocal.
#include <cfloat>

#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/convert.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

template <class T>
struct SubtractAndScale {
  T offset;
  T scale;

  template <class V>
  ZOV_INLINE V operator()(V x) const {
    return (x - V::Broadcast(offset)) * V::Broadcast(scale);
  }
};

// A divisor below `smallestNormal` in magnitude counts as zero.
template <class T>
ZOV_INLINE ZovStatus Normalize(const T* pSrc, T* pDst, int len, T vSub, T vDiv, T smallestNormal) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if ((vDiv < 0 ? -vDiv : vDiv) < smallestNormal) return zovStsDivByZeroErr;
  const T scale = T{1} / vDiv;
  if (pSrc != pDst && Overlap(pSrc, len, pDst, len)) {
    // A partial overlap gives what a walk from the first element on gives.
    for (int i = 0; i < len; ++i) pDst[i] = (pSrc[i] - vSub) * scale;
  } else {
    Map(SubtractAndScale<T>{vSub, scale}, len, pDst, pSrc);
  }
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsNormalize_32f(const Zov32f* pSrc, Zov32f* pDst, int len, Zov32f vSub, Zov32f vDiv) {
  return Normalize(pSrc, pDst, len, vSub, vDiv, FLT_MIN);
}

ZovStatus zovsNormalize_64f(const Zov64f* pSrc, Zov64f* pDst, int len, Zov64f vSub, Zov64f vDiv) {
  return Normalize(pSrc, pDst, len, vSub, vDiv, DBL_MIN);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

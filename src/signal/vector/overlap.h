// Element-wise operations on arrays that may overlap in part.
#pragma once

#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T>
ZOV_INLINE bool OverlapPartly(const T* pSrc, const T* pDst, int len) {
  if (pSrc == pDst) return false;
  const std::uintptr_t bytes = static_cast<std::uintptr_t>(len) * sizeof(T);
  const std::uintptr_t src = reinterpret_cast<std::uintptr_t>(pSrc);
  const std::uintptr_t dst = reinterpret_cast<std::uintptr_t>(pDst);
  return src < dst + bytes && dst < src + bytes;
}

// As Map; arrays that overlap without being the same take their elements strictly one after the
// other.
template <class Op, class T, class... Src>
ZOV_INLINE void MapInOrder(const Op& op, int len, T* pDst, const Src*... pSrc) {
  if ((OverlapPartly(pSrc, pDst, len) || ...)) [[unlikely]] {
    for (int i = 0; i < len; ++i) Map(op, 1, pDst + i, (pSrc + i)...);
  } else {
    Map(op, len, pDst, pSrc...);
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

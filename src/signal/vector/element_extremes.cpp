// The larger and the smaller of two arrays, element by element.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// The hardware's operand order keeps the second element unless the first is strictly better.
struct Larger {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return Max(a, b);
  }
};
struct Smaller {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return Min(a, b);
  }
};

}  // namespace

ZovStatus zovsMaxEvery_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pSrcDst)) return status;
  MapInPlace(Larger{}, len, pSrcDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsMinEvery_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pSrcDst)) return status;
  MapInPlace(Smaller{}, len, pSrcDst, pSrc);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

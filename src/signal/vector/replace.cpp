// One value of an array replaced by another.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

struct Replace {
  Zov16u oldVal, newVal;
  template <class V>
  ZOV_INLINE V operator()(V x) const {
    // At avx a selection takes two operations, and one at sse4.
    const V change = V::Broadcast(static_cast<Zov16u>(oldVal ^ newVal));
    return x ^ (As<Zov16u>(x == V::Broadcast(oldVal)) & change);
  }
};

}  // namespace

// Unlike elsewhere, a length of 0 is a request to do nothing.
ZovStatus zovsReplaceC_16u(const Zov16u* pSrc, Zov16u* pDst, int len, Zov16u oldVal,
                           Zov16u newVal) {
  if (AnyNull(pSrc, pDst)) return zovStsNullPtrErr;
  if (len < 0) return zovStsFindLenErr;
  if (len > 0) Map(Replace{oldVal, newVal}, len, pDst, pSrc);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

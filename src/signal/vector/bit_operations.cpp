// Bit operations and shifts of 16-bit arrays.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/copy.h"
#include "signal/vector/elementwise.h"
#include "signal/vector/fill.h"
#include "signal/vector/integer_lanes.h"
#include "signal/vector/overlap.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

struct And {
  Zov16u val;
  template <class V>
  ZOV_INLINE V operator()(V x) const {
    return x & V::Broadcast(val);
  }
};
struct Or {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return a | b;
  }
};
struct LeftBy {
  int count;
  template <class V>
  ZOV_INLINE V operator()(V x) const {
    return ShiftedLeft(x, count);
  }
};
struct RightBy {
  int count;
  template <class V>
  ZOV_INLINE V operator()(V x) const {
    return ShiftedRight(x, count);
  }
};

ZOV_INLINE ZovStatus Clear(Zov16u* pDst, int len) {
  zovZeroBytes(pDst, 2 * std::int64_t{len});
  return zovStsNoErr;
}

// Checks, and the counts that leave nothing to shift.
template <class Shift>
ZOV_INLINE ZovStatus ShiftInPlace(int val, Zov16u* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (val < 0) return zovStsShiftErr;
  if (val == 0) return zovStsNoErr;
  if (val > 15) return Clear(pSrcDst, len);
  MapInPlace(Shift{val}, len, pSrcDst);
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsAndC_16u(const Zov16u* pSrc, Zov16u val, Zov16u* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if (val == 0) return Clear(pDst, len);
  MapInOrder(And{val}, len, pDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsAndC_16u_I(Zov16u val, Zov16u* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (val == 0) return Clear(pSrcDst, len);
  MapInPlace(And{val}, len, pSrcDst);
  return zovStsNoErr;
}

ZovStatus zovsOr_16u_I(const Zov16u* pSrc, Zov16u* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pSrcDst)) return status;
  MapInOrder(Or{}, len, pSrcDst, pSrc, pSrcDst);
  return zovStsNoErr;
}

ZovStatus zovsLShiftC_16u(const Zov16u* pSrc, int val, Zov16u* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if (val < 0) return zovStsShiftErr;
  if (val > 15) return Clear(pDst, len);
  if (val == 0) {
    zovCopyBytes(pSrc, pDst, 2 * std::int64_t{len});
    return zovStsNoErr;
  }
  Map(LeftBy{val}, len, pDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsLShiftC_16u_I(int val, Zov16u* pSrcDst, int len) {
  return ShiftInPlace<LeftBy>(val, pSrcDst, len);
}

ZovStatus zovsRShiftC_16u_I(int val, Zov16u* pSrcDst, int len) {
  return ShiftInPlace<RightBy>(val, pSrcDst, len);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

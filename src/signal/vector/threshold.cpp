// Arrays limited to a level, and values beyond a level replaced.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// The operand order makes a NaN element stay as it is.
struct RaiseTo {
  Zov32f level;
  ZOV_INLINE VecF operator()(VecF x) const { return Max(VecF::Broadcast(level), x); }
};
struct LowerTo {
  Zov32f level;
  ZOV_INLINE VecF operator()(VecF x) const { return Min(VecF::Broadcast(level), x); }
};

// The forms with two arrays test what is kept, those in place what is replaced. So a NaN, for which
// no comparison holds, is replaced by the first and kept by the second.
struct KeepUpTo {
  Zov32f level, value;
  ZOV_INLINE VecF operator()(VecF x) const {
    return Select(VecF::Broadcast(level) >= x, x, VecF::Broadcast(value));
  }
};
struct KeepFrom {
  Zov32f level, value;
  ZOV_INLINE VecF operator()(VecF x) const {
    return Select(x >= VecF::Broadcast(level), x, VecF::Broadcast(value));
  }
};
struct ReplaceAbove {
  Zov32f level, value;
  ZOV_INLINE VecF operator()(VecF x) const {
    return Select(x > VecF::Broadcast(level), VecF::Broadcast(value), x);
  }
};
struct ReplaceBelow {
  Zov32f level, value;
  ZOV_INLINE VecF operator()(VecF x) const {
    return Select(VecF::Broadcast(level) > x, VecF::Broadcast(value), x);
  }
};

}  // namespace

ZovStatus zovsThreshold_32f_I(Zov32f* pSrcDst, int len, Zov32f level, int relOp) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (relOp == ZOV_CMP_LESS) {
    MapInPlace(RaiseTo{level}, len, pSrcDst);
  } else if (relOp == ZOV_CMP_GREATER) {
    MapInPlace(LowerTo{level}, len, pSrcDst);
  } else {
    return zovStsRelationErr;
  }
  return zovStsNoErr;
}

ZovStatus zovsThreshold_GTVal_32f(const Zov32f* pSrc, Zov32f* pDst, int len, Zov32f level,
                                  Zov32f value) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  Map(KeepUpTo{level, value}, len, pDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsThreshold_GTVal_32f_I(Zov32f* pSrcDst, int len, Zov32f level, Zov32f value) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  MapInPlace(ReplaceAbove{level, value}, len, pSrcDst);
  return zovStsNoErr;
}

ZovStatus zovsThreshold_LTVal_32f(const Zov32f* pSrc, Zov32f* pDst, int len, Zov32f level,
                                  Zov32f value) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  Map(KeepFrom{level, value}, len, pDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsThreshold_LTVal_32f_I(Zov32f* pSrcDst, int len, Zov32f level, Zov32f value) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  MapInPlace(ReplaceBelow{level, value}, len, pSrcDst);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

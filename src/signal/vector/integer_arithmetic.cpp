// Sums, differences and products of integer arrays: formed exactly, scaled with rounding half to
// even, saturated.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"
#include "signal/vector/fill.h"
#include "signal/vector/integer_lanes.h"
#include "signal/vector/overlap.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

struct Sum {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return SumSaturated(a, b);
  }
};
// The first operand is subtracted from the second.
struct SubtractFrom {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return DifferenceSaturated(b, a);
  }
};
struct Multiply {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return ProductSaturated(a, b);
  }
};

// Scaled by 2^-count, count from 1 to 17.
struct SumDown {
  int count;
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    const auto sum = ExactSum(a, b);
    return PackSaturated({RoundedRight(sum.low, count), RoundedRight(sum.high, count)}, a);
  }
};
// The difference of unsigned numbers is zero where it would be negative.
struct SubtractFromDown {
  int count;
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    const auto difference = Widened(DifferenceSaturated(b, a));
    return PackSaturated(
        {RoundedRight(difference.low, count), RoundedRight(difference.high, count)}, a);
  }
};

// Scaled by 2^count, count from 1 to 15: what saturates before the shift does so after it.
template <class Op>
struct Up {
  int count;
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return LeftSaturated(Op{}(a, b), count);
  }
};

// Scaled by more than the range: zero, or the limit on the side of the value.
template <class Op>
struct Limit {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return LimitOf(Op{}(a, b));
  }
};

struct Absolute {
  template <class V>
  ZOV_INLINE V operator()(V x) const {
    return AbsSaturated(x);
  }
};

// A constant in place of the first operand.
template <class Op, class T>
struct WithConstant {
  Op op;
  T val;
  template <class V>
  ZOV_INLINE V operator()(V x) const {
    return op(V::Broadcast(val), x);
  }
};

template <class T, class Op>
ZOV_INLINE ZovStatus Combine(const Op& op, const T* pSrc1, const T* pSrc2, T* pDst, int len) {
  MapInOrder(op, len, pDst, pSrc1, pSrc2);
  return zovStsNoErr;
}

template <class T, class Op>
ZOV_INLINE ZovStatus CombineConstant(const Op& op, T val, T* pSrcDst, int len) {
  MapInPlace(WithConstant<Op, T>{op, val}, len, pSrcDst);
  return zovStsNoErr;
}

template <class T>
ZOV_INLINE ZovStatus Clear(T* pDst, int len) {
  zovZeroBytes(pDst, std::int64_t{len} * static_cast<std::int64_t>(sizeof(T)));
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsAdd_16s_Sfs(const Zov16s* pSrc1, const Zov16s* pSrc2, Zov16s* pDst, int len,
                          int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc1, pSrc2, pDst)) return status;
  if (scaleFactor > 16) return Clear(pDst, len);
  if (scaleFactor > 0) {
    return Combine(SumDown{scaleFactor}, pSrc1, pSrc2, pDst, len);
  }
  if (scaleFactor == 0) return Combine(Sum{}, pSrc1, pSrc2, pDst, len);
  if (scaleFactor > -16) {
    return Combine(Up<Sum>{-scaleFactor}, pSrc1, pSrc2, pDst, len);
  }
  return Combine(Limit<Sum>{}, pSrc1, pSrc2, pDst, len);
}

ZovStatus zovsAdd_16s_I(const Zov16s* pSrc, Zov16s* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pSrcDst)) return status;
  MapInPlace(Sum{}, len, pSrcDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsAdd_16u_ISfs(const Zov16u* pSrc, Zov16u* pSrcDst, int len, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pSrcDst)) return status;
  // A sum of 131070 still rounds to 1 at a scale factor of 17.
  if (scaleFactor > 17) return Clear(pSrcDst, len);
  if (scaleFactor > 0) {
    return Combine(SumDown{scaleFactor}, pSrc, pSrcDst, pSrcDst, len);
  }
  if (scaleFactor == 0) return Combine(Sum{}, pSrc, pSrcDst, pSrcDst, len);
  if (scaleFactor > -16) {
    return Combine(Up<Sum>{-scaleFactor}, pSrc, pSrcDst, pSrcDst, len);
  }
  return Combine(Limit<Sum>{}, pSrc, pSrcDst, pSrcDst, len);
}

ZovStatus zovsAddC_16u_ISfs(Zov16u val, Zov16u* pSrcDst, int len, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (scaleFactor > 17) return Clear(pSrcDst, len);
  if (scaleFactor > 0) return CombineConstant(SumDown{scaleFactor}, val, pSrcDst, len);
  if (scaleFactor == 0) {
    return val == 0 ? zovStsNoErr : CombineConstant(Sum{}, val, pSrcDst, len);
  }
  if (scaleFactor > -16) {
    return CombineConstant(Up<Sum>{-scaleFactor}, val, pSrcDst, len);
  }
  if (val == 0) return CombineConstant(Limit<Sum>{}, val, pSrcDst, len);
  const Zov16u most = 0xFFFF;
  zovFill16(&most, pSrcDst, len);
  return zovStsNoErr;
}

ZovStatus zovsSubC_16u_ISfs(Zov16u val, Zov16u* pSrcDst, int len, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (scaleFactor > 16) return Clear(pSrcDst, len);
  if (scaleFactor > 0) {
    return CombineConstant(SubtractFromDown{scaleFactor}, val, pSrcDst, len);
  }
  if (scaleFactor == 0) {
    return val == 0 ? zovStsNoErr : CombineConstant(SubtractFrom{}, val, pSrcDst, len);
  }
  if (scaleFactor > -16) {
    return CombineConstant(Up<SubtractFrom>{-scaleFactor}, val, pSrcDst, len);
  }
  return CombineConstant(Limit<SubtractFrom>{}, val, pSrcDst, len);
}

ZovStatus zovsSubC_16s_I(Zov16s val, Zov16s* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  return val == 0 ? zovStsNoErr : CombineConstant(SubtractFrom{}, val, pSrcDst, len);
}

ZovStatus zovsMulC_16s_I(Zov16s val, Zov16s* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (val == 1) return zovStsNoErr;
  if (val == 0) return Clear(pSrcDst, len);
  return CombineConstant(Multiply{}, val, pSrcDst, len);
}

ZovStatus zovsAbs_32s_I(Zov32s* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  MapInPlace(Absolute{}, len, pSrcDst);
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

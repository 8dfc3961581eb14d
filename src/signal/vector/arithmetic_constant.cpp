// Sums, differences and products with a constant, and division by one.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

template <class T>
struct AddConstant {
  T val;
  template <class V>
  ZOV_INLINE V operator()(V a) const {
    return a + V::Broadcast(val);
  }
};
template <class T>
struct SubtractConstant {
  T val;
  template <class V>
  ZOV_INLINE V operator()(V a) const {
    return a - V::Broadcast(val);
  }
};
template <class T>
struct SubtractFromConstant {
  T val;
  template <class V>
  ZOV_INLINE V operator()(V a) const {
    return V::Broadcast(val) - a;
  }
};
template <class T>
struct MultiplyConstant {
  T val;
  template <class V>
  ZOV_INLINE V operator()(V a) const {
    return a * V::Broadcast(val);
  }
};

ZOV_INLINE ZovStatus Clear(Zov32f* pDst, int len) { return zovsZero_32f(pDst, len); }
ZOV_INLINE ZovStatus Clear(Zov64f* pDst, int len) { return zovsZero_64f(pDst, len); }

// A constant of 0, of either sign, leaves every element as it is, signalling NaNs too.
template <template <class> class Op>
ZOV_INLINE ZovStatus Shift(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if (val == 0) return zovsCopy_32f(pSrc, pDst, len);
  Map(Op<Zov32f>{val}, len, pDst, pSrc);
  return zovStsNoErr;
}
template <template <class> class Op, class T>
ZOV_INLINE ZovStatus ShiftInPlace(T val, T* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (val == 0) return zovStsNoErr;
  MapInPlace(Op<T>{val}, len, pSrcDst);
  return zovStsNoErr;
}

// A constant of 0 gives 0 for every element, infinities and NaNs too.
template <class T>
ZOV_INLINE ZovStatus ScaleInPlace(T val, T* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  if (val == 1) return zovStsNoErr;
  if (val == 0) return Clear(pSrcDst, len);
  MapInPlace(MultiplyConstant<T>{val}, len, pSrcDst);
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsAddC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) {
  return Shift<AddConstant>(pSrc, val, pDst, len);
}
ZovStatus zovsAddC_32f_I(Zov32f val, Zov32f* pSrcDst, int len) {
  return ShiftInPlace<AddConstant>(val, pSrcDst, len);
}
ZovStatus zovsAddC_64f_I(Zov64f val, Zov64f* pSrcDst, int len) {
  return ShiftInPlace<AddConstant>(val, pSrcDst, len);
}
ZovStatus zovsSubC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) {
  return Shift<SubtractConstant>(pSrc, val, pDst, len);
}
ZovStatus zovsSubC_32f_I(Zov32f val, Zov32f* pSrcDst, int len) {
  return ShiftInPlace<SubtractConstant>(val, pSrcDst, len);
}

// No constant is special here.
ZovStatus zovsSubCRev_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  Map(SubtractFromConstant<Zov32f>{val}, len, pDst, pSrc);
  return zovStsNoErr;
}

ZovStatus zovsMulC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if (val == 1) return zovsCopy_32f(pSrc, pDst, len);
  if (val == 0) return zovsZero_32f(pDst, len);
  Map(MultiplyConstant<Zov32f>{val}, len, pDst, pSrc);
  return zovStsNoErr;
}
ZovStatus zovsMulC_32f_I(Zov32f val, Zov32f* pSrcDst, int len) {
  return ScaleInPlace(val, pSrcDst, len);
}
ZovStatus zovsMulC_64f_I(Zov64f val, Zov64f* pSrcDst, int len) {
  return ScaleInPlace(val, pSrcDst, len);
}

// A product with the rounded reciprocal, with the short cuts of the product.
ZovStatus zovsDivC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  if (val == 0) return zovStsDivByZeroErr;
  return zovsMulC_32f(pSrc, 1.0F / val, pDst, len);
}
ZovStatus zovsDivC_32f_I(Zov32f val, Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  return zovsDivC_32f(pSrcDst, val, pSrcDst, len);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

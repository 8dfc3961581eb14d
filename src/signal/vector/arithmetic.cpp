// Sums, differences and products of two arrays, and the absolute value and square of one.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/elementwise.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

struct Add {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return a + b;
  }
};
// The first operand is subtracted from the second.
struct SubtractFrom {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return b - a;
  }
};
struct Multiply {
  template <class V>
  ZOV_INLINE V operator()(V a, V b) const {
    return a * b;
  }
};
struct Absolute {
  template <class V>
  ZOV_INLINE V operator()(V a) const {
    return AndNot(V::Broadcast(-0.0F), a);
  }
};
struct Square {
  template <class V>
  ZOV_INLINE V operator()(V a) const {
    return a * a;
  }
};

// One body for each shape of argument list.
template <class Op, class T>
ZOV_INLINE ZovStatus TwoSources(const T* pSrc1, const T* pSrc2, T* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc1, pSrc2, pDst)) return status;
  Map(Op{}, len, pDst, pSrc1, pSrc2);
  return zovStsNoErr;
}
template <class Op, class T>
ZOV_INLINE ZovStatus TwoSourcesInPlace(const T* pSrc, T* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pSrcDst)) return status;
  MapInPlace(Op{}, len, pSrcDst, pSrc);
  return zovStsNoErr;
}
template <class Op, class T>
ZOV_INLINE ZovStatus OneSource(const T* pSrc, T* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  Map(Op{}, len, pDst, pSrc);
  return zovStsNoErr;
}
template <class Op, class T>
ZOV_INLINE ZovStatus InPlace(T* pSrcDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrcDst)) return status;
  MapInPlace(Op{}, len, pSrcDst);
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsAdd_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst, int len) {
  return TwoSources<Add>(pSrc1, pSrc2, pDst, len);
}
ZovStatus zovsAdd_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len) {
  return TwoSourcesInPlace<Add>(pSrc, pSrcDst, len);
}
ZovStatus zovsSub_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst, int len) {
  return TwoSources<SubtractFrom>(pSrc1, pSrc2, pDst, len);
}
ZovStatus zovsSub_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len) {
  return TwoSourcesInPlace<SubtractFrom>(pSrc, pSrcDst, len);
}
ZovStatus zovsMul_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst, int len) {
  return TwoSources<Multiply>(pSrc1, pSrc2, pDst, len);
}
ZovStatus zovsMul_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len) {
  return TwoSourcesInPlace<Multiply>(pSrc, pSrcDst, len);
}
ZovStatus zovsMul_64f_I(const Zov64f* pSrc, Zov64f* pSrcDst, int len) {
  return TwoSourcesInPlace<Multiply>(pSrc, pSrcDst, len);
}
ZovStatus zovsAbs_32f(const Zov32f* pSrc, Zov32f* pDst, int len) {
  return OneSource<Absolute>(pSrc, pDst, len);
}
ZovStatus zovsAbs_32f_I(Zov32f* pSrcDst, int len) { return InPlace<Absolute>(pSrcDst, len); }
ZovStatus zovsSqr_32f_I(Zov32f* pSrcDst, int len) { return InPlace<Square>(pSrcDst, len); }

}  // namespace zov::ZOV_LEVEL_NAMESPACE

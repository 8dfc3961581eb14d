// Every element of an array set to a value.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/fill_kernels.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

template <class T>
ZOV_INLINE ZovStatus Set(T val, T* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pDst)) return status;
  constexpr int kBytes = sizeof(T);
  Fill<kBytes>(PatternOf(val), pDst, std::int64_t{len} * kBytes, kFloors.fill);
  return zovStsNoErr;
}

}  // namespace

ZOV_ON_CACHE_LINE ZovStatus zovsSet_8u(Zov8u val, Zov8u* pDst, int len) {
  return Set(val, pDst, len);
}

ZOV_ON_CACHE_LINE ZovStatus zovsSet_32s(Zov32s val, Zov32s* pDst, int len) {
  return Set(val, pDst, len);
}

ZOV_ON_CACHE_LINE ZovStatus zovsSet_32f(Zov32f val, Zov32f* pDst, int len) {
  return Set(val, pDst, len);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Arrays cleared.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/fill_kernels.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

template <class T>
ZOV_INLINE ZovStatus Clear(T* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pDst)) return status;
  constexpr int kBytes = sizeof(T);
  Fill<kBytes>(Chunk::Zero(), pDst, std::int64_t{len} * kBytes, kFloors.clear);
  return zovStsNoErr;
}

}  // namespace

ZOV_ON_CACHE_LINE ZovStatus zovsZero_32f(Zov32f* pDst, int len) { return Clear(pDst, len); }

ZOV_ON_CACHE_LINE ZovStatus zovsZero_64f(Zov64f* pDst, int len) { return Clear(pDst, len); }

}  // namespace zov::ZOV_LEVEL_NAMESPACE

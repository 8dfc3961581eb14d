// Complex products of arrays.
#include "core/checks.h"
#include "core/entries.h"
#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

ZovStatus zovsMul_64fc(const Zov64fc* pSrc1, const Zov64fc* pSrc2, Zov64fc* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc1, pSrc2, pDst)) return status;
  for (int i = 0; i < len; ++i) {
    const Zov64fc a = pSrc1[i];
    const Zov64fc b = pSrc2[i];
    pDst[i] = {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
  }
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Phases of complex arrays.
#include <math.h>

#include "core/checks.h"
#include "core/entries.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

ZovStatus zovsPhase_32fc(const Zov32fc* pSrc, Zov32f* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  for (int i = 0; i < len; ++i) {
    const Zov32fc z = pSrc[i];
    pDst[i] = z.re == 0 && z.im == 0 ? 0 : ::atan2f(z.im, z.re);
  }
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

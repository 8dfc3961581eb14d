// Windows of binary64 samples: the same at every level, for the filter design.
#include "signal/filter/window/window_64f.h"

#include "signal/filter/window/factors.h"

namespace zov {

using namespace common;

ZovStatus zovsWinBartlett_64f_I(Zov64f* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  pSrcDst[0] = pSrcDst[len - 1] = 0;
  WalkPairs(pSrcDst, len, 1, SteppingFactor{2.0 / (len - 1)});
  return zovStsNoErr;
}

ZovStatus zovsWinHamming_64f_I(Zov64f* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  WalkPairs(pSrcDst, len, 0, RotatingFactor<Hamming>{{}, WindowRotation(len)});
  return zovStsNoErr;
}

ZovStatus zovsWinHann_64f_I(Zov64f* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  if (len == 3) {
    pSrcDst[0] = pSrcDst[2] = 0;
  } else {
    WalkPairs(pSrcDst, len, 0, RotatingFactor<Hann>{{}, WindowRotation(len)});
  }
  return zovStsNoErr;
}

ZovStatus zovsWinBlackman_64f_I(Zov64f* pSrcDst, int len, Zov64f alpha) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  if (len == 3) {
    pSrcDst[0] = pSrcDst[2] = 0;
  } else {
    WalkPairs(pSrcDst, len, 0, RotatingFactor<Blackman>{Blackman(alpha), WindowRotation(len)});
  }
  return zovStsNoErr;
}

ZovStatus zovsWinBlackmanOpt_64f_I(Zov64f* pSrcDst, int len) {
  if (len < 4) return zovStsSizeErr;
  const double v = 0.5 / __builtin_cos(3.141592653589793 / (len - 1));
  return zovsWinBlackman_64f_I(pSrcDst, len, -v * v);
}

}  // namespace zov

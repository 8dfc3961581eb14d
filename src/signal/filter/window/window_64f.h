// The windows of the filter design. All work in place on len samples and return zovStsNullPtrErr or
// zovStsSizeErr (len below 3) before they touch one; the optimal one tests for a len below 4 first.
#pragma once

#include "kelozov/kelozov.h"

namespace zov {

ZovStatus zovsWinBartlett_64f_I(Zov64f* pSrcDst, int len);
ZovStatus zovsWinHamming_64f_I(Zov64f* pSrcDst, int len);
ZovStatus zovsWinHann_64f_I(Zov64f* pSrcDst, int len);
ZovStatus zovsWinBlackman_64f_I(Zov64f* pSrcDst, int len, Zov64f alpha);
// The parameter with the steepest decay of side lobes for this length.
ZovStatus zovsWinBlackmanOpt_64f_I(Zov64f* pSrcDst, int len);

}  // namespace zov

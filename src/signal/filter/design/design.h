// Design of linear-phase FIR filters by the window method, the same at every level.
#pragma once

#include "kelozov/kelozov.h"

namespace zov {

ZovStatus DesignLowpass(Zov64f rFreq, Zov64f* pTaps, int tapsLen, int winType, int doNormal);
ZovStatus DesignHighpass(Zov64f rFreq, Zov64f* pTaps, int tapsLen, int winType, int doNormal);
ZovStatus DesignBandpass(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps, int tapsLen, int winType,
                         int doNormal);
ZovStatus DesignBandstop(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps, int tapsLen, int winType,
                         int doNormal);

}  // namespace zov

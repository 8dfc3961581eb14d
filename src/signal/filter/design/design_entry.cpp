// The level's entries of the FIR design.
#include "core/entries.h"
#include "signal/filter/design/design.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

ZovStatus zovsFIRGenLowpass_64f(Zov64f rFreq, Zov64f* pTaps, int tapsLen, int winType,
                                int doNormal) {
  return DesignLowpass(rFreq, pTaps, tapsLen, winType, doNormal);
}

ZovStatus zovsFIRGenHighpass_64f(Zov64f rFreq, Zov64f* pTaps, int tapsLen, int winType,
                                 int doNormal) {
  return DesignHighpass(rFreq, pTaps, tapsLen, winType, doNormal);
}

ZovStatus zovsFIRGenBandpass_64f(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps, int tapsLen,
                                 int winType, int doNormal) {
  return DesignBandpass(rLowFreq, rHighFreq, pTaps, tapsLen, winType, doNormal);
}

ZovStatus zovsFIRGenBandstop_64f(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps, int tapsLen,
                                 int winType, int doNormal) {
  return DesignBandstop(rLowFreq, rHighFreq, pTaps, tapsLen, winType, doNormal);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

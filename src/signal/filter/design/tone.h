// Samples of a cosine, by recurrence.
#pragma once

#include "kelozov/kelozov.h"

namespace zov {

// pDst[n] = magn cos(2 pi rFreq n + phase) for n from 0 to len - 1, where the phase is *pPhase,
// from 0 to below 2 pi; it becomes the phase of sample len. Errors, in the order tested: pPhase
// null (zovStsNullPtrErr), magn not positive (zovStsFirGenParamErr), rFreq outside 0 up to 0.5
// (zovStsFirGenFreqErr), the phase out of range (zovStsFirGenPhaseErr), pDst null
// (zovStsNullPtrErr), len below 1 (zovStsSizeErr).
ZovStatus zovsTone_Direct_64f(Zov64f* pDst, int len, Zov64f magn, Zov64f rFreq, Zov64f* pPhase);

}  // namespace zov

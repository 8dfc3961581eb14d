// Size of the work buffer of a resize.
#pragma once

#include "image/resize/contract.h"

namespace zov {

// `realBytes` is the width of the resize's arithmetic: 4 for 8u and 32f, 8 for 64f. `allowance` is
// what the level adds for alignment inside the buffer.
ZovStatus ResizeBufferSize(const ZovImageRect& srcRoi, const ZovImageRect& dstRoi, int numChannels,
                           int interpolation, int realBytes, int allowance, int* bufferSize);

}  // namespace zov

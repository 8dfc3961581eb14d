// Real FFTs as other subsystems use them: objects in a given block, and spectra in the packed and
// the running form. Work is aligned to 64 bytes, or null, and then allocated where it is needed.
//
// Packed: Re X[0], Re X[N/2], Re X[1], Im X[1], ..., Re X[N/2 - 1], Im X[N/2 - 1].
// Running: Re X[0], Re X[1], Im X[1], ..., Re X[N/2 - 1], Im X[N/2 - 1], Re X[N/2].
// Both are x[0] alone for N = 1.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"
#include "signal/fourier/spec_init.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Bytes of the object, of the temporary buffer of its making and of the work, each with the room to
// align it.
ZovStatus FftSpecSizes_32f(int order, int flag, int hint, std::int64_t* specBytes,
                           std::int64_t* initBytes, std::int64_t* workBytes);
ZovStatus FftSpecSizes_64f(int order, int flag, int hint, std::int64_t* specBytes,
                           std::int64_t* initBytes, std::int64_t* workBytes);

// Builds the object in `block`, which stays the caller's; the temporary buffer is free afterwards.
ZovStatus FftSpecInit_32f(ZovFFTSpec_R_32f** spec, int order, int flag, int hint, Zov8u* block,
                          Zov8u* temporary);
ZovStatus FftSpecInit_64f(ZovFFTSpec_R_64f** spec, int order, int flag, int hint, Zov8u* block,
                          Zov8u* temporary);

// Bytes of work with the room to align it; 0 where a transform needs none.
ZovStatus FftWorkBytes_32f(const ZovFFTSpec_R_32f* spec, int* bytes);

ZovStatus FftFwdToPacked_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                             Zov8u* work);
ZovStatus FftFwdToPacked_64f(const Zov64f* src, Zov64f* dst, const ZovFFTSpec_R_64f* spec,
                             Zov8u* work);
ZovStatus FftInvFromPacked_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                               Zov8u* work);
ZovStatus FftInvFromPacked_64f(const Zov64f* src, Zov64f* dst, const ZovFFTSpec_R_64f* spec,
                               Zov8u* work);

ZovStatus FftFwdToRunning_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                              Zov8u* work);
ZovStatus FftInvFromRunning_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                                Zov8u* work);

// b becomes the product of two packed spectra of `count` elements.
ZovStatus MulPacked_32f(const Zov32f* a, Zov32f* b, int count);
ZovStatus MulPacked_64f(const Zov64f* a, Zov64f* b, int count);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

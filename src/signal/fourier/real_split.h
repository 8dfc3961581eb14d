// The step between the complex transform of half the length and the packed spectrum of the real
// one, in both directions, for pairs from both ends towards the middle.
#pragma once

#include "signal/fourier/lanes.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/spec.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// In place on the N/2 complex values of an array, to the packed spectrum.
template <class T>
void ForwardSplit(T* array, const FftSpec<T>& spec);

// From a spectrum with Re X[N/2] = `last`, whatever its element 1, to an array that may be the
// same.
template <class T>
void InverseSplit(const T* src, T last, T* dst, const FftSpec<T>& spec);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

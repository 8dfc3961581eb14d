// The step between the complex transform of half the length and the packed spectrum of the real
// one, in both directions, for pairs from both ends towards the middle.
#pragma once

#include "signal/fourier/lanes.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/spec.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// In place on the N/2 complex values of an array; elements 0 and 1 are not touched.
template <class T>
void ForwardSplit(T* array, const FftSpec<T>& spec);

// From a spectrum to an array that may be the same; elements 0 and 1 are not touched.
template <class T>
void InverseSplit(const T* src, T* dst, const FftSpec<T>& spec);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

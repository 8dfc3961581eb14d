// The complex transform of half the length inside a real one, on the route of its order.
#pragma once

#include "core/level.h"
#include "signal/fourier/spec.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Transforms 2^(order - 1) complex values from src to dst, which may be the same, and multiplies by
// the object's scale where the flag of the direction asks for it. Work is aligned.
template <class T, bool kInverse>
void ComplexTransform(const T* src, T* dst, const FftSpec<T>& spec, T* work);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Straight-line transforms of the smallest lengths, each in a plain and a scaled form.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"
#include "signal/fourier/limits.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Reads all of src before it writes any of dst, so the two may be the same.
template <class T>
using SmallKernel = void (*)(const T* src, T* dst, T scale);

// The real inverse takes the element of index 1 apart, as the CCS form has it at the end.
template <class T>
using RealInverseKernel = void (*)(const T* src, T second, T* dst, T scale);

// By order of the real transform. A real kernel makes the packed spectrum of 2^order real values,
// or the values of a packed spectrum; a complex one transforms 2^(order - 1) complex values.
template <class T>
struct SmallKernels {
  SmallKernel<T> forward[8];
  SmallKernel<T> forwardScaled[8];
  SmallKernel<T> complexInverse[8];
  SmallKernel<T> complexInverseScaled[8];
  RealInverseKernel<T> realInverse[8];
  RealInverseKernel<T> realInverseScaled[8];
};

template <class T>
inline constexpr int kLastRealKernel = FftLimitsOf<T>(kLevel).lastKernel;

extern const SmallKernels<Zov32f> kSmallKernels32f;
extern const SmallKernels<Zov64f> kSmallKernels64f;

template <class T>
ZOV_INLINE const SmallKernels<T>& KernelsOf() {
  if constexpr (sizeof(T) == 4) {
    return kSmallKernels32f;
  } else {
    return kSmallKernels64f;
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The sums of the direct route: n outputs from n + L - 1 samples in the order of time.
#pragma once

#include <cstddef>

#include "core/level.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T>
struct FirTaps {
  const T* reversed;
  const T* broadcast;  // natural order, in all lanes of a vector; null: taps come from `reversed`
  std::ptrdiff_t length;
};

// y[i] = sum over j of reversed[j] x[i + j], i from 0 to n - 1; n is at least 1. The arrays are
// apart. A sample that is not finite reaches no other output than those that it has a tap in.
template <class T>
void FirSums(const FirTaps<T>& taps, const T* x, T* y, std::ptrdiff_t n);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Making of real FFT objects in a given block, the same code for every level.
#pragma once

#include <cstdint>

#include "core/level.h"
#include "signal/fourier/spec.h"

namespace zov {

// Bytes of an object, of the temporary buffer that builds it, and of the work that a transform
// needs. Kept in 64 bits: the largest orders do not fit 32.
struct FftSizes {
  std::int64_t spec;
  std::int64_t init;
  std::int64_t work;
};

template <class T>
ZovStatus FftSpecSizes(Level level, int order, int flag, FftSizes* sizes);

template <class T>
ZovStatus FftSpecInit(Level level, FftSpec<T>** spec, int order, int flag, int hint, Zov8u* block,
                      Zov8u* temporary);

template <class T>
ZovStatus FftInitAlloc(Level level, FftSpec<T>** spec, int order, int flag, int hint);

template <class T>
ZovStatus FftFree(FftSpec<T>* spec);

}  // namespace zov

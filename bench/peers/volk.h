// VOLK's kernels for the operations that we share with it.
#pragma once

#include <cstdint>

#include "core/level.h"

namespace zov::bench {

using VolkTwoSources = void (*)(float* out, const float* a, const float* b, unsigned n);
using VolkConstant = void (*)(float* out, const float* a, float value, unsigned n);
using VolkOneSource = void (*)(float* out, const float* a, unsigned n);

struct VolkKernels {
  VolkTwoSources add, subtract, multiply, divide;
  VolkConstant addConstant, multiplyConstant;
  VolkOneSource squareRoot;
  void (*magnitude32fc)(float* out, const void* a, unsigned n);
  void (*magnitude16sc)(std::int16_t* out, const void* a, unsigned n);
  void (*multiply64f)(double* out, const double* a, const double* b, unsigned n);
  void (*bitOr)(void* out, const void* a, const void* b, unsigned n);  // elements of 32 bits
};

// The kernels from VOLK's headers, the best that the instructions of each level allow. Called
// straight, they are spared VOLK's own dispatch.
extern const VolkKernels* const kVolkHeld[kLevelCount];

// What VOLK's dispatch takes on the running processor.
extern const VolkKernels kVolkUnheld;

}  // namespace zov::bench

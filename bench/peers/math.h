// Vector functions of other libraries, as loops over arrays with the best that each has for the
// instructions of a level.
#pragma once

#include "core/level.h"

namespace zov::bench {

using MathUnary = void (*)(float* out, const float* x, int n);
using MathBinary = void (*)(float* out, const float* x, const float* y, int n);
using MathConstant = void (*)(float* out, const float* x, float y, int n);

// A null where the library has no such function. Those of SLEEF have the lowest accuracy that it
// offers in the name of the function, 3.5 units in the last place or 1.0.
struct MathLibrary {
  const char* name;
  MathUnary acos, asin, atan, cos, cosh, exp, ln, log10, sin, sinh, tan, tanh;
  MathBinary atan2, pow;
  MathConstant powx;
};

struct MathLibraries {
  MathLibrary library[3];
  int count;
};

extern const MathLibraries* const kMathLibraries[kLevelCount];

}  // namespace zov::bench

// Results of the vector maths for single elements outside the ordinary range of the vector kernels:
// special values, arguments near overflow and underflow, and large angles. Each is within one unit
// in the last place, and so serves every class. An element with a range problem sets the status.
#pragma once

#include "kelozov/kelozov.h"

namespace zov {

float SpecialLn(ZovStatus& status, float x);
float SpecialLog10(ZovStatus& status, float x);
float SpecialSin(ZovStatus& status, float x);
float SpecialCos(ZovStatus& status, float x);
float SpecialTan(ZovStatus& status, float x);
// For an argument of magnitude above 1, or a NaN.
float SpecialArcSine(ZovStatus& status, float x);
// For a magnitude so large that 1 / x hardly counts.
float SpecialAtan(float x);
float SpecialAtan2(float y, float x);
float SpecialSinh(ZovStatus& status, float x);
float SpecialCosh(ZovStatus& status, float x);
float SpecialPow(ZovStatus& status, float x, float y);

}  // namespace zov

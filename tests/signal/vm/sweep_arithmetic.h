// The arithmetic of the sweep that has to be fast: references and errors of whole arrays.
#pragma once

#include "signal/vm/kernels.h"

namespace zov::test {

// exact[i] = function(x[i]) in double precision; n is a multiple of 4. By the C library's vector
// functions where there are any, which are checked against its scalar ones at every 64th element.
void FillReference(const UnaryFunction& function, const float* x, double* exact, int n);

// Adds the errors of n results; y may be null. n is a multiple of 4.
void AddErrors(WorstError& worst, const float* result, const double* exact, const float* x,
               const float* y, int n);

}  // namespace zov::test

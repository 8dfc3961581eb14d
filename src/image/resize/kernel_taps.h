// Taps of the cubic kernels and of Lanczos: which source pixels a written pixel weighs, and how.
#pragma once

#include <cstdint>

#include "image/resize/samples.h"

namespace zov {

// How the weights of Lanczos, in single precision, are brought to the sum 1.
enum class Normalization {
  // Four weights times the reciprocal of their sum, which is the processor's estimate improved by
  // one step of Newton's, and two divided by the sum.
  estimate,
  division,
};

struct Kernel {
  std::uint32_t method;
  Normalization normalization;
};

// Half the width of the kernel of a method: 1 for linear, 2 for the cubics, 3 for Lanczos.
int KernelRadius(std::uint32_t method);

// The kernel at a distance of at least 0, in double precision; 0 from its radius on.
double KernelAt(std::uint32_t method, double distance);

// kTaps consecutive source pixels from `first` on, all in the image. Taps past the image count for
// the pixel at its edge, so in the bands only some of the weights are used; the others are 0.
template <class Real, int kTaps>
struct KernelTaps {
  std::int32_t first;
  std::int32_t usedFrom;
  std::int32_t used;
  Real weights[kTaps];
};

// Taps of `count` written pixels from the pixel `begin` on. The image has at least kTaps pixels.
template <class Real, int kTaps>
void FindTaps(const Kernel& kernel, const ResizeAxis& axis, int begin, int count,
              KernelTaps<Real, kTaps>* taps);

}  // namespace zov

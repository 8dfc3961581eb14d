// Taps of the antialiased path: a kernel that widens with the reduction, centred on the source
// coordinate of the pixel. Indices count from pixel edges here, as coordinates do, so the picture
// stands half a source pixel further on than by the other paths.
#pragma once

#include <cstdint>

#include "image/resize/geometry.h"

namespace zov {

class WidenedKernel {
 public:
  // The taps of a written pixel; they may lie outside the image, whose edges stand for them.
  struct Taps {
    double centre;
    std::int64_t first;
    int count;
  };

  WidenedKernel(std::uint32_t method, const ResizeAxis& axis);

  // No pixel has more taps.
  int MostTaps() const;
  Taps At(int pixel) const;
  // Before the division by their sum.
  double WeightAt(const Taps& taps, int tap) const;
  double SumOf(const Taps& taps) const;

  // All weights of a pixel, divided by their sum and rounded to Real, into row pixel % kept of a
  // table of that stride that got the `known` pixels before it in the same way. Many
  // reductions repeat after a few pixels; then the weights are copied, and the result is false.
  template <class Real, class Stored>
  bool GetWeights(int pixel, int known, int kept, std::int64_t stride, Stored* table) const;

 private:
  ResizeAxis axis_;
  std::uint32_t method_;
  double radius_;
  double compression_;
};

}  // namespace zov

// Sample positions, in double precision throughout.
#include "image/resize/samples.h"

#include <cmath>

namespace zov {

// Positions rise with the index. Their comparisons put a NaN, which an inverse beyond the range of
// a double can bring, into a band, where taps are clamped.
ResizeBands FindBands(const ResizeAxis& axis, int reach) {
  const SamplePosition position(axis);
  const double first = reach - 1;
  const double last = axis.extent - reach;
  ResizeBands bands = {0, 0};
  while (bands.near < axis.count && !(position(bands.near) >= first)) ++bands.near;
  while (bands.far < axis.count - bands.near && !(position(axis.count - 1 - bands.far) < last)) {
    ++bands.far;
  }
  return bands;
}

void LinearSamples(const ResizeAxis& axis, int begin, int count, std::int32_t* index,
                   double* fraction) {
  const SamplePosition position(axis);
  for (int i = 0; i < count; ++i) {
    const double at = position(begin + i);
    index[i] = static_cast<std::int32_t>(at);
    fraction[i] = at - index[i];
  }
}

void LinearSamplesInImage(const ResizeAxis& axis, const ResizeBands& bands, int begin, int count,
                          std::int32_t* index, double* fraction) {
  const int farBegin = axis.count - bands.far;
  int i = 0;
  for (; i < count && begin + i < bands.near; ++i) {
    index[i] = 0;
    fraction[i] = 0;
  }
  const int inner = (count < farBegin - begin ? count : farBegin - begin) - i;
  if (inner > 0) {
    LinearSamples(axis, begin + i, inner, index + i, fraction + i);
    i += inner;
  }
  for (; i < count; ++i) {
    index[i] = axis.extent - 2;
    fraction[i] = 0;
  }
}

bool SamplesMiddles(const ResizeAxis& axis) {
  return axis.inverse == 2 && axis.offset == std::floor(axis.offset);
}

void NearestSamples(const ResizeAxis& axis, int begin, int count, std::int32_t* index) {
  const double first = static_cast<double>(axis.first);
  const double shift = axis.offset - 1e-10;
  const double last = axis.extent - 1;
  for (int i = 0; i < count; ++i) {
    const double at = (first + (begin + i) + 0.5) * axis.inverse + shift;
    // The centre of an outermost pixel may lie outside the mapped image by a hair, and a reduction
    // multiplies the hair: never leave the image.
    const double inImage = at < last ? at : last;
    index[i] = static_cast<std::int32_t>(inImage > 0 ? inImage : 0);
  }
}

void FixedFractions(int count, const double* fraction, std::int32_t* fixed) {
  for (int i = 0; i < count; ++i) {
    fixed[i] = static_cast<std::int32_t>(fraction[i] * kFixedOne + 1e-7);
  }
}

}  // namespace zov

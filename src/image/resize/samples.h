// Where the written pixels of an axis sample the source.
#pragma once

#include <cstdint>

#include "image/resize/geometry.h"

namespace zov {

// Pixels at either end of an axis whose taps reach past the image; the interior lies between them.
struct ResizeBands {
  int near;
  int far;
};

ResizeBands FindLinearBands(const ResizeAxis& axis);

// Lower tap and fraction of `count` interior pixels from the pixel `begin` on.
void LinearSamples(const ResizeAxis& axis, int begin, int count, std::int32_t* index,
                   double* fraction);

// The same for pixels of the bands too, which get taps inside the image and no fraction. The axis
// has an interior.
void LinearSamplesInImage(const ResizeAxis& axis, const ResizeBands& bands, int begin, int count,
                          std::int32_t* index, double* fraction);

// Source pixel of `count` pixels from the pixel `begin` on.
void NearestSamples(const ResizeAxis& axis, int begin, int count, std::int32_t* index);

// A linear fraction in units of 1 / 16384.
constexpr int kFixedOne = 16384;
void FixedFractions(int count, const double* fraction, std::int32_t* fixed);

}  // namespace zov

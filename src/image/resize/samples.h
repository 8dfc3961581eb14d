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

// `reach` is half the number of taps: 1 for linear, 2 for the cubics, 3 for Lanczos.
ResizeBands FindBands(const ResizeAxis& axis, int reach);

// Position of pixel i of an axis in index space. Coordinates count from pixel edges and indices
// from pixel centres, so the sample of a pixel with the centre at first + i + 0.5 lies half a pixel
// lower in index space.
class SamplePosition {
 public:
  explicit SamplePosition(const ResizeAxis& axis)
      : first_(static_cast<double>(axis.first)),
        inverse_(axis.inverse),
        shift_(axis.offset - 0.5) {}
  double operator()(int i) const { return (first_ + i + 0.5) * inverse_ + shift_; }

 private:
  double first_;
  double inverse_;
  double shift_;
};

// Lower tap and fraction of `count` interior pixels from the pixel `begin` on.
void LinearSamples(const ResizeAxis& axis, int begin, int count, std::int32_t* index,
                   double* fraction);

// The same for pixels of the bands too, which get taps inside the image and no fraction. The axis
// has an interior.
void LinearSamplesInImage(const ResizeAxis& axis, const ResizeBands& bands, int begin, int count,
                          std::int32_t* index, double* fraction);

// True when the samples of an axis lie in the middle between two pixels, two pixels apart.
bool SamplesMiddles(const ResizeAxis& axis);

// Source pixel of `count` pixels from the pixel `begin` on.
void NearestSamples(const ResizeAxis& axis, int begin, int count, std::int32_t* index);

// A linear fraction in units of 1 / 16384.
constexpr int kFixedOne = 16384;
void FixedFractions(int count, const double* fraction, std::int32_t* fixed);

}  // namespace zov

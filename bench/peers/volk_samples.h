// VOLK's conversions and reductions, the best that the instructions of each level allow.
#pragma once

#include <cstdint>

#include "core/level.h"

namespace zov::bench {

struct VolkSampleKernels {
  void (*toFloat16)(float* out, const std::int16_t* a, float scale, unsigned n);
  void (*toDouble)(double* out, const float* a, unsigned n);
  void (*toFloat64)(float* out, const double* a, unsigned n);
  void (*toShort)(std::int16_t* out, const float* a, float scale, unsigned n);
  void (*split)(float* first, float* second, const void* pairs, float scale, unsigned n);
  void (*deviation)(float* deviation, float* mean, const float* a, unsigned n);
  void (*indexOfLargest)(std::uint32_t* at, const float* a, std::uint32_t n);
  void (*indexOfSmallest)(std::uint32_t* at, const float* a, std::uint32_t n);
  void (*larger)(float* out, const float* a, const float* b, unsigned n);
  void (*smaller)(float* out, const float* a, const float* b, unsigned n);
};

extern const VolkSampleKernels* const kVolkSamples[kLevelCount];

}  // namespace zov::bench

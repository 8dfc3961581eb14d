// What the cases of conversions and statistics share with OpenCV, which has an interface of its
// own.
#pragma once

#include "contest.h"

namespace zov::bench {

enum class Depth { u16, s16, s32, f32, f64 };

template <class T>
constexpr Depth kDepthOf = Depth::f64;
template <>
inline constexpr Depth kDepthOf<Zov16u> = Depth::u16;
template <>
inline constexpr Depth kDepthOf<Zov16s> = Depth::s16;
template <>
inline constexpr Depth kDepthOf<Zov32s> = Depth::s32;
template <>
inline constexpr Depth kDepthOf<Zov32f> = Depth::f32;

// An array as OpenCV sees it, a matrix of one row.
struct Samples {
  const void* data;
  Depth depth;
  int len;
};
template <class T>
Samples SamplesOf(const T* data, int len) {
  return {data, kDepthOf<T>, len};
}

// out[i] = a[i] * scale + offset, converted, rounded to nearest and saturated.
void AddOpenCvConvert(Contest& contest, Samples a, Samples out, double scale, double offset);
void AddOpenCvSum(Contest& contest, Samples a);
void AddOpenCvMean(Contest& contest, Samples a);
void AddOpenCvDeviation(Contest& contest, Samples a);
// One extreme, both, or one with its position.
enum class Extremes { smallest, largest, both };
void AddOpenCvExtremes(Contest& contest, Samples a, Extremes which);
void AddOpenCvEvery(Contest& contest, Samples a, Samples out, Extremes which);

}  // namespace zov::bench

// What the peers of image resize need to know of a case. Where a peer does other work than we do,
// its source says so.
#pragma once

#include "contest.h"
#include "kelozov/kelozov.h"

namespace zov::bench {

enum class Pixel { u8, f32, f64 };

struct ResizeTask {
  Pixel pixel;
  int channels;
  ZovImageSize sourceSize;
  ZovImageSize targetSize;
  int method;      // ZOV_INTERP_...
  bool antialias;  // the filter widens when it reduces
  const void* source;
  void* target;
  int sourceStep;  // bytes
  int targetStep;
};

// Each adds its peer, held to the contest's level and unheld, if it knows the format.
void AddOpenCvResize(Contest& contest, const ResizeTask& task);
void AddSwscaleResize(Contest& contest, const ResizeTask& task);
void AddZimgResize(Contest& contest, const ResizeTask& task);
// The same by area, which two of them know; images of 8 or 32 bits without gaps between rows.
void AddOpenCvArea(Contest& contest, const ResizeTask& task);
void AddSwscaleArea(Contest& contest, const ResizeTask& task);

}  // namespace zov::bench

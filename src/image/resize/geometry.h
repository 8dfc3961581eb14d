// The rectangle of destination pixels that a resize writes, and how its axes map to the source.
#pragma once

#include <cstdint>

#include "image/resize/contract.h"

namespace zov {

// One axis of the written rectangle. Destination coordinate u lies at source coordinate
// u * inverse + offset.
struct ResizeAxis {
  std::int64_t first;  // destination index of the first written pixel
  int count;           // written pixels
  int extent;          // pixels of the whole source image
  double inverse;
  double offset;
  double near;  // unrounded edges of what the mapped source rectangle covers
  double far;
};

struct ResizeGeometry {
  ResizeAxis x;
  ResizeAxis y;
};

// zovStsNoOperationWrn when no pixel is covered.
ZovStatus MapResize(const ResizeRequest& request, ResizeGeometry* geometry);

}  // namespace zov

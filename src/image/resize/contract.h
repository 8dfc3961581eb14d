// What a caller of the resize family may ask for: the request, its method and flags, and the
// checks.
#pragma once

#include <cstdint>

#include "kelozov/kelozov.h"

namespace zov {

// The arguments of a resize, without its images and its work buffer.
struct ResizeRequest {
  ZovImageSize srcSize;
  ZovImageRect srcRoi;
  ZovImageRect dstRoi;
  double xFactor;
  double yFactor;
  double xShift;
  double yShift;
  int interpolation;
};

enum ResizeFlag : std::uint32_t {
  kEdgeBlend = 0x80000000,
  kEdgeFade = 0x40000000,
  kAntialias = 0x20000000,
};

// The `interpolation` argument taken apart.
struct ResizeMode {
  std::uint32_t method;  // a ZovInterpolation, once checked
  std::uint32_t flags;   // of ResizeFlag
};

ResizeMode ParseInterpolation(int interpolation);

// True when the corner is not negative and the extent not empty.
bool IsValidRect(const ZovImageRect& rect);

// True for a known method with at most one flag.
bool IsValidMode(const ResizeMode& mode);

// True for the methods that have no antialiased form and ignore the flag.
bool IgnoresAntialias(std::uint32_t method);

// Checks a request and settles its method, small images included. Zero lets the resize go on.
ZovStatus CheckResize(bool anyNull, const ResizeRequest& request, ResizeMode* mode);

}  // namespace zov

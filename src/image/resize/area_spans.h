// The source pixels that each destination pixel of an area reduction covers,
// along one axis.
#pragma once

#include <cstdint>

#include "image/resize/geometry.h"

namespace zov {

// A destination pixel is the sum of a weighted pixel, `count` pixels of weight
// 1 and another weighted one. A weight of 0 means none. Indices may lie outside
// the image, where its outermost pixel is repeated; what a span covers far
// outside is part of the weights.
struct AreaSpan {
  double head;
  double tail;
  int headAt;
  int begin;
  int count;
  int tailAt;
};

// The outermost source pixels of a span.
int FirstOf(const AreaSpan& span);
int LastOf(const AreaSpan& span);

enum class AreaDirection { columns, rows };

// The spans of an axis, one after the other.
class AreaSpans {
 public:
  // With `whole`, every span is a whole number of pixels.
  AreaSpans(const ResizeAxis& axis, AreaDirection direction, bool whole);

  AreaSpan Next();

  // True when the spans of both axes may be taken as whole pixels.
  static bool AreWhole(const ResizeGeometry& geometry);
  // True when all weights are multiples of one half, exactly.
  static bool AreHalves(const ResizeGeometry& geometry);

 private:
  double inverse_;
  std::int64_t extent_;
  AreaDirection direction_;
  bool whole_;
  bool isFirst_ = true;
  std::int64_t place_;  // the first pixel that is not used up
  std::int64_t end_;    // one past the last pixel of the axis
  double fraction_;     // share of the pixel at place_ that is used up; of the
                        // first pixel, the rest
};

}  // namespace zov

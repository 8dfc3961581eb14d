// Resampled source rows that wait for the vertical pass.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Holds one line for each of kTaps consecutive source rows; a row's slot is its number modulo
// kTaps. Rows are asked for in rising order, so each is resampled at most once, and a row that
// nothing asks for is not resampled at all.
template <int kTaps, class Line>
class LineRing {
 public:
  struct Entry {
    Line* line;
    bool isNew;  // the caller is to fill it
  };

  LineRing(Line* lines, std::int64_t stride) {
    for (int slot = 0; slot < kTaps; ++slot) {
      lines_[slot] = lines + slot * stride;
      rows_[slot] = -1;
    }
  }

  ZOV_INLINE Entry Get(int row) {
    const int slot = row % kTaps;
    const bool isNew = rows_[slot] != row;
    rows_[slot] = row;
    return {lines_[slot], isNew};
  }

 private:
  Line* lines_[kTaps];
  int rows_[kTaps];
};

// The two lines of a bilinear row. A source row that is given is still to be resampled into its
// line.
template <class Line>
struct LinePair {
  const Zov8u* upperRow;
  const Zov8u* lowerRow;
  Line* upper;
  Line* lower;
  std::ptrdiff_t ahead;  // bytes from source rows that are given to those read after them
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Resampled source rows that wait for the vertical pass.
#pragma once

#include "core/level.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Holds one line for each of kTaps consecutive source rows; a row's slot is its number modulo
// kTaps. Rows are asked for in rising order, so each is resampled at most once, and a row that
// nothing asks for is not resampled at all.
template <int kTaps, class Line>
class LineRing {
 public:
  LineRing(Line* lines, std::int64_t stride) {
    for (int slot = 0; slot < kTaps; ++slot) {
      lines_[slot] = lines + slot * stride;
      rows_[slot] = -1;
    }
  }

  // The line of a source row; resample(row, line) fills it when it is new.
  template <class Resample>
  ZOV_INLINE const Line* Get(int row, Resample resample) {
    const int slot = row % kTaps;
    if (rows_[slot] != row) {
      resample(row, lines_[slot]);
      rows_[slot] = row;
    }
    return lines_[slot];
  }

 private:
  Line* lines_[kTaps];
  int rows_[kTaps];
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

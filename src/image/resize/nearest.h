// Nearest neighbour: every written pixel is a copy of one source pixel.
#pragma once

#include "image/resize/nearest_columns.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Pixel is an unsigned integer as wide as a pixel with all its channels.
template <class Pixel>
void ResizeNearest(SourceView src, TargetView dst, const ResizeGeometry& geometry,
                   Zov8u* workBuffer) {
  constexpr int kPixel = sizeof(Pixel);
  WorkArena arena(workBuffer);
  const typename NearestColumnsOf<Pixel>::Type columns(&arena, geometry.x);
  const std::int64_t rowBytes = std::int64_t{geometry.x.count} * kPixel;
  const TargetView rows = {dst.Row(geometry.y.first) + geometry.x.first * kPixel, dst.step};
  // A row that repeats its source row is a copy of the row above, unless rows share bytes.
  const bool copies = dst.step >= rowBytes || -dst.step >= rowBytes;
  std::int32_t previous = -1;
  for (int i = 0; i < geometry.y.count; ++i) {
    std::int32_t srcY;
    NearestSamples(geometry.y, i, 1, &srcY);
    if (copies && srcY == previous) {
      CopyBytes(rows.Row(i - 1), rows.Row(i), rowBytes);
    } else {
      columns.CopyRow(src.Row(srcY), RowWriter(rows.Row(i)));
    }
    previous = srcY;
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

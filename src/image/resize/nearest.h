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
  // Two rows from the same source row are written together, unless rows share bytes.
  const bool rowsApart = dst.step >= rowBytes || -dst.step >= rowBytes;
  const auto sourceRow = [&geometry](int row) {
    std::int32_t srcY;
    NearestSamples(geometry.y, row, 1, &srcY);
    return srcY;
  };
  std::int32_t next = sourceRow(0);
  for (int row = 0; row < geometry.y.count;) {
    const std::int32_t srcY = next;
    const int end = geometry.y.count;
    int written = 1;
    if (row + 1 < end) next = sourceRow(row + 1);
    if (row + 1 < end && rowsApart && next == srcY) {
      written = 2;
      if (row + 2 < end) next = sourceRow(row + 2);
    }
    const std::ptrdiff_t ahead = written * rows.step;
    const RowWriter writers[2] = {{rows.Row(row), ahead}, {rows.Row(row + written - 1), ahead}};
    if (written == 2) {
      columns.template CopyRow<2>(src.Row(srcY), src.Row(next), writers);
    } else {
      columns.template CopyRow<1>(src.Row(srcY), src.Row(next), writers);
    }
    row += written;
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

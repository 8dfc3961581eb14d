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
  // Rows of wide pixels are as fast to make as to copy, so they may leave the cache at once.
  const bool streams =
      kPixel > 1 && RowWriter::Suits(rows.origin, rows.step, rowBytes, geometry.y.count);
  // A row that repeats its source row is a copy of the row above, unless rows share bytes.
  const bool copies = !streams && (dst.step >= rowBytes || -dst.step >= rowBytes);
  std::int32_t previous = -1;
  for (int i = 0; i < geometry.y.count; ++i) {
    std::int32_t srcY;
    NearestSamples(geometry.y, i, 1, &srcY);
    if (copies && srcY == previous) {
      CopyBytes(rows.Row(i - 1), rows.Row(i), rowBytes);
    } else {
      columns.CopyRow(src.Row(srcY), RowWriter(rows.Row(i), rowBytes, streams));
    }
    previous = srcY;
  }
  if (streams) _mm_sfence();
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

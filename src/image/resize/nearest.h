// Nearest neighbour: every written pixel is a copy of one source pixel.
#pragma once

#include "image/resize/image_view.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Pixel is an unsigned integer as wide as a pixel with all its channels.
template <class Pixel>
class NearestColumns {
 public:
  NearestColumns(WorkArena* arena, const ResizeAxis& axis)
      : count_(axis.count), index_(arena->Take<std::int32_t>(axis.count)) {
    NearestSamples(axis, 0, count_, index_);
  }

  void CopyRow(const Zov8u* src, Zov8u* dst) const {
    constexpr int kPixel = sizeof(Pixel);
    for (int i = 0; i < count_; ++i) {
      StoreAs(dst + std::int64_t{i} * kPixel,
              LoadAs<Pixel>(src + std::int64_t{index_[i]} * kPixel));
    }
  }

 private:
  int count_;
  std::int32_t* index_;
};

template <class Pixel>
void ResizeNearest(SourceView src, TargetView dst, const ResizeGeometry& geometry,
                   Zov8u* workBuffer) {
  constexpr int kPixel = sizeof(Pixel);
  WorkArena arena(workBuffer);
  const NearestColumns<Pixel> columns(&arena, geometry.x);
  const std::int64_t rowBytes = std::int64_t{geometry.x.count} * kPixel;
  // A row that repeats its source row is a copy of the row above, unless rows share bytes.
  const bool rowsApart = dst.step >= rowBytes || -dst.step >= rowBytes;
  std::int32_t previous = -1;
  for (int i = 0; i < geometry.y.count; ++i) {
    std::int32_t srcY;
    NearestSamples(geometry.y, i, 1, &srcY);
    Zov8u* const target = dst.Row(geometry.y.first + i) + geometry.x.first * kPixel;
    if (srcY == previous && rowsApart) {
      CopyBytes(target - dst.step, target, rowBytes);
    } else {
      columns.CopyRow(src.Row(srcY), target);
    }
    previous = srcY;
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

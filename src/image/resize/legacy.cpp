// The older resize without shifts and without a work buffer of the caller's. It is made of the
// public operations and goes through their entries.
#include "kelozov/kelozov.h"

namespace zov {

namespace {

template <class T>
using ResizeOperation = ZovStatus (*)(const T*, ZovImageSize, int, ZovImageRect, T*, int,
                                      ZovImageRect, double, double, double, double, int, Zov8u*);

template <int kChannels, class T>
ZovStatus ResizeWithoutBuffer(ResizeOperation<T> resize, const T* src, ZovImageSize srcSize,
                              int srcStep, ZovImageRect srcRoi, T* dst, int dstStep,
                              ZovImageSize dstRoiSize, double xFactor, double yFactor,
                              int interpolation) {
  // The destination rectangle has the source rectangle's corner, whatever the factors.
  const ZovImageRect dstRoi = {srcRoi.x, srcRoi.y, dstRoiSize.width, dstRoiSize.height};
  int bytes = 0;
  ZovStatus status = Kelo_zoviResizeGetBufSize(srcRoi, dstRoi, kChannels, interpolation, &bytes);
  if (status != zovStsNoErr) return status;
  Zov8u* const buffer = Kelo_zovsMalloc_8u(bytes);
  // No memory, no resize, and no error: callers have come to rely on it.
  if (buffer == nullptr) return status;
  status = resize(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, xFactor, yFactor, 0.0, 0.0,
                  interpolation, buffer);
  Kelo_zovsFree(buffer);
  return status;
}

}  // namespace

}  // namespace zov

extern "C" {

#define ZOV_LEGACY_RESIZE(name, T, channels, resize)                                           \
  ZovStatus name(const T* src, ZovImageSize srcSize, int srcStep, ZovImageRect srcRoi, T* dst, \
                 int dstStep, ZovImageSize dstRoiSize, double xFactor, double yFactor,         \
                 int interpolation) {                                                          \
    return zov::ResizeWithoutBuffer<channels, T>(resize, src, srcSize, srcStep, srcRoi, dst,   \
                                                 dstStep, dstRoiSize, xFactor, yFactor,        \
                                                 interpolation);                               \
  }

ZOV_LEGACY_RESIZE(Kelo_zoviResize_8u_C1R, Zov8u, 1, &Kelo_zoviResizeSqrPixel_8u_C1R)
ZOV_LEGACY_RESIZE(Kelo_zoviResize_8u_C4R, Zov8u, 4, &Kelo_zoviResizeSqrPixel_8u_C4R)
ZOV_LEGACY_RESIZE(Kelo_zoviResize_32f_C1R, Zov32f, 1, &Kelo_zoviResizeSqrPixel_32f_C1R)

#undef ZOV_LEGACY_RESIZE

}  // extern "C"

// Entries of the resize family: checks, geometry, and the route by method.
#include "core/checks.h"
#include "core/entries.h"
#include "image/resize/antialias.h"
#include "image/resize/area.h"
#include "image/resize/buffer_size.h"
#include "image/resize/contract.h"
#include "image/resize/edge_smoothing.h"
#include "image/resize/geometry.h"
#include "image/resize/kernel_resize.h"
#include "image/resize/linear.h"
#include "image/resize/nearest.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr int kAlignmentAllowance = kLevel >= Level::avx ? 32 : 16;

template <int kBytes>
struct PixelOfBytes;
template <>
struct PixelOfBytes<1> {
  using Type = std::uint8_t;
};
template <>
struct PixelOfBytes<4> {
  using Type = std::uint32_t;
};
template <>
struct PixelOfBytes<8> {
  using Type = std::uint64_t;
};

// The size of the work buffer that the caller was told to bring tells how much of it may be used.
template <class T, int kChannels>
ZOV_NOINLINE void ResizeAntialiased(std::uint32_t method, SourceView src, TargetView dst,
                                    const ResizeGeometry& geometry, const ResizeRequest& request,
                                    Zov8u* workBuffer) {
  constexpr int kReal = sizeof(T) == sizeof(Zov64f) ? sizeof(Zov64f) : sizeof(Zov32f);
  int bytes = 0;
  ResizeBufferSize(request.srcRoi, request.dstRoi, kChannels, request.interpolation, kReal,
                   kAlignmentAllowance, &bytes);
  AntialiasResize<T, kChannels>(src, dst, geometry, method).Run(workBuffer, bytes);
}

template <class T, int kChannels>
ZovStatus Resize(const T* src, int srcStep, T* dst, int dstStep, const ResizeRequest& request,
                 Zov8u* workBuffer) {
  ResizeMode mode;
  if (const ZovStatus status = CheckResize(AnyNull(src, dst, workBuffer), request, &mode)) {
    return status;
  }
  ResizeGeometry geometry;
  if (const ZovStatus status = MapResize(request, &geometry)) return status;

  const SourceView source = {reinterpret_cast<const Zov8u*>(src), srcStep};
  const TargetView target = {reinterpret_cast<Zov8u*>(dst), dstStep};
  const bool antialias = (mode.flags & kAntialias) != 0;
  const bool ignored = antialias && IgnoresAntialias(mode.method);
  if (antialias && !ignored) {
    ResizeAntialiased<T, kChannels>(mode.method, source, target, geometry, request, workBuffer);
  } else if (mode.method == ZOV_INTERP_NEAREST) {
    using Pixel = typename PixelOfBytes<kChannels* static_cast<int>(sizeof(T))>::Type;
    ResizeNearest<Pixel>(source, target, geometry, workBuffer);
  } else if (mode.method == ZOV_INTERP_AREA) {
    ResizeArea<T, kChannels>(source, target, geometry, request.xFactor * request.yFactor);
  } else if (mode.method == ZOV_INTERP_LINEAR) {
    ResizeLinear<T, kChannels>(source, target, geometry, workBuffer);
  } else {
    ResizeByKernel<T, kChannels>(mode.method, source, target, geometry, workBuffer);
  }
  if ((mode.flags & (kEdgeBlend | kEdgeFade)) != 0) {
    SmoothEdges<T, kChannels>(mode.flags, geometry, target.origin, target.step);
  }
  return ignored ? zovStsAntialiasIgnoredWrn : zovStsNoErr;
}

}  // namespace

ZovStatus zoviResizeGetBufSize(ZovImageRect srcRoi, ZovImageRect dstRoi, int numChannels,
                               int interpolation, int* bufferSize) {
  return ResizeBufferSize(srcRoi, dstRoi, numChannels, interpolation, sizeof(Zov32f),
                          kAlignmentAllowance, bufferSize);
}

ZovStatus zoviResizeGetBufSize_64f(ZovImageRect srcRoi, ZovImageRect dstRoi, int numChannels,
                                   int interpolation, int* bufferSize) {
  return ResizeBufferSize(srcRoi, dstRoi, numChannels, interpolation, sizeof(Zov64f),
                          kAlignmentAllowance, bufferSize);
}

#define ZOV_RESIZE(name, T, channels)                                                             \
  ZovStatus name(const T* src, ZovImageSize srcSize, int srcStep, ZovImageRect srcRoi, T* dst,    \
                 int dstStep, ZovImageRect dstRoi, double xFactor, double yFactor, double xShift, \
                 double yShift, int interpolation, Zov8u* workBuffer) {                           \
    const ResizeRequest request = {srcSize, srcRoi, dstRoi, xFactor,                              \
                                   yFactor, xShift, yShift, interpolation};                       \
    return Resize<T, channels>(src, srcStep, dst, dstStep, request, workBuffer);                  \
  }

ZOV_RESIZE(zoviResizeSqrPixel_8u_C1R, Zov8u, 1)
ZOV_RESIZE(zoviResizeSqrPixel_8u_C4R, Zov8u, 4)
ZOV_RESIZE(zoviResizeSqrPixel_32f_C1R, Zov32f, 1)
ZOV_RESIZE(zoviResizeSqrPixel_64f_C1R, Zov64f, 1)

#undef ZOV_RESIZE

}  // namespace zov::ZOV_LEVEL_NAMESPACE

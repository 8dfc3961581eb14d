// Checks of a resize in the order of the contract.
#include "image/resize/contract.h"

namespace zov {

bool IgnoresAntialias(std::uint32_t method) {
  return method == ZOV_INTERP_NEAREST || method == ZOV_INTERP_AREA;
}

namespace {

bool IsCubic(std::uint32_t method) {
  return method >= ZOV_INTERP_CUBIC && method <= ZOV_INTERP_CUBIC_MIXED;
}

// An image too small for the taps of a method is resized by a shorter kernel.
std::uint32_t MethodForImage(std::uint32_t method, ZovImageSize size) {
  const int side = size.width < size.height ? size.width : size.height;
  if (side >= 6) return method;
  if (method == ZOV_INTERP_LANCZOS) method = ZOV_INTERP_CUBIC;
  if (side < 4 && IsCubic(method)) method = ZOV_INTERP_LINEAR;
  return method;
}

int WrappingSum(int a, int b) {
  return static_cast<int>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

bool LiesInImage(const ZovImageRect& roi, ZovImageSize size) {
  return roi.x < size.width && roi.y < size.height && WrappingSum(roi.x, roi.width) >= 1 &&
         WrappingSum(roi.y, roi.height) >= 1;
}

}  // namespace

ResizeMode ParseInterpolation(int interpolation) {
  const std::uint32_t word = static_cast<std::uint32_t>(interpolation);
  constexpr std::uint32_t kFlags = kEdgeBlend | kEdgeFade | kAntialias;
  return {word & ~kFlags, word & kFlags};
}

bool IsValidRect(const ZovImageRect& rect) {
  return rect.x >= 0 && rect.y >= 0 && rect.width > 0 && rect.height > 0;
}

bool IsValidMode(const ResizeMode& mode) {
  const bool known = mode.method == ZOV_INTERP_NEAREST || mode.method == ZOV_INTERP_LINEAR ||
                     IsCubic(mode.method) || mode.method == ZOV_INTERP_AREA ||
                     mode.method == ZOV_INTERP_LANCZOS;
  const bool atMostOneFlag = (mode.flags & (mode.flags - 1)) == 0;
  return known && atMostOneFlag;
}

ZovStatus CheckResize(bool anyNull, const ResizeRequest& request, ResizeMode* mode) {
  if (anyNull) return zovStsNullPtrErr;
  if (request.srcSize.width <= 0 || request.srcSize.height <= 0) return zovStsSizeErr;
  if (!IsValidRect(request.srcRoi) || !IsValidRect(request.dstRoi)) return zovStsSizeErr;
  // A NaN factor is neither zero nor negative; the geometry then finds no pixel to write.
  if (request.xFactor <= 0 || request.yFactor <= 0) return zovStsResizeFactorErr;
  *mode = ParseInterpolation(request.interpolation);
  if (!IsValidMode(*mode)) return zovStsInterpolationErr;
  if (mode->method == ZOV_INTERP_AREA && (request.xFactor > 1 || request.yFactor > 1)) {
    return zovStsResizeFactorErr;
  }
  mode->method = MethodForImage(mode->method, request.srcSize);
  if (!LiesInImage(request.srcRoi, request.srcSize)) return zovStsResizeRoiWrn;
  return zovStsNoErr;
}

}  // namespace zov

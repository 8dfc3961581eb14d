// Work-buffer formulas by method. Each product is taken modulo 2^32, sums and the final scale are
// 64-bit.
#include "image/resize/buffer_size.h"

#include "image/resize/kernel_taps.h"

namespace zov {

namespace {

using Wide = std::uint64_t;

Wide Product(Wide a, Wide b) { return static_cast<std::uint32_t>(a * b); }
Wide RoundUp(Wide a, Wide multiple) { return (a + multiple - 1) / multiple * multiple; }

struct Extents {
  Wide srcWidth, srcHeight, dstWidth, dstHeight, channels;
};

// Index tables of both axes.
Wide IndexEntries(const Extents& e) { return RoundUp(e.dstWidth, 16) + RoundUp(e.dstHeight, 16); }

Wide LinearEntries(const Extents& e) {
  return RoundUp(e.dstWidth, 64) + RoundUp(e.dstHeight, 64) +
         Product(RoundUp(Product(2, e.dstWidth) + 64, 64), e.channels);
}

Wide CubicEntries(const Extents& e) {
  return RoundUp(Product(4, e.dstWidth) + 96, 32) + RoundUp(e.dstWidth, 32) +
         RoundUp(e.dstHeight, 32) + RoundUp(Product(4, e.dstHeight) + 96, 32) +
         Product(RoundUp(Product(4, e.dstWidth) + 192, 64), e.channels);
}

Wide LanczosEntries(const Extents& e) {
  return RoundUp(Product(6, e.dstWidth) + 160, 32) + RoundUp(e.dstWidth, 32) +
         RoundUp(e.dstHeight, 32) + RoundUp(Product(6, e.dstHeight) + 160, 32) +
         Product(RoundUp(Product(6, e.dstWidth) + 160, 32), e.channels);
}

Wide BytesByMethod(std::uint32_t method, const Extents& e, Wide realBytes) {
  switch (method) {
    case ZOV_INTERP_NEAREST:
      return 4 * IndexEntries(e);
    case ZOV_INTERP_LINEAR:
      return realBytes * LinearEntries(e) + 4 * IndexEntries(e);
    case ZOV_INTERP_AREA:
      return realBytes * Product(Product(2, RoundUp(e.srcWidth, 16)), e.channels);
    case ZOV_INTERP_LANCZOS:
      return realBytes * LanczosEntries(e) + 4 * IndexEntries(e);
    default:
      return realBytes * CubicEntries(e) + 4 * IndexEntries(e);
  }
}

// Taps of a whole axis when the kernel widens with the reduction: the support is rounded up.
Wide WidenedTaps(Wide radius, Wide src, Wide dst) {
  const Wide support = src >= dst ? (radius * src + dst - 1) / dst : radius;
  return RoundUp(Product(2 * support + 2, dst), 16);
}

Wide AntialiasBytes(std::uint32_t method, const Extents& e, Wide realBytes) {
  const Wide radius = static_cast<Wide>(KernelRadius(method));
  const Wide xTaps = WidenedTaps(radius, e.srcWidth, e.dstWidth);
  const Wide yTaps = WidenedTaps(radius, e.srcHeight, e.dstHeight);
  const Wide image = RoundUp(Product(Product(e.dstWidth, e.srcHeight), e.channels), 16);
  const Wide line = RoundUp(Product(e.dstWidth, e.channels), 16);
  return realBytes * (2 * image + line) + (4 + realBytes) * (xTaps + yTaps);
}

}  // namespace

ZovStatus ResizeBufferSize(const ZovImageRect& srcRoi, const ZovImageRect& dstRoi, int numChannels,
                           int interpolation, int realBytes, int allowance, int* bufferSize) {
  if (bufferSize == nullptr) return zovStsNullPtrErr;
  if (!IsValidRect(srcRoi) || !IsValidRect(dstRoi)) return zovStsSizeErr;
  if (numChannels != 1 && numChannels != 3 && numChannels != 4) return zovStsNumChannelsErr;
  const ResizeMode mode = ParseInterpolation(interpolation);
  if (!IsValidMode(mode)) return zovStsInterpolationErr;

  const Extents extents = {static_cast<Wide>(srcRoi.width), static_cast<Wide>(srcRoi.height),
                           static_cast<Wide>(dstRoi.width), static_cast<Wide>(dstRoi.height),
                           static_cast<Wide>(numChannels)};
  const bool antialias = (mode.flags & kAntialias) != 0;
  const bool ignored = antialias && IgnoresAntialias(mode.method);
  const Wide width = static_cast<Wide>(realBytes);
  const Wide bytes = antialias && !ignored ? AntialiasBytes(mode.method, extents, width)
                                           : BytesByMethod(mode.method, extents, width);
  if (bytes >= Wide{1} << 31) {
    *bufferSize = 0;
    return zovStsSizeErr;
  }
  *bufferSize = static_cast<int>(bytes) + allowance;
  return ignored ? zovStsAntialiasIgnoredWrn : zovStsNoErr;
}

}  // namespace zov

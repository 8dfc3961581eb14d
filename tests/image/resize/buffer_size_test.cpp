// Work-buffer sizes: formulas, overflow, level allowance, and the checks in front of them.
#include <cmath>
#include <random>

#include "image/resize/members.h"

namespace zov::test {
namespace {

constexpr int kMethods[] = {1, 2, 4, 5, 6, 7, 8, 16};

double Up(double a, double multiple) { return std::ceil(a / multiple) * multiple; }

// The size without the allowance, in plain real arithmetic: right as long as no product reaches
// 2^32, and then at least 2^31 exactly when the operation must refuse.
double CoreBytes(double sw, double sh, double dw, double dh, double n, int method, bool antialias,
                 double real) {
  const double tables = 4 * (Up(dw, 16) + Up(dh, 16));
  const double fractions = Up(dw, 32) + Up(dh, 32);
  if (antialias && method != ZOV_INTERP_NEAREST && method != ZOV_INTERP_AREA) {
    const double radius = method == ZOV_INTERP_LINEAR ? 1 : method == ZOV_INTERP_LANCZOS ? 3 : 2;
    const double cx = std::ceil(sw >= dw ? radius * sw / dw : radius);
    const double cy = std::ceil(sh >= dh ? radius * sh / dh : radius);
    const double taps = Up((2 * cx + 2) * dw, 16) + Up((2 * cy + 2) * dh, 16);
    return 2 * real * Up(dw * sh * n, 16) + real * Up(dw * n, 16) + (real + 4) * taps;
  }
  switch (method) {
    case ZOV_INTERP_NEAREST:
      return tables;
    case ZOV_INTERP_LINEAR:
      return real * (Up(dw, 64) + Up(dh, 64) + Up(2 * dw + 64, 64) * n) + tables;
    case ZOV_INTERP_AREA:
      return real * 2 * Up(sw, 16) * n;
    case ZOV_INTERP_LANCZOS:
      return real * (fractions + Up(6 * dh + 160, 32) + Up(6 * dw + 160, 32) * (n + 1)) + tables;
    default:
      return real * (fractions + Up(4 * dw + 96, 32) + Up(4 * dh + 96, 32) +
                     Up(4 * dw + 192, 64) * n) +
             tables;
  }
}

TEST(ResizeBufferSize, FollowsTheFormulas) {
  std::mt19937 random(1);
  ForEachLevel([&](int level) {
    const int allowance = level >= 5 ? 32 : 16;
    for (int round = 0; round < 400; ++round) {
      // Extents of every magnitude up to 2^24, so that some sizes overflow.
      const auto extent = [&] { return 1 + static_cast<int>(random() >> (8 + random() % 24)); };
      const ZovImageRect src = {static_cast<int>(random() % 9), 3, extent(), extent()};
      const ZovImageRect dst = {5, static_cast<int>(random() % 9), extent(), extent()};
      const int channels = round % 3 == 0 ? 1 : round % 3 == 1 ? 3 : 4;
      if (1.0 * dst.width * src.height * channels >= 4294967296.0) continue;
      for (int method : kMethods) {
        for (int flag : {0, ZOV_EDGE_BLEND, ZOV_EDGE_FADE, ZOV_RESIZE_ANTIALIAS}) {
          for (int real : {4, 8}) {
            const bool antialias = flag == ZOV_RESIZE_ANTIALIAS;
            const double bytes = CoreBytes(src.width, src.height, dst.width, dst.height, channels,
                                           method, antialias, real);
            const auto call = real == 4 ? ZOV_AT(level, zoviResizeGetBufSize)
                                        : ZOV_AT(level, zoviResizeGetBufSize_64f);
            int size = -1;
            const ZovStatus status = call(src, dst, channels, method | flag, &size);
            const bool ignored = antialias && (method == 1 || method == 8);
            if (bytes >= 2147483648.0) {
              ASSERT_EQ(status, zovStsSizeErr);
              ASSERT_EQ(size, 0);
            } else {
              ASSERT_EQ(status, ignored ? zovStsAntialiasIgnoredWrn : zovStsNoErr);
              ASSERT_EQ(size, bytes + allowance) << method << " flag " << flag << " real " << real
                                                 << " " << dst.width << "x" << dst.height;
            }
          }
        }
      }
    }
  });
}

TEST(ResizeBufferSize, TakesProductsIn32Bits) {
  // 65536 columns by 65536 rows: the intermediate image of the antialiased path wraps to nothing.
  int size = -1;
  const ZovImageRect src = {0, 0, 65536, 65536};
  const ZovImageRect dst = {0, 0, 65536, 65536};
  ASSERT_EQ(
      ZOV_AT(0, zoviResizeGetBufSize)(src, dst, 1, ZOV_INTERP_LINEAR | ZOV_RESIZE_ANTIALIAS, &size),
      zovStsNoErr);
  EXPECT_EQ(size, 4 * 65536 + 2 * 8 * 4 * 65536 + 16);
}

TEST(ResizeBufferSize, RefusesFrom31BitsOn) {
  ForEachLevel([](int level) {
    for (int real : {4, 8}) {
      const auto call =
          real == 4 ? ZOV_AT(level, zoviResizeGetBufSize) : ZOV_AT(level, zoviResizeGetBufSize_64f);
      const int most = (1 << 30) / real;  // columns for 2^31 bytes
      const ZovImageRect any = {0, 0, 1, 1};
      int size = 1;
      EXPECT_EQ(call({0, 0, most, 1}, any, 1, ZOV_INTERP_AREA, &size), zovStsSizeErr);
      EXPECT_EQ(size, 0);
      EXPECT_EQ(call({0, 0, most - 16, 1}, any, 1, ZOV_INTERP_AREA, &size), zovStsNoErr);
      EXPECT_EQ(size, 2147483647 - 32 * real + 1 + (level >= 5 ? 32 : 16));
    }
  });
}

TEST(ResizeBufferSize, ChecksInOrder) {
  ForEachLevel([](int level) {
    for (const auto call :
         {ZOV_AT(level, zoviResizeGetBufSize), ZOV_AT(level, zoviResizeGetBufSize_64f)}) {
      const ZovImageRect good = {0, 0, 10, 10};
      int size = 77;
      EXPECT_EQ(call({0, 0, 0, 0}, good, 2, 3, nullptr), zovStsNullPtrErr);
      for (const ZovImageRect& bad : {ZovImageRect{-1, 0, 1, 1}, ZovImageRect{0, -1, 1, 1},
                                      ZovImageRect{0, 0, 0, 1}, ZovImageRect{0, 0, 1, -1}}) {
        EXPECT_EQ(call(bad, good, 2, 3, &size), zovStsSizeErr);
        EXPECT_EQ(call(good, bad, 2, 3, &size), zovStsSizeErr);
      }
      EXPECT_EQ(call(good, good, 2, 3, &size), zovStsNumChannelsErr);
      for (int method : {0, 3, 9, 15, 17, 32, ZOV_RESIZE_ANTIALIAS}) {
        EXPECT_EQ(call(good, good, 3, method, &size), zovStsInterpolationErr);
      }
      for (int flags : {ZOV_EDGE_BLEND | ZOV_EDGE_FADE, ZOV_EDGE_BLEND | ZOV_RESIZE_ANTIALIAS,
                        ZOV_EDGE_FADE | ZOV_RESIZE_ANTIALIAS}) {
        EXPECT_EQ(call(good, good, 4, ZOV_INTERP_NEAREST | flags, &size), zovStsInterpolationErr);
      }
      EXPECT_EQ(size, 77);
      EXPECT_EQ(call({0, 0, 1 << 30, 1}, good, 1, ZOV_INTERP_AREA, &size), zovStsSizeErr);
      EXPECT_EQ(size, 0);
    }
  });
}

}  // namespace
}  // namespace zov::test

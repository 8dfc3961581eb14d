/* Resizing: a ramp doubled in both directions by each method, and halved by area
   and by a widened kernel. */
#include "smoke.h"

enum { W = 40, H = 30, C = 4 };

static Zov8u work[1 << 16];
static const ZovImageSize size = {W, H};
static const ZovImageRect srcRoi = {0, 0, W, H};
static const ZovImageRect dstRoi = {0, 0, 2 * W, 2 * H};

/* What column x holds: the source is 4 times its column. */
static int Nearest(int x) { return 4 * (x / 2); }
static int Linear(int x) { return x == 0 ? 0 : x == 2 * W - 1 ? 4 * (W - 1) : 2 * x - 1; }

/* Past the edges, every kernel keeps a ramp, Lanczos nearly so. */
static int IsSmooth(double value, int x) {
  const double distance = value - (2 * x - 1);
  return x < 5 || x >= 2 * W - 5 || (distance < 0.6 && distance > -0.6);
}
static const int smooth[] = {ZOV_INTERP_CUBIC, ZOV_INTERP_CUBIC_BSPLINE,
                             ZOV_INTERP_CUBIC_CATMULLROM, ZOV_INTERP_CUBIC_MIXED,
                             ZOV_INTERP_LANCZOS};
enum { SMOOTH = sizeof smooth / sizeof smooth[0] };

#define RESIZE(T, name, getBufSize, channels)                                                     \
  do {                                                                                            \
    static T src[H][W * (channels)], dst[2 * H][2 * W * (channels)];                              \
    int bytes = 0;                                                                                \
    for (int y = 0; y < H; ++y) {                                                                 \
      for (int x = 0; x < W * (channels); ++x) src[y][x] = (T)(4 * (x / (channels)));             \
    }                                                                                             \
    RUN(getBufSize, srcRoi, dstRoi, channels, ZOV_INTERP_NEAREST, &bytes);                        \
    EXPECT(bytes > 0 && bytes <= (int)sizeof work);                                               \
    RUN(name, src[0], size, (int)sizeof src[0], srcRoi, dst[0], (int)sizeof dst[0], dstRoi, 2, 2, \
        0, 0, ZOV_INTERP_NEAREST, work);                                                          \
    for (int y = 0; y < 2 * H; ++y) {                                                             \
      EACH(2 * W * (channels), dst[y][i] == (T)Nearest(i / (channels)));                          \
    }                                                                                             \
    RUN(getBufSize, srcRoi, dstRoi, channels, ZOV_INTERP_LINEAR, &bytes);                         \
    EXPECT(bytes > 0 && bytes <= (int)sizeof work);                                               \
    RUN(name, src[0], size, (int)sizeof src[0], srcRoi, dst[0], (int)sizeof dst[0], dstRoi, 2, 2, \
        0, 0, ZOV_INTERP_LINEAR, work);                                                           \
    for (int y = 0; y < 2 * H; ++y) {                                                             \
      EACH(2 * W * (channels), CLOSE(dst[y][i], Linear(i / (channels))));                         \
    }                                                                                             \
    for (int m = 0; m < SMOOTH; ++m) {                                                            \
      RUN(getBufSize, srcRoi, dstRoi, channels, smooth[m], &bytes);                               \
      EXPECT(bytes > 0 && bytes <= (int)sizeof work);                                             \
      RUN(name, src[0], size, (int)sizeof src[0], srcRoi, dst[0], (int)sizeof dst[0], dstRoi, 2,  \
          2, 0, 0, smooth[m], work);                                                              \
      for (int y = 0; y < 2 * H; ++y) {                                                           \
        EACH(2 * W * (channels), IsSmooth((double)dst[y][i], i / (channels)));                    \
      }                                                                                           \
    }                                                                                             \
  } while (0)

/* Blocks of 2 x 2 and areas of 2.5 x 2.5 pixels of a ramp down the rows, and a widened kernel. */
static const ZovImageRect halfRoi = {0, 0, W / 2, H / 2};
enum { antialiased = ZOV_INTERP_LANCZOS | ZOV_RESIZE_ANTIALIAS };
#define REDUCE(T, name, getBufSize, channels)                                                    \
  do {                                                                                           \
    static T src[H][W * (channels)], dst[H][W * (channels)];                                     \
    int bytes = 0;                                                                               \
    for (int y = 0; y < H; ++y) {                                                                \
      for (int x = 0; x < W * (channels); ++x) src[y][x] = (T)(2 * y);                           \
    }                                                                                            \
    RUN(getBufSize, srcRoi, srcRoi, channels, ZOV_INTERP_AREA, &bytes);                          \
    EXPECT(bytes > 0 && bytes <= (int)sizeof work);                                              \
    RUN(name, src[0], size, (int)sizeof src[0], srcRoi, dst[0], (int)sizeof dst[0], srcRoi, .5,  \
        .5, 0, 0, ZOV_INTERP_AREA, work);                                                        \
    for (int y = 0; y < H / 2; ++y) EACH(W / 2 * (channels), dst[y][i] == (T)(4 * y + 1));       \
    RUN(name, src[0], size, (int)sizeof src[0], srcRoi, dst[0], (int)sizeof dst[0], srcRoi, .4,  \
        .4, 0, 0, ZOV_INTERP_AREA, work);                                                        \
    EACH(W * 2 / 5 * (channels), CLOSE(dst[4][i], sizeof(T) == 1 ? 22 : 21.6));                  \
    RUN(getBufSize, srcRoi, halfRoi, channels, antialiased, &bytes);                             \
    EXPECT(bytes > 0 && bytes <= (int)sizeof work);                                              \
    RUN(name, src[0], size, (int)sizeof src[0], srcRoi, dst[0], (int)sizeof dst[0], halfRoi, .5, \
        .5, 0, 0, antialiased, work);                                                            \
    EACH(W / 2 * (channels), dst[H / 4][i] > H - 4 && dst[H / 4][i] < H + 4);                    \
  } while (0)

/* The form without a work buffer writes from the corner of the source rectangle on. */
#define LEGACY(T, name, channels)                                                             \
  do {                                                                                        \
    static T src[H][W * (channels)], dst[H][W * (channels)];                                  \
    const ZovImageRect part = {2, 0, 4, 2};                                                   \
    const ZovImageSize room = {8, 2};                                                         \
    for (int x = 0; x < W * (channels); ++x) src[0][x] = (T)(x / (channels) + 1);             \
    RUN(name, src[0], size, (int)sizeof src[0], part, dst[0], (int)sizeof dst[0], room, 2, 1, \
        ZOV_INTERP_NEAREST);                                                                  \
    EACH(12 * (channels),                                                                     \
         dst[0][i] ==                                                                         \
             (i < 4 * (channels) || i >= 10 * (channels) ? 0 : (T)(i / (channels) / 2 + 1))); \
  } while (0)

void SmokeResize(void) {
  LEGACY(Zov8u, zoviResize_8u_C1R, 1);
  LEGACY(Zov8u, zoviResize_8u_C4R, C);
  LEGACY(Zov32f, zoviResize_32f_C1R, 1);
  REDUCE(Zov8u, zoviResizeSqrPixel_8u_C1R, zoviResizeGetBufSize, 1);
  REDUCE(Zov8u, zoviResizeSqrPixel_8u_C4R, zoviResizeGetBufSize, C);
  REDUCE(Zov32f, zoviResizeSqrPixel_32f_C1R, zoviResizeGetBufSize, 1);
  REDUCE(Zov64f, zoviResizeSqrPixel_64f_C1R, zoviResizeGetBufSize_64f, 1);
  RESIZE(Zov8u, zoviResizeSqrPixel_8u_C1R, zoviResizeGetBufSize, 1);
  RESIZE(Zov8u, zoviResizeSqrPixel_8u_C4R, zoviResizeGetBufSize, C);
  RESIZE(Zov32f, zoviResizeSqrPixel_32f_C1R, zoviResizeGetBufSize, 1);
  RESIZE(Zov64f, zoviResizeSqrPixel_64f_C1R, zoviResizeGetBufSize_64f, 1);
}

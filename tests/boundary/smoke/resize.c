/* Resizing: a ramp doubled in both directions, by nearest neighbour and linearly. */
#include "smoke.h"

enum { W = 40, H = 30, C = 4 };

static Zov8u work[1 << 16];
static const ZovImageSize size = {W, H};
static const ZovImageRect srcRoi = {0, 0, W, H};
static const ZovImageRect dstRoi = {0, 0, 2 * W, 2 * H};

/* What column x holds: the source is 4 times its column. */
static int Nearest(int x) { return 4 * (x / 2); }
static int Linear(int x) { return x == 0 ? 0 : x == 2 * W - 1 ? 4 * (W - 1) : 2 * x - 1; }

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
  } while (0)

void SmokeResize(void) {
  RESIZE(Zov8u, zoviResizeSqrPixel_8u_C1R, zoviResizeGetBufSize, 1);
  RESIZE(Zov8u, zoviResizeSqrPixel_8u_C4R, zoviResizeGetBufSize, C);
  RESIZE(Zov32f, zoviResizeSqrPixel_32f_C1R, zoviResizeGetBufSize, 1);
  RESIZE(Zov64f, zoviResizeSqrPixel_64f_C1R, zoviResizeGetBufSize_64f, 1);
}

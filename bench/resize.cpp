// Cases of image resize.
#include "resize.h"

#include "registry.h"

namespace zov::bench {

namespace {

constexpr ZovImageSize kSource = {1920, 1080};
constexpr ZovImageSize kTargets[] = {{1280, 720}, {3840, 2160}, {480, 270}, {960, 540}};

struct Method {
  const char* name;
  int interpolation;
};
constexpr Method kMethods[] = {
    {"nearest", ZOV_INTERP_NEAREST},
    {"linear", ZOV_INTERP_LINEAR},
    {"cubic", ZOV_INTERP_CUBIC},
    {"B-spline", ZOV_INTERP_CUBIC_BSPLINE},
    {"Catmull-Rom", ZOV_INTERP_CUBIC_CATMULLROM},
    {"mixed cubic", ZOV_INTERP_CUBIC_MIXED},
    {"Lanczos", ZOV_INTERP_LANCZOS},
    {"antialiased cubic", ZOV_INTERP_CUBIC | ZOV_RESIZE_ANTIALIAS},
    {"antialiased Lanczos", ZOV_INTERP_LANCZOS | ZOV_RESIZE_ANTIALIAS},
};

ZovImageRect Whole(ZovImageSize size) { return {0, 0, size.width, size.height}; }

std::string Label(ZovImageSize size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

template <class T>
void AddFormat(Cases& cases, const char* name, decltype(ResizeTask::pixel) pixel, int channels,
               ZovStatus (*resize)(const T*, ZovImageSize, int, ZovImageRect, T*, int, ZovImageRect,
                                   double, double, double, double, int, Zov8u*)) {
  const auto getBufSize =
      pixel == Pixel::f64 ? &Kelo_zoviResizeGetBufSize_64f : &Kelo_zoviResizeGetBufSize;
  const int pixelBytes = channels * static_cast<int>(sizeof(T));
  for (const Method& method : kMethods) {
    const int interpolation = method.interpolation;
    const bool antialias = (interpolation & ZOV_RESIZE_ANTIALIAS) != 0;
    for (const ZovImageSize target : kTargets) {
      if (antialias && target.width > kSource.width) continue;
      const auto setUp = [=](Contest& contest) {
        const int sourceStep = kSource.width * pixelBytes;
        const int targetStep = target.width * pixelBytes;
        const std::size_t sourceBytes = static_cast<std::size_t>(sourceStep * kSource.height);
        const std::size_t targetBytes = static_cast<std::size_t>(targetStep * target.height);
        T* const source = reinterpret_cast<T*>(contest.Array<std::byte>(sourceBytes));
        T* const result = reinterpret_cast<T*>(contest.Array<std::byte>(targetBytes));
        // A smooth gradient with some texture; the values do not steer any of the contestants.
        for (std::size_t i = 0; i < sourceBytes / sizeof(T); ++i) {
          source[i] = static_cast<T>((i * 7 + i / 1920 * 13) % 251);
        }
        int bufferBytes = 0;
        getBufSize(Whole(kSource), Whole(target), channels, interpolation, &bufferBytes);
        // Room for the greater alignment of the other levels.
        Zov8u* const buffer = contest.Array<Zov8u>(static_cast<std::size_t>(bufferBytes) + 64);
        const double xFactor = static_cast<double>(target.width) / kSource.width;
        const double yFactor = static_cast<double>(target.height) / kSource.height;
        contest.Ours([=] {
          return resize(source, kSource, sourceStep, Whole(kSource), result, targetStep,
                        Whole(target), xFactor, yFactor, 0, 0, interpolation, buffer);
        });
        [[maybe_unused]] const ResizeTask task = {
            pixel,     channels, kSource, target,     interpolation & ~ZOV_RESIZE_ANTIALIAS,
            antialias, source,   result,  sourceStep, targetStep};
#if KELOZOV_BENCH_OPENCV
        AddOpenCvResize(contest, task);
#endif
#if KELOZOV_BENCH_SWSCALE
        AddSwscaleResize(contest, task);
#endif
#if KELOZOV_BENCH_ZIMG
        AddZimgResize(contest, task);
#endif
      };
      cases.push_back({"resize", std::string(name) + " " + method.name,
                       Label(kSource) + " to " + Label(target), "Mpix/s",
                       static_cast<double>(target.width) * target.height, setUp});
    }
  }
}

}  // namespace

void AddResizeCases(Cases& cases) {
  AddFormat(cases, "8u C1", Pixel::u8, 1, &Kelo_zoviResizeSqrPixel_8u_C1R);
  AddFormat(cases, "8u C4", Pixel::u8, 4, &Kelo_zoviResizeSqrPixel_8u_C4R);
  AddFormat(cases, "32f C1", Pixel::f32, 1, &Kelo_zoviResizeSqrPixel_32f_C1R);
  AddFormat(cases, "64f C1", Pixel::f64, 1, &Kelo_zoviResizeSqrPixel_64f_C1R);
}

}  // namespace zov::bench

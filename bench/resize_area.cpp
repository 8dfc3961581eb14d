// Cases of area reduction, with the two peers that reduce by area: OpenCV's INTER_AREA and
// swscale's SWS_AREA.
#include "registry.h"
#include "resize.h"

namespace zov::bench {

namespace {

constexpr ZovImageSize kSource = {1920, 1080};

// By 1/2, 1/4, 2/3 and 0.4.
constexpr ZovImageSize kTargets[] = {{960, 540}, {480, 270}, {1280, 720}, {768, 432}};

template <class T>
void AddFormat(Cases& cases, const char* name, Pixel pixel, int channels,
               ZovStatus (*resize)(const T*, ZovImageSize, int, ZovImageRect, T*, int, ZovImageRect,
                                   double, double, double, double, int, Zov8u*)) {
  for (const ZovImageSize target : kTargets) {
    const auto setUp = [=](Contest& contest) {
      const int sourceStep = kSource.width * channels * static_cast<int>(sizeof(T));
      const int targetStep = target.width * channels * static_cast<int>(sizeof(T));
      const std::size_t elements =
          static_cast<std::size_t>(kSource.width * kSource.height * channels);
      T* const source = contest.Array<T>(elements);
      T* const result = contest.Array<T>(elements);
      for (std::size_t i = 0; i < elements; ++i) {
        source[i] = static_cast<T>((i * 7 + i / 1920 * 13) % 251);
      }
      const ZovImageRect all = {0, 0, kSource.width, kSource.height};
      const ZovImageRect room = {0, 0, target.width, target.height};
      int bytes = 0;
      Kelo_zoviResizeGetBufSize(all, room, channels, ZOV_INTERP_AREA, &bytes);
      Zov8u* const buffer = contest.Array<Zov8u>(static_cast<std::size_t>(bytes) + 64);
      const double xFactor = static_cast<double>(target.width) / kSource.width;
      const double yFactor = static_cast<double>(target.height) / kSource.height;
      contest.Ours([=] {
        return resize(source, kSource, sourceStep, all, result, targetStep, room, xFactor, yFactor,
                      0, 0, ZOV_INTERP_AREA, buffer);
      });
      [[maybe_unused]] ResizeTask task = {};
      task.pixel = pixel;
      task.channels = channels;
      task.sourceSize = kSource;
      task.targetSize = target;
      task.source = source;
      task.target = result;
      task.sourceStep = sourceStep;
      task.targetStep = targetStep;
#if KELOZOV_BENCH_OPENCV
      AddOpenCvArea(contest, task);
#endif
#if KELOZOV_BENCH_SWSCALE
      AddSwscaleArea(contest, task);
#endif
    };
    cases.push_back(
        {"resize", std::string("area ") + name,
         "1920x1080 to " + std::to_string(target.width) + "x" + std::to_string(target.height),
         "Mpix/s", static_cast<double>(kSource.width) * kSource.height, setUp});
  }
}

}  // namespace

void AddResizeAreaCases(Cases& cases) {
  AddFormat(cases, "8u C1", Pixel::u8, 1, &Kelo_zoviResizeSqrPixel_8u_C1R);
  AddFormat(cases, "8u C4", Pixel::u8, 4, &Kelo_zoviResizeSqrPixel_8u_C4R);
  AddFormat(cases, "32f C1", Pixel::f32, 1, &Kelo_zoviResizeSqrPixel_32f_C1R);
}

}  // namespace zov::bench

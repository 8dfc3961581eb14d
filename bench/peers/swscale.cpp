// swscale. It builds its filters once, outside the timed part. Its filters widen when they reduce,
// and so do more work there than ours without antialiasing; SWS_FAST_BILINEAR does not. SWS_POINT
// is the nearest neighbour. SWS_BICUBIC stands for every cubic.
extern "C" {
#include <libavutil/cpu.h>
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include "core/level.h"
#include "resize.h"

namespace zov::bench {

namespace {

// What swscale may use at a level.
int CpuFlags(Level level) {
  int flags =
      AV_CPU_FLAG_CMOV | AV_CPU_FLAG_MMX | AV_CPU_FLAG_MMXEXT | AV_CPU_FLAG_SSE | AV_CPU_FLAG_SSE2;
  if (level >= Level::sse3) flags |= AV_CPU_FLAG_SSE3;
  if (level >= Level::ssse3) flags |= AV_CPU_FLAG_SSSE3;
  if (level >= Level::sse4) flags |= AV_CPU_FLAG_SSE4;
  if (level >= Level::avx) flags |= AV_CPU_FLAG_SSE42 | AV_CPU_FLAG_AVX;
  if (level >= Level::avx2) {
    flags |= AV_CPU_FLAG_AVX2 | AV_CPU_FLAG_FMA3 | AV_CPU_FLAG_BMI1 | AV_CPU_FLAG_BMI2;
  }
  return flags;
}

// A scaler of the task that may use the given instructions; -1 leaves the choice to swscale.
std::shared_ptr<SwsContext> Scaler(const ResizeTask& task, AVPixelFormat format, int method,
                                   int cpuFlags) {
  av_force_cpu_flags(cpuFlags);
  SwsContext* const scaler =
      sws_getContext(task.sourceSize.width, task.sourceSize.height, format, task.targetSize.width,
                     task.targetSize.height, format, method, nullptr, nullptr, nullptr);
  av_force_cpu_flags(-1);
  return {scaler, sws_freeContext};
}

}  // namespace

void AddSwscaleResize(Contest& contest, const ResizeTask& task) {
  AVPixelFormat format = AV_PIX_FMT_NONE;
  if (task.pixel == Pixel::u8) format = task.channels == 1 ? AV_PIX_FMT_GRAY8 : AV_PIX_FMT_RGBA;
  if (task.pixel == Pixel::f32) format = AV_PIX_FMT_GRAYF32;
  if (format == AV_PIX_FMT_NONE) return;

  struct Method {
    const char* name;
    int flag;
    int first, last;  // of our methods
  };
  for (const Method& method : {Method{"swscale point", SWS_POINT, 1, 1},
                               Method{"swscale fast bilinear", SWS_FAST_BILINEAR, 2, 2},
                               Method{"swscale bilinear", SWS_BILINEAR, 2, 2},
                               Method{"swscale bicubic", SWS_BICUBIC, 4, 7},
                               Method{"swscale lanczos", SWS_LANCZOS, 16, 16}}) {
    if (task.method < method.first || task.method > method.last) continue;
    const auto call = [task](const std::shared_ptr<SwsContext>& scaler) {
      return [task, scaler = scaler.get()] {
        const std::uint8_t* const source[4] = {static_cast<const std::uint8_t*>(task.source)};
        std::uint8_t* const target[4] = {static_cast<std::uint8_t*>(task.target)};
        const int sourceStep[4] = {task.sourceStep};
        const int targetStep[4] = {task.targetStep};
        sws_scale(scaler, source, sourceStep, 0, task.sourceSize.height, target, targetStep);
      };
    };
    const auto held = Scaler(task, format, method.flag, CpuFlags(Level{contest.level()}));
    const auto unheld = Scaler(task, format, method.flag, -1);
    if (held == nullptr || unheld == nullptr) continue;
    contest.Keep(held);
    contest.Keep(unheld);
    contest.Peer(method.name, call(held));
    contest.Unheld(method.name, call(unheld));
  }
}

void AddSwscaleArea(Contest& contest, const ResizeTask& task) {
  const AVPixelFormat format = task.pixel == Pixel::f32 ? AV_PIX_FMT_GRAYF32
                               : task.channels == 1     ? AV_PIX_FMT_GRAY8
                                                        : AV_PIX_FMT_RGBA;
  const auto scaler = Scaler(task, format, SWS_AREA, CpuFlags(Level{contest.level()}));
  if (scaler == nullptr) return;
  contest.Keep(scaler);
  contest.Peer("swscale area", [task, scaler = scaler.get()] {
    const std::uint8_t* const source[4] = {static_cast<const std::uint8_t*>(task.source)};
    std::uint8_t* const target[4] = {static_cast<std::uint8_t*>(task.target)};
    const int sourceStep[4] = {task.sourceStep};
    const int targetStep[4] = {task.targetStep};
    sws_scale(scaler, source, sourceStep, 0, task.sourceSize.height, target, targetStep);
  });
}

}  // namespace zov::bench

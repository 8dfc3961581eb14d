// zimg, on planes. It builds its graph once, outside the timed part. Its filters widen when they
// reduce, and so do more work there than ours without antialiasing. It has no cubic through four
// points; Catmull-Rom, with as many taps, stands for it.
#include <zimg.h>

#include "core/level.h"
#include "resize.h"

namespace zov::bench {

namespace {

zimg_cpu_type_e CpuType(Level level) {
  static constexpr zimg_cpu_type_e kTypes[kLevelCount] = {
      ZIMG_CPU_X86_SSE2,  ZIMG_CPU_X86_SSE3, ZIMG_CPU_X86_SSSE3, ZIMG_CPU_X86_SSSE3,
      ZIMG_CPU_X86_SSE41, ZIMG_CPU_X86_AVX,  ZIMG_CPU_X86_AVX2};
  return kTypes[static_cast<int>(level)];
}

zimg_image_format Format(const ResizeTask& task, ZovImageSize size) {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(size.width);
  format.height = static_cast<unsigned>(size.height);
  format.pixel_type = task.pixel == Pixel::u8 ? ZIMG_PIXEL_BYTE : ZIMG_PIXEL_FLOAT;
  format.color_family = ZIMG_COLOR_GREY;
  format.pixel_range = ZIMG_RANGE_FULL;
  return format;
}

void SetFilter(int method, zimg_graph_builder_params* parameters) {
  parameters->resample_filter = ZIMG_RESIZE_BICUBIC;
  parameters->filter_param_a = 0;
  parameters->filter_param_b = 0.5;
  switch (method) {
    case ZOV_INTERP_NEAREST:
      parameters->resample_filter = ZIMG_RESIZE_POINT;
      break;
    case ZOV_INTERP_LINEAR:
      parameters->resample_filter = ZIMG_RESIZE_BILINEAR;
      break;
    case ZOV_INTERP_CUBIC_BSPLINE:
      parameters->filter_param_a = 1;
      parameters->filter_param_b = 0;
      break;
    case ZOV_INTERP_CUBIC_MIXED:
      parameters->filter_param_a = 0.5;
      parameters->filter_param_b = 0.3;
      break;
    case ZOV_INTERP_LANCZOS:
      parameters->resample_filter = ZIMG_RESIZE_LANCZOS;
      parameters->filter_param_a = 3;
      break;
    default:
      break;
  }
}

std::shared_ptr<zimg_filter_graph> Graph(const ResizeTask& task, zimg_cpu_type_e cpu) {
  const zimg_image_format source = Format(task, task.sourceSize);
  const zimg_image_format target = Format(task, task.targetSize);
  zimg_graph_builder_params parameters;
  zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
  SetFilter(task.method, &parameters);
  parameters.cpu_type = cpu;
  return {zimg_filter_graph_build(&source, &target, &parameters), zimg_filter_graph_free};
}

}  // namespace

void AddZimgResize(Contest& contest, const ResizeTask& task) {
  if (task.channels != 1 || task.pixel == Pixel::f64) return;
  const auto graph = [&](zimg_cpu_type_e cpu) {
    const std::shared_ptr<zimg_filter_graph> made = Graph(task, cpu);
    contest.Keep(made);
    std::size_t bytes = 0;
    zimg_filter_graph_get_tmp_size(made.get(), &bytes);
    void* const work = contest.Array<std::byte>(bytes);
    return [task, work, made = made.get()] {
      zimg_image_buffer_const source = {ZIMG_API_VERSION, {}};
      zimg_image_buffer target = {ZIMG_API_VERSION, {}};
      source.plane[0] = {task.source, task.sourceStep, ZIMG_BUFFER_MAX};
      target.plane[0] = {task.target, task.targetStep, ZIMG_BUFFER_MAX};
      zimg_filter_graph_process(made, &source, &target, work, nullptr, nullptr, nullptr, nullptr);
    };
  };
  contest.Peer("zimg", graph(CpuType(Level{contest.level()})));
  contest.Unheld("zimg", graph(ZIMG_CPU_AUTO_64B));
}

}  // namespace zov::bench

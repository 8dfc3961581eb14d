// OpenCV's resize. Its tables are built at each call, like ours. It is held to a level from
// outside, by the environment variable OPENCV_CPU_DISABLE, as it looks at the processor when it is
// loaded. Its cubic stands for every cubic of ours; its Lanczos has 8 taps where ours has 6. It has
// no filter that widens.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "resize.h"

namespace zov::bench {

void AddOpenCvResize(Contest& contest, const ResizeTask& task) {
  if (task.antialias) return;
  cv::setNumThreads(1);
  const int depth = task.pixel == Pixel::u8 ? CV_8U : task.pixel == Pixel::f32 ? CV_32F : CV_64F;
  const int type = CV_MAKETYPE(depth, task.channels);
  const cv::Mat source(task.sourceSize.height, task.sourceSize.width, type,
                       const_cast<void*>(task.source), static_cast<std::size_t>(task.sourceStep));
  const cv::Mat target(task.targetSize.height, task.targetSize.width, type, task.target,
                       static_cast<std::size_t>(task.targetStep));
  const int method = task.method == ZOV_INTERP_NEAREST   ? cv::INTER_NEAREST
                     : task.method == ZOV_INTERP_LINEAR  ? cv::INTER_LINEAR
                     : task.method == ZOV_INTERP_LANCZOS ? cv::INTER_LANCZOS4
                                                         : cv::INTER_CUBIC;
  contest.Peer("OpenCV", [=] {
    cv::Mat result = target;
    cv::resize(source, result, result.size(), 0, 0, method);
  });
}

void AddOpenCvArea(Contest& contest, const ResizeTask& task) {
  cv::setNumThreads(1);
  const int type = CV_MAKETYPE(task.pixel == Pixel::u8 ? CV_8U : CV_32F, task.channels);
  const cv::Mat source(task.sourceSize.height, task.sourceSize.width, type,
                       const_cast<void*>(task.source));
  const cv::Mat target(task.targetSize.height, task.targetSize.width, type, task.target);
  contest.Peer("OpenCV area", [=] {
    cv::Mat result = target;
    cv::resize(source, result, result.size(), 0, 0, cv::INTER_AREA);
  });
}

}  // namespace zov::bench

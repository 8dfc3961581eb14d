// OpenCV's saturating arithmetic and bit operations on arrays, with a constant as a scalar.
#include <opencv2/core.hpp>

#include "peers/opencv_integer.h"

namespace zov::bench {

void AddOpenCvInteger(Contest& contest, OpenCvOperation operation, int depth, const void* a,
                      const void* b, double value, void* out, int len) {
  cv::setNumThreads(1);
  const int type = CV_MAKETYPE(depth == 16 ? CV_16U : depth == -16 ? CV_16S : CV_32S, 1);
  const cv::Mat source(1, len, type, const_cast<void*>(a));
  const cv::Mat second(1, len, type, const_cast<void*>(b));
  const cv::Mat target(1, len, type, out);
  const cv::Scalar constant(value);
  contest.Peer("OpenCV", [=] {
    cv::Mat result = target;
    switch (operation) {
      case OpenCvOperation::add:
        cv::add(source, second, result);
        break;
      case OpenCvOperation::addConstant:
        cv::add(source, constant, result);
        break;
      case OpenCvOperation::subtractConstant:
        cv::subtract(source, constant, result);
        break;
      case OpenCvOperation::multiplyConstant:
        cv::multiply(source, constant, result);
        break;
      case OpenCvOperation::andConstant:
        cv::bitwise_and(source, constant, result);
        break;
      case OpenCvOperation::bitOr:
        cv::bitwise_or(source, second, result);
        break;
    }
  });
}

}  // namespace zov::bench

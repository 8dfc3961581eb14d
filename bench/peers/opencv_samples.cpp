// OpenCV's conversions and statistics of one row. Where it has two ways to an answer, both are
// peers.
#include <opencv2/core.hpp>

#include "samples.h"

namespace zov::bench {

namespace {

cv::Mat MatrixOf(Samples a) {
  static constexpr int kTypes[] = {CV_16U, CV_16S, CV_32S, CV_32F, CV_64F};
  return cv::Mat(1, a.len, kTypes[static_cast<int>(a.depth)], const_cast<void*>(a.data));
}

}  // namespace

void AddOpenCvConvert(Contest& contest, Samples a, Samples out, double scale, double offset) {
  cv::setNumThreads(1);
  const cv::Mat source = MatrixOf(a);
  const cv::Mat target = MatrixOf(out);
  contest.Peer("OpenCV", [=] {
    cv::Mat result = target;
    source.convertTo(result, target.type(), scale, offset);
  });
}

void AddOpenCvSum(Contest& contest, Samples a) {
  cv::setNumThreads(1);
  contest.Peer("OpenCV", [source = MatrixOf(a)] { benchmark::DoNotOptimize(cv::sum(source)); });
}

void AddOpenCvMean(Contest& contest, Samples a) {
  cv::setNumThreads(1);
  contest.Peer("OpenCV", [source = MatrixOf(a)] { benchmark::DoNotOptimize(cv::mean(source)); });
}

void AddOpenCvDeviation(Contest& contest, Samples a) {
  cv::setNumThreads(1);
  contest.Peer("OpenCV", [source = MatrixOf(a)] {
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(source, mean, deviation);
    benchmark::DoNotOptimize(deviation);
  });
}

void AddOpenCvExtremes(Contest& contest, Samples a, Extremes which) {
  cv::setNumThreads(1);
  const cv::Mat source = MatrixOf(a);
  contest.Peer("OpenCV", [=] {
    double smallest;
    double largest;
    cv::minMaxIdx(source, which == Extremes::largest ? nullptr : &smallest,
                  which == Extremes::smallest ? nullptr : &largest);
    benchmark::DoNotOptimize(smallest);
    benchmark::DoNotOptimize(largest);
  });
  if (which == Extremes::both || a.depth == Depth::s32) return;
  contest.Peer("OpenCV reduce", [=] {
    cv::Mat best;
    cv::reduce(source, best, 1, which == Extremes::largest ? cv::REDUCE_MAX : cv::REDUCE_MIN);
    benchmark::DoNotOptimize(best.data);
  });
}

void AddOpenCvEvery(Contest& contest, Samples a, Samples out, Extremes which) {
  cv::setNumThreads(1);
  const cv::Mat source = MatrixOf(a);
  const cv::Mat target = MatrixOf(out);
  contest.Peer("OpenCV", [=] {
    cv::Mat result = target;
    if (which == Extremes::largest) {
      cv::max(source, target, result);
    } else {
      cv::min(source, target, result);
    }
  });
}

}  // namespace zov::bench

// Bilinear reduction by exactly one half, the most common of all. Every sample lies in the middle
// of 2 x 2 pixels, so there are no tables, and no line waits for a second row. The results have the
// bits of the general form.
#pragma once

#include "image/resize/area_blocks.h"
#include "image/resize/linear_8u.h"
#include "image/resize/linear_real.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T, int kChannels>
struct LinearKernelOf {
  using Type = LinearReal<T>;
};
template <int kChannels>
struct LinearKernelOf<Zov8u, kChannels> {
  using Type = Linear8u<kChannels>;
};

// Both roundings of the fixed-point form together: the mean, halves up.
template <int kChannels>
class HalfMeans8u {
 public:
  void operator()(const Zov8u* upper, const Zov8u* lower, int count, const RowWriter& writer,
                  std::int64_t at) const {
    HalveRow<kChannels>(upper, lower, means_, count, writer, at);
  }

 private:
  AreaMeans<Zov8u, std::uint16_t> means_{0.25};
};

template <class T>
class HalfMeansReal {
  using V = typename RealVector<T>::Type;

 public:
  void operator()(const Zov8u* upper, const Zov8u* lower, int count, const RowWriter& writer,
                  std::int64_t at) const {
    constexpr int kElement = sizeof(T);
    const V half = V::Broadcast(static_cast<T>(0.5));
    const auto line = [half](const Zov8u* p) __attribute__((always_inline)) {
      const TwoVectors<V> two = LoadTwo<V>(p);
      return Lerp<true>(EvenLanes(two), OddLanes(two), half);
    };
    int i = 0;
    for (; i + V::kLanes <= count; i += V::kLanes) {
      const int source = 2 * i * kElement;
      PrefetchNext(upper, lower, source);
      InOrder(Lerp<true>(line(upper + source), line(lower + source), half))
          .Store(writer.At(at + i * kElement));
    }
    if (i == count) return;
    // The rest out of a vector of its own.
    alignas(V) T rest[2][2 * V::kLanes] = {};
    const int bytes = 2 * (count - i) * kElement;
    CopyBytes(upper + 2 * i * kElement, reinterpret_cast<Zov8u*>(rest[0]), bytes);
    CopyBytes(lower + 2 * i * kElement, reinterpret_cast<Zov8u*>(rest[1]), bytes);
    const V last = Lerp<true>(line(reinterpret_cast<const Zov8u*>(rest[0])),
                              line(reinterpret_cast<const Zov8u*>(rest[1])), half);
    StoreFirst(InOrder(last), writer.At(at + i * kElement), bytes / 2);
  }
};

// A kernel of LinearResize, for axes whose interior SamplesMiddles.
template <class T, int kChannels>
class LinearHalf {
  using General = typename LinearKernelOf<T, kChannels>::Type;
  using Means = std::conditional_t<sizeof(T) == 1, HalfMeans8u<kChannels>, HalfMeansReal<T>>;
  static constexpr int kElement = sizeof(T);

 public:
  using Line = T;
  using Weight = typename General::Weight;

  LinearHalf(WorkArena*, const ResizeAxis& axis, const ResizeBands& bands)
      : begin_(bands.near * kChannels), count_((axis.count - bands.near - bands.far) * kChannels) {
    if (count_ <= 0) return;  // no row kernel runs
    std::int32_t index;
    double fraction;
    LinearSamples(axis, bands.near, 1, &index, &fraction);
    source_ = std::int64_t{index} * kChannels * kElement;
  }

  std::int64_t LineLength() const { return count_; }

  static Weight MakeWeight(double fraction) { return General::MakeWeight(fraction); }
  static bool IsUpperOnly(Weight) { return false; }
  static T Between(T p, T q, Weight weight) { return General::Between(p, q, weight); }

  // Every row of the interior has two source rows of its own.
  template <int>
  void Combine(const LinePair<Line>& lines, const Weight*, const RowWriter* writer) const {
    means_(lines.upperRow + source_, lines.lowerRow + source_, count_, *writer,
           std::int64_t{begin_} * kElement);
  }

  // At most one row at either end of an image is a band, so it may be slow.
  void ResampleBand(const Zov8u* row, Line* line) const {
    const Zov8u* const pixels = row + source_;
    for (int i = 0; i < count_; ++i) {
      const Zov8u* const left = pixels + (i / kChannels * 2 * kChannels + i % kChannels) * kElement;
      line[i] = Between(LoadAs<T>(left), LoadAs<T>(left + kChannels * kElement), MakeWeight(0.5));
    }
  }
  void StoreBand(const Line* line, const RowWriter& writer) const {
    CopyBytes(reinterpret_cast<const Zov8u*>(line), writer.At(std::int64_t{begin_} * kElement),
              std::int64_t{count_} * kElement);
  }
  void Resample(const Zov8u* row, Line* line) const { ResampleBand(row, line); }
  void StoreUpper(const Line* line, const RowWriter& writer) const { StoreBand(line, writer); }

 private:
  int begin_;  // elements of a row
  int count_;
  std::int64_t source_ = 0;  // bytes
  Means means_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

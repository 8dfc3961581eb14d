// Area reduction by one half, the most common of all: sums of 2 x 2 pixels straight from the rows.
#pragma once

#include "image/resize/area_lanes.h"
#include "image/resize/area_spans.h"
#include "image/resize/halves.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Means of 2 x 2 pixels for `count` elements of a row, from byte `at` of it on. `upper` and `lower`
// are at the first of them.
template <int kChannels>
void HalveRow(const Zov8u* upper, const Zov8u* lower, const AreaMeans<Zov8u, std::uint16_t>& means,
              int count, const RowWriter& writer, std::int64_t at) {
  constexpr int kWords = WordSums::kLanes;
  constexpr int kBlock = 2 * kWords;
  const auto block = [&](int i) __attribute__((always_inline)) {
    const auto words = [&](int k) __attribute__((always_inline)) {
      return As<std::int16_t>(means.Words(PairsOfBytes<kChannels>(upper + 2 * k) +
                                          PairsOfBytes<kChannels>(lower + 2 * k)));
    };
    return InOrder(PackSaturated(words(i), words(i + kWords)));
  };
  int i = 0;
  for (; i + kBlock <= count; i += kBlock) {
    PrefetchNext(upper, lower, 2 * i);
    block(i).Store(writer.At(at + i));
  }
  if (i == count) return;
  if (count >= kBlock) {
    block(count - kBlock).Store(writer.At(at + count - kBlock));
    return;
  }
  for (; i < count; ++i) {
    const int k = i / kChannels * 2 * kChannels + i % kChannels;
    const int sum = upper[k] + upper[k + kChannels] + lower[k] + lower[k + kChannels];
    *writer.At(at + i) = means.Mean(sum);
  }
}

template <int kChannels>
void HalveRow(const Zov8u* upper, const Zov8u* lower, const AreaMeans<Zov32f, Zov32f>& means,
              int count, const RowWriter& writer, std::int64_t at) {
  int i = 0;
  for (; i + VecF::kLanes <= count; i += VecF::kLanes) {
    PrefetchNext(upper, lower, 8 * i);
    const TwoVectors<VecF> u = LoadTwo<VecF>(upper + 8 * i);
    const TwoVectors<VecF> l = LoadTwo<VecF>(lower + 8 * i);
    const TwoVectors<VecF> sums = {VecF::Zero() + u.a + l.a, VecF::Zero() + u.b + l.b};
    InOrder(means(EvenLanes(sums) + OddLanes(sums))).Store(writer.At(at + 4 * i));
  }
  for (; i < count; ++i) {
    const auto sum = [&](int k) {
      return 0.0F + LoadAs<float>(upper + k * 4) + LoadAs<float>(lower + k * 4);
    };
    StoreAs(writer.At(at + 4 * i), means.Mean(sum(2 * i) + sum(2 * i + 1)));
  }
}

// True when it could be done: blocks of 2 x 2 pixels, all of them in the image.
template <class T, int kChannels, class Sum>
bool ReduceByHalf(const SourceView& source, const TargetView& target,
                  const ResizeGeometry& geometry, const AreaMeans<T, Sum>& means) {
  const AreaSpan column = AreaSpans(geometry.x, AreaDirection::columns, true).Next();
  const AreaSpan row = AreaSpans(geometry.y, AreaDirection::rows, true).Next();
  const auto isHalf = [](const AreaSpan& first, const ResizeAxis& axis) {
    return first.count == 2 && first.head == 0 && first.tail == 0 &&
           static_cast<std::uint32_t>(first.begin) + std::int64_t{2} * axis.count <= axis.extent;
  };
  if (!isHalf(column, geometry.x) || !isHalf(row, geometry.y)) return false;
  constexpr std::int64_t kPixelBytes = kChannels * sizeof(T);
  const TargetView rows = {target.Row(geometry.y.first) + geometry.x.first * kPixelBytes,
                           target.step};
  for (int y = 0; y < geometry.y.count; ++y) {
    const Zov8u* const upper = source.Row(row.begin + 2 * y) + column.begin * kPixelBytes;
    HalveRow<kChannels>(upper, upper + source.step, means, geometry.x.count * kChannels,
                        RowWriter(rows.Row(y), rows.step), 0);
  }
  return true;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

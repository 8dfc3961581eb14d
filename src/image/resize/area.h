// Reduction by area: each destination pixel is the mean of the source pixels
// under it, each by its share. Rows are summed first, then columns.
#pragma once

#include "image/resize/area_blocks.h"
#include "image/resize/area_lanes.h"
#include "image/resize/area_spans.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Works on a few destination rows at a time: their source rows are summed into
// as many lines, strip by strip, and each strip is turned so that a vector
// holds one source column of all these rows. The sums along a row are then
// vector sums, whatever the spans. All of it stays in the first cache, on the
// stack; the caller's work buffer is not needed.
//
// Sums of shares are float for 8-bit pixels and floats, double for doubles.
// Whole pixels of 8 bits, and halves of them, are counted exactly: in units of
// 1 / kUnits.
template <class T, int kChannels, class Sum, int kUnits = 1>
class AreaReduction {
  using V = Widest<Sum>;
  static constexpr int kRows = V::kLanes / kChannels;  // destination rows at a time
  static constexpr int kStrip = 256;                   // source columns
  static constexpr int kEntries = kStrip * kChannels;
  static constexpr int kPlan = 512;  // destination columns whose spans are kept
  static constexpr int kPixelBytes = kChannels * static_cast<int>(sizeof(T));

 public:
  AreaReduction(const SourceView& source, const TargetView& target, const ResizeGeometry& geometry,
                bool whole, const AreaMeans<T, Sum>& means)
      : source_(source), target_(target), geometry_(geometry), whole_(whole), means_(means) {
    for (V& sums : lines_) sums = V::Zero();
  }

  void Run() {
    AreaSpans columns(geometry_.x, AreaDirection::columns, whole_);
    for (int first = 0; first < geometry_.x.count; first += kPlan) {
      const int rest = geometry_.x.count - first;
      planned_ = rest < kPlan ? rest : kPlan;
      for (int i = 0; i < planned_; ++i) plan_[i] = InUnits(columns.Next());
      AreaSpans rows(geometry_.y, AreaDirection::rows, whole_);
      for (int y = 0; y < geometry_.y.count; y += kRows) {
        const int restRows = geometry_.y.count - y;
        const int count = restRows < kRows ? restRows : kRows;
        for (int r = 0; r < count; ++r) {
          rows_[r] = InUnits(rows.Next());
          results_[r] =
              target_.Row(geometry_.y.first + y + r) + (geometry_.x.first + first) * kPixelBytes;
        }
        ReduceRows(count);
      }
    }
  }

 private:
  // The sum of one destination pixel, on its way through the strips.
  struct Walk {
    V sum;
    int done = 0;       // destination columns of the plan
    int waiting = 0;    // of those, in `finished`
    int next = 0;       // source column
    bool open = false;  // the head is in the sum
  };

  void ReduceRows(int rows) {
    const int end = LastOf(plan_[planned_ - 1]) + 1;
    const bool inside = FirstOf(rows_[0]) >= 0 && LastOf(rows_[rows - 1]) < geometry_.y.extent;
    Walk walk;
    int width;
    for (int column = FirstOf(plan_[0]); column < end; column += width) {
      width = end - column < kStrip ? end - column : kStrip;
      SumRows(inside, column, width, rows);
      Turn(width);
      SumColumns(column, column + width, rows, &walk);
    }
    if (walk.waiting > 0) StoreFinished(rows, walk);
  }

  static AreaSpan InUnits(AreaSpan span) {
    span.head *= kUnits;
    span.tail *= kUnits;
    return span;
  }

  // A pixel of weight 1, from what it counts in the smallest unit.
  template <class X>
  static ZOV_INLINE X Full(X x) {
    static_assert(kUnits == 1 || kUnits == 2);
    return kUnits == 1 ? x : static_cast<X>(x + x);
  }

  Sum* Line(int row) { return reinterpret_cast<Sum*>(lines_) + row * kEntries; }

  // Not inline: the loops of a strip and those over its columns compete for registers.
  ZOV_NOINLINE void SumRows(bool inside, int column, int width, int rows) {
    if (!inside || column < 0 || column + width > geometry_.x.extent) {
      return SumAcrossEdges(column, width, rows);
    }
    for (int r = 0; r < rows; ++r) SumRows(rows_[r], column, width * kChannels, Line(r));
  }

  // Sums the source rows of a span, from the first to the last.
  ZOV_INLINE void SumRows(const AreaSpan& span, int column, int entries, Sum* line) const {
    const std::int64_t offset = std::int64_t{column} * kPixelBytes;
    const auto row = [ this, offset ](int y) __attribute__((always_inline)) {
      return source_.Row(y) + offset;
    };
    bool fresh = true;
    if (span.head > 0) {
      AddWeighted(row(span.headAt), span.head, fresh, entries, line);
      fresh = false;
    }
    const int end = span.begin + span.count;
    int y = span.begin;
    for (; end - y >= 4; y += 4, fresh = false) Add<4>(row(y), fresh, entries, line);
    const int rest = end - y;
    if (rest == 3) Add<3>(row(y), fresh, entries, line);
    if (rest == 2) Add<2>(row(y), fresh, entries, line);
    if (rest == 1) Add<1>(row(y), fresh, entries, line);
    if (rest > 0) fresh = false;
    if (span.tail > 0) AddWeighted(row(span.tailAt), span.tail, fresh, entries, line);
  }

  // The same of all rows where rows or columns lie outside the image: in the same order, one by
  // one.
  ZOV_NOINLINE void SumAcrossEdges(int column, int width, int rows) {
    const int first = InImage(column, geometry_.x.extent);
    const int read = InImage(column + width - 1, geometry_.x.extent) - first + 1;
    const int before = first > column ? first - column : 0;
    for (int r = 0; r < rows; ++r) {
      const AreaSpan& span = rows_[r];
      Sum* const line = Line(r);
      bool fresh = true;
      for (int k = -1; k <= span.count; ++k) {
        const bool isHead = k < 0;
        const bool isTail = k == span.count;
        const double weight = isHead ? span.head : isTail ? span.tail : kUnits;
        if (!(weight > 0)) continue;
        const int y = isHead ? span.headAt : isTail ? span.tailAt : span.begin + k;
        AddWeighted(source_.Row(InImage(y, geometry_.y.extent)) + std::int64_t{first} * kPixelBytes,
                    weight, fresh, read * kChannels, line);
        fresh = false;
      }
      if (read == width) continue;
      for (int i = width - 1; i >= 0; --i) {
        const int from = i < before ? 0 : i - before < read ? i - before : read - 1;
        for (int c = 0; c < kChannels; ++c) line[i * kChannels + c] = line[from * kChannels + c];
      }
    }
  }

  static Sum Pixel(const Zov8u* row, int i) {
    return static_cast<Sum>(LoadAs<T>(row + i * static_cast<int>(sizeof(T))));
  }
  static V Pixels(const Zov8u* row, int i) {
    return LoadSums<Sum>(row + i * static_cast<int>(sizeof(T)), T{});
  }

  template <int kCount>
  ZOV_INLINE void Add(const Zov8u* rows, bool fresh, int entries, Sum* line) const {
    const std::ptrdiff_t step = source_.step;
    int i = 0;
    for (; i + V::kLanes <= entries; i += V::kLanes) {
      V sum = fresh ? V::Zero() : V::LoadAligned(line + i);
      for (int k = 0; k < kCount; ++k) sum = sum + Full(Pixels(rows + k * step, i));
      sum.StoreAligned(line + i);
    }
    for (; i < entries; ++i) {
      Sum sum = fresh ? Sum{0} : line[i];
      for (int k = 0; k < kCount; ++k)
        sum = static_cast<Sum>(sum + Full(Pixel(rows + k * step, i)));
      line[i] = sum;
    }
  }

  ZOV_INLINE void AddWeighted(const Zov8u* row, double weight, bool fresh, int entries,
                              Sum* line) const {
    int i = 0;
    for (; i + V::kLanes <= entries; i += V::kLanes) {
      const V sum = fresh ? V::Zero() : V::LoadAligned(line + i);
      (sum + Weighted(Pixels(row, i), weight)).StoreAligned(line + i);
    }
    for (; i < entries; ++i) {
      line[i] = static_cast<Sum>((fresh ? Sum{0} : line[i]) + Weighted(Pixel(row, i), weight));
    }
  }

  // From lines to vectors of one column each.
  void Turn(int width) {
    if constexpr (kRows == 1) return;
    for (int i = 0; i < width; i += kRows) {
      V block[V::kLanes];
      if constexpr (kChannels == 1) {
        for (int r = 0; r < kRows; ++r) block[r] = V::LoadAligned(Line(r) + i);
        TransposeLanes(block);
      } else {
        for (int r = 0; r < kRows; ++r) block[r] = V::LoadAligned(Line(r) + i * kChannels);
        TransposeGroups(block);
      }
      for (int k = 0; k < kRows; ++k) turned_[i + k] = block[k];
    }
  }

  // Takes the strip of the source columns from `begin` to `end` into the sums
  // of the plan.
  void SumColumns(int begin, int end, int rows, Walk* state) {
    Walk walk = *state;
    const V* const strip = (kRows == 1 ? lines_ : turned_) - begin;
    while (walk.done < planned_) {
      const AreaSpan& span = plan_[walk.done];
      if (!walk.open) {
        if (span.head > 0) {
          if (span.headAt >= end) break;
          walk.sum = Weighted(strip[span.headAt], span.head);
        } else {
          walk.sum = V::Zero();
        }
        walk.next = span.begin;
        walk.open = true;
      }
      const int stop = span.begin + span.count;
      const int last = stop < end ? stop : end;
      for (; walk.next < last; ++walk.next) walk.sum = walk.sum + Full(strip[walk.next]);
      if (walk.next < stop) break;
      if (span.tail > 0) {
        if (span.tailAt >= end) break;
        walk.sum = walk.sum + Weighted(strip[span.tailAt], span.tail);
      }
      walk.open = false;
      finished_[walk.waiting++] = walk.sum;
      ++walk.done;
      if (walk.waiting == V::kLanes) {
        StoreFinished(rows, walk);
        walk.waiting = 0;
      }
    }
    *state = walk;
  }

  // Writes the last destination columns of all rows.
  void StoreFinished(int rows, const Walk& walk) {
    const std::int64_t column = walk.done - walk.waiting;
    if constexpr (kChannels == 1) {
      V block[V::kLanes];
      for (int i = 0; i < V::kLanes; ++i) block[i] = finished_[i];
      TransposeLanes(block);
      const std::int64_t bytes = std::int64_t{walk.waiting} * kPixelBytes;
      for (int r = 0; r < rows; ++r) {
        StoreBytes(means_(block[r]), results_[r] + column * kPixelBytes, bytes);
      }
    } else {
      static_assert(kPixelBytes == 4);
      for (int i = 0; i < walk.waiting; ++i) {
        Vec128<std::int32_t> pixels = As<std::int32_t>(means_(finished_[i]));
        for (int r = 0; r < rows; ++r) {
          StoreAs(results_[r] + (column + i) * kPixelBytes, pixels.v[r]);
        }
      }
    }
  }

  template <class Means>
  static ZOV_INLINE void StoreBytes(Means means, Zov8u* result, std::int64_t bytes) {
    constexpr int kAll = V::kLanes * kPixelBytes;
    if (bytes < kAll) {
      StoreFirst(means, result, bytes);
    } else if constexpr (kAll == Means::kBytes) {
      means.Store(result);
    } else {
      StoreFirst(means, result, kAll);
    }
  }

  SourceView source_;
  TargetView target_;
  const ResizeGeometry& geometry_;
  bool whole_;
  AreaMeans<T, Sum> means_;
  int planned_ = 0;
  AreaSpan rows_[kRows];
  Zov8u* results_[kRows];
  V lines_[kRows * kEntries / V::kLanes];
  V turned_[kRows == 1 ? 1 : kStrip + kRows];
  V finished_[V::kLanes];
  AreaSpan plan_[kPlan];
};

template <int kChannels, int kUnits>
bool ReduceWords(const SourceView& source, const TargetView& target, const ResizeGeometry& geometry,
                 bool whole, double norm) {
  const AreaMeans<Zov8u, std::uint16_t> means(norm / (kUnits * kUnits));
  if (!means.IsExact()) return false;
  if (whole && ReduceByHalf<Zov8u, kChannels>(source, target, geometry, means)) return true;
  AreaReduction<Zov8u, kChannels, std::uint16_t, kUnits>(source, target, geometry, whole, means)
      .Run();
  return true;
}

template <class T, int kChannels>
void ResizeArea(const SourceView& source, const TargetView& target, const ResizeGeometry& geometry,
                double norm) {
  const bool whole = AreaSpans::AreWhole(geometry);
  if constexpr (sizeof(T) == 1) {
    if (whole) {
      if (ReduceWords<kChannels, 1>(source, target, geometry, whole, norm)) return;
      AreaReduction<T, kChannels, std::uint32_t>(source, target, geometry, whole,
                                                 AreaMeans<T, std::uint32_t>(norm))
          .Run();
      return;
    }
    // Sums of halves are exact in float too, so the result is the same.
    if (AreaSpans::AreHalves(geometry) &&
        ReduceWords<kChannels, 2>(source, target, geometry, whole, norm)) {
      return;
    }
  }
  using Sum = std::conditional_t<sizeof(T) == 8, double, float>;
  const AreaMeans<T, Sum> means(norm);
  if constexpr (sizeof(T) == 4) {
    if (whole && ReduceByHalf<T, kChannels>(source, target, geometry, means)) return;
  }
  AreaReduction<T, kChannels, Sum>(source, target, geometry, whole, means).Run();
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Antialiased resize: separable sums over as many taps as a kernel widened by the reduction covers,
// along rows in double precision, then along columns in the precision of the lines.
#pragma once

#include "image/resize/antialias_bytes.h"
#include "image/resize/antialias_columns.h"
#include "image/resize/antialias_integer.h"
#include "image/resize/kernel_rows.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T, int kChannels>
class AntialiasResize {
  using Real = std::conditional_t<sizeof(T) == 8, double, float>;
  static constexpr int kElement = sizeof(T);
  static constexpr int kPixelBytes = kChannels * kElement;
  // Wide groups of rows run faster, narrow ones need less memory.
  static constexpr int kWideGroup = 4 * VecD::kLanes;
  static constexpr int kNarrowGroup = 4;
  static constexpr int kKeptWeights = 4;  // rows

 public:
  AntialiasResize(SourceView src, TargetView dst, const ResizeGeometry& geometry,
                  std::uint32_t method)
      : src_(src),
        dst_{dst.Row(geometry.y.first) + geometry.x.first * kPixelBytes, dst.step},
        x_(geometry.x),
        y_(geometry.y),
        xKernel_(method, geometry.x),
        yKernel_(method, geometry.y),
        elements_(std::int64_t{geometry.x.count} * kChannels) {}

  void Run(Zov8u* workBuffer, std::int64_t bytes) const {
    int row = 0;
    if constexpr (sizeof(T) == 1) {
#if defined(__SSSE3__)
      if (RunBy<AntialiasInteger<kChannels>>(0, workBuffer, bytes)) return;
#endif
      row =
          AntialiasBytes<kChannels>(src_, dst_, x_, y_, xKernel_, yKernel_).Run(workBuffer, bytes);
      if (row == y_.count) return;
    }
    if (!RunBy<AntialiasColumns<T, kChannels, kWideGroup>>(row, workBuffer, bytes) &&
        !RunBy<AntialiasColumns<T, kChannels, kNarrowGroup>>(row, workBuffer, bytes)) {
      RunWithoutTables();
    }
  }

 private:
  using Taps = WidenedKernel::Taps;

  int SourceRow(std::int64_t row) const { return InImage(row, y_.extent); }

  // Writes the rows from `begin` on. Source rows are resampled once, in groups, into a ring of
  // lines that holds the taps of a row. False, with nothing done, when the work buffer is too
  // small or the weights do not suit.
  template <class Columns>
  bool RunBy(int begin, Zov8u* workBuffer, std::int64_t bytes) const {
    const Taps lowest = yKernel_.At(begin);
    const Taps highest = yKernel_.At(y_.count - 1);
    const int firstRow = SourceRow(lowest.first);
    const int endRow = SourceRow(highest.first + highest.count - 1) + 1;
    const int most = yKernel_.MostTaps() + Columns::kRows - 1;
    const int lineCount = most < endRow - firstRow ? most : endRow - firstRow;
    constexpr int kLineUnit = VecF::kBytes / static_cast<int>(sizeof(Real));
    const std::int64_t stride = (elements_ + kLineUnit - 1) / kLineUnit * kLineUnit;

    WorkArena arena(workBuffer);
    Columns columns(&arena, xKernel_, x_);
    Real* const lines = arena.Take<Real>(stride * lineCount);
    std::int32_t* const offsets = arena.Take<std::int32_t>(yKernel_.MostTaps());
    Real* const table = arena.Take<Real>(std::int64_t{kKeptWeights} * yKernel_.MostTaps());
    if (arena.Take<Zov8u>(0) - workBuffer > bytes) return false;

    if (!columns.FillTables(xKernel_)) return false;
    const auto lineOf = [=](int row) { return lines + (row - firstRow) % lineCount * stride; };
    int done = firstRow;  // rows before it have been resampled, or are not needed
    for (int row = begin; row < y_.count; ++row) {
      const Taps taps = yKernel_.At(row);
      const int start = SourceRow(taps.first);
      const int end = SourceRow(taps.first + taps.count - 1) + 1;
      if (done < start) done = start;
      while (done < end) {
        const Zov8u* sources[Columns::kRows];
        Real* targets[Columns::kRows];
        const int rows = endRow - done < Columns::kRows ? endRow - done : Columns::kRows;
        // Past the last row it is resampled again.
        for (int r = 0; r < Columns::kRows; ++r) {
          const int sourceRow = done + (r < rows ? r : rows - 1);
          sources[r] = src_.Row(sourceRow);
          targets[r] = lineOf(sourceRow);
        }
        done += rows;
        columns.Resample(sources, Columns::kRows * src_.step, targets);
      }
      yKernel_.template GetWeights<Real>(row, row - begin, kKeptWeights, yKernel_.MostTaps(),
                                         table);
      const Real* const weights = table + row % kKeptWeights * std::int64_t{yKernel_.MostTaps()};
      for (int k = 0; k < taps.count; ++k) {
        offsets[k] = static_cast<std::int32_t>(lineOf(SourceRow(taps.first + k)) - lines);
      }
      CombineRounded<T>(
          [ lines, offsets ](int k) __attribute__((always_inline)) { return lines + offsets[k]; },
          weights, taps.count, dst_.Row(row), 0, elements_);
    }
    return true;
  }

  // Rectangles far smaller than the reach of their taps may leave a work buffer too small for any
  // table: then every weight is computed when it is needed.
  void RunWithoutTables() const {
    for (int row = 0; row < y_.count; ++row) {
      for (int column = 0; column < x_.count; ++column) {
        for (int c = 0; c < kChannels; ++c) {
          const Zov8u* const pixels = src_.origin + c * kElement;
          StorePixel(PixelOf(pixels, xKernel_.At(column), yKernel_.At(row)),
                     dst_.Row(row) + (std::int64_t{column} * kChannels + c) * kElement);
        }
      }
    }
  }

  Real PixelOf(const Zov8u* pixels, const Taps& columns, const Taps& rows) const {
    const double xSum = xKernel_.SumOf(columns);
    const double ySum = yKernel_.SumOf(rows);
    Real sum = 0;
    Real line = 0;
    int lineRow = -1;
    for (int k = 0; k < rows.count; ++k) {
      const int y = SourceRow(rows.first + k);
      if (y != lineRow) line = LineAt(pixels + y * src_.step, columns, xSum);
      lineRow = y;
      sum += line * static_cast<Real>(yKernel_.WeightAt(rows, k) / ySum);
    }
    return sum;
  }

  Real LineAt(const Zov8u* row, const Taps& columns, double weightSum) const {
    double sums[2] = {0, 0};
    for (int k = 0; k < columns.count; ++k) {
      const int x = InImage(columns.first + k, x_.extent);
      const Real weight = static_cast<Real>(xKernel_.WeightAt(columns, k) / weightSum);
      sums[kChannels == 1 ? k % 2 : 0] +=
          static_cast<double>(LoadAs<T>(row + std::int64_t{x} * kPixelBytes)) *
          static_cast<double>(weight);
    }
    return static_cast<Real>(sums[0] + sums[1]);
  }

  static void StorePixel(Real value, Zov8u* to) {
    if constexpr (sizeof(T) == 1) {
      const __m128i words = _mm_packs_epi32(RoundHalfUp(_mm_set_ss(value)), _mm_setzero_si128());
      *to = static_cast<Zov8u>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
    } else {
      StoreAs(to, value);
    }
  }

  SourceView src_;
  TargetView dst_;  // from the first written pixel on
  ResizeAxis x_;
  ResizeAxis y_;
  WidenedKernel xKernel_;
  WidenedKernel yKernel_;
  std::int64_t elements_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

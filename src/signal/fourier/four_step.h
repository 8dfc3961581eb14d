// Transforms too long for one kernel, as 2^F rows of neighbouring values: rows first, each in
// cache, then the columns by tiles that are copied to work memory.
#pragma once

#include "signal/fourier/spec.h"
#include "signal/fourier/stages.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// The whole transform of 2^c values in place, from bit-reversed order.
template <class T, bool kInverse, Form kForm>
void TransformInPlace(T* array, int c, const T* twiddles, bool scaled, T scale) {
  FirstPassInPlace<T, kInverse>(array, c);
  if (scaled) {
    AllStages<T, kForm, true>(array, array, c, twiddles, scale);
  } else {
    AllStages<T, kForm, false>(array, array, c, twiddles, scale);
  }
}

template <class T, bool kInverse>
struct FourStep {
  static constexpr const FftLimits& kLimits = FftLimitsOf<T>(kLevel);

  const FftSpec<T>& spec;
  T* work;
  bool scaled;

  // In place on 2^c values in bit-reversed order. The result of a long row stays in split groups,
  // as the columns of the caller want it. `rowTwiddles` has the table of each depth.
  template <Form kForm>
  ZOV_NOINLINE void Run(T* array, int c, const T* const* rowTwiddles) const {
    const FourStepSplit split = SplitOf(kLimits, c);
    const int logRow = c - split.rows;
    for (Index row = 0; row < Index{1} << split.rows; ++row) {
      T* const p = array + (row << (logRow + 1));
      if (logRow <= kLimits.lastWhole) {
        TransformInPlace<T, kInverse, Form::split>(p, logRow, spec.cplxTwiddles, scaled,
                                                   spec.scale);
      } else {
        Run<Form::split>(p, logRow, rowTwiddles + 1);
      }
    }
    const Index columns = Index{1} << logRow;
    const Index width = Index{1} << (split.held - split.rows);
    const T* twiddles = *rowTwiddles;
    for (Index column = 0; column < columns; column += width) {
      twiddles = Tile<kForm>(array + 2 * column, columns, width, split.rows, twiddles);
    }
  }

  // Many rows of a few lines each, far apart: no prefetcher foresees those of the next tile. Longer
  // rows and shorter arrays come as fast without being asked for.
  static ZOV_INLINE bool AsksAhead(Index length, Index width, int rows) {
    constexpr Index kBytes = 2 * sizeof(T);
    return rows >= 6 && width * kBytes <= 512 && length * kBytes >= Index{1} << 20;
  }
  static ZOV_INLINE void AskAhead(const T* tile, Index stride, Index width, Index rows) {
    for (const T* const end = tile + 2 * rows * stride; tile != end; tile += 2 * stride) {
      for (Index i = 0; i < 2 * width; i += Index{64 / sizeof(T)}) {
        __builtin_prefetch(tile + i, 0, 2);
      }
    }
  }

  // The columns of one tile: `width` of them in 2^rows rows that lie `stride` apart. Returns the
  // twiddles of the next tile.
  template <Form kForm>
  const T* Tile(T* tile, Index stride, Index width, int rows, const T* twiddles) const {
    const Index count = Index{1} << rows;
    const int firstRadix = ColumnRadix(rows, 0);
    const Index firstRows = Index{1} << firstRadix;
    const T* next = twiddles;
    const bool ask = AsksAhead(count * stride, width, rows);
    for (Index row = 0; row < count; row += firstRows) {
      if (ask) AskAhead(tile + 2 * (row * stride + width), stride, width, firstRows);
      next = StageRun<T, Form::split, false>(firstRadix, tile + 2 * row * stride, stride,
                                             work + 2 * row * width, width, twiddles, width, T{});
    }
    int done = firstRadix;
    for (;;) {
      const int logRadix = ColumnRadix(rows, done);
      const Index part = width << done;
      if (done + logRadix == rows) break;
      twiddles = next;
      for (Index block = 0; block < count * width; block += part << logRadix) {
        next = StageRun<T, Form::split, false>(logRadix, work + 2 * block, part, work + 2 * block,
                                               part, twiddles, part, T{});
      }
      done += logRadix;
    }
    const int lastRadix = rows - done;
    for (Index row = 0; row < Index{1} << done; ++row) {
      next = StageRun<T, kForm, false>(lastRadix, work + 2 * row * width, width << done,
                                       tile + 2 * row * stride, stride << done, next, width, T{});
    }
    return next;
  }
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

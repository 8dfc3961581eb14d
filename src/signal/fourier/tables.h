// Builders of the tables that a real FFT object holds. They run once per object, so they are plain
// code for all levels; what a level's vectors want comes in as an argument.
#pragma once

#include <cstdint>

#include "signal/fourier/sine_table.h"

namespace zov {

// The swap list of order c: pairs (4i, 4j) of indices i < j that are each other's (c-2)-bit
// reversal, a zero, the indices 4i that are their own, a zero. 2^(c-2) + 1 entries.
void BuildSwapList(Zov32s* table, int c);

// Entry i is twice the (c-2)-bit reversal of i; the entry behind the last is 0.
void BuildReversalTable(Zov32s* table, int c);

// The reversal by tiles of 2^logTile by 2^logTile values: for each column of tiles the offset of
// its partner, then the swap list of one tile.
void BuildTiledReversalTable(Zov32s* table, int c, int logTile);

// Baseline transform of length 2^c: W^k, W^2k, W^3k in a row for k from 0 to a quarter of the
// length.
template <class T>
void BuildRadix4Twiddles(T* table, int c, const UnitRoots<T>& roots);

// The plain table W^k of length 2^c, k below a quarter of the length.
template <class T>
void BuildBlockTwiddles(T* table, int c, const UnitRoots<T>& roots);

// Stage tables of a transform of length 2^c for vectors of `lanes` elements, in reading order.
template <class T>
void BuildStageTwiddles(T* table, int c, int lanes, const UnitRoots<T>& roots);

// Between-steps twiddles of the four-step split of length 2^c into 2^rows rows, in the forms of
// the baseline (columns in fours) and of the stages over tiles of 2^(held - rows) columns. The
// baseline needs scratch for four columns and the swap list of the rows behind them.
template <class T>
void BuildRowTwiddles(T* table, int c, int rows, T* scratch, const UnitRoots<T>& roots);
template <class T>
void BuildTileTwiddles(T* table, int c, int rows, int held, int lanes, const UnitRoots<T>& roots);

// Order of the entries of a split table: from k = 0 on, from k = 1 on, or from k = 1 on with each
// two neighbours exchanged (slot 0 holds k = 2, slot 1 holds k = 1).
enum class SplitOrder { fromZero, fromOne, exchanged };

// Real-split tables of order `order`. A two-level table has 2^logFine fine entries, then coarse
// ones; a one-level table has logFine 0.
template <class T>
void BuildForwardSplitTable(T* table, int order, int logFine, SplitOrder slots,
                            const UnitRoots<T>& roots);
template <class T>
void BuildInverseSplitTable(T* table, int order, int logFine, SplitOrder slots,
                            const UnitRoots<T>& roots);

}  // namespace zov

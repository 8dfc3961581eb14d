// Twiddle tables of the complex transform and of the real split.
#include "signal/fourier/bit_reversal.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/tables.h"

namespace zov {

namespace {

// Position of lane `lane` within its group of `lanes` butterfly indices: the order that results
// when two interleaved vectors are split by shuffles within 16-byte halves.
template <class T>
int IndexOfLane(int lane, int lanes) {
  if (lanes * static_cast<int>(sizeof(T)) == 16) return lane;
  const int half = lanes / 2;  // lanes of 16 bytes
  const int part = half / 2;   // of which the first come from the first vector
  const int within = lane % half;
  return lane / half * part + within % part + within / part * half;
}

// Twiddles of one stage: butterflies of 2^logRadix blocks of 2^logBlock values, for `rows` runs of
// `run` indices, of which run r begins at index first + r * rowStep.
template <class T>
T* BuildStage(T* table, int logRadix, int logBlock, std::int64_t first, std::int64_t rows,
              std::int64_t rowStep, std::int64_t run, int lanes, const UnitRoots<T>& roots) {
  const int logLength = logBlock + logRadix;
  for (std::int64_t r = 0; r < rows; ++r) {
    for (std::int64_t group = 0; group < run; group += lanes) {
      for (int power = 1; power < 1 << logRadix; ++power) {
        for (int lane = 0; lane < lanes; ++lane) {
          const std::int64_t k = first + r * rowStep + group + IndexOfLane<T>(lane, lanes);
          roots.At(power * k, logLength, table[lane], table[lanes + lane]);
        }
        table += 2 * lanes;
      }
    }
  }
  return table;
}

}  // namespace

template <class T>
void BuildRadix4Twiddles(T* table, int c, const UnitRoots<T>& roots) {
  const std::int64_t quarter = std::int64_t{1} << (c - 2);
  for (std::int64_t k = 0; k <= quarter; ++k) {
    for (int power = 1; power <= 3; ++power, table += 2) {
      roots.At(power * k, c, table[0], table[1]);
    }
  }
}

template <class T>
void BuildBlockTwiddles(T* table, int c, const UnitRoots<T>& roots) {
  const std::int64_t quarter = std::int64_t{1} << (c - 2);
  for (std::int64_t k = 0; k < quarter; ++k) roots.At(k, c, table[2 * k], table[2 * k + 1]);
}

template <class T>
void BuildStageTwiddles(T* table, int c, int lanes, const UnitRoots<T>& roots) {
  const bool avx = lanes * static_cast<int>(sizeof(T)) == 32;
  const common::StagePlan& plan = common::kStagePlans[avx].of[c];
  int size = 4;
  for (int stage = 0; stage < plan.count; ++stage) {
    const int logRadix = plan.logRadix[stage];
    table = BuildStage(table, logRadix, size, 0, 1, 0, std::int64_t{1} << size, lanes, roots);
    size += logRadix;
  }
}

template <class T>
void BuildRowTwiddles(T* table, int c, int rows, T* scratch, const UnitRoots<T>& roots) {
  const std::int64_t rowCount = std::int64_t{1} << rows;
  const std::int64_t columns = std::int64_t{1} << (c - rows);
  const Zov32s* const swapList = reinterpret_cast<const Zov32s*>(scratch + 8 * rowCount);
  for (std::int64_t column = 0; column < columns; column += 4) {
    for (int lane = 0; lane < 4; ++lane) {
      T* const values = scratch + 2 * lane * rowCount;
      for (std::int64_t r = 0; r < rowCount; ++r) {
        roots.At(r * (column + lane), c, values[2 * r], values[2 * r + 1]);
      }
      common::ReverseBySwapList(values, values, rows, swapList);
    }
    for (std::int64_t position = 0; position < rowCount; ++position, table += 8) {
      for (int lane = 0; lane < 4; ++lane) {
        table[2 * lane] = scratch[2 * (lane * rowCount + position)];
        table[2 * lane + 1] = scratch[2 * (lane * rowCount + position) + 1];
      }
    }
  }
}

template <class T>
void BuildTileTwiddles(T* table, int c, int rows, int held, int lanes, const UnitRoots<T>& roots) {
  const int logColumns = c - rows;
  const std::int64_t columns = std::int64_t{1} << logColumns;
  const std::int64_t tile = std::int64_t{1} << (held - rows);
  for (std::int64_t column = 0; column < columns; column += tile) {
    for (int done = 0; done < rows;) {
      const int logRadix = common::ColumnRadix(rows, done);
      table = BuildStage(table, logRadix, logColumns + done, column, std::int64_t{1} << done,
                         columns, tile, lanes, roots);
      done += logRadix;
    }
  }
}

namespace {

// Calls store(slot, k) for each of `count` entries in the order of the table.
template <class Store>
void ForEachSlot(std::int64_t count, SplitOrder slots, Store store) {
  for (std::int64_t slot = 0; slot < count; ++slot) {
    store(slot, slots == SplitOrder::fromZero  ? slot
                : slots == SplitOrder::fromOne ? slot + 1
                                               : (slot ^ 1) + 1);
  }
}

template <class T>
void BuildTwoLevelSplitTable(T* table, int order, int logFine, SplitOrder slots,
                             const UnitRoots<T>& roots) {
  const std::int64_t fine = std::int64_t{1} << logFine;
  const std::int64_t coarse = std::int64_t{1} << (order - 2 - logFine);
  ForEachSlot(fine, slots, [&](std::int64_t slot, std::int64_t k) {
    roots.At(k, order, table[2 * slot], table[2 * slot + 1]);
  });
  table += 2 * fine;
  for (std::int64_t j = 0; j < coarse; ++j) {
    roots.At(j << logFine, order, table[2 * j], table[2 * j + 1]);
  }
}

}  // namespace

// The pairs (cos / 2, (1 - sin) / 2) fold the formula's halves into the table.
template <class T>
void BuildForwardSplitTable(T* table, int order, int logFine, SplitOrder slots,
                            const UnitRoots<T>& roots) {
  if (logFine != 0) return BuildTwoLevelSplitTable(table, order, logFine, slots, roots);
  ForEachSlot(std::int64_t{1} << (order - 2), slots, [&](std::int64_t slot, std::int64_t k) {
    T cosine, minusSine;
    roots.At(k, order, cosine, minusSine);
    table[2 * slot] = static_cast<T>(0.5) * cosine;
    table[2 * slot + 1] = static_cast<T>(0.5 + 0.5 * static_cast<double>(minusSine));
  });
}

template <class T>
void BuildInverseSplitTable(T* table, int order, int logFine, SplitOrder slots,
                            const UnitRoots<T>& roots) {
  if (logFine != 0) return BuildTwoLevelSplitTable(table, order, logFine, slots, roots);
  ForEachSlot(std::int64_t{1} << (order - 2), slots, [&](std::int64_t slot, std::int64_t k) {
    roots.At(k, order, table[2 * slot], table[2 * slot + 1]);
  });
}

#define ZOV_BUILDERS(T)                                                                   \
  template void BuildRadix4Twiddles<T>(T*, int, const UnitRoots<T>&);                     \
  template void BuildBlockTwiddles<T>(T*, int, const UnitRoots<T>&);                      \
  template void BuildStageTwiddles<T>(T*, int, int, const UnitRoots<T>&);                 \
  template void BuildRowTwiddles<T>(T*, int, int, T*, const UnitRoots<T>&);               \
  template void BuildTileTwiddles<T>(T*, int, int, int, int, const UnitRoots<T>&);        \
  template void BuildForwardSplitTable<T>(T*, int, int, SplitOrder, const UnitRoots<T>&); \
  template void BuildInverseSplitTable<T>(T*, int, int, SplitOrder, const UnitRoots<T>&);
ZOV_BUILDERS(Zov32f)
ZOV_BUILDERS(Zov64f)

}  // namespace zov

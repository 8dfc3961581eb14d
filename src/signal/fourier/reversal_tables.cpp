// Tables of the bit reversal.
#include "signal/fourier/tables.h"

namespace zov {

namespace {

// Next value of a reversed counter below 2 * top: clears leading ones, sets the first zero.
std::int64_t ReversedIncrement(std::int64_t value, std::int64_t top) {
  while (top > 0 && (value & top) != 0) {
    value ^= top;
    top >>= 1;
  }
  return value | top;
}

}  // namespace

void BuildSwapList(Zov32s* table, int c) {
  const std::int64_t count = std::int64_t{1} << (c - 2);
  Zov32s* pairs = table;
  Zov32s* own = table + count;
  *own = 0;
  std::int64_t j = 0;
  for (std::int64_t i = 1; i < count; ++i) {
    j = ReversedIncrement(j, count / 2);
    if (i < j) {
      *pairs++ = static_cast<Zov32s>(4 * i);
      *pairs++ = static_cast<Zov32s>(4 * j);
    } else if (i == j) {
      *--own = static_cast<Zov32s>(4 * i);
    }
  }
  *pairs = 0;
}

void BuildReversalTable(Zov32s* table, int c) {
  const std::int64_t count = std::int64_t{1} << (c - 2);
  std::int64_t j = 0;
  for (std::int64_t i = 0; i < count; ++i) {
    table[i] = static_cast<Zov32s>(2 * j);
    j = ReversedIncrement(j, count / 2);
  }
  table[count] = 0;
}

void BuildTiledReversalTable(Zov32s* table, int c, int logTile) {
  const std::int64_t count = std::int64_t{1} << (c - 2 * logTile);
  std::int64_t j = 0;
  for (std::int64_t i = 0; i < count; ++i) {
    table[i] = static_cast<Zov32s>(j << logTile);
    j = ReversedIncrement(j, count / 2);
  }
  BuildSwapList(table + count, 2 * logTile);
}

}  // namespace zov

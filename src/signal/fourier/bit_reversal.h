// Bit reversal of arrays of complex values, in place or to another array, by each kind of table.
#pragma once

#include <cstddef>

#include "core/simd.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Four neighbours in two places: z[p], z[p + 1], z[h + p], z[h + p + 1] as a 2 by 2 square.
template <class T>
struct ReversalSquare;

template <>
struct ReversalSquare<Zov32f> {
  Vec128<Zov32f> low, high;

  static ZOV_INLINE ReversalSquare Load(const Zov32f* z, std::ptrdiff_t p, std::ptrdiff_t h) {
    return {Vec128<Zov32f>::Load(z + 2 * p), Vec128<Zov32f>::Load(z + 2 * (p + h))};
  }
  // Stores the transposed square.
  ZOV_INLINE void Store(Zov32f* z, std::ptrdiff_t p, std::ptrdiff_t h) const {
    const Vec128<Zov32f> first = {_mm_movelh_ps(low.v, high.v)};
    const Vec128<Zov32f> second = {_mm_movehl_ps(high.v, low.v)};
    first.Store(z + 2 * p);
    second.Store(z + 2 * (p + h));
  }
};

template <>
struct ReversalSquare<Zov64f> {
  Vec128<Zov64f> low0, low1, high0, high1;

  static ZOV_INLINE ReversalSquare Load(const Zov64f* z, std::ptrdiff_t p, std::ptrdiff_t h) {
    return {Vec128<Zov64f>::Load(z + 2 * p), Vec128<Zov64f>::Load(z + 2 * p + 2),
            Vec128<Zov64f>::Load(z + 2 * (p + h)), Vec128<Zov64f>::Load(z + 2 * (p + h) + 2)};
  }
  ZOV_INLINE void Store(Zov64f* z, std::ptrdiff_t p, std::ptrdiff_t h) const {
    low0.Store(z + 2 * p);
    high0.Store(z + 2 * p + 2);
    low1.Store(z + 2 * (p + h));
    high1.Store(z + 2 * (p + h) + 2);
  }
};

template <class T>
ZOV_INLINE void ReversePair(const T* src, T* dst, std::ptrdiff_t p, std::ptrdiff_t q,
                            std::ptrdiff_t half) {
  const ReversalSquare<T> a = ReversalSquare<T>::Load(src, p, half);
  const ReversalSquare<T> b = ReversalSquare<T>::Load(src, q, half);
  a.Store(dst, q, half);
  b.Store(dst, p, half);
}
template <class T>
ZOV_INLINE void ReverseOwn(const T* src, T* dst, std::ptrdiff_t p, std::ptrdiff_t half) {
  ReversalSquare<T>::Load(src, p, half).Store(dst, p, half);
}

// A square of whole cache lines, 2^kLog of them that lie far apart, on its way through the
// reversal.
template <class T>
struct LineSquare {
  static constexpr int kLog = sizeof(T) == 4 ? 3 : 2;
  static constexpr int kSide = 1 << kLog;
  static constexpr int kReversed[8] = {0, kSide / 2, kSide / 4, kSide * 3 / 4, 1, 5, 3, 7};

  alignas(64) T values[kSide][2 * kSide];

  ZOV_INLINE void Load(const T* z, std::ptrdiff_t stride) {
    using V = Vec<T, kFloatVectorBytes / static_cast<int>(sizeof(T))>;
    for (int row = 0; row < kSide; ++row) {
      for (int i = 0; i < 2 * kSide; i += V::kLanes) {
        V::Load(z + 2 * row * stride + i).Store(values[row] + i);
      }
    }
  }
  // Rows and columns exchange their places and are reversed, two by two.
  ZOV_INLINE void Store(T* z, std::ptrdiff_t stride) const { Place(values[0], kSide, z, stride); }
  // The same from lines that lie `step` values apart.
  static ZOV_INLINE void Place(const T* lines, std::ptrdiff_t step, T* z, std::ptrdiff_t stride) {
    for (int column = 0; column < kSide; column += 2) {
      T* const low = z + 2 * kReversed[column] * stride;
      T* const high = low + kSide * stride;
      for (int row = 0; row < kSide; row += 2) {
        const T* const a = lines + 2 * (kReversed[row] * step + column);
        const T* const b = a + kSide * step;
        if constexpr (sizeof(T) == 4) {
          const __m128 x = _mm_load_ps(a), y = _mm_load_ps(b);
          Vec128<T>{_mm_movelh_ps(x, y)}.Store(low + 2 * row);
          Vec128<T>{_mm_movehl_ps(y, x)}.Store(high + 2 * row);
        } else {
          Vec128<T>::Load(a).Store(low + 2 * row);
          Vec128<T>::Load(b).Store(low + 2 * row + 2);
          Vec128<T>::Load(a + 2).Store(high + 2 * row);
          Vec128<T>::Load(b + 2).Store(high + 2 * row + 2);
        }
      }
    }
  }
};

// Complex order from which lines that lie far apart share a set of the first-level cache.
template <class T>
inline constexpr int kLinesFrom = sizeof(T) == 4 ? 12 : 11;
// Complex order from which lines are asked for ahead: to another array, and in place, where one
// array less has to stay in the second-level cache and the loads bring what the stores need.
template <class T>
inline constexpr int kLinesAheadFrom = sizeof(T) == 4 ? 16 : 15;
template <class T>
inline constexpr int kLinesAheadInPlaceFrom = kLinesAheadFrom<T> + 3;

// The number below `count`, a power of two, that follows in reversed order.
ZOV_INLINE std::ptrdiff_t NextReversed(std::ptrdiff_t reversed, std::ptrdiff_t count) {
  std::ptrdiff_t bit = count / 2;
  for (; (reversed & bit) != 0; bit >>= 1) reversed ^= bit;
  return reversed | bit;
}

// Long arrays: steps of a large power of two put all lines of a square into one set of the cache,
// so each is read and written whole, once. It needs no table. Stores to lines that lie far apart
// wait for each of them in turn, up to four times as long as the rest takes, so these are asked for
// a few squares ahead.
template <class T>
ZOV_NOINLINE void ReverseByLines(const T* src, T* dst, int c) {
  using Square = LineSquare<T>;
  constexpr std::ptrdiff_t kAhead = 4;
  const std::ptrdiff_t stride = std::ptrdiff_t{1} << (c - Square::kLog);
  const std::ptrdiff_t count = stride >> Square::kLog;
  const bool inPlace = src == dst;
  const bool ask = c >= (inPlace ? kLinesAheadInPlaceFrom<T> : kLinesAheadFrom<T>);
  std::ptrdiff_t j = 0;
  std::ptrdiff_t jAhead = 0;
  for (std::ptrdiff_t i = 0; i < kAhead; ++i) jAhead = NextReversed(jAhead, count);
  Square own, partner;
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    if (ask) {
      if (!inPlace || i + kAhead <= jAhead) {
        const T* const from = src + (i + kAhead) * 2 * Square::kSide;
        const T* const to = dst + jAhead * 2 * Square::kSide;
        for (int row = 0; row < Square::kSide; ++row) {
          // For the second level, as they share one set of the first.
          __builtin_prefetch(from + 2 * row * stride, 0, 2);
          __builtin_prefetch(to + 2 * row * stride, 0, 2);
        }
      }
      jAhead = NextReversed(jAhead, count);
    }
    const std::ptrdiff_t p = i * 2 * Square::kSide;
    const std::ptrdiff_t q = j * 2 * Square::kSide;
    if (!inPlace || i == j) {
      own.Load(src + p, stride);
      own.Store(dst + q, stride);
    } else if (i < j) {
      own.Load(src + p, stride);
      partner.Load(src + q, stride);
      own.Store(dst + q, stride);
      partner.Store(dst + p, stride);
    }
    j = NextReversed(j, count);
  }
}

// By a swap list of order c: pairs up to a zero, then lone indices, of which that zero is the
// first, up to the next zero. Entries are twice the index.
template <class T>
void ReverseBySwapList(const T* src, T* dst, int c, const Zov32s* list) {
  const std::ptrdiff_t half = std::ptrdiff_t{1} << (c - 1);
  for (; *list > 0; list += 2) ReversePair(src, dst, list[0] / 2, list[1] / 2, half);
  do {
    ReverseOwn(src, dst, *list / 2, half);
    ++list;
  } while (*list != 0);
}

// By tiles of 2^logTile rows of as many values, the rows far apart. Each row lies in a page of its
// own, and these pages share few places of the translation caches; so a tile is copied to `work`
// and written from there, both row by row. No prefetcher follows such short rows: the lines of the
// next tile and of its place are asked for meanwhile, which halves the time. Arrays near the size
// of the second-level cache need neither.
template <class T>
struct TiledReversal {
  using Square = LineSquare<T>;
  // Bytes of an array up to which its squares are moved one by one.
  static constexpr std::ptrdiff_t kNearInPlace = std::ptrdiff_t{1} << 21;
  static constexpr std::ptrdiff_t kNearApart = std::ptrdiff_t{1} << 19;

  const T* src;
  T* dst;
  int c;
  int logTile;
  const Zov32s* table;
  T* work;  // room for two tiles

  std::ptrdiff_t side = std::ptrdiff_t{1} << logTile;
  std::ptrdiff_t rowStride = std::ptrdiff_t{1} << (c - logTile);

  static ZOV_INLINE void Ask(const T* line) { __builtin_prefetch(line, 0, 2); }

  ZOV_INLINE void Gather(std::ptrdiff_t tile, T* to, std::ptrdiff_t next) const {
    using V = Vec<T, kFloatVectorBytes / static_cast<int>(sizeof(T))>;
    const T* from = src + 2 * tile;
    const T* ahead = src + 2 * next;
    for (std::ptrdiff_t row = 0; row < side; ++row) {
      for (std::ptrdiff_t i = 0; i < 2 * side; i += 2 * Square::kSide, to += 2 * Square::kSide) {
        Ask(ahead + i);
        for (int j = 0; j < 2 * Square::kSide; j += V::kLanes) V::Load(from + i + j).Store(to + j);
      }
      from += 2 * rowStride;
      ahead += 2 * rowStride;
    }
  }
  // Square by square, along the rows of the destination.
  ZOV_INLINE void Scatter(const T* from, std::ptrdiff_t tile, std::ptrdiff_t next) const {
    const std::ptrdiff_t squares = side >> Square::kLog;
    const std::ptrdiff_t lineStride = squares * rowStride;
    std::ptrdiff_t column = 0;
    for (std::ptrdiff_t i = 0; i < squares; ++i, column = NextReversed(column, squares)) {
      T* to = dst + 2 * (tile + i * rowStride);
      const T* ahead = dst + 2 * (next + i * rowStride);
      std::ptrdiff_t row = 0;
      for (std::ptrdiff_t j = 0; j < squares; ++j, row = NextReversed(row, squares)) {
        for (int line = 0; line < Square::kSide; ++line) Ask(ahead + 2 * line * lineStride);
        Square::Place(from + 2 * (row * side + (column << Square::kLog)), squares * side, to,
                      lineStride);
        to += 2 * Square::kSide;
        ahead += 2 * Square::kSide;
      }
    }
  }

  // Square by square, without the copy; in place the two tiles exchange their squares.
  ZOV_INLINE void Move(std::ptrdiff_t tile, std::ptrdiff_t partner) const {
    const std::ptrdiff_t squares = side >> Square::kLog;
    const std::ptrdiff_t lineStride = squares * rowStride;
    std::ptrdiff_t column = 0;
    Square own, other;
    for (std::ptrdiff_t i = 0; i < squares; ++i, column = NextReversed(column, squares)) {
      std::ptrdiff_t row = 0;
      for (std::ptrdiff_t j = 0; j < squares; ++j, row = NextReversed(row, squares)) {
        const std::ptrdiff_t from = tile + row * rowStride + (column << Square::kLog);
        const std::ptrdiff_t to = partner + i * rowStride + (j << Square::kLog);
        const bool exchange = src == dst && from != to;
        if (exchange && tile == partner && to < from) continue;
        own.Load(src + 2 * from, lineStride);
        if (exchange) {
          other.Load(dst + 2 * to, lineStride);
          other.Store(dst + 2 * from, lineStride);
        }
        own.Store(dst + 2 * to, lineStride);
      }
    }
  }

  void Run() const {
    const std::ptrdiff_t columns = std::ptrdiff_t{1} << (c - 2 * logTile);
    const bool inPlace = src == dst;
    if (std::ptrdiff_t{2 * sizeof(T)} << c <= (inPlace ? kNearInPlace : kNearApart)) {
      for (std::ptrdiff_t i = 0; i < columns; ++i) {
        if (!inPlace || i << logTile <= table[i]) Move(i << logTile, table[i]);
      }
      return;
    }
    for (std::ptrdiff_t i = 0; i < columns;) {
      const std::ptrdiff_t own = i << logTile;
      const std::ptrdiff_t partner = table[i];
      do {
        ++i;
      } while (inPlace && i < columns && i << logTile > table[i]);
      const std::ptrdiff_t next = i < columns ? i << logTile : own;
      const std::ptrdiff_t nextPartner = i < columns ? table[i] : partner;
      Gather(own, work, next);
      if (inPlace && own != partner) {
        T* const other = work + 2 * side * side;
        Gather(partner, other, nextPartner);
        Scatter(other, own, next);
      }
      Scatter(work, partner, nextPartner);
    }
  }
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

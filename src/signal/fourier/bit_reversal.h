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

// By the plain table: entry i is twice the (c-2)-bit reversal of i.
template <class T>
void ReverseByTable(const T* src, T* dst, int c, const Zov32s* table) {
  const std::ptrdiff_t half = std::ptrdiff_t{1} << (c - 1);
  const std::ptrdiff_t count = half / 2;
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    const std::ptrdiff_t p = 2 * i;
    const std::ptrdiff_t q = table[i];
    if (p < q) ReversePair(src, dst, p, q, half);
    if (p == q) ReverseOwn(src, dst, p, half);
  }
}

// By tiles of 2^logTile rows of as many values, the rows far apart: a tile is reversed in work
// memory, where it is contiguous, and goes to the place of its partner.
template <class T>
struct TiledReversal {
  const T* src;
  T* dst;
  int c;
  int logTile;
  const Zov32s* table;
  T* work;

  void Gather(std::ptrdiff_t offset, T* tile) const {
    const std::ptrdiff_t side = std::ptrdiff_t{1} << logTile;
    const std::ptrdiff_t stride = std::ptrdiff_t{1} << (c - logTile);
    for (std::ptrdiff_t row = 0; row < side; ++row) {
      CopyRow(src + 2 * (offset + row * stride), tile + 2 * row * side, 2 * side);
    }
    const Zov32s* const swapList = table + (std::ptrdiff_t{1} << (c - 2 * logTile));
    ReverseBySwapList(tile, tile, 2 * logTile, swapList);
  }
  void Scatter(const T* tile, std::ptrdiff_t offset) const {
    const std::ptrdiff_t side = std::ptrdiff_t{1} << logTile;
    const std::ptrdiff_t stride = std::ptrdiff_t{1} << (c - logTile);
    for (std::ptrdiff_t row = 0; row < side; ++row) {
      CopyRow(tile + 2 * row * side, dst + 2 * (offset + row * stride), 2 * side);
    }
  }
  static ZOV_INLINE void CopyRow(const T* from, T* to, std::ptrdiff_t count) {
    using V = Vec<T, kFloatVectorBytes / static_cast<int>(sizeof(T))>;
    for (std::ptrdiff_t i = 0; i < count; i += V::kLanes) V::Load(from + i).Store(to + i);
  }

  void Run() const {
    const std::ptrdiff_t columns = std::ptrdiff_t{1} << (c - 2 * logTile);
    T* const second = work + (std::ptrdiff_t{2} << 2 * logTile);
    for (std::ptrdiff_t i = 0; i < columns; ++i) {
      const std::ptrdiff_t own = i << logTile;
      const std::ptrdiff_t partner = table[i];
      if (src != dst) {
        Gather(own, work);
        Scatter(work, partner);
      } else if (own <= partner) {
        Gather(own, work);
        if (own != partner) {
          Gather(partner, second);
          Scatter(second, own);
        }
        Scatter(work, partner);
      }
    }
  }
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

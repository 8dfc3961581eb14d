// The copy plans, inline so that each entry has its own. All of them load a byte before any store
// that could reach it when the destination lies before the source.
#pragma once

#include "core/simd.h"
#include "signal/vector/cache_bypass.h"
#include "signal/vector/copy.h"
#include "signal/vector/memory_access.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// From here on levels avx and above hand over to the string move.
inline constexpr std::int64_t kStringMoveFloor = 32768;

// The largest piece whose bytes fit a signed 32-bit count, in whole vectors.
inline constexpr std::int64_t kLargestPiece = 0x7FFFFFE0;

template <class T>
ZOV_INLINE void CopyEnds(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  constexpr int kBytes = sizeof(T);
  const T first = Get<T>(src);
  const T last = Get<T>(src + bytes - kBytes);
  Put(dst, first);
  Put(dst + bytes - kBytes, last);
}

ZOV_INLINE void CopyShort(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  if (bytes >= 8) {
    CopyEnds<std::uint64_t>(src, dst, bytes);
  } else if (bytes >= 4) {
    CopyEnds<Zov32u>(src, dst, bytes);
  } else if (bytes >= 2) {
    CopyEnds<Zov16u>(src, dst, bytes);
  } else if (bytes == 1) {
    *dst = *src;
  }
}

// One pass, held in registers between its loads and its stores.
struct Pass {
  static constexpr int kChunks = kPass / Chunk::kBytes;
  Chunk chunk[kChunks];

  static ZOV_INLINE Pass Load(const Zov8u* p) {
    Pass pass;
    for (int i = 0; i < kChunks; ++i) pass.chunk[i] = Chunk::Load(p + i * Chunk::kBytes);
    return pass;
  }
  ZOV_INLINE void Store(Zov8u* p) const {
    for (int i = 0; i < kChunks; ++i) chunk[i].Store(p + i * Chunk::kBytes);
  }
  ZOV_INLINE void StoreAligned(Zov8u* p) const {
    for (int i = 0; i < kChunks; ++i) chunk[i].StoreAligned(p + i * Chunk::kBytes);
  }
  ZOV_INLINE void Stream(Zov8u* p) const {
    for (int i = 0; i < kChunks; ++i) chunk[i].Stream(p + i * Chunk::kBytes);
  }
};

// Aligned stores between a first vector and a last pass that overlap them.
ZOV_INLINE void CopyPlain(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  if (bytes <= kPass) {
    if (bytes < 16) return CopyShort(src, dst, bytes);
    if (bytes <= 32) return CopyEnds<Half>(src, dst, bytes);
    if (bytes <= 2 * Chunk::kBytes) return CopyEnds<Chunk>(src, dst, bytes);
    struct Two {
      Chunk a, b;
    };
    return CopyEnds<Two>(src, dst, bytes);
  }
  const Chunk first = Chunk::Load(src);
  const Pass last = Pass::Load(src + bytes - kPass);
  Zov8u* const lastDst = dst + bytes - kPass;
  Zov8u* const begin = dst;
  const std::int64_t head = static_cast<std::int64_t>(BytesToAlign<Chunk::kBytes>(dst));
  src += head;
  dst += head;
  for (; dst < lastDst; dst += kPass, src += kPass) Pass::Load(src).StoreAligned(dst);
  last.Store(lastDst);
  first.Store(begin);
}

ZOV_INLINE void Copy(const void* pSrc, void* pDst, std::int64_t bytes) {
  const Zov8u* const src = static_cast<const Zov8u*>(pSrc);
  Zov8u* const dst = static_cast<Zov8u*>(pDst);
  if constexpr (kLevel >= Level::avx) {
    if (bytes >= kStringMoveFloor) return CopyInPieces(src, dst, bytes, kLargestPiece);
  } else if constexpr (kLevel >= Level::sse3) {
    if (BypassesCache(bytes, kFloors.copy)) return CopyStreaming(src, dst, bytes);
  } else {
    const std::uintptr_t ahead =
        reinterpret_cast<std::uintptr_t>(dst) - reinterpret_cast<std::uintptr_t>(src);
    if (ahead - 1 < static_cast<std::uintptr_t>(bytes) - 1) return CopyOntoItself(src, dst, bytes);
  }
  CopyPlain(src, dst, bytes);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

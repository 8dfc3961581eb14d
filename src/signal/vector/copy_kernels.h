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

// From here on both arrays together fill a first-level cache of 32 KiB, and the loop asks for lines
// of the destination ahead: 1.1 times its speed at 16 KiB, 1.5 and more when the core is shared.
inline constexpr std::int64_t kAskAheadFloor = 14336;

// N vectors in a row, held in registers between their loads and their stores.
template <class V, int N>
struct Several {
  static constexpr int kBytes = N * V::kBytes;
  V vector[N];

  static ZOV_INLINE Several Load(const Zov8u* p) {
    Several r;
    for (int i = 0; i < N; ++i) r.vector[i] = V::Load(p + i * V::kBytes);
    return r;
  }
  ZOV_INLINE void Store(Zov8u* p) const {
    for (int i = 0; i < N; ++i) vector[i].Store(p + i * V::kBytes);
  }
  ZOV_INLINE void StoreAligned(Zov8u* p) const {
    for (int i = 0; i < N; ++i) vector[i].StoreAligned(p + i * V::kBytes);
  }
  ZOV_INLINE void Stream(Zov8u* p) const {
    for (int i = 0; i < N; ++i) vector[i].Stream(p + i * V::kBytes);
  }
};
using Pass = Several<Chunk, kPass / Chunk::kBytes>;

template <class T>
struct Scalar {
  static constexpr int kBytes = sizeof(T);
  T x;
  static ZOV_INLINE Scalar Load(const Zov8u* p) { return {Get<T>(p)}; }
  ZOV_INLINE void Store(Zov8u* p) const { Put(p, x); }
};

// One to two times V::kBytes: the two ends, which meet or overlap.
template <class V>
ZOV_INLINE void CopyEnds(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  const V first = V::Load(src);
  const V last = V::Load(src + bytes - V::kBytes);
  first.Store(dst);
  last.Store(dst + bytes - V::kBytes);
}

// Fewer than 16 bytes.
ZOV_INLINE void CopyShort(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  if (bytes >= 8) {
    CopyEnds<Scalar<std::uint64_t>>(src, dst, bytes);
  } else if (bytes >= 4) {
    CopyEnds<Scalar<Zov32u>>(src, dst, bytes);
  } else if (bytes >= 2) {
    CopyEnds<Scalar<Zov16u>>(src, dst, bytes);
  } else if (bytes == 1) {
    *dst = *src;
  }
}

// Up to two passes: no loop.
ZOV_INLINE void CopyUpToTwoPasses(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  if (bytes > kPass) [[likely]] {
    CopyEnds<Pass>(src, dst, bytes);
  } else if (bytes > 2 * Chunk::kBytes) {
    CopyEnds<Several<Chunk, 2>>(src, dst, bytes);
  } else if (bytes > 32) {
    CopyEnds<Chunk>(src, dst, bytes);
  } else if (bytes >= 16) {
    CopyEnds<Half>(src, dst, bytes);
  } else {
    CopyShort(src, dst, bytes);
  }
}

// More than two passes: aligned stores between a first and a last pass at any address that overlap
// them.
template <bool kAsksAhead>
ZOV_INLINE void CopyPasses(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  const Pass first = Pass::Load(src);
  const Pass last = Pass::Load(src + bytes - kPass);
  Zov8u* const firstDst = dst;
  Zov8u* const lastDst = dst + bytes - kPass;
  const std::int64_t ahead =
      kPass - static_cast<std::int64_t>(BytesPastAligned<Chunk::kBytes>(dst + kPass));
  dst += ahead;
  src += ahead;
  for (; dst < lastDst; dst += kPass, src += kPass) {
    const Pass pass = Pass::Load(src);
    if constexpr (kAsksAhead) AskForPass(dst, 256);
    pass.StoreAligned(dst);
  }
  first.Store(firstDst);
  last.Store(lastDst);
}

ZOV_INLINE void CopyPlain(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  if (bytes <= 2 * kPass) [[likely]]
    return CopyUpToTwoPasses(src, dst, bytes);
  CopyPasses<false>(src, dst, bytes);
}

ZOV_INLINE void Copy(const void* pSrc, void* pDst, std::int64_t bytes) {
  const Zov8u* const src = static_cast<const Zov8u*>(pSrc);
  Zov8u* const dst = static_cast<Zov8u*>(pDst);
  if constexpr (kLevel == Level::sse2) {
    const std::uintptr_t ahead =
        reinterpret_cast<std::uintptr_t>(dst) - reinterpret_cast<std::uintptr_t>(src);
    if (ahead - 1 < static_cast<std::uintptr_t>(bytes) - 1) return CopyOntoItself(src, dst, bytes);
  }
  if (bytes <= 2 * kPass) [[likely]]
    return CopyUpToTwoPasses(src, dst, bytes);
  if constexpr (kLevel >= Level::avx) {
    if (bytes >= kStringMoveFloor) return CopyInPieces(src, dst, bytes, kLargestPiece);
  } else {
    if (BypassesCache(bytes, kFloors.copy)) return CopyStreaming(src, dst, bytes);
  }
  if (bytes >= kAskAheadFloor) return CopyAskingAhead(src, dst, bytes);
  CopyPasses<false>(src, dst, bytes);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The fill plans, inline so that each entry has its own. A pattern repeats every element, so a
// store of a whole vector is in phase wherever an element begins, and stores may overlap.
#pragma once

#include "core/simd.h"
#include "signal/vector/cache_bypass.h"
#include "signal/vector/fill.h"
#include "signal/vector/memory_access.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Fewer than 16 bytes: two stores that meet or overlap.
template <int kElementBytes>
ZOV_INLINE void FillShort(Chunk pattern, Zov8u* dst, std::int64_t bytes) {
  const std::uint64_t bits = static_cast<std::uint64_t>(pattern.v[0]);
  Zov8u* const end = dst + bytes;
  if (bytes >= 8) {
    Put(dst, bits);
    Put(end - 8, bits);
  } else if (kElementBytes <= 4 && bytes >= 4) {
    Put(dst, static_cast<Zov32u>(bits));
    Put(end - 4, static_cast<Zov32u>(bits));
  } else if (kElementBytes <= 2 && bytes >= 2) {
    Put(dst, static_cast<Zov16u>(bits));
    Put(end - 2, static_cast<Zov16u>(bits));
  } else if (kElementBytes == 1 && bytes == 1) {
    *dst = static_cast<Zov8u>(bits);
  }
}

template <bool kAligned>
ZOV_INLINE void PutChunks(Chunk pattern, Zov8u* dst) {
  for (int i = 0; i < kPass; i += Chunk::kBytes) {
    if constexpr (kAligned) {
      pattern.StoreAligned(dst + i);
    } else {
      pattern.Store(dst + i);
    }
  }
}

// Ordinary stores. kElementBytes is the period of the pattern.
template <int kElementBytes>
ZOV_INLINE void FillPlain(Chunk pattern, Zov8u* dst, std::int64_t bytes) {
  Zov8u* const end = dst + bytes;
  if (bytes <= kPass) {
    if (kElementBytes < 16 && bytes < 16) {
      FillShort<kElementBytes>(pattern, dst, bytes);
    } else if (bytes <= 32) {
      if (kElementBytes == 16 && bytes == 0) return;
      LowHalf(pattern).Store(dst);
      LowHalf(pattern).Store(end - 16);
    } else {
      pattern.Store(dst);
      pattern.Store(end - Chunk::kBytes);
      if (bytes > 2 * Chunk::kBytes) {
        pattern.Store(dst + Chunk::kBytes);
        pattern.Store(end - 2 * Chunk::kBytes);
      }
    }
    return;
  }
  // The last pass, at the end whatever its alignment, covers what the loop leaves.
  Zov8u* const lastPass = end - kPass;
  if (kLevel == Level::sse2 || !IsAligned<kElementBytes>(dst)) {
    for (; dst < lastPass; dst += kPass) PutChunks<false>(pattern, dst);
  } else {
    pattern.Store(dst);
    dst += BytesToAlign<Chunk::kBytes>(dst);
    for (; dst < lastPass; dst += kPass) PutChunks<true>(pattern, dst);
  }
  PutChunks<false>(pattern, lastPass);
}

template <int kElementBytes>
ZOV_INLINE void Fill(Chunk pattern, void* pDst, std::int64_t bytes, std::int64_t floor) {
  Zov8u* const dst = static_cast<Zov8u*>(pDst);
  if (IsAligned<kElementBytes>(dst) && BypassesCache(bytes, floor)) {
    FillStreaming(&pattern, dst, bytes);
  } else {
    FillPlain<kElementBytes>(pattern, dst, bytes);
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The fill plans, inline so that each entry has its own. A pattern repeats every element, so a
// store of a whole vector is in phase wherever an element begins, and stores may overlap.
#pragma once

#include "core/simd.h"
#include "signal/vector/cache_bypass.h"
#include "signal/vector/fill.h"
#include "signal/vector/memory_access.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// From here on levels avx and above leave a fill to the string store, which writes whole cache
// lines unread: 1.3 times a loop at 4 KiB and 1.7 times at 16 KiB where its stores are wider.
inline constexpr std::int64_t kStringStoreFloor = 4096;

// Fills out of line: by the string store with 8 bytes of a pattern, of kStringStoreFloor and more.
void FillByStringStore(std::uint64_t bits, Zov8u* dst, std::int64_t bytes);

// Fills out of line: very large ones, which may bypass the cache, and those of elements that are
// not aligned on their own size, whose stores cannot be aligned.
void FillLarge(Half pattern, Zov8u* dst, std::int64_t bytes, std::int64_t floor, int elementBytes);

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
ZOV_INLINE void PutPass(Chunk pattern, Zov8u* dst) {
  for (int i = 0; i < kPass; i += Chunk::kBytes) {
    if constexpr (kAligned) {
      pattern.StoreAligned(dst + i);
    } else {
      pattern.Store(dst + i);
    }
  }
}

// More than one pass, by ordinary stores. The first and the last pass lie at any address and
// overlap the aligned ones between them.
template <bool kAligned>
ZOV_INLINE void FillPasses(Chunk pattern, Zov8u* dst, std::int64_t bytes) {
  Zov8u* const lastPass = dst + bytes - kPass;
  PutPass<false>(pattern, dst);
  dst += kPass;
  if constexpr (kAligned) dst -= BytesPastAligned<Chunk::kBytes>(dst);
  for (; dst < lastPass; dst += kPass) PutPass<kAligned>(pattern, dst);
  PutPass<false>(pattern, lastPass);
}

// The floor level has no aligned plan: its unaligned stores save the test.
inline constexpr bool kAlignsFills = kLevel != Level::sse2;

// Fills with a pattern that repeats every kElementBytes. `floor` is the size from which stores may
// bypass the cache.
template <int kElementBytes>
ZOV_INLINE void Fill(Chunk pattern, void* pDst, std::int64_t bytes, std::int64_t floor) {
  Zov8u* const dst = static_cast<Zov8u*>(pDst);
  Zov8u* const end = dst + bytes;
  constexpr bool kByString = kLevel >= Level::avx && kElementBytes <= 8;
  if (bytes > 2 * kPass) [[unlikely]] {
    if (kAlignsFills && (bytes >= floor || !IsAligned<kElementBytes>(dst))) {
      FillLarge(LowHalf(pattern), dst, bytes, floor, kElementBytes);
    } else if (kByString && bytes >= kStringStoreFloor) {
      FillByStringStore(static_cast<std::uint64_t>(pattern.v[0]), dst, bytes);
    } else {
      FillPasses<kAlignsFills>(pattern, dst, bytes);
    }
  } else if (bytes > kPass) [[likely]] {
    PutPass<false>(pattern, dst);
    PutPass<false>(pattern, end - kPass);
  } else if (bytes > 32) {
    pattern.Store(dst);
    pattern.Store(end - Chunk::kBytes);
    if (bytes > 2 * Chunk::kBytes) {
      pattern.Store(dst + Chunk::kBytes);
      pattern.Store(end - 2 * Chunk::kBytes);
    }
  } else if (bytes >= 16) {
    LowHalf(pattern).Store(dst);
    LowHalf(pattern).Store(end - 16);
  } else if (kElementBytes < 16) {
    FillShort<kElementBytes>(pattern, dst, bytes);
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

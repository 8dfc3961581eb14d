// What fills and copies share: the widest vector that the level stores, and small scalars at any
// address.
#pragma once

#include "core/simd.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

using Half = Vec<std::int64_t, 2>;
using Chunk = Vec<std::int64_t, kFloatVectorBytes / 8>;

// Bytes that one pass of a fill or copy loop stores.
inline constexpr int kPass = kLevel == Level::sse2 ? 32 : 4 * Chunk::kBytes;

template <class T>
ZOV_INLINE T Get(const void* p) {
  T x;
  __builtin_memcpy(&x, p, sizeof x);
  return x;
}

template <class T>
ZOV_INLINE void Put(void* p, T x) {
  __builtin_memcpy(p, &x, sizeof x);
}

// 16 bytes repeated over a chunk, which may be no more than those.
ZOV_INLINE Chunk TwiceIfWider(Half a) {
  Chunk r;
  for (int i = 0; i < Chunk::kLanes; ++i) r.v[i] = a.v[i % 2];
  return r;
}

// A scalar repeated over a chunk, its bits as they are.
template <class T>
ZOV_INLINE Chunk PatternOf(T x) {
  return As<std::int64_t>(Vec<T, Chunk::kBytes / static_cast<int>(sizeof(T))>::Broadcast(x));
}

template <int kAlignment>
ZOV_INLINE std::uintptr_t BytesPastAligned(const void* p) {
  return reinterpret_cast<std::uintptr_t>(p) & (kAlignment - 1);
}

// Asks for the cache lines that the pass `ahead` bytes further on stores. They may lie beyond the
// array, where that does nothing.
ZOV_INLINE void AskForPass(const Zov8u* dst, int ahead) {
  constexpr int kCacheLine = 64;
  for (int i = 0; i < kPass; i += kCacheLine) {
    _mm_prefetch(reinterpret_cast<const char*>(dst) + ahead + i, _MM_HINT_T0);
  }
}

ZOV_INLINE Half LowHalf(Chunk a) {
#if defined(__AVX__)
  return {(Half::Native)_mm256_castsi256_si128((__m256i)a.v)};
#else
  return a;
#endif
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

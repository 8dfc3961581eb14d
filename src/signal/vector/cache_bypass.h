// When fills and copies use stores that bypass the cache: a floor in bytes below which nobody asks,
// and above it a comparison with the cache size.
#pragma once

#include <cstdint>

#include "signal/vector/cache_size.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

inline constexpr std::int64_t kNeverBypass = INT64_MAX;

// Sizes in bytes from which the cache size is asked. They are part of the design, not tuning.
struct BypassFloors {
  std::int64_t fill, clear, copy;
};

constexpr BypassFloors FloorsAt(Level level) {
  if (level >= Level::avx) return {0x200001, 0x200001, kNeverBypass};
  if (level == Level::sse4) return {0x100000, 0x80000, 0x100000};
  if (level >= Level::sse3) return {0x100000, 0x80000, 0x80000};
  return {kNeverBypass, kNeverBypass, kNeverBypass};
}

inline constexpr BypassFloors kFloors = FloorsAt(kLevel);

// Whether data of this size is too much for a cache; 0 stands for a cache of unknown size.
constexpr bool ExceedsCache(Level level, std::int64_t bytes, std::int32_t cacheBytes) {
  if (cacheBytes <= 0) return false;
  return level >= Level::avx ? cacheBytes < bytes : 2 * bytes >= cacheBytes;
}

// The size of the cache that data of this size compares with; 0 where nobody asks, or none is
// known.
ZOV_INLINE std::int32_t CacheToCompare(std::int64_t bytes, std::int64_t floor) {
  if (floor == kNeverBypass || bytes < floor) return 0;
  if constexpr (kLevel >= Level::avx) {
    Zov32s cacheBytes = 0;
    return zovCacheSizeQuery(&cacheBytes) == zovStsNoErr ? cacheBytes : 0;
  } else {
    return zovCacheShareOf(zovCpuRunCpuid);
  }
}

ZOV_INLINE bool BypassesCache(std::int64_t bytes, std::int64_t floor) {
  return ExceedsCache(kLevel, bytes, CacheToCompare(bytes, floor));
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

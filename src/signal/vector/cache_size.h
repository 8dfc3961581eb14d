// The size of the last-level cache, by which fills and copies decide on stores that bypass it.
#pragma once

#include <cstdint>

#include "core/cpu.h"
#include "kelozov/kelozov.h"

namespace zov {

// State of the query when the processor reports no cache; 36 stands for a processor that the query
// does not read at all. Neither is an error: a fill then keeps to ordinary stores.
inline constexpr ZovStatus kCacheNotReported = 37;

struct CacheSize {
  ZovStatus state;
  std::int32_t bytes;
};

// The largest cache that a processor reports; 0 bytes whenever the state is not zovStsNoErr.
CacheSize zovCacheSizeOf(CpuidReader read);

// The same for the processor that runs, worked out on the first call and kept.
ZovStatus zovCacheSizeQuery(Zov32s* pSize);

// One thread's share of the cache by the descriptors of leaf 2, or 0 when it is unknown. The
// kernels of levels 1 to 4 go by this, and read the processor each time.
std::int32_t zovCacheShareOf(CpuidReader read);

}  // namespace zov

// The one source of memory for callers and library: blocks on 64-byte boundaries.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kelozov/kelozov.h"

namespace zov {

// The heap behind the allocator, bound at link time. Only the first and the last are used.
struct HeapTable {
  void* (*allocate)(std::size_t size);
  void* (*allocateZeroed)(std::size_t count, std::size_t size);
  void* (*reallocate)(void* block, std::size_t size);
  void (*release)(void* block);
};
extern HeapTable zovHeap;

Zov8u* zovAllocAligned(std::int64_t len);
void zovFreeAligned(void* ptr);

}  // namespace zov

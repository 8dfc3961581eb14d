// The level's entries of the allocator.
#include "core/entries.h"
#include "core/memory.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

Zov8u* zovsMalloc_8u(int len) { return zovAllocAligned(len); }

void zovsFree(void* ptr) { zovFreeAligned(ptr); }

}  // namespace zov::ZOV_LEVEL_NAMESPACE

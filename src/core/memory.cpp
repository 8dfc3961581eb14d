// Aligned blocks over the heap: 72 extra bytes hold the heap's own address just before the block.
#include "core/memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace zov {

namespace {
constexpr std::uintptr_t kAlignment = 64;
constexpr std::int64_t kExtraBytes = 72;
}  // namespace

HeapTable zovHeap = {std::malloc, std::calloc, std::realloc, std::free};

Zov8u* zovAllocAligned(std::int64_t len) {
  if (len < 1) return nullptr;
  void* const heapBlock = zovHeap.allocate(static_cast<std::size_t>(len + kExtraBytes));
  if (heapBlock == nullptr) return nullptr;
  Zov8u* const bytes = static_cast<Zov8u*>(heapBlock);
  const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(heapBlock);
  const std::uintptr_t aligned = (address + 71) & ~(kAlignment - 1);
  Zov8u* const block = bytes + (aligned - address);
  std::memcpy(block - sizeof(heapBlock), &heapBlock, sizeof(heapBlock));
  return block;
}

void zovFreeAligned(void* ptr) {
  if (ptr == nullptr) return;
  void* heapBlock;
  std::memcpy(&heapBlock, static_cast<Zov8u*>(ptr) - sizeof(heapBlock), sizeof(heapBlock));
  zovHeap.release(heapBlock);
}

}  // namespace zov

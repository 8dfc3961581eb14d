// The allocator: alignment, the address kept before the block, and what never reaches the heap.
#include "core/memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "support/levels.h"

namespace zov::test {
namespace {

int allocations = 0;
std::size_t lastSize = 0;
std::size_t heapOffset = 0;  // moves the heap's blocks, to walk their alignment
void* lastReleased = nullptr;
alignas(64) unsigned char arena[1024];

void* FakeAllocate(std::size_t size) {
  ++allocations;
  lastSize = size;
  return size > sizeof arena - 64 ? nullptr : arena + heapOffset;
}
void FakeRelease(void* block) { lastReleased = block; }

class Memory : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_ = zovHeap;
    zovHeap.allocate = FakeAllocate;
    zovHeap.release = FakeRelease;
    allocations = 0;
  }
  void TearDown() override { zovHeap = saved_; }

 private:
  HeapTable saved_;
};

TEST_F(Memory, BadLengthsNeverReachTheHeap) {
  ForEachLevel([](int level) {
    EXPECT_EQ(ZOV_AT(level, zovsMalloc_8u)(0), nullptr);
    EXPECT_EQ(ZOV_AT(level, zovsMalloc_8u)(-1), nullptr);
    EXPECT_EQ(ZOV_AT(level, zovsMalloc_8u)(INT32_MIN), nullptr);
  });
  EXPECT_EQ(allocations, 0);
}

TEST_F(Memory, BlockIsAlignedAndKeepsTheHeapAddress) {
  ForEachLevel([](int level) {
    for (heapOffset = 0; heapOffset < 64; heapOffset += 8) {
      Zov8u* const block = ZOV_AT(level, zovsMalloc_8u)(100);
      ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0u);
      ASSERT_GE(block, arena + heapOffset + 8);
      ASSERT_LE(block + 100, arena + heapOffset + 172);
      std::memset(block, 0xA5, 100);
      lastReleased = nullptr;
      ZOV_AT(level, zovsFree)(block);
      ASSERT_EQ(lastReleased, arena + heapOffset);
    }
    heapOffset = 0;
  });
}

TEST_F(Memory, LargestLengthDoesNotWrapAndFailureIsNull) {
  EXPECT_EQ(ZOV_AT(0, zovsMalloc_8u)(0x7FFFFFFF), nullptr);
  EXPECT_EQ(lastSize, 0x80000047u);
  lastReleased = arena;
  ZOV_AT(0, zovsFree)(nullptr);
  EXPECT_EQ(lastReleased, arena) << "a null pointer must not reach the heap";
}

}  // namespace
}  // namespace zov::test

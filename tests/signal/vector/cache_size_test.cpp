// The cache rules over made-up processors, and the decision on stores that bypass the cache.
#include "signal/vector/cache_size.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

#include "signal/vector/cache_bypass.h"

namespace zov::test {
namespace {

struct Cache {
  std::uint32_t type, ways, partitions, lineBytes, sets;
};

struct FakeCpu {
  std::uint32_t maxLeaf = 4;
  bool vendor = true;
  std::uint32_t leaf2[4] = {0x00000001, 0, 0, 0};
  std::vector<Cache> caches;
  std::uint32_t sharingThreads = 1;
  int subleavesRead = 0;
};
FakeCpu fake;

void ReadFake(std::uint32_t r[4], std::uint32_t leaf, std::uint32_t subleaf) {
  std::fill(r, r + 4, 0u);
  if (leaf == 0) {
    r[0] = fake.maxLeaf;
    r[1] = 0x756E6547;
    r[2] = fake.vendor ? 0x6C65746E : 0;
    r[3] = 0x49656E69;
  } else if (leaf == 2) {
    std::copy(fake.leaf2, fake.leaf2 + 4, r);
  } else if (leaf == 4) {
    ++fake.subleavesRead;
    r[0] = (fake.sharingThreads - 1) << 26;
    if (subleaf >= fake.caches.size()) return;
    const Cache& cache = fake.caches[subleaf];
    r[0] |= cache.type | 0x03FFC000;  // fields that do not matter are set
    r[1] = ((cache.ways - 1) << 22) | ((cache.partitions - 1) << 12) | (cache.lineBytes - 1);
    r[2] = cache.sets - 1;
    r[3] = 0xFFFFFFFF;
  } else {
    ADD_FAILURE() << "leaf " << leaf;
  }
}

void ExpectSize(const FakeCpu& cpu, ZovStatus state, std::int32_t bytes) {
  fake = cpu;
  const CacheSize size = zovCacheSizeOf(ReadFake);
  EXPECT_EQ(size.state, state);
  EXPECT_EQ(size.bytes, bytes);
}

TEST(CacheSize, ProcessorsThatAreNotRead) {
  FakeCpu cpu;
  cpu.caches = {{1, 8, 1, 64, 64}};
  cpu.vendor = false;
  ExpectSize(cpu, 36, 0);
  cpu.vendor = true;
  cpu.maxLeaf = 1;
  ExpectSize(cpu, 36, 0);
}

TEST(CacheSize, WalksLeaf4ForTheLargestOutsideInstructionCaches) {
  const Cache data = {1, 12, 1, 64, 64}, instructions = {2, 16, 1, 64, 65536};
  const Cache second = {3, 20, 1, 64, 1024}, third = {3, 12, 2, 64, 16384};
  FakeCpu cpu;
  cpu.maxLeaf = 0x16;
  cpu.caches = {data, instructions, second, third};
  ExpectSize(cpu, 0, 12 * 2 * 64 * 16384);
  EXPECT_EQ(fake.subleavesRead, 5) << "type 0 ends the walk";
  cpu.caches = {third, data};
  ExpectSize(cpu, 0, 12 * 2 * 64 * 16384);
  cpu.caches = {instructions};
  ExpectSize(cpu, 37, 0);
  cpu.caches = {};
  ExpectSize(cpu, 37, 0);
  cpu.caches = {data, {0, 1, 1, 1, 1}, third};
  ExpectSize(cpu, 0, 12 * 64 * 64);
  cpu.caches.assign(40, data);
  cpu.caches[32] = third;
  ExpectSize(cpu, 0, 12 * 64 * 64);
  EXPECT_EQ(fake.subleavesRead, 32);
  cpu.caches = {{3, 1024, 1024, 4096, 0x80000000}};
  ExpectSize(cpu, 0, INT32_MAX);
}

TEST(CacheSize, OlderProcessorsReportDescriptors) {
  FakeCpu cpu;
  cpu.caches = {{3, 12, 2, 64, 16384}};
  for (const std::uint32_t maxLeaf : {2u, 3u}) {
    cpu.maxLeaf = maxLeaf;
    cpu.leaf2[1] = 0x00004139;
    ExpectSize(cpu, 0, 131072);
    cpu.leaf2[3] = 0x00EC0000;
    ExpectSize(cpu, 0, 25165824);
    cpu.leaf2[3] = 0x80EC0000;
    ExpectSize(cpu, 0, 131072);
    cpu.leaf2[1] = cpu.leaf2[3] = 0;
    ExpectSize(cpu, 37, 0);
  }
}

TEST(CacheSize, DescriptorTables) {
  const std::map<std::int32_t, std::vector<std::uint32_t>> rows = {
      {25165824, {0xEC}},
      {18874368, {0xEB}},
      {16777216, {0x4D}},
      {12582912, {0xEA, 0x4C}},
      {8388608, {0xE4, 0xDE, 0x4B, 0x47}},
      {6291456, {0x4E, 0x4A}},
      {4194304, {0xE3, 0xDD, 0xD8, 0x49, 0x29, 0x46}},
      {3145728, {0x48}},
      {2097152, {0xE2, 0xDC, 0xD7, 0xD2, 0x25, 0x7D, 0x85, 0x45}},
      {1048576, {0xD6, 0xD1, 0x23, 0x87, 0x7C, 0x78, 0x84, 0x44}},
      {524288, {0xD0, 0x22, 0x7B, 0x80, 0x86, 0x3E, 0x7F, 0x83, 0x43}},
      {393216, {0x3D}},
      {262144, {0x21, 0x3C, 0x42, 0x7A, 0x82}},
      {196608, {0x3A}},
      {131072, {0x39, 0x3B, 0x41, 0x79, 0x81}},
  };
  std::map<std::uint32_t, std::int32_t> bytesOf;
  for (const auto& [bytes, descriptors] : rows) {
    for (const std::uint32_t descriptor : descriptors) bytesOf[descriptor] = bytes;
  }
  ASSERT_EQ(bytesOf.size(), 55u);
  for (std::uint32_t descriptor = 0; descriptor < 256; ++descriptor) {
    SCOPED_TRACE(descriptor);
    const auto row = bytesOf.find(descriptor);
    const std::int32_t bytes = row == bytesOf.end() ? 0 : row->second;
    FakeCpu cpu;
    cpu.maxLeaf = 2;
    cpu.leaf2[2] = descriptor << 16;
    ExpectSize(cpu, bytes == 0 ? 37 : 0, bytes);
    EXPECT_EQ(zovCacheShareOf(ReadFake), bytes >= 524288 ? bytes : 0);
  }
}

TEST(CacheShare, DividesByTheSharingThreads) {
  fake = {};
  fake.leaf2[0] = 0x4D000001;  // 16 MiB
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0x1000000);
  fake.sharingThreads = 3;
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0x1000000 / 3);
  fake.sharingThreads = 64;
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0x40000);
  fake.maxLeaf = 3;
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0x1000000) << "leaf 4 is out of range";
}

TEST(CacheShare, UnknownSizes) {
  fake = {};
  fake.leaf2[0] = 0x4D000001;
  fake.vendor = false;
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0);
  fake.vendor = true;
  fake.leaf2[0] = 0x4D000002;
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0) << "leaf 2 has to be read more than once";
  fake.leaf2[0] = 0xCD4D0001;
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0) << "bit 31";
  fake.leaf2[0] = 0x00000001;
  EXPECT_EQ(zovCacheShareOf(ReadFake), 0);
}

TEST(CacheQuery, AnswersLikeTheProcessorEachTime) {
  EXPECT_EQ(zovCacheSizeQuery(nullptr), zovStsNullPtrErr);
  const CacheSize expected = zovCacheSizeOf(zovCpuRunCpuid);
  for (int i = 0; i < 2; ++i) {
    Zov32s bytes = -1;
    EXPECT_EQ(zovCacheSizeQuery(&bytes), expected.state);
    EXPECT_EQ(bytes, expected.bytes);
  }
  EXPECT_EQ(zovCacheSizeQuery(nullptr), zovStsNullPtrErr);
}

TEST(CacheBypass, ComparesWithTheCacheByLevel) {
  using common::ExceedsCache;
  for (const Level level : {Level::sse3, Level::ssse3, Level::ssse3_movbe, Level::sse4}) {
    EXPECT_FALSE(ExceedsCache(level, 1 << 30, 0));
    EXPECT_FALSE(ExceedsCache(level, 0xFFFFF, 0x200000));
    EXPECT_TRUE(ExceedsCache(level, 0x100000, 0x200000)) << "half is enough";
    EXPECT_FALSE(ExceedsCache(level, 0x100000, 0x200001)) << "rounded up";
  }
  for (const Level level : {Level::avx, Level::avx2}) {
    EXPECT_FALSE(ExceedsCache(level, 1 << 30, 0));
    EXPECT_FALSE(ExceedsCache(level, 0x400000, 0x400000));
    EXPECT_TRUE(ExceedsCache(level, 0x400001, 0x400000));
    EXPECT_TRUE(ExceedsCache(level, std::int64_t{1} << 33, INT32_MAX));
  }
}

TEST(CacheBypass, FloorsByLevel) {
  using common::FloorsAt;
  EXPECT_EQ(FloorsAt(Level::sse2).fill, common::kNeverBypass);
  EXPECT_EQ(FloorsAt(Level::sse2).clear, common::kNeverBypass);
  EXPECT_EQ(FloorsAt(Level::sse2).copy, common::kNeverBypass);
  for (const Level level : {Level::sse3, Level::ssse3, Level::ssse3_movbe, Level::sse4}) {
    EXPECT_EQ(FloorsAt(level).fill, 1 << 20);
    EXPECT_EQ(FloorsAt(level).clear, 1 << 19);
    EXPECT_EQ(FloorsAt(level).copy, level == Level::sse4 ? 1 << 20 : 1 << 19);
  }
  for (const Level level : {Level::avx, Level::avx2}) {
    EXPECT_EQ(FloorsAt(level).fill, (1 << 21) + 1);
    EXPECT_EQ(FloorsAt(level).clear, (1 << 21) + 1);
    EXPECT_EQ(FloorsAt(level).copy, common::kNeverBypass);
  }
}

}  // namespace
}  // namespace zov::test

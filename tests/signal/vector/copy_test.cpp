// Copies: exports, the kernel and each of its plans, at every level.
#include "signal/vector/copy.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

ZOV_KERNEL_TABLE(zovCopyBytes)
ZOV_KERNEL_TABLE(CopyOntoItself)
ZOV_KERNEL_TABLE(CopyStreaming)
ZOV_KERNEL_TABLE(CopyByStringMove)
ZOV_KERNEL_TABLE(CopyInPieces)

namespace zov::test {
namespace {

using CopyFunction = void (*)(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes);

void CopyBytes(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes) {
  EXPECT_EQ(ZOV_KERNEL_AT(level, zovCopyBytes)(src, dst, bytes), zovStsNoErr);
}
void Copy32f(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes) {
  EXPECT_EQ(ZOV_AT(level, zovsCopy_32f)(reinterpret_cast<const Zov32f*>(src),
                                        reinterpret_cast<Zov32f*>(dst), bytes / 4),
            zovStsNoErr);
}
void Copy64f(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes) {
  EXPECT_EQ(ZOV_AT(level, zovsCopy_64f)(reinterpret_cast<const Zov64f*>(src),
                                        reinterpret_cast<Zov64f*>(dst), bytes / 8),
            zovStsNoErr);
}
void OntoItself(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes) {
  ZOV_KERNEL_AT(level, CopyOntoItself)(src, dst, bytes);
}
void Streaming(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes) {
  ZOV_KERNEL_AT(level, CopyStreaming)(src, dst, bytes);
}
void StringMove(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes) {
  ZOV_KERNEL_AT(level, CopyByStringMove)(src, dst, bytes);
}
void SmallPieces(int level, const std::uint8_t* src, std::uint8_t* dst, int bytes) {
  ZOV_KERNEL_AT(level, CopyInPieces)(src, dst, bytes, 96);
}

struct Member {
  const char* name;
  int elementBytes;
  int leastBytes;
  CopyFunction run;
};

constexpr Member kMembers[] = {
    {"CopyBytes", 1, 1, CopyBytes},     {"Copy_32f", 4, 4, Copy32f},
    {"Copy_64f", 8, 8, Copy64f},        {"CopyOntoItself", 1, 1, OntoItself},
    {"Streaming", 1, 64, Streaming},    {"StringMove", 1, 64, StringMove},
    {"SmallPieces", 1, 1, SmallPieces},
};

class Copy : public ::testing::Test {
 protected:
  static constexpr std::size_t kCapacity = 0x140000;
  static constexpr std::size_t kMargin = 64;

  Copy() : source_(kCapacity), destination_(kCapacity), noise_(kCapacity) {
    std::uint32_t x = 12345;
    for (std::uint8_t& byte : noise_) {
      x = x * 1664525 + 1013904223;
      byte = static_cast<std::uint8_t>(x >> 24);
    }
  }

  void Check(const Member& member, int level, std::size_t bytes, Guard guard, std::size_t srcShift,
             std::size_t dstShift) {
    std::uint8_t* const src = source_.At(bytes, guard, srcShift);
    std::uint8_t* const dst = destination_.At(bytes, guard, dstShift);
    std::memcpy(src, noise_.data(), bytes);
    // The guard's side has `dstShift` bytes up to it, the other side plenty.
    const bool after = guard == Guard::after;
    std::uint8_t* const first = dst - (after ? kMargin : dstShift);
    std::uint8_t* const last = dst + bytes + (after ? dstShift : kMargin);
    std::memset(first, 0x33, static_cast<std::size_t>(last - first));
    member.run(level, src, dst, static_cast<int>(bytes));
    ASSERT_EQ(std::memcmp(dst, noise_.data(), bytes), 0) << Describe(member, bytes, src, dst);
    const auto untouched = [](std::uint8_t byte) { return byte == 0x33; };
    ASSERT_TRUE(std::all_of(first, dst, untouched)) << Describe(member, bytes, src, dst);
    ASSERT_TRUE(std::all_of(dst + bytes, last, untouched)) << Describe(member, bytes, src, dst);
  }

  static std::string Describe(const Member& member, std::size_t bytes, const void* src,
                              const void* dst) {
    return std::string(member.name) + " bytes " + std::to_string(bytes) + " src mod 64 " +
           std::to_string(reinterpret_cast<std::uintptr_t>(src) % 64) + " dst mod 64 " +
           std::to_string(reinterpret_cast<std::uintptr_t>(dst) % 64);
  }

  GuardedArray<std::uint8_t> source_, destination_;
  std::vector<std::uint8_t> noise_;
};

TEST_F(Copy, EveryLengthAndAlignment) {
  ForEachLevel([&](int level) {
    for (const Member& member : kMembers) {
      const std::size_t element = static_cast<std::size_t>(member.elementBytes);
      const std::size_t least = static_cast<std::size_t>(member.leastBytes);
      for (const Guard guard : kGuards) {
        for (std::size_t bytes = least; bytes <= 600; bytes += element) {
          Check(member, level, bytes, guard, 0, 0);
          if (HasFatalFailure()) return;
        }
        for (std::size_t srcShift = 0; srcShift < 64; srcShift += 3) {
          for (std::size_t dstShift = 0; dstShift < 64; ++dstShift) {
            for (const std::size_t bytes : {64u, 136u, 296u, 520u}) {
              Check(member, level, bytes, guard, srcShift, dstShift);
              if (HasFatalFailure()) return;
            }
          }
        }
      }
    }
  });
}

TEST_F(Copy, LargeSizesOnBothSidesOfTheFloors) {
  ForEachLevel([&](int level) {
    for (const Member& member : kMembers) {
      for (const std::size_t floor : {0x3800u, 0x8000u, 0x40000u, 0x80000u, 0x100000u}) {
        for (const std::size_t bytes : {floor - 8, floor, floor + 72}) {
          for (const std::size_t shift : {0u, 4u, 6u, 33u}) {
            Check(member, level, bytes, Guard::after, 0, shift);
            if (HasFatalFailure()) return;
          }
        }
      }
    }
  });
}

TEST_F(Copy, ShiftsDataTowardsTheStartOfTheSameArray) {
  ForEachLevel([&](int level) {
    for (const Member& member : kMembers) {
      if (member.run == SmallPieces) continue;
      for (const std::size_t bytes : {64u, 72u, 128u, 200u, 520u, 1000u, 20000u, 40000u}) {
        for (const std::size_t distance : {8u, 16u, 24u, 40u, 64u, 120u, 136u, 600u}) {
          for (const std::size_t place : {0u, 1u, 15u, 16u, 40u}) {
            std::uint8_t* const src = source_.At(bytes, Guard::after, place);
            std::memcpy(src, noise_.data(), bytes);
            member.run(level, src, src - distance, static_cast<int>(bytes));
            ASSERT_EQ(std::memcmp(src - distance, noise_.data(), bytes), 0)
                << member.name << " bytes " << bytes << " distance " << distance;
          }
        }
      }
    }
  });
}

TEST_F(Copy, OntoItselfAtTheFloorGoesForwardsInBlocksOf16) {
  for (std::size_t bytes = 1; bytes < 200; ++bytes) {
    for (std::size_t distance = 1; distance < 40; ++distance) {
      std::uint8_t* const src = source_.At(bytes + distance, Guard::after, bytes % 16);
      std::memcpy(src, noise_.data(), bytes + distance);
      std::vector<std::uint8_t> expected(src, src + bytes + distance);
      std::size_t i = 0;
      if (bytes >= 16) {
        for (; reinterpret_cast<std::uintptr_t>(src + distance + i) % 16 != 0; ++i) {
          expected[distance + i] = expected[i];
        }
        for (; bytes - i >= 16; i += 16) {
          std::uint8_t block[16];
          std::memcpy(block, &expected[i], 16);
          std::memcpy(&expected[distance + i], block, 16);
        }
      }
      for (; i < bytes; ++i) expected[distance + i] = expected[i];
      CopyBytes(0, src, src + distance, static_cast<int>(bytes));
      ASSERT_EQ(std::memcmp(src, expected.data(), expected.size()), 0)
          << "bytes " << bytes << " distance " << distance;
    }
  }
}

TEST_F(Copy, Statuses) {
  ForEachLevel([](int level) {
    Zov64f src[1] = {1.5}, dst[1] = {2.5};
    Zov32f src32[1] = {1.5f}, dst32[1] = {2.5f};
    for (const int len : {1, 0, -1}) {
      EXPECT_EQ(ZOV_AT(level, zovsCopy_32f)(nullptr, dst32, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsCopy_32f)(src32, nullptr, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsCopy_64f)(nullptr, dst, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsCopy_64f)(src, nullptr, len), zovStsNullPtrErr);
    }
    for (const int len : {0, -1, INT32_MIN}) {
      EXPECT_EQ(ZOV_AT(level, zovsCopy_32f)(src32, dst32, len), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsCopy_64f)(src, dst, len), zovStsSizeErr);
    }
    const bool tests = level >= static_cast<int>(Level::avx);
    const auto copyBytes = ZOV_KERNEL_AT(level, zovCopyBytes);
    EXPECT_EQ(copyBytes(src, dst, 0), tests ? zovStsSizeErr : zovStsNoErr);
    if (tests) {
      EXPECT_EQ(copyBytes(nullptr, dst, 0), zovStsNullPtrErr);
      EXPECT_EQ(copyBytes(src, nullptr, 8), zovStsNullPtrErr);
      EXPECT_EQ(copyBytes(src, dst, -1), zovStsSizeErr);
    }
    EXPECT_EQ(dst[0], 2.5);
    EXPECT_EQ(dst32[0], 2.5f);
  });
}

}  // namespace
}  // namespace zov::test

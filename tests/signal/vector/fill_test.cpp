// Fills and clears: exports, kernels and the plan that bypasses the cache, at every level.
#include "signal/vector/fill.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

ZOV_KERNEL_TABLE(zovFillBytes)
ZOV_KERNEL_TABLE(zovFill16)
ZOV_KERNEL_TABLE(zovFill32)
ZOV_KERNEL_TABLE(zovFill64)
ZOV_KERNEL_TABLE(zovFill128)
ZOV_KERNEL_TABLE(zovZeroBytes)
ZOV_KERNEL_TABLE(FillAskingAhead)
ZOV_KERNEL_TABLE(FillStreaming)

namespace zov::test {
namespace {

// 16 different bytes, or none: the members that clear.
constexpr std::uint8_t kValue[16] = {0x81, 0xC2, 0xB3, 0x7F, 0x05, 0xF6, 0x47, 0x88,
                                     0x19, 0xAA, 0x2B, 0xDC, 0x3D, 0xEE, 0x5F, 0x60};
constexpr std::uint8_t kZeros[16] = {};

template <class T>
T ValueAs() {
  T x;
  std::memcpy(&x, kValue, sizeof x);
  return x;
}

struct Member {
  const char* name;
  int elementBytes;
  const std::uint8_t* expected;
  void (*run)(int level, void* dst, int count);
};

const Member kMembers[] = {
    {"Set_8u", 1, kValue,
     [](int level, void* dst, int n) {
       EXPECT_EQ(ZOV_AT(level, zovsSet_8u)(ValueAs<Zov8u>(), static_cast<Zov8u*>(dst), n), 0);
     }},
    {"Set_32s", 4, kValue,
     [](int level, void* dst, int n) {
       EXPECT_EQ(ZOV_AT(level, zovsSet_32s)(ValueAs<Zov32s>(), static_cast<Zov32s*>(dst), n), 0);
     }},
    {"Set_32f", 4, kValue,
     [](int level, void* dst, int n) {
       EXPECT_EQ(ZOV_AT(level, zovsSet_32f)(ValueAs<Zov32f>(), static_cast<Zov32f*>(dst), n), 0);
     }},
    {"Zero_32f", 4, kZeros,
     [](int level, void* dst, int n) {
       EXPECT_EQ(ZOV_AT(level, zovsZero_32f)(static_cast<Zov32f*>(dst), n), 0);
     }},
    {"Zero_64f", 8, kZeros,
     [](int level, void* dst, int n) {
       EXPECT_EQ(ZOV_AT(level, zovsZero_64f)(static_cast<Zov64f*>(dst), n), 0);
     }},
    {"FillBytes", 1, kValue,
     [](int level, void* dst, int n) {
       ZOV_KERNEL_AT(level, zovFillBytes)(ValueAs<Zov8u>(), dst, n);
     }},
    {"Fill16", 2, kValue,
     [](int level, void* dst, int n) {
       ZOV_KERNEL_AT(level, zovFill16)
       (kValue, dst, n);
     }},
    {"Fill32", 4, kValue,
     [](int level, void* dst, int n) {
       ZOV_KERNEL_AT(level, zovFill32)(ValueAs<Zov32u>(), dst, n);
     }},
    {"Fill64", 8, kValue,
     [](int level, void* dst, int n) {
       ZOV_KERNEL_AT(level, zovFill64)
       (kValue, dst, n);
     }},
    {"Fill128", 16, kValue,
     [](int level, void* dst, int n) {
       ZOV_KERNEL_AT(level, zovFill128)
       (kValue, dst, n);
     }},
    {"ZeroBytes", 1, kZeros,
     [](int level, void* dst, int n) {
       ZOV_KERNEL_AT(level, zovZeroBytes)
       (dst, n);
     }},
};

std::vector<std::uint8_t> Expected(const std::uint8_t* value, int elementBytes, std::size_t bytes) {
  std::vector<std::uint8_t> result(bytes);
  std::size_t done = std::min(static_cast<std::size_t>(elementBytes), bytes);
  std::memcpy(result.data(), value, done);
  for (; done < bytes; done += std::min(done, bytes - done)) {
    std::memcpy(&result[done], result.data(), std::min(done, bytes - done));
  }
  return result;
}

TEST(Fill, EveryLengthAndAlignment) {
  const GuardedArray<std::uint8_t> array(8192);
  const auto check = [&](const Member& member, int level, int count, Guard guard,
                         std::size_t shift) {
    const std::size_t bytes = static_cast<std::size_t>(count * member.elementBytes);
    std::uint8_t* const dst = array.At(bytes, guard, shift);
    array.Fill(0x33);
    member.run(level, dst, count);
    const auto expected = Expected(member.expected, member.elementBytes, bytes);
    ASSERT_EQ(std::memcmp(dst, expected.data(), bytes), 0)
        << member.name << " count " << count << " shift " << shift;
    ASSERT_TRUE(array.UntouchedOutside(dst, bytes, 0x33))
        << member.name << " count " << count << " shift " << shift;
  };
  ForEachLevel([&](int level) {
    for (const Member& member : kMembers) {
      for (const Guard guard : kGuards) {
        for (int count = 1; count <= 200; ++count) check(member, level, count, guard, 0);
        for (std::size_t shift = 0; shift < 64; ++shift) {
          for (const int bytes : {16, 48, 64, 80, 144, 272, 336, 592, 4080, 4096, 4099, 4110}) {
            check(member, level, bytes / member.elementBytes, guard, shift);
          }
        }
      }
    }
  });
}

TEST(Fill, LargeSizesOnBothSidesOfTheFloors) {
  const GuardedArray<std::uint8_t> array(0x200000 + 256);
  ForEachLevel([&](int level) {
    for (const Member& member : kMembers) {
      for (const int floor : {0x80000, 0x100000, 0x200000}) {
        for (const int bytes : {floor - 16, floor, floor + 16}) {
          const std::size_t size = static_cast<std::size_t>(bytes);
          const auto expected = Expected(member.expected, member.elementBytes, size);
          for (const std::size_t shift : {0u, 3u, 4u}) {
            std::uint8_t* const dst = array.At(size, Guard::after, shift);
            dst[-1] = 0x33;
            dst[0] = dst[size - 1] = 0x33;
            member.run(level, dst, bytes / member.elementBytes);
            ASSERT_EQ(std::memcmp(dst, expected.data(), size), 0)
                << member.name << " bytes " << bytes << " shift " << shift;
            ASSERT_EQ(dst[-1], 0x33);
          }
        }
      }
    }
  });
}

// The plans that depend on the cache, on arrays that any cache holds.
TEST(Fill, PlansForLargeSizes) {
  const GuardedArray<std::uint8_t> array(4096);
  ForEachLevel([&](int level) {
    for (const Guard guard : kGuards) {
      for (std::size_t shift = 0; shift < 64; ++shift) {
        for (std::size_t bytes = 64; bytes <= 64 + 512 + 65; bytes += shift % 4 == 0 ? 1 : 13) {
          std::uint8_t* const dst = array.At(bytes, guard, shift);
          // The widest element that the address and the size are multiples of.
          const std::size_t place = reinterpret_cast<std::uintptr_t>(dst) | bytes | 16;
          const int elementBytes = static_cast<int>(place & (0 - place));
          const auto pattern = Expected(kValue, elementBytes, 16);
          const auto expected = Expected(kValue, elementBytes, bytes);
          const auto check = [&](auto fill) {
            array.Fill(0x33);
            fill(pattern.data(), dst, static_cast<std::int64_t>(bytes));
            ASSERT_EQ(std::memcmp(dst, expected.data(), bytes), 0) << bytes << " shift " << shift;
            ASSERT_TRUE(array.UntouchedOutside(dst, bytes, 0x33)) << bytes << " shift " << shift;
          };
          check(ZOV_KERNEL_AT(level, FillStreaming));
          if (bytes >= 256) check(ZOV_KERNEL_AT(level, FillAskingAhead));
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  });
}

TEST(Fill, NoElementsIsNoStoreInKernels) {
  const GuardedArray<std::uint8_t> array(64);
  array.Fill(0x33);
  ForEachLevel([&](int level) {
    for (const Member& member : kMembers) {
      if (std::strstr(member.name, "_") == nullptr) member.run(level, array.At(0, Guard::after), 0);
    }
    EXPECT_TRUE(array.UntouchedOutside(array.At(0, Guard::after), 0, 0x33));
  });
}

TEST(Fill, Statuses) {
  ForEachLevel([](int level) {
    Zov64f buffer[1] = {1.5};
    Zov8u* const bytes = reinterpret_cast<Zov8u*>(buffer);
    Zov32s* const ints = reinterpret_cast<Zov32s*>(buffer);
    Zov32f* const floats = reinterpret_cast<Zov32f*>(buffer);
    for (const int len : {0, -1, INT32_MIN}) {
      EXPECT_EQ(ZOV_AT(level, zovsSet_8u)(1, nullptr, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsSet_32s)(1, nullptr, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsSet_32f)(1, nullptr, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsZero_32f)(nullptr, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsZero_64f)(nullptr, len), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsSet_8u)(1, bytes, len), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsSet_32s)(1, ints, len), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsSet_32f)(1, floats, len), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsZero_32f)(floats, len), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsZero_64f)(buffer, len), zovStsSizeErr);
    }
    EXPECT_EQ(buffer[0], 1.5);
  });
}

}  // namespace
}  // namespace zov::test

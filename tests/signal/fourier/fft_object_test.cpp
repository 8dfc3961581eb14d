// Real FFT objects: statuses, the record, the block, and tables by the formulas that define them.
#include <algorithm>

#include "core/memory.h"
#include "signal/fourier/fft_reference.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/real_fft.h"

ZOV_KERNEL_TABLE(FftSpecSizes_32f)
ZOV_KERNEL_TABLE(FftSpecSizes_64f)
ZOV_KERNEL_TABLE(FftSpecInit_32f)
ZOV_KERNEL_TABLE(FftSpecInit_64f)
ZOV_KERNEL_TABLE(FftWorkBytes_32f)

namespace zov::test {
namespace {

template <class T>
class FftObjects : public ::testing::Test {};
using Elements = ::testing::Types<Zov32f, Zov64f>;
TYPED_TEST_SUITE(FftObjects, Elements);

TYPED_TEST(FftObjects, StatusesInOrder) {
  ForEachLevel([](int level) {
    using Spec = typename Fft<TypeParam>::Spec;
    const auto init = Fft<TypeParam>::Init(level);
    const int limit = (sizeof(TypeParam) == 4 ? 28 : 27) + (level > 0);
    Spec untouched;
    Spec* spec = &untouched;
    EXPECT_EQ(init(nullptr, 31, 3, 0), zovStsNullPtrErr);
    EXPECT_EQ(init(&spec, -1, 3, 0), zovStsFftOrderErr);
    EXPECT_EQ(init(&spec, 31, 3, 0), zovStsFftOrderErr);
    EXPECT_EQ(init(&spec, limit + 1, 3, 0), zovStsFftFlagErr);
    EXPECT_EQ(init(&spec, limit + 1, ZOV_FFT_SCALE_NONE, 0), zovStsFftOrderErr);
    EXPECT_EQ(spec, &untouched);
    EXPECT_EQ(Fft<TypeParam>::Free(level)(nullptr), zovStsNullPtrErr);

    ASSERT_EQ(init(&spec, 5, ZOV_FFT_SCALE_SQRT, 12345), zovStsNoErr);
    EXPECT_EQ(spec->idTag, sizeof(TypeParam) == 4 ? 6u : 9u);
    EXPECT_EQ(spec->hint, 12345);
    EXPECT_EQ(spec->ownsBlock, 1);
    spec->idTag = 3;
    EXPECT_EQ(Fft<TypeParam>::Free(level)(spec), zovStsContextMatchErr);
    spec->idTag = sizeof(TypeParam) == 4 ? 6 : 9;
    EXPECT_EQ(Fft<TypeParam>::Free(level)(spec), zovStsNoErr);
  });
}

TYPED_TEST(FftObjects, FlagsSetTheScale) {
  ForEachLevel([](int level) {
    for (const int order : {3, 10, 13}) {
      const TypeParam n = static_cast<TypeParam>(1 << order);
      const FftObject<TypeParam> forward(level, order, ZOV_FFT_SCALE_FWD);
      const FftObject<TypeParam> inverse(level, order, ZOV_FFT_SCALE_INV);
      const FftObject<TypeParam> root(level, order, ZOV_FFT_SCALE_SQRT);
      const FftObject<TypeParam> none(level, order, ZOV_FFT_SCALE_NONE);
      EXPECT_TRUE(forward.get()->scaleFwd == 1 && forward.get()->scaleInv == 0);
      EXPECT_TRUE(inverse.get()->scaleFwd == 0 && inverse.get()->scaleInv == 1);
      EXPECT_TRUE(root.get()->scaleFwd == 1 && root.get()->scaleInv == 1);
      EXPECT_TRUE(none.get()->scaleFwd == 0 && none.get()->scaleInv == 0);
      EXPECT_EQ(forward.get()->scale, 1 / n);
      EXPECT_EQ(inverse.get()->scale, 1 / n);
      EXPECT_EQ(root.get()->scale, static_cast<TypeParam>(1.0 / std::sqrt(static_cast<double>(n))));
      EXPECT_EQ(none.get()->scale, 0);
    }
  });
}

// A nested object in a block of exactly the told size writes nothing outside of it, and its tables
// lie in order on 64-byte boundaries inside.
template <class T, class Sizes, class Init>
void CheckBlock(int order, Sizes sizesOf, Init init) {
  SCOPED_TRACE("order " + std::to_string(order));
  std::int64_t specBytes = 0, initBytes = 0, workBytes = 0;
  ASSERT_EQ(sizesOf(order, ZOV_FFT_SCALE_INV, 0, &specBytes, &initBytes, &workBytes), zovStsNoErr);
  EXPECT_EQ(sizesOf(order, ZOV_FFT_SCALE_INV, 0, &specBytes, nullptr, &workBytes),
            zovStsNullPtrErr);
  for (const std::size_t offset : {std::size_t{0}, std::size_t{1}, std::size_t{63}}) {
    constexpr Zov8u kFill = 0xA5;
    const std::size_t slack = 64;
    std::vector<Zov8u> memory(static_cast<std::size_t>(specBytes) + slack + 128, kFill);
    std::vector<Zov8u> temporary(static_cast<std::size_t>(initBytes) + slack + 128, kFill);
    const auto place = [offset](std::vector<Zov8u>& v) {
      const std::uintptr_t base = reinterpret_cast<std::uintptr_t>(v.data());
      return v.data() + ((64 - base % 64) % 64) + offset;
    };
    Zov8u* const block = place(memory);
    Zov8u* const scratch = place(temporary);
    FftSpec<T>* spec = nullptr;
    ASSERT_EQ(init(&spec, order, ZOV_FFT_SCALE_INV, 0, block, initBytes > 0 ? scratch : nullptr),
              zovStsNoErr);
    EXPECT_TRUE(std::all_of(block + specBytes, memory.data() + memory.size(),
                            [](Zov8u byte) { return byte == kFill; }));
    EXPECT_TRUE(std::all_of(scratch + initBytes, temporary.data() + temporary.size(),
                            [](Zov8u byte) { return byte == kFill; }));
    EXPECT_EQ(spec->ownsBlock, 0);
    EXPECT_EQ(workBytes, spec->workBytes > 0 ? spec->workBytes + 64 : 0);
    EXPECT_EQ(spec->outerTwiddles, nullptr);
    const void* last = spec;
    for (const void* table :
         {static_cast<const void*>(spec->bitRevTable), static_cast<const void*>(spec->cplxTwiddles),
          static_cast<const void*>(spec->splitFwd), static_cast<const void*>(spec->splitInv)}) {
      if (table == nullptr) continue;
      EXPECT_GT(table, last);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(table) % 64, 0u);
      last = table;
    }
  }
}

TEST(FftBlock, HoldsTheObjectOfEveryOrder) {
  ForEachLevel([](int level) {
    for (const int order : {0, 4, 5, 6, 7, 8, 10, 11, 12, 13, 14, 16, 17, 18, 19, 20}) {
      CheckBlock<Zov32f>(order, ZOV_KERNEL_AT(level, FftSpecSizes_32f),
                         ZOV_KERNEL_AT(level, FftSpecInit_32f));
      CheckBlock<Zov64f>(order, ZOV_KERNEL_AT(level, FftSpecSizes_64f),
                         ZOV_KERNEL_AT(level, FftSpecInit_64f));
    }
    // The temporary buffer is needed from order 11 on, and the last orders do not wrap.
    alignas(64) static Zov8u block[65536];
    ZovFFTSpec_R_32f* spec = nullptr;
    EXPECT_EQ(ZOV_KERNEL_AT(level, FftSpecInit_32f)(&spec, 11, 8, 0, block, nullptr),
              zovStsNullPtrErr);
    std::int64_t specBytes, initBytes, workBytes;
    const int limit = 28 + (level > 0);
    ASSERT_EQ(
        ZOV_KERNEL_AT(level, FftSpecSizes_32f)(limit, 8, 0, &specBytes, &initBytes, &workBytes),
        zovStsNoErr);
    EXPECT_GT(specBytes, std::int64_t{8} << (limit - 1));
  });
}

TEST(FftBlock, WorkBytes) {
  ForEachLevel([](int level) {
    const auto workBytes = ZOV_KERNEL_AT(level, FftWorkBytes_32f);
    const FftObject<Zov32f> small(level, 5, ZOV_FFT_SCALE_NONE);
    const FftObject<Zov32f> large(level, 12, ZOV_FFT_SCALE_NONE);
    int bytes = -1;
    EXPECT_EQ(workBytes(nullptr, &bytes), zovStsNullPtrErr);
    EXPECT_EQ(workBytes(large.get(), nullptr), zovStsNullPtrErr);
    EXPECT_EQ(workBytes(small.get(), &bytes), zovStsNoErr);
    EXPECT_EQ(bytes, 0);
    EXPECT_EQ(workBytes(large.get(), &bytes), zovStsNoErr);
    EXPECT_EQ(bytes, level == 0 ? 0 : (8 << 11) + 64);
    large.get()->idTag = 9;
    EXPECT_EQ(workBytes(large.get(), &bytes), zovStsContextMatchErr);
    large.get()->idTag = 6;
  });
}

// Split tables: entry k by its formula, in the order of the level, in both forms.
template <class T>
void CheckSplitTables(int level, int order) {
  SCOPED_TRACE("order " + std::to_string(order));
  const FftObject<T> object(level, order, ZOV_FFT_SCALE_NONE);
  const std::size_t n = std::size_t{1} << order;
  const common::FftLimits& limits = common::FftLimitsOf<T>(static_cast<Level>(level));
  const bool twoLevel = order >= limits.twoLevelFrom;
  const std::size_t fine = sizeof(T) == 4 ? 1024 : 512;
  const std::size_t first = level == 0 ? 0 : 1;
  const long double unit = sizeof(T) == 4 ? 0x1p-24L : 0x1p-52L;
  for (std::size_t slot = 0; slot < (twoLevel ? fine : n / 4); ++slot) {
    const std::size_t k = (level >= 5 ? slot ^ 1 : slot) + first;
    const Complex root = Root(k, n);
    const T* const forward = object.get()->splitFwd + 2 * slot;
    const T* const inverse = object.get()->splitInv + 2 * slot;
    ASSERT_NEAR(inverse[0], root.real(), unit) << k;
    ASSERT_NEAR(inverse[1], root.imag(), unit) << k;
    ASSERT_NEAR(forward[0], twoLevel ? root.real() : 0.5L * root.real(), unit) << k;
    ASSERT_NEAR(forward[1], twoLevel ? root.imag() : 0.5L + 0.5L * root.imag(), unit) << k;
  }
  for (std::size_t j = 0; twoLevel && j < n / 4 / fine; ++j) {
    const Complex root = Root(j * fine, n);
    for (const T* table : {object.get()->splitFwd, object.get()->splitInv}) {
      ASSERT_NEAR(table[2 * (fine + j)], root.real(), unit) << j;
      ASSERT_NEAR(table[2 * (fine + j) + 1], root.imag(), unit) << j;
    }
  }
}

TYPED_TEST(FftObjects, SplitTables) {
  ForEachLevel([](int level) {
    const int twoLevelFrom = common::FftLimitsOf<TypeParam>(static_cast<Level>(level)).twoLevelFrom;
    for (const int order : {6, 10, 11, twoLevelFrom - 1, twoLevelFrom}) {
      CheckSplitTables<TypeParam>(level, order);
    }
  });
}

std::size_t ReversedBits(std::size_t i, int bits) {
  std::size_t reversed = 0;
  for (int b = 0; b < bits; ++b) reversed |= (i >> b & 1) << (bits - 1 - b);
  return reversed;
}

TYPED_TEST(FftObjects, TwiddleAndReversalTables) {
  const long double unit = sizeof(TypeParam) == 4 ? 0x1p-24L : 0x1p-52L;
  ForEachLevel([unit](int level) {
    const int c = 9;
    const FftObject<TypeParam> object(level, c + 1, ZOV_FFT_SCALE_NONE);
    const Zov32s* const reversal = object.get()->bitRevTable;
    const std::size_t count = std::size_t{1} << (c - 2);
    EXPECT_EQ(reversal[count], 0);
    if (level > 0) {
      for (std::size_t i = 0; i < count; ++i) {
        ASSERT_EQ(static_cast<std::size_t>(reversal[i]), 2 * ReversedBits(i, c - 2));
      }
      return;
    }
    // The baseline lists pairs, a zero, then lone indices from the far end, and has triples.
    std::size_t pairs = 0;
    for (; reversal[2 * pairs] != 0; ++pairs) {
      const std::size_t i = static_cast<std::size_t>(reversal[2 * pairs]) / 4;
      const std::size_t j = static_cast<std::size_t>(reversal[2 * pairs + 1]) / 4;
      ASSERT_LT(i, j);
      ASSERT_EQ(j, ReversedBits(i, c - 2));
    }
    for (std::size_t own = 2 * pairs + 1; own < count; ++own) {
      const std::size_t i = static_cast<std::size_t>(reversal[own]) / 4;
      ASSERT_EQ(i, ReversedBits(i, c - 2));
    }
    for (std::size_t k = 0; k <= count; ++k) {
      for (std::size_t power = 1; power <= 3; ++power) {
        const Complex root = Root(power * k, std::size_t{1} << c);
        const TypeParam* const entry = object.get()->cplxTwiddles + 6 * k + 2 * (power - 1);
        ASSERT_NEAR(entry[0], root.real(), unit);
        ASSERT_NEAR(entry[1], root.imag(), unit);
      }
    }
  });
}

HeapTable plainHeap;
int live = 0;
int granted = 0;
void* LimitedAllocate(std::size_t size) {
  if (granted == 0) return nullptr;
  --granted;
  ++live;
  return plainHeap.allocate(size);
}
void CountingRelease(void* block) {
  --live;
  plainHeap.release(block);
}

TYPED_TEST(FftObjects, FailedAllocationReleasesAll) {
  plainHeap = zovHeap;
  zovHeap.allocate = LimitedAllocate;
  zovHeap.release = CountingRelease;
  ForEachLevel([](int level) {
    for (int grants = 0; grants <= 2; ++grants) {
      granted = grants;
      live = 0;
      typename Fft<TypeParam>::Spec other;
      typename Fft<TypeParam>::Spec* spec = &other;
      const ZovStatus status = Fft<TypeParam>::Init(level)(&spec, 12, ZOV_FFT_SCALE_NONE, 0);
      EXPECT_EQ(status, grants < 2 ? zovStsMemAllocErr : zovStsNoErr);
      EXPECT_EQ(live, grants < 2 ? 0 : 1);
      EXPECT_EQ(spec == nullptr, grants < 2);
      if (spec != nullptr) {
        EXPECT_EQ(Fft<TypeParam>::Free(level)(spec), zovStsNoErr);
      }
      EXPECT_EQ(live, 0);
    }
  });
  zovHeap = plainHeap;
}

}  // namespace
}  // namespace zov::test

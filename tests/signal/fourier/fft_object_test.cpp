// Real FFT objects: statuses, the record, the block, and tables by the formulas that define them.
#include <algorithm>
#include <cstring>
#include <set>

#include "core/memory.h"
#include "signal/fourier/fft_reference.h"
#include "signal/fourier/real_fft.h"
#include "signal/fourier/sine_table.h"

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

// Where the route changes, by type and level. c = order - 1. `rows` has log2 of the rows of the
// four-step split, a hexadecimal digit for each c behind lastWhole, and `held` log2 of the values
// that the work buffer holds.
struct Thresholds {
  int maxOrder, lastReal, lastSmall, lastWhole, twoLevelFrom, tiledFrom, tileBytes;
  bool wholeWork;
  const char *rows, *held;

  int Rows(int c) const { return std::stoi(std::string(1, rows[c - lastWhole - 1]), nullptr, 16); }
  int Held(int c) const { return std::stoi(std::string(1, held[c - lastWhole - 1]), nullptr, 16); }
  int FirstSplit() const { return lastWhole + 1 + static_cast<int>(std::strspn(rows, "0")); }
};
constexpr int kNone = 99;
constexpr Thresholds kThresholds[2][7] = {
    {{28, 5, 6, 10, 19, kNone, 0, false, "00567888aaaa88aaa", ""},
     {29, 4, 6, 16, 19, 20, 65536, true, "444468888888", "9aaadfffffff"},
     {29, 4, 6, 17, 19, 19, 65536, true, "44888888888", "aaeeeeeeeee"},
     {29, 4, 6, 15, 18, 17, 16384, true, "4446688888888", "aaaeeeeeeeeee"},
     {29, 4, 6, 17, 21, 19, 65536, true, "44888888888", "aaeeeeeeeee"},
     {29, 4, 7, 18, 19, 19, 65536, true, "4444888888", "aaaaeeeeee"},
     {29, 4, 7, 18, 19, 19, 65536, true, "4444888888", "aaaaeeeeee"}},
    {{27, 5, 6, 10, 18, kNone, 0, false, "0456778999889999", ""},
     {28, 5, 6, 14, 18, 19, 131072, true, "4444668888888", "8aaaddeeeeeee"},
     {28, 5, 6, 16, 17, 18, 32768, true, "66678888888", "aaabddddddd"},
     {28, 5, 6, 12, 18, 14, 32768, false, "046666466666666", "0aaaaaaaacccccc"},
     {28, 5, 6, 16, 19, 18, 32768, true, "66888888888", "aaddddddddd"},
     {28, 4, 7, 17, 17, 18, 32768, true, "4444888888", "9999dddddd"},
     {28, 4, 7, 17, 17, 18, 32768, true, "4444888888", "9999dddddd"}}};
template <class T>
const Thresholds& ThresholdsOf(int level) {
  return kThresholds[sizeof(T) == 8][level];
}

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
    EXPECT_EQ(init(&spec, 5, 3, 0), zovStsFftFlagErr);
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
          static_cast<const void*>(spec->blockTwiddles),
          static_cast<const void*>(spec->colTwiddles[1]),
          static_cast<const void*>(spec->rowTwiddles[1]),
          static_cast<const void*>(spec->colTwiddles[0]),
          static_cast<const void*>(spec->rowTwiddles[0]), static_cast<const void*>(spec->splitFwd),
          static_cast<const void*>(spec->splitInv)}) {
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
  });
}

// The sizes of every order, summed up from the thresholds.
template <class T, class Sizes>
void CheckSizes(int level, Sizes sizesOf) {
  const Thresholds& limits = ThresholdsOf<T>(level);
  const auto up = [](std::int64_t bytes) { return (bytes + 63) / 64 * 64; };
  const auto complex = [](int c) { return static_cast<std::int64_t>(2 * sizeof(T)) << c; };
  std::int64_t specBytes, initBytes, workBytes;
  for (int order = 0; order <= limits.maxOrder; ++order) {
    const int c = order - 1;
    std::int64_t spec = static_cast<std::int64_t>(sizeof(FftSpec<T>)) + 64, init = 0, work = 0;
    if (order > limits.lastReal) {
      const int logFine = sizeof(T) == 4 ? 10 : 9;
      spec = 256 + 2 * up(order < limits.twoLevelFrom ? complex(order - 2)
                                                      : complex(order - 2 - logFine) + 8192);
      if (order > 10) init = up(complex(order - 3) + complex(0) / 2) + 64;
    }
    if (order > limits.lastSmall) {
      spec += up((std::int64_t{1} << c) + 4);
      int m = c;
      for (int rows; m > limits.lastWhole && (rows = limits.Rows(m)) != 0; m -= rows) {
        spec += up(complex(rows) + complex(0)) + complex(m);
        init += up((1 << rows) + 4) + 4 * complex(rows);
        work = std::max(work, level == 0 ? 4 * complex(rows) : complex(limits.Held(m)));
      }
      const bool blocks = level == 0 && m > limits.lastWhole;
      spec += blocks ? complex(m - 2) + up(complex(10) + complex(0)) : up(complex(m) + complex(0));
      if (c <= limits.lastWhole && limits.wholeWork) work = up(complex(c));
      if (c >= limits.tiledFrom) work = std::max<std::int64_t>(work, limits.tileBytes);
    }
    ASSERT_EQ(sizesOf(order, 8, 0, &specBytes, &initBytes, &workBytes), zovStsNoErr);
    EXPECT_EQ(specBytes, spec) << order;
    EXPECT_EQ(initBytes, init) << order;
    EXPECT_EQ(workBytes, work > 0 ? work + 64 : 0) << order;
  }
  EXPECT_EQ(sizesOf(limits.maxOrder + 1, 8, 0, &specBytes, &initBytes, &workBytes),
            zovStsFftOrderErr);
}

TEST(FftBlock, SizesFollowTheThresholds) {
  ForEachLevel([](int level) {
    CheckSizes<Zov32f>(level, ZOV_KERNEL_AT(level, FftSpecSizes_32f));
    CheckSizes<Zov64f>(level, ZOV_KERNEL_AT(level, FftSpecSizes_64f));
  });
}

// A failed making leaves the tag 0; so does the free of an object that lies in a caller's block,
// where the stale pointer can be tried.
template <class T, class Init>
void CheckNested(int level, Init init) {
  alignas(64) Zov8u block[8192];
  FftSpec<T>* const made = reinterpret_cast<FftSpec<T>*>(block);
  FftSpec<T> untouched;
  FftSpec<T>* spec = &untouched;
  EXPECT_EQ(init(nullptr, -1, 3, 0, block, nullptr), zovStsNullPtrErr);
  EXPECT_EQ(init(&spec, -1, 3, 0, nullptr, nullptr), zovStsNullPtrErr);
  EXPECT_EQ(init(&spec, -1, 3, 0, block, nullptr), zovStsFftOrderErr);
  EXPECT_EQ(init(&spec, ThresholdsOf<T>(level).maxOrder + 1, 3, 0, block, nullptr),
            zovStsFftOrderErr);
  made->idTag = FftTypes<T>::kTag;
  EXPECT_EQ(init(&spec, 5, 3, 0, block, nullptr), zovStsFftFlagErr);
  EXPECT_EQ(made->idTag, 0u);
  EXPECT_EQ(init(&spec, 11, 8, 0, block, nullptr), zovStsNullPtrErr);  // no temporary buffer
  EXPECT_EQ(made->idTag, 0u);
  EXPECT_EQ(spec, &untouched);

  ASSERT_EQ(init(&spec, 7, 8, 0, block, nullptr), zovStsNoErr);
  ASSERT_EQ(spec, made);
  T x[130] = {};
  EXPECT_EQ(Fft<T>::Free(level)(spec), zovStsNoErr);
  EXPECT_EQ(Fft<T>::Free(level)(spec), zovStsContextMatchErr);
  EXPECT_EQ(Fft<T>::Forward(level)(x, x, spec, nullptr), zovStsContextMatchErr);
  EXPECT_EQ(Fft<T>::Inverse(level)(x, x, spec, nullptr), zovStsContextMatchErr);
}

TEST(FftBlock, FailedAndFreedObjectsHaveNoTag) {
  ForEachLevel([](int level) {
    CheckNested<Zov32f>(level, ZOV_KERNEL_AT(level, FftSpecInit_32f));
    CheckNested<Zov64f>(level, ZOV_KERNEL_AT(level, FftSpecInit_64f));
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
  const bool twoLevel = order >= ThresholdsOf<T>(level).twoLevelFrom;
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
    const int twoLevelFrom = ThresholdsOf<TypeParam>(level).twoLevelFrom;
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

// Pairs, a zero, then the indices that are their own from the far end, a zero.
void CheckSwapList(const Zov32s* list, int c) {
  const std::size_t count = std::size_t{1} << (c - 2);
  const auto index = [list](std::size_t entry) {
    return static_cast<std::size_t>(list[entry]) / 4;
  };
  std::size_t entry = 0;
  for (; list[entry] != 0; entry += 2) {
    ASSERT_LT(index(entry), index(entry + 1));
    ASSERT_EQ(index(entry + 1), ReversedBits(index(entry), c - 2));
  }
  ASSERT_EQ(count - entry,
            std::size_t{1} << (c - 1) / 2);  // palindromes, and all i are listed once
  for (++entry; entry < count; ++entry) ASSERT_EQ(index(entry), ReversedBits(index(entry), c - 2));
  EXPECT_EQ(list[count], 0);
}

template <class T>
void CheckRoot(T re, T im, std::size_t k, int c) {
  const long double unit = sizeof(T) == 4 ? 0x1p-24L : 0x1p-52L;
  const Complex root = Root(k, std::size_t{1} << c);
  ASSERT_NEAR(re, root.real(), unit) << k << " of 2^" << c;
  ASSERT_NEAR(im, root.imag(), unit) << k << " of 2^" << c;
}

template <class T>
void CheckTriples(const T* table, int c) {
  for (std::size_t k = 0; k <= std::size_t{1} << (c - 2); ++k) {
    for (std::size_t power = 1; power <= 3; ++power, table += 2) {
      CheckRoot(table[0], table[1], power * k, c);
    }
  }
}

// One stage: groups of `lanes` butterflies from `first` on, real then imaginary parts of each power
// of W. The order within a group is the kernels' own: W^k tells k.
template <class T>
const T* CheckStage(const T* table, int logRadix, int logLength, std::size_t first, std::size_t run,
                    std::size_t lanes) {
  for (std::size_t group = first; group < first + run; group += lanes) {
    std::size_t seen = 0;
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      const long double turn = -std::atan2(static_cast<long double>(table[lanes + lane]),
                                           static_cast<long double>(table[lane])) /
                               kTwoPi;
      const std::size_t k = static_cast<std::size_t>(std::lround(std::ldexp(turn, logLength)));
      seen |= std::size_t{1} << ((k - group) & 63);
      for (std::size_t power = 1; power < std::size_t{1} << logRadix; ++power) {
        const T* const entry = table + (power - 1) * 2 * lanes + lane;
        CheckRoot(entry[0], entry[lanes], power * k, logLength);
      }
    }
    EXPECT_EQ(seen, (std::size_t{1} << lanes) - 1) << group << " of 2^" << logLength;
    table += ((std::size_t{1} << logRadix) - 1) * 2 * lanes;
  }
  return table;
}

// All tables of the complex transform of length 2^c.
template <class T>
void CheckTables(int level, int c) {
  SCOPED_TRACE("c " + std::to_string(c));
  const Thresholds& limits = ThresholdsOf<T>(level);
  const std::size_t lanes = (level < 5 ? 16 : 32) / sizeof(T);
  const FftObject<T> object(level, c + 1, ZOV_FFT_SCALE_NONE);
  const FftSpec<T>& spec = *object.get();
  const int logTile = c < limits.tiledFrom                                      ? 0
                      : limits.tileBytes / static_cast<int>(sizeof(T)) == 16384 ? 6
                                                                                : 5;
  const int bits = logTile > 0 ? c - 2 * logTile : c - 2;
  for (std::size_t i = 0; level > 0 && i < std::size_t{1} << bits; ++i) {
    ASSERT_EQ(static_cast<std::size_t>(spec.bitRevTable[i]), ReversedBits(i, bits)
                                                                 << (logTile > 0 ? logTile : 1));
  }
  if (level == 0) CheckSwapList(spec.bitRevTable, c);
  EXPECT_TRUE(logTile > 0 || spec.bitRevTable[std::size_t{1} << (c - 2)] == 0);
  if (logTile > 0) CheckSwapList(spec.bitRevTable + (std::size_t{1} << bits), 2 * logTile);

  int depth = 0;
  for (int rows; c > limits.lastWhole && (rows = limits.Rows(c)) != 0; c -= rows, ++depth) {
    const std::size_t rowCount = std::size_t{1} << rows;
    const std::size_t columns = std::size_t{1} << (c - rows);
    const T* table = spec.rowTwiddles[depth];
    if (level == 0) {
      CheckTriples(spec.colTwiddles[depth], rows);
      for (std::size_t i = 0; i < rowCount * columns; ++i, table += 2) {
        const std::size_t column = i / (4 * rowCount) * 4 + i % 4;
        CheckRoot(table[0], table[1], ReversedBits(i / 4 % rowCount, rows) * column, c);
      }
      continue;
    }
    const std::size_t tile = std::size_t{1} << (limits.Held(c) - rows);
    for (std::size_t column = 0; column < columns; column += 5 * tile) {
      table = spec.rowTwiddles[depth] + 2 * (rowCount - 1) * column;
      for (int done = 0, logRadix; done < rows; done += logRadix) {
        logRadix = (rows - done) % 2 == 0 && rows - done < 8 ? 2 : 3;
        for (std::size_t r = 0; r < std::size_t{1} << done; ++r) {
          table = CheckStage(table, logRadix, c - rows + done + logRadix, column + r * columns,
                             tile, lanes);
        }
      }
    }
  }
  EXPECT_EQ(spec.rowTwiddles[depth], nullptr);
  if (level > 0) {
    const T* table = spec.cplxTwiddles;
    const int eights = level < 5 && c >= 12 ? 2 + c % 2 : 0;
    for (int size = 4, logRadix; size < c; size += logRadix) {
      const int rest = c - size;
      logRadix =
          size < 4 + 3 * eights || rest == 3 || (rest > 4 && c < 12) || (size == 4 && c % 2 != 0)
              ? 3
              : 2;
      table = CheckStage(table, logRadix, size + logRadix, 0, std::size_t{1} << size, lanes);
    }
    return;
  }
  CheckTriples(spec.cplxTwiddles, std::min(c, 10));
  EXPECT_EQ(spec.blockTwiddles != nullptr, c > 10);
  for (std::size_t k = 0; c > 10 && k < std::size_t{1} << (c - 2); ++k) {
    CheckRoot(spec.blockTwiddles[2 * k], spec.blockTwiddles[2 * k + 1], k, c);
  }
}

TYPED_TEST(FftObjects, TwiddleAndReversalTables) {
  ForEachLevel([](int level) {
    const Thresholds& limits = ThresholdsOf<TypeParam>(level);
    const int split = limits.FirstSplit();
    const int twice = level == 3 && sizeof(TypeParam) == 8 ? 19 : split;  // splits its rows again
    std::set<int> orders = {9, 10, limits.lastWhole + 1, split, twice};
    if (level > 0) orders.insert(limits.tiledFrom);
    for (const int c : orders) CheckTables<TypeParam>(level, c);
  });
}

TYPED_TEST(FftObjects, QuarterSine) {
  const long double unit = sizeof(TypeParam) == 4 ? 0x1.01p-24L : 0x1.8p-52L;
  std::vector<TypeParam> longer(1025);
  BuildQuarterSine(longer.data(), 12);
  const std::pair<const TypeParam*, std::size_t> kTables[] = {
      {ConstantQuarterSine<TypeParam>(), 256}, {longer.data(), 1024}};
  for (const auto& [table, quarter] : kTables) {
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[quarter], 1);
    for (std::size_t j = 0; j <= quarter; ++j) {
      const long double sine = -Root(j, 4 * quarter).imag();
      ASSERT_NEAR(table[j], sine, unit * sine) << j;
    }
  }
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

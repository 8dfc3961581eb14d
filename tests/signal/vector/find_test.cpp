// Searches against the definition: every position in ascending order, element by element.
#include <algorithm>
#include <cstring>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

struct Width8 {
  using Element = Zov8u;
  static auto At(int level) { return ZOV_AT(level, zovsFind_8u); }
};
struct Width16 {
  using Element = Zov16u;
  static auto At(int level) { return ZOV_AT(level, zovsFind_16u); }
};

template <class Width>
class Find : public ::testing::Test {
 protected:
  using T = typename Width::Element;

  static int Reference(const T* src, int len, const T* seq, int lenFind) {
    if (lenFind == 0) return -1;
    const T* const at = std::search(src, src + len, seq, seq + lenFind);
    return at == src + len ? -1 : static_cast<int>(at - src);
  }

  // Places both arrays against inaccessible pages.
  void Check(int level, const std::vector<T>& src, const std::vector<T>& seq) {
    const int len = static_cast<int>(src.size()), lenFind = static_cast<int>(seq.size());
    for (const Guard guard : kGuards) {
      T* const guardedSrc = source_.At(src.size(), guard);
      T* const guardedSeq = sequence_.At(seq.size(), guard);
      std::copy(src.begin(), src.end(), guardedSrc);
      std::copy(seq.begin(), seq.end(), guardedSeq);
      int index = -2;
      ASSERT_EQ(Width::At(level)(guardedSrc, len, guardedSeq, lenFind, &index), zovStsNoErr);
      ASSERT_EQ(index, Reference(src.data(), len, seq.data(), lenFind))
          << "len " << len << " lenFind " << lenFind;
    }
  }

  T Random(int values) {
    state_ = state_ * 1664525 + 1013904223;
    return static_cast<T>((state_ >> 16) % static_cast<std::uint32_t>(values));
  }
  std::vector<T> RandomArray(int len, int values) {
    std::vector<T> a(static_cast<std::size_t>(len));
    for (T& x : a) x = Random(values);
    return a;
  }

  GuardedArray<T> source_{4096}, sequence_{4096};
  std::uint32_t state_ = 7;
};

using Widths = ::testing::Types<Width8, Width16>;
TYPED_TEST_SUITE(Find, Widths);

TYPED_TEST(Find, PlantedAtEveryPosition) {
  using Element = typename TypeParam::Element;
  ForEachLevel([&](int level) {
    for (const int len : {1, 2, 7, 8, 9, 15, 16, 17, 31, 33, 40, 64, 100, 137, 150}) {
      for (const int lenFind : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, 70}) {
        if (lenFind > len) continue;
        std::vector<Element> seq = this->RandomArray(lenFind, 200);
        for (int at = 0; at <= len - lenFind; ++at) {
          std::vector<Element> src = this->RandomArray(len, 200);
          std::copy(seq.begin(), seq.end(), src.begin() + at);
          this->Check(level, src, seq);
        }
        if (this->HasFatalFailure()) return;
        // One element short of the whole, at the end.
        std::vector<Element> src = this->RandomArray(len, 200);
        std::copy(seq.begin(), seq.end() - 1, src.end() - (lenFind - 1));
        this->Check(level, src, seq);
      }
    }
  });
}

TYPED_TEST(Find, FewValuesGiveManyFalseStarts) {
  using Element = typename TypeParam::Element;
  ForEachLevel([&](int level) {
    for (int round = 0; round < 3000 && !this->HasFatalFailure(); ++round) {
      const int len = 1 + round % 300;
      std::vector<Element> src = this->RandomArray(len, 2);
      std::vector<Element> seq = this->RandomArray(1 + round % 13, 2);
      this->Check(level, src, seq);
    }
    // Runs of one value, and a sequence that differs in one place only.
    std::vector<Element> run(500, 3);
    for (std::size_t lenFind = 1; lenFind < 40; ++lenFind) {
      std::vector<Element> seq(lenFind, 3);
      this->Check(level, run, seq);
      for (std::size_t odd = 0; odd < lenFind; ++odd) {
        seq.assign(lenFind, 3);
        seq[odd] = 4;
        this->Check(level, run, seq);
        std::vector<Element> src = run;
        src[450] = 4;
        this->Check(level, src, seq);
      }
    }
  });
}

TYPED_TEST(Find, EveryBitOfAnElementCounts) {
  using Element = typename TypeParam::Element;
  ForEachLevel([&](int level) {
    for (unsigned bit = 0; bit < 8 * sizeof(Element); ++bit) {
      std::vector<Element> src(200, 0x5A);
      src[130] = static_cast<Element>(0x5A ^ (1u << bit));
      this->Check(level, src, {static_cast<Element>(0x5A ^ (1u << bit))});
      this->Check(level, src, {0x5A, 0x5A, static_cast<Element>(0x5A ^ (1u << bit))});
    }
  });
}

TYPED_TEST(Find, ChecksAndShortCuts) {
  using Element = typename TypeParam::Element;
  ForEachLevel([](int level) {
    const auto find = TypeParam::At(level);
    const Element src[4] = {1, 2, 3, 4}, seq[5] = {3, 4, 5, 6, 7};
    int index = 77;
    EXPECT_EQ(find(nullptr, -1, seq, 1, &index), zovStsNullPtrErr);
    EXPECT_EQ(find(src, 4, nullptr, -1, &index), zovStsNullPtrErr);
    EXPECT_EQ(find(src, 4, seq, -1, nullptr), zovStsNullPtrErr);
    EXPECT_EQ(find(src, -1, seq, 1, &index), zovStsFindLenErr);
    EXPECT_EQ(find(src, 4, seq, -1, &index), zovStsFindLenErr);
    EXPECT_EQ(find(src, 0, seq, INT32_MIN, &index), zovStsFindLenErr);
    EXPECT_EQ(index, 77) << "an error writes nothing";
    const int lengths[][2] = {{0, 1}, {4, 0}, {0, 0}, {4, 5}};
    for (const auto& [len, lenFind] : lengths) {
      index = 77;
      EXPECT_EQ(find(src, len, seq, lenFind, &index), zovStsNoErr);
      EXPECT_EQ(index, -1) << len << " " << lenFind;
    }
    EXPECT_EQ(find(src, 4, seq, 2, &index), zovStsNoErr);
    EXPECT_EQ(index, 2);
  });
}

}  // namespace
}  // namespace zov::test

// Area reduction against the mean of the source under each pixel and, to the bit, against sums in
// the defined order, in guarded memory.
#include "image/resize/area_reference.h"

namespace zov::test {
namespace {

template <class Member>
class ResizeArea : public ResizeTasks<Member> {
 protected:
  using T = typename Member::Element;

  static T ExactMean(int level, double sum, double norm) {
    if constexpr (sizeof(T) > 1) {
      return static_cast<T>(sum * norm);
    } else {
      const double mean = level >= 6 ? std::fma(sum, norm, 0.5) : sum * norm + 0.5;
      return static_cast<T>(std::clamp(mean, 0.0, 255.0));
    }
  }

  void Check(int level, const Task& t) {
    SCOPED_TRACE(t);
    this->FillSource(t);
    this->PlaceTarget(t);
    const ZovStatus status = this->Run(level, t, this->dst_);
    const WrittenAxis x = t.X();
    const WrittenAxis y = t.Y();
    const bool ignored = (t.interpolation & ZOV_RESIZE_ANTIALIAS) != 0;
    ASSERT_EQ(status, x.count <= 0 || y.count <= 0 ? zovStsNoOperationWrn
                      : ignored                    ? zovStsAntialiasIgnoredWrn
                                                   : zovStsNoErr);
    const ReferenceAxis xAxis = {t.xFactor, t.xShift, t.srcSize.width};
    const ReferenceAxis yAxis = {t.yFactor, t.yShift, t.srcSize.height};
    const double norm = t.xFactor * t.yFactor;
    const AreaWalk xWalk(xAxis, x);
    const AreaWalk yWalk(yAxis, y);
    const bool whole = xWalk.IsWhole() && yWalk.IsWhole();
    std::vector<Taps> exactColumns;
    std::vector<Taps> exactRows;
    if (status != zovStsNoOperationWrn) {
      exactColumns = xWalk.All(false, whole);
      exactRows = yWalk.All(true, whole);
    }
    for (int row = 0; status != zovStsNoOperationWrn && row < y.count; ++row) {
      const Taps rows = AreaTapsOf(yAxis, y, row);
      for (int column = 0; column < x.count; ++column) {
        const Taps columns = AreaTapsOf(xAxis, x, column);
        for (int channel = 0; channel < Member::kChannels; ++channel) {
          const auto source = [&](int sx, int sy) {
            return this->src_.template Pixel<T>(sx, sy, channel);
          };
          const double sum = ReferencePixel(columns, rows, source);
          const T actual = this->dst_.template Pixel<T>(x.first + column, y.first + row, channel);
          const auto place = [&] {
            return ::testing::Message() << "at " << x.first + column << "," << y.first + row << ","
                                        << channel << ": " << +actual << " for " << sum * norm;
          };
          if constexpr (sizeof(T) > 1) {
            // Each addition along either axis rounds once; weights carry the error of positions.
            const double roundings = static_cast<double>(columns.size() + rows.size() + 6);
            const double positions = 2 * (t.srcSize.width + t.srcSize.height + 20);
            const double bound = 1000 * (roundings * std::numeric_limits<T>::epsilon() +
                                         positions * std::numeric_limits<double>::epsilon());
            ASSERT_LE(std::abs(sum * norm - static_cast<double>(actual)), bound) << place();
          } else {
            ASSERT_TRUE(IsByteOf(sum * norm, 2e-3, actual)) << place();
          }
          const Taps& walkColumns = exactColumns[static_cast<std::size_t>(column)];
          const Taps& walkRows = exactRows[static_cast<std::size_t>(row)];
          const bool isFloat = sizeof(T) == 4 || (sizeof(T) == 1 && !whole);
          const double exact =
              isFloat ? static_cast<double>(AreaSum<float>(walkColumns, walkRows, source))
                      : AreaSum<double>(walkColumns, walkRows, source);
          ASSERT_EQ(actual, ExactMean(level, exact, norm)) << place();
        }
        this->dst_.Erase(x.first + column, y.first + row);
      }
    }
    ASSERT_TRUE(this->dst_.OnlyFiller()) << "a byte outside the written rectangle changed";
  }

  double RandomFactor(int src, int dst) {
    constexpr double kRound[] = {1, 1, 0.5, 0.5, 0.25, 0.2, 1.0 / 3, 2.0 / 3, 0.4, 0.1, 0.05, 0.75};
    switch (this->Below(3)) {
      case 0:
        return std::min(1.0, static_cast<double>(dst) / src);
      case 1:
        return kRound[this->Below(12)];
      default:
        return std::exp(this->Real(-3, 0));
    }
  }
  // Quarters put the start on pixel edges, before the image too.
  double RandomShift() {
    const int kind = this->Below(4);
    return kind < 2 ? 0 : kind == 2 ? this->Below(64) * 0.25 - 8 : this->Real(-8, 8);
  }
};
TYPED_TEST_SUITE(ResizeArea, Members);

TYPED_TEST(ResizeArea, MatchesTheMeansOnRandomGeometry) {
  ForEachLevel([this](int level) {
    for (int round = 0; round < 700; ++round) {
      Task t = this->RandomTask(70);
      t.xFactor = this->RandomFactor(t.srcSize.width, t.dstSize.width);
      t.yFactor =
          this->Below(2) ? t.xFactor : this->RandomFactor(t.srcSize.height, t.dstSize.height);
      t.xShift = this->RandomShift();
      t.yShift = this->RandomShift();
      t.interpolation = ZOV_INTERP_AREA | (round % 9 == 0 ? ZOV_RESIZE_ANTIALIAS : 0);
      this->Check(level, t);
      if (this->HasFatalFailure()) return;
    }
  });
}

// Rows that are wider than what is held at a time, pixels that cover far more than the image, and
// source rectangles of one pixel, whose work buffer is the smallest.
TYPED_TEST(ResizeArea, MatchesTheMeansOnWideRowsAndWideAreas) {
  ForEachLevel([this](int level) {
    const auto check = [&](int width, int height, double xFactor, double yFactor, double shift) {
      Task t = {{width, height}, {0, 0, width, height},
                {width, height}, {0, 0, width, height},
                xFactor,         yFactor,
                shift,           shift,
                ZOV_INTERP_AREA};
      this->Check(level, t);
      t.srcRoi = {width / 2, height / 2, 1, 1};
      t.xShift += (0.5 - width / 2) * xFactor;
      t.yShift += (0.5 - height / 2) * yFactor;
      if (!this->HasFatalFailure()) this->Check(level, t);
    };
    for (double factor : {1.0, 0.9, 0.5, 0.2, 0.0031}) {
      check(1300, 3, factor, 0.4, 0.3);
      check(1300, 2, factor, 1, 0);
      check(1031, 6, factor, 1.0 / 3, 0);
    }
    for (double factor : {0.004, 1.0 / 512}) check(70, 70, factor, factor, 0.45);
    check(1, 70, 1, 0.5, 0);
  });
}

// Whatever the factor, areas of one value have this mean.
TYPED_TEST(ResizeArea, KeepsConstantImages) {
  ForEachLevel([this](int level) {
    for (int round = 0; round < 40; ++round) {
      Task t = this->RandomTask(50);
      t.xFactor = this->RandomFactor(t.srcSize.width, t.dstSize.width);
      t.yFactor = this->RandomFactor(t.srcSize.height, t.dstSize.height);
      t.interpolation = ZOV_INTERP_AREA;
      this->FillSource(t);
      using Element = typename TypeParam::Element;
      const Element value = static_cast<Element>(round * 5 + 60);
      for (int y = 0; y < t.srcSize.height; ++y) {
        for (int i = 0; i < t.srcSize.width * TypeParam::kChannels; ++i) {
          std::memcpy(this->src_.At(0, y) + i * static_cast<int>(sizeof(Element)), &value,
                      sizeof(Element));
        }
      }
      this->PlaceTarget(t);
      if (this->Run(level, t, this->dst_) != zovStsNoErr) continue;
      const double bound =
          sizeof(Element) == 1 ? 0 : 200 * 260 * std::numeric_limits<Element>::epsilon();
      for (int y = 0; y < t.Y().count; ++y) {
        for (int x = 0; x < t.X().count; ++x) {
          ASSERT_NEAR(this->dst_.template Pixel<Element>(t.X().first + x, t.Y().first + y, 0),
                      value, bound)
              << t;
        }
      }
    }
  });
}

// Factors that no bound of memory or time can follow end all the same.
TYPED_TEST(ResizeArea, EndsWithStrangeFactors) {
  ForEachLevel([this](int level) {
    for (double factor : {1e-300, 5e-324, 1e-12, 1e-6}) {
      Task t = {{9, 9}, {0, 0, 9, 9}, {3, 3}, {0, 0, 3, 3},   factor,
                factor, 0.5,          0.5,    ZOV_INTERP_AREA};
      this->FillSource(t);
      this->PlaceTarget(t);
      EXPECT_EQ(this->Run(level, t, this->dst_), zovStsNoErr);
      this->dst_.Erase(0, 0);
      EXPECT_TRUE(this->dst_.OnlyFiller());
    }
  });
}

}  // namespace
}  // namespace zov::test

// Edge smoothing by every method that resizes: the ring against its formula, everything else as
// without the flag. And the resize without a work buffer, which must do what the other one does.
#include "core/memory.h"
#include "image/resize/area_reference.h"

namespace zov::test {
namespace {

constexpr int kMethods[] = {
    ZOV_INTERP_NEAREST,          ZOV_INTERP_LINEAR,      ZOV_INTERP_CUBIC, ZOV_INTERP_CUBIC_BSPLINE,
    ZOV_INTERP_CUBIC_CATMULLROM, ZOV_INTERP_CUBIC_MIXED, ZOV_INTERP_AREA,  ZOV_INTERP_LANCZOS};

template <class Member>
class EdgeSmoothing : public ResizeTasks<Member> {
 protected:
  using T = typename Member::Element;

  // How much of a pixel before, inside or after the written ones is covered.
  static double Coverage(const WrittenAxis& axis, int pixel) {
    if (pixel >= axis.first && pixel < axis.first + axis.count) return 1;
    const double edge = pixel < axis.first ? axis.near : axis.far;
    const double fraction = edge - std::floor(edge);
    if (pixel == axis.first - 1) return fraction > 1e-10 ? 1 - fraction : 0;
    return pixel == axis.first + axis.count && fraction < 1 - 1e-10 ? fraction : 0;
  }

  Task RandomSmoothTask() {
    Task t = this->RandomTask(40);
    t.xFactor = std::exp(this->Real(-1, 1.2));
    t.yFactor = this->Below(3) ? std::exp(this->Real(-1, 1.2)) : 1;
    t.xShift = this->Below(3) ? this->Real(-3, 5) : this->Below(9) * 0.25;
    t.yShift = this->Below(3) ? this->Real(-3, 5) : this->Below(9) * 0.25;
    return t;
  }

  void FillTarget(const Task& t, const FramedImage& dst, unsigned seed) {
    std::mt19937 values(seed);
    for (int y = 0; y < t.dstSize.height; ++y) {
      for (int i = 0; i < t.dstSize.width * Member::kChannels; ++i) {
        const T value = static_cast<T>(values() % 256);
        std::memcpy(dst.At(0, y) + i * static_cast<int>(sizeof(T)), &value, sizeof(T));
      }
    }
  }

  void ExpectPixel(const Task& t, double share, T before, T nearest, T actual, int x, int y) {
    const bool blends = (t.interpolation & ZOV_EDGE_BLEND) != 0;
    const double p = static_cast<double>(nearest);
    const double d = static_cast<double>(before);
    const double a = static_cast<double>(static_cast<float>(share));
    const double value = share == 0 ? d : share == 1 ? p : blends ? d + (p - d) * a : p * a;
    if (share == 0 || share == 1) {
      ASSERT_EQ(actual, static_cast<T>(value)) << "at " << x << "," << y;
    } else if constexpr (sizeof(T) == 1) {
      ASSERT_TRUE(IsByteOf(value, 1e-4, actual))
          << +actual << " for " << value << " at " << x << "," << y;
    } else {
      ASSERT_NEAR(actual, value, 4000 * std::numeric_limits<T>::epsilon())
          << "at " << x << "," << y;
    }
  }

  void Check(int level, const Task& t) {
    SCOPED_TRACE(t);
    this->FillSource(t);
    this->PlaceTarget(t);
    const WrittenAxis x = t.X();
    const WrittenAxis y = t.Y();
    FillTarget(t, this->dst_, 1);
    const ZovStatus status = this->Run(level, t, this->dst_);
    if (status == zovStsInterpolationErr) return;  // a method of a later release
    const bool written = x.count > 0 && y.count > 0;
    ASSERT_EQ(status, written ? zovStsNoErr : zovStsNoOperationWrn);
    // The same pixels without the flag: the destination rectangle limits them to the covered ones.
    plain_.Place(t.dstSize, Member::kPixelBytes, 0, false, Guard::after);
    FillTarget(t, plain_, 1);
    Task inner = t;
    inner.interpolation = t.interpolation & ~kReferenceFlags;
    inner.dstRoi = {x.first, y.first, x.count, y.count};
    if (written) {
      ASSERT_EQ(this->Run(level, inner, plain_), zovStsNoErr);
    }
    for (int py = 0; py < t.dstSize.height; ++py) {
      for (int px = 0; px < t.dstSize.width; ++px) {
        const double share = written ? Coverage(x, px) * Coverage(y, py) : 0;
        const int nearX = std::clamp(px, x.first, std::max(x.first, x.first + x.count - 1));
        const int nearY = std::clamp(py, y.first, std::max(y.first, y.first + y.count - 1));
        for (int c = 0; c < Member::kChannels; ++c) {
          const T before = plain_.template Pixel<T>(px, py, c);
          const T nearest = share > 0 ? plain_.template Pixel<T>(nearX, nearY, c) : before;
          ExpectPixel(t, share, before, nearest, this->dst_.template Pixel<T>(px, py, c), px, py);
          if (this->HasFatalFailure()) return;
        }
        this->dst_.Erase(px, py);
      }
    }
    ASSERT_TRUE(this->dst_.OnlyFiller()) << "a byte outside the image changed";
  }

  FramedImage plain_{256 * 1024};
};
TYPED_TEST_SUITE(EdgeSmoothing, Members);

TYPED_TEST(EdgeSmoothing, RingMatchesItsFormulaAroundAnyMethod) {
  ForEachLevel([this](int level) {
    for (int round = 0; round < 480; ++round) {
      Task t = this->RandomSmoothTask();
      t.interpolation = kMethods[round % 8] | (round / 8 % 2 == 0 ? ZOV_EDGE_BLEND : ZOV_EDGE_FADE);
      if (kMethods[round % 8] == ZOV_INTERP_AREA) {
        t.xFactor = std::min(t.xFactor, 1.0);
        t.yFactor = std::min(t.yFactor, 1.0);
      }
      this->Check(level, t);
      if (this->HasFatalFailure()) return;
    }
  });
}

// Edges a hair from a whole number have no ring there, or one of almost no or almost all weight.
TYPED_TEST(EdgeSmoothing, EdgesAHairFromAWholeNumber) {
  ForEachLevel([this](int level) {
    for (double shift : {1e-12, -1e-12, 9e-11, -9e-11, 2e-10, -2e-10, 0.0}) {
      for (int flag : {ZOV_EDGE_BLEND, ZOV_EDGE_FADE}) {
        Task t = {{9, 9}, {1, 1, 7, 7}, {12, 12},    {0, 0, 12, 12},          1,
                  1,      1.0 + shift,  2.0 + shift, ZOV_INTERP_LINEAR | flag};
        this->Check(level, t);
        if (this->HasFatalFailure()) return;
      }
    }
  });
}

template <class Member>
auto LegacyOf() {
  if constexpr (Member::kChannels == 4) {
    return &Kelo_zoviResize_8u_C4R;
  } else if constexpr (sizeof(typename Member::Element) == 1) {
    return &Kelo_zoviResize_8u_C1R;
  } else {
    return &Kelo_zoviResize_32f_C1R;
  }
}

template <class Member>
class LegacyResize : public EdgeSmoothing<Member> {};
using LegacyMembers = ::testing::Types<Resize8uC1, Resize8uC4, Resize32fC1>;
TYPED_TEST_SUITE(LegacyResize, LegacyMembers);

TYPED_TEST(LegacyResize, DoesWhatTheResizeWithABufferDoes) {
  using Element = typename TypeParam::Element;
  constexpr int kFlags[] = {0, 0, ZOV_EDGE_BLEND, ZOV_EDGE_FADE, ZOV_RESIZE_ANTIALIAS};
  const int level = zovDispatchIndex;
  for (int round = 0; round < 400; ++round) {
    Task t = this->RandomSmoothTask();
    t.xShift = t.yShift = 0;
    t.interpolation = kMethods[round % 8] | kFlags[this->Below(5)];
    // Mostly rectangles that leave something to write.
    if (this->Below(3)) t.srcRoi.x = t.srcRoi.y = 0;
    t.dstRoi.x = t.srcRoi.x;
    t.dstRoi.y = t.srcRoi.y;
    t.dstSize = {t.dstRoi.x + t.dstRoi.width, t.dstRoi.y + t.dstRoi.height};
    if (this->Below(20) == 0) t.srcRoi.x = t.dstRoi.x = t.srcSize.width;
    this->FillSource(t);
    this->dst_.Place(t.dstSize, TypeParam::kPixelBytes, 0, false, Guard::before);
    this->plain_.Place(t.dstSize, TypeParam::kPixelBytes, 0, false, Guard::before);
    const ZovStatus expected = this->Run(level, t, this->plain_);
    const ZovStatus status = LegacyOf<TypeParam>()(
        reinterpret_cast<const Element*>(this->src_.At(0, 0)), t.srcSize, this->src_.step, t.srcRoi,
        reinterpret_cast<Element*>(this->dst_.At(0, 0)), this->dst_.step,
        {t.dstRoi.width, t.dstRoi.height}, t.xFactor, t.yFactor, t.interpolation);
    SCOPED_TRACE(t);
    // The warning of an ignored flag comes with the size already, and ends the call.
    const int method = MethodOf(t.interpolation);
    const bool ignored = (t.interpolation & ZOV_RESIZE_ANTIALIAS) != 0 &&
                         (method == ZOV_INTERP_NEAREST || method == ZOV_INTERP_AREA);
    ASSERT_EQ(status, ignored ? zovStsAntialiasIgnoredWrn : expected);
    if (ignored) {
      ASSERT_TRUE(this->dst_.OnlyFiller());
      continue;
    }
    const auto bytes = static_cast<std::size_t>(this->dst_.step * t.dstSize.height);
    ASSERT_EQ(std::memcmp(this->dst_.At(0, 0), this->plain_.At(0, 0), bytes), 0);
  }
}

// A bad rectangle shows before a null pointer, a null pointer before a bad factor, and a buffer
// that cannot be had not at all.
TYPED_TEST(LegacyResize, StatusesInOrder) {
  using Element = typename TypeParam::Element;
  std::vector<Element> image(64 * TypeParam::kChannels, Element{3});
  const auto call = [&](const Element* src, ZovImageRect roi, ZovImageSize room, double factor,
                        int method) {
    return LegacyOf<TypeParam>()(src, {8, 8}, 8 * TypeParam::kPixelBytes, roi, image.data(),
                                 8 * TypeParam::kPixelBytes, room, factor, factor, method);
  };
  const ZovImageRect whole = {0, 0, 8, 8};
  EXPECT_EQ(call(nullptr, {-1, 0, 8, 8}, {8, 8}, 0, 3), zovStsSizeErr);
  EXPECT_EQ(call(nullptr, whole, {8, 0}, 0, 3), zovStsSizeErr);
  EXPECT_EQ(call(nullptr, whole, {8, 8}, 0, 3), zovStsInterpolationErr);
  EXPECT_EQ(call(nullptr, whole, {8, 8}, 0, ZOV_INTERP_LINEAR), zovStsNullPtrErr);
  EXPECT_EQ(call(image.data(), whole, {8, 8}, 0, ZOV_INTERP_LINEAR), zovStsResizeFactorErr);
  EXPECT_EQ(call(image.data(), {8, 0, 8, 8}, {8, 8}, 1, ZOV_INTERP_LINEAR), zovStsResizeRoiWrn);
  const auto allocate = zovHeap.allocate;
  zovHeap.allocate = [](std::size_t) -> void* { return nullptr; };
  EXPECT_EQ(call(nullptr, whole, {8, 8}, 0, ZOV_INTERP_LINEAR), zovStsNoErr);
  zovHeap.allocate = allocate;
}

}  // namespace
}  // namespace zov::test

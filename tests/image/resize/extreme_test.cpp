// Images of nearly 2^31 columns or rows, and columns at their very edge, at every method and level.
// Of the image only what the pixels need is mapped, so that any other read faults.
#include <vector>

#include "image/resize/members.h"
#include "support/guarded.h"

namespace zov::test {
namespace {

constexpr int kMethods[] = {
    ZOV_INTERP_NEAREST,
    ZOV_INTERP_LINEAR,
    ZOV_INTERP_CUBIC,
    ZOV_INTERP_AREA,
    ZOV_INTERP_LANCZOS,
    ZOV_INTERP_LINEAR | ZOV_RESIZE_ANTIALIAS,
    ZOV_INTERP_CUBIC | ZOV_RESIZE_ANTIALIAS,
    ZOV_INTERP_LANCZOS | ZOV_RESIZE_ANTIALIAS,
};

template <class Member>
class ResizeExtremes : public ::testing::Test {
 protected:
  using Element = typename Member::Element;
  static constexpr int kValue = 100;

  // A call whose written pixels are `dstRoi`, on an image of one value, with any scratch.
  static void Expect(int level, ZovImageSize size, ZovImageRect srcRoi, ZovImageRect dstRoi,
                     double xFactor, double yFactor, double xShift, int method) {
    SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + " method " +
                 std::to_string(method) + " factors " + std::to_string(xFactor) + " " +
                 std::to_string(yFactor));
    constexpr std::int64_t kBytes = Member::kPixelBytes;
    const GuardedArray<Element> image(4096);
    for (int i = 0; i < 4096; ++i) image.At(4096, Guard::after)[i] = kValue;
    const int srcStep = static_cast<int>(size.height == 1 ? 0 : size.width * kBytes);
    const std::int64_t imageBytes = std::int64_t{size.height - 1} * srcStep + size.width * kBytes;
    const int dstStep = static_cast<int>(dstRoi.width * kBytes);
    std::vector<Element> written(static_cast<std::size_t>(dstRoi.width) *
                                 static_cast<std::size_t>(dstRoi.height) * Member::kChannels);
    const auto at = [](const void* end, std::int64_t before) {
      return reinterpret_cast<Element*>(reinterpret_cast<std::uintptr_t>(end) -
                                        static_cast<std::uintptr_t>(before));
    };
    int bytes = 0;
    ASSERT_EQ(Member::BufferSize(level, srcRoi, dstRoi, method, &bytes), zovStsNoErr);
    for (int scratch : {0, 0x47, 0xCD}) {
      std::vector<Zov8u> buffer(static_cast<std::size_t>(bytes), static_cast<Zov8u>(scratch));
      written.assign(written.size(), Element{1});
      ASSERT_EQ(Member::At(level)(
                    at(image.At(0, Guard::after), imageBytes), size, srcStep, srcRoi,
                    at(written.data(), dstRoi.x * kBytes + std::int64_t{dstRoi.y} * dstStep),
                    dstStep, dstRoi, xFactor, yFactor, xShift, 0, method, buffer.data()),
                zovStsNoErr);
      for (std::size_t i = 0; i < written.size(); ++i) {
        ASSERT_NEAR(static_cast<double>(written[i]), kValue, sizeof(Element) == 1 ? 0 : 1e-4) << i;
      }
    }
  }
};
TYPED_TEST_SUITE(ResizeExtremes, Members);

TYPED_TEST(ResizeExtremes, LastPixelsOfNearly2To31) {
  constexpr int kMost = 0x7FFFFFFF;
  ForEachLevel([](int level) {
    for (int method : kMethods) {
      for (int less : {0, 1, 7, 300}) {
        for (double factor : {1.0, 0.5}) {
          const int count = factor == 1 ? 8 : 3;
          const int width = kMost / TypeParam::kChannels - less;
          const int x = static_cast<int>((width - 10) * factor) + 1;
          TestFixture::Expect(level, {width, 1}, {width - 10, 0, 10, 1}, {x, 0, count, 1}, factor,
                              1, 0, method);
          const int height = kMost - less;
          const int y = static_cast<int>((height - 10) * factor) + 1;
          TestFixture::Expect(level, {8, height}, {0, height - 10, 8, 10}, {0, y, 8, count}, 1,
                              factor, 0, method);
          if (TestFixture::HasFatalFailure()) return;
        }
      }
    }
  });
}

// The centre of a lone column may lie a hair beyond the image, and with it all of its taps.
TYPED_TEST(ResizeExtremes, LoneColumnsAHairBeyondTheImage) {
  ForEachLevel([](int level) {
    for (int method : kMethods) {
      if (method == ZOV_INTERP_AREA) continue;  // reduces
      TestFixture::Expect(level, {45, 8}, {0, 0, 45, 8}, {103, 0, 1, 8}, 2.3, 1, 0, method);
      TestFixture::Expect(level, {45, 8}, {0, 0, 45, 8}, {44, 0, 1, 8}, 1, 1, -0.5 - 5e-11, method);
      if (TestFixture::HasFatalFailure()) return;
    }
  });
}

}  // namespace
}  // namespace zov::test

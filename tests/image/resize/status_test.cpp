// Statuses of a resize in the order of its checks, and that nothing is written when one is
// returned.
#include <limits>
#include <vector>

#include "image/resize/members.h"

namespace zov::test {
namespace {

// A valid call, for tests that spoil one argument or two.
struct Call {
  bool src = true, dst = true, buffer = true;
  ZovImageSize size = {20, 20};
  ZovImageRect srcRoi = {0, 0, 20, 20};
  ZovImageRect dstRoi = {0, 0, 30, 30};
  double xFactor = 1.5, yFactor = 1.5, xShift = 0, yShift = 0;
  int interpolation = ZOV_INTERP_LINEAR;
};

template <class Member>
class ResizeStatus : public ::testing::Test {
 protected:
  using Element = typename Member::Element;

  // Runs at every level; a call that is not to write must leave the destination alone.
  static void Expect(ZovStatus expected, const Call& c, bool writes = false) {
    ForEachLevel([&](int level) {
      std::vector<Element> src(20 * 20 * Member::kChannels, Element{9});
      std::vector<Element> dst(30 * 30 * Member::kChannels, Element{5});
      const std::vector<Element> before = dst;
      std::vector<Zov8u> buffer(1 << 16);
      const int srcStep = 20 * Member::kPixelBytes;
      const int dstStep = 30 * Member::kPixelBytes;
      EXPECT_EQ(Member::At(level)(c.src ? src.data() : nullptr, c.size, srcStep, c.srcRoi,
                                  c.dst ? dst.data() : nullptr, dstStep, c.dstRoi, c.xFactor,
                                  c.yFactor, c.xShift, c.yShift, c.interpolation,
                                  c.buffer ? buffer.data() : nullptr),
                expected);
      EXPECT_EQ(dst != before, writes);
    });
  }
};
TYPED_TEST_SUITE(ResizeStatus, Members);

TYPED_TEST(ResizeStatus, PointersThenSizesThenFactorsThenMethods) {
  Call worst;
  worst.size = {0, 0};
  worst.xFactor = -1;
  worst.interpolation = 3;
  for (bool Call::*pointer : {&Call::src, &Call::dst, &Call::buffer}) {
    Call c = worst;
    c.*pointer = false;
    this->Expect(zovStsNullPtrErr, c);
  }
  for (int field = 0; field < 10; ++field) {
    Call c = worst;
    c.size = {20, 20};
    int* const fields[] = {&c.size.width,   &c.size.height,   &c.srcRoi.x, &c.srcRoi.y,
                           &c.srcRoi.width, &c.srcRoi.height, &c.dstRoi.x, &c.dstRoi.y,
                           &c.dstRoi.width, &c.dstRoi.height};
    *fields[field] = -1;
    this->Expect(zovStsSizeErr, c);
  }
  for (double Call::*factor : {&Call::xFactor, &Call::yFactor}) {
    for (double value : {0.0, -0.0, -1.0, -std::numeric_limits<double>::infinity()}) {
      Call c;
      c.interpolation = 3;
      c.srcRoi.x = 20;
      c.*factor = value;
      this->Expect(zovStsResizeFactorErr, c);
    }
  }
  for (int method : {0, 3, 9, 15, 17, 32, 1 << 28, ZOV_INTERP_AREA | ZOV_EDGE_BLEND | ZOV_EDGE_FADE,
                     ZOV_INTERP_AREA | ZOV_EDGE_BLEND | ZOV_RESIZE_ANTIALIAS,
                     ZOV_INTERP_AREA | ZOV_EDGE_FADE | ZOV_RESIZE_ANTIALIAS}) {
    Call c;
    c.srcRoi.x = 20;
    c.interpolation = method;
    this->Expect(zovStsInterpolationErr, c);
  }
  for (double Call::*factor : {&Call::xFactor, &Call::yFactor}) {
    Call c;
    c.xFactor = c.yFactor = 1;
    c.srcRoi.x = 20;
    c.interpolation = ZOV_INTERP_AREA;
    c.*factor = 1.0000001;
    this->Expect(zovStsResizeFactorErr, c);
  }
}

TYPED_TEST(ResizeStatus, RectanglesOutsideWarnAndWriteNothing) {
  for (int method : {ZOV_INTERP_NEAREST, ZOV_INTERP_LINEAR}) {
    Call c;
    c.interpolation = method;
    c.srcRoi.x = 20;
    this->Expect(zovStsResizeRoiWrn, c);
    c.srcRoi = {0, 20, 20, 20};
    this->Expect(zovStsResizeRoiWrn, c);
    c.srcRoi = {10, 0, std::numeric_limits<int>::max(), 20};  // the sum wraps
    this->Expect(zovStsResizeRoiWrn, c);
    c.srcRoi = {10, 10, 100, 100};  // cut back to the image
    this->Expect(zovStsNoErr, c, true);
    c = Call();
    c.interpolation = method;
    c.xShift = -30.0;
    this->Expect(zovStsNoOperationWrn, c);
    c.xShift = 0;
    c.yShift = 30;
    this->Expect(zovStsNoOperationWrn, c);
    c.yShift = 0;
    c.xFactor = 1e-300;
    this->Expect(zovStsNoOperationWrn, c);
    for (double strange :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
      c.xFactor = strange;
      this->Expect(zovStsNoOperationWrn, c);
    }
  }
}

// A NaN passes the checks of factors, with every method and flag.
TYPED_TEST(ResizeStatus, FactorsThatAreNoNumbersCoverNothing) {
  for (int interpolation :
       {ZOV_INTERP_AREA | 0, ZOV_INTERP_AREA | ZOV_EDGE_BLEND, ZOV_INTERP_LINEAR | ZOV_EDGE_FADE,
        ZOV_INTERP_CUBIC | ZOV_EDGE_BLEND, ZOV_INTERP_LANCZOS | ZOV_RESIZE_ANTIALIAS}) {
    for (double Call::*factor : {&Call::xFactor, &Call::yFactor}) {
      Call c;
      c.xFactor = c.yFactor = 1;
      c.*factor = std::numeric_limits<double>::quiet_NaN();
      c.interpolation = interpolation;
      this->Expect(zovStsNoOperationWrn, c);
    }
  }
}

TYPED_TEST(ResizeStatus, AntialiasIsIgnoredByNearest) {
  Call c;
  c.interpolation = ZOV_INTERP_NEAREST | ZOV_RESIZE_ANTIALIAS;
  this->Expect(zovStsAntialiasIgnoredWrn, c, true);
  c.xShift = 100;
  this->Expect(zovStsNoOperationWrn, c);
}

TYPED_TEST(ResizeStatus, SmallImagesTakeAShorterKernel) {
  for (int method : {ZOV_INTERP_CUBIC, ZOV_INTERP_CUBIC_BSPLINE, ZOV_INTERP_CUBIC_CATMULLROM,
                     ZOV_INTERP_CUBIC_MIXED, ZOV_INTERP_LANCZOS}) {
    for (ZovImageSize size : {ZovImageSize{3, 20}, ZovImageSize{20, 3}, ZovImageSize{1, 1}}) {
      Call c;
      c.size = size;
      c.interpolation = method;
      this->Expect(zovStsNoErr, c, true);
    }
  }
}

}  // namespace
}  // namespace zov::test

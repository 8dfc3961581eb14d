// Every pixel of a resize by every method against a pixel-by-pixel reference, in guarded memory.
#include "image/resize/pixels.h"

namespace zov::test {
namespace {

// What the random geometry goes through.
constexpr int kInterpolations[] = {
    ZOV_INTERP_NEAREST,       ZOV_INTERP_NEAREST | ZOV_RESIZE_ANTIALIAS,
    ZOV_INTERP_LINEAR,        ZOV_INTERP_CUBIC,
    ZOV_INTERP_CUBIC_BSPLINE, ZOV_INTERP_CUBIC_CATMULLROM,
    ZOV_INTERP_CUBIC_MIXED,   ZOV_INTERP_LANCZOS,
    ZOV_INTERP_LANCZOS};

TYPED_TEST_SUITE(ResizePixels, Members);

TYPED_TEST(ResizePixels, MatchTheReferenceOnRandomGeometry) {
  ForEachLevel([this](int level) {
    for (int round = 0; round < 1000; ++round) {
      Case c = this->RandomCase(round % 10 == 0 ? 140 : 70, 3.0);
      c.interpolation = kInterpolations[round % std::size(kInterpolations)];
      const bool ignored = c.interpolation == (ZOV_INTERP_NEAREST | ZOV_RESIZE_ANTIALIAS);
      this->CheckCase(level, c, ignored ? zovStsAntialiasIgnoredWrn : zovStsNoErr);
      if (this->HasFatalFailure()) return;
    }
  });
}

// Widened kernels need more of a work buffer than the others, so the images are smaller.
TYPED_TEST(ResizePixels, AntialiasedMatchesTheReferenceOnRandomGeometry) {
  this->buffer_.Resize(1 << 18);
  ForEachLevel([this](int level) {
    for (int round = 0; round < 400; ++round) {
      Case c = this->RandomCase(36, 3.0);
      constexpr int kMethods[] = {ZOV_INTERP_LINEAR,           ZOV_INTERP_CUBIC,
                                  ZOV_INTERP_CUBIC_BSPLINE,    ZOV_INTERP_CUBIC_MIXED,
                                  ZOV_INTERP_CUBIC_CATMULLROM, ZOV_INTERP_LANCZOS};
      c.interpolation = kMethods[round % 6] | ZOV_RESIZE_ANTIALIAS;
      this->CheckCase(level, c, zovStsNoErr);
      if (this->HasFatalFailure()) return;
    }
  });
}

// Images large enough for groups of rows, with the work buffer that they come with.
TYPED_TEST(ResizePixels, AntialiasedMatchesTheReferenceOnLargerImages) {
  this->buffer_.Resize(1 << 21);
  ForEachLevel([this](int level) {
    constexpr double kFactors[] = {1, 2.0 / 3, 0.5, 0.37, 0.25, 1.5};
    int round = 0;
    for (int method : {ZOV_INTERP_LINEAR, ZOV_INTERP_CUBIC, ZOV_INTERP_CUBIC_CATMULLROM,
                       ZOV_INTERP_CUBIC_MIXED, ZOV_INTERP_LANCZOS}) {
      for (double factor : kFactors) {
        const auto upTo = [this](int n) {
          return static_cast<int>(this->random_() % static_cast<unsigned>(n));
        };
        Case c;
        c.srcSize = {30 + upTo(130), 90 + upTo(60)};
        c.srcRoi = {0, 0, c.srcSize.width, c.srcSize.height};
        c.xFactor = factor;
        c.yFactor = ++round % 4 == 0 ? kFactors[upTo(5)] : factor;
        c.xShift = c.yShift = round % 3 == 0 ? 0.3 : 0;
        c.dstSize = {static_cast<int>(c.srcSize.width * c.xFactor) + 1,
                     static_cast<int>(c.srcSize.height * c.yFactor) + 1};
        c.dstRoi = {0, 0, c.dstSize.width, c.dstSize.height};
        if (upTo(3) == 0) c.dstRoi = {2, 5, c.dstSize.width - 2, c.dstSize.height - 6};
        c.interpolation = method | ZOV_RESIZE_ANTIALIAS;
        this->CheckCase(level, c, zovStsNoErr);
        if (this->HasFatalFailure()) return;
      }
    }
  });
}

// Extents around the vectors and windows of the kernels, at ratios on either side of each limit.
TYPED_TEST(ResizePixels, MatchTheReferenceAtTheLimitsOfWindows) {
  ForEachLevel([this](int level) {
    for (int width : {2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 18, 31, 33, 64, 100}) {
      for (double inverse : {0.03, 0.45, 0.5, 0.66, 0.67, 0.93, 1.0, 1.01, 1.5, 1.99, 2.0, 2.01,
                             2.33, 2.34, 4.0, 4.66, 4.67, 5.0, 7.5}) {
        Case c;
        c.srcSize = {width, 3};
        c.srcRoi = {0, 0, width, 3};
        c.dstSize = {std::min(300, static_cast<int>(width / inverse) + 1), 5};
        c.dstRoi = {0, 0, c.dstSize.width, c.dstSize.height};
        c.xFactor = 1 / inverse;
        c.yFactor = 1.3;
        c.xShift = inverse > 1 ? 0 : -0.3;
        c.yShift = 0;
        for (int method :
             {ZOV_INTERP_NEAREST, ZOV_INTERP_LINEAR, ZOV_INTERP_CUBIC, ZOV_INTERP_LANCZOS}) {
          c.interpolation = method;
          this->CheckCase(level, c, zovStsNoErr);
          if (this->HasFatalFailure()) return;
        }
      }
    }
  });
}

// Runs a whole image into a whole image of another size.
template <class Member, class T>
std::vector<T> ResizeWhole(int level, const std::vector<T>& src, ZovImageSize from, ZovImageSize to,
                           int method) {
  const ZovImageRect srcRoi = {0, 0, from.width, from.height};
  const ZovImageRect dstRoi = {0, 0, to.width, to.height};
  std::vector<T> dst(static_cast<std::size_t>(to.width * to.height * Member::kChannels));
  int bytes = 0;
  EXPECT_EQ(Member::BufferSize(level, srcRoi, dstRoi, method, &bytes), zovStsNoErr);
  std::vector<Zov8u> buffer(static_cast<std::size_t>(bytes));
  EXPECT_EQ(
      Member::At(level)(src.data(), from, from.width * Member::kPixelBytes, srcRoi, dst.data(),
                        to.width * Member::kPixelBytes, dstRoi, 1.0 * to.width / from.width,
                        1.0 * to.height / from.height, 0, 0, method, buffer.data()),
      zovStsNoErr);
  return dst;
}

// Reduction by one half has kernels of its own, for the samples in the middle between pixels: bands
// on either side, parts of images, and extents around the vectors. Halves are exact, so every level
// has the very value. Shifts that are not whole source pixels take the general form.
TYPED_TEST(ResizePixels, HalvesExactly) {
  using Element = typename TypeParam::Element;
  ForEachLevel([this](int level) {
    for (int width : {2, 3, 5, 15, 16, 17, 31, 64, 65, 130, 141}) {
      for (double shift : {0.0, 0.5, -0.5, 1.0, -1.5, 0.25}) {
        Case c;
        c.srcSize = {width, 9};
        c.srcRoi = {width % 5 == 0 ? 1 : 0, 0, width, 9};
        c.dstSize = {width / 2 + 3, 7};
        c.dstRoi = {width % 3 == 0 ? 1 : 0, width % 2, c.dstSize.width, c.dstSize.height};
        c.dstRoi.width -= c.dstRoi.x;
        c.dstRoi.height -= c.dstRoi.y;
        c.xFactor = c.yFactor = 0.5;
        c.xShift = shift;
        c.yShift = width % 4 == 0 ? 0 : shift;
        c.interpolation = ZOV_INTERP_LINEAR;
        this->CheckCase(level, c, zovStsNoErr);
        if (this->HasFatalFailure()) return;
      }
    }
    if constexpr (sizeof(Element) > 1) {
      constexpr ZovImageSize kFrom = {54, 6};
      constexpr ZovImageSize kTo = {27, 3};
      std::vector<Element> src(kFrom.width * kFrom.height);
      for (Element& value : src) {
        value = static_cast<Element>(std::uniform_real_distribution<double>(-9, 9)(this->random_));
      }
      const std::vector<Element> dst =
          ResizeWhole<TypeParam>(level, src, kFrom, kTo, ZOV_INTERP_LINEAR);
      for (int i = 0; i < kTo.width * kTo.height; ++i) {
        const auto middle = [](Element p, Element q) {
          const Element difference = q - p;
          return p + difference / 2;
        };
        const Element* const upper =
            src.data() + i / kTo.width * 2 * kFrom.width + i % kTo.width * 2;
        const Element* const lower = upper + kFrom.width;
        ASSERT_EQ(dst[static_cast<std::size_t>(i)],
                  middle(middle(upper[0], upper[1]), middle(lower[0], lower[1])));
      }
    }
  });
}

constexpr int kKernels[] = {ZOV_INTERP_CUBIC, ZOV_INTERP_CUBIC_BSPLINE, ZOV_INTERP_CUBIC_CATMULLROM,
                            ZOV_INTERP_CUBIC_MIXED, ZOV_INTERP_LANCZOS};

// What theory promises of the kernels, edges included: a constant stays what it is, a kernel that
// interpolates copies an image of the same size, and the cubic through four points keeps
// quadratics.
TYPED_TEST(ResizePixels, KernelsKeepWhatTheyPromise) {
  using Element = typename TypeParam::Element;
  constexpr ZovImageSize kFrom = {37, 23};
  constexpr double kBound = sizeof(Element) == 1 ? 0.5 : sizeof(Element) == 4 ? 1e-3 : 1e-11;
  const std::size_t elements = kFrom.width * kFrom.height * TypeParam::kChannels;
  std::vector<Element> any(elements);
  for (Element& value : any) value = static_cast<Element>(this->random_() % 256);
  // (x - 18)^2 / 4 + (y - 9)^2 / 4, at the centres of the pixels
  const auto quadratic = [](double x, double y) {
    return ((x - 18) * (x - 18) + (y - 9) * (y - 9)) / 4;
  };
  std::vector<Element> parabola(elements);
  for (std::size_t i = 0; i < elements; ++i) {
    const int pixel = static_cast<int>(i) / TypeParam::kChannels;
    parabola[i] = static_cast<Element>(quadratic(pixel % kFrom.width, pixel / kFrom.width));
  }
  ForEachLevel([&](int level) {
    for (int method : kKernels) {
      for (const ZovImageSize to : {ZovImageSize{53, 61}, ZovImageSize{11, 7}}) {
        const std::vector<Element> constant(elements, Element{255});
        for (Element value : ResizeWhole<TypeParam>(level, constant, kFrom, to, method)) {
          ASSERT_NEAR(value, 255, kBound) << method;
        }
      }
      // The antialiased sums are the same at every level.
      const int antialiased = method | ZOV_RESIZE_ANTIALIAS;
      ASSERT_EQ(ResizeWhole<TypeParam>(level, any, kFrom, {11, 7}, antialiased),
                ResizeWhole<TypeParam>(0, any, kFrom, {11, 7}, antialiased))
          << method;
      const std::vector<Element> copy = ResizeWhole<TypeParam>(level, any, kFrom, kFrom, method);
      if (method == ZOV_INTERP_CUBIC || method == ZOV_INTERP_CUBIC_CATMULLROM) {
        ASSERT_EQ(copy, any) << method;
      } else if (method == ZOV_INTERP_LANCZOS) {
        for (std::size_t i = 0; i < elements; ++i) ASSERT_NEAR(copy[i], any[i], kBound);
      }
    }
    constexpr ZovImageSize kTo = {111, 46};
    const std::vector<Element> result =
        ResizeWhole<TypeParam>(level, parabola, kFrom, kTo, ZOV_INTERP_CUBIC);
    if constexpr (sizeof(Element) > 1) {
      for (int y = 4; y < kTo.height - 4; ++y) {
        for (int x = 6; x < kTo.width - 6; ++x) {
          ASSERT_NEAR(result[static_cast<std::size_t>(y * kTo.width + x)],
                      quadratic((x + 0.5) / 3 - 0.5, (y + 0.5) / 2 - 0.5), kBound);
        }
      }
    }
  });
}

// At some ratios both ends of a widened kernel round outward, and it seems to have a tap more than
// fits its place.
TYPED_TEST(ResizePixels, AntialiasedKeepsConstantsAtAnyRatio) {
  using Element = typename TypeParam::Element;
  constexpr double kBound = sizeof(Element) == 1 ? 0 : sizeof(Element) == 4 ? 1e-4 : 1e-12;
  const std::vector<Element> constant(8 * 6 * TypeParam::kChannels, Element{100});
  ForEachLevel([&](int level) {
    for (int method : {ZOV_INTERP_LINEAR, ZOV_INTERP_CUBIC_BSPLINE, ZOV_INTERP_LANCZOS}) {
      for (int from : {6, 8}) {
        for (int to = 1; to <= 150; ++to) {
          const int antialiased = method | ZOV_RESIZE_ANTIALIAS;
          for (const auto& result :
               {ResizeWhole<TypeParam>(level, constant, {from, 6}, {to, 1}, antialiased),
                ResizeWhole<TypeParam>(level, constant, {6, from}, {1, to}, antialiased)}) {
            for (Element value : result) {
              ASSERT_NEAR(value, 100, kBound) << method << ": " << from << " to " << to;
            }
          }
        }
      }
    }
  });
}

// Halves of 8 bits go up at the lowest level and where a tap reaches past the image, to even
// elsewhere. All samples lie half-way between two columns.
TYPED_TEST(ResizePixels, KernelsRoundHalvesByPlaceAndLevel) {
  using Element = typename TypeParam::Element;
  if constexpr (sizeof(Element) == 1) {
    constexpr int kSide = 40;
    Case c;
    c.srcSize = c.dstSize = {kSide, kSide};
    c.srcRoi = c.dstRoi = {0, 0, kSide, kSide};
    // Pairs of columns, the pairs of rows shifted by one: 10, 11 and 12 around halves that round
    // either way.
    const auto value = [](int x, int y) { return 10 + (x / 2 + y / 2) % 3; };
    std::vector<Element> src(kSide * kSide * TypeParam::kChannels);
    for (std::size_t i = 0; i < src.size(); ++i) {
      const int pixel = static_cast<int>(i) / TypeParam::kChannels;
      src[i] = static_cast<Element>(value(pixel % kSide, pixel / kSide));
    }
    ForEachLevel([&](int level) {
      for (int method : {ZOV_INTERP_CUBIC, ZOV_INTERP_CUBIC_CATMULLROM}) {
        std::vector<Element> dst(src.size());
        std::vector<Zov8u> buffer(1 << 16);
        ASSERT_EQ(TypeParam::At(level)(src.data(), c.srcSize, kSide * TypeParam::kPixelBytes,
                                       c.srcRoi, dst.data(), kSide * TypeParam::kPixelBytes,
                                       c.dstRoi, 1, 1, 0.5, 0, method, buffer.data()),
                  zovStsNoErr);
        for (std::size_t i = 0; i < dst.size(); ++i) {
          const int x = static_cast<int>(i) / TypeParam::kChannels % kSide;
          const int y = static_cast<int>(i) / TypeParam::kChannels / kSide;
          const auto at = [&](int k) { return value(std::clamp(x + k, 0, kSide - 1), y); };
          const double mean = (9 * (at(-1) + at(0)) - at(-2) - at(1)) / 16.0;
          // The sample lies half a pixel before column x.
          const bool inside = x >= 2 && x < kSide - 1 && y >= 1 && y < kSide - 2;
          const double rounded =
              level > 0 && inside ? std::nearbyint(mean) : std::floor(mean + 0.5);
          ASSERT_EQ(dst[i], rounded) << method << " at " << x << "," << y;
        }
      }
    });
  }
}

// Taps at a distance of exactly 1 take the outer piece of the kernel.
TYPED_TEST(ResizePixels, WholeDistancesTakeTheOuterPiece) {
  if constexpr (std::is_same_v<TypeParam, Resize64fC1>) {
    constexpr ZovImageSize kSize = {9, 9};
    std::vector<double> dot(81);
    dot[4 * 9 + 4] = 1;
    ForEachLevel([&](int level) {
      const auto left = [&](int method) {
        return ResizeWhole<TypeParam>(level, dot, kSize, kSize, method)[4 * 9 + 3];
      };
      EXPECT_EQ(left(ZOV_INTERP_CUBIC_MIXED), (-23.0 / 60 + 2 - 3.4 + 28.0 / 15) * (5.0 / 6));
    });
  }
}

// An infinite pixel shows in the pixels that weigh it, and nowhere else.
TYPED_TEST(ResizePixels, InfinitePixelsStayWithTheirTaps) {
  using Element = typename TypeParam::Element;
  if constexpr (sizeof(Element) > 1) {
    const auto check = [](int level, int method, int side, auto weighs) {
      for (int at = 0; at < 20; ++at) {
        std::vector<Element> src(400, Element{1});
        src[static_cast<std::size_t>(at * 20 + at)] = std::numeric_limits<Element>::infinity();
        const std::vector<Element> dst =
            ResizeWhole<TypeParam>(level, src, {20, 20}, {side, side}, method);
        for (int i = 0; i < side * side; ++i) {
          ASSERT_NE(std::isfinite(dst[static_cast<std::size_t>(i)]),
                    weighs(i % side, at) && weighs(i / side, at))
              << method << " pixel " << i << " of " << at;
        }
      }
    };
    ForEachLevel([&](int level) {
      for (int method : {ZOV_INTERP_LINEAR, ZOV_INTERP_CUBIC, ZOV_INTERP_CUBIC_BSPLINE,
                         ZOV_INTERP_CUBIC_CATMULLROM, ZOV_INTERP_CUBIC_MIXED, ZOV_INTERP_LANCZOS}) {
        // Fractions are odd tenths, so no weight is 0.
        check(level, method, 50, [reach = KernelRadiusOf(method)](int pixel, int at) {
          return std::abs((pixel + 0.5) / 2.5 - 0.5 - at) < reach;
        });
      }
      for (int side : {8, 10, 20}) {
        check(level, ZOV_INTERP_AREA, side, [side](int pixel, int at) {
          return at * side < (pixel + 1) * 20 && (at + 1) * side > pixel * 20;
        });
      }
    });
  }
}

// A fraction that rounds up to a whole pixel of weight.
TYPED_TEST(ResizePixels, MatchTheReferenceAtWholeWeights) {
  ForEachLevel([this](int level) {
    for (double shift : {1e-13, 1e-12, 5e-12, 1e-11, -1e-12, 0.0}) {
      Case c;
      c.srcSize = {50, 9};
      c.srcRoi = {0, 0, 50, 9};
      c.dstSize = {50, 9};
      c.dstRoi = {0, 0, 50, 9};
      c.xFactor = c.yFactor = 1;
      c.xShift = c.yShift = shift;
      c.interpolation = ZOV_INTERP_LINEAR;
      this->CheckCase(level, c, zovStsNoErr);
      if (this->HasFatalFailure()) return;
    }
  });
}

// A pixel whose centre misses the mapped image by a hair is written all the same; a reduction turns
// the hair into more than a source pixel's edge, and no byte past the image may be read.
TYPED_TEST(ResizePixels, NearestStaysInTheImageWhenACentreMissesIt) {
  ForEachLevel([this](int level) {
    constexpr int kExtent = 8;
    Case c;
    c.srcSize = {kExtent, kExtent};
    this->src_.Place(c.srcSize, TypeParam::kPixelBytes, 0, false, Guard::after);
    this->dst_.Place({2, 2}, TypeParam::kPixelBytes, 0, false, Guard::after);
    this->FillSource(c);
    std::vector<Zov8u> buffer(1024);
    const double factor = 1.0 / 16;
    const double shift = -5e-11;  // the image ends just short of the centre of pixel 0
    using Element = typename TypeParam::Element;
    ASSERT_EQ(TypeParam::At(level)(reinterpret_cast<const Element*>(this->src_.At(0, 0)), c.srcSize,
                                   this->src_.step, {0, 0, kExtent, kExtent},
                                   reinterpret_cast<Element*>(this->dst_.At(0, 0)), this->dst_.step,
                                   {0, 0, 2, 2}, factor, factor, shift, shift, ZOV_INTERP_NEAREST,
                                   buffer.data()),
              zovStsNoErr);
    EXPECT_EQ(std::memcmp(this->dst_.At(0, 0), this->src_.At(kExtent - 1, kExtent - 1),
                          TypeParam::kPixelBytes),
              0);
  });
}

}  // namespace
}  // namespace zov::test

// The fixture of pixel tests: images and a work buffer in guarded memory, random geometry, and the
// check of every pixel of a resize against a reference.
#pragma once

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "image/resize/members.h"
#include "image/resize/reference.h"
#include "support/guarded.h"

namespace zov::test {

constexpr std::uint8_t kUntouched = 0xA5;

// Pages of filler that a block can be placed in; afterwards it tells whether anything else changed.
class GuardedBlock {
 public:
  explicit GuardedBlock(std::size_t capacity) { Resize(capacity); }

  void Resize(std::size_t capacity) {
    pages_ = std::make_unique<GuardedPages>(capacity);
    std::memset(pages_->begin(), kUntouched, Capacity());
  }

  std::uint8_t* Place(std::size_t bytes, Guard guard, std::size_t shift) {
    bytes_ = bytes;
    block_ = guard == Guard::after ? pages_->end() - bytes - shift : pages_->begin() + shift;
    return block_;
  }
  void Erase() const { std::memset(block_, kUntouched, bytes_); }
  bool OnlyFiller() const {
    const std::uint8_t* const p = pages_->begin();
    return *p == kUntouched && std::memcmp(p, p + 1, Capacity() - 1) == 0;
  }
  std::size_t Capacity() const { return static_cast<std::size_t>(pages_->end() - pages_->begin()); }

 private:
  std::unique_ptr<GuardedPages> pages_;
  std::uint8_t* block_ = nullptr;
  std::size_t bytes_ = 0;
};

// An image whose rows may lie bottom-up and apart.
class GuardedImage : public GuardedBlock {
 public:
  using GuardedBlock::GuardedBlock;

  void Place(ZovImageSize size, int pixelBytes, int gap, bool bottomUp, Guard guard) {
    const int rowBytes = size.width * pixelBytes;
    const int pitch = rowBytes + gap;
    const int bytes = pitch * (size.height - 1) + rowBytes;
    origin_ = GuardedBlock::Place(static_cast<std::size_t>(bytes), guard, 0);
    if (bottomUp) origin_ += pitch * (size.height - 1);
    step = bottomUp ? -pitch : pitch;
    pixelBytes_ = pixelBytes;
  }
  std::uint8_t* At(int x, int y) const { return origin_ + step * y + x * pixelBytes_; }

  int step = 0;

 private:
  std::uint8_t* origin_ = nullptr;
  int pixelBytes_ = 0;
};

struct Case {
  ZovImageSize srcSize;
  ZovImageRect srcRoi;
  ZovImageSize dstSize;
  ZovImageRect dstRoi;
  double xFactor, yFactor, xShift, yShift;
  int interpolation;
};

// Whether a destination pixel is written, along one axis.
inline bool Covered(int pixel, int roi, int roiExtent, int extent, int dst, int dstExtent,
                    double factor, double shift) {
  const int end = std::min(roi + roiExtent, extent);
  const double near = std::max<double>(roi * factor + shift, dst);
  const double far = std::min<double>(end * factor + shift, dst + dstExtent);
  return pixel >= std::trunc(near + 0.4999999999) && pixel < std::trunc(far + 0.5000000001);
}

// A sample along one axis: taps clamped into the image, and whether both lie in it by themselves.
struct Sample {
  Sample(int pixel, double factor, double shift, int extent) {
    const double position = (pixel + 0.5) * (1 / factor) + ((0 - shift / factor) - 0.5);
    fraction = position - std::floor(position);
    inside = position >= 0 && position < extent - 1;
    const double low = std::floor(position);
    a = inside ? static_cast<int>(low) : position < 0 ? 0 : extent - 1;
    b = inside ? a + 1 : a;
  }
  int Fixed() const { return static_cast<int>(fraction * 16384.0 + 1e-7); }

  int a, b;
  bool inside;
  double fraction;
};

inline int NearestPixel(int pixel, double factor, double shift, int extent) {
  const double at = (pixel + 0.5) * (1 / factor) + ((0 - shift / factor) - 1e-10);
  return std::min(static_cast<int>(at), extent - 1);
}

// The exact 8-bit value: two roundings in the interior, one where an axis is clamped.
inline int Bilinear8u(const Sample& x, const Sample& y, const int p[4]) {
  const int fx = x.Fixed();
  const int fy = y.Fixed();
  if (!y.inside) return (p[0] * (16384 - fx) + p[1] * fx + 8192) >> 14;
  if (!x.inside) return (p[0] * (16384 - fy) + p[2] * fy + 8192) >> 14;
  const int upper = (p[0] * (16384 - fx) + p[1] * fx + 128) >> 8;
  const int lower = (p[2] * (16384 - fx) + p[3] * fx + 128) >> 8;
  return (upper * (16384 - fy) + lower * fy + 524288) >> 20;
}

inline long double BilinearReal(const Sample& x, const Sample& y, const long double p[4]) {
  const long double upper = p[0] + (p[1] - p[0]) * static_cast<long double>(x.fraction);
  const long double lower = p[2] + (p[3] - p[2]) * static_cast<long double>(x.fraction);
  return upper + (lower - upper) * static_cast<long double>(y.fraction);
}

template <class Member>
class ResizePixels : public ::testing::Test {
 protected:
  using T = typename Member::Element;

  // Values of magnitude up to 1000 for real elements. Bytes are noise, or one of the pictures whose
  // sums often lie halfway between two bytes: a ramp, or a checker below some noise.
  void FillSource(const Case& c) {
    const auto any = [this](int count) {
      return static_cast<int>(random_() % static_cast<unsigned>(count));
    };
    enum { constant, ramp, checker, noise };
    const int picture = any(6);
    const int checkerFrom = any(2) ? 0 : any(c.srcSize.height);
    const int light = any(2) ? 255 : 1 + any(255);
    for (int y = 0; y < c.srcSize.height; ++y) {
      for (int i = 0; i < c.srcSize.width * Member::kChannels; ++i) {
        T value;
        if constexpr (sizeof(T) == 1) {
          const int x = i / Member::kChannels;
          if (picture == constant) {
            value = static_cast<T>(light);
          } else if (picture == ramp) {
            value = static_cast<T>((7 * x + 13 * y) % 251);
          } else if (picture == checker && y >= checkerFrom) {
            value = static_cast<T>((x + y) % 2 * light);
          } else {
            // Extremes show an overflow of the fixed-point lanes.
            const unsigned bits = random_();
            value = static_cast<T>(bits % 4 == 0 ? 255 : bits % 4 == 1 ? 0 : bits >> 8);
          }
        } else {
          value = static_cast<T>(std::uniform_real_distribution<double>(-1000, 1000)(random_));
        }
        std::memcpy(src_.At(0, y) + i * static_cast<int>(sizeof(T)), &value, sizeof(T));
      }
    }
  }

  T SourceElement(int x, int y, int channel) const {
    T value;
    std::memcpy(&value, src_.At(x, y) + channel * static_cast<int>(sizeof(T)), sizeof(T));
    return value;
  }

  void ExpectElement(const Case& c, int x, int y, int channel, T actual) const {
    const int method = MethodForImage(MethodOf(c.interpolation), c.srcSize);
    if (method == ZOV_INTERP_NEAREST) {
      const T expected =
          SourceElement(NearestPixel(x, c.xFactor, c.xShift, c.srcSize.width),
                        NearestPixel(y, c.yFactor, c.yShift, c.srcSize.height), channel);
      ASSERT_EQ(actual, expected) << "nearest at " << x << "," << y;
      return;
    }
    if (method == ZOV_INTERP_LINEAR && !IsAntialiased(c.interpolation)) {
      ExpectLinear(c, x, y, channel, actual);
      return;
    }
    const std::size_t column = static_cast<std::size_t>(x);
    const std::size_t row = static_cast<std::size_t>(y);
    const auto source = [&](int sx, int sy) { return SourceElement(sx, sy, channel); };
    if constexpr (sizeof(T) == 1) {
      if (IsAntialiased(c.interpolation)) {
        ASSERT_EQ(actual, AntialiasedByte(columnTaps_[column], rowTaps_[row], source))
            << "at " << x << "," << y;
        return;
      }
    }
    const double expected = ReferencePixel(columnTaps_[column], rowTaps_[row], source);
    if constexpr (sizeof(T) == 1) {
      // Weights and sums in single precision, for values up to 255.
      ASSERT_TRUE(IsByteOf(expected, 2e-3, actual))
          << int{actual} << " for " << expected << " at " << x << "," << y;
    } else {
      // Some dozen roundings of weights and sums for values up to 1000.
      const double bound = 1e5 * std::numeric_limits<T>::epsilon();
      ASSERT_LE(std::abs(expected - static_cast<double>(actual)), bound)
          << actual << " for " << expected << " at " << x << "," << y;
    }
  }

  // Taps of the columns or rows from first on that are written.
  static void SetTaps(int interpolation, const ReferenceAxis& axis, int first, int end,
                      std::vector<Taps>* taps) {
    taps->assign(static_cast<std::size_t>(end), {});
    for (int i = first; i < end; ++i) {
      (*taps)[static_cast<std::size_t>(i)] = TapsOf(interpolation, i, axis, sizeof(T) == 8);
    }
  }

  void ExpectLinear(const Case& c, int x, int y, int channel, T actual) const {
    const Sample sx(x, c.xFactor, c.xShift, c.srcSize.width);
    const Sample sy(y, c.yFactor, c.yShift, c.srcSize.height);
    const T p[4] = {SourceElement(sx.a, sy.a, channel), SourceElement(sx.b, sy.a, channel),
                    SourceElement(sx.a, sy.b, channel), SourceElement(sx.b, sy.b, channel)};
    if constexpr (sizeof(T) == 1) {
      const int taps[4] = {p[0], p[1], p[2], p[3]};
      ASSERT_EQ(actual, Bilinear8u(sx, sy, taps)) << "linear at " << x << "," << y;
    } else {
      // Two interpolations, each with a rounded fraction, difference, product and sum of values up
      // to 2000.
      const long double taps[4] = {p[0], p[1], p[2], p[3]};
      const long double bound = 8000 * std::numeric_limits<T>::epsilon();
      ASSERT_LE(std::fabs(BilinearReal(sx, sy, taps) - actual), bound)
          << "linear at " << x << "," << y;
    }
  }

  // Places images anywhere; the destination on the contrary at a page when `aligned`. Looks at the
  // values of every rowStep-th row.
  void CheckCase(int level, const Case& c, ZovStatus expected, bool aligned = false,
                 int rowStep = 1) {
    SCOPED_TRACE(::testing::Message()
                 << "src " << c.srcSize.width << "x" << c.srcSize.height << " roi " << c.srcRoi.x
                 << "," << c.srcRoi.y << "+" << c.srcRoi.width << "x" << c.srcRoi.height
                 << " dst roi " << c.dstRoi.x << "," << c.dstRoi.y << "+" << c.dstRoi.width << "x"
                 << c.dstRoi.height << " factors " << c.xFactor << " " << c.yFactor << " shifts "
                 << c.xShift << " " << c.yShift << " method " << c.interpolation);
    const auto any = [this](unsigned count) { return random_() % count; };
    const auto guard = [&] { return any(2) == 0 ? Guard::after : Guard::before; };
    const auto gap = [&] { return static_cast<int>(any(3) * 8); };
    src_.Place(c.srcSize, Member::kPixelBytes, gap(), any(2) == 0, guard());
    dst_.Place(c.dstSize, Member::kPixelBytes, aligned ? 0 : gap(), any(2) == 0,
               aligned ? Guard::before : guard());
    FillSource(c);
    int bytes = 0;
    ASSERT_GE(Member::BufferSize(level, c.srcRoi, c.dstRoi, c.interpolation, &bytes), 0);
    ASSERT_LE(static_cast<std::size_t>(bytes) + 48, buffer_.Capacity());
    Zov8u* const buffer = buffer_.Place(static_cast<std::size_t>(bytes), guard(), any(48));

    const ZovStatus status =
        Member::At(level)(reinterpret_cast<const T*>(src_.At(0, 0)), c.srcSize, src_.step, c.srcRoi,
                          reinterpret_cast<T*>(dst_.At(0, 0)), dst_.step, c.dstRoi, c.xFactor,
                          c.yFactor, c.xShift, c.yShift, c.interpolation, buffer);

    const int substitute =
        MethodForImage(MethodOf(c.interpolation), c.srcSize) | (c.interpolation & kReferenceFlags);
    if (MethodOf(substitute) > ZOV_INTERP_LINEAR || IsAntialiased(substitute)) {
      SetTaps(substitute, {c.xFactor, c.xShift, c.srcSize.width}, c.dstRoi.x,
              c.dstRoi.x + c.dstRoi.width, &columnTaps_);
      SetTaps(substitute, {c.yFactor, c.yShift, c.srcSize.height}, c.dstRoi.y,
              c.dstRoi.y + c.dstRoi.height, &rowTaps_);
    }
    bool written = false;
    for (int y = 0; y < c.dstSize.height; ++y) {
      const bool inY = Covered(y, c.srcRoi.y, c.srcRoi.height, c.srcSize.height, c.dstRoi.y,
                               c.dstRoi.height, c.yFactor, c.yShift);
      for (int x = 0; x < c.dstSize.width; ++x) {
        if (!inY || !Covered(x, c.srcRoi.x, c.srcRoi.width, c.srcSize.width, c.dstRoi.x,
                             c.dstRoi.width, c.xFactor, c.xShift)) {
          continue;
        }
        written = true;
        for (int channel = 0; channel < Member::kChannels; ++channel) {
          T actual;
          std::memcpy(&actual, dst_.At(x, y) + channel * static_cast<int>(sizeof(T)), sizeof(T));
          if (y % rowStep == 0) ExpectElement(c, x, y, channel, actual);
          if (this->HasFatalFailure()) return;
        }
        // What remains when the written pixels are gone must be filler.
        std::memset(dst_.At(x, y), kUntouched, Member::kPixelBytes);
      }
    }
    ASSERT_EQ(status, written ? expected : zovStsNoOperationWrn);
    ASSERT_TRUE(dst_.OnlyFiller()) << "a byte outside the written rectangle changed";
    buffer_.Erase();
    ASSERT_TRUE(buffer_.OnlyFiller()) << "a byte outside the work buffer changed";
  }

  Case RandomCase(int largest, double magnitude) {
    const auto upTo = [this](int n) {
      return static_cast<int>(random_() % static_cast<unsigned>(n));
    };
    const auto real = [this](double low, double high) {
      return std::uniform_real_distribution<double>(low, high)(random_);
    };
    Case c;
    c.srcSize = {1 + upTo(largest), 1 + upTo(largest)};
    c.srcRoi.x = upTo(4) ? 0 : upTo(c.srcSize.width);
    c.srcRoi.y = upTo(4) ? 0 : upTo(c.srcSize.height);
    c.srcRoi.width = upTo(2) ? c.srcSize.width : 1 + upTo(c.srcSize.width + 9);
    c.srcRoi.height = upTo(2) ? c.srcSize.height : 1 + upTo(c.srcSize.height + 9);
    c.dstSize = {1 + upTo(2 * largest), 1 + upTo(largest)};
    c.dstRoi.x = upTo(3) ? 0 : upTo(c.dstSize.width);
    c.dstRoi.y = upTo(3) ? 0 : upTo(c.dstSize.height);
    c.dstRoi.width =
        upTo(3) ? c.dstSize.width - c.dstRoi.x : 1 + upTo(c.dstSize.width - c.dstRoi.x);
    c.dstRoi.height =
        upTo(3) ? c.dstSize.height - c.dstRoi.y : 1 + upTo(c.dstSize.height - c.dstRoi.y);
    // Factors that fit the destination, round ones, and any.
    const auto factor = [&](int src, int dst) {
      constexpr double kRound[] = {0.05, 0.1, 0.25, 0.5, 2.0 / 3, 1, 1.5, 2, 3, 4, 10, 20};
      switch (upTo(3)) {
        case 0:
          return static_cast<double>(dst) / src;
        case 1:
          return kRound[upTo(12)];
        default:
          return std::exp(real(-magnitude, magnitude));
      }
    };
    c.xFactor = factor(c.srcSize.width, c.dstSize.width);
    c.yFactor = factor(c.srcSize.height, c.dstSize.height);
    c.xShift = upTo(2) ? 0 : real(-8, 8);
    c.yShift = upTo(2) ? 0 : real(-8, 8);
    return c;
  }

  std::vector<Taps> columnTaps_;
  std::vector<Taps> rowTaps_;
  std::mt19937 random_{12345};
  GuardedImage src_{400 * 1024};
  GuardedImage dst_{400 * 1024};
  GuardedBlock buffer_{64 * 1024};
};

}  // namespace zov::test

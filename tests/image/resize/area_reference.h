// The area that a destination pixel covers, in double precision, and images in guarded memory for
// the tests of the area method and of the edges.
#pragma once

#include <cstring>
#include <random>

#include "image/resize/members.h"
#include "image/resize/reference.h"
#include "support/guarded.h"

namespace zov::test {

// The part of an axis that is written: destination pixels from first on.
struct WrittenAxis {
  int first;
  int count;
  double near;  // unrounded edges
  double far;
};

// With `inner`, only pixels that are covered completely.
inline WrittenAxis Written(int roi, int roiExtent, int extent, int dst, int dstExtent,
                           double factor, double shift, bool inner) {
  const int end = std::min(roi + roiExtent, extent);
  const double near = std::max<double>(roi * factor + shift, dst);
  const double far = std::min<double>(end * factor + shift, dst + dstExtent);
  const double first = inner ? std::ceil(near - 1e-10) : std::trunc(near + 0.4999999999);
  const double stop = inner ? std::floor(far + 1e-10) : std::trunc(far + 0.5000000001);
  return {static_cast<int>(first), static_cast<int>(stop - first), near, far};
}

// Source pixels under destination pixel number i, each with its share; beyond the image the
// outermost pixel is repeated.
inline Taps AreaTapsOf(const ReferenceAxis& axis, const WrittenAxis& written, int i) {
  double start = written.first * axis.Inverse() + axis.Offset();
  const double edge = std::round(start);
  // On a pixel edge left of the image, one pixel more than needed stands before it.
  if (std::abs(start - edge) <= 1e-10) start = start < 0 ? edge - 1 : edge;
  const double near = start + i * axis.Inverse();
  const double far = near + axis.Inverse();
  Taps taps;
  for (double j = std::floor(near); j < far; ++j) {
    const double share = std::min(j + 1, far) - std::max(j, near);
    taps.push_back({static_cast<int>(std::clamp(j, 0.0, axis.extent - 1.0)), share});
  }
  return taps;
}

// The same with every rounding: the shares of an axis in the order of their addition, what one
// destination pixel leaves of a source pixel going to the next.
class AreaWalk {
 public:
  AreaWalk(const ReferenceAxis& axis, const WrittenAxis& written)
      : inverse_(axis.Inverse()), extent_(axis.extent), count_(written.count) {
    const double start = written.first * axis.Inverse() + axis.Offset();
    begin_ = start >= 0 ? std::floor(start + 1e-10) : std::floor(start - 1e-10);
    share_ = Fraction(1.0 - start + begin_);
    end_ = std::ceil(count_ * inverse_ - 1e-10 + start);
    if (start < 0) {
      const double beyond = std::max(end_ - extent_, 0.0);
      end_ = std::min<double>(end_ - begin_ - beyond, extent_) + beyond;
    }
  }

  // Whether the axis may be taken as blocks of whole pixels.
  bool IsWhole() const { return !(Fraction(inverse_) > kFloor) && !(Fraction(share_) > kFloor); }

  std::vector<Taps> All(bool rows, bool whole) const {
    std::vector<Taps> all(static_cast<std::size_t>(count_));
    double place = begin_;
    double rest = 0;  // share of the pixel at `place` that has been given away
    for (int i = 0; i < count_; ++i) {
      Taps& taps = all[static_cast<std::size_t>(i)];
      const auto add = [&](double weight) {
        taps.push_back({static_cast<int>(std::clamp(place, 0.0, extent_ - 1.0)), weight});
      };
      const double head = whole ? 0 : i > 0 ? 1 - rest : share_;
      const bool counts = head > (i > 0 ? kFloor : 1e-10);
      const double left = i > 0 || counts ? inverse_ - head : inverse_;
      double pixels = std::floor(i > 0 || counts ? kFloor + left : left);
      rest = whole ? 0 : left - pixels;
      if (whole) pixels = std::floor(inverse_);
      if (counts) {
        add(head);
        ++place;
      } else if (i > 0 && !whole && !rows) {
        ++pixels;  // a column's rest too small to count is taken whole
      }
      for (; pixels > 0; --pixels, ++place) add(1);
      if (rest > kFloor && (rows || i == 0 || place < end_)) add(rest);
    }
    return all;
  }

 private:
  static constexpr double kFloor = 1e-7;  // shares up to here are dropped

  static double Fraction(double x) { return x - std::trunc(x); }

  double inverse_;
  int extent_;
  int count_;
  double begin_;
  double share_;
  double end_;
};

// Sums of the rows of each column, then of these, each rounded to Sum.
template <class Sum, class Element>
Sum AreaSum(const Taps& columns, const Taps& rows, Element element) {
  Sum sum = 0;
  for (const Tap& column : columns) {
    Sum line = 0;
    for (const Tap& row : rows) {
      line += static_cast<Sum>(element(column.index, row.index) * row.weight);
    }
    sum += static_cast<Sum>(static_cast<double>(line) * column.weight);
  }
  return sum;
}

// An image between guard pages, whose rows may lie bottom-up and apart; all else holds filler.
class FramedImage {
 public:
  static constexpr std::uint8_t kFiller = 0xA5;

  explicit FramedImage(std::size_t capacity) : pages_(capacity) {}

  void Place(ZovImageSize size, int pixelBytes, int gap, bool bottomUp, Guard guard) {
    std::memset(pages_.begin(), kFiller, Capacity());
    const int rowBytes = size.width * pixelBytes;
    const int bytes = (rowBytes + gap) * (size.height - 1) + rowBytes;
    origin_ = guard == Guard::after ? pages_.end() - bytes : pages_.begin();
    step = rowBytes + gap;
    if (bottomUp) {
      origin_ += step * (size.height - 1);
      step = -step;
    }
    pixelBytes_ = pixelBytes;
  }
  std::uint8_t* At(int x, int y) const { return origin_ + step * y + x * pixelBytes_; }
  template <class T>
  T Pixel(int x, int y, int channel) const {
    T value;
    std::memcpy(&value, At(x, y) + channel * static_cast<int>(sizeof(T)), sizeof(T));
    return value;
  }
  void Erase(int x, int y) const { std::memset(At(x, y), kFiller, pixelBytes_); }
  bool OnlyFiller() const {
    const std::uint8_t* const p = pages_.begin();
    return *p == kFiller && std::memcmp(p, p + 1, Capacity() - 1) == 0;
  }

  int step = 0;

 private:
  std::size_t Capacity() const { return static_cast<std::size_t>(pages_.end() - pages_.begin()); }

  GuardedPages pages_;
  std::uint8_t* origin_ = nullptr;
  int pixelBytes_ = 0;
};

// A resize with everything but its images.
struct Task {
  ZovImageSize srcSize;
  ZovImageRect srcRoi;
  ZovImageSize dstSize;
  ZovImageRect dstRoi;
  double xFactor, yFactor, xShift, yShift;
  int interpolation;

  WrittenAxis X() const {
    return Written(srcRoi.x, srcRoi.width, srcSize.width, dstRoi.x, dstRoi.width, xFactor, xShift,
                   Inner());
  }
  WrittenAxis Y() const {
    return Written(srcRoi.y, srcRoi.height, srcSize.height, dstRoi.y, dstRoi.height, yFactor,
                   yShift, Inner());
  }
  bool Inner() const { return (interpolation & (ZOV_EDGE_BLEND | ZOV_EDGE_FADE)) != 0; }
};

inline std::ostream& operator<<(std::ostream& out, const Task& t) {
  return out << "src " << t.srcSize.width << "x" << t.srcSize.height << " roi " << t.srcRoi.x << ","
             << t.srcRoi.y << "+" << t.srcRoi.width << "x" << t.srcRoi.height << " dst roi "
             << t.dstRoi.x << "," << t.dstRoi.y << "+" << t.dstRoi.width << "x" << t.dstRoi.height
             << " factors " << t.xFactor << " " << t.yFactor << " shifts " << t.xShift << " "
             << t.yShift << " interpolation " << t.interpolation;
}

// Random tasks and their run between guard pages.
template <class Member>
class ResizeTasks : public ::testing::Test {
 protected:
  using T = typename Member::Element;

  int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  double Real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }

  ZovImageRect RectIn(ZovImageSize size, int beyond) {
    ZovImageRect rect = {0, 0, size.width, size.height};
    if (Below(3) == 0) rect.x = Below(size.width);
    if (Below(3) == 0) rect.y = Below(size.height);
    rect.width = Below(3) ? size.width - rect.x : 1 + Below(size.width - rect.x + beyond);
    rect.height = Below(3) ? size.height - rect.y : 1 + Below(size.height - rect.y + beyond);
    return rect;
  }

  // Sizes up to `largest`; the caller sets factors, shifts and method.
  Task RandomTask(int largest) {
    Task t = {};
    t.srcSize = {1 + Below(largest), 1 + Below(largest)};
    t.srcRoi = RectIn(t.srcSize, 9);
    t.dstSize = {1 + Below(largest), 1 + Below(largest)};
    t.dstRoi = RectIn(t.dstSize, 0);
    return t;
  }

  // Any byte, extremes above all; real values of magnitude up to 1000.
  void FillSource(const Task& t) {
    src_.Place(t.srcSize, Member::kPixelBytes, Below(3) * 8, Below(2) == 0, kGuards[Below(2)]);
    for (int y = 0; y < t.srcSize.height; ++y) {
      for (int i = 0; i < t.srcSize.width * Member::kChannels; ++i) {
        const T value = static_cast<T>(sizeof(T) > 1   ? Real(-1000, 1000)
                                       : Below(4) == 0 ? 255
                                                       : Below(256));
        std::memcpy(src_.At(0, y) + i * static_cast<int>(sizeof(T)), &value, sizeof(T));
      }
    }
  }
  void PlaceTarget(const Task& t) {
    dst_.Place(t.dstSize, Member::kPixelBytes, Below(3) * 8, Below(2) == 0, kGuards[Below(2)]);
  }

  // The work buffer has exactly the size that is reported, at any address.
  ZovStatus Run(int level, const Task& t, const FramedImage& dst) {
    int bytes = 0;
    EXPECT_GE(Member::BufferSize(level, t.srcRoi, t.dstRoi, t.interpolation, &bytes), 0);
    Zov8u* const buffer =
        work_.At(static_cast<std::size_t>(bytes), kGuards[Below(2)], random_() % 48);
    return Member::At(level)(reinterpret_cast<const T*>(src_.At(0, 0)), t.srcSize, src_.step,
                             t.srcRoi, reinterpret_cast<T*>(dst.At(0, 0)), dst.step, t.dstRoi,
                             t.xFactor, t.yFactor, t.xShift, t.yShift, t.interpolation, buffer);
  }

  std::mt19937 random_{4321};
  FramedImage src_{256 * 1024};
  FramedImage dst_{256 * 1024};
  GuardedArray<Zov8u> work_{192 * 1024};
};

}  // namespace zov::test

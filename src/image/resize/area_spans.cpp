// Spans of an area reduction, in double precision throughout.
#include "image/resize/area_spans.h"

#include <cmath>

namespace zov {

namespace {

constexpr double kHair = 1e-10;        // of coordinates
constexpr double kWeightFloor = 1e-7;  // weights up to here are dropped
constexpr double kLimit = 1LL << 50;   // counts beyond it have no meaning and must not overflow
constexpr int kMargin = 1 << 12;       // pixels beyond the image that are counted one by one

std::int64_t ToCount(double x) {
  return static_cast<std::int64_t>(x > -kLimit ? (x < kLimit ? x : kLimit) : -kLimit);
}

std::int64_t Clamp(std::int64_t x, std::int64_t low, std::int64_t high) {
  return x < low ? low : x > high ? high : x;
}

double FractionOf(double x) { return x - std::trunc(x); }

struct AreaStart {
  double at;           // where the first span begins
  std::int64_t pixel;  // the pixel there
  double share;        // of that pixel, inside the span; 0 when it is all
};

// A start a hair from a pixel edge counts as on it.
AreaStart StartOf(const ResizeAxis& axis) {
  const double at = static_cast<double>(axis.first) * axis.inverse + axis.offset;
  const double pixel = at >= 0 ? std::floor(at + kHair) : std::floor(at - kHair);
  return {at, ToCount(pixel), FractionOf(1.0 - at + pixel)};
}

bool IsWhole(const ResizeAxis& axis) {
  return !(FractionOf(axis.inverse) > kWeightFloor) &&
         !(FractionOf(StartOf(axis).share) > kWeightFloor);
}

bool IsHalves(const ResizeAxis& axis) {
  const double share = StartOf(axis).share;
  return FractionOf(2 * axis.inverse) == 0 && FractionOf(2 * share) == 0 && axis.inverse < kLimit;
}

}  // namespace

int FirstOf(const AreaSpan& span) {
  if (span.head > 0) return span.headAt;
  return span.count > 0 ? span.begin : span.tailAt;
}

int LastOf(const AreaSpan& span) {
  if (span.tail > 0) return span.tailAt;
  return span.count > 0 ? span.begin + span.count - 1 : span.headAt;
}

bool AreaSpans::AreWhole(const ResizeGeometry& geometry) {
  return IsWhole(geometry.x) && IsWhole(geometry.y);
}

bool AreaSpans::AreHalves(const ResizeGeometry& geometry) {
  return IsHalves(geometry.x) && IsHalves(geometry.y);
}

AreaSpans::AreaSpans(const ResizeAxis& axis, AreaDirection direction, bool whole)
    : inverse_(axis.inverse), extent_(axis.extent), direction_(direction), whole_(whole) {
  const AreaStart start = StartOf(axis);
  place_ = start.pixel;
  fraction_ = start.share;
  end_ = ToCount(std::ceil(axis.count * inverse_ - kHair + start.at));
  // Before the image, pixels are counted as far as the image goes.
  if (start.at < 0) {
    const std::int64_t beyond = end_ > extent_ ? end_ - extent_ : 0;
    const std::int64_t read = end_ - place_ - beyond;
    end_ = (read < extent_ ? read : extent_) + beyond;
  }
}

AreaSpan AreaSpans::Next() {
  double head = 0;
  double rest = inverse_;
  double pixels;
  if (whole_) {
    pixels = std::floor(rest);
    fraction_ = 0;
  } else if (isFirst_) {
    if (fraction_ > kHair) {
      head = fraction_;
      rest -= head;
      pixels = std::floor(kWeightFloor + rest);
    } else {
      pixels = std::floor(rest);
    }
    fraction_ = rest - pixels;
  } else {
    const double left = 1 - fraction_;
    rest -= left;
    pixels = std::floor(kWeightFloor + rest);
    fraction_ = rest - pixels;
    if (left > kWeightFloor) {
      head = left;
    } else if (direction_ == AreaDirection::columns) {
      // The pixel whose rest is too small to count is taken whole. Rows take it
      // as the first of their whole pixels instead.
      ++pixels;
    }
  }
  double tail = fraction_ > kWeightFloor ? fraction_ : 0;

  // Factors near 0 put so many pixels beyond the image that only their weight matters.
  const std::int64_t margin = extent_ < 1 << 30 ? kMargin : 0;
  const std::int64_t low = -margin;
  const std::int64_t end = extent_ + margin;
  std::int64_t begin = place_ + (head > 0 ? 1 : 0);
  std::int64_t count = ToCount(pixels);
  const std::int64_t tailPlace = begin + count;
  if (direction_ == AreaDirection::columns && !isFirst_ && tailPlace >= end_) tail = 0;
  const std::int64_t before = Clamp(low - begin, 0, count);
  const std::int64_t after = Clamp(tailPlace - end, 0, count - before);
  AreaSpan span;
  span.head = head + static_cast<double>(before);
  span.tail = tail + static_cast<double>(after);
  span.headAt = static_cast<int>(Clamp(place_, low, end - 1));
  span.begin = static_cast<int>(Clamp(begin + before, low, end - 1));
  span.count = static_cast<int>(count - before - after);
  span.tailAt = static_cast<int>(Clamp(tailPlace, low, end - 1));
  isFirst_ = false;
  place_ = tailPlace;
  return span;
}

}  // namespace zov

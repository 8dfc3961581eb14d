// Single elements of the vector maths, one function after the other.
#include "signal/vm/special.h"

#include <math.h>

#include <cstdint>
#include <cstring>

namespace zov {

namespace {

constexpr double kHalfPi = 1.5707963267948966;
constexpr std::uint32_t kAbsMask = 0x7FFFFFFF;
constexpr std::uint32_t kInfinityBits = 0x7F800000;

std::uint32_t BitsOf(float x) {
  std::uint32_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  return bits;
}

float FloatOf(std::uint32_t bits) {
  float x;
  std::memcpy(&x, &bits, sizeof x);
  return x;
}

bool IsNaN(float x) { return (BitsOf(x) & kAbsMask) > kInfinityBits; }
bool IsNegative(float x) { return (BitsOf(x) >> 31) != 0; }
float Infinity() { return FloatOf(kInfinityBits); }

float DomainError(ZovStatus& status) {
  status = zovStsDomainWrn;
  return FloatOf(0xFFC00000);
}

// Zero, negative, infinite, NaN or denormal: log(x) * scale.
float SpecialLog(ZovStatus& status, float x, double scale) {
  if (IsNaN(x)) return x + x;
  if (x == 0.0F) {
    status = zovStsSingularityWrn;
    return -Infinity();
  }
  if (x < 0.0F) return DomainError(status);
  if (x == Infinity()) return x;
  return static_cast<float>(log(static_cast<double>(x)) * scale);
}

struct Angle {
  double rest;        // from -pi/4 to pi/4
  unsigned quadrant;  // of the multiple of pi/2 that was taken off, modulo 4
};

// Takes multiples of pi/2 off a finite angle of magnitude 2^-8 or more: the 24 bits of x times a
// window of 2/pi that begins at the bit whose product counts 2 and ends far below the smallest
// rest.
Angle ReduceAngle(float x) {
  // 2/pi, after a word of zeros for the window of the smallest exponents.
  static constexpr std::uint32_t kTwoOverPi[] = {0,          0xA2F9836E, 0x4E441529, 0xFC2757D1,
                                                 0xF534DDC0, 0xDB629599, 0x3C439041, 0xFE5163AB};
  const std::uint32_t bits = BitsOf(x);
  const std::uint32_t mantissa = (bits & 0x7FFFFF) | 0x800000;
  const int exponent = static_cast<int>((bits >> 23) & 0xFF) - 150;
  // The bit of weight 2^-k stands at place k + 31 of the table; the window begins at k = exponent
  // - 1.
  const unsigned place = static_cast<unsigned>(exponent + 30);
  const unsigned word = place / 32;
  const unsigned shift = place % 32;
  unsigned __int128 window = 0;
  for (unsigned i = 0; i < 4; ++i) {
    window = (window << 32) | (word + i < 8 ? kTwoOverPi[word + i] : 0);
  }
  window = (window << shift) >> 32;
  // In units of 2^-94 quarter turns, modulo 4.
  const std::uint64_t phase = static_cast<std::uint64_t>((window * mantissa) >> 32);
  const std::uint64_t quadrant = (phase + (std::uint64_t{1} << 61)) >> 62;
  const double rest =
      static_cast<double>(static_cast<std::int64_t>(phase - (quadrant << 62))) * 0x1p-62 * kHalfPi;
  if (bits >> 31) return {-rest, static_cast<unsigned>(4 - quadrant) & 3};
  return {rest, static_cast<unsigned>(quadrant) & 3};
}

// sin(rest + quadrant pi/2)
float SinOf(Angle angle) {
  const double y = angle.quadrant & 1 ? cos(angle.rest) : sin(angle.rest);
  return static_cast<float>(angle.quadrant & 2 ? -y : y);
}

}  // namespace

float SpecialLn(ZovStatus& status, float x) { return SpecialLog(status, x, 1.0); }
float SpecialLog10(ZovStatus& status, float x) {
  return SpecialLog(status, x, 0.43429448190325182);
}

float SpecialSin(ZovStatus& status, float x) {
  if (IsNaN(x)) return x + x;
  if (fabsf(x) == Infinity()) return DomainError(status);
  return SinOf(ReduceAngle(x));
}

float SpecialCos(ZovStatus& status, float x) {
  if (IsNaN(x)) return x + x;
  if (fabsf(x) == Infinity()) return DomainError(status);
  const Angle angle = ReduceAngle(x);
  return SinOf({angle.rest, (angle.quadrant + 1) & 3});
}

float SpecialTan(ZovStatus& status, float x) {
  if (IsNaN(x)) return x + x;
  if (fabsf(x) == Infinity()) return DomainError(status);
  const Angle angle = ReduceAngle(x);
  const double t = tan(angle.rest);
  return static_cast<float>(angle.quadrant & 1 ? -1.0 / t : t);
}

float SpecialArcSine(ZovStatus& status, float x) { return IsNaN(x) ? x + x : DomainError(status); }

float SpecialAtan(float x) {
  if (IsNaN(x)) return x + x;
  const double y = kHalfPi - 1.0 / fabs(static_cast<double>(x));
  return static_cast<float>(IsNegative(x) ? -y : y);
}

float SpecialAtan2(float y, float x) {
  if (IsNaN(x) || IsNaN(y)) return x + y;
  return static_cast<float>(atan2(static_cast<double>(y), static_cast<double>(x)));
}

namespace {

// The first magnitude at which sinh and cosh leave the range of a float.
constexpr std::uint32_t kHyperbolicLimit = 0x42B2D4FD;

// cosh(x) for large finite x, in which e^-x does not count.
float LargeCosh(ZovStatus& status, float x) {
  if ((BitsOf(x) & kAbsMask) >= kHyperbolicLimit) {
    status = zovStsOverflowWrn;
    return Infinity();
  }
  return static_cast<float>(0.5 * exp(fabs(static_cast<double>(x))));
}

}  // namespace

float SpecialSinh(ZovStatus& status, float x) {
  if (IsNaN(x)) return x + x;
  const float y = LargeCosh(status, x);
  return IsNegative(x) ? -y : y;
}

float SpecialCosh(ZovStatus& status, float x) {
  if (IsNaN(x)) return x + x;
  return LargeCosh(status, x);
}

float SpecialPow(ZovStatus& status, float x, float y) {
  if (x < 0.0F && fabsf(y) < Infinity() && truncf(y) != y) return DomainError(status);
  return static_cast<float>(pow(static_cast<double>(x), static_cast<double>(y)));
}

}  // namespace zov

// Floating-point arithmetic: every member over lengths, alignments and aliasing, then the special
// cases of each.
#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "signal/vector/elementwise_walk.h"

namespace zov::test {
namespace {

template <class T>
Member Binary(const char* name, std::function<ZovStatus(int, const T*, const T*, T*, int)> call,
              std::function<T(T, T)> reference) {
  return MemberOf(Elementwise<T, T, T>{name, false, call, reference, {AnyNumber<T>, AnyNumber<T>}});
}
template <class T>
Member BinaryInPlace(const char* name, std::function<ZovStatus(int, const T*, T*, int)> call,
                     std::function<T(T, T)> reference) {
  return MemberOf(Elementwise<T, T, T>{
      name,
      true,
      [=](int level, const T* a, const T*, T* b, int len) { return call(level, a, b, len); },
      reference,
      {AnyNumber<T>, AnyNumber<T>}});
}
template <class T>
Member Unary(const char* name, std::function<ZovStatus(int, const T*, T*, int)> call,
             std::function<T(T)> reference) {
  return MemberOf(Elementwise<T, T>{name, false, call, reference, {AnyNumber<T>}});
}
template <class T>
Member InPlace(const char* name, std::function<ZovStatus(int, T*, int)> call,
               std::function<T(T)> reference) {
  return MemberOf(
      Elementwise<T, T>{name,
                        true,
                        [=](int level, const T*, T* x, int len) { return call(level, x, len); },
                        reference,
                        {AnyNumber<T>}});
}

// A call of an export with the arrays and the length as they come.
#define ZOV_CALL(name) \
  [](int level, auto... arguments) { return ZOV_AT(level, name)(arguments...); }
// The same with a constant where the constant forms want it.
#define ZOV_CALL_C(name, val)                            \
  [](int level, const auto* pSrc, auto* pDst, int len) { \
    return ZOV_AT(level, name)(pSrc, val, pDst, len);    \
  }
#define ZOV_CALL_C_I(name, val) \
  [](int level, auto* pSrcDst, int len) { return ZOV_AT(level, name)(val, pSrcDst, len); }

// Sums and products of two floats are exact in double, or so close that one rounding decides; so
// are quotients and roots.
float Round(double x) { return static_cast<float>(x); }

float PositiveNumber(std::mt19937& random) { return std::fabs(AnyNumber<float>(random)); }

const Member kArithmetic[] = {
    Binary<float>("Add_32f", ZOV_CALL(zovsAdd_32f),
                  [](double a, double b) { return Round(a + b); }),
    BinaryInPlace<float>("Add_32f_I", ZOV_CALL(zovsAdd_32f_I),
                         [](double a, double b) { return Round(a + b); }),
    Binary<float>("Sub_32f", ZOV_CALL(zovsSub_32f),
                  [](double a, double b) { return Round(b - a); }),
    BinaryInPlace<float>("Sub_32f_I", ZOV_CALL(zovsSub_32f_I),
                         [](double a, double b) { return Round(b - a); }),
    Binary<float>("Mul_32f", ZOV_CALL(zovsMul_32f),
                  [](double a, double b) { return Round(a * b); }),
    BinaryInPlace<float>("Mul_32f_I", ZOV_CALL(zovsMul_32f_I),
                         [](double a, double b) { return Round(a * b); }),
    BinaryInPlace<double>("Mul_64f_I", ZOV_CALL(zovsMul_64f_I),
                          [](double a, double b) { return a * b; }),
    Binary<Zov64fc>("Mul_64fc", ZOV_CALL(zovsMul_64fc),
                    [](Zov64fc a, Zov64fc b) {
                      return Zov64fc{a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
                    }),
    MemberOf(Elementwise<float, float, float>{"Div_32f",
                                              false,
                                              ZOV_CALL(zovsDiv_32f),
                                              [](double a, double b) { return Round(b / a); },
                                              {AnyNumber<float>, AnyNumber<float>},
                                              2}),
    Unary<float>("AddC_32f", ZOV_CALL_C(zovsAddC_32f, 1.7F),
                 [](double a) { return Round(a + 1.7F); }),
    InPlace<float>("AddC_32f_I", ZOV_CALL_C_I(zovsAddC_32f_I, 1.7F),
                   [](double a) { return Round(a + 1.7F); }),
    InPlace<double>("AddC_64f_I", ZOV_CALL_C_I(zovsAddC_64f_I, 1.7),
                    [](double a) { return a + 1.7; }),
    Unary<float>("SubC_32f", ZOV_CALL_C(zovsSubC_32f, 1.7F),
                 [](double a) { return Round(a - 1.7F); }),
    InPlace<float>("SubC_32f_I", ZOV_CALL_C_I(zovsSubC_32f_I, 1.7F),
                   [](double a) { return Round(a - 1.7F); }),
    Unary<float>("SubCRev_32f", ZOV_CALL_C(zovsSubCRev_32f, 1.7F),
                 [](double a) { return Round(1.7F - a); }),
    Unary<float>("MulC_32f", ZOV_CALL_C(zovsMulC_32f, 1.7F),
                 [](double a) { return Round(a * 1.7F); }),
    InPlace<float>("MulC_32f_I", ZOV_CALL_C_I(zovsMulC_32f_I, 1.7F),
                   [](double a) { return Round(a * 1.7F); }),
    InPlace<double>("MulC_64f_I", ZOV_CALL_C_I(zovsMulC_64f_I, 1.7),
                    [](double a) { return a * 1.7; }),
    Unary<float>("DivC_32f", ZOV_CALL_C(zovsDivC_32f, 3.0F),
                 [](double a) { return Round(a * Round(1.0 / 3.0)); }),
    InPlace<float>("DivC_32f_I", ZOV_CALL_C_I(zovsDivC_32f_I, 3.0F),
                   [](double a) { return Round(a * Round(1.0 / 3.0)); }),
    Unary<float>("DivCRev_32f", ZOV_CALL_C(zovsDivCRev_32f, 1.7F),
                 [](double a) { return Round(1.7F / a); }),
    InPlace<float>("DivCRev_32f_I", ZOV_CALL_C_I(zovsDivCRev_32f_I, 1.7F),
                   [](double a) { return Round(1.7F / a); }),
    Unary<float>("Abs_32f", ZOV_CALL(zovsAbs_32f), [](float a) { return std::fabs(a); }),
    InPlace<float>("Abs_32f_I", ZOV_CALL(zovsAbs_32f_I), [](float a) { return std::fabs(a); }),
    InPlace<float>("Sqr_32f_I", ZOV_CALL(zovsSqr_32f_I), [](double a) { return Round(a * a); }),
    MemberOf(Elementwise<float, float>{"Sqrt_32f",
                                       false,
                                       ZOV_CALL(zovsSqrt_32f),
                                       [](double a) { return Round(std::sqrt(a)); },
                                       {PositiveNumber},
                                       4}),
    MemberOf(Elementwise<float, Zov32fc>{"Magnitude_32fc",
                                         false,
                                         ZOV_CALL(zovsMagnitude_32fc),
                                         [](Zov32fc z) {
                                           const float re = z.re * z.re;
                                           const float im = z.im * z.im;
                                           return std::sqrt(re + im);
                                         },
                                         {AnyNumber<Zov32fc>}}),
    MemberOf(Elementwise<double, Zov64fc>{
        "Magnitude_64fc",
        false,
        ZOV_CALL(zovsMagnitude_64fc),
        [](Zov64fc z) { return std::sqrt(z.re * z.re + z.im * z.im); },
        {AnyNumber<Zov64fc>}}),
    MemberOf(Elementwise<float, Zov32fc>{"Phase_32fc",
                                         false,
                                         ZOV_CALL(zovsPhase_32fc),
                                         [](Zov32fc z) { return std::atan2(z.im, z.re); },
                                         {AnyNumber<Zov32fc>}}),
};

class Arithmetic : public ::testing::TestWithParam<Member> {};
TEST_P(Arithmetic, LengthsAlignmentsAndAliases) { GetParam().walk(); }
TEST_P(Arithmetic, StatusesInOrder) { GetParam().statuses(); }
INSTANTIATE_TEST_SUITE_P(Members, Arithmetic, ::testing::ValuesIn(kArithmetic),
                         [](const auto& param) { return param.param.name; });

constexpr float kInfinity = std::numeric_limits<float>::infinity();
const float kNan = FloatOf(0x7FC12345U);
const float kSignallingNan = FloatOf(0x7F812345U);
constexpr std::uint32_t kDefaultNan = 0xFFC00000;
std::uint32_t Bits(float x) { return std::bit_cast<std::uint32_t>(x); }

// Runs body(position) for places of a special element in the head, the blocks and the tail.
constexpr int kLength = 83;
template <class Body>
void ForEachPlace(Body body) {
  for (int place : {0, 1, 2, 3, 7, 8, 15, 16, 31, 40, 63, 64, 71, 72, 79, 80, 82}) {
    SCOPED_TRACE("place " + std::to_string(place));
    body(place);
  }
}

// A constant of 0 or 1 must not touch the elements by arithmetic: a signalling NaN stays one.
TEST(ArithmeticConstants, ShortCuts) {
  const std::vector<float> odd = {kInfinity, kSignallingNan, -0.0F, 1.0F, -kInfinity, kNan};
  const int n = static_cast<int>(odd.size());
  const auto bits = [](const std::vector<float>& x) {
    std::vector<std::uint32_t> b;
    for (const float value : x) b.push_back(Bits(value));
    return b;
  };
  const std::vector<float> zeros(odd.size(), 0.0F);
  ForEachLevel([&](int level) {
    std::vector<float> dst(odd.size());
    const auto outOfPlace = [&](auto function, float val, const std::vector<float>& expected) {
      dst.assign(odd.size(), 5.0F);
      EXPECT_EQ(function(odd.data(), val, dst.data(), n), zovStsNoErr);
      EXPECT_EQ(bits(dst), bits(expected));
    };
    const auto inPlace = [&](auto function, float val, const std::vector<float>& expected) {
      dst = odd;
      EXPECT_EQ(function(val, dst.data(), n), zovStsNoErr);
      EXPECT_EQ(bits(dst), bits(expected));
    };
    for (const float zero : {0.0F, -0.0F}) {
      outOfPlace(ZOV_AT(level, zovsAddC_32f), zero, odd);
      outOfPlace(ZOV_AT(level, zovsSubC_32f), zero, odd);
      outOfPlace(ZOV_AT(level, zovsMulC_32f), zero, zeros);
      inPlace(ZOV_AT(level, zovsAddC_32f_I), zero, odd);
      inPlace(ZOV_AT(level, zovsSubC_32f_I), zero, odd);
      inPlace(ZOV_AT(level, zovsMulC_32f_I), zero, zeros);
    }
    outOfPlace(ZOV_AT(level, zovsMulC_32f), 1, odd);
    outOfPlace(ZOV_AT(level, zovsDivC_32f), 1, odd);
    inPlace(ZOV_AT(level, zovsMulC_32f_I), 1, odd);
    inPlace(ZOV_AT(level, zovsDivC_32f_I), 1, odd);
    // The reciprocal of an infinity is a zero.
    outOfPlace(ZOV_AT(level, zovsDivC_32f), -kInfinity, zeros);
    inPlace(ZOV_AT(level, zovsDivC_32f_I), kInfinity, zeros);

    double wide[] = {HUGE_VAL, std::bit_cast<double>(0x7FF0000000000001U), -0.0};
    std::uint64_t before[3], after[3];
    std::memcpy(before, wide, sizeof wide);
    EXPECT_EQ(ZOV_AT(level, zovsAddC_64f_I)(-0.0, wide, 3), zovStsNoErr);
    EXPECT_EQ(ZOV_AT(level, zovsMulC_64f_I)(1.0, wide, 3), zovStsNoErr);
    std::memcpy(after, wide, sizeof wide);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(after[i], before[i]);
    EXPECT_EQ(ZOV_AT(level, zovsMulC_64f_I)(-0.0, wide, 3), zovStsNoErr);
    std::memcpy(after, wide, sizeof wide);
    for (const std::uint64_t x : after) EXPECT_EQ(x, 0U);
  });
}

TEST(ArithmeticConstants, OthersAreOrdinaryNumbers) {
  ForEachLevel([](int level) {
    float x[] = {-0.0F, 2.0F, kInfinity};
    float y[3];
    ASSERT_EQ(ZOV_AT(level, zovsSubCRev_32f)(x, 0.0F, y, 3), zovStsNoErr);
    EXPECT_EQ(Bits(y[0]), 0U);
    EXPECT_EQ(y[1], -2.0F);
    ASSERT_EQ(ZOV_AT(level, zovsMulC_32f)(x, kNan, y, 3), zovStsNoErr);
    for (const float value : y) EXPECT_TRUE(std::isnan(value));
    ASSERT_EQ(ZOV_AT(level, zovsAddC_32f)(x, kNan, y, 3), zovStsNoErr);
    for (const float value : y) EXPECT_TRUE(std::isnan(value));
  });
}

TEST(ArithmeticConstants, ZeroDivisorComesAfterPointersAndLength) {
  ForEachLevel([](int level) {
    float x[1] = {3};
    float y[1] = {4};
    for (const float zero : {0.0F, -0.0F}) {
      EXPECT_EQ(ZOV_AT(level, zovsDivC_32f)(nullptr, zero, y, 1), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsDivC_32f)(x, zero, y, 0), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsDivC_32f)(x, zero, y, 1), zovStsDivByZeroErr);
      EXPECT_EQ(ZOV_AT(level, zovsDivC_32f_I)(zero, nullptr, 1), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsDivC_32f_I)(zero, y, 0), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsDivC_32f_I)(zero, y, 1), zovStsDivByZeroErr);
    }
    EXPECT_EQ(y[0], 4.0F);
  });
}

// What a zero divisor of either sign makes of a dividend.
std::uint32_t OverZero(float dividend) {
  if (dividend > 0) return Bits(kInfinity);
  if (dividend < 0) return Bits(-kInfinity);
  return kDefaultNan;
}

TEST(Division, ZeroDivisorsFollowTheDividendAlone) {
  ForEachLevel([](int level) {
    for (const float zero : {0.0F, -0.0F}) {
      for (const float dividend : {3.0F, -3.0F, 0.0F, -0.0F, kNan, -kNan, kInfinity, -kInfinity}) {
        ForEachPlace([&](int place) {
          std::vector<float> a(kLength, 4.0F), b(kLength, 10.0F), q(kLength);
          a[place] = zero;
          b[place] = dividend;
          ASSERT_EQ(ZOV_AT(level, zovsDiv_32f)(a.data(), b.data(), q.data(), kLength),
                    zovStsDivByZeroWrn);
          ASSERT_EQ(Bits(q[place]), OverZero(dividend)) << dividend << " / " << zero;
          for (int i = 0; i < kLength; ++i) {
            if (i != place) {
              ASSERT_LE(UlpsBetween(q[i], 2.5F), 2) << i;
            }
          }
          // The dividend is the constant now, and a zero counts as +0.
          const ZovStatus status =
              ZOV_AT(level, zovsDivCRev_32f)(a.data(), dividend, q.data(), kLength);
          ASSERT_EQ(status, zovStsDivByZeroWrn);
          ASSERT_EQ(Bits(q[place]), OverZero(dividend)) << dividend << " / " << zero;
          const float other = dividend == 0 ? 0.0F : dividend / 4.0F;
          ASSERT_EQ(Bits(q[place == 0 ? 1 : 0]), Bits(other));
          ASSERT_EQ(ZOV_AT(level, zovsDivCRev_32f_I)(dividend, a.data(), kLength),
                    zovStsDivByZeroWrn);
          ASSERT_EQ(Bits(a[place]), OverZero(dividend));
        });
      }
    }
  });
}

// Divisors whose reciprocal is no normal number, quotients at both ends of the range, infinities
// and NaNs: never more than the last bits away from the exact quotient, and no warning.
TEST(Division, ExtremesAreExact) {
  const float extremes[] = {1e-45F,  1.1e-38F, 1.2e-38F, 3e-30F, 1.5F,      3e37F,
                            8.6e37F, 1.7e38F,  3.4e38F,  1e-20F, kInfinity, kNan};
  ForEachLevel([&](int level) {
    for (const float a : extremes) {
      for (const float b : extremes) {
        for (const float sign : {1.0F, -1.0F}) {
          const std::vector<float> divisor(kLength, a), dividend(kLength, sign * b);
          std::vector<float> q(kLength);
          ASSERT_EQ(ZOV_AT(level, zovsDiv_32f)(divisor.data(), dividend.data(), q.data(), kLength),
                    zovStsNoErr);
          const float exact = Round(static_cast<double>(dividend[0]) / a);
          for (const float value : q) {
            if (std::isnan(exact)) {
              ASSERT_TRUE(std::isnan(value)) << sign * b << " / " << a;
            } else {
              ASSERT_EQ(std::signbit(value), std::signbit(exact));
              ASSERT_LE(UlpsBetween(value, exact), level == 0 ? 0 : 2) << sign * b << " / " << a;
            }
          }
        }
      }
    }
  });
}

// The largest difference from the exact quotient and root over dense numbers, and no misaligned
// array with any.
TEST(Division, WithinTwoUnits) {
  std::mt19937 random(7);
  constexpr int kCount = 1 << 20;
  std::vector<float> a(kCount), b(kCount), q(kCount + 1);
  for (int i = 0; i < kCount; ++i) {
    a[i] = FloatOf(0x3F800000U + (random() & 0x7FFFFF));
    b[i] = FloatOf(0x3F800000U + (random() & 0x7FFFFF));
  }
  ForEachLevel([&](int level) {
    const auto worst = [&](const void* quotients, int count) {
      std::int64_t ulps = 0;
      for (int i = 0; i < count; ++i) {
        float x;
        std::memcpy(&x, static_cast<const char*>(quotients) + 4 * i, 4);
        ulps = std::max(ulps, UlpsBetween(x, Round(double{b[i]} / a[i])));
      }
      return ulps;
    };
    ASSERT_EQ(ZOV_AT(level, zovsDiv_32f)(a.data(), b.data(), q.data(), kCount), zovStsNoErr);
    EXPECT_LE(worst(q.data(), kCount), level == 0 ? 0 : 2);
    auto* const misaligned = reinterpret_cast<float*>(reinterpret_cast<char*>(q.data()) + 1);
    ASSERT_EQ(ZOV_AT(level, zovsDiv_32f)(a.data(), b.data(), misaligned, 1000), zovStsNoErr);
    EXPECT_EQ(worst(misaligned, 1000), 0);
  });
}

TEST(SquareRoot, WithinFourUnits) {
  constexpr int kCount = 1 << 20;
  std::vector<float> x(kCount), y(kCount);
  std::mt19937 random(9);
  for (float& value : x) value = FloatOf(0x3F800000U + (random() & 0xFFFFFF));
  ForEachLevel([&](int level) {
    ASSERT_EQ(ZOV_AT(level, zovsSqrt_32f)(x.data(), y.data(), kCount), zovStsNoErr);
    std::int64_t worst = 0;
    for (int i = 0; i < kCount; ++i) {
      worst = std::max(worst, UlpsBetween(y[i], Round(std::sqrt(double{x[i]}))));
    }
    EXPECT_LE(worst, level == 0 ? 0 : 4);
  });
}

TEST(SquareRoot, SpecialElements) {
  struct Case {
    float x;
    std::uint32_t root, rootAtLevel0;
    bool negative, negativeAtLevel0;
  };
  const std::uint32_t quiet = 0x7FC12345, negativeQuiet = 0xFFC12345;
  const Case cases[] = {
      {-0.0F, 0x80000000, 0x80000000, false, false},
      {0.0F, 0, 0, false, false},
      {kInfinity, Bits(kInfinity), Bits(kInfinity), false, false},
      {-kInfinity, kDefaultNan, kDefaultNan, true, true},
      {-4.0F, kDefaultNan, kDefaultNan, true, true},
      {-1e-45F, kDefaultNan, kDefaultNan, true, true},
      {kNan, quiet, kDefaultNan, false, true},
      {-kNan, negativeQuiet, kDefaultNan, false, true},
      {kSignallingNan, quiet, kDefaultNan, false, true},
      {std::ldexp(1.0F, -148), Bits(std::ldexp(1.0F, -74)), Bits(std::ldexp(1.0F, -74)), false,
       false},
  };
  ForEachLevel([&](int level) {
    for (const Case& c : cases) {
      ForEachPlace([&](int place) {
        std::vector<float> x(kLength, 9.0F), y(kLength);
        x[place] = c.x;
        const bool negative = level == 0 ? c.negativeAtLevel0 : c.negative;
        ASSERT_EQ(ZOV_AT(level, zovsSqrt_32f)(x.data(), y.data(), kLength),
                  negative ? zovStsSqrtNegArgWrn : zovStsNoErr);
        ASSERT_EQ(Bits(y[place]), level == 0 ? c.rootAtLevel0 : c.root);
        for (int i = 0; i < kLength; ++i) {
          if (i != place) {
            ASSERT_LE(UlpsBetween(y[i], 3.0F), 4) << i;
          }
        }
      });
    }
  });
}

// Above level 0 no exception traps and none leaves its flag, whatever the register held before.
TEST(SquareRoot, LeavesMxcsrAsItWas) {
  const unsigned before = _mm_getcsr();
  for (int level = 1; level <= zovDispatchIndex; ++level) {
    // Every place of a block: some of its vectors go to the hardware's square root.
    for (int place = 0; place < 4 * 33; ++place) {
      constexpr float kSpecial[] = {2.0F, 0.0F, -4.0F, 1e-40F};
      const float special = kSpecial[place % 4];
      std::vector<float> x(kLength, 3.0F), y(kLength);
      x[place / 4] = special;
      for (const unsigned csr : {0x1F80U, 0x1FA0U, 0x1F9FU, 0x0020U, 0x0000U}) {
        _mm_setcsr(csr);
        ZOV_AT(level, zovsSqrt_32f)(x.data(), y.data(), kLength);
        const unsigned after = _mm_getcsr();
        _mm_setcsr(before);
        ASSERT_EQ(after, csr) << "level " << level << " element " << special << " at " << place / 4;
      }
    }
  }
}

// In the caller's rounding mode, whatever the route.
TEST(Division, RoundsAsTheCallerDoes) {
  const unsigned before = _mm_getcsr();
  constexpr int kCount = 300;
  std::vector<float> a(kCount), q(kCount), expected(kCount);
  for (int i = 0; i < kCount; ++i) a[i] = static_cast<float>(i + 1);
  ForEachLevel([&](int level) {
    for (const unsigned mode : {0x0000U, 0x2000U, 0x4000U, 0x6000U}) {
      _mm_setcsr(before | mode);
      ZOV_AT(level, zovsDivCRev_32f)(a.data(), 6.0F, q.data(), kCount);
      for (int i = 0; i < kCount; ++i)
        _mm_store_ss(&expected[i], _mm_div_ss(_mm_set_ss(6.0F), _mm_load_ss(&a[i])));
      _mm_setcsr(before);
      ASSERT_EQ(q, expected) << "level " << level << " mode " << mode;
    }
  });
}

// Every mantissa as a divisor: a quotient keeps the division's last bit however it is formed. The
// longest reciprocal and the dividends of 1 are where a refinement would lose it.
TEST(Division, ByEachMantissaIsExact) {
  constexpr int kChunk = 1 << 16;
  std::vector<float> a(kChunk), q(kChunk);
  ForEachLevel([&](int level) {
    if (level > 0 && level < 6) return;  // one kernel in several widths
    for (const float dividend : {1.0F, -1.7F}) {
      for (int start = (1 << 23) - kChunk; start >= 0; start -= kChunk) {
        for (int i = 0; i < kChunk; ++i) a[i] = std::bit_cast<float>(0x3F800000 + start + i);
        ASSERT_EQ(ZOV_AT(level, zovsDivCRev_32f)(a.data(), dividend, q.data(), kChunk),
                  zovStsNoErr);
        for (int i = 0; i < kChunk; ++i) ASSERT_EQ(q[i], dividend / a[i]) << a[i];
      }
    }
  });
}

TEST(ComplexToReal, MagnitudeIsTheRootOfTheRoundedSum) {
  constexpr int kCount = 1 << 18;
  std::vector<Zov32fc> z(kCount);
  std::vector<float> size(kCount);
  std::mt19937 random(5);
  for (int k = 0; k < kCount; ++k) {
    const int exponent = static_cast<int>(random() % 120) - 60;
    z[k].re = std::ldexp(static_cast<float>(random() >> 8), exponent);
    z[k].im = k % 3 == 0 ? 0 : std::ldexp(static_cast<float>(random() >> 8), exponent - k % 9);
  }
  // Sums just below a power of four, whose roots lie next to the middle of two numbers.
  for (int k = 0; k < kCount; k += 64) z[k] = {1.41421354F, 1.41421342F + 1.2e-7F * (k % 4)};
  ForEachLevel([&](int level) {
    ASSERT_EQ(ZOV_AT(level, zovsMagnitude_32fc)(z.data(), size.data(), kCount), zovStsNoErr);
    for (int k = 0; k < kCount; ++k) {
      ASSERT_EQ(size[k], std::sqrt(z[k].re * z[k].re + z[k].im * z[k].im)) << k;
    }
  });
}

TEST(ComplexToReal, SpecialElements) {
  ForEachLevel([](int level) {
    const Zov32fc z[] = {{-0.0F, -0.0F}, {-0.0F, 0.0F}, {0.0F, -0.0F},
                         {-1.0F, -0.0F}, {3e38F, 1.0F}, {-kInfinity, kNan}};
    float phase[6], magnitude[6];
    ASSERT_EQ(ZOV_AT(level, zovsPhase_32fc)(z, phase, 6), zovStsNoErr);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Bits(phase[i]), 0U) << i;
    EXPECT_EQ(phase[3], -3.14159274F);
    // No guard against overflow, and none of the conventions of hypot.
    ASSERT_EQ(ZOV_AT(level, zovsMagnitude_32fc)(z, magnitude, 6), zovStsNoErr);
    EXPECT_EQ(magnitude[4], kInfinity);
    EXPECT_TRUE(std::isnan(magnitude[5]));
  });
}

}  // namespace
}  // namespace zov::test

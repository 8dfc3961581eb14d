// Logarithm, exponential and arc tangent without an accuracy class, against double precision, with
// what differs between the lowest level and the others.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
float FloatOf(std::uint32_t bits) { return std::bit_cast<float>(bits); }
std::uint32_t BitsOf(float x) { return std::bit_cast<std::uint32_t>(x); }
const float kSignallingNaN = FloatOf(0x7FA00000);

std::vector<float> Sample() {
  std::mt19937 random(1);
  std::vector<float> x;
  for (std::uint32_t top = 0; top < 512; ++top) {
    for (int i = 0; i < 60; ++i) x.push_back(FloatOf((top << 23) | (random() & 0x7FFFFF)));
  }
  for (float edge = -110; edge < 95; edge += 0.37F) x.push_back(edge);
  return x;
}

// Relative error, against the smallest normal number for a denormal value.
double ErrorOf(float result, double exact) {
  if (std::fabs(exact) >= 0x1.ffffffp127) return std::isinf(result) ? 0 : 1;
  const double scale = std::fmax(std::fabs(exact), 0x1p-126);
  return std::fabs(static_cast<double>(result) - exact) / scale;
}

TEST(Elementary, ValuesKeepTheirAccuracy) {
  const std::vector<float> x = Sample();
  std::vector<float> y(x.size());
  const int n = static_cast<int>(x.size());
  ForEachLevel([&](int level) {
    // Double precision, rounded, at the lowest level. Above, 21 bits for two, and for the arc
    // tangent less than two roundings.
    const double bound = level == 0 ? 0x1.01p-24 : 0x1p-21;
    ZOV_AT(level, zovsLn_32f)(x.data(), y.data(), n);
    for (std::size_t i = 0; i < x.size(); ++i) {
      if (!(x[i] > 0) || std::isnan(x[i])) continue;
      ASSERT_LE(ErrorOf(y[i], std::log(double{x[i]})), bound) << "ln " << x[i];
    }
    EXPECT_EQ(ZOV_AT(level, zovsExp_32f)(x.data(), y.data(), n), zovStsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i) {
      if (std::isnan(x[i])) continue;
      const double exact = level == 0 && x[i] < -87.33654F ? 0.0 : std::exp(double{x[i]});
      // The quotient of cubics is good to 2^-24 by itself.
      ASSERT_LE(ErrorOf(y[i], exact), level == 0 ? 0x1p-22 : bound) << "exp " << x[i];
    }
    EXPECT_EQ(ZOV_AT(level, zovsArctan_32f)(x.data(), y.data(), n), zovStsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i) {
      if (std::isnan(x[i])) continue;
      ASSERT_LE(ErrorOf(y[i], std::atan(double{x[i]})), level == 0 ? 0x1.2p-24 : 0x1p-23)
          << "atan " << x[i];
    }
  });
}

TEST(Elementary, FirstOrLastBadElementOfTheLogarithmDecides) {
  ForEachLevel([&](int level) {
    const auto ln = ZOV_AT(level, zovsLn_32f);
    const bool first = level == 0;
    for (const std::size_t before : {0U, 16U, 21U}) {
      std::vector<float> x(before, 1.0F), y(before + 3);
      x.insert(x.end(), {-1.0F, 2.0F, 0.0F});
      const int n = static_cast<int>(x.size());
      EXPECT_EQ(ln(x.data(), y.data(), n), first ? zovStsLnNegArgWrn : zovStsLnZeroArgWrn);
      EXPECT_TRUE(std::isnan(y[before]));
      EXPECT_EQ(y[before + 2], -kInf);
      std::swap(x[before], x[before + 2]);
      EXPECT_EQ(ln(x.data(), y.data(), n), first ? zovStsLnZeroArgWrn : zovStsLnNegArgWrn);
    }
    const float x[] = {-0.0F, std::numeric_limits<float>::quiet_NaN(), kInf};
    float y[3];
    EXPECT_EQ(ln(x, y, 3), first ? zovStsLnNegArgWrn : zovStsLnZeroArgWrn);
    if (first) {
      EXPECT_EQ(BitsOf(y[0]), 0xFFC00000U);
    } else {
      EXPECT_EQ(y[0], -kInf);
    }
    EXPECT_TRUE(std::isnan(y[1]));
    EXPECT_EQ(y[2], kInf);
    const float negativeNaN = FloatOf(0xFFC00001);
    EXPECT_EQ(ln(&negativeNaN, y, 1), first ? zovStsLnNegArgWrn : zovStsNoErr);
    EXPECT_TRUE(std::isnan(y[0]));
  });
}

TEST(Elementary, SpecialValuesOfTheExponential) {
  const float x[] = {1e-40F,
                     -1e-40F,
                     0.0F,
                     -88.0F,
                     -kInf,
                     kInf,
                     89.0F,
                     88.7F,
                     -87.33F,
                     1.0F,
                     FloatOf(0x7FC00001),
                     FloatOf(0xFFC00001),
                     kSignallingNaN,
                     FloatOf(0xFFA00000),
                     FloatOf(0xC2AEAC4F),
                     FloatOf(0xC2AEAC50),
                     FloatOf(0x42B17217),
                     FloatOf(0x42B17218)};
  constexpr int kCount = 18;
  ForEachLevel([&](int level) {
    float y[kCount];
    for (const int step : {1, kCount}) {  // one by one, and together
      for (int i = 0; i < kCount; i += step) {
        EXPECT_EQ(ZOV_AT(level, zovsExp_32f)(x + i, y + i, step), zovStsNoErr);
      }
      if (level == 0) {
        EXPECT_EQ(y[0], 1.0F);
        EXPECT_EQ(y[1], 1.0F);
        EXPECT_EQ(y[3], 0.0F);
        EXPECT_EQ(BitsOf(y[10]), 0x7FC00001U);
        EXPECT_EQ(BitsOf(y[11]), 0xFFC00000U);
        EXPECT_EQ(y[12], kInf);
        EXPECT_EQ(BitsOf(y[13]), 0U);
        EXPECT_EQ(BitsOf(y[15]), 0U);
      } else {
        EXPECT_NEAR(y[0], 1.0F, 2e-7);
        EXPECT_NEAR(y[3] / 0x1p-126F, std::exp(-88.0) / 0x1p-126, 1e-6);
        for (const int i : {10, 11, 12, 13}) EXPECT_TRUE(BitsOf(y[i] * 0.0F) & 0x400000) << i;
        EXPECT_GT(y[15], 0.0F);
      }
      EXPECT_GE(y[14], 0x1p-126F);
      EXPECT_TRUE(y[16] > 3.4e38F && y[16] < kInf);
      EXPECT_EQ(y[17], kInf);
      EXPECT_EQ(y[2], 1.0F);
      EXPECT_EQ(BitsOf(y[4]), 0U);
      EXPECT_EQ(y[5], kInf);
      EXPECT_EQ(y[6], kInf);
    }
  });
}

TEST(Elementary, SpecialValuesOfTheArcTangent) {
  const float x[] = {kInf,
                     -kInf,
                     kSignallingNaN,
                     FloatOf(0xFFA00000),
                     FloatOf(0x7FC12345),
                     FloatOf(0xFFC12345),
                     -0.0F,
                     0.0F,
                     3.0F};
  const std::uint32_t expected[] = {0x3FC90FDB, 0xBFC90FDB, 0x3FC90FDB, 0xBFC90FDB,
                                    0x7FC00000, 0xFFC00000, 0,          0};
  ForEachLevel([&](int level) {
    float y[9];
    for (const int step : {1, 9}) {
      for (int i = 0; i < 9; i += step) {
        EXPECT_EQ(ZOV_AT(level, zovsArctan_32f)(x + i, y + i, step), zovStsNoErr);
      }
      for (int i = 0; i < 8; ++i) EXPECT_EQ(BitsOf(y[i]), expected[i]) << i;
    }
  });
}

TEST(Elementary, LengthsPlacesAndMemory) {
  constexpr std::size_t kMost = 37;
  GuardedArray<float> source(kMost), destination(kMost);
  std::vector<float> x(kMost);
  for (std::size_t i = 0; i < kMost; ++i) x[i] = static_cast<float>(i) * 0.3F + 0.1F;
  x[9] = -0.0F;
  x[20] = kInf;
  ForEachLevel([&](int level) {
    for (const auto routine :
         {ZOV_AT(level, zovsLn_32f), ZOV_AT(level, zovsExp_32f), ZOV_AT(level, zovsArctan_32f)}) {
      EXPECT_EQ(routine(nullptr, nullptr, 0), zovStsNullPtrErr);
      EXPECT_EQ(routine(x.data(), x.data(), 0), zovStsSizeErr);
      for (std::size_t n = 1; n <= kMost; ++n) {
        for (const Guard guard : kGuards) {
          float* const src = source.At(n, guard);
          float* const dst = destination.At(n, guard);
          std::memcpy(src, x.data(), n * sizeof(float));
          destination.Fill(0x5A);
          const ZovStatus status = routine(src, dst, static_cast<int>(n));
          ASSERT_TRUE(destination.UntouchedOutside(dst, n, 0x5A));
          EXPECT_EQ(routine(src, src, static_cast<int>(n)), status);
          ASSERT_EQ(std::memcmp(src, dst, n * sizeof(float)), 0);
        }
      }
    }
  });
}

}  // namespace
}  // namespace zov::test

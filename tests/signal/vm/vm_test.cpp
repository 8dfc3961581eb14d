// The vector maths: accuracy on a sample of every exponent, special values and statuses, the
// floating-point environment, lengths and memory.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "signal/vm/kernels.h"
#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
const float kNaN = std::numeric_limits<float>::quiet_NaN();

float FloatOf(std::uint32_t bits) { return std::bit_cast<float>(bits); }
std::uint32_t BitsOf(float x) { return std::bit_cast<std::uint32_t>(x); }

// Whether the C library's own function serves as a reference. That of Windows leaves the reduction
// of large angles to the x87 unit, which has 66 bits of pi and gives up at 2^63.
bool IsReferenceGood([[maybe_unused]] const UnaryFunction& function, [[maybe_unused]] float x) {
#ifdef _WIN32
  const std::string name = function.name;
  if (name == "Sin" || name == "Cos" || name == "Tan") return !(std::fabs(x) > 10000.0F);
#endif
  return true;
}

// Random fractions for every exponent and both signs, and each limit of a kernel with the numbers
// around it.
std::vector<float> SampledArguments() {
  std::mt19937 random(1);
  std::vector<float> x;
  for (std::uint32_t top = 0; top < 512; ++top) {
    const int count = top % 256 > 96 && top % 256 < 144 ? 200 : 24;
    for (int i = 0; i < count; ++i) x.push_back(FloatOf((top << 23) | (random() & 0x7FFFFF)));
  }
  for (const float edge :
       {0.0F,        0.5F,       1.0F,       2.0F,          5.2F,       20.0F,
        87.0F,       87.33655F,  88.722839F, 89.415993F,    103.27894F, 103.97208F,
        160.0F,      10000.0F,   0x1p64F,    1.5707964F,    3.1415927F, 0.34657359F,
        0.70710678F, 1.4142135F, 0x1p-126F,  3.4028235e38F, kInf}) {
    for (int step = -3; step <= 3; ++step) {
      const float at = FloatOf(BitsOf(edge) + static_cast<std::uint32_t>(step));
      x.push_back(at);
      x.push_back(-at);
    }
  }
  // The angles next to multiples of pi/2, where the reduction has the most to lose.
  for (int n = 1; n <= 6366; ++n) x.push_back(static_cast<float>(n * 1.5707963267948966));
  // A last block that is not whole.
  while (x.size() % 16 != 5) x.push_back(0.75F);
  return x;
}

TEST(VectorMaths, EveryUnaryKernelKeepsItsClass) {
  const std::vector<float> x = SampledArguments();
  std::vector<float> y(x.size());
  std::vector<double> exact(x.size());
  for (const UnaryFunction& function : kUnaryFunctions) {
    for (std::size_t i = 0; i < x.size(); ++i) exact[i] = function.reference(x[i]);
    ForEachLevel([&](int level) {
      for (int c = 0; c < 3; ++c) {
        SCOPED_TRACE(std::string(function.name) + " " + kClasses[c].name);
        KernelOf(*function.row[level], c)(x.data(), y.data(), static_cast<int>(x.size()));
        WorstError worst;
        for (std::size_t i = 0; i < x.size(); ++i) {
          if (IsReferenceGood(function, x[i])) worst.Add(y[i], exact[i], x[i]);
        }
        EXPECT_TRUE(worst.Within(kClasses[c]))
            << "relative " << worst.relative << " units " << worst.units << " at " << worst.at
            << (worst.wrong ? ", wrong kind of value at " : "") << worst.wrongAt;
      }
    });
  }
}

// Pairs from all exponents, from the common range, with bases near one, with integer and
// half-integer exponents, and with results at the ends of the range.
void FillPairs(std::vector<float>& x, std::vector<float>& y) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = FloatOf(static_cast<std::uint32_t>(random()));
    y[i] = FloatOf(static_cast<std::uint32_t>(random()));
    const double power = unit(random) * 310 - 160;
    if (i % 5 == 1) y[i] = static_cast<float>(power / std::log2(std::fabs(double{x[i]})));
    if (i % 5 == 2) {
      x[i] = FloatOf(0x3F7C0000 + (static_cast<std::uint32_t>(random()) & 0x7FFFF));
      y[i] = static_cast<float>(power / std::log2(double{x[i]}));
    }
    if (i % 5 == 3) y[i] = static_cast<float>(static_cast<int>(random() % 129) - 64) / 2;
    if (i % 5 == 4) {
      x[i] = static_cast<float>(unit(random) * 20 - 10);
      y[i] = static_cast<float>(unit(random) * 20 - 10);
    }
  }
  const float values[] = {0.0F, 0x1p-149F, 0x1p-126F, 0.5F,    1.0F,    1.5F, 2.0F,
                          3.0F, 0x1p24F,   0x1p62F,   0x1p63F, 3.4e38F, kInf, kNaN};
  std::size_t at = 0;
  for (const float a : values) {
    for (const float b : values) {
      for (const int signs : {0, 1, 2, 3}) {
        x[at] = signs & 1 ? -a : a;
        y[at] = signs & 2 ? -b : b;
        ++at;
      }
    }
  }
}

TEST(VectorMaths, EveryBinaryKernelKeepsItsClass) {
  std::vector<float> x(100003), y(x.size()), result(x.size());
  std::vector<double> exact(x.size());
  FillPairs(x, y);
  for (const BinaryFunction& function : kBinaryFunctions) {
    const bool power = std::string(function.name) == "Pow";
    bool domain = false;
    for (std::size_t i = 0; i < x.size(); ++i) {
      // Negative infinity is no exception, though it is one to the C function.
      const bool noReal = power && x[i] < 0 && std::trunc(y[i]) != y[i] && !std::isnan(y[i]);
      exact[i] = noReal ? NAN : function.reference(x[i], y[i]);
      domain = domain || noReal;
    }
    ForEachLevel([&](int level) {
      for (int c = 0; c < 3; ++c) {
        SCOPED_TRACE(std::string(function.name) + " " + kClasses[c].name);
        const ZovStatus status = KernelOf(*function.row[level], c)(
            x.data(), y.data(), result.data(), static_cast<int>(x.size()));
        EXPECT_EQ(status, domain ? zovStsDomainWrn : zovStsNoErr);
        WorstError worst;
        for (std::size_t i = 0; i < x.size(); ++i) worst.Add(result[i], exact[i], x[i], y[i]);
        EXPECT_TRUE(worst.Within(kClasses[c]))
            << "relative " << worst.relative << " units " << worst.units << " at " << worst.at
            << ", " << worst.at2 << (worst.wrong ? "; wrong kind of value at " : "")
            << worst.wrongAt << ", " << worst.wrongAt2;
      }
    });
  }
}

TEST(VectorMaths, PowxIsPowWithOneExponent) {
  const std::vector<float> x = SampledArguments();
  const int n = static_cast<int>(x.size());
  std::vector<float> exponents(x.size()), y(x.size()), expected(x.size());
  for (const float exponent : {-2.5F, -1.0F, 0.0F, 0.5F, 2.0F, 3.0F, kInf, kNaN}) {
    exponents.assign(x.size(), exponent);
    ForEachLevel([&](int level) {
      EXPECT_EQ(ZOV_AT(level, zovsPow_32f_A24)(x.data(), exponents.data(), expected.data(), n),
                ZOV_AT(level, zovsPowx_32f_A24)(x.data(), exponent, y.data(), n));
      EXPECT_EQ(std::memcmp(y.data(), expected.data(), x.size() * sizeof(float)), 0);
      EXPECT_EQ(ZOV_AT(level, zovsPow_32f_A11)(x.data(), exponents.data(), expected.data(), n),
                ZOV_AT(level, zovsPowx_32f_A11)(x.data(), exponent, y.data(), n));
      EXPECT_EQ(std::memcmp(y.data(), expected.data(), x.size() * sizeof(float)), 0);
    });
  }
}

struct StatusCase {
  const char* what;
  decltype(&zovTable_zovsExp_32f_A11) table;
  std::vector<float> x;
  ZovStatus status;
  std::vector<float> y;  // exact values; a NaN stands for any NaN
};

TEST(VectorMaths, StatusTellsTheLastBadElement) {
  const StatusCase cases[] = {
      {"exp", &zovTable_zovsExp_32f_A11, {0, 100, -200}, zovStsUnderflowWrn, {1, kInf, 0}},
      {"exp", &zovTable_zovsExp_32f_A11, {-200, 100}, zovStsOverflowWrn, {0, kInf}},
      {"exp", &zovTable_zovsExp_32f_A11, {kInf, -kInf, kNaN}, zovStsNoErr, {kInf, 0, kNaN}},
      {"exp", &zovTable_zovsExp_32f_A11, {100, kInf, -0.0F}, zovStsOverflowWrn, {kInf, kInf, 1}},
      {"ln", &zovTable_zovsLn_32f_A11, {0, 1}, zovStsSingularityWrn, {-kInf, 0}},
      {"ln", &zovTable_zovsLn_32f_A11, {-0.0F}, zovStsSingularityWrn, {-kInf}},
      {"ln", &zovTable_zovsLn_32f_A11, {0, -1}, zovStsDomainWrn, {-kInf, kNaN}},
      {"ln", &zovTable_zovsLn_32f_A11, {-kInf, 0, kInf}, zovStsSingularityWrn, {kNaN, -kInf, kInf}},
      {"log10", &zovTable_zovsLog10_32f_A21, {-1e-40F, kNaN}, zovStsDomainWrn, {kNaN, kNaN}},
      {"log10", &zovTable_zovsLog10_32f_A11, {1, 0}, zovStsSingularityWrn, {0, -kInf}},
      {"asin", &zovTable_zovsAsin_32f_A11, {1.5F}, zovStsDomainWrn, {kNaN}},
      {"asin", &zovTable_zovsAsin_32f_A11, {1, -1}, zovStsNoErr, {1.5707964F, -1.5707964F}},
      {"acos", &zovTable_zovsAcos_32f_A11, {1, -1, -kInf}, zovStsDomainWrn, {0, 3.1415927F, kNaN}},
      {"sin", &zovTable_zovsSin_32f_A11, {-0.0F, kInf, kNaN}, zovStsDomainWrn, {-0.0F, kNaN, kNaN}},
      {"cos", &zovTable_zovsCos_32f_A11, {0, -kInf}, zovStsDomainWrn, {1, kNaN}},
      {"tan", &zovTable_zovsTan_32f_A11, {kInf, 0}, zovStsDomainWrn, {kNaN, 0}},
      {"atan", &zovTable_zovsAtan_32f_A11, {-kInf, kNaN}, zovStsNoErr, {-1.5707964F, kNaN}},
      {"sinh", &zovTable_zovsSinh_32f_A11, {-89.5F, -0.0F}, zovStsOverflowWrn, {-kInf, -0.0F}},
      {"cosh", &zovTable_zovsCosh_32f_A11, {0, -100}, zovStsOverflowWrn, {1, kInf}},
      {"tanh", &zovTable_zovsTanh_32f_A11, {kInf, -1e30F, kNaN}, zovStsNoErr, {1, -1, kNaN}},
      {"floor", &zovTable_zovsFloor_32f, {-0.5F, 0.5F, -0.0F}, zovStsNoErr, {-1, 0, -0.0F}},
      {"ceil", &zovTable_zovsCeil_32f, {-0.5F, 0.5F, kNaN}, zovStsNoErr, {-0.0F, 1, kNaN}},
  };
  for (const StatusCase& each : cases) {
    SCOPED_TRACE(each.what);
    ForEachLevel([&](int level) {
      // Alone, and at the end of whole blocks of ordinary elements.
      for (const std::size_t before : {0U, 32U, 45U}) {
        std::vector<float> x(before, 0.5F);
        x.insert(x.end(), each.x.begin(), each.x.end());
        std::vector<float> y(x.size());
        EXPECT_EQ((*each.table)[level](x.data(), y.data(), static_cast<int>(x.size())),
                  each.status);
        for (std::size_t i = 0; i < each.y.size(); ++i) {
          const float actual = y[before + i];
          if (std::isnan(each.y[i])) {
            EXPECT_TRUE(std::isnan(actual)) << actual;
            EXPECT_TRUE(BitsOf(actual) & 0x400000) << "not quiet";
          } else {
            EXPECT_EQ(BitsOf(actual), BitsOf(each.y[i])) << actual << " for " << each.x[i];
          }
        }
      }
    });
  }
}

// The last argument of one kind and the first of the next, alone and in a block.
TEST(VectorMaths, LimitsOfTheRange) {
  constexpr float kLeast = 0x1p-149F;
  struct Limit {
    decltype(&zovTable_zovsExp_32f_A11) table;
    std::uint32_t x;
    ZovStatus status;
    float from, to;  // where the result lies
    int firstLevel = 0, lastLevel = 6;
  };
  const auto exp = &zovTable_zovsExp_32f_A11;
  const auto sinh = &zovTable_zovsSinh_32f_A11;
  const auto cosh = &zovTable_zovsCosh_32f_A11;
  const Limit limits[] = {
      {exp, 0x42AEAC50, zovStsNoErr, 8.5e37F, 8.53e37F},
      {exp, 0x42B17217, zovStsNoErr, 3.4e38F, 3.4028235e38F},
      {exp, 0x42B17218, zovStsOverflowWrn, kInf, kInf},
      {exp, 0xC2AEAC4F, zovStsNoErr, 1.1754e-38F, 1.1760e-38F},
      {exp, 0xC2AEAC50, zovStsUnderflowWrn, 1.1749e-38F, 1.1756e-38F},
      {exp, 0xC2CE8ED1, zovStsUnderflowWrn, kLeast, kLeast, 0, 4},
      {exp, 0xC2CE8ED2, zovStsUnderflowWrn, 0, 0, 0, 4},
      {exp, 0xC2CFF1B4, zovStsUnderflowWrn, kLeast, kLeast, 5, 6},
      {exp, 0xC2CFF1B5, zovStsUnderflowWrn, 0, 0, 5, 6},
      {sinh, 0x42B2D4FC, zovStsNoErr, 3.4e38F, 3.4028235e38F},
      {sinh, 0x42B2D4FD, zovStsOverflowWrn, kInf, kInf},
      {sinh, 0xC2B2D4FC, zovStsNoErr, -3.4028235e38F, -3.4e38F},
      {sinh, 0xC2B2D4FD, zovStsOverflowWrn, -kInf, -kInf},
      {cosh, 0xC2B2D4FC, zovStsNoErr, 3.4e38F, 3.4028235e38F},
      {cosh, 0xC2B2D4FD, zovStsOverflowWrn, kInf, kInf},
  };
  for (const Limit& limit : limits) {
    ForEachLevel([&](int level) {
      if (level < limit.firstLevel || level > limit.lastLevel) return;
      for (const std::size_t n : {1U, 16U}) {
        std::vector<float> x(n, 0.5F), y(n);
        x[n / 2] = FloatOf(limit.x);
        EXPECT_EQ((*limit.table)[level](x.data(), y.data(), static_cast<int>(n)), limit.status)
            << x[n / 2];
        EXPECT_TRUE(y[n / 2] >= limit.from && y[n / 2] <= limit.to) << x[n / 2] << ": " << y[n / 2];
      }
    });
  }
}

TEST(VectorMaths, CeilAndFloorAreExact) {
  std::vector<float> x = SampledArguments();
  for (int i = -200; i < 200; ++i) {
    for (const float scale : {0.25F, 16777216.0F / 200, 8388608.0F / 200, 4194304.5F / 200}) {
      x.push_back(static_cast<float>(i) * scale);
    }
  }
  std::vector<float> y(x.size());
  ForEachLevel([&](int level) {
    for (const bool up : {false, true}) {
      const auto routine = up ? ZOV_AT(level, zovsCeil_32f) : ZOV_AT(level, zovsFloor_32f);
      EXPECT_EQ(routine(x.data(), y.data(), static_cast<int>(x.size())), zovStsNoErr);
      for (std::size_t i = 0; i < x.size(); ++i) {
        const float expected = up ? std::ceil(x[i]) : std::floor(x[i]);
        if (std::isnan(x[i])) {
          EXPECT_EQ(BitsOf(y[i]), BitsOf(x[i]) | 0x400000);
        } else {
          EXPECT_EQ(BitsOf(y[i]), BitsOf(expected)) << x[i];
        }
      }
    }
  });
}

// The steps of the lowest level's exponential, one rounding each.
TEST(VectorMaths, ExpAtTheLowestLevelIsTheTableFormula) {
  std::vector<float> x;
  for (int i = -873; i <= 873; ++i) x.push_back(static_cast<float>(i) * 0.1F);
  std::vector<float> y(x.size());
  ZOV_AT(0, zovsExp_32f_A11)(x.data(), y.data(), static_cast<int>(x.size()));
  for (std::size_t i = 0; i < x.size(); ++i) {
    const volatile float scaled = x[i] * 184.6649627685547F;
    const volatile float u = scaled + 11534336.0F;
    const volatile float m = u - 11534336.0F;
    const volatile float high = m * 0.0054168701171875F;
    const volatile float low = m * -1.6577690757912933e-06F;
    const volatile float first = x[i] - high;
    const volatile float r = first - low;
    const double entry = std::exp2((BitsOf(u) & 127) / 128.0);
    const float t = static_cast<float>(entry);
    const float rest = static_cast<float>((entry - double{t}) / double{t});
    const volatile float half = 0.5F * r;
    const volatile float square = half * r;
    const volatile float sum = rest + r;
    const volatile float q = sum + square;
    const volatile float product = t * q;
    const volatile float value = t + product;
    const float power = FloatOf(((BitsOf(u) >> 7) + 127) << 23);
    ASSERT_EQ(BitsOf(value * power), BitsOf(y[i])) << x[i];
  }
}

// From AVX on single elements, and blocks with a special element, take a short formula in single
// precision, one rounding each.
TEST(VectorMaths, ExpOfSingleElementsIsTheShortFormula) {
  std::vector<float> x, y(16);
  for (int i = -8720; i <= 8720; i += 7) x.push_back(static_cast<float>(i) * 0.01F);
  for (const int level : {5, 6}) {
    if (level > zovDispatchIndex) continue;
    const auto exp = ZOV_AT(level, zovsExp_32f_A11);
    for (std::size_t first = 0; first + 15 < x.size(); first += 15) {
      std::vector<float> block(x.begin() + static_cast<std::ptrdiff_t>(first),
                               x.begin() + static_cast<std::ptrdiff_t>(first + 16));
      block[first % 16] = kNaN;
      exp(block.data(), y.data(), 16);
      for (std::size_t i = 0; i < 16; ++i) {
        if (i == first % 16) continue;
        const float at = block[i];
        const volatile float scaled = at * 1.442695F;
        const volatile float u = scaled + 12582912.0F;
        const volatile float m = u - 12582912.0F;
        const volatile float high = m * 0.69314575F;
        const volatile float low = m * 1.4286068e-06F;
        const volatile float rest = at - high;
        const volatile float r = rest - low;
        volatile float p = 0.0083811125F;
        for (const float c : {0.041917525F, 0.16666326F, 0.4999887F, 1.0000001F, 1.0000001F}) {
          const volatile float product = p * r;
          p = product + c;
        }
        const float value = std::ldexp(at == 0 ? 1.0F : p, static_cast<int>(m));
        ASSERT_EQ(BitsOf(y[i]), BitsOf(value)) << at << " level " << level;
        float alone;
        exp(&at, &alone, 1);
        ASSERT_EQ(BitsOf(alone), BitsOf(value)) << at << " level " << level;
      }
    }
  }
}

TEST(VectorMaths, ArgumentChecksComeInOrderAndWriteNothing) {
  float x[4] = {}, y[4] = {7, 7, 7, 7};
  ForEachLevel([&](int level) {
    const auto exp = ZOV_AT(level, zovsExp_32f_A11);
    EXPECT_EQ(exp(nullptr, nullptr, 0), zovStsNullPtrErr);
    EXPECT_EQ(exp(x, nullptr, 4), zovStsNullPtrErr);
    EXPECT_EQ(exp(nullptr, y, 0), zovStsNullPtrErr);
    EXPECT_EQ(exp(x, y, 0), zovStsSizeErr);
    EXPECT_EQ(exp(x, y, -3), zovStsSizeErr);
    const auto pow = ZOV_AT(level, zovsPow_32f_A24);
    EXPECT_EQ(pow(x, nullptr, y, -1), zovStsNullPtrErr);
    EXPECT_EQ(pow(nullptr, x, y, 4), zovStsNullPtrErr);
    EXPECT_EQ(pow(x, x, y, 0), zovStsSizeErr);
    EXPECT_EQ(ZOV_AT(level, zovsPowx_32f_A11)(nullptr, 1.0F, y, 0), zovStsNullPtrErr);
    const auto ceil = ZOV_AT(level, zovsCeil_32f);
    EXPECT_EQ(ceil(nullptr, nullptr, 0), zovStsSizeErr);
    EXPECT_EQ(ceil(nullptr, y, 1), zovStsNullPtrErr);
    EXPECT_EQ(y[0], 7);
  });
}

// Every exception in one array: invalid, division by zero, overflow, underflow, denormal, inexact.
TEST(VectorMaths, EnvironmentComesBackAsItWas) {
  std::vector<float> x = {FloatOf(0x7FA00000), 0, -1, 2, 1e-40F, 200, -200, kInf, -kInf, 0.3F};
  while (x.size() < 40) x.push_back(1.1F);
  std::vector<float> y(x.size());
  const int n = static_cast<int>(x.size());
  const unsigned before = _mm_getcsr();
  for (const unsigned control : {0x1F80U, 0x0000U, 0x1D80U, 0x1FA0U, 0x1D84U, 0x002CU}) {
    for (const UnaryFunction& function : kUnaryFunctions) {
      ForEachLevel([&](int level) {
        for (int c = 0; c < 3; ++c) {
          UnaryKernel* const kernel = KernelOf(*function.row[level], c);
          _mm_setcsr(control);
          kernel(x.data(), y.data(), n);
          const unsigned after = _mm_getcsr();
          _mm_setcsr(before);
          EXPECT_EQ(after, control) << function.name << " " << kClasses[c].name;
        }
      });
    }
  }
  // Flags that were set before are cleared, all but inexact; errors touch nothing.
  ForEachLevel([&](int level) {
    _mm_setcsr(0x1F80 | 0x24);
    ZOV_AT(level, zovsSin_32f_A11)(nullptr, y.data(), n);
    const unsigned untouched = _mm_getcsr();
    ZOV_AT(level, zovsSin_32f_A11)(x.data(), y.data(), n);
    const unsigned cleared = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(untouched, 0x1F80U | 0x24);
    EXPECT_EQ(cleared, 0x1F80U | 0x20);
    // So are those of the x87 unit.
    asm volatile("fld1\n fchs\n fsqrt\n fstp %%st(0)" ::: "st");
    EXPECT_NE(zovCpuGetX87Status() & 0x3F, 0U);
    ZOV_AT(level, zovsSin_32f_A11)(x.data(), y.data(), n);
    EXPECT_EQ(zovCpuGetX87Status() & 0x3F, 0U);
  });
}

// Every length around the blocks, at the edge of memory, in place and not; a result depends on the
// element alone, save where the exponential takes the rest of an array by another formula.
TEST(VectorMaths, LengthsPlacesAndMemory) {
  constexpr int kMost = 53;
  GuardedArray<float> source(kMost), destination(kMost);
  std::mt19937 random(3);
  std::vector<float> x(kMost);
  for (float& each : x) each = static_cast<float>(random() % 2000) / 1000.0F - 0.999F;
  x[20] = kNaN;
  x[37] = 2e4F;
  for (const UnaryFunction& function : kUnaryFunctions) {
    const bool exponential = std::string(function.name) == "Exp";
    ForEachLevel([&](int level) {
      for (int c = 0; c < 3; ++c) {
        UnaryKernel* const kernel = KernelOf(*function.row[level], c);
        float alone[kMost];
        for (int i = 0; i < kMost; ++i) kernel(&x[static_cast<std::size_t>(i)], alone + i, 1);
        for (int n = 1; n <= kMost; ++n) {
          for (const Guard guard : kGuards) {
            float* const src = source.At(static_cast<std::size_t>(n), guard);
            float* const dst = destination.At(static_cast<std::size_t>(n), guard);
            std::memcpy(src, x.data(), static_cast<std::size_t>(n) * sizeof(float));
            destination.Fill(0x5A);
            kernel(src, dst, n);
            ASSERT_TRUE(destination.UntouchedOutside(dst, static_cast<std::size_t>(n), 0x5A));
            kernel(src, src, n);
            ASSERT_EQ(std::memcmp(src, dst, static_cast<std::size_t>(n) * sizeof(float)), 0);
            if (exponential) continue;
            ASSERT_EQ(std::memcmp(alone, dst, static_cast<std::size_t>(n) * sizeof(float)), 0)
                << function.name << " " << kClasses[c].name << " length " << n;
          }
        }
      }
    });
  }
}

}  // namespace
}  // namespace zov::test

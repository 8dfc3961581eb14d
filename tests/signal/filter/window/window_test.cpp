// Windows against their formulas in long double.
#include "signal/filter/window/window_64f.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

using Formula = std::function<long double(long double k, long double n)>;

const long double kPi = std::acos(-1.0L);
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

Formula Cosines(long double mean, long double amplitude) {
  return [=](long double k, long double n) {
    return mean - amplitude * std::cos(2 * kPi * k / (n - 1));
  };
}
Formula Blackman(long double alpha) {
  return [=](long double k, long double n) {
    const long double x = 2 * kPi * k / (n - 1);
    return (alpha + 1) / 2 - std::cos(x) / 2 - alpha / 2 * std::cos(2 * x);
  };
}
long double Bartlett(long double k, long double n) { return 2 * k / (n - 1); }

std::vector<int> Lengths() {
  std::vector<int> lengths = {255, 1000, 1035, 1036, 4099, 20000};
  for (int n = 3; n <= 70; ++n) lengths.push_back(n);
  return lengths;
}

// Applies `window` at every length against both guards, and calls
// check(before, after, factor, n, k), where the ends have k = 0.
template <class T>
void Walk(const std::function<ZovStatus(T*, int)>& window, const Formula& formula, int least,
          const std::function<bool(T, T, long double, int, int)>& check) {
  std::mt19937 random(5);
  const GuardedArray<T> array(20000);
  for (const int n : Lengths()) {
    if (n < least) continue;
    for (const Guard guard : kGuards) {
      T* const p = array.At(static_cast<std::size_t>(n), guard);
      std::vector<T> before(static_cast<std::size_t>(n));
      for (T& x : before) x = static_cast<T>(static_cast<int>(random() % 65536) - 32768);
      std::copy(before.begin(), before.end(), p);
      ASSERT_EQ(window(p, n), zovStsNoErr);
      for (int i = 0; i < n; ++i) {
        const T x = before[static_cast<std::size_t>(i)];
        const int k = std::min(i, n - 1 - i);
        if (2 * k == n - 1) {
          ASSERT_EQ(p[i], x) << "centre of " << n;
        } else {
          ASSERT_TRUE(check(x, p[i], formula(k, n), n, k))
              << "n " << n << " i " << i << ": " << x << " became " << p[i];
        }
      }
    }
  }
}

// The recurrences lose digits as the angle between samples shrinks.
long double DriftAt(int n) { return 4e-16L + 3e-18L * n * n; }

TEST(Window, BinarySamples) {
  struct Member {
    const char* name;
    ZovStatus (*const* table)(Zov32f*, int);
    Formula formula;
    bool clears;
  };
  const Member members[] = {
      {"Bartlett", zovTable_zovsWinBartlett_32f_I, Bartlett, true},
      {"BlackmanStd", zovTable_zovsWinBlackmanStd_32f_I, Blackman(-0.16F), true},
      {"Hamming", zovTable_zovsWinHamming_32f_I, Cosines(0.54L, 0.46L), false},
      {"Hann", zovTable_zovsWinHann_32f_I, Cosines(0.5L, 0.5L), true},
  };
  for (const Member& member : members) {
    SCOPED_TRACE(member.name);
    ForEachLevel([&](int level) {
      const auto window = member.table[level];
      const bool isBartlett = member.table == zovTable_zovsWinBartlett_32f_I;
      const bool stepsInBinary32 = isBartlett && level >= 5;
      Walk<Zov32f>(window, member.formula, 3, [&](Zov32f x, Zov32f y, long double w, int n, int) {
        // One rounding, of the product, or two, with the factor's.
        long double e = std::abs(w) * 0x1p-23L + DriftAt(n);
        if (stepsInBinary32) e += std::abs(w) * 0x1p-24L * (2 + n / 32);
        return std::abs(y - x * w) <= std::abs(x) * e;
      });
      Zov32f three[] = {kNaN, 1.5F, kNaN};
      window(three, 3);
      EXPECT_EQ(three[1], 1.5F);
      for (const int end : {0, 2}) {
        EXPECT_EQ(std::isnan(three[end]), !member.clears);
        EXPECT_TRUE(!member.clears || !std::signbit(three[end]));
      }
      Zov32f five[] = {kNaN, 1, 1, 1, kNaN};
      window(five, 5);
      EXPECT_EQ(std::isnan(five[0]) && std::isnan(five[4]), !isBartlett);
      EXPECT_EQ(window(nullptr, 2), zovStsNullPtrErr);
      EXPECT_EQ(window(five, 2), zovStsSizeErr);
    });
  }
}

TEST(Window, DoubleSamples) {
  const Formula optimal = [](long double k, long double n) {
    const long double v = 0.5L / std::cos(kPi / (n - 1));
    return Blackman(-v * v)(k, n);
  };
  struct Member {
    const char* name;
    std::function<ZovStatus(Zov64f*, int)> window;
    Formula formula;
    int least;
  };
  const Member members[] = {
      {"Bartlett", zovsWinBartlett_64f_I, Bartlett, 3},
      {"Blackman", [](Zov64f* p, int n) { return zovsWinBlackman_64f_I(p, n, -0.25); },
       Blackman(-0.25L), 3},
      {"BlackmanOpt", zovsWinBlackmanOpt_64f_I, optimal, 4},
      {"Hamming", zovsWinHamming_64f_I, Cosines(0.54L, 0.46L), 3},
      {"Hann", zovsWinHann_64f_I, Cosines(0.5L, 0.5L), 3},
  };
  for (const Member& member : members) {
    SCOPED_TRACE(member.name);
    Walk<Zov64f>(member.window, member.formula, member.least,
                 [](Zov64f x, Zov64f y, long double w, int n, int) {
                   return std::abs(y - x * w) <= std::abs(x) * DriftAt(n);
                 });
    EXPECT_EQ(member.window(nullptr, 9), zovStsNullPtrErr);
    EXPECT_EQ(member.window(nullptr, 2), member.least == 4 ? zovStsSizeErr : zovStsNullPtrErr);
  }
}

TEST(Window, ShortSamples) {
  ForEachLevel([&](int level) {
    const auto window = ZOV_AT(level, zovsWinHamming_16s_I);
    Walk<Zov16s>(window, Cosines(0.54L, 0.46L), 3,
                 [&](Zov16s x, Zov16s y, long double w, int n, int k) {
                   if (level == 0 || k == 0) {
                     const long double slack = 32768 * (level == 0 ? DriftAt(n) : 1.4e-8L);
                     return y >= std::trunc(x * w - slack) && y <= std::trunc(x * w + slack);
                   }
                   return std::abs(y - x * w) <= 0.5L + std::abs(x) * 3e-6L;
                 });
    // The factor of the ends is that of each precision; all samples.
    const double factor = level == 0 ? 0.54 - 0.46 : static_cast<double>(0.54F - 0.46F);
    for (int x = -32768; x <= 32767; ++x) {
      Zov16s three[] = {static_cast<Zov16s>(x), 123, static_cast<Zov16s>(-1 - x)};
      window(three, 3);
      ASSERT_EQ(three[0], static_cast<Zov16s>(static_cast<Zov32f>(x * factor)));
      ASSERT_EQ(three[1], 123);
      ASSERT_EQ(three[2], static_cast<Zov16s>(static_cast<Zov32f>((-1 - x) * factor)));
    }
    // A quarter of the way the cosine vanishes: ties, which level 0 cuts off. In a vector and
    // alone.
    for (const std::size_t n : {5, 17}) {
      for (const auto& [x, even] : {std::pair{75, 40}, {-75, -40}, {125, 68}, {-125, -68}}) {
        std::vector<Zov16s> samples(n, static_cast<Zov16s>(x));
        window(samples.data(), static_cast<int>(n));
        for (const std::size_t i : {n / 4, n - 1 - n / 4}) {
          ASSERT_EQ(samples[i], level == 0 ? static_cast<Zov16s>(x * 27 / 50) : even) << n;
        }
      }
    }
    EXPECT_EQ(window(nullptr, 2), zovStsNullPtrErr);
    Zov16s two[] = {5, 6};
    EXPECT_EQ(window(two, 2), zovStsSizeErr);
  });
}

// The rotation in binary32 starts afresh block by block, so a long window keeps its shape.
TEST(Window, LongShortSamplesDoNotDrift) {
  constexpr int kLen = 1000001;
  ForEachLevel([&](int level) {
    std::vector<Zov16s> x(kLen, 32767);
    ZOV_AT(level, zovsWinHamming_16s_I)(x.data(), kLen);
    const Formula formula = Cosines(0.54L, 0.46L);
    for (int k = 0; k < kLen; k += 997) {
      ASSERT_NEAR(x[static_cast<std::size_t>(k)], 32767 * formula(k, kLen), 1.5);
    }
  });
}

}  // namespace
}  // namespace zov::test

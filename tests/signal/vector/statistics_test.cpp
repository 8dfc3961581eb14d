// Sums, means, deviation and extremes against exact integers, long double and plain scans.
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
using Wide = __int128;

// x / d rounded half to even, exactly.
Wide DivideHalfEven(Wide x, Wide d) {
  const bool negative = x < 0;
  const Wide magnitude = negative ? -x : x;
  Wide q = magnitude / d;
  const Wide twice = 2 * (magnitude % d);
  if (twice > d || (twice == d && q % 2 != 0)) ++q;
  return negative ? -q : q;
}
Wide Clamp(Wide x, Wide low, Wide high) { return x < low ? low : x > high ? high : x; }
Wide Pow2(int n) { return Wide{1} << n; }

const std::vector<int>& Lengths() {
  static const std::vector<int> lengths = [] {
    std::vector<int> v;
    for (int n = 1; n <= 140; ++n) v.push_back(n);
    v.insert(v.end(), {255, 1023, 1024, 1025, 4099});
    return v;
  }();
  return lengths;
}

// Random elements of T at every length and at several alignments, against either guard page.
template <class T, class Check>
void WalkArrays(std::mt19937& random, Check check) {
  const GuardedArray<T> array(5000);
  for (const int n : Lengths()) {
    for (const Guard guard : kGuards) {
      for (const std::size_t shift : {0u, 1u, 2u, 4u, 8u, 24u}) {
        if (n > 140 && shift > 1) continue;
        T* const p = array.At(static_cast<std::size_t>(n), guard, shift);
        for (int i = 0; i < n; ++i) {
          T value;
          if constexpr (std::is_floating_point_v<T>) {
            value = static_cast<T>(static_cast<int>(random() % 2001) - 1000) / 8;
          } else {
            value = static_cast<T>(random());
          }
          std::memcpy(reinterpret_cast<char*>(p) + static_cast<std::size_t>(i) * sizeof(T), &value,
                      sizeof value);
        }
        check(p, n);
        if (::testing::Test::HasFailure()) return;
      }
    }
  }
}
template <class T>
T At(const T* p, int i) {
  T value;
  std::memcpy(&value, reinterpret_cast<const char*>(p) + static_cast<std::size_t>(i) * sizeof(T),
              sizeof value);
  return value;
}

TEST(Statistics, ScaledSumAndMeansAreExact) {
  std::mt19937 random(7);
  ForEachLevel([&](int level) {
    WalkArrays<Zov16s>(random, [&](const Zov16s* p, int n) {
      Wide sum = 0;
      for (int i = 0; i < n; ++i) sum += At(p, i);
      for (const int f : {-40, -32, -31, -15, -14, -9, -1, 0, 1, 2, 7, 15, 16, 31, 48, 49}) {
        Zov32s gotSum;
        ASSERT_EQ(ZOV_AT(level, zovsSum_16s32s_Sfs)(p, n, &gotSum, f), zovStsNoErr);
        Wide want = f > 48 ? 0 : f > 0 ? DivideHalfEven(sum, Pow2(f)) : sum;
        want = Clamp(want, INT32_MIN, INT32_MAX);
        if (f < 0) want = Clamp(want * Pow2(f < -32 ? 32 : -f), INT32_MIN, INT32_MAX);
        ASSERT_EQ(gotSum, static_cast<Zov32s>(want)) << "n " << n << " f " << f;

        Zov16s gotMean;
        ASSERT_EQ(ZOV_AT(level, zovsMean_16s_Sfs)(p, n, &gotMean, f), zovStsNoErr);
        want = f >= 16 ? 0
               : f > 0 ? DivideHalfEven(sum, Wide{n} * Pow2(f))
                       : DivideHalfEven(sum * Pow2(-f), n);
        if (f < -14) want = sum * 65536;
        ASSERT_EQ(gotMean, static_cast<Zov16s>(Clamp(want, -32768, 32767)))
            << "n " << n << " f " << f;
      }
    });
    WalkArrays<Zov32s>(random, [&](const Zov32s* p, int n) {
      Wide sum = 0;
      for (int i = 0; i < n; ++i) sum += At(p, i);
      for (const int f : {-40, -32, -31, -5, -1, 0, 1, 2, 8, 31, 32}) {
        Zov32s got;
        ASSERT_EQ(ZOV_AT(level, zovsMean_32s_Sfs)(p, n, &got, f), zovStsNoErr);
        const Wide mean = DivideHalfEven(sum, n);
        Wide want = mean;
        if (f > 0) want = DivideHalfEven(mean, Pow2(f));
        if (f < 0) {
          want = sum >= INT32_MIN && sum <= INT32_MAX ? DivideHalfEven(sum * Pow2(-f), n)
                                                      : mean * Pow2(-f);
        }
        if (f <= -32) want = mean > 0 ? INT32_MAX : mean < 0 ? INT32_MIN : 0;
        ASSERT_EQ(got, static_cast<Zov32s>(Clamp(want, INT32_MIN, INT32_MAX)))
            << "n " << n << " f " << f;
      }
    });
  });
}

// The half wraps at a count of 32, the last shift at 64, and nothing saturates.
TEST(Statistics, MeanAtScaleFactorsThatWrap) {
  struct {
    Zov32s x;
    int f;
    Zov32s mean;
  } const cases[] = {{5, 33, 0},  {-5, 33, -1}, {5, 63, 0},   {-5, 63, 0},  {5, 64, -2147483643},
                     {5, 65, 2},  {5, 66, 1},   {-6, 66, -2}, {100, 97, 0}, {7, 128, -2147483641},
                     {7, 129, 4}, {6, 130, 2}};
  ForEachLevel([&](int level) {
    for (const auto& each : cases) {
      Zov32s mean;
      ASSERT_EQ(ZOV_AT(level, zovsMean_32s_Sfs)(&each.x, 1, &mean, each.f), zovStsNoErr);
      EXPECT_EQ(mean, each.mean) << each.x << " scale factor " << each.f;
    }
  });
}

TEST(Statistics, LongSumsDoNotOverflow) {
  constexpr int kLen = 200001;
  const std::vector<Zov16s> low(kLen, -32768);
  const std::vector<Zov32s> high(kLen, INT32_MAX);
  ForEachLevel([&](int level) {
    Zov32s sum;
    ZOV_AT(level, zovsSum_16s32s_Sfs)(low.data(), kLen, &sum, 4);
    EXPECT_EQ(sum, -32768LL * kLen / 16);
    ZOV_AT(level, zovsSum_16s32s_Sfs)(low.data(), kLen, &sum, 0);
    EXPECT_EQ(sum, INT32_MIN);
    ZOV_AT(level, zovsMean_32s_Sfs)(high.data(), kLen, &sum, 0);
    EXPECT_EQ(sum, INT32_MAX);
  });
}

TEST(Statistics, FloatMeansAndDeviation) {
  std::mt19937 random(8);
  ForEachLevel([&](int level) {
    WalkArrays<Zov32f>(random, [&](const Zov32f* p, int n) {
      long double sum = 0;
      for (int i = 0; i < n; ++i) sum += At(p, i);
      Zov32f mean;
      ASSERT_EQ(ZOV_AT(level, zovsMean_32f)(p, n, &mean, 12345), zovStsNoErr);
      // The elements are multiples of 1/8, so every order of the sum is exact.
      ASSERT_EQ(mean, static_cast<Zov32f>(static_cast<double>(sum) / n)) << n;
      if (n < 2) return;
      long double spread = 0;
      for (int i = 0; i < n; ++i) spread += (At(p, i) - sum / n) * (At(p, i) - sum / n);
      const double want = static_cast<double>(std::sqrt(spread / (n - 1)));
      for (const int hint : {0, 1, 2}) {
        Zov32f deviation;
        ASSERT_EQ(ZOV_AT(level, zovsStdDev_32f)(p, n, &deviation, hint), zovStsNoErr);
        ASSERT_NEAR(deviation, want, want * 1e-6 + 1e-6) << "n " << n << " hint " << hint;
      }
    });
    WalkArrays<Zov64f>(random, [&](const Zov64f* p, int n) {
      long double sum = 0;
      for (int i = 0; i < n; ++i) sum += At(p, i);
      Zov64f mean;
      ASSERT_EQ(ZOV_AT(level, zovsMean_64f)(p, n, &mean), zovStsNoErr);
      ASSERT_EQ(mean, static_cast<double>(sum) / n) << n;
    });
    const std::vector<Zov32f> constant(5000, 0.1f);
    const std::vector<Zov32f> withNaN(100, kNaN);
    for (const int hint : {0, 1}) {
      Zov32f deviation = -1;
      ZOV_AT(level, zovsStdDev_32f)(constant.data(), 5000, &deviation, hint);
      EXPECT_GE(deviation, 0);
      EXPECT_LT(deviation, 1e-4f);
      ZOV_AT(level, zovsStdDev_32f)(withNaN.data(), 100, &deviation, hint);
      EXPECT_EQ(deviation, 0);
    }
    // Double sums hold what sums of 1024 in binary32 lose.
    std::vector<Zov32f> offset(4096);
    for (std::size_t i = 0; i < offset.size(); ++i) offset[i] = 10000.0f + (i % 2 ? 1.0f : -1.0f);
    Zov32f deviation;
    ZOV_AT(level, zovsStdDev_32f)(offset.data(), 4096, &deviation, 0);
    EXPECT_NEAR(deviation, 1.000122, 1e-5);
    // The hint of speed: not heeded at the lowest level nor where the source has no alignment,
    // where the result has the same bits as without it; else binary32 loses this deviation.
    const GuardedArray<Zov32f> odd(offset.size());
    for (const std::size_t shift : {0u, 1u}) {
      const Zov32f* const p = odd.At(offset.size(), Guard::after, shift);
      std::memcpy(const_cast<Zov32f*>(p), offset.data(), offset.size() * sizeof(Zov32f));
      Zov32f exact, fast;
      ZOV_AT(level, zovsStdDev_32f)(p, 4096, &exact, 0);
      ZOV_AT(level, zovsStdDev_32f)(p, 4096, &fast, 1);
      EXPECT_EQ(exact == fast, level == 0 || shift != 0);
    }
    const Zov32f huge[40] = {1e20f, -1e20f};
    ZOV_AT(level, zovsStdDev_32f)(huge, 40, &deviation, 1);
    EXPECT_EQ(std::isinf(deviation), level > 0);
  });
}

template <class T>
struct ExtremeCase {
  T min, max;
  int minAt, maxAt;
};
template <class T>
ExtremeCase<T> Scan(const T* p, int n) {
  ExtremeCase<T> e{At(p, 0), At(p, 0), 0, 0};
  for (int i = 1; i < n; ++i) {
    const T x = At(p, i);
    if (x < e.min) e.min = x, e.minAt = i;
    if (x > e.max) e.max = x, e.maxAt = i;
  }
  return e;
}
// Zeros of different signs differ here: the first of them stays.
template <class T>
bool Same(T a, T b) {
  return (a == b && std::signbit(a) == std::signbit(b)) || (a != a && b != b);
}
// One of five values from -low on, so that ties stand in every lane; zeros of either sign.
template <class T>
T OneOfFive(std::mt19937& random, int low) {
  const T x = static_cast<T>(static_cast<int>(random() % 5) - low);
  return x == 0 && random() % 2 != 0 ? -x : x;
}

TEST(Statistics, ExtremesOfIntegersAndDoubles) {
  std::mt19937 random(9);
  ForEachLevel([&](int level) {
    WalkArrays<Zov16s>(random, [&](const Zov16s* p, int n) {
      const auto want = Scan(p, n);
      Zov16s min, max, min2, max2;
      ZOV_AT(level, zovsMin_16s)(p, n, &min);
      ZOV_AT(level, zovsMax_16s)(p, n, &max);
      ZOV_AT(level, zovsMinMax_16s)(p, n, &min2, &max2);
      ASSERT_TRUE(min == want.min && min2 == min && max == want.max && max2 == max) << n;
    });
    WalkArrays<Zov16u>(random, [&](const Zov16u* p, int n) {
      const auto want = Scan(p, n);
      Zov16u min, max;
      ZOV_AT(level, zovsMinMax_16u)(p, n, &min, &max);
      ASSERT_TRUE(min == want.min && max == want.max) << n;
    });
    WalkArrays<Zov64f>(random, [&](Zov64f* p, int n) {
      Zov64f max;
      ZOV_AT(level, zovsMax_64f)(p, n, &max);
      ASSERT_EQ(max, Scan(p, n).max) << n;
      for (int i = 0; i < n; ++i) {
        const Zov64f x = OneOfFive<Zov64f>(random, 4);
        std::memcpy(reinterpret_cast<char*>(p) + 8 * i, &x, 8);
      }
      ZOV_AT(level, zovsMax_64f)(p, n, &max);
      ASSERT_TRUE(Same(max, Scan(p, n).max)) << n;
    });
  });
}

TEST(Statistics, ExtremesOfFloatsWithTiesAndNaN) {
  std::mt19937 random(10);
  ForEachLevel([&](int level) {
    const auto check = [&](const Zov32f* p, int n) {
      const auto want = Scan(p, n);
      Zov32f min, max, min2, max2, min3, max3, unindexed;
      int minAt = -5, maxAt = -5;
      ZOV_AT(level, zovsMin_32f)(p, n, &min);
      ZOV_AT(level, zovsMax_32f)(p, n, &max);
      ZOV_AT(level, zovsMinMax_32f)(p, n, &min2, &max2);
      ASSERT_EQ(ZOV_AT(level, zovsMinIndx_32f)(p, n, &min3, &minAt), zovStsNoErr);
      ASSERT_EQ(ZOV_AT(level, zovsMaxIndx_32f)(p, n, &max3, &maxAt), zovStsNoErr);
      ASSERT_TRUE(Same(min, want.min) && Same(min2, want.min) && Same(min3, want.min)) << n;
      ASSERT_TRUE(Same(max, want.max) && Same(max2, want.max) && Same(max3, want.max)) << n;
      ASSERT_EQ(minAt, want.minAt) << n;
      ASSERT_EQ(maxAt, want.maxAt) << n;
      ASSERT_EQ(ZOV_AT(level, zovsMaxIndx_32f)(p, n, &unindexed, nullptr), zovStsNoErr);
      ASSERT_TRUE(Same(unindexed, want.max));
      ASSERT_EQ(ZOV_AT(level, zovsMinIndx_32f)(p, n, &unindexed, nullptr), zovStsNoErr);
      ASSERT_TRUE(Same(unindexed, want.min));
    };
    WalkArrays<Zov32f>(random, [&](Zov32f* p, int n) {
      // A zero is the smallest, the largest or between.
      const int low = static_cast<int>(random() % 3) * 2;
      for (int i = 0; i < n; ++i) {
        const Zov32f x = OneOfFive<Zov32f>(random, low);
        std::memcpy(reinterpret_cast<char*>(p) + 4 * i, &x, 4);
      }
      check(p, n);
      std::memcpy(reinterpret_cast<char*>(p) + 4 * (random() % static_cast<unsigned>(n)), &kNaN, 4);
      check(p, n);
      std::memcpy(p, &kNaN, 4);
      check(p, n);
    });
  });
}

TEST(Statistics, ElementwiseExtremesKeepTheSecondUnlessBeaten) {
  std::mt19937 random(11);
  const GuardedArray<Zov32f> other(5000);
  ForEachLevel([&](int level) {
    WalkArrays<Zov32f>(random, [&](Zov32f* p, int n) {
      const std::size_t count = static_cast<std::size_t>(n);
      Zov32f* const q = other.At(count, Guard::before, 4);
      for (const bool larger : {true, false}) {
        std::vector<Zov32f> want(count);
        for (int i = 0; i < n; ++i) {
          const Zov32f b = random() % 9 == 0 ? kNaN : static_cast<Zov32f>(random() % 200) - 100;
          q[i] = b;
          const Zov32f a = At(p, i);
          want[static_cast<std::size_t>(i)] = (larger ? a > b : a < b) ? a : b;
        }
        const auto call =
            larger ? ZOV_AT(level, zovsMaxEvery_32f_I) : ZOV_AT(level, zovsMinEvery_32f_I);
        ASSERT_EQ(call(p, q, n), zovStsNoErr);
        ASSERT_EQ(std::memcmp(q, want.data(), count * sizeof(Zov32f)), 0) << n;
      }
    });
  });
}

template <class T, class Call>
void CheckNormalize(Call call, T denormal) {
  std::mt19937 random(12);
  const GuardedArray<T> target(5000);
  WalkArrays<T>(random, [&](const T* p, int n) {
    T* const dst = target.At(static_cast<std::size_t>(n), Guard::after);
    ASSERT_EQ(call(p, dst, n, T(0.7), T(3)), zovStsNoErr);
    for (int i = 0; i < n; ++i) ASSERT_EQ(dst[i], (At(p, i) - T(0.7)) * (T(1) / T(3)));
  });
  T chain[40], want[40];
  for (int i = 0; i < 40; ++i) chain[i] = want[i] = T(i);
  for (int i = 0; i < 39; ++i) want[i + 1] = (want[i] - T(1)) * (T(1) / T(4));
  EXPECT_EQ(call(chain, chain + 1, 39, T(1), T(4)), zovStsNoErr);
  EXPECT_EQ(std::memcmp(chain, want, sizeof chain), 0) << "a forward walk";
  T x = 1;
  EXPECT_EQ(call(&x, &x, 1, T(0), denormal), zovStsDivByZeroErr);
  EXPECT_EQ(call(&x, &x, 0, T(0), denormal), zovStsSizeErr);
  EXPECT_EQ(call(&x, static_cast<T*>(nullptr), 0, T(0), T(0)), zovStsNullPtrErr);
  EXPECT_EQ(x, 1);
}

TEST(Statistics, Normalize) {
  ForEachLevel([](int level) {
    CheckNormalize<Zov32f>(ZOV_AT(level, zovsNormalize_32f), -1e-40f);
    CheckNormalize<Zov64f>(ZOV_AT(level, zovsNormalize_64f), 1e-310);
  });
}

TEST(Statistics, ChecksComeInOrder) {
  ForEachLevel([](int level) {
    const Zov32f f[2] = {1, 2};
    const Zov16s s[2] = {1, 2};
    Zov32f value = 7, value2 = 7;
    Zov16s small = 7;
    int index = 7;
    EXPECT_EQ(ZOV_AT(level, zovsStdDev_32f)(f, 1, &value, 0), zovStsSizeErr);
    EXPECT_EQ(ZOV_AT(level, zovsStdDev_32f)(nullptr, 1, &value, 0), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsMean_32f)(f, 0, &value, 0), zovStsSizeErr);
    EXPECT_EQ(ZOV_AT(level, zovsMean_32f)(f, 0, nullptr, 0), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsMinMax_32f)(f, 0, &value, nullptr), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsMinMax_32f)(f, -3, &value, &value2), zovStsSizeErr);
    EXPECT_EQ(ZOV_AT(level, zovsMaxIndx_32f)(f, 0, &value, &index), zovStsSizeErr);
    EXPECT_EQ(ZOV_AT(level, zovsMaxIndx_32f)(f, 2, nullptr, &index), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsMean_16s_Sfs)(s, 0, &small, 20), zovStsSizeErr);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(small, 7);
    EXPECT_EQ(index, 7);
  });
}

}  // namespace
}  // namespace zov::test

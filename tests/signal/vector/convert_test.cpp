// Conversions against exact arithmetic: every 16-bit input, ties, limits, scales and check order.
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

// Runs call(pSrc, pDst, n) on the elements of `input` cut at every length up to 70, at alignments
// of both arrays, and hands each result to check(i, result).
template <class S, class D, class Call, class Check>
void WalkConversion(const std::vector<S>& input, Call call, Check check) {
  const auto run = [&](const GuardedArray<S>& source, const GuardedArray<D>& target,
                       std::size_t first, std::size_t n, Guard guard, std::size_t shift) {
    S* const src = source.At(n, guard, shift * 3 % 32);
    D* const dst = target.At(n, guard, shift);
    std::memcpy(src, input.data() + first, n * sizeof(S));
    target.Fill(0xCD);
    ASSERT_EQ(call(src, dst, static_cast<int>(n)), zovStsNoErr);
    for (std::size_t i = 0; i < n; ++i) {
      D result;
      std::memcpy(&result, reinterpret_cast<char*>(dst) + i * sizeof(D), sizeof(D));
      check(first + i, result);
    }
    ASSERT_TRUE(target.UntouchedOutside(dst, n, 0xCD));
  };
  constexpr std::size_t kLongest = 70;
  const GuardedArray<S> source(kLongest);
  const GuardedArray<D> target(kLongest);
  for (std::size_t n = 1; n <= kLongest && n <= input.size(); ++n) {
    for (const Guard guard : kGuards) {
      for (const std::size_t shift : {0u, 1u, 4u, 8u}) {
        run(source, target, (n * 37) % (input.size() - n + 1), n, guard, shift);
        if (::testing::Test::HasFailure()) return;
      }
    }
  }
  run(GuardedArray<S>(input.size()), GuardedArray<D>(input.size()), 0, input.size(), Guard::after,
      0);
}

std::vector<Zov16s> All16s() {
  std::vector<Zov16s> v;
  for (int x = -32768; x <= 32767; ++x) v.push_back(static_cast<Zov16s>(x));
  return v;
}

TEST(Convert, WideningIsExact) {
  const std::vector<Zov16s> input = All16s();
  std::vector<Zov32f> floats = {0.0f, -0.0f, 1e-45f, 3.4028235e38f, 1.1f, -7.25f};
  for (int i = 0; i < 100; ++i) floats.push_back(static_cast<Zov32f>(i) / 7);
  ForEachLevel([&](int level) {
    WalkConversion<Zov16s, Zov32f>(
        input, [&](auto... a) { return ZOV_AT(level, zovsConvert_16s32f)(a...); },
        [&](std::size_t i, Zov32f got) { ASSERT_EQ(got, input[i]); });
    WalkConversion<Zov32f, Zov64f>(
        floats, [&](auto... a) { return ZOV_AT(level, zovsConvert_32f64f)(a...); },
        [&](std::size_t i, Zov64f got) { ASSERT_EQ(got, static_cast<Zov64f>(floats[i])); });
    for (const int f : {0, 1, -3, 15, 1022, 2000, -1008, -2000, INT32_MIN}) {
      const int limited = f < -1008 ? -1008 : f > 1022 ? 1022 : f;
      WalkConversion<Zov16s, Zov64f>(
          input, [&](auto... a) { return ZOV_AT(level, zovsConvert_16s64f_Sfs)(a..., f); },
          [&](std::size_t i, Zov64f got) { ASSERT_EQ(got, std::ldexp(input[i], -limited)) << f; });
    }
  });
}

TEST(Convert, NarrowingSaturates) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  constexpr double big = 3.4028234663852886e38;
  std::vector<Zov64f> doubles = {1e300, -1e300, inf, -inf, big, 3.40282357e38, 1e-310, -0.0, 0.1};
  std::vector<Zov32s> ints = {INT32_MAX, INT32_MIN, 32767, 32768, -32768, -32769, 0, -1};
  std::mt19937 random(3);
  for (int i = 0; i < 200; ++i) {
    doubles.push_back(std::ldexp(static_cast<double>(random()) - 2e9, i - 150));
    ints.push_back(static_cast<Zov32s>(random()) >> (i % 20));
  }
  ForEachLevel([&](int level) {
    WalkConversion<Zov64f, Zov32f>(
        doubles, [&](auto... a) { return ZOV_AT(level, zovsConvert_64f32f)(a...); },
        [&](std::size_t i, Zov32f got) {
          const double x = doubles[i];
          ASSERT_EQ(got, static_cast<Zov32f>(x > big ? big : x < -big ? -big : x)) << x;
        });
    WalkConversion<Zov32s, Zov16s>(
        ints, [&](auto... a) { return ZOV_AT(level, zovsConvert_32s16s)(a...); },
        [&](std::size_t i, Zov16s got) {
          const Zov32s x = ints[i];
          ASSERT_EQ(got, x > 32767 ? 32767 : x < -32768 ? -32768 : x);
        });
    const std::vector<Zov64f> nans(9, std::nan(""));
    Zov32f out[9];
    ZOV_AT(level, zovsConvert_64f32f)(nans.data(), out, 9);
    for (const Zov32f x : out) EXPECT_TRUE(std::isnan(x));
  });
}

// One element beyond the limits, or a NaN, among thousands of others, with the results elsewhere
// and over the source.
TEST(Convert, OneElementIsLimitedAmongMany) {
  constexpr std::size_t n = 5003;
  constexpr double inf = std::numeric_limits<double>::infinity();
  constexpr float most = std::numeric_limits<float>::max();
  ForEachLevel([](int level) {
    const auto convert = ZOV_AT(level, zovsConvert_64f32f);
    for (const std::size_t at : {0u, 31u, 1023u, 1024u, 2047u, 3000u, 4991u, 5002u}) {
      for (const double special : {1e39, -1e300, inf, -inf, std::nan("")}) {
        std::vector<Zov64f> x(n);
        for (std::size_t i = 0; i < n; ++i) x[i] = static_cast<double>(i) - 2500.5;
        x[at] = special;
        std::vector<Zov32f> y(n), over(n);
        ASSERT_EQ(convert(x.data(), y.data(), static_cast<int>(n)), zovStsNoErr);
        ASSERT_EQ(convert(x.data(), reinterpret_cast<Zov32f*>(x.data()), static_cast<int>(n)),
                  zovStsNoErr);
        std::memcpy(over.data(), x.data(), n * sizeof(Zov32f));
        EXPECT_EQ(std::memcmp(over.data(), y.data(), n * sizeof(Zov32f)), 0);
        if (special == special) {
          EXPECT_EQ(y[at], special > 0 ? most : -most) << at;
        } else {
          EXPECT_TRUE(std::isnan(y[at])) << at;
        }
        for (std::size_t i = 0; i < n; ++i) {
          if (i != at) {
            ASSERT_EQ(y[i], static_cast<float>(static_cast<double>(i) - 2500.5)) << i;
          }
        }
      }
    }
  });
}

// The rounded and saturated value of y, which is exact. Ties away from zero come from an addition
// of one half: of a double, it may itself round up to the next integer.
template <class T>
int RoundTo16s(long double y, int mode) {
  y = y > 32767 ? 32767 : y < -32768 ? -32768 : y;
  const long double whole = std::trunc(y);
  const long double rest = std::fabs(y - whole);
  const bool odd = std::fmod(whole, 2) != 0;
  if (mode != ZOV_RND_ZERO && mode != ZOV_RND_NEAR && std::is_same_v<T, Zov64f>) {
    return static_cast<int>(static_cast<double>(y) + std::copysign(0.5, static_cast<double>(y)));
  }
  const bool up = mode == ZOV_RND_ZERO   ? false
                  : mode == ZOV_RND_NEAR ? rest > 0.5L || (rest == 0.5L && odd)
                                         : rest >= 0.5L;
  return static_cast<int>(whole + (up ? std::copysign(1.0L, y) : 0));
}

template <class T, class Call>
void WalkRounding(Call call) {
  std::vector<T> input = {T(2.5),
                          T(-2.5),
                          T(40000),
                          T(-40000),
                          T(32766.5),
                          T(32766.7),
                          T(32767.2),
                          T(-32768.4),
                          T(-32767.5),
                          T(0.49999997),
                          T(-0.5),
                          T(1.5),
                          T(0.49999999999999994),
                          T(1e30),
                          T(-1e30),
                          T(-0.0)};
  for (int i = -65536; i <= 65536; i += 29) input.push_back(static_cast<T>(i) / 2);
  std::mt19937 random(4);
  for (int i = 0; i < 2000; ++i) {
    input.push_back(static_cast<T>(static_cast<double>(random() % 2000003) / 30.0 - 33000.0));
  }
  for (const int mode : {0, 1, 2, 7, -1}) {
    for (const int f : {0, 1, -1, 5, -4, 14, -20}) {
      WalkConversion<T, Zov16s>(
          input, [&](const T* src, Zov16s* dst, int n) { return call(src, dst, n, mode, f); },
          [&](std::size_t i, Zov16s got) {
            const long double y = std::ldexp(static_cast<long double>(input[i]), -f);
            ASSERT_EQ(got, RoundTo16s<T>(y, mode)) << input[i] << " mode " << mode << " f " << f;
          });
      if (::testing::Test::HasFailure()) return;
    }
  }
}

TEST(Convert, RoundingModesAndScales) {
  ForEachLevel([](int level) {
    const std::uint32_t mxcsr = zovCpuGetMxcsr() & ~0x3Fu;
    WalkRounding<Zov32f>(ZOV_AT(level, zovsConvert_32f16s_Sfs));
    EXPECT_EQ(zovCpuGetMxcsr() & ~0x3Fu, mxcsr);
    // Binary64 is rounded to nearest whatever the mode of the thread, which comes back.
    const Zov64f halves[9] = {0.75, 1.5, 2.5, -0.75, -1.5, -2.5, 3e9, -3e9, 0.75};
    Zov16s nearest[9];
    zovCpuSetRoundMode(0x6000);
    ZOV_AT(level, zovsConvert_64f16s_Sfs)(halves, nearest, 9, ZOV_RND_NEAR, 0);
    const std::uint32_t after = zovCpuSetRoundMode(0);
    EXPECT_EQ(after & 0x6000, 0x6000u);
    const Zov16s wanted[9] = {1, 2, 2, -1, -2, -2, 32767, -32768, 1};
    EXPECT_EQ(std::memcmp(nearest, wanted, sizeof wanted), 0);
    WalkRounding<Zov64f>(ZOV_AT(level, zovsConvert_64f16s_Sfs));
    // Factors beyond the type: 0 for a positive scale factor, infinity for a negative one.
    const Zov32f one[3] = {1, -1, 1e-30f};
    Zov16s out[3];
    ZOV_AT(level, zovsConvert_32f16s_Sfs)(one, out, 3, ZOV_RND_NEAR, INT32_MAX);
    EXPECT_TRUE(out[0] == 0 && out[1] == 0 && out[2] == 0);
    ZOV_AT(level, zovsConvert_32f16s_Sfs)(one, out, 3, ZOV_RND_FINANCIAL, INT32_MIN);
    EXPECT_TRUE(out[0] == 32767 && out[1] == -32768 && out[2] == 32767);
  });
}

// One half added with the sign and cut off, and one less at an odd tie: not quite the nearest, as
// the sum itself is rounded.
int NearestByAddition(double y) {
  if (y >= 32767) return 32767;
  if (y <= -32768) return -32768;
  const double sum = y + std::copysign(0.5, y);
  const int whole = static_cast<int>(sum);
  return whole % 2 != 0 && whole == sum ? whole - (y < 0 ? -1 : 1) : whole;
}

// Every half and integer with two neighbours on either side, converted elsewhere and in place.
TEST(Convert, NearestBesideHalvesAndIntegers) {
  std::vector<Zov64f> centres;
  for (int i = -65540; i <= 65540; ++i) {
    double x = std::nextafter(std::nextafter(i / 2.0, -1e9), -1e9);
    for (int k = 0; k < 5; ++k, x = std::nextafter(x, 1e9)) centres.push_back(x);
  }
  const int n = static_cast<int>(centres.size());
  std::vector<Zov64f> x(centres.size());
  std::vector<Zov16s> y(centres.size());
  for (const int f : {0, 7, -3}) {
    ForEachLevel([&](int level) {
      for (std::size_t i = 0; i < x.size(); ++i) x[i] = std::ldexp(centres[i], f);
      const auto convert = ZOV_AT(level, zovsConvert_64f16s_Sfs);
      ASSERT_EQ(convert(x.data(), y.data(), n, ZOV_RND_NEAR, f), zovStsNoErr);
      for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_EQ(y[i], NearestByAddition(centres[i])) << std::hexfloat << centres[i];
      }
      convert(x.data(), reinterpret_cast<Zov16s*>(x.data()), n, ZOV_RND_NEAR, f);
      EXPECT_EQ(std::memcmp(x.data(), y.data(), y.size() * sizeof(Zov16s)), 0);
      const double next = std::ldexp(0x1.0000000000001p-1, f);
      const double few[3] = {next, -next, 3 * next};
      convert(few, y.data(), 3, ZOV_RND_NEAR, f);
      EXPECT_TRUE(y[0] == 0 && y[1] == 0 && y[2] == 2);
    });
  }
}

TEST(Convert, RoundingModeOfTheThread) {
  std::vector<Zov32f> x;
  for (int i = -40; i <= 40; ++i) x.push_back(static_cast<Zov32f>(i) / 4);
  const int n = static_cast<int>(x.size());
  std::vector<Zov16s> y(x.size());
  ForEachLevel([&](int level) {
    const auto convert = ZOV_AT(level, zovsConvert_32f16s_Sfs);
    for (const std::uint32_t mode : {0x2000u, 0x4000u, 0x6000u}) {  // down, up, toward zero
      zovCpuSetRoundMode(mode);
      convert(x.data(), y.data(), n, ZOV_RND_NEAR, 0);
      const std::vector<Zov16s> near = y;
      convert(x.data(), y.data(), n, ZOV_RND_FINANCIAL, 0);
      const std::uint32_t after = zovCpuSetRoundMode(0);
      EXPECT_EQ(after & 0x6000, mode);
      for (std::size_t i = 0; i < x.size(); ++i) {
        const float wanted = mode == 0x2000   ? std::floor(x[i])
                             : mode == 0x4000 ? std::ceil(x[i])
                                              : std::trunc(x[i]);
        ASSERT_EQ(near[i], wanted) << x[i] << " mode " << mode;
        ASSERT_EQ(y[i], std::round(x[i])) << x[i] << " mode " << mode;
      }
    }
  });
}

TEST(Convert, OverlapRunsForwards) {
  ForEachLevel([](int level) {
    union {
      Zov16s shorts[64];
      Zov64f doubles[16];
      Zov32s ints[32];
    } u, v;
    for (int i = 0; i < 64; ++i) u.shorts[i] = static_cast<Zov16s>(i * 3 + 1);
    v = u;
    // The source starts far enough ahead that a forward walk reads each element before it writes
    // it.
    for (int i = 0; i < 12; ++i) v.doubles[i] = v.shorts[48 + i];
    ZOV_AT(level, zovsConvert_16s64f_Sfs)(u.shorts + 48, u.doubles, 12, 0);
    EXPECT_EQ(std::memcmp(&u, &v, sizeof u), 0);
    for (int i = 0; i < 32; ++i) u.ints[i] = i * 70000;
    v = u;
    for (int i = 0; i < 31; ++i) {
      const Zov32s x = v.ints[i];
      v.shorts[i + 1] = static_cast<Zov16s>(x > 32767 ? 32767 : x < -32768 ? -32768 : x);
    }
    ZOV_AT(level, zovsConvert_32s16s)(u.ints, u.shorts + 1, 31);
    EXPECT_EQ(std::memcmp(&u, &v, sizeof u), 0);
  });
}

TEST(Convert, SplitSeparatesAndScales) {
  const std::vector<Zov16s> all = All16s();
  ForEachLevel([&](int level) {
    for (const int channels : {1, 2, 3, 4, 7}) {
      for (const int length : {1, 3, 4, 7, 8, 9, 31, 64, 5000}) {
        std::vector<Zov16s> input(static_cast<std::size_t>(channels * length));
        for (std::size_t i = 0; i < input.size(); ++i) input[i] = all[i * 131 % all.size()];
        std::vector<std::vector<Zov32f>> rows(static_cast<std::size_t>(channels));
        std::vector<Zov32f*> pointers;
        for (auto& row : rows) {
          row.assign(static_cast<std::size_t>(length) + 1, 99);
          pointers.push_back(row.data());
        }
        ASSERT_EQ(ZOV_AT(level, zovsSplitScaled_16s32f_D2L)(input.data(), pointers.data(), channels,
                                                            length),
                  zovStsNoErr);
        for (int c = 0; c < channels; ++c) {
          for (int i = 0; i < length; ++i) {
            const volatile Zov32f product =
                static_cast<Zov32f>(input[static_cast<std::size_t>(i * channels + c)]) *
                3.0518044e-5f;
            ASSERT_EQ(pointers[static_cast<std::size_t>(c)][i], product + 1.5259022e-5f);
          }
          ASSERT_EQ(pointers[static_cast<std::size_t>(c)][length], 99);
        }
      }
    }
    // A row over the source: element by element, one row after the other.
    for (const int channels : {1, 2, 3}) {
      union {
        Zov16s shorts[128];
        Zov32f floats[64];
      } u, v;
      for (int i = 0; i < 128; ++i) u.shorts[i] = static_cast<Zov16s>(i * 300 - 9000);
      v = u;
      Zov32f other[2][20];
      Zov32f* overlapping[3] = {other[0], other[1], nullptr};
      const auto place = static_cast<std::size_t>(channels - 1);
      overlapping[place] = u.floats + 3;
      for (int i = 0; i < 20; ++i) {
        const volatile Zov32f product =
            static_cast<Zov32f>(v.shorts[i * channels + channels - 1]) * 3.0518044e-5f;
        v.floats[3 + i] = product + 1.5259022e-5f;
      }
      EXPECT_EQ(ZOV_AT(level, zovsSplitScaled_16s32f_D2L)(u.shorts, overlapping, channels, 20),
                zovStsNoErr);
      EXPECT_EQ(std::memcmp(&u, &v, sizeof u), 0) << channels;
    }
    const Zov16s pair[2] = {-32768, 32767};
    Zov32f row[2] = {7, 7};
    Zov32f* rows[2] = {row, nullptr};
    const auto split = ZOV_AT(level, zovsSplitScaled_16s32f_D2L);
    EXPECT_EQ(split(nullptr, nullptr, 0, 0), zovStsNullPtrErr);
    EXPECT_EQ(split(pair, nullptr, 0, 1), zovStsSizeErr);
    EXPECT_EQ(split(pair, nullptr, 1, 0), zovStsSizeErr);
    EXPECT_EQ(split(pair, nullptr, 1, 1), zovStsNullPtrErr);
    EXPECT_EQ(split(pair, rows, 2, 1), zovStsNullPtrErr);
    EXPECT_EQ(row[0], 7);
    EXPECT_EQ(split(pair, rows, 1, 2), zovStsNoErr);
    EXPECT_NEAR(row[0], -1, 6e-8);
    EXPECT_NEAR(row[1], 1, 6e-8);
  });
}

TEST(Convert, ChecksComeInOrder) {
  ForEachLevel([](int level) {
    const Zov32f x[1] = {1};
    const Zov64f d[1] = {1};
    Zov16s out[1] = {7};
    EXPECT_EQ(ZOV_AT(level, zovsConvert_32f16s_Sfs)(nullptr, out, 0, 0, 0), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsConvert_32f16s_Sfs)(x, nullptr, 0, 0, 0), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsConvert_32f16s_Sfs)(x, out, 0, 0, 0), zovStsSizeErr);
    EXPECT_EQ(ZOV_AT(level, zovsConvert_64f16s_Sfs)(d, out, -1, 0, 0), zovStsSizeErr);
    EXPECT_EQ(out[0], 7);
  });
}

}  // namespace
}  // namespace zov::test

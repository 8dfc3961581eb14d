// Integer arithmetic and bit operations against exact arithmetic in 64 bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

// The exact value times 2^-f: the nearest integer, the even one of two as near, in the range of T.
template <class T>
T Scaled(std::int64_t value, int f) {
  std::int64_t y = 0;
  if (f > 0) {
    const std::int64_t unit = std::int64_t{1} << std::min(f, 40);
    y = value >= 0 ? value / unit : -((-value + unit - 1) / unit);  // rounded down
    const std::int64_t twice = 2 * (value - y * unit);
    if (twice > unit || (twice == unit && y % 2 != 0)) ++y;
  } else {
    y = value * (std::int64_t{1} << std::min(-f, 40));
  }
  return static_cast<T>(
      std::clamp<std::int64_t>(y, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

// All values of 16 bits, in an order that puts every value in every lane's neighbourhood.
template <class T>
std::vector<T> AllValues() {
  std::vector<T> x(65536);
  for (std::uint32_t i = 0; i < 65536; ++i) x[i] = static_cast<T>(i * 40503U);
  return x;
}

constexpr int kAll = 65536;

template <class T, class Run, class Exact>
void ExpectAll(const std::vector<T>& x, int f, Run run, Exact exact) {
  std::vector<T> y = x;
  ASSERT_EQ(run(y.data()), zovStsNoErr);
  for (std::size_t i = 0; i < x.size(); ++i) {
    const T expected = Scaled<T>(exact(i), f);
    if (y[i] != expected) {
      ADD_FAILURE() << "element " << x[i] << " scale " << f << " gives " << y[i] << ", expected "
                    << expected;
      return;
    }
  }
}

TEST(IntegerArithmetic, EveryValueAtEveryScale) {
  const std::vector<Zov16s> s = AllValues<Zov16s>();
  const std::vector<Zov16u> u = AllValues<Zov16u>();
  // A second operand: the first half of the rounds walks constants, the rest another permutation.
  std::mt19937 random(1);
  ForEachLevel([&](int level) {
    for (int f = -40; f <= 40; ++f) {
      SCOPED_TRACE(f);
      const std::size_t turn = random() % kAll;
      std::vector<Zov16s> s2(kAll);
      std::vector<Zov16u> u2(kAll);
      for (std::size_t i = 0; i < kAll; ++i) {
        s2[i] = i % 4 == 0 ? s[i] : s[(i + turn) % kAll];
        u2[i] = i % 4 == 0 ? u[i] : u[(i + turn) % kAll];
      }
      ExpectAll<Zov16s>(
          s, f, [&](Zov16s* y) { return ZOV_AT(level, zovsAdd_16s_Sfs)(y, s2.data(), y, kAll, f); },
          [&](std::size_t i) { return std::int64_t{s[i]} + s2[i]; });
      ExpectAll<Zov16u>(
          u, f, [&](Zov16u* y) { return ZOV_AT(level, zovsAdd_16u_ISfs)(u2.data(), y, kAll, f); },
          [&](std::size_t i) { return std::int64_t{u[i]} + u2[i]; });
      for (const Zov16u val :
           {Zov16u{0}, Zov16u{1}, Zov16u{32768}, Zov16u{65535}, static_cast<Zov16u>(random())}) {
        // Below -15 any constant but zero gives the limit, even where the sum is zero (it never
        // is).
        ExpectAll<Zov16u>(
            u, f, [&](Zov16u* y) { return ZOV_AT(level, zovsAddC_16u_ISfs)(val, y, kAll, f); },
            [&](std::size_t i) { return std::int64_t{u[i]} + val; });
        ExpectAll<Zov16u>(
            u, f, [&](Zov16u* y) { return ZOV_AT(level, zovsSubC_16u_ISfs)(val, y, kAll, f); },
            [&](std::size_t i) { return std::max<std::int64_t>(std::int64_t{u[i]} - val, 0); });
      }
    }
    for (const int val : {0, 1, -1, 2, -2, 7, 255, -256, 32767, -32768}) {
      const Zov16s c = static_cast<Zov16s>(val);
      ExpectAll<Zov16s>(
          s, 0, [&](Zov16s* y) { return ZOV_AT(level, zovsSubC_16s_I)(c, y, kAll); },
          [&](std::size_t i) { return std::int64_t{s[i]} - val; });
      ExpectAll<Zov16s>(
          s, 0, [&](Zov16s* y) { return ZOV_AT(level, zovsMulC_16s_I)(c, y, kAll); },
          [&](std::size_t i) { return std::int64_t{s[i]} * val; });
    }
    std::vector<Zov16s> turned(s.rbegin(), s.rend());
    ExpectAll<Zov16s>(
        s, 0, [&](Zov16s* y) { return ZOV_AT(level, zovsAdd_16s_I)(turned.data(), y, kAll); },
        [&](std::size_t i) { return std::int64_t{s[i]} + turned[i]; });
    std::vector<Zov32s> w(kAll);
    for (std::size_t i = 0; i < kAll; ++i) w[i] = static_cast<Zov32s>(random());
    for (std::size_t i = 0; i < kAll; i += 7) w[i] = i % 2 ? INT32_MIN : -INT32_MAX;
    ExpectAll<Zov32s>(
        w, 0, [&](Zov32s* y) { return ZOV_AT(level, zovsAbs_32s_I)(y, kAll); },
        [&](std::size_t i) { return std::abs(std::int64_t{w[i]}); });
    for (int count = 0; count <= 33; ++count) {
      const auto left = [&](std::size_t i) {
        return count > 15 ? 0 : (std::int64_t{u[i]} << count) & 0xFFFF;
      };
      ExpectAll<Zov16u>(
          u, 0, [&](Zov16u* y) { return ZOV_AT(level, zovsLShiftC_16u)(u.data(), count, y, kAll); },
          left);
      ExpectAll<Zov16u>(
          u, 0, [&](Zov16u* y) { return ZOV_AT(level, zovsLShiftC_16u_I)(count, y, kAll); }, left);
      ExpectAll<Zov16u>(
          u, 0, [&](Zov16u* y) { return ZOV_AT(level, zovsRShiftC_16u_I)(count, y, kAll); },
          [&](std::size_t i) { return count > 15 ? 0 : std::int64_t{u[i]} >> count; });
    }
    for (const Zov16u val : {Zov16u{0}, Zov16u{0x8001}, Zov16u{0x5A5A}, Zov16u{65535}}) {
      const auto both = [&](std::size_t i) { return std::int64_t{u[i]} & val; };
      ExpectAll<Zov16u>(
          u, 0, [&](Zov16u* y) { return ZOV_AT(level, zovsAndC_16u)(u.data(), val, y, kAll); },
          both);
      ExpectAll<Zov16u>(
          u, 0, [&](Zov16u* y) { return ZOV_AT(level, zovsAndC_16u_I)(val, y, kAll); }, both);
    }
    const std::vector<Zov16u> mixed(u.rbegin(), u.rend());
    ExpectAll<Zov16u>(
        u, 0, [&](Zov16u* y) { return ZOV_AT(level, zovsOr_16u_I)(mixed.data(), y, kAll); },
        [&](std::size_t i) { return std::int64_t{u[i]} | mixed[i]; });
  });
}

// Every member in the shape (second array, first array and destination, length).
struct Member {
  const char* name;
  std::function<ZovStatus(int, const Zov16u*, Zov16u*, int)> run;
  std::function<Zov16u(Zov16u, Zov16u)> one;
};

const Zov16s* AsSigned(const Zov16u* p) { return reinterpret_cast<const Zov16s*>(p); }
Zov16s* AsSigned(Zov16u* p) { return reinterpret_cast<Zov16s*>(p); }

TEST(IntegerArithmetic, LengthsAlignmentsAndMemory) {
  constexpr std::size_t kMost = 140;
  GuardedArray<Zov16u> other(kMost), place(kMost);
  std::mt19937 random(2);
  std::vector<Zov16u> a(kMost), b(kMost);
  for (Zov16u& each : a) each = static_cast<Zov16u>(random());
  for (Zov16u& each : b) each = static_cast<Zov16u>(random());
  const Member members[] = {
      {"Add_16s_Sfs",
       [](int level, const Zov16u* x, Zov16u* y, int n) {
         return ZOV_AT(level, zovsAdd_16s_Sfs)(AsSigned(x), AsSigned(y), AsSigned(y), n, 2);
       },
       [](Zov16u x, Zov16u y) {
         return static_cast<Zov16u>(
             Scaled<Zov16s>(std::int64_t{static_cast<Zov16s>(x)} + static_cast<Zov16s>(y), 2));
       }},
      {"Add_16u_ISfs",
       [](int level, const Zov16u* x, Zov16u* y, int n) {
         return ZOV_AT(level, zovsAdd_16u_ISfs)(x, y, n, -1);
       },
       [](Zov16u x, Zov16u y) { return Scaled<Zov16u>(std::int64_t{x} + y, -1); }},
      {"AndC_16u",
       [](int level, const Zov16u* x, Zov16u* y, int n) {
         return ZOV_AT(level, zovsAndC_16u)(x, 0x0FF0, y, n);
       },
       [](Zov16u x, Zov16u) { return static_cast<Zov16u>(x & 0x0FF0); }},
      {"LShiftC_16u",
       [](int level, const Zov16u* x, Zov16u* y, int n) {
         return ZOV_AT(level, zovsLShiftC_16u)(x, 3, y, n);
       },
       [](Zov16u x, Zov16u) { return static_cast<Zov16u>(x << 3); }},
      {"Or_16u_I",
       [](int level, const Zov16u* x, Zov16u* y, int n) {
         return ZOV_AT(level, zovsOr_16u_I)(x, y, n);
       },
       [](Zov16u x, Zov16u y) { return static_cast<Zov16u>(x | y); }},
  };
  for (const Member& member : members) {
    SCOPED_TRACE(member.name);
    ForEachLevel([&](int level) {
      for (std::size_t n = 1; n <= kMost; n += n < 40 ? 1 : 9) {
        for (const Guard guard : kGuards) {
          for (std::size_t shift = 0; shift < 32; shift += 2) {
            const Zov16u* const x = other.At(n, guard, 30 - shift);
            Zov16u* const y = place.At(n, guard, shift);
            place.Fill(0x5A);
            std::memcpy(const_cast<Zov16u*>(x), a.data(), n * 2);
            std::memcpy(y, b.data(), n * 2);
            ASSERT_EQ(member.run(level, x, y, static_cast<int>(n)), zovStsNoErr);
            for (std::size_t i = 0; i < n; ++i) {
              ASSERT_EQ(y[i], member.one(a[i], b[i])) << "length " << n << " element " << i;
            }
            ASSERT_TRUE(place.UntouchedOutside(y, n, 0x5A));
          }
        }
      }
      // Arrays that overlap in part: one element after the other, from the first on.
      for (const int distance : {-5, -1, 1, 3}) {
        if (std::string(member.name) == "LShiftC_16u") continue;
        std::vector<Zov16u> actual = a, expected = a;
        const std::size_t from = distance > 0 ? 0 : static_cast<std::size_t>(-distance);
        const std::size_t to = static_cast<std::size_t>(static_cast<int>(from) + distance);
        const std::size_t n = 100;
        member.run(level, actual.data() + from, actual.data() + to, static_cast<int>(n));
        for (std::size_t i = 0; i < n; ++i) {
          expected[to + i] = member.one(expected[from + i], expected[to + i]);
        }
        EXPECT_EQ(actual, expected) << "distance " << distance;
      }
    });
  }
}

TEST(IntegerArithmetic, ChecksAndShortCuts) {
  Zov16s s[8] = {1, -2, 3, -4, 5, -6, 7, -8};
  Zov16u u[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  Zov32s w[2] = {};
  ForEachLevel([&](int level) {
    const auto add = ZOV_AT(level, zovsAdd_16s_Sfs);
    for (const int f : {-20, -3, 0, 5, 17, 40}) {
      EXPECT_EQ(add(nullptr, s, s, 8, f), zovStsNullPtrErr);
      EXPECT_EQ(add(s, nullptr, s, 0, f), zovStsNullPtrErr);
      EXPECT_EQ(add(s, s, nullptr, 8, f), zovStsNullPtrErr);
      EXPECT_EQ(add(s, s, s, 0, f), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsAdd_16u_ISfs)(nullptr, u, 8, f), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsAdd_16u_ISfs)(u, nullptr, -1, f), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsAdd_16u_ISfs)(u, u, -1, f), zovStsSizeErr);
      for (const Zov16u val : {Zov16u{0}, Zov16u{1}}) {
        EXPECT_EQ(ZOV_AT(level, zovsAddC_16u_ISfs)(val, nullptr, 0, f), zovStsNullPtrErr);
        EXPECT_EQ(ZOV_AT(level, zovsAddC_16u_ISfs)(val, u, 0, f), zovStsSizeErr);
        EXPECT_EQ(ZOV_AT(level, zovsSubC_16u_ISfs)(val, nullptr, 8, f), zovStsNullPtrErr);
        EXPECT_EQ(ZOV_AT(level, zovsSubC_16u_ISfs)(val, u, -8, f), zovStsSizeErr);
      }
    }
    for (const Zov16s val : {Zov16s{0}, Zov16s{1}, Zov16s{9}}) {
      EXPECT_EQ(ZOV_AT(level, zovsSubC_16s_I)(val, nullptr, 8), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsSubC_16s_I)(val, s, 0), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsMulC_16s_I)(val, nullptr, 8), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsMulC_16s_I)(val, s, 0), zovStsSizeErr);
      const Zov16u mask = static_cast<Zov16u>(val);
      EXPECT_EQ(ZOV_AT(level, zovsAndC_16u)(nullptr, mask, u, 8), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsAndC_16u)(u, mask, u, 0), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsAndC_16u_I)(mask, nullptr, 0), zovStsNullPtrErr);
    }
    for (const int count : {-1, 0, 1, 16, 40}) {
      EXPECT_EQ(ZOV_AT(level, zovsLShiftC_16u)(nullptr, count, u, 8), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsLShiftC_16u)(u, count, u, 0), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsLShiftC_16u_I)(count, nullptr, 8), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsRShiftC_16u_I)(count, nullptr, 0), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsRShiftC_16u_I)(count, u, 0), zovStsSizeErr);
    }
    EXPECT_EQ(ZOV_AT(level, zovsLShiftC_16u)(u, -1, u, 8), zovStsShiftErr);
    EXPECT_EQ(ZOV_AT(level, zovsLShiftC_16u_I)(-5, u, 8), zovStsShiftErr);
    EXPECT_EQ(ZOV_AT(level, zovsRShiftC_16u_I)(-1, u, 8), zovStsShiftErr);
    EXPECT_EQ(ZOV_AT(level, zovsAdd_16s_I)(nullptr, s, 8), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsOr_16u_I)(u, u, 0), zovStsSizeErr);
    EXPECT_EQ(ZOV_AT(level, zovsAbs_32s_I)(nullptr, 0), zovStsNullPtrErr);
    EXPECT_EQ(ZOV_AT(level, zovsAbs_32s_I)(w, 0), zovStsSizeErr);
    EXPECT_EQ(u[7], 8);
    EXPECT_EQ(s[7], -8);
  });
}

TEST(IntegerArithmetic, NothingIsWrittenWhereNothingChanges) {
  const GuardedPages pages(4096);
  pages.Protect(true);
  Zov16u* const u = reinterpret_cast<Zov16u*>(pages.begin());
  Zov16s* const s = reinterpret_cast<Zov16s*>(pages.begin());
  ForEachLevel([&](int level) {
    EXPECT_EQ(ZOV_AT(level, zovsAddC_16u_ISfs)(0, u, 100, 0), zovStsNoErr);
    EXPECT_EQ(ZOV_AT(level, zovsSubC_16u_ISfs)(0, u, 100, 0), zovStsNoErr);
    EXPECT_EQ(ZOV_AT(level, zovsSubC_16s_I)(0, s, 100), zovStsNoErr);
    EXPECT_EQ(ZOV_AT(level, zovsMulC_16s_I)(1, s, 100), zovStsNoErr);
    EXPECT_EQ(ZOV_AT(level, zovsLShiftC_16u_I)(0, u, 100), zovStsNoErr);
    EXPECT_EQ(ZOV_AT(level, zovsRShiftC_16u_I)(0, u, 100), zovStsNoErr);
  });
  pages.Protect(false);
}

}  // namespace
}  // namespace zov::test

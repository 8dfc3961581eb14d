// Magnitudes of 16-bit complex integers against exact integer arithmetic, at every scale factor.
#include <cmath>

#include "signal/vector/elementwise_walk.h"

namespace zov::test {
namespace {

// sqrt(m) / 2^scale to nearest, ties to even, at most 32767: the smallest r with 2r + 1 above
// 2 sqrt(m) / 2^scale, in integers.
Zov16s Reference(Zov16sc z, int scale) {
  const std::uint64_t m = static_cast<std::uint64_t>(std::int64_t{z.re} * z.re) +
                          static_cast<std::uint64_t>(std::int64_t{z.im} * z.im);
  if (m == 0 || scale > 31) return 0;
  if (scale < -16) return 32767;
  // Both sides of (2r + 1)^2 4^scale ? 4 m as whole numbers.
  const int up = scale < 0 ? -2 * scale : 0;
  const int down = scale > 0 ? 2 * scale : 0;
  using Wide = unsigned __int128;
  const Wide right = (Wide{m} * 4) << up;
  const auto left = [&](std::uint64_t r) { return (Wide{2 * r + 1} * (2 * r + 1)) << down; };
  std::uint64_t r =
      static_cast<std::uint64_t>(std::ldexp(std::sqrt(static_cast<long double>(m)), -scale));
  r = r > 2 ? r - 2 : 0;
  while (left(r) < right || (left(r) == right && r % 2 != 0)) ++r;
  return static_cast<Zov16s>(r > 32767 ? 32767 : r);
}

TEST(Magnitude16sc, LengthsAlignments) {
  for (const int scale : {0, 3, -2, 16, 17, -15}) {
    const Elementwise<Zov16s, Zov16sc> primitive{
        "Magnitude_16sc_Sfs",
        false,
        [=](int level, const Zov16sc* pSrc, Zov16s* pDst, int len) {
          return ZOV_AT(level, zovsMagnitude_16sc_Sfs)(pSrc, pDst, len, scale);
        },
        [=](Zov16sc z) { return Reference(z, scale); },
        {AnyNumber<Zov16sc>}};
    const Member member = MemberOf(primitive);
    member.walk();
    member.statuses();
  }
}

// All scale factors over the corners, the neighbours of every tie, and random elements of all
// sizes.
TEST(Magnitude16sc, ExactAtEveryScaleFactor) {
  std::vector<Zov16sc> z = {{0, 0},          {-32768, -32768}, {-32768, 32767}, {32767, 32767},
                            {-32768, 0},     {0, 32767},       {23170, 23170},  {23170, 23171},
                            {23169, -23170}, {1, 0},           {0, -1},         {3, 4},
                            {-32768, 1},     {32767, 255},     {181, 181},      {32766, 182}};
  for (int re = 0; re < 300; ++re) {
    for (int im = 0; im <= re; im += 1 + re / 40) {
      z.push_back({static_cast<Zov16s>(re), static_cast<Zov16s>(-im)});
    }
  }
  // One part alone is a perfect square: ties at every scale factor.
  for (int re = -32768; re < 32768; re += 1 + (re % 3 + 3) % 3) {
    z.push_back({static_cast<Zov16s>(re), 0});
    z.push_back({static_cast<Zov16s>(re), 1});
  }
  std::mt19937 random(5);
  for (int i = 0; i < 60000; ++i) {
    const int shift = static_cast<int>(random() % 12);
    z.push_back({static_cast<Zov16s>(static_cast<Zov16s>(random()) >> shift),
                 static_cast<Zov16s>(static_cast<Zov16s>(random()) >> shift)});
  }
  const int n = static_cast<int>(z.size());
  std::vector<Zov16s> expected(z.size()), actual(z.size());
  for (const int scale :
       {INT32_MIN, -40, -17, -16, -15, -14, -13, -12, -11, -10, -9, -8,       -7, -6,
        -5,        -4,  -3,  -2,  -1,  0,   1,   2,   3,   4,   5,  6,        7,  8,
        9,         10,  11,  12,  13,  14,  15,  16,  17,  18,  40, INT32_MAX}) {
    for (int i = 0; i < n; ++i) expected[i] = Reference(z[i], scale);
    ForEachLevel([&](int level) {
      ASSERT_EQ(ZOV_AT(level, zovsMagnitude_16sc_Sfs)(z.data(), actual.data(), n, scale),
                zovStsNoErr);
      for (int i = 0; i < n; ++i) {
        ASSERT_EQ(actual[i], expected[i])
            << "scale " << scale << " of (" << z[i].re << ", " << z[i].im << ")";
      }
    });
  }
}

}  // namespace
}  // namespace zov::test

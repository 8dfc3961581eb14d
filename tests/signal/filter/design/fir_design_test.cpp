// Designed filters against their formulas in long double, and their responses.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "core/memory.h"
#include "signal/filter/design/tone.h"
#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

const long double kPi = std::acos(-1.0L);
enum Kind { kLowpass, kHighpass, kBandpass, kBandstop };
constexpr Kind kKinds[] = {kLowpass, kHighpass, kBandpass, kBandstop};

ZovStatus Design(int level, Kind kind, double f1, double f2, Zov64f* taps, int len, int window,
                 int normal) {
  switch (kind) {
    case kLowpass:
      return ZOV_AT(level, zovsFIRGenLowpass_64f)(f1, taps, len, window, normal);
    case kHighpass:
      return ZOV_AT(level, zovsFIRGenHighpass_64f)(f1, taps, len, window, normal);
    case kBandpass:
      return ZOV_AT(level, zovsFIRGenBandpass_64f)(f1, f2, taps, len, window, normal);
    default:
      return ZOV_AT(level, zovsFIRGenBandstop_64f)(f1, f2, taps, len, window, normal);
  }
}

long double Window(int window, int i, int len) {
  const int n = len - 1;
  const long double x = 2 * kPi * i / n;
  const long double v = 0.5L / std::cos(kPi / n);
  switch (window) {
    case ZOV_WIN_BARTLETT:
      return 1 - std::abs(2.0L * i / n - 1);
    case ZOV_WIN_BLACKMAN_OPT:
      return (1 - v * v) / 2 - std::cos(x) / 2 + v * v / 2 * std::cos(2 * x);
    case ZOV_WIN_HAMMING:
      return 0.54L - 0.46L * std::cos(x);
    case ZOV_WIN_HANN:
      return 0.5L - 0.5L * std::cos(x);
    default:
      return 1;
  }
}

// The gain, real as the phase is linear: the part of the response that the symmetry leaves.
long double Gain(const std::vector<long double>& taps, long double f, bool isAntisymmetric) {
  const int len = static_cast<int>(taps.size());
  long double gain = 0;
  for (int i = 0; i < len; ++i) {
    const long double angle = 2 * kPi * f * (i - (len - 1) / 2.0L);
    gain +=
        taps[static_cast<std::size_t>(i)] * (isAntisymmetric ? std::sin(angle) : std::cos(angle));
  }
  return std::abs(gain);
}

std::vector<long double> Formula(Kind kind, long double f1, long double f2, int len, int window,
                                 bool normal) {
  const bool isOdd = len % 2 != 0;
  std::vector<long double> taps;
  for (int i = 0; i < len; ++i) {
    const long double d = i - (len - 1) / 2.0L;
    // The area of the ideal pass band up to frequency f, at distance d.
    const auto low = [&](long double f) {
      return d == 0 ? 2 * f : std::sin(2 * kPi * f * d) / (kPi * d);
    };
    const long double all = isOdd ? (d == 0 ? 1 : 0) : std::sin(kPi * d) / (kPi * d);
    long double tap = kind == kLowpass ? low(f1) : low(f2) - low(f1);
    if (kind == kHighpass) tap = isOdd ? all - low(f1) : -std::cos(2 * kPi * f1 * d) / (kPi * d);
    if (kind == kBandstop) tap = all - tap;
    taps.push_back(tap * Window(window, i, len));
  }
  if (normal) {
    const long double reference = kind == kHighpass ? 0.5L : kind == kBandpass ? (f1 + f2) / 2 : 0;
    const long double gain = Gain(taps, reference, kind == kHighpass && !isOdd);
    for (long double& tap : taps) tap /= gain;
  }
  return taps;
}

// Calls check(kind, f1, f2, len, window, normal) for a mesh of designs.
template <class Check>
void ForEachDesign(Check check) {
  const double belowQuarter = std::nextafter(0.25, 0.0);
  const double belowHalf = std::nextafter(0.5, 0.0);
  const double edges[][2] = {
      {0.1, 0.2},
      {0.25, 0.4},
      {belowQuarter, 0.25},
      {0.01, 0.49},
      {0.3, belowHalf},
      // Where the filters of a random search err most: short ones and long ones.
      {0.10301562314618995, 0.2},
      {0.036069246161229924, 0.047050560704954565},
      {0.08294921186992936, 0.3073105869865369},
  };
  std::vector<int> lengths = {101, 256, 1000, 1001};
  for (int len = 5; len <= 20; ++len) lengths.push_back(len);
  for (const int len : lengths) {
    for (const auto& [f1, f2] : edges) {
      for (const Kind kind : kKinds) {
        for (int window = 0; window <= 4; ++window) {
          for (const int normal : {0, -3}) {
            const bool isNothing = f1 == belowQuarter && kind == kBandpass;
            if (isNothing && normal != 0) continue;
            check(kind, f1, f2, len, window, normal);
            if (::testing::Test::HasFatalFailure()) return;
          }
        }
      }
    }
  }
}

TEST(FirDesign, TapsAreThoseOfTheFormula) {
  const GuardedArray<Zov64f> array(1001);
  ForEachDesign([&](Kind kind, double f1, double f2, int len, int window, int normal) {
    const auto size = static_cast<std::size_t>(len);
    const std::vector<long double> want = Formula(kind, f1, f2, len, window, normal != 0);
    const double sign = kind == kHighpass && len % 2 == 0 ? -1 : 1;
    // A gain far below 1 magnifies the error as it is divided out.
    const double tolerance = (6e-16 + 5e-17 * len) * (normal != 0 ? 10 : 1);
    std::vector<Zov64f> first(size);
    ForEachLevel([&](int level) {
      Zov64f* const taps = array.At(size, kGuards[level % 2], level == 4 ? 4 : 0);
      std::memset(taps, 0xFF, size * sizeof(Zov64f));  // NaNs, at any address
      ASSERT_EQ(Design(level, kind, f1, f2, taps, len, window, normal), zovStsNoErr);
      if (level == 0) std::copy_n(taps, len, first.begin());
      ASSERT_EQ(std::memcmp(taps, first.data(), size * sizeof(Zov64f)), 0);
    });
    for (std::size_t i = 0; i < size; ++i) {
      ASSERT_NEAR(first[i], want[i], tolerance)
          << "kind " << kind << " len " << len << " i " << i << " window " << window << " edges "
          << f1 << " " << f2 << " normal " << normal;
      ASSERT_EQ(first[i], 2 * i + 1 == size ? first[i] : sign * first[size - 1 - i]);
    }
  });
}

// At an edge the response is half; beyond the transition it is the window's.
TEST(FirDesign, ResponseAtTheEdges) {
  for (const int len : {200, 201}) {
    for (const Kind kind : kKinds) {
      std::vector<Zov64f> taps(static_cast<std::size_t>(len));
      ASSERT_EQ(Design(zovDispatchIndex, kind, 0.11, 0.3, taps.data(), len, ZOV_WIN_HAMMING, 1),
                zovStsNoErr);
      const std::vector<long double> h(taps.begin(), taps.end());
      const bool isAntisymmetric = kind == kHighpass && len % 2 == 0;
      const bool hasTwoEdges = kind == kBandpass || kind == kBandstop;
      EXPECT_NEAR(Gain(h, 0.11, isAntisymmetric), 0.5, 2e-3);
      EXPECT_NEAR(Gain(h, hasTwoEdges ? 0.3 : 0.11, isAntisymmetric), 0.5, 2e-3);
      for (int i = 0; i <= 480; ++i) {
        const double f = i / 1000.0;
        if (std::abs(f - 0.11) < 0.018 || std::abs(f - 0.3) < 0.018) continue;
        const bool isInside = f > 0.11 && (f < 0.3 || !hasTwoEdges);
        const bool passes = isInside == (kind == kHighpass || kind == kBandpass);
        ASSERT_NEAR(Gain(h, f, isAntisymmetric), passes ? 1 : 0, 4e-3)
            << "kind " << kind << " len " << len << " f " << f;
      }
    }
  }
}

TEST(FirDesign, Statuses) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  ForEachLevel([&](int level) {
    Zov64f taps[6];
    for (const Kind kind : kKinds) {
      const bool hasTwoEdges = kind == kBandpass || kind == kBandstop;
      EXPECT_EQ(Design(level, kind, 7, 7, nullptr, 4, 0, 0), zovStsNullPtrErr);
      EXPECT_EQ(Design(level, kind, 0.1, 0.2, taps, 4, 0, 0), zovStsSizeErr);
      EXPECT_EQ(Design(level, kind, 0.1, 0.2, taps, 5, 99, 0), zovStsNoErr);
      for (const double bad : {0.0, -0.1, 0.5, 0.7}) {
        EXPECT_EQ(Design(level, kind, bad, 0.4, taps, 5, 0, 0), zovStsSizeErr);
        EXPECT_EQ(Design(level, kind, 0.1, bad, taps, 5, 0, 0),
                  hasTwoEdges ? zovStsSizeErr : zovStsNoErr);
      }
      EXPECT_EQ(Design(level, kind, 0.2, 0.2, taps, 5, 0, 0),
                hasTwoEdges ? zovStsSizeErr : zovStsNoErr);
      EXPECT_EQ(Design(level, kind, nan, nan, taps, 6, 4, 0), zovStsNoErr);
      for (const Zov64f tap : taps) EXPECT_TRUE(std::isnan(tap));
    }
  });
}

// Memory that runs out at the first or second block.
int blocksLeft;
int blocksHeld;
void* lastBlock;
void* Allocate(std::size_t size) {
  if (blocksLeft-- == 0) return nullptr;
  ++blocksHeld;
  return lastBlock = std::malloc(size);
}
void Release(void* block) {
  --blocksHeld;
  std::free(block);
}

TEST(FirDesign, Memory) {
  const HeapTable heap = zovHeap;
  zovHeap.allocate = Allocate;
  zovHeap.release = Release;
  for (const Kind kind : kKinds) {
    const int blocks = kind == kBandpass || kind == kBandstop ? 2 : 1;
    for (int left = 0; left <= blocks; ++left) {
      Zov64f taps[9];
      blocksLeft = left;
      blocksHeld = 0;
      EXPECT_EQ(Design(zovDispatchIndex, kind, 0.1, 0.3, taps, 9, 0, 1),
                left < blocks ? zovStsNullPtrErr : zovStsNoErr);
      // A block stays behind where the second one fails.
      EXPECT_EQ(blocksHeld, left == blocks ? 0 : left);
      if (blocksHeld == 1) Release(lastBlock);
    }
  }
  zovHeap = heap;
}

TEST(FirDesign, Tone) {
  const GuardedArray<Zov64f> array(100);
  for (int len = 1; len <= 100; ++len) {
    Zov64f* const tone = array.At(static_cast<std::size_t>(len), kGuards[len % 2]);
    const double f = 0.37 - 0.003 * len;
    double phase = 6.2;
    ASSERT_EQ(zovsTone_Direct_64f(tone, len, 2.5, f, &phase), zovStsNoErr);
    for (int n = 0; n < len; ++n) {
      ASSERT_NEAR(tone[n], 2.5L * std::cos(2 * kPi * f * n + 6.2L), 1e-12) << len << " " << n;
    }
    EXPECT_TRUE(phase >= 0 && phase < 6.283185307179586);
    EXPECT_NEAR(std::remainder(phase - (2 * kPi * f * len + 6.2L), 2 * kPi), 0, 1e-12);
  }
  Zov64f x;
  double phase = 0;
  double late = 6.283185307179586;
  EXPECT_EQ(zovsTone_Direct_64f(nullptr, 0, 0, 9, nullptr), zovStsNullPtrErr);
  EXPECT_EQ(zovsTone_Direct_64f(nullptr, 0, 0, 9, &late), zovStsFirGenParamErr);
  EXPECT_EQ(zovsTone_Direct_64f(nullptr, 0, 1, 0.5, &late), zovStsFirGenFreqErr);
  EXPECT_EQ(zovsTone_Direct_64f(nullptr, 0, 1, 0.0, &late), zovStsFirGenPhaseErr);
  EXPECT_EQ(zovsTone_Direct_64f(nullptr, 0, 1, 0.0, &phase), zovStsNullPtrErr);
  EXPECT_EQ(zovsTone_Direct_64f(&x, 0, 1, 0.0, &phase), zovStsSizeErr);
}

}  // namespace
}  // namespace zov::test

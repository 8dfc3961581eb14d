// The window method: the middle of the ideal impulse response, tapered by a window. Only the left
// half is computed; the right one is its mirror image.
#include "signal/filter/design/design.h"

#include <cmath>
#include <cstring>

#include "core/checks.h"
#include "core/memory.h"
#include "signal/filter/design/tone.h"
#include "signal/filter/window/window_64f.h"

namespace zov {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kTwoPi = 6.283185307179586;
constexpr int kLeastTaps = 5;

bool IsOutside(double frequency) { return frequency <= 0 || frequency >= 0.5; }

ZovStatus CheckDesign(const Zov64f* pTaps, int tapsLen, double low, double high) {
  if (pTaps == nullptr) return zovStsNullPtrErr;
  return tapsLen < kLeastTaps || IsOutside(low) || IsOutside(high) ? zovStsSizeErr : zovStsNoErr;
}

// The phases that make the tone at distance d from the centre what the response needs, for d = 1,
// 2, ... (odd lengths) or 1/2, 3/2, ... (even ones). A sum just below a whole turn may round to it.
double WithinTurn(double phase) { return phase >= kTwoPi ? 0.0 : phase; }
double OddSine(double f) {
  return f < 0.25 ? WithinTurn(kTwoPi * (0.75 + f)) : kTwoPi * (f - 0.25);
}
double OddMinusSine(double f) { return kTwoPi * (0.25 + f); }
double EvenSine(double f) { return WithinTurn(kPi * (1.5 + f)); }
double EvenMinusSine(double f) { return kPi * (0.5 + f); }
double EvenCosine(double f) { return kPi * f; }

// The taps on their way: `half` of them left of the centre, which only an odd length has.
struct Taps {
  Zov64f* taps;
  int len;
  int half;
  bool isOdd;

  Taps(Zov64f* pTaps, int tapsLen)
      : taps(pTaps), len(tapsLen), half(tapsLen / 2), isOdd(tapsLen % 2 != 0) {}

  // Memory of a tone, and the tone: one sample more than half the taps.
  Zov64f* AllocateTone() const {
    const std::int64_t bytes = (half + 1) * static_cast<std::int64_t>(sizeof(Zov64f));
    return reinterpret_cast<Zov64f*>(zovAllocAligned(bytes));
  }
  void MakeTone(Zov64f* tone, double frequency, double phase) const {
    zovsTone_Direct_64f(tone, half + 1, 1.0, frequency, &phase);
  }

  // Writes the left half, from the centre outwards: numerator(j) over pi times the distance.
  template <class Numerator>
  void DivideByDistance(Numerator numerator) {
    double divisor = isOdd ? kPi : kHalfPi;
    for (int j = 0; j < half; ++j) {
      taps[half - 1 - j] = numerator(j) / divisor;
      divisor += kPi;
    }
  }

  void ApplyWindow(int winType) {
    std::memset(taps + (len - half), 0, static_cast<std::size_t>(half) * sizeof(Zov64f));
    switch (winType) {
      case ZOV_WIN_BARTLETT:
        zovsWinBartlett_64f_I(taps, len);
        break;
      case ZOV_WIN_BLACKMAN_OPT:
        zovsWinBlackmanOpt_64f_I(taps, len);
        break;
      case ZOV_WIN_HAMMING:
        zovsWinHamming_64f_I(taps, len);
        break;
      case ZOV_WIN_HANN:
        zovsWinHann_64f_I(taps, len);
        break;
      default:
        break;
    }
  }

  // The scale that makes the gain 1 where half of the taps sum to `sum`, with the centre as
  // `centreSign` weighs it.
  double UnitGain(double sum, double centreSign) const {
    return 1 / std::abs(isOdd ? centreSign * taps[half] + 2 * sum : 2 * sum);
  }
  double UnitGainAtZero() const {
    double sum = 0;
    for (int i = 0; i < half; ++i) sum += taps[i];
    return UnitGain(sum, 1);
  }
  double UnitGainAtHalf() const {
    double sum = 0;
    for (int i = 0; i < half; ++i) sum += i % 2 != 0 ? taps[i] : -taps[i];
    return UnitGain(sum, half % 2 != 0 ? 1 : -1);
  }
  double UnitGainAt(double frequency) const {
    double sum = 0;
    for (int j = 0; j < half; ++j) {
      const double distance = isOdd ? j + 1 : j + 0.5;
      sum += std::cos(kTwoPi * frequency * distance) * taps[half - 1 - j];
    }
    return UnitGain(sum, 1);
  }

  void Scale(double gain) {
    for (int i = 0; i < half + (isOdd ? 1 : 0); ++i) taps[i] *= gain;
  }
  void Mirror(double sign) {
    for (int i = 0; i < half; ++i) taps[len - 1 - i] = sign * taps[i];
  }
};

// Without memory the design ends with this status, not with that of failed allocations.
constexpr ZovStatus kNoMemory = zovStsNullPtrErr;

// The left half, and the centre of an odd length, of a response whose one edge has a tone of this
// phase.
ZovStatus MakeOneEdge(Taps& design, double frequency, double phase, double centre) {
  Zov64f* const tone = design.AllocateTone();
  if (tone == nullptr) return kNoMemory;
  design.MakeTone(tone, frequency, phase);
  design.DivideByDistance([=](int j) { return tone[j]; });
  if (design.isOdd) design.taps[design.half] = centre;
  zovFreeAligned(tone);
  return zovStsNoErr;
}

// The same of a response with two edges, whose tones numerator(j, lower, upper) joins.
template <class Numerator>
ZovStatus MakeTwoEdges(Taps& design, double low, double lowPhase, double high, double highPhase,
                       double centre, Numerator numerator) {
  Zov64f* const lower = design.AllocateTone();
  if (lower == nullptr) return kNoMemory;
  Zov64f* const upper = design.AllocateTone();
  if (upper == nullptr) return kNoMemory;  // the first array stays allocated, for good
  design.MakeTone(lower, low, lowPhase);
  design.MakeTone(upper, high, highPhase);
  design.DivideByDistance([=](int j) { return numerator(j, lower[j], upper[j]); });
  if (design.isOdd) design.taps[design.half] = centre;
  zovFreeAligned(upper);
  zovFreeAligned(lower);
  return zovStsNoErr;
}

}  // namespace

ZovStatus DesignLowpass(Zov64f rFreq, Zov64f* pTaps, int tapsLen, int winType, int doNormal) {
  if (const ZovStatus status = CheckDesign(pTaps, tapsLen, rFreq, rFreq)) return status;
  Taps design(pTaps, tapsLen);
  const double phase = design.isOdd ? OddSine(rFreq) : EvenSine(rFreq);
  if (const ZovStatus status = MakeOneEdge(design, rFreq, phase, 2 * rFreq)) return status;
  design.ApplyWindow(winType);
  if (doNormal != 0) design.Scale(design.UnitGainAtZero());
  design.Mirror(1);
  return zovStsNoErr;
}

// A symmetric filter of even length has a zero at half the sampling rate, so this one is
// antisymmetric.
ZovStatus DesignHighpass(Zov64f rFreq, Zov64f* pTaps, int tapsLen, int winType, int doNormal) {
  if (const ZovStatus status = CheckDesign(pTaps, tapsLen, rFreq, rFreq)) return status;
  Taps design(pTaps, tapsLen);
  const double phase = design.isOdd ? OddMinusSine(rFreq) : EvenCosine(rFreq);
  if (const ZovStatus status = MakeOneEdge(design, rFreq, phase, 1 - 2 * rFreq)) return status;
  design.ApplyWindow(winType);
  if (doNormal != 0) design.Scale(design.UnitGainAtHalf());
  design.Mirror(design.isOdd ? 1 : -1);
  return zovStsNoErr;
}

ZovStatus DesignBandpass(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps, int tapsLen, int winType,
                         int doNormal) {
  if (const ZovStatus status = CheckDesign(pTaps, tapsLen, rLowFreq, rHighFreq)) return status;
  if (rLowFreq >= rHighFreq) return zovStsSizeErr;
  Taps design(pTaps, tapsLen);
  const double lowPhase = design.isOdd ? OddMinusSine(rLowFreq) : EvenMinusSine(rLowFreq);
  const double highPhase = design.isOdd ? OddSine(rHighFreq) : EvenSine(rHighFreq);
  const auto sum = [](int, double lower, double upper) { return upper + lower; };
  if (const ZovStatus status = MakeTwoEdges(design, rLowFreq, lowPhase, rHighFreq, highPhase,
                                            2 * (rHighFreq - rLowFreq), sum)) {
    return status;
  }
  design.ApplyWindow(winType);
  if (doNormal != 0) design.Scale(design.UnitGainAt((rLowFreq + rHighFreq) / 2));
  design.Mirror(1);
  return zovStsNoErr;
}

// What a band-pass leaves of a unit impulse, which between samples is a row of alternating signs.
ZovStatus DesignBandstop(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps, int tapsLen, int winType,
                         int doNormal) {
  if (const ZovStatus status = CheckDesign(pTaps, tapsLen, rLowFreq, rHighFreq)) return status;
  if (rLowFreq >= rHighFreq) return zovStsSizeErr;
  Taps design(pTaps, tapsLen);
  const bool isOdd = design.isOdd;
  const double lowPhase = isOdd ? OddSine(rLowFreq) : EvenMinusSine(rLowFreq);
  const double highPhase = isOdd ? OddMinusSine(rHighFreq) : EvenSine(rHighFreq);
  const auto rest = [=](int j, double lower, double upper) {
    return isOdd ? lower + upper : (j % 2 != 0 ? -1.0 : 1.0) - upper - lower;
  };
  if (const ZovStatus status = MakeTwoEdges(design, rLowFreq, lowPhase, rHighFreq, highPhase,
                                            1 - 2 * (rHighFreq - rLowFreq), rest)) {
    return status;
  }
  design.ApplyWindow(winType);
  if (doNormal != 0) design.Scale(design.UnitGainAtZero());
  design.Mirror(1);
  return zovStsNoErr;
}

}  // namespace zov

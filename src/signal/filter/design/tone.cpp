// The tone generator: two cosines start it, products and differences go on.
#include "signal/filter/design/tone.h"

#include <cmath>

#include "core/simd.h"

namespace zov {

ZovStatus zovsTone_Direct_64f(Zov64f* pDst, int len, Zov64f magn, Zov64f rFreq, Zov64f* pPhase) {
  constexpr double kTwoPi = 6.283185307179586;
  if (pPhase == nullptr) return zovStsNullPtrErr;
  if (magn <= 0) return zovStsFirGenParamErr;
  if (rFreq < 0 || rFreq >= 0.5) return zovStsFirGenFreqErr;
  const double phase = *pPhase;
  if (phase < 0 || phase >= kTwoPi) return zovStsFirGenPhaseErr;
  if (pDst == nullptr) return zovStsNullPtrErr;
  if (len < 1) return zovStsSizeErr;

  const double step = kTwoPi * rFreq;
  double next = len * step + phase;
  next -= std::floor(0.15915494309189535 * next) * kTwoPi;
  *pPhase = next < 0 || next >= kTwoPi ? 0.0 : next;

  const double twice = 2 * std::cos(step);
  pDst[0] = magn * std::cos(phase);
  if (len > 1) pDst[1] = magn * std::cos(step + phase);
  for (int n = 2; n < len && n < 4; ++n) pDst[n] = twice * pDst[n - 1] - pDst[n - 2];
  if (len <= 4) return zovStsNoErr;

  using Two = common::Vec<double, 2>;
  const double doubled = twice * twice - 2;
  const Two factor = Two::Broadcast(doubled);
  Two before = Two::Load(pDst);
  Two now = Two::Load(pDst + 2);
  int n = 4;
  for (; len - n >= 2; n += 2) {
    const Two after = factor * now - before;
    after.Store(pDst + n);
    before = now;
    now = after;
  }
  if (n < len) pDst[n] = doubled * now.v[0] - before.v[0];
  return zovStsNoErr;
}

}  // namespace zov

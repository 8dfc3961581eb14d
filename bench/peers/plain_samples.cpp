// Plain loops of conversions and statistics, without argument checks.
#include <cmath>
#include <cstdint>

#include "peers/plain.h"

// Definitions below carry the name of the export that they stand for; every array is its own.
#define IN(type, name) const type* __restrict name
#define OUT(type, name) type* __restrict name
#define EACH for (int i = 0; i < len; ++i)

namespace zov::bench::plain::ZOV_LEVEL_NAMESPACE {

#define ZOV_DECLARE(name) decltype(Kelo_##name) name;
ZOV_PLAIN_SAMPLE_LOOPS(ZOV_DECLARE)
#undef ZOV_DECLARE

namespace {

template <class T>
Zov16s Saturated(T x) {
  return static_cast<Zov16s>(x > 32767 ? T(32767) : x < -32768 ? T(-32768) : x);
}
template <class T>
void Narrow(IN(T, s), OUT(Zov16s, d), int len, int rndMode, T scale) {
  if (rndMode == ZOV_RND_ZERO) {
    EACH d[i] = Saturated(s[i] * scale);
  } else if (rndMode == ZOV_RND_NEAR) {
    EACH d[i] = Saturated(std::rint(s[i] * scale));
  } else {
    EACH d[i] = Saturated(s[i] * scale + std::copysign(T(0.5), s[i]));
  }
}
template <class T, class Wide>
Wide Sum(IN(T, s), int len) {
  Wide sum = 0;
  EACH sum += static_cast<Wide>(s[i]);
  return sum;
}
template <class T>
ZovStatus Largest(IN(T, s), int len, T* result) {
  T best = s[0];
  EACH best = s[i] > best ? s[i] : best;
  *result = best;
  return 0;
}
template <class T>
ZovStatus Smallest(IN(T, s), int len, T* result) {
  T best = s[0];
  EACH best = s[i] < best ? s[i] : best;
  *result = best;
  return 0;
}
template <class T>
ZovStatus Both(IN(T, s), int len, T* low, T* high) {
  T smallest = s[0];
  T largest = s[0];
  EACH {
    smallest = s[i] < smallest ? s[i] : smallest;
    largest = s[i] > largest ? s[i] : largest;
  }
  *low = smallest;
  *high = largest;
  return 0;
}

}  // namespace

ZovStatus zovsConvert_16s32f(IN(Zov16s, s), OUT(Zov32f, d), int len) {
  EACH d[i] = s[i];
  return 0;
}
ZovStatus zovsConvert_16s64f_Sfs(IN(Zov16s, s), OUT(Zov64f, d), int len, int scaleFactor) {
  const double scale = std::ldexp(1.0, -scaleFactor);
  EACH d[i] = s[i] * scale;
  return 0;
}
ZovStatus zovsConvert_32f64f(IN(Zov32f, s), OUT(Zov64f, d), int len) {
  EACH d[i] = static_cast<Zov64f>(s[i]);
  return 0;
}
ZovStatus zovsConvert_64f32f(IN(Zov64f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = static_cast<Zov32f>(s[i]);
  return 0;
}
ZovStatus zovsConvert_32s16s(IN(Zov32s, s), OUT(Zov16s, d), int len) {
  EACH d[i] = Saturated(s[i]);
  return 0;
}
ZovStatus zovsConvert_32f16s_Sfs(IN(Zov32f, s), OUT(Zov16s, d), int len, int rndMode,
                                 int scaleFactor) {
  Narrow(s, d, len, rndMode, std::ldexp(1.0F, -scaleFactor));
  return 0;
}
ZovStatus zovsConvert_64f16s_Sfs(IN(Zov64f, s), OUT(Zov16s, d), int len, int rndMode,
                                 int scaleFactor) {
  Narrow(s, d, len, rndMode, std::ldexp(1.0, -scaleFactor));
  return 0;
}
ZovStatus zovsSplitScaled_16s32f_D2L(IN(Zov16s, s), Zov32f** ppDst, int numChannels, int len) {
  for (int c = 0; c < numChannels; ++c) {
    Zov32f* __restrict d = ppDst[c];
    EACH d[i] = s[i * numChannels + c] * 3.0518044e-5F + 1.5259022e-5F;
  }
  return 0;
}

ZovStatus zovsSum_16s32s_Sfs(IN(Zov16s, s), int len, Zov32s* pSum, int scaleFactor) {
  *pSum = static_cast<Zov32s>(Sum<Zov16s, std::int64_t>(s, len) >> scaleFactor);
  return 0;
}
ZovStatus zovsMean_16s_Sfs(IN(Zov16s, s), int len, Zov16s* pMean, int) {
  *pMean = static_cast<Zov16s>(Sum<Zov16s, std::int64_t>(s, len) / len);
  return 0;
}
ZovStatus zovsMean_32s_Sfs(IN(Zov32s, s), int len, Zov32s* pMean, int) {
  *pMean = static_cast<Zov32s>(Sum<Zov32s, std::int64_t>(s, len) / len);
  return 0;
}
ZovStatus zovsMean_32f(IN(Zov32f, s), int len, Zov32f* pMean, int) {
  *pMean = static_cast<Zov32f>(Sum<Zov32f, double>(s, len) / len);
  return 0;
}
ZovStatus zovsMean_64f(IN(Zov64f, s), int len, Zov64f* pMean) {
  *pMean = Sum<Zov64f, double>(s, len) / len;
  return 0;
}
ZovStatus zovsStdDev_32f(IN(Zov32f, s), int len, Zov32f* pStdDev, int) {
  double sum = 0;
  double squares = 0;
  EACH {
    const double x = static_cast<double>(s[i]);
    sum += x;
    squares += x * x;
  }
  *pStdDev = static_cast<Zov32f>(std::sqrt((squares - sum * sum / len) / (len - 1)));
  return 0;
}
ZovStatus zovsMax_16s(IN(Zov16s, s), int len, Zov16s* pMax) { return Largest(s, len, pMax); }
ZovStatus zovsMax_32f(IN(Zov32f, s), int len, Zov32f* pMax) { return Largest(s, len, pMax); }
ZovStatus zovsMax_64f(IN(Zov64f, s), int len, Zov64f* pMax) { return Largest(s, len, pMax); }
ZovStatus zovsMin_16s(IN(Zov16s, s), int len, Zov16s* pMin) { return Smallest(s, len, pMin); }
ZovStatus zovsMin_32f(IN(Zov32f, s), int len, Zov32f* pMin) { return Smallest(s, len, pMin); }
ZovStatus zovsMinMax_16s(IN(Zov16s, s), int len, Zov16s* pMin, Zov16s* pMax) {
  return Both(s, len, pMin, pMax);
}
ZovStatus zovsMinMax_16u(IN(Zov16u, s), int len, Zov16u* pMin, Zov16u* pMax) {
  return Both(s, len, pMin, pMax);
}
ZovStatus zovsMinMax_32f(IN(Zov32f, s), int len, Zov32f* pMin, Zov32f* pMax) {
  return Both(s, len, pMin, pMax);
}
ZovStatus zovsMaxIndx_32f(IN(Zov32f, s), int len, Zov32f* pMax, int* pIndx) {
  int best = 0;
  EACH {
    if (s[i] > s[best]) best = i;
  }
  *pMax = s[best];
  *pIndx = best;
  return 0;
}
ZovStatus zovsMinIndx_32f(IN(Zov32f, s), int len, Zov32f* pMin, int* pIndx) {
  int best = 0;
  EACH {
    if (s[i] < s[best]) best = i;
  }
  *pMin = s[best];
  *pIndx = best;
  return 0;
}
ZovStatus zovsMaxEvery_32f_I(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = s[i] > d[i] ? s[i] : d[i];
  return 0;
}
ZovStatus zovsMinEvery_32f_I(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = s[i] < d[i] ? s[i] : d[i];
  return 0;
}
ZovStatus zovsNormalize_32f(IN(Zov32f, s), OUT(Zov32f, d), int len, Zov32f vSub, Zov32f vDiv) {
  const Zov32f scale = 1 / vDiv;
  EACH d[i] = (s[i] - vSub) * scale;
  return 0;
}
ZovStatus zovsNormalize_64f(IN(Zov64f, s), OUT(Zov64f, d), int len, Zov64f vSub, Zov64f vDiv) {
  const Zov64f scale = 1 / vDiv;
  EACH d[i] = (s[i] - vSub) * scale;
  return 0;
}

}  // namespace zov::bench::plain::ZOV_LEVEL_NAMESPACE

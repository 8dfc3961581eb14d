// Plain loops over arrays, without argument checks.
#include <cmath>
#include <cstdint>

#include "peers/plain.h"

// Definitions below carry the name of the export that they stand for; every array is its own.
#define IN(type, name) const type* __restrict name
#define OUT(type, name) type* __restrict name
#define EACH for (int i = 0; i < len; ++i)

namespace zov::bench::plain::ZOV_LEVEL_NAMESPACE {

#define ZOV_DECLARE(name) decltype(Kelo_##name) name;
ZOV_PLAIN_LOOPS(ZOV_DECLARE)
#undef ZOV_DECLARE

ZovStatus zovsSet_8u(Zov8u val, OUT(Zov8u, d), int len) {
  EACH d[i] = val;
  return 0;
}
ZovStatus zovsSet_32s(Zov32s val, OUT(Zov32s, d), int len) {
  EACH d[i] = val;
  return 0;
}
ZovStatus zovsSet_32f(Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] = val;
  return 0;
}
ZovStatus zovsZero_32f(OUT(Zov32f, d), int len) {
  EACH d[i] = 0;
  return 0;
}
ZovStatus zovsZero_64f(OUT(Zov64f, d), int len) {
  EACH d[i] = 0;
  return 0;
}
ZovStatus zovsCopy_32f(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = s[i];
  return 0;
}
ZovStatus zovsCopy_64f(IN(Zov64f, s), OUT(Zov64f, d), int len) {
  EACH d[i] = s[i];
  return 0;
}

ZovStatus zovsFind_8u(IN(Zov8u, s), int len, IN(Zov8u, f), int lenFind, OUT(int, index)) {
  for (int i = 0; i <= len - lenFind; ++i) {
    int j = 0;
    while (j < lenFind && s[i + j] == f[j]) ++j;
    if (j == lenFind) {
      *index = i;
      return 0;
    }
  }
  *index = -1;
  return 0;
}
ZovStatus zovsFind_16u(IN(Zov16u, s), int len, IN(Zov16u, f), int lenFind, OUT(int, index)) {
  for (int i = 0; i <= len - lenFind; ++i) {
    int j = 0;
    while (j < lenFind && s[i + j] == f[j]) ++j;
    if (j == lenFind) {
      *index = i;
      return 0;
    }
  }
  *index = -1;
  return 0;
}
ZovStatus zovsReplaceC_16u(IN(Zov16u, s), OUT(Zov16u, d), int len, Zov16u oldVal, Zov16u newVal) {
  EACH d[i] = s[i] == oldVal ? newVal : s[i];
  return 0;
}
ZovStatus zovsThreshold_32f_I(OUT(Zov32f, d), int len, Zov32f level, int relOp) {
  if (relOp == ZOV_CMP_LESS) {
    EACH d[i] = d[i] < level ? level : d[i];
  } else {
    EACH d[i] = d[i] > level ? level : d[i];
  }
  return 0;
}
ZovStatus zovsThreshold_GTVal_32f(IN(Zov32f, s), OUT(Zov32f, d), int len, Zov32f level,
                                  Zov32f value) {
  EACH d[i] = s[i] > level ? value : s[i];
  return 0;
}
ZovStatus zovsThreshold_GTVal_32f_I(OUT(Zov32f, d), int len, Zov32f level, Zov32f value) {
  EACH d[i] = d[i] > level ? value : d[i];
  return 0;
}
ZovStatus zovsThreshold_LTVal_32f(IN(Zov32f, s), OUT(Zov32f, d), int len, Zov32f level,
                                  Zov32f value) {
  EACH d[i] = s[i] < level ? value : s[i];
  return 0;
}
ZovStatus zovsThreshold_LTVal_32f_I(OUT(Zov32f, d), int len, Zov32f level, Zov32f value) {
  EACH d[i] = d[i] < level ? value : d[i];
  return 0;
}

ZovStatus zovsAdd_32f(IN(Zov32f, a), IN(Zov32f, b), OUT(Zov32f, d), int len) {
  EACH d[i] = a[i] + b[i];
  return 0;
}
ZovStatus zovsAdd_32f_I(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] += s[i];
  return 0;
}
ZovStatus zovsAddC_32f(IN(Zov32f, s), Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] = s[i] + val;
  return 0;
}
ZovStatus zovsAddC_32f_I(Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] += val;
  return 0;
}
ZovStatus zovsAddC_64f_I(Zov64f val, OUT(Zov64f, d), int len) {
  EACH d[i] += val;
  return 0;
}
ZovStatus zovsSub_32f(IN(Zov32f, a), IN(Zov32f, b), OUT(Zov32f, d), int len) {
  EACH d[i] = b[i] - a[i];
  return 0;
}
ZovStatus zovsSub_32f_I(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] -= s[i];
  return 0;
}
ZovStatus zovsSubC_32f(IN(Zov32f, s), Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] = s[i] - val;
  return 0;
}
ZovStatus zovsSubC_32f_I(Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] -= val;
  return 0;
}
ZovStatus zovsSubCRev_32f(IN(Zov32f, s), Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] = val - s[i];
  return 0;
}
ZovStatus zovsMul_32f(IN(Zov32f, a), IN(Zov32f, b), OUT(Zov32f, d), int len) {
  EACH d[i] = a[i] * b[i];
  return 0;
}
ZovStatus zovsMul_32f_I(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] *= s[i];
  return 0;
}
ZovStatus zovsMul_64f_I(IN(Zov64f, s), OUT(Zov64f, d), int len) {
  EACH d[i] *= s[i];
  return 0;
}
ZovStatus zovsMul_64fc(IN(Zov64fc, a), IN(Zov64fc, b), OUT(Zov64fc, d), int len) {
  EACH d[i] = {a[i].re * b[i].re - a[i].im * b[i].im, a[i].re * b[i].im + a[i].im * b[i].re};
  return 0;
}
ZovStatus zovsMulC_32f(IN(Zov32f, s), Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] = s[i] * val;
  return 0;
}
ZovStatus zovsMulC_32f_I(Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] *= val;
  return 0;
}
ZovStatus zovsMulC_64f_I(Zov64f val, OUT(Zov64f, d), int len) {
  EACH d[i] *= val;
  return 0;
}
ZovStatus zovsDiv_32f(IN(Zov32f, a), IN(Zov32f, b), OUT(Zov32f, d), int len) {
  EACH d[i] = b[i] / a[i];
  return 0;
}
ZovStatus zovsDivC_32f(IN(Zov32f, s), Zov32f val, OUT(Zov32f, d), int len) {
  const Zov32f reciprocal = 1 / val;
  EACH d[i] = s[i] * reciprocal;
  return 0;
}
ZovStatus zovsDivC_32f_I(Zov32f val, OUT(Zov32f, d), int len) {
  const Zov32f reciprocal = 1 / val;
  EACH d[i] *= reciprocal;
  return 0;
}
ZovStatus zovsDivCRev_32f(IN(Zov32f, s), Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] = val / s[i];
  return 0;
}
ZovStatus zovsDivCRev_32f_I(Zov32f val, OUT(Zov32f, d), int len) {
  EACH d[i] = val / d[i];
  return 0;
}
ZovStatus zovsAbs_32f(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = fabsf(s[i]);
  return 0;
}
ZovStatus zovsAbs_32f_I(OUT(Zov32f, d), int len) {
  EACH d[i] = fabsf(d[i]);
  return 0;
}
ZovStatus zovsSqr_32f_I(OUT(Zov32f, d), int len) {
  EACH d[i] *= d[i];
  return 0;
}
ZovStatus zovsSqrt_32f(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = sqrtf(s[i]);
  return 0;
}
ZovStatus zovsMagnitude_32fc(IN(Zov32fc, s), OUT(Zov32f, d), int len) {
  EACH d[i] = sqrtf(s[i].re * s[i].re + s[i].im * s[i].im);
  return 0;
}
ZovStatus zovsMagnitude_64fc(IN(Zov64fc, s), OUT(Zov64f, d), int len) {
  EACH d[i] = sqrt(s[i].re * s[i].re + s[i].im * s[i].im);
  return 0;
}
ZovStatus zovsMagnitude_16sc_Sfs(IN(Zov16sc, s), OUT(Zov16s, d), int len, int scaleFactor) {
  const float scale = ldexpf(1, -scaleFactor);
  EACH {
    const float re = s[i].re;
    const float im = s[i].im;
    const float magnitude = rintf(sqrtf(re * re + im * im) * scale);
    d[i] = static_cast<Zov16s>(magnitude < 32767 ? magnitude : 32767);
  }
  return 0;
}
ZovStatus zovsPhase_32fc(IN(Zov32fc, s), OUT(Zov32f, d), int len) {
  EACH d[i] = atan2f(s[i].im, s[i].re);
  return 0;
}

namespace {
Zov16s Limited16s(int x) {
  return static_cast<Zov16s>(x < -32768 ? -32768 : x > 32767 ? 32767 : x);
}
Zov16u Limited16u(int x) { return static_cast<Zov16u>(x > 65535 ? 65535 : x); }
int RoundedDown(int x, int count) {
  return (x + (1 << (count - 1)) - 1 + ((x >> count) & 1)) >> count;
}
}  // namespace

// A loop of its own for each sign of the scale factor.
#define SCALED(sum, limit, destination)                      \
  if (scaleFactor > 0) {                                     \
    EACH destination = limit(RoundedDown(sum, scaleFactor)); \
  } else if (scaleFactor == 0) {                             \
    EACH destination = limit(sum);                           \
  } else {                                                   \
    EACH destination = limit((sum) * (1 << -scaleFactor));   \
  }                                                          \
  return 0;

ZovStatus zovsAdd_16s_Sfs(IN(Zov16s, a), IN(Zov16s, b), OUT(Zov16s, d), int len,
                          int scaleFactor){SCALED(a[i] + b[i], Limited16s, d[i])} ZovStatus
    zovsAdd_16s_I(IN(Zov16s, s), OUT(Zov16s, d), int len) {
  EACH d[i] = Limited16s(d[i] + s[i]);
  return 0;
}
ZovStatus zovsAdd_16u_ISfs(IN(Zov16u, s), OUT(Zov16u, d), int len,
                           int scaleFactor){SCALED(s[i] + d[i], Limited16u, d[i])} ZovStatus
    zovsAddC_16u_ISfs(Zov16u val, OUT(Zov16u, d), int len,
                      int scaleFactor){SCALED(d[i] + val, Limited16u, d[i])} ZovStatus
    zovsSubC_16u_ISfs(Zov16u val, OUT(Zov16u, d), int len, int scaleFactor){
        SCALED((d[i] > val ? d[i] - val : 0), Limited16u, d[i])} ZovStatus
    zovsSubC_16s_I(Zov16s val, OUT(Zov16s, d), int len) {
  EACH d[i] = Limited16s(d[i] - val);
  return 0;
}
ZovStatus zovsMulC_16s_I(Zov16s val, OUT(Zov16s, d), int len) {
  EACH d[i] = Limited16s(d[i] * val);
  return 0;
}
ZovStatus zovsAbs_32s_I(OUT(Zov32s, d), int len) {
  EACH d[i] = d[i] >= 0 ? d[i] : d[i] == INT32_MIN ? INT32_MAX : -d[i];
  return 0;
}
ZovStatus zovsAndC_16u(IN(Zov16u, s), Zov16u val, OUT(Zov16u, d), int len) {
  EACH d[i] = s[i] & val;
  return 0;
}
ZovStatus zovsAndC_16u_I(Zov16u val, OUT(Zov16u, d), int len) {
  EACH d[i] &= val;
  return 0;
}
ZovStatus zovsOr_16u_I(IN(Zov16u, s), OUT(Zov16u, d), int len) {
  EACH d[i] |= s[i];
  return 0;
}
ZovStatus zovsLShiftC_16u(IN(Zov16u, s), int val, OUT(Zov16u, d), int len) {
  EACH d[i] = static_cast<Zov16u>(s[i] << val);
  return 0;
}
ZovStatus zovsLShiftC_16u_I(int val, OUT(Zov16u, d), int len) {
  EACH d[i] = static_cast<Zov16u>(d[i] << val);
  return 0;
}
ZovStatus zovsRShiftC_16u_I(int val, OUT(Zov16u, d), int len) {
  EACH d[i] = static_cast<Zov16u>(d[i] >> val);
  return 0;
}
// GCC rounds in vectors only where it need not think of traps.
#if defined(__GNUC__) && !defined(__clang__)
#define NO_TRAPS __attribute__((optimize("no-trapping-math")))
#else
#define NO_TRAPS
#endif
NO_TRAPS ZovStatus zovsCeil_32f(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = ceilf(s[i]);
  return 0;
}
NO_TRAPS ZovStatus zovsFloor_32f(IN(Zov32f, s), OUT(Zov32f, d), int len) {
  EACH d[i] = floorf(s[i]);
  return 0;
}

}  // namespace zov::bench::plain::ZOV_LEVEL_NAMESPACE

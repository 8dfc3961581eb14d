/* Floating-point arithmetic. */
#include <stdlib.h>

#include "smoke.h"

static Zov32f a[N], b[N], d[N];
static Zov64f da[N], dd[N];
static Zov64fc zc[N], zd[N];
static Zov32fc fc[N];
static Zov16sc sc[N];
static Zov16s s[N];
static Zov16u u[N];

static void Reset(void) {
  for (int i = 0; i < N; ++i) {
    a[i] = (Zov32f)(i - 500);
    b[i] = (Zov32f)(i + 1);
    d[i] = a[i];
    da[i] = i - 500;
    dd[i] = da[i];
  }
}

static void TwoSources(void) {
  Reset();
  RUN(zovsAdd_32f, a, b, d, N);
  EACH(N, d[i] == a[i] + b[i]);
  RUN(zovsAdd_32f_I, a, d, N);
  EACH(N, d[i] == 2.f * a[i] + b[i]);
  RUN(zovsSub_32f, a, b, d, N);
  EACH(N, d[i] == b[i] - a[i]);
  RUN(zovsSub_32f_I, b, d, N);
  EACH(N, d[i] == -a[i]);
  RUN(zovsMul_32f, a, b, d, N);
  EACH(N, d[i] == a[i] * b[i]);
  Reset();
  RUN(zovsMul_32f_I, b, d, N);
  EACH(N, d[i] == a[i] * b[i]);
  RUN(zovsMul_64f_I, da, dd, N);
  EACH(N, dd[i] == da[i] * da[i]);
}

static void Unary(void) {
  Reset();
  RUN(zovsAbs_32f, a, d, N);
  EACH(N, d[i] == (Zov32f)fabs(a[i]));
  for (int i = 0; i < N; ++i) d[i] = a[i];
  RUN(zovsAbs_32f_I, d, N);
  EACH(N, d[i] == (Zov32f)fabs(a[i]));
  RUN(zovsSqr_32f_I, d, N);
  EACH(N, d[i] == a[i] * a[i]);
}

static void Constants(void) {
  Reset();
  RUN(zovsAddC_32f, a, 3.f, d, N);
  EACH(N, d[i] == a[i] + 3.f);
  RUN(zovsAddC_32f_I, -3.f, d, N);
  EACH(N, d[i] == a[i]);
  RUN(zovsSubC_32f, a, 3.f, d, N);
  EACH(N, d[i] == a[i] - 3.f);
  RUN(zovsSubC_32f_I, -3.f, d, N);
  EACH(N, d[i] == a[i]);
  RUN(zovsSubCRev_32f, a, 3.f, d, N);
  EACH(N, d[i] == 3.f - a[i]);
  RUN(zovsMulC_32f, a, 3.f, d, N);
  EACH(N, d[i] == a[i] * 3.f);
  RUN(zovsMulC_32f_I, 2.f, d, N);
  EACH(N, d[i] == a[i] * 6.f);
  RUN(zovsDivC_32f, a, 4.f, d, N);
  EACH(N, d[i] == a[i] / 4.f);
  RUN(zovsDivC_32f_I, .25f, d, N);
  EACH(N, d[i] == a[i]);
  RUN(zovsAddC_64f_I, 3., dd, N);
  RUN(zovsMulC_64f_I, 2., dd, N);
  EACH(N, dd[i] == (da[i] + 3.) * 2.);
}

static void Quotients(void) {
  Reset();
  RUN(zovsDiv_32f, b, a, d, N);
  EACH(N, CLOSE(d[i], a[i] / b[i]));
  RUN(zovsDivCRev_32f, b, 7.f, d, N);
  EACH(N, d[i] == 7.f / b[i]);
  for (int i = 0; i < N; ++i) d[i] = b[i];
  RUN(zovsDivCRev_32f_I, 7.f, d, N);
  EACH(N, d[i] == 7.f / b[i]);
  EXPECT(CALL(zovsDiv_32f, a, b, d, N) == zovStsDivByZeroWrn);
  RUN(zovsSqrt_32f, b, d, N);
  EACH(N, CLOSE(d[i], sqrt(b[i])));
  EXPECT(CALL(zovsSqrt_32f, a, d, N) == zovStsSqrtNegArgWrn);
}

static void Thresholds(void) {
  Reset();
  RUN(zovsThreshold_32f_I, d, N, 7.f, ZOV_CMP_LESS);
  EACH(N, d[i] == (a[i] < 7.f ? 7.f : a[i]));
  RUN(zovsThreshold_GTVal_32f, a, d, N, 7.f, 9.f);
  EACH(N, d[i] == (a[i] > 7.f ? 9.f : a[i]));
  RUN(zovsThreshold_GTVal_32f_I, d, N, 8.f, 1.f);
  EACH(N, d[i] == (a[i] > 7.f ? 1.f : a[i]));
  RUN(zovsThreshold_LTVal_32f, a, d, N, 7.f, 2.f);
  EACH(N, d[i] == (a[i] < 7.f ? 2.f : a[i]));
  RUN(zovsThreshold_LTVal_32f_I, d, N, 3.f, 1.f);
  EACH(N, d[i] == (a[i] < 7.f ? 1.f : a[i]));
  for (int i = 0; i < N; ++i) u[i] = (Zov16u)(i % 5);
  RUN(zovsReplaceC_16u, u, u, N, 3, 65535);
  EACH(N, u[i] == (i % 5 == 3 ? 65535 : i % 5));
}

static void Complex(void) {
  for (int i = 0; i < N; ++i) {
    zc[i].re = 3. * (i - 500);
    zc[i].im = -4. * (i - 500);
    fc[i].re = 3.f * (Zov32f)i;
    fc[i].im = -4.f * (Zov32f)i;
    sc[i].re = (Zov16s)(3 * i);
    sc[i].im = (Zov16s)(-4 * i);
  }
  RUN(zovsMul_64fc, zc, zc, zd, N);
  EACH(N, zd[i].re == -7. * (i - 500) * (i - 500) && zd[i].im == -24. * (i - 500) * (i - 500));
  RUN(zovsMagnitude_32fc, fc, d, N);
  EACH(N, d[i] == 5.f * (Zov32f)i);
  RUN(zovsMagnitude_64fc, zc, dd, N);
  EACH(N, dd[i] == 5. * abs(i - 500));
  RUN(zovsMagnitude_16sc_Sfs, sc, s, N, 0);
  EACH(N, s[i] == 5 * i);
  RUN(zovsPhase_32fc, fc, d, N);
  EACH(N, i == 0 ? d[i] == 0.f : CLOSE(d[i], -0.92729521800161219));
}

void SmokeArithmetic(void) {
  TwoSources();
  Constants();
  Unary();
  Quotients();
  Complex();
  Thresholds();
}

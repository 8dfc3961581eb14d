/* Floating-point arithmetic. */
#include "smoke.h"

static Zov32f a[N], b[N], d[N];
static Zov64f da[N], dd[N];
static Zov64fc zc[N], zd[N];

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

static void Complex(void) {
  for (int i = 0; i < N; ++i) {
    zc[i].re = 3. * (i - 500);
    zc[i].im = -4. * (i - 500);
  }
  RUN(zovsMul_64fc, zc, zc, zd, N);
  EACH(N, zd[i].re == -7. * (i - 500) * (i - 500) && zd[i].im == -24. * (i - 500) * (i - 500));
}

void SmokeArithmetic(void) {
  TwoSources();
  Unary();
  Complex();
}

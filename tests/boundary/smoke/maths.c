/* Vector maths, and the elementary functions without an accuracy class. */
#include "smoke.h"

static Zov32f x[N], e[N], y[N];

/* Half a unit of a class of 11 bits, for results of any size. */
#define NEAR(a, b) (fabs((double)(a) - (double)(b)) <= 4.9e-4 * fabs((double)(b)))
#define FINE(a, b) (fabs((double)(a) - (double)(b)) <= 4.8e-7 * fabs((double)(b)))

static void Reset(double low, double high) {
  for (int i = 0; i < N; ++i) {
    x[i] = (Zov32f)(low + (high - low) * (i + 0.5) / N);
    e[i] = (Zov32f)((i % 41) - 20) / 4.f;
    y[i] = 0.f;
  }
}

void SmokeMaths(void) {
  Reset(-20, 20);
  RUN(zovsExp_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], exp(x[i])));
  RUN(zovsExp_32f, x, y, N);
  EACH(N, FINE(y[i], exp(x[i])));
  RUN(zovsSin_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], sin(x[i])));
  RUN(zovsCos_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], cos(x[i])));
  RUN(zovsTan_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], tan(x[i])));
  RUN(zovsAtan_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], atan(x[i])));
  RUN(zovsArctan_32f, x, y, N);
  EACH(N, FINE(y[i], atan(x[i])));
  RUN(zovsAtan2_32f_A11, x, e, y, N);
  EACH(N, NEAR(y[i], atan2(x[i], e[i])));
  RUN(zovsSinh_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], sinh(x[i])));
  RUN(zovsCosh_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], cosh(x[i])));
  RUN(zovsTanh_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], tanh(x[i])));
  RUN(zovsCeil_32f, x, y, N);
  EACH(N, y[i] == (Zov32f)ceil(x[i]));
  RUN(zovsFloor_32f, x, y, N);
  EACH(N, y[i] == (Zov32f)floor(x[i]));

  Reset(-1, 1);
  RUN(zovsAsin_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], asin(x[i])));
  RUN(zovsAcos_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], acos(x[i])));

  Reset(-1, -0.5);
  EXPECT(CALL(zovsLn_32f_A11, x, y, N) == zovStsDomainWrn);

  Reset(0, 30);
  RUN(zovsLn_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], log(x[i])));
  RUN(zovsLn_32f, x, y, N);
  EACH(N, FINE(y[i], log(x[i])));
  RUN(zovsLog10_32f_A11, x, y, N);
  EACH(N, NEAR(y[i], log10(x[i])));
  RUN(zovsLog10_32f_A21, x, y, N);
  EACH(N, FINE(y[i], log10(x[i])));
  RUN(zovsPow_32f_A11, x, e, y, N);
  EACH(N, NEAR(y[i], pow(x[i], e[i])));
  RUN(zovsPow_32f_A24, x, e, y, N);
  EACH(N, FINE(y[i], pow(x[i], e[i])));
  RUN(zovsPowx_32f_A11, x, -1.5f, y, N);
  EACH(N, NEAR(y[i], pow(x[i], -1.5)));
  RUN(zovsPowx_32f_A24, x, -1.5f, y, N);
  EACH(N, FINE(y[i], pow(x[i], -1.5)));
}

/* Integer arithmetic and bit operations. */
#include <stdlib.h>

#include "smoke.h"

static Zov16s s[N], t[N];
static Zov16u u[N], v[N];
static Zov32s w[N];

static void Reset(void) {
  for (int i = 0; i < N; ++i) {
    s[i] = (Zov16s)(60 * (i - 500));
    t[i] = s[i];
    u[i] = (Zov16u)(65 * i);
    v[i] = u[i];
    w[i] = i - 500;
  }
}

/* value / 2 to the nearest integer, ties to even */
static int Half(int value) {
  const int down = (value - (value & 1)) / 2;
  return (value & 1) != 0 && (down & 1) != 0 ? down + 1 : down;
}
static int Limited(int value, int low, int high) {
  return value < low ? low : value > high ? high : value;
}
#define SIGNED(value) ((Zov16s)Limited((value), -32768, 32767))

void SmokeInteger(void) {
  Reset();
  RUN(zovsAdd_16s_Sfs, s, s, t, N, 1);
  EACH(N, t[i] == s[i]);
  RUN(zovsAdd_16s_I, s, t, N);
  EACH(N, t[i] == SIGNED(2 * s[i]));
  Reset();
  RUN(zovsSubC_16s_I, 30000, t, N);
  EACH(N, t[i] == SIGNED(s[i] - 30000));
  Reset();
  RUN(zovsMulC_16s_I, -3, t, N);
  EACH(N, t[i] == SIGNED(-3 * s[i]));
  RUN(zovsAdd_16u_ISfs, u, v, N, 1);
  EACH(N, v[i] == u[i]);
  RUN(zovsAddC_16u_ISfs, 7, v, N, 1);
  EACH(N, v[i] == Half(u[i] + 7));
  Reset();
  RUN(zovsSubC_16u_ISfs, 1000, v, N, 0);
  EACH(N, v[i] == Limited(u[i] - 1000, 0, 65535));
  RUN(zovsAbs_32s_I, w, N);
  EACH(N, w[i] == abs(i - 500));

  RUN(zovsAndC_16u, u, 0x0FF0, v, N);
  EACH(N, v[i] == (u[i] & 0x0FF0));
  RUN(zovsAndC_16u_I, 0x0F00, v, N);
  EACH(N, v[i] == (u[i] & 0x0F00));
  RUN(zovsOr_16u_I, u, v, N);
  EACH(N, v[i] == u[i]);
  RUN(zovsLShiftC_16u, u, 3, v, N);
  EACH(N, v[i] == (Zov16u)(u[i] << 3));
  RUN(zovsLShiftC_16u_I, 2, v, N);
  EACH(N, v[i] == (Zov16u)(u[i] << 5));
  RUN(zovsRShiftC_16u_I, 5, v, N);
  EACH(N, v[i] == (u[i] & 0x7FF));
}

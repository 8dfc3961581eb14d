/* Windows. */
#include "smoke.h"

void SmokeWindow(void) {
  static Zov32f floats[N];
  static Zov16s words[N];
  const double x = 8 * atan(1) / (N - 1);
  for (int i = 0; i < N; ++i) floats[i] = 1;
  RUN(zovsWinBartlett_32f_I, floats, N);
  EACH(N, fabs(floats[i] - (i < N / 2 ? i : N - 1 - i) * 2. / (N - 1)) < 1e-5);
  for (int i = 0; i < N; ++i) floats[i] = 1;
  RUN(zovsWinBlackmanStd_32f_I, floats, N);
  EACH(N, fabs(floats[i] - (.42 - .5 * cos(i * x) + .08 * cos(2 * i * x))) < 1e-6);
  for (int i = 0; i < N; ++i) floats[i] = 1;
  RUN(zovsWinHamming_32f_I, floats, N);
  EACH(N, fabs(floats[i] - (.54 - .46 * cos(i * x))) < 1e-6);
  for (int i = 0; i < N; ++i) floats[i] = 1;
  RUN(zovsWinHann_32f_I, floats, N);
  EACH(N, fabs(floats[i] - (.5 - .5 * cos(i * x))) < 1e-6);
  for (int i = 0; i < N; ++i) words[i] = -10000;
  RUN(zovsWinHamming_16s_I, words, N);
  EACH(N, fabs(words[i] + 10000 * (.54 - .46 * cos(i * x))) < 1.1);
}

/* Windows and the filter design. */
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

void SmokeDesign(void) {
  Zov64f taps[65], sum = 0;
  RUN(zovsFIRGenLowpass_64f, .1, taps, 65, ZOV_WIN_HAMMING, 1);
  for (int i = 0; i < 65; ++i) sum += taps[i];
  EXPECT(CLOSE(sum, 1) && taps[0] == taps[64] && taps[32] > .19);
  RUN(zovsFIRGenHighpass_64f, .1, taps, 64, ZOV_WIN_HANN, 0);
  EXPECT(taps[31] == -taps[32] && taps[31] > .6);
  RUN(zovsFIRGenBandpass_64f, .1, .2, taps, 65, ZOV_WIN_BLACKMAN_OPT, 0);
  EXPECT(CLOSE(taps[32], .2));
  RUN(zovsFIRGenBandstop_64f, .1, .2, taps, 65, ZOV_WIN_BARTLETT, 0);
  EXPECT(CLOSE(taps[32], .8) && taps[0] == 0 && taps[64] == 0);
}

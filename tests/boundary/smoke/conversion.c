/* Conversions between element types. */
#include "smoke.h"

static Zov16s words[N], narrowed[N];
static Zov32s ints[N];
static Zov32f floats[N], channels[3][N];
static Zov64f doubles[N];

/* 1.5 * value, rounded to even, which a scale factor of 1 makes of 3 * value. */
static int Halves(int value) {
  return value % 2 == 0 ? 3 * value / 2 : 2 * (int)floor((3. * value + 2.) / 4.);
}

void SmokeConversion(void) {
  Zov32f* rows[3];
  for (int i = 0; i < N; ++i) {
    words[i] = (Zov16s)(i - 500);
    ints[i] = 100 * (i - 500);
  }
  RUN(zovsConvert_16s32f, words, floats, N);
  EACH(N, floats[i] == (Zov32f)(i - 500));
  RUN(zovsConvert_16s64f_Sfs, words, doubles, N, 2);
  EACH(N, doubles[i] == (i - 500) / 4.);
  RUN(zovsConvert_32f64f, floats, doubles, N);
  EACH(N, doubles[i] == i - 500);
  RUN(zovsConvert_64f32f, doubles, floats, N);
  EACH(N, floats[i] == (Zov32f)(i - 500));
  RUN(zovsConvert_32s16s, ints, narrowed, N);
  EACH(N, narrowed[i] == (ints[i] > 32767 ? 32767 : ints[i] < -32768 ? -32768 : ints[i]));
  for (int i = 0; i < N; ++i) doubles[i] = floats[i] = 3.f * (Zov32f)(i - 500);
  RUN(zovsConvert_32f16s_Sfs, floats, narrowed, N, ZOV_RND_NEAR, 1);
  EACH(N, narrowed[i] == Halves(i - 500));
  RUN(zovsConvert_32f16s_Sfs, floats, narrowed, N, ZOV_RND_FINANCIAL, 1);
  EACH(N, narrowed[i] == (i < 500 ? -((3 * (500 - i) + 1) / 2) : (3 * (i - 500) + 1) / 2));
  RUN(zovsConvert_64f16s_Sfs, doubles, narrowed, N, ZOV_RND_ZERO, 1);
  EACH(N, narrowed[i] == 3 * (i - 500) / 2);
  for (int c = 0; c < 3; ++c) rows[c] = channels[c];
  RUN(zovsSplitScaled_16s32f_D2L, words, rows, 3, N / 3);
  for (int c = 0; c < 3; ++c) {
    EACH(N / 3, fabs(channels[c][i] - (words[3 * i + c] + 0.5) / 32767.5) < 1e-7);
  }
}

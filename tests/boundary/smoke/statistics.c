/* Sums, means, deviation, extremes and normalisation. */
#include "smoke.h"

static Zov16s words[N];
static Zov16u unsignedWords[N];
static Zov32s ints[N];
static Zov32f floats[N];
static Zov64f doubles[N];

static void Sums(void) {
  Zov16s mean16 = 0;
  Zov32s sum = 0, mean32 = 0;
  Zov32f meanFloat = 0, deviation = 0;
  Zov64f meanDouble = 0;
  RUN(zovsSum_16s32s_Sfs, words, N, &sum, 0);
  EXPECT(sum == N);
  RUN(zovsMean_16s_Sfs, words, N, &mean16, 0);
  EXPECT(mean16 == 1);
  RUN(zovsMean_32s_Sfs, ints, N, &mean32, 0);
  EXPECT(mean32 == 1);
  RUN(zovsMean_32f, floats, N, &meanFloat, 0);
  EXPECT(meanFloat == 1.f);
  RUN(zovsMean_64f, doubles, N, &meanDouble);
  EXPECT(meanDouble == 1.);
  RUN(zovsStdDev_32f, floats, N, &deviation, 0);
  EXPECT(CLOSE(deviation, sqrt(N * (N + 1.) / 12.)));
  RUN(zovsStdDev_32f, floats, N, &deviation, 1);
  EXPECT(fabs(deviation - sqrt(N * (N + 1.) / 12.)) < 1e-2);
}

static void Extremes(void) {
  Zov16s least16 = 0, most16 = 0;
  Zov16u leastUnsigned = 0, mostUnsigned = 0;
  Zov32f least = 0, most = 0;
  Zov64f mostDouble = 0;
  int at = 0;
  RUN(zovsMax_16s, words, N, &most16);
  RUN(zovsMin_16s, words, N, &least16);
  EXPECT(least16 == -500 && most16 == 502);
  RUN(zovsMinMax_16s, words, N, &least16, &most16);
  EXPECT(least16 == -500 && most16 == 502);
  RUN(zovsMinMax_16u, unsignedWords, N, &leastUnsigned, &mostUnsigned);
  EXPECT(leastUnsigned == 32268 && mostUnsigned == 33270);
  RUN(zovsMax_32f, floats, N, &most);
  RUN(zovsMin_32f, floats, N, &least);
  EXPECT(least == -500.f && most == 502.f);
  RUN(zovsMinMax_32f, floats, N, &least, &most);
  EXPECT(least == -500.f && most == 502.f);
  RUN(zovsMax_64f, doubles, N, &mostDouble);
  EXPECT(mostDouble == 502.);
  RUN(zovsMaxIndx_32f, floats, N, &most, &at);
  EXPECT(most == 502.f && floats[at] == 502.f);
  RUN(zovsMinIndx_32f, floats, N, &least, &at);
  EXPECT(least == -500.f && floats[at] == -500.f);
}

static void ElementWise(void) {
  static Zov32f other[N], out[N];
  static Zov64f outDouble[N];
  for (int i = 0; i < N; ++i) other[i] = out[i] = (Zov32f)(i % 100);
  RUN(zovsMaxEvery_32f_I, floats, out, N);
  EACH(N, out[i] == (floats[i] > other[i] ? floats[i] : other[i]));
  for (int i = 0; i < N; ++i) out[i] = other[i];
  RUN(zovsMinEvery_32f_I, floats, out, N);
  EACH(N, out[i] == (floats[i] < other[i] ? floats[i] : other[i]));
  RUN(zovsNormalize_32f, floats, out, N, 2.f, 4.f);
  EACH(N, out[i] == (floats[i] - 2.f) / 4.f);
  RUN(zovsNormalize_64f, doubles, outDouble, N, 2., 4.);
  EACH(N, outDouble[i] == (doubles[i] - 2.) / 4.);
}

void SmokeStatistics(void) {
  /* The numbers from -500 to 502, scattered: 397 and N have no common divisor. */
  for (int i = 0; i < N; ++i) {
    const int value = i * 397 % N - 500;
    words[i] = (Zov16s)value;
    unsignedWords[i] = (Zov16u)(value + 32768);
    ints[i] = value;
    floats[i] = (Zov32f)value;
    doubles[i] = value;
  }
  Sums();
  Extremes();
  ElementWise();
}

/* Real Fourier transforms: a constant has one line, and comes back, on a short and a long route. */
#include <stddef.h>

#include "smoke.h"

enum { LONGEST = 1 << 16 };
static Zov32f floats[LONGEST + 2];
static Zov64f doubles[LONGEST + 2];

static void Floats(int order) {
  const int n = 1 << order;
  ZovFFTSpec_R_32f* spec = NULL;
  RUN(zovsFFTInitAlloc_R_32f, &spec, order, ZOV_FFT_SCALE_INV, 0);
  for (int i = 0; i < n; ++i) floats[i] = 1.f;
  RUN(zovsFFTFwd_RToCCS_32f, floats, floats, spec, NULL);
  EXPECT(floats[0] == (Zov32f)n);
  EACH(n + 1, fabs(floats[i + 1]) < 1e-6 * n);
  RUN(zovsFFTInv_CCSToR_32f, floats, floats, spec, NULL);
  EACH(n, CLOSE(floats[i], 1.f));
  RUN(zovsFFTFree_R_32f, spec);
}

static void Doubles(int order) {
  const int n = 1 << order;
  ZovFFTSpec_R_64f* spec = NULL;
  RUN(zovsFFTInitAlloc_R_64f, &spec, order, ZOV_FFT_SCALE_INV, 0);
  for (int i = 0; i < n; ++i) doubles[i] = 1.;
  RUN(zovsFFTFwd_RToCCS_64f, doubles, doubles, spec, NULL);
  EXPECT(doubles[0] == n);
  EACH(n + 1, fabs(doubles[i + 1]) < 1e-12 * n);
  RUN(zovsFFTInv_CCSToR_64f, doubles, doubles, spec, NULL);
  EACH(n, CLOSE(doubles[i], 1.));
  RUN(zovsFFTFree_R_64f, spec);
}

void SmokeFft(void) {
  static const int orders[] = {3, 6, 10, 16};
  for (int i = 0; i < 4; ++i) {
    Floats(orders[i]);
    Doubles(orders[i]);
  }
}

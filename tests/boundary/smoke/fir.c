/* FIR filters: the running sum of ones grows to the sum of the taps, direct and by transforms, and
   the delay line holds what went in. */
#include <stddef.h>

#include "smoke.h"

enum { TAPS = 100, SHORT = 5 };

#define SMOKE_FIR(suffix, run, tap, sample, more)                              \
  static void Fir##suffix(int tapsLen) {                                       \
    static sample x[N], y[N], line[TAPS];                                      \
    static tap taps[TAPS];                                                     \
    ZovFIRState* state = NULL;                                                 \
    for (int i = 0; i < tapsLen; ++i) taps[i] = 2;                             \
    for (int i = 0; i < TAPS; ++i) line[i] = 3;                                \
    for (int i = 0; i < N; ++i) x[i] = 1;                                      \
    RUN(zovsFIRInitAlloc##suffix, &state, taps, tapsLen, NULL);                \
    RUN(zovsFIR##run, x, y, N, state more);                                    \
    EACH(N, fabs((double)y[i] - 2. * (i < tapsLen ? i + 1 : tapsLen)) < 1e-3); \
    FirMore##suffix(state, line, tapsLen);                                     \
    RUN(zovsFIRFree##suffix, state);                                           \
  }

#define SMOKE_LINE(suffix, sample)                                             \
  static void FirMore##suffix(ZovFIRState* state, sample* line, int tapsLen) { \
    RUN(zovsFIRGetDlyLine##suffix, state, line);                               \
    EACH(tapsLen, line[i] == 1);                                               \
    line[0] = 5;                                                               \
    RUN(zovsFIRSetDlyLine##suffix, state, line);                               \
    RUN(zovsFIRGetDlyLine##suffix, state, line);                               \
    EXPECT(line[0] == 5);                                                      \
  }

SMOKE_LINE(_32f, Zov32f)
SMOKE_LINE(_64f, Zov64f)
SMOKE_LINE(64f_32f, Zov32f)
static void FirMore64f_16s(ZovFIRState* state, const Zov16s* line, int tapsLen) {
  (void)state, (void)line, (void)tapsLen;
}

#define NOTHING
#define ZERO , 0
SMOKE_FIR(_32f, _32f, Zov32f, Zov32f, NOTHING)
SMOKE_FIR(_64f, _64f, Zov64f, Zov64f, NOTHING)
SMOKE_FIR(64f_32f, 64f_32f, Zov64f, Zov32f, NOTHING)
SMOKE_FIR(64f_16s, 64f_16s_Sfs, Zov64f, Zov16s, ZERO)

void SmokeFir(void) {
  static const int lengths[] = {SHORT, TAPS};
  for (int i = 0; i < 2; ++i) {
    Fir_32f(lengths[i]);
    Fir_64f(lengths[i]);
    Fir64f_32f(lengths[i]);
    Fir64f_16s(lengths[i]);
  }
  const Zov32f taps[SHORT] = {1, 2, 3, 4, 5};
  Zov32f read[SHORT] = {0};
  ZovFIRState* state = NULL;
  RUN(zovsFIRInitAlloc_32f, &state, taps, SHORT, NULL);
  RUN(zovsFIRGetTaps_32f, state, read);
  EACH(SHORT, read[i] == taps[i]);
  RUN(zovsFIRFree_32f, state);
}

/* Fill, clear and copy. */
#include "smoke.h"

static Zov8u bytes[N];
static Zov32s ints[N];
static Zov32f floats[N], out[N];
static Zov64f doubles[N], copied[N];

void SmokeFill(void) {
  RUN(zovsSet_8u, 200, bytes, N);
  EACH(N, bytes[i] == 200);
  RUN(zovsSet_32s, -7, ints, N);
  EACH(N, ints[i] == -7);
  RUN(zovsSet_32f, 1.5f, floats, N);
  EACH(N, floats[i] == 1.5f);
  RUN(zovsCopy_32f, floats, out, N);
  EACH(N, out[i] == 1.5f);
  RUN(zovsZero_32f, floats, N);
  EACH(N, floats[i] == 0.f);
  for (int i = 0; i < N; ++i) doubles[i] = i;
  RUN(zovsCopy_64f, doubles, copied, N);
  EACH(N, copied[i] == i);
  RUN(zovsZero_64f, doubles, N);
  EACH(N, doubles[i] == 0.);
}

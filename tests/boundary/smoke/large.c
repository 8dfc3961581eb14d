/* Arrays far above any cache, for the stores that bypass it. */
#include <stdlib.h>

#include "smoke.h"

void SmokeLarge(void) {
  enum { COUNT = 12 * 1024 * 1024 };
  Zov32f* const to = malloc((COUNT + 1) * sizeof(Zov32f));
  Zov32f* const from = malloc((COUNT + 1) * sizeof(Zov32f));
  EXPECT(to != 0 && from != 0);
  to[COUNT] = from[COUNT] = -1.f;
  RUN(zovsSet_32f, 3.f, from, COUNT);
  EACH(COUNT, from[i] == 3.f);
  from[1] = 4.f;
  from[COUNT - 1] = 5.f;
  RUN(zovsZero_32f, to, COUNT);
  EACH(COUNT, to[i] == 0.f);
  RUN(zovsCopy_32f, from + 1, to, COUNT - 1);
  EACH(COUNT, to[i] == (i == 0 ? 4.f : i == COUNT - 2 ? 5.f : i == COUNT - 1 ? 0.f : 3.f));
  RUN(zovsSet_32s, -2, (Zov32s*)to, COUNT);
  EACH(COUNT, ((Zov32s*)to)[i] == -2);
  RUN(zovsSet_8u, 6, (Zov8u*)to + 1, 4 * COUNT - 2);
  EACH(4 * COUNT, ((Zov8u*)to)[i] == (i == 0 ? 0xFE : i == 4 * COUNT - 1 ? 0xFF : 6));
  EXPECT(to[COUNT] == -1.f && from[COUNT] == -1.f);
  free(to);
  free(from);
}

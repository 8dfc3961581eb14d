/* Aligned memory. */
#include "smoke.h"

void SmokeMemory(void) {
  Zov8u* const block = CALL(zovsMalloc_8u, 1000);
  EXPECT(block != 0 && (uintptr_t)block % 64 == 0);
  for (int i = 0; i < 1000; ++i) block[i] = (Zov8u)i;
  CALL(zovsFree, block);
  CALL(zovsFree, 0);
}

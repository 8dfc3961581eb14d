/* Search. */
#include "smoke.h"

static Zov8u bytes[N];
static Zov16u words[N];

void SmokeSearch(void) {
  int at = 0;
  for (int i = 0; i < N; ++i) words[i] = (Zov16u)(i % 997);
  for (int i = 0; i < N; ++i) bytes[i] = (Zov8u)(i % 251);
  RUN(zovsFind_16u, words, N, words + 990, 5, &at);
  EXPECT(at == 990);
  RUN(zovsFind_8u, bytes, N, bytes + 200, 60, &at);
  EXPECT(at == 200);
}

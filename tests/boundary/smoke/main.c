/* Calls every export once and checks a simple result: smoke <list of exports> [<level>]. The list
   holds one name a line; with a level, the library must have chosen that one. */
#ifndef _WIN32
#define _GNU_SOURCE
#include <dlfcn.h>
#else
#include <windows.h>
#endif
#include <cpuid.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "smoke.h"

static char noted[512][64];
static int notedCount;
static int failures;

void SmokeNote(const char* name) {
  for (int i = 0; i < notedCount; ++i) {
    if (strcmp(noted[i], name) == 0) return;
  }
  strncpy(noted[notedCount++], name, sizeof noted[0] - 1);
}

#ifdef KELOZOV_OPTIMIZED
/* Whether the upper halves of the vector registers were in use, which are cleared. This program
   never uses them, so it is the library that left them so; SSE code may then run at half its speed.
   An emulator that always reports them in use is not believed. The compiler takes care of this when
   it optimises, so other builds are not asked. */
static int UpperHalvesWereInUse(void) {
  uint32_t eax, ebx, ecx, edx, before, after;
  if (!__get_cpuid_count(13, 1, &eax, &ebx, &ecx, &edx) || (eax & 4) == 0) return 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return 0;
  if ((ecx & bit_OSXSAVE) == 0 || (ecx & bit_AVX) == 0) return 0;
  __asm__ volatile("xgetbv" : "=a"(before), "=d"(edx) : "c"(1));
  __asm__ volatile("vzeroupper");
  __asm__ volatile("xgetbv" : "=a"(after), "=d"(edx) : "c"(1));
  return (before & 4) != 0 && (after & 4) == 0;
}
#endif

void SmokeExpect(int ok, const char* what, const char* file, int line) {
#ifdef KELOZOV_OPTIMIZED
  if (UpperHalvesWereInUse()) {
    printf("%s:%d: no vzeroupper: %s\n", file, line, what);
    ++failures;
  }
#endif
  if (ok) return;
  printf("%s:%d: failed: %s\n", file, line, what);
  ++failures;
}

/* The address of an entry inside the library, past the import thunk of this program. */
static const unsigned char* Entry(const char* name) {
#ifdef _WIN32
  return (const unsigned char*)(uintptr_t)GetProcAddress(GetModuleHandleA("kelozov.dll"), name);
#else
  return dlsym(RTLD_DEFAULT, name);
#endif
}

/* The level in force: every entry begins with movslq level(%rip), %rax, which leads to it. */
static int ChosenLevel(void) {
  const unsigned char* const entry = Entry("Kelo_zovsFree");
  const unsigned char load[3] = {0x48, 0x63, 0x05};
  int32_t distance;
  int32_t level;
  if (entry == NULL || memcmp(entry, load, sizeof load) != 0) return -1;
  memcpy(&distance, entry + 3, sizeof distance);
  memcpy(&level, entry + 7 + distance, sizeof level);
  return level;
}

int main(int argc, char** argv) {
  char line[128];
  int listed = 0;
  if (argc < 2) return 2;

  SmokeMemory();
  SmokeFill();
  SmokeSearch();
  SmokeArithmetic();
  SmokeMaths();
  SmokeInteger();
  SmokeConversion();
  SmokeStatistics();
  SmokeResize();
  SmokeFft();
  SmokeWindow();
  SmokeDesign();
  SmokeFir();
  SmokeLarge();

  FILE* const list = fopen(argv[1], "r");
  EXPECT(list != NULL);
  while (list != NULL && fscanf(list, "%127s", line) == 1) {
    int called = 0;
    for (int i = 0; i < notedCount; ++i) called = called || strcmp(noted[i], line) == 0;
    if (!called) {
      printf("never called: %s; add it to tests/boundary/smoke\n", line);
      ++failures;
    }
    ++listed;
  }
  if (list != NULL) fclose(list);
  EXPECT(listed > 0);

  const int level = ChosenLevel();
  EXPECT(level >= 0 && level <= 6);
  if (argc > 2) EXPECT(level == atoi(argv[2]));
  printf("level %d, %d exports called, %d failures\n", level, notedCount, failures);
  return failures == 0 ? 0 : 1;
}

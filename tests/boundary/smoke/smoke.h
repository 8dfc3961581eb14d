/* What the parts of the smoke program share. A call through CALL is noted by name, so that main()
   can tell which exports were forgotten. */
#ifndef KELOZOV_SMOKE_H
#define KELOZOV_SMOKE_H

#include <math.h>

#include "kelozov/kelozov.h"

enum { N = 1003 }; /* elements of an array: every main block and every tail runs */

void SmokeNote(const char* name);
void SmokeExpect(int ok, const char* what, const char* file, int line);

#define CALL(name, ...) (SmokeNote("Kelo_" #name), Kelo_##name(__VA_ARGS__))
#define EXPECT(condition) SmokeExpect((condition), #condition, __FILE__, __LINE__)
#define RUN(name, ...) EXPECT(CALL(name, __VA_ARGS__) == zovStsNoErr)

/* A condition on each i below n. */
#define EACH(n, condition)                                    \
  do {                                                        \
    int all = 1;                                              \
    for (int i = 0; i < (n); ++i) all = all && (condition);   \
    SmokeExpect(all, "each " #condition, __FILE__, __LINE__); \
  } while (0)

#define CLOSE(a, b) (fabs((double)(a) - (double)(b)) <= 1e-6 * fabs((double)(b)))

void SmokeMemory(void);
void SmokeFill(void);
void SmokeSearch(void);
void SmokeLarge(void);
void SmokeArithmetic(void);
void SmokeMaths(void);
void SmokeInteger(void);
void SmokeConversion(void);
void SmokeStatistics(void);
void SmokeResize(void);
void SmokeFft(void);
void SmokeWindow(void);
void SmokeDesign(void);
void SmokeFir(void);

#endif

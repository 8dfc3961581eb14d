// Where the real FFT changes its route, by element type and level. c = order - 1 is the order of
// the complex transform of half the length.
#pragma once

#include <cstdint>

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Four-step split of complex orders up to lastC: 2^rows rows; 2^held complex values of neighbouring
// columns are in the work buffer at a time. No split where rows is 0.
struct FourStepSplit {
  std::int8_t lastC, rows, held;
};

struct FftLimits {
  int maxOrder;
  int lastReal;      // orders up to it: real kernels, no tables
  int lastKernel;    // orders up to it: complex kernel and split in one, tables unused
  int lastSmall;     // orders up to it: small complex kernels, split tables only
  int lastWhole;     // c up to it: one kernel does the whole length
  int inPlaceFrom;   // c from it: reversal, then the kernel in place, in place of the one-pass form
  bool wholeWork;    // the whole-length route takes work of one complex array
  int lastOnStack;   // orders up to it: one pass with the stack for work, where it takes none
  int askFrom;       // c from which the first pass asks for the lines that it writes
  int pairFrom;      // c from which the last two stages go through memory once
  int twoLevelFrom;  // order from which the split tables have two levels
  int tiledFrom;     // c from which the reversal goes by tiles
  int logTile;       // log2 of the side of a tile
  int lanes;         // elements of a vector; 0: interleaved tables of the baseline
  FourStepSplit splits[10];
};

inline constexpr int kNever = 99;

inline constexpr FftLimits kFftLimits32f[kLevelCount] = {
    // clang-format off
    {28, 5, 5, 6, 10,      0, false,  0, kNever, kNever, 19, kNever, 0, 0,
     {{12, 0, 0}, {13, 5, 0}, {14, 6, 0}, {15, 7, 0}, {18, 8, 0}, {22, 10, 0}, {24, 8, 0}, {30, 10, 0}}},
    {29, 4, 4, 6, 16,     16, true,  0,     16, kNever, 19, 20, 6, 4,
     {{17, 4, 9}, {20, 4, 10}, {21, 6, 13}, {30, 8, 15}}},
    {29, 4, 4, 6, 17,     17, true,  0,     16, kNever, 19, 19, 6, 4,
     {{19, 4, 10}, {30, 8, 14}}},
    {29, 4, 4, 6, 15,     15, true,  0,     16, kNever, 18, 17, 5, 4,
     {{18, 4, 10}, {20, 6, 14}, {30, 8, 14}}},
    {29, 4, 4, 6, 17, kNever, true,  0,     16, kNever, 21, 19, 6, 4,
     {{19, 4, 10}, {30, 8, 14}}},
    {29, 4, 4, 7, 18, kNever, true,  0, kNever, kNever, 19, 19, 6, 8,
     {{22, 4, 10}, {30, 8, 14}}},
    {29, 4, 4, 7, 18, kNever, true,  0, kNever, kNever, 19, 19, 6, 8,
     {{22, 4, 10}, {30, 8, 14}}},
    // clang-format on
};

inline constexpr FftLimits kFftLimits64f[kLevelCount] = {
    // clang-format off
    {27, 5, 6, 6, 10,      0, false,  0, kNever, kNever, 18, kNever, 0, 0,
     {{11, 0, 0}, {12, 4, 0}, {13, 5, 0}, {14, 6, 0}, {16, 7, 0}, {17, 8, 0}, {20, 9, 0}, {22, 8, 0}, {30, 9, 0}}},
    {28, 5, 6, 6, 14, kNever, true,  0,      0, kNever, 18, 19, 6, 2,
     {{15, 4, 8}, {18, 4, 10}, {20, 6, 13}, {30, 8, 14}}},
    {28, 5, 6, 6, 16, kNever, true,  0,      0, kNever, 17, 18, 5, 2,
     {{19, 6, 10}, {20, 7, 11}, {30, 8, 13}}},
    {28, 5, 6, 6, 12,      0, false, 11,      0, kNever, 18, 14, 5, 2,
     {{13, 0, 0}, {14, 4, 10}, {18, 6, 10}, {19, 4, 10}, {21, 6, 10}, {30, 6, 12}}},
    {28, 5, 6, 6, 16, kNever, true,  0,      0, kNever, 19, 18, 5, 2,
     {{18, 6, 10}, {30, 8, 13}}},
    {28, 4, 5, 7, 17, kNever, true,  0,      0,     16, 17, 18, 5, 4,
     {{21, 4, 9}, {30, 8, 13}}},
    {28, 4, 5, 7, 17, kNever, true,  0,      0,     16, 17, 18, 5, 4,
     {{21, 4, 9}, {30, 8, 13}}},
    // clang-format on
};

template <class T>
ZOV_INLINE constexpr const FftLimits& FftLimitsOf(Level level) {
  return sizeof(T) == 4 ? kFftLimits32f[static_cast<int>(level)]
                        : kFftLimits64f[static_cast<int>(level)];
}

// Split of complex order c, which is above lastWhole.
ZOV_INLINE constexpr FourStepSplit SplitOf(const FftLimits& limits, int c) {
  const FourStepSplit* split = limits.splits;
  while (split->lastC < c) ++split;
  return *split;
}

// log2 of the fine entries of a two-level split table: 8192 bytes of pairs.
template <class T>
inline constexpr int kLogFine = sizeof(T) == 4 ? 10 : 9;

// Radices (log2) of the stages that follow the first pass over groups of 16. Radix 8 takes fewer
// operations and goes through long arrays less often; below AVX, where the operations decide, the
// first two or three stages of long transforms have it too, as many as leave the rest to radix 4.
struct StagePlan {
  std::int8_t count;
  std::int8_t logRadix[15];
};

constexpr StagePlan PlanStages(int c, bool avx) {
  StagePlan plan{};
  const int eights = c < 12 || avx ? 0 : c % 2 == 0 ? 2 : 3;
  for (int size = 4; size < c;) {
    const int rest = c - size;
    const bool radix8 =
        plan.count < eights || rest == 3 || (rest > 4 && c < 12) || (size == 4 && c % 2 != 0);
    plan.logRadix[plan.count++] = radix8 ? 3 : 2;
    size += radix8 ? 3 : 2;
  }
  return plan;
}

struct StagePlans {
  StagePlan of[31];
};
constexpr StagePlans PlanAllStages(bool avx) {
  StagePlans plans{};
  for (int c = 6; c < 31; ++c) plans.of[c] = PlanStages(c, avx);
  return plans;
}
inline constexpr StagePlans kStagePlans[] = {PlanAllStages(false), PlanAllStages(true)};

// Radix (log2) of the column stage of a four-step split of 2^rows rows after `done` of them.
ZOV_INLINE constexpr int ColumnRadix(int rows, int done) {
  const int rest = rows - done;
  return rest == 2 || rest == 4 || rest == 6 ? 2 : 3;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

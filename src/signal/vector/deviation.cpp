// Standard deviation in one pass over the sums of the elements and of their squares.
#include "core/checks.h"
#include "core/entries.h"
#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr int kFastHint = 1;
constexpr int kFastBlock = 1024;

struct Moments {
  double sum = 0;
  double squares = 0;

  ZOV_INLINE void Take(double x) {
    sum += x;
    squares += x * x;
  }
};

void GatherInDouble(const Zov32f* pSrc, int len, Moments& moments) {
  constexpr int kUnroll = 4;
  VecD sums[kUnroll];
  VecD squares[kUnroll];
  for (int k = 0; k < kUnroll; ++k) sums[k] = squares[k] = VecD::Zero();
  int i = 0;
  for (; len - i >= kUnroll * VecD::kLanes; i += kUnroll * VecD::kLanes) {
    for (int k = 0; k < kUnroll; ++k) {
      const VecD x = LoadAsDouble(pSrc + i + k * VecD::kLanes);
      sums[k] = sums[k] + x;
      squares[k] = squares[k] + x * x;
    }
  }
  for (int k = 1; k < kUnroll; ++k) {
    sums[0] = sums[0] + sums[k];
    squares[0] = squares[0] + squares[k];
  }
  moments.sum += AddLanes(sums[0]);
  moments.squares += AddLanes(squares[0]);
  for (; i < len; ++i) moments.Take(static_cast<double>(pSrc[i]));
}

// Sums of a block of 1024 elements stay in binary32; each block is folded into the doubles.
void GatherFast(const Zov32f* pSrc, int len, Moments& moments) {
  if (!IsAligned<4>(pSrc)) {  // no boundary to reach
    GatherInDouble(pSrc, len, moments);
    return;
  }
  int head = static_cast<int>(BytesToAlign<16>(pSrc) / sizeof(Zov32f));
  if (head > len) head = len;
  int i = 0;
  for (; i < head; ++i) moments.Take(static_cast<double>(pSrc[i]));

  constexpr int kUnroll = 4;
  while (len - i >= kUnroll * VecF::kLanes) {
    const int stop = i + (len - i < kFastBlock ? len - i : kFastBlock);
    VecF sums[kUnroll];
    VecF squares[kUnroll];
    for (int k = 0; k < kUnroll; ++k) sums[k] = squares[k] = VecF::Zero();
    for (; stop - i >= kUnroll * VecF::kLanes; i += kUnroll * VecF::kLanes) {
      for (int k = 0; k < kUnroll; ++k) {
        const VecF x = VecF::Load(pSrc + i + k * VecF::kLanes);
        sums[k] = sums[k] + x;
        squares[k] = squares[k] + x * x;
      }
    }
    Zov32f lanes[2][VecF::kLanes];
    ((sums[0] + sums[1]) + (sums[2] + sums[3])).Store(lanes[0]);
    ((squares[0] + squares[1]) + (squares[2] + squares[3])).Store(lanes[1]);
    for (int lane = 0; lane < VecF::kLanes; ++lane) {
      moments.sum += static_cast<double>(lanes[0][lane]);
      moments.squares += static_cast<double>(lanes[1][lane]);
    }
  }
  for (; i < len; ++i) moments.Take(static_cast<double>(pSrc[i]));
}

}  // namespace

ZovStatus zovsStdDev_32f(const Zov32f* pSrc, int len, Zov32f* pStdDev, int hint) {
  if (AnyNull(pSrc, pStdDev)) return zovStsNullPtrErr;
  if (len < 2) return zovStsSizeErr;
  Moments moments;
  if (kLevel >= Level::sse3 && hint == kFastHint) {
    GatherFast(pSrc, len, moments);
  } else {
    GatherInDouble(pSrc, len, moments);
  }
  const double n = len;
  const double spread = n * moments.squares - moments.sum * moments.sum;
  // The comparison keeps a rounding error below zero, and a NaN, from becoming a NaN.
  *pStdDev = spread > 0 ? static_cast<Zov32f>(__builtin_sqrt(spread / ((n - 1) * n))) : 0.0F;
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

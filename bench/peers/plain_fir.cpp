// Plain FIR loops whose outputs the compiler vectorises, in the two orders of the loops.
#include <algorithm>
#include <cmath>

#include "../fir.h"

namespace zov::bench::plain::ZOV_LEVEL_NAMESPACE {

extern const PlainFirs kFirs;

namespace {

void Put(float sum, float& to) { to = sum; }
void Put(double sum, double& to) { to = sum; }
void Put(double sum, float& to) { to = static_cast<float>(sum); }
void Put(double sum, std::int16_t& to) {
  to = static_cast<std::int16_t>(std::lrint(sum > 32767 ? 32767 : sum < -32768 ? -32768 : sum));
}

// Sums of a type of their own are collected where they stay in the nearest cache.
template <class T, class S>
void TapByTap(const FirTask<T, S>& task) {
  constexpr int kPart = 1024;
  const bool collects = sizeof(T) != sizeof(S);
  const int part = collects ? kPart : task.count;
  T collected[kPart];
  for (int done = 0; done < task.count; done += part) {
    const int count = std::min(part, task.count - done);
    const S* __restrict x = task.from + done;
    T* __restrict sums = collected;
    if constexpr (!collects) sums = task.to;
    for (int i = 0; i < count; ++i) sums[i] = task.taps[0] * static_cast<T>(x[i]);
    for (int k = 1; k < task.tapsLen; ++k) {
      const T tap = task.taps[k];
      for (int i = 0; i < count; ++i) sums[i] += tap * static_cast<T>(x[i - k]);
    }
    if constexpr (collects) {
      for (int i = 0; i < count; ++i) Put(sums[i], task.to[done + i]);
    }
  }
}

template <class T, class S>
void BlockByBlock(const FirTask<T, S>& task) {
  // GCC keeps sums of eight vectors in registers, of fewer it does not.
  constexpr int kBlock = 256 / sizeof(T);
  const T* __restrict taps = task.taps;
  const int tapsLen = task.tapsLen;
  int i = 0;
  for (; i + kBlock <= task.count; i += kBlock) {
    const S* __restrict x = task.from + i;
    S* __restrict y = task.to + i;
    T sums[kBlock] = {};
    for (int k = 0; k < tapsLen; ++k) {
      for (int j = 0; j < kBlock; ++j) sums[j] += taps[k] * static_cast<T>(x[j - k]);
    }
    for (int j = 0; j < kBlock; ++j) Put(sums[j], y[j]);
  }
  for (; i < task.count; ++i) {
    T sum = 0;
    for (int k = 0; k < tapsLen; ++k) sum += taps[k] * static_cast<T>(task.from[i - k]);
    Put(sum, task.to[i]);
  }
}

template <class T>
void Multiply(const T* __restrict a, T* __restrict b, int count) {
  for (int i = 0; i < count; ++i) {
    const T re = a[2 * i] * b[2 * i] - a[2 * i + 1] * b[2 * i + 1];
    b[2 * i + 1] = a[2 * i] * b[2 * i + 1] + a[2 * i + 1] * b[2 * i];
    b[2 * i] = re;
  }
}

template <class T, class S>
constexpr PlainFir<T, S> kLoops = {TapByTap<T, S>, BlockByBlock<T, S>};

}  // namespace

const PlainFirs kFirs = {kLoops<Zov32f, Zov32f>, kLoops<Zov64f, Zov64f>, kLoops<Zov64f, Zov32f>,
                         kLoops<Zov64f, Zov16s>, Multiply<Zov32f>,       Multiply<Zov64f>};

}  // namespace zov::bench::plain::ZOV_LEVEL_NAMESPACE

// What the peers of FIR filters need to know of a case. They continue no stream: the samples before
// the first lie before it in memory.
#pragma once

#include "contest.h"
#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::bench {

template <class T, class S>
struct FirTask {
  const T* taps;
  int tapsLen;
  const S* from;  // with tapsLen - 1 samples before
  S* to;
  int count;
};

// Overlap-save with transforms of `length`, on blocks of the same outputs as ours.
template <class T>
void AddFftwFir(Contest& contest, const FirTask<T, T>& task, int length);
void AddLiquidFir(Contest& contest, const FirTask<Zov32f, Zov32f>& task);

// Plain loops, built for each level: over all outputs for each tap, over the taps for a block of
// outputs, and the product of two spectra of `count` complex values into the second.
template <class T, class S>
struct PlainFir {
  using Loop = void (*)(const FirTask<T, S>& task);
  Loop tapByTap;
  Loop blockByBlock;
};
struct PlainFirs {
  PlainFir<Zov32f, Zov32f> f32;
  PlainFir<Zov64f, Zov64f> f64;
  PlainFir<Zov64f, Zov32f> f64On32f;
  PlainFir<Zov64f, Zov16s> f64On16s;
  void (*multiply32f)(const Zov32f* a, Zov32f* b, int count);
  void (*multiply64f)(const Zov64f* a, Zov64f* b, int count);
};
extern const PlainFirs* const kPlainFirs[kLevelCount];

}  // namespace zov::bench

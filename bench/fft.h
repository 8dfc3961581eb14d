// One real transform, as the peers are asked for it.
#pragma once

#include "contest.h"

namespace zov::bench {

// From an array of 2^order real values to 2^(order - 1) + 1 complex ones, or back; `to` may be
// `from`.
template <class T>
struct FftTask {
  int order;
  bool inverse;
  T* from;
  T* to;
};

void AddFftw(Contest& contest, const FftTask<float>& task);
void AddFftw(Contest& contest, const FftTask<double>& task);

}  // namespace zov::bench

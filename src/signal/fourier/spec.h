// The records of the real FFT objects. A caller holds only a pointer; the tables that the record
// points to stand behind it in the same block.
#pragma once

#include "kelozov/kelozov.h"

namespace zov {

template <class T>
struct FftRecord {
  Zov32u idTag;     // kFftTag while the object is alive
  Zov32s order;     // log2 of the length N
  Zov32s scaleFwd;  // 1: the forward transform multiplies by scale
  Zov32s scaleInv;  // 1: the inverse transform multiplies by scale
  T scale;          // 0 when neither flag is set
  Zov32s hint;      // as the caller passed it
  Zov32s workBytes;
  Zov32s ownsBlock;  // 1: free releases blockBase
  void* blockBase;
  Zov32s* bitRevTable;
  T* cplxTwiddles;
  T* blockTwiddles;  // of the block route
  T* outerTwiddles;  // no length needs it
  T* splitFwd;
  T* splitInv;
  T* colTwiddles[3];  // by recursion depth of the four-step split
  T* rowTwiddles[3];
};

}  // namespace zov

struct ZovFFTSpec_R_32f : zov::FftRecord<Zov32f> {};
struct ZovFFTSpec_R_64f : zov::FftRecord<Zov64f> {};

namespace zov {

template <class T>
struct FftTypes;
template <>
struct FftTypes<Zov32f> {
  using Spec = ZovFFTSpec_R_32f;
  static constexpr Zov32u kTag = 6;
};
template <>
struct FftTypes<Zov64f> {
  using Spec = ZovFFTSpec_R_64f;
  static constexpr Zov32u kTag = 9;
};
template <class T>
using FftSpec = typename FftTypes<T>::Spec;

}  // namespace zov

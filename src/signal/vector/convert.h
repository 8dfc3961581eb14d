// The loop that all conversions share: blocks of one conversion, then the rest element by element.
#pragma once

#include "core/simd.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// 2^-scaleFactor by its exponent field, for scale factors limited to what the field holds.
ZOV_INLINE double PowerOfTwo(int scaleFactor) {
  const int f = scaleFactor < -1008 ? -1008 : scaleFactor > 1022 ? 1022 : scaleFactor;
  const std::uint64_t bits = static_cast<std::uint64_t>(1023 - f) << 52;
  double power;
  __builtin_memcpy(&power, &bits, sizeof power);
  return power;
}

// True when the two ranges share a byte.
template <class S, class D>
ZOV_INLINE bool Overlap(const S* pSrc, std::int64_t srcLen, const D* pDst, std::int64_t dstLen) {
  const std::uintptr_t src = reinterpret_cast<std::uintptr_t>(pSrc);
  const std::uintptr_t dst = reinterpret_cast<std::uintptr_t>(pDst);
  return src < dst + static_cast<std::uintptr_t>(dstLen) * sizeof(D) &&
         dst < src + static_cast<std::uintptr_t>(srcLen) * sizeof(S);
}

// One element of an array whose bytes a store of another type may just have changed: the compiler
// may not load it before that store.
template <class T>
ZOV_INLINE T LoadElement(const T* p) {
  T x;
  __builtin_memcpy(&x, p, sizeof x);
  return x;
}

template <class Conversion, class S, class D>
ZOV_INLINE void ConvertOneByOne(const Conversion& conversion, const S* pSrc, D* pDst, int begin,
                                int len) {
  for (int i = begin; i < len; ++i) pDst[i] = conversion.One(LoadElement(pSrc + i));
}

// A conversion has kStep, Block (kStep elements) and One (one element), with equal results. One
// with kBlockOnly has no quick way to a single element: what is left is converted as part of a
// block.
template <class Conversion, class S, class D>
ZOV_INLINE void ConvertRest(const Conversion& conversion, const S* pSrc, D* pDst, int begin,
                            int len) {
  if constexpr (requires { Conversion::kBlockOnly; }) {
    if (begin == len) return;
    S elements[Conversion::kStep] = {};
    D results[Conversion::kStep];
    for (int i = begin; i < len; ++i) elements[i - begin] = pSrc[i];
    conversion.Block(elements, results);
    for (int i = begin; i < len; ++i) pDst[i] = results[i - begin];
  } else {
    ConvertOneByOne(conversion, pSrc, pDst, begin, len);
  }
}

template <class Conversion, class S, class D>
ZOV_INLINE void ConvertArray(const Conversion& conversion, const S* pSrc, D* pDst, int len) {
  constexpr int kStep = Conversion::kStep;
  int i = 0;
  for (; len - i >= 2 * kStep; i += 2 * kStep) {
    conversion.Block(pSrc + i, pDst + i);
    conversion.Block(pSrc + i + kStep, pDst + i + kStep);
  }
  if (len - i >= kStep) {
    conversion.Block(pSrc + i, pDst + i);
    i += kStep;
  }
  ConvertRest(conversion, pSrc, pDst, i, len);
}

// The same, with arrays that overlap taken element by element from the first on.
template <class Conversion, class S, class D>
ZOV_INLINE void ConvertPerhapsOverlapping(const Conversion& conversion, const S* pSrc, D* pDst,
                                          int len) {
  if (Overlap(pSrc, len, pDst, len)) {
    ConvertOneByOne(conversion, pSrc, pDst, 0, len);
  } else {
    ConvertArray(conversion, pSrc, pDst, len);
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The real split on interleaved vectors. A vector of Z[k] and on meets the vector of Z[M - k] and
// before, whose order is the opposite one; shuffles bring both into the order of the table.
#include "signal/fourier/real_split.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

enum class Formula { forward, forwardTwoLevel, inverse };

// Values in ascending order to the order of the table and back.
template <class V>
ZOV_INLINE V NearOrder(V a) {
  if constexpr (V::kBytes == 16) {
    return a;
  } else if constexpr (V::kLanes == 8) {
    return {__builtin_shufflevector(a.v, a.v, 2, 3, 0, 1, 6, 7, 4, 5)};
  } else {
    return {__builtin_shufflevector(a.v, a.v, 2, 3, 0, 1)};
  }
}
// Values in descending order to the order of the table and back.
template <class V>
ZOV_INLINE V FarOrder(V a) {
  if constexpr (V::kLanes == 8) {
    return {__builtin_shufflevector(a.v, a.v, 4, 5, 6, 7, 0, 1, 2, 3)};
  } else if constexpr (V::kBytes == 16 && V::kLanes == 4) {
    return {__builtin_shufflevector(a.v, a.v, 2, 3, 0, 1)};
  } else {
    return a;
  }
}

// From z = Z[k] and y = Z[M - k] with the factors w = (c, s) the values X[k] and X[M - k].
template <Formula kFormula, class T>
ZOV_INLINE void SplitPair(Interleaved<T>& z, Interleaved<T>& y, Interleaved<T> w) {
  using V = Lanes<T>;
  V difference = SubAdd(z.v, y.v);  // z - conj(y)
  V sum{};                          // z + conj(y)
  if constexpr (kFormula != Formula::forward) sum = AddSub(z.v, y.v);
  if constexpr (kFormula == Formula::forwardTwoLevel) {
    difference = difference * V::Broadcast(static_cast<T>(0.5));
    sum = sum * V::Broadcast(static_cast<T>(0.5));
  }
  const V turned = SwapParts(difference) * RealParts(w.v);
  const V change = kFormula == Formula::inverse ? FusedSubAdd(difference, ImagParts(w.v), turned)
                                                : FusedAddSub(difference, ImagParts(w.v), turned);
  if constexpr (kFormula == Formula::forward) {
    const V high = z.v;
    z.v = AddSub(change, y.v);
    y.v = Conjugate(high - change);
  } else {
    z.v = sum + change;
    y.v = Conjugate(sum - change);
  }
}

template <Formula kFormula, class T>
struct SplitLoop {
  using C = Interleaved<T>;
  using V = Lanes<T>;
  const T* src;
  T* dst;
  Index length;  // M, the number of complex values

  // Pairs from k on, `count` of them, with the factors of a one-level table or, where there is a
  // coarse factor, of the fine entries.
  ZOV_INLINE void Run(Index k, Index count, const T* table, const T* coarse) const {
    V coarseRe{}, coarseIm{};
    if (coarse != nullptr) {
      coarseRe = V::Broadcast(coarse[0]);
      coarseIm = V::Broadcast(-coarse[1]) ^ ImagSigns<T, V::kLanes>();
    }
    Index i = 0;
    for (; i + C::kLanes <= count; i += C::kLanes) {
      const Index near = 2 * (k + i);
      const Index far = 2 * (length - k - i - C::kLanes + 1);
      C w = C::Load(table + 2 * i);
      if (coarse != nullptr) w = w.Times(coarseRe, coarseIm);
      C z = {NearOrder(V::Load(src + near))};
      C y = {FarOrder(V::Load(src + far))};
      SplitPair<kFormula>(z, y, w);
      NearOrder(z.v).Store(dst + near);
      FarOrder(y.v).Store(dst + far);
    }
#if ZOV_LEVEL == 0
    // Tables of the baseline begin at k = 0, so that vectors of two leave one.
    if constexpr (C::kLanes == 2) {
      if (i < count) {
        const Index near = 2 * (k + i);
        const Index far = 2 * (length - k - i);
        C w = LoadOne(table + 2 * i);
        if (coarse != nullptr) w = w.Times(coarseRe, coarseIm);
        C z = LoadOne(src + near);
        C y = LoadOne(src + far);
        SplitPair<kFormula>(z, y, w);
        _mm_storel_pi(reinterpret_cast<__m64*>(dst + near), z.v.v);
        _mm_storel_pi(reinterpret_cast<__m64*>(dst + far), y.v.v);
      }
    }
#endif
  }
#if ZOV_LEVEL == 0
  static ZOV_INLINE C LoadOne(const T* p) {
    return {{_mm_castpd_ps(_mm_load_sd(reinterpret_cast<const double*>(p)))}};
  }
#endif
};

// Runs over k from 1 up to the middle, which vectors may touch but which the callers set.
template <Formula kOneLevel, Formula kTwoLevel, class T>
ZOV_INLINE void SplitAll(const T* src, T* dst, int order, const T* table) {
  // Table entry of k = 1.
  constexpr Index kFirst = kLevel == Level::sse2 ? 1 : 0;
  const Index length = Index{1} << (order - 1);
  const Index middle = length / 2;
  if (order < FftLimitsOf<T>(kLevel).twoLevelFrom) {
    const SplitLoop<kOneLevel, T> loop = {src, dst, length};
    loop.Run(1, middle - kFirst, table + 2 * kFirst, nullptr);
    return;
  }
  const SplitLoop<kTwoLevel, T> loop = {src, dst, length};
  constexpr Index kFine = Index{1} << kLogFine<T>;
  const T* coarse = table + 2 * kFine;
  loop.Run(1, kFine - kFirst, table + 2 * kFirst, coarse);
  for (Index k = kFine; k < middle; k += kFine) {
    coarse += 2;
    loop.Run(k + 1 - kFirst, kFine, table, coarse);
  }
}

}  // namespace

template <class T>
void ForwardSplit(T* array, const FftSpec<T>& spec) {
  T* const middle = array + (Index{1} << (spec.order - 1));
  const T re = middle[0];
  const T im = middle[1];
  SplitAll<Formula::forward, Formula::forwardTwoLevel>(static_cast<const T*>(array), array,
                                                       spec.order, spec.splitFwd);
  middle[0] = re;
  middle[1] = -im;
}

template <class T>
void InverseSplit(const T* src, T* dst, const FftSpec<T>& spec) {
  const Index middle = Index{1} << (spec.order - 1);
  const T re = src[middle];
  const T im = src[middle + 1];
  SplitAll<Formula::inverse, Formula::inverse>(src, dst, spec.order, spec.splitInv);
  dst[middle] = re + re;
  dst[middle + 1] = static_cast<T>(-2) * im;
}

template void ForwardSplit<Zov32f>(Zov32f*, const FftSpec<Zov32f>&);
template void ForwardSplit<Zov64f>(Zov64f*, const FftSpec<Zov64f>&);
template void InverseSplit<Zov32f>(const Zov32f*, Zov32f*, const FftSpec<Zov32f>&);
template void InverseSplit<Zov64f>(const Zov64f*, Zov64f*, const FftSpec<Zov64f>&);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

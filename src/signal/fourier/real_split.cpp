// The real split on interleaved vectors. A vector of Z[k] and on meets the vector of Z[M - k] and
// before, whose order is the opposite one; shuffles bring both into the order of the table.
#include "signal/fourier/real_split.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

enum class Formula { forward, forwardTwoLevel, inverse };

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

// conj(a - b).
template <class V>
ZOV_INLINE V ConjugateOfDifference(V a, V b) {
#if defined(__FMA__)
  return MulSubAdd(a, Conjugate(V::Broadcast(1)), b);
#else
  return Conjugate(a - b);
#endif
}

// From z = Z[k] and y = Z[M - k] with the factors w = (c, s) the values X[k] and X[M - k].
template <Formula kFormula, class T>
ZOV_INLINE void SplitPair(Interleaved<T>& z, Interleaved<T>& y, Interleaved<T> w) {
  using V = Lanes<T>;
#if !defined(__FMA__)
  // The same on conjugates, which takes fewer changes of signs where they are operations of their
  // own.
  if constexpr (kFormula == Formula::forward) {
    const V high = Conjugate(z.v);
    const V apart = high - y.v;
    const V turned = SwapParts(apart) * RealParts(w.v);
    const V change = SubAdd(apart * ImagParts(w.v), turned);
    z.v = Conjugate(y.v + change);
    y.v = high - change;
    return;
  }
#endif
  V difference{};  // z - conj(y)
  V sum{};         // z + conj(y)
#if defined(__FMA__)
  difference = SubAdd(z.v, y.v);
  if constexpr (kFormula != Formula::forward) sum = AddSub(z.v, y.v);
#else
  difference = z.v - Conjugate(y.v);
  sum = z.v + Conjugate(y.v);
#endif
  if constexpr (kFormula == Formula::forwardTwoLevel) {
    difference = difference * V::Broadcast(static_cast<T>(0.5));
    sum = sum * V::Broadcast(static_cast<T>(0.5));
  }
  const V turned = SwapParts(difference) * RealParts(w.v);
  const V change = kFormula == Formula::inverse ? FusedSubAdd(difference, ImagParts(w.v), turned)
                                                : FusedAddSub(difference, ImagParts(w.v), turned);
  const V high = kFormula == Formula::forward ? z.v : sum;
  z.v = kFormula == Formula::forward ? AddSub(change, y.v) : sum + change;
  y.v = ConjugateOfDifference(high, change);
}

// Values in ascending order to the order of the table and back.
template <class V>
[[maybe_unused]] ZOV_INLINE V NearOrder(V a) {
  if constexpr (V::kBytes == 16) {
    return a;
  } else if constexpr (V::kLanes == 8) {
    return {__builtin_shufflevector(a.v, a.v, 2, 3, 0, 1, 6, 7, 4, 5)};
  } else {
    return {__builtin_shufflevector(a.v, a.v, 2, 3, 0, 1)};
  }
}

// Z[k + 1] and on in the order of the table, k counting whole vectors: from the vectors of Z[k] and
// of Z[k + kLanes]. Loads of the pairs themselves would cross those that the transform stored.
template <class V>
[[maybe_unused]] ZOV_INLINE V NearBetween(V low, V high) {
  if constexpr (V::kLanes == 8) {
    return {__builtin_shufflevector(low.v, high.v, 4, 5, 2, 3, 8, 9, 6, 7)};
#if defined(__AVX__)
  } else if constexpr (V::kBytes == 32) {
    return {_mm256_blend_pd(high.v, low.v, 12)};
#endif
  } else if constexpr (V::kLanes == 4) {
    return {__builtin_shufflevector(low.v, high.v, 2, 3, 4, 5)};
  } else {
    return high;
  }
}
// The way back: X[k] and on from the results for Z[k - kLanes + 1] and on and for Z[k + 1] and on.
template <class V>
[[maybe_unused]] ZOV_INLINE V NearWhole(V low, V high) {
  if constexpr (V::kLanes == 8) {
    return {__builtin_shufflevector(low.v, high.v, 4, 5, 10, 11, 8, 9, 14, 15)};
#if defined(__AVX__)
  } else if constexpr (V::kBytes == 32) {
    return {_mm256_blend_pd(low.v, high.v, 12)};
#endif
  } else if constexpr (V::kLanes == 4) {
    return {__builtin_shufflevector(low.v, high.v, 2, 3, 4, 5)};
  } else {
    return low;
  }
}

template <Formula kFormula, class T>
struct SplitLoop {
  using C = Interleaved<T>;
  using V = Lanes<T>;
  const T* src;
  T* dst;
  Index length;  // M, the number of complex values
  // The vector of the source that k = 1 stands in, or that follows it where a vector holds one
  // value; the results before it.
  V ahead{}, behind{};
  V last{};  // the vector that begins with the middle

  static ZOV_INLINE V CoarseRe(const T* coarse) { return V::Broadcast(coarse[0]); }
  static ZOV_INLINE V CoarseIm(const T* coarse) {
    return V::Broadcast(-coarse[1]) ^ ImagSigns<T, V::kLanes>();
  }

  ZOV_INLINE void Begin(T re, T im) {
    ahead = V::Load(src);
    for (int i = 0; i < V::kLanes; i += 2) behind.v[i] = re, behind.v[i + 1] = im;
  }
  // The middle goes to its place within a whole vector, which the next loads wait for.
  ZOV_INLINE void SetMiddle(T re, T im) {
    last.v[0] = re;
    last.v[1] = im;
    last.Store(dst + length);
  }

  // Pairs k + 1 to k + count for whole vectors, with the factors of a one-level table or, where
  // there is a coarse factor, of the fine entries. Between vectors, X[0] is what Begin got.
  // Where kAhead, lines that are written soon are asked for: that is worth its instructions where
  // they are not in the first-level cache.
  template <bool kBetween, bool kAhead>
  ZOV_INLINE void RunWhole(Index k, Index count, const T* table, const T* coarse) {
    V coarseRe{}, coarseIm{};
    if (coarse != nullptr) coarseRe = CoarseRe(coarse), coarseIm = CoarseIm(coarse);
    // Two vectors a pass, as the loop is bound by its instructions.
    constexpr int kSteps = C::kLanes == 4 ? 1 : 2;
    for (const Index end = k + count; k < end; k += kSteps * C::kLanes) {
      if constexpr (kAhead) {
        constexpr Index kDistance = 128 / static_cast<Index>(sizeof(T));
        __builtin_prefetch(dst + 2 * k + kDistance);
        __builtin_prefetch(dst + 2 * (length - k - kSteps * C::kLanes) - kDistance);
      }
      Unroll<kSteps>(ZOV_UNROLLED(i) {
        const Index near = k + decltype(i)::value * C::kLanes;
        T* const far = dst + 2 * (length - near - C::kLanes);
        C w = C::Load(table + decltype(i)::value * V::kLanes);
        if (coarse != nullptr) w = w.Times(coarseRe, coarseIm);
        const V next = V::Load(src + 2 * (near + (kBetween ? C::kLanes : 1)));
        C z = {kBetween ? NearBetween(ahead, next) : NearOrder(next)};
        C y = {FarOrder(V::Load(src + (far - dst)))};
        SplitPair<kFormula>(z, y, w);
        if constexpr (kBetween) {
          NearWhole(behind, z.v).Store(dst + 2 * near);
        } else {
          NearOrder(z.v).Store(dst + 2 * (near + 1));
        }
        last = FarOrder(y.v);
        last.Store(far);
        ahead = next;
        behind = z.v;
      });
      table += kSteps * V::kLanes;
    }
  }

#if ZOV_LEVEL == 0
  // Pairs from k on, `count` of them. Tables of the baseline begin at k = 0, so that vectors of two
  // leave one.
  ZOV_INLINE void Run(Index k, Index count, const T* table, const T* coarse) const {
    V coarseRe{}, coarseIm{};
    if (coarse != nullptr) coarseRe = CoarseRe(coarse), coarseIm = CoarseIm(coarse);
    Index i = 0;
    for (; i + C::kLanes <= count; i += C::kLanes) {
      const Index near = 2 * (k + i);
      const Index far = 2 * (length - k - i - C::kLanes + 1);
      C w = C::Load(table + 2 * i);
      if (coarse != nullptr) w = w.Times(coarseRe, coarseIm);
      C z = C::Load(src + near);
      C y = {FarOrder(V::Load(src + far))};
      SplitPair<kFormula>(z, y, w);
      z.Store(dst + near);
      FarOrder(y.v).Store(dst + far);
    }
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
  }
  static ZOV_INLINE C LoadOne(const T* p) {
    return {{_mm_castpd_ps(_mm_load_sd(reinterpret_cast<const double*>(p)))}};
  }
#endif
};

template <class T>
struct Pair {
  T re, im;
};

// Runs over k from 1 up to the middle; the values for k = 0 and the middle are given.
template <Formula kOneLevel, Formula kTwoLevel, class T>
ZOV_INLINE void SplitAll(const T* src, T* dst, int order, const T* table, Pair<T> first,
                         Pair<T> mid) {
  const auto setEnds = [=]() __attribute__((always_inline)) {
    T* const place = dst + (Index{1} << (order - 1));
    dst[0] = first.re;
    dst[1] = first.im;
    place[0] = mid.re;
    place[1] = mid.im;
  };
  const Index length = Index{1} << (order - 1);
  const Index middle = length / 2;
  constexpr Index kFine = Index{1} << kLogFine<T>;
  const T* coarse = table + 2 * kFine;
  const bool oneLevel = order < FftLimitsOf<T>(kLevel).twoLevelFrom;
#if ZOV_LEVEL == 0
  if (oneLevel) {
    const SplitLoop<kOneLevel, T> loop = {src, dst, length};
    loop.Run(1, middle - 1, table + 2, nullptr);
    return setEnds();
  }
  const SplitLoop<kTwoLevel, T> loop = {src, dst, length};
  loop.Run(1, kFine - 1, table + 2, coarse);
  for (Index k = kFine; k < middle; k += kFine) {
    coarse += 2;
    loop.Run(k, kFine, table, coarse);
  }
  setEnds();
#else
  // Long arrays come from memory, not from stores that are still under way; there the way between
  // whole vectors pays only where it is a blend. Vectors of one value are whole at any place.
  constexpr bool kOneValue = Lanes<T>::kLanes == 2;
  constexpr bool kBlends = sizeof(T) == 8 && !kOneValue;
  constexpr int kAheadInPlaceFrom = 12;
  if (oneLevel) {
    SplitLoop<kOneLevel, T> loop = {src, dst, length};
    loop.Begin(first.re, first.im);
    if (kBlends || (!kOneValue && order <= FftLimitsOf<T>(kLevel).lastSmall)) {
      if (kBlends && (kOneLevel == Formula::inverse || order >= kAheadInPlaceFrom)) {
        loop.template RunWhole<true, kBlends>(0, middle, table, nullptr);
      } else {
        loop.template RunWhole<true, false>(0, middle, table, nullptr);
      }
      loop.SetMiddle(mid.re, mid.im);
    } else {
      loop.template RunWhole<false, false>(0, middle, table, nullptr);
      setEnds();
    }
    return;
  }
  SplitLoop<kTwoLevel, T> loop = {src, dst, length};
  loop.Begin(first.re, first.im);
  for (Index k = 0; k < middle; k += kFine, coarse += 2) {
    loop.template RunWhole<kBlends, kBlends>(k, kFine, table, coarse);
  }
  setEnds();
#endif
}

}  // namespace

template <class T>
void ForwardSplit(T* array, const FftSpec<T>& spec) {
  const T* const middle = array + (Index{1} << (spec.order - 1));
  SplitAll<Formula::forward, Formula::forwardTwoLevel>(
      static_cast<const T*>(array), array, spec.order, spec.splitFwd,
      Pair<T>{array[0] + array[1], array[0] - array[1]}, Pair<T>{middle[0], -middle[1]});
}

template <class T>
void InverseSplit(const T* src, T last, T* dst, const FftSpec<T>& spec) {
  const T* const middle = src + (Index{1} << (spec.order - 1));
  SplitAll<Formula::inverse, Formula::inverse>(
      src, dst, spec.order, spec.splitInv, Pair<T>{src[0] + last, src[0] - last},
      Pair<T>{middle[0] + middle[0], static_cast<T>(-2) * middle[1]});
}

template void ForwardSplit<Zov32f>(Zov32f*, const FftSpec<Zov32f>&);
template void ForwardSplit<Zov64f>(Zov64f*, const FftSpec<Zov64f>&);
template void InverseSplit<Zov32f>(const Zov32f*, Zov32f, Zov32f*, const FftSpec<Zov32f>&);
template void InverseSplit<Zov64f>(const Zov64f*, Zov64f, Zov64f*, const FftSpec<Zov64f>&);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Largest and smallest elements of an array, and their positions.
#include "core/checks.h"
#include "core/entries.h"
#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// A strictly better element replaces the best so far. Both forms keep the best when either is a
// NaN, the vector form by the operand order of the hardware.
struct Largest {
  template <class T>
  static ZOV_INLINE auto IsBetter(T x, T best) {
    return x > best;
  }
  template <class V>
  static ZOV_INLINE V Better(V x, V best) {
    return Max(x, best);
  }
};
struct Smallest {
  template <class T>
  static ZOV_INLINE auto IsBetter(T x, T best) {
    return x < best;
  }
  template <class V>
  static ZOV_INLINE V Better(V x, V best) {
    return Min(x, best);
  }
};

// The zero that stands first in an array that holds one.
template <class T>
ZOV_NOINLINE T FirstZero(const T* pSrc) {
  while (pSrc[0] != 0) ++pSrc;
  return pSrc[0];
}

// Four running bests of one order, so that the latency of a comparison is hidden.
constexpr int kChains = 4;

template <class T, class Order>
class RunningBest {
 public:
  using V = Widest<T>;

  ZOV_INLINE explicit RunningBest(T first) {
    for (V& best : best_) best = V::Broadcast(first);
  }
  ZOV_INLINE void Take(int chain, V x) { best_[chain] = Order::Better(x, best_[chain]); }
  ZOV_INLINE T Result([[maybe_unused]] const T* pSrc) const {
    const V low = Order::Better(best_[1], best_[0]);
    const V all = Order::Better(Order::Better(best_[3], best_[2]), low);
    if constexpr (sizeof(T) == 2) {
      return BestOfShorts(all);
    } else {
      T lanes[V::kLanes];
      all.Store(lanes);
      T best = lanes[0];
      for (int i = 1; i < V::kLanes; ++i) {
        if (Order::IsBetter(lanes[i], best)) best = lanes[i];
      }
      // Zeros of both signs are equal: the first of them stays.
      return best == 0 && HoldsBothZeros() ? FirstZero(pSrc) : best;
    }
  }

 private:
  template <bool kNegative>
  static ZOV_INLINE auto ZerosOf(V x) {
    const auto bits = As<typename V::Mask::Lane>(x);
    const auto zero = x == V::Zero();
    return kNegative ? bits & zero : AndNot(bits, zero);
  }
  template <bool kNegative>
  ZOV_INLINE bool HasZeros() const {
    const auto low = ZerosOf<kNegative>(best_[0]) | ZerosOf<kNegative>(best_[1]);
    return MoveMask(low | ZerosOf<kNegative>(best_[2]) | ZerosOf<kNegative>(best_[3])) != 0;
  }
  ZOV_INLINE bool HoldsBothZeros() const {
    // No loop over the members, which would keep them in memory.
    return HasZeros<false>() && HasZeros<true>();
  }
  // Half against half, down to one.
  static ZOV_INLINE T BestOfShorts(V x) {
    using Half = Vec128<T>;
#if defined(__AVX2__)
    Half best =
        Order::Better(Half{(typename Half::Native)_mm256_extracti128_si256((__m256i)x.v, 1)},
                      Half{(typename Half::Native)_mm256_castsi256_si128((__m256i)x.v)});
#else
    Half best = x;
#endif
    best = Order::Better(Half{(typename Half::Native)_mm_srli_si128((__m128i)best.v, 8)}, best);
    best = Order::Better(Half{(typename Half::Native)_mm_srli_si128((__m128i)best.v, 4)}, best);
    best = Order::Better(Half{(typename Half::Native)_mm_srli_si128((__m128i)best.v, 2)}, best);
    return best.v[0];
  }
  V best_[kChains];
};

// Hands every element to take(chain, vector), the last vector overlapping the one before it, as an
// extreme does not mind. The array holds at least one vector.
template <class V, class Take>
ZOV_INLINE void VisitVectors(const typename V::Lane* pSrc, int len, Take take) {
  constexpr int kBlock = kChains * V::kLanes;
  int i = 0;
  for (; len - i >= kBlock; i += kBlock) {
    for (int chain = 0; chain < kChains; ++chain) {
      take(chain, V::Load(pSrc + i + chain * V::kLanes));
    }
  }
  for (; len - i >= V::kLanes; i += V::kLanes) take(0, V::Load(pSrc + i));
  take(1, V::Load(pSrc + len - V::kLanes));
}

template <class Order, class T>
ZOV_INLINE T ScanForBest(const T* pSrc, int len) {
  T best = pSrc[0];
  for (int i = 1; i < len; ++i) {
    if (Order::IsBetter(pSrc[i], best)) best = pSrc[i];
  }
  return best;
}

// A NaN at element 0 stays to the end; any other is passed over.
template <class Order, class T>
ZOV_INLINE ZovStatus FindExtreme(const T* pSrc, int len, T* pResult) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pResult)) return status;
  if (len < Widest<T>::kLanes) {
    *pResult = ScanForBest<Order>(pSrc, len);
    return zovStsNoErr;
  }
  RunningBest<T, Order> best(pSrc[0]);
  VisitVectors<Widest<T>>(pSrc, len, [&](int chain, Widest<T> x) { best.Take(chain, x); });
  *pResult = best.Result(pSrc);
  return zovStsNoErr;
}

template <class T>
ZOV_INLINE ZovStatus FindBothExtremes(const T* pSrc, int len, T* pMin, T* pMax) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pMin, pMax)) return status;
  if (len < Widest<T>::kLanes) {
    const T smallest = ScanForBest<Smallest>(pSrc, len);
    *pMax = ScanForBest<Largest>(pSrc, len);
    *pMin = smallest;
    return zovStsNoErr;
  }
  RunningBest<T, Smallest> smallest(pSrc[0]);
  RunningBest<T, Largest> largest(pSrc[0]);
  VisitVectors<Widest<T>>(pSrc, len, [&](int chain, Widest<T> x) {
    // Kept in a register: as an operand in memory of both it would be loaded twice.
    asm("" : "+x"(x.v));
    smallest.Take(chain, x);
    largest.Take(chain, x);
  });
  const T min = smallest.Result(pSrc);
  *pMax = largest.Result(pSrc);
  *pMin = min;
  return zovStsNoErr;
}

// The best value with the lowest index at which it stands. Each lane keeps its own best and the
// index of the vector it came from; a strict comparison keeps the first of equals.
template <class Order>
ZOV_INLINE ZovStatus FindExtremeAndIndex(const Zov32f* pSrc, int len, Zov32f* pValue, int* pIndex) {
  if (pIndex == nullptr) return FindExtreme<Order>(pSrc, len, pValue);
  if (const ZovStatus status = CheckArrays(len, pSrc, pValue)) return status;
  using I = Vec<std::int32_t, VecF::kLanes>;
  constexpr int kLanes = VecF::kLanes;
  constexpr int kStreams = 2;

  Zov32f best = pSrc[0];
  int index = 0;
  int i = 0;
  if (len >= kStreams * kLanes) {
    VecF bests[kStreams];
    I indices[kStreams];
    for (int s = 0; s < kStreams; ++s) {
      bests[s] = VecF::Broadcast(best);
      indices[s] = I::Zero();
    }
    // Lanes hold the start of their vector pair; lane and stream are added at the end.
    I here = I::Zero();
    const I step = I::Broadcast(kStreams * kLanes);
    for (; len - i >= kStreams * kLanes; i += kStreams * kLanes) {
      for (int s = 0; s < kStreams; ++s) {
        const VecF x = VecF::Load(pSrc + i + s * kLanes);
        const auto better = Order::IsBetter(x, bests[s]);
        indices[s] = Select(better, here, indices[s]);
        bests[s] = Order::Better(x, bests[s]);
      }
      here = here + step;
    }
    if (best == best) {
      for (int s = 0; s < kStreams; ++s) {
        Zov32f values[kLanes];
        std::int32_t starts[kLanes];
        bests[s].Store(values);
        indices[s].Store(starts);
        for (int lane = 0; lane < kLanes; ++lane) {
          // A lane that never found better than element 0 stands for index 0 itself.
          const bool isFirst = !Order::IsBetter(values[lane], pSrc[0]);
          const int at = isFirst ? 0 : starts[lane] + s * kLanes + lane;
          if (Order::IsBetter(values[lane], best) || (values[lane] == best && at < index)) {
            best = values[lane];
            index = at;
          }
        }
      }
    }
  }
  for (; i < len; ++i) {
    if (Order::IsBetter(pSrc[i], best)) {
      best = pSrc[i];
      index = i;
    }
  }
  *pValue = best;
  *pIndex = index;
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsMax_16s(const Zov16s* pSrc, int len, Zov16s* pMax) {
  return FindExtreme<Largest>(pSrc, len, pMax);
}
ZovStatus zovsMax_32f(const Zov32f* pSrc, int len, Zov32f* pMax) {
  return FindExtreme<Largest>(pSrc, len, pMax);
}
ZovStatus zovsMax_64f(const Zov64f* pSrc, int len, Zov64f* pMax) {
  return FindExtreme<Largest>(pSrc, len, pMax);
}
ZovStatus zovsMin_16s(const Zov16s* pSrc, int len, Zov16s* pMin) {
  return FindExtreme<Smallest>(pSrc, len, pMin);
}
ZovStatus zovsMin_32f(const Zov32f* pSrc, int len, Zov32f* pMin) {
  return FindExtreme<Smallest>(pSrc, len, pMin);
}

ZovStatus zovsMinMax_16s(const Zov16s* pSrc, int len, Zov16s* pMin, Zov16s* pMax) {
  return FindBothExtremes(pSrc, len, pMin, pMax);
}
ZovStatus zovsMinMax_16u(const Zov16u* pSrc, int len, Zov16u* pMin, Zov16u* pMax) {
  return FindBothExtremes(pSrc, len, pMin, pMax);
}
ZovStatus zovsMinMax_32f(const Zov32f* pSrc, int len, Zov32f* pMin, Zov32f* pMax) {
  return FindBothExtremes(pSrc, len, pMin, pMax);
}

ZovStatus zovsMaxIndx_32f(const Zov32f* pSrc, int len, Zov32f* pMax, int* pIndx) {
  return FindExtremeAndIndex<Largest>(pSrc, len, pMax, pIndx);
}
ZovStatus zovsMinIndx_32f(const Zov32f* pSrc, int len, Zov32f* pMin, int* pIndx) {
  return FindExtremeAndIndex<Smallest>(pSrc, len, pMin, pIndx);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The sums of the direct route, several vectors of outputs at a time. Output vectors that lie one
// vector apart meet the same samples at taps one vector apart: two such taps go together, so that
// each vector of samples, which may cross cache lines, is loaded once for two products.
#include "signal/filter/fir/sums.h"

#include "signal/fourier/lanes.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// Vectors of outputs in a full tile: sums, two taps, samples and a product fill 16 registers.
constexpr int kTile = kLevel >= Level::avx ? 12 : 8;

// Tap j in all lanes, by its place in the reversed order.
template <class T>
struct ReversedTaps {
  const T* taps;
  explicit ReversedTaps(const FirTaps<T>& t) : taps(t.reversed) {}
  ZOV_INLINE Lanes<T> At(Index j) const { return Lanes<T>::Broadcast(taps[j]); }
};
template <class T>
struct BroadcastTaps {
  const T* last;
  explicit BroadcastTaps(const FirTaps<T>& t)
      : last(t.broadcast + (t.length - 1) * Lanes<T>::kLanes) {}
  ZOV_INLINE Lanes<T> At(Index j) const {
    return Lanes<T>::LoadAligned(last - j * Lanes<T>::kLanes);
  }
};

// kVectors vectors of outputs.
template <int kVectors, class T, class Taps>
struct Tile {
  using V = Lanes<T>;
  // A lone vector has four sums, so that additions need not wait for each other.
  static constexpr int kSums = kVectors == 1 ? 4 : kVectors;
  V sums[kSums];
  const T* x;
  const Taps& taps;

  // Taps j and j + kLanes.
  ZOV_INLINE void Pair(Index j) {
    const V tap = taps.At(j);
    const V next = taps.At(j + V::kLanes);
    Unroll<kVectors + 1>(ZOV_UNROLLED(i) {
      constexpr int k = decltype(i)::value;
      V samples = V::Load(x + j + k * V::kLanes);
      // Stays in its register: the compiler would rather load it again.
      asm("" : "+x"(samples.v));
      if constexpr (k < kVectors) sums[k] = Fma(samples, tap, sums[k]);
      if constexpr (k > 0) sums[k - 1] = Fma(samples, next, sums[k - 1]);
    });
  }
  ZOV_INLINE void Single(Index j) {
    const V tap = taps.At(j);
    Unroll<kVectors>(ZOV_UNROLLED(i) {
      constexpr int k = decltype(i)::value;
      sums[k] = Fma(V::Load(x + j + k * V::kLanes), tap, sums[k]);
    });
  }

  ZOV_INLINE void AddAll(Index length) {
    Index j = 0;
    while (length - j > V::kLanes) {
      const Index left = length - j - V::kLanes;
      const Index pairs = left < V::kLanes ? left : V::kLanes;
      for (Index r = 0; r < pairs; ++r) Pair(j + r);
      // What remains of the first half when the second one is not full.
      for (Index r = pairs; r < V::kLanes; ++r) Single(j + r);
      j += 2 * V::kLanes;
    }
    for (; j < length; ++j) Single(j);
  }
  ZOV_INLINE void AddAllToOneVector(Index length) {
    Index j = 0;
    for (; j + 4 <= length; j += 4) {
      Unroll<4>(ZOV_UNROLLED(i) {
        constexpr int k = decltype(i)::value;
        sums[k] = Fma(V::Load(x + j + k), taps.At(j + k), sums[k]);
      });
    }
    for (; j < length; ++j) sums[0] = Fma(V::Load(x + j), taps.At(j), sums[0]);
    sums[0] = (sums[0] + sums[1]) + (sums[2] + sums[3]);
  }
};

template <int kVectors, class T, class Taps>
ZOV_INLINE void FilterTile(const Taps& taps, Index length, const T* x, T* y) {
  using V = Lanes<T>;
  Tile<kVectors, T, Taps> tile = {{}, x, taps};
  if constexpr (kVectors == 1) {
    tile.AddAllToOneVector(length);
  } else {
    tile.AddAll(length);
  }
  Unroll<kVectors>(ZOV_UNROLLED(i) {
    constexpr int k = decltype(i)::value;
    tile.sums[k].Store(y + k * V::kLanes);
  });
}

// One output, vectorised over the taps.
template <class T>
ZOV_INLINE T FilterOne(const FirTaps<T>& taps, const T* x) {
  using V = Lanes<T>;
  V sum = V::Zero();
  Index j = 0;
  for (; j + V::kLanes <= taps.length; j += V::kLanes) {
    sum = Fma(V::Load(x + j), V::Load(taps.reversed + j), sum);
  }
  T result = AddLanes(sum);
  for (; j < taps.length; ++j) result += x[j] * taps.reversed[j];
  return result;
}

template <class T, class Taps>
ZOV_NOINLINE void FilterVectors(const FirTaps<T>& all, const T* x, T* y, Index n) {
  constexpr Index kLanes = Lanes<T>::kLanes;
  const Taps taps(all);
  const Index length = all.length;
  Index i = 0;
  // The last two tiles share what is left, as small tiles are slow.
  Index vectors = n / kLanes;
  for (; vectors >= kTile + 8 || vectors == kTile; vectors -= kTile, i += kTile * kLanes) {
    FilterTile<kTile>(taps, length, x + i, y + i);
  }
  for (; vectors >= 8; vectors -= 8, i += 8 * kLanes) FilterTile<8>(taps, length, x + i, y + i);
  for (; vectors >= 4; vectors -= 4, i += 4 * kLanes) FilterTile<4>(taps, length, x + i, y + i);
  for (; vectors >= 1; vectors -= 1, i += kLanes) FilterTile<1>(taps, length, x + i, y + i);
  // The last vector ends with the last output.
  if (i < n) FilterTile<1>(taps, length, x + n - kLanes, y + n - kLanes);
}

}  // namespace

template <class T>
void FirSums(const FirTaps<T>& taps, const T* x, T* y, Index n) {
  if (n < Lanes<T>::kLanes) {
    for (Index i = 0; i < n; ++i) y[i] = FilterOne(taps, x + i);
  } else if (taps.broadcast != nullptr) {
    FilterVectors<T, BroadcastTaps<T>>(taps, x, y, n);
  } else {
    FilterVectors<T, ReversedTaps<T>>(taps, x, y, n);
  }
}

template void FirSums(const FirTaps<Zov32f>&, const Zov32f*, Zov32f*, Index);
template void FirSums(const FirTaps<Zov64f>&, const Zov64f*, Zov64f*, Index);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

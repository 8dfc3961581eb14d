// Pairs of neighbours in a row, for reductions by one half.
#pragma once

#include "image/resize/byte_lanes.h"
#include "image/resize/image_view.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Asks for what the next result row reads at the place that this one is at.
ZOV_INLINE void PrefetchNext(const Zov8u* upper, const Zov8u* lower, std::int64_t i) {
  const std::ptrdiff_t next = 2 * (lower - upper) + i;
  Prefetch(upper + next);
  Prefetch(lower + next);
}

using WordSums = VecI<std::uint16_t>;

// Pixels of a row and of the next one from p on, summed in pairs: as many sums as a vector of
// words has lanes.
template <int kChannels>
ZOV_INLINE WordSums PairsOfBytes(const Zov8u* p) {
  const Bytes x = Bytes::Load(p);
#if defined(__SSSE3__)
  if constexpr (kChannels == 4) {
    alignas(16) static constexpr Zov8u kPairs[16] = {0, 4,  1, 5,  2,  6,  3,  7,
                                                     8, 12, 9, 13, 10, 14, 11, 15};
    const __m128i lane = _mm_load_si128(reinterpret_cast<const __m128i*>(kPairs));
    const __m128i lanes[2] = {lane, lane};
    return As<std::uint16_t>(PairSums(ShuffleBytes(x, JoinLanes(lanes)), RepeatPair(1, 1)));
  }
  return As<std::uint16_t>(PairSums(x, RepeatPair(1, 1)));
#else
  if constexpr (kChannels == 4) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_unpacklo_epi8((__m128i)x.v, zero);
    const __m128i high = _mm_unpackhi_epi8((__m128i)x.v, zero);
    return {(WordSums::Native)_mm_add_epi16(_mm_unpacklo_epi64(low, high),
                                            _mm_unpackhi_epi64(low, high))};
  }
  const __m128i even = _mm_and_si128((__m128i)x.v, _mm_set1_epi16(0xFF));
  return {(WordSums::Native)_mm_add_epi16(even, _mm_srli_epi16((__m128i)x.v, 8))};
#endif
}

// Two vectors' worth of a row. Even and odd elements come out of them as whole vectors, whose lanes
// InOrder puts in the order of the image.
template <class V>
struct TwoVectors {
  V a;
  V b;
};

template <class V>
ZOV_INLINE TwoVectors<V> LoadTwo(const Zov8u* p) {
#if defined(__AVX__) && !defined(__AVX2__)
  // Every other half of a vector, which leaves nothing for InOrder to do.
  const auto halves = [p](int at) __attribute__((always_inline)) {
    const auto half = [ p, at ](int k) __attribute__((always_inline)) {
      return _mm_loadu_ps(reinterpret_cast<const float*>(p + at + k));
    };
    return V{(typename V::Native)_mm256_set_m128(half(32), half(0))};
  };
  return {halves(0), halves(16)};
#else
  return {V::Load(p), V::Load(p + V::kBytes)};
#endif
}

#if defined(__AVX__)
ZOV_INLINE VecF EvenLanes(const TwoVectors<VecF>& x) {
  return {_mm256_shuffle_ps(x.a.v, x.b.v, 0x88)};
}
ZOV_INLINE VecF OddLanes(const TwoVectors<VecF>& x) {
  return {_mm256_shuffle_ps(x.a.v, x.b.v, 0xDD)};
}
ZOV_INLINE VecD EvenLanes(const TwoVectors<VecD>& x) { return {_mm256_unpacklo_pd(x.a.v, x.b.v)}; }
ZOV_INLINE VecD OddLanes(const TwoVectors<VecD>& x) { return {_mm256_unpackhi_pd(x.a.v, x.b.v)}; }
#else
ZOV_INLINE VecF EvenLanes(const TwoVectors<VecF>& x) {
  return {_mm_shuffle_ps(x.a.v, x.b.v, 0x88)};
}
ZOV_INLINE VecF OddLanes(const TwoVectors<VecF>& x) { return {_mm_shuffle_ps(x.a.v, x.b.v, 0xDD)}; }
ZOV_INLINE VecD EvenLanes(const TwoVectors<VecD>& x) { return {_mm_unpacklo_pd(x.a.v, x.b.v)}; }
ZOV_INLINE VecD OddLanes(const TwoVectors<VecD>& x) { return {_mm_unpackhi_pd(x.a.v, x.b.v)}; }
#endif

// Also for bytes that were packed from two vectors.
template <class V>
ZOV_INLINE V InOrder(V x) {
#if defined(__AVX2__)
  return {(typename V::Native)_mm256_permute4x64_epi64((__m256i)x.v, 0xD8)};
#else
  return x;
#endif
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

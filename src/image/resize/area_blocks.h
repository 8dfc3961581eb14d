// Area reduction by one half, the most common of all: sums of 2 x 2 pixels straight from the rows.
#pragma once

#include "image/resize/area_lanes.h"
#include "image/resize/area_spans.h"
#include "image/resize/byte_lanes.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

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

// Means of a row of `count` elements.
template <int kChannels>
void HalveRow(const Zov8u* upper, const Zov8u* lower, const AreaMeans<Zov8u, std::uint16_t>& means,
              int count, Zov8u* result) {
  constexpr int kWords = WordSums::kLanes;
  const auto words = [&](int i) __attribute__((always_inline)) {
    return As<std::int16_t>(means.Words(PairsOfBytes<kChannels>(upper + 2 * i) +
                                        PairsOfBytes<kChannels>(lower + 2 * i)));
  };
  int i = 0;
  for (; i + 2 * kWords <= count; i += 2 * kWords) {
    Bytes packed = PackSaturated(words(i), words(i + kWords));
#if defined(__AVX2__)
    packed.v = (Bytes::Native)_mm256_permute4x64_epi64((__m256i)packed.v, 0xD8);
#endif
    packed.Store(result + i);
  }
  for (; i < count; ++i) {
    const int at = i / kChannels * 2 * kChannels + i % kChannels;
    result[i] = means.Mean(upper[at] + upper[at + kChannels] + lower[at] + lower[at + kChannels]);
  }
}

ZOV_INLINE VecF SumOfRows(const Zov8u* upper, const Zov8u* lower, int i) {
  const auto load = [i](const Zov8u* row) __attribute__((always_inline)) {
    const float* const p = reinterpret_cast<const float*>(row) + i;
#if defined(__AVX__) && !defined(__AVX2__)
    // Every other four pixels, so that the pairs come out in order.
    return VecF{(VecF::Native)_mm256_set_m128(_mm_loadu_ps(p + 8), _mm_loadu_ps(p))};
#else
    return VecF::Load(p);
#endif
  };
  return VecF::Zero() + load(upper) + load(lower);
}

template <int kChannels>
void HalveRow(const Zov8u* upper, const Zov8u* lower, const AreaMeans<Zov32f, Zov32f>& means,
              int count, Zov32f* result) {
  constexpr int kNext = kLevel >= Level::avx2 ? 8 : 4;
  int i = 0;
  for (; i + VecF::kLanes <= count; i += VecF::kLanes) {
    const VecF a = SumOfRows(upper, lower, 2 * i);
    const VecF b = SumOfRows(upper, lower, 2 * i + kNext);
#if defined(__AVX__)
    const VecF even = {(VecF::Native)_mm256_shuffle_ps((__m256)a.v, (__m256)b.v, 0x88)};
    const VecF odd = {(VecF::Native)_mm256_shuffle_ps((__m256)a.v, (__m256)b.v, 0xDD)};
#else
    const VecF even = {(VecF::Native)_mm_shuffle_ps((__m128)a.v, (__m128)b.v, 0x88)};
    const VecF odd = {(VecF::Native)_mm_shuffle_ps((__m128)a.v, (__m128)b.v, 0xDD)};
#endif
    VecF mean = means(even + odd);
#if defined(__AVX2__)
    mean.v = (VecF::Native)_mm256_permute4x64_pd((__m256d)mean.v, 0xD8);
#endif
    mean.Store(result + i);
  }
  for (; i < count; ++i) {
    const auto sum = [&](int k) {
      return 0.0F + LoadAs<float>(upper + k * 4) + LoadAs<float>(lower + k * 4);
    };
    StoreAs(result + i, means.Mean(sum(2 * i) + sum(2 * i + 1)));
  }
}

// True when it could be done: blocks of 2 x 2 pixels, all of them in the image.
template <class T, int kChannels, class Sum>
bool ReduceByHalf(const SourceView& source, const TargetView& target,
                  const ResizeGeometry& geometry, const AreaMeans<T, Sum>& means) {
  const AreaSpan column = AreaSpans(geometry.x, AreaDirection::columns, true).Next();
  const AreaSpan row = AreaSpans(geometry.y, AreaDirection::rows, true).Next();
  const auto isHalf = [](const AreaSpan& first, const ResizeAxis& axis) {
    return first.count == 2 && first.head == 0 && first.tail == 0 &&
           first.begin + std::int64_t{2} * axis.count <= axis.extent;
  };
  if (!isHalf(column, geometry.x) || !isHalf(row, geometry.y)) return false;
  constexpr std::int64_t kPixelBytes = kChannels * sizeof(T);
  for (int y = 0; y < geometry.y.count; ++y) {
    const Zov8u* const upper = source.Row(row.begin + 2 * y) + column.begin * kPixelBytes;
    Zov8u* const result = target.Row(geometry.y.first + y) + geometry.x.first * kPixelBytes;
    HalveRow<kChannels>(upper, upper + source.step, means, geometry.x.count * kChannels,
                        reinterpret_cast<T*>(result));
  }
  return true;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

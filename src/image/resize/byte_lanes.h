// Integer vectors of the 8-bit kernels: bytes in, 16-bit lanes between, bytes out.
#pragma once

#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

using Bytes = VecI<std::uint8_t>;
using Words = VecI<std::int16_t>;

// 16-byte lanes of a vector. Shuffles and packing work lane by lane.
inline constexpr int kLanes = kIntVectorBytes / 16;

#if defined(__AVX2__)

ZOV_INLINE Words MulHigh(Words a, Words b) {
  return {(Words::Native)_mm256_mulhi_epi16((__m256i)a.v, (__m256i)b.v)};
}
ZOV_INLINE Words MulHighRounded(Words a, Words b) {
  return {(Words::Native)_mm256_mulhrs_epi16((__m256i)a.v, (__m256i)b.v)};
}
ZOV_INLINE Words PairSums(Bytes a, Bytes weights) {
  return {(Words::Native)_mm256_maddubs_epi16((__m256i)a.v, (__m256i)weights.v)};
}
ZOV_INLINE Bytes ShuffleBytes(Bytes a, Bytes control) {
  return {(Bytes::Native)_mm256_shuffle_epi8((__m256i)a.v, (__m256i)control.v)};
}
ZOV_INLINE Bytes PackSaturated(Words a, Words b) {
  return {(Bytes::Native)_mm256_packus_epi16((__m256i)a.v, (__m256i)b.v)};
}
// One lane from each of kLanes places.
ZOV_INLINE Bytes LoadLanes(const Zov8u* row, const std::int32_t* offsets) {
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + offsets[0]));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + offsets[1]));
  return {(Bytes::Native)_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1)};
}
ZOV_INLINE Bytes JoinLanes(const __m128i* lanes) {
  return {(Bytes::Native)_mm256_inserti128_si256(_mm256_castsi128_si256(lanes[0]), lanes[1], 1)};
}
// The logical place of the lane that is stored at a place of a group of two vectors. Lines keep
// their lanes in this order so that PackSaturated delivers bytes in image order.
ZOV_INLINE constexpr int LogicalLane(int stored) {
  constexpr int kOrder[4] = {0, 2, 1, 3};
  return stored / 4 * 4 + kOrder[stored % 4];
}

#else

ZOV_INLINE Words MulHigh(Words a, Words b) {
  return {(Words::Native)_mm_mulhi_epi16((__m128i)a.v, (__m128i)b.v)};
}
#if defined(__SSSE3__)
ZOV_INLINE Words MulHighRounded(Words a, Words b) {
  return {(Words::Native)_mm_mulhrs_epi16((__m128i)a.v, (__m128i)b.v)};
}
ZOV_INLINE Words PairSums(Bytes a, Bytes weights) {
  return {(Words::Native)_mm_maddubs_epi16((__m128i)a.v, (__m128i)weights.v)};
}
ZOV_INLINE Bytes ShuffleBytes(Bytes a, Bytes control) {
  return {(Bytes::Native)_mm_shuffle_epi8((__m128i)a.v, (__m128i)control.v)};
}
#endif
ZOV_INLINE Bytes PackSaturated(Words a, Words b) {
  return {(Bytes::Native)_mm_packus_epi16((__m128i)a.v, (__m128i)b.v)};
}
ZOV_INLINE Bytes LoadLanes(const Zov8u* row, const std::int32_t* offsets) {
  return Bytes::Load(row + offsets[0]);
}
ZOV_INLINE Bytes JoinLanes(const __m128i* lanes) { return {(Bytes::Native)lanes[0]}; }
ZOV_INLINE constexpr int LogicalLane(int stored) { return stored; }

#endif

// A vector of one repeated pair of bytes.
ZOV_INLINE Bytes RepeatPair(int first, int second) {
  Words pair = Words::Broadcast(static_cast<std::int16_t>((second << 8) | (first & 0xFF)));
  return As<std::uint8_t>(pair);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Vertical pass of the cubic kernels and of Lanczos: weighted sums of lines, brought to the element
// of the image.
#pragma once

#include "image/resize/byte_lanes.h"
#include "image/resize/image_view.h"
#include "image/resize/kernel_columns_real.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// v + 0.5000001 in double precision, truncated, as bytes saturate it. Of single precision only the
// three values below 0.5 lie so close to a half; the hair lifts these, and is lost from 1 on.
template <class V>
ZOV_INLINE V AddHalfUp(V v) {
  return v + V::Broadcast(0x1.EP-25F) + V::Broadcast(0.5F);
}
ZOV_INLINE __m128i RoundHalfUp(__m128 v) { return _mm_cvttps_epi32(AddHalfUp(Vec<float, 4>{v}).v); }

// The bytes of a vector of pixels from the sums of as many lanes, rounded so.
#if defined(__AVX2__)
ZOV_INLINE Bytes PackIntegers(__m256i a, __m256i b, __m256i c, __m256i d) {
  const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, d));
  const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  return {(Bytes::Native)_mm256_permutevar8x32_epi32(packed, order)};
}
ZOV_INLINE Bytes BytesRoundedHalfUp(const VecF* v) {
  const auto round = [v](int k) __attribute__((always_inline)) {
    return _mm256_cvttps_epi32(AddHalfUp(v[k]).v);
  };
  return PackIntegers(round(0), round(1), round(2), round(3));
}
#elif defined(__AVX__)
ZOV_INLINE Bytes BytesRoundedHalfUp(const VecF* v) {
  const auto pair = [v](int k) __attribute__((always_inline)) {
    const __m256i integers = _mm256_cvttps_epi32(AddHalfUp(v[k]).v);
    return _mm_packs_epi32(_mm256_castsi256_si128(integers), _mm256_extractf128_si256(integers, 1));
  };
  return {(Bytes::Native)_mm_packus_epi16(pair(0), pair(1))};
}
#else
ZOV_INLINE Bytes BytesRoundedHalfUp(const VecF* v) {
  const auto pair = [v](int k) __attribute__((always_inline)) {
    return _mm_packs_epi32(RoundHalfUp(v[k].v), RoundHalfUp(v[k + 1].v));
  };
  return {(Bytes::Native)_mm_packus_epi16(pair(0), pair(2))};
}
#endif

// The same in the interior, where level sse2 rounds like that too and the others to the nearest
// integer, ties to even.
inline constexpr int kFloatsPerBytes = Bytes::kBytes / VecF::kLanes;
#if defined(__AVX2__)
ZOV_INLINE Bytes BytesOfSums(const VecF* v) {
  return PackIntegers(_mm256_cvtps_epi32(v[0].v), _mm256_cvtps_epi32(v[1].v),
                      _mm256_cvtps_epi32(v[2].v), _mm256_cvtps_epi32(v[3].v));
}
#elif defined(__AVX__)
ZOV_INLINE Bytes BytesOfSums(const VecF* v) {
  const auto pair = [v](int k) __attribute__((always_inline)) {
    const __m256i integers = _mm256_cvtps_epi32(v[k].v);
    return _mm_packs_epi32(_mm256_castsi256_si128(integers), _mm256_extractf128_si256(integers, 1));
  };
  return {(Bytes::Native)_mm_packus_epi16(pair(0), pair(1))};
}
#else
ZOV_INLINE Bytes BytesOfSums(const VecF* v) {
  if constexpr (kLevel == Level::sse2) return BytesRoundedHalfUp(v);
  const auto pair = [v](int k) __attribute__((always_inline)) {
    return _mm_packs_epi32(_mm_cvtps_epi32(v[k].v), _mm_cvtps_epi32(v[k + 1].v));
  };
  return {(Bytes::Native)_mm_packus_epi16(pair(0), pair(2))};
}
#endif

// The weighted sum of kTaps lines at element i.
template <bool kFused, int kTaps, class V, class Real>
ZOV_INLINE V SumLines(const Real* const* lines, const V* weights, std::int64_t i) {
  V sum = weights[0] * V::LoadAligned(lines[0] + i);
  for (int k = 1; k < kTaps; ++k) {
    sum = AddProduct<kFused>(sum, weights[k], V::LoadAligned(lines[k] + i));
  }
  return sum;
}

// Writes kRows rows from the same kTaps lines; `weights` has kTaps for each row.
template <class T, int kTaps, int kRows, class Real>
ZOV_NOINLINE void CombineLines(const Real* const* lineList, const Real* weights,
                               const RowWriter* writerList, std::int64_t elements) {
  using V = Widest<Real>;
  constexpr bool kBytes = sizeof(T) == 1;
  constexpr int kVectors = kBytes ? kFloatsPerBytes : 1;
  constexpr int kStep = kVectors * V::kLanes;
  // Copies that no store can alias.
  const Real* lines[kTaps];
  V scales[kRows][kTaps];
  for (int k = 0; k < kTaps; ++k) {
    lines[k] = lineList[k];
    for (int r = 0; r < kRows; ++r) scales[r][k] = V::Broadcast(weights[r * kTaps + k]);
  }
  const RowWriter first = writerList[0];
  const RowWriter second = writerList[kRows - 1];
  const auto block = [&](std::int64_t i, auto* out) __attribute__((always_inline)) {
    V sums[kRows][kVectors];
    for (int k = 0; k < kVectors; ++k) {
      for (int r = 0; r < kRows; ++r) {
        sums[r][k] = SumLines<!kBytes, kTaps>(lines, scales[r], i + k * V::kLanes);
      }
    }
    for (int r = 0; r < kRows; ++r) {
      if constexpr (kBytes) {
        out[r] = BytesOfSums(sums[r]);
      } else {
        out[r] = sums[r][0];
      }
    }
  };
  std::conditional_t<kBytes, Bytes, V> out[kRows];
  constexpr int kElement = sizeof(T);
  std::int64_t i = 0;
  for (; i + kStep <= elements; i += kStep) {
    block(i, out);
    first.Write(out[0], i * kElement);
    if constexpr (kRows == 2) second.Write(out[1], i * kElement);
  }
  if (i < elements) {
    block(i, out);
    for (int r = 0; r < kRows; ++r) {
      StoreFirst(out[r], writerList[r].At(i * kElement), (elements - i) * kElement);
    }
  }
}

// Elements `begin` to `end` of a row, from `taps` lines, without fused sums: lineAt(k) is line k.
// Lines extend beyond the last element by a vector of 16 bytes.
template <class T, class Real, class LineAt>
ZOV_INLINE void CombineRounded(LineAt lineAt, const Real* weights, int taps, Zov8u* row,
                               std::int64_t begin, std::int64_t end) {
  constexpr bool kBytes = sizeof(T) == 1;
  constexpr int kElement = sizeof(T);
  std::int64_t i = begin;
  using Wide = Widest<Real>;
  constexpr int kVectors = kBytes ? kFloatsPerBytes : 4;
  // Eight sums at a time, as four would wait for their additions.
  const auto blocks = [&](auto parts) __attribute__((always_inline)) {
    constexpr int kSums = decltype(parts)::value * kVectors;
    for (; i + kSums * Wide::kLanes <= end; i += kSums * Wide::kLanes) {
      Wide sums[kSums];
      for (int v = 0; v < kSums; ++v) sums[v] = Wide::Zero();
      for (int k = 0; k < taps; ++k) {
        const Real* const line = lineAt(k) + i;
        const Wide weight = Wide::Broadcast(weights[k]);
        for (int v = 0; v < kSums; ++v) {
          sums[v] = sums[v] + weight * Wide::Load(line + v * Wide::kLanes);
        }
      }
      for (int v = 0; v < kSums; v += kVectors) {
        if constexpr (kBytes) {
          BytesRoundedHalfUp(sums + v).Store(row + i + v * Wide::kLanes);
        } else {
          for (int k = v; k < v + kVectors; ++k) {
            sums[k].Store(row + (i + k * Wide::kLanes) * kElement);
          }
        }
      }
    }
  };
  blocks(std::integral_constant<int, 2>());
  blocks(std::integral_constant<int, 1>());
  using V = Vec128<Real>;
  for (; i < end; i += V::kLanes) {
    V sum = V::Zero();
    for (int k = 0; k < taps; ++k) sum = sum + V::Broadcast(weights[k]) * V::Load(lineAt(k) + i);
    const std::int64_t count = end - i < V::kLanes ? end - i : V::kLanes;
    Vec128<std::uint8_t> bytes = As<std::uint8_t>(sum);
    if constexpr (kBytes) {
      const __m128i words = _mm_packs_epi32(RoundHalfUp(sum.v), _mm_setzero_si128());
      bytes.v = (Vec128<std::uint8_t>::Native)_mm_packus_epi16(words, words);
    }
    if (!kBytes && count == V::kLanes) {
      bytes.Store(row + i * kElement);
    } else {
      StoreFirst(bytes, row + i * kElement, count * kElement);
    }
  }
}

// The same from a list of lines: rows and columns of the bands.
template <class T, class Real>
ZOV_NOINLINE void CombineBand(const Real* const* lines, const Real* weights, int taps, Zov8u* row,
                              std::int64_t begin, std::int64_t end) {
  CombineRounded<T>(
      [lines](int k) __attribute__((always_inline)) { return lines[k]; }, weights, taps, row, begin,
      end);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Horizontal pass of the cubic kernels and of Lanczos over 8-bit rows, into lines of floats. Sums
// run from the first tap to the last, each product and sum rounded, at every level.
#pragma once

#include "image/resize/byte_lanes.h"
#include "image/resize/image_view.h"
#include "image/resize/kernel_taps.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Floats next to the integers of the same number of lanes.
using ByteFloats = Vec<float, kIntVectorBytes / 4>;

#if defined(__AVX2__)
ZOV_INLINE ByteFloats ToFloats(__m256i v) { return {_mm256_cvtepi32_ps(v)}; }
#else
ZOV_INLINE ByteFloats ToFloats(__m128i v) { return {_mm_cvtepi32_ps(v)}; }
#endif

// The bytes of as many 32-bit lanes as there are wide floats: level avx has wide floats alone, and
// needs two vectors of bytes for them.
struct WideBytes {
  static constexpr int kParts = VecF::kBytes / Bytes::kBytes;
  Bytes part[kParts];
};

// Byte kByte of every 32-bit lane.
template <int kByte>
ZOV_INLINE VecF FloatsOfByte(const WideBytes& v) {
#if defined(__AVX2__)
  __m256i x = (__m256i)v.part[0].v;
  if constexpr (kByte > 0) x = _mm256_srli_epi32(x, 8 * kByte);
  if constexpr (kByte < 3) x = _mm256_and_si256(x, _mm256_set1_epi32(0xFF));
  return {_mm256_cvtepi32_ps(x)};
#elif defined(__AVX__)
  __m128i low = (__m128i)v.part[0].v;
  __m128i high = (__m128i)v.part[1].v;
  if constexpr (kByte > 0) {
    low = _mm_srli_epi32(low, 8 * kByte);
    high = _mm_srli_epi32(high, 8 * kByte);
  }
  __m256i x = _mm256_set_m128i(high, low);
  if constexpr (kByte < 3) {
    const __m256i byte = _mm256_set1_epi32(0xFF);
    x = _mm256_castps_si256(_mm256_and_ps(_mm256_castsi256_ps(x), _mm256_castsi256_ps(byte)));
  }
  return {_mm256_cvtepi32_ps(x)};
#else
  __m128i x = (__m128i)v.part[0].v;
  if constexpr (kByte > 0) x = _mm_srli_epi32(x, 8 * kByte);
  if constexpr (kByte < 3) x = _mm_and_si128(x, _mm_set1_epi32(0xFF));
  return ToFloats(x);
#endif
}

// One channel. The taps of a column are the bytes of a 32-bit lane: four columns out of a window of
// 16 bytes by a byte shuffle, or each column loaded by itself.
template <int kTaps>
class KernelColumns8u1 {
  static constexpr bool kHasShuffle = kLevel >= Level::ssse3;
  static constexpr int kLaneColumns = 4;
  static constexpr int kWindow = 16;
  static constexpr int kVector = VecF::kLanes;
  static constexpr int kPartColumns = Bytes::kBytes / 4;
  static constexpr int kBlock = 8;  // columns whose taps are found at a time
  // The last two of six taps come out of a window two bytes on.
  static constexpr int kSecond = kTaps - 4;

 public:
  KernelColumns8u1(WorkArena* arena, const Kernel& kernel, const ResizeAxis& axis, int columns)
      : columns_(columns) {
    weights_ = arena->Take<float>(std::int64_t{columns} * kTaps);
    const bool wide = kHasShuffle && axis.extent >= kWindow + kSecond;
    if (wide && BuildWindows(arena, kernel, axis)) return;
    index_ = arena->Take<std::int32_t>(columns);
    KernelTaps<float, kTaps> taps[kBlock];
    for (int i = 0; i < columns; i += kBlock) {
      SetColumns(kernel, axis, i, taps);
      for (int k = 0; k < kBlock; ++k) index_[i + k] = taps[k].first;
    }
  }

  template <bool>
  void Resample(const Zov8u* row, float* line) const {
    if (index_ == nullptr) {
      ResampleRow<true>(row, line);
    } else {
      ResampleRow<false>(row, line);
    }
  }

 private:
  // Weights lie tap by tap for each vector of columns. Columns past the last repeat it.
  void SetColumns(const Kernel& kernel, const ResizeAxis& axis, int column,
                  KernelTaps<float, kTaps>* taps) {
    const int rest = axis.count - column;
    const int filled = rest < kBlock ? rest : kBlock;
    if (filled > 0) FindTaps(kernel, axis, column, filled, taps);
    for (int k = filled > 0 ? filled : 0; k < kBlock; ++k) {
      if (k > 0) {
        taps[k] = taps[k - 1];
      } else {
        FindTaps(kernel, axis, axis.count - 1, 1, taps);
      }
    }
    for (int k = 0; k < kBlock; ++k) {
      const int place = column + k;
      float* const to = weights_ + place / kVector * kVector * kTaps + place % kVector;
      for (int tap = 0; tap < kTaps; ++tap) to[tap * kVector] = taps[k].weights[tap];
    }
  }

  bool BuildWindows(WorkArena* arena, const Kernel& kernel, const ResizeAxis& axis) {
    WorkArena trial = *arena;
    bases_ = trial.Take<std::int32_t>(columns_ / kLaneColumns);
    controls_ = trial.Take<Zov8u>(std::int64_t{columns_} * 4);
    const int lastBase = axis.extent - kWindow - kSecond;
    KernelTaps<float, kTaps> taps[kBlock];
    for (int i = 0; i < columns_; i += kBlock) {
      SetColumns(kernel, axis, i, taps);
      for (int k = 0; k < kBlock; ++k) {
        const int column = i + k;
        if (k % kLaneColumns == 0) {
          bases_[column / kLaneColumns] = taps[k].first < lastBase ? taps[k].first : lastBase;
        }
        const int tap = taps[k].first - bases_[column / kLaneColumns];
        if (tap + 4 > kWindow) return false;
        for (int byte = 0; byte < 4; ++byte) {
          controls_[column * 4 + byte] = static_cast<Zov8u>(tap + byte);
        }
      }
    }
    *arena = trial;
    return true;
  }

  // Four taps of each column of a vector, from the tap kFrom on.
  template <bool kWindows, int kFrom>
  ZOV_INLINE WideBytes LoadTaps(const Zov8u* row, std::int64_t i) const {
    WideBytes taps;
    for (int k = 0; k < WideBytes::kParts; ++k) {
      taps.part[k] = LoadPart<kWindows, kFrom>(row, i + k * kPartColumns);
    }
    return taps;
  }

  template <bool kWindows, int kFrom>
  ZOV_INLINE Bytes LoadPart(const Zov8u* row, std::int64_t i) const {
#if defined(__SSSE3__)
    if constexpr (kWindows) {
      return ShuffleBytes(LoadLanes(row + kFrom, bases_ + i / kLaneColumns),
                          Bytes::LoadAligned(controls_ + i * 4));
    }
#endif
    const auto lane = [ row, index = index_ + i ](int k) __attribute__((always_inline)) {
      const auto tap = [=](int column) __attribute__((always_inline)) {
        return _mm_cvtsi32_si128(LoadAs<std::int32_t>(row + index[k + column] + kFrom));
      };
      return _mm_unpacklo_epi64(_mm_unpacklo_epi32(tap(0), tap(1)),
                                _mm_unpacklo_epi32(tap(2), tap(3)));
    };
    __m128i lanes[kLanes];
    for (int k = 0; k < kLanes; ++k) lanes[k] = lane(k * kLaneColumns);
    return JoinLanes(lanes);
  }

  template <bool kWindows>
  ZOV_INLINE void ResampleRow(const Zov8u* row, float* line) const {
    // A copy that no store can alias.
    const KernelColumns8u1 my = *this;
    for (std::int64_t i = 0; i < my.columns_; i += kVector) {
      const float* const weights = my.weights_ + i * kTaps;
      const auto weight = [weights](int tap) __attribute__((always_inline)) {
        return VecF::LoadAligned(weights + tap * kVector);
      };
      const WideBytes first = my.LoadTaps<kWindows, 0>(row, i);
      VecF sum = FloatsOfByte<0>(first) * weight(0) + FloatsOfByte<1>(first) * weight(1);
      sum = sum + FloatsOfByte<2>(first) * weight(2);
      sum = sum + FloatsOfByte<3>(first) * weight(3);
      if constexpr (kTaps == 6) {
        const WideBytes second = my.LoadTaps<kWindows, kSecond>(row, i);
        sum = sum + FloatsOfByte<2>(second) * weight(4);
        sum = sum + FloatsOfByte<3>(second) * weight(5);
      }
      sum.StoreAligned(line + i);
    }
  }

  int columns_;  // with padding
  float* weights_;
  std::int32_t* index_ = nullptr;  // null when windows are used
  std::int32_t* bases_ = nullptr;
  Zov8u* controls_ = nullptr;
};

// Four channels: four taps of a column are 16 bytes, the last two of six taps the upper half of the
// 16 bytes two pixels on.
template <int kTaps>
class KernelColumns8u4 {
  static constexpr int kPixel = 4;
  static constexpr int kVectorColumns = kLanes;
  static constexpr int kSecond = kTaps - 4;

 public:
  KernelColumns8u4(WorkArena* arena, const Kernel& kernel, const ResizeAxis& axis, int columns)
      : columns_(columns) {
    index_ = arena->Take<std::int32_t>(columns);
    weights_ = arena->Take<float>(std::int64_t{columns} * kTaps);
    for (int i = 0; i < columns; ++i) {
      KernelTaps<float, kTaps> taps;
      FindTaps(kernel, axis, i < axis.count ? i : axis.count - 1, 1, &taps);
      index_[i] = taps.first * kPixel;
      for (int k = 0; k < kTaps; ++k) weights_[i * kTaps + k] = taps.weights[k];
    }
  }

  template <bool>
  void Resample(const Zov8u* row, float* line) const {
    // A copy that no store can alias.
    const KernelColumns8u4 my = *this;
    for (std::int64_t i = 0; i < my.columns_; i += kVectorColumns) {
      const Bytes first = LoadLanes(row, my.index_ + i);
      const ByteFloats weights = my.LoadWeights(i, 0);
      ByteFloats sum = Term<0>(first, weights) + Term<1>(first, weights);
      sum = sum + Term<2>(first, weights);
      sum = sum + Term<3>(first, weights);
      if constexpr (kTaps == 6) {
        const Bytes second = LoadLanes(row + kSecond * kPixel, my.index_ + i);
        const ByteFloats rest = my.LoadWeights(i, kSecond);
        sum = sum + Term<2>(second, rest);
        sum = sum + Term<3>(second, rest);
      }
      sum.StoreAligned(line + i * kPixel);
    }
  }

 private:
  // Four weights of each column of a vector.
  ZOV_INLINE ByteFloats LoadWeights(std::int64_t column, int from) const {
    const float* const weights = weights_ + column * kTaps + from;
#if defined(__AVX2__)
    if constexpr (kTaps == 4) return ByteFloats::LoadAligned(weights);
    return {_mm256_set_m128(_mm_loadu_ps(weights + kTaps), _mm_loadu_ps(weights))};
#else
    return ByteFloats::Load(weights);
#endif
  }

  // The product of pixel and weight kTap of each column.
  template <int kTap>
  static ZOV_INLINE ByteFloats Term(Bytes pixels, ByteFloats weights) {
    constexpr int kAll = kTap * 0x55;
#if defined(__SSSE3__)
    constexpr int b = kTap * kPixel;
#endif
#if defined(__AVX2__)
    const __m256i control =
        _mm256_setr_epi8(b, -1, -1, -1, b + 1, -1, -1, -1, b + 2, -1, -1, -1, b + 3, -1, -1, -1, b,
                         -1, -1, -1, b + 1, -1, -1, -1, b + 2, -1, -1, -1, b + 3, -1, -1, -1);
    return ToFloats(_mm256_shuffle_epi8((__m256i)pixels.v, control)) *
           ByteFloats{_mm256_permute_ps(weights.v, kAll)};
#else
    __m128i x = (__m128i)pixels.v;
#if defined(__SSSE3__)
    x = _mm_shuffle_epi8(
        x, _mm_setr_epi8(b, -1, -1, -1, b + 1, -1, -1, -1, b + 2, -1, -1, -1, b + 3, -1, -1, -1));
#else
    const __m128i zero = _mm_setzero_si128();
    x = kTap < 2 ? _mm_unpacklo_epi8(x, zero) : _mm_unpackhi_epi8(x, zero);
    x = kTap % 2 == 0 ? _mm_unpacklo_epi16(x, zero) : _mm_unpackhi_epi16(x, zero);
#endif
    return ToFloats(x) * ByteFloats{_mm_shuffle_ps(weights.v, weights.v, kAll)};
#endif
  }

  int columns_;
  std::int32_t* index_;
  float* weights_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

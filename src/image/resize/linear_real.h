// Bilinear kernels of floating-point images, in the precision of the element.
#pragma once

#include "image/resize/image_view.h"
#include "image/resize/line_ring.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T>
struct RealVector;
template <>
struct RealVector<float> {
  using Type = VecF;
};
template <>
struct RealVector<double> {
  using Type = VecD;
};

// a + (b - a) * t. Level avx2 fuses the product and the sum of the float row kernels.
template <bool kFused, class V>
ZOV_INLINE V Lerp(V a, V b, V t) {
#if defined(__FMA__)
  if constexpr (kFused && sizeof(typename V::Lane) == 4) return MulAdd(b - a, t, a);
#endif
  return a + (b - a) * t;
}

template <class V>
struct Taps {
  V left;
  V right;
};

// The pixels at index[k] and index[k] + 1, for each lane k.
ZOV_INLINE Taps<Vec<float, 4>> LoadTaps4(const Zov8u* row, const std::int32_t* index) {
  const auto pair = [ row, index ](int k) __attribute__((always_inline)) {
    return reinterpret_cast<const __m64*>(row + std::int64_t{index[k]} * 4);
  };
  const __m128 zero = _mm_setzero_ps();
  const __m128 p01 = _mm_loadh_pi(_mm_loadl_pi(zero, pair(0)), pair(1));
  const __m128 p23 = _mm_loadh_pi(_mm_loadl_pi(zero, pair(2)), pair(3));
  return {{_mm_shuffle_ps(p01, p23, 0x88)}, {_mm_shuffle_ps(p01, p23, 0xDD)}};
}
ZOV_INLINE Taps<Vec<double, 2>> LoadTaps2(const Zov8u* row, const std::int32_t* index) {
  const auto pair = [ row, index ](int k) __attribute__((always_inline)) {
    return _mm_loadu_pd(reinterpret_cast<const double*>(row + std::int64_t{index[k]} * 8));
  };
  const __m128d p0 = pair(0);
  const __m128d p1 = pair(1);
  return {{_mm_unpacklo_pd(p0, p1)}, {_mm_unpackhi_pd(p0, p1)}};
}

#if defined(__AVX__)
ZOV_INLINE void LoadTaps(const Zov8u* row, const std::int32_t* index, Taps<VecF>* taps) {
  const Taps<Vec<float, 4>> low = LoadTaps4(row, index);
  const Taps<Vec<float, 4>> high = LoadTaps4(row, index + 4);
  taps->left = {_mm256_set_m128(high.left.v, low.left.v)};
  taps->right = {_mm256_set_m128(high.right.v, low.right.v)};
}
ZOV_INLINE void LoadTaps(const Zov8u* row, const std::int32_t* index, Taps<VecD>* taps) {
  const Taps<Vec<double, 2>> low = LoadTaps2(row, index);
  const Taps<Vec<double, 2>> high = LoadTaps2(row, index + 2);
  taps->left = {_mm256_set_m128d(high.left.v, low.left.v)};
  taps->right = {_mm256_set_m128d(high.right.v, low.right.v)};
}
#else
ZOV_INLINE void LoadTaps(const Zov8u* row, const std::int32_t* index, Taps<VecF>* taps) {
  *taps = LoadTaps4(row, index);
}
ZOV_INLINE void LoadTaps(const Zov8u* row, const std::int32_t* index, Taps<VecD>* taps) {
  *taps = LoadTaps2(row, index);
}
#endif

template <class T>
class LinearReal {
  using V = typename RealVector<T>::Type;
  static constexpr int kPadding = 8;  // columns that tables and lines are rounded up to
  static constexpr bool kHasWindows = kLevel >= Level::avx2 && sizeof(T) == 4;

 public:
  using Line = T;
  using Weight = T;

  LinearReal(WorkArena* arena, const ResizeAxis& axis, const ResizeBands& bands)
      : count_(axis.count), padded_((count_ + kPadding - 1) / kPadding * kPadding) {
    if (bands.near + bands.far >= count_) return;  // no row kernel runs
    fraction_ = arena->Take<T>(padded_);
    if constexpr (kHasWindows) {
      if (axis.extent > 8) {
        if (BuildWindows<8>(arena, axis, bands) || BuildWindows<4>(arena, axis, bands)) return;
      }
    }
    index_ = arena->Take<std::int32_t>(padded_);
    for (int i = 0; i < padded_; i += kPadding) SetColumns(axis, bands, i, index_ + i);
  }

  std::int64_t LineLength() const { return padded_; }

  void Resample(const Zov8u* row, Line* line) const { ResampleRow<true>(row, line); }
  void ResampleBand(const Zov8u* row, Line* line) const { ResampleRow<false>(row, line); }

  static Weight MakeWeight(double fraction) { return static_cast<T>(fraction); }
  // An infinite pixel shows even with a weight of zero, so no row is left out.
  static bool IsUpperOnly(Weight) { return false; }

  static T Between(T p, T q, Weight weight) { return p + (q - p) * weight; }

  // Writes kRows rows between the same two source rows.
  template <int kRows>
  void Combine(const LinePair<Line>& lines, const Weight* weights, const RowWriter* writers) const {
    if (lines.upperRow != nullptr) Resample(lines.upperRow, lines.upper);
    if (lines.lowerRow != nullptr) Resample(lines.lowerRow, lines.lower);
    const Line* const upper = lines.upper;
    const Line* const lower = lines.lower;
    for (int r = 0; r < kRows; ++r) {
      const V t = V::Broadcast(weights[r]);
      StoreRow(
          writers[r], [ upper, lower, t ](std::int64_t i) __attribute__((always_inline)) {
            return Lerp<true>(V::LoadAligned(upper + i), V::LoadAligned(lower + i), t);
          });
    }
  }

  void StoreUpper(const Line* line, const RowWriter& writer) const { StoreBand(line, writer); }
  void StoreBand(const Line* line, const RowWriter& writer) const {
    StoreRow(
        writer, [line](std::int64_t i)
                    __attribute__((always_inline)) { return V::LoadAligned(line + i); });
  }

 private:
  // Indices and fractions of kPadding columns; those past the last repeat it.
  void SetColumns(const ResizeAxis& axis, const ResizeBands& bands, int column,
                  std::int32_t* index) {
    double fraction[kPadding];
    const int filled = count_ - column < kPadding ? count_ - column : kPadding;
    LinearSamplesInImage(axis, bands, column, filled, index, fraction);
    for (int k = 0; k < kPadding; ++k) {
      if (k >= filled) index[k] = index[filled - 1];
      fraction_[column + k] = k < filled ? static_cast<T>(fraction[k]) : T{0};
    }
  }

  // Tables for columns whose taps come out of windows of eight pixels: the first tap of eight
  // columns out of one and the second out of the next, or both taps of four columns out of one.
  template <int kColumns>
  bool BuildWindows(WorkArena* arena, const ResizeAxis& axis, const ResizeBands& bands) {
    WorkArena trial = *arena;
    constexpr int kControls = 8;
    perWindow_ = kColumns;
    bases_ = trial.Take<std::int32_t>(padded_ / kColumns);
    controls_ = trial.Take<Zov8u>(padded_ / kColumns * kControls);
    const int lastBase = axis.extent - (kColumns == 8 ? 9 : 8);
    const int lastTap = kColumns == 8 ? 7 : 6;
    for (int column = 0; column < padded_; column += kPadding) {
      std::int32_t index[kPadding];
      SetColumns(axis, bands, column, index);
      for (int i = 0; i < kPadding; i += kColumns) {
        const int window = (column + i) / kColumns;
        const int base = index[i] < lastBase ? index[i] : lastBase;
        bases_[window] = base;
        for (int k = 0; k < kColumns; ++k) {
          const int tap = index[i + k] - base;
          if (tap > lastTap) return false;
          controls_[window * kControls + k] = static_cast<Zov8u>(tap);
          if (kColumns == 4) controls_[window * kControls + 4 + k] = static_cast<Zov8u>(tap + 1);
        }
      }
    }
    *arena = trial;
    return true;
  }

  template <bool kFused>
  void ResampleRow(const Zov8u* row, Line* line) const {
#if defined(__AVX2__)
    if constexpr (kHasWindows) {
      if (perWindow_ == 8 && index_ == nullptr) return ResampleWindows<kFused, 8>(row, line);
      if (perWindow_ == 4 && index_ == nullptr) return ResampleWindows<kFused, 4>(row, line);
    }
#endif
    for (int i = 0; i < padded_; i += V::kLanes) {
      Taps<V> taps;
      LoadTaps(row, index_ + i, &taps);
      Lerp<kFused>(taps.left, taps.right, V::LoadAligned(fraction_ + i)).StoreAligned(line + i);
    }
  }

#if defined(__AVX2__)
  template <bool kFused, int kColumns>
  ZOV_INLINE void ResampleWindows(const Zov8u* row, Line* line) const {
    const auto window = [row](int base) __attribute__((always_inline)) {
      return _mm256_loadu_ps(reinterpret_cast<const float*>(row + std::int64_t{base} * 4));
    };
    const auto control = [this](int i) __attribute__((always_inline)) {
      return _mm256_cvtepu8_epi32(
          _mm_loadl_epi64(reinterpret_cast<const __m128i*>(controls_ + std::int64_t{i} * 8)));
    };
    for (int i = 0; i < padded_; i += 8) {
      V left;
      V right;
      if constexpr (kColumns == 8) {
        const int base = bases_[i / 8];
        const __m256i lanes = control(i / 8);
        left.v = _mm256_permutevar8x32_ps(window(base), lanes);
        right.v = _mm256_permutevar8x32_ps(window(base + 1), lanes);
      } else {
        const __m256 a = _mm256_permutevar8x32_ps(window(bases_[i / 4]), control(i / 4));
        const __m256 b = _mm256_permutevar8x32_ps(window(bases_[i / 4 + 1]), control(i / 4 + 1));
        left.v = _mm256_permute2f128_ps(a, b, 0x20);
        right.v = _mm256_permute2f128_ps(a, b, 0x31);
      }
      Lerp<kFused>(left, right, V::LoadAligned(fraction_ + i)).StoreAligned(line + i);
    }
  }
#endif

  template <class ValuesAt>
  ZOV_INLINE void StoreRow(RowWriter writer, ValuesAt values) const {
    constexpr int kElement = sizeof(T);
    int i = 0;
    for (; i + V::kLanes <= count_; i += V::kLanes) {
      writer.Write(values(i), std::int64_t{i} * kElement);
    }
    if (i < count_) {
      StoreFirst(values(i), writer.At(std::int64_t{i} * kElement),
                 std::int64_t{count_ - i} * kElement);
    }
  }

  int count_;
  int padded_;
  int perWindow_ = 0;
  T* fraction_ = nullptr;
  std::int32_t* index_ = nullptr;  // null when windows are used
  std::int32_t* bases_ = nullptr;
  Zov8u* controls_ = nullptr;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

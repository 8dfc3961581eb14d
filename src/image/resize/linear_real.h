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
// Broadcasts and blends take no turn at the one unit that shuffles.
ZOV_INLINE void LoadTaps(const Zov8u* row, const std::int32_t* index, Taps<VecF>* taps) {
  const auto pair = [ row, index ](int k) __attribute__((always_inline)) {
    return _mm256_set1_pd(LoadAs<double>(row + std::int64_t{index[k]} * 4));
  };
  const auto pairs = [pair](int k) __attribute__((always_inline)) {
    const __m256d low = _mm256_blend_pd(pair(k), pair(k + 1), 2);
    return _mm256_castpd_ps(_mm256_blend_pd(low, _mm256_blend_pd(pair(k + 4), pair(k + 5), 8), 12));
  };
  const __m256 even = pairs(0);
  const __m256 odd = pairs(2);
  taps->left = {_mm256_shuffle_ps(even, odd, 0x88)};
  taps->right = {_mm256_shuffle_ps(even, odd, 0xDD)};
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

// How a line element finds its pair of taps: the first taps of eight columns in one window of eight
// pixels and the second in the next, both taps of four columns in one window, or each pair loaded
// by itself. With `line` there is nothing to find, as the row has been resampled.
enum class TapSource { line, window8, window4, pairs };

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
    tables_.fractions = arena->Take<T>(padded_);
    if constexpr (kHasWindows) {
      if (axis.extent > 8) {
        if (BuildWindows<TapSource::window8>(arena, axis, bands)) return;
        if (BuildWindows<TapSource::window4>(arena, axis, bands)) return;
      }
    }
    source_ = TapSource::pairs;
    tables_.bases = arena->Take<std::int32_t>(padded_);
    for (int i = 0; i < padded_; i += kPadding) SetColumns(axis, bands, i, tables_.bases + i);
  }

  std::int64_t LineLength() const { return padded_; }

  void Resample(const Zov8u* row, Line* line) const { ResampleFrom<true>(row, line); }
  void ResampleBand(const Zov8u* row, Line* line) const { ResampleFrom<false>(row, line); }

  static Weight MakeWeight(double fraction) { return static_cast<T>(fraction); }
  // An infinite pixel shows even with a weight of zero, so no row is left out.
  static bool IsUpperOnly(Weight) { return false; }

  static T Between(T p, T q, Weight weight) { return p + (q - p) * weight; }

  // Writes kRows rows between the same two source rows.
  template <int kRows>
  void Combine(const LinePair<Line>& lines, const Weight* weights, const RowWriter* writers) const {
    if (lines.lowerRow == nullptr) {
      if (lines.upperRow != nullptr) Resample(lines.upperRow, lines.upper);
      return CombineLines<kRows, TapSource::line, TapSource::line>(lines, weights, writers);
    }
    if constexpr (kHasWindows) {
      if (source_ == TapSource::window8) {
        return CombineFrom<kRows, TapSource::window8>(lines, weights, writers);
      }
      if (source_ == TapSource::window4) {
        return CombineFrom<kRows, TapSource::window4>(lines, weights, writers);
      }
    }
    CombineFrom<kRows, TapSource::pairs>(lines, weights, writers);
  }

  void StoreUpper(const Line* line, const RowWriter& writer) const { StoreBand(line, writer); }
  void StoreBand(const Line* line, const RowWriter& writer) const {
    constexpr int kElement = sizeof(T);
    std::int64_t i = 0;
    for (; i + V::kLanes <= count_; i += V::kLanes) {
      writer.Write(V::LoadAligned(line + i), i * kElement);
    }
    if (i < count_) {
      StoreFirst(V::LoadAligned(line + i), writer.At(i * kElement), (count_ - i) * kElement);
    }
  }

 private:
  struct Tables {
    T* fractions;
    std::int32_t* bases;
    Zov8u* controls;
  };

  // Indices and fractions of kPadding columns; those past the last repeat it.
  void SetColumns(const ResizeAxis& axis, const ResizeBands& bands, int column,
                  std::int32_t* index) {
    double fraction[kPadding];
    const int filled = count_ - column < kPadding ? count_ - column : kPadding;
    LinearSamplesInImage(axis, bands, column, filled, index, fraction);
    for (int k = 0; k < kPadding; ++k) {
      if (k >= filled) index[k] = index[filled - 1];
      tables_.fractions[column + k] = k < filled ? static_cast<T>(fraction[k]) : T{0};
    }
  }

  // Fills the tables for windows; false when some taps lie too far apart for them.
  template <TapSource kSource>
  bool BuildWindows(WorkArena* arena, const ResizeAxis& axis, const ResizeBands& bands) {
    WorkArena trial = *arena;
    constexpr int kColumns = kSource == TapSource::window8 ? 8 : 4;
    constexpr int kControls = 8;
    source_ = kSource;
    tables_.bases = trial.Take<std::int32_t>(padded_ / kColumns);
    tables_.controls = trial.Take<Zov8u>(padded_ / kColumns * kControls);
    const int lastBase = axis.extent - (kColumns == 8 ? 9 : 8);
    const int lastTap = kColumns == 8 ? 7 : 6;
    for (int column = 0; column < padded_; column += kPadding) {
      std::int32_t index[kPadding];
      SetColumns(axis, bands, column, index);
      for (int i = 0; i < kPadding; i += kColumns) {
        const int window = (column + i) / kColumns;
        const int base = index[i] < lastBase ? index[i] : lastBase;
        Zov8u* const control = tables_.controls + window * kControls;
        tables_.bases[window] = base;
        for (int k = 0; k < kColumns; ++k) {
          const int tap = index[i + k] - base;
          if (tap > lastTap) return false;
          control[k] = static_cast<Zov8u>(tap);
          if (kColumns == 4) control[4 + k] = static_cast<Zov8u>(tap + 1);
        }
      }
    }
    *arena = trial;
    return true;
  }

  template <bool kFused>
  void ResampleFrom(const Zov8u* row, Line* line) const {
    if constexpr (kHasWindows) {
      if (source_ == TapSource::window8) {
        return ResampleRow<kFused, TapSource::window8>(row, line);
      }
      if (source_ == TapSource::window4) {
        return ResampleRow<kFused, TapSource::window4>(row, line);
      }
    }
    ResampleRow<kFused, TapSource::pairs>(row, line);
  }

  template <bool kFused, TapSource kSource>
  ZOV_INLINE void ResampleRow(const Zov8u* row, Line* line) const {
    const Tables tables = tables_;
    for (std::int64_t i = 0; i < padded_; i += V::kLanes) {
      ResampleAt<kFused, kSource>(tables, row, i).StoreAligned(line + i);
    }
  }

  template <int kRows, TapSource kSource>
  ZOV_INLINE void CombineFrom(const LinePair<Line>& lines, const Weight* weights,
                              const RowWriter* writers) const {
    if (lines.upperRow != nullptr) {
      CombineLines<kRows, kSource, kSource>(lines, weights, writers);
    } else {
      CombineLines<kRows, TapSource::line, kSource>(lines, weights, writers);
    }
  }

  // The vertical pass. Lines that are not there yet are resampled on the way.
  template <int kRows, TapSource kUpper, TapSource kLower>
  ZOV_NOINLINE void CombineLines(const LinePair<Line>& lines, const Weight* weights,
                                 const RowWriter* writers) const {
    constexpr int kElement = sizeof(T);
    V scales[kRows];
    for (int r = 0; r < kRows; ++r) scales[r] = V::Broadcast(weights[r]);
    // Copies that no store can alias.
    const LinePair<Line> source = lines;
    const Tables tables = tables_;
    const RowWriter first = writers[0];
    const RowWriter second = writers[kRows - 1];
    const std::int64_t count = count_;
    const auto vector = [&](std::int64_t i, V * out) __attribute__((always_inline)) {
      const V upper = LineAt<kUpper>(tables, source.upperRow, source.upper, i);
      const V lower = LineAt<kLower>(tables, source.lowerRow, source.lower, i);
      if constexpr (kUpper != TapSource::line) upper.StoreAligned(source.upper + i);
      if constexpr (kLower != TapSource::line) lower.StoreAligned(source.lower + i);
      for (int r = 0; r < kRows; ++r) out[r] = Lerp<true>(upper, lower, scales[r]);
    };
    V out[kRows];
    std::int64_t i = 0;
    for (; i + V::kLanes <= count; i += V::kLanes) {
      vector(i, out);
      first.Write(out[0], i * kElement);
      if constexpr (kRows == 2) second.Write(out[1], i * kElement);
    }
    if (i < count) {
      vector(i, out);
      for (int r = 0; r < kRows; ++r) {
        StoreFirst(out[r], writers[r].At(i * kElement), (count - i) * kElement);
      }
    }
  }

  template <TapSource kSource>
  static ZOV_INLINE V LineAt(const Tables& tables, const Zov8u* row, const Line* line,
                             std::int64_t i) {
    if constexpr (kSource == TapSource::line) {
      return V::LoadAligned(line + i);
    } else {
      return ResampleAt<true, kSource>(tables, row, i);
    }
  }

  // A vector of the line of a source row, from element i on.
  template <bool kFused, TapSource kSource>
  static ZOV_INLINE V ResampleAt(const Tables& tables, const Zov8u* row, std::int64_t i) {
    Taps<V> taps;
    if constexpr (kSource == TapSource::pairs) {
      LoadTaps(row, tables.bases + i, &taps);
    } else {
      LoadWindows<kSource>(tables, row, i, &taps);
    }
    return Lerp<kFused>(taps.left, taps.right, V::LoadAligned(tables.fractions + i));
  }

#if defined(__AVX2__)
  template <TapSource kSource>
  static ZOV_INLINE void LoadWindows(const Tables& tables, const Zov8u* row, std::int64_t i,
                                     Taps<V>* taps) {
    const auto window = [row](std::int64_t base) __attribute__((always_inline)) {
      return _mm256_loadu_ps(reinterpret_cast<const float*>(row + base * 4));
    };
    const auto control = [&tables](std::int64_t k) __attribute__((always_inline)) {
      return _mm256_cvtepu8_epi32(
          _mm_loadl_epi64(reinterpret_cast<const __m128i*>(tables.controls + k * 8)));
    };
    if constexpr (kSource == TapSource::window8) {
      const std::int64_t base = tables.bases[i / 8];
      const __m256i lanes = control(i / 8);
      taps->left.v = _mm256_permutevar8x32_ps(window(base), lanes);
      taps->right.v = _mm256_permutevar8x32_ps(window(base + 1), lanes);
    } else {
      const auto four = [&](std::int64_t k) __attribute__((always_inline)) {
        return _mm256_permutevar8x32_ps(window(tables.bases[k]), control(k));
      };
      const __m256 a = four(i / 4);
      const __m256 b = four(i / 4 + 1);
      taps->left.v = _mm256_permute2f128_ps(a, b, 0x20);
      taps->right.v = _mm256_permute2f128_ps(a, b, 0x31);
    }
  }
#endif

  int count_;
  int padded_;
  TapSource source_ = TapSource::pairs;
  Tables tables_ = {};
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

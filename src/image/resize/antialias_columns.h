// Horizontal pass of the antialiased path. Source rows are taken in groups and turned, so that the
// pixels of a column of all rows, in double precision, lie side by side; then one weight serves
// all.
#pragma once

#include "image/resize/antialias_taps.h"
#include "image/resize/image_view.h"
#include "image/resize/kernel_columns_real.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Four pixels of 8 or 32 bits as 32-bit lanes, and such lanes as doubles.
template <class T>
struct FourPixels;
template <>
struct FourPixels<Zov8u> {
  static ZOV_INLINE __m128 Load(const Zov8u* p) {
    const __m128i bytes = _mm_cvtsi32_si128(LoadAs<std::int32_t>(p));
#if defined(__SSE4_1__)
    return _mm_castsi128_ps(_mm_cvtepu8_epi32(bytes));
#else
    const __m128i zero = _mm_setzero_si128();
    return _mm_castsi128_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero));
#endif
  }
  static ZOV_INLINE void StoreDoubles(__m128 lanes, double* to) {
    const __m128i integers = _mm_castps_si128(lanes);
#if defined(__AVX__)
    _mm256_store_pd(to, _mm256_cvtepi32_pd(integers));
#else
    _mm_store_pd(to, _mm_cvtepi32_pd(integers));
    _mm_store_pd(to + 2, _mm_cvtepi32_pd(_mm_unpackhi_epi64(integers, integers)));
#endif
  }
};
template <>
struct FourPixels<Zov32f> {
  static ZOV_INLINE __m128 Load(const Zov8u* p) {
    return _mm_loadu_ps(reinterpret_cast<const float*>(p));
  }
  static ZOV_INLINE void StoreDoubles(__m128 lanes, double* to) {
#if defined(__AVX__)
    _mm256_store_pd(to, _mm256_cvtps_pd(lanes));
#else
    _mm_store_pd(to, _mm_cvtps_pd(lanes));
    _mm_store_pd(to + 2, _mm_cvtps_pd(_mm_movehl_ps(lanes, lanes)));
#endif
  }
};

// kGroup pixels (of one channel, or with four a quarter as many) lie side by side.
template <class T, int kChannels, int kGroup>
class AntialiasColumns {
  using V = VecD;
  static constexpr int kElement = sizeof(T);
  static constexpr int kPixelBytes = kChannels * kElement;
  static constexpr int kVectors = kGroup / V::kLanes;
  static constexpr int kCacheLine = 64;

 public:
  using Real = std::conditional_t<sizeof(T) == 8, double, float>;
  static constexpr int kRows = kGroup / kChannels;

  AntialiasColumns(WorkArena* arena, const WidenedKernel& kernel, const ResizeAxis& axis)
      : count_(axis.count), extent_(axis.extent), mostTaps_(kernel.MostTaps()) {
    const WidenedKernel::Taps last = kernel.At(count_ - 1);
    first_ = kernel.At(0).first;
    columns_ = last.first + last.count - first_;
    taps_ = arena->Take<ColumnTaps>(count_);
    weights_ = arena->Take<double>(std::int64_t{count_} * mostTaps_);
    block_ = arena->Take<double>(std::int64_t{columns_} * kGroup);
  }

  // Once the memory is known to suffice.
  bool FillTables(const WidenedKernel& kernel) {
    for (int i = 0; i < count_; ++i) {
      const WidenedKernel::Taps taps = kernel.At(i);
      taps_[i] = {taps.first - first_, taps.count};
      kernel.GetWeights<Real>(i, i, count_, mostTaps_, weights_);
    }
    return true;
  }

  // Resamples the first `rows` of kRows source rows into lines. Meanwhile what lies `ahead` of
  // these rows comes nearer, as sums leave the memory idle.
  void Resample(const Zov8u* const* sources, int rows, std::ptrdiff_t ahead,
                Real* const* lines) const {
    FillBlock(sources);
    const std::int64_t begin = first_ < 0 ? 0 : first_;
    const std::int64_t end = columns_ < extent_ - first_ ? first_ + columns_ : extent_;
    const std::int64_t step = (end - begin) * kPixelBytes * 4 / count_;
    std::int64_t near = begin * kPixelBytes;
    std::int64_t far = near;
    const auto fetch = [&, ahead ](int i) __attribute__((always_inline)) {
      if (i % 4 != 0) return;
      far += step;
      for (; near < far; near += kCacheLine) {
        for (int r = 0; r < kRows; ++r) {
          _mm_prefetch(reinterpret_cast<const char*>(sources[r] + ahead + near), _MM_HINT_T1);
        }
      }
    };
    int i = 0;
    if constexpr (kChannels == 1 && sizeof(Real) == 4) {
      for (; i + 4 <= count_; i += 4) {
        fetch(i);
        alignas(32) float sums[4][kGroup];
        for (int k = 0; k < 4; ++k) SumColumn(i + k, sums[k]);
        for (int r = 0; r < rows; r += 4) {
          __m128 four[4];
          TransposeFour(_mm_load_ps(sums[0] + r), _mm_load_ps(sums[1] + r),
                        _mm_load_ps(sums[2] + r), _mm_load_ps(sums[3] + r), four);
          for (int k = 0; k < 4 && r + k < rows; ++k) _mm_storeu_ps(lines[r + k] + i, four[k]);
        }
      }
    }
    for (; i < count_; ++i) {
      fetch(i);
      alignas(32) Real sums[kGroup];
      SumColumn(i, sums);
      for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < kChannels; ++c) {
          lines[r][std::int64_t{i} * kChannels + c] = sums[r * kChannels + c];
        }
      }
    }
  }

 private:
  struct ColumnTaps {
    std::int32_t first;  // column of the block
    std::int32_t count;
  };

  void FillBlock(const Zov8u* const* rows) const {
    const int inImage = first_ < 0 ? -first_ : 0;
    const int end = columns_ < extent_ - first_ ? columns_ : extent_ - first_;
    int column = 0;
    for (; column < inImage && column < columns_; ++column) FillColumn(rows, column);
    if constexpr (sizeof(T) < 8) {
      constexpr int kStep = kChannels == 1 ? 4 : 1;
#if defined(__AVX__)
      if constexpr (sizeof(T) == 4 && kChannels == 1) column = FillWide(rows, column, inImage, end);
#endif
      for (; column + kStep <= end; column += kStep) FillTile(rows, column);
    }
    for (; column < columns_; ++column) FillColumn(rows, column);
  }

  void FillColumn(const Zov8u* const* rows, int column) const {
    int x = first_ + column;
    x = x < 0 ? 0 : x < extent_ ? x : extent_ - 1;
    double* const to = block_ + std::int64_t{column} * kGroup;
    for (int r = 0; r < kRows; ++r) {
      for (int c = 0; c < kChannels; ++c) {
        to[r * kChannels + c] =
            static_cast<double>(LoadAs<T>(rows[r] + (std::int64_t{x} * kChannels + c) * kElement));
      }
    }
  }

#if defined(__AVX__)
  // Columns from `column` on, whose neighbours at a distance of two lie in the image. Conversions
  // from memory bring pixels to the half of a vector where they belong. Returns the next column.
  int FillWide(const Zov8u* const* rows, int column, int begin, int end) const {
    for (; column < begin + 2 && column < end; ++column) FillColumn(rows, column);
    constexpr int kStrip = 16;
    while (column + 6 <= end) {
      const int rest = (end - 2 - column) / 4 * 4;
      const int strip = rest < kStrip ? rest : kStrip;
      for (int r = 0; r < kRows; r += 4) {
        const auto row = [ rows, r, column, this ](int k) __attribute__((always_inline)) {
          return reinterpret_cast<const float*>(rows[r + k]) + first_ + column;
        };
        const float* const row0 = row(0);
        const float* const row1 = row(1);
        const float* const row2 = row(2);
        const float* const row3 = row(3);
        double* to = block_ + std::int64_t{column} * kGroup + r;
        const auto four = [](const float* p) __attribute__((always_inline)) {
          return _mm256_cvtps_pd(_mm_loadu_ps(p));
        };
        for (int i = 0; i < strip; i += 4) {
          const __m256d later2 = four(row2 + i);
          const __m256d later3 = four(row3 + i);
          const auto two = [to](__m256d even, __m256d odd, int k) __attribute__((always_inline)) {
            _mm256_store_pd(to + k * kGroup, _mm256_unpacklo_pd(even, odd));
            _mm256_store_pd(to + (k + 1) * kGroup, _mm256_unpackhi_pd(even, odd));
          };
          two(_mm256_blend_pd(four(row0 + i), four(row2 + i - 2), 12),
              _mm256_blend_pd(four(row1 + i), four(row3 + i - 2), 12), 0);
          two(_mm256_blend_pd(four(row0 + i + 2), later2, 12),
              _mm256_blend_pd(four(row1 + i + 2), later3, 12), 2);
          to += 4 * kGroup;
        }
      }
      column += strip;
    }
    return column;
  }
#endif

  // Four columns of one channel, or one of four.
  ZOV_INLINE void FillTile(const Zov8u* const* rows, int column) const {
    const std::int64_t at = std::int64_t{first_ + column} * kChannels * kElement;
    double* const to = block_ + std::int64_t{column} * kGroup;
    if constexpr (kChannels == 1) {
      for (int r = 0; r < kRows; r += 4) {
        const auto load = [ rows, at, r ](int k) __attribute__((always_inline)) {
          return FourPixels<T>::Load(rows[r + k] + at);
        };
        __m128 four[4];
        TransposeFour(load(0), load(1), load(2), load(3), four);
        for (int k = 0; k < 4; ++k) FourPixels<T>::StoreDoubles(four[k], to + k * kGroup + r);
      }
    } else {
      for (int r = 0; r < kRows; ++r) {
        FourPixels<T>::StoreDoubles(FourPixels<T>::Load(rows[r] + at), to + r * 4);
      }
    }
  }

  // A product of elements of up to 32 bits and a weight rounded to float is exact in double
  // precision, so that level avx2 may fuse it with its sum.
  static ZOV_INLINE V AddTap(V sum, V pixels, V weight) {
#if defined(__FMA__)
    if constexpr (sizeof(T) < 8) return MulAdd(pixels, weight, sum);
#endif
    return sum + pixels * weight;
  }

  // Even and odd taps of one channel are summed apart.
  ZOV_INLINE void SumColumn(int column, Real* sums) const {
    const ColumnTaps taps = taps_[column];
    const double* pixels = block_ + std::int64_t{taps.first} * kGroup;
    const double* const weights = weights_ + std::int64_t{column} * mostTaps_;
    V even[kVectors];
    V odd[kVectors];
    for (int v = 0; v < kVectors; ++v) even[v] = odd[v] = V::Zero();
    const auto add = [&](V * to, int tap) __attribute__((always_inline)) {
      const V weight = V::Broadcast(weights[tap]);
      for (int v = 0; v < kVectors; ++v) {
        to[v] = AddTap(to[v], V::LoadAligned(pixels + v * V::kLanes), weight);
      }
      pixels += kGroup;
    };
    int k = 0;
    if constexpr (kChannels == 1) {
      for (; k + 2 <= taps.count; k += 2) {
        add(even, k);
        add(odd, k + 1);
      }
    }
    for (; k < taps.count; ++k) add(even, k);
    for (int v = 0; v < kVectors; ++v) Narrow(even[v] + odd[v], sums + v * V::kLanes);
  }

  static ZOV_INLINE void Narrow(V v, double* to) { v.Store(to); }
  static ZOV_INLINE void Narrow(V v, float* to) {
#if defined(__AVX__)
    _mm_store_ps(to, _mm256_cvtpd_ps(v.v));
#else
    _mm_storel_pi(reinterpret_cast<__m64*>(to), _mm_cvtpd_ps(v.v));
#endif
  }

  int count_;
  int extent_;
  int mostTaps_;
  int first_;  // source column of the first column of a block; may lie outside the image
  int columns_;
  ColumnTaps* taps_;
  double* weights_;
  double* block_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

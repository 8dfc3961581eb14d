// Horizontal pass of the antialiased path. Source rows are taken in groups and turned, so that the
// pixels of a column of all rows, in double precision, lie side by side; then one weight serves
// all.
#pragma once

#include "image/resize/antialias_taps.h"
#include "image/resize/image_view.h"
#include "image/resize/kernel_columns_real.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

#if defined(__AVX__)
using DoubleQuad = __m256d;
ZOV_INLINE DoubleQuad LoadFour(const double* p) { return _mm256_loadu_pd(p); }
ZOV_INLINE void StoreFour(DoubleQuad v, double* to) { _mm256_storeu_pd(to, v); }
ZOV_INLINE void TransposeFour(DoubleQuad a, DoubleQuad b, DoubleQuad c, DoubleQuad d,
                              DoubleQuad* four) {
  const __m256d ab = _mm256_unpacklo_pd(a, b);
  const __m256d cd = _mm256_unpacklo_pd(c, d);
  const __m256d abOdd = _mm256_unpackhi_pd(a, b);
  const __m256d cdOdd = _mm256_unpackhi_pd(c, d);
  four[0] = _mm256_permute2f128_pd(ab, cd, 0x20);
  four[1] = _mm256_permute2f128_pd(abOdd, cdOdd, 0x20);
  four[2] = _mm256_permute2f128_pd(ab, cd, 0x31);
  four[3] = _mm256_permute2f128_pd(abOdd, cdOdd, 0x31);
}
#else
struct DoubleQuad {
  __m128d low;
  __m128d high;
};
ZOV_INLINE DoubleQuad LoadFour(const double* p) { return {_mm_loadu_pd(p), _mm_loadu_pd(p + 2)}; }
ZOV_INLINE void StoreFour(DoubleQuad v, double* to) {
  _mm_storeu_pd(to, v.low);
  _mm_storeu_pd(to + 2, v.high);
}
ZOV_INLINE void TransposeFour(DoubleQuad a, DoubleQuad b, DoubleQuad c, DoubleQuad d,
                              DoubleQuad* four) {
  four[0] = {_mm_unpacklo_pd(a.low, b.low), _mm_unpacklo_pd(c.low, d.low)};
  four[1] = {_mm_unpackhi_pd(a.low, b.low), _mm_unpackhi_pd(c.low, d.low)};
  four[2] = {_mm_unpacklo_pd(a.high, b.high), _mm_unpacklo_pd(c.high, d.high)};
  four[3] = {_mm_unpackhi_pd(a.high, b.high), _mm_unpackhi_pd(c.high, d.high)};
}
#endif
// Four doubles of each of four rows, turned: the columns lie `stride` apart.
ZOV_INLINE void TurnDoubles(DoubleQuad a, DoubleQuad b, DoubleQuad c, DoubleQuad d, int stride,
                            double* to) {
  DoubleQuad four[4];
  TransposeFour(a, b, c, d, four);
  for (int k = 0; k < 4; ++k) StoreFour(four[k], to + k * stride);
}

// Four pixels of 8 or 32 bits as 32-bit lanes, and such lanes as doubles; or four doubles.
template <class T>
struct FourPixels;
// Four of each of four rows as doubles, turned: the columns lie `stride` apart.
template <class T>
ZOV_INLINE void TurnFour(__m128 a, __m128 b, __m128 c, __m128 d, int stride, double* to) {
  __m128 four[4];
  TransposeFour(a, b, c, d, four);
  for (int k = 0; k < 4; ++k) FourPixels<T>::StoreDoubles(four[k], to + k * stride);
}
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
  static ZOV_INLINE void Turn(__m128 a, __m128 b, __m128 c, __m128 d, int stride, double* to) {
    TurnFour<Zov8u>(a, b, c, d, stride, to);
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
  // Doubles are turned, as they come converted from memory.
  static ZOV_INLINE void Turn(__m128 a, __m128 b, __m128 c, __m128 d, int stride, double* to) {
#if defined(__AVX__)
    TurnDoubles(_mm256_cvtps_pd(a), _mm256_cvtps_pd(b), _mm256_cvtps_pd(c), _mm256_cvtps_pd(d),
                stride, to);
#else
    TurnFour<Zov32f>(a, b, c, d, stride, to);
#endif
  }
};

template <>
struct FourPixels<Zov64f> {
  static ZOV_INLINE DoubleQuad Load(const Zov8u* p) {
    return LoadFour(reinterpret_cast<const double*>(p));
  }
  static ZOV_INLINE void Turn(DoubleQuad a, DoubleQuad b, DoubleQuad c, DoubleQuad d, int stride,
                              double* to) {
    TurnDoubles(a, b, c, d, stride, to);
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
    columns_ = static_cast<int>(last.first - first_) + last.count;
    taps_ = arena->Take<ColumnTaps>(count_);
    weights_ = arena->Take<double>(std::int64_t{count_} * mostTaps_);
    block_ = arena->Take<double>(std::int64_t{columns_} * kGroup);
  }

  // Once the memory is known to suffice.
  bool FillTables(const WidenedKernel& kernel) {
    for (int i = 0; i < count_; ++i) {
      const WidenedKernel::Taps taps = kernel.At(i);
      taps_[i] = {static_cast<std::int32_t>(taps.first - first_), taps.count};
      kernel.GetWeights<Real>(i, i, count_, mostTaps_, weights_);
    }
    return true;
  }

  // Resamples kRows source rows into lines. Meanwhile what lies `ahead` of these rows comes nearer,
  // as sums leave the memory idle.
  void Resample(const Zov8u* const* sources, std::ptrdiff_t ahead, Real* const* lines) const {
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
    if constexpr (kChannels == 1) {
      for (; i + 4 <= count_; i += 4) {
        fetch(i);
        alignas(32) Real sums[4][kGroup];
        for (int k = 0; k < 4; ++k) SumColumn(i + k, sums[k]);
        StoreColumns(sums, i, lines);
      }
    }
    for (; i < count_; ++i) {
      fetch(i);
      alignas(32) Real sums[kGroup];
      SumColumn(i, sums);
      for (int r = 0; r < kRows; ++r) {
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

  // Sums of four columns, turned back.
  static ZOV_INLINE void StoreColumns(const double (*sums)[kGroup], int i, double* const* lines) {
    for (int r = 0; r < kRows; r += 4) {
      DoubleQuad four[4];
      TransposeFour(LoadFour(sums[0] + r), LoadFour(sums[1] + r), LoadFour(sums[2] + r),
                    LoadFour(sums[3] + r), four);
      for (int k = 0; k < 4; ++k) StoreFour(four[k], lines[r + k] + i);
    }
  }
  static ZOV_INLINE void StoreColumns(const float (*sums)[kGroup], int i, float* const* lines) {
#if defined(__AVX__)
    if constexpr (kGroup % 8 == 0) {
      for (int r = 0; r < kRows; r += 8) {
        __m256 four[4];
        TransposeFour(_mm256_load_ps(sums[0] + r), _mm256_load_ps(sums[1] + r),
                      _mm256_load_ps(sums[2] + r), _mm256_load_ps(sums[3] + r), four);
        for (int k = 0; k < 4; ++k) {
          _mm_storeu_ps(lines[r + k] + i, _mm256_castps256_ps128(four[k]));
          _mm_storeu_ps(lines[r + k + 4] + i, _mm256_extractf128_ps(four[k], 1));
        }
      }
      return;
    }
#endif
    for (int r = 0; r < kRows; r += 4) {
      __m128 four[4];
      TransposeFour(_mm_load_ps(sums[0] + r), _mm_load_ps(sums[1] + r), _mm_load_ps(sums[2] + r),
                    _mm_load_ps(sums[3] + r), four);
      for (int k = 0; k < 4; ++k) _mm_storeu_ps(lines[r + k] + i, four[k]);
    }
  }

  void FillBlock(const Zov8u* const* rows) const {
    const int inImage = first_ < 0 ? static_cast<int>(-first_) : 0;
    const int end = columns_ < extent_ - first_ ? columns_ : static_cast<int>(extent_ - first_);
    int column = 0;
    for (; column < inImage && column < columns_; ++column) FillColumn(rows, column);
    constexpr int kTile = kChannels == 1 ? 4 : 1;
    constexpr int kStrip = 4;  // tiles
    while (column + kTile <= end) {
      const int rest = (end - column) / kTile;
      const int tiles = rest < kStrip ? rest : kStrip;
      FillTiles(rows, column, tiles);
      column += tiles * kTile;
    }
    for (; column < columns_; ++column) FillColumn(rows, column);
  }

  void FillColumn(const Zov8u* const* rows, int column) const {
    const std::int64_t x = InImage(first_ + column, extent_);
    double* const to = block_ + std::int64_t{column} * kGroup;
    for (int r = 0; r < kRows; ++r) {
      for (int c = 0; c < kChannels; ++c) {
        to[r * kChannels + c] =
            static_cast<double>(LoadAs<T>(rows[r] + (x * kChannels + c) * kElement));
      }
    }
  }

  // Tiles of four columns of one channel, or of one of four. Four rows at a time, as more addresses
  // do not stay in registers.
  void FillTiles(const Zov8u* const* rows, int column, int tiles) const {
    const std::int64_t at = (first_ + column) * kPixelBytes;
    if constexpr (kChannels == 1) {
      for (int r = 0; r < kRows; r += 4) {
        const Zov8u* const row0 = rows[r] + at;
        const Zov8u* const row1 = rows[r + 1] + at;
        const Zov8u* const row2 = rows[r + 2] + at;
        const Zov8u* const row3 = rows[r + 3] + at;
        double* to = block_ + std::int64_t{column} * kGroup + r;
        for (int i = 0; i < tiles; ++i) {
          const auto load = [i](const Zov8u* row) __attribute__((always_inline)) {
            return FourPixels<T>::Load(row + i * 4 * kElement);
          };
          FourPixels<T>::Turn(load(row0), load(row1), load(row2), load(row3), kGroup, to);
          to += 4 * kGroup;
        }
      }
    } else {
      double* to = block_ + std::int64_t{column} * kGroup;
      for (int i = 0; i < tiles; ++i) {
        for (int r = 0; r < kRows; ++r) {
          const Zov8u* const row = rows[r] + at + i * kPixelBytes;
          FourPixels<T>::StoreDoubles(FourPixels<T>::Load(row), to + r * 4);
        }
        to += kGroup;
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

  // Even and odd taps of one channel are summed apart. There are two taps at least, as a kernel
  // reaches a pixel or more to either side.
  ZOV_INLINE void SumColumn(int column, Real* sums) const {
    const ColumnTaps taps = taps_[column];
    const double* pixels = block_ + std::int64_t{taps.first} * kGroup;
    const double* const weights = weights_ + std::int64_t{column} * mostTaps_;
    V even[kVectors];
    V odd[kVectors];
    const auto multiply = [&](V * to, int tap) __attribute__((always_inline)) {
      const V weight = V::Broadcast(weights[tap]);
      for (int v = 0; v < kVectors; ++v) {
        to[v] = V::LoadAligned(pixels + v * V::kLanes) * weight;
      }
      pixels += kGroup;
    };
    const auto add = [&](V * to, int tap) __attribute__((always_inline)) {
      const V weight = V::Broadcast(weights[tap]);
      for (int v = 0; v < kVectors; ++v) {
        to[v] = AddTap(to[v], V::LoadAligned(pixels + v * V::kLanes), weight);
      }
      pixels += kGroup;
    };
    multiply(even, 0);
    int k = 1;
    if constexpr (kChannels == 1) {
      multiply(odd, k++);
      for (; k + 2 <= taps.count; k += 2) {
        add(even, k);
        add(odd, k + 1);
      }
    }
    for (; k < taps.count; ++k) add(even, k);
    if constexpr (kChannels == 1) {
      for (int v = 0; v < kVectors; ++v) even[v] = even[v] + odd[v];
    }
    Narrow(even, sums);
  }

  static ZOV_INLINE void Narrow(const V* v, double* to) {
    for (int k = 0; k < kVectors; ++k) v[k].StoreAligned(to + k * V::kLanes);
  }
  // Stored as they are loaded again.
  static ZOV_INLINE void Narrow(const V* v, float* to) {
#if defined(__AVX__)
    const auto four = [v](int k) __attribute__((always_inline)) { return _mm256_cvtpd_ps(v[k].v); };
    if constexpr (kVectors == 1) {
      _mm_store_ps(to, four(0));
    } else {
      for (int k = 0; k < kVectors; k += 2) {
        _mm256_store_ps(to + k * 4, _mm256_set_m128(four(k + 1), four(k)));
      }
    }
#else
    for (int k = 0; k < kVectors; ++k) {
      _mm_storel_pi(reinterpret_cast<__m64*>(to + k * 2), _mm_cvtpd_ps(v[k].v));
    }
#endif
  }

  int count_;
  int extent_;
  int mostTaps_;
  std::int64_t first_;  // source column of the first of a block; may lie outside the image
  int columns_;
  ColumnTaps* taps_;
  double* weights_;
  double* block_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Horizontal pass of the cubic kernels and of Lanczos over floating-point rows, in the precision of
// the element.
#pragma once

#include "image/resize/image_view.h"
#include "image/resize/kernel_taps.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// The next product of a sum. Level avx2 fuses those of the float row kernels.
template <bool kFused, class V>
ZOV_INLINE V AddProduct(V sum, V a, V b) {
#if defined(__FMA__)
  if constexpr (kFused && sizeof(typename V::Lane) == 4) return MulAdd(a, b, sum);
#endif
  return sum + a * b;
}

// Pixels index[k] to index[k] + 3 of each lane k, tap by tap, and the two after them.
ZOV_INLINE void TransposeFour(__m128 a, __m128 b, __m128 c, __m128 d, __m128* taps) {
  const __m128 ab = _mm_unpacklo_ps(a, b);
  const __m128 cd = _mm_unpacklo_ps(c, d);
  const __m128 abHigh = _mm_unpackhi_ps(a, b);
  const __m128 cdHigh = _mm_unpackhi_ps(c, d);
  taps[0] = _mm_movelh_ps(ab, cd);
  taps[1] = _mm_movehl_ps(cd, ab);
  taps[2] = _mm_movelh_ps(abHigh, cdHigh);
  taps[3] = _mm_movehl_ps(cdHigh, abHigh);
}

#if defined(__AVX__)
// The same in either half.
ZOV_INLINE void TransposeFour(__m256 a, __m256 b, __m256 c, __m256 d, __m256* taps) {
  const __m256d ab = _mm256_castps_pd(_mm256_unpacklo_ps(a, b));
  const __m256d cd = _mm256_castps_pd(_mm256_unpacklo_ps(c, d));
  const __m256d abHigh = _mm256_castps_pd(_mm256_unpackhi_ps(a, b));
  const __m256d cdHigh = _mm256_castps_pd(_mm256_unpackhi_ps(c, d));
  taps[0] = _mm256_castpd_ps(_mm256_unpacklo_pd(ab, cd));
  taps[1] = _mm256_castpd_ps(_mm256_unpackhi_pd(ab, cd));
  taps[2] = _mm256_castpd_ps(_mm256_unpacklo_pd(abHigh, cdHigh));
  taps[3] = _mm256_castpd_ps(_mm256_unpackhi_pd(abHigh, cdHigh));
}
#endif

template <int kTaps>
ZOV_INLINE void LoadKernelTaps(const Zov8u* row, const std::int32_t* index, Vec<float, 4>* taps) {
  const auto at = [ row, index ](int k) __attribute__((always_inline)) {
    return reinterpret_cast<const float*>(row + std::int64_t{index[k]} * 4);
  };
  __m128 four[4];
  TransposeFour(_mm_loadu_ps(at(0)), _mm_loadu_ps(at(1)), _mm_loadu_ps(at(2)), _mm_loadu_ps(at(3)),
                four);
  for (int k = 0; k < 4; ++k) taps[k].v = four[k];
  if constexpr (kTaps == 6) {
    const auto pair = [at](int k) __attribute__((always_inline)) {
      return reinterpret_cast<const __m64*>(at(k) + 4);
    };
    const __m128 zero = _mm_setzero_ps();
    const __m128 p01 = _mm_loadh_pi(_mm_loadl_pi(zero, pair(0)), pair(1));
    const __m128 p23 = _mm_loadh_pi(_mm_loadl_pi(zero, pair(2)), pair(3));
    taps[4].v = _mm_shuffle_ps(p01, p23, 0x88);
    taps[5].v = _mm_shuffle_ps(p01, p23, 0xDD);
  }
}

template <int kTaps>
ZOV_INLINE void LoadKernelTaps(const Zov8u* row, const std::int32_t* index, Vec<double, 2>* taps) {
  for (int k = 0; k < kTaps; k += 2) {
    const auto pair = [ row, index, k ](int lane) __attribute__((always_inline)) {
      return _mm_loadu_pd(reinterpret_cast<const double*>(row + std::int64_t{index[lane]} * 8) + k);
    };
    const __m128d p0 = pair(0);
    const __m128d p1 = pair(1);
    taps[k].v = _mm_unpacklo_pd(p0, p1);
    taps[k + 1].v = _mm_unpackhi_pd(p0, p1);
  }
}

#if defined(__AVX__)
template <int kTaps>
ZOV_INLINE void LoadKernelTaps(const Zov8u* row, const std::int32_t* index, Vec<float, 8>* taps) {
  const auto at = [ row, index ](int k) __attribute__((always_inline)) {
    return reinterpret_cast<const float*>(row + std::int64_t{index[k]} * 4);
  };
  const auto both = [at](int k) __attribute__((always_inline)) {
    return _mm256_set_m128(_mm_loadu_ps(at(k + 4)), _mm_loadu_ps(at(k)));
  };
  __m256 four[4];
  TransposeFour(both(0), both(1), both(2), both(3), four);
  for (int k = 0; k < 4; ++k) taps[k].v = four[k];
  if constexpr (kTaps == 6) {
    const auto pair = [at](int k) __attribute__((always_inline)) {
      return reinterpret_cast<const __m64*>(at(k) + 4);
    };
    const __m128 zero = _mm_setzero_ps();
    const auto pairs = [&](int k) __attribute__((always_inline)) {
      const __m128 low = _mm_loadh_pi(_mm_loadl_pi(zero, pair(k)), pair(k + 1));
      const __m128 high = _mm_loadh_pi(_mm_loadl_pi(zero, pair(k + 4)), pair(k + 5));
      return _mm256_set_m128(high, low);
    };
    const __m256 p01 = pairs(0);
    const __m256 p23 = pairs(2);
    taps[4].v = _mm256_shuffle_ps(p01, p23, 0x88);
    taps[5].v = _mm256_shuffle_ps(p01, p23, 0xDD);
  }
}

template <int kTaps>
ZOV_INLINE void LoadKernelTaps(const Zov8u* row, const std::int32_t* index, Vec<double, 4>* taps) {
  for (int k = 0; k < kTaps; k += 2) {
    const auto both = [ row, index, k ](int lane) __attribute__((always_inline)) {
      const auto pair = [=](int l) __attribute__((always_inline)) {
        return _mm_loadu_pd(reinterpret_cast<const double*>(row + std::int64_t{index[l]} * 8) + k);
      };
      return _mm256_set_m128d(pair(lane + 2), pair(lane));
    };
    const __m256d p02 = both(0);
    const __m256d p13 = both(1);
    taps[k].v = _mm256_unpacklo_pd(p02, p13);
    taps[k + 1].v = _mm256_unpackhi_pd(p02, p13);
  }
}
#endif

template <class T, int kTaps>
class KernelColumnsReal {
  using V = Widest<T>;
  static constexpr int kBlock = 8;  // columns whose taps are found at a time
  static constexpr bool kHasWindows = kLevel >= Level::avx2 && sizeof(T) == 4;

 public:
  KernelColumnsReal(WorkArena* arena, const Kernel& kernel, const ResizeAxis& axis, int columns)
      : columns_(columns), count_(axis.count), bands_(FindBands(axis, kTaps / 2)) {
    weights_ = arena->Take<T>(std::int64_t{columns} * kTaps);
    index_ = arena->Take<std::int32_t>(columns);
    used_ = arena->Take<Used>(bands_.near + bands_.far);
    KernelTaps<T, kTaps> taps[kBlock];
    Used* used = used_;
    for (int i = 0; i < columns; i += kBlock) {
      for (int k = 0; k < kBlock; ++k) {
        // Columns past the last repeat it.
        const int column = i + k < count_ ? i + k : count_ - 1;
        FindTaps(kernel, axis, column, 1, taps + k);
        index_[i + k] = taps[k].first;
        SetWeights(i + k, taps[k].weights);
        if (i + k < bands_.near || (i + k >= count_ - bands_.far && i + k < count_)) {
          *used++ = {static_cast<Zov8u>(taps[k].usedFrom), static_cast<Zov8u>(taps[k].used)};
        }
      }
    }
    if constexpr (kHasWindows) isWindowed_ = BuildWindows(arena, axis);
  }

  template <bool kFused>
  void Resample(const Zov8u* row, T* line) const {
#if defined(__AVX2__)
    if constexpr (kHasWindows) {
      if (isWindowed_) {
        ResampleWindows<kFused>(row, line);
        return ResampleBands(row, line);
      }
    }
#endif
    // A copy that no store can alias.
    const KernelColumnsReal my = *this;
    for (std::int64_t i = 0; i < my.columns_; i += V::kLanes) {
      V taps[kTaps];
      LoadKernelTaps<kTaps>(row, my.index_ + i, taps);
      my.template Sum<kFused>(taps, i).StoreAligned(line + i);
    }
    ResampleBands(row, line);
  }

 private:
  // The taps of a band column whose weights are used.
  struct Used {
    Zov8u from;
    Zov8u count;
  };

  // Weights lie tap by tap for each vector of columns.
  T* WeightOf(int column) const {
    return weights_ + std::int64_t{column} / V::kLanes * V::kLanes * kTaps + column % V::kLanes;
  }
  void SetWeights(int column, const T* weights) {
    for (int tap = 0; tap < kTaps; ++tap) WeightOf(column)[tap * V::kLanes] = weights[tap];
  }

  template <bool kFused>
  ZOV_INLINE V Sum(const V* taps, std::int64_t i) const {
    const T* const weights = weights_ + i * kTaps;
    V sum = taps[0] * V::LoadAligned(weights);
    for (int k = 1; k < kTaps; ++k) {
      sum = AddProduct<kFused>(sum, taps[k], V::LoadAligned(weights + k * V::kLanes));
    }
    return sum;
  }

  // Only the weights that are used count: a 0 would not hide an infinite pixel.
  void ResampleBands(const Zov8u* row, T* line) const {
    const Used* used = used_;
    for (int i = 0; i < bands_.near; ++i) line[i] = BandSum(row, i, *used++);
    for (int i = count_ - bands_.far; i < count_; ++i) line[i] = BandSum(row, i, *used++);
  }
  T BandSum(const Zov8u* row, int column, Used used) const {
    const T* const weights = WeightOf(column);
    const Zov8u* const pixels = row + std::int64_t{index_[column]} * static_cast<int>(sizeof(T));
    const auto product = [weights, pixels](int tap) {
      return weights[tap * V::kLanes] * LoadAs<T>(pixels + tap * static_cast<int>(sizeof(T)));
    };
    T sum = product(used.from);
    for (int k = 1; k < used.count; ++k) sum += product(used.from + k);
    return sum;
  }

#if defined(__AVX2__)
  // Windows of eight pixels that give one tap of eight columns each; the indices become lanes of
  // them.
  bool BuildWindows(WorkArena* arena, const ResizeAxis& axis) {
    const int lastBase = axis.extent - 8 - (kTaps - 1);
    if (lastBase < 0) return false;
    const auto base = [this, lastBase](int i) {
      return index_[i] < lastBase ? index_[i] : lastBase;
    };
    for (int i = 0; i < columns_; i += 8) {
      if (index_[i + 7] - base(i) > 7) return false;
    }
    bases_ = arena->Take<std::int32_t>(columns_ / 8);
    controls_ = arena->Take<Zov8u>(columns_);
    for (int i = 0; i < columns_; ++i) {
      if (i % 8 == 0) bases_[i / 8] = base(i);
      controls_[i] = static_cast<Zov8u>(index_[i] - bases_[i / 8]);
    }
    return true;
  }

  template <bool kFused>
  void ResampleWindows(const Zov8u* row, T* line) const {
    const KernelColumnsReal my = *this;
    for (std::int64_t i = 0; i < my.columns_; i += 8) {
      const __m256i lanes =
          _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(my.controls_ + i)));
      const float* const window =
          reinterpret_cast<const float*>(row + std::int64_t{my.bases_[i / 8]} * 4);
      V taps[kTaps];
      for (int k = 0; k < kTaps; ++k) {
        taps[k].v = _mm256_permutevar8x32_ps(_mm256_loadu_ps(window + k), lanes);
      }
      my.template Sum<kFused>(taps, i).StoreAligned(line + i);
    }
  }
#else
  bool BuildWindows(WorkArena*, const ResizeAxis&) { return false; }
#endif

  int columns_;  // with padding
  int count_;
  ResizeBands bands_;
  T* weights_;
  std::int32_t* index_;
  Used* used_;
  bool isWindowed_ = false;
  std::int32_t* bases_ = nullptr;
  Zov8u* controls_ = nullptr;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

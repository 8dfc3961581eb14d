// Bilinear kernels of floating-point images, in the precision of the element.
#pragma once

#include "image/resize/image_view.h"
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

 public:
  using Line = T;
  using Weight = T;

  LinearReal(WorkArena* arena, const ResizeAxis& axis, int begin, int count)
      : count_(count > 0 ? count : 0), padded_((count_ + kPadding - 1) / kPadding * kPadding) {
    index_ = arena->Take<std::int32_t>(padded_);
    fraction_ = arena->Take<T>(padded_);
    double fraction[kPadding];
    for (int i = 0; i < padded_; i += kPadding) {
      const int filled = count_ - i < kPadding ? count_ - i : kPadding;
      LinearSamples(axis, begin + i, filled, index_ + i, fraction);
      for (int k = 0; k < kPadding; ++k) {
        if (k >= filled) index_[i + k] = index_[i + filled - 1];
        fraction_[i + k] = k < filled ? static_cast<T>(fraction[k]) : T{0};
      }
    }
  }

  std::int64_t LineLength() const { return padded_; }

  void Resample(const Zov8u* row, Line* line) const { ResampleRow<true>(row, line); }
  void ResampleBand(const Zov8u* row, Line* line) const { ResampleRow<false>(row, line); }

  static Weight MakeWeight(double fraction) { return static_cast<T>(fraction); }
  // An infinite pixel shows even with a weight of zero, so no row is left out.
  static bool IsUpperOnly(Weight) { return false; }

  static T Between(T p, T q, Weight weight) { return p + (q - p) * weight; }

  void Combine(const Line* upper, const Line* lower, Weight weight, Zov8u* dst) const {
    const V t = V::Broadcast(weight);
    StoreRow(
        dst, [ upper, lower, t ](std::int64_t i) __attribute__((always_inline)) {
          return Lerp<true>(V::LoadAligned(upper + i), V::LoadAligned(lower + i), t);
        });
  }

  void StoreUpper(const Line* line, Zov8u* dst) const { StoreBand(line, dst); }
  void StoreBand(const Line* line, Zov8u* dst) const {
    StoreRow(
        dst, [line](std::int64_t i)
                 __attribute__((always_inline)) { return V::LoadAligned(line + i); });
  }

 private:
  template <bool kFused>
  void ResampleRow(const Zov8u* row, Line* line) const {
    for (int i = 0; i < padded_; i += V::kLanes) {
      Taps<V> taps;
      LoadTaps(row, index_ + i, &taps);
      Lerp<kFused>(taps.left, taps.right, V::LoadAligned(fraction_ + i)).StoreAligned(line + i);
    }
  }

  template <class ValuesAt>
  ZOV_INLINE void StoreRow(Zov8u* dst, ValuesAt values) const {
    constexpr int kElement = sizeof(T);
    int i = 0;
    for (; i + V::kLanes <= count_; i += V::kLanes) {
      values(i).Store(dst + std::int64_t{i} * kElement);
    }
    if (i < count_) {
      alignas(32) T rest[V::kLanes];
      values(i).StoreAligned(rest);
      for (int k = 0; i < count_; ++i, ++k) StoreAs(dst + std::int64_t{i} * kElement, rest[k]);
    }
  }

  int count_;
  int padded_;
  std::int32_t* index_;
  T* fraction_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

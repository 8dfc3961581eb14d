// Windows of binary32 samples. Level 0 takes factor by factor in binary64; the levels above make
// whole vectors of factors.
#include "core/entries.h"
#include "signal/filter/window/factors.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

[[maybe_unused]] ZOV_INLINE Vec<float, 4> Reversed(Vec<float, 4> a) {
  return {_mm_shuffle_ps(a.v, a.v, 0x1B)};
}
[[maybe_unused]] ZOV_INLINE Vec<double, 2> Reversed(Vec<double, 2> a) {
  return {_mm_shuffle_pd(a.v, a.v, 1)};
}
[[maybe_unused]] ZOV_INLINE void StoreNarrowed(Vec<double, 2> a, Zov32f* p) {
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_castps_si128(_mm_cvtpd_ps(a.v)));
}
#if defined(__AVX__)
ZOV_INLINE Vec<float, 8> Reversed(Vec<float, 8> a) {
  const __m256 swapped = _mm256_permute2f128_ps(a.v, a.v, 1);
  return {_mm256_permute_ps(swapped, 0x1B)};
}
ZOV_INLINE Vec<double, 4> Reversed(Vec<double, 4> a) {
  const __m256d swapped = _mm256_permute2f128_pd(a.v, a.v, 1);
  return {_mm256_permute_pd(swapped, 5)};
}
ZOV_INLINE void StoreNarrowed(Vec<double, 4> a, Zov32f* p) {
  _mm_storeu_ps(p, _mm256_cvtpd_ps(a.v));
}
#endif

// Samples times factors, in the precision of the factors.
template <class V>
ZOV_INLINE void Multiply(Zov32f* p, V factors) {
  if constexpr (std::is_same_v<typename V::Lane, double>) {
    StoreNarrowed(LoadAsDouble(p) * factors, p);
  } else {
    (V::Load(p) * factors).Store(p);
  }
}

// The samples from `first` on and those from `last` back by the same factors.
template <class V>
ZOV_INLINE void MultiplyPairs(Zov32f* first, Zov32f* last, V factors) {
  Multiply(first, factors);
  Multiply(last - (V::kLanes - 1), Reversed(factors));
}

// The same of fewer samples than there are factors.
template <class V>
ZOV_INLINE void MultiplySomePairs(Zov32f* first, Zov32f* last, V factors, int count) {
#if defined(__AVX__)
  if constexpr (V::kLanes == 8) {
    Vec<float, 4> half = {_mm256_castps256_ps128(factors.v)};
    if (count >= 4) {
      MultiplyPairs(first, last, half);
      half = {_mm256_extractf128_ps(factors.v, 1)};
      first += 4;
      last -= 4;
      count -= 4;
    }
    MultiplySomePairs(first, last, half, count);
    return;
  }
#endif
  for (int lane = 0; lane < count; ++lane) {
    first[lane] = static_cast<Zov32f>(first[lane] * factors.v[lane]);
    last[-lane] = static_cast<Zov32f>(last[-lane] * factors.v[lane]);
  }
}

// Like WalkPairs, with the factors of as many pairs at once as they have lanes. A source of factors
// has kParts chains of its own, asked in turn, so that one need not wait for another.
template <class Factors>
ZOV_INLINE void WalkVectors(Zov32f* pSrcDst, int len, int k, Factors next) {
  using V = decltype(next(0));
  constexpr int kParts = Factors::kParts;
  Zov32f* const last = pSrcDst + (len - 1);
  const int pairs = len / 2;
  for (; pairs - k >= kParts * V::kLanes; k += kParts * V::kLanes) {
    for (int part = 0; part < kParts; ++part) {
      MultiplyPairs(pSrcDst + (k + part * V::kLanes), last - (k + part * V::kLanes), next(part));
    }
  }
  static_assert(kParts <= 2, "at most one whole vector is left");
  if (kParts == 2 && pairs - k >= V::kLanes) {
    MultiplyPairs(pSrcDst + k, last - k, next(0));
    k += V::kLanes;
    MultiplySomePairs(pSrcDst + k, last - k, next(kParts - 1), pairs - k);
  } else {
    MultiplySomePairs(pSrcDst + k, last - k, next(0), pairs - k);
  }
}

// Rising factors from k = 1, every lane by steps of its own.
template <class V>
struct SteppingFactors {
  static constexpr int kParts = 2;
  V at[kParts];
  V step;

  explicit ZOV_INLINE SteppingFactors(double each) {
    using Lane = typename V::Lane;
    static constexpr Lane kNumbers[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    const V first = Constant<V>(each);
    for (int part = 0; part < kParts; ++part) {
      at[part] = V::Load(kNumbers + part * V::kLanes) * first;
    }
    step = Constant<V>(kParts * V::kLanes) * first;
  }
  ZOV_INLINE V operator()(int part) {
    const V factors = at[part];
    at[part] = factors + step;
    return factors;
  }
};

// Factors from k = 0 as mean - y[k], where y[k + 2] = 2 cos(2x) y[k] - y[k - 2].
struct TwoStepFactors {
  [[maybe_unused]] static constexpr int kParts = 1;
  using Two = Vec<double, 2>;
  Two mean;
  Two twice;
  Two before;
  Two now;

  template <class Weight>
  ZOV_INLINE TwoStepFactors(Weight, int len) : mean(Two::Broadcast(Weight::kMean)) {
    const double x = WindowAngle(len);
    const double next = Weight::kAmplitude * __builtin_cos(x);
    const double cosine = __builtin_cos(2 * x);
    twice = Two::Broadcast(2 * cosine);
    before = {Two::Native{Weight::kAmplitude * cosine, next}};
    now = {Two::Native{Weight::kAmplitude, next}};
  }
  ZOV_INLINE Vec<float, 4> operator()(int) {
    const __m128 low = _mm_cvtpd_ps((mean - now).v);
    Step();
    const __m128 high = _mm_cvtpd_ps((mean - now).v);
    Step();
    return {_mm_movelh_ps(low, high)};
  }
  ZOV_INLINE void Step() {
    const Two next = twice * now - before;
    before = now;
    now = next;
  }
};

// Factors from k = 0, the angle of every lane by rotation.
template <class Weight>
struct RotatingFactors {
  static constexpr int kParts = 2;
  Weight weight;
  Rotation<VecD> step;
  Rotation<VecD> at[kParts];

  ZOV_INLINE RotatingFactors(Weight formula, Rotation<double> each) : weight(formula) {
    Rotation<double> angle = {1, 0};
    for (int lane = 0; lane < VecD::kLanes; ++lane) {
      at[0].cosine.v[lane] = angle.cosine;
      at[0].sine.v[lane] = angle.sine;
      angle = angle * each;
    }
    at[1] = at[0] * InAllLanes(angle);
    step = InAllLanes(angle * angle);
  }
  static ZOV_INLINE Rotation<VecD> InAllLanes(Rotation<double> angle) {
    return {VecD::Broadcast(angle.cosine), VecD::Broadcast(angle.sine)};
  }
  ZOV_INLINE VecD operator()(int part) {
    const VecD factors = weight(at[part].cosine);
    at[part] = at[part] * step;
    return factors;
  }
};

template <class Weight>
ZOV_INLINE void WalkOneCosine(Weight weight, Zov32f* pSrcDst, int len) {
  if constexpr (kLevel >= Level::sse3) {
    WalkVectors(pSrcDst, len, 0, TwoStepFactors(weight, len));
  } else {
    WalkPairs(pSrcDst, len, 0, RotatingFactor<Weight>{weight, WindowRotation(len)});
  }
}

}  // namespace

ZovStatus zovsWinBartlett_32f_I(Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  const double step = 2.0 / (len - 1);
  pSrcDst[0] = pSrcDst[len - 1] = 0;
  if constexpr (kLevel >= Level::avx) {
    WalkVectors(pSrcDst, len, 1, SteppingFactors<VecF>(step));
  } else if constexpr (kLevel >= Level::sse3) {
    WalkVectors(pSrcDst, len, 1, SteppingFactors<VecD>(step));
  } else {
    WalkPairs(pSrcDst, len, 1, SteppingFactor{step});
  }
  return zovStsNoErr;
}

ZovStatus zovsWinBlackmanStd_32f_I(Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  if (len == 3) {
    pSrcDst[0] = pSrcDst[2] = 0;
    return zovStsNoErr;
  }
  const Blackman weight(static_cast<double>(-0.16F));
  if constexpr (kLevel >= Level::sse3) {
    WalkVectors(pSrcDst, len, 0, RotatingFactors<Blackman>(weight, WindowRotation(len)));
  } else {
    WalkPairs(pSrcDst, len, 0, RotatingFactor<Blackman>{weight, WindowRotation(len)});
  }
  return zovStsNoErr;
}

ZovStatus zovsWinHamming_32f_I(Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  WalkOneCosine(Hamming{}, pSrcDst, len);
  return zovStsNoErr;
}

ZovStatus zovsWinHann_32f_I(Zov32f* pSrcDst, int len) {
  if (const ZovStatus status = CheckWindow(pSrcDst, len)) return status;
  if (len == 3) {
    pSrcDst[0] = pSrcDst[2] = 0;
  } else {
    WalkOneCosine(Hann{}, pSrcDst, len);
  }
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

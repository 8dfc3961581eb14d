// What the windows share: their formulas on a cosine, the rotation that steps it, and the walk over
// pairs of samples from the ends to the middle.
#pragma once

#include "core/checks.h"
#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Shorter arrays have no inner sample.
ZOV_INLINE ZovStatus CheckWindow(const void* pSrcDst, int len) {
  if (pSrcDst == nullptr) return zovStsNullPtrErr;
  return len < 3 ? zovStsSizeErr : zovStsNoErr;
}

// The angle between neighbouring samples of a window.
ZOV_INLINE double WindowAngle(int len) { return 6.283185307179586 / static_cast<double>(len - 1); }

// A constant in all lanes of V, or as a plain number.
template <class V>
ZOV_INLINE V Constant(double x) {
  if constexpr (std::is_same_v<V, double>) {
    return x;
  } else {
    return V::Broadcast(static_cast<typename V::Lane>(x));
  }
}

// The factor of a sample whose angle has cosine c.
struct Hamming {
  static constexpr double kMean = 0.54;
  static constexpr double kAmplitude = 0.46;
  template <class V>
  ZOV_INLINE V operator()(V c) const {
    return Constant<V>(kMean) - Constant<V>(kAmplitude) * c;
  }
};
struct Hann {
  static constexpr double kMean = 0.5;
  static constexpr double kAmplitude = 0.5;
  template <class V>
  ZOV_INLINE V operator()(V c) const {
    return Constant<V>(kMean) - Constant<V>(kAmplitude) * c;
  }
};
struct Blackman {
  double mean;
  double second;
  explicit ZOV_INLINE Blackman(double alpha) : mean((alpha + 1) * 0.5), second(alpha * 0.5) {}
  template <class V>
  ZOV_INLINE V operator()(V c) const {
    const V twice = Constant<V>(2) * c * c - Constant<V>(1);
    return Constant<V>(mean) - Constant<V>(0.5) * c - Constant<V>(second) * twice;
  }
};

// Cosine and sine of an angle; the product turns by the sum of two angles.
template <class V>
struct Rotation {
  V cosine;
  V sine;
  friend ZOV_INLINE Rotation operator*(Rotation a, Rotation b) {
    return {a.cosine * b.cosine - a.sine * b.sine, a.sine * b.cosine + a.cosine * b.sine};
  }
};
ZOV_INLINE Rotation<double> WindowRotation(int len) {
  const double cosine = __builtin_cos(WindowAngle(len));
  return {cosine, __builtin_sqrt(1 - cosine * cosine)};
}

// Factors one by one, from k = 0 by rotation ...
template <class Weight>
struct RotatingFactor {
  Weight weight;
  Rotation<double> step;
  Rotation<double> at = {1, 0};
  ZOV_INLINE double operator()() {
    const double factor = weight(at.cosine);
    at = at * step;
    return factor;
  }
};
// ... and from k = 1 as a running sum.
struct SteppingFactor {
  double step;
  double at = step;
  ZOV_INLINE double operator()() {
    const double factor = at;
    at += step;
    return factor;
  }
};

// Multiplies sample k and its mirror image by the next factor, for k up to the middle. The centre
// of an odd length has factor 1 and is left alone.
template <class T, class Factor>
ZOV_INLINE void WalkPairs(T* pSrcDst, int len, int k, Factor next) {
  T* const last = pSrcDst + (len - 1);
  for (; k < len / 2; ++k) {
    const double factor = next();
    pSrcDst[k] = static_cast<T>(pSrcDst[k] * factor);
    last[-k] = static_cast<T>(last[-k] * factor);
  }
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

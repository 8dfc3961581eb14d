// Real transforms of 1 to 64 values in scalars or pairs, complex ones of 16 to 64 in vectors.
#include "signal/fourier/small_kernels.h"

#include "signal/fourier/lanes.h"
#include "signal/fourier/limits.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// The recursions below run on scalars, or on vectors whose lanes are transforms side by side.
ZOV_INLINE Zov32f Times(Zov32f a, double x) { return a * static_cast<Zov32f>(x); }
ZOV_INLINE Zov64f Times(Zov64f a, double x) { return a * x; }
template <class T, int N>
ZOV_INLINE Vec<T, N> Times(Vec<T, N> a, double x) {
  return a * Vec<T, N>::Broadcast(static_cast<T>(x));
}
template <class T>
ZOV_INLINE T Negated(T a) {
  return -a;
}
template <class T, int N>
ZOV_INLINE Vec<T, N> Negated(Vec<T, N> a) {
  return {-a.v};
}

// The packed spectrum of x[0], x[step], ... (n values): Re X[0], Re X[n/2], Re X[1], Im X[1], ...
// The scaled form multiplies the inputs of the last butterflies.
template <class T, int n, int step, bool kScaled>
struct RealForward {
  static ZOV_INLINE void Run(const T* x, T* spectrum, T scale) {
    T even[n / 2];
    T odd[n / 2];
    RealForward<T, n / 2, 2 * step, false>::Run(x, even, scale);
    RealForward<T, n / 2, 2 * step, false>::Run(x + step, odd, scale);
    if constexpr (kScaled) {
      Unroll<n / 2>(ZOV_UNROLLED(i) {
        even[decltype(i)::value] = even[decltype(i)::value] * scale;
        odd[decltype(i)::value] = odd[decltype(i)::value] * scale;
      });
    }
    spectrum[0] = even[0] + odd[0];
    spectrum[1] = even[0] - odd[0];
    if constexpr (n >= 4) {
      // k = n/4: the twiddle is -i and both halves are real there.
      spectrum[n / 2] = even[1];
      spectrum[n / 2 + 1] = Negated(odd[1]);
    }
    if constexpr (n >= 8) {
      Unroll<n / 4 - 1>(ZOV_UNROLLED(i) {
        constexpr int k = decltype(i)::value + 1;
        constexpr double kCos = static_cast<double>(CosineOfTurn(k, n));
        constexpr double kSin = static_cast<double>(SineOfTurn(k, n));
        T re, im;
        if constexpr (8 * k == n) {
          re = Times(odd[2 * k] + odd[2 * k + 1], kCos);
          im = Times(odd[2 * k + 1] - odd[2 * k], kCos);
        } else {
          re = Times(odd[2 * k], kCos) + Times(odd[2 * k + 1], kSin);
          im = Times(odd[2 * k + 1], kCos) - Times(odd[2 * k], kSin);
        }
        constexpr int m = n / 2 - k;
        spectrum[2 * k] = even[2 * k] + re;
        spectrum[2 * k + 1] = even[2 * k + 1] + im;
        spectrum[2 * m] = even[2 * k] - re;
        spectrum[2 * m + 1] = im - even[2 * k + 1];
      });
    }
  }
};

template <class T, int step, bool kScaled>
struct RealForward<T, 1, step, kScaled> {
  static ZOV_INLINE void Run(const T* x, T* spectrum, T scale) {
    spectrum[0] = kScaled ? x[0] * scale : x[0];
  }
};

// Where vectors go to: like a pointer to them, without their alignment.
template <class V>
struct VectorPlace {
  typename V::Lane* p;
  ZOV_INLINE VectorPlace operator+(int step) const { return {p + step * V::kLanes}; }
};
template <class T>
ZOV_INLINE void Put(T* place, T value) {
  *place = value;
}
template <class V>
ZOV_INLINE void Put(VectorPlace<V> place, V value) {
  value.Store(place.p);
}

// The values x[0], x[step], ... of a packed spectrum; kDoubled where its pair of k = n/4 comes
// doubled, which spares an addition.
template <class T, int n, int step, bool kScaled, bool kDoubled = false>
struct RealInverse {
  template <class Place>
  static ZOV_INLINE void Run(const T* spectrum, Place x, T scale) {
    T even[n / 2];
    T odd[n / 2];
    T first = spectrum[0];
    T second = spectrum[1];
    if constexpr (kScaled && n == 2) {
      first = first * scale;
      second = second * scale;
    }
    even[0] = first + second;
    odd[0] = first - second;
    if constexpr (n >= 4) {
      even[1] = kDoubled ? spectrum[n / 2] : spectrum[n / 2] + spectrum[n / 2];
      odd[1] = Times(spectrum[n / 2 + 1], kDoubled ? -1 : -2);
    }
    if constexpr (n >= 8) {
      Unroll<n / 4 - 1>(ZOV_UNROLLED(i) {
        constexpr int k = decltype(i)::value + 1;
        constexpr int m = n / 2 - k;
        constexpr double kCos = static_cast<double>(CosineOfTurn(k, n));
        constexpr double kSin = static_cast<double>(SineOfTurn(k, n));
        even[2 * k] = spectrum[2 * k] + spectrum[2 * m];
        even[2 * k + 1] = spectrum[2 * k + 1] - spectrum[2 * m + 1];
        const T re = spectrum[2 * k] - spectrum[2 * m];
        const T im = spectrum[2 * k + 1] + spectrum[2 * m + 1];
        if constexpr (8 * k == n) {
          odd[2 * k] = Times(re - im, 2 * kCos);
          odd[2 * k + 1] = Times(re + im, 2 * kCos);
        } else {
          odd[2 * k] = Times(re, kCos) - Times(im, kSin);
          odd[2 * k + 1] = Times(im, kCos) + Times(re, kSin);
        }
      });
    }
    RealInverse<T, n / 2, 2 * step, kScaled>::Run(even, x, scale);
    RealInverse<T, n / 2, 2 * step, kScaled, (n >= 8)>::Run(odd, x + step, scale);
  }
};

template <class T, int step, bool kScaled, bool kDoubled>
struct RealInverse<T, 1, step, kScaled, kDoubled> {
  template <class Place>
  static ZOV_INLINE void Run(const T* spectrum, Place x, T) {
    Put(x, spectrum[0]);
  }
};

// Scalars stay scalars: gathering them into vectors costs more than it saves, above all where the
// next transform in place waits for them.
#if defined(__clang__)
#define ZOV_SCALAR_KERNEL
#else
#define ZOV_SCALAR_KERNEL __attribute__((optimize("no-tree-slp-vectorize")))
#endif

template <class T, int n, bool kScaled>
ZOV_SCALAR_KERNEL void RealForwardKernel(const T* src, T* dst, T scale) {
  T in[n];
  T out[n];
  for (int i = 0; i < n; ++i) in[i] = src[i];
  RealForward<T, n, 1, kScaled>::Run(in, out, scale);
  for (int i = 0; i < n; ++i) dst[i] = out[i];
}

template <class T, int n, bool kScaled>
ZOV_SCALAR_KERNEL void RealInverseKernelOf(const T* src, T second, T* dst, T scale) {
  T in[n < 2 ? 2 : n];
  T out[n];
  in[0] = src[0];
  in[1] = second;
  for (int i = 2; i < n; ++i) in[i] = src[i];
  RealInverse<T, n, 1, kScaled>::Run(in, out, scale);
  for (int i = 0; i < n; ++i) dst[i] = out[i];
}

// Two real transforms side by side, of the values of even and of odd index, and the last step, or
// the first of the inverse, between the lanes.
template <class T, int n, bool kScaled>
void RealForwardPairs(const T* src, T* dst, T scale) {
  using V = Vec<T, 2>;
  V in[n / 2];
  V halves[n / 2];
  for (int i = 0; i < n / 2; ++i) in[i] = V::Load(src + 2 * i);
  RealForward<V, n / 2, 1, false>::Run(in, halves, V{});
  if constexpr (kScaled) {
    for (int i = 0; i < n / 2; ++i) halves[i] = halves[i] * V::Broadcast(scale);
  }
  const V even = {__builtin_shufflevector(halves[0].v, halves[0].v, 0, 0)};
  const V odd = {__builtin_shufflevector(halves[0].v, halves[0].v, 1, 1)};
  AddSub(even, odd).Store(dst);
  Conjugate(halves[1]).Store(dst + n / 2);
  Unroll<n / 4 - 1>(ZOV_UNROLLED(i) {
    constexpr int k = decltype(i)::value + 1;
    constexpr int m = n / 2 - k;
    constexpr T kCos = static_cast<T>(CosineOfTurn(k, n));
    constexpr T kSin = static_cast<T>(SineOfTurn(k, n));
    const auto re = halves[2 * k].v;
    const auto im = halves[2 * k + 1].v;
    const V z = {__builtin_shufflevector(re, im, 0, 2)};
    const V y = {__builtin_shufflevector(re, im, 1, 3)};
    const V swapped = {__builtin_shufflevector(im, re, 1, 3)};
    V turned;
    if constexpr (8 * k == n) {
      turned = AddSub(y, swapped) * V::Broadcast(kCos);
    } else {
      turned = Fma(swapped, V::Broadcast(kSin) ^ ImagSigns<T, 2>(), y * V::Broadcast(kCos));
    }
    (z + turned).Store(dst + 2 * k);
    Conjugate(z - turned).Store(dst + 2 * m);
  });
}

template <class T, int n, bool kScaled>
void RealInversePairs(const T* src, T second, T* dst, T scale) {
  using V = Vec<T, 2>;
  V halves[n / 2];
  const V zeroth = {{src[0], src[0]}};
  halves[0] = AddSub(zeroth, V::Broadcast(second));
  halves[1] = V::Load(src + n / 2) * V{{2, -2}};
  Unroll<n / 4 - 1>(ZOV_UNROLLED(i) {
    constexpr int k = decltype(i)::value + 1;
    constexpr int m = n / 2 - k;
    constexpr T kCos = static_cast<T>(CosineOfTurn(k, n));
    constexpr T kSin = static_cast<T>(SineOfTurn(k, n));
    const V a = V::Load(src + 2 * k);
    const V b = Conjugate(V::Load(src + 2 * m));
    const V z = a + b;
    const V d = a - b;
    V y;
    if constexpr (8 * k == n) {
      y = SubAdd(d, SwapParts(d)) * V::Broadcast(kCos);
    } else {
      y = Fma(SwapParts(d), V::Broadcast(-kSin) ^ ImagSigns<T, 2>(), d * V::Broadcast(kCos));
    }
    halves[2 * k] = {__builtin_shufflevector(z.v, y.v, 0, 2)};
    halves[2 * k + 1] = {__builtin_shufflevector(z.v, y.v, 1, 3)};
  });
  RealInverse<V, n / 2, 1, kScaled>::Run(halves, VectorPlace<V>{dst}, V::Broadcast(scale));
}

// Twiddles exp(-2 pi i k m / n), k < rows, m < n / rows, as (re, re) and (-im, im).
template <class T, int n, int rows>
struct SmallTwiddles {
  T re[rows][2 * n / rows];
  T im[rows][2 * n / rows];
};
template <class T, int n, int rows>
constexpr SmallTwiddles<T, n, rows> MakeSmallTwiddles() {
  SmallTwiddles<T, n, rows> table{};
  for (int k = 0; k < rows; ++k) {
    for (int m = 0; m < n / rows; ++m) {
      const T cosine = static_cast<T>(CosineOfTurn(k * m, n));
      const T sine = static_cast<T>(SineOfTurn(k * m, n));
      table.re[k][2 * m] = table.re[k][2 * m + 1] = cosine;
      table.im[k][2 * m] = sine;
      table.im[k][2 * m + 1] = -sine;
    }
  }
  return table;
}
template <class T, int n, int rows>
alignas(64) constexpr SmallTwiddles<T, n, rows> kSmallTwiddles = MakeSmallTwiddles<T, n, rows>();

template <int n, bool kInverse, class C>
ZOV_INLINE void TransformColumn(C* x, int step) {
  if constexpr (n == 4) {
    Transform4<kInverse>(x[0], x[step], x[2 * step], x[3 * step]);
  } else {
    Transform8<kInverse>(x[0], x[step], x[2 * step], x[3 * step], x[4 * step], x[5 * step],
                         x[6 * step], x[7 * step]);
  }
}

// Complex transform of n = rows * columns values in two steps: over the columns of the matrix that
// the source is, then, transposed, over its rows.
template <class T, int n, bool kInverse, bool kScaled>
void ComplexKernel(const T* src, T* dst, T scale) {
  using C = Interleaved<T>;
  constexpr int N = C::kLanes;
  constexpr int rows = n == 64 ? 8 : 4;
  constexpr int columns = n / rows;
  constexpr const SmallTwiddles<T, n, rows>& kTwiddles = kSmallTwiddles<T, n, rows>;
  // transposed[m * (rows / N) + g] holds the values k = g N and on of column m.
  C transposed[n / N];
  Unroll<columns / N>(ZOV_UNROLLED(g) {
    constexpr int m = decltype(g)::value * N;
    C x[rows];
    Unroll<rows>(ZOV_UNROLLED(i) {
      constexpr int k = decltype(i)::value;
      x[k] = C::Load(src + 2 * (m + k * columns));
    });
    TransformColumn<rows, kInverse>(x, 1);
    Unroll<rows - 1>(ZOV_UNROLLED(i) {
      constexpr int k = decltype(i)::value + 1;
      const Lanes<T> re = Lanes<T>::Load(&kTwiddles.re[k][2 * m]);
      const Lanes<T> im = Lanes<T>::Load(&kTwiddles.im[k][2 * m]);
      x[k] = kInverse ? x[k].TimesConj(re, im) : x[k].Times(re, im);
    });
    Unroll<rows / N>(ZOV_UNROLLED(i) {
      constexpr int k = decltype(i)::value;
      TransposeSquare(x + k * N);
      Unroll<N>(ZOV_UNROLLED(lane) {
        constexpr int kLane = decltype(lane)::value;
        transposed[(m + kLane) * (rows / N) + k] = x[k * N + kLane];
      });
    });
  });
  Unroll<rows / N>(ZOV_UNROLLED(g) {
    constexpr int k = decltype(g)::value;
    TransformColumn<columns, kInverse>(transposed + k, rows / N);
  });
  Unroll<n / N>(ZOV_UNROLLED(i) {
    constexpr int k = decltype(i)::value;
    (kScaled ? transposed[k] * scale : transposed[k]).Store(dst + 2 * N * k);
  });
}

// Orders whose real kernels in double precision run in pairs. Below, the shuffles between the lanes
// cost what the lanes save, above all in place.
constexpr int kPairsFrom = 4;

// The kernel of an order; null where the level has none.
template <class T, int order, bool kInverse, bool kScaled>
constexpr SmallKernel<T> KernelOf() {
  constexpr FftLimits kLimits = FftLimitsOf<T>(kLevel);
  if constexpr (order <= kLastRealKernel<T>) {
    if constexpr (kInverse) {
      return nullptr;
    } else if constexpr (sizeof(T) == 8 && order >= kPairsFrom) {
      return RealForwardPairs<T, 1 << order, kScaled>;
    } else {
      return RealForwardKernel<T, 1 << order, kScaled>;
    }
  } else if constexpr (order <= kLimits.lastSmall) {
    return ComplexKernel<T, 1 << (order - 1), kInverse, kScaled>;
  } else {
    return nullptr;
  }
}
template <class T, int order, bool kScaled>
constexpr RealInverseKernel<T> RealInverseOf() {
  if constexpr (order > kLastRealKernel<T>) {
    return nullptr;
  } else if constexpr (sizeof(T) == 8 && order >= kPairsFrom) {
    return RealInversePairs<T, 1 << order, kScaled>;
  } else {
    return RealInverseKernelOf<T, 1 << order, kScaled>;
  }
}

template <class T, int... order, int... realOrder>
constexpr SmallKernels<T> MakeKernels(std::integer_sequence<int, order...>,
                                      std::integer_sequence<int, realOrder...>) {
  return {{KernelOf<T, order, false, false>()...},   {KernelOf<T, order, false, true>()...},
          {KernelOf<T, order, true, false>()...},    {KernelOf<T, order, true, true>()...},
          {RealInverseOf<T, realOrder, false>()...}, {RealInverseOf<T, realOrder, true>()...}};
}

}  // namespace

extern constexpr SmallKernels<Zov32f> kSmallKernels32f =
    MakeKernels<Zov32f>(std::make_integer_sequence<int, 8>{}, std::make_integer_sequence<int, 8>{});
extern constexpr SmallKernels<Zov64f> kSmallKernels64f =
    MakeKernels<Zov64f>(std::make_integer_sequence<int, 8>{}, std::make_integer_sequence<int, 8>{});

}  // namespace zov::ZOV_LEVEL_NAMESPACE

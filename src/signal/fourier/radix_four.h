// The complex transform of the baseline: radix 4 in place on interleaved values in bit-reversed
// order, with one table of triples that serves every pass, and the routes for longer arrays on it.
#pragma once

#include "signal/fourier/lanes.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/spec.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T, bool kInverse>
struct BaselineTransform {
  using C = Interleaved<T>;
  using V = Lanes<T>;
  static constexpr Index kLanes = C::kLanes;
  static constexpr const FftLimits& kLimits = FftLimitsOf<T>(Level::sse2);
  // The block route takes chunks of 2^kLogChunk values through the kernel and joins them by radix 2
  // within blocks, a strip of kStrip values at a time.
  static constexpr int kLogChunk = 10;
  static constexpr Index kStrip = 128;

  const FftSpec<T>& spec;
  T* work;
  bool scaled;

  // Factors of neighbouring indices, which lie `step` values apart in a table.
  static ZOV_INLINE C Factors(const T* table, Index step) {
    if constexpr (kLanes == 1) {
      return C::Load(table);
    } else {
      const __m128 low = _mm_castpd_ps(_mm_load_sd(reinterpret_cast<const double*>(table)));
      return {{_mm_loadh_pi(low, reinterpret_cast<const __m64*>(table + 2 * step))}};
    }
  }

  // a w, or a conj(w) for the inverse, w as memory holds it.
  static ZOV_INLINE C Multiply(C a, C w) {
    const V im = ImagParts(w.v) ^ ImagSigns<T, V::kLanes>();
    return kInverse ? a.Times(RealParts(w.v), im) : a.TimesConj(RealParts(w.v), im);
  }

  // Groups of four without multiplications; the values stand in the order 0, 2, 1, 3.
  static ZOV_INLINE void GroupsOfFour(T* array, Index length) {
    for (T* p = array; p < array + 2 * length; p += 8) {
      if constexpr (kLanes == 1) {
        C a0 = C::Load(p), a2 = C::Load(p + 2), a1 = C::Load(p + 4), a3 = C::Load(p + 6);
        Transform4<kInverse>(a0, a1, a2, a3);
        a0.Store(p), a1.Store(p + 2), a2.Store(p + 4), a3.Store(p + 6);
      } else {
        C even[2] = {C::Load(p), C::Load(p + 4)};  // (0, 2), (1, 3)
        TransposeSquare(even);                     // (0, 1), (2, 3)
        C sums[2] = {even[0] + even[1], even[0] - even[1]};
        TransposeSquare(sums);  // (s0, d0), (s1, d1)
        const C turned = sums[1].MinusI();
        const Vec<std::int32_t, 4> high = {{0, 0, -1, -1}};
        const C right = {
            Select<T, V::kLanes>(high, kInverse ? (V::Zero() - turned.v) : turned.v, sums[1].v)};
        (sums[0] + right).Store(p);
        (sums[0] - right).Store(p + 4);
      }
    }
  }

  // Joins blocks of 4 into blocks of 8; the eighth root stands in the table.
  static ZOV_INLINE void JoinFours(T* array, Index length, const T* twiddles) {
    const T root = twiddles[6 * (length / 8)];
    const T sign = kInverse ? root : -root;
    const T powers[8] = {1, 0, root, sign, 0, kInverse ? T{1} : T{-1}, -root, sign};
    V re[4 / kLanes], im[4 / kLanes];
    for (Index i = 0; i < 4 / kLanes; ++i) {
      const V w = V::Load(powers + 2 * kLanes * i);
      re[i] = RealParts(w);
      im[i] = Conjugate(ImagParts(w));
    }
    for (T* p = array; p < array + 2 * length; p += 16) {
      for (Index i = 0; i < 4 / kLanes; ++i) {
        T* const low = p + 2 * kLanes * i;
        const C even = C::Load(low);
        const C odd = C::Load(low + 8).TimesConj(re[i], im[i]);
        (even + odd).Store(low);
        (even - odd).Store(low + 8);
      }
    }
  }

  static ZOV_INLINE void RadixFourPass(T* block, Index quarter, const T* twiddles, Index step) {
    for (Index k = 0; k < quarter; k += kLanes) {
      const T* const w = twiddles + 6 * k * step;
      T* const p = block + 2 * k;
      C a0 = C::Load(p);
      C a2 = C::Load(p + 2 * quarter);
      C a1 = C::Load(p + 4 * quarter);
      C a3 = C::Load(p + 6 * quarter);
      if (kLanes != 1 || k != 0) {
        a1 = Multiply(a1, Factors(w, 3 * step));
        a2 = Multiply(a2, Factors(w + 2, 3 * step));
        a3 = Multiply(a3, Factors(w + 4, 3 * step));
      }
      Transform4<kInverse>(a0, a1, a2, a3);
      a0.Store(p);
      a1.Store(p + 2 * quarter);
      a2.Store(p + 4 * quarter);
      a3.Store(p + 6 * quarter);
    }
  }

  // In place on 2^c values in bit-reversed order, by the table of that length.
  static void Kernel(T* array, int c, const T* twiddles) {
    const Index length = Index{1} << c;
    GroupsOfFour(array, length);
    Index size = 16;
    if (c % 2 != 0) {
      JoinFours(array, length, twiddles);
      size = 32;
    }
    for (; size <= length; size *= 4) {
      for (Index block = 0; block < length; block += size) {
        RadixFourPass(array + 2 * block, size / 4, twiddles, length / size);
      }
    }
  }

  void ScaleIfAsked(T* array, int c) const {
    if (!scaled) return;
    for (Index i = 0; i < Index{1} << c; i += kLanes) {
      (C::Load(array + 2 * i) * spec.scale).Store(array + 2 * i);
    }
  }

  // Chunks of 1024 values by the kernel, from the last to the first, then joined by radix 2.
  void Blocks(T* array, int c) const {
    const Index length = Index{1} << c;
    for (Index chunk = length; chunk > 0;) {
      chunk -= Index{1} << kLogChunk;
      Kernel(array + 2 * chunk, kLogChunk, spec.cplxTwiddles);
      ScaleIfAsked(array + 2 * chunk, kLogChunk);
    }
    for (Index size = Index{1} << kLogChunk; size < length; size *= 2) {
      RadixTwoPass(array, length, size);
    }
  }

  // Joins pairs of blocks of `size` values. The twiddles of a strip serve the strip half a block
  // further on too, a quarter turn later.
  void RadixTwoPass(T* array, Index length, Index size) const {
    const Index step = length / (2 * size);
    for (Index strip = 0; strip < size / 2; strip += kStrip) {
      for (Index block = 0; block < length; block += 2 * size) {
        for (Index k = strip; k < strip + kStrip; k += kLanes) {
          const C w = Factors(spec.blockTwiddles + 2 * k * step, step);
          T* const low = array + 2 * (block + k);
          T* const high = low + 2 * size;
          const C a = C::Load(low);
          const C b = Multiply(C::Load(high), w);
          (a + b).Store(low);
          (a - b).Store(high);
          const C d = Multiply(C::Load(high + size), w);
          C plus, minus;
          QuarterTurn<kInverse>(C::Load(low + size), d, plus, minus);
          plus.Store(low + size);
          minus.Store(high + size);
        }
      }
    }
  }

  // The tables are those of each depth.
  ZOV_NOINLINE void FourStep(T* array, int c, const T* const* rowTwiddles,
                             const T* const* colTwiddles) const {
    const FourStepSplit split = SplitOf(kLimits, c);
    const int logRow = c - split.rows;
    const Index rows = Index{1} << split.rows;
    const Index columns = Index{1} << logRow;
    for (Index row = 0; row < rows; ++row) {
      T* const p = array + 2 * row * columns;
      if (logRow <= kLimits.lastWhole) {
        Kernel(p, logRow, spec.cplxTwiddles);
        ScaleIfAsked(p, logRow);
      } else if (SplitOf(kLimits, logRow).rows == 0) {
        Blocks(p, logRow);
      } else {
        FourStep(p, logRow, rowTwiddles + 1, colTwiddles + 1);
      }
    }
    // Four columns at a time use each cache line of a row fully.
    const T* twiddles = *rowTwiddles;
    for (Index column = 0; column < columns; column += 4) {
      T* const p = array + 2 * column;
      for (Index row = 0; row < rows; ++row, twiddles += 8) {
        for (Index lane = 0; lane < 4; lane += kLanes) {
          const C value =
              Multiply(C::Load(p + 2 * (row * columns + lane)), C::Load(twiddles + 2 * lane));
          StoreLanes(value, work + 2 * (lane * rows + row), 2 * rows);
        }
      }
      for (Index lane = 0; lane < 4; ++lane) {
        Kernel(work + 2 * lane * rows, split.rows, *colTwiddles);
      }
      for (Index row = 0; row < rows; ++row) {
        for (Index lane = 0; lane < 4; lane += kLanes) {
          LoadLanes(work + 2 * (lane * rows + row), 2 * rows).Store(p + 2 * (row * columns + lane));
        }
      }
    }
  }

  // The lanes of a vector `step` elements apart.
  static ZOV_INLINE void StoreLanes(C a, T* p, Index step) {
    if constexpr (kLanes == 1) {
      a.Store(p);
    } else {
      _mm_storel_pi(reinterpret_cast<__m64*>(p), a.v.v);
      _mm_storeh_pi(reinterpret_cast<__m64*>(p + step), a.v.v);
    }
  }
  static ZOV_INLINE C LoadLanes(const T* p, Index step) { return Factors(p, step / 2); }
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

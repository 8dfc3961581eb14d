// The passes of a complex transform on split groups: the first over groups of 16 in bit-reversed
// order, then radix-4 and radix-8 stages. Lengths and steps count complex values. The inverse is
// the forward transform with real and imaginary parts exchanged: the first pass stores them so, the
// last stage exchanges them back, and the stages between know nothing of the direction.
#pragma once

#include "signal/fourier/lanes.h"
#include "signal/fourier/limits.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// What a stage leaves behind.
enum class Form { split, interleaved, exchanged };

template <class T, Form kForm, bool kScaled>
ZOV_INLINE void StoreGroup(Split<T> a, T* p, T scale) {
  if constexpr (kScaled) a = a * scale;
  if constexpr (kForm == Form::split) a.Store(p);
  if constexpr (kForm == Form::interleaved) StoreInterleaved(a, p);
  if constexpr (kForm == Form::exchanged) StoreInterleaved(Split<T>{a.im, a.re}, p);
}

// `count` butterflies, block j of the input at in + j * inStep and of the output at
// out + j * outStep. The blocks are in bit-reversed order: block j holds the residue rev(j).
template <class T, Form kForm, bool kScaled>
ZOV_INLINE const T* Radix4Run(const T* in, Index inStep, T* out, Index outStep, const T* twiddles,
                              Index count, T scale) {
  constexpr int N = Split<T>::kLanes;
  for (Index k = 0; k < count; k += N, twiddles += 6 * N) {
    const T* const p = in + 2 * k;
    T* const q = out + 2 * k;
    Split<T> a0 = Split<T>::Load(p);
    Split<T> a2 = Split<T>::LoadOnce(p + 2 * inStep) * Split<T>::LoadOnce(twiddles + 2 * N);
    Split<T> a1 = Split<T>::LoadOnce(p + 4 * inStep) * Split<T>::LoadOnce(twiddles);
    Split<T> a3 = Split<T>::LoadOnce(p + 6 * inStep) * Split<T>::LoadOnce(twiddles + 4 * N);
    Transform4<false>(a0, a1, a2, a3);
    StoreGroup<T, kForm, kScaled>(a0, q, scale);
    StoreGroup<T, kForm, kScaled>(a1, q + 2 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a2, q + 4 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a3, q + 6 * outStep, scale);
  }
  return twiddles;
}

template <class T, Form kForm, bool kScaled>
ZOV_INLINE const T* Radix8Run(const T* in, Index inStep, T* out, Index outStep, const T* twiddles,
                              Index count, T scale) {
  constexpr int N = Split<T>::kLanes;
  for (Index k = 0; k < count; k += N, twiddles += 14 * N) {
    const T* const p = in + 2 * k;
    T* const q = out + 2 * k;
    // Even residues stand in the first four blocks.
    Split<T> a0 = Split<T>::Load(p);
    Split<T> a4 = Split<T>::LoadOnce(p + 2 * inStep) * Split<T>::LoadOnce(twiddles + 6 * N);
    Split<T> a2 = Split<T>::LoadOnce(p + 4 * inStep) * Split<T>::LoadOnce(twiddles + 2 * N);
    Split<T> a6 = Split<T>::LoadOnce(p + 6 * inStep) * Split<T>::LoadOnce(twiddles + 10 * N);
    Split<T> a1 = Split<T>::LoadOnce(p + 8 * inStep) * Split<T>::LoadOnce(twiddles);
    Split<T> a5 = Split<T>::LoadOnce(p + 10 * inStep) * Split<T>::LoadOnce(twiddles + 8 * N);
    Split<T> a3 = Split<T>::LoadOnce(p + 12 * inStep) * Split<T>::LoadOnce(twiddles + 4 * N);
    Split<T> a7 = Split<T>::LoadOnce(p + 14 * inStep) * Split<T>::LoadOnce(twiddles + 12 * N);
    Transform8<false>(a0, a1, a2, a3, a4, a5, a6, a7);
    StoreGroup<T, kForm, kScaled>(a0, q, scale);
    StoreGroup<T, kForm, kScaled>(a1, q + 2 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a2, q + 4 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a3, q + 6 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a4, q + 8 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a5, q + 10 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a6, q + 12 * outStep, scale);
    StoreGroup<T, kForm, kScaled>(a7, q + 14 * outStep, scale);
  }
  return twiddles;
}

template <class T, Form kForm, bool kScaled>
ZOV_INLINE const T* StageRun(int logRadix, const T* in, Index inStep, T* out, Index outStep,
                             const T* twiddles, Index count, T scale) {
  return logRadix == 2
             ? Radix4Run<T, kForm, kScaled>(in, inStep, out, outStep, twiddles, count, scale)
             : Radix8Run<T, kForm, kScaled>(in, inStep, out, outStep, twiddles, count, scale);
}

// The second half of transforms of 16 values in vectors; lane j goes as split groups to the place
// of its block.
template <class T, bool kInverse>
ZOV_INLINE void FinishFirst(Interleaved<T> (&x)[16], T* const* places) {
  constexpr int C = Interleaved<T>::kLanes;
  Transform16Rows<kInverse>(x);
  // One group is two vectors of C values of a lane.
  Unroll<8 / C>(ZOV_UNROLLED(g) {
    constexpr int first = decltype(g)::value * 2 * C;
    Interleaved<T> a[C], b[C];
    Unroll<C>(ZOV_UNROLLED(i) {
      constexpr int ka = first + decltype(i)::value;
      constexpr int kb = ka + C;
      a[decltype(i)::value] = x[ka / 4 + ka % 4 * 4];
      b[decltype(i)::value] = x[kb / 4 + kb % 4 * 4];
    });
    TransposeSquare(a);
    TransposeSquare(b);
    Unroll<C>(ZOV_UNROLLED(lane) {
      const Split<T> group = ToSplit(a[decltype(lane)::value], b[decltype(lane)::value]);
      (kInverse ? Split<T>{group.im, group.re} : group)
          .Store(places[decltype(lane)::value] + 2 * first);
    });
  });
}

// First pass with the reversal fused into its addresses: lane r of the source becomes the block
// rev(r) of the destination. The table holds twice the reversal in units of 4 values.
template <class T, bool kInverse>
ZOV_INLINE void FirstPassReversed(const T* src, T* dst, int c, const Zov32s* reversal) {
  using C = Interleaved<T>;
  const Index length = Index{1} << c;
  const Index sixteenth = length / 16;
  const auto finish = [&](Index r, C(&x)[16]) __attribute__((always_inline)) {
    T* places[C::kLanes];
    places[0] = dst + 4 * static_cast<Index>(reversal[r]);
    if constexpr (C::kLanes >= 2) places[1] = places[0] + length;
    if constexpr (C::kLanes == 4) {
      places[2] = places[0] + length / 2;
      places[3] = places[0] + length / 2 + length;
    }
    FinishFirst<T, kInverse>(x, places);
  };

  constexpr Index kPage = 4096;
  if (sixteenth * static_cast<Index>(2 * sizeof(T)) < kPage) {
    const Index step = 2 * sixteenth;
    for (Index r = 0; r < sixteenth; r += C::kLanes) {
      C x[16];
      const T* row = src + 2 * r;
      for (int n = 0; n < 16; n += 4, row += 4 * step) {
        x[n] = C::Load(row);
        x[n + 1] = C::Load(row + step);
        x[n + 2] = C::Load(row + 2 * step);
        x[n + 3] = C::Load(row + 3 * step);
      }
      Unroll<4>(ZOV_UNROLLED(i) { Transform16Column<decltype(i)::value, kInverse>(x); });
      finish(r, x);
    }
    return;
  }
  // Steps of whole pages put all 16 rows into one set of the first-level cache, which then holds no
  // line until its second vector is due: so a line is used whole, and the values wait aside. The
  // stores go far apart too; their lines are asked for before the transform, but for singles where
  // that costs more than it saves: in wide vectors, and where the second-level cache has them.
  constexpr int kVectors = 64 / Lanes<T>::kBytes;
  constexpr int kAskFrom = FftLimitsOf<T>(kLevel).askFrom;
  const bool ask = kAskFrom != kNever && c >= kAskFrom;
  for (Index r = 0; r < sixteenth; r += kVectors * C::kLanes) {
    if (ask) {
      for (int lane = 0; lane < kVectors * C::kLanes; ++lane) {
        const T* const place = dst + 4 * static_cast<Index>(reversal[r + lane]);
        for (int i = 0; i < 32; i += 8) __builtin_prefetch(place + i);
      }
    }
    C columns[kVectors][16];
    Unroll<4>(ZOV_UNROLLED(i) {
      constexpr int n = decltype(i)::value;
      for (int v = 0; v < kVectors; ++v) {
        C(&x)[16] = columns[v];
        const T* const row = src + 2 * (r + v * C::kLanes);
        for (int j = n; j < 16; j += 4) x[j] = C::Load(row + 2 * j * sixteenth);
        Transform16Column<n, kInverse>(x);
      }
    });
    for (int v = 0; v < kVectors; ++v) finish(r + v * C::kLanes, columns[v]);
  }
}

// First pass in place on an array whose values stand in bit-reversed order.
template <class T, bool kInverse>
ZOV_INLINE void FirstPassInPlace(T* array, int c) {
  constexpr int C = Interleaved<T>::kLanes;
  constexpr int kReversed[16] = {0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15};
  const Index length = Index{1} << c;
  for (Index block = 0; block < length; block += 16 * C) {
    T* places[C];
    for (int lane = 0; lane < C; ++lane) places[lane] = array + 2 * (block + 16 * lane);
    Interleaved<T> x[16];
    Unroll<16 / C>(ZOV_UNROLLED(t) {
      constexpr int first = decltype(t)::value * C;
      Interleaved<T> square[C];
      for (int lane = 0; lane < C; ++lane) {
        square[lane] = Interleaved<T>::Load(places[lane] + 2 * first);
      }
      TransposeSquare(square);
      Unroll<C>(ZOV_UNROLLED(i) {
        x[kReversed[first + decltype(i)::value]] = square[decltype(i)::value];
      });
    });
    Unroll<4>(ZOV_UNROLLED(i) { Transform16Column<decltype(i)::value, kInverse>(x); });
    FinishFirst<T, kInverse>(x, places);
  }
}

// Log2 of the values that stay in the first-level cache while their stages run.
template <class T>
inline constexpr int kLogSegment = sizeof(T) == 4 ? 11 : 10;

// The table of a stage that joins blocks of `part` values follows those of all stages before it,
// which take part - 16 factors.
template <class T>
ZOV_INLINE const T* StageTable(const T* twiddles, Index part) {
  return twiddles + 2 * (part - 16);
}

// The first `count` stages of the plan, one after the other, in place on 2^logLength values.
template <class T>
void RunStages(T* array, int logLength, const StagePlan& plan, int count, const T* twiddles) {
  const T* const end = array + (Index{2} << logLength);
  Index part = 16;
  for (int stage = 0; stage < count; ++stage) {
    const T* const table = StageTable(twiddles, part);
    const Index size = part << plan.logRadix[stage];
    if (plan.logRadix[stage] == 2) {
      for (T* p = array; p < end; p += 2 * size) {
        Radix4Run<T, Form::split, false>(p, part, p, part, table, part, T{});
      }
    } else {
      for (T* p = array; p < end; p += 2 * size) {
        Radix8Run<T, Form::split, false>(p, part, p, part, table, part, T{});
      }
    }
    part = size;
  }
}

// The same where the last of the stages joins all 2^logLength values: part by part, so that each
// part is still in its cache when its later stages read it.
template <class T>
void RunStagesByPart(T* array, int logLength, const StagePlan& plan, int count, const T* twiddles) {
  if (logLength <= kLogSegment<T>) return RunStages(array, logLength, plan, count, twiddles);
  const int logRadix = plan.logRadix[count - 1];
  const Index part = Index{1} << (logLength - logRadix);
  for (Index i = 0; i < Index{1} << logRadix; ++i) {
    RunStagesByPart(array + 2 * i * part, logLength - logRadix, plan, count - 1, twiddles);
  }
  StageRun<T, Form::split, false>(logRadix, array, part, array, part, StageTable(twiddles, part),
                                  part, T{});
}

// Two radix-4 stages, of parts of `part` and of 4 * part values, in place on 16 * part values: in
// strips through a small buffer, which goes through memory once instead of twice.
template <class T, Form kForm, bool kScaled>
ZOV_NOINLINE void TwoStages(T* array, Index part, const T* twiddles, T scale) {
  constexpr Index kStrip = 16;
  alignas(64) T strip[32 * kStrip];
  const T* const first = StageTable(twiddles, part);
  const T* const second = StageTable(twiddles, 4 * part);
  for (Index k = 0; k < part; k += kStrip) {
    for (Index block = 0; block < 4; ++block) {
      Radix4Run<T, Form::split, false>(array + 2 * (4 * block * part + k), part,
                                       strip + 8 * block * kStrip, kStrip, first + 6 * k, kStrip,
                                       T{});
    }
    for (Index block = 0; block < 4; ++block) {
      const Index place = block * part + k;
      Radix4Run<T, kForm, kScaled>(strip + 2 * block * kStrip, 4 * kStrip, array + 2 * place,
                                   4 * part, second + 6 * place, kStrip, scale);
    }
  }
}
// All stages behind the first pass on 2^c values of `array`; the last writes to `out`.
template <class T, Form kForm, bool kScaled>
ZOV_INLINE void AllStages(T* array, T* out, int c, const T* twiddles, T scale) {
  const StagePlan& plan = kStagePlans[kLevel >= Level::avx].of[c];
  const int count = plan.count - 1;
  const int last = plan.logRadix[count];
  const Index part = Index{1} << (c - last);
  constexpr int kPairFrom = FftLimitsOf<T>(kLevel).pairFrom;
  if constexpr (kPairFrom != kNever) {
    if (c >= kPairFrom && array == out) {  // their last two stages are of radix 4
      for (Index i = 0; i < 16; ++i) {
        RunStagesByPart(array + i * part / 2, c - 4, plan, count - 1, twiddles);
      }
      return TwoStages<T, kForm, kScaled>(array, part / 4, twiddles, scale);
    }
  }
  if (c <= kLogSegment<T>) {
    RunStages(array, c, plan, count, twiddles);
  } else {
    for (Index i = 0; i < Index{1} << last; ++i) {
      RunStagesByPart(array + 2 * i * part, c - last, plan, count, twiddles);
    }
  }
  StageRun<T, kForm, kScaled>(last, array, part, out, part, StageTable(twiddles, part), part,
                              scale);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

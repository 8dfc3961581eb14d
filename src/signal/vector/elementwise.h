// Runs an operation over arrays, element by element: the head up to an aligned destination, the
// main block and the tail of every operation whose result i depends on the sources' elements i
// alone.
//
// An operation is a type that takes one vector of each source and returns the destination's vector:
//   Vec<float, N> operator()(Vec<float, N> a, Vec<float, N> b) const;
// One that decides for several vectors at once has kVectors, their number, and instead
//   template <int K, class... Load> Pack<Vec<float, N>, K> Block(Load... load);
// for K of kVectors or 1, where load(k) gives vector k of a source, again if need be. It may keep a
// flag, as every lane that it sees holds an element.
#pragma once

#include <cstddef>
#include <utility>

#include "core/simd.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Keeps the compiler from replacing the pointers of a loop by one index, which takes either an
// addition for each array, or stores that occupy the ports of the loads.
template <class T>
ZOV_INLINE void KeepInRegister(T*& p) {
  asm("" : "+r"(p));
}

// Before the slow path of a block: what it needs is loaded again, so that no register holds it for
// a case that hardly occurs.
ZOV_INLINE void LoadAgain() { asm volatile("" ::: "memory"); }

// K vectors that an operation makes at once.
template <class V, int K>
struct Pack {
  V v[K];
};

// Runs body(k) for k = 0 to K-1, unrolled.
template <int K, class Body>
ZOV_INLINE void Unroll(Body body) {
  [&]<int... k>(std::integer_sequence<int, k...>) __attribute__((always_inline)) { (body(k), ...); }
  (std::make_integer_sequence<int, K>{});
}

// N complex elements as they lie in memory: the first half of them in `low`, the rest in `high`.
template <class T, int N>
struct Interleaved {
  static constexpr int kBytes = 2 * Vec<T, N>::kBytes;
  Vec<T, N> low, high;

  static ZOV_INLINE Interleaved Load(const void* p) {
    return {Vec<T, N>::Load(p), Vec<T, N>::Load(static_cast<const T*>(p) + N)};
  }
  static ZOV_INLINE Interleaved LoadAligned(const void* p) {
    return {Vec<T, N>::LoadAligned(p), Vec<T, N>::LoadAligned(static_cast<const T*>(p) + N)};
  }
  ZOV_INLINE void Store(void* p) const {
    low.Store(p);
    high.Store(static_cast<T*>(p) + N);
  }
  ZOV_INLINE void StoreAligned(void* p) const {
    low.StoreAligned(p);
    high.StoreAligned(static_cast<T*>(p) + N);
  }
};

// The registers that hold N elements of an array of T, and the size of what fills one lane.
template <class T, int N>
struct LanesOf {
  using Type = Vec<T, N>;
  using Scalar = T;
};
template <int N>
struct LanesOf<Zov16sc, N> {
  using Type = Interleaved<std::int16_t, N>;
  using Scalar = std::int16_t;
};
template <int N>
struct LanesOf<Zov32fc, N> {
  using Type = Interleaved<float, N>;
  using Scalar = float;
};
template <int N>
struct LanesOf<Zov64fc, N> {
  using Type = Interleaved<double, N>;
  using Scalar = double;
};

template <class T>
using ScalarOf = typename LanesOf<T, 1>::Scalar;

// Elements in a vector: as many as fit a register in the widest of the types.
template <class... T>
constexpr int LanesFor() {
  int widest = 0;
  ((widest = static_cast<int>(sizeof(ScalarOf<T>)) > widest ? static_cast<int>(sizeof(ScalarOf<T>))
                                                            : widest),
   ...);
  const bool allFloat = ((static_cast<ScalarOf<T>>(0.5) != 0) && ...);
  return (allFloat ? kFloatVectorBytes : kIntVectorBytes) / widest;
}

// In place, the destination is the last source too, and not among Src.
template <bool kInPlace, class Op, class Dst, class... Src>
struct Elementwise {
  static constexpr int N = LanesFor<Dst, Src...>();
  using DstLanes = typename LanesOf<Dst, N>::Type;
  template <class T>
  using Lanes = typename LanesOf<T, N>::Type;
  using Index = std::ptrdiff_t;

  // Vectors in a pass of the main block.
  static constexpr int K = [] {
    if constexpr (requires { Op::kVectors; }) return Op::kVectors;
    return ((sizeof(Src) == sizeof(ScalarOf<Src>)) && ...) ? 8 : 4;
  }();
  static constexpr bool kHasBlock = requires { Op::kVectors; };
  static constexpr int kAlignment =
      DstLanes::kBytes < kFloatVectorBytes ? DstLanes::kBytes : kFloatVectorBytes;
  // Up to here an aligned destination gains less than the head costs.
  static constexpr int kUnalignedLimit = kLevel >= Level::avx ? 8 * N : 2 * N;

  // K neighbouring vectors.
  template <int K, bool kAligned>
  static ZOV_INLINE void Step(Op& op, Dst* dst, const Src*... src) {
    if constexpr (kInPlace) {
      StepFrom<K, kAligned>(op, dst, src..., static_cast<const Dst*>(dst));
    } else {
      StepFrom<K, kAligned>(op, dst, src...);
    }
  }
  // Without a Block each is stored before the next is loaded.
  template <int K, bool kAligned, class... From>
  static ZOV_INLINE void StepFrom(Op& op, Dst* dst, const From*... src) {
    const auto load = []<class T>(const T* p) __attribute__((always_inline)) {
      return kAligned ? Lanes<T>::LoadAligned(p) : Lanes<T>::Load(p);
    };
    const auto store = [](DstLanes v, Dst * p) __attribute__((always_inline)) {
      kAligned ? v.StoreAligned(p) : v.Store(p);
    };
    if constexpr (kHasBlock) {
      const Pack<DstLanes, K> result = op.template Block<K>([&](
          int k) __attribute__((always_inline)) { return load(src + k * N); }...);
      Unroll<K>([&](int k) __attribute__((always_inline)) { store(result.v[k], dst + k * N); });
    } else {
      Unroll<K>([&](int k) __attribute__((always_inline)) {
        store(op(load(src + k * N)...), dst + k * N);
      });
    }
  }

  // Fewer elements than a vector has, as two pieces of kPiece elements that may overlap.
  static ZOV_INLINE void Few(Op& op, Index n, Dst* dst, const Src*... src) {
    if constexpr (kInPlace) {
      FewFrom<N / 2>(op, n, dst, src..., static_cast<const Dst*>(dst));
    } else {
      FewFrom<N / 2>(op, n, dst, src...);
    }
  }
  template <int kPiece, class... From>
  static ZOV_INLINE void FewFrom(Op& op, Index n, Dst* dst, const From*... src) {
    if (n >= kPiece) {
      const Index last = n - kPiece;
      DstLanes result;
      if constexpr (kHasBlock) {
        result = op.template Block<1>([=](int) __attribute__((always_inline)) {
                     return LoadFew<kPiece>(src, src + last);
                   }...)
                     .v[0];
      } else {
        result = op(LoadFew<kPiece>(src, src + last)...);
      }
      StoreFew<kPiece>(result, dst, dst + last);
    } else if constexpr (kPiece > 1) {
      FewFrom<kPiece / 2>(op, n, dst, src...);
    }
  }
  template <int kPiece, class T>
  static ZOV_INLINE Lanes<T> LoadFew(const T* first, const T* last) {
    constexpr int kBytes = kPiece * static_cast<int>(sizeof(T));
    if constexpr (sizeof(T) == sizeof(ScalarOf<T>)) {
      return LoadEnds<Lanes<T>, kBytes>(first, last);
    } else {
      using Half = decltype(Lanes<T>::low);
      if constexpr (kPiece * 2 == N) {
        return {Half::Load(first), Half::Load(last)};
      } else {
        const Half half = LoadEnds<Half, kBytes>(first, last);
        return {half, half};
      }
    }
  }
  template <int kPiece>
  static ZOV_INLINE void StoreFew(DstLanes v, Dst* first, Dst* last) {
    constexpr int kBytes = kPiece * static_cast<int>(sizeof(Dst));
    if constexpr (sizeof(Dst) == sizeof(ScalarOf<Dst>)) {
      StoreEnds<kBytes>(v, first, last);
    } else if constexpr (kPiece * 2 == N) {
      v.low.Store(first);
      v.high.Store(last);
    } else {
      StoreEnds<kBytes>(v.low, first, last);
    }
  }

  // All passes of K vectors; leaves the pointers behind them.
  template <int K, bool kAligned>
  static ZOV_INLINE void Steps(Op& op, Dst* end, Dst*& dst, const Src*&... src) {
    Dst* const last = end - K * N;
    const Index done = [&](Dst * to, const Src*... from) __attribute__((always_inline)) {
      while (to <= last) {
        Step<K, kAligned>(op, to, from...);
        to += K * N;
        ((from += K * N), ...);
        KeepInRegister(to);
        (KeepInRegister(from), ...);
      }
      return to - dst;
    }
    (dst, src...);
    dst += done;
    ((src += done), ...);
  }
  // All whole vectors.
  template <bool kAligned>
  static ZOV_INLINE void Main(Op& op, Dst* end, Dst*& dst, const Src*&... src) {
    Steps<K, kAligned>(op, end, dst, src...);
    Steps<1, kAligned>(op, end, dst, src...);
  }

  // The same for arrays that come from memory: a pass for a line of the destination, or for a
  // block, asks for the lines of all arrays that lie ahead, further than the processor does by
  // itself. The destination is aligned if it can be.
  static ZOV_INLINE void Far(Op& op, Dst* end, Dst*& dst, const Src*&... src) {
    constexpr int kLine = DstLanes::kBytes < 64 ? 64 / DstLanes::kBytes : 1;
    constexpr bool kByBlocks = kHasBlock && K >= kLine;
    constexpr int kPass = kByBlocks ? K : kLine;
    constexpr int kStep = kByBlocks ? K : 1;
    while (dst <= end - kPass * N) {
      Ahead<kPass>(dst);
      (Ahead<kPass>(src), ...);
      Unroll<kPass / kStep>([&](int) __attribute__((always_inline)) {
        Step<kStep, false>(op, dst, src...);
        dst += kStep * N;
        ((src += kStep * N), ...);
      });
      KeepInRegister(dst);
      (KeepInRegister(src), ...);
    }
  }
  template <int kPass, class T>
  static ZOV_INLINE void Ahead(const T* p) {
    constexpr int kDistance = 4096;
    constexpr int kBytes = kPass * N * static_cast<int>(sizeof(T));
    for (int i = 0; i < kBytes; i += 64) {
      __builtin_prefetch(reinterpret_cast<const char*>(p) + kDistance + i);
    }
  }

  // Each byte is stored once, in pieces that depend on the destination and the length alone, so
  // that an operation on the same array straight afterwards is served from the store queue.
  static ZOV_INLINE void All(Op& op, Index n, Dst* dst, const Src*... src) {
    Dst* const end = dst + n;
    if (n > kUnalignedLimit) {
      const std::uintptr_t bytes = BytesToAlign<kAlignment>(dst);
      if (bytes != 0 && bytes % sizeof(Dst) == 0) {
        const Index head = static_cast<Index>(bytes / sizeof(Dst));
        Few(op, head, dst, src...);
        dst += head;
        ((src += head), ...);
      }
      constexpr Index kFar = (4 << 20) / static_cast<int>(sizeof(Dst));
      if (n >= kFar) [[unlikely]]
        Far(op, end, dst, src...);
    }
    // AVX instructions read a memory operand at any address; older ones need an aligned one.
    constexpr bool kTwoLoops = kLevel < Level::avx && DstLanes::kBytes % 16 == 0 &&
                               ((Lanes<Src>::kBytes % 16 == 0) && ...);
    if constexpr (kTwoLoops) {
      if (IsAligned<16>(dst) && (IsAligned<16>(src) && ...)) {
        Main<true>(op, end, dst, src...);
      } else {
        Main<false>(op, end, dst, src...);
      }
    } else {
      Main<false>(op, end, dst, src...);
    }
    if (dst < end) Few(op, end - dst, dst, src...);
  }
};

// dst[i] = op(src[i]...) for i = 0 to n-1. A source may equal dst.
template <class Op, class Dst, class... Src>
ZOV_INLINE void Map(Op& op, int n, Dst* dst, const Src*... src) {
  Elementwise<false, Op, Dst, Src...>::All(op, n, dst, src...);
}
template <class Op, class Dst, class... Src>
ZOV_INLINE void Map(const Op& op, int n, Dst* dst, const Src*... src) {
  Elementwise<false, const Op, Dst, Src...>::All(op, n, dst, src...);
}
// srcDst[i] = op(src[i]..., srcDst[i])
template <class Op, class Dst, class... Src>
ZOV_INLINE void MapInPlace(const Op& op, int n, Dst* srcDst, const Src*... src) {
  Elementwise<true, const Op, Dst, Src...>::All(op, n, srcDst, src...);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

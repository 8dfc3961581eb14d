// The first position at which a sequence occurs in an array. Two elements of the sequence are
// compared at a whole vector of positions at once, and the rest only where both agree.
#include "core/checks.h"
#include "core/entries.h"
#include "core/simd.h"
#include "signal/vector/memory_access.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

template <class Word>
ZOV_INLINE bool EndsEqual(const Zov8u* a, const Zov8u* b, std::int64_t bytes) {
  constexpr int kBytes = sizeof(Word);
  return Get<Word>(a) == Get<Word>(b) &&
         Get<Word>(a + bytes - kBytes) == Get<Word>(b + bytes - kBytes);
}

ZOV_INLINE bool Equal16(const Zov8u* a, const Zov8u* b) {
  return MoveMask(Vec128<std::int8_t>::Load(a) == Vec128<std::int8_t>::Load(b)) == 0xFFFF;
}

bool EqualBytes(const void* pA, const void* pB, std::int64_t bytes) {
  const Zov8u* a = static_cast<const Zov8u*>(pA);
  const Zov8u* b = static_cast<const Zov8u*>(pB);
  if (bytes < 4) return EndsEqual<Zov16u>(a, b, bytes);
  if (bytes < 8) return EndsEqual<Zov32u>(a, b, bytes);
  if (bytes < 16) return EndsEqual<std::uint64_t>(a, b, bytes);
  for (std::int64_t i = 0; i + 16 < bytes; i += 16) {
    if (!Equal16(a + i, b + i)) return false;
  }
  return Equal16(a + bytes - 16, b + bytes - 16);
}

// The sequence and the two of its elements that are compared at every position: the first, and the
// last that differs from it, as runs of one value are common in data.
template <class T>
struct Needle {
  const T* elements;
  int length;
  int second;

  ZOV_INLINE Needle(const T* pFind, int lenFind)
      : elements(pFind), length(lenFind), second(lenFind - 1) {
    while (second > 0 && pFind[second] == pFind[0]) --second;
    if (second == 0) second = lenFind - 1;
  }

  ZOV_INLINE bool OccursAt(const T* p) const {
    return length <= 2 || EqualBytes(p, elements, std::int64_t{length} * int{sizeof(T)});
  }
};

// Elements at a run of positions, kBytes wide.
template <class T, int kBytes>
struct Run {
  using V = Vec<T, (kBytes < 16 ? 16 : kBytes) / static_cast<int>(sizeof(T))>;
  static constexpr int kPositions = kBytes / static_cast<int>(sizeof(T));

  static ZOV_INLINE V Load(const T* p) {
    if constexpr (kBytes == 8) {
      return As<T>(Half{Half::Native{Get<std::int64_t>(p), 0}});
    } else {
      return V::Load(p);
    }
  }
};

// One bit at the first byte of each position.
template <class T, int N>
ZOV_INLINE unsigned PositionBits(Vec<T, N> hits) {
  const unsigned bits = MoveMask(As<std::int8_t>(hits));
  return sizeof(T) == 2 ? bits & 0x55555555U : bits;
}

template <class T, bool kSingle, int kBytes>
struct Search {
  using R = Run<T, kBytes>;
  using V = typename R::V;
  using Hits = typename V::Mask;

  const T* src;
  const Needle<T>& needle;
  V first = V::Broadcast(needle.elements[0]);
  V second = V::Broadcast(needle.elements[needle.second]);

  ZOV_INLINE Hits HitsAt(int position) const {
    const Hits hits = R::Load(src + position) == first;
    if constexpr (kSingle) {
      return hits;
    } else {
      return hits & (R::Load(src + position + needle.second) == second);
    }
  }

  // The first occurrence among the hits of the run at `position`, or -1.
  ZOV_INLINE int Resolve(int position, Hits hits) const {
    unsigned bits = PositionBits(hits);
    if constexpr (kBytes == 8) bits &= 0xFF;
    for (; bits != 0; bits &= bits - 1) {
      const int at = position + __builtin_ctz(bits) / static_cast<int>(sizeof(T));
      if (kSingle || needle.OccursAt(src + at)) return at;
    }
    return -1;
  }

  // Looks at the positions below `end`, at least one run of them.
  ZOV_INLINE int Below(int end) const {
    constexpr int kStep = R::kPositions;
    int position = 0;
    if constexpr (kBytes == kIntVectorBytes) {
      for (; end - position >= 4 * kStep; position += 4 * kStep) {
        const Hits a = HitsAt(position), b = HitsAt(position + kStep);
        const Hits c = HitsAt(position + 2 * kStep), d = HitsAt(position + 3 * kStep);
        if (PositionBits((a | b) | (c | d)) == 0) [[likely]]
          continue;
        int found = Resolve(position, a);
        if (found < 0) found = Resolve(position + kStep, b);
        if (found < 0) found = Resolve(position + 2 * kStep, c);
        if (found < 0) found = Resolve(position + 3 * kStep, d);
        if (found >= 0) return found;
      }
    }
    for (; end - position >= kStep; position += kStep) {
      const int found = Resolve(position, HitsAt(position));
      if (found >= 0) return found;
    }
    // The last run reaches back over positions that are known to fail.
    return position < end ? Resolve(end - kStep, HitsAt(end - kStep)) : -1;
  }
};

// By runs as wide as the positions below `end` allow, so that no load leaves the array.
template <class T, bool kSingle, int kBytes = kIntVectorBytes>
ZOV_INLINE int FindBelow(int end, const T* src, const Needle<T>& needle) {
  if (end >= kBytes / static_cast<int>(sizeof(T))) {
    return Search<T, kSingle, kBytes>{src, needle}.Below(end);
  }
  if constexpr (kBytes > 8) {
    return FindBelow<T, kSingle, kBytes / 2>(end, src, needle);
  } else {
    for (int position = 0; position < end; ++position) {
      if (src[position] != needle.elements[0]) continue;
      if (kSingle || (src[position + needle.second] == needle.elements[needle.second] &&
                      needle.OccursAt(src + position))) {
        return position;
      }
    }
    return -1;
  }
}

template <class T>
ZOV_INLINE ZovStatus Find(const T* pSrc, int len, const T* pFind, int lenFind, int* pIndex) {
  if (AnyNull(pSrc, pFind, pIndex)) return zovStsNullPtrErr;
  if (len < 0 || lenFind < 0) return zovStsFindLenErr;
  *pIndex = -1;
  if (len == 0 || lenFind == 0 || lenFind > len) return zovStsNoErr;
  const Needle<T> needle(pFind, lenFind);
  const int end = len - lenFind + 1;
  *pIndex =
      lenFind == 1 ? FindBelow<T, true>(end, pSrc, needle) : FindBelow<T, false>(end, pSrc, needle);
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsFind_8u(const Zov8u* pSrc, int len, const Zov8u* pFind, int lenFind, int* pIndex) {
  return Find(pSrc, len, pFind, lenFind, pIndex);
}

ZovStatus zovsFind_16u(const Zov16u* pSrc, int len, const Zov16u* pFind, int lenFind, int* pIndex) {
  return Find(pSrc, len, pFind, lenFind, pIndex);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Images as rows of bytes, and the work buffer that a resize carves its tables and lines from.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/level.h"
#include "core/simd.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Steps may have any sign and need not be multiples of the element, so elements go through Load and
// Store.
template <class Byte>
struct ImageView {
  Byte* origin;
  std::ptrdiff_t step;

  ZOV_INLINE Byte* Row(std::int64_t y) const { return origin + y * step; }
};
using SourceView = ImageView<const Zov8u>;
using TargetView = ImageView<Zov8u>;

// The row or column that stands for one that may lie outside the image.
ZOV_INLINE int InImage(std::int64_t place, int extent) {
  return place < 0 ? 0 : place < extent ? static_cast<int>(place) : extent - 1;
}

template <class T>
ZOV_INLINE T LoadAs(const void* p) {
  T value;
  __builtin_memcpy(&value, p, sizeof(T));
  return value;
}

template <class T>
ZOV_INLINE void StoreAs(void* p, T value) {
  __builtin_memcpy(p, &value, sizeof(T));
}

ZOV_INLINE void CopyBytes(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  using Bytes = VecI<std::uint8_t>;
  std::int64_t i = 0;
  for (; i + Bytes::kBytes <= bytes; i += Bytes::kBytes) Bytes::Load(src + i).Store(dst + i);
  for (; i < bytes; ++i) dst[i] = src[i];
}

// Asks for a cache line. The processor's own prefetch starts anew with each row and each page.
ZOV_INLINE void Prefetch(const Zov8u* p) {
  _mm_prefetch(reinterpret_cast<const char*>(p), _MM_HINT_T0);
}

// Writes rows of vectors, by way of the cache whatever the size of the image: processors whose
// stores wait for memory in a few line buffers gain by that. Prefetches the place `ahead` bytes on,
// where the next row goes.
class RowWriter {
 public:
  RowWriter(Zov8u* row, std::ptrdiff_t ahead) : row_(row), ahead_(ahead) {}

  template <class V>
  ZOV_INLINE void Write(V v, std::int64_t i) const {
    Prefetch(row_ + i + ahead_);
    v.Store(row_ + i);
  }
  Zov8u* At(std::int64_t i) const { return row_ + i; }

 private:
  Zov8u* row_;
  std::ptrdiff_t ahead_;
};

// Writes the first `count` bytes of a vector, fewer than all.
template <class V>
ZOV_INLINE void StoreFirst(V v, Zov8u* dst, std::int64_t count) {
  __m128i rest = _mm_setzero_si128();
#if defined(__AVX__)
  if constexpr (V::kBytes == 32) {
    const __m256i bits = (__m256i)v.v;
    rest = _mm256_castsi256_si128(bits);
    if ((count & 16) != 0) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), rest);
      dst += 16;
      rest = _mm256_extractf128_si256(bits, 1);
    }
  }
#endif
  if constexpr (V::kBytes == 16) rest = (__m128i)v.v;
  if ((count & 8) != 0) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), rest);
    dst += 8;
    rest = _mm_srli_si128(rest, 8);
  }
  if ((count & 4) != 0) {
    StoreAs(dst, _mm_cvtsi128_si32(rest));
    dst += 4;
    rest = _mm_srli_si128(rest, 4);
  }
  int word = _mm_cvtsi128_si32(rest);
  if ((count & 2) != 0) {
    StoreAs(dst, static_cast<std::int16_t>(word));
    dst += 2;
    word >>= 16;
  }
  if ((count & 1) != 0) *dst = static_cast<Zov8u>(word);
}

// Hands out consecutive regions, each on the boundary that the level's vectors like. The size that
// callers are told to provide covers the rounding of the first one.
class WorkArena {
 public:
  explicit WorkArena(Zov8u* workBuffer)
      : next_(workBuffer + BytesToAlign<kFloatVectorBytes>(workBuffer)) {}

  template <class T>
  ZOV_INLINE T* Take(std::int64_t count) {
    Zov8u* const region = next_;
    const std::int64_t bytes = count * static_cast<std::int64_t>(sizeof(T));
    next_ += (bytes + kFloatVectorBytes - 1) / kFloatVectorBytes * kFloatVectorBytes;
    return reinterpret_cast<T*>(region);
  }

 private:
  Zov8u* next_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

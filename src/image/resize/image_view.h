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

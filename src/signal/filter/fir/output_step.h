// How samples of a family become elements of its delay buffer, and sums become outputs.
#pragma once

#include "core/simd.h"
#include "signal/filter/fir/state.h"
#include "signal/vector/copy.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

ZOV_INLINE void Widen(const Zov32f* from, Zov32f* to, std::int64_t count) {
  zovCopyBytes(from, to, count * static_cast<std::int64_t>(sizeof(Zov32f)));
}
ZOV_INLINE void Widen(const Zov64f* from, Zov64f* to, std::int64_t count) {
  zovCopyBytes(from, to, count * static_cast<std::int64_t>(sizeof(Zov64f)));
}
void Widen(const Zov32f* from, Zov64f* to, std::int64_t count);
void Widen(const Zov16s* from, Zov64f* to, std::int64_t count);

// Output steps: sums to outputs, `count` of them.
struct OutputCopy {
  template <class T>
  ZOV_INLINE void operator()(const T* sums, T* to, std::int64_t count) const {
    Widen(sums, to, count);
  }
};
struct OutputNarrow {
  void operator()(const Zov64f* sums, Zov32f* to, std::int64_t count) const;
};
// Times `factor`, rounded and saturated. Ties go away from zero at levels 0 and 1 and to the even
// neighbour above. There the conversion goes through 32 bits, and what does not fit them becomes
// -32768, whatever its sign.
struct OutputScale {
  Zov64f factor;
  explicit OutputScale(int scaleFactor);
  void operator()(const Zov64f* sums, Zov16s* to, std::int64_t count) const;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

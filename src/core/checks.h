// The argument checks that every primitive begins with, in the order of the contract.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class... Pointer>
ZOV_INLINE bool AnyNull(const Pointer*... pointers) {
  return ((pointers == nullptr) || ...);
}

// Pointers first, then the length: the checks of every primitive without parameters of its own.
template <class... Pointer>
ZOV_INLINE ZovStatus CheckArrays(int len, const Pointer*... pointers) {
  if (AnyNull(pointers...)) return zovStsNullPtrErr;
  if (len < 1) return zovStsSizeErr;
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The frame of a vector maths kernel: checks, floating-point environment, blocks, and the way out
// of line for the elements that a block's arithmetic does not serve.
#pragma once

#include "core/checks.h"
#include "signal/vm/lanes.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Masks all floating-point exceptions for its lifetime and leaves no flag behind.
class MathEnvironment {
 public:
  ZOV_INLINE MathEnvironment() : saved_(_mm_getcsr()) {
    if (Changed()) _mm_setcsr(saved_ | kMasks);
  }
  ZOV_INLINE ~MathEnvironment() {
    // No arithmetic of the kernel may move below this.
    asm volatile("" ::: "memory");
    if (Changed()) {
      _mm_setcsr(saved_);
    } else {
      // The inexact flag is the caller's; the others are cleared.
      const unsigned now = _mm_getcsr();
      const unsigned clean = (now & ~(kFlags | kInexact)) | (saved_ & kInexact);
      if (now != clean) _mm_setcsr(clean);
    }
    unsigned short x87;
    asm volatile("fnstsw %0" : "=a"(x87));
    if (x87 & kX87Flags) asm volatile("fnclex");
  }
  MathEnvironment(const MathEnvironment&) = delete;
  MathEnvironment& operator=(const MathEnvironment&) = delete;

 private:
  static constexpr unsigned kMasks = 0x1F80;
  static constexpr unsigned kFlags = 0x1F;
  static constexpr unsigned kInexact = 0x20;
  static constexpr unsigned kX87Flags = 0x80FF;

  ZOV_INLINE bool Changed() const { return (saved_ & kMasks) != kMasks; }

  const unsigned saved_;
};

// Elements of a block, at most. One test for special elements serves the whole of it.
constexpr int kVmBlock = kLevel == Level::sse2 ? 8 : 16;

// Vectors of a block: two, as more leave too few registers for most kernels, unless the kernel says
// that it is short.
template <class Kernel>
constexpr int VectorsOf() {
  if constexpr (requires { Kernel::kIsShort; }) return kVmBlock / F::kLanes;
  return 2;
}

// The operands of a kernel: an array or a value.
struct ArrayOperand {
  const float* p;
  ZOV_INLINE F Load(int i) const { return F::Load(p + i); }
  ZOV_INLINE float At(int i) const { return p[i]; }
};
struct ConstantOperand {
  float x;
  ZOV_INLINE F Load(int) const { return Splat(x); }
  ZOV_INLINE float At(int) const { return x; }
};

// A kernel is a type with
//   F Evaluate(I& special, F... x)          the result of ordinary elements; sets the sign bit of
//                                           the other lanes in `special`
//   float Special(ZovStatus&, float... x)   the result of one of the others; out of line
//   kIsShort                                if it needs few registers
// and, where elements outside whole ordinary blocks take another formula, F EvaluateAlone(F x).

// A copy of up to one block of an operand, padded with ones, which are ordinary for every kernel.
struct BlockCopy {
  alignas(32) float x[kVmBlock];

  template <class Operand>
  ZOV_INLINE BlockCopy(Operand operand, int first, int count) {
    for (int i = 0; i < count; ++i) x[i] = operand.At(first + i);
    for (int i = count; i < kVmBlock; ++i) x[i] = 1.0F;
  }
};

template <class Kernel, class... X>
ZOV_INLINE F EvaluateAlone(I& special, X... x) {
  const F y = Kernel::Evaluate(special, x...);
  if constexpr (requires { Kernel::EvaluateAlone(x...); }) {
    return Kernel::EvaluateAlone(x...);
  } else {
    return y;
  }
}

template <class Kernel, class... Copy>
ZOV_INLINE void RunCopies(ZovStatus& status, float* dst, int count, const Copy&... copy) {
  alignas(32) float result[kVmBlock];
  unsigned specials = 0;
  for (int i = 0; i < kVmBlock; i += F::kLanes) {
    I special = I::Zero();
    const F y = EvaluateAlone<Kernel>(special, F::LoadAligned(copy.x + i)...);
    y.StoreAligned(result + i);
    specials |= MoveMask(special) << i;
  }
#pragma GCC unroll 1
  for (int i = 0; i < count; ++i) {
    dst[i] = (specials >> i) & 1 ? Kernel::Special(status, copy.x[i]...) : result[i];
  }
}

// A block with special elements, or the rest of an array: the ordinary lanes come from the vector
// all the same, so that a result does not depend on its neighbours; the others follow one by one.
template <class Kernel, class... Operand>
ZOV_NOINLINE void RunCarefully(ZovStatus& status, float* dst, int first, int count,
                               Operand... operand) {
  RunCopies<Kernel>(status, dst + first, count, BlockCopy(operand, first, count)...);
}

// For a kernel that leaves the floating-point environment to the caller.
struct CallersEnvironment {};

template <class Kernel, class Environment = MathEnvironment, class... Operand>
ZOV_INLINE ZovStatus RunBlocks(float* dst, int len, Operand... operand) {
  [[maybe_unused]] const Environment environment{};
  ZovStatus status = zovStsNoErr;
  constexpr int kVectors = VectorsOf<Kernel>();
  constexpr int kBlock = kVectors * F::kLanes;
  int i = 0;
  for (; i <= len - kBlock; i += kBlock) {
    I special = I::Zero();
    F y[kVectors];
    for (int v = 0; v < kVectors; ++v) {
      y[v] = Kernel::Evaluate(special, operand.Load(i + v * F::kLanes)...);
    }
    if (MoveMask(special) != 0) [[unlikely]] {
      RunCarefully<Kernel>(status, dst, i, kBlock, operand...);
    } else {
      for (int v = 0; v < kVectors; ++v) y[v].Store(dst + i + v * F::kLanes);
    }
  }
  // The rest of the array: whole vectors while they are ordinary.
  for (; i <= len - F::kLanes; i += F::kLanes) {
    I special = I::Zero();
    const F y = EvaluateAlone<Kernel>(special, operand.Load(i)...);
    if (MoveMask(special) != 0) [[unlikely]]
      break;
    y.Store(dst + i);
  }
  if (i < len) RunCarefully<Kernel>(status, dst, i, len - i, operand...);
  return status;
}

template <class Kernel>
ZovStatus RunUnary(const float* pSrc, float* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pDst, pSrc)) return status;
  return RunBlocks<Kernel>(pDst, len, ArrayOperand{pSrc});
}

template <class Kernel>
ZovStatus RunBinary(const float* pSrc1, const float* pSrc2, float* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pDst, pSrc1, pSrc2)) return status;
  return RunBlocks<Kernel>(pDst, len, ArrayOperand{pSrc1}, ArrayOperand{pSrc2});
}

template <class Kernel>
ZovStatus RunWithConstant(const float* pSrc, float val, float* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pDst, pSrc)) return status;
  return RunBlocks<Kernel>(pDst, len, ArrayOperand{pSrc}, ConstantOperand{val});
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

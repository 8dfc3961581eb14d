// Rounding to integers, up and down.
#include "signal/vm/frame.h"
#include "signal/vm/kernel_table.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

#if defined(__AVX__)
template <int kMode>
ZOV_INLINE F RoundTo(F x) {
  return {_mm256_round_ps(x.v, kMode | _MM_FROUND_NO_EXC)};
}
#elif defined(__SSE4_1__)
template <int kMode>
ZOV_INLINE F RoundTo(F x) {
  return {_mm_round_ps(x.v, kMode | _MM_FROUND_NO_EXC)};
}
#else
// Adding 2^23 to the magnitude rounds it to an integer; what rounded the wrong way is put right by
// one. From 2^23 on every number is an integer, and a NaN is only made quiet.
template <int kMode>
ZOV_INLINE F RoundTo(F x) {
  const F integer = Splat(0x1p23F);
  const F one = Splat(1.0F);
  const F a = Abs(x);
  const F y = ((a + integer) - integer) | SignOf(x);
  const F right = kMode == _MM_FROUND_TO_NEG_INF ? y - FromBits((y > x) & Bits(one))
                                                 : y + FromBits((y < x) & Bits(one));
  return Select(a < integer, right | SignOf(x), x + F::Zero());
}
#endif

struct Ceil {
  static ZOV_INLINE F Evaluate(I&, F x) { return RoundTo<_MM_FROUND_TO_POS_INF>(x); }
  static float Special(ZovStatus&, float x) { return x; }
};
struct Floor {
  static ZOV_INLINE F Evaluate(I&, F x) { return RoundTo<_MM_FROUND_TO_NEG_INF>(x); }
  static float Special(ZovStatus&, float x) { return x; }
};

// The length comes first here, the pointers after it.
template <class Kernel>
ZovStatus RunRounding(const float* pSrc, float* pDst, int len) {
  if (len < 1) return zovStsSizeErr;
  if (AnyNull(pDst, pSrc)) return zovStsNullPtrErr;
  return RunBlocks<Kernel>(pDst, len, ArrayOperand{pSrc});
}

}  // namespace

const ZovVmKernelRow<UnaryKernel> kVmCeil = {
    RunRounding<Ceil>, RunRounding<Ceil>, RunRounding<Ceil>, 0, 0, 0};
const ZovVmKernelRow<UnaryKernel> kVmFloor = {
    RunRounding<Floor>, RunRounding<Floor>, RunRounding<Floor>, 0, 0, 0};

}  // namespace zov::ZOV_LEVEL_NAMESPACE

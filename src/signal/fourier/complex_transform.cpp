// Chooses the route of a complex transform: small kernel, one pass with the reversal fused,
// reversal and then in place, or the large routes.
#include "signal/fourier/complex_transform.h"

#include "signal/fourier/bit_reversal.h"
#include "signal/fourier/four_step.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/radix_four.h"
#include "signal/fourier/small_kernels.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// The stages run in the destination where they can, else in the work buffer; the last stage writes
// the destination. Lengths without work come here only to another array, or with some of the stack.
template <class T, bool kInverse>
void OnePass(const T* src, T* dst, int c, const FftSpec<T>& spec, T* work, bool scaled) {
  constexpr Form kForm = kInverse ? Form::exchanged : Form::interleaved;
  const bool withoutWork = c >= FftLimitsOf<T>(kLevel).inPlaceFrom;
  T* const target = src != dst && (withoutWork || IsAligned<32>(dst)) ? dst : work;
  FirstPassReversed<T, kInverse>(src, target, c, spec.bitRevTable);
  if (scaled) {
    AllStages<T, kForm, true>(target, dst, c, spec.cplxTwiddles, spec.scale);
  } else {
    AllStages<T, kForm, false>(target, dst, c, spec.cplxTwiddles, spec.scale);
  }
}

// Above the baseline shorter arrays go in one pass.
template <class T>
void Reverse(const T* src, T* dst, int c, const FftSpec<T>& spec, T* work) {
  constexpr const FftLimits& kLimits = FftLimitsOf<T>(kLevel);
  if (c >= kLimits.tiledFrom) {
    TiledReversal<T>{src, dst, c, kLimits.logTile, spec.bitRevTable, work}.Run();
  } else if (kLevel != Level::sse2 || c >= kLinesFrom<T>) {
    ReverseByLines(src, dst, c);
  } else {
    ReverseBySwapList(src, dst, c, spec.bitRevTable);
  }
}

// Behind the reversal at the baseline, where the layout stays interleaved.
template <class T, bool kInverse>
void BaselineInPlace(T* array, int c, const FftSpec<T>& spec, T* work, bool scaled) {
  constexpr const FftLimits& kLimits = FftLimitsOf<T>(Level::sse2);
  const BaselineTransform<T, kInverse> transform = {spec, work, scaled};
  if (c <= kLimits.lastWhole) {
    transform.Kernel(array, c, spec.cplxTwiddles);
    transform.ScaleIfAsked(array, c);
  } else if (SplitOf(kLimits, c).rows == 0) {
    transform.Blocks(array, c);
  } else {
    transform.FourStep(array, c, spec.rowTwiddles, spec.colTwiddles);
  }
}

}  // namespace

template <class T, bool kInverse>
void ComplexTransform(const T* src, T* dst, const FftSpec<T>& spec, T* work) {
  constexpr const FftLimits& kLimits = FftLimitsOf<T>(kLevel);
  constexpr Form kForm = kInverse ? Form::exchanged : Form::interleaved;
  const bool scaled = (kInverse ? spec.scaleInv : spec.scaleFwd) != 0;
  const int c = spec.order - 1;
  if (spec.order <= kLimits.lastSmall) {
    const SmallKernels<T>& kernels = KernelsOf<T>();
    if constexpr (kInverse) {
      (scaled ? kernels.complexInverseScaled : kernels.complexInverse)[spec.order](src, dst,
                                                                                   spec.scale);
    } else {
      (scaled ? kernels.forwardScaled : kernels.forward)[spec.order](src, dst, spec.scale);
    }
    return;
  }
  if constexpr (kLevel != Level::sse2) {
    // From another array the first pass is the reversal into the destination, so lengths without
    // work and without a split go this way too.
    const bool whole = c <= kLimits.lastWhole || SplitOf(kLimits, c).rows == 0;
    const bool onStack = spec.order <= kLimits.lastOnStack && work != nullptr;
    if (whole && (c < kLimits.inPlaceFrom || src != dst || onStack)) {
      return OnePass<T, kInverse>(src, dst, c, spec, work, scaled);
    }
  }
  Reverse(src, dst, c, spec, work);
  if constexpr (kLevel == Level::sse2) {
    BaselineInPlace<T, kInverse>(dst, c, spec, work, scaled);
  } else if (c <= kLimits.lastWhole || SplitOf(kLimits, c).rows == 0) {
    TransformInPlace<T, kInverse, kForm>(dst, c, spec.cplxTwiddles, scaled, spec.scale);
  } else {
    const FourStep<T, kInverse> fourStep = {spec, work, scaled};
    fourStep.template Run<kForm>(dst, c, spec.rowTwiddles);
  }
}

template void ComplexTransform<Zov32f, false>(const Zov32f*, Zov32f*, const FftSpec<Zov32f>&,
                                              Zov32f*);
template void ComplexTransform<Zov32f, true>(const Zov32f*, Zov32f*, const FftSpec<Zov32f>&,
                                             Zov32f*);
template void ComplexTransform<Zov64f, false>(const Zov64f*, Zov64f*, const FftSpec<Zov64f>&,
                                              Zov64f*);
template void ComplexTransform<Zov64f, true>(const Zov64f*, Zov64f*, const FftSpec<Zov64f>&,
                                             Zov64f*);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The real transforms: checks, work memory, the complex transform and the split, and the form of
// the spectrum.
#include "signal/fourier/real_fft.h"

#include "core/checks.h"
#include "core/entries.h"
#include "core/memory.h"
#include "core/simd.h"
#include "signal/fourier/complex_transform.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/real_split.h"
#include "signal/fourier/small_kernels.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

enum class Spectrum { ccs, packed, running };

template <class T>
ZOV_INLINE ZovStatus CheckCall(const T* src, const T* dst, const FftSpec<T>* spec) {
  if (spec == nullptr) return zovStsNullPtrErr;
  if (spec->idTag != FftTypes<T>::kTag) return zovStsContextMatchErr;
  if (AnyNull(src, dst)) return zovStsNullPtrErr;
  return zovStsNoErr;
}

// Work of one call: the caller's, aligned, or a block of its own.
template <class T>
struct WorkMemory {
  T* work = nullptr;
  Zov8u* owned = nullptr;

  ZOV_INLINE ZovStatus Take(Zov8u* given, int bytes) {
    if (bytes <= 0) return zovStsNoErr;
    if (given == nullptr) {
      given = owned = zovAllocAligned(bytes);
      if (owned == nullptr) return zovStsMemAllocErr;
    }
    work =
        reinterpret_cast<T*>((reinterpret_cast<std::uintptr_t>(given) + 63) & ~std::uintptr_t{63});
    return zovStsNoErr;
  }
  ZOV_INLINE void Release() const {
    if (owned != nullptr) zovFreeAligned(owned);
  }
};

// From the packed spectrum in place.
template <Spectrum kSpectrum, class T>
ZOV_INLINE void FinishSpectrum(T* dst, Index length) {
  if constexpr (kSpectrum == Spectrum::ccs) {
    if constexpr (sizeof(T) == 8) {
      // Whole vectors, which a transform in place may load at once without waiting for the cache.
      if (length > 1) {
        const Vec128<T> first = {{dst[0], 0}};
        const Vec128<T> last = {{dst[1], 0}};
        first.Store(dst);
        last.Store(dst + length);
        return;
      }
    }
    if (length > 1) {
      dst[length] = dst[1];
      dst[length + 1] = 0;
    }
    dst[1] = 0;
  }
  if constexpr (kSpectrum == Spectrum::running) {
    if (length < 2) return;
    const T last = dst[1];
    for (Index i = 1; i < length - 1; ++i) dst[i] = dst[i + 1];
    dst[length - 1] = last;
  }
}

// The level without work on the whole-length route still transforms short arrays by one pass, with
// a buffer on the stack: reversal and the kernel in place take a tenth longer.
template <class T>
inline constexpr int kLastOnStack = FftLimitsOf<T>(kLevel).lastOnStack;

template <class T>
ZOV_NOINLINE void ForwardOnStack(T* array, const FftSpec<T>& spec) {
  T work[1 << kLastOnStack<T>];
  ComplexTransform<T, false>(array, array, spec, work);
}

template <class T>
ZOV_NOINLINE void InverseOnStack(const T* src, T last, T* dst, const FftSpec<T>& spec) {
  T values[1 << kLastOnStack<T>];
  InverseSplit(src, last, values, spec);
  ComplexTransform<T, true>(values, dst, spec, nullptr);
}

template <Spectrum kSpectrum, class T>
ZovStatus Forward(const T* src, T* dst, const FftSpec<T>* spec, Zov8u* pWork) {
  if (const ZovStatus status = CheckCall(src, static_cast<const T*>(dst), spec)) return status;
  const Index length = Index{1} << spec->order;
  if (spec->order <= kLastRealKernel<T>) {
    const SmallKernels<T>& kernels = KernelsOf<T>();
    (spec->scaleFwd != 0 ? kernels.forwardScaled : kernels.forward)[spec->order](src, dst,
                                                                                 spec->scale);
    FinishSpectrum<kSpectrum>(dst, length);
    return zovStsNoErr;
  }
  WorkMemory<T> memory;
  if (const ZovStatus status = memory.Take(pWork, spec->workBytes)) return status;
  const bool onStack = src == dst && spec->order <= kLastOnStack<T>;
  if constexpr (kLastOnStack<T> != 0) {
    if (onStack) ForwardOnStack(dst, *spec);
  }
  if (!onStack) ComplexTransform<T, false>(src, dst, *spec, memory.work);
  ForwardSplit(dst, *spec);
  FinishSpectrum<kSpectrum>(dst, length);
  memory.Release();
  return zovStsNoErr;
}

template <Spectrum kSpectrum, class T>
ZovStatus Inverse(const T* src, T* dst, const FftSpec<T>* spec, Zov8u* pWork) {
  if (const ZovStatus status = CheckCall(src, static_cast<const T*>(dst), spec)) return status;
  const Index length = Index{1} << spec->order;
  constexpr bool kRunning = kSpectrum == Spectrum::running;
  if (spec->order <= kLastRealKernel<T>) {
    const SmallKernels<T>& kernels = KernelsOf<T>();
    const RealInverseKernel<T> kernel =
        (spec->scaleInv != 0 ? kernels.realInverseScaled : kernels.realInverse)[spec->order];
    if constexpr (kRunning) {
      T packed[1 << kLastRealKernel<T>];
      packed[0] = src[0];
      for (Index i = 2; i < length; ++i) packed[i] = src[i - 1];
      kernel(packed, src[length - 1], dst, spec->scale);
    } else {
      kernel(src, length > 1 ? src[kSpectrum == Spectrum::packed ? 1 : length] : T{}, dst,
             spec->scale);
    }
    return zovStsNoErr;
  }
  WorkMemory<T> memory;
  if (const ZovStatus status = memory.Take(pWork, spec->workBytes)) return status;
  const T last = src[kSpectrum == Spectrum::packed ? 1 : length - kRunning];
  // In one pass the transform goes on best from the work buffer into the destination; the other
  // routes work in place.
  constexpr const FftLimits& kLimits = FftLimitsOf<T>(kLevel);
  const int c = spec->order - 1;
  const bool onePass = spec->order > kLimits.lastSmall && c <= kLimits.lastWhole &&
                       c < kLimits.inPlaceFrom && IsAligned<32>(dst);
  T* const values = onePass ? memory.work : dst;
  if constexpr (kRunning) {
    // To the packed form, from the end, as the destination may be the source.
    for (Index i = length - 1; i >= 2; --i) values[i] = src[i - 1];
    values[0] = src[0];
    InverseSplit(static_cast<const T*>(values), last, values, *spec);
  } else {
    if constexpr (kLastOnStack<T> != 0) {
      if (spec->order <= kLastOnStack<T>) {
        InverseOnStack(src, last, dst, *spec);
        return zovStsNoErr;
      }
    }
    InverseSplit(src, last, values, *spec);
  }
  ComplexTransform<T, true>(values, dst, *spec, memory.work);
  memory.Release();
  return zovStsNoErr;
}

template <class T>
ZovStatus SpecSizes(int order, int flag, std::int64_t* specBytes, std::int64_t* initBytes,
                    std::int64_t* workBytes) {
  const bool complete = !AnyNull(specBytes, initBytes, workBytes);
  FftSizes sizes;
  const ZovStatus status = FftSpecSizes<T>(kLevel, order, flag, complete ? &sizes : nullptr);
  if (status != zovStsNoErr) return status;
  *specBytes = sizes.spec;
  *initBytes = sizes.init;
  *workBytes = sizes.work;
  return zovStsNoErr;
}

}  // namespace

ZovStatus FftSpecSizes_32f(int order, int flag, int, std::int64_t* specBytes,
                           std::int64_t* initBytes, std::int64_t* workBytes) {
  return SpecSizes<Zov32f>(order, flag, specBytes, initBytes, workBytes);
}
ZovStatus FftSpecSizes_64f(int order, int flag, int, std::int64_t* specBytes,
                           std::int64_t* initBytes, std::int64_t* workBytes) {
  return SpecSizes<Zov64f>(order, flag, specBytes, initBytes, workBytes);
}

ZovStatus FftSpecInit_32f(ZovFFTSpec_R_32f** spec, int order, int flag, int hint, Zov8u* block,
                          Zov8u* temporary) {
  return FftSpecInit<Zov32f>(kLevel, spec, order, flag, hint, block, temporary);
}
ZovStatus FftSpecInit_64f(ZovFFTSpec_R_64f** spec, int order, int flag, int hint, Zov8u* block,
                          Zov8u* temporary) {
  return FftSpecInit<Zov64f>(kLevel, spec, order, flag, hint, block, temporary);
}

ZovStatus FftWorkBytes_32f(const ZovFFTSpec_R_32f* spec, int* bytes) {
  if (AnyNull(spec, bytes)) return zovStsNullPtrErr;
  if (spec->idTag != FftTypes<Zov32f>::kTag) return zovStsContextMatchErr;
  *bytes = spec->workBytes < 1 ? 0 : spec->workBytes + 64;
  return zovStsNoErr;
}

ZovStatus FftFwdToPacked_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                             Zov8u* work) {
  return Forward<Spectrum::packed>(src, dst, spec, work);
}
ZovStatus FftFwdToPacked_64f(const Zov64f* src, Zov64f* dst, const ZovFFTSpec_R_64f* spec,
                             Zov8u* work) {
  return Forward<Spectrum::packed>(src, dst, spec, work);
}
ZovStatus FftInvFromPacked_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                               Zov8u* work) {
  return Inverse<Spectrum::packed>(src, dst, spec, work);
}
ZovStatus FftInvFromPacked_64f(const Zov64f* src, Zov64f* dst, const ZovFFTSpec_R_64f* spec,
                               Zov8u* work) {
  return Inverse<Spectrum::packed>(src, dst, spec, work);
}
ZovStatus FftFwdToRunning_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                              Zov8u* work) {
  return Forward<Spectrum::running>(src, dst, spec, work);
}
ZovStatus FftInvFromRunning_32f(const Zov32f* src, Zov32f* dst, const ZovFFTSpec_R_32f* spec,
                                Zov8u* work) {
  return Inverse<Spectrum::running>(src, dst, spec, work);
}

ZovStatus zovsFFTInitAlloc_R_32f(ZovFFTSpec_R_32f** ppSpec, int order, int flag, int hint) {
  return FftInitAlloc<Zov32f>(kLevel, ppSpec, order, flag, hint);
}
ZovStatus zovsFFTInitAlloc_R_64f(ZovFFTSpec_R_64f** ppSpec, int order, int flag, int hint) {
  return FftInitAlloc<Zov64f>(kLevel, ppSpec, order, flag, hint);
}
ZovStatus zovsFFTFree_R_32f(ZovFFTSpec_R_32f* pSpec) { return FftFree<Zov32f>(pSpec); }
ZovStatus zovsFFTFree_R_64f(ZovFFTSpec_R_64f* pSpec) { return FftFree<Zov64f>(pSpec); }

ZovStatus zovsFFTFwd_RToCCS_32f(const Zov32f* pSrc, Zov32f* pDst, const ZovFFTSpec_R_32f* pSpec,
                                Zov8u* pBuffer) {
  return Forward<Spectrum::ccs>(pSrc, pDst, pSpec, pBuffer);
}
ZovStatus zovsFFTFwd_RToCCS_64f(const Zov64f* pSrc, Zov64f* pDst, const ZovFFTSpec_R_64f* pSpec,
                                Zov8u* pBuffer) {
  return Forward<Spectrum::ccs>(pSrc, pDst, pSpec, pBuffer);
}
ZovStatus zovsFFTInv_CCSToR_32f(const Zov32f* pSrc, Zov32f* pDst, const ZovFFTSpec_R_32f* pSpec,
                                Zov8u* pBuffer) {
  return Inverse<Spectrum::ccs>(pSrc, pDst, pSpec, pBuffer);
}
ZovStatus zovsFFTInv_CCSToR_64f(const Zov64f* pSrc, Zov64f* pDst, const ZovFFTSpec_R_64f* pSpec,
                                Zov8u* pBuffer) {
  return Inverse<Spectrum::ccs>(pSrc, pDst, pSpec, pBuffer);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

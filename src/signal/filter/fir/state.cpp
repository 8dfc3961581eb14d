// Making and releasing of FIR states, and what a caller may read and write in them.
#include "signal/filter/fir/state.h"

#include "core/checks.h"
#include "core/entries.h"
#include "core/memory.h"
#include "signal/fourier/lanes.h"
#include "signal/fourier/real_fft.h"
#include "signal/vector/copy.h"
#include "signal/vector/fill.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// Sizes of the regions of a block, in order; each region begins on a cache line.
class Layout {
 public:
  std::int64_t Take(std::int64_t bytes) {
    const std::int64_t at = size_;
    size_ += (bytes + 63) & ~std::int64_t{63};
    return at;
  }
  std::int64_t size() const { return size_; }

 private:
  std::int64_t size_ = 0;
};

struct FftPlan {
  int order = 0;
  std::int64_t length = 0;  // N; 0: no FFT route
  std::int64_t specBytes = 0, initBytes = 0, workBytes = 0;
};

// N is above 2 L and at most 4 L.
int FftOrder(std::int64_t tapsLen) {
  int k = 2;
  while ((std::int64_t{1} << k) <= tapsLen) ++k;
  return k + 1;
}

// The copies of the taps in pTaps: their distance in elements, and elements of all together.
template <class Family>
std::int64_t TapStride(std::int64_t length) {
  if constexpr (kIsWide<Family>) return (length + 2) & ~std::int64_t{1};
  if constexpr (kLevel >= Level::avx) return (length + 16) & ~std::int64_t{7};
  return (length + 6) & ~std::int64_t{3};
}
template <class Family>
std::int64_t TapElements(std::int64_t length) {
  if constexpr (kLevel < Level::ssse3) return length;
  if constexpr (kIsWide<Family>) return 2 * TapStride<Family>(length);
  if constexpr (kLevel >= Level::avx) return 9 * TapStride<Family>(length);
  return 4 * TapStride<Family>(length);
}

// From level 2 on the reversed taps have copies behind them, each a lane further, for sums of
// several outputs over one vector of samples: as rows of a table for 32f taps at levels 5 and 6.
// FirSums takes its taps from the front copy: that is faster by measure, and the zeros of the
// others would spread a sample that is not finite to outputs in which it has no tap.
template <class Family, class T>
void StoreTaps(const T* pTaps, FirRecord<T>& state) {
  const std::int64_t length = state.tapsLen;
  T* const reversed = state.pTaps;
  for (std::int64_t i = 0; i < length; ++i) reversed[i] = pTaps[length - 1 - i];
  if constexpr (kLevel >= Level::ssse3) {
    const std::int64_t stride = TapStride<Family>(length);
    const std::int64_t all = TapElements<Family>(length);
    zovZeroBytes(reversed + length, (all - length) * static_cast<std::int64_t>(sizeof(T)));
    if constexpr (kIsWide<Family>) {
      for (std::int64_t i = 0; i < length; ++i) reversed[stride + 1 + i] = reversed[i];
    } else if constexpr (kLevel >= Level::avx) {
      T* const rows = reversed + stride;
      for (std::int64_t i = 0; i < length; ++i) {
        for (int lane = 0; lane < 8; ++lane) rows[8 * (i + lane) + lane] = reversed[i];
      }
    } else {
      for (int copy = 1; copy < 4; ++copy) {
        for (std::int64_t i = 0; i < length; ++i) reversed[copy * (stride + 1) + i] = reversed[i];
      }
    }
  }
  if constexpr (kHasBroadcast<Family>) {
    constexpr std::int64_t kLanes = Lanes<T>::kLanes;
    for (std::int64_t i = 0; i < kLanes * length; ++i) state.pTapsBroadcast[i] = pTaps[i / kLanes];
  }
}

// Public delay lines begin with the newest sample, the buffer with the oldest.
template <class T, class S>
void FillDelayLine(const S* pDlyLine, FirRecord<T>& state) {
  const std::int64_t length = state.dlyLen;
  state.dlyIndex = 0;
  if (pDlyLine == nullptr) {
    if (length > 0) {
      zovZeroBytes(state.pDlyLine, length * static_cast<std::int64_t>(sizeof(T)));
    }
    return;
  }
  for (std::int64_t i = 0; i < length; ++i) {
    state.pDlyLine[length - 1 - i] = static_cast<T>(pDlyLine[i]);
  }
}

// Carves the block and fills the record but for its FFT object.
template <class Family, class S>
ZovStatus MakeBlock(FirRecord<typename Family::Tap>** ppState, const typename Family::Tap* pTaps,
                    int tapsLen, const S* pDlyLine, const FftPlan& plan, Zov8u** ppSpec,
                    Zov8u** ppInit) {
  using T = typename Family::Tap;
  using Record = FirRecord<T>;
  constexpr std::int64_t kElement = sizeof(T);
  constexpr bool kWide = kIsWide<Family>;
  const std::int64_t length = tapsLen;

  const auto takeBroadcast = [=](Layout& layout) {
    return kHasBroadcast<Family> ? layout.Take(Lanes<T>::kLanes * length * kElement) : 0;
  };
  Layout layout;
  layout.Take(sizeof(Record));
  const std::int64_t taps = layout.Take(TapElements<Family>(length) * kElement);
  // The live part and what one direct pass stages behind it.
  constexpr std::int64_t kDelayTimes = !kWide && kLevel >= Level::avx ? 8 : 3;
  const std::int64_t delay = layout.Take(kDelayTimes * length * kElement + (kWide ? 32 : 16));
  std::int64_t broadcast = 0, reserved = 0, spec = 0, init = 0;
  if constexpr (kWide) {
    broadcast = takeBroadcast(layout);
    reserved = layout.Take(16);
    spec = layout.Take(plan.specBytes);
    init = layout.Take(plan.initBytes);
  } else {
    reserved = layout.Take(16);
    broadcast = takeBroadcast(layout);
  }
  const std::int64_t spectrum = layout.Take(plan.length * kElement);
  const std::int64_t fftBuf = layout.Take(plan.workBytes);
  const std::int64_t fftWork = layout.Take(plan.length * kElement);
  const std::int64_t scratch = layout.Take(kWide ? kChunk * kElement + 16 : kBlock * kElement);
  const std::int64_t stage = kWide ? layout.Take(kBlock * std::int64_t{sizeof(Zov32f)}) : 0;

  Zov8u* const block = zovAllocAligned(layout.size());
  if (block == nullptr) return zovStsMemAllocErr;
  Record& state = *reinterpret_cast<Record*>(block);
  state = {};
  const auto at = [block](std::int64_t offset) { return reinterpret_cast<T*>(block + offset); };
  state.idCtx = Family::kTag;
  state.pTaps = at(taps);
  state.pDlyLine = at(delay);
  state.tapsLen = state.dlyLen = tapsLen;
  constexpr std::int64_t kRound = !kWide && kLevel >= Level::avx ? 7 : 3;
  state.directLimit = static_cast<Zov32s>(((length + kRound) & ~kRound) + 1);
  state.fftLen = -1;
  if (kHasBroadcast<Family>) state.pTapsBroadcast = at(broadcast);
  if (plan.length > 0) state.pTapsSpectrum = at(spectrum);
  state.pFFTWork = at(fftWork);
  if (plan.workBytes > 0) state.pFFTBuf = block + fftBuf;
  state.fftBufSize = static_cast<Zov32s>(plan.workBytes);
  state.pScratch = at(scratch);
  state.pReservedArea = block + reserved;
  state.ownsMemory = 1;
  if (kWide) state.pStage = block + stage;
  StoreTaps<Family>(pTaps, state);
  FillDelayLine(pDlyLine, state);
  *ppSpec = block + spec;
  *ppInit = block + init;
  *ppState = &state;
  return zovStsNoErr;
}

// The packed spectrum of the taps in natural order.
template <class T>
ZovStatus TransformTaps(const T* pTaps, const FftPlan& plan, FirRecord<T>& state) {
  T* const spectrum = state.pTapsSpectrum;
  const std::int64_t tapBytes = state.tapsLen * static_cast<std::int64_t>(sizeof(T));
  zovCopyBytes(pTaps, spectrum, tapBytes);
  zovZeroBytes(spectrum + state.tapsLen,
               plan.length * static_cast<std::int64_t>(sizeof(T)) - tapBytes);
  if constexpr (sizeof(T) == 4) {
    return FftFwdToPacked_32f(spectrum, spectrum, state.pFFTSpec, state.pFFTBuf);
  } else {
    return FftFwdToPacked_64f(spectrum, spectrum, state.pFFTSpec, state.pFFTBuf);
  }
}

ZovStatus Make32f(ZovFIRState** ppState, const Zov32f* pTaps, int tapsLen, const Zov32f* pDlyLine) {
  FftPlan plan;
  ZovFFTSpec_R_32f* spec = nullptr;
  if (tapsLen >= kFftTaps<Fir32f>) {
    plan.order = FftOrder(tapsLen);
    plan.length = std::int64_t{1} << plan.order;
    // The object is its own status: without one the next call says so.
    zovsFFTInitAlloc_R_32f(&spec, plan.order, ZOV_FFT_SCALE_INV, 0);
    int workBytes = 0;
    if (const ZovStatus status = FftWorkBytes_32f(spec, &workBytes)) return status;
    plan.workBytes = workBytes;
  }
  FirRecord<Zov32f>* state;
  Zov8u* unused;
  ZovStatus status = MakeBlock<Fir32f>(&state, pTaps, tapsLen, pDlyLine, plan, &unused, &unused);
  if (status == zovStsNoErr) {
    if (spec != nullptr) {
      state->pFFTSpec = spec;
      state->fftLen = static_cast<Zov32s>(plan.length);
      status = TransformTaps(pTaps, plan, *state);
    }
    if (status == zovStsNoErr) {
      *ppState = state;
      return zovStsNoErr;
    }
    zovFreeAligned(state);
  }
  if (spec != nullptr) zovsFFTFree_R_32f(spec);
  return status;
}

// The FFT object lies in the block; a filter that has none goes the direct route.
template <class Family, class S>
ZovStatus MakeWide(ZovFIRState** ppState, const Zov64f* pTaps, int tapsLen, const S* pDlyLine) {
  FftPlan plan;
  if (tapsLen >= kFftTaps<Family>) {
    plan.order = FftOrder(tapsLen);
    if (FftSpecSizes_64f(plan.order, ZOV_FFT_SCALE_INV, 0, &plan.specBytes, &plan.initBytes,
                         &plan.workBytes) == zovStsNoErr) {
      plan.length = std::int64_t{1} << plan.order;
    } else {
      plan = {};
    }
  }
  FirRecord<Zov64f>* state;
  Zov8u* specBlock;
  Zov8u* initBlock;
  const ZovStatus status =
      MakeBlock<Family>(&state, pTaps, tapsLen, pDlyLine, plan, &specBlock, &initBlock);
  if (status != zovStsNoErr) return status;
  if (plan.length > 0) {
    if (FftSpecInit_64f(&state->pFFTSpec, plan.order, ZOV_FFT_SCALE_INV, 0, specBlock, initBlock) ==
            zovStsNoErr &&
        TransformTaps(pTaps, plan, *state) == zovStsNoErr) {
      state->fftLen = static_cast<Zov32s>(plan.length);
    }
  }
  *ppState = state;
  return zovStsNoErr;
}

template <class Family>
ZovStatus Make(ZovFIRState** ppState, const typename Family::Tap* pTaps, int tapsLen,
               const typename Family::Sample* pDlyLine) {
  if (AnyNull(ppState, pTaps)) return zovStsNullPtrErr;
  if (tapsLen < 1) return zovStsFirLenErr;
  *ppState = nullptr;  // what a failure leaves
  if constexpr (kIsWide<Family>) {
    return MakeWide<Family>(ppState, pTaps, tapsLen, pDlyLine);
  } else {
    return Make32f(ppState, pTaps, tapsLen, pDlyLine);
  }
}

template <class Family>
ZovStatus Free(ZovFIRState* pState) {
  if (pState == nullptr) return zovStsNullPtrErr;
  FirRecord<typename Family::Tap>* const state = FirRecordOf<Family>(pState);
  if (state == nullptr) return zovStsContextMatchErr;
  if (state->ownsMemory == 0) return zovStsNoErr;
  if (state->pFFTSpec != nullptr) {
    if constexpr (kIsWide<Family>) {
      zovsFFTFree_R_64f(state->pFFTSpec);
    } else {
      zovsFFTFree_R_32f(state->pFFTSpec);
    }
  }
  zovFreeAligned(state);
  return zovStsNoErr;
}

template <class Family>
ZovStatus GetDelayLine(const ZovFIRState* pState, typename Family::Sample* pDlyLine) {
  if (AnyNull(pState, pDlyLine)) return zovStsNullPtrErr;
  const FirRecord<typename Family::Tap>* const state = FirRecordOf<Family>(pState);
  if (state == nullptr) return zovStsContextMatchErr;
  const std::int64_t length = state->dlyLen;
  const typename Family::Tap* const live = state->pDlyLine + state->dlyIndex;
  for (std::int64_t i = 0; i < length; ++i) {
    pDlyLine[i] = static_cast<typename Family::Sample>(live[length - 1 - i]);
  }
  return zovStsNoErr;
}

template <class Family>
ZovStatus SetDelayLine(ZovFIRState* pState, const typename Family::Sample* pDlyLine) {
  if (pState == nullptr) return zovStsNullPtrErr;
  FirRecord<typename Family::Tap>* const state = FirRecordOf<Family>(pState);
  if (state == nullptr) return zovStsContextMatchErr;
  FillDelayLine(pDlyLine, *state);
  return zovStsNoErr;
}

}  // namespace

ZovStatus zovsFIRInitAlloc_32f(ZovFIRState** ppState, const Zov32f* pTaps, int tapsLen,
                               const Zov32f* pDlyLine) {
  return Make<Fir32f>(ppState, pTaps, tapsLen, pDlyLine);
}
ZovStatus zovsFIRInitAlloc_64f(ZovFIRState** ppState, const Zov64f* pTaps, int tapsLen,
                               const Zov64f* pDlyLine) {
  return Make<Fir64f>(ppState, pTaps, tapsLen, pDlyLine);
}
ZovStatus zovsFIRInitAlloc64f_32f(ZovFIRState** ppState, const Zov64f* pTaps, int tapsLen,
                                  const Zov32f* pDlyLine) {
  return Make<Fir64fOn32f>(ppState, pTaps, tapsLen, pDlyLine);
}
ZovStatus zovsFIRInitAlloc64f_16s(ZovFIRState** ppState, const Zov64f* pTaps, int tapsLen,
                                  const Zov16s* pDlyLine) {
  return Make<Fir64fOn16s>(ppState, pTaps, tapsLen, pDlyLine);
}

ZovStatus zovsFIRFree_32f(ZovFIRState* pState) { return Free<Fir32f>(pState); }
ZovStatus zovsFIRFree_64f(ZovFIRState* pState) { return Free<Fir64f>(pState); }
ZovStatus zovsFIRFree64f_32f(ZovFIRState* pState) { return Free<Fir64fOn32f>(pState); }
ZovStatus zovsFIRFree64f_16s(ZovFIRState* pState) { return Free<Fir64fOn16s>(pState); }

ZovStatus zovsFIRGetTaps_32f(const ZovFIRState* pState, Zov32f* pTaps) {
  if (AnyNull(pState, pTaps)) return zovStsNullPtrErr;
  const FirRecord<Zov32f>* const state = FirRecordOf<Fir32f>(pState);
  if (state == nullptr) return zovStsContextMatchErr;
  for (std::int64_t i = 0; i < state->tapsLen; ++i) pTaps[i] = state->pTaps[state->tapsLen - 1 - i];
  return zovStsNoErr;
}

ZovStatus zovsFIRGetDlyLine_32f(const ZovFIRState* pState, Zov32f* pDlyLine) {
  return GetDelayLine<Fir32f>(pState, pDlyLine);
}
ZovStatus zovsFIRGetDlyLine_64f(const ZovFIRState* pState, Zov64f* pDlyLine) {
  return GetDelayLine<Fir64f>(pState, pDlyLine);
}
ZovStatus zovsFIRGetDlyLine64f_32f(const ZovFIRState* pState, Zov32f* pDlyLine) {
  return GetDelayLine<Fir64fOn32f>(pState, pDlyLine);
}

ZovStatus zovsFIRSetDlyLine_32f(ZovFIRState* pState, const Zov32f* pDlyLine) {
  return SetDelayLine<Fir32f>(pState, pDlyLine);
}
ZovStatus zovsFIRSetDlyLine_64f(ZovFIRState* pState, const Zov64f* pDlyLine) {
  return SetDelayLine<Fir64f>(pState, pDlyLine);
}
ZovStatus zovsFIRSetDlyLine64f_32f(ZovFIRState* pState, const Zov32f* pDlyLine) {
  return SetDelayLine<Fir64fOn32f>(pState, pDlyLine);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

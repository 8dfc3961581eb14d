// Execution of FIR filters: the route of a call, its blocks, the direct pass and overlap-save.
#include "core/checks.h"
#include "core/entries.h"
#include "signal/filter/fir/output_step.h"
#include "signal/filter/fir/state.h"
#include "signal/filter/fir/sums.h"
#include "signal/fourier/real_fft.h"
#include "signal/vector/copy.h"
#include "signal/vector/fill.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

ZovStatus Forward(const Zov32f* from, FirRecord<Zov32f>& state) {
  return FftFwdToPacked_32f(from, state.pFFTWork, state.pFFTSpec, state.pFFTBuf);
}
ZovStatus Forward(const Zov64f* from, FirRecord<Zov64f>& state) {
  return FftFwdToPacked_64f(from, state.pFFTWork, state.pFFTSpec, state.pFFTBuf);
}
ZovStatus TimesTaps(FirRecord<Zov32f>& state) {
  return MulPacked_32f(state.pTapsSpectrum, state.pFFTWork, state.fftLen);
}
ZovStatus TimesTaps(FirRecord<Zov64f>& state) {
  return MulPacked_64f(state.pTapsSpectrum, state.pFFTWork, state.fftLen);
}
ZovStatus Inverse(FirRecord<Zov32f>& state) {
  return FftInvFromPacked_32f(state.pFFTWork, state.pFFTWork, state.pFFTSpec, state.pFFTBuf);
}
ZovStatus Inverse(FirRecord<Zov64f>& state) {
  return FftInvFromPacked_64f(state.pFFTWork, state.pFFTWork, state.pFFTSpec, state.pFFTBuf);
}

template <class Family, class Output>
class Filter {
  using T = typename Family::Tap;
  using S = typename Family::Sample;

 public:
  ZOV_INLINE Filter(FirRecord<T>& record, const Output& output) : state(record), out(output) {}

  ZovStatus Run(const S* pSrc, S* pDst, int len) const {
    if (pSrc == pDst) {
      return kConverts<Family> ? RunInPlaceConverting(pDst, len) : RunInPlace(pDst, len);
    }
    if (TakesFft(len)) return OverlapSave(pSrc, pDst, len);
    if constexpr (kConverts<Family>) {
      DirectChunks(pSrc, pDst, len);
    } else {
      DirectPass(pSrc, pDst, len);
    }
    return zovStsNoErr;
  }

 private:
  bool TakesFft(int len) const { return len >= kFftSamples && state.fftLen > 0; }

  // Each block goes by what remains behind it: the last ones are always direct.
  ZovStatus RunInPlace(S* pSrcDst, int len) const {
    S* const results = reinterpret_cast<S*>(state.pScratch);
    while (len > 0) {
      const int block = len < kBlock ? len : kBlock;
      len -= block;
      if (TakesFft(len)) {
        if (const ZovStatus status = OverlapSave(pSrcDst, results, block)) return status;
      } else {
        DirectPass(pSrcDst, results, block);
      }
      CopySamples(results, pSrcDst, block);
      pSrcDst += block;
    }
    return zovStsNoErr;
  }

  // Here the whole call goes one way.
  ZovStatus RunInPlaceConverting(S* pSrcDst, int len) const {
    const bool takesFft = TakesFft(len);
    const int most = takesFft ? kFftBlock : kBlock;
    // The block scratch with the staging area behind it.
    S* const results = reinterpret_cast<S*>(state.pScratch);
    S* const stage = reinterpret_cast<S*>(state.pStage);
    while (len > 0) {
      const int block = len < most ? len : most;
      if (takesFft) {
        if (const ZovStatus status = OverlapSave(pSrcDst, results, block)) return status;
        CopySamples(results, pSrcDst, block);
      } else {
        CopySamples(pSrcDst, stage, block);
        DirectChunks(stage, pSrcDst, block);
      }
      len -= block;
      pSrcDst += block;
    }
    return zovStsNoErr;
  }

  static void CopySamples(const S* from, S* to, int count) {
    zovCopyBytes(from, to, count * static_cast<std::int64_t>(sizeof(S)));
  }

  // B, whose live part the pass takes over.
  T* TakeDelayLine() const {
    T* const live = state.pDlyLine + state.dlyIndex;
    state.dlyIndex = 0;
    return live;
  }

  void DirectChunks(const S* pSrc, S* pDst, int len) const {
    for (std::int64_t done = 0; done < len; done += kChunk) {
      const std::int64_t left = len - done;
      DirectPass(pSrc + done, pDst + done, left < kChunk ? static_cast<int>(left) : kChunk);
    }
  }

  // The replicated taps serve short filters; of long ones the plain taps take less of the cache.
  FirTaps<T> TapsFor([[maybe_unused]] int len) const {
    bool broadcast = kHasBroadcast<Family>;
    if (!kIsWide<Family>) {
      broadcast = broadcast && state.tapsLen <= 31;
    } else if (!kConverts<Family> && kLevel >= Level::sse4) {
      broadcast = state.tapsLen < 16 || len < 512;
    }
    return {state.pTaps, broadcast ? state.pTapsBroadcast : nullptr, state.tapsLen};
  }

  // Outputs from samples that are in the delay buffer.
  void Sums(const FirTaps<T>& taps, const T* x, S* pDst, int len) const {
    if constexpr (kConverts<Family>) {
      FirSums(taps, x, state.pScratch, len);
      out(state.pScratch, pDst, len);
    } else {
      FirSums(taps, x, pDst, len);
    }
  }

  void DirectPass(const S* pSrc, S* pDst, int len) const {
    T* const live = TakeDelayLine();
    const int tapsLen = state.tapsLen;
    const FirTaps<T> taps = TapsFor(len);
    if (len <= state.directLimit) {
      Widen(pSrc, live + tapsLen, len);
      Sums(taps, live + 1, pDst, len);
      zovCopyBytes(live + len, state.pDlyLine, tapsLen * static_cast<std::int64_t>(sizeof(T)));
      return;
    }
    // As many outputs as need the delay line, then the others from the source itself.
    const int first = state.directLimit - 1;
    Widen(pSrc, live + tapsLen, state.directLimit);
    Sums(taps, live + 1, pDst, first);
    Widen(pSrc + len - tapsLen, state.pDlyLine, tapsLen);
    const S* const from = pSrc + first - tapsLen + 1;
    if constexpr (kConverts<Family>) {
      SumsOfWidened(taps, from, pDst + first, len - first);
    } else {
      FirSums(taps, from, pDst + first, len - first);
    }
  }

  // Widens each sample once, into a window that stays in the nearest cache. With more taps than
  // half of it, which only filters without a spectrum have here, all samples go at once: they and
  // their history are fewer than those of a chunk.
  void SumsOfWidened(const FirTaps<T>& taps, const S* pSrc, S* pDst, int len) const {
    constexpr int kWindow = 1024;
    alignas(64) T window[kChunk];
    const int history = state.tapsLen - 1;
    const int most = history <= kWindow / 2 ? kWindow - history : len;
    for (int done = 0; done < len; done += most) {
      const int count = len - done < most ? len - done : most;
      Widen(pSrc + done, window, count + history);
      Sums(taps, window, pDst + done, count);
    }
  }

  // The spectrum's way through the filter; the transform comes from `from`.
  ZovStatus Transform(const T* from) const {
    if (const ZovStatus status = Forward(from, state)) return status;
    if (const ZovStatus status = TimesTaps(state)) return status;
    return Inverse(state);
  }

  void ClearWorkFrom(int begin) const {
    zovZeroBytes(state.pFFTWork + begin,
                 (state.fftLen - begin) * static_cast<std::int64_t>(sizeof(T)));
  }

  ZovStatus OverlapSave(const S* pSrc, S* pDst, int len) const {
    T* const work = state.pFFTWork;
    const int length = state.fftLen;
    const int tapsLen = state.tapsLen;
    const int history = tapsLen - 1;
    const int outputs = length - history;  // of one transform
    const T* const live = TakeDelayLine();
    CopyElements(live + 1, work, history);
    if (len <= outputs) {
      Widen(pSrc, work + history, len);
      CopyElements(work + len - 1, state.pDlyLine, tapsLen);
      if (history + len < length) ClearWorkFrom(history + len);
      if (const ZovStatus status = Transform(work)) return status;
      out(work + history, pDst, len);
      return zovStsNoErr;
    }
    Widen(pSrc, work + history, outputs);
    if (const ZovStatus status = Transform(work)) return status;
    out(work + history, pDst, outputs);
    Widen(pSrc + len - tapsLen, state.pDlyLine, tapsLen);
    for (std::int64_t done = outputs; done < len; done += outputs) {
      const S* const from = pSrc + done - history;
      const std::int64_t left = len - done;
      const int samples = static_cast<int>(left + history < length ? left + history : length);
      const T* whole = work;
      if (samples < length) {
        Widen(from, work, samples);
        ClearWorkFrom(samples);
      } else if constexpr (kConverts<Family>) {
        Widen(from, work, length);
      } else {
        whole = from;
      }
      if (const ZovStatus status = Transform(whole)) return status;
      out(work + history, pDst + done, left < outputs ? left : outputs);
    }
    return zovStsNoErr;
  }

  static void CopyElements(const T* from, T* to, int count) {
    zovCopyBytes(from, to, count * static_cast<std::int64_t>(sizeof(T)));
  }

  FirRecord<T>& state;
  const Output& out;
};

template <class Family, class... Argument>
ZOV_INLINE ZovStatus Check(ZovFIRState* pState, const typename Family::Sample* pSrc,
                           const typename Family::Sample* pDst, int numIters) {
  if (const ZovStatus status = CheckArrays(numIters, pState, pSrc, pDst)) return status;
  return FirRecordOf<Family>(pState) == nullptr ? zovStsContextMatchErr : zovStsNoErr;
}

template <class Family, class Output>
ZOV_INLINE ZovStatus Run(const typename Family::Sample* pSrc, typename Family::Sample* pDst,
                         int numIters, ZovFIRState* pState, const Output& output) {
  return Filter<Family, Output>(*FirRecordOf<Family>(pState), output).Run(pSrc, pDst, numIters);
}

}  // namespace

ZovStatus zovsFIR_32f(const Zov32f* pSrc, Zov32f* pDst, int numIters, ZovFIRState* pState) {
  if (const ZovStatus status = Check<Fir32f>(pState, pSrc, pDst, numIters)) return status;
  return Run<Fir32f>(pSrc, pDst, numIters, pState, OutputCopy{});
}

ZovStatus zovsFIR_64f(const Zov64f* pSrc, Zov64f* pDst, int numIters, ZovFIRState* pState) {
  if (const ZovStatus status = Check<Fir64f>(pState, pSrc, pDst, numIters)) return status;
  return Run<Fir64f>(pSrc, pDst, numIters, pState, OutputCopy{});
}

ZovStatus zovsFIR64f_32f(const Zov32f* pSrc, Zov32f* pDst, int numIters, ZovFIRState* pState) {
  if (const ZovStatus status = Check<Fir64fOn32f>(pState, pSrc, pDst, numIters)) return status;
  return Run<Fir64fOn32f>(pSrc, pDst, numIters, pState, OutputNarrow{});
}

ZovStatus zovsFIR64f_16s_Sfs(const Zov16s* pSrc, Zov16s* pDst, int numIters, ZovFIRState* pState,
                             int scaleFactor) {
  if (const ZovStatus status = Check<Fir64fOn16s>(pState, pSrc, pDst, numIters)) return status;
  return Run<Fir64fOn16s>(pSrc, pDst, numIters, pState, OutputScale(scaleFactor));
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

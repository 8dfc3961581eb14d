// The state of a single-rate FIR filter, its families and what they choose by level.
//
// R are the taps in reverse order and B the delay buffer. B[0] to B[L - 1] hold the last L samples
// in the order of time; a call appends new ones behind them, so that an output is the dot product
// y[i] = sum of R[j] B[i + 1 + j]. B[0] itself meets no tap: it is carried for the caller.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"
#include "signal/fourier/spec.h"

// What the states of all families begin with.
struct ZovFIRState {
  Zov32u idCtx;
};

namespace zov::ZOV_LEVEL_NAMESPACE {

template <class T>
struct FirRecord : ZovFIRState {
  T* pTaps;            // reversed; at some levels with shifted copies behind
  T* pDlyLine;         // delay buffer
  Zov32s tapsLen;      // L
  Zov32s directLimit;  // samples that one direct pass stages in the delay buffer
  FftSpec<T>* pFFTSpec;
  T* pTapsSpectrum;   // packed; null where there is no FFT route
  Zov32s fftLen;      // N; -1 where there is no FFT route
  Zov32s dlyIndex;    // where the live part of the delay buffer begins
  T* pTapsBroadcast;  // in natural order, each in all lanes of a vector; null at some levels
  Zov32s dlyLen;      // L
  T* pFFTWork;        // N elements
  Zov8u* pFFTBuf;
  Zov32s fftBufSize;
  T* pScratch;  // outputs of one block
  Zov8u* pReservedArea;
  Zov32s ownsMemory;
  Zov8u* pStage;  // inputs of one block, straight behind pScratch; null with 32f taps
};

// Identity tags spell FI01 and so on. FI03, FI15, FI19, FI27 (multi-rate), FI33 and FI34 (without
// a delay line) and FI21 (32-bit integers) are kept for states that nothing makes.
struct Fir32f {
  using Tap = Zov32f;
  using Sample = Zov32f;
  static constexpr Zov32u kTag = 0x46493031;
};
struct Fir64f {
  using Tap = Zov64f;
  using Sample = Zov64f;
  static constexpr Zov32u kTag = 0x46493133;
};
struct Fir64fOn32f {
  using Tap = Zov64f;
  using Sample = Zov32f;
  static constexpr Zov32u kTag = 0x46493137;
};
struct Fir64fOn16s {
  using Tap = Zov64f;
  using Sample = Zov16s;
  static constexpr Zov32u kTag = 0x46493235;
};

// The families with 64f taps share one way of construction.
template <class Family>
inline constexpr bool kIsWide = sizeof(typename Family::Tap) == 8;
// Samples are widened on the way in, and outputs narrowed.
template <class Family>
inline constexpr bool kConverts = sizeof(typename Family::Tap) != sizeof(typename Family::Sample);

// The FFT route is there from so many taps on, and is taken from so many samples on.
template <class Family>
inline constexpr int kFftTaps = kIsWide<Family>&& kLevel < Level::ssse3 ? 32 : 64;
inline constexpr int kFftSamples = 512;

// Samples of the blocks into which calls are cut.
inline constexpr int kChunk = kLevel >= Level::avx ? 2112 : 2048;  // direct, converting families
inline constexpr int kBlock = 2 * kChunk;                          // in place
inline constexpr int kFftBlock = 4 * kChunk;                       // in place, converting, by FFT

// Whether the level keeps each tap in all lanes of a vector.
template <class Family>
inline constexpr bool kHasBroadcast = kLevel >= (kIsWide<Family> ? Level::sse3 : Level::ssse3);

// The record behind a state of the family; null if the tag is another's.
template <class Family>
ZOV_INLINE FirRecord<typename Family::Tap>* FirRecordOf(ZovFIRState* pState) {
  if (pState->idCtx != Family::kTag) return nullptr;
  return static_cast<FirRecord<typename Family::Tap>*>(pState);
}
template <class Family>
ZOV_INLINE const FirRecord<typename Family::Tap>* FirRecordOf(const ZovFIRState* pState) {
  return FirRecordOf<Family>(const_cast<ZovFIRState*>(pState));
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

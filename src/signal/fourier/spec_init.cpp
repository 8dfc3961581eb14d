// One block holds the record and all tables. The sizes mirror what the initialiser carves.
#include "signal/fourier/spec_init.h"

#include <cmath>

#include "core/memory.h"
#include "signal/fourier/limits.h"
#include "signal/fourier/tables.h"

namespace zov {

namespace {

using common::FftLimits;
using common::FftLimitsOf;
using common::FourStepSplit;
using common::SplitOf;

constexpr std::int64_t RoundUp64(std::int64_t bytes) { return (bytes + 63) & ~std::int64_t{63}; }

template <class P>
P* AlignUp64(P* p) {
  return reinterpret_cast<P*>((reinterpret_cast<std::uintptr_t>(p) + 63) & ~std::uintptr_t{63});
}

bool IsScaleFlag(int flag) {
  return flag == ZOV_FFT_SCALE_FWD || flag == ZOV_FFT_SCALE_INV || flag == ZOV_FFT_SCALE_SQRT ||
         flag == ZOV_FFT_SCALE_NONE;
}

// Chunk of the block route.
constexpr int kLogChunk = 10;

// The route above the limit of one whole kernel: sizes of its tables and buffers, step by step.
template <class T>
void AddLargeSizes(const FftLimits& limits, int c, FftSizes& sizes) {
  constexpr std::int64_t kComplex = 2 * sizeof(T);
  const FourStepSplit split = SplitOf(limits, c);
  const std::int64_t length = std::int64_t{1} << c;
  if (split.rows == 0) {
    if (limits.lanes == 0) {
      sizes.spec += RoundUp64(kComplex * length / 4) + RoundUp64(kComplex * 1025);
    } else {
      sizes.spec += RoundUp64(kComplex * length + kComplex);
    }
    return;
  }
  const std::int64_t rows = std::int64_t{1} << split.rows;
  const int rowOrder = c - split.rows;
  if (rowOrder <= limits.lastWhole) {
    sizes.spec += RoundUp64(kComplex * (std::int64_t{1} << rowOrder) + kComplex);
  } else {
    AddLargeSizes<T>(limits, rowOrder, sizes);
  }
  sizes.spec += RoundUp64(kComplex * rows + kComplex) + kComplex * length;
  sizes.init += RoundUp64(rows + 4) + 4 * kComplex * rows;
  const std::int64_t held = limits.lanes == 0 ? 4 * kComplex * rows : kComplex << split.held;
  if (sizes.work < held) sizes.work = held;
}

template <class T>
std::int64_t TileBytes(const FftLimits& limits, int c) {
  return c < limits.tiledFrom ? 0 : 4 * static_cast<std::int64_t>(sizeof(T)) << 2 * limits.logTile;
}

// What the carving of the block and the builders share.
template <class T>
struct Builder {
  const FftLimits& limits;
  FftSpec<T>& spec;
  UnitRoots<T> roots;
  T* scratch;

  void BuildReversal(int c) const {
    if (limits.lanes == 0) {
      BuildSwapList(spec.bitRevTable, c);
    } else if (c < limits.tiledFrom) {
      BuildReversalTable(spec.bitRevTable, c);
    } else {
      BuildTiledReversalTable(spec.bitRevTable, c, limits.logTile);
    }
  }

  // The transform table of length 2^c at `place`; the place behind it.
  T* BuildTransform(T* place, int c) const {
    const std::int64_t length = std::int64_t{1} << c;
    if (limits.lanes == 0) {
      BuildRadix4Twiddles(place, c, roots);
      return AlignUp64(place + (length / 4 + 1) * 6);
    }
    BuildStageTwiddles(place, c, limits.lanes, roots);
    return AlignUp64(place + 2 * length);
  }

  T* BuildFourStep(T* place, int c, int depth) const {
    const FourStepSplit split = SplitOf(limits, c);
    if (split.rows == 0) {
      spec.cplxTwiddles = place;
      if (limits.lanes != 0) return BuildTransform(place, c);
      place = BuildTransform(place, kLogChunk);
      spec.blockTwiddles = place;
      BuildBlockTwiddles(place, c, roots);
      return AlignUp64(place + (std::int64_t{2} << (c - 2)));
    }
    const int rowOrder = c - split.rows;
    if (rowOrder <= limits.lastWhole) {
      spec.cplxTwiddles = place;
      place = BuildTransform(place, rowOrder);
    } else {
      place = BuildFourStep(place, rowOrder, depth + 1);
    }
    spec.colTwiddles[depth] = place;
    place = BuildTransform(place, split.rows);
    spec.rowTwiddles[depth] = place;
    std::int64_t held;
    if (limits.lanes == 0) {
      BuildSwapList(reinterpret_cast<Zov32s*>(scratch + (std::int64_t{8} << split.rows)),
                    split.rows);
      BuildRowTwiddles(place, c, split.rows, scratch, roots);
      held = static_cast<std::int64_t>(8 * sizeof(T)) << split.rows;
    } else {
      BuildTileTwiddles(place, c, split.rows, split.held, limits.lanes, roots);
      held = static_cast<std::int64_t>(2 * sizeof(T)) << split.held;
    }
    if (spec.workBytes < held) spec.workBytes = static_cast<Zov32s>(held);
    return AlignUp64(place + (std::int64_t{2} << c));
  }
};

template <class T>
void SetScale(FftSpec<T>& spec, int order, int flag) {
  spec.scaleFwd = flag == ZOV_FFT_SCALE_FWD || flag == ZOV_FFT_SCALE_SQRT;
  spec.scaleInv = flag == ZOV_FFT_SCALE_INV || flag == ZOV_FFT_SCALE_SQRT;
  const std::int64_t length = std::int64_t{1} << order;
  if (flag == ZOV_FFT_SCALE_SQRT) {
    spec.scale = static_cast<T>(1.0 / std::sqrt(static_cast<double>(length)));
  } else if (flag != ZOV_FFT_SCALE_NONE) {
    spec.scale = static_cast<T>(1) / static_cast<T>(length);
  }
}

}  // namespace

template <class T>
ZovStatus FftSpecSizes(Level level, int order, int flag, FftSizes* sizes) {
  constexpr std::int64_t kComplex = 2 * sizeof(T);
  if (static_cast<unsigned>(order) > 30) return zovStsFftOrderErr;
  if (sizes == nullptr) return zovStsNullPtrErr;
  if (!IsScaleFlag(flag)) return zovStsFftFlagErr;
  const FftLimits& limits = FftLimitsOf<T>(level);
  if (order > limits.maxOrder) return zovStsFftOrderErr;

  *sizes = {static_cast<std::int64_t>(sizeof(FftSpec<T>)) + 64, 0, 0};
  if (order <= limits.lastReal) return zovStsNoErr;
  const std::int64_t quarter = std::int64_t{1} << (order - 2);
  const std::int64_t splitEntries =
      order < limits.twoLevelFrom
          ? quarter
          : (quarter >> common::kLogFine<T>)+(std::int64_t{1} << common::kLogFine<T>);
  sizes->spec = 2 * RoundUp64(kComplex * splitEntries) + 256;
  if (order > kSineTableOrder) {
    sizes->init = RoundUp64(static_cast<std::int64_t>(sizeof(T)) * (quarter + 1)) + 64;
  }
  if (order <= limits.lastSmall) return zovStsNoErr;

  const int c = order - 1;
  const std::int64_t length = std::int64_t{1} << c;
  sizes->spec += RoundUp64(length / 4 * 4 + 4);
  if (c <= limits.lastWhole) {
    sizes->spec += RoundUp64(kComplex * length + kComplex);
    if (limits.wholeWork) sizes->work = RoundUp64(kComplex * length);
  } else {
    AddLargeSizes<T>(limits, c, *sizes);
    const std::int64_t tiles = TileBytes<T>(limits, c);
    if (sizes->work < tiles) sizes->work = tiles;
  }
  if (sizes->work > 0) sizes->work += 64;
  return zovStsNoErr;
}

template <class T>
ZovStatus FftSpecInit(Level level, FftSpec<T>** result, int order, int flag, int hint, Zov8u* block,
                      Zov8u* temporary) {
  if (result == nullptr || block == nullptr) return zovStsNullPtrErr;
  const FftLimits& limits = FftLimitsOf<T>(level);
  if (order < 0 || order > limits.maxOrder) return zovStsFftOrderErr;

  FftSpec<T>& spec = *reinterpret_cast<FftSpec<T>*>(AlignUp64(block));
  spec = {};
  spec.idTag = FftTypes<T>::kTag;
  spec.order = order;
  spec.hint = hint;
  if (!IsScaleFlag(flag)) {
    spec.idTag = 0;
    return zovStsFftFlagErr;
  }
  SetScale<T>(spec, order, flag);
  if (order <= limits.lastReal) {
    *result = &spec;
    return zovStsNoErr;
  }

  UnitRoots<T> roots = {ConstantQuarterSine<T>(), kSineTableOrder};
  T* scratch = nullptr;
  if (order > kSineTableOrder) {
    if (temporary == nullptr) {
      spec.idTag = 0;
      return zovStsNullPtrErr;
    }
    T* const sine = reinterpret_cast<T*>(AlignUp64(temporary));
    BuildQuarterSine(sine, order);
    roots = {sine, order};
    scratch = AlignUp64(sine + (std::int64_t{1} << (order - 2)) + 1);
  }

  T* place = reinterpret_cast<T*>(AlignUp64(reinterpret_cast<Zov8u*>(&spec) + sizeof(spec)));
  if (order > limits.lastSmall) {
    const int c = order - 1;
    const std::int64_t length = std::int64_t{1} << c;
    const Builder<T> builder = {limits, spec, roots, scratch};
    spec.bitRevTable = reinterpret_cast<Zov32s*>(place);
    builder.BuildReversal(c);
    place = reinterpret_cast<T*>(AlignUp64(spec.bitRevTable + length / 4 + 1));
    if (c <= limits.lastWhole) {
      spec.cplxTwiddles = place;
      place = builder.BuildTransform(place, c);
      if (limits.wholeWork) {
        spec.workBytes =
            static_cast<Zov32s>(RoundUp64(static_cast<std::int64_t>(2 * sizeof(T)) << c));
      }
    } else {
      place = builder.BuildFourStep(place, c, 0);
      const std::int64_t tiles = TileBytes<T>(limits, c);
      if (spec.workBytes < tiles) spec.workBytes = static_cast<Zov32s>(tiles);
    }
  }

  const int logFine = order < limits.twoLevelFrom ? 0 : common::kLogFine<T>;
  const std::int64_t entries =
      logFine == 0 ? std::int64_t{1} << (order - 2)
                   : (std::int64_t{1} << (order - 2 - logFine)) + (std::int64_t{1} << logFine);
  const SplitOrder slots = level == Level::sse2 ? SplitOrder::fromZero
                           : level < Level::avx ? SplitOrder::fromOne
                                                : SplitOrder::exchanged;
  spec.splitFwd = place;
  BuildForwardSplitTable(place, order, logFine, slots, roots);
  spec.splitInv = AlignUp64(place + 2 * entries);
  BuildInverseSplitTable(spec.splitInv, order, logFine, slots, roots);
  *result = &spec;
  return zovStsNoErr;
}

template <class T>
ZovStatus FftInitAlloc(Level level, FftSpec<T>** result, int order, int flag, int hint) {
  if (result == nullptr) return zovStsNullPtrErr;
  FftSizes sizes;
  ZovStatus status = FftSpecSizes<T>(level, order, flag, &sizes);
  if (status != zovStsNoErr) return status;
  *result = nullptr;  // what a failure leaves
  Zov8u* const block = zovAllocAligned(sizes.spec);
  if (block == nullptr) return zovStsMemAllocErr;
  Zov8u* temporary = nullptr;
  if (sizes.init > 0) {
    temporary = zovAllocAligned(sizes.init);
    if (temporary == nullptr) {
      zovFreeAligned(block);
      return zovStsMemAllocErr;
    }
  }
  FftSpec<T>* spec = nullptr;
  status = FftSpecInit<T>(level, &spec, order, flag, hint, block, temporary);
  zovFreeAligned(temporary);
  if (status != zovStsNoErr) {
    zovFreeAligned(block);
    return status;
  }
  spec->ownsBlock = 1;
  spec->blockBase = block;
  *result = spec;
  return zovStsNoErr;
}

template <class T>
ZovStatus FftFree(FftSpec<T>* spec) {
  if (spec == nullptr) return zovStsNullPtrErr;
  if (spec->idTag != FftTypes<T>::kTag) return zovStsContextMatchErr;
  spec->idTag = 0;
  if (spec->ownsBlock == 1) zovFreeAligned(spec->blockBase);
  return zovStsNoErr;
}

#define ZOV_FFT_OBJECTS(T)                                                               \
  template ZovStatus FftSpecSizes<T>(Level, int, int, FftSizes*);                        \
  template ZovStatus FftSpecInit<T>(Level, FftSpec<T>**, int, int, int, Zov8u*, Zov8u*); \
  template ZovStatus FftInitAlloc<T>(Level, FftSpec<T>**, int, int, int);                \
  template ZovStatus FftFree<T>(FftSpec<T>*);
ZOV_FFT_OBJECTS(Zov32f)
ZOV_FFT_OBJECTS(Zov64f)

}  // namespace zov

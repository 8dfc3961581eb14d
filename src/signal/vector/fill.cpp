// The fill and clear kernels as other routines call them, and the plan that bypasses the cache.
#include "signal/vector/fill.h"

#include "signal/vector/fill_kernels.h"
#include "signal/vector/string_instructions.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// Stores the piece of `kBytes` when the remainder has that bit.
template <int kBytes, class T>
ZOV_INLINE Zov8u* PutPiece(Zov8u* dst, std::int64_t rest, T piece) {
  if ((rest & kBytes) == 0) return dst;
  Put(dst, piece);
  return dst + kBytes;
}

}  // namespace

// For what fits a cache of known size, but not a quarter of it. The string store keeps fewer lines
// under way there: at half the cache this takes half its time.
void FillAskingAhead(const void* pPattern, void* pDst, std::int64_t bytes) {
  const Chunk pattern = TwiceIfWider(Half::Load(pPattern));
  Zov8u* dst = static_cast<Zov8u*>(pDst);
  Zov8u* const lastPass = dst + bytes - kPass;
  PutPass<false>(pattern, dst);
  dst += BytesToAlign<Chunk::kBytes>(dst);
  for (; dst < lastPass; dst += kPass) {
    AskForPass(dst, 4096);
    PutPass<true>(pattern, dst);
  }
  PutPass<false>(pattern, lastPass);
}

// Ordinary stores once more, but by the instruction that knows how much is to come. The stores of
// the ends come first, as those after it would wait for it, and only where needed, as it waits for
// them.
void FillByStringStore(std::uint64_t bits, Zov8u* dst, std::int64_t bytes) {
  Zov8u* const end = dst + bytes;
  if (!IsAligned<8>(end)) Put(end - 8, bits);
  if (const std::uintptr_t head = BytesToAlign<64>(dst)) {
    PutPass<false>(PatternOf(bits), dst);
    dst += head;
  }
  StringStore(dst, bits, static_cast<std::uint64_t>(end - dst) / 8);
}

void FillLarge(Half pattern, Zov8u* dst, std::int64_t bytes, std::int64_t floor, int elementBytes) {
  const bool aligned =
      (reinterpret_cast<std::uintptr_t>(dst) & static_cast<std::uintptr_t>(elementBytes - 1)) == 0;
  if (!aligned) {
    FillPasses<false>(TwiceIfWider(pattern), dst, bytes);
    return;
  }
  const std::int32_t cacheBytes = CacheToCompare(bytes, floor);
  if (ExceedsCache(kLevel, bytes, cacheBytes)) {
    FillStreaming(&pattern, dst, bytes);
  } else if (kLevel >= Level::avx && cacheBytes > 0 && bytes > cacheBytes / 4) {
    FillAskingAhead(&pattern, dst, bytes);
  } else if (kLevel >= Level::avx && elementBytes <= 8) {
    FillByStringStore(static_cast<std::uint64_t>(pattern.v[0]), dst, bytes);
  } else {
    FillPasses<true>(TwiceIfWider(pattern), dst, bytes);
  }
}

void FillStreaming(const void* pPattern, void* pDst, std::int64_t bytes) {
  const Half half = Half::Load(pPattern);
  const Chunk pattern = TwiceIfWider(half);
  Zov8u* dst = static_cast<Zov8u*>(pDst);
  Zov8u* const end = dst + bytes;
  for (int i = 0; i < 64; i += Chunk::kBytes) pattern.Store(dst + i);
  dst += BytesToAlign<64>(dst);
  for (; end - dst >= 64; dst += 64) {
    for (int i = 0; i < 64; i += Chunk::kBytes) pattern.Stream(dst + i);
  }
  const std::int64_t rest = end - dst;
  const std::uint64_t bits = static_cast<std::uint64_t>(half.v[0]);
  if ((rest & 32) != 0) {
    half.Store(dst);
    half.Store(dst + 16);
    dst += 32;
  }
  if ((rest & 16) != 0) {
    half.Store(dst);
    dst += 16;
  }
  dst = PutPiece<8>(dst, rest, bits);
  dst = PutPiece<4>(dst, rest, static_cast<Zov32u>(bits));
  dst = PutPiece<2>(dst, rest, static_cast<Zov16u>(bits));
  PutPiece<1>(dst, rest, static_cast<Zov8u>(bits));
  _mm_sfence();
}

void zovFillBytes(Zov8u value, void* pDst, std::int64_t count) {
  Fill<1>(PatternOf(value), pDst, count, kFloors.fill);
}

void zovFill16(const void* pValue, void* pDst, std::int64_t count) {
  Fill<2>(PatternOf(Get<Zov16u>(pValue)), pDst, 2 * count, kFloors.fill);
}

void zovFill32(Zov32u value, void* pDst, std::int64_t count) {
  Fill<4>(PatternOf(value), pDst, 4 * count, kFloors.fill);
}

void zovFill64(const void* pValue, void* pDst, std::int64_t count) {
  Fill<8>(PatternOf(Get<std::uint64_t>(pValue)), pDst, 8 * count, kFloors.fill);
}

void zovFill128(const void* pValue, void* pDst, std::int64_t count) {
  Fill<16>(TwiceIfWider(Half::Load(pValue)), pDst, 16 * count, kFloors.fill);
}

void zovZeroBytes(void* pDst, std::int64_t bytes) {
  Fill<1>(Chunk::Zero(), pDst, bytes, kFloors.clear);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

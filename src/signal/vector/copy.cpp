// The copy kernel as other routines call it, its plans for large sizes, and the copy primitives.
#include "signal/vector/copy.h"

#include "core/checks.h"
#include "core/entries.h"
#include "signal/vector/copy_kernels.h"
#include "signal/vector/string_instructions.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

// Reads one word of every second cache line, so that the block is on its way when the copy comes.
ZOV_INLINE void Touch(const Zov8u* p, std::int64_t bytes) {
  for (std::int64_t i = 0; i < bytes; i += 128) {
    const Zov32u word = Get<Zov32u>(p + i);
    asm volatile("" ::"r"(word));
  }
}

// The string move by units of T, on which source and destination agree: the units lie between the
// odd bytes at the start and at the end.
template <class T>
ZOV_INLINE void MoveUnits(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  constexpr int kBytes = sizeof(T);
  const std::int64_t head = static_cast<std::int64_t>(BytesToAlign<kBytes>(dst));
  CopyShort(src, dst, head);
  src += head;
  dst += head;
  bytes -= head;
  StringMove<T>(src, dst, bytes / kBytes);
  CopyShort(src, dst, bytes % kBytes);
}

template <class T>
ZOV_INLINE ZovStatus CopyElements(const T* pSrc, T* pDst, int len) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pDst)) return status;
  constexpr int kBytes = sizeof(T);
  Copy(pSrc, pDst, std::int64_t{len} * kBytes);
  return zovStsNoErr;
}

}  // namespace

void CopyOntoItself(const void* pSrc, void* pDst, std::int64_t bytes) {
  const Zov8u* src = static_cast<const Zov8u*>(pSrc);
  Zov8u* dst = static_cast<Zov8u*>(pDst);
  Zov8u* const end = dst + bytes;
  if (bytes >= 16) {
    while (!IsAligned<16>(dst)) *dst++ = *src++;
    for (; end - dst >= 16; dst += 16, src += 16) Half::Load(src).StoreAligned(dst);
  }
  while (dst < end) *dst++ = *src++;
}

void CopyAskingAhead(const Zov8u* src, Zov8u* dst, std::int64_t bytes) {
  CopyPasses<true>(src, dst, bytes);
}

void CopyStreaming(const void* pSrc, void* pDst, std::int64_t bytes) {
  using Run = Several<Half, 4>;
  constexpr std::int64_t kBlock = 0x40000;
  const Zov8u* src = static_cast<const Zov8u*>(pSrc);
  Zov8u* dst = static_cast<Zov8u*>(pDst);
  Zov8u* const end = dst + bytes;
  Zov8u* const begin = dst;
  const Half first = Half::Load(src);
  const Half last = Half::Load(src + bytes - 16);
  const std::int64_t head = static_cast<std::int64_t>(BytesToAlign<16>(dst));
  src += head;
  dst += head;
  while (end - dst >= kBlock) {
    Touch(src, kBlock);
    for (Zov8u* const blockEnd = dst + kBlock; dst < blockEnd; dst += 64, src += 64) {
      Run::Load(src).Stream(dst);
    }
  }
  for (; end - dst >= 64; dst += 64, src += 64) Run::Load(src).Stream(dst);
  for (; end - dst >= 16; dst += 16, src += 16) Half::Load(src).Stream(dst);
  last.Store(end - 16);
  first.Store(begin);
  _mm_sfence();
}

void CopyByStringMove(const void* pSrc, void* pDst, std::int64_t bytes) {
  const Zov8u* const src = static_cast<const Zov8u*>(pSrc);
  Zov8u* const dst = static_cast<Zov8u*>(pDst);
  const std::uintptr_t apart =
      reinterpret_cast<std::uintptr_t>(src) ^ reinterpret_cast<std::uintptr_t>(dst);
  if (apart % 8 == 0) {
    MoveUnits<std::uint64_t>(src, dst, bytes);
  } else if (apart % 4 == 0) {
    MoveUnits<Zov32u>(src, dst, bytes);
  } else if (apart % 2 == 0) {
    MoveUnits<Zov16u>(src, dst, bytes);
  } else {
    MoveUnits<Zov8u>(src, dst, bytes);
  }
}

void CopyInPieces(const void* pSrc, void* pDst, std::int64_t bytes, std::int64_t piece) {
  const Zov8u* src = static_cast<const Zov8u*>(pSrc);
  Zov8u* dst = static_cast<Zov8u*>(pDst);
  while (bytes > 0) {
    const std::int64_t now = bytes < piece ? bytes : piece;
    if (now < kStringMoveFloor) {
      CopyPlain(src, dst, now);
    } else {
      CopyByStringMove(src, dst, now);
    }
    src += now;
    dst += now;
    bytes -= now;
  }
}

ZovStatus zovCopyBytes(const void* pSrc, void* pDst, std::int64_t bytes) {
  if constexpr (kLevel >= Level::avx) {
    if (AnyNull(pSrc, pDst)) return zovStsNullPtrErr;
    if (bytes < 1) return zovStsSizeErr;
  }
  Copy(pSrc, pDst, bytes);
  return zovStsNoErr;
}

ZOV_ON_CACHE_LINE ZovStatus zovsCopy_32f(const Zov32f* pSrc, Zov32f* pDst, int len) {
  return CopyElements(pSrc, pDst, len);
}

ZOV_ON_CACHE_LINE ZovStatus zovsCopy_64f(const Zov64f* pSrc, Zov64f* pDst, int len) {
  return CopyElements(pSrc, pDst, len);
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Copy kernel of the level, and the plans behind it.
#pragma once

#include <cstdint>

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Copies forwards: right also for a destination that lies before an overlapping source. No address
// needs alignment. Levels avx and above test their arguments like an export, with zovStsNullPtrErr
// and zovStsSizeErr (bytes below 1); the levels below test nothing, take 0 bytes too, and return
// zovStsNoErr.
ZovStatus zovCopyBytes(const void* pSrc, void* pDst, std::int64_t bytes);

// Copies forwards to a destination inside the source: single bytes up to the first 16-byte boundary
// and after the last, 16 bytes at a time between. Level sse2.
void CopyOntoItself(const void* pSrc, void* pDst, std::int64_t bytes);

// Copies by the loop, with the destination's lines asked for ahead. More than 256 bytes.
void CopyAskingAhead(const Zov8u* src, Zov8u* dst, std::int64_t bytes);

// Copies with stores that bypass the cache. Levels sse3 to sse4; at least 64 bytes.
void CopyStreaming(const void* pSrc, void* pDst, std::int64_t bytes);

// Copies by the processor's string move. Levels avx and above; at least 64 bytes.
void CopyByStringMove(const void* pSrc, void* pDst, std::int64_t bytes);

// Copies any number of bytes in pieces of `piece` bytes and a remainder.
void CopyInPieces(const void* pSrc, void* pDst, std::int64_t bytes, std::int64_t piece);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

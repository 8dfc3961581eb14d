// Fill and clear kernels of the level. Counts are in elements and may be 0; no address needs
// alignment. Large fills bypass the cache when they exceed it.
#pragma once

#include <cstdint>

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

void zovFillBytes(Zov8u value, void* pDst, std::int64_t count);
void zovFill16(const void* pValue, void* pDst, std::int64_t count);
void zovFill32(Zov32u value, void* pDst, std::int64_t count);
void zovFill64(const void* pValue, void* pDst, std::int64_t count);
void zovFill128(const void* pValue, void* pDst, std::int64_t count);
void zovZeroBytes(void* pDst, std::int64_t bytes);

// Repeats the 16 bytes of a pattern with stores that bypass the cache: the plan that the kernels
// above take when the cache is too small. At least 64 bytes.
void FillStreaming(const void* pPattern, void* pDst, std::int64_t bytes);

// The same with ordinary stores that ask for their lines ahead: the plan of levels avx and above
// near the size of a known cache. At least 256 bytes.
void FillAskingAhead(const void* pPattern, void* pDst, std::int64_t bytes);

}  // namespace zov::ZOV_LEVEL_NAMESPACE

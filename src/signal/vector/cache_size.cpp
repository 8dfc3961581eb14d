// Reads the last-level cache size from CPUID leaf 4 or, on older processors, from the descriptor
// bytes of leaf 2.
#include "signal/vector/cache_size.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <limits>

namespace zov {

namespace {

constexpr int kRows = 55;
constexpr int kRowsFrom512K = 43;

// From the largest to the smallest: the scan takes the first row that the processor reports.
constexpr CacheDescriptor kDescriptors[kRows + 1] = {
    {0xEC, 25165824}, {0xEB, 18874368}, {0x4D, 16777216}, {0xEA, 12582912}, {0x4C, 12582912},
    {0xE4, 8388608},  {0xDE, 8388608},  {0x4B, 8388608},  {0x47, 8388608},  {0x4E, 6291456},
    {0x4A, 6291456},  {0xE3, 4194304},  {0xDD, 4194304},  {0xD8, 4194304},  {0x49, 4194304},
    {0x29, 4194304},  {0x46, 4194304},  {0x48, 3145728},  {0xE2, 2097152},  {0xDC, 2097152},
    {0xD7, 2097152},  {0xD2, 2097152},  {0x25, 2097152},  {0x7D, 2097152},  {0x85, 2097152},
    {0x45, 2097152},  {0xD6, 1048576},  {0xD1, 1048576},  {0x23, 1048576},  {0x87, 1048576},
    {0x7C, 1048576},  {0x78, 1048576},  {0x84, 1048576},  {0x44, 1048576},  {0xD0, 524288},
    {0x22, 524288},   {0x7B, 524288},   {0x80, 524288},   {0x86, 524288},   {0x3E, 524288},
    {0x7F, 524288},   {0x83, 524288},   {0x43, 524288},   {0x3D, 393216},   {0x82, 262144},
    {0x7A, 262144},   {0x42, 262144},   {0x3C, 262144},   {0x21, 262144},   {0x3A, 196608},
    {0x81, 131072},   {0x79, 131072},   {0x41, 131072},   {0x3B, 131072},   {0x39, 131072},
    {0, 0},
};

constexpr auto kDescriptorsFrom512K = [] {
  std::array<CacheDescriptor, kRowsFrom512K + 1> rows{};
  for (std::size_t i = 0; i < kRowsFrom512K; ++i) rows[i] = kDescriptors[i];
  return rows;
}();
static_assert(kDescriptors[kRowsFrom512K - 1].bytes == 512 * 1024 &&
              kDescriptors[kRowsFrom512K].bytes < 512 * 1024 && kDescriptors[kRows - 1].bytes != 0);

std::uint32_t Field(std::uint32_t word, int low, int bits) {
  return (word >> low) & ((1U << bits) - 1);
}

// Leaf 4 describes one cache in each sub-leaf.
std::int32_t LargestCacheOfLeaf4(CpuidReader read) {
  constexpr std::uint32_t kNone = 0, kInstructions = 2;
  std::uint64_t largest = 0;
  for (std::uint32_t subleaf = 0; subleaf < 32; ++subleaf) {
    std::uint32_t r[4];
    read(r, 4, subleaf);
    const std::uint32_t type = Field(r[0], 0, 5);
    if (type == kNone) break;
    if (type == kInstructions) continue;
    const std::uint64_t ways = Field(r[1], 22, 10) + 1;
    const std::uint64_t partitions = Field(r[1], 12, 10) + 1;
    const std::uint64_t lineBytes = Field(r[1], 0, 12) + 1;
    const std::uint64_t sets = std::uint64_t{r[2]} + 1;
    // The first three take 32 bits at most, and the sets 33: cut so that the product fits.
    const std::uint64_t setBytes = ways * partitions * lineBytes;
    const std::uint64_t limit = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t bytes = sets > limit / setBytes ? limit : setBytes * sets;
    if (bytes > largest) largest = bytes;
  }
  return static_cast<std::int32_t>(largest);
}

constexpr ZovStatus kNotAsked = 1;
std::atomic<ZovStatus> cachedState = kNotAsked;
std::atomic<std::int32_t> cachedBytes = 0;

}  // namespace

CacheSize zovCacheSizeOf(CpuidReader read) {
  if (zovCpuHasCpuid() == 0) return {zovStsCpuProbeFailedWrn, 0};
  std::uint32_t leaf0[4];
  read(leaf0, 0, 0);
  if (leaf0[0] < 2 || zovCpuIsVendorLeaf0(leaf0) == 0) return {zovStsCpuProbeFailedWrn, 0};
  if (leaf0[0] >= 4) {
    const std::int32_t bytes = LargestCacheOfLeaf4(read);
    return {bytes > 0 ? zovStsNoErr : kCacheNotReported, bytes};
  }
  std::uint32_t leaf2[4];
  read(leaf2, 2, 0);
  const std::int32_t bytes = zovCpuCacheFromLeaf2(leaf2, kDescriptors);
  if (bytes < 0) return {kCacheNotReported, 0};
  return {zovStsNoErr, bytes};
}

ZovStatus zovCacheSizeQuery(Zov32s* pSize) {
  if (pSize == nullptr) return zovStsNullPtrErr;
  // No lock: threads that race on the first call store the same values.
  if (cachedState.load(std::memory_order_acquire) == kNotAsked) {
    const CacheSize size = zovCacheSizeOf(zovCpuRunCpuid);
    cachedBytes.store(size.bytes, std::memory_order_relaxed);
    cachedState.store(size.state, std::memory_order_release);
  }
  *pSize = cachedBytes.load(std::memory_order_relaxed);
  return cachedState.load(std::memory_order_relaxed);
}

std::int32_t zovCacheShareOf(CpuidReader read) {
  std::uint32_t leaf0[4];
  read(leaf0, 0, 0);
  if (zovCpuIsVendorLeaf0(leaf0) == 0) return 0;
  std::uint32_t leaf2[4];
  read(leaf2, 2, 0);
  if (Field(leaf2[0], 0, 8) != 1) return 0;
  const std::int32_t bytes = zovCpuCacheFromLeaf2(leaf2, kDescriptorsFrom512K.data());
  if (bytes < 0) return 0;
  std::uint32_t threads = 1;
  if (leaf0[0] >= 4) {
    std::uint32_t leaf4[4];
    read(leaf4, 4, 0);
    threads = Field(leaf4[0], 26, 6) + 1;
  }
  return bytes / static_cast<std::int32_t>(threads);
}

}  // namespace zov

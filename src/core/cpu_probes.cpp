// Processor probes: small free-standing routines in a section of their own. Detection, the cache
// query and the conversions use some; the others are there for a debugger and for later needs.
#include <cpuid.h>
#include <emmintrin.h>
#include <x86intrin.h>

#include <bit>
#include <cstring>

#include "core/cpu.h"

#define ZOV_PROBE __attribute__((section("RT_CODE"), noinline))

namespace zov {

namespace {

struct Registers {
  std::uint32_t eax, ebx, ecx, edx;
};

ZOV_INLINE Registers Cpuid(std::uint32_t leaf, std::uint32_t subleaf = 0) {
  Registers r;
  __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
  return r;
}

ZOV_INLINE int Bit(std::uint32_t word, int bit) { return static_cast<int>((word >> bit) & 1); }

ZOV_INLINE std::uint32_t Field(std::uint32_t word, int low, int bits) {
  return (word >> low) & ((1U << bits) - 1);
}

constexpr std::uint32_t kMxcsrDefault = 0x1F80;
constexpr std::uint32_t kMxcsrRoundMask = 0x6000;

// Control-word bits in the layout of the C run-time library of Windows, beside the x87 layout.
// Both lists hold the same six exception masks: invalid, denormal, zero divide, overflow,
// underflow, inexact.
constexpr std::uint32_t kRuntimeMaskBits[6] = {0x10, 0x80000, 0x8, 0x4, 0x2, 0x1};
constexpr std::uint32_t kRuntimePrecision24 = 0x20000;
constexpr std::uint32_t kRuntimePrecision53 = 0x10000;
constexpr std::uint32_t kRuntimeInfinity = 0x40000;

}  // namespace

ZOV_PROBE int zovCpuHasCpuid() { return 1; }  // every x86-64 processor has the instruction

ZOV_PROBE void zovCpuRunCpuid(std::uint32_t registers[4], std::uint32_t leaf,
                              std::uint32_t subleaf) {
  const Registers r = Cpuid(leaf, subleaf);
  registers[0] = r.eax;
  registers[1] = r.ebx;
  registers[2] = r.ecx;
  registers[3] = r.edx;
}

ZOV_PROBE std::uint32_t zovCpuMaxLeaf() { return Cpuid(0).eax; }
ZOV_PROBE int zovCpuHasTsc() { return Bit(Cpuid(1).edx, 4); }
ZOV_PROBE int zovCpuHasMmx() { return Bit(Cpuid(1).edx, 23); }
ZOV_PROBE int zovCpuHasSse() { return Bit(Cpuid(1).edx, 25); }
ZOV_PROBE int zovCpuHasSse2() { return Bit(Cpuid(1).edx, 26); }

ZOV_PROBE int zovCpuHasMultiThreading() {
  const Registers r = Cpuid(1);
  return Bit(r.edx, 28) & static_cast<int>(Field(r.ebx, 16, 8) > 1);
}

ZOV_PROBE int zovCpuHasSse3() { return Bit(Cpuid(1).ecx, 0); }

ZOV_PROBE int zovCpuHasLongMode() {
  if (Cpuid(0x80000000).eax < 0x80000001) return 0;
  return Bit(Cpuid(0x80000001).edx, 29);
}

ZOV_PROBE int zovCpuHasSsse3() { return Bit(Cpuid(1).ecx, 9); }
ZOV_PROBE int zovCpuHasSse41() { return Bit(Cpuid(1).ecx, 19); }
ZOV_PROBE int zovCpuHasSse42() { return Bit(Cpuid(1).ecx, 20); }
ZOV_PROBE int zovCpuHasMovbe() { return Bit(Cpuid(1).ecx, 22); }

ZOV_PROBE int zovCpuHasAvxOsSupport() {
  const std::uint32_t ecx = Cpuid(1).ecx;
  if (Bit(ecx, 27) == 0 || Bit(ecx, 28) == 0) return 0;
  std::uint32_t low;
  std::uint32_t high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  constexpr std::uint32_t kXmmAndYmm = 6;
  return (low & kXmmAndYmm) == kXmmAndYmm;
}

ZOV_PROBE int zovCpuCoreCount() {
  if (Cpuid(0).eax < 4) return 1;
  return static_cast<int>(Field(Cpuid(4).eax, 26, 6)) + 1;
}

ZOV_PROBE void zovCpuFillInfo(ZovCpuInfo* info) {
  const Registers r = Cpuid(1);
  info->stepping = Field(r.eax, 0, 4);
  info->model = Field(r.eax, 4, 4);
  info->family = Field(r.eax, 8, 4);
  info->type = Field(r.eax, 12, 2);
  info->extendedModel = Field(r.eax, 16, 4);
  info->extendedFamily = Field(r.eax, 20, 8);
  info->leaf1Edx = r.edx;
  const Registers descriptors = Cpuid(2);
  info->leaf2Eax = descriptors.eax;
  info->leaf2Edx = descriptors.edx;
  info->hasCpuid = static_cast<std::uint32_t>(zovCpuHasCpuid());
  info->hasTsc = static_cast<std::uint32_t>(zovCpuHasTsc());
  info->hasMmx = static_cast<std::uint32_t>(zovCpuHasMmx());
  info->hasSse = static_cast<std::uint32_t>(zovCpuHasSse());
  info->hasSse2 = static_cast<std::uint32_t>(zovCpuHasSse2());
  info->hasMultiThreading = static_cast<std::uint32_t>(zovCpuHasMultiThreading());
  info->hasSse3 = static_cast<std::uint32_t>(zovCpuHasSse3());
  info->hasLongMode = static_cast<std::uint32_t>(zovCpuHasLongMode());
  info->hasSsse3 = static_cast<std::uint32_t>(zovCpuHasSsse3());
  info->hasSse41 = static_cast<std::uint32_t>(zovCpuHasSse41());
  info->hasSse42 = static_cast<std::uint32_t>(zovCpuHasSse42());
  info->hasMovbe = static_cast<std::uint32_t>(zovCpuHasMovbe());
  info->hasAvxOsSupport = static_cast<std::uint32_t>(zovCpuHasAvxOsSupport());
  info->coreCount = static_cast<std::uint32_t>(zovCpuCoreCount());
}

ZOV_PROBE std::uint64_t zovCpuReadTsc() { return __rdtsc(); }

ZOV_PROBE int zovCpuIsVendorLeaf0(const std::uint32_t registers[4]) {
  return registers[1] == 0x756E6547 && registers[3] == 0x49656E69 && registers[2] == 0x6C65746E;
}

ZOV_PROBE int zovCpuIsVendor() {
  std::uint32_t registers[4];
  zovCpuRunCpuid(registers, 0, 0);
  return zovCpuIsVendorLeaf0(registers);
}

ZOV_PROBE std::uint32_t zovCpuResetMxcsr() {
  const std::uint32_t old = _mm_getcsr();
  _mm_setcsr(kMxcsrDefault);
  return old;
}

ZOV_PROBE std::uint32_t zovCpuSetMxcsrBits(std::uint32_t value, std::uint32_t mask) {
  const std::uint32_t old = _mm_getcsr();
  _mm_setcsr((old & ~mask) | (value & mask));
  return old;
}

ZOV_PROBE std::uint32_t zovCpuGetMxcsr() { return _mm_getcsr(); }

ZOV_PROBE void zovCpuLoadMxcsr(std::uint32_t value) { _mm_setcsr(value); }

ZOV_PROBE std::uint32_t zovCpuSetRoundMode(std::uint32_t mode) {
  const std::uint32_t old = _mm_getcsr();
  if ((old & kMxcsrRoundMask) != (mode & kMxcsrRoundMask)) {
    _mm_setcsr((old & ~kMxcsrRoundMask) | (mode & kMxcsrRoundMask));
  }
  return old;
}

ZOV_PROBE int zovCpuIsNaN64(double x) {
  return (std::bit_cast<std::uint64_t>(x) << 1) > 0xFFE0000000000000ULL;
}

ZOV_PROBE int zovCpuIsFinite64(double x) {
  return (std::bit_cast<std::uint64_t>(x) << 1) < 0xFFE0000000000000ULL;
}

ZOV_PROBE int zovCpuHasDaz() {
  alignas(16) unsigned char area[512];
  // An early processor may leave the mask field unwritten; a zero then says no.
  std::memset(area + 28, 0, 4);
  __asm__ volatile("fxsave %0" : "+m"(area));
  std::uint32_t mxcsrMask;
  std::memcpy(&mxcsrMask, area + 28, 4);
  return Bit(mxcsrMask, 6);
}

ZOV_PROBE std::uint32_t zovCpuGetX87Control() {
  std::uint16_t control;
  __asm__ volatile("fnstcw %0" : "=m"(control));
  return control;
}

ZOV_PROBE std::uint32_t zovCpuSetX87Control(std::uint32_t value, std::uint32_t mask) {
  std::uint16_t old;
  __asm__ volatile("fnstcw %0" : "=m"(old));
  const std::uint16_t control = static_cast<std::uint16_t>((old & ~mask) | (value & mask));
  __asm__ volatile("fldcw %0" : : "m"(control));
  return old;
}

ZOV_PROBE std::uint32_t zovCpuGetX87Status() {
  std::uint16_t status;
  __asm__ volatile("fnstsw %0" : "=m"(status));
  return status;
}

ZOV_PROBE void zovCpuClearX87Status() { __asm__ volatile("fnclex"); }

ZOV_PROBE std::uint32_t zovCpuX87ControlToRuntime(std::uint32_t hardware) {
  std::uint32_t runtime = 0;
  for (int i = 0; i < 6; ++i) {
    if (Bit(hardware, i) != 0) runtime |= kRuntimeMaskBits[i];
  }
  const std::uint32_t precision = Field(hardware, 8, 2);
  if (precision == 0) runtime |= kRuntimePrecision24;
  if (precision == 2) runtime |= kRuntimePrecision53;
  runtime |= Field(hardware, 10, 2) << 8;  // nearest, down, up, chop have one order in both
  if (Bit(hardware, 12) != 0) runtime |= kRuntimeInfinity;
  return runtime;
}

ZOV_PROBE std::uint32_t zovCpuX87ControlFromRuntime(std::uint32_t runtime) {
  std::uint32_t hardware = 0;
  for (int i = 0; i < 6; ++i) {
    if ((runtime & kRuntimeMaskBits[i]) != 0) hardware |= 1U << i;
  }
  if ((runtime & kRuntimePrecision53) != 0) {
    hardware |= 2U << 8;
  } else if ((runtime & kRuntimePrecision24) == 0) {
    hardware |= 3U << 8;
  }
  hardware |= Field(runtime, 8, 2) << 10;
  if ((runtime & kRuntimeInfinity) != 0) hardware |= 1U << 12;
  return hardware;
}

ZOV_PROBE std::int32_t zovCpuCacheFromLeaf2(const std::uint32_t registers[4],
                                            const CacheDescriptor* table) {
  for (; table->descriptor != 0; ++table) {
    for (int r = 0; r < 4; ++r) {
      if (Bit(registers[r], 31) != 0) continue;            // holds no descriptors
      for (int byte = r == 0 ? 1 : 0; byte < 4; ++byte) {  // AL is a repeat count
        if (Field(registers[r], 8 * byte, 8) == table->descriptor) return table->bytes;
      }
    }
  }
  return -1;
}

ZOV_PROBE std::int32_t zovCpuCacheFromDescriptors(const CacheDescriptor* table) {
  std::uint32_t registers[4];
  zovCpuRunCpuid(registers, 2, 0);
  return zovCpuCacheFromLeaf2(registers, table);
}

}  // namespace zov

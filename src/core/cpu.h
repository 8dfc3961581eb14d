// Processor identification: the probes, the feature mask, and the choice of a level.
#pragma once

#include <cstdint>

#include "core/level.h"
#include "kelozov/kelozov.h"

extern "C" {
// The state that start-up writes once. A debugger finds it under these names.
extern ZOV_HIDDEN std::int32_t zovDispatchIndex;     // level chosen, 0 to 6
extern ZOV_HIDDEN std::uint64_t zovCpuFeatureMask;   // features of that level; a record only
extern ZOV_HIDDEN std::int32_t zovCpuFeaturesKnown;  // 1 when the next is valid
extern ZOV_HIDDEN std::uint64_t zovCpuFeaturesRaw;   // features of the processor
}

namespace zov {

// Bits of the raw feature mask.
using CpuFeature = std::uint64_t;
enum : CpuFeature {
  kCpuMmx = 1ULL << 0,
  kCpuSse = 1ULL << 1,
  kCpuSse2 = 1ULL << 2,
  kCpuSse3 = 1ULL << 3,
  kCpuSsse3 = 1ULL << 4,
  kCpuMovbe = 1ULL << 5,
  kCpuSse41 = 1ULL << 6,
  kCpuSse42 = 1ULL << 7,
  kCpuAvx = 1ULL << 8,
  kCpuYmmState = 1ULL << 9,
  kCpuAes = 1ULL << 10,
  kCpuPclmulqdq = 1ULL << 11,
  kCpuCoprocessor = 1ULL << 12,
  kCpuRdrand = 1ULL << 13,
  kCpuF16c = 1ULL << 14,
  kCpuAvx2Group = 1ULL << 15,  // AVX2, FMA, BMI1 and BMI2 together
  kCpuAdx = 1ULL << 16,
  kCpuRdseed = 1ULL << 17,
  kCpuPrefetchw = 1ULL << 18,
  kCpuCoprocessorModel = 1ULL << 31,
};

// Registers in the order EAX, EBX, ECX, EDX.
using CpuidReader = void (*)(std::uint32_t registers[4], std::uint32_t leaf, std::uint32_t subleaf);

struct LevelChoice {
  std::int32_t index;
  std::uint64_t mask;
};

// The level of a raw mask; nothing else enters the choice.
LevelChoice zovCpuChooseLevel(std::uint64_t raw);

// The raw mask of what a reader reports. `ymmSaved` tells whether the system saves YMM state.
std::uint64_t zovCpuMaskFromLeaves(CpuidReader read, bool ymmSaved);

ZovStatus zovCpuInit();
ZovStatus zovCpuGetFeatures(std::uint64_t* mask, std::uint32_t* registers);
int zovCpuGetFeaturesRaw(std::uint64_t* mask);
void zovCpuRunCpuid(std::uint32_t registers[4], std::uint32_t leaf, std::uint32_t subleaf);

// One row of a table of leaf-2 cache descriptors; a row with descriptor 0 ends the table.
struct CacheDescriptor {
  std::uint8_t descriptor;
  std::int32_t bytes;
};

// What zovCpuFillInfo reports, 23 fields of 32 bits.
struct ZovCpuInfo {
  std::uint32_t family, model, stepping, type, extendedModel, extendedFamily;
  std::uint32_t leaf1Edx, leaf2Eax, leaf2Edx;
  std::uint32_t hasCpuid, hasTsc, hasMmx, hasSse, hasSse2, hasMultiThreading, hasSse3, hasLongMode;
  std::uint32_t hasSsse3, hasSse41, hasSse42, hasMovbe, hasAvxOsSupport, coreCount;
};
static_assert(sizeof(ZovCpuInfo) == 23 * 4);

// Probes. Each is free-standing and lies in the section RT_CODE.
int zovCpuHasCpuid();
std::uint32_t zovCpuMaxLeaf();
int zovCpuHasTsc();
int zovCpuHasMmx();
int zovCpuHasSse();
int zovCpuHasSse2();
int zovCpuHasMultiThreading();
int zovCpuHasSse3();
int zovCpuHasLongMode();
int zovCpuHasSsse3();
int zovCpuHasSse41();
int zovCpuHasSse42();
int zovCpuHasMovbe();
int zovCpuHasAvxOsSupport();
int zovCpuCoreCount();
void zovCpuFillInfo(ZovCpuInfo* info);
std::uint64_t zovCpuReadTsc();
int zovCpuIsVendor();
std::uint32_t zovCpuResetMxcsr();
std::uint32_t zovCpuSetMxcsrBits(std::uint32_t value, std::uint32_t mask);
std::uint32_t zovCpuGetMxcsr();
void zovCpuLoadMxcsr(std::uint32_t value);
std::uint32_t zovCpuSetRoundMode(std::uint32_t mode);
int zovCpuIsNaN64(double x);
int zovCpuIsFinite64(double x);
int zovCpuHasDaz();
std::uint32_t zovCpuGetX87Control();
std::uint32_t zovCpuSetX87Control(std::uint32_t value, std::uint32_t mask);
std::uint32_t zovCpuGetX87Status();
void zovCpuClearX87Status();
std::uint32_t zovCpuX87ControlToRuntime(std::uint32_t hardware);
std::uint32_t zovCpuX87ControlFromRuntime(std::uint32_t runtime);
std::int32_t zovCpuCacheFromDescriptors(const CacheDescriptor* table);

// The same over what a reader reports, and the scan of one set of leaf-2 registers.
std::int32_t zovCpuCacheFromLeaf2(const std::uint32_t registers[4], const CacheDescriptor* table);

// The vendor test over the registers of leaf 0.
int zovCpuIsVendorLeaf0(const std::uint32_t registers[4]);

}  // namespace zov

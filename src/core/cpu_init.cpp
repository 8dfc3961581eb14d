// Start-up: reads the processor's features once and stores the level that dispatch uses.
#include "core/cpu.h"

std::int32_t zovDispatchIndex = 0;
std::uint64_t zovCpuFeatureMask = 0;
std::int32_t zovCpuFeaturesKnown = 0;
std::uint64_t zovCpuFeaturesRaw = 0;

namespace zov {

namespace {
// The characters "cpuquery": a caller that leaves them at the mask pointer asks for a leaf of its
// own choice.
constexpr std::uint64_t kCpuQueryMagic = 0x7972657571757063ULL;
}  // namespace

int zovCpuGetFeaturesRaw(std::uint64_t* mask) {
  if (zovCpuFeaturesKnown == 0) {
    if (zovCpuHasCpuid() == 0) return 0;
    zovCpuFeaturesRaw = zovCpuMaskFromLeaves(zovCpuRunCpuid, zovCpuHasAvxOsSupport() != 0);
    zovCpuFeaturesKnown = 1;
  }
  *mask = zovCpuFeaturesRaw;
  return 1;
}

ZovStatus zovCpuGetFeatures(std::uint64_t* mask, std::uint32_t* registers) {
  std::uint64_t raw = 0;
  if (zovCpuGetFeaturesRaw(&raw) == 0) return zovStsCpuProbeFailedWrn;
  if (mask == nullptr) return zovStsNullPtrErr;
  const std::uint64_t asked = *mask;
  *mask = raw;
  if (registers == nullptr) return zovStsNoErr;
  if (asked == kCpuQueryMagic) {
    zovCpuRunCpuid(registers, registers[0], registers[2]);
  } else {
    zovCpuRunCpuid(registers, 1, 0);
  }
  return zovStsNoErr;
}

ZovStatus zovCpuInit() {
  std::uint64_t raw = 0;
  std::uint32_t registers[4] = {};
  const ZovStatus status = zovCpuGetFeatures(&raw, registers);
  if (status != zovStsNoErr) {
    zovDispatchIndex = 0;
    zovCpuFeatureMask = 0x7;
  } else {
    const LevelChoice choice = zovCpuChooseLevel(raw);
    zovDispatchIndex = choice.index;
    zovCpuFeatureMask = choice.mask;
  }
  // Another vendor's processor keeps its level; the status is for a debugger only.
  if (zovCpuHasCpuid() == 0 || zovCpuIsVendor() == 0) return zovStsOtherVendorWrn;
  return status;
}

}  // namespace zov

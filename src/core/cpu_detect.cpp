// Pure functions of detection: leaves to feature mask, feature mask to level.
#include "core/cpu.h"

namespace zov {

namespace {

constexpr std::uint64_t FeatureIf(std::uint32_t reg, int bit, CpuFeature feature) {
  return ((reg >> bit) & 1) != 0 ? feature : 0;
}

// A place where a further condition for the AVX levels would go. It asks for nothing today.
constexpr int kGateAvx = 70;
bool zovCpuFeatureGate(int gate) { return gate == kGateAvx; }

}  // namespace

std::uint64_t zovCpuMaskFromLeaves(CpuidReader read, bool ymmSaved) {
  std::uint32_t leaf0[4];
  std::uint32_t leaf1[4];
  read(leaf0, 0, 0);
  read(leaf1, 1, 0);
  const std::uint32_t eax = leaf1[0];
  const std::uint32_t ecx = leaf1[2];
  const std::uint32_t edx = leaf1[3];

  std::uint64_t mask =
      FeatureIf(edx, 23, kCpuMmx) | FeatureIf(edx, 25, kCpuSse) | FeatureIf(edx, 26, kCpuSse2) |
      FeatureIf(ecx, 0, kCpuSse3) | FeatureIf(ecx, 9, kCpuSsse3) | FeatureIf(ecx, 22, kCpuMovbe) |
      FeatureIf(ecx, 19, kCpuSse41) | FeatureIf(ecx, 20, kCpuSse42) | FeatureIf(ecx, 28, kCpuAvx) |
      FeatureIf(ecx, 25, kCpuAes) | FeatureIf(ecx, 1, kCpuPclmulqdq) |
      FeatureIf(ecx, 30, kCpuRdrand) | FeatureIf(ecx, 29, kCpuF16c);

  constexpr std::uint32_t kOsxsaveAndAvx = (1U << 27) | (1U << 28);
  if ((ecx & kOsxsaveAndAvx) == kOsxsaveAndAvx && ymmSaved) mask |= kCpuYmmState;

  if (((eax >> 8) & 0xF) == 0xB) {
    std::uint32_t leaf[4];
    read(leaf, 0x20000001, 0);
    mask |= FeatureIf(leaf[3], 1, kCpuCoprocessor);
  }
  if (((eax >> 4) & 0xFF) == 0xB1) mask |= kCpuCoprocessorModel;

  if (leaf0[0] >= 7) {
    std::uint32_t leaf7[4];
    read(leaf7, 7, 0);
    const std::uint32_t ebx = leaf7[1];
    constexpr std::uint32_t kFma = 1U << 12;
    constexpr std::uint32_t kAvx2Bmi1Bmi2 = (1U << 5) | (1U << 3) | (1U << 8);
    if ((ecx & kFma) != 0 && (ebx & kAvx2Bmi1Bmi2) == kAvx2Bmi1Bmi2) mask |= kCpuAvx2Group;
    mask |= FeatureIf(ebx, 19, kCpuAdx) | FeatureIf(ebx, 18, kCpuRdseed);
  }

  std::uint32_t extended[4];
  read(extended, 0x80000000, 0);
  if (extended[0] >= 0x80000001) {
    read(extended, 0x80000001, 0);
    mask |= FeatureIf(extended[2], 8, kCpuPrefetchw);
  }
  return mask;
}

LevelChoice zovCpuChooseLevel(std::uint64_t raw) {
  const auto has = [raw](std::uint64_t bits) { return (raw & bits) == bits; };
  const auto choose = [raw](Level level, std::uint64_t kept) {
    return LevelChoice{static_cast<std::int32_t>(level), raw & kept};
  };
  if (has(kCpuAvx | kCpuYmmState) && zovCpuFeatureGate(kGateAvx)) {
    return has(kCpuAvx2Group) ? choose(Level::avx2, 0x7EFFF) : choose(Level::avx, 0x6FDF);
  }
  if (has(kCpuSse41)) return choose(Level::sse4, 0xCDF);
  if (has(kCpuSsse3 | kCpuMovbe)) return choose(Level::ssse3_movbe, 0x3F);
  if (has(kCpuSsse3)) return choose(Level::ssse3, 0x1F);
  if (has(kCpuSse3)) return choose(Level::sse3, 0xF);
  return choose(Level::sse2, 0x7);
}

}  // namespace zov

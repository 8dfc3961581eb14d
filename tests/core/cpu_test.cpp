// Detection: the mask of made-up processors, the level of made-up masks, and the probes.
#include "core/cpu.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <map>

namespace zov::test {
namespace {

struct FakeCpu {
  std::uint32_t maxLeaf = 7, leaf1Eax = 0, leaf1Ecx = 0, leaf1Edx = 0, leaf7Ebx = 0;
  std::uint32_t maxExtended = 0x80000008, extendedEcx = 0, leaf2000Edx = 0;
};
FakeCpu fake;

void ReadFake(std::uint32_t r[4], std::uint32_t leaf, std::uint32_t subleaf) {
  r[0] = r[1] = r[2] = r[3] = 0xDEADBEEF;
  EXPECT_EQ(subleaf, 0u);
  switch (leaf) {
    case 0:
      r[0] = fake.maxLeaf;
      break;
    case 1:
      r[0] = fake.leaf1Eax, r[2] = fake.leaf1Ecx, r[3] = fake.leaf1Edx;
      break;
    case 7:
      r[1] = fake.leaf7Ebx;
      break;
    case 0x80000000:
      r[0] = fake.maxExtended;
      break;
    case 0x80000001:
      r[2] = fake.extendedEcx;
      break;
    case 0x20000001:
      r[3] = fake.leaf2000Edx;
      break;
    default:
      ADD_FAILURE() << "leaf " << leaf;
  }
}

std::uint64_t MaskOf(const FakeCpu& cpu, bool ymmSaved = true) {
  fake = cpu;
  return zovCpuMaskFromLeaves(ReadFake, ymmSaved);
}

TEST(CpuMask, EachLeafBitSetsItsOwnFeature) {
  EXPECT_EQ(MaskOf({}), 0u);
  const std::map<int, int> ecxBits = {{0, 3},  {9, 4},   {22, 5}, {19, 6},  {20, 7},
                                      {28, 8}, {25, 10}, {1, 11}, {30, 13}, {29, 14}};
  const std::map<int, int> edxBits = {{23, 0}, {25, 1}, {26, 2}};
  for (int bit = 0; bit < 32; ++bit) {
    FakeCpu cpu;
    cpu.leaf1Ecx = 1u << bit;
    auto at = ecxBits.find(bit);
    EXPECT_EQ(MaskOf(cpu), at == ecxBits.end() ? 0 : 1ull << at->second) << "ECX " << bit;
    cpu = {};
    cpu.leaf1Edx = 1u << bit;
    at = edxBits.find(bit);
    EXPECT_EQ(MaskOf(cpu), at == edxBits.end() ? 0 : 1ull << at->second) << "EDX " << bit;
    cpu = {};
    cpu.leaf7Ebx = 1u << bit;
    EXPECT_EQ(MaskOf(cpu), bit == 19 ? 1ull << 16 : bit == 18 ? 1ull << 17 : 0) << "EBX " << bit;
    cpu = {};
    cpu.extendedEcx = 1u << bit;
    EXPECT_EQ(MaskOf(cpu), bit == 8 ? 1ull << 18 : 0) << "extended ECX " << bit;
  }
}

TEST(CpuMask, YmmStateNeedsBothBitsAndTheSystem) {
  FakeCpu cpu;
  cpu.leaf1Ecx = (1u << 27) | (1u << 28);
  EXPECT_EQ(MaskOf(cpu, true), (1u << 8) | (1u << 9));
  EXPECT_EQ(MaskOf(cpu, false), 1u << 8);
  cpu.leaf1Ecx = 1u << 27;
  EXPECT_EQ(MaskOf(cpu, true), 0u);
}

TEST(CpuMask, Avx2GroupNeedsAllFourAndLeaf7) {
  FakeCpu whole;
  whole.leaf1Ecx = 1u << 12;
  whole.leaf7Ebx = (1u << 5) | (1u << 3) | (1u << 8);
  EXPECT_EQ(MaskOf(whole), 1u << 15);
  for (int bit : {5, 3, 8}) {
    FakeCpu part = whole;
    part.leaf7Ebx ^= 1u << bit;
    EXPECT_EQ(MaskOf(part), 0u) << bit;
  }
  FakeCpu withoutFma = whole;
  withoutFma.leaf1Ecx = 0;
  EXPECT_EQ(MaskOf(withoutFma), 0u);
  FakeCpu old = whole;
  old.maxLeaf = 6;
  old.leaf7Ebx = 0xFFFFFFFF;
  EXPECT_EQ(MaskOf(old), 0u) << "leaf 7 is out of range";
  FakeCpu noExtended;
  noExtended.maxExtended = 0x80000000;
  noExtended.extendedEcx = 0xFFFFFFFF;
  EXPECT_EQ(MaskOf(noExtended), 0u);
}

TEST(CpuMask, CoprocessorBits) {
  FakeCpu cpu;
  cpu.leaf1Eax = 0xB00;
  cpu.leaf2000Edx = 2;
  EXPECT_EQ(MaskOf(cpu), 1u << 12);
  cpu.leaf2000Edx = 0xFFFFFFFD;
  EXPECT_EQ(MaskOf(cpu), 0u);
  cpu.leaf1Eax = 0xB10;
  EXPECT_EQ(MaskOf(cpu), 1u << 31);
}

TEST(CpuLevel, ChosenFromTheMaskAlone) {
  struct Case {
    std::uint64_t raw;
    int level;
    std::uint64_t kept;
  };
  const std::uint64_t all = ~0ull;
  const std::uint64_t avx2 = 1u << 15, ymm = 1u << 9, avx = 1u << 8, sse41 = 1u << 6;
  const std::uint64_t movbe = 1u << 5, ssse3 = 1u << 4, sse3 = 1u << 3;
  const Case cases[] = {
      {all, 6, 0x7EFFF},
      {all & ~avx2, 5, 0x6FDF & ~avx2},
      {all & ~ymm, 4, 0xCDF},
      {all & ~avx, 4, 0xCDF},
      {all & ~(ymm | sse41), 3, 0x3F},
      {all & ~(avx | sse41 | movbe), 2, 0x1F},
      {all & ~(avx | sse41 | ssse3), 1, 0xF},
      {all & ~(avx | sse41 | ssse3 | sse3), 0, 0x7},
      {avx2, 0, 0},
      {sse41, 4, 0x40},
      {movbe | sse3, 1, 8},
      {0, 0, 0},
  };
  for (const Case& c : cases) {
    const LevelChoice choice = zovCpuChooseLevel(c.raw);
    EXPECT_EQ(choice.index, c.level) << std::hex << c.raw;
    EXPECT_EQ(choice.mask, c.kept) << std::hex << c.raw;
  }
}

TEST(CpuStart, StateAgreesWithTheRawMask) {
  ASSERT_EQ(zovCpuFeaturesKnown, 1) << "start-up runs before any test";
  const LevelChoice choice = zovCpuChooseLevel(zovCpuFeaturesRaw);
  EXPECT_EQ(zovDispatchIndex, choice.index);
  EXPECT_EQ(zovCpuFeatureMask, choice.mask);
  EXPECT_EQ(zovCpuInit(), zovCpuIsVendor() ? zovStsNoErr : zovStsOtherVendorWrn);
}

TEST(CpuFeatures, QueryDoorAndChecks) {
  std::uint32_t regs[4] = {};
  EXPECT_EQ(zovCpuGetFeatures(nullptr, regs), zovStsNullPtrErr);
  std::uint64_t mask = 0;
  EXPECT_EQ(zovCpuGetFeatures(&mask, nullptr), zovStsNoErr);
  EXPECT_EQ(mask, zovCpuFeaturesRaw);

  std::uint32_t leaf1[4];
  zovCpuRunCpuid(leaf1, 1, 0);
  mask = 0;
  regs[0] = 0;
  EXPECT_EQ(zovCpuGetFeatures(&mask, regs), zovStsNoErr);
  EXPECT_EQ(regs[0], leaf1[0]) << "without the magic word it is leaf 1";

  std::uint32_t leaf0[4];
  zovCpuRunCpuid(leaf0, 0, 0);
  std::memcpy(&mask, "cpuquery", 8);
  regs[0] = 0, regs[2] = 0;
  EXPECT_EQ(zovCpuGetFeatures(&mask, regs), zovStsNoErr);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(regs[i], leaf0[i]);
  EXPECT_EQ(mask, zovCpuFeaturesRaw);
}

TEST(CpuProbes, AgreeWithTheMask) {
  const auto bit = [](int b) { return static_cast<int>((zovCpuFeaturesRaw >> b) & 1); };
  EXPECT_EQ(zovCpuHasMmx(), bit(0));
  EXPECT_EQ(zovCpuHasSse(), bit(1));
  EXPECT_EQ(zovCpuHasSse2(), bit(2));
  EXPECT_EQ(zovCpuHasSse3(), bit(3));
  EXPECT_EQ(zovCpuHasSsse3(), bit(4));
  EXPECT_EQ(zovCpuHasMovbe(), bit(5));
  EXPECT_EQ(zovCpuHasSse41(), bit(6));
  EXPECT_EQ(zovCpuHasSse42(), bit(7));
  EXPECT_EQ(zovCpuHasAvxOsSupport(), bit(9));
  EXPECT_EQ(zovCpuHasLongMode(), 1);
  EXPECT_GE(zovCpuCoreCount(), 1);
  ZovCpuInfo info;
  zovCpuFillInfo(&info);
  std::uint32_t leaf1[4];
  zovCpuRunCpuid(leaf1, 1, 0);
  EXPECT_EQ(info.family | (info.extendedFamily << 12) | (info.extendedModel << 8),
            ((leaf1[0] >> 8) & 0xF) | (((leaf1[0] >> 20) & 0xFF) << 12) |
                (((leaf1[0] >> 16) & 0xF) << 8));
  EXPECT_EQ(info.hasSsse3, static_cast<std::uint32_t>(bit(4)));
  EXPECT_EQ(info.leaf1Edx, leaf1[3]);
  const std::uint64_t before = zovCpuReadTsc();
  EXPECT_GT(zovCpuReadTsc(), before);
}

TEST(CpuProbes, ClassifyDoubles) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  for (double x : {0.0, -0.0, 1.0, -5e-324, 1.7976931348623157e308}) {
    EXPECT_EQ(zovCpuIsNaN64(x), 0);
    EXPECT_EQ(zovCpuIsFinite64(x), 1);
  }
  for (double x : {inf, -inf}) {
    EXPECT_EQ(zovCpuIsNaN64(x), 0);
    EXPECT_EQ(zovCpuIsFinite64(x), 0);
  }
  for (double x : {nan, -nan}) {
    EXPECT_EQ(zovCpuIsNaN64(x), 1);
    EXPECT_EQ(zovCpuIsFinite64(x), 0);
  }
}

TEST(CpuProbes, ControlRegistersComeBack) {
  const std::uint32_t mxcsr = zovCpuGetMxcsr();
  EXPECT_EQ(zovCpuSetRoundMode(0x6000), mxcsr);
  EXPECT_EQ(zovCpuGetMxcsr() & 0x6000, 0x6000u);
  volatile float third = 1.0f;
  EXPECT_EQ(zovCpuSetMxcsrBits(mxcsr, 0x6000) & 0x6000, 0x6000u);
  third = third / 3.0f;
  EXPECT_NE(zovCpuResetMxcsr(), 0u);
  EXPECT_EQ(zovCpuGetMxcsr(), 0x1F80u);
  zovCpuLoadMxcsr(mxcsr);
  EXPECT_EQ(zovCpuHasDaz(), 1);

  const std::uint32_t control = zovCpuGetX87Control();
  EXPECT_EQ(zovCpuSetX87Control(0xC00, 0xC00), control);
  EXPECT_EQ(zovCpuGetX87Control(), control | 0xC00);
  zovCpuSetX87Control(control, 0xFFFF);
  zovCpuClearX87Status();
  EXPECT_EQ(zovCpuGetX87Status() & 0x7F, 0u);
}

TEST(CpuProbes, ControlWordTranslationRoundTrips) {
  EXPECT_EQ(zovCpuX87ControlToRuntime(0x37F), 0x8001Fu);
  EXPECT_EQ(zovCpuX87ControlToRuntime(0x27F), 0x9001Fu) << "53 bits";
  EXPECT_EQ(zovCpuX87ControlToRuntime(0xF00), 0x300u) << "chop";
  for (std::uint32_t precision : {0u, 2u, 3u}) {
    for (std::uint32_t rest = 0; rest < 0x2000; ++rest) {
      if ((rest & 0x300) != 0 || (rest & 0xC0) != 0) continue;
      const std::uint32_t hardware = rest | (precision << 8);
      ASSERT_EQ(zovCpuX87ControlFromRuntime(zovCpuX87ControlToRuntime(hardware)), hardware);
    }
  }
}

TEST(CpuProbes, DescriptorScanTakesTheFirstRowAndSkipsWhatIsNone) {
  const CacheDescriptor table[] = {{0x4D, 16}, {0x01, 1}, {0x25, 2}, {0, 0}};
  const std::uint32_t mixed[4] = {0x00002501, 0, 0x004D0000, 0};
  EXPECT_EQ(zovCpuCacheFromLeaf2(mixed, table), 16) << "table order, not register order";
  const std::uint32_t counted[4] = {0x00002501, 0, 0x804D0000, 0};
  EXPECT_EQ(zovCpuCacheFromLeaf2(counted, table), 2) << "bit 31 and the repeat count";
  const std::uint32_t none[4] = {0x00000001, 0, 0, 0};
  EXPECT_EQ(zovCpuCacheFromLeaf2(none, table), -1);
}

}  // namespace
}  // namespace zov::test

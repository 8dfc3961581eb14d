// Thresholds and the replacement of a value.
#include <bit>
#include <limits>

#include "signal/vector/elementwise_walk.h"

namespace zov::test {
namespace {

constexpr float kLevel = 3.0F;
// Any bits are written as they are, those of a signalling NaN too.
const float kValue = FloatOf(0xFF800123U);

float Number(std::mt19937& random) {
  constexpr float kSpecial[] = {kLevel,
                                -0.0F,
                                0.0F,
                                std::numeric_limits<float>::infinity(),
                                -std::numeric_limits<float>::infinity(),
                                1e-45F};
  const unsigned dice = random() % 16;
  if (dice < 6) return kSpecial[dice];
  if (dice == 6) return FloatOf(0x7F800321U | (random() << 31));
  if (dice == 7) return FloatOf(0x7FC00321U | (random() << 31));
  return static_cast<float>(random() % 1000) / 100.0F - 5.0F;
}

Elementwise<float, float> Limit(const char* name, float level, int relation) {
  return {name,
          true,
          [=](int build, const float*, float* x, int len) {
            return ZOV_AT(build, zovsThreshold_32f_I)(x, len, level, relation);
          },
          [=](float x) {
            return relation == ZOV_CMP_LESS ? (level > x ? level : x) : (level < x ? level : x);
          },
          {Number}};
}
#define ZOV_REPLACING(name, level, result)                                                         \
  MemberOf(Elementwise<float, float>{#name,                                                        \
                                     false,                                                        \
                                     [](int build, const float* x, float* y, int len) {            \
                                       return ZOV_AT(build, zovs##name)(x, y, len, level, kValue); \
                                     },                                                            \
                                     [](float x) { return result; },                               \
                                     {Number}})
#define ZOV_REPLACING_IN_PLACE(name, level, result)                                             \
  MemberOf(Elementwise<float, float>{#name,                                                     \
                                     true,                                                      \
                                     [](int build, const float*, float* x, int len) {           \
                                       return ZOV_AT(build, zovs##name)(x, len, level, kValue); \
                                     },                                                         \
                                     [](float x) { return result; },                            \
                                     {Number}})

const Member kThresholds[] = {
    MemberOf(Limit("Threshold_32f_I_Less", kLevel, ZOV_CMP_LESS)),
    MemberOf(Limit("Threshold_32f_I_Greater", kLevel, ZOV_CMP_GREATER)),
    MemberOf(Limit("Threshold_32f_I_LessThanZero", -0.0F, ZOV_CMP_LESS)),
    MemberOf(Limit("Threshold_32f_I_GreaterThanZero", 0.0F, ZOV_CMP_GREATER)),
    MemberOf(Limit("Threshold_32f_I_NoLevel", std::numeric_limits<float>::quiet_NaN(), 0)),
    // A NaN element is replaced by the forms with two arrays, and stays in those with one.
    ZOV_REPLACING(Threshold_GTVal_32f, kLevel, kLevel >= x ? x : kValue),
    ZOV_REPLACING(Threshold_LTVal_32f, kLevel, x >= kLevel ? x : kValue),
    ZOV_REPLACING_IN_PLACE(Threshold_GTVal_32f_I, kLevel, x > kLevel ? kValue : x),
    ZOV_REPLACING_IN_PLACE(Threshold_LTVal_32f_I, kLevel, kLevel > x ? kValue : x),
};

class Threshold : public ::testing::TestWithParam<Member> {};
TEST_P(Threshold, LengthsAlignmentsAndAliases) { GetParam().walk(); }
TEST_P(Threshold, StatusesInOrder) { GetParam().statuses(); }
INSTANTIATE_TEST_SUITE_P(Members, Threshold, ::testing::ValuesIn(kThresholds),
                         [](const auto& param) { return param.param.name; });

TEST(Threshold, UnknownRelationComesLastAndWritesNothing) {
  ForEachLevel([](int level) {
    float x[] = {1, 2, 3};
    for (const int relation : {1, 2, 3, 5, -1, 0x100}) {
      EXPECT_EQ(ZOV_AT(level, zovsThreshold_32f_I)(nullptr, 3, 2.0F, relation), zovStsNullPtrErr);
      EXPECT_EQ(ZOV_AT(level, zovsThreshold_32f_I)(x, 0, 2.0F, relation), zovStsSizeErr);
      EXPECT_EQ(ZOV_AT(level, zovsThreshold_32f_I)(x, 3, 2.0F, relation), zovStsRelationErr);
    }
    EXPECT_EQ(x[0], 1);
    EXPECT_EQ(x[2], 3);
  });
}

TEST(Replace, LengthsAlignmentsAndAliases) {
  MemberOf(Elementwise<Zov16u, Zov16u>{
               "ReplaceC_16u",
               false,
               [](int level, const Zov16u* pSrc, Zov16u* pDst, int len) {
                 return ZOV_AT(level, zovsReplaceC_16u)(pSrc, pDst, len, 0xFFFE, 0x8001);
               },
               [](Zov16u x) { return x == 0xFFFE ? Zov16u{0x8001} : x; },
               {[](std::mt19937& random) { return static_cast<Zov16u>(0xFFFC + random() % 5); }}})
      .walk();
}

TEST(Replace, LengthHasItsOwnStatus) {
  ForEachLevel([](int level) {
    Zov16u x[] = {7};
    const auto replace = ZOV_AT(level, zovsReplaceC_16u);
    EXPECT_EQ(replace(nullptr, x, 0, 7, 8), zovStsNullPtrErr);
    EXPECT_EQ(replace(x, nullptr, -1, 7, 8), zovStsNullPtrErr);
    EXPECT_EQ(replace(x, x, -1, 7, 8), zovStsFindLenErr);
    EXPECT_EQ(replace(x, x, 0, 7, 8), zovStsNoErr);
    EXPECT_EQ(x[0], 7);
  });
}

}  // namespace
}  // namespace zov::test

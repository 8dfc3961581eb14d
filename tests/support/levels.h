// Calls an export at every level that the processor runs, through the export's own table.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "core/cpu.h"
#include "exports/tables.h"

namespace zov::test {

inline const char* LevelName(int level) {
  static constexpr const char* kNames[] = {"sse2", "sse3", "ssse3", "ssse3_movbe",
                                           "sse4", "avx",  "avx2"};
  return kNames[level];
}

// Runs body(level) for each level that the processor can execute; a failure names the level.
template <class Body>
void ForEachLevel(Body body) {
  for (int level = 0; level <= zovDispatchIndex; ++level) {
    SCOPED_TRACE(std::string("level ") + std::to_string(level) + " " + LevelName(level));
    body(level);
    if (::testing::Test::HasFatalFailure()) return;
  }
}

// The routine of an export at a level: ZOV_AT(level, zovsAdd_32f)(a, b, c, n).
#define ZOV_AT(level, name) (zovTable_##name[level])

// The seven builds of an internal kernel that a header declares in the level's namespace:
// ZOV_KERNEL_TABLE(zovFill32) once in a test, outside of any namespace, then
// ZOV_KERNEL_AT(level, zovFill32)(value, p, n).
#define ZOV_KERNEL_TABLE(name)                                                                    \
  namespace zov::sse2 {                                                                           \
  decltype(common::name) name;                                                                    \
  }                                                                                               \
  namespace zov::sse3 {                                                                           \
  decltype(common::name) name;                                                                    \
  }                                                                                               \
  namespace zov::ssse3 {                                                                          \
  decltype(common::name) name;                                                                    \
  }                                                                                               \
  namespace zov::ssse3_movbe {                                                                    \
  decltype(common::name) name;                                                                    \
  }                                                                                               \
  namespace zov::sse4 {                                                                           \
  decltype(common::name) name;                                                                    \
  }                                                                                               \
  namespace zov::avx {                                                                            \
  decltype(common::name) name;                                                                    \
  }                                                                                               \
  namespace zov::avx2 {                                                                           \
  decltype(common::name) name;                                                                    \
  }                                                                                               \
  namespace zov::test {                                                                           \
  inline decltype(&common::name) const kernelTable_##name[] = {                                   \
      sse2::name, sse3::name, ssse3::name, ssse3_movbe::name, sse4::name, avx::name, avx2::name}; \
  }
#define ZOV_KERNEL_AT(level, name) (zov::test::kernelTable_##name[level])

}  // namespace zov::test

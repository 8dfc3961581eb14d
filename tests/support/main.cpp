// Runs the tests. On Windows the objects are linked without their DLL entry, so detection runs
// here.
#include <gtest/gtest.h>

#include "core/cpu.h"

int main(int argc, char** argv) {
#ifdef _WIN32
  zov::zovCpuInit();
#endif
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

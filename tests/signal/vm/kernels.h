// Every kernel of the vector maths, by function, class and level, with its reference in double.
#pragma once

#include "signal/vm/kernel_table.h"

namespace zov {
namespace sse2 {
ZOV_VM_ROWS
}
namespace sse3 {
ZOV_VM_ROWS
}
namespace ssse3 {
ZOV_VM_ROWS
}
namespace sse4 {
ZOV_VM_ROWS
}
namespace avx {
ZOV_VM_ROWS
}
namespace avx2 {
ZOV_VM_ROWS
}
}  // namespace zov

namespace zov::test {

// Level ssse3_movbe has the kernels of ssse3.
#define ZOV_ROWS_OF(row) \
  { &sse2::row, &sse3::row, &ssse3::row, &ssse3::row, &sse4::row, &avx::row, &avx2::row }

struct UnaryFunction {
  const char* name;
  double (*reference)(double);
  const ZovVmKernelRow<UnaryKernel>* row[kLevelCount];
};

extern const UnaryFunction kUnaryFunctions[12];

struct BinaryFunction {
  const char* name;
  double (*reference)(double, double);
  const ZovVmKernelRow<BinaryKernel>* row[kLevelCount];
};

extern const BinaryFunction kBinaryFunctions[2];

// The columns of a row.
struct AccuracyClass {
  const char* name;
  int bits;
};
inline constexpr AccuracyClass kClasses[] = {{"A11", 11}, {"A21", 21}, {"A24", 24}};

template <class Kernel>
Kernel* KernelOf(const ZovVmKernelRow<Kernel>& row, int accuracyClass) {
  Kernel* const kernels[] = {row.kernelA11, row.kernelA21, row.kernelA24};
  return kernels[accuracyClass];
}

// The worst error met so far and where. The error is relative to the exact value, or for a denormal
// one to the smallest normal number; in units it is relative to the last place of the exact value.
struct WorstError {
  double relative = 0;
  double units = 0;
  float at = 0;
  float at2 = 0;
  // An element with a wrong infinity, NaN or zero, if any.
  bool wrong = false;
  float wrongAt = 0;
  float wrongAt2 = 0;

  void Add(float result, double exact, float x, float y = 0);
  void Merge(const WorstError& other);
  // Whether the errors keep the promise of a class.
  bool Within(const AccuracyClass& promised) const;
};

}  // namespace zov::test

// The kernel table: for each function of the level, one row with a kernel for each accuracy class.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov {

// A class promises that many significant bits over the whole domain. A column may repeat another
// where the better kernel is fast enough. The costs, nominal figures for each element, are records
// that no code reads.
template <class Kernel>
struct ZovVmKernelRow {
  Kernel* kernelA21;
  Kernel* kernelA24;
  Kernel* kernelA11;
  Zov32f costA21;
  Zov32f costA24;
  Zov32f costA11;
};

using UnaryKernel = ZovStatus(const Zov32f* pSrc, Zov32f* pDst, int len);
using BinaryKernel = ZovStatus(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst, int len);
using ConstantKernel = ZovStatus(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

}  // namespace zov

// The rows of one level, for the level's own sources and for tests that reach every kernel.
#define ZOV_VM_ROWS                                                                             \
  extern const ZovVmKernelRow<UnaryKernel> kVmAcos, kVmAsin, kVmAtan, kVmCeil, kVmCos, kVmCosh, \
      kVmExp, kVmFloor, kVmLn, kVmLog10, kVmSin, kVmSinh, kVmTan, kVmTanh;                      \
  extern const ZovVmKernelRow<BinaryKernel> kVmAtan2, kVmPow;                                   \
  extern const ZovVmKernelRow<ConstantKernel> kVmPowx;

namespace zov::ZOV_LEVEL_NAMESPACE {
ZOV_VM_ROWS
}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The routine of each export: a jump through its row of the kernel table.
#include "core/entries.h"
#include "signal/vm/kernel_table.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

#define ZOV_UNARY_THUNK(name, row, column) \
  ZovStatus name(const Zov32f* pSrc, Zov32f* pDst, int len) { return row.column(pSrc, pDst, len); }
#define ZOV_BINARY_THUNK(name, row, column)                                         \
  ZovStatus name(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst, int len) { \
    return row.column(pSrc1, pSrc2, pDst, len);                                     \
  }
#define ZOV_CONSTANT_THUNK(name, row, column)                             \
  ZovStatus name(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len) { \
    return row.column(pSrc, val, pDst, len);                              \
  }

ZOV_UNARY_THUNK(zovsAcos_32f_A11, kVmAcos, kernelA11)
ZOV_UNARY_THUNK(zovsAsin_32f_A11, kVmAsin, kernelA11)
ZOV_UNARY_THUNK(zovsAtan_32f_A11, kVmAtan, kernelA11)
ZOV_BINARY_THUNK(zovsAtan2_32f_A11, kVmAtan2, kernelA11)
ZOV_UNARY_THUNK(zovsCeil_32f, kVmCeil, kernelA11)
ZOV_UNARY_THUNK(zovsCos_32f_A11, kVmCos, kernelA11)
ZOV_UNARY_THUNK(zovsCosh_32f_A11, kVmCosh, kernelA11)
ZOV_UNARY_THUNK(zovsExp_32f_A11, kVmExp, kernelA11)
ZOV_UNARY_THUNK(zovsFloor_32f, kVmFloor, kernelA11)
ZOV_UNARY_THUNK(zovsLn_32f_A11, kVmLn, kernelA11)
ZOV_UNARY_THUNK(zovsLog10_32f_A11, kVmLog10, kernelA11)
ZOV_UNARY_THUNK(zovsLog10_32f_A21, kVmLog10, kernelA21)
ZOV_BINARY_THUNK(zovsPow_32f_A11, kVmPow, kernelA11)
ZOV_BINARY_THUNK(zovsPow_32f_A24, kVmPow, kernelA24)
ZOV_CONSTANT_THUNK(zovsPowx_32f_A11, kVmPowx, kernelA11)
ZOV_CONSTANT_THUNK(zovsPowx_32f_A24, kVmPowx, kernelA24)
ZOV_UNARY_THUNK(zovsSin_32f_A11, kVmSin, kernelA11)
ZOV_UNARY_THUNK(zovsSinh_32f_A11, kVmSinh, kernelA11)
ZOV_UNARY_THUNK(zovsTan_32f_A11, kVmTan, kernelA11)
ZOV_UNARY_THUNK(zovsTanh_32f_A11, kVmTanh, kernelA11)

}  // namespace zov::ZOV_LEVEL_NAMESPACE

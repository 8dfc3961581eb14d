// The loops that an application programmer would write in place of our routines, with the arguments
// of the exports. They are compiled once for each level with its instruction flags.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"

// The formatter moves such a list at each run.
// clang-format off
#define ZOV_PLAIN_LOOPS(X)                                                                        \
  X(zovsSet_8u) X(zovsSet_32s) X(zovsSet_32f) X(zovsZero_32f) X(zovsZero_64f) X(zovsCopy_32f)     \
  X(zovsCopy_64f) X(zovsFind_8u) X(zovsFind_16u) X(zovsReplaceC_16u) X(zovsThreshold_32f_I)       \
  X(zovsThreshold_GTVal_32f) X(zovsThreshold_GTVal_32f_I) X(zovsThreshold_LTVal_32f)              \
  X(zovsThreshold_LTVal_32f_I) X(zovsAdd_32f) X(zovsAdd_32f_I) X(zovsAddC_32f) X(zovsAddC_32f_I)  \
  X(zovsAddC_64f_I) X(zovsSub_32f) X(zovsSub_32f_I) X(zovsSubC_32f) X(zovsSubC_32f_I)             \
  X(zovsSubCRev_32f) X(zovsMul_32f) X(zovsMul_32f_I) X(zovsMul_64f_I) X(zovsMul_64fc)             \
  X(zovsMulC_32f) X(zovsMulC_32f_I) X(zovsMulC_64f_I) X(zovsDiv_32f) X(zovsDivC_32f)              \
  X(zovsDivC_32f_I) X(zovsDivCRev_32f) X(zovsDivCRev_32f_I) X(zovsAbs_32f) X(zovsAbs_32f_I)       \
  X(zovsSqr_32f_I) X(zovsSqrt_32f) X(zovsMagnitude_32fc) X(zovsMagnitude_64fc)                    \
  X(zovsMagnitude_16sc_Sfs) X(zovsPhase_32fc) X(zovsAdd_16s_Sfs) X(zovsAdd_16s_I)                 \
  X(zovsAdd_16u_ISfs) X(zovsAddC_16u_ISfs) X(zovsSubC_16u_ISfs) X(zovsSubC_16s_I)                 \
  X(zovsMulC_16s_I) X(zovsAbs_32s_I) X(zovsAndC_16u) X(zovsAndC_16u_I) X(zovsOr_16u_I)            \
  X(zovsLShiftC_16u) X(zovsLShiftC_16u_I) X(zovsRShiftC_16u_I) X(zovsCeil_32f) X(zovsFloor_32f)
#define ZOV_PLAIN_SAMPLE_LOOPS(X)                                                                 \
  X(zovsConvert_16s32f) X(zovsConvert_16s64f_Sfs) X(zovsConvert_32f64f) X(zovsConvert_64f32f)     \
  X(zovsConvert_32s16s) X(zovsConvert_32f16s_Sfs) X(zovsConvert_64f16s_Sfs)                       \
  X(zovsSplitScaled_16s32f_D2L) X(zovsSum_16s32s_Sfs) X(zovsMean_16s_Sfs) X(zovsMean_32s_Sfs)     \
  X(zovsMean_32f) X(zovsMean_64f) X(zovsStdDev_32f) X(zovsMax_16s) X(zovsMax_32f) X(zovsMax_64f)  \
  X(zovsMin_16s) X(zovsMin_32f) X(zovsMinMax_16s) X(zovsMinMax_16u) X(zovsMinMax_32f)             \
  X(zovsMaxIndx_32f) X(zovsMinIndx_32f) X(zovsMaxEvery_32f_I) X(zovsMinEvery_32f_I)               \
  X(zovsNormalize_32f) X(zovsNormalize_64f)
// clang-format on

namespace zov::bench {

#define ZOV_DECLARE(name) extern const decltype(&Kelo_##name) plain_##name[kLevelCount];
ZOV_PLAIN_LOOPS(ZOV_DECLARE)
ZOV_PLAIN_SAMPLE_LOOPS(ZOV_DECLARE)
#undef ZOV_DECLARE

}  // namespace zov::bench

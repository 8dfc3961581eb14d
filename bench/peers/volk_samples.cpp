// VOLK's kernels as its headers give them, compiled with the instruction flags of a level.
#define LV_HAVE_GENERIC
#define LV_HAVE_SSE
#define LV_HAVE_SSE2
#ifdef __SSE4_1__
#define LV_HAVE_SSE4_1
#endif
#ifdef __AVX__
#define LV_HAVE_AVX
#endif
#ifdef __AVX2__
#define LV_HAVE_AVX2
#endif

#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <volk/volk_complex.h>

#include <volk/volk_16i_s32f_convert_32f.h>
#include <volk/volk_16ic_s32f_deinterleave_32f_x2.h>
#include <volk/volk_32f_convert_64f.h>
#include <volk/volk_32f_index_max_32u.h>
#include <volk/volk_32f_index_min_32u.h>
#include <volk/volk_32f_s32f_convert_16i.h>
#include <volk/volk_32f_stddev_and_mean_32f_x2.h>
#include <volk/volk_32f_x2_max_32f.h>
#include <volk/volk_32f_x2_min_32f.h>
#include <volk/volk_64f_convert_32f.h>

#include "peers/volk_samples.h"

// The best of those that a level has, by the oldest that there is.
#if defined(__AVX2__)
#define AVX2_OR(name, other) name##_a_avx2
#else
#define AVX2_OR(name, other) other
#endif
#if defined(__AVX__)
#define AVX_OR(name, other) name##_a_avx
#else
#define AVX_OR(name, other) other
#endif
#if defined(__SSE4_1__)
#define SSE4_OR(name, other) name##_a_sse4_1
#else
#define SSE4_OR(name, other) other
#endif
#define FROM_SSE(name) AVX_OR(name, name##_a_sse)
#define FROM_SSE2(name) AVX_OR(name, name##_a_sse2)
#define FROM_SSE_AND_4(name) AVX_OR(name, SSE4_OR(name, name##_a_sse))

namespace zov::bench::volk::ZOV_LEVEL_NAMESPACE {

extern const VolkSampleKernels kSamples;
const VolkSampleKernels kSamples = {
    AVX2_OR(volk_16i_s32f_convert_32f, FROM_SSE_AND_4(volk_16i_s32f_convert_32f)),
    FROM_SSE2(volk_32f_convert_64f),
    FROM_SSE2(volk_64f_convert_32f),
    AVX2_OR(volk_32f_s32f_convert_16i, FROM_SSE2(volk_32f_s32f_convert_16i)),
    [](float* first, float* second, const void* pairs, float scale, unsigned n) {
      AVX2_OR(volk_16ic_s32f_deinterleave_32f_x2, volk_16ic_s32f_deinterleave_32f_x2_a_sse)
      (first, second, static_cast<const lv_16sc_t*>(pairs), scale, n);
    },
    FROM_SSE(volk_32f_stddev_and_mean_32f_x2),
    FROM_SSE_AND_4(volk_32f_index_max_32u),
    FROM_SSE_AND_4(volk_32f_index_min_32u),
    FROM_SSE(volk_32f_x2_max_32f),
    FROM_SSE(volk_32f_x2_min_32f),
};

}  // namespace zov::bench::volk::ZOV_LEVEL_NAMESPACE

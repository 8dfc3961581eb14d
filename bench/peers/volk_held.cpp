// VOLK's kernels as its headers give them, compiled with the instruction flags of a level.
#define LV_HAVE_GENERIC
#define LV_HAVE_SSE
#define LV_HAVE_SSE2
#ifdef __SSE3__
#define LV_HAVE_SSE3
#endif
#ifdef __SSE4_1__
#define LV_HAVE_SSE4_1
#endif
#ifdef __AVX__
#define LV_HAVE_AVX
#endif
#ifdef __AVX2__
#define LV_HAVE_AVX2
#define LV_HAVE_FMA
#endif

#pragma GCC diagnostic ignored "-Wunused-function"
#include <volk/volk_complex.h>

#include <volk/volk_16ic_magnitude_16i.h>
#include <volk/volk_32f_s32f_add_32f.h>
#include <volk/volk_32f_s32f_multiply_32f.h>
#include <volk/volk_32f_sqrt_32f.h>
#include <volk/volk_32f_x2_add_32f.h>
#include <volk/volk_32f_x2_divide_32f.h>
#include <volk/volk_32f_x2_multiply_32f.h>
#include <volk/volk_32f_x2_subtract_32f.h>
#include <volk/volk_32fc_magnitude_32f.h>
#include <volk/volk_32i_x2_or_32i.h>
#include <volk/volk_64f_x2_multiply_64f.h>

#include "peers/volk.h"

#if defined(__AVX__)
#define BEST(name) name##_a_avx
#define BEST_DOUBLE(name) name##_a_avx
#define BEST_COMPLEX(name) name##_a_avx
#else
#define BEST(name) name##_a_sse
#define BEST_DOUBLE(name) name##_a_sse2
#if defined(__SSE3__)
#define BEST_COMPLEX(name) name##_a_sse3
#else
#define BEST_COMPLEX(name) name##_a_sse
#endif
#endif
#if defined(__AVX2__)
#define BEST_BITS(name) name##_a_avx2
#else
#define BEST_BITS(name) name##_a_sse
#endif
#if defined(__AVX2__)
#define BEST_INTEGER(name) name##_a_avx2
#elif defined(__SSE3__)
#define BEST_INTEGER(name) name##_a_sse3
#else
#define BEST_INTEGER(name) name##_a_sse
#endif

namespace zov::bench::volk::ZOV_LEVEL_NAMESPACE {

extern const VolkKernels kKernels;
const VolkKernels kKernels = {
    BEST(volk_32f_x2_add_32f),
    BEST(volk_32f_x2_subtract_32f),
    BEST(volk_32f_x2_multiply_32f),
    BEST(volk_32f_x2_divide_32f),
    BEST(volk_32f_s32f_add_32f),
    BEST(volk_32f_s32f_multiply_32f),
    BEST(volk_32f_sqrt_32f),
    [](float* out, const void* a, unsigned n) {
      BEST_COMPLEX(volk_32fc_magnitude_32f)(out, static_cast<const lv_32fc_t*>(a), n);
    },
    [](std::int16_t* out, const void* a, unsigned n) {
      BEST_INTEGER(volk_16ic_magnitude_16i)(out, static_cast<const lv_16sc_t*>(a), n);
    },
    BEST_DOUBLE(volk_64f_x2_multiply_64f),
    [](void* out, const void* a, const void* b, unsigned n) {
      BEST_BITS(volk_32i_x2_or_32i)
      (static_cast<std::int32_t*>(out), static_cast<const std::int32_t*>(a),
       static_cast<const std::int32_t*>(b), n);
    },
};

}  // namespace zov::bench::volk::ZOV_LEVEL_NAMESPACE

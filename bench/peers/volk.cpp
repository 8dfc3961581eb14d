// VOLK's kernels by level, and as VOLK dispatches them itself.
#include "peers/volk.h"
#include "peers/volk_samples.h"

#include <volk/volk.h>

namespace zov::bench {

namespace {
// An export of VOLK is a variable that its first call fills in, so it is read at each call.
template <auto* kernel, class Function>
struct Through;
template <auto* kernel, class... Argument>
struct Through<kernel, void (*)(Argument...)> {
  static void Call(Argument... argument) { (*kernel)(argument...); }
};
#define THROUGH(name) Through<&name, decltype(name)>::Call
}  // namespace

const VolkKernels kVolkUnheld = {
    THROUGH(volk_32f_x2_add_32f),
    THROUGH(volk_32f_x2_subtract_32f),
    THROUGH(volk_32f_x2_multiply_32f),
    THROUGH(volk_32f_x2_divide_32f),
    THROUGH(volk_32f_s32f_add_32f),
    THROUGH(volk_32f_s32f_multiply_32f),
    THROUGH(volk_32f_sqrt_32f),
    [](float* out, const void* a, unsigned n) {
      volk_32fc_magnitude_32f(out, static_cast<const lv_32fc_t*>(a), n);
    },
    [](std::int16_t* out, const void* a, unsigned n) {
      volk_16ic_magnitude_16i(out, static_cast<const lv_16sc_t*>(a), n);
    },
    THROUGH(volk_64f_x2_multiply_64f),
    [](void* out, const void* a, const void* b, unsigned n) {
      volk_32i_x2_or_32i(static_cast<std::int32_t*>(out), static_cast<const std::int32_t*>(a),
                         static_cast<const std::int32_t*>(b), n);
    },
};

#define ZOV_DECLARE(level)                 \
  namespace volk::level {                  \
  extern const VolkKernels kKernels;       \
  extern const VolkSampleKernels kSamples; \
  }
ZOV_DECLARE(sse2)
ZOV_DECLARE(sse3)
ZOV_DECLARE(ssse3)
ZOV_DECLARE(ssse3_movbe)
ZOV_DECLARE(sse4)
ZOV_DECLARE(avx)
ZOV_DECLARE(avx2)

const VolkKernels* const kVolkHeld[kLevelCount] = {
    &volk::sse2::kKernels,        &volk::sse3::kKernels, &volk::ssse3::kKernels,
    &volk::ssse3_movbe::kKernels, &volk::sse4::kKernels, &volk::avx::kKernels,
    &volk::avx2::kKernels};

const VolkSampleKernels* const kVolkSamples[kLevelCount] = {
    &volk::sse2::kSamples,        &volk::sse3::kSamples, &volk::ssse3::kSamples,
    &volk::ssse3_movbe::kSamples, &volk::sse4::kSamples, &volk::avx::kSamples,
    &volk::avx2::kSamples};

}  // namespace zov::bench

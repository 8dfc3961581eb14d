// Loops over the vector functions of SLEEF, libmvec and VOLK, compiled with the instruction flags
// of a level and calling what each library has for them.
#include "peers/math.h"

#include <immintrin.h>

#include <cstring>

#if KELOZOV_BENCH_SLEEF
#include <sleef.h>
#endif

#if KELOZOV_BENCH_VOLK
#define LV_HAVE_GENERIC 1
#define LV_HAVE_SSE 1
#define LV_HAVE_SSE2 1
#ifdef __SSE4_1__
#define LV_HAVE_SSE4_1 1
#endif
#ifdef __AVX__
#define LV_HAVE_AVX 1
#endif
#ifdef __AVX2__
#define LV_HAVE_AVX2 1
#define LV_HAVE_FMA 1
#endif
#pragma GCC diagnostic ignored "-Wunused-function"
#include <volk/volk_common.h>

#include <volk/volk_32f_acos_32f.h>
#include <volk/volk_32f_asin_32f.h>
#include <volk/volk_32f_atan_32f.h>
#include <volk/volk_32f_cos_32f.h>
#include <volk/volk_32f_exp_32f.h>
#include <volk/volk_32f_log2_32f.h>
#include <volk/volk_32f_s32f_multiply_32f.h>
#include <volk/volk_32f_sin_32f.h>
#include <volk/volk_32f_tan_32f.h>
#include <volk/volk_32f_tanh_32f.h>
#include <volk/volk_32f_x2_pow_32f.h>
#endif

namespace zov::bench::math::ZOV_LEVEL_NAMESPACE {

namespace {

#if defined(__AVX__)
using Register = __m256;
Register Load(const float* p) { return _mm256_loadu_ps(p); }
void Store(float* p, Register x) { _mm256_storeu_ps(p, x); }
[[maybe_unused]] Register Splat(float x) { return _mm256_set1_ps(x); }
#else
using Register = __m128;
Register Load(const float* p) { return _mm_loadu_ps(p); }
void Store(float* p, Register x) { _mm_storeu_ps(p, x); }
[[maybe_unused]] Register Splat(float x) { return _mm_set1_ps(x); }
#endif
constexpr int kLanes = sizeof(Register) / sizeof(float);

// out[i] = f(x[i]...), the last ones as part of a register that is filled up with ones.
template <class Function, class... X>
void ForAll(Function f, float* out, int n, const X*... x) {
  int i = 0;
  for (; i <= n - kLanes; i += kLanes) Store(out + i, f(Load(x + i)...));
  if (i == n) return;
  const auto part = [&](const float* p) {
    float padded[kLanes];
    for (int k = 0; k < kLanes; ++k) padded[k] = k < n - i ? p[i + k] : 1.0F;
    return Load(padded);
  };
  float last[kLanes];
  Store(last, f(part(x)...));
  std::memcpy(out + i, last, static_cast<std::size_t>(n - i) * sizeof(float));
}

template <auto* function>
void Unary(float* out, const float* x, int n) {
  ForAll([](Register a) { return function(a); }, out, n, x);
}
template <auto* function>
void Binary(float* out, const float* x, const float* y, int n) {
  ForAll([](Register a, Register b) { return function(a, b); }, out, n, x, y);
}
template <auto* function>
void Constant(float* out, const float* x, float y, int n) {
  const Register b = Splat(y);
  ForAll([b](Register a) { return function(a, b); }, out, n, x);
}

#if KELOZOV_BENCH_VOLK
template <auto* function>
void Whole(float* out, const float* x, int n) {
  function(out, x, static_cast<unsigned>(n));
}
#endif

}  // namespace

extern const MathLibraries kLibraries;

#if defined(__AVX2__)
#define SLEEF(name, accuracy) Sleef_##name##f8_##accuracy##avx2
#define MVEC(shape, name) _ZGVdN8##shape##_##name
#define VOLK(name, generic) name##_a_avx2_fma
#define VOLK_TANH volk_32f_tanh_32f_a_avx_fma
#elif defined(__AVX__)
#define SLEEF(name, accuracy) Sleef_##name##f8_##accuracy##avx
#define MVEC(shape, name) _ZGVcN8##shape##_##name
#define VOLK(name, generic) name##_a_sse4_1
#define VOLK_TANH volk_32f_tanh_32f_a_avx
#else
#define MVEC(shape, name) _ZGVbN4##shape##_##name
#define VOLK_TANH volk_32f_tanh_32f_a_sse
#if defined(__SSE4_1__)
#define SLEEF(name, accuracy) Sleef_##name##f4_##accuracy##sse4
#define VOLK(name, generic) name##_a_sse4_1
#else
#define SLEEF(name, accuracy) Sleef_##name##f4_##accuracy##sse2
#define VOLK(name, generic) name##_##generic
#endif
#endif

// The C library declares its vector functions to the compiler alone.
#if KELOZOV_BENCH_LIBMVEC
extern "C" {
#define DECLARE(name) Register MVEC(v, name)(Register);
DECLARE(acosf)
DECLARE(asinf)
DECLARE(atanf)
DECLARE(cosf)
DECLARE(coshf)
DECLARE(expf)
DECLARE(logf)
DECLARE(log10f)
DECLARE(sinf)
DECLARE(sinhf)
DECLARE(tanf)
DECLARE(tanhf)
Register MVEC(vv, atan2f)(Register, Register);
Register MVEC(vv, powf)(Register, Register);
}
#endif

const MathLibraries kLibraries = {
    {
#if KELOZOV_BENCH_SLEEF
        {"SLEEF", Unary<SLEEF(acos, u35)>, Unary<SLEEF(asin, u35)>, Unary<SLEEF(atan, u35)>,
         Unary<SLEEF(cos, u35)>, Unary<SLEEF(cosh, u35)>, Unary<SLEEF(exp, u10)>,
         Unary<SLEEF(log, u35)>, Unary<SLEEF(log10, u10)>, Unary<SLEEF(sin, u35)>,
         Unary<SLEEF(sinh, u35)>, Unary<SLEEF(tan, u35)>, Unary<SLEEF(tanh, u35)>,
         Binary<SLEEF(atan2, u35)>, Binary<SLEEF(pow, u10)>, Constant<SLEEF(pow, u10)>},
#endif
#if KELOZOV_BENCH_LIBMVEC
        {"libmvec", Unary<MVEC(v, acosf)>, Unary<MVEC(v, asinf)>, Unary<MVEC(v, atanf)>,
         Unary<MVEC(v, cosf)>, Unary<MVEC(v, coshf)>, Unary<MVEC(v, expf)>, Unary<MVEC(v, logf)>,
         Unary<MVEC(v, log10f)>, Unary<MVEC(v, sinf)>, Unary<MVEC(v, sinhf)>, Unary<MVEC(v, tanf)>,
         Unary<MVEC(v, tanhf)>, Binary<MVEC(vv, atan2f)>, Binary<MVEC(vv, powf)>,
         Constant<MVEC(vv, powf)>},
#endif
#if KELOZOV_BENCH_VOLK
        {"VOLK", Whole<VOLK(volk_32f_acos_32f, generic)>, Whole<VOLK(volk_32f_asin_32f, u_generic)>,
         Whole<VOLK(volk_32f_atan_32f, generic)>, Whole<VOLK(volk_32f_cos_32f, generic)>, nullptr,
         Whole<volk_32f_exp_32f_a_sse2>,
         // Logarithms to other bases go through that to the base of two.
         [](float* out, const float* x, int n) {
           VOLK(volk_32f_log2_32f, generic)(out, x, static_cast<unsigned>(n));
           volk_32f_s32f_multiply_32f_a_sse(out, out, 0.69314718F, static_cast<unsigned>(n));
         },
         [](float* out, const float* x, int n) {
           VOLK(volk_32f_log2_32f, generic)(out, x, static_cast<unsigned>(n));
           volk_32f_s32f_multiply_32f_a_sse(out, out, 0.30103F, static_cast<unsigned>(n));
         },
         Whole<VOLK(volk_32f_sin_32f, generic)>, nullptr, Whole<VOLK(volk_32f_tan_32f, generic)>,
         Whole<VOLK_TANH>, nullptr,
         // The exponents come first here.
         [](float* out, const float* x, const float* y, int n) {
           VOLK(volk_32f_x2_pow_32f, generic)(out, y, x, static_cast<unsigned>(n));
         },
         nullptr},
#endif
    },
    (KELOZOV_BENCH_SLEEF + 0) + (KELOZOV_BENCH_LIBMVEC + 0) + (KELOZOV_BENCH_VOLK + 0)};

}  // namespace zov::bench::math::ZOV_LEVEL_NAMESPACE

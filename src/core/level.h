// The instruction-set level that a source is being compiled for, and the namespace of that build.
// Everything that level code defines lives in that namespace, so that no two levels share a symbol.
#pragma once

#include <cstdint>

#if !defined(ZOV_LEVEL)
#define ZOV_LEVEL_NAMESPACE common
#elif ZOV_LEVEL == 0
#define ZOV_LEVEL_NAMESPACE sse2
#elif ZOV_LEVEL == 1
#define ZOV_LEVEL_NAMESPACE sse3
#elif ZOV_LEVEL == 2
#define ZOV_LEVEL_NAMESPACE ssse3
#elif ZOV_LEVEL == 3
#define ZOV_LEVEL_NAMESPACE ssse3_movbe
#elif ZOV_LEVEL == 4
#define ZOV_LEVEL_NAMESPACE sse4
#elif ZOV_LEVEL == 5
#define ZOV_LEVEL_NAMESPACE avx
#elif ZOV_LEVEL == 6
#define ZOV_LEVEL_NAMESPACE avx2
#else
#error "ZOV_LEVEL is a number from 0 to 6"
#endif

#define ZOV_INLINE inline __attribute__((always_inline))
#define ZOV_NOINLINE __attribute__((noinline))
// For routines whose shortest calls take a dozen cycles: they begin on a cache line.
#define ZOV_ON_CACHE_LINE __attribute__((aligned(64)))
#ifdef _WIN32
#define ZOV_HIDDEN
#else
#define ZOV_HIDDEN __attribute__((visibility("hidden")))
#endif

namespace zov {

enum class Level : std::int32_t { sse2, sse3, ssse3, ssse3_movbe, sse4, avx, avx2 };
constexpr int kLevelCount = 7;

namespace ZOV_LEVEL_NAMESPACE {
#if defined(ZOV_LEVEL)
constexpr Level kLevel = Level{ZOV_LEVEL};
#else
constexpr Level kLevel = Level::sse2;
#endif
}  // namespace ZOV_LEVEL_NAMESPACE

}  // namespace zov

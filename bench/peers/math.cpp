// Gathers the builds of the peers' vector functions into a table by level.
#include "peers/math.h"

namespace zov::bench {

#define ZOV_DECLARE(level)               \
  namespace math::level {                \
  extern const MathLibraries kLibraries; \
  }
ZOV_DECLARE(sse2)
ZOV_DECLARE(sse3)
ZOV_DECLARE(ssse3)
ZOV_DECLARE(ssse3_movbe)
ZOV_DECLARE(sse4)
ZOV_DECLARE(avx)
ZOV_DECLARE(avx2)

const MathLibraries* const kMathLibraries[kLevelCount] = {
    &math::sse2::kLibraries,        &math::sse3::kLibraries, &math::ssse3::kLibraries,
    &math::ssse3_movbe::kLibraries, &math::sse4::kLibraries, &math::avx::kLibraries,
    &math::avx2::kLibraries};

}  // namespace zov::bench

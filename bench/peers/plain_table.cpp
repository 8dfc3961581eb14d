// Gathers the builds of the plain loops into tables by level.
#include "peers/plain.h"

namespace zov::bench {

#define ZOV_DECLARE(name) decltype(Kelo_##name) name;
#define ZOV_DECLARE_LEVEL(level)      \
  namespace plain::level {            \
  ZOV_PLAIN_LOOPS(ZOV_DECLARE)        \
  ZOV_PLAIN_SAMPLE_LOOPS(ZOV_DECLARE) \
  }
ZOV_DECLARE_LEVEL(sse2)
ZOV_DECLARE_LEVEL(sse3)
ZOV_DECLARE_LEVEL(ssse3)
ZOV_DECLARE_LEVEL(ssse3_movbe)
ZOV_DECLARE_LEVEL(sse4)
ZOV_DECLARE_LEVEL(avx)
ZOV_DECLARE_LEVEL(avx2)

#define ZOV_DEFINE(name)                                                                  \
  const decltype(&Kelo_##name) plain_##name[kLevelCount] = {                              \
      plain::sse2::name, plain::sse3::name, plain::ssse3::name, plain::ssse3_movbe::name, \
      plain::sse4::name, plain::avx::name,  plain::avx2::name};
ZOV_PLAIN_LOOPS(ZOV_DEFINE)
ZOV_PLAIN_SAMPLE_LOOPS(ZOV_DEFINE)

}  // namespace zov::bench

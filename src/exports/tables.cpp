// Fills the tables at link time. They stay writable, as a debugger or a test may pin a level.
#include "exports/tables.h"

#define ZOV_PLAIN_EXPORT(name)

#define ZOV_EXPORT(name, ...) decltype(::Kelo_##name) name;
namespace zov::sse2 {
#include "exports/exports.inc"
}
namespace zov::sse3 {
#include "exports/exports.inc"
}
namespace zov::ssse3 {
#include "exports/exports.inc"
}
namespace zov::ssse3_movbe {
#include "exports/exports.inc"
}
namespace zov::sse4 {
#include "exports/exports.inc"
}
namespace zov::avx {
#include "exports/exports.inc"
}
namespace zov::avx2 {
#include "exports/exports.inc"
}
#undef ZOV_EXPORT

extern "C" {
#define ZOV_EXPORT(name, l0, l1, l2, l3, l4, l5, l6)              \
  decltype(&Kelo_##name) zovTable_##name[zov::kLevelCount] = {    \
      zov::l0::name, zov::l1::name, zov::l2::name, zov::l3::name, \
      zov::l4::name, zov::l5::name, zov::l6::name};
#include "exports/exports.inc"
#undef ZOV_EXPORT
}

// Finds exports by name.
#include "routine.h"

#include <cstring>

#include "exports/tables.h"

namespace zov::bench {

Export FindExport(const char* name) {
#define ZOV_EXPORT(export, ...)                                               \
  if (std::strcmp(name, #export) == 0) {                                      \
    return {reinterpret_cast<void (*)()>(&Kelo_##export), zovTable_##export}; \
  }
#define ZOV_PLAIN_EXPORT(export)
#include "exports/exports.inc"
#undef ZOV_EXPORT
#undef ZOV_PLAIN_EXPORT
  return {};
}

}  // namespace zov::bench

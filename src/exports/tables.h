// The table of each dispatched export: its routine at each of the seven levels.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"

extern "C" {
#define ZOV_EXPORT(name, ...) \
  extern ZOV_HIDDEN decltype(&Kelo_##name) zovTable_##name[zov::kLevelCount];
#define ZOV_PLAIN_EXPORT(name)
#include "exports/exports.inc"
#undef ZOV_EXPORT
#undef ZOV_PLAIN_EXPORT
}

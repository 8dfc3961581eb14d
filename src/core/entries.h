// Declares the routine that each dispatched export has at the level being built. The type is that
// of the public prototype, so a routine with another signature lacks a declaration and does not
// compile.
#pragma once

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {
#define ZOV_EXPORT(name, ...) decltype(::Kelo_##name) name;
#define ZOV_PLAIN_EXPORT(name)
#include "exports/exports.inc"
#undef ZOV_EXPORT
#undef ZOV_PLAIN_EXPORT
}  // namespace zov::ZOV_LEVEL_NAMESPACE

// Names of all exports, for the tests and benchmarks that walk them.
#pragma once

namespace zov {

inline constexpr const char* kDispatchedExports[] = {
#define ZOV_EXPORT(name, ...) "Kelo_" #name,
#define ZOV_PLAIN_EXPORT(name)
#include "exports/exports.inc"
#undef ZOV_EXPORT
#undef ZOV_PLAIN_EXPORT
};

}  // namespace zov

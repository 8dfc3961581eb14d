// An export under test together with its plain loop: ROUTINE(zovsAdd_32f).
#pragma once

#include "kelozov/kelozov.h"
#include "peers/plain.h"

namespace zov::bench {

template <class Function>
struct Routine {
  const char* name;
  Function entry;         // as applications call it, through the entry that dispatches
  const Function* plain;  // the loop that the compiler vectorises, built for each level
};

#define ROUTINE(name) \
  zov::bench::Routine<decltype(&Kelo_##name)> { #name, &Kelo_##name, zov::bench::plain_##name }

}  // namespace zov::bench

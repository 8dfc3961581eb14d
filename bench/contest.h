// A contest: our routine and its peers on the same arrays, to be timed in turns.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "kelozov/kelozov.h"

namespace zov::bench {

// A peer is held to the instructions of the level under test; an unheld one runs as it likes, and
// is shown but not compared.
enum class Role { ours, peer, unheld };

struct Contestant {
  std::string name;
  Role role;
  std::function<void(std::int64_t calls)> run;
};

class Contest {
 public:
  Contest(int level, bool withPeers) : level_(level), withPeers_(withPeers) {}

  // The level under test, for peers that come in builds of their own.
  int level() const { return level_; }
  // False where peers would be set up in vain.
  bool withPeers() const { return withPeers_; }

  // `call` returns the status: a routine that refuses its arguments would look fast.
  template <class Call>
  void Ours(Call call) {
    if (call() != zovStsNoErr) throw std::runtime_error("a routine under test reports a status");
    Add("KeloZov", Role::ours, call);
  }
  template <class Call>
  void Peer(std::string name, Call call) {
    Add(std::move(name), Role::peer, call);
  }
  template <class Call>
  void Unheld(std::string name, Call call) {
    Add(std::move(name), Role::unheld, call);
  }

  // An array that lives as long as the contest, aligned to a cache line. Successive arrays start at
  // different places of a page, so that none of their lines share the low address bits.
  template <class T>
  T* Array(std::size_t count) {
    return static_cast<T*>(Allocate(count * sizeof(T)));
  }

  // Keeps an object of a peer until the contest is over.
  void Keep(std::shared_ptr<void> object) { kept_.push_back(std::move(object)); }

  const std::vector<Contestant>& contestants() const { return contestants_; }

 private:
  // The repetition is inside, so that a call costs what it costs in a loop of an application.
  template <class Call>
  void Add(std::string name, Role role, Call call) {
    contestants_.push_back({std::move(name), role, [call](std::int64_t calls) {
                              const Call local = call;
                              for (std::int64_t i = 0; i < calls; ++i) {
                                local();
                                benchmark::ClobberMemory();
                              }
                            }});
  }
  void* Allocate(std::size_t bytes);

  int level_;
  bool withPeers_;
  std::vector<Contestant> contestants_;
  std::vector<std::shared_ptr<void>> kept_;
};

}  // namespace zov::bench

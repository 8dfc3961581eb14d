// Walks all 2^32 arguments of the vector maths, or every n-th, through the kernels of every class
// and level, and prints the worst errors as the tables of docs/accuracy_vm.md.
//
//   vm_accuracy_sweep [--stride n] [--threads n] [--class A11] [--ordinary] [function ...]
//
// --class walks the kernels of one class, --ordinary leaves out what is outside the ordinary range.
// Functions of two arguments walk random pairs instead, stratified by the exponents of both.
//
// Arguments that every kernel of a function hands to the one routine for elements outside its
// ordinary range are walked by one kernel; the others meet every 64th run of them.
#include "sweep_arithmetic.h"

#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/cpu.h"
#include "signal/vm/kernels.h"

namespace {

using namespace zov;
using namespace zov::test;

constexpr int kChunk = 1 << 14;
constexpr int kLevels[] = {0, 1, 2, 4, 5, 6};
const char* const kLevelNames[] = {"0", "1", "2, 3", "", "4", "5", "6"};

int onlyClass = -1;
bool onlyOrdinary = false;

using Errors = std::vector<WorstError>;  // by class, then by level

template <class Body>
Errors InParallel(int threads, Body body) {
  std::vector<Errors> parts(static_cast<std::size_t>(threads), Errors(3 * kLevelCount));
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t)
    workers.emplace_back([&, t] { body(t, parts[static_cast<std::size_t>(t)]); });
  for (std::thread& worker : workers) worker.join();
  for (int t = 1; t < threads; ++t) {
    for (std::size_t i = 0; i < parts[0].size(); ++i)
      parts[0][i].Merge(parts[static_cast<std::size_t>(t)][i]);
  }
  return parts[0];
}

// The results of a chunk that differ, and their errors: many a kernel gives the same as another.
struct Distinct {
  std::vector<float> result;
  WorstError worst;
};

// A kernel that repeats an earlier column has that column's errors.
template <class Row, class Call>
void WalkKernels(const Row* const (&rows)[kLevelCount], Errors& errors, const float* x,
                 const float* y, const std::vector<double>& exact, bool onlyOne, Call call) {
  thread_local std::vector<Distinct> distinct(3 * kLevelCount, {std::vector<float>(kChunk), {}});
  std::size_t count = 0;
  for (const int level : kLevels) {
    if (level > zovDispatchIndex || (onlyOne && level < zovDispatchIndex)) continue;
    for (int c = 0; c < 3; ++c) {
      if (c == 2 && KernelOf(*rows[level], 2) == KernelOf(*rows[level], 1)) continue;
      if (c == 1 && KernelOf(*rows[level], 1) == KernelOf(*rows[level], 0)) continue;
      if ((c > 0 && onlyOne) || (onlyClass >= 0 && c != onlyClass)) continue;
      Distinct& own = distinct[count];
      call(KernelOf(*rows[level], c), own.result.data());
      std::size_t same = 0;
      while (std::memcmp(distinct[same].result.data(), own.result.data(), kChunk * 4) != 0) ++same;
      if (same == count) {
        own.worst = {};
        AddErrors(own.worst, own.result.data(), exact.data(), x, y, kChunk);
        ++count;
      }
      errors[static_cast<std::size_t>(c * kLevelCount + level)].Merge(distinct[same].worst);
    }
  }
}

// Whether a kernel of the function leaves the argument to the routine for special elements, and
// with it every one of the same sign and a larger magnitude.
bool IsOutside(const std::string& name, float x) {
  const float magnitude = std::fabs(x);
  if (name == "Ln" || name == "Log10") return std::signbit(x);
  if (name == "Acos" || name == "Asin") return magnitude > 1;
  if (name == "Atan") return magnitude >= 0x1p64F;
  if (name == "Cos" || name == "Sin" || name == "Tan") return magnitude >= 10000;
  if (name == "Cosh" || name == "Sinh") return magnitude > 88;
  return name == "Exp" && magnitude > 128;
}

Errors SweepUnary(const UnaryFunction& function, std::uint64_t stride, int threads) {
  const std::uint64_t chunks = (std::uint64_t{1} << 32) / stride / kChunk;
  return InParallel(threads, [&](int t, Errors& errors) {
    std::vector<float> x(kChunk);
    std::vector<double> exact(kChunk);
    for (std::uint64_t chunk = static_cast<std::uint64_t>(t); chunk < chunks;
         chunk += static_cast<std::uint64_t>(threads)) {
      for (std::uint64_t i = 0; i < kChunk; ++i) {
        x[i] = std::bit_cast<float>(static_cast<std::uint32_t>((chunk * kChunk + i) * stride));
      }
      if (onlyOrdinary && IsOutside(function.name, x[0])) continue;
      FillReference(function, x.data(), exact.data(), kChunk);
      // A chunk has one sign.
      const bool onlyOne = IsOutside(function.name, x[0]) && chunk % 64 != 0;
      WalkKernels(function.row, errors, x.data(), nullptr, exact, onlyOne,
                  [&](UnaryKernel* kernel, float* result) { kernel(x.data(), result, kChunk); });
    }
  });
}

// Pairs of random numbers with every pair of exponents, and pairs that meet the edges of the power:
// bases near one, integer and half-integer exponents, results near overflow and underflow.
void FillPairs(std::mt19937& random, float* x, float* y) {
  for (int i = 0; i < kChunk; ++i) {
    x[i] = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    y[i] = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    const double u = static_cast<double>(random()) * 0x1p-32;
    const double base = std::fabs(static_cast<double>(x[i]));
    switch (i % 8) {
      case 1:  // the result anywhere in the range of a float
        y[i] = static_cast<float>((u * 300 - 155) / std::log2(base));
        break;
      case 2:  // a base near one
        x[i] = std::bit_cast<float>(0x3F800000U + static_cast<std::uint32_t>((u - 0.5) * 0x1p20));
        y[i] = static_cast<float>((static_cast<double>(random()) * 0x1p-32 * 300 - 155) /
                                  std::log2(static_cast<double>(x[i])));
        break;
      case 3:  // integers and halves
        y[i] = static_cast<float>(std::floor(u * 128) / 2 - 32);
        break;
      case 4:  // common numbers
        x[i] = static_cast<float>(u * 100);
        y[i] = static_cast<float>(static_cast<double>(random()) * 0x1p-32 * 16 - 8);
        break;
      default:
        break;
    }
  }
}

Errors SweepBinary(const BinaryFunction& function, std::uint64_t stride, int threads) {
  const std::uint64_t chunks = (std::uint64_t{1} << 32) / stride / kChunk;
  return InParallel(threads, [&](int t, Errors& errors) {
    std::mt19937 random(static_cast<unsigned>(t) + 1);
    std::vector<float> x(kChunk), y(kChunk);
    std::vector<double> exact(kChunk);
    for (std::uint64_t chunk = static_cast<std::uint64_t>(t); chunk < chunks;
         chunk += static_cast<std::uint64_t>(threads)) {
      FillPairs(random, x.data(), y.data());
      for (std::size_t i = 0; i < kChunk; ++i) {
        exact[i] = function.reference(static_cast<double>(x[i]), static_cast<double>(y[i]));
      }
      WalkKernels(
          function.row, errors, x.data(), y.data(), exact, false,
          [&](BinaryKernel* kernel, float* result) { kernel(x.data(), y.data(), result, kChunk); });
    }
  });
}

template <class Function>
bool Report(const Function& function, const Errors& errors, bool pairs) {
  bool good = true;
  for (std::size_t c = 0; c < 3; ++c) {
    for (const int level : kLevels) {
      const WorstError& worst = errors[c * kLevelCount + static_cast<std::size_t>(level)];
      if (worst.relative == 0) continue;
      // A kernel keeps the promise of every column that it stands in.
      bool within = true;
      const auto& row = *function.row[level];
      for (std::size_t k = c; k < 3; ++k) {
        if (KernelOf(row, static_cast<int>(k)) == KernelOf(row, static_cast<int>(c)))
          within = within && worst.Within(kClasses[k]);
      }
      std::printf("| %s | %s | %s | %.2f | %.3f | %.9g", function.name, kClasses[c].name,
                  kLevelNames[level], -std::log2(worst.relative), worst.units,
                  static_cast<double>(worst.at));
      if (pairs) std::printf(", %.9g", static_cast<double>(worst.at2));
      std::printf(" |%s\n", within ? "" : " OUTSIDE |");
      if (worst.wrong) {
        std::printf("wrong kind of value at %.9g %.9g\n", static_cast<double>(worst.wrongAt),
                    static_cast<double>(worst.wrongAt2));
      }
      good = good && within;
    }
  }
  std::fflush(stdout);
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  std::uint64_t stride = 1;
  int threads = static_cast<int>(std::thread::hardware_concurrency());
  std::vector<std::string> names;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--stride") == 0 && i + 1 < argc) {
      stride = std::strtoull(argv[++i], nullptr, 10);
    } else if (std::strcmp(argv[i], "--threads") == 0 && i + 1 < argc) {
      threads = std::atoi(argv[++i]);
    } else if (std::strcmp(argv[i], "--class") == 0 && i + 1 < argc) {
      ++i;
      for (int c = 0; c < 3; ++c) {
        if (std::strcmp(argv[i], kClasses[c].name) == 0) onlyClass = c;
      }
    } else if (std::strcmp(argv[i], "--ordinary") == 0) {
      onlyOrdinary = true;
    } else {
      names.emplace_back(argv[i]);
    }
  }
  const auto wanted = [&](const char* name) {
    if (names.empty()) return true;
    for (const std::string& each : names) {
      if (each == name) return true;
    }
    return false;
  };
  bool good = true;
  std::puts("| function | class | level | bits | units | at |\n|---|---|---|---|---|---|");
  for (const UnaryFunction& function : kUnaryFunctions) {
    if (wanted(function.name))
      good &= Report(function, SweepUnary(function, stride, threads), false);
  }
  for (const BinaryFunction& function : kBinaryFunctions) {
    if (wanted(function.name))
      good &= Report(function, SweepBinary(function, stride, threads), true);
  }
  return good ? 0 : 1;
}

// Cases of the vector maths and of the elementary functions without a class, against vector
// functions that are as accurate. A peer that is not is shown with the bits that it has, and not
// compared.
#include <algorithm>
#include <bit>
#include <cmath>
#include <random>
#include <string>

#include "contest.h"
#include "kelozov/kelozov.h"
#include "peers/math.h"
#include "registry.h"

namespace zov::bench {

namespace {

using Unary = decltype(&Kelo_zovsExp_32f_A11);
using Binary = decltype(&Kelo_zovsPow_32f_A11);

struct Range {
  float low, high;
  float At(std::mt19937& random) const {
    return low + (high - low) * (static_cast<float>(random() >> 8) * 0x1p-24F);
  }
};

// A magnitude from 2^-100 to the end of the domain, or one near 1.
float Stratified(std::mt19937& random, Range domain) {
  const double limit = std::max(std::fabs(domain.low), std::fabs(domain.high));
  const double share = static_cast<double>(random()) * 0x1p-32;
  double magnitude = std::exp2(-100 + (std::log2(limit) + 100) * share);
  if (random() % 4 == 0) {
    magnitude = 1 - std::exp2(-24 * share) / 2;
    if (limit > 2 && random() % 2 != 0) magnitude = 1 / magnitude;
  }
  const bool negative = domain.low < 0 && random() % 2 != 0;
  return static_cast<float>(negative ? -magnitude : magnitude);
}

// A function with the elements that the measurement takes, the domain over which a peer has to keep
// the class, and an element outside the ordinary range, if there is such a thing.
struct UnaryFunction {
  const char* operation;
  Unary entry;
  int bits;  // what the name promises, or what is left to us
  MathUnary MathLibrary::*peer;
  double (*exact)(double);
  Range elements, domain;
  float special;  // zero for none
};

constexpr Range kAngles = {-10, 10};
constexpr Range kAngleDomain = {-9999, 9999};
constexpr Range kPositive = {0.01F, 100};

const UnaryFunction kMathFunctions[] = {
    {"zovsAcos_32f_A11",
     Kelo_zovsAcos_32f_A11,
     11,
     &MathLibrary::acos,
     std::acos,
     {-1, 1},
     {-1, 1},
     2},
    {"zovsAsin_32f_A11",
     Kelo_zovsAsin_32f_A11,
     11,
     &MathLibrary::asin,
     std::asin,
     {-1, 1},
     {-1, 1},
     2},
    {"zovsAtan_32f_A11",
     Kelo_zovsAtan_32f_A11,
     11,
     &MathLibrary::atan,
     std::atan,
     {-10, 10},
     {-1e18F, 1e18F},
     1e30F},
    {"zovsCos_32f_A11", Kelo_zovsCos_32f_A11, 11, &MathLibrary::cos, std::cos, kAngles,
     kAngleDomain, 2e4F},
    {"zovsCosh_32f_A11",
     Kelo_zovsCosh_32f_A11,
     11,
     &MathLibrary::cosh,
     std::cosh,
     {-10, 10},
     {-86, 86},
     88},
    {"zovsExp_32f_A11",
     Kelo_zovsExp_32f_A11,
     11,
     &MathLibrary::exp,
     std::exp,
     {-10, 10},
     {-86, 86},
     -100},
    {"zovsLn_32f_A11",
     Kelo_zovsLn_32f_A11,
     11,
     &MathLibrary::ln,
     std::log,
     kPositive,
     {0, 3e38F},
     1e-40F},
    {"zovsLog10_32f_A11",
     Kelo_zovsLog10_32f_A11,
     11,
     &MathLibrary::log10,
     std::log10,
     kPositive,
     {0, 3e38F},
     1e-40F},
    {"zovsLog10_32f_A21",
     Kelo_zovsLog10_32f_A21,
     21,
     &MathLibrary::log10,
     std::log10,
     kPositive,
     {0, 3e38F},
     1e-40F},
    {"zovsSin_32f_A11", Kelo_zovsSin_32f_A11, 11, &MathLibrary::sin, std::sin, kAngles,
     kAngleDomain, 2e4F},
    {"zovsSinh_32f_A11",
     Kelo_zovsSinh_32f_A11,
     11,
     &MathLibrary::sinh,
     std::sinh,
     {-10, 10},
     {-86, 86},
     88},
    {"zovsTan_32f_A11", Kelo_zovsTan_32f_A11, 11, &MathLibrary::tan, std::tan, kAngles,
     kAngleDomain, 2e4F},
    {"zovsTanh_32f_A11",
     Kelo_zovsTanh_32f_A11,
     11,
     &MathLibrary::tanh,
     std::tanh,
     {-5, 5},
     {-86, 86},
     0},
};

const UnaryFunction kElementaryFunctions[] = {
    {"zovsLn_32f", Kelo_zovsLn_32f, 21, &MathLibrary::ln, std::log, kPositive, {0, 3e38F}, 1e-40F},
    {"zovsExp_32f", Kelo_zovsExp_32f, 21, &MathLibrary::exp, std::exp, {-10, 10}, {-86, 86}, -100},
    {"zovsArctan_32f",
     Kelo_zovsArctan_32f,
     21,
     &MathLibrary::atan,
     std::atan,
     {-10, 10},
     {-1e18F, 1e18F},
     0},
};

struct BinaryFunction {
  const char* operation;
  Binary entry;
  int bits;
  MathBinary MathLibrary::*peer;
  double (*exact)(double, double);
  Range first, second;
  float special;  // of the first operand
};

const BinaryFunction kBinaryFunctions[] = {
    {"zovsAtan2_32f_A11",
     Kelo_zovsAtan2_32f_A11,
     11,
     &MathLibrary::atan2,
     std::atan2,
     {-10, 10},
     {-10, 10},
     1e30F},
    {"zovsPow_32f_A11",
     Kelo_zovsPow_32f_A11,
     11,
     &MathLibrary::pow,
     std::pow,
     {0.1F, 10},
     {-5, 5},
     1e-40F},
    {"zovsPow_32f_A24",
     Kelo_zovsPow_32f_A24,
     24,
     &MathLibrary::pow,
     std::pow,
     {0.1F, 10},
     {-5, 5},
     1e-40F},
};

struct ConstantFunction {
  const char* operation;
  decltype(&Kelo_zovsPowx_32f_A11) entry;
  int bits;
};

const ConstantFunction kConstantFunctions[] = {
    {"zovsPowx_32f_A11", Kelo_zovsPowx_32f_A11, 11},
    {"zovsPowx_32f_A24", Kelo_zovsPowx_32f_A24, 24},
};

constexpr int kSamples = 1 << 14;

// The bits of the worst relative error. The class of 24 bits allows an error of one unit in the
// last place, which may be 2^-23.
template <class Exact>
double WorstBits(const float* y, int n, Exact exact) {
  double worst = 0x1p-53;
  for (int i = 0; i < n; ++i) {
    const double expected = exact(i);
    if (expected == 0 || std::fabs(expected) < 0x1p-126) continue;
    const double error = std::fabs(static_cast<double>(y[i]) - expected) / std::fabs(expected);
    worst = error <= worst ? worst : std::isnan(error) ? 1 : error;
  }
  return -std::log2(worst);
}

// Adds a library's function as a peer if it keeps the class.
template <class Call>
void AddLibrary(Contest& contest, const MathLibrary& library, double measured, int bits,
                Call call) {
  if (measured >= std::min(bits, 23)) {
    contest.Peer(library.name, call);
  } else {
    const int whole = std::max(0, static_cast<int>(measured));
    contest.Unheld(std::string(library.name) + " of " + std::to_string(whole) + " bits", call);
  }
}

template <class Body>
void ForEachLibrary(const Contest& contest, Body body) {
  const MathLibraries& libraries = *kMathLibraries[contest.level()];
  for (int i = 0; i < libraries.count; ++i) body(libraries.library[i]);
}

// A warning is no refusal.
ZovStatus RefusalOf(ZovStatus status) { return status < 0 ? status : zovStsNoErr; }

// Elements in the ordinary range, with every `specialEvery`-th one outside if that is not zero.
void Fill(float* x, int n, Range range, float special, int specialEvery, unsigned seed) {
  std::mt19937 random(seed);
  for (int i = 0; i < n; ++i) {
    x[i] = specialEvery != 0 && i % specialEvery == 0 ? special : range.At(random);
  }
}

void SetUp(Contest& contest, const UnaryFunction& f, int n, int specialEvery) {
  float* const x = contest.Array<float>(static_cast<std::size_t>(std::max(n, kSamples)));
  float* const y = contest.Array<float>(static_cast<std::size_t>(std::max(n, kSamples)));
  const auto call = [=, entry = f.entry] { return RefusalOf(entry(x, y, n)); };
  Fill(x, n, f.elements, f.special, specialEvery, 1);
  contest.Ours(call);
  std::mt19937 random(2);
  for (int i = 0; i < kSamples; ++i) x[i] = Stratified(random, f.domain);
  ForEachLibrary(contest, [&](const MathLibrary& library) {
    const MathUnary peer = library.*f.peer;
    if (peer == nullptr) return;
    peer(y, x, kSamples);
    const double bits =
        WorstBits(y, kSamples, [&](int i) { return f.exact(static_cast<double>(x[i])); });
    AddLibrary(contest, library, bits, f.bits, [=] { peer(y, x, n); });
  });
  Fill(x, n, f.elements, f.special, specialEvery, 1);
}

// Bases of every magnitude, and exponents that bring the result anywhere into the range.
void FillPowers(float* x, float* y, int n) {
  std::mt19937 random(3);
  for (int i = 0; i < n; ++i) {
    x[i] = std::exp2(Range{-30, 30}.At(random));
    y[i] = Range{-120, 120}.At(random) / std::log2(x[i]);
  }
}

void SetUp(Contest& contest, const BinaryFunction& f, int n, int specialEvery) {
  const std::size_t room = static_cast<std::size_t>(std::max(n, kSamples));
  float* const a = contest.Array<float>(room);
  float* const b = contest.Array<float>(room);
  float* const y = contest.Array<float>(room);
  Fill(a, n, f.first, f.special, specialEvery, 1);
  Fill(b, n, f.second, 0, 0, 2);
  contest.Ours([=, entry = f.entry] { return RefusalOf(entry(a, b, y, n)); });
  FillPowers(a, b, kSamples);
  ForEachLibrary(contest, [&](const MathLibrary& library) {
    const MathBinary peer = library.*f.peer;
    if (peer == nullptr) return;
    peer(y, a, b, kSamples);
    const double bits = WorstBits(y, kSamples, [&](int i) {
      return f.exact(static_cast<double>(a[i]), static_cast<double>(b[i]));
    });
    AddLibrary(contest, library, bits, f.bits, [=] { peer(y, a, b, n); });
  });
  Fill(a, n, f.first, f.special, specialEvery, 1);
  Fill(b, n, f.second, 0, 0, 2);
}

void SetUp(Contest& contest, const ConstantFunction& f, int n, int specialEvery) {
  constexpr float kExponent = 2.7F;
  float* const x = contest.Array<float>(static_cast<std::size_t>(std::max(n, kSamples)));
  float* const y = contest.Array<float>(static_cast<std::size_t>(std::max(n, kSamples)));
  Fill(x, n, {0.1F, 10}, 1e-40F, specialEvery, 1);
  contest.Ours([=, entry = f.entry] { return RefusalOf(entry(x, kExponent, y, n)); });
  std::mt19937 random(3);
  for (int i = 0; i < kSamples; ++i) x[i] = std::exp2(Range{-40, 40}.At(random));
  ForEachLibrary(contest, [&](const MathLibrary& library) {
    const MathConstant peer = library.powx;
    if (peer == nullptr) return;
    peer(y, x, kExponent, kSamples);
    const double bits = WorstBits(y, kSamples, [&](int i) {
      return std::pow(static_cast<double>(x[i]), static_cast<double>(kExponent));
    });
    AddLibrary(contest, library, bits, f.bits, [=] { peer(y, x, kExponent, n); });
  });
  Fill(x, n, {0.1F, 10}, 1e-40F, specialEvery, 1);
}

template <class Function>
void AddOrdinary(Cases& cases, const char* family, const Function& f) {
  for (const int n : {1000, 100000}) {
    cases.push_back({family, f.operation, std::to_string(n), "Melem/s", static_cast<double>(n),
                     [&f, n](Contest& contest) { SetUp(contest, f, n, 0); }});
  }
}

// The way out of line: one element in a hundred, and all of them.
template <class Function>
void AddSpecial(Cases& cases, const Function& f) {
  for (const int every : {100, 1}) {
    cases.push_back({"vm_special", f.operation, every == 1 ? "100 %" : "1 %", "Melem/s", 10000,
                     [&f, every](Contest& contest) { SetUp(contest, f, 10000, every); }});
  }
}

}  // namespace

void AddMathCases(Cases& cases) {
  for (const UnaryFunction& f : kMathFunctions) AddOrdinary(cases, "vm", f);
  for (const BinaryFunction& f : kBinaryFunctions) AddOrdinary(cases, "vm", f);
  for (const ConstantFunction& f : kConstantFunctions) AddOrdinary(cases, "vm", f);
  for (const UnaryFunction& f : kElementaryFunctions) AddOrdinary(cases, "elementary", f);
  for (const UnaryFunction& f : kMathFunctions) {
    if (f.special != 0) AddSpecial(cases, f);
  }
  for (const BinaryFunction& f : kBinaryFunctions) AddSpecial(cases, f);
  for (const ConstantFunction& f : kConstantFunctions) AddSpecial(cases, f);
}

}  // namespace zov::bench

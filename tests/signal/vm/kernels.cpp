#include "signal/vm/kernels.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace zov::test {

const UnaryFunction kUnaryFunctions[] = {
    {"Acos", std::acos, ZOV_ROWS_OF(kVmAcos)}, {"Asin", std::asin, ZOV_ROWS_OF(kVmAsin)},
    {"Atan", std::atan, ZOV_ROWS_OF(kVmAtan)}, {"Cos", std::cos, ZOV_ROWS_OF(kVmCos)},
    {"Cosh", std::cosh, ZOV_ROWS_OF(kVmCosh)}, {"Exp", std::exp, ZOV_ROWS_OF(kVmExp)},
    {"Ln", std::log, ZOV_ROWS_OF(kVmLn)},      {"Log10", std::log10, ZOV_ROWS_OF(kVmLog10)},
    {"Sin", std::sin, ZOV_ROWS_OF(kVmSin)},    {"Sinh", std::sinh, ZOV_ROWS_OF(kVmSinh)},
    {"Tan", std::tan, ZOV_ROWS_OF(kVmTan)},    {"Tanh", std::tanh, ZOV_ROWS_OF(kVmTanh)},
};

const BinaryFunction kBinaryFunctions[] = {
    {"Atan2", std::atan2, ZOV_ROWS_OF(kVmAtan2)},
    {"Pow", std::pow, ZOV_ROWS_OF(kVmPow)},
};

namespace {

// From here on a value rounds to an infinity.
constexpr double kRoundsToInfinity = 0x1.ffffffp127;

double UnitOf(double magnitude) {
  if (magnitude < 0x1p-126) return 0x1p-149;
  const std::uint64_t exponent = std::bit_cast<std::uint64_t>(magnitude) & 0x7FF0000000000000;
  return std::bit_cast<double>(exponent) * 0x1p-23;
}

}  // namespace

void WorstError::Add(float result, double exact, float x, float y) {
  const double magnitude = std::fabs(exact);
  bool fits = true;
  if (std::isnan(exact)) {
    fits = std::isnan(result);
  } else if (magnitude >= kRoundsToInfinity) {
    fits = std::isinf(result) && std::signbit(result) == std::signbit(exact);
  } else if (exact == 0) {
    fits = result == 0 && std::signbit(result) == std::signbit(exact);
  } else if (!std::isfinite(result)) {
    // The largest results may round up.
    fits = std::isinf(result) && magnitude > 0x1.ffep127 &&
           std::signbit(result) == std::signbit(exact);
  } else {
    const double error = std::fabs(static_cast<double>(result) - exact);
    const double scale = magnitude < 0x1p-126 ? 0x1p-126 : magnitude;
    if (error > relative * scale) {
      relative = error / scale;
      at = x;
      at2 = y;
    }
    if (error > units * scale * 0x1p-24) {
      const double inUnits = error / UnitOf(magnitude);
      if (inUnits > units) units = inUnits;
    }
  }
  if (!fits && !wrong) {
    wrong = true;
    wrongAt = x;
    wrongAt2 = y;
  }
}

void WorstError::Merge(const WorstError& other) {
  if (other.relative > relative) {
    relative = other.relative;
    at = other.at;
    at2 = other.at2;
  }
  if (other.units > units) units = other.units;
  if (other.wrong && !wrong) {
    wrong = true;
    wrongAt = other.wrongAt;
    wrongAt2 = other.wrongAt2;
  }
}

bool WorstError::Within(const AccuracyClass& promised) const {
  if (wrong) return false;
  return promised.bits == 24 ? units < 1.0 : relative < std::ldexp(1.0, -promised.bits);
}

}  // namespace zov::test

// A benchmark case and the functions by which families add theirs. A new family is one source with
// such a function, a line here, a line in the list of main.cpp, and its aims in report.py.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "contest.h"

namespace zov::bench {

struct Case {
  std::string family;
  std::string operation;  // the export, with what tells its cases apart
  std::string size;
  const char* unit;  // GB/s, GFLOP/s, Melem/s or Mpix/s; the work below in bytes, operations...
  double work;       // of one call
  std::function<void(Contest&)> setUp;
};

using Cases = std::vector<Case>;

void AddEntryCases(Cases& cases);
void AddMemoryCases(Cases& cases);
void AddArithmeticCases(Cases& cases);
void AddSearchCases(Cases& cases);
void AddResizeCases(Cases& cases);
void AddResizeAreaCases(Cases& cases);
void AddFftCases(Cases& cases);
void AddConversionCases(Cases& cases);
void AddStatisticsCases(Cases& cases);
void AddFirCases(Cases& cases);
void AddIntegerCases(Cases& cases);
void AddMathCases(Cases& cases);

// "256 B", "16 KiB", "4 MiB"
std::string BytesLabel(std::size_t bytes);

}  // namespace zov::bench

// OpenCV's operations on arrays of integers.
#pragma once

#include "contest.h"

namespace zov::bench {

enum class OpenCvOperation {
  add,
  addConstant,
  subtractConstant,
  multiplyConstant,
  andConstant,
  bitOr
};

// out = a operation value, or a operation b for two arrays. The depth is in bits, negative for
// signed elements.
void AddOpenCvInteger(Contest& contest, OpenCvOperation operation, int depth, const void* a,
                      const void* b, double value, void* out, int len);

}  // namespace zov::bench

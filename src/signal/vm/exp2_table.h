// 2^(i/128) as a rounded value and the relative rest, (exact - high) / high.
#pragma once

namespace zov {

struct Exp2Entry {
  float high;
  float low;
};

extern const Exp2Entry kExp2Table[128];

}  // namespace zov

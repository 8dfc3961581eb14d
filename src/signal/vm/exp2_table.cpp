// The table of the exponential, made by scripts/vm_coefficients.py --tables.
#include "signal/vm/exp2_table.h"

namespace zov {

const Exp2Entry kExp2Table[128] = {
#include "signal/vm/exp2_table.inc"
};

}  // namespace zov

// liquid-dsp's FIR filter; its dot product is built for the processor that Debian aims at.
#include <liquid/liquid.h>

#include "../fir.h"

namespace zov::bench {

void AddLiquidFir(Contest& contest, const FirTask<Zov32f, Zov32f>& task) {
  const firfilt_rrrf filter =
      firfilt_rrrf_create(const_cast<float*>(task.taps), static_cast<unsigned>(task.tapsLen));
  contest.Keep(std::shared_ptr<void>(
      filter, [](void* p) { firfilt_rrrf_destroy(static_cast<firfilt_rrrf>(p)); }));
  contest.Peer("liquid-dsp", [=] {
    firfilt_rrrf_execute_block(filter, const_cast<float*>(task.from),
                               static_cast<unsigned>(task.count), task.to);
  });
}

}  // namespace zov::bench

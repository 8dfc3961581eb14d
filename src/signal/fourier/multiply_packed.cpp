// Products of packed spectra.
#include "core/checks.h"
#include "signal/fourier/lanes.h"
#include "signal/fourier/real_fft.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

template <class T>
ZovStatus MulPacked(const T* a, T* b, int count) {
  if (const ZovStatus status = CheckArrays(count, a, b)) return status;
  using C = Interleaved<T>;
  b[0] = a[0] * b[0];
  Index i = 1;
  if (count % 2 == 0) {
    b[1] = a[1] * b[1];
    i = 2;
  }
  for (; i + 2 * C::kLanes <= count; i += 2 * C::kLanes) {
    const C x = C::Load(a + i);
    const C y = C::Load(b + i);
    // (-im, im) of the factor as (im, im) with the sign taken by the conjugating form.
    y.TimesConj(RealParts(x.v), Conjugate(ImagParts(x.v))).Store(b + i);
  }
  for (; i < count; i += 2) {
    const T re = a[i] * b[i] - a[i + 1] * b[i + 1];
    b[i + 1] = a[i] * b[i + 1] + a[i + 1] * b[i];
    b[i] = re;
  }
  return zovStsNoErr;
}

}  // namespace

ZovStatus MulPacked_32f(const Zov32f* a, Zov32f* b, int count) { return MulPacked(a, b, count); }
ZovStatus MulPacked_64f(const Zov64f* a, Zov64f* b, int count) { return MulPacked(a, b, count); }

}  // namespace zov::ZOV_LEVEL_NAMESPACE

// The four resize operations behind one interface, for tests parameterised by member.
#pragma once

#include "support/levels.h"

namespace zov::test {

template <class T, int kChannelCount>
struct MemberBase {
  using Element = T;
  static constexpr int kChannels = kChannelCount;
  static constexpr int kPixelBytes = kChannelCount * static_cast<int>(sizeof(T));

  static ZovStatus BufferSize(int level, ZovImageRect srcRoi, ZovImageRect dstRoi, int method,
                              int* bytes) {
    const auto call = sizeof(T) == 8 ? ZOV_AT(level, zoviResizeGetBufSize_64f)
                                     : ZOV_AT(level, zoviResizeGetBufSize);
    return call(srcRoi, dstRoi, kChannelCount, method, bytes);
  }
};

struct Resize8uC1 : MemberBase<Zov8u, 1> {
  static auto At(int level) { return ZOV_AT(level, zoviResizeSqrPixel_8u_C1R); }
};
struct Resize8uC4 : MemberBase<Zov8u, 4> {
  static auto At(int level) { return ZOV_AT(level, zoviResizeSqrPixel_8u_C4R); }
};
struct Resize32fC1 : MemberBase<Zov32f, 1> {
  static auto At(int level) { return ZOV_AT(level, zoviResizeSqrPixel_32f_C1R); }
};
struct Resize64fC1 : MemberBase<Zov64f, 1> {
  static auto At(int level) { return ZOV_AT(level, zoviResizeSqrPixel_64f_C1R); }
};
using Members = ::testing::Types<Resize8uC1, Resize8uC4, Resize32fC1, Resize64fC1>;

}  // namespace zov::test

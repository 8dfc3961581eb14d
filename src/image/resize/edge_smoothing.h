// The rim of an image placed at a fractional position: pixels that it covers in part.
#pragma once

#include <cstddef>

#include "image/resize/contract.h"
#include "image/resize/geometry.h"

namespace zov {

// Blends or fades the ring of one pixel around the written rectangle; `flags` holds the edge flag.
// The methods do not matter: the ring depends on nothing but the written pixels and the geometry.
template <class T, int kChannels>
void SmoothEdges(std::uint32_t flags, const ResizeGeometry& geometry, Zov8u* dst,
                 std::ptrdiff_t dstStep);

extern template void SmoothEdges<Zov8u, 1>(std::uint32_t, const ResizeGeometry&, Zov8u*,
                                           std::ptrdiff_t);
extern template void SmoothEdges<Zov8u, 4>(std::uint32_t, const ResizeGeometry&, Zov8u*,
                                           std::ptrdiff_t);
extern template void SmoothEdges<Zov32f, 1>(std::uint32_t, const ResizeGeometry&, Zov8u*,
                                            std::ptrdiff_t);
extern template void SmoothEdges<Zov64f, 1>(std::uint32_t, const ResizeGeometry&, Zov8u*,
                                            std::ptrdiff_t);

}  // namespace zov

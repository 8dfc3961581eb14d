// Maps the source rectangle to the destination, cuts it to the destination rectangle and takes the
// pixels whose centres it covers, or with an edge flag those that it covers completely.
#include "image/resize/geometry.h"

#include <cmath>

namespace zov {

namespace {

// False when no pixel is covered. A NaN among the arguments stays in the edges and ends there too.
bool MapAxis(int roiFirst, int roiExtent, int srcExtent, int dstFirst, int dstExtent, double factor,
             double shift, bool inner, ResizeAxis* axis) {
  const int rest = srcExtent - roiFirst;
  const int clipped = rest < roiExtent ? rest : roiExtent;
  double near = roiFirst * factor + shift;
  double far = (roiFirst + clipped) * factor + shift;
  const double dstNear = dstFirst;
  const double dstFar = dstNear + dstExtent;
  if (near < dstNear) near = dstNear;
  if (far > dstFar) far = dstFar;
  // A centre, or a pixel's edge, within a hair of either edge counts as covered.
  const double begin = inner ? std::ceil(near - 1e-10) : std::trunc(near + 0.4999999999);
  const double end = inner ? std::floor(far + 1e-10) : std::trunc(far + 0.5000000001);
  if (!(begin < end)) return false;
  axis->first = static_cast<std::int64_t>(begin);
  axis->count = static_cast<int>(end - begin);
  axis->extent = srcExtent;
  axis->inverse = 1 / factor;
  axis->offset = 0 - shift / factor;
  axis->near = near;
  axis->far = far;
  return true;
}

}  // namespace

ZovStatus MapResize(const ResizeRequest& r, ResizeGeometry* geometry) {
  const bool inner = (ParseInterpolation(r.interpolation).flags & (kEdgeBlend | kEdgeFade)) != 0;
  const bool covered = MapAxis(r.srcRoi.x, r.srcRoi.width, r.srcSize.width, r.dstRoi.x,
                               r.dstRoi.width, r.xFactor, r.xShift, inner, &geometry->x) &&
                       MapAxis(r.srcRoi.y, r.srcRoi.height, r.srcSize.height, r.dstRoi.y,
                               r.dstRoi.height, r.yFactor, r.yShift, inner, &geometry->y);
  return covered ? zovStsNoErr : zovStsNoOperationWrn;
}

}  // namespace zov

#include <algorithm>

#include "nq/geometry/outline_internal.h"

namespace nqdetail {

int segmentMeetsRect(const Node& node, nqLong& x, nqLong& y, nqLong x2, nqLong y2) {
  const NQEdges e = node.box();
  int met = 0;
  const auto side = [&](nqLong fromX, nqLong fromY, nqLong toX, nqLong toY) {
    met |= NQPoint::segmentsIntersect(x, y, x2, y2, fromX, fromY, toX, toY);
  };
  side(e.left, e.bottom, e.left, e.top);
  side(e.left, e.top, e.right, e.top);
  side(e.right, e.top, e.right, e.bottom);
  side(e.right, e.bottom, e.left, e.bottom);
  return met;
}

double growthInRect(const Node& node, const NQPoint& p, double halfWidth,
                    double halfHeight) {
  const NQEdges e = node.box();
  const double roomX = std::min(double(p.x()) - e.left, double(e.right) - p.x());
  const double roomY = std::min(double(p.y()) - e.bottom, double(e.top) - p.y());
  return std::min(roomX / halfWidth, roomY / halfHeight);
}

}  // namespace nqdetail

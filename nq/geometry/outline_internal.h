// outline_internal.h -- the arithmetic of outlines: rectangle, ellipse, polygon.
//
// A node and, for polygons, the corners in thousandths go in; the answer comes
// out. NQShape chooses among them.

#ifndef NQ_GEOMETRY_OUTLINE_INTERNAL_H
#define NQ_GEOMETRY_OUTLINE_INTERNAL_H

#include "nq/geometry/edges.h"
#include "nq/geometry/point_list.h"

namespace nqdetail {

// One axis of a node: where thousandths of the half extent lie on it.
struct NodeAxis {
  NodeAxis(nqLong centerOnAxis, nqLong extentOnAxis)
      : center(centerOnAxis),
        extent(extentOnAxis),
        half(nqHalf(extentOnAxis)),
        upperHalf(nqDifference(extentOnAxis, half)) {}

  nqLong low() const { return nqDifference(center, half); }
  nqLong high() const { return nqSum(center, upperHalf); }
  // From the centre, in thousandths of a unit and in whole units.
  nqInt64 exactOffset(nqLong thousandths) const {
    return nqInt64{thousandths < 1 ? half : upperHalf} * thousandths;
  }
  nqLong offset(nqLong thousandths) const {
    return static_cast<nqLong>(exactOffset(thousandths) / 1000);
  }
  // The smallest exact offset of which the whole units are more than `offset`.
  static nqInt64 firstBeyond(nqInt64 offset) {
    return offset < 0 ? 1000 * offset + 1 : 1000 * (offset + 1);
  }

  nqLong center;
  nqLong extent;
  nqLong half;       // on the negative side
  nqLong upperHalf;  // with the extra unit of an odd extent
};

struct Node {
  Node(nqLong cx, nqLong cy, nqLong width, nqLong height) : x(cx, width), y(cy, height) {}
  Node(const NQPoint& center, const NQSize& size)
      : Node(center.x(), center.y(), size.width(), size.height()) {}

  NQEdges box() const { return {x.low(), y.high(), x.high(), y.low()}; }
  // Of a corner of a polygon, from the centre.
  NQPoint offset(const NQPoint& thousandths) const {
    return {x.offset(thousandths.x()), y.offset(thousandths.y())};
  }

  NodeAxis x;
  NodeAxis y;
};

// The sign of ax * by - ay * bx, for numbers up to 2^34 in size: the products
// are put together from halves, the lower one of 16 bits.
inline int crossSign(nqInt64 ax, nqInt64 ay, nqInt64 bx, nqInt64 by) {
  const nqInt64 low = (ax & 0xffff) * by - (ay & 0xffff) * bx;
  const nqInt64 high = (ax >> 16) * by - (ay >> 16) * bx + (low >> 16);
  if (high != 0) return high < 0 ? -1 : 1;
  return (low & 0xffff) != 0;
}

// On which side of the line from (x1, y1) to (x2, y2) a point is: 1 on its right,
// -1 on its left, 0 on the line. For coordinates up to 2^33 in size.
inline int pointInWhichHalfplane(nqInt64 x1, nqInt64 y1, nqInt64 x2, nqInt64 y2,
                                 nqInt64 px, nqInt64 py) {
  return crossSign(px - x1, py - y1, x2 - x1, y2 - y1);
}

// How a point lies to an outline: -1 outside, 0 on it, 1 inside.
int placeInEllipse(const Node& node, nqLong px, nqLong py);
int placeInPolygon(const Node& node, const NQPointDList& corners, nqLong px, nqLong py);

// Moves (x, y) to where the segment to (x2, y2) meets the outline last; 0 when
// it does not.
int segmentMeetsRect(const Node& node, nqLong& x, nqLong& y, nqLong x2, nqLong y2);
int segmentMeetsEllipse(const Node& node, nqLong& x, nqLong& y, nqLong x2, nqLong y2);
int segmentMeetsPolygon(const Node& node, const NQPointDList& corners, nqLong& x,
                        nqLong& y, nqLong x2, nqLong y2);

NQPoint nearestOnEllipse(const Node& node, const NQPoint& p);
// `p` itself when there are no corners.
NQPoint nearestOnPolygon(const Node& node, const NQPointDList& corners, const NQPoint& p);

// By how much a box of these half extents about p, both positive, may grow
// before it reaches beyond the outline. The point is within.
double growthInRect(const Node& node, const NQPoint& p, double halfWidth,
                    double halfHeight);
double growthInEllipse(const Node& node, const NQPoint& p, double halfWidth,
                       double halfHeight);
double growthInPolygon(const Node& node, const NQPointDList& corners, const NQPoint& p,
                       double halfWidth, double halfHeight);

int isConvex(const NQPointDList& corners);

}  // namespace nqdetail

#endif  // NQ_GEOMETRY_OUTLINE_INTERNAL_H

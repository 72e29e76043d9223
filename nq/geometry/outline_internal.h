// outline_internal.h -- the arithmetic of outlines: rectangle, ellipse, polygon.
//
// A node and, for polygons, the corners go in; the answer comes out. NQShape
// chooses among them.

#ifndef NQ_GEOMETRY_OUTLINE_INTERNAL_H
#define NQ_GEOMETRY_OUTLINE_INTERNAL_H

#include <span>
#include <vector>

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
  // From the centre.
  nqLong offset(nqLong thousandths) const {
    const nqInt64 reach = thousandths < 1 ? half : upperHalf;
    return static_cast<nqLong>(reach * thousandths / 1000);
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

  NodeAxis x;
  NodeAxis y;
};

// A corner of a polygon as its offset from the centre of a node.
struct Corner {
  nqLong x;
  nqLong y;
};

// The line through an edge as a x + b y + c, which is 0 on it and above 0 to the
// left of it. For coordinates below 2^29 in size, which 64 bits can multiply.
struct EdgeLine {
  static constexpr nqLong kSmall = 1 << 29;

  nqInt64 at(nqInt64 x, nqInt64 y) const { return a * x + b * y + c; }

  nqInt64 a;
  nqInt64 b;
  nqInt64 c;
};

// The corners of a polygon, with the first one once more at the end.
struct Corners : std::span<const Corner> {
  bool small;  // whether all coordinates are, and the next two are there
  // The corners' y once more, in a row that can be read in fours from anywhere.
  const nqLong* heights;
  const EdgeLine* lines;  // of the edge from each corner to the next
  NQEdges bounds;         // the box around the offsets
};

// The corners of a polygon for nodes of one size: with each new size they are
// computed anew, with the same one again they are at hand.
class SizedCorners {
 public:
  // The list holds no null pointers.
  const Corners& of(const NQPointDList& thousandths, nqLong width, nqLong height) {
    if (width_ != width || height_ != height || corners_.empty()) {
      compute(thousandths, Node(0, 0, width, height));
    }
    return corners_;
  }
  void forget() { corners_ = {}; }

 private:
  void compute(const NQPointDList& thousandths, const Node& node);

  nqLong width_ = 0;
  nqLong height_ = 0;
  std::vector<Corner> offsets_;
  std::vector<nqLong> heights_;
  std::vector<EdgeLine> lines_;
  Corners corners_ = {};  // the offsets for width and height; empty if there are none
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
// The point from the centre.
int placeInPolygon(const Corners& corners, nqInt64 x, nqInt64 y);

// Moves (x, y) to where the segment to (x2, y2) meets the outline last; 0 when
// it does not.
int segmentMeetsRect(const Node& node, nqLong& x, nqLong& y, nqLong x2, nqLong y2);
int segmentMeetsEllipse(const Node& node, nqLong& x, nqLong& y, nqLong x2, nqLong y2);
int segmentMeetsPolygon(const Node& node, const Corners& corners, nqLong& x, nqLong& y,
                        nqLong x2, nqLong y2);

NQPoint nearestOnEllipse(const Node& node, const NQPoint& p);
// `p` itself when there are no corners.
NQPoint nearestOnPolygon(const Node& node, const Corners& corners, const NQPoint& p);

// By how much a box of these half extents about p, both positive, may grow
// before it reaches beyond the outline. The point is within.
double growthInRect(const Node& node, const NQPoint& p, double halfWidth,
                    double halfHeight);
double growthInEllipse(const Node& node, const NQPoint& p, double halfWidth,
                       double halfHeight);
double growthInPolygon(const Node& node, const Corners& corners, const NQPoint& p,
                       double halfWidth, double halfHeight);

int isConvex(const NQPointDList& corners);

}  // namespace nqdetail

#endif  // NQ_GEOMETRY_OUTLINE_INTERNAL_H

// edges.h -- NQEdges, the four edges of a box and every rule about them.
//
// Both rectangles, NQRect and NQInternalRect, answer their questions here:
// edges go in, the answer comes out. Users meet these operations as members
// of the rectangles (rect_operations.h), where points may be passed too.
//
// y grows upward, so bottom <= top and left <= right in a box of good order.
// All four edges belong to the box: questions are closed, and only those
// named "interior" are open. A box without area, a line or a point, is a box
// like any other. Edges of bad order give answers without meaning, but safe.
//
// Lines are computed as point.h says. Differences that only decide something
// have 64 bits and cannot overflow.

#ifndef NQ_GEOMETRY_EDGES_H
#define NQ_GEOMETRY_EDGES_H

#include <algorithm>
#include <limits>

#include "nq/geometry/directions.h"
#include "nq/geometry/permil.h"
#include "nq/geometry/point.h"

struct NQ_EXPORT NQ_VIEWED_AS_RECORD NQEdges {
  // In the order of the platform's record.
  nqLong left;
  nqLong top;
  nqLong right;
  nqLong bottom;

  // The box with any two opposite corners.
  static NQEdges ofCorners(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
    return {std::min(x1, x2), std::max(y1, y2), std::max(x1, x2), std::min(y1, y2)};
  }

  // The box of no points: every other one is within the bounds of both.
  static constexpr NQEdges nothing() {
    constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
    constexpr nqLong kMax = std::numeric_limits<nqLong>::max();
    return {kMax, kMin, kMin, kMax};
  }

  nqLong width() const { return nqDifference(right, left); }
  nqLong height() const { return nqDifference(top, bottom); }
  NQPoint center() const { return {nqMiddle(left, right), nqMiddle(bottom, top)}; }
  // Right, top, left or bottom edge; 0 for any other value.
  nqLong sideCoordinate(NQSideEnum side) const;

  int withinXRange(nqLong x) const { return left <= x && x <= right; }
  int withinYRange(nqLong y) const { return bottom <= y && y <= top; }
  int within(nqLong x, nqLong y) const { return withinXRange(x) && withinYRange(y); }
  int withinInteriorXRange(nqLong x) const { return left < x && x < right; }
  int withinInteriorYRange(nqLong y) const { return bottom < y && y < top; }
  int withinInterior(nqLong x, nqLong y) const {
    return withinInteriorXRange(x) && withinInteriorYRange(y);
  }
  int onBoundary(nqLong x, nqLong y) const {
    return (withinXRange(x) && (y == top || y == bottom)) ||
           (withinYRange(y) && (x == left || x == right));
  }

  int enclosesXRange(const NQEdges& o) const {
    return left <= o.left && o.right <= right;
  }
  int enclosesYRange(const NQEdges& o) const {
    return bottom <= o.bottom && o.top <= top;
  }
  int encloses(const NQEdges& o) const { return enclosesXRange(o) && enclosesYRange(o); }
  int intersectsXRange(const NQEdges& o) const {
    return (o.right >= left) & (right >= o.left);
  }
  int intersectsYRange(const NQEdges& o) const {
    return (o.top >= bottom) & (top >= o.bottom);
  }
  int intersects(const NQEdges& o) const {
    return intersectsXRange(o) & intersectsYRange(o);  // without a branch
  }
  int isZero() const { return (left | top | right | bottom) == 0; }

  // What both have in common; all zero when they are disjoint.
  NQEdges intersection(const NQEdges& o) const {
    if (!intersects(o)) return {0, 0, 0, 0};
    return {std::max(left, o.left), std::min(top, o.top), std::min(right, o.right),
            std::max(bottom, o.bottom)};
  }
  // The smallest box around both.
  NQEdges bounds(const NQEdges& o) const {
    return {std::min(left, o.left), std::max(top, o.top), std::max(right, o.right),
            std::min(bottom, o.bottom)};
  }

  // Whether they are all 0 or in bad order.
  int isEmpty() const { return isZero() || left > right || bottom > top; }

  friend bool operator==(const NQEdges& a, const NQEdges& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right &&
           a.bottom == b.bottom;
  }

  std::size_t hashValue() const { return nqHashOf(left, top, right, bottom); }
  std::string asText() const;  // "(-20, -20)-(20, 20)", bottom left and top right

  // Clipping and overlap tests, as rect_operations.h tells.
  int intersectsLine(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const;
  int intersectsSegment(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const;
  int intersectsRay(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const;
  int overlapsLine(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const;
  int overlapsSegment(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const;
  int overlapsRay(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const;

  // Routing and placement, as rect_operations.h tells.
  NQSideEnum closestSide(nqLong x, nqLong y) const;
  NQSideEnum closestSideWithin(nqLong x, nqLong y) const;
  NQPoint nearestPoint(const NQPoint& p) const;
  NQPoint pointOutside(const NQPoint& p, const NQPoint& q) const;
  int pointInOtherSide(NQPoint& p, const NQPoint& q) const;
  NQSideEnum sideForRouting(const NQPoint& p, NQDirectionEnum direction) const;
  NQSideEnum sideForRouting(const NQEdges& o, int horizontalFirst) const;

  // The per-mil value of an offset from the centre, and the offset of a
  // per-mil value; `sign` chooses the half of an odd extent.
  NQPerMil perMil(const NQSize& offset) const;
  NQSize offset(const NQPerMil& perMil, const NQSize& sign) const;
};

#endif  // NQ_GEOMETRY_EDGES_H

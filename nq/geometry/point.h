// point.h -- NQPoint, a position, and the arithmetic of lines and segments.
//
// A line, ray or segment is given by two integer points. Differences of
// coordinates wrap around at 32 bits before they become doubles, and the rest
// is computed in double: decisions are exact for coordinates up to 2^25 in
// size. Results that are stored as coordinates are rounded by floor(v + 0.5).
//
// "On a segment" has a tolerance: the squared distance from the segment's line
// is below 0.2, within the segment's bounding box. No point, not even its own
// end, is on a segment whose ends are equal.

#ifndef NQ_GEOMETRY_POINT_H
#define NQ_GEOMETRY_POINT_H

#include <compare>

#include "nq/containers/numbers.h"  // greatestCommonDivisor()
#include "nq/geometry/directions.h"
#include "nq/geometry/size.h"

class NQ_EXPORT NQ_VIEWED_AS_RECORD NQPoint : public NQTuple {
  NQ_COPY_VALUE(NQPoint, NQTuple)

 public:
  NQPoint() = default;
  NQPoint(nqLong x, nqLong y) : NQTuple(x, y) {}
  NQPoint(tagPOINT record);  // NOLINT: the same pair

  nqLong coordinate(NQOrientationEnum orientation) const {
    return orientation == NQVertical ? y() : x();
  }
  double distance(const NQPoint& other) const {
    return distance(x(), y(), other.x(), other.y());
  }
  double distanceSquare(const NQPoint& other) const {
    return distanceSquare(x(), y(), other.x(), other.y());
  }
  static double distance(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
    return std::sqrt(distanceSquare(x1, y1, x2, y2));
  }
  static double distanceSquare(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
    const double dx = nqDifference(x2, x1);
    const double dy = nqDifference(y2, y1);
    return dx * dx + dy * dy;
  }

  // By x, then by y, as NQPointSListSort sorts.
  friend std::strong_ordering operator<=>(const NQPoint& a, const NQPoint& b) {
    return a.x() != b.x() ? a.x() <=> b.x() : a.y() <=> b.y();
  }

  // The axis direction in which `to` lies; NQDirNone when the points are equal
  // or lie on no common axis line.
  NQDirectionEnum direction(const NQPoint& to) const;
  // The direction of the larger difference, the horizontal one on a tie. Never
  // NQDirNone: from a point to itself it is NQDirRight.
  NQDirectionEnum roughDirection(const NQPoint& to) const;
  // The angle of the vector in radians, counter-clockwise from +x, in
  // [0, 2 pi]; 3/2 pi for equal points.
  static double angle(NQPoint from, NQPoint to);

  nqLong coordinate(NQOrientationEnum orientation, nqLong value) {
    return orientation == NQVertical ? y(value) : x(value);
  }
  void move(nqLong dx, nqLong dy) { add(dx, dy); }
  void move(const NQSize& offset) { add(offset.width(), offset.height()); }
  void moveTo(nqLong x, nqLong y) { set(x, y); }
  void moveTo(const NQPoint& to) { set(to.x(), to.y()); }

  // The other coordinate of the line, ray or segment from (x1, y1) towards
  // (x2, y2) where it has the given one. 0, with the result untouched, when
  // there is none, and also when it runs at right angles to the axis. At the
  // two given points the answer is exact.
  static int lineAtX(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double x, double& y) {
    return interpolate(x1, y1, x2, y2, x, y);
  }
  static int lineAtY(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double& x, double y) {
    return interpolate(y1, x1, y2, x2, y, x);
  }
  static int rayAtX(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double x, double& y);
  static int rayAtY(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double& x, double y);
  static int segmentAtX(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double x, double& y);
  static int segmentAtY(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double& x, double y);

  // Whether (px, py) is on the segment, with the tolerance told above.
  static int pointInSegment(nqLong px, nqLong py, nqLong x1, nqLong y1, nqLong x2,
                            nqLong y2) {
    return doublePointInSegment(px, py, x1, y1, x2, y2);
  }
  static int doublePointInSegment(double px, double py, double x1, double y1, double x2,
                                  double y2);

  // Whether the segment from (x1, y1) to (x2, y2) meets the one from (x3, y3)
  // to (x4, y4); then (x1, y1) becomes the point where they meet, else it
  // stays. An end of one that is on the other counts first: (x3, y3), (x4, y4),
  // (x1, y1), (x2, y2), in this order; then the crossing of the two insides.
  static int segmentsIntersect(nqLong& x1, nqLong& y1, nqLong x2, nqLong y2, nqLong x3,
                               nqLong y3, nqLong x4, nqLong y4);
  static int segmentsIntersect(double& x1, double& y1, double x2, double y2, double x3,
                               double y3, double x4, double y4);

  // The pair itself, seen as the platform's record.
  operator tagPOINT&() { return record<tagPOINT>(); }
  operator const tagPOINT&() const { return record<tagPOINT>(); }

 private:
  // The value at `at` of the line that has v1 at u1 and v2 at u2.
  static int interpolate(nqLong u1, nqLong v1, nqLong u2, nqLong v2, double at,
                         double& value) {
    if (u1 == u2) return 0;
    if (at == u1) {
      value = v1;
    } else if (at == u2) {
      value = v2;
    } else {
      value = (at - u1) * nqDifference(v2, v1) / nqDifference(u2, u1) + v1;
    }
    return 1;
  }

  void copyFields(const NQPoint&) {}
};

NQ_COPY_VALUE_INLINE(NQPoint)

inline NQDTuple::operator NQPoint() const {
  return {nqRound(x_), nqRound(y_)};
}

#endif  // NQ_GEOMETRY_POINT_H

#include "nq/geometry/point.h"

#include <algorithm>
#include <numbers>
#include <type_traits>

#if defined(_WIN32)
#include <windows.h>
#endif

NQ_COPY_FORWARDED_IMPL(NQPoint)

namespace {

double difference(nqLong a, nqLong b) {
  return nqDifference(a, b);
}

double difference(double a, double b) {
  return a - b;
}

void store(double value, nqLong& coordinate) {
  coordinate = nqRound(value);
}

void store(double value, double& coordinate) {
  coordinate = value;
}

bool onRay(nqLong start, nqLong through, double at) {
  return (through > start && at >= start) || (start > through && at <= start);
}

bool between(nqLong a, nqLong b, double at) {
  return (a <= at && at <= b) || (b <= at && at <= a);
}

// A line through two points, as the function that is 0 on it and has a sign of
// its own on either side.
struct Line {
  template <class Coordinate>
  Line(Coordinate x1, Coordinate y1, Coordinate x2, Coordinate y2)
      : dx(difference(x2, x1)),
        dy(difference(y2, y1)),
        c(static_cast<double>(x2) * static_cast<double>(y1) -
          static_cast<double>(x1) * static_cast<double>(y2)) {}

  double side(double x, double y) const { return x * dy - y * dx + c; }

  // Whether a point with this value can be on a segment of the line. The
  // margin is wider than any rounding, and equal ends are never far.
  bool isNear(double side) const { return !(side * side > kNear * (dx * dx + dy * dy)); }

  static constexpr double kNear = 0.200001;
  double dx;
  double dy;
  double c;
};

// Whether two ranges, their ends in any order, have nothing in common. Free of
// branches, which would be taken as often as not.
template <class Coordinate>
int apart(Coordinate a1, Coordinate a2, Coordinate b1, Coordinate b2) {
  return ((a1 > b1) & (a1 > b2) & (a2 > b1) & (a2 > b2)) |
         ((a1 < b1) & (a1 < b2) & (a2 < b1) & (a2 < b2));
}

// Whether the values of Line::side() are free of rounding and wrapping.
template <class Coordinate, class... Rest>
bool exact(Coordinate first, Rest... rest) {
  if constexpr (std::is_integral_v<Coordinate>) {
    return nqIsModest(first, rest...);
  } else {
    return false;
  }
}

template <class Coordinate>
int meet(Coordinate& x1, Coordinate& y1, Coordinate x2, Coordinate y2, Coordinate x3,
         Coordinate y3, Coordinate x4, Coordinate y4) {
  if (apart(x1, x2, x3, x4) | apart(y1, y2, y3, y4)) return 0;
  const auto on = [](Coordinate px, Coordinate py, Coordinate ax, Coordinate ay,
                     Coordinate bx, Coordinate by) {
    return NQPoint::doublePointInSegment(
        static_cast<double>(px), static_cast<double>(py), static_cast<double>(ax),
        static_cast<double>(ay), static_cast<double>(bx), static_cast<double>(by));
  };
  const auto answer = [&](Coordinate x, Coordinate y) {
    x1 = x;
    y1 = y;
    return 1;
  };
  const auto side = [](const Line& line, Coordinate x, Coordinate y) {
    return line.side(static_cast<double>(x), static_cast<double>(y));
  };
  const Line a(x1, y1, x2, y2);
  const Line b(x3, y3, x4, y4);
  const double side1 = side(b, x1, y1);
  const double side2 = side(b, x2, y2);
  const double side3 = side(a, x3, y3);
  const double side4 = side(a, x4, y4);
  // Most ends are far from the other line, which the sides tell already.
  if (!exact(x1, y1, x2, y2, x3, y3, x4, y4) || a.isNear(side3) || a.isNear(side4) ||
      b.isNear(side1) || b.isNear(side2)) {
    if (on(x3, y3, x1, y1, x2, y2)) return answer(x3, y3);
    if (on(x4, y4, x1, y1, x2, y2)) return answer(x4, y4);
    if (on(x1, y1, x3, y3, x4, y4)) return 1;
    if (on(x2, y2, x3, y3, x4, y4)) return answer(x2, y2);
  }
  if (!((side3 * side4 < 0) & (side1 * side2 < 0))) return 0;
  const double denominator = b.dx * a.dy - b.dy * a.dx;
  if (denominator == 0) return 0;
  store((b.c * a.dx - b.dx * a.c) / denominator, x1);
  store((b.c * a.dy - b.dy * a.c) / denominator, y1);
  return 1;
}

}  // namespace

NQPoint::NQPoint(tagPOINT record) : NQTuple(record.x, record.y) {}

NQDirectionEnum NQPoint::direction(const NQPoint& to) const {
  if (x() == to.x()) {
    if (y() == to.y()) return NQDirNone;
    return y() < to.y() ? NQDirUp : NQDirDown;
  }
  if (y() != to.y()) return NQDirNone;
  return x() < to.x() ? NQDirRight : NQDirLeft;
}

NQDirectionEnum NQPoint::roughDirection(const NQPoint& to) const {
  const nqLong dx = nqDifference(to.x(), x());
  const nqLong dy = nqDifference(to.y(), y());
  if (nqMagnitude(dx) < nqMagnitude(dy)) return dy < 0 ? NQDirDown : NQDirUp;
  return dx < 0 ? NQDirLeft : NQDirRight;
}

double NQPoint::angle(NQPoint from, NQPoint to) {  // NOLINT: by value, as declared
  constexpr double kPi = std::numbers::pi;
  const double dx = nqDifference(to.x(), from.x());
  const double dy = nqDifference(to.y(), from.y());
  if (dx == 0) return dy > 0 ? kPi / 2 : 3 * kPi / 2;
  const double angle = std::atan(dy / dx) + (dx < 0 ? kPi : 0);
  return angle < 0 ? angle + 2 * kPi : angle;
}

int NQPoint::rayAtX(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double x, double& y) {
  return onRay(x1, x2, x) ? interpolate(x1, y1, x2, y2, x, y) : 0;
}

int NQPoint::rayAtY(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double& x, double y) {
  return onRay(y1, y2, y) ? interpolate(y1, x1, y2, x2, y, x) : 0;
}

int NQPoint::segmentAtX(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double x, double& y) {
  return between(x1, x2, x) ? interpolate(x1, y1, x2, y2, x, y) : 0;
}

int NQPoint::segmentAtY(nqLong x1, nqLong y1, nqLong x2, nqLong y2, double& x, double y) {
  return between(y1, y2, y) ? interpolate(y1, x1, y2, x2, y, x) : 0;
}

int NQPoint::doublePointInSegment(double px, double py, double x1, double y1, double x2,
                                  double y2) {
  if (!(std::min(x1, x2) <= px && px <= std::max(x1, x2) && std::min(y1, y2) <= py &&
        py <= std::max(y1, y2))) {
    return 0;
  }
  const double ex = x2 - x1;
  const double ey = y2 - y1;
  const double cross = (py - y1) * ex - (px - x1) * ey;
  const double lengthSquare = ex * ex + ey * ey;
  // Far from the line, as most points are, needs no division to be seen. Equal
  // ends give 0/0, which is not below.
  if (cross * cross > lengthSquare * Line::kNear) return 0;
  return cross * cross / lengthSquare < 0.2;
}

int NQPoint::segmentsIntersect(nqLong& x1, nqLong& y1, nqLong x2, nqLong y2, nqLong x3,
                               nqLong y3, nqLong x4, nqLong y4) {
  return meet(x1, y1, x2, y2, x3, y3, x4, y4);
}

int NQPoint::segmentsIntersect(double& x1, double& y1, double x2, double y2, double x3,
                               double y3, double x4, double y4) {
  return meet(x1, y1, x2, y2, x3, y3, x4, y4);
}

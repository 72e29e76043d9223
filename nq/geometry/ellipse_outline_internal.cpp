#include <algorithm>
#include <cmath>

#include "nq/geometry/outline_internal.h"

namespace nqdetail {

namespace {

// The part of an axis that makes up a flat ellipse.
bool covers(const NodeAxis& axis, nqLong value) {
  return axis.low() <= value && value <= axis.high();
}

bool isFlat(const Node& node) {
  return node.x.extent == 0 || node.y.extent == 0;
}

// The point of the ellipse x^2/a^2 + y^2/b^2 = 1, a >= b > 0, that is nearest to
// (x, y) in the first quadrant.
// Source: D. Eberly, "Distance from a point to an ellipse, an ellipsoid, or a
// hyperellipsoid". The nearest point is (a^2 x / (t + a^2), b^2 y / (t + b^2))
// for the one t > -b^2 that puts it on the ellipse, found by bisection as
// s = t / b^2.
NQDTuple nearestInQuadrant(double a, double b, double x, double y) {
  if (y == 0) {
    const double focus = a * a - b * b;
    if (a * x >= focus) return {a, 0};
    const double part = a * x / focus;
    return {a * part, b * std::sqrt(1 - part * part)};
  }
  if (x == 0) return {0, b};
  const double square = (a / b) * (a / b);
  const double unitX = x / a;
  const double unitY = y / b;
  double low = unitY - 1;
  double high = std::max(low, std::hypot(square * unitX, unitY) - 1);
  double s = low + (high - low) / 2;
  while (low < s && s < high) {
    const double ratioX = square * unitX / (s + square);
    const double ratioY = unitY / (s + 1);
    const double excess = ratioX * ratioX + ratioY * ratioY - 1;
    if (excess == 0) break;
    (excess > 0 ? low : high) = s;
    s = low + (high - low) / 2;
  }
  return {square * x / (s + square), y / (s + 1)};
}

}  // namespace

int placeInEllipse(const Node& node, nqLong px, nqLong py) {
  if (node.y.extent == 0) return py == node.y.center && covers(node.x, px) ? 0 : -1;
  if (node.x.extent == 0) return px == node.x.center && covers(node.y, py) ? 0 : -1;
  const double w = node.x.extent;
  const double h = node.y.extent;
  const double x = double(px) - node.x.center;
  const double t = (double(py) - node.y.center) * w / h;
  const double square = w * w / 4 - t * t;
  if (x * x == square) return 0;
  return x * x < square ? 1 : -1;
}

int segmentMeetsEllipse(const Node& node, nqLong& x, nqLong& y, nqLong x2, nqLong y2) {
  if (x == x2 && y == y2) return 0;
  if (isFlat(node)) {
    const NQEdges line = node.box();
    return NQPoint::segmentsIntersect(x, y, x2, y2, line.left, line.bottom, line.right,
                                      line.top);
  }
  const int from = placeInEllipse(node, x, y);
  const int to = placeInEllipse(node, x2, y2);
  if (to == 0) {
    x = x2;
    y = y2;
    return 1;
  }
  // From the centre; everything below is exact up to the square root for extents
  // and distances up to 2^12. A direction along an axis has the length 1, which
  // keeps exact halves for much larger ones.
  const double w = node.x.extent;
  const double h = node.y.extent;
  const NQDTuple start(double(x) - node.x.center, double(y) - node.y.center);
  const NQDTuple end(double(x2) - node.x.center, double(y2) - node.y.center);
  const double dx = y == y2 ? (x < x2 ? 1 : -1) : end.x() - start.x();
  const double dy = x == x2 ? (y < y2 ? 1 : -1) : end.y() - start.y();
  // In units of the half extents the ellipse is the unit circle, the direction is
  // (dx h, dy w), and the line crosses at the two points foot +- direction * root,
  // divided by the direction's square.
  const NQDTuple direction(dx * h, dy * w);
  const double square = direction.normSquare();
  const double distance = 2 * (end.x() * dy - end.y() * dx);
  const double discriminant = square - distance * distance;
  const auto ahead = [&](const NQDTuple& p) {  // above 0: in front of the foot
    return p.x() * h * direction.x() + p.y() * w * direction.y();
  };
  const bool leaves =
      to < 0 && (from > 0 || (discriminant >= 0 && ahead(start) < 0 && ahead(end) > 0));
  const bool enters = to > 0 && from < 0;
  if (!leaves && !enters) return from == 0;
  const double root = std::sqrt(std::max(discriminant, 0.0)) * (leaves ? 1 : -1);
  const double atX = distance * direction.y() + direction.x() * root;
  const double atY = direction.y() * root - distance * direction.x();
  x = nqSum(node.x.center, nqRound(w * atX / (2 * square)));
  y = nqSum(node.y.center, nqRound(h * atY / (2 * square)));
  return 1;
}

NQPoint nearestOnEllipse(const Node& node, const NQPoint& p) {
  if (isFlat(node)) {
    const NQEdges line = node.box();
    return {std::max(line.left, std::min(p.x(), line.right)),
            std::max(line.bottom, std::min(p.y(), line.top))};
  }
  const double a = std::abs(node.x.extent / 2.0);
  const double b = std::abs(node.y.extent / 2.0);
  const double x = double(p.x()) - node.x.center;
  const double y = double(p.y()) - node.y.center;
  NQDTuple nearest;
  if (a > b) {
    nearest = nearestInQuadrant(a, b, std::abs(x), std::abs(y));
  } else {
    const NQDTuple swapped = nearestInQuadrant(b, a, std::abs(y), std::abs(x));
    nearest.set(swapped.y(), swapped.x());
  }
  return {nqRound(node.x.center + (x > 0 ? nearest.x() : -nearest.x())),
          nqRound(node.y.center + (y > 0 ? nearest.y() : -nearest.y()))};
}

// The corner of the box that is farthest from the centre reaches the ellipse
// first: ((|x| + k w) / a)^2 + ((|y| + k h) / b)^2 = 1, solved for k >= 0.
double growthInEllipse(const Node& node, const NQPoint& p, double halfWidth,
                       double halfHeight) {
  if (isFlat(node)) return 0;
  const double a = node.x.extent / 2.0;
  const double b = node.y.extent / 2.0;
  const NQDTuple at(std::abs(double(p.x()) - node.x.center) / a,
                    std::abs(double(p.y()) - node.y.center) / b);
  const NQDTuple reach(halfWidth / a, halfHeight / b);
  const double room = std::max(0.0, 1 - at.normSquare());
  const double slope = at.innerProduct(reach);
  return room / (slope + std::sqrt(slope * slope + room * reach.normSquare()));
}

}  // namespace nqdetail

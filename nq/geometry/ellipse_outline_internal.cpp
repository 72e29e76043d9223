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

// A crossing within this distance of an end of the segment belongs to it.
constexpr double kMargin = 1e-5;

bool between(double a, double b, double value) {
  return std::min(a, b) - kMargin <= value && value <= std::max(a, b) + kMargin;
}

// A line whose discriminant is below 0 by no more than this part of its terms
// touches the ellipse: it is below by rounding.
constexpr double kSlack = 1e-12;

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
  // Along v the segment is longer; it is the line u = m * v + c.
  const bool steep = std::abs(double(y) - y2) > std::abs(double(x) - x2);
  const NodeAxis& axisU = steep ? node.x : node.y;
  const NodeAxis& axisV = steep ? node.y : node.x;
  nqLong& u = steep ? x : y;
  nqLong& v = steep ? y : x;
  double fromU = double(u) - axisU.center;
  double fromV = double(v) - axisV.center;
  const double toU = double(steep ? x2 : y2) - axisU.center;
  const double toV = double(steep ? y2 : x2) - axisV.center;
  const double m = (fromU - toU) / (fromV - toV);
  const double c = toU - m * toV;
  const double a = axisU.extent / 2.0;
  const double r = double(axisU.extent) / axisV.extent;
  const double square = r * r + m * m;
  const double discriminant = a * a * m * m + (a * a - c * c) * r * r;
  if (!(discriminant >= -kSlack * a * a * square)) return 0;
  int met = 0;
  const double root = std::sqrt(std::max(discriminant, 0.0));
  for (const double solution : {(root - m * c) / square, (-root - m * c) / square}) {
    const double atU = m * solution + c;
    if (!between(fromV, toV, solution) || !between(fromU, toU, atU)) continue;
    fromU = std::floor(atU + 0.5);
    fromV = std::floor(solution + 0.5);
    met = 1;
  }
  if (met == 0) return 0;
  u = nqRound(fromU + axisU.center);
  v = nqRound(fromV + axisV.center);
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

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "nq/geometry/outline_internal.h"

namespace nqdetail {

namespace {

// Calls use(a, b) for the two ends of every edge, each as place(corner) gives
// it; the closing edge comes last.
template <class Place, class Use>
void forEachEdge(const NQPointDList& corners, Place place, Use use) {
  std::optional<decltype(place(NQPoint()))> first, previous;
  for (const NQObject* const object : corners) {
    const auto next = place(*static_cast<const NQPoint*>(object));
    if (previous) {
      use(*previous, next);
    } else {
      first = next;
    }
    previous = next;
  }
  if (first) use(*previous, *first);
}

// The same with the corners in whole coordinates.
template <class Use>
void forEachEdge(const Node& node, const NQPointDList& corners, Use use) {
  const auto absolute = [&](const NQPoint& corner) {
    const NQPoint offset = node.offset(corner);
    return NQPoint(nqSum(node.x.center, offset.x()), nqSum(node.y.center, offset.y()));
  };
  forEachEdge(corners, absolute, use);
}

}  // namespace

// Source: M. Shimrat, "Algorithm 112: position of point relative to polygon".
// A ray runs from p to the right; an edge belongs to it with its lower end. Most
// edges do not reach the height of p, and need no whole coordinates.
int placeInPolygon(const Node& node, const NQPointDList& corners, nqLong px, nqLong py) {
  struct Corner {
    const NQPoint* thousandths;
    nqInt64 height;
  };
  const nqInt64 x = nqInt64{px} - node.x.center;
  const nqInt64 y = nqInt64{py} - node.y.center;
  const nqInt64 above = NodeAxis::firstBeyond(y), level = NodeAxis::firstBeyond(y - 1);
  bool inside = false;
  bool onEdge = false;
  const auto place = [&](const NQPoint& corner) {
    return Corner{&corner, node.y.exactOffset(corner.y())};
  };
  forEachEdge(corners, place, [&](const Corner& from, const Corner& to) {
    const bool fromAbove = from.height >= above, toAbove = to.height >= above;
    if ((fromAbove & toAbove) | ((from.height < level) & (to.height < level))) return;
    const NQPoint a = node.offset(*from.thousandths), b = node.offset(*to.thousandths);
    const int side = pointInWhichHalfplane(a.x(), a.y(), b.x(), b.y(), x, y);
    onEdge |= side == 0 && std::min(a.x(), b.x()) <= x && x <= std::max(a.x(), b.x());
    inside ^= (fromAbove != toAbove) & ((side < 0) == toAbove);
  });
  if (onEdge) return 0;
  return inside ? 1 : -1;
}

int segmentMeetsPolygon(const Node& node, const NQPointDList& corners, nqLong& x,
                        nqLong& y, nqLong x2, nqLong y2) {
  double atX = x;
  double atY = y;
  int met = 0;
  forEachEdge(node, corners, [&](const NQPoint& a, const NQPoint& b) {
    met |= NQPoint::segmentsIntersect(atX, atY, double(x2), double(y2), double(a.x()),
                                      double(a.y()), double(b.x()), double(b.y()));
  });
  if (met == 0) return 0;
  x = nqRound(atX);
  y = nqRound(atY);
  return 1;
}

NQPoint nearestOnPolygon(const Node& node, const NQPointDList& corners,
                         const NQPoint& p) {
  double smallest = std::numeric_limits<double>::infinity();
  NQDTuple nearest(p);
  forEachEdge(node, corners, [&](const NQPoint& a, const NQPoint& b) {
    const NQDTuple start(a);
    NQDTuple along(b);
    along -= start;
    NQDTuple way(p);
    way -= start;
    const double square = along.normSquare();
    const double t =
        square == 0 ? 0 : std::clamp(way.innerProduct(along) / square, 0.0, 1.0);
    along *= t;
    way -= along;
    if (way.normSquare() >= smallest) return;
    smallest = way.normSquare();
    nearest = start;
    nearest += along;
  });
  return {nqRound(nearest.x()), nqRound(nearest.y())};
}

// In units of the box's half extents, how far the box may grow is the distance
// to the outline in the maximum norm. Along an edge that distance is convex and
// linear but for the places where a coordinate is 0 or both are equal in size.
double growthInPolygon(const Node& node, const NQPointDList& corners, const NQPoint& p,
                       double halfWidth, double halfHeight) {
  double growth = std::numeric_limits<double>::infinity();
  forEachEdge(node, corners, [&](const NQPoint& a, const NQPoint& b) {
    const double x = (double(a.x()) - p.x()) / halfWidth;
    const double y = (double(a.y()) - p.y()) / halfHeight;
    const double dx = (double(b.x()) - a.x()) / halfWidth;
    const double dy = (double(b.y()) - a.y()) / halfHeight;
    const std::array<double, 6> places = {
        0, 1, -x / dx, -y / dy, (y - x) / (dx - dy), -(x + y) / (dx + dy)};
    for (const double t : places) {
      if (!(t >= 0 && t <= 1)) continue;  // also what was divided by 0
      growth = std::min(growth, std::max(std::abs(x + t * dx), std::abs(y + t * dy)));
    }
  });
  return growth;
}

// All turns go one way, and directions change between leftward and rightward
// (a vertical one is rightward when it goes up) twice, once in each sense: more
// changes mean that the outline goes round more than once.
int isConvex(const NQPointDList& corners) {
  nqInt64 firstX = 0, firstY = 0;  // the first edge that has a length
  nqInt64 lastX = 0, lastY = 0;
  int turn = 0;
  int changes = 0;
  bool convex = true;
  const auto rightward = [](nqInt64 dx, nqInt64 dy) {
    return dx > 0 || (dx == 0 && dy > 0);
  };
  const auto follow = [&](nqInt64 dx, nqInt64 dy) {
    const int side = crossSign(lastX, lastY, dx, dy);
    if (side * turn < 0) convex = false;
    if (side != 0) turn = side;
    changes += rightward(lastX, lastY) != rightward(dx, dy);
    lastX = dx;
    lastY = dy;
  };
  if (corners.length() == 0) return 0;
  const auto* previous = static_cast<const NQPoint*>(corners.pLastCell()->pObject());
  for (const NQObject* const object : corners) {
    const auto* const corner = static_cast<const NQPoint*>(object);
    const nqInt64 dx = nqInt64{corner->x()} - previous->x();
    const nqInt64 dy = nqInt64{corner->y()} - previous->y();
    previous = corner;
    if (dx == 0 && dy == 0) continue;
    if (firstX == 0 && firstY == 0) {
      firstX = lastX = dx;
      firstY = lastY = dy;
    }
    follow(dx, dy);
  }
  follow(firstX, firstY);
  return convex && turn != 0 && changes == 2;
}

}  // namespace nqdetail

#include "nq/geometry/edges.h"

#include <cstdlib>
#include <limits>
#include <utility>

namespace {

constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

// Segments, rays and lines differ in the region in which a point of their line
// is also theirs: the bounding box, the quadrant in which a ray runs, or the
// whole plane.
constexpr NQEdges kEverywhere = {kMin, kMax, kMax, kMin};

NQEdges quadrant(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
  return {x2 < x1 ? kMin : x1, y2 > y1 ? kMax : y1, x2 > x1 ? kMax : x1,
          y2 < y1 ? kMin : y1};
}

// The tests that most cases end with are free of branches, which would be taken
// as often as not: whether a box meets the bounding box of a segment, whether
// it meets the quadrant of a ray, and whether it meets a line.

bool meetsBox(const NQEdges& e, nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
  return !(((x1 < e.left) & (x2 < e.left)) | ((x1 > e.right) & (x2 > e.right)) |
           ((y1 < e.bottom) & (y2 < e.bottom)) | ((y1 > e.top) & (y2 > e.top)));
}

bool meetsQuadrant(const NQEdges& e, nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
  return !(((x2 >= x1) & (e.right < x1)) | ((x2 <= x1) & (e.left > x1)) |
           ((y2 >= y1) & (e.top < y1)) | ((y2 <= y1) & (e.bottom > y1)));
}

// For modest coordinates: the centre of the box is not farther from the line
// than the box reaches across it, all doubled and times the length of the
// segment. Two equal points make a line that meets every box.
bool meetsLine(const NQEdges& e, nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
  const nqInt64 dx = x2 - x1;
  const nqInt64 dy = y2 - y1;
  const nqInt64 distance =
      dx * (e.top + e.bottom - 2 * y1) - dy * (e.left + e.right - 2 * x1);
  const nqInt64 reach =
      std::abs(dx) * (e.top - e.bottom) + std::abs(dy) * (e.right - e.left);
  return std::abs(distance) <= reach;
}

// What is known about a line, segment or ray and a box before any crossing is
// computed; `meetsRegion` tells whether the box meets its region. For modest
// coordinates everything is: beyond its region a line only goes away from a
// box that meets the region. Also, a crossing computed in double then lies on
// the same side of every edge as the true one, which is at least 2^-26 away
// from an edge that it does not meet; the error is smaller.
struct Outlook {
  Outlook(bool meetsRegion, const NQEdges& e, nqLong x1, nqLong y1, nqLong x2, nqLong y2)
      : certain(nqIsModest(e.left, e.top, e.right, e.bottom, x1, y1, x2, y2)),
        hopeful(certain ? meetsRegion & meetsLine(e, x1, y1, x2, y2) : meetsRegion) {}

  bool certain;  // then they meet exactly if `hopeful`
  bool hopeful;  // if not, they do not meet
};

// Up to two points where a line crosses the boundary.
class Crossings {
 public:
  int count() const { return count_; }
  bool add(nqLong x, nqLong y) {
    point_[count_++] = {x, y};
    return count_ == 2;
  }
  void keepOnly(const NQEdges& region) {
    const int found = std::exchange(count_, 0);
    for (int i = 0; i < found; ++i) {
      if (region.within(point_[i].x, point_[i].y)) point_[count_++] = point_[i];
    }
  }
  void sortFrom(nqLong x, nqLong y) {
    if (count_ == 2 && point_[1].distance(x, y) < point_[0].distance(x, y)) {
      std::swap(point_[0], point_[1]);
    }
  }
  int store(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const {
    if (count_ > 0) x1 = point_[0].x, y1 = point_[0].y;
    if (count_ > 1) x2 = point_[1].x, y2 = point_[1].y;
    return count_;
  }

 private:
  struct Point {
    nqLong x, y;
    nqInt64 distance(nqLong fromX, nqLong fromY) const {
      return std::abs(nqInt64{x} - fromX) + std::abs(nqInt64{y} - fromY);
    }
  };

  Point point_[2];
  int count_ = 0;
};

// The crossings of a line with the boundary, top, bottom, left and right edge
// in this order; a corner belongs to the first two. Edges outside `wanted` may
// be left out.
Crossings lineCrossings(const NQEdges& e, const NQEdges& wanted, nqLong x1, nqLong y1,
                        nqLong x2, nqLong y2) {
  Crossings found;
  if (x1 == x2) {
    if (y1 == y2 || !e.withinXRange(x1) || found.add(x1, e.top)) return found;
    if (e.bottom != e.top) found.add(x1, e.bottom);
    return found;
  }
  if (y1 == y2) {
    if (!e.withinYRange(y1) || found.add(e.left, y1)) return found;
    if (e.right != e.left) found.add(e.right, y1);
    return found;
  }
  const auto crossesAtY = [&](nqLong y) {
    double x = 0;
    if (!wanted.withinYRange(y)) return false;
    NQPoint::lineAtY(x1, y1, x2, y2, x, y);
    return e.left <= x && x <= e.right && found.add(nqRound(x), y);
  };
  const auto crossesAtX = [&](nqLong x) {
    double y = 0;
    if (!wanted.withinXRange(x)) return false;
    NQPoint::lineAtX(x1, y1, x2, y2, x, y);
    return e.bottom < y && y < e.top && found.add(x, nqRound(y));
  };
  if (crossesAtY(e.top)) return found;
  if (e.bottom != e.top && crossesAtY(e.bottom)) return found;
  if (crossesAtX(e.left)) return found;
  if (e.right != e.left) crossesAtX(e.right);
  return found;
}

// The crossings that lie in the region. What lies elsewhere need not be found
// first when nothing is uncertain.
Crossings crossingsIn(const NQEdges& region, const Outlook& outlook, const NQEdges& e,
                      nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
  Crossings found =
      lineCrossings(e, outlook.certain ? region : kEverywhere, x1, y1, x2, y2);
  found.keepOnly(region);
  return found;
}

// The part of an edge from `low` to `high` that a segment or ray on it covers,
// from `from` to `to`; the number of different ends.
int coveredPart(nqLong from, nqLong to, nqLong& first, nqLong& second) {
  first = from;
  if (from == to) return 1;
  second = to;
  return 2;
}

nqInt64 distance(nqLong a, nqLong b) {
  return std::abs(nqInt64{a} - b);
}

// The half extent on the side on which an offset lies.
nqInt64 halfOn(nqLong offset, nqLong extent) {
  return offset >= 0 ? nqUpperHalf(extent) : nqHalf(extent);
}

short perMilOf(nqLong offset, nqLong extent) {
  const nqInt64 half = halfOn(offset, extent);
  return half == 0 ? short{500} : static_cast<short>(1000 * nqInt64{offset} / half);
}

}  // namespace

nqLong NQEdges::sideCoordinate(NQSideEnum side) const {
  switch (side) {
    case NQSideRight:
      return right;
    case NQSideTop:
      return top;
    case NQSideLeft:
      return left;
    case NQSideBottom:
      return bottom;
  }
  return 0;
}

int NQEdges::intersectsLine(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const {
  const Outlook outlook(true, *this, x1, y1, x2, y2);
  if (!outlook.hopeful) return 0;
  return crossingsIn(kEverywhere, outlook, *this, x1, y1, x2, y2).store(x1, y1, x2, y2);
}

int NQEdges::intersectsSegment(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const {
  const Outlook outlook(meetsBox(*this, x1, y1, x2, y2), *this, x1, y1, x2, y2);
  if (!outlook.hopeful) return 0;
  const NQEdges box = ofCorners(x1, y1, x2, y2);
  if (x1 == x2 && (x1 == left || x1 == right)) {
    return coveredPart(std::max(bottom, box.bottom), std::min(top, box.top), y1, y2);
  }
  if (y1 == y2 && (y1 == top || y1 == bottom)) {
    return coveredPart(std::max(left, box.left), std::min(right, box.right), x1, x2);
  }
  return crossingsIn(box, outlook, *this, x1, y1, x2, y2).store(x1, y1, x2, y2);
}

int NQEdges::intersectsRay(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const {
  const Outlook outlook(meetsQuadrant(*this, x1, y1, x2, y2), *this, x1, y1, x2, y2);
  if (!outlook.hopeful || (x1 == x2 && y1 == y2)) return 0;
  if (x1 == x2 && (x1 == left || x1 == right)) {
    return coveredPart(std::max(bottom, std::min(y1, top)), y2 > y1 ? top : bottom, y1,
                       y2);
  }
  if (y1 == y2 && (y1 == top || y1 == bottom)) {
    return coveredPart(std::max(left, std::min(x1, right)), x2 > x1 ? right : left, x1,
                       x2);
  }
  Crossings found = crossingsIn(quadrant(x1, y1, x2, y2), outlook, *this, x1, y1, x2, y2);
  found.sortFrom(x1, y1);
  return found.store(x1, y1, x2, y2);
}

int NQEdges::overlapsLine(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const {
  if (x1 == x2) return y1 != y2 && withinXRange(x1);
  if (y1 == y2) return withinYRange(y1);
  const Outlook outlook(true, *this, x1, y1, x2, y2);
  if (outlook.certain) return outlook.hopeful;
  const auto crossesAtY = [&](nqLong y) {
    double x = 0;
    NQPoint::lineAtY(x1, y1, x2, y2, x, y);
    return left <= x && x <= right;
  };
  const auto crossesAtX = [&](nqLong x) {
    double y = 0;
    NQPoint::lineAtX(x1, y1, x2, y2, x, y);
    return bottom <= y && y <= top;
  };
  return crossesAtY(top) || crossesAtY(bottom) || crossesAtX(left) || crossesAtX(right);
}

int NQEdges::overlapsSegment(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const {
  const Outlook outlook(meetsBox(*this, x1, y1, x2, y2), *this, x1, y1, x2, y2);
  if (outlook.certain || !outlook.hopeful) return outlook.hopeful;
  if (x1 == x2 || y1 == y2 || within(x1, y1) || within(x2, y2)) return 1;
  const NQEdges box = ofCorners(x1, y1, x2, y2);
  return crossingsIn(box, outlook, *this, x1, y1, x2, y2).count() > 0;
}

int NQEdges::overlapsRay(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const {
  if (x1 == x2 && y1 == y2) return 0;
  const Outlook outlook(meetsQuadrant(*this, x1, y1, x2, y2), *this, x1, y1, x2, y2);
  if (outlook.certain || !outlook.hopeful) return outlook.hopeful;
  if (x1 == x2 || y1 == y2 || within(x1, y1) || within(x2, y2)) return 1;
  const NQEdges region = quadrant(x1, y1, x2, y2);
  return crossingsIn(region, outlook, *this, x1, y1, x2, y2).count() > 0;
}

NQSideEnum NQEdges::closestSide(nqLong x, nqLong y) const {
  if (within(x, y)) return closestSideWithin(x, y);
  const NQSideEnum horizontal = x < left ? NQSideLeft : NQSideRight;
  const NQSideEnum vertical = y > top ? NQSideTop : NQSideBottom;
  if (withinXRange(x)) return vertical;
  if (withinYRange(y)) return horizontal;
  const nqInt64 dx = distance(x, horizontal == NQSideLeft ? left : right);
  const nqInt64 dy = distance(y, vertical == NQSideTop ? top : bottom);
  return dx < dy ? vertical : horizontal;
}

NQSideEnum NQEdges::closestSideWithin(nqLong x, nqLong y) const {
  NQSideEnum closest = NQSideRight;
  nqInt64 smallest = distance(right, x);
  const auto offer = [&](NQSideEnum side, nqInt64 d) {
    if (d >= smallest) return;
    closest = side;
    smallest = d;
  };
  offer(NQSideTop, distance(top, y));
  offer(NQSideLeft, distance(left, x));
  offer(NQSideBottom, distance(bottom, y));
  return closest;
}

NQPoint NQEdges::nearestPoint(const NQPoint& p) const {
  if (!withinInterior(p.x(), p.y())) {
    return {std::max(left, std::min(p.x(), right)),
            std::max(bottom, std::min(p.y(), top))};
  }
  NQPoint nearest(p.x(), bottom);
  nqInt64 smallest = distance(p.y(), bottom);
  const auto offer = [&](const NQPoint& candidate, nqInt64 d) {
    if (d >= smallest) return;
    nearest = candidate;
    smallest = d;
  };
  offer(NQPoint(p.x(), top), distance(top, p.y()));
  offer(NQPoint(left, p.y()), distance(p.x(), left));
  offer(NQPoint(right, p.y()), distance(right, p.x()));
  return nearest;
}

NQPoint NQEdges::pointOutside(const NQPoint& p, const NQPoint& q) const {
  const nqLong dx = nqDifference(q.x(), p.x());
  const nqLong dy = nqDifference(q.y(), p.y());
  const nqLong farX = dx < 0 ? right : left;
  const nqLong farY = dy < 0 ? top : bottom;
  if (dx == 0 && dy == 0) return {right, p.y()};
  if (dy == 0) return {farX, p.y()};
  if (dx == 0) return {p.x(), farY};
  const auto slope = [](double run, double rise) { return std::abs(run / rise); };
  const bool flat = top != bottom && slope(dx, dy) >= slope(width(), height());
  const nqInt64 steps =
      flat ? (nqInt64{farX} - p.x()) / dx : (nqInt64{farY} - p.y()) / dy;
  const nqLong back = static_cast<nqLong>(std::abs(steps) + 1);
  return {nqDifference(p.x(), nqProduct(back, dx)),
          nqDifference(p.y(), nqProduct(back, dy))};
}

int NQEdges::pointInOtherSide(NQPoint& p, const NQPoint& q) const {
  if (p.x() == q.x() || p.y() == q.y()) return 1;
  nqLong x1 = p.x(), y1 = p.y(), x2 = q.x(), y2 = q.y();
  if (intersectsLine(x1, y1, x2, y2) < 2) {
    p = q;
    return 0;
  }
  const NQPoint second(x2, y2);
  p = second == q ? NQPoint(x1, y1) : second;
  return 1;
}

NQSideEnum NQEdges::sideForRouting(const NQPoint& p, NQDirectionEnum direction) const {
  const bool besideX = !withinXRange(p.x());
  const bool besideY = !withinYRange(p.y());
  if (!besideX && !besideY) return static_cast<NQSideEnum>(direction);
  if (besideX && (!besideY || direction % 2 != 0)) {
    return p.x() < left ? NQSideLeft : NQSideRight;
  }
  return p.y() < bottom ? NQSideBottom : NQSideTop;
}

NQSideEnum NQEdges::sideForRouting(const NQEdges& o, int horizontalFirst) const {
  if (intersects(o)) {
    // How far the other box reaches beyond each side, in the order of ties.
    const struct {
      NQSideEnum side;
      nqInt64 reach;
    } sides[] = {{NQSideBottom, nqInt64{bottom} - o.bottom},
                 {NQSideLeft, nqInt64{left} - o.left},
                 {NQSideTop, nqInt64{o.top} - top},
                 {NQSideRight, nqInt64{o.right} - right}};
    const bool nested = encloses(o) || o.encloses(*this);
    NQSideEnum best = NQSideLeft;
    nqInt64 highest = nested ? std::numeric_limits<nqInt64>::min() : 0;
    for (const auto& [side, reach] : sides) {
      const nqInt64 score = nested ? -std::abs(reach) : reach;
      if (score <= highest) continue;
      best = side;
      highest = score;
    }
    return best;
  }
  if (!intersectsXRange(o) && (intersectsYRange(o) || horizontalFirst != 0)) {
    return left > o.right ? NQSideLeft : NQSideRight;
  }
  return bottom > o.top ? NQSideBottom : NQSideTop;
}

NQPerMil NQEdges::perMil(const NQSize& offset) const {
  return {perMilOf(offset.width(), width()), perMilOf(offset.height(), height())};
}

NQSize NQEdges::offset(const NQPerMil& perMil, const NQSize& sign) const {
  return {static_cast<nqLong>(perMil.x() * halfOn(sign.width(), width()) / 1000),
          static_cast<nqLong>(perMil.y() * halfOn(sign.height(), height()) / 1000)};
}

std::string NQEdges::asText() const {
  return NQTuple(left, bottom).asText() + "-" + NQTuple(right, top).asText();
}

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "nq/geometry/outline_internal.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace nqdetail {

namespace {

using Bits = std::uint64_t;

bool isSmall(const NQEdges& e) {
  constexpr nqLong kLimit = EdgeLine::kSmall;
  return -kLimit < e.left && e.right < kLimit && -kLimit < e.bottom && e.top < kLimit;
}

// The line of an edge, taken upward: what is left of it has it to the right.
EdgeLine upwardLine(Corner from, Corner to) {
  if (from.y > to.y) std::swap(from, to);
  const nqInt64 dx = to.x - from.x;
  const nqInt64 dy = to.y - from.y;
  return {-dy, dx, dy * from.x - dx * from.y};
}

// Calls use(a, b) for the ends of every edge, in whole coordinates; the closing
// edge comes last.
template <class Use>
void forEachEdge(const Node& node, const Corners& corners, Use use) {
  const auto absolute = [&](const Corner& offset) {
    return NQPoint(nqSum(node.x.center, offset.x), nqSum(node.y.center, offset.y));
  };
  for (std::size_t i = 1; i < corners.size(); ++i) {
    use(absolute(corners[i - 1]), absolute(corners[i]));
  }
}

// How the corners of up to 63 edges in a row lie to a height.
struct Skyline {
  Bits above = 0;  // a bit for each corner
  bool level = false;

  // Heights are read in fours, up to three too many.
#if defined(__SSE2__)
  Skyline(const nqLong* heights, std::size_t corners, nqLong y) {
    const __m128i limit = _mm_set1_epi32(y);
    __m128i equal = _mm_setzero_si128();
    for (std::size_t i = 0; i < corners; i += 4) {
      const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(heights + i));
      const __m128i higher = _mm_cmpgt_epi32(four, limit);
      above |= static_cast<Bits>(_mm_movemask_ps(_mm_castsi128_ps(higher))) << i;
      equal = _mm_or_si128(equal, _mm_cmpeq_epi32(four, limit));
    }
    level = _mm_movemask_epi8(equal) != 0;
  }
#else
  Skyline(const nqLong* heights, std::size_t corners, nqLong y) {
    for (std::size_t i = 0; i < corners; ++i) {
      above |= Bits{heights[i] > y} << i;
      level |= heights[i] == y;
    }
  }
#endif
};

// Where p is, for small coordinates: 0 when it is at the height of a corner or on
// an edge, and nothing is known. First a bit for each corner says whether it is
// above p, and no branch depends on it; then only the edges that cross the height
// of p are looked at, those of which one end is above it.
int placeBetweenCorners(const Corners& corners, nqLong px, nqLong py) {
  constexpr std::size_t kEdges = 63;  // whose ends fit a word
  bool inside = false;
  bool unknown = false;
  for (std::size_t start = 0; start + 1 < corners.size(); start += kEdges) {
    const std::size_t edges = std::min(kEdges, corners.size() - 1 - start);
    const Skyline skyline(corners.heights + start, edges + 1, py);
    unknown |= skyline.level;
    Bits crossing = (skyline.above ^ skyline.above >> 1) & ((Bits{1} << edges) - 1);
    for (; crossing != 0; crossing &= crossing - 1) {
      const nqInt64 side = corners.lines[start + std::countr_zero(crossing)].at(px, py);
      unknown |= side == 0;
      inside ^= side > 0;
    }
  }
  if (unknown) return 0;
  return 2 * static_cast<int>(inside) - 1;  // a branch would be taken at random
}

// The same for any point and any coordinates, the boundary included.
int placeOnEdges(const Corners& corners, nqInt64 px, nqInt64 py) {
  bool inside = false;
  for (std::size_t i = 1; i < corners.size(); ++i) {
    const Corner& a = corners[i - 1];
    const Corner& b = corners[i];
    if ((a.y > py && b.y > py) || (a.y < py && b.y < py)) continue;
    const int side = pointInWhichHalfplane(a.x, a.y, b.x, b.y, px, py);
    if (side == 0 && std::min(a.x, b.x) <= px && px <= std::max(a.x, b.x)) return 0;
    inside ^= ((a.y > py) != (b.y > py)) & ((side < 0) == (b.y > a.y));
  }
  return inside ? 1 : -1;
}

}  // namespace

void SizedCorners::compute(const NQPointDList& thousandths, const Node& node) {
  width_ = node.x.extent;
  height_ = node.y.extent;
  offsets_.clear();
  heights_.clear();
  lines_.clear();
  NQEdges bounds = {};
  for (const NQObject* const object : thousandths) {
    const auto* const p = static_cast<const NQPoint*>(object);
    const Corner corner = {node.x.offset(p->x()), node.y.offset(p->y())};
    const NQEdges place = {corner.x, corner.y, corner.x, corner.y};
    bounds = offsets_.empty() ? place : bounds.bounds(place);
    offsets_.push_back(corner);
  }
  if (!offsets_.empty()) offsets_.push_back(offsets_.front());
  const bool small = isSmall(bounds);
  if (small) {
    for (const Corner& corner : offsets_) heights_.push_back(corner.y);
    heights_.resize(heights_.size() + 3);  // what is read too much
    for (std::size_t i = 1; i < offsets_.size(); ++i) {
      lines_.push_back(upwardLine(offsets_[i - 1], offsets_[i]));
    }
  }
  corners_ = {offsets_, small, heights_.data(), lines_.data(), bounds};
}

// Source: M. Shimrat, "Algorithm 112: position of point relative to polygon".
// A ray runs from p to the right; an edge belongs to it with its lower end.
int placeInPolygon(const Corners& corners, nqInt64 x, nqInt64 y) {
  if (corners.empty()) return -1;
  if (corners.small) {
    // Far outside is no other place than just outside.
    const NQEdges& bounds = corners.bounds;
    const nqInt64 nearX = std::clamp<nqInt64>(x, bounds.left - 1, bounds.right + 1);
    const nqInt64 nearY = std::clamp<nqInt64>(y, bounds.bottom - 1, bounds.top + 1);
    const int place = placeBetweenCorners(corners, static_cast<nqLong>(nearX),
                                          static_cast<nqLong>(nearY));
    if (place != 0) return place;
  }
  return placeOnEdges(corners, x, y);
}

int segmentMeetsPolygon(const Node& node, const Corners& corners, nqLong& x, nqLong& y,
                        nqLong x2, nqLong y2) {
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

NQPoint nearestOnPolygon(const Node& node, const Corners& corners, const NQPoint& p) {
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
double growthInPolygon(const Node& node, const Corners& corners, const NQPoint& p,
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

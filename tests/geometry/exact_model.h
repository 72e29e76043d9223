// exact_model.h -- slow geometry in whole numbers, to compare results with.
//
// Crossings are fractions, decisions are signs of products: nothing is rounded
// before the end. For coordinates up to 2^29 in size, for ellipses up to 2^11.

#ifndef NQ_TESTS_GEOMETRY_EXACT_MODEL_H
#define NQ_TESTS_GEOMETRY_EXACT_MODEL_H

#include <algorithm>
#include <cstdint>
#include <optional>
#include <ostream>
#include <vector>

namespace model {

using Int = std::int64_t;

struct Point {
  Int x, y;
  bool operator==(const Point&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Point& p) {
    return out << "(" << p.x << ", " << p.y << ")";
  }
};

struct Segment {
  Point a, b;
  friend std::ostream& operator<<(std::ostream& out, const Segment& s) {
    return out << s.a << "-" << s.b;
  }
};

struct Box {
  Int left, bottom, right, top;
  bool within(Point p) const {
    return left <= p.x && p.x <= right && bottom <= p.y && p.y <= top;
  }
  friend std::ostream& operator<<(std::ostream& out, const Box& b) {
    return out << "[" << b.left << ".." << b.right << "]x[" << b.bottom << ".." << b.top
               << "]";
  }
};

inline Box around(const Segment& s) {
  return {std::min(s.a.x, s.b.x), std::min(s.a.y, s.b.y), std::max(s.a.x, s.b.x),
          std::max(s.a.y, s.b.y)};
}

// A number n/d with d > 0.
struct Fraction {
  Fraction(Int numerator, Int denominator)
      : n(denominator < 0 ? -numerator : numerator),
        d(denominator < 0 ? -denominator : denominator) {}
  int compare(Int v) const { return n < v * d ? -1 : n > v * d; }
  Int rounded() const {  // halves go up
    const Int doubled = 2 * n + d;
    const Int quotient = doubled / (2 * d);
    return quotient - (doubled % (2 * d) < 0);
  }
  Int n, d;
};

// Twice the signed area of the triangle: the side of a-b on which p lies.
inline Int cross(Point a, Point b, Point p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

inline int sign(Int v) {
  return v < 0 ? -1 : v > 0;
}

// Whether two closed segments have a point in common.
inline bool meet(const Segment& s, const Segment& t) {
  const int s1 = sign(cross(s.a, s.b, t.a)), s2 = sign(cross(s.a, s.b, t.b));
  const int t1 = sign(cross(t.a, t.b, s.a)), t2 = sign(cross(t.a, t.b, s.b));
  if (s1 * s2 < 0 && t1 * t2 < 0) return true;
  return (s1 == 0 && around(s).within(t.a)) || (s2 == 0 && around(s).within(t.b)) ||
         (t1 == 0 && around(t).within(s.a)) || (t2 == 0 && around(t).within(s.b));
}

inline bool meet(const Box& b, const Segment& s) {
  const Point corners[] = {
      {b.left, b.bottom}, {b.right, b.bottom}, {b.right, b.top}, {b.left, b.top}};
  bool met = b.within(s.a) || b.within(s.b);
  for (int i = 0; i < 4; ++i) met = met || meet(s, {corners[i], corners[(i + 1) % 4]});
  return met;
}

// Where the line through both points crosses the boundary: top, bottom, left,
// right edge, a corner with the first two only.
inline std::vector<Point> lineCrossings(const Box& b, const Segment& s) {
  std::vector<Point> found;
  const Int dx = s.b.x - s.a.x, dy = s.b.y - s.a.y;
  const auto add = [&](Int x, Int y) {
    if (std::find(found.begin(), found.end(), Point{x, y}) == found.end()) {
      found.push_back({x, y});
    }
  };
  if (dx == 0 && dy == 0) return found;
  if (dx == 0) {
    if (s.a.x >= b.left && s.a.x <= b.right) add(s.a.x, b.top), add(s.a.x, b.bottom);
    return found;
  }
  if (dy == 0) {
    if (s.a.y >= b.bottom && s.a.y <= b.top) add(b.left, s.a.y), add(b.right, s.a.y);
    return found;
  }
  // Rounding may bring two different crossings to one point; both count.
  std::vector<Int> ys = {b.top};
  if (b.bottom != b.top) ys.push_back(b.bottom);
  for (const Int y : ys) {
    const Fraction x((y - s.a.y) * dx + s.a.x * dy, dy);
    if (x.compare(b.left) >= 0 && x.compare(b.right) <= 0)
      found.push_back({x.rounded(), y});
  }
  std::vector<Int> xs = {b.left};
  if (b.right != b.left) xs.push_back(b.right);
  for (const Int x : xs) {
    const Fraction y((x - s.a.x) * dy + s.a.y * dx, dx);
    if (y.compare(b.bottom) > 0 && y.compare(b.top) < 0)
      found.push_back({x, y.rounded()});
  }
  return found;
}

inline std::vector<Point> segmentCrossings(const Box& b, const Segment& s) {
  const Box box = around(s);
  const auto part = [](Point from, Point to) {
    return from == to ? std::vector<Point>{from} : std::vector<Point>{from, to};
  };
  if (box.right < b.left || b.right < box.left || box.top < b.bottom ||
      b.top < box.bottom) {
    return {};
  }
  if (s.a.x == s.b.x && (s.a.x == b.left || s.a.x == b.right)) {
    return part({s.a.x, std::max(b.bottom, box.bottom)},
                {s.a.x, std::min(b.top, box.top)});
  }
  if (s.a.y == s.b.y && (s.a.y == b.bottom || s.a.y == b.top)) {
    return part({std::max(b.left, box.left), s.a.y},
                {std::min(b.right, box.right), s.a.y});
  }
  std::vector<Point> found = lineCrossings(b, s);
  std::erase_if(found, [&](Point p) { return !box.within(p); });
  return found;
}

inline std::vector<Point> rayCrossings(const Box& b, const Segment& s) {
  const Int dx = s.b.x - s.a.x, dy = s.b.y - s.a.y;
  const auto ahead = [&](Point p) {
    return (p.x - s.a.x) * sign(dx) >= 0 && (p.y - s.a.y) * sign(dy) >= 0;
  };
  std::vector<Point> found = lineCrossings(b, s);
  std::erase_if(found, [&](Point p) { return !ahead(p); });
  const auto along = [&](Point p) { return (p.x - s.a.x) * dx + (p.y - s.a.y) * dy; };
  std::stable_sort(found.begin(), found.end(),
                   [&](Point p, Point q) { return along(p) < along(q); });
  // On an edge, the start counts as a crossing too.
  const bool onEdge = (dx == 0 && (s.a.x == b.left || s.a.x == b.right)) ||
                      (dy == 0 && (s.a.y == b.bottom || s.a.y == b.top));
  if (found.size() == 1 && onEdge && b.within(s.a) && found[0] != s.a) {
    found.insert(found.begin(), s.a);
  }
  return found;
}

// Where two segments meet: ends that are nearer than the root of 0.2 to the
// other segment's line, within its box, come first.
inline std::optional<Point> meetingPoint(const Segment& s, const Segment& t) {
  const auto on = [](Point p, const Segment& u) {
    const Int ex = u.b.x - u.a.x, ey = u.b.y - u.a.y, c = cross(u.a, u.b, p);
    return around(u).within(p) && 5 * c * c < ex * ex + ey * ey;
  };
  if (on(t.a, s)) return t.a;
  if (on(t.b, s)) return t.b;
  if (on(s.a, t)) return s.a;
  if (on(s.b, t)) return s.b;
  const Int ta = cross(s.a, s.b, t.a), tb = cross(s.a, s.b, t.b);
  const Int sa = cross(t.a, t.b, s.a), sb = cross(t.a, t.b, s.b);
  if (sign(ta) * sign(tb) >= 0 || sign(sa) * sign(sb) >= 0) return std::nullopt;
  return Point{Fraction(s.a.x * (sa - sb) + sa * (s.b.x - s.a.x), sa - sb).rounded(),
               Fraction(s.a.y * (sa - sb) + sa * (s.b.y - s.a.y), sa - sb).rounded()};
}

__extension__ typedef __int128 Wide;

// The sign of p + q * sqrt(d).
inline int surdSign(Wide p, Wide q, Wide d) {
  if (p >= 0 && q >= 0) return p > 0 || (q > 0 && d > 0);
  if (p <= 0 && q <= 0) return -surdSign(-p, -q, d);
  const Wide excess = p * p - q * q * d;
  return ((excess > 0) - (excess < 0)) * (p > 0 ? 1 : -1);
}

// Where the segment a + t (b - a) crosses the ellipse of the extents w and h about
// the origin, nearest to b: A t^2 + 2 B t + C = 0.
inline std::optional<Point> ellipseCrossing(Int w, Int h, const Segment& s) {
  const Wide dx = s.b.x - s.a.x, dy = s.b.y - s.a.y, x = s.a.x, y = s.a.y;
  const Wide xx = Wide{4} * h * h, yy = Wide{4} * w * w;
  const Wide a = xx * dx * dx + yy * dy * dy, b = xx * x * dx + yy * y * dy,
             c = xx * x * x + yy * y * y - Wide{w} * w * h * h, d = b * b - a * c;
  if (a == 0 || d < 0) return std::nullopt;
  for (const int side : {1, -1}) {
    if (surdSign(-b, side, d) < 0 || surdSign(a + b, -side, d) < 0) continue;
    const auto rounded = [&](Wide start, Wide way) {
      const auto reaches = [&](Wide v) {  // v - 1/2
        const Wide whole = (2 * (start - v) + 1) * a - 2 * way * b;
        return surdSign(whole, 2 * way * side, d) >= 0;
      };
      Int low = std::min({s.a.x, s.a.y, s.b.x, s.b.y}) - 1;
      Int high = std::max({s.a.x, s.a.y, s.b.x, s.b.y}) + 2;
      while (high - low > 1) {
        const Int middle = low + (high - low) / 2;
        (reaches(middle) ? low : high) = middle;
      }
      return low;
    };
    return Point{rounded(x, dx), rounded(y, dy)};
  }
  return std::nullopt;
}

}  // namespace model

#endif  // NQ_TESTS_GEOMETRY_EXACT_MODEL_H

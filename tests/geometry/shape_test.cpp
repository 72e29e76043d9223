#include "nq/geometry/shape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <concepts>
#include <initializer_list>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "nq/geometry/point_list.h"
#include "tests/geometry/exact_model.h"
#include "tests/geometry/test_peer.h"
#include "tests/support/copy_protocol_check.h"

namespace {

constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

using Corners = std::vector<model::Point>;

NQPointDList* list(const Corners& corners) {
  auto* const points = new NQPointDList;
  for (const model::Point& p : corners) {
    points->appendPoint(new NQPoint(static_cast<nqLong>(p.x), static_cast<nqLong>(p.y)));
  }
  return points;
}

Corners cornersOf(const NQShape& shape) {
  Corners corners;
  if (shape.pPointList() == nullptr) return corners;
  for (const NQObject* const object : *shape.pPointList()) {
    const auto* const p = static_cast<const NQPoint*>(object);
    corners.push_back({p->x(), p->y()});
  }
  return corners;
}

// In a node of 2000 by 2000 about (0, 0), thousandths are coordinates.
int place(const NQShape& shape, model::Point p, nqLong side = 2000) {
  const auto x = static_cast<nqLong>(p.x), y = static_cast<nqLong>(p.y);
  const int within = shape.within(x, y, 0, 0, side, side);
  const int interior = shape.withinInterior({x, y}, {0, 0}, {side, side});
  const int boundary = shape.onBoundary({x, y}, {0, 0}, {side, side});
  EXPECT_EQ(within, interior + boundary) << p;
  return boundary ? 0 : interior ? 1 : -1;
}

// The model: on an edge, or enclosed by an odd number of edges.
int placeOf(const Corners& corners, model::Point p) {
  bool inside = false;
  for (size_t i = 0; i < corners.size(); ++i) {
    const model::Segment edge = {corners[i], corners[(i + 1) % corners.size()]};
    const model::Int cross = model::cross(edge.a, edge.b, p);
    if (cross == 0 && model::around(edge).within(p)) return 0;
    const bool up = edge.a.y <= p.y && p.y < edge.b.y;
    const bool down = edge.b.y <= p.y && p.y < edge.a.y;
    if ((up && cross > 0) || (down && cross < 0)) inside = !inside;
  }
  return inside ? 1 : -1;
}

// The model of convexity: corners without repetition and collinear ones, then
// every corner on one side of every edge, and each edge met once.
bool isConvex(Corners c) {
  for (size_t i = 0; c.size() > 2 && i < c.size();) {
    const model::Point before = c[(i + c.size() - 1) % c.size()];
    const model::Point after = c[(i + 1) % c.size()];
    const bool straight = model::cross(before, c[i], after) == 0 &&
                          model::around({before, after}).within(c[i]);
    if (c[i] == before || straight) {
      c.erase(c.begin() + static_cast<std::ptrdiff_t>(i));
      i = 0;
    } else {
      ++i;
    }
  }
  if (c.size() < 3) return false;
  int side = 0;
  for (size_t i = 0; i < c.size(); ++i) {
    for (const model::Point& p : c) {
      const int s = model::sign(model::cross(c[i], c[(i + 1) % c.size()], p));
      if (s * side < 0) return false;
      if (s != 0) side = s;
    }
    for (size_t k = 0; k < i; ++k) {
      if (c[i] == c[k]) return false;
    }
  }
  return side != 0;
}

const Corners kDiamond = {{0, -1000}, {1000, 0}, {0, 1000}, {-1000, 0}};
const Corners kArrow = {{-1000, -1000}, {1000, 0}, {-1000, 1000}, {-400, 0}};

TEST(NQShape, TakesItsTypeFromItsCorners) {
  const NQShape plain;
  EXPECT_EQ(plain.shapeType(), NQShapeRectangle);
  EXPECT_EQ(NQShape(static_cast<NQPointDList*>(nullptr)).shapeType(), NQShapeRectangle);
  EXPECT_EQ(NQShape(list({{0, 0}, {5, 5}})).shapeType(), NQShapeRectangle);
  EXPECT_EQ(NQShape(list({{0, 0}, {5, 5}})).pPointList(), nullptr);

  NQShape shape(list(kDiamond));
  EXPECT_EQ(shape.shapeType(), NQShapeConvexPolygon);
  NQPointDList* const arrow = list(kArrow);
  arrow->appendPoint(nullptr);  // dropped
  EXPECT_EQ(shape.pPointList(arrow), arrow);
  EXPECT_EQ(shape.shapeType(), NQShapeNonConvexPolygon);
  EXPECT_EQ(cornersOf(shape), kArrow);
  EXPECT_EQ(place(shape, {-900, 0}), -1);  // in the notch
  arrow->pPointInPosition(4)->x(-1000);
  EXPECT_EQ(place(shape, {-900, 0}), 1);      // the notch is gone
  EXPECT_EQ(shape.pPointList(arrow), arrow);  // the list that it has, changed
  EXPECT_EQ(shape.shapeType(), NQShapeConvexPolygon);
  shape.setShapeType(NQShapeNonConvexPolygon);
  EXPECT_EQ(shape.pPointList(), nullptr);
  EXPECT_EQ(shape.shapeType(), NQShapeNonConvexPolygon);

  // Without corners there is no outline.
  NQPoint p(1, 2);
  EXPECT_EQ(place(shape, {0, 0}), -1);
  EXPECT_EQ(shape.nearestPoint(p, {0, 0}, {9, 9}), 0);
  EXPECT_EQ(shape.intersectsSegment(p, {100, 100}, {0, 0}, {9, 9}), 0);
  EXPECT_EQ(p, NQPoint(1, 2));
  EXPECT_EQ(shape.maxAvailableDiagonalLengthAtShape(p, {1, 1}, {0, 0}, {9, 9}), 0);
  shape.rotate(90);

  const int types[] = {2, 2, 3, 2};  // as corners arrive
  shape.setShapeType(NQShapeEllipse);
  for (int i = 0; i < 4; ++i) {
    const model::Point corner = i < 3 ? kDiamond[static_cast<size_t>(i)] : kDiamond[3];
    EXPECT_EQ(NQTestPeer::addPoint(shape, nqLong(corner.x), nqLong(corner.y))->x(),
              corner.x);
    EXPECT_EQ(shape.shapeType(), i < 2 ? NQShapeNonConvexPolygon : types[3]);
  }
  EXPECT_EQ(shape.pPointList(nullptr), nullptr);
  EXPECT_EQ(shape.shapeType(), NQShapeRectangle);
  // A type of no meaning is a rectangle.
  const NQShape odd(static_cast<NQShapeTypeEnum>(7));
  EXPECT_EQ(place(odd, {1000, 1000}), 0);
  EXPECT_EQ(odd.shapeType(), 7);
}

TEST(NQShape, CopiesAndCompares) {
  const auto equal = [](const NQShape& a, const NQShape& b) {
    return a.compare(&b) != 0 && cornersOf(a) == cornersOf(b) &&
           (&a == &b || a.pPointList() == nullptr || a.pPointList() != b.pPointList());
  };
  NQShape polygon(list(kArrow));
  polygon.setInnerRect(NQRect(-700, -300, 200, 300));
  checkCopyProtocol(
      polygon, [] { return std::make_unique<NQShape>(list(kDiamond)); }, equal);
  NQShape ellipse(NQShapeEllipse);
  checkCopyProtocol(
      ellipse, [] { return std::make_unique<NQShape>(list(kDiamond)); }, equal);

  NQShape other(list(kArrow));
  EXPECT_EQ(polygon.compare(&other), 0);  // borders
  other.setInnerRect(NQRect(-700, -300, 200, 300));
  EXPECT_EQ(polygon.compare(&other), 1);
  other.rotate(180);
  EXPECT_EQ(polygon.compare(&other), 0);
  EXPECT_EQ(polygon.compare(nullptr), 0);
  EXPECT_EQ(NQShape().compare(&ellipse), 0);
}

TEST(NQShape, MovesItsCorners) {
  static_assert(std::is_nothrow_move_constructible_v<NQShape> &&
                std::is_nothrow_move_assignable_v<NQShape> && std::copyable<NQShape>);
  NQShape source(list(kArrow)), target(list(kDiamond));
  const NQPointDList* const corners = source.pPointList();
  source.setInnerRect(NQRect(-700, -300, 200, 300));
  const NQShape witness(source), plain;
  target = std::move(source);
  EXPECT_EQ(target.pPointList(), corners);
  EXPECT_EQ(target.compare(&witness), 1);
  EXPECT_EQ(source.compare(&plain), 1);  // NOLINT(bugprone-use-after-move)
  source = std::move(target);
  NQShape& itself = source;
  source = std::move(itself);
  std::vector<NQShape> shapes;
  shapes.push_back(std::move(source));
  shapes.resize(100);
  EXPECT_EQ(shapes[0].pPointList(), corners);
  EXPECT_EQ(shapes[0].compare(&witness), 1);
}

TEST(NQShape, Rotates) {
  const struct {
    int degrees;
    model::Point corner;
  } rows[] = {{90, {-20, 10}}, {180, {-10, -20}}, {270, {20, -10}}, {45, {10, 20}},
              {-90, {10, 20}}, {360, {10, 20}},   {0, {10, 20}}};
  for (const auto& row : rows) {
    NQShape shape(list({{10, 20}, {kMin, 0}, {0, kMax}}));
    shape.rotate(row.degrees);
    EXPECT_EQ(cornersOf(shape)[0], row.corner) << row.degrees;
  }
  NQShape ellipse(NQShapeEllipse);
  ellipse.rotate(90);
  EXPECT_EQ(ellipse.compare(std::make_unique<NQShape>(NQShapeEllipse).get()), 1);
}

TEST(NQShape, KnowsConvexPolygons) {
  const struct {
    Corners corners;
    int convex;
  } rows[] = {
      {kDiamond, 1},
      {kArrow, 0},
      {{{0, 0}, {0, 0}, {9, 0}, {9, 0}, {9, 9}}, 1},                  // repeated
      {{{0, 0}, {4, 0}, {9, 0}, {9, 9}, {9, 9}, {4, 9}, {0, 9}}, 1},  // collinear
      {{{0, 0}, {9, 0}, {4, 0}, {9, 9}}, 0},                          // back and forth
      {{{0, 0}, {5, 5}, {9, 9}}, 0},                                  // no area
      {{{3, 3}, {3, 3}, {3, 3}}, 0},
      {{{0, 9}, {5, -9}, {-8, 3}, {8, 3}, {-5, -9}}, 0},      // pentagram
      {{{0, 0}, {9, 0}, {9, 9}, {0, 0}, {9, 0}, {9, 9}}, 0},  // twice round
      {{{0, 0}, {9, 9}, {9, 0}, {0, 9}}, 0},                  // bow tie
      {{{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMin, kMax}}, 1},
      {{{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMax - 1, kMax - 2}}, 0},
      {{{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {kMax - 2, kMax - 2}}, 1},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(NQShape(list(row.corners)).isConvexPolygon(), row.convex)
        << testing::PrintToString(row.corners);
  }
  EXPECT_EQ(NQShape().isConvexPolygon(), 0);
  std::mt19937 random(34);
  std::uniform_int_distribution<int> place(0, 3), count(3, 6);
  int convex = 0;
  for (int i = 0; i < 20000; ++i) {
    Corners corners(static_cast<size_t>(count(random)));
    for (auto& p : corners) p = {place(random), place(random)};
    const int expected = isConvex(corners);
    ASSERT_EQ(NQShape(list(corners)).isConvexPolygon(), expected)
        << testing::PrintToString(corners);
    convex += expected;
  }
  EXPECT_GT(convex, 1000);
}

TEST(NQShape, DecidesExactlyWhatIsWithinAPolygon) {
  std::mt19937 random(35);
  const auto check = [&](int count, int step) {
    std::uniform_int_distribution<int> coordinate(0, 6);
    Corners corners(static_cast<size_t>(count));
    for (auto& p : corners) p = {step * coordinate(random), step * coordinate(random)};
    const NQShape shape(list(corners));
    for (model::Int x = -1; x <= 6 * step + 1; ++x) {
      for (model::Int y = -1; y <= 6 * step + 1; ++y) {
        ASSERT_EQ(place(shape, {x, y}), placeOf(corners, {x, y}))
            << x << ", " << y << " in " << testing::PrintToString(corners);
      }
    }
  };
  std::uniform_int_distribution<int> few(3, 7);
  for (int i = 0; i < 3000; ++i) check(few(random), 1);
  for (int many = 60; many < 70; ++many) check(many, 3);  // about a word of edges
  check(200, 3);
  // Beside an edge as long as the range of coordinates, one unit decides.
  const NQShape far(list({{-kMax, -kMax}, {kMax, kMax}, {-kMax, kMax}}));
  const struct {
    nqLong x, y;
    int place;
  } rows[] = {{kMax, kMax, 0},
              {kMax - 1, kMax - 1, 0},
              {kMax - 1, kMax - 2, -1},
              {kMax - 2, kMax - 1, 1},
              {-kMax, -kMax, 0},
              {0, 1, 1},
              {1, 0, -1},
              {kMin, kMin, -1},
              {-kMax, kMax, 0}};
  for (const auto& row : rows) {
    EXPECT_EQ(place(far, {row.x, row.y}), row.place) << row.x << ", " << row.y;
  }
}

TEST(NQShape, PutsTheOddUnitOnTheRightAndTop) {
  const NQShape rectangle, ellipse(NQShapeEllipse);
  const NQShape polygon(
      list({{-1000, -1000}, {1000, -1000}, {1000, 1000}, {-1000, 1000}}));
  for (const NQShape* shape : {&rectangle, &polygon}) {
    for (nqLong w = 0; w < 6; ++w) {
      const NQRect box(NQPoint(3, -2), w, 5);
      for (nqLong x = -1; x < 8; ++x) {
        for (nqLong y = -6; y < 4; ++y) {
          const NQPoint p(x, y);
          ASSERT_EQ(shape->within(p, {3, -2}, {w, 5}), box.within(p)) << w;
          ASSERT_EQ(shape->onBoundary(p, {3, -2}, {w, 5}), box.onBoundary(p)) << w;
        }
      }
    }
  }
  // A flat ellipse is the line that its box is.
  for (nqLong x = -5; x < 6; ++x) {
    EXPECT_EQ(ellipse.within(x, 0, 0, 0, 5, 0), x >= -2 && x <= 3);
    EXPECT_EQ(ellipse.onBoundary(0, x, 0, 0, 0, 5), x >= -2 && x <= 3);
    EXPECT_EQ(ellipse.within(x, 1, 0, 0, 5, 0), 0);
    EXPECT_EQ(ellipse.withinInterior(x, 0, 0, 0, 5, 0), 0);
  }
}

TEST(NQShape, DecidesExactlyWhatIsWithinAnEllipse) {
  const NQShape ellipse(NQShapeEllipse);
  for (const nqLong w : {1, 2, 10, 13, 30, 50, 3000}) {
    for (const nqLong h : {1, 3, 10, 30, 130}) {
      for (nqLong x = -30; x <= 30; ++x) {
        for (nqLong y = -30; y <= 30; ++y) {
          const nqInt64 dx = nqInt64{2} * x * h, dy = nqInt64{2} * y * w;
          const nqInt64 r = nqInt64{w} * h;
          const int expected = model::sign(r * r - dx * dx - dy * dy);
          const NQPoint p(x + 7, y - 9);
          ASSERT_EQ(ellipse.within(p, {7, -9}, {w, h}), expected >= 0) << p.x() << p.y();
          ASSERT_EQ(ellipse.onBoundary(p, {7, -9}, {w, h}), expected == 0);
        }
      }
    }
  }
}

TEST(NQShape, MeetsSegmentsFromOutside) {
  NQShape rectangle, ellipse(NQShapeEllipse), diamond(list(kDiamond)),
      arrow(list(kArrow));
  const struct {
    const NQShape* shape;
    NQPoint from, to;
    NQSize size;
    int met;
    NQPoint at;
  } rows[] = {
      {&rectangle, {100, 5}, {0, 0}, {20, 10}, 1, {10, 1}},
      {&rectangle, {100, 0}, {0, 0}, {20, 10}, 1, {10, 0}},
      {&rectangle, {-100, 0}, {100, 0}, {20, 10}, 1, {10, 0}},  // through: nearest to
                                                                // `to`
      {&rectangle, {5, 2}, {0, 0}, {20, 10}, 0, {5, 2}},        // inside
      {&rectangle, {0, 9}, {0, 0}, {0, 0}, 1, {0, 0}},          // a point
      {&ellipse, {100, 0}, {0, 0}, {20, 10}, 1, {10, 0}},
      {&ellipse, {30, 0}, {-10, 1}, {20, 10}, 1, {-10, 1}},  // the first is {10, 1}
      {&ellipse, {0, 85}, {0, 0}, {40, 9}, 1, {0, 5}},       // 4.5
      {&ellipse, {-60, -55}, {7, 24}, {50, 50}, 1, {7, 24}},
      {&ellipse, {-50, 5}, {50, 5}, {20, 10}, 1, {0, 5}},  // touches
      {&ellipse, {-41, 38}, {55, 10}, {50, 50}, 1, {7, 24}},
      {&ellipse, {-41, 39}, {55, 10}, {50, 50}, 0, {-41, 39}},
      {&ellipse, {9, 4}, {9, 4}, {20, 10}, 0, {9, 4}},
      {&ellipse, {9, 1}, {-9, -1}, {0, 10}, 1, {0, 0}},  // flat
      {&ellipse, {2, 9}, {2, -9}, {10, 0}, 1, {2, 0}},
      {&ellipse, {6, 9}, {6, -9}, {10, 0}, 0, {6, 9}},
      {&diamond, {100, 0}, {0, 0}, {20, 20}, 1, {10, 0}},
      {&diamond, {100, 100}, {0, 0}, {20, 20}, 1, {5, 5}},
      {&diamond, {-100, 0}, {100, 0}, {20, 20}, 1, {10, 0}},
      {&arrow, {-100, 0}, {0, 0}, {20, 20}, 1, {-4, 0}},  // in the notch
      {&arrow, {-10, 100}, {-10, -100}, {20, 20}, 1, {-10, -10}},
      {&arrow, {-100, 0}, {-5, 0}, {20, 20}, 0, {-100, 0}},
  };
  for (const auto& row : rows) {
    const NQPoint center(1000, -300);
    NQPoint p = row.from, q = row.to;
    p += center;
    q += center;
    EXPECT_EQ(row.shape->intersectsSegment(p, q, center, row.size), row.met);
    p -= center;
    EXPECT_EQ(p, row.at) << row.from.x() << "," << row.from.y() << " gives " << p.x()
                         << "," << p.y();
  }
}

// Chords of every kind (along an axis, nearly so, with an end at the centre or on
// the outline by chance) and their mirror images.
TEST(NQShape, MeetsEllipsesAsTheExactModelSays) {
  const NQShape ellipse(NQShapeEllipse);
  std::mt19937 random(38);
  std::uniform_int_distribution<int> extent(1, 30), near(-20, 20), kind(0, 4);
  std::uniform_int_distribution<int> slight(-2, 2);
  int met = 0;
  for (int i = 0; i < 15000; ++i) {
    const int w = extent(random), h = extent(random);
    model::Segment chord = {{3 * near(random), 3 * near(random)},
                            {near(random), near(random)}};
    const int choice = kind(random);
    if (choice == 0) chord.b.x = chord.a.x;
    if (choice == 1) chord.b.y = chord.a.y + slight(random);
    if (choice == 2) chord.b = {0, 0};
    for (int image = 0; image < 8; ++image) {
      const auto mirrored = [&](model::Point p) {
        if ((image & 1) != 0) p.x = -p.x;
        if ((image & 2) != 0) p.y = -p.y;
        return (image & 4) == 0 ? p : model::Point{p.y, p.x};
      };
      const bool turned = (image & 4) != 0;
      const NQSize size(turned ? h : w, turned ? w : h);
      const model::Segment s = {mirrored(chord.a), mirrored(chord.b)};
      nqLong x = nqLong(s.a.x) - 38, y = nqLong(s.a.y) + 19;
      const int found =
          ellipse.intersectsSegment(x, y, nqLong(s.b.x) - 38, nqLong(s.b.y) + 19, -38, 19,
                                    size.width(), size.height());
      const auto expected = model::ellipseCrossing(size.width(), size.height(), s);
      ASSERT_EQ(found, expected.has_value()) << s << " in " << w << "x" << h;
      ASSERT_EQ((model::Point{x + 38, y - 19}), expected.value_or(s.a))
          << s << " in " << w << "x" << h;
      met += found;
    }
  }
  EXPECT_GT(met, 30000);
}

// The meeting point of a ray towards the centre, and the point nearest to any
// place, lie on the outline to within the rounding: not both inside and outside
// of it by more than a unit.
TEST(NQShape, FindsPointsOfTheOutline) {
  NQShape shapes[4];
  shapes[1].setShapeType(NQShapeEllipse);
  shapes[2].pPointList(list(kDiamond));
  shapes[3].pPointList(list(kArrow));
  std::mt19937 random(36);
  std::uniform_int_distribution<nqLong> extent(1, 90), coordinate(-150, 150);
  const NQPoint center(11, -5);
  for (int i = 0; i < 4000; ++i) {
    const NQSize size(extent(random), extent(random));
    const NQPoint start(coordinate(random), coordinate(random));
    for (const NQShape& shape : shapes) {
      // Whether points on both sides of the outline, or on it, are within 1.5.
      const auto nearOutline = [&](const NQPoint& p) {
        bool in = false, out = false;
        for (nqLong dx = -1; dx <= 1; ++dx) {
          for (nqLong dy = -1; dy <= 1; ++dy) {
            const NQPoint q(p.x() + dx, p.y() + dy);
            in = in || shape.within(q, center, size);
            out = out || !shape.withinInterior(q, center, size);
          }
        }
        return out && (in || size.width() < 9 || size.height() < 9);
      };
      NQPoint nearest = start;
      ASSERT_EQ(shape.nearestPoint(nearest, center, size), 1);
      EXPECT_TRUE(nearOutline(nearest))
          << "type " << shape.shapeType() << " size " << size.width() << "x"
          << size.height() << " from " << start.x() << "," << start.y() << " to "
          << nearest.x() << "," << nearest.y();
      EXPECT_TRUE(!shape.onBoundary(start, center, size) || nearest == start);

      NQPoint met = start;
      if (!shape.within(start, center, size) && shape.within(center, center, size)) {
        ASSERT_EQ(shape.intersectsSegment(met, center, center, size), 1);
        EXPECT_TRUE(nearOutline(met));
        // Nothing on the outline is nearer than the nearest point.
        EXPECT_LE(start.distance(nearest), start.distance(met) + 1.5);
      }
    }
  }
}

TEST(NQShape, FindsNearestPoints) {
  const NQShape ellipse(NQShapeEllipse), diamond(list(kDiamond));
  const NQShape point(list({{0, 0}, {0, 0}, {0, 0}}));
  const struct {
    const NQShape* shape;
    NQPoint p;
    NQSize size;
    NQPoint nearest;
  } rows[] = {
      {&ellipse, {0, 0}, {40, 20}, {0, -10}},  // the centre: bottom or left
      {&ellipse, {0, 0}, {20, 40}, {-10, 0}},      {&ellipse, {0, 0}, {20, 20}, {0, -10}},
      {&ellipse, {100, 0}, {40, 20}, {20, 0}},     {&ellipse, {18, 0}, {40, 20}, {20, 0}},
      {&ellipse, {0, 3}, {40, 20}, {0, 10}},       {&ellipse, {3, 4}, {20, 20}, {6, 8}},
      {&ellipse, {30, -40}, {20, 20}, {6, -8}},    {&ellipse, {7, 9}, {10, 0}, {5, 0}},
      {&ellipse, {kMax, kMin}, {20, 20}, {7, -7}}, {&diamond, {10, 10}, {20, 20}, {5, 5}},
      {&diamond, {0, 0}, {20, 20}, {5, -5}},       {&diamond, {40, 1}, {20, 20}, {10, 0}},
      {&point, {40, 1}, {20, 20}, {0, 0}},         {&diamond, {4, 9}, {0, 0}, {0, 0}},
  };
  for (const auto& row : rows) {
    NQPoint p = row.p;
    EXPECT_EQ(row.shape->nearestPoint(p, {0, 0}, row.size), 1);
    EXPECT_EQ(p, row.nearest) << row.p.x() << "," << row.p.y() << " gives " << p.x()
                              << "," << p.y();
  }
  // The end of an axis is exact, where half a unit decides about the rounding.
  for (nqLong y = 1; y < 60; ++y) {
    NQPoint above(0, y), beneath(0, -y);
    ellipse.nearestPoint(above, {0, 0}, {9, 7});
    ellipse.nearestPoint(beneath, {0, 0}, {9, 7});
    EXPECT_EQ(above, NQPoint(0, 4)) << y;
    EXPECT_EQ(beneath, NQPoint(0, -3)) << y;
  }
}

TEST(NQShape, PlacesTextRectangles) {
  NQShape shape;
  NQRect r(3, 4, 10, 25);
  shape.getInnerRect(r);
  EXPECT_EQ(r, NQRect(3, 4, 10, 25));
  shape.setInnerRect(NQRect(-500, -1000, 500, 0));
  EXPECT_EQ(shape.textRectLeftBorder(), -500);
  EXPECT_EQ(shape.textRectRightBorder(), 500);
  EXPECT_EQ(shape.textRectTopBorder(), 0);
  EXPECT_EQ(shape.textRectBottomBorder(), -1000);
  shape.getCurrentInnerRect(r, {100, 200}, {41, 20});
  EXPECT_EQ(r, NQRect(90, 190, 111, 200));  // 10.25 and 30.75, rounded
  shape.setInnerRect(NQRect(-1500, 200, 70000, 300));
  EXPECT_EQ(shape.textRectRightBorder(), 70000 - 65536);  // cut to 16 bits
  r = NQRect(0, 0, 100, 100);
  shape.getInnerRect(r);
  EXPECT_EQ(r, NQRect(-25, 60, 273, 65));

  // The inverse holds what it is given, ends where it does on the left and at the
  // bottom, and is exact for text rectangles. Borders may be in bad order.
  std::mt19937 random(37);
  std::uniform_int_distribution<nqLong> border(-1300, 1300), coordinate(-200, 200);
  for (int i = 0; i < 5000; ++i) {
    const NQPoint middle(border(random), border(random));
    shape.setInnerRect(NQRect(middle, border(random), border(random)));
    const NQRect box(coordinate(random), coordinate(random), coordinate(random),
                     coordinate(random));
    NQRect inner(box), bounds(1, 2, 3, 4), again;
    shape.getInnerRect(inner);
    ASSERT_EQ(shape.fitBoundingRectToInnerRect(bounds, inner), 1);
    again = bounds;
    shape.getInnerRect(again);
    ASSERT_EQ(again, inner) << i;
    EXPECT_LE(bounds.width(), box.width());
    const NQRect any(coordinate(random), coordinate(random), coordinate(random),
                     coordinate(random));
    if (shape.fitBoundingRectToInnerRect(bounds, any) == 0) continue;
    again = bounds;
    shape.getInnerRect(again);
    EXPECT_TRUE(again.encloses(any));
    EXPECT_EQ(again.bottomLeft(), any.bottomLeft());
  }
  // All there is, no room, and too much.
  EXPECT_EQ(NQShape().fitBoundingRectToInnerRect(r, NQRect(0, kMin, kMax, -1)), 1);
  EXPECT_EQ(r, NQRect(0, kMin, kMax, -1));
  shape.setInnerRect(NQRect(5, 5, 5, 900));
  r = NQRect(1, 2, 3, 4);
  EXPECT_EQ(shape.fitBoundingRectToInnerRect(r, NQRect(0, 0, 1, 1)), 0);
  EXPECT_EQ(shape.fitBoundingRectToInnerRect(r, NQRect(kMin, kMin, kMax, kMax)), 0);
  EXPECT_EQ(r, NQRect(1, 2, 3, 4));
  EXPECT_EQ(shape.fitBoundingRectToInnerRect(r, NQRect(7, 0, 7, 1)), 1);
  EXPECT_EQ(r.width(), 0);
}

TEST(NQShape, MeasuresTheLargestBoxAtAPlace) {
  const NQShape rectangle, ellipse(NQShapeEllipse), diamond(list(kDiamond)),
      arrow(list(kArrow)), below(list({{-1000, -1000}, {1000, -1000}, {1000, 1000}})),
      left(list({{-1000, -1000}, {1000, -1000}, {-1000, 1000}}));
  const NQSize square(7, 7), node(2000, 2000);
  const double root = std::numbers::sqrt2;
  const struct {
    const NQShape* shape;
    NQPoint p;
    NQSize box;
    double diagonal;
  } rows[] = {
      {&rectangle, {0, 0}, square, 2000 * root},
      {&rectangle, {0, 0}, {4, 3}, 2500},
      {&rectangle, {600, 0}, square, 800 * root},
      {&rectangle, {1000, 0}, square, 0},
      {&rectangle, {1001, 0}, square, 0},
      {&rectangle, {0, 0}, {0, 9}, 0},
      {&ellipse, {0, 0}, square, 2000},
      {&ellipse, {0, 0}, {3, 4}, 2000},
      {&ellipse, {1000, 0}, square, 0},
      {&diamond, {0, 0}, square, 1000 * root},
      {&diamond, {0, 0}, {3, 1}, 500 * std::sqrt(10.0)},
      {&diamond, {500, 0}, square, 500 * root},
      {&below, {400, -400}, square, 800 * root},  // the diagonal alone is near
      {&left, {-400, -400}, square, 800 * root},
      {&arrow, {0, 0}, square, 2000 * root / 3},
      {&arrow, {-999, 0}, square, 0},
  };
  for (const auto& row : rows) {
    EXPECT_NEAR(
        row.shape->maxAvailableDiagonalLengthAtShape(row.p, row.box, {0, 0}, node),
        row.diagonal, 1e-6)
        << row.shape->shapeType() << " at " << row.p.x() << " for " << row.box.width();
  }
  EXPECT_EQ(ellipse.maxAvailableDiagonalLengthAtShape({0, 0}, square, {0, 0}, {9, 0}), 0);
  // On the outline, with a rounding that would lead beyond it.
  EXPECT_EQ(ellipse.maxAvailableDiagonalLengthAtShape({5, 12}, square, {0, 0}, {26, 26}),
            0);
}

TEST(NQShape, MeasuresAnglesBetweenVectors) {
  constexpr double kPi = std::numbers::pi;
  EXPECT_DOUBLE_EQ(NQShape::angleBetweenTwoLines(1, 0, 0, 5), kPi / 2);
  EXPECT_DOUBLE_EQ(NQShape::angleBetweenTwoLines(0, 5, 1, 0), kPi / 2);
  EXPECT_DOUBLE_EQ(NQShape::angleBetweenTwoLines(3, 3, 0, 1), kPi / 4);
  EXPECT_DOUBLE_EQ(NQShape::angleBetweenTwoLines(2, 1, -4, -2), kPi);
  EXPECT_EQ(NQShape::angleBetweenTwoLines(2, 1, 4, 2), 0);
  EXPECT_EQ(NQShape::angleBetweenTwoLines(0, 0, 4, 2), 0);
}

// At the ends of the range, and with extents that mean nothing, every question
// has an answer.
TEST(NQShape, AnswersAnything) {
  NQShape shapes[4];
  shapes[1].setShapeType(NQShapeEllipse);
  shapes[2].pPointList(list(kDiamond));
  shapes[3].pPointList(list({{kMin, kMax}, {kMax, kMin}, {7, kMin}, {kMin, kMin}}));
  const nqLong values[] = {kMin, kMin + 1, -1, 0, 1, kMax};
  for (NQShape& shape : shapes) {
    shape.setInnerRect(NQRect(kMin, -32768, 32767, kMax));
    for (const nqLong x : values) {
      for (const nqLong y : values) {
        for (const nqLong w : values) {
          for (const nqLong h : values) {
            const NQPoint center(y, x);
            const NQSize size(w, h);
            NQPoint p(x, y), q(y, w);
            NQRect r;
            EXPECT_EQ(shape.within(p, center, size),
                      shape.withinInterior(p, center, size) +
                          shape.onBoundary(p, center, size));
            shape.intersectsSegment(p, q, center, size);
            shape.nearestPoint(q, center, size);
            shape.getCurrentInnerRect(r, center, size);
            shape.fitBoundingRectToInnerRect(r, NQRect(x, y, w, h));
            const double diagonal =
                shape.maxAvailableDiagonalLengthAtShape(p, size, center, size);
            EXPECT_FALSE(std::isnan(diagonal));
          }
        }
      }
    }
  }
}

}  // namespace

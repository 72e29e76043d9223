#include "nq/geometry/rect.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "nq/geometry/internal_rect.h"
#include "tests/support/copy_protocol_check.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

// Every box whose corners are on a square of `side` places from 0.
std::vector<NQEdges> allBoxes(nqLong side) {
  std::vector<NQEdges> boxes;
  for (nqLong left = 0; left < side; ++left)
    for (nqLong right = left; right < side; ++right)
      for (nqLong bottom = 0; bottom < side; ++bottom)
        for (nqLong top = bottom; top < side; ++top)
          boxes.push_back({left, top, right, bottom});
  return boxes;
}

template <class Rect>
class Rectangles : public testing::Test {
 protected:
  static Rect rect(const NQEdges& e) { return {e.left, e.bottom, e.right, e.top}; }
};
using BothRectangles = testing::Types<NQRect, NQInternalRect>;
TYPED_TEST_SUITE(Rectangles, BothRectangles, );

TYPED_TEST(Rectangles, AreMadeFromCornersExtentsAndCentres) {
  using Rect = TypeParam;
  const struct {
    Rect rect;
    NQEdges edges;
  } rows[] = {
      {Rect(), {-20, 20, 20, -20}},
      {Rect(5, 5), {-2, 3, 3, -2}},
      {Rect(NQPoint(10, 20), 4, 3), {8, 22, 12, 19}},
      {Rect(NQPoint(10, 20), NQSize(0, 1)), {10, 21, 10, 20}},
      {Rect(0, 10, 10, 0), {0, 10, 10, 0}},
      {Rect(10, 0, 0, 10), {0, 10, 10, 0}},
      {Rect(NQPoint(-3, -5), NQPoint(0, -8)), {-3, -5, 0, -8}},
      {Rect(kMin, kMin, kMin, kMin), {kMin, kMin, kMin, kMin}},
      {Rect(kMax, kMin, kMax - 1, kMin + 1), {kMax - 1, kMin + 1, kMax, kMin}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.rect.edges(), row.edges);
    EXPECT_EQ(NQRect(NQInternalRect(NQRect(row.rect))).edges(), row.edges);
    EXPECT_EQ(NQInternalRect(NQRect(row.rect)).edges(), row.edges);
  }
  Rect r(1, 2, 3, 4);
  r.set(9, 1, 2, 8);
  EXPECT_EQ(r.edges(), (NQEdges{2, 8, 9, 1}));
  r.setLeftRight(5, 1);
  r.setBottomTop(5, 1);
  EXPECT_EQ(r.edges(), (NQEdges{2, 8, 9, 1}));
  r.setLeftRight(-5, -4);
  r.setBottomTop(7, 7);
  EXPECT_EQ(r.edges(), (NQEdges{-5, 7, -4, 7}));
  r.setZero();
  EXPECT_EQ(r.isZero(), 1);
}

TYPED_TEST(Rectangles, PlaceExtentsAboutTheFloorOfTheCentre) {
  using Rect = TypeParam;
  Rect r(-3, 0, 0, 5);
  EXPECT_EQ(r.center(), NQPoint(-2, 2));
  EXPECT_EQ(r.x(-2), -2);
  EXPECT_EQ(r.edges(), (NQEdges{-3, 5, 0, 0}));
  EXPECT_EQ(r.leftHalfWidth(), 1);
  EXPECT_EQ(r.rightHalfWidth(), 2);
  EXPECT_EQ(r.bottomHalfHeight(), 2);
  EXPECT_EQ(r.topHalfHeight(), 3);
  EXPECT_EQ(r.width(-1), 3);
  EXPECT_EQ(r.dimension(NQVertical, -7), 5);
  EXPECT_EQ(r.width(6), 6);
  EXPECT_EQ(r.dimension(NQVertical, 0), 0);
  EXPECT_EQ(r.edges(), (NQEdges{-5, 2, 1, 2}));
  EXPECT_EQ(r.dimension(NQHorizontal), 6);
  EXPECT_EQ(r.size(NQSize(-1, 8)), NQSize(-1, 8));
  EXPECT_EQ(r.size(), NQSize(6, 8));
  EXPECT_EQ(r.diagonal(), 10);
  EXPECT_EQ(r.area(), 48);
  EXPECT_EQ(r.center(NQPoint(100, 50)), NQPoint(100, 50));
  r.move(NQSize(-100, 0));
  r.move(0, -50);
  EXPECT_EQ(r.edges(), (NQEdges{-3, 4, 3, -4}));
  r.moveTo(10, 20);
  EXPECT_EQ(r.topRight(), NQPoint(13, 24));
  EXPECT_EQ(r.topLeft(), NQPoint(7, 24));
  EXPECT_EQ(r.bottomRight(), NQPoint(13, 16));
  EXPECT_EQ(r.bottomLeft(), NQPoint(7, 16));
  const nqLong sides[] = {13, 24, 7, 16, 0};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(r.sideCoordinate(static_cast<NQSideEnum>(i)), sides[i]);
  }

  // A change of extent returns it, and placing a centre keeps the extent.
  for (nqLong extent = 0; extent < 6; ++extent) {
    for (nqLong center = -3; center < 4; ++center) {
      Rect placed;
      EXPECT_EQ(placed.width(extent), extent);
      EXPECT_EQ(placed.y(center), center);
      EXPECT_EQ(placed.x(center), center);
      EXPECT_EQ(placed.center(), NQPoint(center, center));
      EXPECT_EQ(placed.size(), NQSize(extent, 40));
    }
  }
}

TYPED_TEST(Rectangles, ScaleAndInflateAboutTheCentre) {
  using Rect = TypeParam;
  const bool rounds = std::is_same_v<Rect, NQInternalRect>;
  Rect r(5, 5);
  r.scale(0.5);
  EXPECT_EQ(r.size(), rounds ? NQSize(3, 3) : NQSize(2, 2));
  EXPECT_EQ(r.center(), NQPoint());
  r.scale(-2);
  r.scale(-0.9);
  EXPECT_EQ(r.size(), rounds ? NQSize(3, 3) : NQSize(2, 2));
  r.scale(3);
  r.scale(2L);
  EXPECT_EQ(r.size(), rounds ? NQSize(18, 18) : NQSize(12, 12));
  r.scale(1e300);
  EXPECT_EQ(r.size(), NQSize(kMax, kMax));

  r = Rect(0, 0, 40, 3);
  EXPECT_EQ(&r.inflate(-30, 5), &r);
  EXPECT_EQ(r.edges(), (NQEdges{0, 3, 40, 0}));
  EXPECT_EQ(r.inflatedBy(NQSize(-20, 2)).edges(), (NQEdges{20, 5, 20, -2}));
  r.inflate(NQSize(1, -1));
  EXPECT_EQ(r.edges(), (NQEdges{-1, 2, 41, 1}));
}

// Questions about two boxes, and one about a point, beside what all the points
// with whole coordinates say.
TYPED_TEST(Rectangles, AnswerAsTheirPointsDo) {
  constexpr nqLong kSide = 5;
  const std::vector<NQEdges> boxes = allBoxes(kSide);
  for (const NQEdges& e : boxes) {
    const auto a = this->rect(e);
    for (nqLong i = 0; i < (kSide + 2) * (kSide + 2); ++i) {
      const NQPoint p(i % (kSide + 2) - 1, i / (kSide + 2) - 1);
      const bool x = p.x() >= e.left && p.x() <= e.right;
      const bool y = p.y() >= e.bottom && p.y() <= e.top;
      const bool border =
          p.x() == e.left || p.x() == e.right || p.y() == e.top || p.y() == e.bottom;
      EXPECT_EQ(a.withinXRange(p), x);
      EXPECT_EQ(a.withinYRange(p), y);
      EXPECT_EQ(a.within(p), x && y);
      EXPECT_EQ(a.onBoundary(p), x && y && border);
      EXPECT_EQ(a.withinInterior(p), x && y && !border);
      EXPECT_EQ(a.withinInterior(p),
                a.withinInteriorXRange(p) && a.withinInteriorYRange(p));
      EXPECT_EQ(a.encloses(e.left, e.top, p.x(), p.y()), x && y);
    }
    for (const NQEdges& f : boxes) {
      const auto b = this->rect(f);
      int common = 0, ofB = 0;
      for (nqLong i = 0; i < kSide * kSide; ++i) {
        const NQPoint p(i % kSide, i / kSide);
        common += a.within(p) && b.within(p);
        ofB += b.within(p);
      }
      ASSERT_EQ(a.intersectsRect(b), common > 0);
      ASSERT_EQ(a.encloses(b), common == ofB);
      ASSERT_EQ(a.within(b), a.encloses(b));
      ASSERT_EQ(a.intersectsRect(b),
                a.intersectsRectXRange(b) && a.intersectsRectYRange(b));
      ASSERT_EQ(a.encloses(b), a.enclosesXRange(b) && a.enclosesYRange(b));

      const auto meet = a.calculateIntersection(b);
      ASSERT_EQ(meet, b.calculateIntersection(a));
      ASSERT_EQ((meet.width() + 1) * (meet.height() + 1), common > 0 ? common : 1);
      ASSERT_TRUE(common > 0 ? a.encloses(meet) && b.encloses(meet) : meet.isZero());
      auto join = a.calculateUnion(b);
      ASSERT_EQ(join, b.calculateUnion(a));
      const bool empty = std::is_same_v<TypeParam, NQRect> && (a.isZero() || b.isZero());
      ASSERT_EQ(
          join.edges(),
          empty ? (a.isZero() ? f : e)
                : (NQEdges{std::min(e.left, f.left), std::max(e.top, f.top),
                           std::max(e.right, f.right), std::min(e.bottom, f.bottom)}));
      join = a;
      join.updateBounds(&b);
      ASSERT_TRUE(join.encloses(a) && join.encloses(b));
      const NQPoint corner = b.topLeft();
      join = a;
      join.updateBounds(&corner);
      join.updateBounds(static_cast<const NQPoint*>(nullptr));
      join.updateBounds(static_cast<const TypeParam*>(nullptr));
      ASSERT_EQ(join.area() == a.area() && join == a, a.within(corner));
      ASSERT_TRUE(join.within(corner) && join.encloses(a));
    }
  }
}

TYPED_TEST(Rectangles, FindTheClosestSide) {
  const TypeParam r(0, 0, 10, 10);
  const struct {
    nqLong x, y;
    NQSideEnum side, within;
  } rows[] = {
      {5, 5, NQSideRight, NQSideRight},
      {3, 5, NQSideLeft, NQSideLeft},
      {5, 7, NQSideTop, NQSideTop},
      {5, 3, NQSideBottom, NQSideBottom},
      {7, 7, NQSideRight, NQSideRight},
      {3, 7, NQSideTop, NQSideTop},
      {3, 3, NQSideLeft, NQSideLeft},
      {5, 90, NQSideTop, NQSideRight},
      {1, -90, NQSideBottom, NQSideLeft},
      {-9, 10, NQSideLeft, NQSideTop},
      {12, 0, NQSideRight, NQSideBottom},
      {12, 13, NQSideTop, NQSideRight},
      {13, 13, NQSideRight, NQSideRight},
      {13, 12, NQSideRight, NQSideTop},
      {-2, 13, NQSideTop, NQSideLeft},
      {-3, -3, NQSideLeft, NQSideLeft},
      {-2, -3, NQSideBottom, NQSideLeft},
      {12, -3, NQSideBottom, NQSideRight},
      {kMax, kMin, NQSideBottom, NQSideRight},
  };
  for (const auto& row : rows) {
    const NQPoint p(row.x, row.y);
    SCOPED_TRACE(testing::Message() << row.x << ", " << row.y);
    EXPECT_EQ(r.closestSide(p), row.side);
    EXPECT_EQ(r.closestSideWithin(p), row.within);
  }
}

TYPED_TEST(Rectangles, MovePointsToTheNearestPlaceOnTheBoundary) {
  for (const NQEdges& e : allBoxes(5)) {
    const auto r = this->rect(e);
    for (nqLong i = 0; i < 7 * 7; ++i) {
      const NQPoint from(i % 7 - 1, i / 7 - 1);
      double smallest = 1e9;
      for (nqLong j = 0; j < 5 * 5; ++j) {
        const NQPoint q(j % 5, j / 5);
        if (r.onBoundary(q)) smallest = std::min(smallest, from.distance(q));
      }
      NQPoint p = from;
      EXPECT_EQ(r.nearestPoint(p), 1);
      EXPECT_TRUE(r.onBoundary(p));
      EXPECT_EQ(from.distance(p), smallest);
    }
  }
  const TypeParam r(0, 0, 10, 10);
  const NQPoint rows[][2] = {{{5, 5}, {5, 0}}, {{3, 7}, {3, 10}}, {{7, 7}, {7, 10}},
                             {{3, 3}, {3, 0}}, {{3, 5}, {0, 5}},  {{7, 5}, {10, 5}}};
  for (const auto& [from, to] : rows) {
    NQPoint p = from;
    r.nearestPoint(p);
    EXPECT_EQ(p, to);
  }
}

TYPED_TEST(Rectangles, MovePointsOut) {
  const TypeParam wide(0, 0, 20, 10);
  const TypeParam line(0, 5, 20, 5);
  const struct {
    const TypeParam& rect;
    NQPoint p, q, result;
  } rows[] = {
      {wide, {5, 5}, {3, 4}, {21, 13}},  // flat: whole steps beyond the right edge
      {wide, {5, 5}, {8, 4}, {-1, 7}},   // flat: beyond the left edge
      {wide, {5, 5}, {6, 9}, {3, -3}},   // steep: beyond the bottom
      {wide, {5, 5}, {4, 3}, {8, 11}},
      {wide, {10, 5}, {12, 6}, {-2, -1}},  // slope of the diagonal: flat
      {line, {5, 5}, {9, 6}, {1, 4}},      // no height: the steep rule
      {wide, {5, 5}, {2, 5}, {20, 5}},
      {wide, {5, 5}, {9, 5}, {0, 5}},
      {wide, {5, 5}, {5, 7}, {5, 0}},
      {wide, {5, 5}, {5, 1}, {5, 10}},
      {wide, {5, 5}, {5, 5}, {20, 5}},
  };
  for (const auto& row : rows) {
    NQPoint p = row.p;
    row.rect.getPointOutsideRect(p, row.q);
    EXPECT_EQ(p, row.result) << row.q.x() << ", " << row.q.y() << " gives " << p.x()
                             << ", " << p.y();
  }
  // From inside, a slanted way always ends outside.
  for (nqLong i = 0; i < 21 * 11; ++i) {
    const NQPoint from(i % 21, i / 21);
    const NQPoint towards(7, 3);
    if (from.x() == 7 || from.y() == 3) continue;
    NQPoint p = from;
    wide.getPointOutsideRect(p, towards);
    EXPECT_EQ(wide.within(p), 0) << from.x() << ", " << from.y();
  }
}

TYPED_TEST(Rectangles, FindThePointOnTheOtherSide) {
  const TypeParam r(0, 0, 10, 10);
  const struct {
    NQPoint p, q;
    int result;
    NQPoint moved;
  } rows[] = {
      {{4, 4}, {4, 20}, 1, {4, 4}},   // a common x: p stays
      {{4, 4}, {20, 4}, 1, {4, 4}},   // a common y: p stays
      {{5, 5}, {10, 10}, 1, {0, 0}},  // q is a crossing: the other one
      {{5, 5}, {0, 0}, 1, {10, 10}},
      {{5, 10}, {0, 5}, 1, {5, 10}},
      {{20, 5}, {30, 6}, 1, {10, 4}},
      {{-5, 5}, {5, 15}, 0, {5, 15}},  // touches a corner only
      {{30, 0}, {0, 30}, 0, {0, 30}},  // misses
  };
  for (const auto& row : rows) {
    NQPoint p = row.p;
    EXPECT_EQ(r.pointInOtherSide(p, row.q), row.result);
    EXPECT_EQ(p, row.moved) << p.x() << ", " << p.y();
  }
}

TYPED_TEST(Rectangles, ChooseTheSideForRoutingToAPoint) {
  const TypeParam r(0, 0, 10, 10);
  const NQSideEnum kLeft = NQSideLeft, kRight = NQSideRight, kTop = NQSideTop,
                   kBottom = NQSideBottom;
  const struct {
    NQPoint p;
    NQSideEnum even, odd;
  } rows[] = {
      {{-1, 10}, kLeft, kLeft},    {{11, 5}, kRight, kRight},   {{0, 11}, kTop, kTop},
      {{5, -1}, kBottom, kBottom}, {{-1, -1}, kBottom, kLeft},  {{-1, 11}, kTop, kLeft},
      {{11, 11}, kTop, kRight},    {{11, -1}, kBottom, kRight},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(r.sideForRouting(row.p, NQDirRight), row.even);
    EXPECT_EQ(r.sideForRouting(row.p, NQDirLeft), row.even);
    EXPECT_EQ(r.sideForRouting(row.p, NQDirUp), row.odd);
    EXPECT_EQ(r.sideForRouting(row.p, NQDirDown), row.odd);
  }
  for (int d = 0; d < 5; ++d) {
    EXPECT_EQ(r.sideForRouting(NQPoint(10, 0), static_cast<NQDirectionEnum>(d)),
              static_cast<NQSideEnum>(d));
  }
}

TYPED_TEST(Rectangles, ChooseTheSideForRoutingToARectangle) {
  using Rect = TypeParam;
  const Rect r(0, 0, 10, 10);
  const struct {
    Rect other;
    NQSideEnum horizontalFirst, verticalFirst;
  } rows[] = {
      // Apart on both axes.
      {Rect(20, 20, 30, 30), NQSideRight, NQSideTop},
      {Rect(-30, 20, -20, 30), NQSideLeft, NQSideTop},
      {Rect(-30, -30, -20, -20), NQSideLeft, NQSideBottom},
      {Rect(20, -30, 30, -20), NQSideRight, NQSideBottom},
      // Apart on one axis.
      {Rect(20, 5, 30, 15), NQSideRight, NQSideRight},
      {Rect(-30, 5, -20, 15), NQSideLeft, NQSideLeft},
      {Rect(5, 20, 15, 30), NQSideTop, NQSideTop},
      {Rect(10, -30, 15, -20), NQSideBottom, NQSideBottom},
      {Rect(-50, 11, 60, 11), NQSideTop, NQSideTop},
      // Overlapping: the farthest reach.
      {Rect(5, 2, 20, 8), NQSideRight, NQSideRight},
      {Rect(-3, 2, 11, 8), NQSideLeft, NQSideLeft},
      {Rect(2, -2, 14, 13), NQSideRight, NQSideRight},
      {Rect(5, 5, 14, 14), NQSideTop, NQSideTop},
      {Rect(-4, -4, 5, 5), NQSideBottom, NQSideBottom},
      {Rect(-4, 4, 5, 14), NQSideLeft, NQSideLeft},
      {Rect(10, 10, 20, 20), NQSideTop, NQSideTop},
      // One holds the other: the closest edges.
      {Rect(1, 2, 7, 7), NQSideLeft, NQSideLeft},
      {Rect(1, 1, 9, 9), NQSideBottom, NQSideBottom},
      {Rect(3, 3, 9, 9), NQSideTop, NQSideTop},
      {Rect(-9, -9, 12, 19), NQSideRight, NQSideRight},
      {r, NQSideBottom, NQSideBottom},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.other.left() << ", " << row.other.bottom());
    EXPECT_EQ(r.sideForRouting(row.other, 1), row.horizontalFirst);
    EXPECT_EQ(r.sideForRouting(row.other, 0), row.verticalFirst);
  }
}

TYPED_TEST(Rectangles, ConvertOffsetsToThousandthsAndBack) {
  using Rect = TypeParam;
  const struct {
    Rect rect;
    NQPoint p;
    NQPerMil perMil;
  } rows[] = {
      {Rect(0, 0, 10, 10), {10, 0}, {1000, -1000}},
      {Rect(0, 0, 10, 10), {5, 5}, {0, 0}},
      {Rect(0, 0, 11, 11), {11, 0}, {1000, -1000}},
      {Rect(0, 0, 11, 11), {6, 4}, {166, -200}},
      {Rect(0, 0, 0, 11), {0, 5}, {500, 0}},
      {Rect(0, 0, 1, 10), {-7, 5}, {500, 0}},
      {Rect(0, 0, 2, 2),
       {41, -39},
       {static_cast<short>(40000), static_cast<short>(-40000)}},
      {Rect(-1000000000, 0, 1000000000, 2), {-1000000000, 1}, {-1000, 0}},
  };
  for (const auto& row : rows) {
    NQPerMil perMil;
    EXPECT_EQ(row.rect.setPerMil(row.p, perMil), &perMil);
    EXPECT_EQ(perMil, row.perMil) << perMil.x() << ", " << perMil.y();
  }

  std::mt19937 random(7);
  std::uniform_int_distribution<nqLong> extent(0, 2000);
  for (int i = 0; i < 5000; ++i) {
    const Rect rect(NQPoint(extent(random), -extent(random)),
                    NQSize(extent(random) + 2, extent(random) + 2));
    std::uniform_int_distribution<nqLong> x(rect.left(), rect.right());
    std::uniform_int_distribution<nqLong> y(rect.bottom(), rect.top());
    const NQPoint p(x(random), y(random));
    NQSize offset;
    EXPECT_EQ(rect.setOffset(p, offset), &offset);
    EXPECT_EQ(offset, NQSize(p.x() - rect.x(), p.y() - rect.y()));
    NQPerMil perMil;
    rect.setPerMil(offset, perMil);
    NQSize back = offset;  // its signs choose the halves
    EXPECT_EQ(rect.setOffset(perMil, back), &back);
    EXPECT_LE(std::abs(back.width() - offset.width()), 1);
    EXPECT_LE(std::abs(back.height() - offset.height()), 1);
  }
  NQSize sign(-1, 0);
  Rect(5, 5).setOffset(NQPerMil(1000, 1000), sign);
  EXPECT_EQ(sign, NQSize(2, 3));
}

TYPED_TEST(Rectangles, StayDefinedAtTheEndsOfTheRange) {
  using Rect = TypeParam;
  const nqLong ends[] = {kMin, kMin + 1, -1, 0, kMax - 1, kMax};
  for (const nqLong a : ends) {
    for (const nqLong b : ends) {
      Rect r(a, b, b, a);
      NQPoint p(b, b);
      NQPerMil perMil;
      EXPECT_EQ(r.within(NQPoint(a, a)),
                r.withinInterior(NQPoint(a, a)) || r.onBoundary(NQPoint(a, a)));
      r.closestSide(p);
      r.closestSideWithin(p);
      r.sideForRouting(Rect(b, b, a, a), 0);
      r.setPerMil(p, perMil);
      r.nearestPoint(p);
      r.getPointOutsideRect(p, NQPoint(a, b));
      r.getPointOutsideRect(p, NQPoint(a, a));
      r.getPointOutsideRect(p, NQPoint(b, a));
      r.pointInOtherSide(p, NQPoint(a, kMax));
      r.inflate(a, b);
      r.scale(static_cast<int>(a));
      r.scale(1e9);
      r.moveTo(a, b);
      r.move(b, a);
      r.width(a);
      r.height(b);
      EXPECT_GE(r.rightHalfWidth() + 1, r.leftHalfWidth());
      r |= Rect(kMin, 0, kMax, 0);
      r &= Rect(0, 0, 1, 1);
      EXPECT_LE(r.area(), 1);
    }
  }
}

TEST(NQRect, KeepsWhatIsItsOwn) {
  EXPECT_EQ(NQRect(-5, 4).edges(), (NQEdges{2, 2, -3, -2}));  // bad order, as it came
  EXPECT_EQ(NQRect(NQPoint(10, 10), -3, 2).edges(), (NQEdges{11, 11, 8, 9}));
  NQRect r(1, 2, 3, 4);
  r |= NQRect(0, 0, 0, 0);
  EXPECT_EQ(r, NQRect(1, 2, 3, 4));
  EXPECT_EQ(NQRect(0, 0, 0, 0).calculateUnion(r), r);
  EXPECT_EQ(NQRect(0, 0, 10, 10).calculateIntersection(NQRect(10, 0, 20, 10)),
            NQRect(10, 0, 10, 10));

  const tagRECT record = {7, -4, 1, 5};
  const NQRect sorted(&record);
  EXPECT_EQ(sorted, NQRect(1, -4, 7, 5));
  const tagRECT* const view = sorted;
  EXPECT_EQ(view->left, 1);
  EXPECT_EQ(view->top, 5);
  EXPECT_EQ(view->right, 7);
  EXPECT_EQ(view->bottom, -4);
  EXPECT_EQ(NQRect(static_cast<const tagRECT*>(nullptr)).isZero(), 1);

  checkCopyProtocol(
      r, [] { return std::make_unique<NQRect>(5, 5); },
      [](const NQRect& a, const NQRect& b) { return a == b; });
}

TEST(NQRect, GathersBoundsFromNothing) {
  NQRect bounds = NQRect::nothing();
  const NQRect nothing = bounds, away(7, -9, 7, -9);
  EXPECT_EQ(bounds.within(NQPoint(0, 0)) + bounds.intersectsRect(NQRect()), 0);
  bounds |= nothing;
  bounds.updateBounds(&nothing);
  EXPECT_EQ(bounds, nothing);
  const NQPoint p(5, -3);
  bounds.updateBounds(&p);
  EXPECT_EQ(bounds, NQRect(p, p));
  bounds.updateBounds(&nothing);
  bounds |= nothing;
  bounds.updateBounds(&away);
  EXPECT_EQ(bounds, NQRect(5, -9, 7, -3));
  bounds = nothing;
  bounds |= away;
  EXPECT_EQ(bounds, away);
  for (const NQRect& empty : {nothing, NQRect(0, 0, 0, 0), NQRect(-1, 5),
                              away.calculateIntersection(NQRect(8, 8, 9, 9))}) {
    EXPECT_EQ(empty.isEmpty(), 1) << empty;
  }
  EXPECT_EQ(away.isEmpty() + NQRect().isEmpty() + NQInternalRect().isEmpty(), 0);
}

TEST(NQInternalRect, KeepsWhatIsItsOwn) {
  const NQInternalRect r(NQRect(0, 0, 5, 5));
  EXPECT_EQ(r.center(), NQPoint(2, 2));
  EXPECT_EQ(r.size(), NQSize(5, 5));
  EXPECT_EQ(NQInternalRect(-3, 4).size(), NQSize(0, 4));
  EXPECT_EQ(NQInternalRect(0, 0, 0, 0).calculateUnion(NQInternalRect(10, 10, 20, 20)),
            NQInternalRect(0, 0, 20, 20));
  NQRect back;
  back = r;
  EXPECT_EQ(back, NQRect(0, 0, 5, 5));
}

}  // namespace

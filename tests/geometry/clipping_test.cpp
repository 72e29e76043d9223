// Lines, segments and rays against boxes: every case on a small grid beside
// the exact model, then the same far out, where products are no longer exact.

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "nq/geometry/internal_rect.h"
#include "tests/geometry/exact_model.h"

namespace {

constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

nqLong c(model::Int v) {
  return static_cast<nqLong>(v);
}

NQEdges edgesOf(const model::Box& b) {
  return {c(b.left), c(b.top), c(b.right), c(b.bottom)};
}

using Clip = int (NQEdges::*)(nqLong&, nqLong&, nqLong&, nqLong&) const;

// The crossings that a clipping operation reports, and what it left alone.
void checkClip(const char* name, Clip clip, const model::Box& b, const model::Segment& s,
               const std::vector<model::Point>& expected) {
  nqLong x1 = c(s.a.x), y1 = c(s.a.y), x2 = c(s.b.x), y2 = c(s.b.y);
  const size_t count = static_cast<size_t>((edgesOf(b).*clip)(x1, y1, x2, y2));
  ASSERT_EQ(count, expected.size()) << name << " " << s << " in " << b;
  const model::Point first = {x1, y1}, second = {x2, y2};
  ASSERT_EQ(first, count > 0 ? expected[0] : s.a) << name << " " << s << " in " << b;
  ASSERT_EQ(second, count > 1 ? expected[1] : s.b) << name << " " << s << " in " << b;
}

// `reach` extends a ray or line beyond every box; 0 leaves them out.
void checkAll(const model::Box& b, const model::Segment& s, model::Int reach) {
  checkClip("line", &NQEdges::intersectsLine, b, s, model::lineCrossings(b, s));
  checkClip("segment", &NQEdges::intersectsSegment, b, s, model::segmentCrossings(b, s));
  checkClip("ray", &NQEdges::intersectsRay, b, s, model::rayCrossings(b, s));

  const NQEdges e = edgesOf(b);
  const nqLong x1 = c(s.a.x), y1 = c(s.a.y), x2 = c(s.b.x), y2 = c(s.b.y);
  const model::Int dx = reach * (s.b.x - s.a.x), dy = reach * (s.b.y - s.a.y);
  const bool real = s.a != s.b;
  const model::Segment ray = {s.a, {s.a.x + dx, s.a.y + dy}};
  const model::Segment line = {{s.a.x - dx, s.a.y - dy}, ray.b};
  ASSERT_EQ(e.overlapsSegment(x1, y1, x2, y2), model::meet(b, s)) << s << " in " << b;
  if (reach == 0) return;
  ASSERT_EQ(e.overlapsRay(x1, y1, x2, y2), real && model::meet(b, ray))
      << s << " in " << b;
  ASSERT_EQ(e.overlapsLine(x1, y1, x2, y2), real && model::meet(b, line))
      << s << " in " << b;
}

// All segments and boxes whose corners are on a grid of `side` places.
void checkGrid(model::Int side, model::Int unit, model::Int offset) {
  const auto at = [&](model::Int i) { return offset + unit * i; };
  std::vector<model::Segment> segments;
  for (model::Int i = 0; i < side * side * side * side; ++i) {
    segments.push_back({{at(i % side), at(i / side % side)},
                        {at(i / side / side % side), at(i / side / side / side)}});
  }
  for (model::Int left = 0; left < side; ++left) {
    for (model::Int right = left; right < side; ++right) {
      for (model::Int bottom = 0; bottom < side; ++bottom) {
        for (model::Int top = bottom; top < side; ++top) {
          for (const model::Segment& s : segments) {
            checkAll({at(left), at(bottom), at(right), at(top)}, s, side);
            if (testing::Test::HasFatalFailure()) return;
          }
        }
      }
    }
  }
}

TEST(Clipping, AgreesWithTheExactModelOnTheWholeGrid) {
  checkGrid(7, 1, -3);
}

TEST(Clipping, AgreesWithTheExactModelFarOut) {
  checkGrid(4, model::Int{1} << 26, -(model::Int{1} << 27));
  checkGrid(4, 1, (model::Int{1} << 25) - 2);
}

TEST(Clipping, AgreesWithTheExactModelOnRandomCases) {
  std::mt19937 random(4);
  for (const model::Int size : {20, 5000, 1 << 20}) {
    std::uniform_int_distribution<model::Int> coordinate(-size, size);
    const auto any = [&] { return model::Point{coordinate(random), coordinate(random)}; };
    for (int i = 0; i < 20000 && !HasFatalFailure(); ++i) {
      checkAll(model::around({any(), any()}), {any(), any()}, size > 5000 ? 0 : 4 * size);
    }
  }
}

TEST(Clipping, TakesPointsThroughBothRectangles) {
  const NQRect rect(0, 0, 10, 10);
  const NQInternalRect internal(rect);
  const auto check = [](const auto& r) {
    NQPoint a(-5, 5), b(15, 5);
    EXPECT_EQ(r.intersectsSegment(a, b), 2);
    EXPECT_EQ(a, NQPoint(0, 5));
    EXPECT_EQ(b, NQPoint(10, 5));
    a.set(-5, 15), b.set(5, 5);  // through a corner
    EXPECT_EQ(r.intersectsRay(a, b), 2);
    EXPECT_EQ(a, NQPoint(0, 10));
    EXPECT_EQ(b, NQPoint(10, 0));
    a.set(-5, 5), b.set(5, 15);  // touching a corner
    EXPECT_EQ(r.intersectsLine(a, b), 1);
    EXPECT_EQ(a, NQPoint(0, 10));
    EXPECT_EQ(b, NQPoint(5, 15));
    nqLong x1 = 3, y1 = 3, x2 = 3, y2 = 4;
    EXPECT_EQ(r.intersectsLine(x1, y1, x2, y2), 2);
    EXPECT_EQ(y1, 10);
    EXPECT_EQ(y2, 0);
    EXPECT_EQ(r.overlapsSegment(NQPoint(2, 2), NQPoint(3, 3)), 1);
    EXPECT_EQ(r.overlapsLine(NQPoint(11, 0), NQPoint(11, 9)), 0);
    EXPECT_EQ(r.overlapsRay(NQPoint(20, 5), NQPoint(30, 5)), 0);
    EXPECT_EQ(r.overlapsRay(NQPoint(20, 5), NQPoint(19, 5)), 1);
  };
  check(rect);
  check(internal);
}

// At the ends of the range differences wrap: answers lose their meaning, but
// crossings still are on the boundary and untouched points stay untouched.
TEST(Clipping, StaysDefinedAtTheEndsOfTheRange) {
  const nqLong ends[] = {kMin, kMin + 1, -1, 0, kMax - 1, kMax};
  const NQEdges boxes[] = {{kMin, kMax, kMax, kMin}, {-1, kMax, 0, kMin},
                           {kMin, 1, kMax, 0},       {kMax, kMax, kMax, kMax},
                           {kMin, -2, 7, kMin},      {0, 0, 0, 0}};
  const Clip clips[] = {&NQEdges::intersectsLine, &NQEdges::intersectsSegment,
                        &NQEdges::intersectsRay};
  for (const NQEdges& e : boxes) {
    for (int i = 0; i < 6 * 6 * 6 * 6; ++i) {
      const nqLong from[] = {ends[i % 6], ends[i / 6 % 6], ends[i / 36 % 6],
                             ends[i / 216]};
      for (const Clip clip : clips) {
        nqLong x1 = from[0], y1 = from[1], x2 = from[2], y2 = from[3];
        const int count = (e.*clip)(x1, y1, x2, y2);
        EXPECT_TRUE(count > 0 ? e.onBoundary(x1, y1) : x1 == from[0] && y1 == from[1]);
        EXPECT_TRUE(count > 1 ? e.onBoundary(x2, y2) : x2 == from[2] && y2 == from[3]);
      }
      const bool inside = e.within(from[0], from[1]);
      EXPECT_TRUE(!inside || e.overlapsSegment(from[0], from[1], from[2], from[3]));
      e.overlapsLine(from[0], from[1], from[2], from[3]);
      e.overlapsRay(from[0], from[1], from[2], from[3]);
    }
  }
}

}  // namespace

#include "nq/geometry/point.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <numbers>
#include <random>

#include "tests/geometry/exact_model.h"
#include "tests/support/copy_protocol_check.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

TEST(NQPoint, IsAPositionAndThePlatformsRecord) {
  NQPoint p(tagPOINT{3, 4});
  tagPOINT& record = p;
  p.move(1, 1);
  EXPECT_EQ(record.x, 4);
  record.y = 9;
  EXPECT_EQ(p, NQPoint(4, 9));
  EXPECT_EQ(static_cast<const tagPOINT&>(p).y, 9);
  p.move(NQSize(-4, -9));
  EXPECT_EQ(p, NQPoint());
  p.moveTo(NQPoint(6, 8));
  EXPECT_EQ(p.distance(NQPoint()), 10.0);
  EXPECT_EQ(p.distanceSquare(NQPoint()), 100.0);
  EXPECT_EQ(NQPoint::distance(kMin, 0, kMax, 0), 1.0);  // the difference wraps
  EXPECT_EQ(p.coordinate(NQVertical), 8);
  EXPECT_EQ(p.coordinate(NQHorizontal, 5), 5);
  EXPECT_EQ(p.coordinate(static_cast<NQOrientationEnum>(7)), 5);
  EXPECT_EQ(p.coordinate(NQVertical, 2), 2);
  EXPECT_EQ(p, NQPoint(5, 2));
  checkCopyProtocol(
      p, [] { return std::make_unique<NQPoint>(1, 1); },
      [](const NQPoint& a, const NQPoint& b) { return a == b; });
}

TEST(NQPoint, DirectionsAndAngles) {
  constexpr double kPi = std::numbers::pi;
  const struct {
    nqLong x, y;
    NQDirectionEnum exact, rough;
    double angle;
  } rows[] = {
      {0, 0, NQDirNone, NQDirRight, 3 * kPi / 2},
      {5, 0, NQDirRight, NQDirRight, 0},
      {0, 5, NQDirUp, NQDirUp, kPi / 2},
      {-1, 0, NQDirLeft, NQDirLeft, kPi},
      {0, -5, NQDirDown, NQDirDown, 3 * kPi / 2},
      {5, 5, NQDirNone, NQDirRight, kPi / 4},
      {3, -3, NQDirNone, NQDirRight, 7 * kPi / 4},
      {-3, 3, NQDirNone, NQDirLeft, 3 * kPi / 4},
      {-3, -3, NQDirNone, NQDirLeft, 5 * kPi / 4},
      {3, -4, NQDirNone, NQDirDown, 2 * kPi - std::atan2(4, 3)},
      {-3, 4, NQDirNone, NQDirUp, kPi - std::atan2(4, 3)},
      {0, kMin, NQDirDown, NQDirDown, 3 * kPi / 2},
  };
  for (const auto& row : rows) {
    const NQPoint to(row.x, row.y);
    SCOPED_TRACE(testing::Message() << row.x << ", " << row.y);
    EXPECT_EQ(NQPoint().direction(to), row.exact);
    EXPECT_EQ(NQPoint().roughDirection(to), row.rough);
    EXPECT_DOUBLE_EQ(NQPoint::angle(NQPoint(), to), row.angle);
  }
}

TEST(NQPoint, LinesRaysAndSegmentsAreEvaluatedWhereTheyReach) {
  constexpr double kNone = -99;
  const struct {
    nqLong x1, y1, x2, y2;
    double x, line, ray, segment;
  } rows[] = {
      {0, 0, 4, 2, 1, 0.5, 0.5, 0.5},
      {0, 0, 4, 2, 4, 2, 2, 2},
      {0, 0, 4, 2, 0, 0, 0, 0},
      {0, 0, 4, 2, 4.5, 2.25, 2.25, kNone},
      {0, 0, 4, 2, -0.5, -0.25, kNone, kNone},
      {4, 2, 0, 0, 4.5, 2.25, kNone, kNone},
      {4, 2, 0, 0, -1, -0.5, -0.5, kNone},
      {4, 2, 0, 0, 3, 1.5, 1.5, 1.5},
      {3, 0, 3, 5, 3, kNone, kNone, kNone},
      {3, 7, 3, 7, 3, kNone, kNone, kNone},
      {0, 6, 5, 6, 2, 6, 6, 6},
      {0, 0, 3, 1, 3, 1, 1, 1},
      {kMin, 1, kMax, 2, kMax, 2, 2, 2},
  };
  using Function = int (*)(nqLong, nqLong, nqLong, nqLong, double, double&);
  using Transposed = int (*)(nqLong, nqLong, nqLong, nqLong, double&, double);
  for (const auto& row : rows) {
    const auto check = [&](Function atX, Transposed atY, double expected) {
      SCOPED_TRACE(testing::Message() << row.x1 << " " << row.y1 << " " << row.x2 << " "
                                      << row.y2 << " at " << row.x);
      double value = kNone;
      EXPECT_EQ(atX(row.x1, row.y1, row.x2, row.y2, row.x, value), expected != kNone);
      EXPECT_EQ(value, expected);
      value = kNone;
      EXPECT_EQ(atY(row.y1, row.x1, row.y2, row.x2, value, row.x), expected != kNone);
      EXPECT_EQ(value, expected);
    };
    check(NQPoint::lineAtX, NQPoint::lineAtY, row.line);
    check(NQPoint::rayAtX, NQPoint::rayAtY, row.ray);
    check(NQPoint::segmentAtX, NQPoint::segmentAtY, row.segment);
  }
}

TEST(NQPoint, PointsNearASegmentAreOnIt) {
  EXPECT_EQ(NQPoint::pointInSegment(1, 0, 0, 0, 2, 0), 1);
  EXPECT_EQ(NQPoint::pointInSegment(0, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(NQPoint::pointInSegment(3, 0, 0, 0, 2, 0), 0);
  // Across a segment with room in its box: 0.44 is near, 0.45 is not.
  const double h = std::sqrt(0.5);
  EXPECT_EQ(NQPoint::doublePointInSegment(5 + 0.44 * h, 5 - 0.44 * h, 0, 0, 10, 10), 1);
  EXPECT_EQ(NQPoint::doublePointInSegment(5 + 0.45 * h, 5 - 0.45 * h, 0, 0, 10, 10), 0);
  // A squared distance of exactly 0.2 is not below it.
  EXPECT_EQ(NQPoint::pointInSegment(1, 0, 0, 0, 2, 1), 0);
  EXPECT_EQ(NQPoint::pointInSegment(kMax, kMax, kMin, kMin, kMax, kMax), 1);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(NQPoint::doublePointInSegment(nan, 0, 0, 0, 2, 0), 0);
}

// Compares both forms with the model; the double form may keep fractions.
void checkMeeting(const model::Segment& s, const model::Segment& t) {
  const auto c = [](model::Int v) { return static_cast<nqLong>(v); };
  const auto expected = model::meetingPoint(s, t);
  nqLong x = c(s.a.x), y = c(s.a.y);
  const int met = NQPoint::segmentsIntersect(x, y, c(s.b.x), c(s.b.y), c(t.a.x), c(t.a.y),
                                             c(t.b.x), c(t.b.y));
  const model::Point place = {x, y};
  ASSERT_EQ(met, expected.has_value()) << s << " and " << t;
  ASSERT_EQ(place, expected.value_or(s.a)) << s << " and " << t;
  const auto d = [](model::Int v) { return static_cast<double>(v); };
  double dx = d(s.a.x), dy = d(s.a.y);
  ASSERT_EQ(NQPoint::segmentsIntersect(dx, dy, d(s.b.x), d(s.b.y), d(t.a.x), d(t.a.y),
                                       d(t.b.x), d(t.b.y)),
            met);
  ASSERT_EQ(nqRound(dx), x);
  ASSERT_EQ(nqRound(dy), y);
}

TEST(NQPoint, SegmentsMeetAsTheExactModelSays) {
  constexpr model::Int kSide = 6;
  constexpr model::Int kPlaces = kSide * kSide;
  const auto place = [](model::Int i) { return model::Point{i % kSide, i / kSide}; };
  for (model::Int i = 0; i < kPlaces * kPlaces; ++i) {
    for (model::Int j = 0; j < kPlaces * kPlaces; ++j) {
      checkMeeting({place(i / kPlaces), place(i % kPlaces)},
                   {place(j / kPlaces), place(j % kPlaces)});
      if (HasFatalFailure()) return;
    }
  }
  std::mt19937 random(20);
  std::uniform_int_distribution<model::Int> coordinate(-1000, 1000);
  const auto any = [&] { return model::Point{coordinate(random), coordinate(random)}; };
  for (int i = 0; i < 50000 && !HasFatalFailure(); ++i) {
    checkMeeting({any(), any()}, {any(), any()});
  }
}

TEST(NQPoint, SegmentsMeetWithoutRoundingInDouble) {
  double x = 0, y = 0;
  EXPECT_EQ(NQPoint::segmentsIntersect(x, y, 3.0, 3.0, 0.0, 2.5, 2.5, 0.0), 1);
  EXPECT_EQ(x, 1.25);
  EXPECT_EQ(y, 1.25);
}

TEST(NQPoint, SegmentsAtTheEndsOfTheRangeStayDefined) {
  const nqLong ends[] = {kMin, kMin + 1, -1, 0, kMax};
  for (int i = 0; i < 5 * 5 * 5 * 5; ++i) {
    const nqLong x2 = ends[i % 5], y2 = ends[i / 5 % 5], x3 = ends[i / 25 % 5],
                 y3 = ends[i / 125];
    nqLong x = kMin, y = kMax;
    const int met = NQPoint::segmentsIntersect(x, y, x2, y2, x3, y3, kMax, kMin);
    EXPECT_TRUE(met == 1 || (x == kMin && y == kMax));
  }
}

}  // namespace

#include "nq/geometry/transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "nq/geometry/rotated_rect.h"
#include "tests/geometry/test_peer.h"
#include "tests/support/copy_protocol_check.h"

namespace {

constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

// Mirrors y, as a device with y downward does: x' = 2x + 5, y' = -3y + 100.
NQTransform device() {
  NQTransform t;
  t.sourceExtentX(100);
  t.targetExtentX(200);
  t.targetOriginX(5);
  t.sourceExtentY(10);
  t.targetExtentY(-30);
  t.targetOriginY(100);
  return t;
}

TEST(NQTransform, MapsForthAndBack) {
  const NQTransform t = device();
  EXPECT_EQ(t.transformX(1.25), 7.5);
  EXPECT_EQ(t.transformX(4), 13);
  EXPECT_EQ(t.transformY(4L), 88);
  EXPECT_EQ(t.inverseTransformX(8), 2);  // 1.5
  EXPECT_EQ(t.inverseTransformX(8.0), 1.5);
  EXPECT_EQ(t.inverseTransformX(4L), 0);  // -0.5
  EXPECT_EQ(t.inverseTransformY(0), 33);
  NQPoint p(4, 5);
  t.transformPoint(p, p);
  EXPECT_EQ(p, NQPoint(13, 85));
  NQDTuple d(p);
  t.inverseTransformPoint(d, d);
  EXPECT_EQ(d, NQDTuple(4, 5));
  NQSize size(4, 5);
  t.transformSize(size, size);
  EXPECT_EQ(size, NQSize(8, -15));
  t.inverseTransformSize(size, size);
  EXPECT_EQ(size, NQSize(4, 5));
  d.set(0.5, 0.5);
  t.transformSize(d, d);
  EXPECT_EQ(d, NQDTuple(1, -1.5));
  t.inverseTransformSize(d, d);
  EXPECT_EQ(d, NQDTuple(0.5, 0.5));
  NQRect r(0, 0, 10, 20);
  t.transformRect(r, r);
  EXPECT_EQ(r, NQRect(5, 40, 25, 100));
  t.inverseTransformRect(r, r);
  EXPECT_EQ(r, NQRect(0, 0, 10, 20));

  // What integers lose on the way out and home is at most half a source unit.
  NQTransform shifted = t;
  shifted.sourceOriginX(-7);
  shifted.sourceOriginY(1e6);
  EXPECT_EQ(shifted.sourceOriginX() + shifted.sourceOriginY(), 999993);
  for (nqLong v = -50; v < 50; ++v) {
    NQPoint q(v, v);
    shifted.transformPoint(q, q);
    shifted.inverseTransformPoint(q, q);
    EXPECT_EQ(q, NQPoint(v, v));
  }
}

TEST(NQTransform, IdentityZeroExtentsAndTheEndsOfTheRange) {
  NQTransform t;
  NQRect r(-3, 4, 7, kMax);
  NQRect mapped;
  t.transformRect(r, mapped);
  EXPECT_EQ(mapped, r);
  t.targetOriginX(9);
  t.sourceExtentX(0);
  t.targetExtentY(0);
  t.targetOriginY(9);
  EXPECT_EQ(t.transformX(5.0), 0);
  EXPECT_EQ(t.transformY(5), 9);
  EXPECT_EQ(t.inverseTransformX(5), 0);
  EXPECT_EQ(t.inverseTransformY(5.0), 0);
  t.sourceExtentX(1e-300);
  EXPECT_EQ(t.transformX(kMin), kMin);
  EXPECT_EQ(t.transformX(kMax), kMax);
  t.sourceExtentX(std::nan(""));
  EXPECT_EQ(t.transformX(7), 0);
}

TEST(NQTransform, AdjustsAndNormalizesExtents) {
  const struct {
    double source[2], target[2], adjusted[2];
  } rows[] = {
      {{100, 50}, {200, 200}, {100, 100}},    {{50, 100}, {200, 200}, {100, 100}},
      {{100, 50}, {200, 100}, {100, 50}},     {{100, 50}, {0, 200}, {100, 50}},
      {{100, 50}, {200, 0}, {100, 50}},       {{50, 100}, {200, -100}, {0, 100}},
      {{50, -100}, {-200, 100}, {200, -100}}, {{100, 50}, {-200, 100}, {100, 0}},
  };
  for (const auto& row : rows) {
    NQTransform t;
    t.sourceExtentX(row.source[0]);
    t.sourceExtentY(row.source[1]);
    t.targetExtentX(row.target[0]);
    t.targetExtentY(row.target[1]);
    t.adjustExtentToPreserveAspectRatio();
    EXPECT_EQ(t.sourceExtentX(), row.adjusted[0])
        << row.source[0] << ", " << row.target[0];
    EXPECT_EQ(t.sourceExtentY(), row.adjusted[1])
        << row.source[1] << ", " << row.target[1];
  }

  const double normal[][4] = {{4, 2, 2, 1},   {0, 5, 1, 5},   {5, 0, 5, 1}, {0, 0, 1, 1},
                              {-4, 2, -2, 1}, {2, -6, 1, -3}, {3, 3, 1, 1}};
  for (const auto& [source, target, newSource, newTarget] : normal) {
    NQTransform t;
    t.sourceExtentX(7);
    t.targetExtentX(7);
    t.sourceExtentY(source);
    t.targetExtentY(target);
    EXPECT_EQ(t.hasNormalizedExt(), 0);
    t.normalizeExt();
    EXPECT_EQ(t.sourceExtentX(), 1);
    EXPECT_EQ(t.sourceExtentY(), newSource);
    EXPECT_EQ(t.targetExtentY(), newTarget);
    EXPECT_EQ(t.hasNormalizedExt(), 1);
  }
}

TEST(NQTransform, FollowsTheCopyProtocol) {
  NQTransform sample;
  double (NQTransform::*const setters[])(double) = {
      &NQTransform::sourceOriginX, &NQTransform::sourceOriginY,
      &NQTransform::targetOriginX, &NQTransform::targetOriginY,
      &NQTransform::sourceExtentX, &NQTransform::sourceExtentY,
      &NQTransform::targetExtentX, &NQTransform::targetExtentY};
  double value = 2;
  for (const auto set : setters) (sample.*set)(value++);
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQTransform>(); },
      [](const NQTransform& a, const NQTransform& b) {
        return a.sourceOriginX() == b.sourceOriginX() &&
               a.sourceOriginY() == b.sourceOriginY() &&
               a.targetOriginX() == b.targetOriginX() &&
               a.targetOriginY() == b.targetOriginY() &&
               a.sourceExtentX() == b.sourceExtentX() &&
               a.sourceExtentY() == b.sourceExtentY() &&
               a.targetExtentX() == b.targetExtentX() &&
               a.targetExtentY() == b.targetExtentY();
      });
}

NQRotatedRect band(const NQPoint& a, const NQPoint& b, nqLong delta) {
  return {&a, &b, delta};
}

TEST(NQRotatedRect, SurroundsItsSegment) {
  NQTestPeer::expect(band({0, 0}, {0, 0}, 2), {-2, -2, 2, -2, 2, 2, -2, 2},
                     {-2, -2, 2, 2});
  NQTestPeer::expect(band({0, 0}, {10, 0}, 1), {-1, -1, 11, -1, 11, 1, -1, 1},
                     {-1, -1, 11, 1});
  NQTestPeer::expect(band({10, 0}, {0, 0}, 1), {11, 1, -1, 1, -1, -1, 11, -1},
                     {-1, -1, 11, 1});
  NQTestPeer::expect(band({0, 0}, {3, 4}, 5), {1, -7, 10, 5, 2, 11, -7, -1},
                     {-7, -7, 10, 11});
  NQRotatedRect r = band({0, 0}, {3, 4}, 5);
  EXPECT_EQ(r.delta(), 5);
  const NQPoint p;
  r.set(&p, nullptr, 3);
  r.set(nullptr, &p, 3);
  EXPECT_EQ(r.delta(), 5);
  checkCopyProtocol(
      r, [] { return std::make_unique<NQRotatedRect>(); }, NQTestPeer::equal);
}

TEST(NQRotatedRect, ClipsSegments) {
  const NQRotatedRect flat = band({0, 0}, {10, 0}, 1);
  const NQRotatedRect diagonal = band({0, 0}, {10, 10}, 0);
  const struct {
    NQRotatedRect rect;
    NQPoint p, q;
    int result;
    NQPoint from, to;
  } rows[] = {
      {flat, {5, 9}, {5, -9}, 1, {5, 1}, {5, -1}},
      {flat, {5, -9}, {5, 9}, 1, {5, -1}, {5, 1}},
      {flat, {2, 0}, {4, 1}, 1, {2, 0}, {4, 1}},
      {flat, {-9, 1}, {30, 1}, 1, {-1, 1}, {11, 1}},
      {flat, {-9, 2}, {30, 2}, 0, {}, {}},
      {flat, {11, 9}, {11, 1}, 1, {11, 1}, {11, 1}},
      {flat, {3, 3}, {3, 3}, 0, {}, {}},
      {flat, {3, 1}, {3, 1}, 1, {3, 1}, {3, 1}},
      // A band without width is its segment.
      {diagonal, {0, 10}, {10, 0}, 1, {5, 5}, {5, 5}},
      {diagonal, {-5, -5}, {20, 20}, 1, {0, 0}, {10, 10}},
      {diagonal, {7, 7}, {20, 20}, 1, {7, 7}, {10, 10}},
      {diagonal, {0, 1}, {9, 10}, 0, {}, {}},
      // The band's box is met, the band is not.
      {band({0, 0}, {100, 100}, 1), {0, 90}, {10, 100}, 0, {}, {}},
      {band({0, 0}, {100, 100}, 10), {0, 100}, {100, 0}, 1, {43, 57}, {57, 43}},
      {band({0, 0}, {10, 0}, -1), {5, 0}, {6, 0}, 0, {}, {}},
      {NQRotatedRect(), {0, 0}, {1, 1}, 0, {}, {}},
      {NQRotatedRect(nullptr, nullptr, 4), {0, 0}, {1, 1}, 0, {}, {}},
  };
  for (const auto& row : rows) {
    NQPoint p = row.p, q = row.q;
    EXPECT_EQ(row.rect.clipping(&p, &q), row.result);
    EXPECT_EQ(p, row.result ? row.from : row.p) << p.x() << ", " << p.y();
    EXPECT_EQ(q, row.result ? row.to : row.q) << q.x() << ", " << q.y();
  }
  NQPoint p;
  EXPECT_EQ(flat.clipping(&p, nullptr), 0);
  EXPECT_EQ(flat.clipping(nullptr, &p), 0);
}

// How far a point is from a segment.
double distance(double px, double py, const NQPoint& a, const NQPoint& b) {
  const double dx = b.x() - a.x(), dy = b.y() - a.y();
  const double square = dx * dx + dy * dy;
  double t = square == 0 ? 0 : ((px - a.x()) * dx + (py - a.y()) * dy) / square;
  t = std::max(0.0, std::min(1.0, t));
  return std::hypot(px - a.x() - t * dx, py - a.y() - t * dy);
}

// A band holds what is at most delta from its segment and nothing that is
// farther than the diagonal of its corners.
TEST(NQRotatedRect, KeepsWhatIsNear) {
  std::mt19937 random(9);
  std::uniform_int_distribution<nqLong> coordinate(-100, 100);
  const auto any = [&] { return NQPoint(coordinate(random), coordinate(random)); };
  for (int i = 0; i < 20000; ++i) {
    const NQPoint a = any(), b = any(), p = any(), q = any();
    const nqLong delta = i % 30;
    NQPoint from = p, to = q;
    const int remains = band(a, b, delta).clipping(&from, &to);
    double nearest = 1e9;
    for (int step = 0; step <= 100; ++step) {
      const double t = step / 100.0;
      nearest = std::min(nearest, distance(p.x() + t * (q.x() - p.x()),
                                           p.y() + t * (q.y() - p.y()), a, b));
    }
    ASSERT_TRUE(remains == 1 || nearest > delta) << nearest << " " << delta;
    if (remains == 0) {
      ASSERT_TRUE(from == p && to == q);
      continue;
    }
    const double farthest = std::sqrt(2.0) * delta + 0.71;  // rounding moves by 0.71
    for (const NQPoint& end : {from, to}) {
      ASSERT_LE(distance(end.x(), end.y(), a, b), farthest);
      ASSERT_LE(distance(end.x(), end.y(), p, q), 0.71);
    }
  }
  NQPoint p(kMin, kMin), q(kMax, kMax);
  EXPECT_EQ(band({kMin, kMin}, {kMax, kMax}, kMax).clipping(&p, &q), 1);
  EXPECT_EQ(band({kMin, kMax}, {0, 0}, kMin).clipping(&p, &q), 0);
}

}  // namespace

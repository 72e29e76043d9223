// test_peer.h -- the private members that the tests of the geometry look at.

#ifndef NQ_TESTS_GEOMETRY_TEST_PEER_H
#define NQ_TESTS_GEOMETRY_TEST_PEER_H

#include <gtest/gtest.h>

#include "nq/geometry/rotated_rect.h"
#include "nq/geometry/shape.h"

class NQTestPeer {
 public:
  static NQPoint* addPoint(NQShape& shape, nqLong x, nqLong y) {
    return shape.addPoint(x, y);
  }

  // The four corners and the box of a band.
  static void expect(const NQRotatedRect& r, const double (&corners)[8],
                     const double (&box)[4]) {
    const double got[] = {r.x1(), r.y1(), r.x2(), r.y2(), r.x3(), r.y3(), r.x4(), r.y4()};
    for (int i = 0; i < 8; ++i) EXPECT_NEAR(got[i], corners[i], 1e-9) << "corner " << i;
    const double bounds[] = {r.minX_, r.minY_, r.maxX_, r.maxY_};
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(bounds[i], box[i], 1e-9) << "bound " << i;
  }
  static bool equal(const NQRotatedRect& a, const NQRotatedRect& b) {
    return a.cosine_ == b.cosine_ && a.sine_ == b.sine_ && a.cornerX_ == b.cornerX_ &&
           a.cornerY_ == b.cornerY_ && a.length_ == b.length_ && a.width_ == b.width_ &&
           a.minX_ == b.minX_ && a.minY_ == b.minY_ && a.maxX_ == b.maxX_ &&
           a.maxY_ == b.maxY_ && a.delta_ == b.delta_;
  }
};

#endif  // NQ_TESTS_GEOMETRY_TEST_PEER_H

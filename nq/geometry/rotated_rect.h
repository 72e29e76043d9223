// rotated_rect.h -- NQRotatedRect, the band around a slanted segment.
//
// The band reaches `delta` beyond both ends of the segment and `delta` to
// either side of it. It serves to test and clip against thick lines. All four
// sides belong to it; points nearer to a side than a hundred-thousandth of a
// unit count as on it. A negative delta, and the default constructor, leave a
// band without any point.

#ifndef NQ_GEOMETRY_ROTATED_RECT_H
#define NQ_GEOMETRY_ROTATED_RECT_H

#include "nq/geometry/point.h"

class NQ_EXPORT NQRotatedRect : public NQObject {
  NQ_COPY_VALUE(NQRotatedRect, NQObject)

 public:
  NQRotatedRect() = default;
  // As set(); without any point when one of the points is null.
  NQRotatedRect(const NQPoint* a, const NQPoint* b, nqLong delta) { set(a, b, delta); }

  // The margin that the band was built with.
  nqLong delta() const { return delta_; }

  // Clips the segment from p to q: 1 when something of it remains, and both
  // points then hold the remaining part, in its old direction and rounded; 0
  // with both untouched when nothing does, or a point is null.
  int clipping(NQPoint* p, NQPoint* q) const;

  // Becomes the band around the segment from a to b. Equal points have the
  // direction (1, 0). A null point changes nothing.
  void set(const NQPoint* a, const NQPoint* b, nqLong delta);

 private:
  friend class NQTestPeer;

  // The corners: the first, then along the direction, across it, and back.
  double x1() const { return cornerX_; }
  double y1() const { return cornerY_; }
  double x2() const { return x1() + length_ * cosine_; }
  double y2() const { return y1() + length_ * sine_; }
  double x3() const { return x2() - width_ * sine_; }
  double y3() const { return y2() + width_ * cosine_; }
  double x4() const { return x1() - width_ * sine_; }
  double y4() const { return y1() + width_ * cosine_; }

  void copyFields(const NQRotatedRect& source) {
    cosine_ = source.cosine_;
    sine_ = source.sine_;
    cornerX_ = source.cornerX_;
    cornerY_ = source.cornerY_;
    length_ = source.length_;
    width_ = source.width_;
    minX_ = source.minX_;
    minY_ = source.minY_;
    maxX_ = source.maxX_;
    maxY_ = source.maxY_;
    delta_ = source.delta_;
  }

  double cosine_ = 0;  // the unit direction of the segment; 0, 0 in a band never set
  double sine_ = 0;
  double cornerX_ = 0;
  double cornerY_ = 0;
  double length_ = 0;  // along the direction
  double width_ = 0;   // across it
  double minX_ = 0;    // the box around the four corners
  double minY_ = 0;
  double maxX_ = 0;
  double maxY_ = 0;
  nqLong delta_ = 0;
};

NQ_COPY_VALUE_INLINE(NQRotatedRect)

#endif  // NQ_GEOMETRY_ROTATED_RECT_H

// internal_rect.h -- NQInternalRect, a rectangle by its centre and extent.
//
// The light form for computations: a plain value of four coordinates, not an
// NQObject. It converts to and from NQRect without loss and offers the same
// operations (rect_operations.h) on the edges that follow from its fields,
// with the odd unit of an extent on the right and top. No operation makes an
// extent negative.
//
// Two differences from NQRect are meant to be: scale(double) rounds where
// NQRect truncates, and union takes the zero rectangle as the point it is.

#ifndef NQ_GEOMETRY_INTERNAL_RECT_H
#define NQ_GEOMETRY_INTERNAL_RECT_H

#include "nq/geometry/rect.h"

class NQ_EXPORT NQInternalRect : public NQRectOperations<NQInternalRect> {
 public:
  NQInternalRect() = default;  // 40 by 40 about the origin
  // A negative extent is taken as 0.
  NQInternalRect(nqLong width, nqLong height)
      : NQInternalRect(NQPoint(), width, height) {}
  NQInternalRect(const NQPoint& center, nqLong width, nqLong height)
      : x_(center.x()),
        y_(center.y()),
        width_(std::max<nqLong>(width, 0)),
        height_(std::max<nqLong>(height, 0)) {}
  NQInternalRect(const NQPoint& center, const NQSize& size)
      : NQInternalRect(center, size.width(), size.height()) {}
  NQInternalRect(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
    setCorners(x1, y1, x2, y2);
  }
  NQInternalRect(const NQPoint& a, const NQPoint& b)
      : NQInternalRect(a.x(), a.y(), b.x(), b.y()) {}
  NQInternalRect(const NQRect& r)  // NOLINT: the same box
      : NQInternalRect(r.left(), r.top(), r.right(), r.bottom()) {}

  nqLong left() const { return nqDifference(x_, nqHalf(width_)); }
  nqLong right() const { return nqSum(nqSum(x_, nqHalf(width_)), width_ % 2); }
  nqLong bottom() const { return nqDifference(y_, nqHalf(height_)); }
  nqLong top() const { return nqSum(nqSum(y_, nqHalf(height_)), height_ % 2); }
  NQEdges edges() const { return {left(), top(), right(), bottom()}; }
  nqLong width() const { return width_; }
  nqLong height() const { return height_; }
  nqLong x() const { return x_; }
  nqLong y() const { return y_; }

  friend bool operator==(const NQInternalRect& a, const NQInternalRect& b) {
    return a.x_ == b.x_ && a.y_ == b.y_ && a.width_ == b.width_ && a.height_ == b.height_;
  }

  // Both keep the centre, ignore a negative value and return the extent.
  nqLong width(nqLong value) { return value < 0 ? width_ : width_ = value; }
  nqLong height(nqLong value) { return value < 0 ? height_ : height_ = value; }
  nqLong x(nqLong value) { return x_ = value; }
  nqLong y(nqLong value) { return y_ = value; }
  using NQRectOperations::move;
  void move(nqLong dx, nqLong dy) {
    x_ = nqSum(x_, dx);
    y_ = nqSum(y_, dy);
  }
  // Any two opposite corners.
  void setCorners(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
    setLeftRight(std::min(x1, x2), std::max(x1, x2));
    setBottomTop(std::min(y1, y2), std::max(y1, y2));
  }
  // A pair of bad order is ignored.
  void setLeftRight(nqLong left, nqLong right) {
    if (left <= right) place(left, right, x_, width_);
  }
  void setBottomTop(nqLong bottom, nqLong top) {
    if (bottom <= top) place(bottom, top, y_, height_);
  }
  using NQRectOperations::scale;
  // Rounds the extents.
  void scale(double factor) {
    resize(nqRound(width_ * factor), nqRound(height_ * factor));
  }
  // Becomes the smallest rectangle around both.
  const NQInternalRect& operator|=(const NQInternalRect& o) {
    updateBounds(&o);
    return *this;
  }

 private:
  static void place(nqLong low, nqLong high, nqLong& center, nqLong& extent) {
    extent = nqDifference(high, low);
    center = nqSum(low, nqHalf(extent));
  }

  nqLong x_ = 0;
  nqLong y_ = 0;
  nqLong width_ = 40;
  nqLong height_ = 40;
};

#endif  // NQ_GEOMETRY_INTERNAL_RECT_H

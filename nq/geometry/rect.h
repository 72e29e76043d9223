// rect.h -- NQRect, the axis-aligned rectangle: left, top, right and bottom.
//
// x grows to the right and y upward, so top is the larger y. All four edges
// belong to the rectangle: its width is right - left, without a + 1. Corners
// are put in order as they come in, and negative extents are ignored; only the
// constructors from sizes, given a negative one, and nothing() leave edges in bad
// order.
//
// The centre is rounded down. An extent is placed about its centre with an odd
// unit on the right and top.
//
// The rectangle whose edges are all 0 is the zero rectangle: the result of
// intersecting disjoint rectangles, and the empty operand of union. Any other
// rectangle without area is an ordinary one. Bounds are gathered from nothing():
//
//   NQRect bounds = NQRect::nothing();
//   for (const NQPoint& point : points) bounds.updateBounds(&point);
//
// Questions, clipping, routing and most changes: see rect_operations.h.

#ifndef NQ_GEOMETRY_RECT_H
#define NQ_GEOMETRY_RECT_H

#include "nq/geometry/rect_operations.h"

class NQInternalRect;

class NQ_EXPORT NQ_VIEWED_AS_RECORD NQRect : public NQObject,
                                             public NQRectOperations<NQRect> {
  NQ_COPY_VALUE(NQRect, NQObject)

 public:
  NQRect() = default;  // 40 by 40 about the origin
  NQRect(nqLong width, nqLong height) : NQRect(NQPoint(), width, height) {}
  NQRect(nqLong x1, nqLong y1, nqLong x2, nqLong y2)
      : edges_(NQEdges::ofCorners(x1, y1, x2, y2)) {}
  NQRect(const NQPoint& a, const NQPoint& b) : NQRect(a.x(), a.y(), b.x(), b.y()) {}
  NQRect(const NQPoint& center, nqLong width, nqLong height);
  NQRect(const NQPoint& center, const NQSize& size)
      : NQRect(center, size.width(), size.height()) {}
  NQRect(const tagRECT* record);         // NOLINT: null is the zero rectangle
  NQRect(const NQInternalRect& source);  // NOLINT: the same box
  NQRect& operator=(const NQInternalRect& source);

  // The rectangle of no points, to begin with where bounds are gathered:
  // updateBounds() and |= make it what they are given first. It has no extent and no
  // place: what width() and its like answer means nothing.
  static NQRect nothing();

  nqLong left() const { return edges_.left; }
  nqLong top() const { return edges_.top; }
  nqLong right() const { return edges_.right; }
  nqLong bottom() const { return edges_.bottom; }
  const NQEdges& edges() const { return edges_; }
  nqLong width() const { return edges_.width(); }
  nqLong height() const { return edges_.height(); }
  nqLong x() const { return nqMiddle(edges_.left, edges_.right); }
  nqLong y() const { return nqMiddle(edges_.bottom, edges_.top); }

  friend bool operator==(const NQRect& a, const NQRect& b) {
    return a.edges_ == b.edges_;
  }

  // Both keep the centre, ignore a negative value and return the extent.
  nqLong width(nqLong value);
  nqLong height(nqLong value);
  // Both keep the extent.
  nqLong x(nqLong value);
  nqLong y(nqLong value);
  using NQRectOperations::move;
  void move(nqLong dx, nqLong dy);
  // Any two opposite corners.
  void setCorners(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
    edges_ = NQEdges::ofCorners(x1, y1, x2, y2);
  }
  // A pair of bad order is ignored.
  void setLeftRight(nqLong left, nqLong right);
  void setBottomTop(nqLong bottom, nqLong top);
  using NQRectOperations::scale;
  // Truncates the extents, where tuples round.
  void scale(double factor) {
    resize(nqTruncate(width() * factor), nqTruncate(height() * factor));
  }
  // Becomes the smallest rectangle around both; the zero rectangle is empty.
  const NQRect& operator|=(const NQRect& o);

  // The edges themselves, seen as the platform's record.
  operator const tagRECT*() const { return reinterpret_cast<const tagRECT*>(&edges_); }

 private:
  void copyFields(const NQRect& source) { edges_ = source.edges_; }

  NQEdges edges_ = {-20, 20, 20, -20};
};

NQ_COPY_VALUE_INLINE(NQRect)

// Below the class: mingw-w64 wants the copying constructor to come first.
inline NQRect NQRect::nothing() {
  NQRect rect;
  rect.edges_ = NQEdges::nothing();
  return rect;
}

#endif  // NQ_GEOMETRY_RECT_H

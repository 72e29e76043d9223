// shape.h -- NQShape, the outline of a node apart from its place and size.
//
// A shape is a rectangle, an ellipse or a polygon. Every geometric question is
// asked with the centre and the size of a node, so that one shape serves any
// number of nodes; the rectangle is then the node's box, the ellipse the one
// inscribed in it. The outline itself belongs to the shape.
//
// Corners of polygons and borders of the text rectangle are given in thousandths
// of the half extent: -1000 is the left or bottom edge of the box, 0 its centre,
// 1000 the right or top edge; values beyond them are allowed. An odd extent has
// its extra unit on the right and top. A corner becomes a whole coordinate,
// truncated towards the centre, before anything is asked about it.
//
// A polygon is closed by the edge from its last corner to its first. Where edges
// cross each other, points are inside that an odd number of edges encloses.
// Corners may be repeated and collinear. Whether a point is within a polygon, and
// whether it is on its boundary, is decided exactly, in whole numbers, anywhere
// in the range of coordinates. For ellipses, which are computed in double, that
// holds for extents up to 2^12.
// Points of the outline that are computed are rounded by floor(v + 0.5).
//
// Questions about a polygon read its corners, each time, and keep nothing: two
// threads may ask one shape at the same time.
//
// Extents should not be negative: answers have no meaning then, but are safe. A
// shape set to a polygon type without corners has no outline and no inside.

#ifndef NQ_GEOMETRY_SHAPE_H
#define NQ_GEOMETRY_SHAPE_H

#include <memory>

#include "nq/geometry/rect.h"

class NQPointDList;

// Every other value, too, means a rectangle.
enum NQShapeTypeEnum : int {
  NQShapeRectangle = 0,
  NQShapeEllipse = 1,
  NQShapeConvexPolygon = 2,
  NQShapeNonConvexPolygon = 3,
};

class NQ_EXPORT NQShape : public NQObject {
  NQ_COPY_PROTOCOL(NQShape)

 public:
  explicit NQShape(NQShapeTypeEnum type = NQShapeRectangle);
  // As pPointList(points).
  explicit NQShape(NQPointDList* points);
  // O(1): the corners change hands. The source becomes a default shape.
  NQShape(NQShape&& source) noexcept;
  NQShape& operator=(NQShape&& source) noexcept;

  // The low 8 bits of what was set.
  NQShapeTypeEnum shapeType() const { return static_cast<NQShapeTypeEnum>(type_); }
  // The corners in order; null for shapes other than polygons. They stay the
  // shape's, valid until its type or its corners are set.
  const NQPointDList* pPointList() const { return points_.get(); }
  // In thousandths, as the corners.
  int textRectLeftBorder() const { return left_; }
  int textRectRightBorder() const { return right_; }
  int textRectTopBorder() const { return top_; }
  int textRectBottomBorder() const { return bottom_; }

  // Whether the corners turn one way only and go round once. A polygon without
  // area is not convex, nor is a shape without corners. O(corners).
  int isConvexPolygon() const;
  // Whether types, text borders and, for polygons, corners are equal, the
  // corners in the same order. 0 for null.
  int compare(const NQShape* other) const;

  // Questions about the point (px, py) and the node with the centre (cx, cy),
  // width w and height h. within() holds where withinInterior() or onBoundary()
  // does. All of an ellipse or polygon that has no width or no height is
  // boundary.
  int within(nqLong px, nqLong py, nqLong cx, nqLong cy, nqLong w, nqLong h) const {
    return place(px, py, cx, cy, w, h) != kOutside;
  }
  int withinInterior(nqLong px, nqLong py, nqLong cx, nqLong cy, nqLong w,
                     nqLong h) const {
    return place(px, py, cx, cy, w, h) == kInside;
  }
  int onBoundary(nqLong px, nqLong py, nqLong cx, nqLong cy, nqLong w, nqLong h) const {
    return place(px, py, cx, cy, w, h) == kOnBoundary;
  }
  int within(const NQPoint& p, const NQPoint& center, const NQSize& size) const {
    return within(p.x(), p.y(), center.x(), center.y(), size.width(), size.height());
  }
  int withinInterior(const NQPoint& p, const NQPoint& center, const NQSize& size) const {
    return withinInterior(p.x(), p.y(), center.x(), center.y(), size.width(),
                          size.height());
  }
  int onBoundary(const NQPoint& p, const NQPoint& center, const NQSize& size) const {
    return onBoundary(p.x(), p.y(), center.x(), center.y(), size.width(), size.height());
  }

  // Whether the segment from (x, y) to (x2, y2) meets the outline; then (x, y)
  // becomes the meeting point nearest to (x2, y2), else it stays. Edges are met
  // as segmentsIntersect() in point.h tells. Equal ends meet no ellipse.
  int intersectsSegment(nqLong& x, nqLong& y, nqLong x2, nqLong y2, nqLong cx, nqLong cy,
                        nqLong w, nqLong h) const;
  int intersectsSegment(NQPoint& p, const NQPoint& q, const NQPoint& center,
                        const NQSize& size) const;

  // Moves p to the nearest point of the outline, from inside as from outside. 1;
  // 0, with p untouched, where there is no outline. Ties: of a rectangle as
  // NQRect::nearestPoint() breaks them; of an ellipse the bottom or left; of a
  // polygon the first edge.
  int nearestPoint(NQPoint& p, const NQPoint& center, const NQSize& size) const;

  // The text rectangle of a node; the box of the node where no borders were
  // set. A border b lies floor((b / 2000 + 0.5) * extent + 0.5) from the left or
  // bottom edge of the box. The first form finds the box in r.
  void getInnerRect(NQRect& r) const;
  void getCurrentInnerRect(NQRect& r, const NQPoint& center, const NQSize& size) const;
  // The inverse: `bounds` becomes the smallest box whose text rectangle holds
  // `inner`. Its text rectangle begins where `inner` does on the left and at the
  // bottom; it is `inner` itself if it is that of any box. 0, with `bounds`
  // untouched, when the borders leave no room or the box would be larger than
  // 2^31 - 1.
  int fitBoundingRectToInnerRect(NQRect& bounds, const NQRect& inner) const;

  // The length of the diagonal of the largest box about p, with the proportions
  // of `box`, that does not reach beyond the outline. 0 when p is not within, or
  // an extent of `box` is not positive.
  double maxAvailableDiagonalLengthAtShape(const NQPoint& p, const NQSize& box,
                                           const NQPoint& center,
                                           const NQSize& size) const;

  // The angle between the vectors (x1, y1) and (x2, y2) in radians, from 0 to
  // pi, whichever comes first; 0 when one of them is (0, 0).
  static double angleBetweenTwoLines(nqLong x1, nqLong y1, nqLong x2, nqLong y2);

  // The corners are lost, also when a polygon type is set.
  void setShapeType(NQShapeTypeEnum type);
  // Keeps the list and its points, deleting those it had; cells without a point
  // are dropped. With at least 3 points the shape becomes a polygon, convex
  // where isConvexPolygon() says so; with fewer, which are deleted, or null, a
  // rectangle. The answer is the list that the shape has now.
  NQPointDList* pPointList(NQPointDList* points);
  // Sets the text borders to the edges of `thousandths`, each cut to 16 bits.
  void setInnerRect(const NQRect& thousandths);
  // Turns a polygon about the centre of the box, counter-clockwise by 90, 180 or
  // 270 degrees; any other angle, and any other shape, is left alone. The text
  // borders stay.
  void rotate(int degrees);

 protected:
  void init();

 private:
  friend class NQTestPeer;

  enum Place { kOutside, kOnBoundary, kInside };
  struct NQ_EXPORT DeletePoints {
    void operator()(NQPointDList* points) const;
  };

  Place place(nqLong px, nqLong py, nqLong cx, nqLong cy, nqLong w, nqLong h) const;
  bool isPolygon() const {
    return type_ == NQShapeConvexPolygon || type_ == NQShapeNonConvexPolygon;
  }
  bool comparePointList(const NQPointDList* points) const;

  // Makes the shape a polygon with one more corner, which is the answer.
  NQPoint* addPoint(nqLong x, nqLong y);
  void rotatePolygonNinty();
  void rotatePolygonOneEighty();
  void rotatePolygonTwoSeventy();
  // Stored in 16 bits; the answer is what was stored.
  int textRectLeftBorder(int border) { return left_ = static_cast<short>(border); }
  int textRectRightBorder(int border) { return right_ = static_cast<short>(border); }
  int textRectTopBorder(int border) { return top_ = static_cast<short>(border); }
  int textRectBottomBorder(int border) { return bottom_ = static_cast<short>(border); }

  void copyFields(const NQShape& source);

  unsigned char type_ = NQShapeRectangle;
  std::unique_ptr<NQPointDList, DeletePoints> points_;  // the corners; may be null
  short left_ = -1000;
  short right_ = 1000;
  short top_ = 1000;
  short bottom_ = -1000;
};

#endif  // NQ_GEOMETRY_SHAPE_H

// rect_operations.h -- what NQRect and NQInternalRect have in common.
//
// NQRect stores four edges, NQInternalRect a centre and an extent. Everything
// else they offer is stated here, once, as members of a base without data:
// questions are answered by the edges (edges.h), changes are made through the
// few operations in which the two differ. Rect is the rectangle itself, which
// supplies edges(), setCorners(), x(), y(), width(), height() and move().
//
// All four edges belong to the rectangle: questions are closed, and only those
// named "Interior" are open. All truth values are 0 or 1.

#ifndef NQ_GEOMETRY_RECT_OPERATIONS_H
#define NQ_GEOMETRY_RECT_OPERATIONS_H

#include <cmath>
#include <concepts>

#include "nq/geometry/edges.h"

template <class Rect>
class NQRectOperations {
 public:
  // Extents and places. An odd extent has its extra unit right of and above
  // the centre.
  nqLong dimension(NQOrientationEnum orientation) const {
    return orientation == NQVertical ? self().height() : self().width();
  }
  NQSize size() const { return {self().width(), self().height()}; }
  NQPoint center() const { return {self().x(), self().y()}; }
  NQPoint topLeft() const { return {self().left(), self().top()}; }
  NQPoint topRight() const { return {self().right(), self().top()}; }
  NQPoint bottomLeft() const { return {self().left(), self().bottom()}; }
  NQPoint bottomRight() const { return {self().right(), self().bottom()}; }
  nqLong leftHalfWidth() const { return nqHalf(self().width()); }
  nqLong rightHalfWidth() const { return nqUpperHalf(self().width()); }
  nqLong topHalfHeight() const { return nqUpperHalf(self().height()); }
  nqLong bottomHalfHeight() const { return nqHalf(self().height()); }
  nqLong area() const { return size().area(); }
  nqLong diagonal() const { return size().diagonal(); }  // truncated
  // The right, top, left or bottom edge; 0 for any other value.
  nqLong sideCoordinate(NQSideEnum side) const { return edges().sideCoordinate(side); }
  // Whether all four edges are 0.
  int isZero() const { return edges().isZero(); }
  // Whether it is the zero rectangle, NQRect::nothing(), or made with a negative extent.
  int isEmpty() const { return edges().isEmpty(); }

  std::size_t hashValue() const { return edges().hashValue(); }
  std::string asText() const { return edges().asText(); }

  // Points and ranges.
  int within(const NQPoint& p) const { return edges().within(p.x(), p.y()); }
  int withinXRange(const NQPoint& p) const { return edges().withinXRange(p.x()); }
  int withinYRange(const NQPoint& p) const { return edges().withinYRange(p.y()); }
  int withinInterior(const NQPoint& p) const {
    return edges().withinInterior(p.x(), p.y());
  }
  int withinInteriorXRange(const NQPoint& p) const {
    return edges().withinInteriorXRange(p.x());
  }
  int withinInteriorYRange(const NQPoint& p) const {
    return edges().withinInteriorYRange(p.y());
  }
  int onBoundary(const NQPoint& p) const { return edges().onBoundary(p.x(), p.y()); }

  // Whether `o` lies inside this rectangle; edges may coincide. within() asks
  // the same, in spite of its name.
  int encloses(const Rect& o) const { return edges().encloses(o.edges()); }
  int within(const Rect& o) const { return encloses(o); }
  int enclosesXRange(const Rect& o) const { return edges().enclosesXRange(o.edges()); }
  int enclosesYRange(const Rect& o) const { return edges().enclosesYRange(o.edges()); }
  // Whether both points are within.
  int encloses(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const {
    return edges().within(x1, y1) && edges().within(x2, y2);
  }
  // Touching counts.
  int intersectsRect(const Rect& o) const { return edges().intersects(o.edges()); }
  int intersectsRectXRange(const Rect& o) const {
    return edges().intersectsXRange(o.edges());
  }
  int intersectsRectYRange(const Rect& o) const {
    return edges().intersectsYRange(o.edges());
  }
  // The results of &= and |=, as new rectangles.
  Rect calculateIntersection(const Rect& o) const {
    Rect result(self());
    result &= o;
    return result;
  }
  Rect calculateUnion(const Rect& o) const {
    Rect result(self());
    result |= o;
    return result;
  }

  // Clipping: where the boundary is crossed by the line through both points,
  // by the segment between them, or by the ray from the first through the
  // second. The crossings replace the points, the first one first; the result
  // is their number, and coordinates that receive none stay. A corner counts
  // once. Equal points make no line and no ray.
  //
  // A line or segment reports its crossings in the order top, bottom, left,
  // right edge; a ray in the order in which it meets them. A segment or ray
  // that runs along an edge reports the ends of what they have in common.
  int intersectsLine(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const {
    return edges().intersectsLine(x1, y1, x2, y2);
  }
  int intersectsSegment(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const {
    return edges().intersectsSegment(x1, y1, x2, y2);
  }
  int intersectsRay(nqLong& x1, nqLong& y1, nqLong& x2, nqLong& y2) const {
    return edges().intersectsRay(x1, y1, x2, y2);
  }
  int intersectsLine(NQPoint& a, NQPoint& b) const {
    return clip(&NQEdges::intersectsLine, a, b);
  }
  int intersectsSegment(NQPoint& a, NQPoint& b) const {
    return clip(&NQEdges::intersectsSegment, a, b);
  }
  int intersectsRay(NQPoint& a, NQPoint& b) const {
    return clip(&NQEdges::intersectsRay, a, b);
  }

  // Whether line, segment or ray has a point in the rectangle, its inside
  // included.
  int overlapsLine(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const {
    return edges().overlapsLine(x1, y1, x2, y2);
  }
  int overlapsSegment(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const {
    return edges().overlapsSegment(x1, y1, x2, y2);
  }
  int overlapsRay(nqLong x1, nqLong y1, nqLong x2, nqLong y2) const {
    return edges().overlapsRay(x1, y1, x2, y2);
  }
  int overlapsLine(const NQPoint& a, const NQPoint& b) const {
    return edges().overlapsLine(a.x(), a.y(), b.x(), b.y());
  }
  int overlapsSegment(const NQPoint& a, const NQPoint& b) const {
    return edges().overlapsSegment(a.x(), a.y(), b.x(), b.y());
  }
  int overlapsRay(const NQPoint& a, const NQPoint& b) const {
    return edges().overlapsRay(a.x(), a.y(), b.x(), b.y());
  }

  // The side nearest to p. From inside by distance, ties in the order right,
  // top, left, bottom; from beside the rectangle the side that faces p; from a
  // diagonal region the nearer of the two, left or right on a tie.
  NQSideEnum closestSide(const NQPoint& p) const {
    return edges().closestSide(p.x(), p.y());
  }
  // The same by distance alone, wherever p is.
  NQSideEnum closestSideWithin(const NQPoint& p) const {
    return edges().closestSideWithin(p.x(), p.y());
  }
  // Moves p to the nearest point of the boundary; from inside to the nearest
  // side, ties in the order bottom, top, left, right. Always 1.
  int nearestPoint(NQPoint& p) const {
    p = edges().nearestPoint(p);
    return 1;
  }
  // Moves p out of the rectangle, away from q, by whole steps of the vector
  // between them; on a vertical or horizontal way only to the boundary, and to
  // the right edge when p and q are equal.
  void getPointOutsideRect(NQPoint& p, NQPoint q) const {
    p = edges().pointOutside(p, q);
  }
  // Moves p to where the line from q through p leaves the rectangle on the far
  // side. 1; on a common vertical or horizontal line p stays, on purpose. 0
  // when the line has fewer than two crossings: p is then moved to q.
  int pointInOtherSide(NQPoint& p, NQPoint q) const {
    return edges().pointInOtherSide(p, q);
  }
  // The side through which a route to p should leave. Inside it is `direction`
  // itself, read as a side; beside the rectangle the side that faces p; from a
  // diagonal region the one that crosses `direction`.
  NQSideEnum sideForRouting(const NQPoint& p, NQDirectionEnum direction) const {
    return edges().sideForRouting(p, direction);
  }
  // The side that faces `o`. Apart on both axes: left or right when
  // `horizontalFirst` is not 0, else bottom or top. Overlapping: the side beyond
  // which `o` reaches farthest; when one holds the other, the side whose edges
  // are closest. Ties there in the order bottom, left, top, right.
  NQSideEnum sideForRouting(const Rect& o, int horizontalFirst) const {
    return edges().sideForRouting(o.edges(), horizontalFirst);
  }

  // Conversions between positions, offsets from the centre and thousandths of
  // the half extent, truncated; the half extent is the one on the offset's
  // side, and 500 stands for the place in a half extent of 0. Each returns the
  // address of its output.
  NQPerMil* setPerMil(const NQSize& offset, NQPerMil& perMil) const {
    perMil = edges().perMil(offset);
    return &perMil;
  }
  NQPerMil* setPerMil(const NQPoint& p, NQPerMil& perMil) const {
    NQSize offset;
    return setPerMil(*setOffset(p, offset), perMil);
  }
  // Takes the half extent of the side on which `offset` lies on entry.
  NQSize* setOffset(const NQPerMil& perMil, NQSize& offset) const {
    offset = edges().offset(perMil, offset);
    return &offset;
  }
  NQSize* setOffset(const NQPoint& p, NQSize& offset) const {
    offset.resize(nqDifference(p.x(), self().x()), nqDifference(p.y(), self().y()));
    return &offset;
  }

  // Changes of extent keep the centre; each negative extent is ignored.
  nqLong dimension(NQOrientationEnum orientation, nqLong value) {
    return orientation == NQVertical ? self().height(value) : self().width(value);
  }
  void resize(nqLong width, nqLong height) {
    self().width(width);
    self().height(height);
  }
  void resize(const NQSize& size) { resize(size.width(), size.height()); }
  NQSize size(const NQSize& size) {
    resize(size);
    return size;
  }
  void scale(int factor) {
    resize(nqProduct(self().width(), factor), nqProduct(self().height(), factor));
  }
  template <std::integral Integer>
  void scale(Integer factor) {  // its low 32 bits
    scale(static_cast<int>(factor));
  }
  // Adds dx on the left and the right, dy at the top and the bottom; changes
  // nothing at all when an extent would become negative.
  Rect& inflate(nqLong dx, nqLong dy) {
    const nqLong width = nqSum(self().width(), nqProduct(2, dx));
    const nqLong height = nqSum(self().height(), nqProduct(2, dy));
    if (width >= 0 && height >= 0) resize(width, height);
    return self();
  }
  Rect& inflate(const NQSize& by) { return inflate(by.width(), by.height()); }
  Rect inflatedBy(nqLong dx, nqLong dy) const {
    Rect result(self());
    result.inflate(dx, dy);
    return result;
  }
  Rect inflatedBy(const NQSize& by) const { return inflatedBy(by.width(), by.height()); }

  // Changes of place keep the extent.
  NQPoint center(const NQPoint& p) {
    moveTo(p);
    return p;
  }
  void moveTo(nqLong x, nqLong y) {
    self().x(x);
    self().y(y);
  }
  void moveTo(const NQPoint& p) { moveTo(p.x(), p.y()); }
  void move(const NQSize& offset) { self().move(offset.width(), offset.height()); }

  // Changes of edges. set() takes any two opposite corners.
  void set(nqLong left, nqLong top, nqLong right, nqLong bottom) {
    self().setCorners(left, bottom, right, top);
  }
  void setZero() { self().setCorners(0, 0, 0, 0); }
  // Becomes the part common to both; the zero rectangle when they are
  // disjoint.
  const Rect& operator&=(const Rect& o) {
    assign(edges().intersection(o.edges()));
    return self();
  }
  // Grows to hold the argument too; null and NQRect::nothing() change nothing.
  void updateBounds(const Rect* o) {
    if (o == nullptr || o->edges() == NQEdges::nothing()) return;
    assign(edges().bounds(o->edges()));
  }
  void updateBounds(const NQPoint* p) {
    if (p != nullptr) assign(edges().bounds({p->x(), p->y(), p->x(), p->y()}));
  }

 private:
  const Rect& self() const { return static_cast<const Rect&>(*this); }
  Rect& self() { return static_cast<Rect&>(*this); }
  decltype(auto) edges() const { return self().edges(); }
  void assign(const NQEdges& e) { self().setCorners(e.left, e.bottom, e.right, e.top); }

  using Clip = int (NQEdges::*)(nqLong&, nqLong&, nqLong&, nqLong&) const;
  int clip(Clip operation, NQPoint& a, NQPoint& b) const {
    nqLong x1 = a.x(), y1 = a.y(), x2 = b.x(), y2 = b.y();
    const int crossings = (edges().*operation)(x1, y1, x2, y2);
    a.set(x1, y1);
    b.set(x2, y2);
    return crossings;
  }

  friend Rect;
  NQRectOperations() = default;
};

#endif  // NQ_GEOMETRY_RECT_OPERATIONS_H

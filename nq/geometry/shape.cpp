#include "nq/geometry/shape.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <utility>

#include "nq/geometry/outline_internal.h"

using nqdetail::Node;

NQ_COPY_PROTOCOL_IMPL(NQShape)
NQ_COPY_ALIKE_IMPL(NQShape, NQObject)

namespace {

// Where a text border lies in an extent, from the left or bottom edge: the
// rounding of floor((border / 2000 + 0.5) * extent + 0.5), in whole numbers.
nqInt64 borderOffset(int border, nqInt64 extent) {
  const nqInt64 doubled = (border + 1000) * extent + 1000;
  return doubled / 2000 - (doubled % 2000 < 0);
}

// The part of an axis from `low` to `high` that lies between two borders.
void shrink(nqLong& low, nqLong& high, int lowBorder, int highBorder) {
  const nqInt64 extent = nqDifference(high, low);
  const nqLong start = low;
  low = nqSum(start, static_cast<nqLong>(borderOffset(lowBorder, extent)));
  high = nqSum(start, static_cast<nqLong>(borderOffset(highBorder, extent)));
}

// The inverse: the smallest extent of which the borders leave at least the
// given part. False when there is none.
bool grow(nqLong& low, nqLong& high, int lowBorder, int highBorder) {
  if (lowBorder > highBorder) std::swap(lowBorder, highBorder);
  const nqInt64 wanted = nqInt64{high} - low;
  const nqInt64 share = highBorder - lowBorder;
  if (wanted < 0 || (share == 0 && wanted > 0)) return false;
  const auto left = [&](nqInt64 extent) {
    return borderOffset(highBorder, extent) - borderOffset(lowBorder, extent);
  };
  // Rounding moves what is left by less than 1 from share / 2000 of the extent:
  // no smaller extent is enough, and twice 2000 / share larger ones are.
  nqInt64 extent = wanted < 1 ? 0 : (wanted - 1) * 2000 / share;
  while (left(extent) < wanted) ++extent;
  const nqInt64 start = low - borderOffset(lowBorder, extent);
  constexpr nqInt64 kMin = std::numeric_limits<nqLong>::min();
  constexpr nqInt64 kMax = std::numeric_limits<nqLong>::max();
  if (extent > kMax || start < kMin || start + extent > kMax) return false;
  low = static_cast<nqLong>(start);
  high = static_cast<nqLong>(start + extent);
  return true;
}

}  // namespace

void NQShape::DeletePoints::operator()(NQPointDList* points) const {
  points->deleteAllCellsAndPoints();
  delete points;
}

NQShape::NQShape(NQShapeTypeEnum type) : type_(static_cast<unsigned char>(type)) {}

NQShape::NQShape(NQPointDList* points) {
  pPointList(points);
}

NQShape::NQShape(NQShape&& source) noexcept {
  *this = std::move(source);
}

NQShape& NQShape::operator=(NQShape&& source) noexcept {
  if (this == &source) return *this;
  points_ = std::move(source.points_);
  type_ = std::exchange(source.type_, static_cast<unsigned char>(NQShapeRectangle));
  left_ = std::exchange(source.left_, short{-1000});
  right_ = std::exchange(source.right_, short{1000});
  top_ = std::exchange(source.top_, short{1000});
  bottom_ = std::exchange(source.bottom_, short{-1000});
  return *this;
}

void NQShape::init() {}

void NQShape::copyFields(const NQShape& source) {
  type_ = source.type_;
  points_.reset(source.points_ == nullptr ? nullptr : source.points_->cloneObject());
  left_ = source.left_;
  right_ = source.right_;
  top_ = source.top_;
  bottom_ = source.bottom_;
}

// ---- Type and corners

int NQShape::isConvexPolygon() const {
  return points_ != nullptr && nqdetail::isConvex(*points_);
}

int NQShape::compare(const NQShape* other) const {
  return other != nullptr && type_ == other->type_ && left_ == other->left_ &&
         right_ == other->right_ && top_ == other->top_ && bottom_ == other->bottom_ &&
         (!isPolygon() || comparePointList(other->pPointList()));
}

bool NQShape::comparePointList(const NQPointDList* points) const {
  const NQPointDList* const own = pPointList();
  if (own == points) return true;
  if (own == nullptr || points == nullptr || own->length() != points->length()) {
    return false;
  }
  return std::equal(own->begin(), own->end(), points->begin(),
                    [](const NQObject* a, const NQObject* b) {
                      return *static_cast<const NQPoint*>(a) ==
                             *static_cast<const NQPoint*>(b);
                    });
}

void NQShape::setShapeType(NQShapeTypeEnum type) {
  type_ = static_cast<unsigned char>(type);
  points_.reset();
}

NQPointDList* NQShape::pPointList(NQPointDList* points) {
  if (points == nullptr) {
    setShapeType(NQShapeRectangle);
    return nullptr;
  }
  if (points != points_.get()) points_.reset(points);
  while (NQDListCell* const empty = points->searchPoint(nullptr)) {
    points->discardCell(empty);
  }
  if (points->length() < 3) {
    setShapeType(NQShapeRectangle);
    return nullptr;
  }
  type_ = isConvexPolygon() ? NQShapeConvexPolygon : NQShapeNonConvexPolygon;
  return points;
}

NQPoint* NQShape::addPoint(nqLong x, nqLong y) {
  type_ = NQShapeNonConvexPolygon;
  if (points_ == nullptr) points_.reset(new NQPointDList);
  auto* const point = new NQPoint(x, y);
  points_->appendPoint(point);
  if (points_->length() >= 3 && isConvexPolygon()) type_ = NQShapeConvexPolygon;
  return point;
}

void NQShape::rotate(int degrees) {
  if (!isPolygon() || points_ == nullptr) return;
  switch (degrees) {
    case 90:
      return rotatePolygonNinty();
    case 180:
      return rotatePolygonOneEighty();
    case 270:
      return rotatePolygonTwoSeventy();
    default:
      return;
  }
}

void NQShape::rotatePolygonNinty() {
  for (NQPointDListIter iter(points_.get(), NQ_FORWARD); iter; ++iter) {
    NQPoint& p = *iter.pPoint();
    p.set(nqDifference(0, p.y()), p.x());
  }
}

void NQShape::rotatePolygonOneEighty() {
  rotatePolygonNinty();
  rotatePolygonNinty();
}

void NQShape::rotatePolygonTwoSeventy() {
  rotatePolygonOneEighty();
  rotatePolygonNinty();
}

// ---- The outline

NQShape::Place NQShape::place(nqLong px, nqLong py, nqLong cx, nqLong cy, nqLong w,
                              nqLong h) const {
  const auto answer = [](int place) { return static_cast<Place>(place + 1); };
  switch (type_) {
    case NQShapeEllipse:
      return answer(nqdetail::placeInEllipse(Node(cx, cy, w, h), px, py));
    case NQShapeConvexPolygon:
    case NQShapeNonConvexPolygon:
      if (points_ == nullptr) return kOutside;
      return answer(nqdetail::placeInPolygon(Node(cx, cy, w, h), *points_, px, py));
    default: {
      const NQEdges box = Node(cx, cy, w, h).box();
      if (!box.within(px, py)) return kOutside;
      return box.withinInterior(px, py) ? kInside : kOnBoundary;
    }
  }
}

int NQShape::intersectsSegment(nqLong& x, nqLong& y, nqLong x2, nqLong y2, nqLong cx,
                               nqLong cy, nqLong w, nqLong h) const {
  const Node node(cx, cy, w, h);
  switch (type_) {
    case NQShapeEllipse:
      return nqdetail::segmentMeetsEllipse(node, x, y, x2, y2);
    case NQShapeConvexPolygon:
    case NQShapeNonConvexPolygon:
      if (points_ == nullptr) return 0;
      return nqdetail::segmentMeetsPolygon(node, *points_, x, y, x2, y2);
    default:
      return nqdetail::segmentMeetsRect(node, x, y, x2, y2);
  }
}

int NQShape::intersectsSegment(NQPoint& p, const NQPoint& q, const NQPoint& center,
                               const NQSize& size) const {
  nqLong x = p.x(), y = p.y();
  const int met = intersectsSegment(x, y, q.x(), q.y(), center.x(), center.y(),
                                    size.width(), size.height());
  p.set(x, y);
  return met;
}

int NQShape::nearestPoint(NQPoint& p, const NQPoint& center, const NQSize& size) const {
  const Node node(center, size);
  switch (type_) {
    case NQShapeEllipse:
      p = nqdetail::nearestOnEllipse(node, p);
      return 1;
    case NQShapeConvexPolygon:
    case NQShapeNonConvexPolygon:
      if (points_ == nullptr) return 0;
      p = nqdetail::nearestOnPolygon(node, *points_, p);
      return 1;
    default:
      p = node.box().nearestPoint(p);
      return 1;
  }
}

double NQShape::maxAvailableDiagonalLengthAtShape(const NQPoint& p, const NQSize& box,
                                                  const NQPoint& center,
                                                  const NQSize& size) const {
  if (box.width() <= 0 || box.height() <= 0 || !within(p, center, size)) return 0;
  const Node node(center, size);
  const double halfWidth = box.width() / 2.0;
  const double halfHeight = box.height() / 2.0;
  const auto growth = [&] {
    switch (type_) {
      case NQShapeEllipse:
        return nqdetail::growthInEllipse(node, p, halfWidth, halfHeight);
      case NQShapeConvexPolygon:
      case NQShapeNonConvexPolygon:
        return nqdetail::growthInPolygon(node, *points_, p, halfWidth, halfHeight);
      default:
        return nqdetail::growthInRect(node, p, halfWidth, halfHeight);
    }
  };
  return growth() * std::hypot(box.width(), box.height());
}

double NQShape::angleBetweenTwoLines(nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
  const NQDTuple a(x1, y1);
  const NQDTuple b(x2, y2);
  return std::atan2(std::abs(a.x() * b.y() - a.y() * b.x()), a.innerProduct(b));
}

// ---- The text rectangle

void NQShape::getInnerRect(NQRect& r) const {
  NQEdges e = r.edges();
  shrink(e.left, e.right, left_, right_);
  shrink(e.bottom, e.top, bottom_, top_);
  r.setCorners(e.left, e.bottom, e.right, e.top);
}

void NQShape::getCurrentInnerRect(NQRect& r, const NQPoint& center,
                                  const NQSize& size) const {
  r = NQRect(center, size);
  getInnerRect(r);
}

int NQShape::fitBoundingRectToInnerRect(NQRect& bounds, const NQRect& inner) const {
  NQEdges e = inner.edges();
  if (!grow(e.left, e.right, left_, right_) || !grow(e.bottom, e.top, bottom_, top_)) {
    return 0;
  }
  bounds.setCorners(e.left, e.bottom, e.right, e.top);
  return 1;
}

void NQShape::setInnerRect(const NQRect& thousandths) {
  textRectLeftBorder(thousandths.left());
  textRectRightBorder(thousandths.right());
  textRectTopBorder(thousandths.top());
  textRectBottomBorder(thousandths.bottom());
}

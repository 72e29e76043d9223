#include "nq/geometry/rect.h"

#include "nq/geometry/internal_rect.h"

#if defined(_WIN32)
#include <windows.h>
#endif

NQ_COPY_FORWARDED_IMPL(NQRect)

namespace {

// Places an extent about a centre.
void place(nqLong center, nqLong extent, nqLong& low, nqLong& high) {
  low = nqDifference(center, nqHalf(extent));
  high = nqSum(low, extent);
}

}  // namespace

NQRect::NQRect(const NQPoint& center, nqLong width, nqLong height) {
  place(center.x(), width, edges_.left, edges_.right);
  place(center.y(), height, edges_.bottom, edges_.top);
}

NQRect::NQRect(const tagRECT* record) : NQRect(0, 0, 0, 0) {
  if (record == nullptr) return;
  setCorners(record->left, record->bottom, record->right, record->top);
}

NQRect::NQRect(const NQInternalRect& source) {
  *this = source;
}

NQRect& NQRect::operator=(const NQInternalRect& source) {
  const NQEdges e = source.edges();
  setCorners(e.left, e.bottom, e.right, e.top);
  return *this;
}

nqLong NQRect::width(nqLong value) {
  if (value >= 0) place(x(), value, edges_.left, edges_.right);
  return width();
}

nqLong NQRect::height(nqLong value) {
  if (value >= 0) place(y(), value, edges_.bottom, edges_.top);
  return height();
}

nqLong NQRect::x(nqLong value) {
  place(value, width(), edges_.left, edges_.right);
  return value;
}

nqLong NQRect::y(nqLong value) {
  place(value, height(), edges_.bottom, edges_.top);
  return value;
}

void NQRect::move(nqLong dx, nqLong dy) {
  edges_ = {nqSum(edges_.left, dx), nqSum(edges_.top, dy), nqSum(edges_.right, dx),
            nqSum(edges_.bottom, dy)};
}

void NQRect::setLeftRight(nqLong left, nqLong right) {
  if (left > right) return;
  edges_.left = left;
  edges_.right = right;
}

void NQRect::setBottomTop(nqLong bottom, nqLong top) {
  if (bottom > top) return;
  edges_.bottom = bottom;
  edges_.top = top;
}

const NQRect& NQRect::operator|=(const NQRect& o) {
  if (isZero()) {
    *this = o;
  } else if (!o.isZero()) {
    edges_ = edges_.bounds(o.edges_);
  }
  return *this;
}

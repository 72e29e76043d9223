// permil.h -- NQPerMil, a place in a box in thousandths of its half extents.
//
// 0 is the centre, -1000 and 1000 are the edges; values beyond them are
// allowed. NQRect::setPerMil() and NQRect::setOffset() convert to and from
// positions.

#ifndef NQ_GEOMETRY_PERMIL_H
#define NQ_GEOMETRY_PERMIL_H

#include "nq/geometry/size.h"

class NQ_EXPORT NQPerMil : public NQObject {
  NQ_COPY_VALUE(NQPerMil, NQObject)

 public:
  NQPerMil() = default;
  NQPerMil(short x, short y) : x_(x), y_(y) {}

  short x() const { return x_; }
  short y() const { return y_; }

  friend bool operator==(const NQPerMil& a, const NQPerMil& b) {
    return a.x_ == b.x_ && a.y_ == b.y_;
  }
  std::size_t hashValue() const { return nqHashOf(x_, y_); }
  std::string asText() const;  // "(500, -1000)/1000"

  short x(short value) { return x_ = value; }
  short y(short value) { return y_ = value; }
  void resize(short x, short y) {
    x_ = x;
    y_ = y;
  }
  // Takes the low 16 bits of width and height.
  void resize(const NQSize& size) {
    resize(static_cast<short>(size.width()), static_cast<short>(size.height()));
  }

 private:
  void copyFields(const NQPerMil& source) { resize(source.x_, source.y_); }

  short x_ = 0;
  short y_ = 0;
};

NQ_COPY_VALUE_INLINE(NQPerMil)

#endif  // NQ_GEOMETRY_PERMIL_H

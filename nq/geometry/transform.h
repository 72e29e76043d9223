// transform.h -- NQTransform, the mapping between two coordinate systems.
//
// A source (world) and a target (device) system have an origin and an extent
// on each axis; the axes are independent of each other. A coordinate v goes to
//
//   (v - source origin) * target extent / source extent + target origin
//
// and back by the same rule with the systems exchanged. An extent of 0 in the
// system that a coordinate comes from gives 0, not the origin. The default is
// the identity.
//
// Integer results are rounded by floor(v + 0.5). Output arguments may be the
// input itself.

#ifndef NQ_GEOMETRY_TRANSFORM_H
#define NQ_GEOMETRY_TRANSFORM_H

#include <concepts>

#include "nq/geometry/rect.h"

class NQ_EXPORT NQTransform : public NQObject {
  NQ_COPY_VALUE(NQTransform, NQObject)

 public:
  NQTransform() = default;

  double sourceOriginX() const { return x_.sourceOrigin; }
  double sourceOriginY() const { return y_.sourceOrigin; }
  double targetOriginX() const { return x_.targetOrigin; }
  double targetOriginY() const { return y_.targetOrigin; }
  double sourceExtentX() const { return x_.sourceExtent; }
  double sourceExtentY() const { return y_.sourceExtent; }
  double targetExtentX() const { return x_.targetExtent; }
  double targetExtentY() const { return y_.targetExtent; }

  double sourceOriginX(double value) { return x_.sourceOrigin = value; }
  double sourceOriginY(double value) { return y_.sourceOrigin = value; }
  double targetOriginX(double value) { return x_.targetOrigin = value; }
  double targetOriginY(double value) { return y_.targetOrigin = value; }
  double sourceExtentX(double value) { return x_.sourceExtent = value; }
  double sourceExtentY(double value) { return y_.sourceExtent = value; }
  double targetExtentX(double value) { return x_.targetExtent = value; }
  double targetExtentY(double value) { return y_.targetExtent = value; }

  double transformX(double x) const { return x_.forward(x); }
  double transformY(double y) const { return y_.forward(y); }
  double inverseTransformX(double x) const { return x_.backward(x); }
  double inverseTransformY(double y) const { return y_.backward(y); }
  nqLong transformX(int x) const { return nqRound(x_.forward(x)); }
  nqLong transformY(int y) const { return nqRound(y_.forward(y)); }
  nqLong inverseTransformX(int x) const { return nqRound(x_.backward(x)); }
  nqLong inverseTransformY(int y) const { return nqRound(y_.backward(y)); }
  // Other integers are taken in 32 bits.
  template <std::integral Integer>
  nqLong transformX(Integer x) const {
    return transformX(static_cast<int>(x));
  }
  template <std::integral Integer>
  nqLong transformY(Integer y) const {
    return transformY(static_cast<int>(y));
  }
  template <std::integral Integer>
  nqLong inverseTransformX(Integer x) const {
    return inverseTransformX(static_cast<int>(x));
  }
  template <std::integral Integer>
  nqLong inverseTransformY(Integer y) const {
    return inverseTransformY(static_cast<int>(y));
  }

  void transformPoint(const NQDTuple& from, NQDTuple& to) const;
  void transformPoint(const NQPoint& from, NQPoint& to) const;
  void inverseTransformPoint(const NQDTuple& from, NQDTuple& to) const;
  void inverseTransformPoint(const NQPoint& from, NQPoint& to) const;
  // A size is the way from 0; both ends are rounded before the subtraction.
  void transformSize(const NQDTuple& from, NQDTuple& to) const;
  void transformSize(const NQSize& from, NQSize& to) const;
  void inverseTransformSize(const NQDTuple& from, NQDTuple& to) const;
  void inverseTransformSize(const NQSize& from, NQSize& to) const;
  // The edges are put in order, so that a mirrored rectangle is a valid one.
  void transformRect(const NQRect& from, NQRect& to) const;
  void inverseTransformRect(const NQRect& from, NQRect& to) const;

  friend bool operator==(const NQTransform& a, const NQTransform& b) {
    return a.x_ == b.x_ && a.y_ == b.y_;
  }
  std::size_t hashValue() const { return nqHashOf(x_.hashValue(), y_.hashValue()); }
  // "x: 0 + 1 to 5 + 2, y: 0 + 1 to 200 + -1": of each axis origin and extent of the
  // source and of the target.
  std::string asText() const;

  // Whether on each axis one of the two extents is exactly 1.
  int hasNormalizedExt() const;

  // Widens the source extent of the axis with the larger scale so that both
  // axes have the smaller one: the whole source range still fits. Changes
  // nothing when a target extent is 0; the widened extent is 0 where the other
  // axis has a negative target extent.
  void adjustExtentToPreserveAspectRatio();
  // Makes the smaller extent of each axis 1 and keeps their ratio; an extent
  // of 0 counts as 1.
  void normalizeExt();

 private:
  struct Axis {
    double sourceOrigin = 0;
    double targetOrigin = 0;
    double sourceExtent = 1;
    double targetExtent = 1;

    double forward(double v) const {
      if (sourceExtent == 0) return 0;
      return (v - sourceOrigin) * targetExtent / sourceExtent + targetOrigin;
    }
    double backward(double v) const {
      if (targetExtent == 0) return 0;
      return (v - targetOrigin) * sourceExtent / targetExtent + sourceOrigin;
    }
    void normalize();

    bool operator==(const Axis&) const = default;
    std::size_t hashValue() const {
      return nqHashOf(sourceOrigin, targetOrigin, sourceExtent, targetExtent);
    }
    std::string asText() const;
  };

  void copyFields(const NQTransform& source) {
    x_ = source.x_;
    y_ = source.y_;
  }

  Axis x_;
  Axis y_;
};

NQ_COPY_VALUE_INLINE(NQTransform)

#endif  // NQ_GEOMETRY_TRANSFORM_H

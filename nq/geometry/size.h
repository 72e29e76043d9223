// size.h -- NQSize, an extent: width and height.
//
// The width is the tuple's x, the height its y: other names for the same two
// fields. Nothing keeps them from being negative; rectangles ignore negative
// extents where they take them over.

#ifndef NQ_GEOMETRY_SIZE_H
#define NQ_GEOMETRY_SIZE_H

#include "nq/geometry/tuple.h"

class NQ_EXPORT NQ_VIEWED_AS_RECORD NQSize : public NQTuple {
  NQ_COPY_VALUE(NQSize, NQTuple)

 public:
  NQSize() = default;
  NQSize(nqLong width, nqLong height) : NQTuple(width, height) {}
  NQSize(tagSIZE record);  // NOLINT: the same pair

  // What an NQSize takes in memory, in bytes.
  virtual nqLong sizeOf() const;

  nqLong width() const { return x(); }
  nqLong height() const { return y(); }
  nqLong area() const { return product(); }
  nqLong diagonal() const { return norm(); }
  nqLong magnitude() const { return norm(); }
  std::string asText() const;  // "30 x 40"

  nqLong width(nqLong value) { return x(value); }
  nqLong height(nqLong value) { return y(value); }
  void resize(nqLong width, nqLong height) { set(width, height); }
  void resize(const NQSize& size) { set(size.x(), size.y()); }

  // The pair itself, seen as the platform's record.
  operator tagSIZE&() { return record<tagSIZE>(); }
  operator const tagSIZE&() const { return record<tagSIZE>(); }

 private:
  void copyFields(const NQSize&) {}
};

NQ_COPY_VALUE_INLINE(NQSize)

inline NQDTuple::operator NQSize() const {
  return {nqRound(x_), nqRound(y_)};
}

#endif  // NQ_GEOMETRY_SIZE_H

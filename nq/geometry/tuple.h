// tuple.h -- pairs of coordinates: NQTuple of integers, NQDTuple of doubles.
//
// NQTuple is the base of points (point.h) and sizes (size.h); NQDTuple serves
// where intermediate results must not be rounded. Both are plain values of
// two coordinates that own nothing: cheap to create on the stack and to pass
// by value, and objects all the same, which lists can hold.
//
// Integer operations wrap around at 32 bits. Doubles become coordinates by
// floor(v + 0.5); only lengths are truncated.

#ifndef NQ_GEOMETRY_TUPLE_H
#define NQ_GEOMETRY_TUPLE_H

#include <cmath>
#include <concepts>

#include "nq/core/copy_protocol.h"
#include "nq/core/value.h"
#include "nq/geometry/rounding.h"
#include "nq/platform/records.h"

class NQDTuple;
class NQPoint;
class NQSize;

class NQ_EXPORT NQ_VIEWED_AS_RECORD NQTuple : public NQObject {
  NQ_COPY_VALUE(NQTuple, NQObject)

 public:
  NQTuple() = default;
  NQTuple(nqLong x, nqLong y) : x_(x), y_(y) {}
  NQTuple(const NQDTuple& source);             // NOLINT: rounds
  NQTuple& operator=(const NQDTuple& source);  // rounds

  nqLong x() const { return x_; }
  nqLong y() const { return y_; }

  nqLong innerProduct(const NQTuple& other) const {
    return nqSum(nqProduct(x_, other.x_), nqProduct(y_, other.y_));
  }
  nqLong normSquare() const { return innerProduct(*this); }
  // The length, computed in double and truncated.
  nqLong norm() const {
    const double x = x_;
    const double y = y_;
    return nqTruncate(std::sqrt(x * x + y * y));
  }
  nqLong product() const { return nqProduct(x_, y_); }
  int isZero() const { return x_ == 0 && y_ == 0; }

  friend bool operator==(const NQTuple& a, const NQTuple& b) {
    return a.x_ == b.x_ && a.y_ == b.y_;
  }
  std::size_t hashValue() const { return nqHashOf(x_, y_); }
  std::string asText() const;  // "(3, -4)"

  nqLong x(nqLong value) { return x_ = value; }
  nqLong y(nqLong value) { return y_ = value; }
  void set(nqLong x, nqLong y) {
    x_ = x;
    y_ = y;
  }
  void setZero() { set(0, 0); }
  void add(nqLong dx, nqLong dy) { set(nqSum(x_, dx), nqSum(y_, dy)); }
  const NQTuple& operator+=(const NQTuple& other) {
    add(other.x_, other.y_);
    return *this;
  }
  const NQTuple& operator-=(const NQTuple& other) {
    set(nqDifference(x_, other.x_), nqDifference(y_, other.y_));
    return *this;
  }
  void scale(int factor) { set(nqProduct(x_, factor), nqProduct(y_, factor)); }
  template <std::integral Integer>
  void scale(Integer factor) {  // its low 32 bits
    scale(static_cast<int>(factor));
  }
  void scale(double factor) { set(nqRound(x_ * factor), nqRound(y_ * factor)); }
  const NQTuple& operator*=(double factor) {
    scale(factor);
    return *this;
  }

 protected:
  // The pair as the platform's record of two coordinates.
  template <class Record>
  Record& record() {
    return reinterpret_cast<Record&>(x_);
  }
  template <class Record>
  const Record& record() const {
    return reinterpret_cast<const Record&>(x_);
  }

 private:
  void copyFields(const NQTuple& source) { set(source.x_, source.y_); }

  nqLong x_ = 0;  // next to y_, in the order of the platform's records
  nqLong y_ = 0;
};

class NQ_EXPORT NQDTuple : public NQObject {
  NQ_COPY_VALUE(NQDTuple, NQObject)

 public:
  NQDTuple() = default;
  NQDTuple(double x, double y) : x_(x), y_(y) {}
  NQDTuple(const NQTuple& source) : x_(source.x()), y_(source.y()) {}  // NOLINT: exact
  NQDTuple& operator=(const NQTuple& source) {
    set(source.x(), source.y());
    return *this;
  }

  double x() const { return x_; }
  double y() const { return y_; }

  double innerProduct(const NQDTuple& other) const {
    return x_ * other.x_ + y_ * other.y_;
  }
  double normSquare() const { return innerProduct(*this); }
  double norm() const { return std::sqrt(normSquare()); }
  double product() const { return x_ * y_; }
  int isZero() const { return x_ == 0.0 && y_ == 0.0; }

  // Rounded.
  explicit operator NQPoint() const;
  explicit operator NQSize() const;

  friend bool operator==(const NQDTuple& a, const NQDTuple& b) {
    return a.x_ == b.x_ && a.y_ == b.y_;
  }
  std::size_t hashValue() const { return nqHashOf(x_, y_); }
  std::string asText() const;  // "(1.5, -4)"

  double x(double value) { return x_ = value; }
  double y(double value) { return y_ = value; }
  void set(double x, double y) {
    x_ = x;
    y_ = y;
  }
  void setZero() { set(0, 0); }
  void add(double dx, double dy) { set(x_ + dx, y_ + dy); }
  const NQDTuple& operator+=(const NQDTuple& other) {
    add(other.x_, other.y_);
    return *this;
  }
  const NQDTuple& operator-=(const NQDTuple& other) {
    set(x_ - other.x_, y_ - other.y_);
    return *this;
  }
  void scale(double factor) { set(x_ * factor, y_ * factor); }
  const NQDTuple& operator*=(double factor) {
    scale(factor);
    return *this;
  }

 private:
  void copyFields(const NQDTuple& source) { set(source.x_, source.y_); }

  double x_ = 0;
  double y_ = 0;
};

NQ_COPY_VALUE_INLINE(NQTuple)
NQ_COPY_VALUE_INLINE(NQDTuple)

inline NQTuple::NQTuple(const NQDTuple& source)
    : x_(nqRound(source.x())), y_(nqRound(source.y())) {}

inline NQTuple& NQTuple::operator=(const NQDTuple& source) {
  set(nqRound(source.x()), nqRound(source.y()));
  return *this;
}

#endif  // NQ_GEOMETRY_TUPLE_H

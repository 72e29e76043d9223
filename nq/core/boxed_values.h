// boxed_values.h -- numbers as objects, so that containers can hold them.
//
// Both kinds of copy copy the value. Boxes compare, hash and print as their values do
// (value.h).

#ifndef NQ_CORE_BOXED_VALUES_H
#define NQ_CORE_BOXED_VALUES_H

#include <compare>
#include <string>

#include "nq/core/copy_protocol.h"
#include "nq/core/value.h"

class NQ_EXPORT NQInt : public NQObject {
  NQ_COPY_PROTOCOL(NQInt)

 public:
  explicit NQInt(int value = 0) : value_(value) {}

  int value() const { return value_; }
  int value(int value) { return value_ = value; }

  friend bool operator==(const NQInt& a, const NQInt& b) { return a.value_ == b.value_; }
  friend auto operator<=>(const NQInt& a, const NQInt& b) {
    return a.value_ <=> b.value_;
  }
  std::size_t hashValue() const { return nqHashOf(value_); }
  std::string asText() const { return std::to_string(value_); }

 protected:
  void init() { value_ = 0; }

 private:
  void copyFields(const NQInt& source) { value_ = source.value_; }

  int value_;
};

class NQ_EXPORT NQLong : public NQObject {
  NQ_COPY_PROTOCOL(NQLong)

 public:
  explicit NQLong(nqLong value = 0) : value_(value) {}

  nqLong value() const { return value_; }
  nqLong value(nqLong value) { return value_ = value; }

  friend bool operator==(const NQLong& a, const NQLong& b) {
    return a.value_ == b.value_;
  }
  friend auto operator<=>(const NQLong& a, const NQLong& b) {
    return a.value_ <=> b.value_;
  }
  std::size_t hashValue() const { return nqHashOf(value_); }
  std::string asText() const { return std::to_string(value_); }

 protected:
  void init() { value_ = 0; }

 private:
  void copyFields(const NQLong& source) { value_ = source.value_; }

  nqLong value_;
};

class NQ_EXPORT NQDouble : public NQObject {
  NQ_COPY_PROTOCOL(NQDouble)

 public:
  explicit NQDouble(double value = 0.0) : value_(value) {}

  double value() const { return value_; }
  double value(double value) { return value_ = value; }

  friend bool operator==(const NQDouble& a, const NQDouble& b) {
    return a.value_ == b.value_;
  }
  friend auto operator<=>(const NQDouble& a, const NQDouble& b) {
    return a.value_ <=> b.value_;
  }
  std::size_t hashValue() const { return nqHashOf(value_); }
  std::string asText() const { return nqTextOf(value_); }

 protected:
  void init() { value_ = 0.0; }

 private:
  void copyFields(const NQDouble& source) { value_ = source.value_; }

  double value_;
};

#endif  // NQ_CORE_BOXED_VALUES_H

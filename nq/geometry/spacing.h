// spacing.h -- NQSpacing, a margin with a fixed and a proportional part.
//
// The proportional part is in thousandths of the size that the margin is
// applied to. A plain value, not an NQObject.

#ifndef NQ_GEOMETRY_SPACING_H
#define NQ_GEOMETRY_SPACING_H

#include <concepts>

#include "nq/core/value.h"
#include "nq/geometry/rounding.h"
#include "nq/platform/export.h"

class NQ_EXPORT NQSpacing {
 public:
  NQSpacing() = default;
  NQSpacing(nqLong fixed, short proportional)
      : fixed_(fixed), proportional_(proportional) {}
  void copyObject(const NQSpacing& source) { *this = source; }

  nqLong fixed() const { return fixed_; }
  short proportional() const { return proportional_; }
  // The margin of a size; the integer form is truncated.
  double combined(double size) const { return proportional_ / 1000.0 * size + fixed_; }
  nqLong combined(int size) const { return nqTruncate(combined(double(size))); }
  template <std::integral Integer>
  nqLong combined(Integer size) const {  // of its low 32 bits
    return combined(static_cast<int>(size));
  }

  friend bool operator==(const NQSpacing&, const NQSpacing&) = default;
  std::size_t hashValue() const { return nqHashOf(fixed_, proportional_); }
  std::string asText() const;  // "5 + 100/1000"

  nqLong fixed(nqLong value) { return fixed_ = value; }
  short proportional(short value) { return proportional_ = value; }

  // The size of an outer box that has `inner` left inside both margins, whose
  // proportional parts are taken from the outer size and truncated. Where no
  // size leaves exactly `inner`, the smallest that leaves more. 0 where the
  // proportional parts, or the fixed ones, leave nothing; at most the largest
  // coordinate.
  static nqLong calculateOuterSize(const NQSpacing& a, const NQSpacing& b, nqLong inner);

 private:
  nqLong fixed_ = 0;
  short proportional_ = 0;
};

#endif  // NQ_GEOMETRY_SPACING_H

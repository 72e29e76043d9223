// rounding.h -- the arithmetic of coordinates, each rule once.
//
// Coordinates have 32 bits and wrap around: sums, differences and products
// are formed unsigned and converted back, so that they mean the same in the
// library and in the code that includes its headers. A double becomes a
// coordinate by nqRound() or nqTruncate() and in no other way; both clamp to
// the 32-bit range and turn a NaN into 0.

#ifndef NQ_GEOMETRY_ROUNDING_H
#define NQ_GEOMETRY_ROUNDING_H

#include <limits>

#include "nq/platform/types.h"

// Towards zero, the conversion of lengths.
constexpr nqLong nqTruncate(double value) {
  constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
  constexpr nqLong kMax = std::numeric_limits<nqLong>::max();
  if (value >= kMax) return kMax;
  if (value > kMin) return static_cast<nqLong>(value);
  return value <= kMin ? kMin : 0;
}

// floor(value + 0.5), the conversion of coordinates: halves go up, so that
// -2.5 becomes -2 and 2.5 becomes 3.
constexpr nqLong nqRound(double value) {
  const double shifted = value + 0.5;
  const nqLong truncated = nqTruncate(shifted);
  return truncated > shifted
             ? truncated - (truncated > std::numeric_limits<nqLong>::min())
             : truncated;
}

// Half of `value`, towards zero: what lies left of or below the centre of an
// extent. An odd extent has its extra unit on the other side.
constexpr nqLong nqHalf(nqLong value) {
  return value / 2;
}

// Half of `value` with the unit of an odd one added first, towards zero: what
// lies right of or above the centre of an extent.
constexpr nqLong nqUpperHalf(nqLong value) {
  return static_cast<nqLong>((nqInt64{value} + 1) / 2);
}

// The middle of two coordinates, towards minus infinity; never overflows.
constexpr nqLong nqMiddle(nqLong a, nqLong b) {
  return static_cast<nqLong>((nqInt64{a} + b) >> 1);
}

constexpr nqLong nqSum(nqLong a, nqLong b) {
  return static_cast<nqLong>(static_cast<nqULong>(a) + static_cast<nqULong>(b));
}

constexpr nqLong nqDifference(nqLong a, nqLong b) {
  return static_cast<nqLong>(static_cast<nqULong>(a) - static_cast<nqULong>(b));
}

constexpr nqLong nqProduct(nqLong a, nqLong b) {
  return static_cast<nqLong>(static_cast<nqULong>(a) * static_cast<nqULong>(b));
}

// The absolute value; unsigned, so that the smallest coordinate has one too.
constexpr nqULong nqMagnitude(nqLong value) {
  return value < 0 ? nqULong{0} - static_cast<nqULong>(value)
                   : static_cast<nqULong>(value);
}

// Whether all coordinates are at most 2^25 in size: then their differences,
// products of two differences and sums of two such products are exact in
// double as well as in 64 bits.
template <class... Coordinate>
constexpr bool nqIsModest(Coordinate... coordinate) {
  constexpr nqULong kLimit = nqULong{1} << 25;
  return (((static_cast<nqULong>(coordinate) + kLimit) | ...) >> 26) == 0;
}

#endif  // NQ_GEOMETRY_ROUNDING_H

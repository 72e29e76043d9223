#include "nq/containers/numbers.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>

namespace {

constexpr nqLong kPrimes[] = {2,     3,     5,     7,     11,    17,     29,    37,
                              53,    79,    113,   167,   251,   353,    503,   751,
                              1103,  1657,  2503,  3511,  5003,  7507,   10007, 15013,
                              20011, 30029, 40031, 60077, 80077, 120199, 160201};
static_assert(std::size(kPrimes) == 31);

nqULong magnitude(nqLong value) {
  return value < 0 ? 0U - static_cast<nqULong>(value) : static_cast<nqULong>(value);
}

}  // namespace

nqLong nextPrimeNumber(nqLong n) {
  const auto* const next = std::upper_bound(std::begin(kPrimes), std::end(kPrimes), n);
  return next == std::end(kPrimes) ? 0 : *next;
}

nqLong prevPrimeNumber(nqLong n) {
  const auto* const next = std::lower_bound(std::begin(kPrimes), std::end(kPrimes), n);
  return next == std::begin(kPrimes) ? 0 : *std::prev(next);
}

nqLong greatestCommonDivisor(nqLong a, nqLong b) {
  constexpr nqLong kLargest = std::numeric_limits<nqLong>::max();
  const nqULong divisor = std::gcd(magnitude(a), magnitude(b));
  return static_cast<nqLong>(divisor <= nqULong{kLargest} ? divisor : divisor / 2);
}

nqLong maxRandomNumber() {
  return 32767;
}

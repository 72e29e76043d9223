#include "nq/containers/numbers.h"

#include <gtest/gtest.h>

namespace {

constexpr nqLong kSmallest = -2147483647 - 1;
constexpr nqLong kLargest = 2147483647;

TEST(Numbers, PrimesAreThoseOfTheTable) {
  const struct {
    nqLong n;
    nqLong next;
    nqLong prev;
  } kRows[] = {
      {kSmallest, 2, 0},
      {1, 2, 0},
      {2, 3, 0},
      {3, 5, 2},
      {100, 113, 79},
      {113, 167, 79},
      {160200, 160201, 120199},
      {160201, 0, 120199},
      {kLargest, 0, 160201},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(nextPrimeNumber(row.n), row.next) << row.n;
    EXPECT_EQ(prevPrimeNumber(row.n), row.prev) << row.n;
  }
  nqLong count = 0;
  for (nqLong n = 0; (n = nextPrimeNumber(n)) != 0; ++count) {
    for (nqLong factor = 2; factor * factor <= n; ++factor) EXPECT_NE(n % factor, 0) << n;
    const nqLong next = nextPrimeNumber(n);
    EXPECT_EQ(prevPrimeNumber(next == 0 ? kLargest : next), n);
  }
  EXPECT_EQ(count, 31);
  EXPECT_EQ(maxRandomNumber(), 32767);
}

TEST(Numbers, GreatestCommonDivisorIsNeverNegative) {
  const struct {
    nqLong a;
    nqLong b;
    nqLong divisor;
  } kRows[] = {
      {-12, 18, 6},
      {0, -7, 7},
      {0, 0, 0},
      {1, kLargest, 1},
      {46368, -75025, 1},
      {kLargest, -kLargest, kLargest},
      {kSmallest, 48, 16},
      {kSmallest, 0, 1 << 30},
      {kSmallest, kSmallest, 1 << 30},
      {kSmallest, kLargest, 1},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(greatestCommonDivisor(row.a, row.b), row.divisor) << row.a << ", " << row.b;
    EXPECT_EQ(greatestCommonDivisor(row.b, row.a), row.divisor) << row.b << ", " << row.a;
  }
}

}  // namespace

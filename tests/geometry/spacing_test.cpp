#include "nq/geometry/spacing.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

TEST(NQSpacing, CombinesItsPartsAndTruncates) {
  NQSpacing s(5, 100);
  EXPECT_EQ(s.combined(200), 25);
  EXPECT_EQ(s.combined(-200), -15);
  EXPECT_EQ(s.combined(9.0), 5.9);
  EXPECT_EQ(s.combined(-59), 0);  // -0.9
  EXPECT_EQ(NQSpacing(kMax, 1000).combined(kMax), kMax);
  EXPECT_EQ(s.proportional(-7), -7);
  EXPECT_EQ(s.fixed(8), 8);
  NQSpacing copy;
  EXPECT_EQ(copy.fixed() + copy.proportional(), 0);
  copy.copyObject(s);
  EXPECT_EQ(copy.fixed(), 8);
  EXPECT_EQ(copy.proportional(), -7);
}

TEST(NQSpacing, FindsTheOuterSize) {
  const struct {
    NQSpacing a, b;
    nqLong inner, outer;
  } rows[] = {
      {{0, 0}, {0, 0}, 50, 50},       {{0, 0}, {0, 0}, 0, 0},
      {{0, 0}, {0, 0}, 1, 1},         {{3, 0}, {4, 0}, 50, 57},
      {{-30, 0}, {-30, 0}, 50, 0},    {{0, 500}, {0, 500}, 10, 0},
      {{0, 800}, {0, 700}, 10, 0},    {{kMax, 0}, {kMax, 0}, kMax, kMax},
      {{0, 999}, {0, 0}, kMax, kMax}, {{0, 32767}, {0, 32767}, 5, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(NQSpacing::calculateOuterSize(row.a, row.b, row.inner), row.outer);
  }
  // Every result leaves what was asked for, or is the smallest that leaves more.
  const short parts[] = {-32768, -1500, -300, -1, 0, 1, 33, 250, 499, 500, 998};
  for (const short p : parts) {
    for (const short q : parts) {
      const auto left = [&](nqInt64 size) {
        return size - size * p / 1000 - size * q / 1000;
      };
      for (nqLong inner = 1; inner < 40; ++inner) {
        if (p + q >= 1000) continue;
        const nqLong size = NQSpacing::calculateOuterSize({0, p}, {0, q}, inner);
        nqInt64 smallest = 0;
        while (left(smallest) < inner) ++smallest;
        ASSERT_TRUE(left(size) == inner || size == smallest)
            << p << ", " << q << ", " << inner << " gives " << size;
      }
    }
  }
}

}  // namespace

#include "nq/geometry/tuple.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <concepts>
#include <cstring>
#include <iomanip>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <unordered_set>
#include <vector>

#include "nq/core/value_format.h"
#include "nq/geometry/internal_rect.h"
#include "nq/geometry/permil.h"
#include "nq/geometry/spacing.h"
#include "nq/geometry/transform.h"
#include "tests/support/copy_protocol_check.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

constexpr nqLong kMin = std::numeric_limits<nqLong>::min();
constexpr nqLong kMax = std::numeric_limits<nqLong>::max();

TEST(Rounding, CoordinatesRoundHalvesUpAndLengthsTruncate) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    double value;
    nqLong rounded, truncated;
  } rows[] = {
      {2.5, 3, 2},
      {-2.5, -2, -2},
      {-2.51, -3, -2},
      {2.49, 2, 2},
      {-0.5, 0, 0},
      {-0.0, 0, 0},
      {0.49, 0, 0},
      {2147483646.4, kMax - 1, kMax - 1},
      {2147483646.5, kMax, kMax - 1},
      {2147483648.0, kMax, kMax},
      {1e300, kMax, kMax},
      {-2147483647.6, kMin, kMin + 1},
      {-2147483648.0, kMin, kMin},
      {-2147483649.9, kMin, kMin},
      {infinity, kMax, kMax},
      {-infinity, kMin, kMin},
      {nan, 0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(nqRound(row.value), row.rounded) << row.value;
    EXPECT_EQ(nqTruncate(row.value), row.truncated) << row.value;
  }
}

TEST(Rounding, WholeNumbersWrapAndMiddlesDoNotOverflow) {
  EXPECT_EQ(nqSum(kMax, 1), kMin);
  EXPECT_EQ(nqDifference(kMin, 1), kMax);
  EXPECT_EQ(nqProduct(65536, 65536), 0);
  EXPECT_EQ(nqProduct(kMin, -1), kMin);
  EXPECT_EQ(nqMagnitude(kMin), 2147483648u);
  EXPECT_EQ(nqMagnitude(-3), 3u);
  EXPECT_EQ(nqMiddle(-3, 0), -2);
  EXPECT_EQ(nqMiddle(kMax, kMax), kMax);
  EXPECT_EQ(nqMiddle(kMin, kMax), -1);
  EXPECT_EQ(nqUpperHalf(kMax), 1073741824);
  EXPECT_EQ(nqHalf(-5), -2);
}

TEST(NQTuple, ArithmeticRoundsTruncatesAndWraps) {
  EXPECT_EQ(NQTuple(NQDTuple(2.5, -2.5)), NQTuple(3, -2));
  NQTuple t(3, -3);
  t *= 0.5;
  EXPECT_EQ(t, NQTuple(2, -1));
  t = NQDTuple(-7.5, 1e10);
  EXPECT_EQ(t, NQTuple(-7, kMax));
  t.scale(3);
  EXPECT_EQ(t, NQTuple(-21, nqProduct(kMax, 3)));
  t.set(10, -12);
  t += NQTuple(1, 2);
  t -= NQTuple(5, 5);
  t.add(kMax, kMin);
  EXPECT_EQ(t, NQTuple(kMin + 5, kMax - 14));
  EXPECT_EQ(t.x(4), 4);
  EXPECT_EQ(t.y(-5), -5);
  EXPECT_EQ(t.innerProduct(NQTuple(2, 3)), -7);
  EXPECT_EQ(t.product(), -20);
  EXPECT_EQ(t.isZero(), 0);
  t.setZero();
  EXPECT_EQ(t.isZero(), 1);

  EXPECT_EQ(NQTuple(3, 4).norm(), 5);
  EXPECT_EQ(NQTuple(1, 1).norm(), 1);
  EXPECT_EQ(NQTuple(kMin, kMin).norm(), kMax);
  EXPECT_EQ(NQTuple(65536, 1).normSquare(), 1);
}

// Every integer type finds the operation for whole numbers, where there is one for
// doubles beside it.
template <class Integer>
void checkOverloads() {
  SCOPED_TRACE(typeid(Integer).name());
  NQTuple t(3, -3);
  t.scale(Integer{3});
  EXPECT_EQ(t, NQTuple(9, -9));
  NQRect r(6, 10);
  NQInternalRect internal(6, 10);
  r.scale(Integer{3});
  internal.scale(Integer{3});
  EXPECT_EQ(r.size(), NQSize(18, 30));
  EXPECT_EQ(internal.size(), r.size());
  NQTransform half;
  half.targetExtentX(0.5);
  half.sourceExtentY(2);
  EXPECT_EQ(half.transformX(Integer{3}), 2);
  EXPECT_EQ(half.transformY(Integer{3}), 2);
  EXPECT_EQ(half.inverseTransformX(Integer{3}), 6);
  EXPECT_EQ(half.inverseTransformY(Integer{3}), 6);
  EXPECT_EQ(NQSpacing(5, 300).combined(Integer{3}), 5);
  static_assert(std::is_same_v<decltype(half.transformX(Integer{3})), nqLong>);
}

template <class... Integer>
void checkOverloadsOfEach() {
  (checkOverloads<Integer>(), ...);
}

TEST(Overloads, EveryIntegerTypeFindsOne) {
  checkOverloadsOfEach<char, signed char, unsigned char, short, unsigned short, int,
                       unsigned, long, unsigned long, long long, unsigned long long>();
  NQTuple t(1, 2);
  t.scale((1LL << 40) + 5);  // its low 32 bits
  t.scale(NQHorizontal);     // an enumerator is an int
  t.scale(2.0F);
  EXPECT_EQ(t, NQTuple(10, 20));
}

TEST(NQDTuple, ArithmeticIsExact) {
  NQDTuple d(NQTuple(kMin, 7));
  EXPECT_EQ(d, NQDTuple(-2147483648.0, 7));
  d = NQTuple(3, 4);
  EXPECT_EQ(d.norm(), 5.0);
  EXPECT_EQ(d.normSquare(), 25.0);
  d *= 0.5;
  d += NQDTuple(0.25, 0);
  d -= NQDTuple(0, 0.5);
  EXPECT_EQ(d, NQDTuple(1.75, 1.5));
  EXPECT_EQ(d.product(), 2.625);
  EXPECT_EQ(d.innerProduct(NQDTuple(2, -2)), 0.5);
  EXPECT_EQ(NQDTuple(-0.0, 0.0).isZero(), 1);
  EXPECT_EQ(NQDTuple(0, 1e-300).isZero(), 0);
}

TEST(NQSize, NamesTheTupleAndSharesThePlatformsRecord) {
  NQSize size(tagSIZE{30, 40});
  EXPECT_EQ(size.width(), 30);
  EXPECT_EQ(size.diagonal(), 50);
  EXPECT_EQ(size.area(), 1200);
  EXPECT_EQ(size.sizeOf(), static_cast<nqLong>(sizeof(NQSize)));
  tagSIZE& record = size;
  record.cy = -7;
  EXPECT_EQ(size.height(), -7);
  size.resize(NQSize(8, 9));
  EXPECT_EQ(static_cast<const tagSIZE&>(size).cx, 8);
  EXPECT_EQ(record.cy, 9);
}

TEST(NQPerMil, TakesTheLowBitsOfASize) {
  NQPerMil perMil;
  EXPECT_EQ(perMil, NQPerMil(0, 0));
  perMil.resize(NQSize(65535, -1000));
  EXPECT_EQ(perMil, NQPerMil(-1, -1000));
  EXPECT_EQ(perMil.x(5), 5);
  EXPECT_EQ(perMil.y(6), 6);
}

TEST(Values, FollowTheCopyProtocol) {
  const auto check = [](auto sample, auto other) {
    using Value = decltype(sample);
    checkCopyProtocol(
        sample, [&] { return std::make_unique<Value>(other); },
        [](const Value& a, const Value& b) { return a == b; });
  };
  check(NQTuple(1, 2), NQTuple(3, 4));
  check(NQSize(1, 2), NQSize(3, 4));
  check(NQDTuple(1.5, 2.5), NQDTuple(3.5, 4.5));
  check(NQPerMil(1, 2), NQPerMil(3, 4));
}

// What ordinary code asks of a value. Two of one kind, and the text of the first.
template <class Value>
void checkOrdinary(const Value& one, const Value& other, const char* text) {
  static_assert(std::copyable<Value> && std::equality_comparable<Value>);
  std::vector<Value> values = {other, one};
  std::iter_swap(values.begin(), values.begin() + 1);
  EXPECT_TRUE(values[0] == one && values[1] == other && one != other) << text;
  EXPECT_EQ(std::unordered_set<Value>({one, other, one}).size(), 2U) << text;
  std::ostringstream out;
  out << std::setw(60) << std::setfill('.') << one;
  EXPECT_EQ(out.str(), std::string(60 - std::strlen(text), '.') + text);
#if defined(__cpp_lib_format)
  EXPECT_EQ(std::format("{:.>60}", one), out.str());
#endif
}

TEST(Values, CopySwapHashAndPrint) {
  checkOrdinary(NQTuple(1, -2), NQTuple(-2, 1), "(1, -2)");
  checkOrdinary(NQPoint(kMin, kMax), NQPoint(), "(-2147483648, 2147483647)");
  checkOrdinary(NQSize(30, 40), NQSize(40, 30), "30 x 40");
  checkOrdinary(NQDTuple(0.1, -4), NQDTuple(1e300, 2), "(0.1, -4)");
  checkOrdinary(NQPerMil(500, -1000), NQPerMil(), "(500, -1000)/1000");
  checkOrdinary(NQSpacing(5, 100), NQSpacing(100, 5), "5 + 100/1000");
  checkOrdinary(NQRect(1, -2, 3, 4), NQRect(), "(1, -2)-(3, 4)");
  checkOrdinary(NQInternalRect(1, -2, 3, 4), NQInternalRect(), "(1, -2)-(3, 4)");
  NQTransform screen;
  screen.targetOriginY(200);
  screen.targetExtentY(-0.5);
  checkOrdinary(screen, NQTransform(), "x: 0 + 1 to 0 + 1, y: 0 + 1 to 200 + -0.5");
  EXPECT_EQ(std::hash<NQDTuple>()({0.0, 1}), std::hash<NQDTuple>()({-0.0, 1}));

  EXPECT_EQ(static_cast<NQPoint>(NQDTuple(2.5, -2.5)), NQPoint(3, -2));
  EXPECT_EQ(static_cast<NQSize>(NQDTuple(2.5, -2.5)), NQSize(3, -2));
  static_assert(!std::convertible_to<NQDTuple, NQPoint>);
  static_assert(!std::constructible_from<NQPoint, NQSize>);
  std::vector<NQPoint> points = {{kMax, 0}, {1, 5}, {1, -5}, {kMin, 9}};
  std::sort(points.begin(), points.end());
  EXPECT_EQ(points, (std::vector<NQPoint>{{kMin, 9}, {1, -5}, {1, 5}, {kMax, 0}}));
}

// copyObject() leaves the copying to copyAttributes(), which a class derived without
// a copy line may override alone.
template <class Value>
void checkForwards(const Value& source) {
  struct Derived : Value {
    void copyAttributes(const NQObject* from) override {
      ++copies;
      Value::copyAttributes(from);
    }
    int copies = 0;
  } target;
  target.copyObject(&source);
  EXPECT_EQ(target.copies, 1) << typeid(Value).name();
  EXPECT_EQ(target, source) << typeid(Value).name();
}

TEST(Values, CopyObjectsByTheirAttributes) {
  checkForwards(NQTuple(1, 2));
  checkForwards(NQSize(1, 2));
  checkForwards(NQPoint(1, 2));
  checkForwards(NQDTuple(1.5, 2.5));
  checkForwards(NQRect(1, 2, 3, 4));
}

}  // namespace

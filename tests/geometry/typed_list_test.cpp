#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>

#include "nq/geometry/point_list.h"
#include "nq/geometry/rect_list.h"
#include "tests/support/copy_protocol_check.h"

namespace {

template <class List>
std::string text(const List& list) {
  std::string all;
  for (const NQObject* const object : list) {
    const auto* const p = static_cast<const NQPoint*>(object);
    if (!all.empty()) all += " ";
    all += p == nullptr ? "-" : std::to_string(p->x()) + "," + std::to_string(p->y());
  }
  return all;
}

// Both kinds of both elements run through the operations that have the element
// in their name or themselves in their signature.
template <class List, class Other, class Element, class Cell>
struct Kind {
  using L = List;
  using O = Other;
  using E = Element;
  using C = Cell;
};

template <class K>
class TypedList : public testing::Test {};

using Kinds = testing::Types<Kind<NQPointDList, NQPointSList, NQPoint, NQDListCell>,
                             Kind<NQPointSList, NQPointDList, NQPoint, NQSListCell>,
                             Kind<NQRectDList, NQRectSList, NQRect, NQDListCell>,
                             Kind<NQRectSList, NQRectDList, NQRect, NQSListCell>>;
TYPED_TEST_SUITE(TypedList, Kinds, );

// One set of names for both elements, so that each call below compiles only if
// the list offers it under its own.
#define NAMED(P, R)                                     \
  [](auto& list, auto... arguments) {                   \
    if constexpr (requires { list.R(arguments...); }) { \
      return list.R(arguments...);                      \
    } else {                                            \
      return list.P(arguments...);                      \
    }                                                   \
  }

TYPED_TEST(TypedList, ForwardsToTheGeneralList) {
  using List = typename TypeParam::L;
  using Other = typename TypeParam::O;
  using Element = typename TypeParam::E;
  const auto add = NAMED(addPoint, addRect);
  const auto append = NAMED(appendPoint, appendRect);
  const auto prepend = NAMED(prependPoint, prependRect);
  const auto addNew = NAMED(addPointIfNotInList, addRectIfNotInList);
  const auto appendNew = NAMED(appendPointIfNotInList, appendRectIfNotInList);
  const auto prependNew = NAMED(prependPointIfNotInList, prependRectIfNotInList);
  const auto search = NAMED(searchPoint, searchRect);
  const auto at = NAMED(pPointInPosition, pRectInPosition);
  const auto positionOf = NAMED(positionOfPoint, positionOfRect);
  const auto remove = NAMED(searchAndRemovePoint, searchAndRemoveRect);
  const auto deleteAll = NAMED(deleteAllCellsAndPoints, deleteAllCellsAndRects);
  const auto cloneAll = NAMED(copyAllCellsAndPoints, copyAllCellsAndRects);

  Element a, b, c, d;
  List list;
  append(list, &b);
  prepend(list, &a);
  add(list, list.pLastCell(), &d);
  EXPECT_EQ(appendNew(list, &a), list.pFirstCell());
  EXPECT_EQ(prependNew(list, &d), list.pLastCell());
  addNew(list, search(list, &b), &c);
  Element* const order[] = {&a, &b, &c, &d};
  for (nqLong i = 0; i < 4; ++i) {
    EXPECT_EQ(at(list, i + 1), order[i]);
    EXPECT_EQ(positionOf(list, order[i]), i + 1);
  }
  EXPECT_EQ(at(list, 5), nullptr);

  List twin;
  EXPECT_EQ(twin.copyAppendList(&list), 1);
  EXPECT_EQ(list.compare(&twin), 1);
  twin.reverse();
  EXPECT_EQ(list.compare(&twin), 0);
  EXPECT_EQ(list.compareUnordered(&twin), 1);
  EXPECT_EQ(list.appendListIfNotInList(&twin), 1);
  EXPECT_EQ(twin.length(), 4);  // nothing was new
  EXPECT_EQ(list.transferList(nullptr, &list), 0);
  EXPECT_EQ(list.prependList(&twin), 1);
  EXPECT_EQ(list.length(), 8);
  EXPECT_EQ(at(list, 1), &d);
  EXPECT_EQ(
      twin.transferListPart(nullptr, &list, list.pFirstCell(), list.pCellInPosition(4)),
      1);
  List both;
  EXPECT_EQ(both.merge(&twin, &list), 1);
  EXPECT_EQ(at(both, 1), &d);
  EXPECT_EQ(at(both, 2), &a);
  EXPECT_EQ(list.copyTransferListIfNotInList(nullptr, &both), 1);
  EXPECT_EQ(list.length(), 4);

  // The other kind has new cells and the same elements; a general list too.
  Other other(list);
  EXPECT_EQ(at(other, 1), at(list, 1));
  twin = other;
  EXPECT_EQ(twin.compare(&list), 1);
  twin.deleteAllCells();
  EXPECT_EQ(twin.copyAllCells(&other), 1);
  EXPECT_EQ(twin.compare(&list), 1);
  NQDList general;
  EXPECT_EQ(general.copyAllCells(&list), 1);
  EXPECT_EQ(general.pObjectInPosition(1), at(list, 1));
  // Clones, from either kind.
  List clones;
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(round == 0 ? cloneAll(clones, &other) : cloneAll(clones, &list), 1);
    ASSERT_EQ(clones.length(), 4);
    EXPECT_NE(at(clones, 1), at(list, 1));
    EXPECT_TRUE(*at(clones, 1) == *at(list, 1));
  }
  deleteAll(clones);
  EXPECT_EQ(clones.length(), 0);

  delete remove(list, at(list, 1));
  EXPECT_EQ(list.length(), 3);
}

// Of null pointers, since a list does not own the clones that it is given.
TYPED_TEST(TypedList, KeepsTheCopyProtocol) {
  using List = typename TypeParam::L;
  using Element = typename TypeParam::E;
  List sample;
  sample.appendObject(nullptr);
  sample.appendObject(nullptr);
  checkCopyProtocol(
      sample, [] { return std::make_unique<List>(); },
      [](const List& a, const List& b) { return a.length() == b.length(); },
      [](const List&, const List& copy) { return copy.length() == 0; });

  Element element;
  List one, clones;
  one.appendObject(&element);
  clones.appendObject(new Element);
  clones.copyObject(&one);  // deletes what was there
  ASSERT_EQ(clones.length(), 1);
  EXPECT_NE(clones.pObjectInPosition(1), &element);
  clones.deleteAllCellsAndObjects();
}

TEST(TypedListIter, WalksPointsAndRects) {
  NQPoint p(1, 2), q(3, 4);
  NQPointDList points;
  points.appendPoint(&p);
  points.appendPoint(&q);
  const NQPointSList single(points);
  NQPointDListIter back(&points, NQ_BACKWARD);
  EXPECT_EQ(back.pPoint(), &q);
  ++back;
  EXPECT_FALSE(back);
  EXPECT_EQ(back.pPoint(), nullptr);
  back.init(&points, points.pFirstCell());
  EXPECT_EQ(back.pPoint(), &p);
  NQPointSListIter forward(&single);
  EXPECT_EQ((++forward).pObject(), &q);
  forward.init(&single);
  EXPECT_EQ(forward.pPoint(), &p);
  EXPECT_FALSE(NQPointSListIter(nullptr));
  EXPECT_EQ(single.searchPreviousPoint(&p), nullptr);
  EXPECT_EQ(single.searchPreviousPoint(&q), single.pFirstCell());

  NQRect r(1, 2);
  NQRectDList rects;
  rects.appendRect(&r);
  const NQRectSList singleRects(rects);
  EXPECT_EQ(NQRectDListIter(&rects, NQ_FORWARD).pRect(), &r);
  EXPECT_EQ(NQRectSListIter(&singleRects, singleRects.pFirstCell()).pRect(), &r);
}

TEST(NQPointSListSort, OrdersByXThenByY) {
  const nqLong kPlaces[][2] = {{2, 3}, {1, 9}, {2, 0}, {-4, 1}, {2, -5}, {1, 5}};
  NQPointSList list;
  for (const auto& place : kPlaces) list.appendPoint(new NQPoint(place[0], place[1]));
  list.appendPoint(nullptr);
  NQPointSListSort sort;
  EXPECT_EQ(sort.quickSort(&list, 1), 1);
  EXPECT_EQ(text(list), "- -4,1 1,5 1,9 2,-5 2,0 2,3");
  EXPECT_EQ(sort.mergeSort(&list), 0);
  EXPECT_EQ(sort.findLargestElement(&list), list.pLastCell());
  // Far apart, the difference wraps: the smallest coordinate follows.
  list.appendPoint(new NQPoint(INT_MIN, 0));
  EXPECT_TRUE(sort.isSorted(&list));
  list.deleteAllCellsAndPoints();
}

}  // namespace

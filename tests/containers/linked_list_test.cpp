// What holds for both kinds of list.

#include "nq/containers/linked_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <ranges>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/containers/list_text.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/little_memory.h"

namespace {

template <class List>
using CellOf = std::remove_pointer_t<decltype(std::declval<List>().pFirstCell())>;
template <class List>
using OtherKind = std::conditional_t<std::is_same_v<List, NQDList>, NQSList, NQDList>;

template <class List>
class LinkedList : public ::testing::Test {};

struct KindName {
  template <class List>
  static std::string GetName(int) {
    return std::is_same_v<List, NQDList> ? "NQDList" : "NQSList";
  }
};
using BothKinds = ::testing::Types<NQDList, NQSList>;
TYPED_TEST_SUITE(LinkedList, BothKinds, KindName);

TYPED_TEST(LinkedList, InsertsAtBothEndsAndAfterCells) {
  using Cell = CellOf<TypeParam>;
  TypeParam list;
  auto* const b = list.appendObject(object('b'));
  auto* const e = list.appendCell(new Cell(object('e')));
  list.prependObject(object('-'));
  auto* const a = list.prependCell(new Cell(object('a')));
  auto* const c = list.addObject(b, object('c'));
  list.insertCell(c, new Cell(object('d')));
  list.addObject(e, object('f'));
  list.insertCell(nullptr, new Cell(object('x')));
  EXPECT_EQ(text(list), "xa-bcdef");
  EXPECT_EQ(list.insertCell(a, nullptr), nullptr);
  EXPECT_EQ(list.appendCell(nullptr), nullptr);
  EXPECT_EQ(text(list), "xa-bcdef");
}

TYPED_TEST(LinkedList, InsertsOnlyNewObjects) {
  using Cell = CellOf<TypeParam>;
  const auto list = listOf<TypeParam>("aba");
  auto* const first = list->pFirstCell();
  Cell known(object('a'));
  EXPECT_EQ(list->insertCellIfNotInList(nullptr, &known), first);
  EXPECT_EQ(list->appendCellIfNotInList(&known), first);
  EXPECT_EQ(list->prependCellIfNotInList(&known), first);
  EXPECT_EQ(list->appendCellIfNotInList(nullptr), nullptr);
  EXPECT_EQ(list->appendObjectIfNotInList(object('b')), first->pNextCell());
  EXPECT_EQ(text(*list), "aba");

  list->appendCellIfNotInList(new Cell(object('c')));
  list->prependCellIfNotInList(new Cell(object('d')));
  list->insertCellIfNotInList(first, new Cell(object('e')));
  list->addObjectIfNotInList(first, object('-'));
  list->addObjectIfNotInList(first, object('-'));
  list->appendObjectIfNotInList(object('f'));
  list->prependObjectIfNotInList(object('g'));
  EXPECT_EQ(text(*list), "gda-ebacf");
}

TYPED_TEST(LinkedList, FindsCellsObjectsAndPositions) {
  using Cell = CellOf<TypeParam>;
  const auto list = listOf<TypeParam>("ab-b");
  const TypeParam empty;
  const Cell foreign(object('a'));
  auto* const second = list->pFirstCell()->pNextCell();
  EXPECT_EQ(list->searchCell(second), second);
  EXPECT_EQ(list->searchCell(&foreign), nullptr);
  EXPECT_EQ(list->searchCell(nullptr), nullptr);
  EXPECT_EQ(list->searchObject(object('b')), second);
  EXPECT_EQ(list->searchObject(nullptr), second->pNextCell());
  EXPECT_EQ(list->searchObject(object('z')), nullptr);
  EXPECT_EQ(empty.searchObject(nullptr), nullptr);

  const auto largest = std::numeric_limits<nqLong>::max();
  for (const nqLong outside : {-largest - 1, nqLong{-1}, nqLong{0}, nqLong{5}, largest}) {
    EXPECT_EQ(list->pCellInPosition(outside), nullptr) << outside;
    EXPECT_EQ(list->pObjectInPosition(outside), nullptr) << outside;
  }
  EXPECT_EQ(list->pCellInPosition(1), list->pFirstCell());
  EXPECT_EQ(list->pCellInPosition(4), list->pLastCell());
  EXPECT_EQ(list->pObjectInPosition(2), object('b'));
  EXPECT_EQ(list->positionOfCell(list->pLastCell()), 4);
  EXPECT_EQ(list->positionOfObject(object('b')), 2);
  EXPECT_EQ(list->positionOfCell(&foreign), -1);
  EXPECT_EQ(list->positionOfCell(nullptr), -1);
  EXPECT_EQ(list->positionOfObject(object('z')), -1);
  EXPECT_EQ(list->positionOfObject(nullptr), -1);
  EXPECT_EQ(empty.positionOfObject(object('a')), -1);
}

TYPED_TEST(LinkedList, ComparesInOrderAndAsMultisets) {
  const struct {
    const char* a;
    const char* b;
    int ordered;
    int unordered;
  } kRows[] = {
      {"", "", 1, 1},       {"", "a", 0, 0},      {"abb", "abb", 1, 1},
      {"abb", "bab", 0, 1}, {"abb", "aab", 0, 0}, {"a-b", "b-a", 0, 1},
      {"ab", "abc", 0, 0},  {"a-", "-b", 0, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::string(row.a) + " and " + row.b);
    const auto a = listOf<TypeParam>(row.a);
    const auto b = listOf<TypeParam>(row.b);
    EXPECT_EQ(a->compare(b.get()), row.ordered);
    EXPECT_EQ(a->compareUnordered(b.get()), row.unordered);
    EXPECT_EQ(b->compareUnordered(a.get()), row.unordered);
    EXPECT_EQ(text(*a) + text(*b), std::string(row.a) + row.b);
    EXPECT_EQ(a->compare(nullptr) + a->compareUnordered(nullptr), 0);
    EXPECT_EQ(a->compare(a.get()) + a->compareUnordered(a.get()), 2);
  }
}

TYPED_TEST(LinkedList, RemovesCells) {
  const auto list = listOf<TypeParam>("abcb-");
  CellOf<TypeParam> foreign(object('b'));
  EXPECT_EQ(list->removeCell(nullptr), nullptr);
  EXPECT_EQ(list->searchAndRemoveCell(nullptr), nullptr);
  EXPECT_EQ(list->searchAndRemoveCell(&foreign), nullptr);
  EXPECT_EQ(list->searchAndRemoveObject(object('z')), nullptr);
  list->discardCell(nullptr);
  EXPECT_EQ(text(*list), "abcb-");

  const std::unique_ptr<CellOf<TypeParam>> b(list->searchAndRemoveObject(object('b')));
  EXPECT_EQ(list->removeCell(b.get()), nullptr) << "it is out already";
  EXPECT_EQ(text(*list), "acb-");
  delete list->searchAndRemoveObject(nullptr);
  EXPECT_EQ(text(*list), "acb");
  list->discardCell(list->pLastCell());
  EXPECT_EQ(text(*list), "ac");
  auto* const a = list->searchAndRemoveCell(list->pFirstCell());
  EXPECT_EQ(a->pObject(), object('a'));
  EXPECT_EQ(text(*list), "c");
  list->appendCell(a);
  EXPECT_EQ(text(*list), "ca");
  list->discardCell(list->removeCell(a) == a ? list->pFirstCell() : nullptr);
  delete a;
  EXPECT_EQ(text(*list), "");
}

// Each row asks all four operations to take source[from, to] in after the cell
// number `after` (0: at the front); positions count from 1, 0 is a null cell, and -n a
// cell that was number n and has been removed.
TYPED_TEST(LinkedList, TakesInPartsOfOtherLists) {
  const struct {
    const char* list;
    const char* source;
    int after, from, to;
    int result;
    const char* moved[2];  // this list and the source afterwards
    const char* newMoved[2];
    const char* copied;
    const char* newCopied;
  } kRows[] = {
      {"ab", "cde", 1, 2, 2, 1, {"adb", "ce"}, {"adeb", "c"}, "adb", "adb"},
      {"ab", "cde", 2, 1, 3, 1, {"abcde", ""}, {"abcde", ""}, "abcde", "abcde"},
      {"ab", "cde", 0, 1, 2, 1, {"cdab", "e"}, {"cdeab", ""}, "cdab", "cdab"},
      {"", "cde", 0, 2, 3, 1, {"de", "c"}, {"de", "c"}, "de", "de"},
      // Objects that are there already stay behind. When `to` moves, the walk
      // goes on to the end of the source.
      {"ab", "cadbe", 2, 1, 4, 1, {"abcadb", "e"}, {"abcd", "abe"}, "abcadb", "abcd"},
      {"ab", "cadbe", 0, 2, 3, 1, {"adab", "cbe"}, {"deab", "cab"}, "adab", "dab"},
      {"a-", "bb-c", 1, 1, 3, 1, {"abb--", "c"}, {"ab-", "b-c"}, "abb--", "ab-"},
      {"ab", "ba", 1, 1, 2, 1, {"abab", ""}, {"ab", "ba"}, "abab", "ab"},
      // Refused: `to` before `from`, a null end.
      {"ab", "cde", 1, 3, 1, 0, {"ab", "cde"}, {"ab", "cde"}, "ab", "ab"},
      {"ab", "cde", 1, 0, 2, 0, {"ab", "cde"}, {"ab", "cde"}, "ab", "ab"},
      {"ab", "cde", 1, 1, 0, 0, {"ab", "cde"}, {"ab", "cde"}, "ab", "ab"},
      {"ab", "", 1, 0, 0, 0, {"ab", ""}, {"ab", ""}, "ab", "ab"},
      // Refused: cells whose links still lead into the source.
      {"ab", "cde", 1, 1, -3, 0, {"ab", "cd"}, {"ab", "cd"}, "ab", "ab"},
      {"ab", "cde", 1, 1, -2, 0, {"ab", "ce"}, {"ab", "ce"}, "ab", "ab"},
      {"ab", "cde", 1, -2, 3, 0, {"ab", "ce"}, {"ab", "ce"}, "ab", "ab"},
      {"ab", "cde", 1, -1, 2, 0, {"ab", "de"}, {"ab", "de"}, "ab", "ab"},
  };
  for (const auto& row : kRows) {
    const auto check = [&](auto operation, const char* expected, const char* remaining) {
      SCOPED_TRACE(std::string(row.list) + " takes from " + row.source);
      const auto list = listOf<TypeParam>(row.list);
      const auto source = listOf<TypeParam>(row.source);
      auto* from = source->pCellInPosition(std::abs(row.from));
      auto* to = source->pCellInPosition(std::abs(row.to));
      const std::unique_ptr<CellOf<TypeParam>> removed(
          source->removeCell(row.from < 0 ? from
                             : row.to < 0 ? to
                                          : nullptr));
      EXPECT_EQ((list.get()->*operation)(list->pCellInPosition(row.after), source.get(),
                                         from, to),
                row.result);
      EXPECT_EQ(text(*list), expected);
      EXPECT_EQ(text(*source), remaining);
    };
    check(&TypeParam::transferListPart, row.moved[0], row.moved[1]);
    check(&TypeParam::transferListPartIfNotInList, row.newMoved[0], row.newMoved[1]);
    const char* const source = row.result == 0 ? row.moved[1] : row.source;
    check(&TypeParam::copyTransferListPart, row.copied, source);
    check(&TypeParam::copyTransferListPartIfNotInList, row.newCopied, source);
  }
}

TYPED_TEST(LinkedList, AnswersWithoutMemory) {
  TypeParam a;
  for (int i = 0; i < 1 << 20; ++i) a.appendObject(object('a'));
  const TypeParam b(a, NQ_ATTRIBUTE_COPY);
  const int equal = a.compareUnordered(&a) * 10 + b.compareUnordered(&b);
  EXPECT_EQ(equal, 11);
  if (!LittleMemory::kWorks) GTEST_SKIP();
  int unknown = 1;
  {
    LittleMemory little;
    unknown = a.compareUnordered(&a);
  }
  EXPECT_EQ(unknown, 0);
}

TYPED_TEST(LinkedList, TakesInWholeLists) {
  using List = TypeParam;
  const auto check = [](auto operation, const char* source, const char* expected,
                        const char* remaining) {
    const auto list = listOf<List>("ab");
    const auto other = listOf<List>(source);
    EXPECT_EQ(operation(*list, nullptr), 0);
    EXPECT_EQ(operation(*list, list.get()), 0);
    EXPECT_EQ(text(*list), "ab");
    List empty;
    EXPECT_EQ(operation(*list, &empty), 1);
    EXPECT_EQ(text(*list), "ab");
    EXPECT_EQ(operation(*list, other.get()), 1);
    EXPECT_EQ(text(*list), expected);
    EXPECT_EQ(text(*other), remaining);
  };
#define OPERATION(CALL) [](List& list, List* source) { return list.CALL; }
  check(OPERATION(transferList(list.pFirstCell(), source)), "cbc", "acbcb", "");
  check(OPERATION(appendList(source)), "cbc", "abcbc", "");
  check(OPERATION(prependList(source)), "cbc", "cbcab", "");
  check(OPERATION(transferListIfNotInList(list.pFirstCell(), source)), "cbcd", "acdb",
        "bc");
  check(OPERATION(appendListIfNotInList(source)), "cbcd", "abcd", "bc");
  check(OPERATION(prependListIfNotInList(source)), "cbcd", "cdab", "bc");
  check(OPERATION(copyTransferList(list.pFirstCell(), source)), "cbc", "acbcb", "cbc");
  check(OPERATION(copyAppendList(source)), "cbc", "abcbc", "cbc");
  check(OPERATION(copyPrependList(source)), "cbc", "cbcab", "cbc");
  check(OPERATION(copyTransferListIfNotInList(list.pFirstCell(), source)), "cbcd", "acdb",
        "cbcd");
  check(OPERATION(copyAppendListIfNotInList(source)), "cbcd", "abcd", "cbcd");
  check(OPERATION(copyPrependListIfNotInList(source)), "cbcd", "cdab", "cbcd");
#undef OPERATION
}

TYPED_TEST(LinkedList, CopiesCellsFromBothKinds) {
  using Other = OtherKind<TypeParam>;
  const auto same = listOf<TypeParam>("a-b");
  const auto other = listOf<Other>("c-c");
  TypeParam list;
  fill(list, "xyz");
  EXPECT_EQ(list.copyAllCells(same.get()), 1);
  EXPECT_EQ(text(list), "a-b");
  EXPECT_NE(list.pFirstCell(), same->pFirstCell());
  EXPECT_EQ(list.copyAllCells(other.get()), 1);
  EXPECT_EQ(text(list), "c-c");
  EXPECT_EQ(list.copyAllCells(&list), 0);
  EXPECT_EQ(text(list), "");
  fill(list, "xyz");
  EXPECT_EQ(list.copyAllCells(static_cast<const Other*>(nullptr)), 0);
  EXPECT_EQ(text(list), "");

  const TypeParam converted(*other);
  const TypeParam implicitlyConverted = *other;
  const Other back = converted;
  list = *other;
  EXPECT_EQ(text(converted), "c-c");
  EXPECT_EQ(text(implicitlyConverted), "c-c");
  EXPECT_EQ(text(back), "c-c");
  EXPECT_EQ(text(list), "c-c");
}

template <class List>
std::vector<int> values(const List& list) {
  std::vector<int> result;
  for (const NQObject* const each : list) result.push_back(valueOf(each));
  return result;
}

TYPED_TEST(LinkedList, OwnsObjectsOnlyWhereItSaysSo) {
  using Other = OtherKind<TypeParam>;
  const int before = NQCounted::live();
  {
    TypeParam source;
    for (const int value : {1, 2, 3}) source.appendObject(new NQCounted(value));
    source.appendObject(nullptr);
    const Other otherSource(source);
    TypeParam list;
    list.appendObject(new NQCounted(9));
    EXPECT_EQ(list.copyAllCellsAndObjects(&source), 1);
    EXPECT_EQ(NQCounted::live(), before + 6);
    EXPECT_EQ(values(list), values(source));
    EXPECT_EQ(list.searchObject(source.pFirstCell()->pObject()), nullptr);
    list = source;
    EXPECT_EQ(NQCounted::live(), before + 6);
    EXPECT_EQ(list.copyAllCellsAndObjects(&otherSource), 1);
    EXPECT_EQ(NQCounted::live(), before + 6);
    EXPECT_EQ(values(list), values(source));
    EXPECT_EQ(list.copyAllCellsAndObjects(&list), 0);
    EXPECT_EQ(NQCounted::live(), before + 3);
    list.copyAllCellsAndObjects(&source);
    EXPECT_EQ(list.copyAllCellsAndObjects(static_cast<const TypeParam*>(nullptr)), 0);
    EXPECT_EQ(NQCounted::live(), before + 3);
    source.deleteAllCellsAndObjects();
    source.deleteAllCellsAndObjects();
    EXPECT_EQ(text(source), "");
  }
  EXPECT_EQ(NQCounted::live(), before);
}

TYPED_TEST(LinkedList, FollowsTheCopyProtocol) {
  NQKept::Keeper keeper;
  NQKept one(1, keeper);
  NQKept two(2, keeper);
  TypeParam sample;
  for (NQObject* const each :
       {static_cast<NQObject*>(&one), static_cast<NQObject*>(nullptr),
        static_cast<NQObject*>(&two)}) {
    sample.appendObject(each);
  }
  checkCopyProtocol(
      sample, [] { return listOf<TypeParam>("-"); },
      [](const TypeParam& a, const TypeParam& b) {
        checkLinks(b);
        return values(a) == values(b) && a.compare(&b) == 0;
      },
      // An attribute copy holds nothing, or what its target held.
      [](const TypeParam&, const TypeParam& b) { return b.length() <= 1; });
}

TYPED_TEST(LinkedList, ReversesAndMerges) {
  for (const std::string each : {"", "a", "ab", "abcd"}) {
    const auto list = listOf<TypeParam>(each);
    EXPECT_EQ(list->reverse(), 1);
    EXPECT_EQ(text(*list), std::string(each.rbegin(), each.rend()));
  }
  const char* const kMerges[][3] = {{"abc", "x", "axbc"},
                                    {"a", "xyz", "axyz"},
                                    {"", "xy", "xy"},
                                    {"ab", "", "ab"},
                                    {"", "", ""}};
  for (const auto& row : kMerges) {
    const auto a = listOf<TypeParam>(row[0]);
    const auto b = listOf<TypeParam>(row[1]);
    const auto list = listOf<TypeParam>("m");
    EXPECT_EQ(list->merge(a.get(), b.get()), 1);
    EXPECT_EQ(text(*list), std::string("m") + row[2]);
    EXPECT_EQ(text(*a) + text(*b), "");
  }
  const auto list = listOf<TypeParam>("m");
  const auto a = listOf<TypeParam>("abc");
  EXPECT_EQ(list->merge(a.get(), nullptr), 0);
  EXPECT_EQ(list->merge(nullptr, a.get()), 0);
  EXPECT_EQ(list->merge(list.get(), a.get()), 0);
  EXPECT_EQ(list->merge(a.get(), list.get()), 0);
  EXPECT_EQ(text(*list) + text(*a), "mabc");
  EXPECT_EQ(list->merge(a.get(), a.get()), 1);
  EXPECT_EQ(text(*list), "mabc");
}

TYPED_TEST(LinkedList, SwapsAnyTwoCells) {
  const std::string before = "abcde";
  for (std::size_t i = 0; i < before.size(); ++i) {
    for (std::size_t j = 0; j < before.size(); ++j) {
      const auto list = listOf<TypeParam>(before);
      auto* const a = list->pCellInPosition(static_cast<nqLong>(i) + 1);
      list->swapPosition(a, list->pCellInPosition(static_cast<nqLong>(j) + 1));
      std::string after = before;
      std::swap(after[i], after[j]);
      EXPECT_EQ(text(*list), after);
      EXPECT_EQ(list->positionOfCell(a), static_cast<nqLong>(j) + 1);
      list->swapPosition(a, nullptr);
      list->swapPosition(nullptr, a);
      EXPECT_EQ(text(*list), after);
    }
  }
}

TYPED_TEST(LinkedList, IsARangeOfObjects) {
  static_assert(std::ranges::forward_range<TypeParam>);
  static_assert(std::ranges::forward_range<const TypeParam>);
  static_assert(std::ranges::common_range<TypeParam>);
  static_assert(std::is_same_v<std::ranges::range_reference_t<TypeParam>, NQObject*&>);
  static_assert(
      std::is_same_v<std::ranges::range_reference_t<const TypeParam>, NQObject* const&>);
  static_assert(std::is_same_v<std::ranges::range_value_t<const TypeParam>, NQObject*>);
  static_assert(std::is_convertible_v<typename TypeParam::iterator,
                                      typename TypeParam::const_iterator>);
  static_assert(!std::is_convertible_v<typename TypeParam::const_iterator,
                                       typename TypeParam::iterator>);
  TypeParam list;
  EXPECT_EQ(list.begin(), list.end());
  fill(list, "abca");
  EXPECT_EQ(std::ranges::count(list, object('a')), 2);
  std::ranges::replace(list, object('a'), object('x'));
  EXPECT_EQ(text(list), "xbcx");
  const auto found = std::ranges::find(list, object('c'));
  EXPECT_EQ(found.pCell(), list.pCellInPosition(3));
  const auto end = list.end();
  list.appendObject(object('d'));
  EXPECT_EQ(std::ranges::distance(list.begin(), end), 5);
  EXPECT_EQ(std::as_const(list).end(), end);
  auto step = list.begin();
  EXPECT_EQ(*step++, object('x'));
  EXPECT_EQ(*step, object('b'));
}

TYPED_TEST(LinkedList, DestroysLongListsInAnyOrder) {
  const int before = NQCounted::live();
  TypeParam list;
  for (int i = 0; i < 200000; ++i)
    list.appendObject(i % 2 == 0 ? new NQCounted(i) : nullptr);
  list.reverse();
  list.deleteAllCellsAndObjects();
  EXPECT_EQ(NQCounted::live(), before);
  list.appendObject(object('a'));
  EXPECT_EQ(text(list), "a");
}

// Two lists and their models, through many random operations.
TYPED_TEST(LinkedList, BehavesLikeAVectorOfObjects) {
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t bound) {
    return bound == 0 ? 0 : static_cast<std::size_t>(random() % bound);
  };
  TypeParam lists[2];
  std::string models[2];
  for (int step = 0; step < 20000; ++step) {
    const std::size_t which = below(2);
    TypeParam& list = lists[which];
    TypeParam& other = lists[1 - which];
    std::string& model = models[which];
    std::string& otherModel = models[1 - which];
    const auto cellAt = [](TypeParam& of, std::size_t index) {
      return of.pCellInPosition(static_cast<nqLong>(index));
    };
    const std::size_t at = below(model.size() + 1);  // after so many cells
    const char name = static_cast<char>('a' + below(26));
    const std::size_t from = below(otherModel.size());
    const std::size_t count = 1 + below(otherModel.size() - from);
    switch (below(model.size() > 60 ? 12 : 10)) {
      case 0:
      case 1:
      case 2:
        list.addObject(cellAt(list, at), object(name));
        model.insert(at, 1, name);
        break;
      case 3:
        list.appendObjectIfNotInList(object(name));
        if (model.find(name) == std::string::npos) model += name;
        break;
      case 4:
        list.discardCell(cellAt(list, at));
        if (at > 0) model.erase(at - 1, 1);
        break;
      case 5:
        if (otherModel.empty()) break;
        list.transferListPart(cellAt(list, at), &other, cellAt(other, from + 1),
                              cellAt(other, from + count));
        model.insert(at, otherModel, from, count);
        otherModel.erase(from, count);
        break;
      case 6:
        if (otherModel.empty() || model.size() > 100) break;
        list.copyTransferListPart(cellAt(list, at), &other, cellAt(other, from + 1),
                                  cellAt(other, from + count));
        model.insert(at, otherModel, from, count);
        break;
      case 7:
        list.reverse();
        std::ranges::reverse(model);
        break;
      case 8: {
        const std::size_t to = below(model.size() + 1);
        list.swapPosition(cellAt(list, at), cellAt(list, to));
        if (at > 0 && to > 0) std::swap(model[at - 1], model[to - 1]);
        break;
      }
      case 9: {
        auto* const cell = list.searchAndRemoveObject(object(name));
        const auto index = model.find(name);
        ASSERT_EQ(cell == nullptr, index == std::string::npos);
        if (cell == nullptr) break;
        model.erase(index, 1);
        model += name;
        list.appendCell(cell);
        break;
      }
      case 10: {
        std::string rest;
        for (const char each : otherModel) {
          (model.find(each) == std::string::npos ? model : rest) += each;
        }
        list.appendListIfNotInList(&other);
        otherModel = rest;
        break;
      }
      default:
        list.deleteAllCells();
        model.clear();
    }
    ASSERT_EQ(text(list), model) << "step " << step;
    ASSERT_EQ(text(other), otherModel) << "step " << step;
  }
}

// Throws when it is cloned.
class Uncloneable : public NQCounted {
  NQObject* vCloneObject() const override { throw std::runtime_error("no"); }
};

TYPED_TEST(LinkedList, KeepsWhatItHasWhenCloningThrows) {
  const int before = NQCounted::live();
  {
    NQCounted good(1);
    Uncloneable bad;
    TypeParam source;
    source.appendObject(&good);
    source.appendObject(&bad);
    TypeParam target;
    target.appendObject(new NQCounted(3));
    EXPECT_THROW(target = source, std::runtime_error);
    EXPECT_THROW(TypeParam(source, NQ_DEEP_COPY), std::runtime_error);
    EXPECT_EQ(values(target), std::vector<int>{3});
    EXPECT_EQ(NQCounted::live(), before + 3);
    target.deleteAllCellsAndObjects();
  }
  EXPECT_EQ(NQCounted::live(), before);
}

// As a class of an application may be that wants its cells in lines of the cache.
TYPED_TEST(LinkedList, KeepsTheAlignmentOfDerivedCells) {
  struct alignas(128) Wide : CellOf<TypeParam> {
    using CellOf<TypeParam>::CellOf;
    char more[200] = {};
  };
  TypeParam list;
  for (int i = 0; i < 20; ++i) {
    auto* const cell = list.appendCell(new Wide(object('a')));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(cell) % 128, 0u);
  }
  list.discardCell(list.appendCell(new (std::nothrow) Wide(nullptr)));
  EXPECT_EQ(text(list), std::string(20, 'a'));
}

TYPED_TEST(LinkedList, DeepCopiesMayShareObjectsWithTheirTarget) {
  const int before = NQCounted::live();
  {
    TypeParam target;
    target.appendObject(new NQCounted(1));
    target.appendObject(new NQCounted(2));
    TypeParam source;
    source.copyAllCells(&target);
    target = source;
    ASSERT_EQ(target.length(), 2);
    EXPECT_EQ(NQCounted::castDown(target.pObjectInPosition(2))->value(), 2);
    target.deleteAllCellsAndObjects();
  }
  EXPECT_EQ(NQCounted::live(), before);
}

}  // namespace

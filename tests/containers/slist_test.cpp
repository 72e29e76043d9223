#include "nq/containers/slist.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <memory>
#include <type_traits>

#include "tests/containers/list_text.h"

namespace {

bool isMarker(const NQSListCell* cell) {
  return reinterpret_cast<std::intptr_t>(cell) == -1;
}

TEST(NQSList, TellsNoPredecessorFromNoCell) {
  const auto list = listOf<NQSList>("ab-");
  const NQSListCell foreign(object('a'));
  NQSListCell* const second = list->pFirstCell()->pNextSListCell();
  EXPECT_EQ(list->searchPreviousCell(list->pFirstCell()), nullptr);
  EXPECT_EQ(list->searchPreviousCell(list->pLastCell()), second);
  EXPECT_EQ(list->searchPreviousObject(object('a')), nullptr);
  EXPECT_EQ(list->searchPreviousObject(object('b')), list->pFirstCell());
  EXPECT_TRUE(isMarker(list->searchPreviousCell(&foreign)));
  EXPECT_TRUE(isMarker(list->searchPreviousCell(nullptr)));
  EXPECT_TRUE(isMarker(list->searchPreviousObject(object('z'))));
  EXPECT_TRUE(isMarker(list->searchPreviousObject(nullptr)));
  EXPECT_TRUE(isMarker(NQSList().searchPreviousCell(&foreign)));
}

TEST(NQSList, RemovesAfterAPredecessor) {
  const auto list = listOf<NQSList>("abcd");
  NQSListCell foreign(object('a'));
  EXPECT_EQ(list->removeCell(&foreign), nullptr);
  list->discardCell(&foreign);
  EXPECT_EQ(list->removeNextCell(list->pLastCell()), nullptr);
  EXPECT_EQ(list->removeNextCell(list->searchPreviousCell(&foreign)), nullptr);
  EXPECT_EQ(text(*list), "abcd");

  const auto discardNext = [&](NQSListCell* previous) {
    delete list->removeNextCell(previous);
    return text(*list);
  };
  EXPECT_EQ(discardNext(list->pFirstCell()), "acd");
  EXPECT_EQ(discardNext(list->pCellInPosition(2)), "ac");
  EXPECT_EQ(discardNext(nullptr), "c");
  EXPECT_EQ(discardNext(nullptr), "");
  EXPECT_EQ(discardNext(nullptr), "");
}

TEST(NQSList, MovesTheRunAfterAPredecessor) {
  const struct {
    int previous, to;  // positions in "cde"; 0 is null
    int result;
    const char* list;
    const char* source;
  } kRows[] = {
      {0, 2, 1, "acdb", "e"}, {0, 3, 1, "acdeb", ""}, {1, 3, 1, "adeb", "c"},
      {2, 3, 1, "aeb", "cd"}, {1, 1, 0, "ab", "cde"}, {3, 3, 0, "ab", "cde"},
      {0, 0, 0, "ab", "cde"},
  };
  for (const auto& row : kRows) {
    const auto list = listOf<NQSList>("ab");
    const auto source = listOf<NQSList>("cde");
    EXPECT_EQ(list->transferNextListPart(list->pFirstCell(), source.get(),
                                         source->pCellInPosition(row.previous),
                                         source->pCellInPosition(row.to)),
              row.result);
    EXPECT_EQ(text(*list), row.list);
    EXPECT_EQ(text(*source), row.source);
  }
  const auto list = listOf<NQSList>("ab");
  const auto source = listOf<NQSList>("cde");
  NQSListCell foreign(object('c'));
  NQSListCell* const marker = source->searchPreviousCell(&foreign);
  NQSListCell* const last = source->pLastCell();
  EXPECT_EQ(list->transferNextListPart(nullptr, source.get(), marker, last), 0);
  EXPECT_EQ(list->transferNextListPart(nullptr, nullptr, nullptr, last), 0);
  EXPECT_EQ(list->transferNextListPart(nullptr, list.get(), nullptr, list->pLastCell()),
            0);
  EXPECT_EQ(list->transferListPart(nullptr, source.get(), &foreign, last), 0);
  EXPECT_EQ(list->transferListPartIfNotInList(nullptr, source.get(), &foreign, last), 0);
  EXPECT_EQ(text(*list) + text(*source), "abcde");
}

TEST(NQSList, AccountsInFixedUnits) {
  EXPECT_EQ(NQSList().sizeOf(), 32);
  EXPECT_EQ(listOf<NQSList>("abc")->sizeOf(), 104);
  EXPECT_EQ(NQSListCell(nullptr).sizeOf(), 24);
}

TEST(NQSListIter, WalksForward) {
  static_assert(std::forward_iterator<NQSList::iterator>);
  static_assert(!std::bidirectional_iterator<NQSList::iterator>);
  static_assert(!std::is_copy_constructible_v<NQSListIter>);
  const auto list = listOf<NQSList>("ab");
  NQSListIter iter(list.get());
  EXPECT_EQ(iter.pObject(), object('a'));
  iter++;
  EXPECT_EQ(iter.pSListCell(), list->pLastCell());
  ++iter;
  EXPECT_FALSE(iter);
  ++iter;
  EXPECT_EQ(iter.pObject(), nullptr);
  iter.init(list.get(), list->pLastCell());
  EXPECT_EQ(iter.pCell(), list->pLastCell());
  EXPECT_FALSE(NQSListIter(nullptr));
  EXPECT_FALSE(NQSListIter(nullptr, list->pLastCell()));
}

TEST(NQSListCell, SharesItsObjectWithCopies) {
  const auto list = listOf<NQSList>("ab");
  NQSListCell& first = *list->pFirstCell();
  const NQSListCell copy(first);
  NQSListCell assigned(object('z'));
  EXPECT_EQ(&(assigned = first), &assigned);
  for (const NQSListCell* const each :
       {&copy, static_cast<const NQSListCell*>(&assigned)}) {
    EXPECT_EQ(each->pObject(), object('a'));
    EXPECT_EQ(each->pNextCell(), nullptr);
  }
  const NQSListCell& self = first;
  first = self;
  EXPECT_EQ(text(*list), "ab");
  EXPECT_EQ(NQSListCell::castDown(static_cast<NQObject*>(&first)), &first);
  const std::unique_ptr<NQObject> clone(first.cloneObject());
  EXPECT_EQ(dynamic_cast<NQSListCell*>(clone.get()), nullptr) << "a plain object";
}

}  // namespace

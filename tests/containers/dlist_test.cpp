#include "nq/containers/dlist.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

#include "tests/containers/list_text.h"
#include "tests/support/copy_protocol_check.h"

namespace {

TEST(NQDList, KeepsTheLinksOfARemovedCell) {
  const auto list = listOf<NQDList>("abc");
  NQDListCell* const first = list->pFirstDListCell();
  const std::unique_ptr<NQDListCell> second(list->removeCell(first->pNextDListCell()));
  EXPECT_EQ(text(*list), "ac");
  EXPECT_EQ(second->pPrevDListCell(), first);
  EXPECT_EQ(second->pNextCell(), list->pLastDListCell());
}

TEST(NQDList, AccountsInFixedUnits) {
  EXPECT_EQ(NQDList().sizeOf(), 32);
  EXPECT_EQ(listOf<NQDList>("abc")->sizeOf(), 128);
  EXPECT_EQ(NQDListCell(nullptr).sizeOf(), 32);
}

TEST(NQDList, WalksBackwardThroughStandardIterators) {
  static_assert(std::bidirectional_iterator<NQDList::iterator>);
  static_assert(std::bidirectional_iterator<NQDList::const_iterator>);
  const auto list = listOf<NQDList>("abc");
  auto last = list->end();
  EXPECT_EQ(*--last, object('c'));
  EXPECT_EQ(last--.pCell(), list->pLastCell());
  std::string backward;
  for (auto each = std::make_reverse_iterator(list->end());
       each != std::make_reverse_iterator(list->begin()); ++each) {
    backward += *each == object('a') ? 'a' : *each == object('b') ? 'b' : 'c';
  }
  EXPECT_EQ(backward, "cba");
}

TEST(NQDListIter, WalksInBothDirectionsAndStopsAtTheEnds) {
  static_assert(!std::is_copy_constructible_v<NQDListIter>);
  static_assert(!std::is_copy_assignable_v<NQDListIter>);
  const auto list = listOf<NQDList>("a-b");
  NQDListIter iter(list.get(), NQ_FORWARD);
  EXPECT_EQ(iter.pCell(), list->pFirstCell());
  ++iter;
  EXPECT_TRUE(iter);
  EXPECT_EQ(iter.pObject(), nullptr);
  iter++;
  EXPECT_EQ(iter.pDListCell(), list->pLastCell());
  iter--;
  --iter;
  EXPECT_EQ(iter.pObject(), object('a'));
  --iter;
  EXPECT_EQ(static_cast<int>(iter), 0);
  ++iter;
  EXPECT_FALSE(iter);
  EXPECT_EQ(iter.pObject(), nullptr);

  for (const int direction : {0, 2, -1}) {
    iter.init(list.get(), static_cast<NQIterDirectionEnum>(direction));
    EXPECT_EQ(iter.pObject(), object('b')) << direction;
  }
  iter.init(list.get(), list->pLastCell());
  EXPECT_EQ(iter.pCell(), list->pLastCell());
  iter.init(nullptr, list->pLastCell());
  EXPECT_FALSE(iter);
  EXPECT_FALSE(NQDListIter(nullptr, NQ_FORWARD));
}

TEST(NQDListCell, CopiesTheObjectButNeverTheLinks) {
  NQKept::Keeper keeper;
  NQKept kept(4, keeper);
  NQDList list;
  list.appendObject(object('a'));
  NQDListCell& sample = *list.appendObject(&kept);
  list.appendObject(object('b'));
  const auto isFree = [&](const NQDListCell& cell) {
    return &cell == &sample ||
           (cell.pNextCell() == nullptr && cell.pPreviousCell() == nullptr);
  };
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQDListCell>(nullptr); },
      [&](const NQDListCell& a, const NQDListCell& b) {
        return valueOf(a.pObject()) == valueOf(b.pObject()) &&
               a.pObject() != b.pObject() && isFree(b);
      },
      [&](const NQDListCell& a, const NQDListCell& b) {
        return a.pObject() == b.pObject() && isFree(b);
      });
  checkLinks(list);
  EXPECT_EQ(list.length(), 3);
  const NQDListCell null(nullptr);
  EXPECT_EQ(NQDListCell(null, NQ_DEEP_COPY).pObject(), nullptr);
}

// An application's cell, which brings fields of its own into lists.
class WideCell : public NQDListCell {
 public:
  explicit WideCell(NQObject* itsObject) : NQDListCell(itsObject) {}
  ~WideCell() override { fields_[0] = 0; }

 private:
  NQCounted counted_;
  long long fields_[9] = {};
};

TEST(NQDListCell, MayBeDerivedFromAndPlacedAnywhere) {
  const int before = NQCounted::live();
  {
    NQDList list;
    for (int i = 0; i < 100; ++i) {
      list.appendCell(new WideCell(object('a')));
      list.appendCell(new (std::nothrow) NQDListCell(object('b')));
    }
    EXPECT_EQ(NQCounted::live(), before + 100);
  }
  EXPECT_EQ(NQCounted::live(), before);
  alignas(NQDListCell) std::byte place[sizeof(NQDListCell)];
  auto* const cell = new (place) NQDListCell(object('c'));
  EXPECT_EQ(cell->pObject(object('d')), object('d'));
  cell->~NQDListCell();
}

}  // namespace

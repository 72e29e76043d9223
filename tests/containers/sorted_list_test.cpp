// What holds for both kinds of sorted list.

#include "nq/containers/sorted_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include "tests/containers/list_text.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/sorted_order.h"

namespace {

// Objects are their tens; the units tell equals apart. Null comes first.
int keyOf(const NQObject* object) {
  return object == nullptr ? -1 : valueOf(object) / 10;
}

// A concrete sorted list that counts its comparisons.
#define NQ_TEST_SORTED_LIST(NAME, BASE)                                             \
  class NAME : public BASE {                                                        \
    NQ_COPY_PROTOCOL(NAME)                                                          \
                                                                                    \
   public:                                                                          \
    NAME() = default;                                                               \
    mutable int comparisons = 0;                                                    \
                                                                                    \
   protected:                                                                       \
    int virtualObjectCompare(const NQObject* a, const NQObject* b) const override { \
      ++comparisons;                                                                \
      return keyOf(a) - keyOf(b);                                                   \
    }                                                                               \
  };                                                                                \
  NQ_COPY_PROTOCOL_IMPL(NAME)                                                       \
  void NAME::NAME##deepCopy(const NAME& source) {                                   \
    NQCopyAccess::deep<BASE>(*this, source);                                        \
  }                                                                                 \
  void NAME::NAME##attributeCopy(const NAME& source) {                              \
    NQCopyAccess::attributes<BASE>(*this, source);                                  \
  }

NQ_TEST_SORTED_LIST(SortedD, NQSortedDList)
NQ_TEST_SORTED_LIST(SortedS, NQSortedSList)

struct Doubly {
  using Plain = NQDList;
  using Cell = NQDListCell;
  using Base = NQSortedDList;
  using Sorted = SortedD;
};
struct Singly {
  using Plain = NQSList;
  using Cell = NQSListCell;
  using Base = NQSortedSList;
  using Sorted = SortedS;
};

NQObject* number(int value) {
  static std::map<int, NQCounted> numbers;
  return value < 0 ? nullptr : &numbers.try_emplace(value, value).first->second;
}

template <class List>
std::vector<int> values(const List& list) {
  std::vector<int> result;
  for (const NQObject* const each : list) result.push_back(valueOf(each));
  return result;
}

template <class List>
std::string fault(const List& list) {
  return orderFault(list, [](const auto* a, const auto* b) {
    return keyOf(a->pObject()) - keyOf(b->pObject());
  });
}

template <class Plain>
void append(Plain& list, const std::vector<int>& numbers) {
  for (const int value : numbers) list.appendObject(number(value));
}

template <class Sorted>
void add(Sorted& list, const std::vector<int>& numbers) {
  for (const int value : numbers) list.addObject(number(value));
}

template <class Kind>
class SortedList : public ::testing::Test {};
using Kinds = ::testing::Types<Doubly, Singly>;
TYPED_TEST_SUITE(SortedList, Kinds);

TYPED_TEST(SortedList, PutsCellsBehindTheirEquals) {
  typename TypeParam::Sorted list;
  add(list, {30, 10, 20, 21, 11, -1, 31, 12});
  EXPECT_EQ(values(list), (std::vector<int>{-1, 10, 11, 12, 20, 21, 30, 31}));
  auto* const cell = new typename TypeParam::Cell(number(22));
  EXPECT_EQ(list.insertCell(cell), cell);
  EXPECT_EQ(list.positionOfCell(cell), 7);
  EXPECT_EQ(list.insertCell(nullptr), nullptr);

  typename TypeParam::Cell known(number(11));
  EXPECT_EQ(list.insertCellIfNotInList(&known), list.pCellInPosition(3));
  EXPECT_EQ(list.insertCellIfNotInList(nullptr), nullptr);
  EXPECT_EQ(list.addObjectIfNotInList(number(20)), list.pCellInPosition(5));
  EXPECT_EQ(list.addObjectIfNotInList(nullptr), list.pFirstCell());
  EXPECT_EQ(list.length(), 9);
  list.insertCellIfNotInList(new typename TypeParam::Cell(number(13)));
  list.addObjectIfNotInList(number(5));
  EXPECT_EQ(values(list), (std::vector<int>{-1, 5, 10, 11, 12, 13, 20, 21, 22, 30, 31}));
  EXPECT_EQ(fault(list), "");
}

TYPED_TEST(SortedList, SearchesByIdentityAndNoFurtherThanTheOrderSays) {
  typename TypeParam::Sorted list;
  EXPECT_EQ(list.searchObject(number(10)), nullptr);
  EXPECT_EQ(list.searchAndRemoveObject(number(10)), nullptr);
  for (int tens = 0; tens < 100; ++tens) list.addObject(number(10 * tens + 1));
  list.comparisons = 0;
  EXPECT_EQ(list.searchObject(number(20)), nullptr) << "equal to 21, but not it";
  EXPECT_EQ(list.comparisons, 4);
  EXPECT_EQ(list.searchObject(number(21)), list.pCellInPosition(3));
  EXPECT_EQ(list.searchObject(number(2000)), nullptr);
  EXPECT_EQ(list.searchObject(nullptr), nullptr);
  typename TypeParam::Cell foreign(number(21));
  list.comparisons = 0;
  EXPECT_EQ(list.searchCell(&foreign), nullptr);
  EXPECT_EQ(list.searchAndRemoveCell(&foreign), nullptr);
  EXPECT_EQ(list.comparisons, 8);
  EXPECT_EQ(list.searchCell(nullptr), nullptr);
  EXPECT_EQ(list.searchAndRemoveCell(nullptr), nullptr);
  for (auto* cell = list.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
    ASSERT_EQ(list.searchCell(cell), cell);
    ASSERT_EQ(list.searchObject(cell->pObject()), cell);
  }
  auto* const last = list.pLastCell();
  EXPECT_EQ(list.searchAndRemoveCell(last), last);
  delete last;
  delete list.searchAndRemoveObject(number(1));
  EXPECT_EQ(list.length(), 98);
  EXPECT_EQ(fault(list), "");
}

TEST(NQSortedSList, FindsPredecessorsNoFurtherThanTheOrderSays) {
  SortedS list;
  add(list, {10, 20, 21, 30, 40, 50});
  const NQSListCell* const marker = list.searchPreviousCell(nullptr);
  EXPECT_NE(marker, nullptr);
  EXPECT_EQ(list.searchPreviousCell(list.pFirstCell()), nullptr);
  EXPECT_EQ(list.searchPreviousCell(list.pLastCell()), list.pCellInPosition(5));
  EXPECT_EQ(list.searchPreviousObject(number(21)), list.pCellInPosition(2));
  EXPECT_EQ(list.searchPreviousObject(number(10)), nullptr);
  EXPECT_EQ(list.searchPreviousObject(nullptr), marker);
  list.comparisons = 0;
  EXPECT_EQ(list.searchPreviousObject(number(11)), marker);
  NQSListCell foreign(number(10));
  EXPECT_EQ(list.searchPreviousCell(&foreign), marker);
  EXPECT_EQ(list.comparisons, 4);
  EXPECT_EQ(SortedS().searchPreviousObject(number(10)), marker);
}

// Each row asks all four operations to take source[from, to] in, and twice the
// same for the whole source when the part is whole. Positions count from 1.
TYPED_TEST(SortedList, TakesInListsInAnyOrder) {
  using Plain = typename TypeParam::Plain;
  using Sorted = typename TypeParam::Sorted;
  const struct {
    std::vector<int> list, source;
    int from, to, result;
    std::vector<int> all, left;         // everything, and what stays in the source
    std::vector<int> fresh, freshLeft;  // only new objects
  } kRows[] = {
      {{10, 30},
       {31, 20, 11},
       1,
       3,
       1,
       {10, 11, 20, 30, 31},
       {},
       {10, 11, 20, 30, 31},
       {}},
      {{10, 30},
       {40, 12, 5, 11},
       2,
       3,
       1,
       {5, 10, 12, 30},
       {40, 11},
       {5, 10, 12, 30},
       {40, 11}},
      // Unlike the plain list's walk, this one ends where it was to end.
      {{10, 30},
       {30, 20, 10, 5},
       1,
       2,
       1,
       {10, 20, 30, 30},
       {10, 5},
       {10, 20, 30},
       {30, 10, 5}},
      {{}, {20, 20, 10}, 1, 3, 1, {10, 20, 20}, {}, {10, 20}, {20}},
      {{}, {20, -1, 10}, 2, 2, 1, {-1}, {20, 10}, {-1}, {20, 10}},
      // Refused: `to` before `from`, a null end.
      {{10}, {20, 30}, 2, 1, 0, {10}, {20, 30}, {10}, {20, 30}},
      {{10}, {20, 30}, 0, 1, 0, {10}, {20, 30}, {10}, {20, 30}},
      {{10}, {20, 30}, 1, 0, 0, {10}, {20, 30}, {10}, {20, 30}},
  };
  for (const auto& row : kRows) {
    const auto check = [&](auto operation, const std::vector<int>& expected,
                           const std::vector<int>& left) {
      Sorted list;
      add(list, row.list);
      Plain source;
      append(source, row.source);
      const int result = operation(list, source);
      EXPECT_EQ(result, row.result);
      EXPECT_EQ(values(list), expected);
      EXPECT_EQ(values(source), left);
      EXPECT_EQ(fault(list), "");
      checkLinks(source);
    };
    const auto part = [&](auto operation) {
      return [&row, operation](Sorted& list, Plain& source) {
        return (list.*operation)(&source, source.pCellInPosition(row.from),
                                 source.pCellInPosition(row.to));
      };
    };
    const auto whole = [](auto operation) {
      return
          [operation](Sorted& list, Plain& source) { return (list.*operation)(&source); };
    };
    SCOPED_TRACE(&row - kRows);
    check(part(&Sorted::transferListPart), row.all, row.left);
    check(part(&Sorted::transferListPartIfNotInList), row.fresh, row.freshLeft);
    check(part(&Sorted::copyTransferListPart), row.all, row.source);
    check(part(&Sorted::copyTransferListPartIfNotInList), row.fresh, row.source);
    if (row.from != 1 || row.to != static_cast<int>(row.source.size())) continue;
    check(whole(&Sorted::transferList), row.all, row.left);
    check(whole(&Sorted::transferListIfNotInList), row.fresh, row.freshLeft);
    check(whole(&Sorted::copyTransferList), row.all, row.source);
    check(whole(&Sorted::copyTransferListIfNotInList), row.fresh, row.source);
  }
}

TYPED_TEST(SortedList, RefusesNullAndItselfAsSource) {
  using Plain = typename TypeParam::Plain;
  typename TypeParam::Sorted list;
  add(list, {10, 20});
  Plain empty;
  Plain* const kNone = nullptr;
  for (Plain* const source : {kNone, static_cast<Plain*>(&list), &empty}) {
    const int expected = source == &empty ? 1 : 0;
    EXPECT_EQ(list.transferList(source), expected);
    EXPECT_EQ(list.transferListIfNotInList(source), expected);
    EXPECT_EQ(list.copyTransferList(source), expected);
    EXPECT_EQ(list.copyTransferListIfNotInList(source), expected);
    if (source == &empty) continue;
    auto* const first = list.pFirstCell();
    EXPECT_EQ(list.transferListPart(source, first, first), 0);
    EXPECT_EQ(list.transferListPartIfNotInList(source, first, first), 0);
    EXPECT_EQ(list.copyTransferListPart(source, first, first), 0);
    EXPECT_EQ(values(list), (std::vector<int>{10, 20}));
  }
}

// Throws at its n-th question.
template <class Kind>
class Failing : public Kind::Base {
 public:
  mutable int answers = 1 << 30;

 protected:
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    if (--answers < 0) throw std::runtime_error("no answer");
    return keyOf(a) - keyOf(b);
  }
};

TYPED_TEST(SortedList, FollowsTheCopyProtocol) {
  using Sorted = typename TypeParam::Sorted;
  NQKept::Keeper keeper;
  NQKept one(1, keeper);
  NQKept two(22, keeper);
  Sorted sample;
  for (NQKept* const each : {&two, &one}) sample.addObject(each);
  checkCopyProtocol(
      sample, [] { return std::make_unique<Sorted>(); },
      [](const Sorted& a, const Sorted& b) {
        return values(a) == values(b) && a.compare(&b) == 0 && fault(b).empty();
      },
      [](const Sorted&, const Sorted& b) { return b.length() == 0; });

  // Through the abstract class.
  using Base = typename TypeParam::Base;
  Sorted other;
  static_cast<Base&>(other) = sample;
  EXPECT_EQ(values(other), values(sample));
  EXPECT_EQ(Base::castDown(static_cast<const NQObject*>(&other)), &other);
  EXPECT_EQ(other.copyAllCells(&sample), 1);
  EXPECT_EQ(other.compare(&sample), 1);
  Sorted third;
  EXPECT_EQ(third.copyAllCellsAndObjects(&sample), 1);
  EXPECT_EQ(values(third), values(sample));

  // Whoever does not state the protocol is cloned as the plain list.
  const Failing<TypeParam> unstated;
  const std::unique_ptr<typename TypeParam::Plain> clone(unstated.cloneObject());
  const NQObject& plain = *clone;
  EXPECT_EQ(typeid(plain), typeid(typename TypeParam::Plain));
}

template <class List, class Cell>
constexpr bool kOffersPlaces = requires(List list, Cell* cell) {
  list.insertCell(cell, cell);
}
|| requires(List list, Cell* cell) {
  list.transferListPart(cell, &list, cell, cell);
}
|| requires(List list, Cell* cell) {
  list.transferNextListPart(cell, &list, cell, cell);
};
static_assert(kOffersPlaces<NQDList, NQDListCell> && kOffersPlaces<NQSList, NQSListCell>);
static_assert(!kOffersPlaces<SortedD, NQDListCell>);
static_assert(!kOffersPlaces<SortedS, NQSListCell>);

// Beside a model: a stably sorted vector.
TYPED_TEST(SortedList, BehavesLikeAStablySortedVector) {
  using Plain = typename TypeParam::Plain;
  std::mt19937 random(20240301);
  typename TypeParam::Sorted list;
  std::vector<int> model;
  const auto modelAdd = [&model](int value) {
    model.insert(std::upper_bound(model.begin(), model.end(), value,
                                  [](int a, int b) { return a / 10 < b / 10; }),
                 value);
  };
  for (int step = 0; step < 20000; ++step) {
    const int value = static_cast<int>(random() % 200);
    const bool present = std::find(model.begin(), model.end(), value) != model.end();
    switch (random() % (model.size() > 100 ? 8 : 7)) {
      case 0:
      case 1:
        list.addObject(number(value));
        modelAdd(value);
        break;
      case 2:
        list.addObjectIfNotInList(number(value));
        if (!present) modelAdd(value);
        break;
      case 3:
      case 4: {
        ASSERT_EQ(list.searchObject(number(value)) != nullptr, present);
        auto* const cell = list.searchAndRemoveObject(number(value));
        ASSERT_EQ(cell != nullptr, present);
        if (present) model.erase(std::find(model.begin(), model.end(), value));
        delete cell;
        break;
      }
      case 5: {
        if (model.empty()) break;
        const std::size_t at = random() % model.size();
        auto* const cell = list.pCellInPosition(static_cast<nqLong>(at) + 1);
        ASSERT_EQ(list.searchAndRemoveCell(cell), cell);
        const int moved = model[at];
        model.erase(model.begin() + static_cast<std::ptrdiff_t>(at));
        list.insertCell(cell);
        modelAdd(moved);
        break;
      }
      case 6: {
        Plain source;
        append(source, {value, static_cast<int>(random() % 200), value});
        const bool copy = random() % 2 == 0;
        const std::vector<int> moved = values(source);
        copy ? list.copyTransferList(&source) : list.transferList(&source);
        for (const int each : moved) modelAdd(each);
        break;
      }
      default:
        list.deleteAllCells();
        model.clear();
    }
    ASSERT_EQ(fault(list), "") << "step " << step;
    ASSERT_EQ(values(list), model) << "step " << step;
  }
}

// Whatever a comparison answers, no cell is lost and every walk ends.
template <class Kind>
class Moody : public Kind::Base {
 public:
  explicit Moody(int mode) : mode_(mode) {}

 protected:
  int virtualObjectCompare(const NQObject*, const NQObject*) const override {
    return mode_ == 3 ? static_cast<int>(random_() % 3) - 1 : mode_ - 1;
  }

 private:
  int mode_;
  mutable std::mt19937 random_{5};
};

TYPED_TEST(SortedList, KeepsEveryCellWhenAComparisonThrows) {
  for (int answers = 0; answers < 12; ++answers) {
    for (const bool fresh : {false, true}) {
      Failing<TypeParam> list;
      add(list, {10, 20, 30});
      typename TypeParam::Plain source;
      append(source, {31, 20, 40, 50});
      list.answers = answers;
      EXPECT_THROW(
          fresh ? list.transferListIfNotInList(&source) : list.transferList(&source),
          std::runtime_error);
      std::vector<int> all = values(list);
      for (const int value : values(source)) all.push_back(value);
      EXPECT_TRUE(
          std::ranges::is_permutation(all, std::vector<int>{10, 20, 30, 31, 20, 40, 50}));
      EXPECT_EQ(fault(list), "");
      checkLinks(source);

      const nqLong before = list.length();
      list.answers = 0;
      typename TypeParam::Cell cell(number(60));
      EXPECT_THROW(list.addObject(number(60)), std::runtime_error);
      EXPECT_THROW(list.insertCell(&cell), std::runtime_error);
      EXPECT_EQ(list.length(), before);
    }
  }
}

TYPED_TEST(SortedList, InconsistentComparisonsKeepEveryCell) {
  for (int mode = 0; mode <= 3; ++mode) {
    Moody<TypeParam> list(mode);
    typename TypeParam::Plain source;
    std::vector<int> expected;
    for (int value = 0; value < 200; ++value) {
      list.addObjectIfNotInList(number(value));
      source.appendObject(number(value + 200));
      expected.push_back(value);
      expected.push_back(value + 200);
    }
    EXPECT_EQ(list.transferList(&source), 1);
    for (int value = 0; value < 400; ++value) {
      auto* const cell = list.searchAndRemoveObject(number(value));
      if (cell != nullptr) list.insertCell(cell);
    }
    EXPECT_EQ(orderFault(list, [](const auto*, const auto*) { return 0; }), "") << mode;
    std::vector<int> left = values(list);
    std::sort(left.begin(), left.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(left, expected) << mode;
  }
}

}  // namespace

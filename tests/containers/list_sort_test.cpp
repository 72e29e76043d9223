#include "nq/containers/list_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <vector>

#include "nq/containers/dlist.h"
#include "nq/containers/slist.h"
#include "nq/core/boxed_values.h"
#include "tests/containers/test_peer.h"
#include "tests/support/little_memory.h"

namespace {

// What the objects of the cells hold. The tens are the key, so that the units
// tell equals apart.
int keyOf(int value) {
  return value / 10;
}

struct Doubly {
  using List = NQDList;
  using Cell = NQDListCell;
  using Sorter = NQDListSort;
};

struct Singly {
  using List = NQSList;
  using Cell = NQSListCell;
  using Sorter = NQSListSort;
};

template <class Kind>
class KeySorter : public Kind::Sorter {
 public:
  long comparisons = 0;
  int deepest = 0;

 protected:
  int virtualCompare(typename Kind::Cell* a, typename Kind::Cell* b) override {
    ++comparisons;
    deepest = std::max(deepest, NQTestPeer::recursionDepth(*this));
    return keyOf(NQInt::castDown(a->pObject())->value()) -
           keyOf(NQInt::castDown(b->pObject())->value());
  }
  void virtualDebugOutputElement(typename Kind::Cell*) override {}
};

// A list of numbers with its objects.
template <class Kind>
struct Numbers {
  std::vector<NQInt> objects;
  typename Kind::List list;

  explicit Numbers(const std::vector<int>& values) {
    objects.reserve(values.size());
    for (const int value : values) objects.emplace_back(value);
    for (NQInt& object : objects) list.appendObject(&object);
  }

  // The values from front to back; fails when the list's links disagree.
  std::vector<int> values() const {
    std::vector<int> result;
    const typename Kind::Cell* last = nullptr;
    for (const auto* cell = list.pFirstCell(); cell != nullptr;
         cell = cell->pNextCell()) {
      if constexpr (requires { cell->pPreviousCell(); }) {
        EXPECT_EQ(cell->pPreviousCell(), last);
      }
      result.push_back(NQInt::castDown(cell->pObject())->value());
      last = cell;
    }
    EXPECT_EQ(list.pLastCell(), last);
    EXPECT_EQ(static_cast<std::size_t>(list.length()), result.size());
    return result;
  }
};

std::vector<int> stablySorted(std::vector<int> values) {
  std::stable_sort(values.begin(), values.end(),
                   [](int a, int b) { return keyOf(a) < keyOf(b); });
  return values;
}

// The quick sort's rules, on a vector: which of the equals come first is part of
// the result, and so is what its fallbacks leave in the changed flag.
std::vector<int> quicklySorted(const std::vector<int>& values, int* changed = nullptr,
                               int depth = 1) {
  if (values.size() < 2) return values;
  const auto less = [](int a, int b) { return keyOf(a) < keyOf(b); };
  const std::size_t places[] = {0, (values.size() + 1) / 2 - 1, values.size() - 1};
  const int f = values[places[0]];
  const int m = values[places[1]];
  const int l = values[places[2]];
  std::size_t pivotAt = places[1];
  if (less(l, m)) {
    if (less(f, m)) pivotAt = less(l, f) ? places[0] : places[2];
  } else {
    if (less(m, f)) pivotAt = less(l, f) ? places[2] : places[0];
  }
  const int pivot = values[pivotAt];
  std::vector<int> kept;
  std::vector<int> greater;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i == pivotAt) continue;
    const int order = keyOf(values[i]) - keyOf(pivot);
    (order > 0 || (order == 0 && i > pivotAt) ? greater : kept).push_back(values[i]);
  }
  const auto sorted = [=](const std::vector<int>& part) {
    if (depth < 31) return quicklySorted(part, changed, depth + 1);
    std::vector<int> stable = stablySorted(part);
    if (changed != nullptr && part.size() < 6) *changed = 0;  // a bubble sort
    if (changed != nullptr && stable != part) *changed = 1;
    return stable;
  };
  std::vector<int> result = sorted(kept);
  result.push_back(pivot);
  const std::vector<int> rest = sorted(greater);
  result.insert(result.end(), rest.begin(), rest.end());
  return result;
}

std::vector<int> randomValues(std::size_t count, int keys, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<int> values(count);
  for (int& value : values) {
    value = static_cast<int>(random() % static_cast<unsigned>(10 * keys));
  }
  return values;
}

// An input that makes the median of three split off two elements at a time.
std::vector<int> medianKiller(int pairs) {
  std::vector<int> values;
  for (int i = 1; i <= pairs; ++i) {
    values.push_back(10 * (i % 2 != 0 ? i : pairs + i - 1));
  }
  for (int i = 1; i <= pairs; ++i) values.push_back(10 * 2 * i);
  return values;
}

template <class Kind>
class ListSort : public testing::Test {};
using Kinds = testing::Types<Doubly, Singly>;
TYPED_TEST_SUITE(ListSort, Kinds);

// Sizes around those where the algorithms change hands.
constexpr std::size_t kSizes[] = {0, 1, 2, 3, 4, 5, 6, 7, 50, 1000, 4096, 4097, 20000};

TYPED_TEST(ListSort, SortsGiveTheOrderOfTheirRules) {
  for (const std::size_t size : kSizes) {
    for (const int keys : {1, 3, 100000}) {
      SCOPED_TRACE(testing::Message() << size << " cells, " << keys << " keys");
      const std::vector<int> values = randomValues(size, keys, 7);
      const std::vector<int> stable = stablySorted(values);
      const int changes = stable == values ? 0 : 1;
      KeySorter<TypeParam> sorter;

      Numbers<TypeParam> quick(values);
      EXPECT_EQ(sorter.quickSort(&quick.list, 1), changes);
      EXPECT_EQ(quick.values(), changes ? quicklySorted(values) : values);
      EXPECT_EQ(sorter.isSorted(&quick.list), 1);
      EXPECT_EQ(sorter.quickSort(&quick.list, 1), 0);

      Numbers<TypeParam> merged(values);
      EXPECT_EQ(sorter.mergeSort(&merged.list), changes);
      EXPECT_EQ(merged.values(), stable);
      EXPECT_EQ(sorter.mergeSort(&merged.list), 0);

      if (size > 1000) continue;
      Numbers<TypeParam> bubbled(values);
      EXPECT_EQ(sorter.bubbleSort(&bubbled.list), changes);
      EXPECT_EQ(bubbled.values(), stable);
      EXPECT_EQ(sorter.bubbleSort(&bubbled.list), 0);
    }
  }
}

TYPED_TEST(ListSort, QuickSortNestsNoDeeperThanItsLimit) {
  for (const int pairs : {100, 1000, 6000}) {
    const std::vector<int> values = medianKiller(pairs);
    Numbers<TypeParam> numbers(values);
    KeySorter<TypeParam> sorter;
    sorter.quickSort(&numbers.list, 0);
    EXPECT_EQ(numbers.values(), quicklySorted(values)) << pairs;
    EXPECT_EQ(sorter.deepest, 31) << pairs;
    EXPECT_LT(sorter.comparisons, 60L * 2 * pairs) << pairs;
  }
}

TYPED_TEST(ListSort, ChangedFlagIsOnlyWhatTheSortsLeaveInIt) {
  KeySorter<TypeParam> sorter;
  Numbers<TypeParam> numbers({20, 10});
  NQTestPeer::setChanged(sorter, 1);
  EXPECT_EQ(sorter.quickSort(nullptr, 1), 1);
  NQTestPeer::setChanged(sorter, 0);
  EXPECT_EQ(sorter.quickSort(&numbers.list, 0), 0);  // partitions leave it alone
  EXPECT_EQ(numbers.values(), (std::vector<int>{10, 20}));
  NQTestPeer::setChanged(sorter, 1);
  EXPECT_EQ(sorter.mergeSort(nullptr), 0);
  NQTestPeer::setChanged(sorter, 1);
  EXPECT_EQ(sorter.bubbleSort(nullptr), 0);
  EXPECT_EQ(sorter.isSorted(nullptr), 1);

  // A part of three that takes two levels, the second of them the last: 61 cells, of
  // which each level takes the first and the middle one away.
  std::vector<int> nested = {990, 990, 980};
  for (int level = 0; level < 29; ++level) {
    const auto middle = static_cast<std::ptrdiff_t>((nested.size() - 1) / 2);
    const int below = 970 - 20 * level;
    nested.insert(nested.begin() + middle, below);
    nested.insert(nested.begin(), below - 10);
  }
  int bubbled = 1;
  const std::vector<int> bubbledLast = quicklySorted(nested, &bubbled);
  Numbers<TypeParam> deep(nested);
  NQTestPeer::setChanged(sorter, 1);
  EXPECT_EQ(sorter.quickSort(&deep.list, 0), bubbled);
  EXPECT_EQ(bubbled, 0);
  EXPECT_EQ(deep.values(), bubbledLast);

  // About the lengths of which the depth limit leaves a few cells.
  for (int pairs = 60; pairs < 72; ++pairs) {
    for (const int largest : {640, 660, 680, 740, 1200, 1300, 1440}) {
      std::vector<int> values = medianKiller(pairs);
      for (int& value : values) value = std::min(value, largest);
      for (const int before : {0, 1}) {
        int changed = before;
        const std::vector<int> sorted = quicklySorted(values, &changed);
        Numbers<TypeParam> few(values);
        NQTestPeer::setChanged(sorter, before);
        EXPECT_EQ(sorter.quickSort(&few.list, 0), changed) << pairs << ", " << largest;
        EXPECT_EQ(few.values(), sorted) << pairs << ", " << largest;
      }
    }
  }
}

TYPED_TEST(ListSort, ExtremesAreTheFirstOfEquals) {
  KeySorter<TypeParam> sorter;
  Numbers<TypeParam> numbers({50, 31, 32, 91, 92});
  const auto valueOf = [](const auto* cell) {
    return NQInt::castDown(cell->pObject())->value();
  };
  EXPECT_EQ(valueOf(sorter.findSmallestElement(&numbers.list)), 31);
  EXPECT_EQ(valueOf(sorter.findLargestElement(&numbers.list)), 91);
  typename TypeParam::List empty;
  EXPECT_EQ(sorter.findSmallestElement(&empty), nullptr);
  EXPECT_EQ(sorter.findLargestElement(nullptr), nullptr);
}

// No cell may be lost and no sort may loop, whatever the comparison answers.
template <class Kind>
class MoodySorter : public Kind::Sorter {
 public:
  explicit MoodySorter(int mode) : mode_(mode) {}

 protected:
  int virtualCompare(typename Kind::Cell*, typename Kind::Cell*) override {
    return mode_ == 3 ? static_cast<int>(random_() % 3) - 1 : mode_ - 1;
  }
  void virtualDebugOutputElement(typename Kind::Cell*) override {}

 private:
  int mode_;
  std::mt19937 random_{3};
};

TYPED_TEST(ListSort, InconsistentComparisonsKeepEveryCell) {
  for (int mode = 0; mode <= 3; ++mode) {
    for (const std::size_t size : {5, 40, 5000}) {
      std::vector<int> values = randomValues(size, 1000, 5);
      Numbers<TypeParam> numbers(values);
      std::sort(values.begin(), values.end());
      MoodySorter<TypeParam> sorter(mode);
      const auto expectSameCells = [&] {
        std::vector<int> left = numbers.values();
        std::sort(left.begin(), left.end());
        EXPECT_EQ(left, values) << mode << ", " << size;
      };
      sorter.quickSort(&numbers.list, 0);
      expectSameCells();
      sorter.mergeSort(&numbers.list);
      expectSameCells();
      if (size < 5000) sorter.bubbleSort(&numbers.list);
      expectSameCells();
      if constexpr (requires { sorter.findIthElement(&numbers.list, 1); }) {
        EXPECT_NE(sorter.findIthElement(&numbers.list, numbers.list.length() / 2),
                  nullptr);
      }
    }
  }
}

// Throws instead of its n-th answer.
template <class Kind>
class FailingSorter : public KeySorter<Kind> {
 public:
  explicit FailingSorter(long answers) : answers_(answers) {}

 protected:
  int virtualCompare(typename Kind::Cell* a, typename Kind::Cell* b) override {
    if (--answers_ == 0) throw std::runtime_error("no answer");
    EXPECT_GT(answers_, 0) << "asked again";
    return KeySorter<Kind>::virtualCompare(a, b);
  }

 private:
  long answers_;
};

TYPED_TEST(ListSort, KeepsEveryCellWhenAComparisonThrows) {
  for (const std::size_t size : {3, 40, 6000}) {
    const std::vector<int> values = randomValues(size, 1000, 5);
    std::vector<int> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    for (const int sort : {0, 1, 2, 3}) {
      for (long answers = 1; answers < 200000; answers += answers / 3 + 1) {
        Numbers<TypeParam> numbers(values);
        FailingSorter<TypeParam> sorter(answers);
        const auto run = [&] {
          if (sort == 0) sorter.quickSort(&numbers.list, 0);
          if (sort == 1) sorter.quickSort(&numbers.list, 1);
          if (sort == 2) sorter.mergeSort(&numbers.list);
          if (sort == 3) sorter.bubbleSort(&numbers.list);
        };
        try {
          run();
          break;  // it has more answers than are asked
        } catch (const std::runtime_error&) {
        }
        std::vector<int> left = numbers.values();
        std::sort(left.begin(), left.end());
        ASSERT_EQ(left, sorted) << "sort " << sort << ", " << answers << " answers";
        if (sort == 3 && size > 1000 && answers > 10000) break;
      }
    }
  }
}

TEST(NQDListSort, FindsNoIthElementWithoutMemory) {
  if (!LittleMemory::kWorks) GTEST_SKIP();
  Numbers<Doubly> numbers(std::vector<int>(1 << 20));
  KeySorter<Doubly> sorter;
  const NQDListCell* found = numbers.list.pFirstCell();
  {
    LittleMemory little;
    found = sorter.findIthElement(&numbers.list, 7);
  }
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(sorter.comparisons, 0);
}

TEST(NQDListSort, FindsTheIthElementAndLeavesTheList) {
  for (const std::size_t size : {1, 2, 7, 300}) {
    const std::vector<int> values = randomValues(size, 20, 11);
    const std::vector<int> sorted = stablySorted(values);
    Numbers<Doubly> numbers(values);
    KeySorter<Doubly> sorter;
    for (nqLong i = 1; i <= numbers.list.length(); ++i) {
      const NQDListCell* const cell = sorter.findIthElement(&numbers.list, i);
      ASSERT_NE(cell, nullptr);
      EXPECT_EQ(keyOf(NQInt::castDown(cell->pObject())->value()),
                keyOf(sorted[static_cast<std::size_t>(i - 1)]));
    }
    EXPECT_EQ(sorter.findIthElement(&numbers.list, 0), nullptr);
    EXPECT_EQ(sorter.findIthElement(&numbers.list, numbers.list.length() + 1), nullptr);
    EXPECT_EQ(numbers.values(), values);
  }
  EXPECT_EQ(KeySorter<Doubly>().findIthElement(nullptr, 1), nullptr);
}

TEST(NQMemAddressDListSort, SortsByTheObjectsAddresses) {
  std::vector<NQInt> objects(100);
  std::vector<NQObject*> shuffled;
  shuffled.reserve(objects.size());
  for (NQInt& object : objects) shuffled.push_back(&object);
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(2));
  NQDList list;
  for (NQObject* const object : shuffled) list.appendObject(object);
  EXPECT_EQ(NQMemAddressDListSort().quickSort(&list, 1), 1);
  EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));
}

}  // namespace

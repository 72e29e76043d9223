#include "nq/containers/bin_heap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/containers/list_text.h"
#include "tests/support/bin_tree_check.h"
#include "tests/support/copy_protocol_check.h"

namespace {

using Cells = std::vector<NQBinHeapCell*>;

Cells cellsOf(const NQBinHeap& heap) {
  Cells result;
  for (auto* cell = heap.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
    result.push_back(cell);
  }
  return result;
}

bool valueGreater(const NQBinHeapCell* a, const NQBinHeapCell* b) {
  return a->value() > b->value();
}

// The heap as an array, by exchanges of neighbours alone.
class Model {
 public:
  const Cells& cells() const { return cells_; }
  std::size_t size() const { return cells_.size(); }

  void add(NQBinHeapCell* cell) {
    cells_.push_back(cell);
    up(size() - 1);
  }
  void remove(std::size_t at) {
    std::swap(cells_[at], cells_.back());
    cells_.pop_back();
    if (at < size()) up(down(at));
  }
  void change(std::size_t at) { up(down(at)); }
  void clear() { cells_.clear(); }

 private:
  void up(std::size_t at) {
    for (; at > 0 && valueGreater(cells_[(at - 1) / 2], cells_[at]); at = (at - 1) / 2) {
      std::swap(cells_[at], cells_[(at - 1) / 2]);
    }
  }
  std::size_t down(std::size_t at) {
    for (;;) {
      std::size_t smallest = at;
      for (const std::size_t child : {2 * at + 1, 2 * at + 2}) {
        if (child < size() && valueGreater(cells_[smallest], cells_[child])) {
          smallest = child;
        }
      }
      if (smallest == at) return at;
      std::swap(cells_[at], cells_[smallest]);
      at = smallest;
    }
  }

  Cells cells_;
};

// The same order, by a comparison of its own.
class Hooked : public NQBinHeap {
  int virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b) override {
    return NQBinHeap::virtualCompare(a, b);
  }
};

// Few values make many ties, and many hardly any; sizes stay around `size`.
template <class Heap>
void runBesideModel(unsigned seed, int values, std::size_t size, int steps,
                    int stepsBetweenChecks) {
  std::mt19937 random(seed);
  const auto below = [&](std::size_t bound) {
    return static_cast<std::size_t>(random() % bound);
  };
  const auto someValue = [&] {
    return static_cast<nqLong>(below(static_cast<std::size_t>(values))) - values / 2;
  };
  Heap heap;
  Model model;
  NQObject marked;
  for (int step = 0; step < steps; ++step) {
    const std::size_t at = below(model.size() + 1);
    NQBinHeapCell* const cell = at < model.size() ? model.cells()[at] : nullptr;
    switch (below(model.size() < size ? 10 : 14)) {
      case 0:
      case 1:
      case 2:
        model.add(heap.addObject(&marked, someValue()));
        break;
      case 3:
        model.add(heap.insertCell(new NQBinHeapCell(nullptr, someValue())));
        break;
      case 4:
      case 5:
      case 6:
        heap.changeValue(cell, someValue());
        if (cell != nullptr) model.change(at);
        break;
      case 7: {
        // A removed cell is free for another use.
        if (heap.removeCell(cell) == nullptr) break;
        model.remove(at);
        ASSERT_EQ(cell->pParent(), nullptr);
        model.add(heap.insertCell(cell));
        break;
      }
      case 8:
        heap.discardCell(cell);
        if (cell != nullptr) model.remove(at);
        break;
      case 9: {
        if (below(400) != 0) break;
        NQDList taken;
        if (below(2) == 0) taken.appendList(&heap);
        heap.deleteAllCells();
        model.clear();
        break;
      }
      default: {
        ASSERT_EQ(heap.pMinObject(), model.cells()[0]->pObject());
        const std::unique_ptr<NQBinHeapCell> least(heap.pExtractMinCell());
        ASSERT_EQ(least.get(), model.cells()[0]);
        model.remove(0);
      }
    }
    if (step % stepsBetweenChecks != 0) continue;
    ASSERT_EQ(findHeapFault(heap, valueGreater), "") << "step " << step;
    ASSERT_EQ(cellsOf(heap), model.cells()) << "step " << step;
  }
  ASSERT_EQ(cellsOf(heap), model.cells());
  std::vector<nqLong> drained;
  while (heap.length() > 0) {
    drained.push_back(heap.pFirstCell()->value());
    heap.discardCell(heap.pFirstCell());
  }
  ASSERT_TRUE(std::ranges::is_sorted(drained));
}

TEST(NQBinHeap, IsTheArrayHeapWhateverIsDone) {
  runBesideModel<NQBinHeap>(1, 3, 6, 40000, 1);
  runBesideModel<Hooked>(2, 3, 6, 20000, 1);
  runBesideModel<NQBinHeap>(3, 40, 30, 40000, 2);
  runBesideModel<Hooked>(4, 1000000, 200, 80000, 40);
  runBesideModel<NQBinHeap>(5, 1000000, 20000, 250000, 40000);
}

TEST(NQBinHeap, RefusesWhatIsNotThere) {
  NQBinHeap heap;
  EXPECT_EQ(heap.pMinObject(), nullptr);
  EXPECT_EQ(heap.pExtractMinCell(), nullptr);
  EXPECT_EQ(heap.insertCell(nullptr), nullptr);
  EXPECT_EQ(heap.removeCell(nullptr), nullptr);
  EXPECT_EQ(heap.searchAndRemoveObject(object('a')), nullptr);
  heap.discardCell(nullptr);
  heap.changeValue(nullptr, 1);
  heap.addObject(object('a'), std::numeric_limits<nqLong>::max());
  auto* const b = heap.addObject(object('b'), std::numeric_limits<nqLong>::min());
  EXPECT_EQ(heap.pMinObject(), object('b'));
  EXPECT_EQ(heap.sizeOf(), 96);
  NQBinHeapCell foreign(object('a'), 0);
  EXPECT_EQ(heap.searchAndRemoveCell(&foreign), nullptr);
  EXPECT_EQ(heap.removeCell(&foreign), nullptr);
  delete heap.searchAndRemoveCell(b);
  delete heap.searchAndRemoveObject(object('a'));
  EXPECT_EQ(heap.length(), 0);
}

TEST(NQBinHeap, DerivedHeapsOrderOtherwise) {
  class Largest : public NQBinHeap {
    int virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b) override {
      return b->value() < a->value() ? -1 : b->value() > a->value() ? 1 : 0;
    }
  } heap;
  for (const nqLong value : {3, 9, 1, 7, 7, 0}) heap.addObject(nullptr, value);
  heap.changeValue(heap.pLastCell(), 8);
  EXPECT_EQ(findHeapFault(heap, [](auto* a, auto* b) { return valueGreater(b, a); }), "");
  std::vector<nqLong> values;
  while (heap.length() > 0) {
    values.push_back(heap.pFirstCell()->value());
    heap.discardCell(heap.pFirstCell());
  }
  EXPECT_TRUE(std::is_sorted(values.rbegin(), values.rend()));
  EXPECT_EQ(values.size(), 6u);
}

// One that tells odd values from even ones only, and one that tells only what is
// greater: cells move as far as the answers go.
TEST(NQBinHeap, MovesCellsAsFarAsTheirComparisonTells) {
  class Parities : public NQBinHeap {
    int virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b) override {
      return (a->value() & 1) != (b->value() & 1) ? 0 : NQBinHeap::virtualCompare(a, b);
    }
  } parities;
  for (const nqLong value : {0, 3, 2}) parities.addObject(nullptr, value);
  NQBinHeapCell* const even = parities.pLastCell();
  parities.changeValue(parities.pFirstCell(), 8);
  EXPECT_EQ(parities.pFirstCell(), even) << "though not smaller than its sibling";

  class Greater : public NQBinHeap {
    int virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b) override {
      return a->value() > b->value() ? 1 : 0;
    }
  } greater;
  for (const nqLong value : {5, 4, 3, 2}) greater.addObject(nullptr, value);
  EXPECT_EQ(greater.pFirstCell()->value(), 2);
}

TEST(NQBinHeap, SurvivesComparisonsThatContradictThemselves) {
  class Fickle : public NQBinHeap {
    int virtualCompare(NQBinHeapCell*, NQBinHeapCell*) override {
      return static_cast<int>(random_() % 3) - 1;
    }
    std::mt19937 random_{5};
  } heap;
  std::mt19937 random(6);
  Cells cells;
  for (int step = 0; step < 20000; ++step) {
    const std::size_t at = cells.empty() ? 0 : random() % cells.size();
    switch (random() % (cells.empty() ? 1 : cells.size() > 50 ? 5 : 4)) {
      case 0:
      case 1:
        cells.push_back(heap.addObject(nullptr, 0));
        break;
      case 2:
        heap.changeValue(cells[at], step);
        break;
      case 3:
        heap.discardCell(std::exchange(cells[at], cells.back()));
        cells.pop_back();
        break;
      default: {
        NQBinHeapCell* const first = heap.pExtractMinCell();
        cells.erase(std::ranges::find(cells, first));
        delete first;
      }
    }
    ASSERT_EQ(findHeapFault(heap, [](auto*, auto*) { return false; }), "");
  }
}

TEST(NQBinHeap, ChangesNothingWhenAComparisonThrows) {
  class Failing : public NQBinHeap {
   public:
    int answers = 1 << 30;

   private:
    int virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b) override {
      if (--answers < 0) throw std::runtime_error("no answer");
      return NQBinHeap::virtualCompare(a, b);
    }
  } heap;
  for (const nqLong value : {1, 4, 9, 8, 5, 12, 11, 16, 9, 6}) {
    heap.addObject(nullptr, value);
  }
  const Cells cells = cellsOf(heap);
  NQBinHeapCell least(nullptr, 0);
  for (int answers = 0; answers < 2; ++answers) {
    const auto fails = [&](auto operation) {
      heap.answers = answers;
      EXPECT_THROW(operation(), std::runtime_error);
      EXPECT_EQ(findHeapFault(heap, valueGreater), "");
      EXPECT_EQ(cellsOf(heap), cells);
    };
    fails([&] { heap.insertCell(&least); });
    fails([&] { heap.addObject(nullptr, 0); });
    fails([&] { heap.pExtractMinCell(); });
    fails([&] { heap.discardCell(cells[1]); });
    fails([&] { heap.changeValue(cells[9], 0); });
    fails([&] { heap.changeValue(cells[0], 99); });
  }
}

TEST(NQBinHeap, CopiesObjectsWithTheirValues) {
  NQKept::Keeper keeper;
  NQKept one(1, keeper);
  NQKept two(2, keeper);
  NQBinHeap sample;
  sample.addObject(&one, 10);
  sample.addObject(nullptr, -5);
  sample.addObject(&two, 7);
  const auto contents = [](const NQBinHeap& heap) {
    std::vector<std::pair<int, nqLong>> result;
    for (const auto* cell : cellsOf(heap)) {
      result.emplace_back(valueOf(cell->pObject()), cell->value());
    }
    return result;
  };
  const auto makeOther = [] {
    auto heap = std::make_unique<NQBinHeap>();
    heap->addObject(nullptr, 1);
    return heap;
  };
  checkCopyProtocol(
      sample, makeOther,
      [&](const NQBinHeap& a, const NQBinHeap& b) {
        return findHeapFault(b, valueGreater).empty() && contents(a) == contents(b) &&
               a.compare(&b) == 0;
      },
      [](const NQBinHeap&, const NQBinHeap& b) { return b.length() <= 1; });

  NQBinHeap same;
  EXPECT_EQ(same.copyAllCells(&sample), 1);
  EXPECT_EQ(same.compare(&sample), 1);
  EXPECT_EQ(contents(same), contents(sample));
  EXPECT_EQ(same.copyAllCells(nullptr), 0);
  EXPECT_EQ(same.length(), 0);

  NQBinHeapCell cell(&one, 3);
  checkCopyProtocol(
      cell, [] { return std::make_unique<NQBinHeapCell>(nullptr, 4); },
      [](const NQBinHeapCell& a, const NQBinHeapCell& b) {
        return valueOf(a.pObject()) == valueOf(b.pObject()) && a.value() == b.value() &&
               b.pParent() == nullptr;
      });
}

TEST(NQBinHeap, OwnsObjectsOnlyWhereItSaysSo) {
  const int before = NQCounted::live();
  {
    NQBinHeap heap;
    for (const int value : {4, 2, 9}) heap.addObject(new NQCounted(value), value);
    NQBinHeap sharing;
    sharing.copyAllCells(&heap);
    EXPECT_EQ(heap.copyAllCellsAndObjects(&sharing), 1);
    EXPECT_EQ(NQCounted::live(), before + 3);
    EXPECT_EQ(valueOf(heap.pMinObject()), 2);
    sharing.deleteAllCells();
    heap.deleteAllCellsAndObjects();
    EXPECT_EQ(heap.pMinObject(), nullptr);
    heap.addObject(nullptr, 1);
    EXPECT_EQ(findHeapFault(heap, valueGreater), "");
  }
  EXPECT_EQ(NQCounted::live(), before);
}

}  // namespace

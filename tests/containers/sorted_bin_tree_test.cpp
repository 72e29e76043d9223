#include "nq/containers/sorted_bin_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <random>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "tests/containers/list_text.h"
#include "tests/support/bin_tree_check.h"
#include "tests/support/copy_protocol_check.h"

namespace {

// Ordered by value; nulls first.
class ByValue : public NQSortedBinTree {
  NQ_COPY_PROTOCOL(ByValue)

 public:
  explicit ByValue(int exclusive = 0) { exclusiveColors(exclusive); }

 protected:
  void init() {}
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    return valueOf(a) < valueOf(b) ? -5 : valueOf(a) > valueOf(b) ? 7 : 0;
  }
};

NQ_COPY_PROTOCOL_IMPL(ByValue)

void ByValue::ByValuedeepCopy(const ByValue& source) {
  NQCopyAccess::deep<NQSortedBinTree>(*this, source);
}

void ByValue::ByValueattributeCopy(const ByValue& source) {
  NQCopyAccess::attributes<NQSortedBinTree>(*this, source);
}

std::vector<const NQObject*> objectsOf(const NQBinTree& tree) {
  return {tree.begin(), tree.end()};
}

// A sorted vector in which the newest of equal objects comes first.
class Model {
 public:
  std::vector<const NQObject*> objects;

  void add(const NQObject* object) {
    objects.insert(std::ranges::lower_bound(objects, valueOf(object), {}, valueOf),
                   object);
  }
  bool remove(const NQObject* object) {
    const auto found = std::ranges::find(objects, object);
    if (found == objects.end()) return false;
    objects.erase(found);
    return true;
  }
};

// `keys` different values; sizes stay around `size`.
void runBesideModel(int exclusive, int keys, std::size_t size, int steps,
                    int stepsBetweenChecks) {
  std::mt19937 random(7);
  const auto below = [&](std::size_t bound) {
    return static_cast<std::size_t>(random() % bound);
  };
  ByValue tree(exclusive);
  Model model;
  std::deque<NQCounted> all;
  for (std::size_t i = 0; i < 3 * size; ++i) {
    all.emplace_back(static_cast<int>(below(static_cast<std::size_t>(keys))));
  }
  for (int step = 0; step < steps; ++step) {
    NQCounted* const one = &all[below(all.size())];
    const bool present = tree.searchObject(one) != nullptr;
    switch (below(6)) {
      case 0:
      case 1:
      case 2:
        if (present || model.objects.size() > size) break;
        ASSERT_EQ(tree.addObject(one)->pObject(), one);
        model.add(one);
        break;
      case 3: {
        NQBinTreeCell* const cell = tree.searchAndRemoveObject(one);
        ASSERT_EQ(cell != nullptr, model.remove(one)) << "step " << step;
        delete cell;
        break;
      }
      case 4: {
        // A known cell is found, removed, and becomes the newest of its value.
        NQBinTreeCell* const cell = tree.searchObject(one);
        ASSERT_EQ(tree.searchCell(cell), cell);
        ASSERT_EQ(tree.searchAndRemoveCell(cell), cell);
        ASSERT_EQ(tree.insertCell(cell), cell);
        if (model.remove(one)) model.add(one);
        break;
      }
      default: {
        if (below(50) != 0) break;
        // Everything or a part goes to another tree or list and comes back.
        NQBinTree parts;
        const auto count = static_cast<nqLong>(below(4));
        if (model.objects.size() > 8) {
          parts.transferListPart(nullptr, &tree, tree.pCellInPosition(2),
                                 tree.pCellInPosition(2 + count));
        }
        for (const NQObject* const each : objectsOf(parts)) {
          model.remove(each);
          model.add(each);
        }
        ASSERT_EQ(tree.transferList(&parts), 1);
      }
    }
    if (step % stepsBetweenChecks != 0) continue;
    ASSERT_EQ(checkBinTree(tree).fault, "") << "step " << step;
    ASSERT_EQ(objectsOf(tree), model.objects) << "step " << step;
  }
}

TEST(NQSortedBinTree, IsTheSortedVectorWhateverIsDone) {
  for (const int exclusive : {0, 1}) {
    runBesideModel(exclusive, 4, 12, 60000, 3);
    runBesideModel(exclusive, 1000000, 60, 60000, 6);
  }
  runBesideModel(1, 1000000, 4000, 200000, 5000);
  runBesideModel(1, 50, 1000, 40000, 2000);
}

TEST(NQSortedBinTree, PutsTheNewestOfEqualsFirstAndFindsEach) {
  std::deque<NQCounted> equal;
  ByValue tree;
  for (int i = 0; i < 40; ++i) tree.addObject(&equal.emplace_back(i == 20 ? 1 : 0));
  EXPECT_EQ(tree.pFirstCell()->pObject(), &equal.back());
  EXPECT_EQ(tree.pLastCell()->pObject(), &equal[20]);
  for (NQCounted& each : equal) EXPECT_EQ(tree.searchObject(&each)->pObject(), &each);
  NQCounted stranger(0);
  NQBinTreeCell strange(&stranger);
  EXPECT_EQ(tree.searchObject(&stranger), nullptr);
  EXPECT_EQ(tree.searchCell(&strange), nullptr);
  EXPECT_EQ(tree.searchCell(nullptr), nullptr);
  EXPECT_EQ(tree.searchObject(nullptr), nullptr);
  EXPECT_EQ(tree.insertCell(nullptr), nullptr);
  EXPECT_EQ(ByValue().searchObject(&stranger), nullptr);
  tree.addObject(nullptr);
  EXPECT_EQ(tree.searchObject(nullptr), tree.pFirstCell());
  delete tree.searchAndRemoveObject(nullptr);
  EXPECT_EQ(checkBinTree(tree).fault, "");
  EXPECT_EQ(tree.length(), 40);
}

TEST(NQSortedBinTree, SortsWhatItTakesIn) {
  std::deque<NQCounted> objects;
  NQDList list;
  NQBinTree source;
  for (const int value : {5, 1, 4, 1, 3}) {
    list.appendObject(&objects.emplace_back(value));
    source.appendObject(&objects.back());
  }
  const auto valuesOf = [](const NQDList& of) {
    std::vector<int> result;
    for (const NQObject* const each : of) result.push_back(valueOf(each));
    return result;
  };
  using Values = std::vector<int>;
  ByValue tree(1);
  EXPECT_EQ(tree.copyTransferListPart(&list, list.pCellInPosition(2), list.pLastCell()),
            1);
  EXPECT_EQ(valuesOf(tree), (Values{1, 1, 3, 4}));
  EXPECT_EQ(
      tree.transferListPart(&source, source.pFirstCell(), source.pCellInPosition(3)), 1);
  EXPECT_EQ(valuesOf(tree), (Values{1, 1, 1, 3, 4, 4, 5}));
  EXPECT_EQ(valuesOf(source), (Values{1, 3}));
  EXPECT_EQ(tree.copyTransferListPart(&list, list.pLastCell(), list.pFirstCell()), 0);
  EXPECT_EQ(tree.transferListPart(&source, source.pFirstCell(), nullptr), 0);
  EXPECT_EQ(tree.transferList(nullptr) + tree.copyTransferList(nullptr), 0);
  EXPECT_EQ(tree.transferList(&tree) + tree.copyTransferList(&tree), 0);
  EXPECT_EQ(tree.transferList(&source) + tree.copyTransferList(&list), 2);
  EXPECT_EQ(valuesOf(tree), (Values{1, 1, 1, 1, 1, 1, 3, 3, 3, 4, 4, 4, 5, 5}));
  EXPECT_EQ(source.length(), 0);
  EXPECT_EQ(checkBinTree(tree).fault, "");

  // Copies are sorted too, unless the source is already.
  NQBinTree unsorted;
  unsorted.copyAllCells(&list);
  const NQSList single(list);
  const auto copied = [&](int result) {
    EXPECT_EQ(result, 1);
    const Values values = valuesOf(tree);
    for (NQObject* const each : tree) EXPECT_NE(tree.searchObject(each), nullptr);
    return values;
  };
  const Values sorted{1, 1, 3, 4, 5};
  EXPECT_EQ(copied(tree.copyAllCells(&list)), sorted);
  EXPECT_EQ(copied(tree.copyAllCells(&single)), sorted);
  EXPECT_EQ(copied(tree.copyAllCells(&unsorted)), sorted);
  ByValue same;
  EXPECT_EQ(same.copyAllCells(&tree), 1);
  EXPECT_EQ(same.compare(&tree), 1);
  const int before = NQCounted::live();
  for (int form = 0; form < 4; ++form) {
    EXPECT_EQ(copied(form == 0   ? tree.copyAllCellsAndObjects(&list)
                     : form == 1 ? tree.copyAllCellsAndObjects(&single)
                     : form == 2 ? tree.copyAllCellsAndObjects(&unsorted)
                                 : tree.copyAllCellsAndObjects(&same)),
              sorted);
    EXPECT_EQ(NQCounted::live(), before + 5);
    tree.deleteAllCellsAndObjects();
  }
}

// Throws when its answers are used up.
class Failing : public NQSortedBinTree {
 public:
  mutable int answers = 1 << 30;

 protected:
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    if (--answers < 0) throw std::runtime_error("no answer");
    return valueOf(a) - valueOf(b);
  }
};

TEST(NQSortedBinTree, KeepsEveryCellWhenAComparisonThrows) {
  std::deque<NQCounted> objects;
  for (int i = 0; i < 12; ++i) objects.emplace_back(i * 5 % 12);
  for (int answers = 0; answers < 15; ++answers) {
    for (const bool whole : {true, false}) {
      Failing tree;
      NQBinTree source;
      for (std::size_t i = 0; i < 4; ++i) tree.addObject(&objects[i]);
      for (std::size_t i = 4; i < 12; ++i) source.appendObject(&objects[i]);
      tree.answers = answers;
      EXPECT_THROW(whole ? tree.transferList(&source)
                         : tree.transferListPart(&source, source.pCellInPosition(2),
                                                 source.pCellInPosition(7)),
                   std::runtime_error);
      EXPECT_EQ(checkBinTree(tree).fault, "");
      EXPECT_EQ(checkBinTree(source).fault, "");
      EXPECT_EQ(tree.length() + source.length(), 12);
      // What stayed has its old order.
      nqLong last = -1;
      for (const NQObject* const each : source) {
        const auto place = static_cast<const NQCounted*>(each) - &objects[0];
        EXPECT_GT(place, last);
        last = static_cast<nqLong>(place);
      }
      const nqLong before = tree.length();
      tree.answers = 0;
      NQBinTreeCell cell(&objects[0]);
      EXPECT_THROW(tree.addObject(&objects[0]), std::runtime_error);
      EXPECT_THROW(tree.insertCell(&cell), std::runtime_error);
      EXPECT_EQ(tree.length(), before);
    }
  }
  // It does not state the copy protocol.
  const Failing unstated;
  const std::unique_ptr<NQBinTree> clone(unstated.cloneObject());
  const NQObject& plain = *clone;
  EXPECT_EQ(typeid(plain), typeid(NQBinTree));
}

TEST(NQSortedBinTree, KeepsItsOrderInCopies) {
  NQKept::Keeper keeper;
  std::vector<std::unique_ptr<NQKept>> kept;
  ByValue sample(1);
  for (const int value : {3, 1, 2, 1}) {
    sample.addObject(kept.emplace_back(std::make_unique<NQKept>(value, keeper)).get());
  }
  checkCopyProtocol(
      sample, [] { return std::make_unique<ByValue>(); },
      [](const ByValue& a, const ByValue& b) {
        return checkBinTree(b).fault.empty() && b.exclusiveColors() == 1 &&
               std::ranges::equal(a, b, {}, valueOf, valueOf) && a.compare(&b) == 0;
      },
      [](const ByValue&, const ByValue& b) { return b.length() == 0; });
}

TEST(NQSortedBinTree, SurvivesComparisonsThatContradictThemselves) {
  class Fickle : public NQSortedBinTree {
   protected:
    int virtualObjectCompare(const NQObject*, const NQObject*) const override {
      return static_cast<int>(random_() % 5) - 2;
    }
    mutable std::mt19937 random_{9};
  };
  std::mt19937 random(10);
  std::deque<NQObject> objects(100);
  for (const int exclusive : {0, 1}) {
    Fickle tree;
    tree.exclusiveColors(exclusive);
    for (int step = 0; step < 20000; ++step) {
      NQObject* const one = &objects[random() % objects.size()];
      if (tree.length() < 60 && random() % 2 == 0) tree.addObject(one);
      delete tree.searchAndRemoveObject(one);
      tree.searchCell(tree.pLastCell());
      ASSERT_EQ(checkBinTree(tree).fault, "") << "step " << step;
    }
  }
}

}  // namespace

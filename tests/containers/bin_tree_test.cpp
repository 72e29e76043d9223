#include "nq/containers/bin_tree.h"

#include <gtest/gtest.h>

#include "nq/containers/bin_heap.h"
#include "nq/containers/list_sort.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/containers/list_text.h"
#include "tests/support/bin_tree_check.h"
#include "tests/support/copy_protocol_check.h"

namespace {

using Cells = std::vector<NQBinTreeCell*>;

Cells cellsOf(const NQBinTree& tree) {
  Cells result;
  for (auto* cell = tree.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
    result.push_back(cell);
  }
  return result;
}

// The kinds of tree, which differ in nothing but depth.
struct Kind {
  const char* name;
  int type;
  int exclusive;
};
class BinTree : public ::testing::TestWithParam<Kind> {
 protected:
  std::unique_ptr<NQBinTree> treeOf(const std::string& text) const {
    auto tree = std::make_unique<NQBinTree>(GetParam().type);
    EXPECT_EQ(tree->exclusiveColors(GetParam().exclusive), GetParam().exclusive);
    for (const char name : text) tree->appendObject(object(name));
    return tree;
  }
};
const Kind kKinds[] = {{"Established", 1, 0}, {"Exclusive", 1, 1}, {"Unbalanced", 0, 0}};
INSTANTIATE_TEST_SUITE_P(All, BinTree, ::testing::ValuesIn(kKinds),
                         [](const auto& kind) { return kind.param.name; });

std::string checkedText(const NQBinTree& tree) {
  EXPECT_EQ(checkBinTree(tree).fault, "");
  return text(tree);
}

// Two trees and their models, through every operation.
TEST_P(BinTree, BehavesLikeAVectorOfCells) {
  std::mt19937 random(20240301);
  const auto below = [&](std::size_t bound) {
    return bound == 0 ? 0 : static_cast<std::size_t>(random() % bound);
  };
  const std::unique_ptr<NQBinTree> trees[] = {treeOf(""), treeOf("")};
  Cells models[2];
  for (int step = 0; step < 30000; ++step) {
    const std::size_t which = below(2);
    NQBinTree& tree = *trees[which];
    NQBinTree& other = *trees[1 - which];
    Cells& model = models[which];
    Cells& otherModel = models[1 - which];
    const auto holds = [&](const NQObject* wanted) {
      return std::ranges::any_of(
          model, [&](const auto* cell) { return cell->pObject() == wanted; });
    };
    // Takes over what a copy has added.
    const auto adopt = [&] { model = cellsOf(tree); };
    const std::size_t at = below(model.size() + 1);  // behind so many cells
    const auto place = model.begin() + static_cast<std::ptrdiff_t>(at);
    NQBinTreeCell* const after = at == 0 ? nullptr : model[at - 1];
    NQBinTreeCell* const before = at == model.size() ? nullptr : model[at];
    NQObject* const some = object(static_cast<char>('a' + below(26)));
    const std::size_t from = below(otherModel.size());
    const std::size_t to = from + below(otherModel.size() - from);
    const auto run = [&] {
      return Cells(otherModel.begin() + static_cast<std::ptrdiff_t>(from),
                   otherModel.begin() + static_cast<std::ptrdiff_t>(to) + 1);
    };
    switch (below(model.size() > 50 ? 26 : 20)) {
      case 0:
        model.insert(place, tree.addObject(after, some));
        break;
      case 1: {
        auto* const cell = tree.insertAfter(after, new NQBinTreeCell(some, 1));
        model.insert(after == nullptr ? model.end() : place, cell);
        break;
      }
      case 2: {
        auto* const cell = tree.insertBefore(before, new NQBinTreeCell(some, 2));
        model.insert(before == nullptr ? model.begin() : place, cell);
        break;
      }
      case 3:
        model.insert(after == nullptr ? model.end() : place, tree.addAfter(after, some));
        break;
      case 4:
        model.insert(before == nullptr ? model.begin() : place,
                     tree.addBefore(before, some));
        break;
      case 5:
        model.push_back(tree.appendObject(some));
        model.insert(model.begin(), tree.prependObject(some));
        break;
      case 6:
      case 7:
        ASSERT_EQ(tree.removeCell(before), before);
        if (before == nullptr) break;
        model.erase(place);
        delete before;
        break;
      case 8: {
        // A removed cell is free for any place in either tree.
        auto* const cell = tree.searchAndRemoveCell(before);
        ASSERT_EQ(cell, before);
        if (cell == nullptr) break;
        model.erase(place);
        const std::size_t into = below(otherModel.size() + 1);
        other.insertCell(into == 0 ? nullptr : otherModel[into - 1], cell);
        otherModel.insert(otherModel.begin() + static_cast<std::ptrdiff_t>(into), cell);
        break;
      }
      case 9: {
        auto* const cell = tree.searchAndRemoveObject(some);
        ASSERT_EQ(cell != nullptr, holds(some));
        if (cell != nullptr) model.erase(std::ranges::find(model, cell));
        delete cell;
        break;
      }
      case 10:
      case 11: {
        const std::size_t with = below(model.size());
        tree.swapPosition(before, model.empty() ? nullptr : model[with]);
        if (before != nullptr) std::swap(model[at], model[with]);
        break;
      }
      case 12: {
        const bool present = holds(some);
        auto* const cell = tree.addObjectIfNotInList(after, some);
        ASSERT_EQ(cell->pObject(), some);
        if (!present) model.insert(place, cell);
        break;
      }
      case 13:
        if (otherModel.empty()) break;
        ASSERT_EQ(tree.transferListPart(after, &other, otherModel[from], otherModel[to]),
                  1);
        {
          const Cells moved = run();
          std::erase_if(otherModel, [&](auto* cell) {
            return std::ranges::find(moved, cell) != moved.end();
          });
          model.insert(place, moved.begin(), moved.end());
        }
        break;
      case 14:
        if (model.size() > 100) break;
        ASSERT_EQ(tree.transferList(after, &other), 1);
        model.insert(place, otherModel.begin(), otherModel.end());
        otherModel.clear();
        break;
      case 15: {
        if (otherModel.empty() || model.size() > 100) break;
        tree.copyTransferListPart(after, &other, otherModel[from], otherModel[to]);
        const Cells copied = run();
        const Cells result = cellsOf(tree);
        ASSERT_EQ(result.size(), model.size() + copied.size());
        for (std::size_t i = 0; i < copied.size(); ++i) {
          ASSERT_EQ(result[at + i]->pObject(), copied[i]->pObject());
        }
        adopt();
        break;
      }
      case 16:
        tree.reverse();
        std::ranges::reverse(model);
        break;
      case 17: {
        // The same as for lists, position by position.
        NQDList expected;
        NQDList source;
        expected.copyAllCells(&tree);
        source.copyAllCells(&other);
        if (below(2) == 0) {
          expected.copyAppendListIfNotInList(&source);
          tree.copyAppendListIfNotInList(&other);
        } else {
          expected.prependListIfNotInList(&source);
          tree.prependListIfNotInList(&other);
        }
        ASSERT_EQ(tree.NQDList::compare(&expected), 1);
        if (source.length() != other.length()) source.copyAllCells(&other);
        ASSERT_EQ(other.NQDList::compare(&source), 1);
        adopt();
        otherModel = cellsOf(other);
        break;
      }
      case 18:
        if (below(8) != 0) break;
        if (below(2) == 0) {
          static_cast<NQDList&>(tree).deleteAllCells();
        } else {
          NQDList taken;
          taken.appendList(&tree);
        }
        model.clear();
        break;
      case 19: {
        if (model.empty()) break;
        const std::size_t b = below(model.size());
        const std::size_t a = below(model.size());
        ASSERT_EQ(tree.compare(model[a], model[b]), a < b ? -1 : a > b ? 1 : 0);
        ASSERT_EQ(tree.pCellInPosition(static_cast<nqLong>(a) + 1), model[a]);
        break;
      }
      default:
        tree.discardCell(before);
        if (before != nullptr) model.erase(place);
    }
    if (step % 4 != 0) continue;
    for (const int i : {0, 1}) {
      ASSERT_EQ(checkBinTree(*trees[i]).fault, "") << "step " << step;
      ASSERT_EQ(cellsOf(*trees[i]), models[i]) << "step " << step;
      auto object = trees[i]->end();
      for (std::size_t k = models[i].size(); k-- > 0;) {
        ASSERT_EQ(*--object, models[i][k]->pObject()) << "backward, step " << step;
      }
      ASSERT_EQ(object, trees[i]->begin());
    }
  }
}

TEST_P(BinTree, RefusesWhatListsRefuse) {
  const auto tree = treeOf("abc");
  const auto other = treeOf("xyz");
  auto* const first = tree->pFirstCell();
  auto* const x = other->pFirstCell();
  auto* const z = other->pLastCell();
  EXPECT_EQ(tree->insertCell(first, nullptr), nullptr);
  EXPECT_EQ(tree->insertCellIfNotInList(first, nullptr), nullptr);
  EXPECT_EQ(tree->removeCell(nullptr), nullptr);
  EXPECT_EQ(tree->searchAndRemoveCell(x), nullptr);
  const NQBinTreeCell free(object('a'));
  EXPECT_EQ(tree->removeCell(const_cast<NQBinTreeCell*>(&free)), nullptr);
  tree->swapPosition(first, nullptr);
  tree->discardCell(nullptr);
  for (NQBinTree* const source : {static_cast<NQBinTree*>(nullptr), tree.get()}) {
    EXPECT_EQ(tree->transferList(nullptr, source), 0);
    EXPECT_EQ(tree->transferListPart(first, source, first, first), 0);
    EXPECT_EQ(tree->transferListIfNotInList(first, source), 0);
    EXPECT_EQ(tree->copyTransferList(first, source), 0);
    EXPECT_EQ(tree->copyTransferListIfNotInList(first, source), 0);
    EXPECT_EQ(tree->merge(source, other.get()), 0);
    EXPECT_EQ(tree->merge(other.get(), source), 0);
  }
  EXPECT_EQ(tree->transferListPart(first, other.get(), z, x), 0);
  EXPECT_EQ(tree->transferListPart(first, other.get(), nullptr, x), 0);
  EXPECT_EQ(tree->transferListPartIfNotInList(first, other.get(), x, nullptr), 0);
  EXPECT_EQ(tree->copyTransferListPart(first, other.get(), z, x), 0);
  EXPECT_EQ(checkedText(*tree) + checkedText(*other), "abcxyz");

  const auto empty = treeOf("");
  EXPECT_EQ(tree->appendList(empty.get()) + tree->copyPrependList(empty.get()), 2);
  EXPECT_EQ(empty->merge(tree.get(), other.get()), 1);
  EXPECT_EQ(checkedText(*empty), "axbycz");
  EXPECT_EQ(checkedText(*tree) + checkedText(*other), "");

  // No order between cells of different trees.
  const auto stranger = treeOf("ab");
  EXPECT_EQ(stranger->compare(stranger->pLastCell(), x), 0);
  EXPECT_EQ(stranger->compare(nullptr, stranger->pLastCell()), 0);
  EXPECT_EQ(checkedText(*stranger) + checkedText(*empty), "abaxbycz");
}

TEST_P(BinTree, CopiesTypeAndColoursWithTheObjects) {
  NQKept::Keeper keeper;
  NQKept one(1, keeper);
  NQKept two(2, keeper);
  const auto sample = treeOf("-");
  sample->appendObject(&one);
  sample->prependObject(&two);
  const auto values = [](const NQBinTree& tree) {
    std::vector<int> result;
    for (const NQObject* const each : tree) result.push_back(valueOf(each));
    return result;
  };
  checkCopyProtocol(
      *sample, [] { return std::make_unique<NQBinTree>(7); },
      [&](const NQBinTree& a, const NQBinTree& b) {
        return checkBinTree(b).fault.empty() && values(a) == values(b) &&
               a.binTreeType() == b.binTreeType() &&
               a.exclusiveColors() == b.exclusiveColors() && a.compare(&b) == 0;
      },
      [](const NQBinTree& a, const NQBinTree& b) {
        return b.length() == 0 && a.binTreeType() == b.binTreeType() &&
               a.exclusiveColors() == b.exclusiveColors();
      });
  NQBinTree holding(7);
  holding.appendObject(nullptr);
  holding.copyAttributes(sample.get());
  EXPECT_EQ(holding.binTreeType(), 7) << "its cells would not fit";
  const auto target = treeOf("xy");
  EXPECT_EQ(target->copyAllCells(sample.get()), 1);
  EXPECT_EQ(target->compare(sample.get()), 1);
  EXPECT_EQ(target->copyAllCellsAndObjects(static_cast<NQDList*>(nullptr)), 0);
  EXPECT_EQ(checkedText(*target), "");
  EXPECT_EQ(target->copyAllCells(listOf<NQSList>("a-b").get()), 1);
  EXPECT_EQ(checkedText(*target), "a-b");
  NQSList shared;
  shared.copyAllCells(sample.get());
  EXPECT_EQ(target->copyAllCellsAndObjects(&shared), 1);
  EXPECT_EQ(values(*target), values(*sample));
}

// What the list's operations do to a tree, or a heap, that they take for a list.
template <class Tree, class Fault>
void checkListOperationsKeepPlaces(Tree& tree, Fault fault) {
  const std::string before = text(tree);
  NQDList& list = tree;
  NQDListCell* const first = list.pFirstCell();
  NQDListCell* const second = first->pNextCell();
  NQDList other;
  fill(other, "xy");
  NQSList single;
  single.appendObject(object('x'));
  NQDListCell cell(object('x'));
  NQMemAddressDListSort sorter;
  EXPECT_EQ(list.insertCell(first, &cell), nullptr);
  EXPECT_EQ(list.addObject(first, object('x')), nullptr);
  EXPECT_EQ(list.appendObjectIfNotInList(object('x')), nullptr);
  EXPECT_EQ(list.removeCell(second), nullptr);
  EXPECT_EQ(list.searchAndRemoveObject(first->pObject()), nullptr);
  EXPECT_EQ(list.reverse(), 0);
  EXPECT_EQ(list.appendList(&other), 0);
  EXPECT_EQ(list.appendListIfNotInList(&other), 0);
  EXPECT_EQ(list.copyAppendList(&other), 0);
  EXPECT_EQ(list.merge(&other, &other), 0);
  EXPECT_EQ(other.transferListPart(nullptr, &list, second, second), 0);
  EXPECT_EQ(other.transferListIfNotInList(nullptr, &list), 0);
  list.discardCell(second);
  list.swapPosition(first, second);
  sorter.mergeSort(&list);
  sorter.bubbleSort(&list);
  sorter.quickSort(&list, 0);
  EXPECT_EQ(text(other), "xy");
  EXPECT_EQ(text(tree), before);
  EXPECT_EQ(fault(), "");
  EXPECT_EQ(list.copyAllCells(&single), 0) << "which empties it all the same";
  EXPECT_EQ(text(tree), "");
  EXPECT_EQ(fault(), "");
}

TEST_P(BinTree, IsNotReorderedAsAList) {
  const auto tree = treeOf("dacb");
  checkListOperationsKeepPlaces(*tree, [&] { return checkBinTree(*tree).fault; });
  NQBinHeap heap;
  for (const char name : {'d', 'a', 'c', 'b'}) heap.addObject(object(name), name);
  checkListOperationsKeepPlaces(heap, [&] {
    return findHeapFault(heap, [](auto* a, auto* b) { return a->value() > b->value(); });
  });
}

TEST(NQBinTree, LeavesObjectsAloneWhereListsWouldDeleteThem) {
  const int before = NQCounted::live();
  NQBinTree tree;
  NQBinTree source;
  NQCounted one(1);
  NQCounted two(2);
  tree.appendObject(&one);
  source.appendObject(&two);
  tree.copyAllCellsAndObjects(&source);
  const std::unique_ptr<NQObject> clone(tree.pObjectInPosition(1));
  tree = source;
  EXPECT_EQ(NQCounted::live(), before + 4);
  EXPECT_EQ(valueOf(tree.pObjectInPosition(1)), 2);
  tree.deleteAllCellsAndObjects();
  EXPECT_EQ(NQCounted::live(), before + 3);
}

TEST(NQBinTree, TellsItsSettingsAndFigures) {
  NQBinTree tree;
  EXPECT_EQ(tree.binTreeType() * 10 + tree.exclusiveColors(), 10);
  EXPECT_EQ(tree.exclusiveColors(5), 1);
  EXPECT_EQ(tree.sizeOf(), 120);
  tree.appendObject(nullptr);
  EXPECT_EQ(tree.exclusiveColors(0), 1) << "only an empty tree can change";
  EXPECT_EQ(tree.sizeOf(), 184);
  EXPECT_EQ(tree.pFirstCell()->sizeOf(), 32);
  tree.deleteAllFromBinTree();
  EXPECT_EQ(tree.exclusiveColors(0), 0);
}

// With the established colours, the depth of each cell and its colour, m for both,
// as worked out by a model of its own. Their order would survive other rules.
TEST(NQBinTree, KeepsTheEstablishedShapes) {
  const struct {
    int insertionStep, insertions, removals, removalStep;
    const char* shape;
  } kRows[] = {
      {0, 8, 0, 0, "4r 3m 2m 3m 1m 2m 0m 1m"},
      {1, 9, 2, 0, "6m 5m 4m 3m 2m 1m 0m"},
      {5, 14, 0, 0, "2m 1m 3m 2m 4m 3m 5m 4m 6r 5m 6m 0m 1m 2r"},
      {5, 14, 4, 3, "7m 9m 8m 6m 5m 4m 3m 2m 1m 0m"},
      {7, 20, 9, 3, "10m 9m 8m 7m 6m 5m 4m 3m 2m 1m 0m"},
      {13, 24, 10, 11, "13m 12m 11m 10m 9m 8m 7m 6m 5m 4m 3m 2m 1m 0m"},
      {9, 26, 12, 17, "9m 11m 13m 12m 10m 8m 7m 6m 5m 4m 3m 2m 1m 0m"},
      {3, 30, 20, 5, "8m 9m 7m 6m 5m 4m 3m 2m 1m 0m"},
  };
  for (const auto& row : kRows) {
    NQBinTree tree;
    for (int i = 0; i < row.insertions; ++i) {
      tree.addObject(tree.pCellInPosition(i * row.insertionStep % (i + 1)), nullptr);
    }
    for (int i = 0; i < row.removals; ++i) {
      tree.discardCell(tree.pCellInPosition(i * row.removalStep % tree.length() + 1));
    }
    std::string shape;
    for (const auto* cell : cellsOf(tree)) {
      int depth = 0;
      for (auto* above = cell; (above = NQTestPeer::parent(above)) != nullptr;) ++depth;
      shape += shape.empty() ? "" : " ";
      shape += std::to_string(depth);
      shape += !NQTestPeer::isRed(cell) ? 'b' : NQTestPeer::isBlack(cell) ? 'm' : 'r';
    }
    EXPECT_EQ(shape, row.shape);
  }
}

// The depths that the header promises.
TEST(NQBinTree, IsAsDeepAsItsColoursAllow) {
  for (const auto& kind : kKinds) {
    for (const bool append : {true, false}) {
      NQBinTree tree(kind.type);
      tree.exclusiveColors(kind.exclusive);
      for (int i = 0; i < 1000; ++i) {
        append ? tree.appendObject(nullptr) : tree.prependObject(nullptr);
      }
      const BinTreeCheck check = checkBinTree(tree);
      EXPECT_EQ(check.fault, "");
      EXPECT_EQ(check.depth, kind.type == 0        ? 1000
                             : kind.exclusive != 0 ? 17
                                                   : 501)
          << kind.name;
    }
  }
  // Exclusive colours, a queue and a stack of which either end is used.
  std::mt19937 random(3);
  NQBinTree tree;
  tree.exclusiveColors(1);
  for (int step = 0; step < 100000; ++step) {
    const bool grow = step < 20000 || (random() & 1) != 0;
    const bool front = (random() % 100) < static_cast<unsigned>(step / 1000);
    if (grow) {
      front ? tree.prependObject(nullptr) : tree.appendObject(nullptr);
    } else {
      tree.discardCell(front ? tree.pLastCell() : tree.pFirstCell());
    }
    if (step % 5000 != 4999) continue;
    const BinTreeCheck check = checkBinTree(tree);
    ASSERT_EQ(check.fault, "");
    ASSERT_LE(1 << (check.depth / 2), tree.length() + 1) << "depth " << check.depth;
  }
}

}  // namespace

// bin_tree_check.h -- what must hold in every tree and heap, whatever was done to it.

#ifndef NQ_TESTS_SUPPORT_BIN_TREE_CHECK_H
#define NQ_TESTS_SUPPORT_BIN_TREE_CHECK_H

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/containers/test_peer.h"

// What is wrong with the list's ends, links or length; "" if nothing.
inline std::string findListFault(const NQDList& list) {
  const NQDListCell* previous = nullptr;
  nqLong count = 0;
  for (const NQDListCell* cell = list.pFirstCell(); cell != nullptr;
       cell = cell->pNextCell()) {
    if (++count > list.length()) return "more cells than counted, or a circle";
    const std::string which = " of list cell " + std::to_string(count);
    if (cell->pPreviousCell() != previous) return "backward link" + which;
    previous = cell;
  }
  if (list.pLastCell() != previous) return "last cell";
  return count == list.length() ? "" : "length";
}

struct BinTreeCheck {
  std::string fault;  // "" if nothing is wrong
  int depth = 0;      // cells on the longest path
};

inline BinTreeCheck checkBinTree(const NQBinTree& tree) {
  using Peer = NQTestPeer;
  BinTreeCheck result{findListFault(tree)};
  const auto wrong = [&](const char* what, nqLong position) {
    result.fault = what + (" of cell " + std::to_string(position));
    return result;
  };
  if (!result.fault.empty()) return result;
  const NQBinTreeCell* const sentinel = Peer::sentinel();
  if (Peer::left(sentinel) != nullptr || Peer::right(sentinel) != nullptr) {
    return {"children of the sentinel"};
  }
  if (Peer::parent(sentinel) != nullptr) return {"parent of the sentinel"};
  if (!Peer::isBlack(sentinel) || Peer::isRed(sentinel)) {
    return {"colour of the sentinel"};
  }
  if (tree.length() == 0) return result;
  const NQBinTreeCell* const root = Peer::root(tree);
  if (root == nullptr || Peer::parent(root) != nullptr) return {"root"};

  std::vector<std::pair<const NQBinTreeCell*, int>> above;  // with their depths
  const NQBinTreeCell* inList = tree.pFirstCell();
  const NQBinTreeCell* cell = root;
  nqLong position = 0;
  int depth = 0;
  while (cell != sentinel || !above.empty()) {
    for (; cell != sentinel; cell = Peer::left(cell)) {
      if (cell == nullptr) return wrong("null below", position + 1);
      above.emplace_back(cell, ++depth);
      if (depth > tree.length()) return wrong("circle at or after", position + 1);
    }
    std::tie(cell, depth) = above.back();
    above.pop_back();
    result.depth = std::max(result.depth, depth);
    ++position;
    if (cell != inList) return wrong("order", position);
    for (const NQBinTreeCell* const child : {Peer::left(cell), Peer::right(cell)}) {
      if (child == nullptr || (child != sentinel && Peer::parent(child) != cell)) {
        return wrong("parent of a child", position);
      }
    }
    if (Peer::isVisited(cell)) return wrong("visited flag", position);
    if (!Peer::isRed(cell) && !Peer::isBlack(cell)) return wrong("colour", position);
    inList = inList->pNextCell();
    cell = Peer::right(cell);
  }
  if (inList != nullptr) return wrong("no place in the tree", position + 1);
  if (Peer::isValidRedBlackTree(tree) == 0) result.fault = "colours on a path";
  return result;
}

// What is wrong with the heap; "" if nothing. greater(a, b) tells whether `a` may
// not be the parent of `b`.
template <class Greater>
std::string findHeapFault(const NQBinHeap& heap, Greater greater) {
  using Peer = NQTestPeer;
  std::string fault = findListFault(heap);
  if (!fault.empty()) return fault;
  std::vector<const NQBinHeapCell*> cells;
  for (auto* cell = heap.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
    cells.push_back(cell);
  }
  const auto at = [&](std::size_t index) {
    return index < cells.size() ? cells[index] : nullptr;
  };
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string which = " of cell " + std::to_string(i + 1);
    if (Peer::left(cells[i]) != at(2 * i + 1)) return "left child" + which;
    if (Peer::right(cells[i]) != at(2 * i + 2)) return "right child" + which;
    const NQBinHeapCell* const parent = i == 0 ? nullptr : cells[(i - 1) / 2];
    if (cells[i]->pParent() != parent) return "parent" + which;
    if (parent != nullptr && greater(parent, cells[i])) return "order" + which;
  }
  const NQBinHeapCell* const insertionParent =
      cells.empty() ? nullptr : cells[(cells.size() - 1) / 2];
  return Peer::insertionParent(heap) == insertionParent ? "" : "insertion parent";
}

#endif  // NQ_TESTS_SUPPORT_BIN_TREE_CHECK_H

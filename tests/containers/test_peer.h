// test_peer.h -- the private members that the tests of the containers look at.

#ifndef NQ_TESTS_CONTAINERS_TEST_PEER_H
#define NQ_TESTS_CONTAINERS_TEST_PEER_H

#include "nq/containers/bin_heap.h"
#include "nq/containers/bin_tree_internal.h"
#include "nq/containers/cell_pool_internal.h"
#include "nq/containers/index_hash_table.h"
#include "nq/containers/list_sort.h"

#include <type_traits>

class NQTestPeer {
 public:
  // Slabs of the calling thread.
  template <class Pool>
  static int slabs() {
    nqdetail::CellHeap& heap = Pool::heap_;
    int count = (heap.pCurrent_ != nullptr) + (heap.pSpare_ != nullptr);
    for (const auto* const list : {&heap.roomy_, &heap.full_}) {
      for (auto* slab = list->pFirst; slab != nullptr; slab = slab->pNext_) ++count;
    }
    return count;
  }

  static bool isOwned(void* place) {
    return nqdetail::CellSlab::of(place)->pOwner_.load() != nullptr;
  }

  static nqLong bucketOf(const NQIndexHashTable& table, nqInt64 key) {
    return table.hash(key);
  }
  static const NQIndexHash* chainOf(const NQIndexHashTable& table, nqLong bucket) {
    return table.hashTable()[bucket];
  }
  static bool hasBuckets(const NQIndexHashTable& table) {
    return table.hashTable() != nullptr;
  }

  static const NQBinTreeCell* root(const NQBinTree& tree) { return tree.pRoot_; }
  static const NQBinTreeCell* sentinel() { return NQBinTree::sentinel(); }
  static int isValidRedBlackTree(const NQBinTree& tree) {
    return tree.isValidRedBlackTree();
  }
  static const NQBinHeapCell* insertionParent(const NQBinHeap& heap) {
    return heap.pInsertionParent();
  }
  template <class Cell>
  static const Cell* left(const Cell* cell) {
    if constexpr (std::is_same_v<Cell, NQBinTreeCell>) {
      return cell->pLeft();
    } else {
      return cell->pLeft_;
    }
  }
  template <class Cell>
  static const Cell* right(const Cell* cell) {
    if constexpr (std::is_same_v<Cell, NQBinTreeCell>) {
      return cell->pRight();
    } else {
      return cell->pRight_;
    }
  }
  template <class Cell>
  static const Cell* parent(const Cell* cell) {
    return cell->pParent_;
  }
  static bool isRed(const NQBinTreeCell* cell) { return cell->isRed(); }
  static bool isBlack(const NQBinTreeCell* cell) { return cell->isBlack(); }
  static bool isVisited(const NQBinTreeCell* cell) { return cell->visited() != 0; }

  // How deep a quick sort is nested, and the flag that sorts leave behind.
  template <class Sorter>
  static int recursionDepth(const Sorter& sorter) {
    return sorter.recursionDepth();
  }
  template <class Sorter>
  static void setChanged(Sorter& sorter, int changed) {
    sorter.changed(changed);
  }
};

#endif  // NQ_TESTS_CONTAINERS_TEST_PEER_H

// list_sort.h -- sorting lists by a comparison that a derived class supplies.
//
// A sorter is an object of its own: derive from NQDListSort or NQSListSort, say
// in virtualCompare() which of two cells comes first, and let the sorter
// rearrange lists. Cells move, objects stay in their cells; nothing is copied
// or freed. A sorter may sort any number of lists, one after the other, but
// cannot be copied.
//
//   quickSort     O(n log n). Nested 31 deep it leaves the rest to the others.
//                 Its partitions happen to keep the order of equals; do not rely
//                 on it.
//   mergeSort     O(n log n), stable, about n log2 n comparisons
//   bubbleSort    O(n * n), stable; for lists that are short or nearly sorted
//
// The sorts allocate nothing. A comparison that contradicts itself gives some
// order of the same cells; so does one that throws, which is then not asked again:
// the exception comes out when every cell is back in the list. A null list is left
// alone, and so is a tree or heap, which a sort must not reorder.
//
// Sources: C. A. R. Hoare, "Quicksort"; R. C. Singleton, "An efficient algorithm
// for sorting with minimal storage" (the median of three); D. E. Knuth, "The Art
// of Computer Programming", volume 3 (merging lists); C. A. R. Hoare, "Find"
// (the i-th element).

#ifndef NQ_CONTAINERS_LIST_SORT_H
#define NQ_CONTAINERS_LIST_SORT_H

#include "nq/core/copy_protocol.h"

class NQDList;
class NQDListCell;
class NQSList;
class NQSListCell;

// What the sorters of both kinds of list have in common.
template <class List, class Cell>
class NQ_EXPORT NQListSort : public NQObject {
 public:
  NQListSort(const NQListSort&) = delete;
  NQListSort& operator=(const NQListSort&) = delete;

  // Each returns the changed flag: whether the order changed. Without
  // `checkSortedFirst` quickSort's answer is only what its fallbacks left in the
  // flag, from this or an earlier sort; with it the answer is right, and a
  // sorted list costs n - 1 comparisons.
  int quickSort(List* list, int checkSortedFirst);
  int mergeSort(List* list);
  int bubbleSort(List* list);

  int isSorted(List* list);

  // The first among equals; null for an empty list.
  Cell* findSmallestElement(List* list);
  Cell* findLargestElement(List* list);

  // An entry point kept for compatibility; does nothing.
  void debugOutputList(List* list);

 protected:
  NQListSort() = default;

  // Called by every operation: negative when `a` comes before `b`, 0 when they
  // are equal, positive when it comes after. The cells are this list's; during a
  // sort their links mean nothing.
  virtual int virtualCompare(Cell* a, Cell* b) = 0;
  virtual void virtualDebugOutputElement(Cell* cell) = 0;

 private:
  friend class NQDListSort;
  friend class NQTestPeer;

  int recursionDepth() const { return recursionDepth_; }
  int recursionDepth(int depth) { return recursionDepth_ = depth; }
  int changed() const { return changed_; }
  int changed(int changed) { return changed_ = changed; }

  struct Comparison;
  template <class Operation>
  auto run(Operation operation);

  int recursionDepth_ = 0;  // how deep quickSort is nested
  int changed_ = 0;
};

extern template class NQ_EXPORT NQListSort<NQDList, NQDListCell>;
extern template class NQ_EXPORT NQListSort<NQSList, NQSListCell>;

class NQ_EXPORT NQDListSort : public NQListSort<NQDList, NQDListCell> {
 public:
  // A cell that would stand at position i (from 1) if the list, which stays as
  // it is, were sorted; null when there is no such position. O(n) on average;
  // allocates two pointers for each cell, and answers null when it cannot.
  NQDListCell* findIthElement(NQDList* list, nqLong i);

  static NQDListSort* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQDListSort>(object);
  }

  void debugOutput(int level) override;
};

class NQ_EXPORT NQSListSort : public NQListSort<NQSList, NQSListCell> {
 public:
  static NQSListSort* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQSListSort>(object);
  }

  void debugOutput(int level) override;
};

// Sorts by the addresses of the objects, taken as signed numbers.
class NQ_EXPORT NQMemAddressDListSort : public NQDListSort {
 public:
  static NQMemAddressDListSort* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQMemAddressDListSort>(object);
  }

 protected:
  int virtualCompare(NQDListCell* a, NQDListCell* b) override;
  void virtualDebugOutputElement(NQDListCell* cell) override;
};

#endif  // NQ_CONTAINERS_LIST_SORT_H

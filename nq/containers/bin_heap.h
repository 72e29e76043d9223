// bin_heap.h -- a priority queue of objects with values that may change.
//
// NQBinHeap hands out the object of the smallest value first. A cell stands for
// its object in the heap from addObject() until it is removed: through it the
// value is changed (changeValue()) and the object taken out wherever it is. Cells
// of equal value come out in no promised order.
//
// The heap owns its cells, never the objects in them; only the operations that say
// "AndObjects", and the deep copies, delete objects. Insertion, removal and change
// of a value are O(log n), the minimum is at hand. Cells come from slabs of their
// own, as list cells do.
//
// A heap is a list in level order: the root, then each level from left to right.
// It can be walked and searched as any NQDList; the operations of the list that
// would change that order are not offered. See linked_list.h for what they do when
// they are called for a heap all the same.
//
// A derived class may order the cells otherwise, by overriding virtualCompare(). What
// that throws passes through, and the operation has changed nothing.
//
// How it works
//   The cells form a complete binary tree by pointers, in which no cell is smaller
//   than its parent. The order of the list tells where the next cell goes: beside
//   the last one, or below the next parent. A cell that moves up or down is given
//   its new place at once, and the cells that it passes move by one place each:
//   cells move, values and objects stay in them.

#ifndef NQ_CONTAINERS_BIN_HEAP_H
#define NQ_CONTAINERS_BIN_HEAP_H

#include "nq/containers/dlist.h"

class NQTestPeer;

class NQ_EXPORT NQBinHeapCell : public NQDListCell {
  NQ_COPY_PROTOCOL(NQBinHeapCell)

 public:
  NQBinHeapCell(NQObject* object, nqLong value) : NQDListCell(object), value_(value) {}

  NQBinHeapCell* pPreviousCell() const {
    return static_cast<NQBinHeapCell*>(NQDListCell::pPreviousCell());
  }
  NQBinHeapCell* pNextCell() const {
    return static_cast<NQBinHeapCell*>(NQDListCell::pNextCell());
  }

  nqLong value() const { return value_; }
  // Leaves the cell where it is: NQBinHeap::changeValue() is for cells in a heap.
  nqLong value(nqLong value) { return value_ = value; }

  // Null for the root and a free cell. The setter is not for cells in a heap.
  NQBinHeapCell* pParent() const { return pParent_; }
  NQBinHeapCell* pParent(NQBinHeapCell* cell) { return pParent_ = cell; }

  NQ_CELL_MEMORY

 private:
  friend class NQBinHeap;
  friend class NQTestPeer;

  NQBinHeapCell* pLeft_ = nullptr;
  NQBinHeapCell* pRight_ = nullptr;  // null if pLeft_ is
  NQBinHeapCell* pParent_ = nullptr;
  nqLong value_ = 0;
};

class NQ_EXPORT NQBinHeap : public NQDList {
  NQ_COPY_PROTOCOL(NQBinHeap)

 public:
  NQBinHeap() { fixPlaces(); }
  // As those of NQDList; `source` must be ordered by the same comparison.
  NQBinHeap(NQBinHeap&& source) noexcept;
  NQBinHeap& operator=(NQBinHeap&& source) noexcept;

  // Objects keep their places.
  using const_iterator = NQObjectIterator<NQBinHeap, NQBinHeapCell, NQObject* const>;
  using iterator = const_iterator;
  iterator begin() const { return {this, pFirstCell()}; }
  iterator end() const { return {this, nullptr}; }

  // The cell of the smallest value is the first one.
  NQBinHeapCell* pFirstCell() const { return cell(NQDList::pFirstCell()); }
  NQBinHeapCell* pLastCell() const { return cell(NQDList::pLastCell()); }
  // Its object; null in an empty heap.
  NQObject* pMinObject() const;

  // The list's searches, which walk, and access by the position in level order.
  NQBinHeapCell* searchCell(const NQBinHeapCell* wanted) const {
    return cell(NQDList::searchCell(wanted));
  }
  NQBinHeapCell* searchObject(const NQObject* object) const {
    return cell(NQDList::searchObject(object));
  }
  NQBinHeapCell* pCellInPosition(nqLong position) const {
    return cell(NQDList::pCellInPosition(position));
  }

  // The heap keeps the cell and answers it; a null cell is refused with null.
  NQBinHeapCell* insertCell(NQBinHeapCell* cell);
  // In a new cell; null when memory is exhausted.
  NQBinHeapCell* addObject(NQObject* object, nqLong value);

  // Hand the cell over; null when there is none, or it is free already. The cell of a
  // removal must not be in another heap. The searches walk, O(n).
  NQBinHeapCell* pExtractMinCell();
  NQBinHeapCell* removeCell(NQBinHeapCell* cell);
  NQBinHeapCell* searchAndRemoveCell(const NQBinHeapCell* cell);
  NQBinHeapCell* searchAndRemoveObject(const NQObject* object);
  // Removes the cell and deletes it.
  void discardCell(NQBinHeapCell* cell);

  // Changes the value and the place of a cell of this heap; nothing for null.
  void changeValue(NQBinHeapCell* cell, nqLong value);

  // Empty this heap, whatever the source, and fill it with new cells of the same
  // values. The second form deletes the objects and holds clones of the source's
  // (null for null), which are made before, so that the heaps may share objects. 0
  // for a null source and for the heap itself, which is empty then.
  int copyAllCells(const NQBinHeap* source);
  int copyAllCellsAndObjects(const NQBinHeap* source);

 protected:
  void init() { fixPlaces(); }

  // Negative when `a` is smaller, 0 when they are equal, positive when `b` is:
  // here, their values are compared. Contradictions disturb the order, nothing else.
  virtual int virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b);

 private:
  friend class NQTestPeer;

  NQ_HIDE_PLACES(NQDList)
  NQ_HIDE_SEARCHING_PLACES(NQDList)
  using NQDList::copyTransferList;
  using NQDList::copyTransferListPart;
  using NQDList::transferList;
  using NQDList::transferListPart;

  static NQBinHeapCell* cell(NQDListCell* listCell) {
    return static_cast<NQBinHeapCell*>(listCell);
  }

  struct Place;
  struct ByValue;
  struct ByHook;

  NQBinHeapCell* pInsertionParent() const;
  void appendBinHeapCell(NQBinHeapCell* cell);
  NQBinHeapCell* removeLastBinHeapCell();
  template <class Operation, class Undo>
  void ordered(Operation operation, Undo undo);
  template <class Order>
  bool bubbleUp(Order order, NQBinHeapCell* old, NQBinHeapCell* cell);
  template <class Order>
  void heapify(Order order, NQBinHeapCell* old, NQBinHeapCell* cell);
  void moveUp(NQBinHeapCell* old, NQBinHeapCell* end, NQBinHeapCell* cell);
  void moveDown(NQBinHeapCell* const* way, int count, NQBinHeapCell* cell);
  void put(NQBinHeapCell* cell, NQBinHeapCell* parent, const Place& place);
};

#endif  // NQ_CONTAINERS_BIN_HEAP_H

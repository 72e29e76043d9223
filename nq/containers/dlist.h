// dlist.h -- doubly linked list of NQObject pointers.
//
// The general container of the library: NQDList, its cells (NQDListCell) and
// its established iterator (NQDListIter). See linked_list.h for ownership,
// positions, cost and the operations that both kinds of list share; removing a cell
// is O(1) here.
//
// A deep copy of a list deletes the objects of its target and holds clones of
// the source's; an attribute copy of a list is empty. A deep copy of a cell
// holds a clone of the object, an attribute copy the same object; neither copies
// the links.
//
// Cells come from slabs of their own, which makes them cheap to allocate and
// keeps them close together. A cell may be deleted on a thread other than the one
// that made it.

#ifndef NQ_CONTAINERS_DLIST_H
#define NQ_CONTAINERS_DLIST_H

#include "nq/containers/cell_memory.h"
#include "nq/containers/linked_list.h"
#include "nq/core/copy_protocol.h"

class NQ_EXPORT NQDListCell : public NQObject {
  NQ_COPY_PROTOCOL(NQDListCell)

 public:
  constexpr explicit NQDListCell(NQObject* object) : pObject_(object) {}

  NQDListCell* pPreviousCell() const { return pPrevious_; }
  NQDListCell* pPrevDListCell() const { return pPrevious_; }
  NQDListCell* pNextCell() const { return nqdetail::guessNext(this, pNext_); }
  NQDListCell* pNextDListCell() const { return pNextCell(); }
  NQObject* pObject() const { return pObject_; }

  // The cell's accounting figure, not its size in memory: 32.
  virtual nqLong sizeOf() const;

  NQObject* pObject(NQObject* object) { return pObject_ = object; }

  NQ_CELL_MEMORY

 protected:
  void init();

 private:
  template <class, class, class>
  friend class NQObjectIterator;
  template <class, class, class>
  friend class NQLinkedList;
  friend class NQDList;
  friend nqdetail::ListLinks<NQDList, NQDListCell>;

  NQDListCell* pPrevDListCell(NQDListCell* cell) { return pPrevious_ = cell; }
  NQDListCell* pNextDListCell(NQDListCell* cell) { return pNext_ = cell; }

  NQDListCell* pPrevious_ = nullptr;  // null in the first cell
  NQDListCell* pNext_ = nullptr;      // null in the last cell
  NQObject* pObject_;                 // never owned; may be null
};

class NQ_EXPORT NQDList : public NQObject,
                          public NQLinkedList<NQDList, NQDListCell, NQSList> {
  NQ_COPY_PROTOCOL(NQDList)

 public:
  NQDList() = default;
  ~NQDList() override { deleteAllCells(); }

  // Take over the cells; `source` is empty then. An assignment deletes the objects that
  // its target held, as the copying one does; `source` must hold others. O(1), and what
  // the target held.
  NQDList(NQDList&& source) noexcept { take(source); }
  NQDList& operator=(NQDList&& source) noexcept;

  // New cells with the same objects. Include slist.h to convert.
  explicit NQDList(const NQSList& source);
  const NQDList& operator=(const NQSList& source);
  operator NQSList() const;

  using NQLinkedList::length;
  NQDListCell* pFirstDListCell() const { return pFirstCell(); }
  NQDListCell* pLastDListCell() const { return pLastCell(); }

  // The list's accounting figure, not its size in memory: 32 for the list and
  // 32 for each cell, with 32 bits.
  virtual nqLong sizeOf() const;

  // Hands the cell over; null for null and for a cell whose neighbour shows that it
  // is not in the list. O(1). The cell keeps its own links, so that a walk can go on
  // from it.
  NQDListCell* removeCell(NQDListCell* cell) {
    NQDListCell* previous;
    if (!findPrevious(cell, &previous) || fixedPlaces_) return nullptr;
    return removeAfter(previous, cell);
  }

 protected:
  void init();

 private:
  template <class, class, class>
  friend class NQLinkedList;
  template <class, class>
  friend class NQSortedList;

  NQDListCell* pFirstDListCell(NQDListCell* cell) { return pFirst_ = cell; }
  NQDListCell* pLastDListCell(NQDListCell* cell) { return pLast_ = cell; }
  nqLong length(nqLong count) { return length_ = count; }

  // False when the cell is null or its neighbour does not know it: it is not in the
  // list.
  bool findPrevious(const NQDListCell* cell, NQDListCell** previous) const {
    if (cell == nullptr) return false;
    *previous = cell->pPrevious_;
    return (*previous == nullptr ? pFirst_ : (*previous)->pNext_) == cell;
  }
};

extern template class NQLinkedList<NQDList, NQDListCell, NQSList>;

enum NQIterDirectionEnum : int {
  NQ_BACKWARD = 0,  // and every value but 1
  NQ_FORWARD = 1,
};

// Walks the cells of a list in either direction:
//
//   for (NQDListIter iter(&list, NQ_FORWARD); iter; ++iter) use(iter.pObject());
//
// The list does not know its iterators: take the next cell before the current
// one is removed. Beyond either end an iterator is exhausted, and stays so.
class NQ_EXPORT NQDListIter : public NQObject {
 public:
  // At either end of the list, or at `cell`; exhausted for a null list.
  NQDListIter(const NQDList* list, NQIterDirectionEnum direction) {
    init(list, direction);
  }
  NQDListIter(const NQDList* list, NQDListCell* cell) { init(list, cell); }

  void init(const NQDList* list, NQIterDirectionEnum direction) {
    if (list == nullptr) {
      pCell_ = nullptr;
    } else {
      pCell_ = direction == NQ_FORWARD ? list->pFirstCell() : list->pLastCell();
    }
  }
  void init(const NQDList* list, NQDListCell* cell) {
    pCell_ = list == nullptr ? nullptr : cell;
  }

  // Whether there is a current cell.
  operator int() const { return pCell_ != nullptr; }

  NQDListCell* pCell() const { return pCell_; }
  NQDListCell* pDListCell() const { return pCell_; }
  NQObject* pObject() const { return pCell_ == nullptr ? nullptr : pCell_->pObject(); }

  NQDListIter& operator++() {
    if (pCell_ != nullptr) pCell_ = pCell_->pNextCell();
    return *this;
  }
  NQDListIter& operator--() {
    if (pCell_ != nullptr) pCell_ = pCell_->pPreviousCell();
    return *this;
  }
  void operator++(int) { ++*this; }
  void operator--(int) { --*this; }

  static NQDListIter* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQDListIter>(object);
  }

  void debugOutput(int level) override;

 private:
  NQDListIter(const NQDListIter&) = delete;
  NQDListIter& operator=(const NQDListIter&) = delete;

  NQDListCell* pCell_;
};

#endif  // NQ_CONTAINERS_DLIST_H

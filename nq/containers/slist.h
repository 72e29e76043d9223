// slist.h -- singly linked list of NQObject pointers.
//
// NQSList is the smaller twin of NQDList: its cells (NQSListCell) know only
// their successor. See linked_list.h for what both kinds of list share.
// Removing a cell, or a run of cells, means walking to its predecessor; callers
// that know the predecessor spare the walk with removeNextCell() and
// transferNextListPart().
//
// "No such cell" among predecessors is the pointer with all bits set, since
// null is the predecessor of the first cell.

#ifndef NQ_CONTAINERS_SLIST_H
#define NQ_CONTAINERS_SLIST_H

#include "nq/containers/cell_memory.h"
#include "nq/containers/linked_list.h"
#include "nq/core/copy_protocol.h"

// A copy, made or assigned, shares the object and has no successor. The clones
// are those of NQObject.
class NQ_EXPORT NQSListCell : public NQObject {
 public:
  explicit NQSListCell(NQObject* object) : pObject_(object) {}
  NQSListCell(const NQSListCell& source) : NQObject(), pObject_(source.pObject_) {}
  const NQSListCell& operator=(const NQSListCell& source);

  static NQSListCell* castDown(const NQObject* object);

  NQSListCell* pNextCell() const { return nqdetail::guessNext(this, pNext_); }
  NQSListCell* pNextSListCell() const { return pNextCell(); }
  NQObject* pObject() const { return pObject_; }

  // The cell's accounting figure, not its size in memory: 24.
  nqLong sizeOf() const;

  NQObject* pObject(NQObject* object) { return pObject_ = object; }

  void debugOutput(int level) override;

  NQ_CELL_MEMORY

 private:
  template <class, class, class>
  friend class NQObjectIterator;
  template <class, class, class>
  friend class NQLinkedList;
  friend class NQSList;
  friend nqdetail::ListLinks<NQSList, NQSListCell>;

  NQSListCell* pNextSListCell(NQSListCell* cell) { return pNext_ = cell; }

  NQSListCell* pNext_ = nullptr;  // null in the last cell
  NQObject* pObject_;             // never owned; may be null
};

class NQ_EXPORT NQSList : public NQObject,
                          public NQLinkedList<NQSList, NQSListCell, NQDList> {
  NQ_COPY_PROTOCOL(NQSList)

 public:
  NQSList() = default;
  ~NQSList() override { deleteAllCells(); }

  // As those of NQDList.
  NQSList(NQSList&& source) noexcept { take(source); }
  NQSList& operator=(NQSList&& source) noexcept;

  // New cells with the same objects. Include dlist.h to convert.
  explicit NQSList(const NQDList& source);
  const NQSList& operator=(const NQDList& source);
  operator NQDList() const;

  NQSListCell* pFirstSListCell() const { return pFirstCell(); }
  NQSListCell* pLastSListCell() const { return pLastCell(); }

  // The list's accounting figure, not its size in memory: 32 for the list and
  // 24 for each cell.
  virtual nqLong sizeOf() const;

  // The predecessor of the cell, or of the first cell that holds the object:
  // null for the first cell, all bits set when there is no such cell or the
  // argument is null. O(n).
  NQSListCell* searchPreviousCell(const NQSListCell* cell) const;
  NQSListCell* searchPreviousObject(const NQObject* object) const;

  // Hands over the cell after `previous`, or the first one for null; null when
  // there is none. O(1).
  NQSListCell* removeNextCell(NQSListCell* previous);
  // Hands over the cell; null, and nothing changed, when it is not in the list.
  NQSListCell* removeCell(NQSListCell* cell);

  // Moves the run that begins after `previous`, or at the front of `source` for
  // null, and ends with `to`. Refused, with 0, for a null `to` and one that the
  // run does not reach.
  int transferNextListPart(NQSListCell* after, NQSList* source, NQSListCell* previous,
                           NQSListCell* to);

 protected:
  void init();

 private:
  template <class, class, class>
  friend class NQLinkedList;
  template <class, class>
  friend class NQSortedList;

  bool findPrevious(const NQSListCell* cell, NQSListCell** previous) const;
};

extern template class NQLinkedList<NQSList, NQSListCell, NQDList>;

// Walks the cells of a list, like NQDListIter, but only forward.
class NQ_EXPORT NQSListIter : public NQObject {
 public:
  // At the first cell, or at `cell`; exhausted for a null list.
  explicit NQSListIter(const NQSList* list) { init(list); }
  NQSListIter(const NQSList* list, NQSListCell* cell) { init(list, cell); }

  void init(const NQSList* list) {
    pCell_ = list == nullptr ? nullptr : list->pFirstCell();
  }
  void init(const NQSList* list, NQSListCell* cell) {
    pCell_ = list == nullptr ? nullptr : cell;
  }

  // Whether there is a current cell.
  operator int() const { return pCell_ != nullptr; }

  NQSListCell* pCell() const { return pCell_; }
  NQSListCell* pSListCell() const { return pCell_; }
  NQObject* pObject() const { return pCell_ == nullptr ? nullptr : pCell_->pObject(); }

  NQSListIter& operator++() {
    if (pCell_ != nullptr) pCell_ = pCell_->pNextCell();
    return *this;
  }
  void operator++(int) { ++*this; }

  static NQSListIter* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQSListIter>(object);
  }

  void debugOutput(int level) override;

 private:
  NQSListIter(const NQSListIter&) = delete;
  NQSListIter& operator=(const NQSListIter&) = delete;

  NQSListCell* pCell_;
};

#endif  // NQ_CONTAINERS_SLIST_H

// sorted_list.h -- lists that keep their cells in the order of a comparison.
//
// NQSortedDList is an NQDList, NQSortedSList an NQSList, whose cells stand in
// ascending order. Derive from one and say in virtualObjectCompare() which of two
// objects comes first. A cell goes behind its equals: among them the newest is
// the last. (The sorted tree, NQSortedBinTree, puts the newest first.)
//
// The operations below find the place themselves and so take no position; see
// linked_list.h for the others, and for who owns what. Operations
// that would put cells at places of the caller's choice are not offered. Objects
// must keep their place in the order while they are in the list. Where it holds
// null, or is asked to take null in, the comparison must know null too.
//
// Insertion walks from the front, O(n); searches do so as far as the place where
// the object would stand. Moving or copying m cells in costs O(m * n). That
// suits short lists; the sorted tree is for long ones. A comparison that
// contradicts itself gives some order, and searches may miss what is there. What a
// comparison throws passes through: cells that were to be taken in and have no place
// yet are where they were, and one made for an object is gone.

#ifndef NQ_CONTAINERS_SORTED_LIST_H
#define NQ_CONTAINERS_SORTED_LIST_H

#include "nq/containers/dlist.h"
#include "nq/containers/slist.h"

// What NQSortedDList and NQSortedSList have in common.
template <class List, class Cell>
class NQ_EXPORT NQSortedList : public List {
 public:
  // Objects keep their places.
  using iterator = typename List::const_iterator;
  iterator begin() const { return List::begin(); }
  iterator end() const { return List::end(); }

  // The cell, or the first one that holds the object itself (an equal object is
  // another one); null when there is none.
  Cell* searchCell(const Cell* cell) const;
  Cell* searchObject(const NQObject* object) const;

  // The list keeps the cell, which is the answer; null is refused with null.
  Cell* insertCell(Cell* cell);
  // In a new cell; null when memory is exhausted.
  Cell* addObject(NQObject* object);
  // When the object is in the list already, the answer is the cell that holds
  // it, and nothing is inserted; the caller then keeps `cell`.
  Cell* insertCellIfNotInList(Cell* cell);
  Cell* addObjectIfNotInList(NQObject* object);

  // The cell is handed over; null when it is not found.
  Cell* searchAndRemoveCell(const Cell* cell);
  Cell* searchAndRemoveObject(const NQObject* object);

  // Take in cells of another list, which need not be sorted: all those from
  // `from` to `to`, or only those whose objects this list does not hold yet;
  // themselves, or copies of them.
  int transferListPart(List* source, Cell* from, Cell* to);
  int transferList(List* source);
  int transferListPartIfNotInList(List* source, Cell* from, Cell* to);
  int transferListIfNotInList(List* source);
  int copyTransferListPart(const List* source, const Cell* from, const Cell* to);
  int copyTransferList(const List* source);
  int copyTransferListPartIfNotInList(const List* source, const Cell* from,
                                      const Cell* to);
  int copyTransferListIfNotInList(const List* source);

  // The order is taken over from the source, which must be sorted by the same
  // comparison.
  int copyAllCells(const NQSortedList* source) { return List::copyAllCells(source); }
  int copyAllCellsAndObjects(const NQSortedList* source) {
    return List::copyAllCellsAndObjects(source);
  }

  void debugOutput(int level) override;

 protected:
  NQSortedList() = default;
  NQSortedList(NQSortedList&& source) noexcept = default;
  NQSortedList& operator=(NQSortedList&& source) noexcept = default;
  ~NQSortedList() override = default;

  // Called by every operation that looks for a place: negative when `a` comes
  // before `b`, 0 when they are equal, positive when it comes after. Compares the
  // objects; a list that is ordered by more than them may override it.
  virtual int virtualCellCompare(const Cell* a, const Cell* b) const;
  virtual int virtualObjectCompare(const NQObject* a, const NQObject* b) const = 0;

  // Where a walk ended: at a cell, or at the end with null.
  struct Place {
    Cell* previous;  // null at the front
    Cell* cell;
  };
  Place placeOfCell(const Cell* cell) const;
  Place placeOfObject(const NQObject* object) const;
  Cell* placeBehindEquals(const Cell* cell) const;

 private:
  NQ_HIDE_PLACES(List)

  template <class Stops>
  Place walkUntil(Stops stops) const;
  template <class Holds>
  int moveRun(List* source, Cell* from, Cell* to, Holds holds);
};

extern template class NQSortedList<NQDList, NQDListCell>;
extern template class NQSortedList<NQSList, NQSListCell>;

// Neither kind can be copy-constructed by itself. Assignment and copyObject() are
// those of the plain list; the clone of a derived class that does not state the copy
// protocol is a plain list.

class NQ_EXPORT NQSortedDList : public NQSortedList<NQDList, NQDListCell> {
  NQ_COPY_ROUTINES(NQSortedDList)

 public:
  NQSortedDList() = default;
  const NQSortedDList& operator=(const NQSortedDList& source);
  // As those of NQDList; `source` must be ordered by the same comparison.
  NQSortedDList(NQSortedDList&& source) noexcept = default;
  NQSortedDList& operator=(NQSortedDList&& source) noexcept = default;
  static NQSortedDList* castDown(const NQObject* object);

 private:
  NQSortedDList(const NQSortedDList&) : NQSortedDList() {}
};

class NQ_EXPORT NQSortedSList : public NQSortedList<NQSList, NQSListCell> {
  NQ_COPY_ROUTINES(NQSortedSList)

 public:
  NQSortedSList() = default;
  const NQSortedSList& operator=(const NQSortedSList& source);
  // As those of NQSList; `source` must be ordered by the same comparison.
  NQSortedSList(NQSortedSList&& source) noexcept = default;
  NQSortedSList& operator=(NQSortedSList&& source) noexcept = default;
  static NQSortedSList* castDown(const NQObject* object);

  // As those of NQSList, but they stop where the cell or the object would stand.
  NQSListCell* searchPreviousCell(const NQSListCell* cell) const;
  NQSListCell* searchPreviousObject(const NQObject* object) const;

 private:
  using NQSList::transferNextListPart;  // would break the order

  NQSortedSList(const NQSortedSList&) : NQSortedSList() {}
};

#endif  // NQ_CONTAINERS_SORTED_LIST_H

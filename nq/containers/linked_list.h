// linked_list.h -- what the doubly and the singly linked list have in common.
//
// NQDList and NQSList offer the operations below under the same names with the
// same results. A list owns its cells, never the objects in them: only
// operations that say "AndObjects", and the deep copies, delete objects. An
// object may be null, and may stand in a list several times; it is known by its
// address. Cells are positions: a cell pointer stays valid until that cell is
// deleted, and cells move between lists without being copied.
//
// Positions count from 1. `after` is a cell of this list, or null for the
// front. A cell that is handed to a list must not be in one, and cells given as
// positions must be in the list they are said to be in; neither is checked
// where nothing is said. Operations refuse a null list, or this list as its own
// source, with 0 and change nothing; they answer 1 when they succeed, also when
// there was nothing to do.
//
// Trees and heaps are lists whose cells have more links than these. Called for one
// of them through a reference or pointer to the list, operations that read, that
// delete all cells or that move all of them to a list do what they do elsewhere;
// whatever else would put in, take out or move cells is refused with null or 0.
//
// Insertion and moving a whole list are O(1) given the cells (NQSList finds the
// predecessor of a cell by walking); moving a part counts it; searches,
// positions, copies and emptying walk, O(n); the "IfNotInList" operations search
// this list for each object.
//
// begin() and end() give standard iterators over the objects, for range-based
// for, <algorithm> and <ranges>.

#ifndef NQ_CONTAINERS_LINKED_LIST_H
#define NQ_CONTAINERS_LINKED_LIST_H

#include <concepts>
#include <cstddef>
#include <iterator>
#include <type_traits>
#include <utility>

#include "nq/core/object.h"

class NQDList;
class NQDListCell;
class NQSList;
class NQSListCell;

namespace nqdetail {
template <class List, class Cell>
struct ListLinks;  // for the sorters (list_sort_internal.h)

template <class Cell>
inline constexpr bool kHasPrevious = requires(const Cell& cell) {
  cell.pPreviousCell();
};
template <class Cell>
inline constexpr bool kFetchesAhead = requires(const Cell& cell) {
  cell.fetchAhead(true);
};

// `next`, the successor of `cell`. Cells that were made one after the other
// stand side by side in memory. Where that guess is right, a walk need not wait
// for each link to be loaded before it goes on to the next: the processor
// predicts the branch, and checks the guess meanwhile. (F. Mazzoli, "Beating the
// L1 cache with value speculation", 2021.) The empty statements keep compilers
// from seeing that both branches answer the same, and from merging them.
template <class Cell>
Cell* guessNext(const Cell* cell, Cell* next) {
#if defined(__GNUC__)
  Cell* guess = const_cast<Cell*>(cell) + 1;
  Cell* sameGuess = guess;
  asm("" : "+r"(sameGuess));
  if (next == sameGuess) {
    asm volatile("" : "+r"(guess));
    return guess;
  }
#endif
  return next;
}
}  // namespace nqdetail

// A standard iterator over the objects of a list; Object is NQObject* or
// NQObject* const. It stays valid until its cell leaves the list; end() stays
// valid as long as the list.
template <class List, class Cell, class Object>
class NQObjectIterator {
 public:
  using iterator_category =
      std::conditional_t<nqdetail::kHasPrevious<Cell>, std::bidirectional_iterator_tag,
                         std::forward_iterator_tag>;
  using value_type = NQObject*;
  using difference_type = std::ptrdiff_t;
  using pointer = Object*;
  using reference = Object&;

  NQObjectIterator() = default;
  NQObjectIterator(const List* list, Cell* cell) : pList_(list), pCell_(cell) {}
  template <std::same_as<NQObject*> Mutable>
  requires std::is_const_v<Object> NQObjectIterator(
      const NQObjectIterator<List, Cell, Mutable>& other)
      : pList_(other.pList_), pCell_(other.pCell_) {}

  // The cell; null at the end.
  Cell* pCell() const { return pCell_; }

  reference operator*() const { return pCell_->pObject_; }
  pointer operator->() const { return &pCell_->pObject_; }
  NQObjectIterator& operator++() {
    if constexpr (nqdetail::kFetchesAhead<Cell>) pCell_->fetchAhead(true);
    pCell_ = pCell_->pNextCell();
    return *this;
  }
  NQObjectIterator operator++(int) {
    const NQObjectIterator old = *this;
    ++*this;
    return old;
  }
  NQObjectIterator& operator--() requires(nqdetail::kHasPrevious<Cell>) {
    if constexpr (nqdetail::kFetchesAhead<Cell>) {
      if (pCell_ != nullptr) pCell_->fetchAhead(false);
    }
    pCell_ = pCell_ == nullptr ? pList_->pLastCell() : pCell_->pPreviousCell();
    return *this;
  }
  NQObjectIterator operator--(int) requires(nqdetail::kHasPrevious<Cell>) {
    const NQObjectIterator old = *this;
    --*this;
    return old;
  }
  friend bool operator==(const NQObjectIterator& a, const NQObjectIterator& b) {
    return a.pCell_ == b.pCell_;
  }

 private:
  template <class, class, class>
  friend class NQObjectIterator;

  const List* pList_ = nullptr;  // the way back from the end
  Cell* pCell_ = nullptr;
};

// The shared part of `List`, its only derived class; `Other` is the other kind.
template <class List, class Cell, class Other>
class NQ_EXPORT NQLinkedList {
 public:
  using value_type = NQObject*;
  using iterator = NQObjectIterator<List, Cell, NQObject*>;
  using const_iterator = NQObjectIterator<List, Cell, NQObject* const>;

  NQLinkedList(const NQLinkedList&) = delete;
  NQLinkedList& operator=(const NQLinkedList&) = delete;

  nqLong length() const { return length_; }
  Cell* pFirstCell() const { return pFirst_; }
  Cell* pLastCell() const { return pLast_; }

  iterator begin() { return {self(), pFirst_}; }
  iterator end() { return {self(), nullptr}; }
  const_iterator begin() const { return {self(), pFirst_}; }
  const_iterator end() const { return {self(), nullptr}; }

  // ---- Search and position. Not found, or out of range: null, or position -1.

  Cell* searchCell(const Cell* cell) const;
  // The first cell that holds the object; a null object is searched for too.
  Cell* searchObject(const NQObject* object) const;
  Cell* pCellInPosition(nqLong position) const;
  NQObject* pObjectInPosition(nqLong position) const;
  nqLong positionOfCell(const Cell* cell) const;
  nqLong positionOfObject(const NQObject* object) const;  // -1 for null

  // Whether both lists hold the same objects, in the same order or in any. The
  // second allocates two pointers for each cell, O(n log n), and answers 0 when
  // there is no memory for them.
  int compare(const List* other) const;
  int compareUnordered(const List* other) const;

  // ---- Insertion. The answer is the cell that is now in the list.

  // The list keeps the cell. A null cell is refused with null.
  Cell* insertCell(Cell* after, Cell* cell) {
    return cell == nullptr || fixedPlaces_ ? nullptr : linkIn(after, cell);
  }
  Cell* appendCell(Cell* cell) { return insertCell(pLast_, cell); }
  Cell* prependCell(Cell* cell) { return insertCell(nullptr, cell); }

  // In a new cell; null when memory is exhausted.
  Cell* addObject(Cell* after, NQObject* object);
  Cell* appendObject(NQObject* object);
  Cell* prependObject(NQObject* object);

  // When the object is in the list already, the answer is the first cell that
  // holds it, and nothing is inserted; the caller then keeps `cell`.
  Cell* insertCellIfNotInList(Cell* after, Cell* cell);
  Cell* appendCellIfNotInList(Cell* cell) { return insertCellIfNotInList(pLast_, cell); }
  Cell* prependCellIfNotInList(Cell* cell) {
    return insertCellIfNotInList(nullptr, cell);
  }
  Cell* addObjectIfNotInList(Cell* after, NQObject* object);
  Cell* appendObjectIfNotInList(NQObject* object) {
    return addObjectIfNotInList(pLast_, object);
  }
  Cell* prependObjectIfNotInList(NQObject* object) {
    return addObjectIfNotInList(nullptr, object);
  }

  // ---- Removal (see also removeCell() of either list).

  // The cell is handed over; null when there is none. O(n).
  Cell* searchAndRemoveCell(const Cell* cell);
  Cell* searchAndRemoveObject(const NQObject* object);
  // Removes the cell and deletes it.
  void discardCell(Cell* cell);
  // Empties the list. The second deletes the objects, each of which must stand
  // in the list only once.
  void deleteAllCells();
  void deleteAllCellsAndObjects();

  // ---- Moving cells from another list, in order and without allocation.

  // The cells `from` to `to`, inclusive. Refused, with 0, when `from` is not in
  // `source` (NQDList asks only its neighbour) or `to` is not reached from it. O(length
  // of the run); O(1) for a whole list.
  int transferListPart(Cell* after, List* source, Cell* from, Cell* to);
  int transferList(Cell* after, List* source);
  int appendList(List* source) { return transferList(pLast_, source); }
  int prependList(List* source) { return transferList(nullptr, source); }

  // Only cells whose objects this list does not hold yet; the others stay in
  // `source`. Once `to` itself has moved, the walk runs on to the end of
  // `source`: callers rely on it.
  int transferListPartIfNotInList(Cell* after, List* source, Cell* from, Cell* to);
  int transferListIfNotInList(Cell* after, List* source);
  int appendListIfNotInList(List* source) {
    return transferListIfNotInList(pLast_, source);
  }
  int prependListIfNotInList(List* source) {
    return transferListIfNotInList(nullptr, source);
  }

  // ---- Copying cells: new cells with the same objects. `source` stays as it is.

  int copyTransferListPart(Cell* after, const List* source, const Cell* from,
                           const Cell* to);
  int copyTransferList(Cell* after, const List* source);
  int copyAppendList(const List* source) { return copyTransferList(pLast_, source); }
  int copyPrependList(const List* source) { return copyTransferList(nullptr, source); }

  int copyTransferListPartIfNotInList(Cell* after, const List* source, const Cell* from,
                                      const Cell* to);
  int copyTransferListIfNotInList(Cell* after, const List* source);
  int copyAppendListIfNotInList(const List* source) {
    return copyTransferListIfNotInList(pLast_, source);
  }
  int copyPrependListIfNotInList(const List* source) {
    return copyTransferListIfNotInList(nullptr, source);
  }

  // Empties this list, whatever the source: the second form deletes its objects
  // and fills it with clones (null for null), which are made before, so that the
  // lists may share objects, and so that nothing has changed when cloning throws. 0
  // for a null source and for the list itself, which is empty then.
  int copyAllCells(const List* source);
  int copyAllCells(const Other* source);
  int copyAllCellsAndObjects(const List* source);
  int copyAllCellsAndObjects(const Other* source);

  // ---- Reordering

  int reverse();
  // The cells change places; null changes nothing.
  void swapPosition(Cell* a, Cell* b);
  // Moves the cells of `a` and `b` to the end of this list in turn, beginning
  // with `a`; what is left of the longer one comes last. Nothing is
  // compared.
  int merge(List* a, List* b);

 protected:
  NQLinkedList() = default;
  ~NQLinkedList() = default;

  // For derived containers whose cells have more links: from now on the operations
  // above refuse to change the places of cells, and the container uses those below.
  void fixPlaces() { fixedPlaces_ = true; }
  // Put a cell in, take one out of its place behind `previous`, exchange two.
  Cell* linkIn(Cell* after, Cell* cell) {
    Cell* const next = after == nullptr ? pFirst_ : after->pNext_;
    connect(after, cell);
    connect(cell, next);
    ++length_;
    return cell;
  }
  Cell* removeAfter(Cell* previous, Cell* cell) {
    connect(previous, cell->pNext_);
    --length_;
    return cell;
  }
  void exchange(Cell* a, Cell* b);
  // Takes all cells of `source`, of which this list must have none.
  void take(NQLinkedList& source) noexcept {
    pFirst_ = std::exchange(source.pFirst_, nullptr);
    pLast_ = std::exchange(source.pLast_, nullptr);
    length_ = std::exchange(source.length_, 0);
  }
  // The same after this list and its objects are deleted.
  void assign(NQLinkedList& source) noexcept;

  // Refuse, walk a run, act by policy: what operations on parts have in common.
  // Calls part(first, last) for a whole source, which may be empty.
  template <class Source, class Part>
  int wholeList(Source* source, Part part) const;
  // Calls add(object) for each cell of the run whose object this list does not hold,
  // as holds(object) tells.
  template <class Holds, class Add>
  int copyEach(const List* source, const Cell* from, const Cell* to, Holds holds,
               Add add) const;
  // Calls move(previous, cell) likewise; `previous` is the cell before it in the source.
  // The walk runs on, if it may, to the end of the source once `to` itself has moved.
  template <class Holds, class Move>
  int moveEach(List* source, Cell* from, Cell* to, bool runsOn, Holds holds, Move move);

  bool refuses(const NQObject* source) const {
    return source == nullptr || source == self();
  }

 private:
  friend List;
  template <class, class>
  friend class NQSortedList;
  friend nqdetail::ListLinks<List, Cell>;

  List* self() { return static_cast<List*>(this); }
  const List* self() const { return static_cast<const List*>(this); }

  // Makes two cells neighbours; null stands for either end of the list.
  void connect(Cell* left, Cell* right) {
    (left == nullptr ? pFirst_ : left->pNext_) = right;
    if constexpr (nqdetail::kHasPrevious<Cell>) {
      (right == nullptr ? pLast_ : right->pPrevious_) = left;
    } else if (right == nullptr) {
      pLast_ = left;
    }
  }

  nqLong runLength(const Cell* from, const Cell* to) const;
  int moveRun(Cell* after, List* source, Cell* previous, Cell* to);
  template <class Holds>
  int copyRun(Cell* after, const List* source, const Cell* from, const Cell* to,
              Holds holds);
  template <class Source>
  int fillFrom(const Source* source);
  template <class Source>
  int cloneFrom(const Source* source);

  Cell* pFirst_ = nullptr;  // null exactly when length_ is 0
  Cell* pLast_ = nullptr;   // the cell whose next is null
  nqLong length_ = 0;       // counted on every change, never by walking
  bool fixedPlaces_ = false;
};

// For the private part of containers that choose the places of their cells: what would
// take a place from the caller,
#define NQ_HIDE_PLACES(Base)              \
  using Base::appendCell;                 \
  using Base::appendCellIfNotInList;      \
  using Base::appendList;                 \
  using Base::appendListIfNotInList;      \
  using Base::appendObject;               \
  using Base::appendObjectIfNotInList;    \
  using Base::copyAppendList;             \
  using Base::copyAppendListIfNotInList;  \
  using Base::copyPrependList;            \
  using Base::copyPrependListIfNotInList; \
  using Base::merge;                      \
  using Base::prependCell;                \
  using Base::prependCellIfNotInList;     \
  using Base::prependList;                \
  using Base::prependListIfNotInList;     \
  using Base::prependObject;              \
  using Base::prependObjectIfNotInList;   \
  using Base::reverse;                    \
  using Base::swapPosition;

// and, where the container has no forms of its own, what asks for objects first.
#define NQ_HIDE_SEARCHING_PLACES(Base)         \
  using Base::addObjectIfNotInList;            \
  using Base::copyTransferListIfNotInList;     \
  using Base::copyTransferListPartIfNotInList; \
  using Base::insertCellIfNotInList;           \
  using Base::transferListIfNotInList;         \
  using Base::transferListPartIfNotInList;

#endif  // NQ_CONTAINERS_LINKED_LIST_H

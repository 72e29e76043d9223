// linked_list_internal.h -- the operations of both kinds of list.
//
// Included by dlist.cpp and slist.cpp, which instantiate NQLinkedList.

#ifndef NQ_CONTAINERS_LINKED_LIST_INTERNAL_H
#define NQ_CONTAINERS_LINKED_LIST_INTERNAL_H

#include <algorithm>
#include <functional>
#include <memory>

#include "nq/containers/linked_list.h"
#include "nq/core/memory_internal.h"

namespace nqdetail {

// The policy for cells whose objects may be in the list already.
struct HoldsNothing {
  bool operator()(const NQObject*) const { return false; }
};

// What a copy is made of until it is whole: whoever throws before that leaves
// nothing behind.
template <class List>
struct Clones {
  ~Clones() { list.deleteAllCellsAndObjects(); }

  // Adds a clone of the object in a new `Cell`.
  template <class Cell>
  void add(const NQObject* object) {
    std::unique_ptr<NQObject> clone(object == nullptr ? nullptr : object->cloneObject());
    if (list.appendCell(new Cell(clone.get())) != nullptr) (void)clone.release();
  }

  List list;
};

}  // namespace nqdetail

// ---- Search and position

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::searchCell(const Cell* cell) const {
  if (cell == nullptr) return nullptr;
  Cell* found = pFirst_;
  while (found != nullptr && found != cell) found = found->pNextCell();
  return found;
}

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::searchObject(const NQObject* object) const {
  Cell* found = pFirst_;
  while (found != nullptr && found->pObject_ != object) found = found->pNextCell();
  return found;
}

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::pCellInPosition(nqLong position) const {
  if (position < 1 || position > length_) return nullptr;
  Cell* cell = pFirst_;
  while (--position > 0) cell = cell->pNextCell();
  return cell;
}

template <class List, class Cell, class Other>
NQObject* NQLinkedList<List, Cell, Other>::pObjectInPosition(nqLong position) const {
  const Cell* const cell = pCellInPosition(position);
  return cell == nullptr ? nullptr : cell->pObject_;
}

template <class List, class Cell, class Other>
nqLong NQLinkedList<List, Cell, Other>::positionOfCell(const Cell* cell) const {
  nqLong position = 1;
  for (const Cell* other = pFirst_; other != nullptr; other = other->pNextCell()) {
    if (other == cell) return position;
    ++position;
  }
  return -1;
}

template <class List, class Cell, class Other>
nqLong NQLinkedList<List, Cell, Other>::positionOfObject(const NQObject* object) const {
  return object == nullptr ? -1 : positionOfCell(searchObject(object));
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::compare(const List* other) const {
  if (other == nullptr || other->length_ != length_) return 0;
  return std::equal(begin(), end(), other->begin()) ? 1 : 0;
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::compareUnordered(const List* other) const {
  if (other == nullptr || other->length_ != length_) return 0;
  const auto count = static_cast<std::size_t>(length_);
  nqdetail::HeapArray<const NQObject*> objects;
  if (!nqdetail::resize(objects, 2 * count)) return 0;
  const NQObject** const half = std::copy(begin(), end(), objects.get());
  const NQObject** const all = std::copy(other->begin(), other->end(), half);
  std::sort(objects.get(), half, std::less<>());
  std::sort(half, all, std::less<>());
  return std::equal(half, all, objects.get()) ? 1 : 0;
}

// ---- Insertion

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::addObject(Cell* after, NQObject* object) {
  return fixedPlaces_ ? nullptr : insertCell(after, new Cell(object));
}

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::appendObject(NQObject* object) {
  return addObject(pLast_, object);
}

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::prependObject(NQObject* object) {
  return addObject(nullptr, object);
}

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::insertCellIfNotInList(Cell* after, Cell* cell) {
  if (cell == nullptr) return nullptr;
  Cell* const present = searchObject(cell->pObject_);
  return present != nullptr ? present : insertCell(after, cell);
}

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::addObjectIfNotInList(Cell* after,
                                                            NQObject* object) {
  Cell* const present = searchObject(object);
  return present != nullptr ? present : addObject(after, object);
}

// ---- Removal

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::searchAndRemoveCell(const Cell* cell) {
  return self()->removeCell(searchCell(cell));
}

template <class List, class Cell, class Other>
Cell* NQLinkedList<List, Cell, Other>::searchAndRemoveObject(const NQObject* object) {
  return self()->removeCell(searchObject(object));
}

template <class List, class Cell, class Other>
void NQLinkedList<List, Cell, Other>::discardCell(Cell* cell) {
  delete self()->removeCell(cell);
}

template <class List, class Cell, class Other>
void NQLinkedList<List, Cell, Other>::deleteAllCells() {
  Cell* cell = pFirst_;
  while (cell != nullptr) {
    Cell* const next = cell->pNextCell();
    delete cell;
    cell = next;
  }
  pFirst_ = pLast_ = nullptr;
  length_ = 0;
}

template <class List, class Cell, class Other>
void NQLinkedList<List, Cell, Other>::deleteAllCellsAndObjects() {
  Cell* cell = pFirst_;
  while (cell != nullptr) {
    Cell* const next = cell->pNextCell();
    delete cell->pObject_;
    cell = next;
  }
  deleteAllCells();
}

// ---- Moving and copying cells

// The number of cells of this list from `from` to `to`; 0 when either is null
// or `to` is not reached. Walked forward only: where the links of a cell lead that is
// not met so, nobody knows.
template <class List, class Cell, class Other>
nqLong NQLinkedList<List, Cell, Other>::runLength(const Cell* from,
                                                  const Cell* to) const {
  if (from == nullptr || to == nullptr) return 0;
  if (from == pFirst_ && to == pLast_) return length_;
  nqLong count = 1;
  while (from != to) {
    from = from->pNextCell();
    if (from == nullptr) return 0;
    ++count;
  }
  return count;
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::moveRun(Cell* after, List* source, Cell* previous,
                                             Cell* to) {
  Cell* const from = previous == nullptr ? source->pFirst_ : previous->pNext_;
  const nqLong count = source->runLength(from, to);
  if (count == 0 || fixedPlaces_) return 0;
  // All cells may leave a tree or heap, as it is empty then.
  if (source->fixedPlaces_ && count != source->length_) return 0;
  source->connect(previous, to->pNext_);
  source->length_ -= count;
  Cell* const next = after == nullptr ? pFirst_ : after->pNext_;
  connect(after, from);
  connect(to, next);
  length_ += count;
  return 1;
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::transferListPart(Cell* after, List* source,
                                                      Cell* from, Cell* to) {
  Cell* previous = nullptr;
  if (refuses(source) || !source->findPrevious(from, &previous)) return 0;
  return moveRun(after, source, previous, to);
}

template <class List, class Cell, class Other>
template <class Source, class Part>
int NQLinkedList<List, Cell, Other>::wholeList(Source* source, Part part) const {
  if (refuses(source)) return 0;
  return source->length() == 0 ? 1 : part(source->pFirstCell(), source->pLastCell());
}

template <class List, class Cell, class Other>
template <class Holds, class Add>
int NQLinkedList<List, Cell, Other>::copyEach(const List* source, const Cell* from,
                                              const Cell* to, Holds holds,
                                              Add add) const {
  Cell* previous = nullptr;
  if (refuses(source) || !source->findPrevious(from, &previous) ||
      source->runLength(from, to) == 0) {
    return 0;
  }
  for (const Cell* cell = from;; cell = cell->pNextCell()) {
    if (!holds(cell->pObject_)) add(cell->pObject_);
    if (cell == to) return 1;
  }
}

template <class List, class Cell, class Other>
template <class Holds, class Move>
int NQLinkedList<List, Cell, Other>::moveEach(List* source, Cell* from, Cell* to,
                                              bool runsOn, Holds holds, Move move) {
  Cell* previous = nullptr;
  if (refuses(source) || !source->findPrevious(from, &previous) ||
      source->runLength(from, to) == 0) {
    return 0;
  }
  const Cell* const end = to->pNext_;
  for (Cell* cell = from; cell != nullptr && cell != (runsOn ? to->pNext_ : end);) {
    Cell* const next = cell->pNextCell();
    if (holds(cell->pObject_)) {
      previous = cell;
    } else {
      move(previous, cell);
    }
    cell = next;
  }
  return 1;
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::transferListPartIfNotInList(Cell* after,
                                                                 List* source, Cell* from,
                                                                 Cell* to) {
  if (fixedPlaces_ || (source != nullptr && source->fixedPlaces_)) return 0;
  return moveEach(
      source, from, to, true,
      [this](const NQObject* object) { return searchObject(object) != nullptr; },
      [&](Cell* previous, Cell* cell) {
        after = linkIn(after, source->removeAfter(previous, cell));
      });
}

template <class List, class Cell, class Other>
template <class Holds>
int NQLinkedList<List, Cell, Other>::copyRun(Cell* after, const List* source,
                                             const Cell* from, const Cell* to,
                                             Holds holds) {
  if (fixedPlaces_) return 0;
  return copyEach(source, from, to, holds, [&](NQObject* object) {
    Cell* const copy = addObject(after, object);
    if (copy != nullptr) after = copy;
  });
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyTransferListPart(Cell* after, const List* source,
                                                          const Cell* from,
                                                          const Cell* to) {
  return copyRun(after, source, from, to, nqdetail::HoldsNothing{});
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyTransferListPartIfNotInList(Cell* after,
                                                                     const List* source,
                                                                     const Cell* from,
                                                                     const Cell* to) {
  return copyRun(after, source, from, to, [this](const NQObject* object) {
    return searchObject(object) != nullptr;
  });
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::transferList(Cell* after, List* source) {
  return wholeList(source, [&](Cell* from, Cell* to) {
    return transferListPart(after, source, from, to);
  });
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::transferListIfNotInList(Cell* after, List* source) {
  return wholeList(source, [&](Cell* from, Cell* to) {
    return transferListPartIfNotInList(after, source, from, to);
  });
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyTransferList(Cell* after, const List* source) {
  return wholeList(source, [&](Cell* from, Cell* to) {
    return copyTransferListPart(after, source, from, to);
  });
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyTransferListIfNotInList(Cell* after,
                                                                 const List* source) {
  return wholeList(source, [&](Cell* from, Cell* to) {
    return copyTransferListPartIfNotInList(after, source, from, to);
  });
}

template <class List, class Cell, class Other>
void NQLinkedList<List, Cell, Other>::assign(NQLinkedList& source) noexcept {
  if (&source == this) return;
  deleteAllCellsAndObjects();
  if (!fixedPlaces_) take(source);
}

// Appends the objects of `source`, which is empty by now if it is this list.
template <class List, class Cell, class Other>
template <class Source>
int NQLinkedList<List, Cell, Other>::fillFrom(const Source* source) {
  if (source == nullptr || static_cast<const NQObject*>(source) == self()) return 0;
  if (fixedPlaces_) return 0;
  for (NQObject* const object : *source) appendObject(object);
  return 1;
}

// The clones are made before the objects go, which `source` may hold too.
template <class List, class Cell, class Other>
template <class Source>
int NQLinkedList<List, Cell, Other>::cloneFrom(const Source* source) {
  nqdetail::Clones<List> clones;
  const bool refused =
      source == nullptr || fixedPlaces_ || static_cast<const NQObject*>(source) == self();
  if (!refused) {
    for (const NQObject* const object : *source) clones.template add<Cell>(object);
  }
  deleteAllCellsAndObjects();
  transferList(nullptr, &clones.list);
  return refused ? 0 : 1;
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyAllCells(const List* source) {
  deleteAllCells();
  return fillFrom(source);
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyAllCells(const Other* source) {
  deleteAllCells();
  return fillFrom(source);
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyAllCellsAndObjects(const List* source) {
  return cloneFrom(source);
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::copyAllCellsAndObjects(const Other* source) {
  return cloneFrom(source);
}

// ---- Reordering

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::reverse() {
  if (fixedPlaces_) return 0;
  List reversed;
  while (pFirst_ != nullptr) reversed.prependCell(removeAfter(nullptr, pFirst_));
  return transferList(nullptr, &reversed);
}

template <class List, class Cell, class Other>
void NQLinkedList<List, Cell, Other>::swapPosition(Cell* a, Cell* b) {
  if (!fixedPlaces_) exchange(a, b);
}

template <class List, class Cell, class Other>
void NQLinkedList<List, Cell, Other>::exchange(Cell* a, Cell* b) {
  Cell* beforeA = nullptr;
  Cell* beforeB = nullptr;
  if (a == b || !self()->findPrevious(a, &beforeA) ||
      !self()->findPrevious(b, &beforeB)) {
    return;
  }
  if (beforeA == b) {
    linkIn(a, removeAfter(beforeB, b));
  } else if (beforeB == a) {
    linkIn(b, removeAfter(beforeA, a));
  } else {
    linkIn(beforeB, removeAfter(beforeA, a));
    // `a` is before `b` now.
    linkIn(beforeA, removeAfter(a, b));
  }
}

template <class List, class Cell, class Other>
int NQLinkedList<List, Cell, Other>::merge(List* a, List* b) {
  if (refuses(a) || refuses(b) || fixedPlaces_) return 0;
  while (a->pFirst_ != nullptr || b->pFirst_ != nullptr) {
    for (List* const source : {a, b}) {
      if (source->pFirst_ != nullptr)
        appendCell(source->removeAfter(nullptr, source->pFirst_));
    }
  }
  return 1;
}

#endif  // NQ_CONTAINERS_LINKED_LIST_INTERNAL_H

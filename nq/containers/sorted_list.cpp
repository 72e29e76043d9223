#include "nq/containers/sorted_list.h"

#include <memory>

#include "nq/containers/linked_list_internal.h"

// ---- Places

// To the first cell for which `stops` holds.
template <class List, class Cell>
template <class Stops>
auto NQSortedList<List, Cell>::walkUntil(Stops stops) const -> Place {
  Place place{nullptr, this->pFirstCell()};
  while (place.cell != nullptr && !stops(place.cell)) {
    place.previous = place.cell;
    place.cell = place.cell->pNextCell();
  }
  return place;
}

// Where the cell stands, else the first one that belongs behind it.
template <class List, class Cell>
auto NQSortedList<List, Cell>::placeOfCell(const Cell* cell) const -> Place {
  return walkUntil([this, cell](const Cell* other) {
    return other == cell || virtualCellCompare(other, cell) > 0;
  });
}

// The same for the object.
template <class List, class Cell>
auto NQSortedList<List, Cell>::placeOfObject(const NQObject* object) const -> Place {
  return walkUntil([this, object](const Cell* other) {
    return other->pObject() == object ||
           virtualObjectCompare(other->pObject(), object) > 0;
  });
}

// The cell behind which a new one belongs; null for the front.
template <class List, class Cell>
Cell* NQSortedList<List, Cell>::placeBehindEquals(const Cell* cell) const {
  const Place place = walkUntil(
      [this, cell](const Cell* other) { return virtualCellCompare(other, cell) > 0; });
  return place.previous;
}

// ---- Search

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::searchCell(const Cell* cell) const {
  if (cell == nullptr) return nullptr;
  Cell* const found = placeOfCell(cell).cell;
  return found == cell ? found : nullptr;
}

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::searchObject(const NQObject* object) const {
  // Null is known by its address, whatever the comparison would make of it.
  if (object == nullptr) return List::searchObject(nullptr);
  Cell* const found = placeOfObject(object).cell;
  return found != nullptr && found->pObject() == object ? found : nullptr;
}

// ---- Insertion

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::insertCell(Cell* cell) {
  if (cell == nullptr) return nullptr;
  return List::insertCell(placeBehindEquals(cell), cell);
}

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::addObject(NQObject* object) {
  std::unique_ptr<Cell> cell(new Cell(object));
  insertCell(cell.get());
  return cell.release();
}

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::insertCellIfNotInList(Cell* cell) {
  if (cell == nullptr) return nullptr;
  const Place place = walkUntil([this, cell](const Cell* other) {
    return other->pObject() == cell->pObject() || virtualCellCompare(other, cell) > 0;
  });
  const bool present = place.cell != nullptr && place.cell->pObject() == cell->pObject();
  return present ? place.cell : List::insertCell(place.previous, cell);
}

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::addObjectIfNotInList(NQObject* object) {
  const Place place = placeOfObject(object);
  const bool present = place.cell != nullptr && place.cell->pObject() == object;
  return present ? place.cell : List::addObject(place.previous, object);
}

// ---- Removal

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::searchAndRemoveCell(const Cell* cell) {
  return this->removeCell(searchCell(cell));
}

template <class List, class Cell>
Cell* NQSortedList<List, Cell>::searchAndRemoveObject(const NQObject* object) {
  return this->removeCell(searchObject(object));
}

// ---- Taking in cells of other lists

template <class List, class Cell>
template <class Holds>
int NQSortedList<List, Cell>::moveRun(List* source, Cell* from, Cell* to, Holds holds) {
  if (source != nullptr && source->fixedPlaces_) return 0;
  return this->moveEach(source, from, to, false, holds, [&](Cell* previous, Cell* cell) {
    Cell* const after = placeBehindEquals(cell);
    this->linkIn(after, source->removeAfter(previous, cell));
  });
}

template <class List, class Cell>
int NQSortedList<List, Cell>::transferListPart(List* source, Cell* from, Cell* to) {
  return moveRun(source, from, to, nqdetail::HoldsNothing{});
}

template <class List, class Cell>
int NQSortedList<List, Cell>::transferListPartIfNotInList(List* source, Cell* from,
                                                          Cell* to) {
  return moveRun(source, from, to, [this](const NQObject* object) {
    return searchObject(object) != nullptr;
  });
}

template <class List, class Cell>
int NQSortedList<List, Cell>::copyTransferListPart(const List* source, const Cell* from,
                                                   const Cell* to) {
  return this->copyEach(source, from, to, nqdetail::HoldsNothing{},
                        [this](NQObject* object) { addObject(object); });
}

template <class List, class Cell>
int NQSortedList<List, Cell>::copyTransferListPartIfNotInList(const List* source,
                                                              const Cell* from,
                                                              const Cell* to) {
  return this->copyEach(
      source, from, to,
      [this](const NQObject* object) { return searchObject(object) != nullptr; },
      [this](NQObject* object) { addObject(object); });
}

template <class List, class Cell>
int NQSortedList<List, Cell>::transferList(List* source) {
  return this->wholeList(
      source, [&](Cell* from, Cell* to) { return transferListPart(source, from, to); });
}

template <class List, class Cell>
int NQSortedList<List, Cell>::transferListIfNotInList(List* source) {
  return this->wholeList(source, [&](Cell* from, Cell* to) {
    return transferListPartIfNotInList(source, from, to);
  });
}

template <class List, class Cell>
int NQSortedList<List, Cell>::copyTransferList(const List* source) {
  return this->wholeList(source, [&](const Cell* from, const Cell* to) {
    return copyTransferListPart(source, from, to);
  });
}

template <class List, class Cell>
int NQSortedList<List, Cell>::copyTransferListIfNotInList(const List* source) {
  return this->wholeList(source, [&](const Cell* from, const Cell* to) {
    return copyTransferListPartIfNotInList(source, from, to);
  });
}

// ---- The comparison

template <class List, class Cell>
int NQSortedList<List, Cell>::virtualCellCompare(const Cell* a, const Cell* b) const {
  return virtualObjectCompare(a->pObject(), b->pObject());
}

template <class List, class Cell>
void NQSortedList<List, Cell>::debugOutput(int) {}

template class NQSortedList<NQDList, NQDListCell>;
template class NQSortedList<NQSList, NQSListCell>;

// ---- NQSortedDList

void NQSortedDList::NQSortedDListdeepCopy(const NQSortedDList& source) {
  NQCopyAccess::deep<NQDList>(*this, source);
}

void NQSortedDList::NQSortedDListattributeCopy(const NQSortedDList& source) {
  NQCopyAccess::attributes<NQDList>(*this, source);
}

// The protocol's assignment looks out for the object itself.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
const NQSortedDList& NQSortedDList::operator=(const NQSortedDList& source) {
  NQCopyAccess::copyObject<NQSortedDList>(*this, &source);
  return *this;
}

NQSortedDList* NQSortedDList::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQSortedDList>(object);
}

// ---- NQSortedSList

void NQSortedSList::NQSortedSListdeepCopy(const NQSortedSList& source) {
  NQCopyAccess::deep<NQSList>(*this, source);
}

void NQSortedSList::NQSortedSListattributeCopy(const NQSortedSList& source) {
  NQCopyAccess::attributes<NQSList>(*this, source);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
const NQSortedSList& NQSortedSList::operator=(const NQSortedSList& source) {
  NQCopyAccess::copyObject<NQSortedSList>(*this, &source);
  return *this;
}

NQSortedSList* NQSortedSList::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQSortedSList>(object);
}

NQSListCell* NQSortedSList::searchPreviousCell(const NQSListCell* cell) const {
  if (cell == nullptr) return NQSList::searchPreviousCell(nullptr);
  const Place place = placeOfCell(cell);
  return place.cell == cell ? place.previous : NQSList::searchPreviousCell(nullptr);
}

NQSListCell* NQSortedSList::searchPreviousObject(const NQObject* object) const {
  if (object == nullptr) return NQSList::searchPreviousObject(nullptr);
  const Place place = placeOfObject(object);
  const bool found = place.cell != nullptr && place.cell->pObject() == object;
  return found ? place.previous : NQSList::searchPreviousObject(nullptr);
}

#include "nq/containers/slist.h"

#include <cstdint>

#include "nq/containers/cell_pool_internal.h"
#include "nq/containers/dlist.h"
#include "nq/containers/linked_list_internal.h"

namespace {

NQSListCell* noCell() {
  return reinterpret_cast<NQSListCell*>(std::intptr_t{-1});
}

}  // namespace

// ---- NQSListCell

static_assert(sizeof(NQSListCell) == 24);

const NQSListCell& NQSListCell::operator=(const NQSListCell& source) {
  if (&source != this) {
    pNext_ = nullptr;
    pObject_ = source.pObject_;
  }
  return *this;
}

NQSListCell* NQSListCell::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQSListCell>(object);
}

nqLong NQSListCell::sizeOf() const {
  return 24;
}

void NQSListCell::debugOutput(int) {}

NQ_CELL_MEMORY_IMPL(NQSListCell)

// ---- NQSList

template class NQLinkedList<NQSList, NQSListCell, NQDList>;

NQ_COPY_PROTOCOL_IMPL(NQSList)

void NQSList::NQSListdeepCopy(const NQSList& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  copyAllCellsAndObjects(&source);
}

void NQSList::NQSListattributeCopy(const NQSList& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
}

NQSList& NQSList::operator=(NQSList&& source) noexcept {
  assign(source);
  return *this;
}

NQSList::NQSList(const NQDList& source) {
  copyAllCells(&source);
}

const NQSList& NQSList::operator=(const NQDList& source) {
  copyAllCells(&source);
  return *this;
}

NQSList::operator NQDList() const {
  return NQDList(*this);
}

nqLong NQSList::sizeOf() const {
  return length() * 24 + 32;
}

NQSListCell* NQSList::searchPreviousCell(const NQSListCell* cell) const {
  NQSListCell* previous = nullptr;
  return findPrevious(cell, &previous) ? previous : noCell();
}

NQSListCell* NQSList::searchPreviousObject(const NQObject* object) const {
  return object == nullptr ? noCell() : searchPreviousCell(searchObject(object));
}

NQSListCell* NQSList::removeNextCell(NQSListCell* previous) {
  if (previous == noCell() || fixedPlaces_) return nullptr;
  NQSListCell* const cell = previous == nullptr ? pFirst_ : previous->pNext_;
  return cell == nullptr ? nullptr : removeAfter(previous, cell);
}

NQSListCell* NQSList::removeCell(NQSListCell* cell) {
  NQSListCell* previous = nullptr;
  if (!findPrevious(cell, &previous) || fixedPlaces_) return nullptr;
  return removeAfter(previous, cell);
}

int NQSList::transferNextListPart(NQSListCell* after, NQSList* source,
                                  NQSListCell* previous, NQSListCell* to) {
  if (refuses(source) || previous == noCell()) return 0;
  return moveRun(after, source, previous, to);
}

void NQSList::init() {
  pFirst_ = pLast_ = nullptr;
  length_ = 0;
}

// False when the cell is null or not in the list.
bool NQSList::findPrevious(const NQSListCell* cell, NQSListCell** previous) const {
  *previous = nullptr;
  for (NQSListCell* other = pFirst_; other != nullptr; other = other->pNextCell()) {
    if (other == cell) return true;
    *previous = other;
  }
  return false;
}

// ---- NQSListIter

void NQSListIter::debugOutput(int) {}

#include "nq/containers/dlist.h"

#include "nq/containers/cell_pool_internal.h"
#include "nq/containers/linked_list_internal.h"
#include "nq/containers/slist.h"

// ---- NQDListCell

// The protocol's assignment looks out for the object itself.
NQ_COPY_PROTOCOL_IMPL(NQDListCell)  // NOLINT(bugprone-unhandled-self-assignment)

static_assert(sizeof(NQDListCell) == 32);

void NQDListCell::NQDListCelldeepCopy(const NQDListCell& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  pObject_ = source.pObject_ == nullptr ? nullptr : source.pObject_->cloneObject();
}

void NQDListCell::NQDListCellattributeCopy(const NQDListCell& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  pObject_ = source.pObject_;
}

void NQDListCell::init() {
  pPrevious_ = pNext_ = nullptr;
  pObject_ = nullptr;
}

nqLong NQDListCell::sizeOf() const {
  return 32;
}

NQ_CELL_MEMORY_IMPL(NQDListCell)

// ---- NQDList

template class NQLinkedList<NQDList, NQDListCell, NQSList>;

NQ_COPY_PROTOCOL_IMPL(NQDList)

void NQDList::NQDListdeepCopy(const NQDList& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  copyAllCellsAndObjects(&source);
}

void NQDList::NQDListattributeCopy(const NQDList& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
}

NQDList& NQDList::operator=(NQDList&& source) noexcept {
  assign(source);
  return *this;
}

NQDList::NQDList(const NQSList& source) {
  copyAllCells(&source);
}

const NQDList& NQDList::operator=(const NQSList& source) {
  copyAllCells(&source);
  return *this;
}

NQDList::operator NQSList() const {
  return NQSList(*this);
}

nqLong NQDList::sizeOf() const {
  return (length() + 1) * 32;
}

void NQDList::init() {
  pFirst_ = pLast_ = nullptr;
  length_ = 0;
}

// ---- NQDListIter

void NQDListIter::debugOutput(int) {}

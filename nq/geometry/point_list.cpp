#include "nq/geometry/point_list.h"

NQ_COPY_PROTOCOL_IMPL(NQPointDList)
NQ_COPY_PROTOCOL_IMPL(NQPointSList)

NQPointDList::NQPointDList() = default;
NQPointSList::NQPointSList() = default;
NQPointDList::~NQPointDList() = default;
NQPointSList::~NQPointSList() = default;

void NQPointDList::NQPointDListdeepCopy(const NQPointDList& source) {
  NQCopyAccess::deep<NQDList>(*this, source);
}

void NQPointDList::NQPointDListattributeCopy(const NQPointDList& source) {
  NQCopyAccess::attributes<NQDList>(*this, source);
}

void NQPointSList::NQPointSListdeepCopy(const NQPointSList& source) {
  NQCopyAccess::deep<NQSList>(*this, source);
}

void NQPointSList::NQPointSListattributeCopy(const NQPointSList& source) {
  NQCopyAccess::attributes<NQSList>(*this, source);
}

NQPointDList::NQPointDList(const NQPointSList& source) {
  copyAllCells(&source);
}

NQPointDList& NQPointDList::operator=(const NQPointSList& source) {
  copyAllCells(&source);
  return *this;
}

NQPointSList::NQPointSList(const NQPointDList& source) {
  copyAllCells(&source);
}

NQPointSList& NQPointSList::operator=(const NQPointDList& source) {
  copyAllCells(&source);
  return *this;
}

void NQPointDListIter::debugOutput(int) {}

void NQPointSListIter::debugOutput(int) {}

int NQPointSListSort::virtualCompare(NQSListCell* a, NQSListCell* b) {
  const auto* const p = static_cast<const NQPoint*>(a->pObject());
  const auto* const q = static_cast<const NQPoint*>(b->pObject());
  if (p == nullptr || q == nullptr) return (p != nullptr) - (q != nullptr);
  return p->x() != q->x() ? nqDifference(p->x(), q->x()) : nqDifference(p->y(), q->y());
}

void NQPointSListSort::virtualDebugOutputElement(NQSListCell*) {}

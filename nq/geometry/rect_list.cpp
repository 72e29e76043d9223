#include "nq/geometry/rect_list.h"

NQ_COPY_PROTOCOL_IMPL(NQRectDList)
NQ_COPY_PROTOCOL_IMPL(NQRectSList)

NQRectDList::NQRectDList() = default;
NQRectSList::NQRectSList() = default;
NQRectDList::~NQRectDList() = default;
NQRectSList::~NQRectSList() = default;

void NQRectDList::NQRectDListdeepCopy(const NQRectDList& source) {
  NQCopyAccess::deep<NQDList>(*this, source);
}

void NQRectDList::NQRectDListattributeCopy(const NQRectDList& source) {
  NQCopyAccess::attributes<NQDList>(*this, source);
}

void NQRectSList::NQRectSListdeepCopy(const NQRectSList& source) {
  NQCopyAccess::deep<NQSList>(*this, source);
}

void NQRectSList::NQRectSListattributeCopy(const NQRectSList& source) {
  NQCopyAccess::attributes<NQSList>(*this, source);
}

NQRectDList::NQRectDList(const NQRectSList& source) {
  copyAllCells(&source);
}

NQRectDList& NQRectDList::operator=(const NQRectSList& source) {
  copyAllCells(&source);
  return *this;
}

NQRectSList::NQRectSList(const NQRectDList& source) {
  copyAllCells(&source);
}

NQRectSList& NQRectSList::operator=(const NQRectDList& source) {
  copyAllCells(&source);
  return *this;
}

void NQRectDListIter::debugOutput(int) {}

void NQRectSListIter::debugOutput(int) {}

#include "nq/geometry/sweep.h"

#include "nq/platform/prefetch.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <new>
#include <vector>

// ---- NQSegSortedBinTree

// The protocol's assignment looks out for the object itself.
NQ_COPY_PROTOCOL_IMPL(NQSegSortedBinTree)  // NOLINT(bugprone-unhandled-self-assignment)

void NQSegSortedBinTree::NQSegSortedBinTreedeepCopy(const NQSegSortedBinTree& source) {
  NQCopyAccess::deep<NQSortedBinTree>(*this, source);
  pOwner_ = source.pOwner_;
}

void NQSegSortedBinTree::NQSegSortedBinTreeattributeCopy(
    const NQSegSortedBinTree& source) {
  NQCopyAccess::attributes<NQSortedBinTree>(*this, source);
  pOwner_ = source.pOwner_;
}

void NQSegSortedBinTree::init() {
  pOwner_ = nullptr;
  exclusiveColors(1);
}

NQObject* NQSegSortedBinTree::pPreceedingSegment(NQObject* segment) const {
  const NQBinTreeCell* const cell = searchObject(segment);
  const NQBinTreeCell* const neighbour =
      cell == nullptr ? nullptr : cell->pPreviousCell();
  return neighbour == nullptr ? nullptr : neighbour->pObject();
}

NQObject* NQSegSortedBinTree::pSucceedingSegment(NQObject* segment) const {
  const NQBinTreeCell* const cell = searchObject(segment);
  const NQBinTreeCell* const neighbour = cell == nullptr ? nullptr : cell->pNextCell();
  return neighbour == nullptr ? nullptr : neighbour->pObject();
}

int NQSegSortedBinTree::virtualObjectCompare(const NQObject* a, const NQObject* b) const {
  if (pOwner_ != nullptr) {
    const int first = pOwner_->virtualSweepLineValue(const_cast<NQObject*>(a));
    const int second = pOwner_->virtualSweepLineValue(const_cast<NQObject*>(b));
    if (first != second) return first < second ? -1 : 1;
  }
  return std::less<>()(a, b) ? -1 : 1;
}

// ---- NQSweepSegmentSort

int NQSweepSegmentSort::virtualCompare(NQDListCell* a, NQDListCell* b) {
  if (pSweep_ == nullptr || (mode_ != 0 && mode_ != 1)) return 0;
  const auto value = [this](const NQDListCell* cell) {
    return mode_ == 0 ? pSweep_->virtualStartValue(cell->pObject())
                      : pSweep_->virtualEndValue(cell->pObject());
  };
  const int first = value(a);
  const int second = value(b);
  return first < second ? -1 : first > second ? 1 : 0;
}

void NQSweepSegmentSort::virtualDebugOutputElement(NQDListCell*) {}

// ---- NQSweep

NQSweep::NQSweep(const NQDList* segments, NQSweepTypeEnum type) : type_(type) {
  if (segments == nullptr) return;
  for (NQObject* const segment : *segments) {
    if (segment == nullptr) continue;
    starts_.appendObject(segment);
    ends_.appendObject(segment);
  }
}

void NQSweep::initialize() {
  pSweepLine_.reset(new (std::nothrow) NQSegSortedBinTree(this));
}

void NQSweep::algorithmBody() {
  if (pSweepLine_ == nullptr) return;
  sortEvents(starts_, &NQSweep::virtualStartValue);
  if (endsAreShown_) {
    NQSweepSegmentSort(this, 1).quickSort(&ends_, 0);
  } else {
    sortEvents(ends_, &NQSweep::virtualEndValue);
  }
  while (starts_.length() > 0 || ends_.length() > 0) {
    fetchAhead();
    if (endComesFirst()) {
      endFirst();
    } else {
      startFirst();
    }
  }
}

// The order that NQSweepSegmentSort gives, but each value is asked for once only,
// and the objects move instead of the cells, which nobody may know yet: these are
// then met, and deleted, in the order in which they lie in memory.
void NQSweep::sortEvents(NQDList& events, int (NQSweep::*value)(NQObject*)) {
  struct Event {
    int value;
    NQObject* segment;
  };
  std::vector<Event> sorted;
  sorted.reserve(static_cast<std::size_t>(events.length()));
  for (NQObject* const segment : events) {
    sorted.push_back({(this->*value)(segment), segment});
  }
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Event& a, const Event& b) { return a.value < b.value; });
  auto event = sorted.begin();
  for (NQObject*& segment : events) segment = (event++)->segment;
}

// Has a segment fetched that begins soon. Those that end were met not long ago.
void NQSweep::fetchAhead() const {
  const NQDListCell* cell = starts_.pFirstCell();
  for (int ahead = 0; ahead < 6 && cell != nullptr; ++ahead) cell = cell->pNextCell();
  if (cell != nullptr) nqdetail::prefetch(cell->pObject());
}

bool NQSweep::endComesFirst() {
  if (starts_.length() == 0 || ends_.length() == 0) return starts_.length() == 0;
  return virtualStartValue(starts_.pFirstCell()->pObject()) >
         virtualEndValue(ends_.pFirstCell()->pObject());
}

void NQSweep::startFirst() {
  NQObject* const segment = starts_.pFirstCell()->pObject();
  pInsertedCell_ = pSweepLine_->addObject(segment);
  starts_.discardCell(starts_.pFirstCell());
  virtualSegmentInserted(segment);
  pInsertedCell_ = nullptr;
}

// A derived class may have taken the segment away by itself, or changed the list.
void NQSweep::endFirst() {
  NQObject* const segment = ends_.pFirstCell()->pObject();
  virtualSegmentRemoving(segment);
  pSweepLine_->discardCell(pSweepLine_->searchObject(segment));
  ends_.discardCell(ends_.pFirstCell());
}

int NQSweep::virtualSweepLineValue(NQObject*) {
  return 0;
}

int NQSweep::virtualAuxValue(NQObject*) {
  return 0;
}

void NQSweep::virtualSegmentInserted(NQObject*) {}

void NQSweep::virtualSegmentRemoving(NQObject*) {}

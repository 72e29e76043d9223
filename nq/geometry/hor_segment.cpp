#include "nq/geometry/hor_segment.h"

// The protocol's assignment looks out for the object itself.
NQ_COPY_PROTOCOL_IMPL(NQHorSegment)  // NOLINT(bugprone-unhandled-self-assignment)

void NQHorSegment::NQHorSegmentdeepCopy(const NQHorSegment& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  coordinate = source.coordinate;
  list_.copyAllCells(&source.list_);
}

void NQHorSegment::NQHorSegmentattributeCopy(const NQHorSegment& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  coordinate = source.coordinate;
  list_.deleteAllCells();
}

void NQHorSegment::init() {
  coordinate = 0;
}

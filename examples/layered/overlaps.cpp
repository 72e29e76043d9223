#include "overlaps.h"

namespace {

NQRect boxOf(const NQObject* node) {
  return static_cast<const Node*>(node)->box();
}

}  // namespace

OverlapSweep::OverlapSweep(const NQDList& nodes) : NQSweep(&nodes, NQSweepTypeEnum{}) {}

int OverlapSweep::virtualStartValue(NQObject* node) {
  return boxOf(node).left();
}

int OverlapSweep::virtualEndValue(NQObject* node) {
  return boxOf(node).right();
}

int OverlapSweep::virtualSweepLineValue(NQObject* node) {
  return boxOf(node).bottom();
}

void OverlapSweep::virtualSegmentInserted(NQObject* node) {
  for (NQObject* other :
       {pSweepLine()->pPreceedingSegment(node), pSweepLine()->pSucceedingSegment(node)}) {
    if (other == nullptr || boxOf(node).intersectsRect(boxOf(other)) == 0) continue;
    pairs_.push_back({static_cast<const Node*>(node), static_cast<const Node*>(other)});
  }
}

// overlaps.h -- whether a drawing can be trusted: no two nodes overlap.

#ifndef LAYERED_OVERLAPS_H
#define LAYERED_OVERLAPS_H

#include <vector>

#include "graph.h"

// A line sweeps from left to right over the boxes of nodes. Those under it stand
// in the order of their lower edges, and as long as none overlap, a new one can
// only overlap those right below and above it. Boxes that only touch count too.
class OverlapSweep : public NQSweep {
 public:
  struct Pair {
    const Node* a;
    const Node* b;
  };

  explicit OverlapSweep(const NQDList& nodes);

  // Empty exactly if no two nodes overlap; else some of the pairs that do.
  const std::vector<Pair>& pairs() const { return pairs_; }

 protected:
  int virtualStartValue(NQObject* node) override;
  int virtualEndValue(NQObject* node) override;
  int virtualSweepLineValue(NQObject* node) override;
  void virtualSegmentInserted(NQObject* node) override;

 private:
  std::vector<Pair> pairs_;
};

#endif  // LAYERED_OVERLAPS_H

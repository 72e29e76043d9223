// sweep.h -- NQSweep, the frame of a plane sweep.
//
// A line is swept over segments: objects that begin at one value along the
// direction of the sweep and end at another. NQSweep orders these events and
// keeps the sweep line, the segments that the line cuts at the moment, in order
// across the direction of the sweep (NQSegSortedBinTree). What a segment is, where
// it begins, ends and lies, and what is to be done as it comes and goes, a derived
// class says:
//
//   class Overlaps : public NQSweep {
//     int virtualStartValue(NQObject* box) override { return rect(box).left(); }
//     int virtualEndValue(NQObject* box) override { return rect(box).right(); }
//     int virtualSweepLineValue(NQObject* box) override { return rect(box).bottom(); }
//     void virtualSegmentInserted(NQObject* box) override { ... }
//   };
//   Overlaps(&boxes, NQ_SWEEP_HORIZONTAL).run();
//
// At equal values segments begin before others end, so that two that only touch
// are on the line together. A segment that ends before it begins is on the line
// from its beginning on, and stays there. Among segments that begin (or end) at
// the same value the order of the list decides.
//
// The sweep borrows the segments until run() has returned, and the sweep line
// refers to those left on it afterwards; it never deletes one. A run uses the
// events up: a second one finds none. A segment may stand in the list several
// times; null is no segment. n segments of which at most m are on the line at a
// time cost O(n log n + n log m), besides the work of the derived class.

#ifndef NQ_GEOMETRY_SWEEP_H
#define NQ_GEOMETRY_SWEEP_H

#include <memory>

#include "nq/containers/list_sort.h"
#include "nq/containers/sorted_bin_tree.h"
#include "nq/core/algorithm.h"

class NQSweep;

// Which way the line moves. For derived classes: the sweep itself does not care.
enum NQSweepTypeEnum : int {
  NQ_SWEEP_HORIZONTAL = 0,  // along x
  NQ_SWEEP_VERTICAL = 1,    // along y
};

// Segments by their sweep line values, as the owner tells them at the moment of
// comparison; by their addresses where these are equal, and without an owner.
// Values may change during a sweep as long as the order of the segments on the
// line does not.
class NQ_EXPORT NQSegSortedBinTree : public NQSortedBinTree {
  NQ_COPY_PROTOCOL(NQSegSortedBinTree)

 public:
  // The owner is borrowed as long as segments are compared; copies have the same.
  explicit NQSegSortedBinTree(NQSweep* owner = nullptr) : pOwner_(owner) {
    exclusiveColors(1);
  }

  // The neighbour of a segment on the line; null when it has none or is not on
  // the line itself.
  NQObject* pPreceedingSegment(NQObject* segment) const;
  NQObject* pSucceedingSegment(NQObject* segment) const;

 protected:
  void init();
  // Never 0.
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override;

 private:
  NQSweep* pOwner_;
};

// Sorts lists of segments by the values of a sweep: by where they begin in mode 0,
// by where they end in mode 1, not at all in any other.
class NQ_EXPORT NQSweepSegmentSort : public NQDListSort {
 public:
  // The sweep is borrowed.
  NQSweepSegmentSort(NQSweep* sweep, int mode) : pSweep_(sweep), mode_(mode) {}

  static NQSweepSegmentSort* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQSweepSegmentSort>(object);
  }

 protected:
  int virtualCompare(NQDListCell* a, NQDListCell* b) override;
  void virtualDebugOutputElement(NQDListCell* cell) override;

 private:
  NQSweep* pSweep_;
  int mode_;
};

class NQ_EXPORT NQSweep : public NQMORAlgorithm {
 public:
  // The list may be null, and is not used after the call.
  NQSweep(const NQDList* segments, NQSweepTypeEnum type);

  NQSweepTypeEnum sweepType() const { return type_; }
  // Null before the first initialize().
  NQSegSortedBinTree* pSweepLine() const { return pSweepLine_.get(); }
  // The segments that have not ended yet, during a run in the order in which they
  // will. From the first call on, each stays in its cell.
  NQDList* pEndSegmentList() {
    endsAreShown_ = true;
    return &ends_;
  }

  // Begins with an empty sweep line.
  void initialize() override;
  // The sweep. Without initialize() nothing happens.
  void algorithmBody() override;

  static NQSweep* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQSweep>(object);
  }

 protected:
  // Where the segment begins and ends along the direction of the sweep. Asked at
  // any time before the segment has ended.
  virtual int virtualStartValue(NQObject* segment) = 0;
  virtual int virtualEndValue(NQObject* segment) = 0;
  // Where it lies across the direction of the sweep: 0 if not overridden. Asked
  // whenever it is compared on the sweep line.
  virtual int virtualSweepLineValue(NQObject* segment);
  // For derived classes: 0 if not overridden, and never asked by the sweep.
  virtual int virtualAuxValue(NQObject* segment);
  // Called after the segment has come to the sweep line, and before it leaves.
  virtual void virtualSegmentInserted(NQObject* segment);
  virtual void virtualSegmentRemoving(NQObject* segment);

  // During virtualSegmentInserted() the segment's cell on the line, from which its
  // neighbours are reached; null at other times.
  NQBinTreeCell* pInsertedCell() const { return pInsertedCell_; }

 private:
  friend class NQSegSortedBinTree;
  friend class NQSweepSegmentSort;

  NQSweep(const NQSweep&) = delete;
  NQSweep& operator=(const NQSweep&) = delete;

  void sortEvents(NQDList& events, int (NQSweep::*value)(NQObject*));
  void fetchAhead() const;
  bool endComesFirst();
  void startFirst();
  void endFirst();

  NQSweepTypeEnum type_;
  NQDList starts_;  // the events to come; sorted during a run
  NQDList ends_;
  bool endsAreShown_ = false;
  std::unique_ptr<NQSegSortedBinTree> pSweepLine_;
  NQBinTreeCell* pInsertedCell_ = nullptr;
};

#endif  // NQ_GEOMETRY_SWEEP_H

// hor_segment.h -- NQHorSegment, a coordinate with a list of objects.
//
// A small record for sweeps and the like: what lies at one coordinate. It owns
// the cells of its list, never the objects in them. A deep copy holds new cells
// with the same objects; an attribute copy has the coordinate and an empty list.

#ifndef NQ_GEOMETRY_HOR_SEGMENT_H
#define NQ_GEOMETRY_HOR_SEGMENT_H

#include "nq/containers/dlist.h"

class NQ_EXPORT NQHorSegment : public NQObject {
  NQ_COPY_PROTOCOL(NQHorSegment)

 public:
  NQHorSegment() = default;

  NQDList* pList() { return &list_; }
  const NQDList* pList() const { return &list_; }
  // The segment's accounting figure, not its size in memory: 16 and the list's.
  nqLong sizeOf() const { return list_.sizeOf() + 16; }

  nqLong coordinate = 0;

 protected:
  void init();

 private:
  NQDList list_;
};

#endif  // NQ_GEOMETRY_HOR_SEGMENT_H

// point_list.h -- NQPointDList and NQPointSList, lists of points; see typed_list.h.
//
// A deep copy of a list deletes the points of its target and holds clones of the
// source's; made from the list of the other kind, a list holds the same points in
// new cells.

#ifndef NQ_GEOMETRY_POINT_LIST_H
#define NQ_GEOMETRY_POINT_LIST_H

#include "nq/containers/list_sort.h"
#include "nq/geometry/point.h"
#include "nq/geometry/typed_list.h"

class NQPointDList;
class NQPointSList;

// The operations that have the element in their name.
template <class List, class Base, class Other>
class NQPointList : public NQTypedList<List, Base, Other> {
 public:
  using Cell = typename NQTypedList<List, Base, Other>::Cell;

  Cell* searchPoint(const NQPoint* point) const { return this->searchObject(point); }
  Cell* searchPreviousPoint(
      const NQPoint* point) const requires std::same_as<Base, NQSList> {
    return this->searchPreviousObject(point);
  }
  NQPoint* pPointInPosition(nqLong position) const {
    return static_cast<NQPoint*>(this->pObjectInPosition(position));
  }
  nqLong positionOfPoint(const NQPoint* point) const {
    return this->positionOfObject(point);
  }

  Cell* addPoint(Cell* after, NQPoint* point) { return this->addObject(after, point); }
  Cell* appendPoint(NQPoint* point) { return this->appendObject(point); }
  Cell* prependPoint(NQPoint* point) { return this->prependObject(point); }
  Cell* addPointIfNotInList(Cell* after, NQPoint* point) {
    return this->addObjectIfNotInList(after, point);
  }
  Cell* appendPointIfNotInList(NQPoint* point) {
    return this->appendObjectIfNotInList(point);
  }
  Cell* prependPointIfNotInList(NQPoint* point) {
    return this->prependObjectIfNotInList(point);
  }

  Cell* searchAndRemovePoint(const NQPoint* point) {
    return this->searchAndRemoveObject(point);
  }
  void deleteAllCellsAndPoints() { this->deleteAllCellsAndObjects(); }

  int copyAllCellsAndPoints(const List* source) {
    return this->copyAllCellsAndObjects(source);
  }
  int copyAllCellsAndPoints(const Other* source) {
    return this->copyAllCellsAndObjects(source);
  }

 protected:
  NQPointList() = default;
};

class NQ_EXPORT NQPointDList : public NQPointList<NQPointDList, NQDList, NQPointSList> {
  NQ_COPY_PROTOCOL(NQPointDList)
  NQ_MOVE_MEMBERS(NQPointDList)

 public:
  NQPointDList();
  NQPointDList(const NQPointSList& source);  // NOLINT: the same list
  ~NQPointDList() override;
  NQPointDList& operator=(const NQPointSList& source);
};

class NQ_EXPORT NQPointSList : public NQPointList<NQPointSList, NQSList, NQPointDList> {
  NQ_COPY_PROTOCOL(NQPointSList)
  NQ_MOVE_MEMBERS(NQPointSList)

 public:
  NQPointSList();
  NQPointSList(const NQPointDList& source);  // NOLINT: the same list
  ~NQPointSList() override;
  NQPointSList& operator=(const NQPointDList& source);
};

class NQ_EXPORT NQPointDListIter : public NQTypedListIter<NQPointDList, NQDListIter> {
 public:
  using NQTypedListIter::NQTypedListIter;
  NQPoint* pPoint() const { return static_cast<NQPoint*>(pObject()); }
  static NQPointDListIter* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQPointDListIter>(object);
  }
  void debugOutput(int level) override;
};

class NQ_EXPORT NQPointSListIter : public NQTypedListIter<NQPointSList, NQSListIter> {
 public:
  using NQTypedListIter::NQTypedListIter;
  NQPoint* pPoint() const { return static_cast<NQPoint*>(pObject()); }
  static NQPointSListIter* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQPointSListIter>(object);
  }
  void debugOutput(int level) override;
};

// Sorts by x, then by y. Differences wrap around at 32 bits: coordinates farther
// apart than that come in some order. Null pointers come first.
class NQ_EXPORT NQPointSListSort : public NQSListSort {
 public:
  static NQPointSListSort* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQPointSListSort>(object);
  }

 protected:
  int virtualCompare(NQSListCell* a, NQSListCell* b) override;
  void virtualDebugOutputElement(NQSListCell* cell) override;
};

#endif  // NQ_GEOMETRY_POINT_LIST_H

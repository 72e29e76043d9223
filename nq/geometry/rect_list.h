// rect_list.h -- NQRectDList and NQRectSList, lists of rectangles; see typed_list.h.
//
// A deep copy of a list deletes the rectangles of its target and holds clones of the
// source's; made from the list of the other kind, a list holds the same rectangles in
// new cells.

#ifndef NQ_GEOMETRY_RECT_LIST_H
#define NQ_GEOMETRY_RECT_LIST_H

#include "nq/geometry/rect.h"
#include "nq/geometry/typed_list.h"

class NQRectDList;
class NQRectSList;

// The operations that have the element in their name.
template <class List, class Base, class Other>
class NQRectList : public NQTypedList<List, Base, Other> {
 public:
  using Cell = typename NQTypedList<List, Base, Other>::Cell;

  Cell* searchRect(const NQRect* rect) const { return this->searchObject(rect); }
  Cell* searchPreviousRect(
      const NQRect* rect) const requires std::same_as<Base, NQSList> {
    return this->searchPreviousObject(rect);
  }
  NQRect* pRectInPosition(nqLong position) const {
    return static_cast<NQRect*>(this->pObjectInPosition(position));
  }
  nqLong positionOfRect(const NQRect* rect) const { return this->positionOfObject(rect); }

  Cell* addRect(Cell* after, NQRect* rect) { return this->addObject(after, rect); }
  Cell* appendRect(NQRect* rect) { return this->appendObject(rect); }
  Cell* prependRect(NQRect* rect) { return this->prependObject(rect); }
  Cell* addRectIfNotInList(Cell* after, NQRect* rect) {
    return this->addObjectIfNotInList(after, rect);
  }
  Cell* appendRectIfNotInList(NQRect* rect) {
    return this->appendObjectIfNotInList(rect);
  }
  Cell* prependRectIfNotInList(NQRect* rect) {
    return this->prependObjectIfNotInList(rect);
  }

  Cell* searchAndRemoveRect(const NQRect* rect) {
    return this->searchAndRemoveObject(rect);
  }
  void deleteAllCellsAndRects() { this->deleteAllCellsAndObjects(); }

  int copyAllCellsAndRects(const List* source) {
    return this->copyAllCellsAndObjects(source);
  }
  int copyAllCellsAndRects(const Other* source) {
    return this->copyAllCellsAndObjects(source);
  }

 protected:
  NQRectList() = default;
};

class NQ_EXPORT NQRectDList : public NQRectList<NQRectDList, NQDList, NQRectSList> {
  NQ_COPY_PROTOCOL(NQRectDList)
  NQ_MOVE_MEMBERS(NQRectDList)

 public:
  NQRectDList();
  NQRectDList(const NQRectSList& source);  // NOLINT: the same list
  ~NQRectDList() override;
  NQRectDList& operator=(const NQRectSList& source);
};

class NQ_EXPORT NQRectSList : public NQRectList<NQRectSList, NQSList, NQRectDList> {
  NQ_COPY_PROTOCOL(NQRectSList)
  NQ_MOVE_MEMBERS(NQRectSList)

 public:
  NQRectSList();
  NQRectSList(const NQRectDList& source);  // NOLINT: the same list
  ~NQRectSList() override;
  NQRectSList& operator=(const NQRectDList& source);
};

class NQ_EXPORT NQRectDListIter : public NQTypedListIter<NQRectDList, NQDListIter> {
 public:
  using NQTypedListIter::NQTypedListIter;
  NQRect* pRect() const { return static_cast<NQRect*>(pObject()); }
  static NQRectDListIter* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQRectDListIter>(object);
  }
  void debugOutput(int level) override;
};

class NQ_EXPORT NQRectSListIter : public NQTypedListIter<NQRectSList, NQSListIter> {
 public:
  using NQTypedListIter::NQTypedListIter;
  NQRect* pRect() const { return static_cast<NQRect*>(pObject()); }
  static NQRectSListIter* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQRectSListIter>(object);
  }
  void debugOutput(int level) override;
};

#endif  // NQ_GEOMETRY_RECT_LIST_H

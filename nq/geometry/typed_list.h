// typed_list.h -- lists of one type of element.
//
// The lists of points (point_list.h) and of rectangles (rect_list.h) are the
// general lists with their element type in names and signatures: every
// operation does what the general one of the same name does (linked_list.h),
// "Point" or "Rect" standing for "Object". They hold no data of their own, so a
// list of points is a list of objects wherever one is asked for.
//
// How it works
//   NQTypedList adds what has the list itself in its signature; a layer above
//   it, one for each element type, adds what has the element in its name; the
//   list on top adds the copy protocol.

#ifndef NQ_GEOMETRY_TYPED_LIST_H
#define NQ_GEOMETRY_TYPED_LIST_H

#include <concepts>
#include <type_traits>

#include "nq/containers/dlist.h"
#include "nq/containers/slist.h"

// The part of `List` that is the same for every element: Base with lists of the
// same type for arguments. `Other` is the list of the other kind.
template <class List, class Base, class Other>
class NQTypedList : public Base {
 public:
  using Cell =
      std::conditional_t<std::is_same_v<Base, NQDList>, NQDListCell, NQSListCell>;

  int compare(const List* other) const { return Base::compare(other); }
  int compareUnordered(const List* other) const { return Base::compareUnordered(other); }

  int transferListPart(Cell* after, List* source, Cell* from, Cell* to) {
    return Base::transferListPart(after, source, from, to);
  }
  int transferNextListPart(Cell* after, List* source, Cell* previous,
                           Cell* to) requires std::same_as<Base, NQSList> {
    return Base::transferNextListPart(after, source, previous, to);
  }
  int transferList(Cell* after, List* source) {
    return Base::transferList(after, source);
  }
  int appendList(List* source) { return Base::appendList(source); }
  int prependList(List* source) { return Base::prependList(source); }

  int transferListPartIfNotInList(Cell* after, List* source, Cell* from, Cell* to) {
    return Base::transferListPartIfNotInList(after, source, from, to);
  }
  int transferListIfNotInList(Cell* after, List* source) {
    return Base::transferListIfNotInList(after, source);
  }
  int appendListIfNotInList(List* source) { return Base::appendListIfNotInList(source); }
  int prependListIfNotInList(List* source) {
    return Base::prependListIfNotInList(source);
  }

  int copyTransferListPart(Cell* after, const List* source, const Cell* from,
                           const Cell* to) {
    return Base::copyTransferListPart(after, source, from, to);
  }
  int copyTransferList(Cell* after, const List* source) {
    return Base::copyTransferList(after, source);
  }
  int copyAppendList(const List* source) { return Base::copyAppendList(source); }
  int copyPrependList(const List* source) { return Base::copyPrependList(source); }

  int copyTransferListPartIfNotInList(Cell* after, const List* source, const Cell* from,
                                      const Cell* to) {
    return Base::copyTransferListPartIfNotInList(after, source, from, to);
  }
  int copyTransferListIfNotInList(Cell* after, const List* source) {
    return Base::copyTransferListIfNotInList(after, source);
  }
  int copyAppendListIfNotInList(const List* source) {
    return Base::copyAppendListIfNotInList(source);
  }
  int copyPrependListIfNotInList(const List* source) {
    return Base::copyPrependListIfNotInList(source);
  }

  int copyAllCells(const List* source) { return Base::copyAllCells(source); }
  int copyAllCells(const Other* source) { return Base::copyAllCells(source); }

  int merge(List* a, List* b) { return Base::merge(a, b); }

 protected:
  NQTypedList() = default;
};

// An iterator of Base's kind that starts only at a `List`.
template <class List, class Base>
class NQTypedListIter : public Base {
 public:
  // As Base: a list with a direction or a cell, or a list alone.
  template <class... Start>
  requires std::constructible_from<Base, const List*, Start...>
  explicit NQTypedListIter(const List* list, Start... start) : Base(list, start...) {}

  template <class... Start>
  void init(const List* list, Start... start) {
    Base::init(list, start...);
  }
};

#endif  // NQ_GEOMETRY_TYPED_LIST_H

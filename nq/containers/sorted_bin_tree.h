// sorted_bin_tree.h -- a tree kept in the order of a comparison of its objects.
//
// Make one with NQ_EXCLUSIVE_COLORS, unless something depends on the established shape
// of trees, which is as deep as the order of insertions makes it (bin_tree.h):
//
//   class ByName : public NQSortedBinTree {
//    public:
//     ByName() : NQSortedBinTree(NQ_EXCLUSIVE_COLORS) {}
//
//    protected:
//     int virtualObjectCompare(const NQObject* a, const NQObject* b) const override;
//   };
//
// An ordered set with duplicates: a derived class supplies the comparison,
// cells find their places by it, and objects are found by it. Among objects that
// compare equal the newest comes first (the sorted lists keep them the other way
// round). The order of two objects must not change while both are in the tree.
//
// Insertion and search cost one comparison for each level of the tree; insertion at
// either end of a deep tree costs but a few, and searches also walk over the objects
// that compare equal to the one sought. A comparison that contradicts itself makes
// searches miss and orders wrong, nothing worse.
//
// What a comparison throws passes through. A cell that was being inserted is then the
// caller's, and one made for it is gone; cells of another tree that have no place yet
// are back in that tree, in their old order.
//
// What would give cells a position of the caller's choice is not offered here.
// The class is abstract; the clone of a derived class that does not state the copy
// protocol is an NQBinTree. Copies of a sorted tree compare nothing, as they keep its
// order.

#ifndef NQ_CONTAINERS_SORTED_BIN_TREE_H
#define NQ_CONTAINERS_SORTED_BIN_TREE_H

#include "nq/containers/bin_tree.h"

class NQ_EXPORT NQSortedBinTree : public NQBinTree {
  NQ_COPY_ROUTINES(NQSortedBinTree)

 public:
  NQSortedBinTree() = default;
  explicit NQSortedBinTree(NQTreeColorsEnum colors) : NQBinTree(colors) {}
  NQSortedBinTree(const NQSortedBinTree& source, NQDeepFlagEnum flag);
  NQSortedBinTree(const NQSortedBinTree& source);
  const NQSortedBinTree& operator=(const NQSortedBinTree& source);
  // As those of NQBinTree; `source` must be ordered by the same comparison.
  NQSortedBinTree(NQSortedBinTree&& source) noexcept = default;
  NQSortedBinTree& operator=(NQSortedBinTree&& source) noexcept = default;
  void copyObject(const NQObject* source) override;
  void copyAttributes(const NQObject* source) override;
  static NQSortedBinTree* castDown(const NQObject* object);

  // Objects keep their places.
  using iterator = const_iterator;
  const_iterator begin() const { return NQBinTree::begin(); }
  const_iterator end() const { return NQBinTree::end(); }

  // Find by the comparison, then by identity: an equal cell or object is not the
  // one sought. Null when absent. A null object is looked for along the list, so
  // that the comparison sees null only when null objects are in the tree.
  NQBinTreeCell* searchCell(const NQBinTreeCell* cell) const;
  NQBinTreeCell* searchObject(const NQObject* object) const;

  // Places the cell, before those that compare equal, and keeps it; a null cell
  // is refused with null.
  NQBinTreeCell* insertCell(NQBinTreeCell* cell);
  // In a new cell; null when memory is exhausted.
  NQBinTreeCell* addObject(NQObject* object);

  // As those of NQBinTree. Another sorted tree must be ordered by the same comparison,
  // and its order is taken over; objects of any other list are put in their places.
  int copyAllCells(const NQSortedBinTree* source) {
    return NQBinTree::copyAllCells(source);
  }
  int copyAllCells(const NQDList* source);
  int copyAllCells(const NQSList* source);
  int copyAllCellsAndObjects(const NQSortedBinTree* source) {
    return NQBinTree::copyAllCellsAndObjects(source);
  }
  int copyAllCellsAndObjects(const NQDList* source);
  int copyAllCellsAndObjects(const NQSList* source);

  // The cell is handed over; null when there is none.
  NQBinTreeCell* searchAndRemoveCell(const NQBinTreeCell* cell);
  NQBinTreeCell* searchAndRemoveObject(const NQObject* object);

  // Move or copy cells as the operations of NQBinTree do, each to its place.
  int transferListPart(NQBinTree* source, NQBinTreeCell* from, NQBinTreeCell* to);
  int transferList(NQBinTree* source);
  int copyTransferListPart(const NQDList* source, const NQDListCell* from,
                           const NQDListCell* to);
  int copyTransferList(const NQDList* source);

 protected:
  void init() {}

  // Called by insertCell() and searchCell(), see above: the comparison of the
  // two cells' objects, if not overridden.
  virtual int virtualCellCompare(const NQDListCell* a, const NQDListCell* b) const;
  // Negative when `a` sorts before `b`, 0 when they are equal, positive when after.
  virtual int virtualObjectCompare(const NQObject* a, const NQObject* b) const = 0;

 private:
  NQ_HIDE_PLACES(NQBinTree)
  NQ_HIDE_SEARCHING_PLACES(NQBinTree)
  using NQBinTree::addAfter;
  using NQBinTree::addBefore;
  using NQBinTree::insertAfter;
  using NQBinTree::insertBefore;

  // A child that the parent, null for the root, has not yet.
  struct Place {
    NQBinTreeCell* parent;
    int side;
  };
  // Cells on their way here, which go back behind `after` in `source` unless all
  // arrive.
  struct Transfer;

  template <class Compare, class Matches>
  NQBinTreeCell* find(Compare compare, Matches matches) const;
  Place placeFor(const NQBinTreeCell* cell) const;
  void insertAll(NQDList& cells);
  template <class List>
  int fillFrom(const List* source);
  template <class List>
  int cloneFrom(const List* source);
};

#endif  // NQ_CONTAINERS_SORTED_BIN_TREE_H

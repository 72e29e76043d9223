// bin_tree.h -- a list whose cells also form a binary tree in the same order.
//
// NQBinTree is a doubly linked list (dlist.h) for which order is cheap to ask:
// compare() tells which of two cells comes first by climbing the tree, without
// walking the list. NQSortedBinTree (sorted_bin_tree.h) adds search by key.
//
// Make a tree with NQ_EXCLUSIVE_COLORS unless something depends on the established
// shape of trees:
//
//   NQBinTree queue(NQ_EXCLUSIVE_COLORS);
//
// It is then the textbook red-black tree, at most 2 log2(n + 1) deep whatever happens.
// The established colours, which are the default so that programs that know the shape
// keep it, accumulate: a cell that becomes red stays black if it was, and the other way
// round. That keeps every order right, but not the depth, which every insertion,
// removal and comparison of order may cost. Depths found:
//
//                                    established          exclusive
//   cells                            1000    10000        1000   10000   100000
//   inserted at random               16      23           12     16      20
//   inserted in order, either way    501     5001         17     24      31
//   in order, first half removed     500     5000         15     22      28
//   the same, while it went on       899     8999         17     24      31
//   random, then removals and        998     9983         13     17      21
//     insertions in turn
//   in order, each time the first    999     9999         17     24      30
//     removed and one appended
//
// Copies, transfers and reversal insert in order: with established colours they
// take quadratic time. A tree of another type than 1 has no colours: it attaches cells
// by their position only, so that appending makes a chain.
//
// The tree owns its cells, never the objects in them; only
// deleteAllCellsAndObjects() deletes objects. A cell pointer stays valid until
// that cell is deleted, and neighbours and iteration are those of the list.
// Cells come from slabs of their own, as list cells do.
//
// Every operation here keeps list and tree in step, and hides that of NQDList with
// its name; see linked_list.h for what the latter do when they are called for a tree
// all the same.
//
// How it works
//   A cell without a left or right child has the sentinel there, a black cell that
//   all trees share, so that the fix-ups can ask for the colour of a missing child.
//   Nothing is ever written to it. The cell that precedes another in the list is its
//   predecessor in the tree: it ends the left subtree, or is an ancestor. So a free
//   place for a new cell beside `after` is always `after`'s right or its successor's
//   left.
//   Balancing is that of T. H. Cormen et al., "Introduction to Algorithms",
//   chapter "Red-black trees", in terms of colour bits that may both be set.

#ifndef NQ_CONTAINERS_BIN_TREE_H
#define NQ_CONTAINERS_BIN_TREE_H

#include "nq/containers/dlist.h"
#include "nq/platform/prefetch.h"

class NQTestPeer;

enum NQTreeColorsEnum : int {
  NQ_ESTABLISHED_COLORS = 0,  // they accumulate
  NQ_EXCLUSIVE_COLORS = 1,    // each clears the other
};

class NQ_EXPORT NQBinTreeCell : public NQDListCell {
  NQ_COPY_PROTOCOL(NQBinTreeCell)

 public:
  // Colour 1 is red, 2 black; every other value leaves the cell uncoloured.
  constexpr explicit NQBinTreeCell(NQObject* object = nullptr, int colour = 0)
      : NQDListCell(object),
        flags_(colour == 1   ? kRed
               : colour == 2 ? kBlack
                             : 0) {}

  NQBinTreeCell* pPreviousCell() const {
    return static_cast<NQBinTreeCell*>(NQDListCell::pPreviousCell());
  }
  NQBinTreeCell* pNextCell() const {
    return static_cast<NQBinTreeCell*>(NQDListCell::pNextCell());
  }

  // For cells in a tree: fetches some that a walk will come to into the cache, as
  // neighbours in the list may lie anywhere in memory. The tree's iterators do it.
  [[gnu::always_inline]] void fetchAhead(bool forward) const;

  NQ_CELL_MEMORY

 protected:
  // A mark for walks of derived classes, which clear it again.
  int visited() const { return (flags_ & kVisited) != 0 ? 1 : 0; }
  int visited(int value) {
    flags_ = static_cast<unsigned char>(value != 0 ? flags_ | kVisited
                                                   : flags_ & ~unsigned{kVisited});
    return value;
  }

 private:
  friend class NQBinTree;
  friend class NQSortedBinTree;
  friend class NQTestPeer;

  static constexpr unsigned char kVisited = 1;
  static constexpr unsigned char kRed = 2;
  static constexpr unsigned char kBlack = 4;

  bool isRed() const { return (flags_ & kRed) != 0; }
  bool isBlack() const { return (flags_ & kBlack) != 0; }
  bool isUncolored() const { return (flags_ & (kRed | kBlack)) == 0; }
  // What is in `kept` of the other flags stays.
  void makeRed(unsigned char kept = 0xff) { flags_ = (flags_ & kept) | kRed; }
  void makeBlack(unsigned char kept = 0xff) { flags_ = (flags_ & kept) | kBlack; }

  // Sides index the children, so that no side needs a branch.
  static constexpr int kLeft = 0;
  static constexpr int kRight = 1;
  int sideOf(const NQBinTreeCell* child) const {
    return pChildren_[kLeft] == child ? kLeft : kRight;
  }
  [[gnu::always_inline]] void fetchChildren() const {
    for (const NQBinTreeCell* child : pChildren_) nqdetail::prefetch(child);
  }
  NQBinTreeCell* pLeft() const { return pChildren_[kLeft]; }
  NQBinTreeCell* pRight() const { return pChildren_[kRight]; }

  NQBinTreeCell* pChildren_[2] = {};  // null in a free cell
  NQBinTreeCell* pParent_ = nullptr;  // null in a free cell and in the root
  unsigned char flags_ = 0;
};

// What lies on the far side of the parent is visited after a few steps; the cells in
// between are the children of a cell that was fetched before. Cells side by side in
// memory need no help.
inline void NQBinTreeCell::fetchAhead(bool forward) const {
  if (pParent_ == nullptr || pNextCell() == this + 1) return;
  const int ahead = forward ? kRight : kLeft;
  const NQBinTreeCell* const beside = pParent_->pChildren_[ahead];
  nqdetail::prefetch(beside->pChildren_[ahead]);
  const NQBinTreeCell* const nearer = beside->pChildren_[1 - ahead];
  if (nearer != nullptr) nearer->fetchChildren();
}

class NQ_EXPORT NQBinTree : public NQDList {
  NQ_COPY_PROTOCOL(NQBinTree)

 public:
  NQBinTree() : NQBinTree(1) {}
  explicit NQBinTree(int type, NQTreeColorsEnum colors = NQ_ESTABLISHED_COLORS);
  explicit NQBinTree(NQTreeColorsEnum colors) : NQBinTree(1, colors) {}

  // Take over the cells, type and colours; `source` is empty then, of the same type
  // and colours. Objects that an assignment's target held are left alone. O(1), and
  // what the target held.
  NQBinTree(NQBinTree&& source) noexcept;
  NQBinTree& operator=(NQBinTree&& source) noexcept;

  int binTreeType() const { return type_; }
  // Whether each colour clears the other: 0 at first. Can be set in an empty tree
  // only; answers what holds then.
  int exclusiveColors() const { return keptFlags_ == kAllFlags ? 0 : 1; }
  int exclusiveColors(int value);

  using iterator = NQObjectIterator<NQBinTree, NQBinTreeCell, NQObject*>;
  using const_iterator = NQObjectIterator<NQBinTree, NQBinTreeCell, NQObject* const>;
  iterator begin() { return {this, pFirstCell()}; }
  iterator end() { return {this, nullptr}; }
  const_iterator begin() const { return {this, pFirstCell()}; }
  const_iterator end() const { return {this, nullptr}; }

  NQBinTreeCell* pFirstCell() const { return cell(NQDList::pFirstCell()); }
  NQBinTreeCell* pLastCell() const { return cell(NQDList::pLastCell()); }
  NQBinTreeCell* pCellInPosition(nqLong position) const {
    return cell(NQDList::pCellInPosition(position));
  }
  NQBinTreeCell* searchCell(const NQBinTreeCell* wanted) const {
    return cell(NQDList::searchCell(wanted));
  }
  NQBinTreeCell* searchObject(const NQObject* object) const {
    return cell(NQDList::searchObject(object));
  }

  // The order of two cells of this tree: -1 when `a` comes before `b`, 1 when
  // after, 0 for the same cell (and where there is no order: null, or cells of
  // different trees). Costs what climbing to the root does from both.
  int compare(const NQBinTreeCell* a, const NQBinTreeCell* b) const;
  using NQDList::compare;

  // The tree's accounting figure, not its size in memory: 120 for the tree and
  // 64 for each cell, with 32 bits.
  nqLong sizeOf() const override;

  // ---- Insertion. The tree keeps the cell; the answer is the cell that is now in
  // the tree. A null cell is refused with null.

  // Null stands for the front.
  NQBinTreeCell* insertCell(NQBinTreeCell* after, NQBinTreeCell* cell);
  // Null stands for the end.
  NQBinTreeCell* insertAfter(NQBinTreeCell* after, NQBinTreeCell* cell) {
    return insertCell(after == nullptr ? pLastCell() : after, cell);
  }
  // Null stands for the front.
  NQBinTreeCell* insertBefore(NQBinTreeCell* before, NQBinTreeCell* cell) {
    return insertCell(before == nullptr ? nullptr : before->pPreviousCell(), cell);
  }
  NQBinTreeCell* appendCell(NQBinTreeCell* cell) { return insertCell(pLastCell(), cell); }
  NQBinTreeCell* prependCell(NQBinTreeCell* cell) { return insertCell(nullptr, cell); }

  // In a new cell; null when memory is exhausted. `after` and `before` as above.
  NQBinTreeCell* addObject(NQBinTreeCell* after, NQObject* object);
  NQBinTreeCell* addAfter(NQBinTreeCell* after, NQObject* object);
  NQBinTreeCell* addBefore(NQBinTreeCell* before, NQObject* object);
  NQBinTreeCell* appendObject(NQObject* object);
  NQBinTreeCell* prependObject(NQObject* object);

  // When the object is in the tree already, the answer is the first cell that
  // holds it, and nothing is inserted; the caller then keeps `cell`.
  NQBinTreeCell* insertCellIfNotInList(NQBinTreeCell* after, NQBinTreeCell* cell);
  NQBinTreeCell* appendCellIfNotInList(NQBinTreeCell* cell) {
    return insertCellIfNotInList(pLastCell(), cell);
  }
  NQBinTreeCell* prependCellIfNotInList(NQBinTreeCell* cell) {
    return insertCellIfNotInList(nullptr, cell);
  }
  NQBinTreeCell* addObjectIfNotInList(NQBinTreeCell* after, NQObject* object);
  NQBinTreeCell* appendObjectIfNotInList(NQObject* object) {
    return addObjectIfNotInList(pLastCell(), object);
  }
  NQBinTreeCell* prependObjectIfNotInList(NQObject* object) {
    return addObjectIfNotInList(nullptr, object);
  }

  // ---- Removal

  // Hands the cell over; null when there is none, or it is free already. It keeps its
  // neighbours in the list, so that a walk can go on from it. The searches walk, O(n).
  NQBinTreeCell* removeCell(NQBinTreeCell* cell);
  NQBinTreeCell* searchAndRemoveCell(const NQBinTreeCell* cell);
  NQBinTreeCell* searchAndRemoveObject(const NQObject* object);
  // Removes the cell and deletes it.
  void discardCell(NQBinTreeCell* cell);
  // Another name for deleteAllCells().
  void deleteAllFromBinTree() { deleteAllCells(); }

  // ---- Moving cells from another tree, in order. 0 for a null tree, for this one,
  // and when `to` is not reached from `from`, else 1.

  int transferListPart(NQBinTreeCell* after, NQBinTree* source, NQBinTreeCell* from,
                       NQBinTreeCell* to);
  int transferList(NQBinTreeCell* after, NQBinTree* source);
  int appendList(NQBinTree* source) { return transferList(pLastCell(), source); }
  int prependList(NQBinTree* source) { return transferList(nullptr, source); }

  // Only cells whose objects this tree does not hold yet; the others stay in
  // `source`. Once `to` itself has moved, the walk runs on to the end of `source`,
  // as it does for lists.
  int transferListPartIfNotInList(NQBinTreeCell* after, NQBinTree* source,
                                  NQBinTreeCell* from, NQBinTreeCell* to);
  int transferListIfNotInList(NQBinTreeCell* after, NQBinTree* source);
  int appendListIfNotInList(NQBinTree* source) {
    return transferListIfNotInList(pLastCell(), source);
  }
  int prependListIfNotInList(NQBinTree* source) {
    return transferListIfNotInList(nullptr, source);
  }

  // ---- Copying cells: new cells with the same objects. `source` is any list but
  // this, and stays as it is. Answers as above.

  int copyTransferListPart(NQBinTreeCell* after, const NQDList* source,
                           const NQDListCell* from, const NQDListCell* to);
  int copyTransferList(NQBinTreeCell* after, const NQDList* source);
  int copyAppendList(const NQDList* source) {
    return copyTransferList(pLastCell(), source);
  }
  int copyPrependList(const NQDList* source) { return copyTransferList(nullptr, source); }

  int copyTransferListPartIfNotInList(NQBinTreeCell* after, const NQDList* source,
                                      const NQDListCell* from, const NQDListCell* to);
  int copyTransferListIfNotInList(NQBinTreeCell* after, const NQDList* source);
  int copyAppendListIfNotInList(const NQDList* source) {
    return copyTransferListIfNotInList(pLastCell(), source);
  }
  int copyPrependListIfNotInList(const NQDList* source) {
    return copyTransferListIfNotInList(nullptr, source);
  }

  // Empty this tree, whatever the source; its objects are left alone by both. The
  // second form fills it with clones (null for null), which are made before, so that
  // nothing has changed when cloning throws. 0 for a null source and for the tree
  // itself, which is empty then. A deep copy of a tree is made by the second form. Type
  // and exclusiveColors() go with it, and with an attribute copy, which is empty
  // otherwise (and which leaves a tree that has cells as it is).
  int copyAllCells(const NQDList* source);
  int copyAllCells(const NQSList* source);
  int copyAllCellsAndObjects(const NQDList* source);
  int copyAllCellsAndObjects(const NQSList* source);

  // ---- Reordering

  int reverse();
  // The cells change places, in the list and in the tree; null changes nothing.
  void swapPosition(NQBinTreeCell* a, NQBinTreeCell* b);
  // Moves the cells of `a` and `b` to the end of this tree in turn, beginning with
  // `a`; what is left of the longer one comes last. Nothing is compared.
  int merge(NQBinTree* a, NQBinTree* b);

 protected:
  void init();

 private:
  friend class NQSortedBinTree;
  friend class NQTestPeer;

  static constexpr unsigned char kAllFlags = 0xff;

  static NQBinTreeCell* cell(NQDListCell* listCell) {
    return static_cast<NQBinTreeCell*>(listCell);
  }
  static constexpr int kLeft = NQBinTreeCell::kLeft;
  static constexpr int kRight = NQBinTreeCell::kRight;

  static NQBinTreeCell* sentinel();
  static bool isReal(const NQBinTreeCell* child);
  // Sets the root; the sentinel makes it null.
  NQBinTreeCell* pRoot(NQBinTreeCell* cell);
  void replaceChild(NQBinTreeCell* parent, NQBinTreeCell* old, NQBinTreeCell* child);
  // Towards a side: the child on the other side rises.
  void rotate(NQBinTreeCell* cell, int side);
  void leftRotate(NQBinTreeCell* cell) { rotate(cell, kLeft); }
  void rightRotate(NQBinTreeCell* cell) { rotate(cell, kRight); }

  void makeRed(NQBinTreeCell* cell) { cell->makeRed(keptFlags_); }
  void makeBlack(NQBinTreeCell* cell) { cell->makeBlack(keptFlags_); }
  void exchangeColours(NQBinTreeCell* a, NQBinTreeCell* b);
  void insertRedBlackFixup(NQBinTreeCell* x);
  void removeRedBlackFixup(NQBinTreeCell* x, NQBinTreeCell* parent);
  // Whether links and order agree and, with exclusive colours, no red cell has a
  // red child and every path to a missing child passes as many black cells.
  int isValidRedBlackTree() const;

  void attach(NQBinTreeCell* parent, int side, NQBinTreeCell* cell);
  static bool reaches(const NQDListCell* from, const NQDListCell* to);
  bool takeOut(NQBinTreeCell* from, NQBinTreeCell* to, NQDList& cells);
  void insertAll(NQBinTreeCell* after, NQDList& cells);
  template <class List>
  int fillFrom(const List* source);
  template <class List>
  int cloneFrom(const List* source);
  void takeTree(NQBinTree& source) noexcept;
  template <class Holds>
  int copyRun(NQBinTreeCell* after, const NQDList* source, const NQDListCell* from,
              const NQDListCell* to, Holds holds);

  // Means nothing while the list is empty, whoever emptied it.
  NQBinTreeCell* pRoot_ = nullptr;
  int type_;
  unsigned char keptFlags_ = kAllFlags;  // when a cell gets a colour
};

#endif  // NQ_CONTAINERS_BIN_TREE_H

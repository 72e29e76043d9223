#include "nq/containers/bin_tree.h"

#include <utility>

#include "nq/containers/bin_tree_internal.h"
#include "nq/containers/cell_pool_internal.h"
#include "nq/containers/linked_list_internal.h"
#include "nq/containers/slist.h"

// ---- NQBinTreeCell

NQBinTreeCell::NQBinTreeCell(const NQBinTreeCell& source, NQDeepFlagEnum flag)
    : NQDListCell(source, flag) {}

NQBinTreeCell::NQBinTreeCell(const NQBinTreeCell& source)
    : NQBinTreeCell(source, NQ_DEEP_COPY) {}

// copyObject() looks out for the object itself.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
NQBinTreeCell& NQBinTreeCell::operator=(const NQBinTreeCell& source) {
  copyObject(&source);
  return *this;
}

NQ_COPY_OPERATIONS_IMPL(NQBinTreeCell)

static_assert(sizeof(NQBinTreeCell) == 64, "one line of the cache");

// Links and colours belong to the place in a tree.
void NQBinTreeCell::NQBinTreeCelldeepCopy(const NQBinTreeCell& source) {
  NQCopyAccess::deep<NQDListCell>(*this, source);
}

void NQBinTreeCell::NQBinTreeCellattributeCopy(const NQBinTreeCell& source) {
  NQCopyAccess::attributes<NQDListCell>(*this, source);
}

NQ_CELL_MEMORY_IMPL(NQBinTreeCell)

// ---- NQBinTree

constinit const nqdetail::TreeSentinel nqdetail::kTreeSentinel;

NQBinTree::NQBinTree(int type, NQTreeColorsEnum colors) : type_(type) {
  fixPlaces();
  exclusiveColors(colors);
}

NQBinTree::NQBinTree(NQBinTree&& source) noexcept {
  fixPlaces();
  takeTree(source);
}

NQBinTree& NQBinTree::operator=(NQBinTree&& source) noexcept {
  if (&source != this) {
    deleteAllCells();
    takeTree(source);
  }
  return *this;
}

void NQBinTree::takeTree(NQBinTree& source) noexcept {
  take(source);
  pRoot_ = source.pRoot_;
  type_ = source.type_;
  keptFlags_ = source.keptFlags_;
}

NQ_COPY_PROTOCOL_IMPL(NQBinTree)

// The list's deep copy would delete the objects.
void NQBinTree::NQBinTreedeepCopy(const NQBinTree& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  deleteAllCells();
  type_ = source.type_;
  keptFlags_ = source.keptFlags_;
  copyAllCellsAndObjects(&source);
}

// The cells of a tree that has any belong to its type and colours.
void NQBinTree::NQBinTreeattributeCopy(const NQBinTree& source) {
  NQCopyAccess::attributes<NQDList>(*this, source);
  if (length() > 0) return;
  type_ = source.type_;
  keptFlags_ = source.keptFlags_;
}

void NQBinTree::init() {
  fixPlaces();
  type_ = 1;
  keptFlags_ = kAllFlags;
}

int NQBinTree::exclusiveColors(int value) {
  if (length() == 0) {
    keptFlags_ = value != 0 ? NQBinTreeCell::kVisited : kAllFlags;
  }
  return exclusiveColors();
}

nqLong NQBinTree::sizeOf() const {
  return length() * 64 + 120;
}

int NQBinTree::compare(const NQBinTreeCell* a, const NQBinTreeCell* b) const {
  if (a == b || a == nullptr || b == nullptr) return 0;
  const auto depth = [](const NQBinTreeCell* cell) {
    nqLong above = 0;
    while ((cell = cell->pParent_) != nullptr) ++above;
    return above;
  };
  nqLong depthA = depth(a);
  nqLong depthB = depth(b);
  // The ancestors of both in the same depth, and those one below.
  const NQBinTreeCell* belowA = nullptr;
  const NQBinTreeCell* belowB = nullptr;
  const auto climb = [](const NQBinTreeCell*& cell, const NQBinTreeCell*& below) {
    below = cell;
    cell = cell->pParent_;
  };
  for (; depthA > depthB; --depthA) climb(a, belowA);
  for (; depthB > depthA; --depthB) climb(b, belowB);
  while (a != b) {
    climb(a, belowA);
    climb(b, belowB);
  }
  if (a == nullptr) return 0;
  if (belowA == nullptr) return a->pRight() == belowB ? -1 : 1;
  return a->pLeft() == belowA ? -1 : 1;
}

// ---- Insertion

NQBinTreeCell* NQBinTree::insertCell(NQBinTreeCell* after, NQBinTreeCell* cell) {
  if (cell == nullptr) return nullptr;
  if (length() == 0) {
    attach(nullptr, kLeft, cell);
  } else if (after == nullptr) {
    attach(pFirstCell(), kLeft, cell);
  } else if (isReal(after->pRight())) {
    attach(after->pNextCell(), kLeft, cell);
  } else {
    attach(after, kRight, cell);
  }
  return cell;
}

// Makes the cell the child that `parent`, null for the root, has not on that side.
// In the list it is then beside its parent.
void NQBinTree::attach(NQBinTreeCell* parent, int side, NQBinTreeCell* cell) {
  cell->pChildren_[kLeft] = cell->pChildren_[kRight] = sentinel();
  cell->pParent_ = parent;
  makeRed(cell);
  if (parent == nullptr) {
    pRoot_ = cell;
    makeBlack(cell);
    linkIn(nullptr, cell);
  } else {
    parent->pChildren_[side] = cell;
    linkIn(side == kRight ? parent : parent->pPreviousCell(), cell);
  }
  if (type_ == 1) insertRedBlackFixup(cell);
}

NQBinTreeCell* NQBinTree::addObject(NQBinTreeCell* after, NQObject* object) {
  return insertCell(after, new NQBinTreeCell(object));
}

NQBinTreeCell* NQBinTree::addAfter(NQBinTreeCell* after, NQObject* object) {
  return insertAfter(after, new NQBinTreeCell(object));
}

NQBinTreeCell* NQBinTree::addBefore(NQBinTreeCell* before, NQObject* object) {
  return insertBefore(before, new NQBinTreeCell(object));
}

NQBinTreeCell* NQBinTree::appendObject(NQObject* object) {
  return addObject(pLastCell(), object);
}

NQBinTreeCell* NQBinTree::prependObject(NQObject* object) {
  return addObject(nullptr, object);
}

NQBinTreeCell* NQBinTree::insertCellIfNotInList(NQBinTreeCell* after,
                                                NQBinTreeCell* cell) {
  if (cell == nullptr) return nullptr;
  NQBinTreeCell* const present = searchObject(cell->pObject());
  return present != nullptr ? present : insertCell(after, cell);
}

NQBinTreeCell* NQBinTree::addObjectIfNotInList(NQBinTreeCell* after, NQObject* object) {
  NQBinTreeCell* const present = searchObject(object);
  return present != nullptr ? present : addObject(after, object);
}

// ---- Removal

NQBinTreeCell* NQBinTree::removeCell(NQBinTreeCell* cell) {
  if (cell == nullptr || cell->pLeft() == nullptr) return nullptr;
  NQBinTreeCell* child;
  NQBinTreeCell* parent;  // of the child, in the end
  if (isReal(cell->pLeft()) && isReal(cell->pRight())) {
    // The cell changes places with its successor, which has no left child, and
    // leaves the tree from there.
    NQBinTreeCell* const next = cell->pNextCell();
    child = next->pRight();
    if (next->pParent_ == cell) {
      parent = next;
    } else {
      parent = next->pParent_;
      parent->pChildren_[kLeft] = child;
      next->pChildren_[kRight] = cell->pRight();
      next->pRight()->pParent_ = next;
    }
    next->pChildren_[kLeft] = cell->pLeft();
    next->pLeft()->pParent_ = next;
    next->pParent_ = cell->pParent_;
    replaceChild(cell->pParent_, cell, next);
    exchangeColours(cell, next);
  } else {
    child = isReal(cell->pLeft()) ? cell->pLeft() : cell->pRight();
    parent = cell->pParent_;
    replaceChild(parent, cell, child);
  }
  // The cell, whose links are cleared below, is written to in the sentinel's stead.
  (isReal(child) ? child : cell)->pParent_ = parent;
  removeAfter(cell->pPreviousCell(), cell);
  cell->pChildren_[kLeft] = cell->pChildren_[kRight] = cell->pParent_ = nullptr;
  if (type_ == 1 && cell->isBlack()) removeRedBlackFixup(child, parent);
  return cell;
}

NQBinTreeCell* NQBinTree::searchAndRemoveCell(const NQBinTreeCell* cell) {
  return removeCell(searchCell(cell));
}

NQBinTreeCell* NQBinTree::searchAndRemoveObject(const NQObject* object) {
  return removeCell(searchObject(object));
}

void NQBinTree::discardCell(NQBinTreeCell* cell) {
  delete removeCell(cell);
}

// ---- Moving and copying cells

// Moves the cells from `from` to `to` out of the tree; false when `to` is not
// reached.
bool NQBinTree::takeOut(NQBinTreeCell* from, NQBinTreeCell* to, NQDList& cells) {
  if (!reaches(from, to)) return false;
  if (from == pFirstCell() && to == pLastCell()) {
    cells.appendList(this);
    return true;
  }
  for (NQBinTreeCell* moved = nullptr; moved != to;) {
    moved = from;
    from = from->pNextCell();
    cells.appendCell(removeCell(moved));
  }
  return true;
}

bool NQBinTree::reaches(const NQDListCell* from, const NQDListCell* to) {
  if (to == nullptr) return false;
  while (from != nullptr && from != to) from = from->pNextCell();
  return from != nullptr;
}

void NQBinTree::insertAll(NQBinTreeCell* after, NQDList& cells) {
  while (NQDListCell* const first = cells.pFirstCell()) {
    after = insertCell(after, cell(cells.removeCell(first)));
  }
}

int NQBinTree::transferListPart(NQBinTreeCell* after, NQBinTree* source,
                                NQBinTreeCell* from, NQBinTreeCell* to) {
  NQDList cells;
  if (refuses(source) || !source->takeOut(from, to, cells)) return 0;
  insertAll(after, cells);
  return 1;
}

int NQBinTree::transferList(NQBinTreeCell* after, NQBinTree* source) {
  NQDList cells;
  if (refuses(source)) return 0;
  cells.appendList(source);
  insertAll(after, cells);
  return 1;
}

int NQBinTree::transferListPartIfNotInList(NQBinTreeCell* after, NQBinTree* source,
                                           NQBinTreeCell* from, NQBinTreeCell* to) {
  return moveEach(
      source, from, to, true,
      [this](const NQObject* object) { return searchObject(object) != nullptr; },
      [&](NQDListCell*, NQDListCell* moved) {
        after = insertCell(after, source->removeCell(cell(moved)));
      });
}

int NQBinTree::transferListIfNotInList(NQBinTreeCell* after, NQBinTree* source) {
  return wholeList(source, [&](NQBinTreeCell* from, NQBinTreeCell* to) {
    return transferListPartIfNotInList(after, source, from, to);
  });
}

template <class Holds>
int NQBinTree::copyRun(NQBinTreeCell* after, const NQDList* source,
                       const NQDListCell* from, const NQDListCell* to, Holds holds) {
  return copyEach(source, from, to, holds, [&](NQObject* object) {
    NQBinTreeCell* const copy = addObject(after, object);
    if (copy != nullptr) after = copy;
  });
}

int NQBinTree::copyTransferListPart(NQBinTreeCell* after, const NQDList* source,
                                    const NQDListCell* from, const NQDListCell* to) {
  return copyRun(after, source, from, to, nqdetail::HoldsNothing{});
}

int NQBinTree::copyTransferList(NQBinTreeCell* after, const NQDList* source) {
  return wholeList(source, [&](const NQDListCell* from, const NQDListCell* to) {
    return copyTransferListPart(after, source, from, to);
  });
}

int NQBinTree::copyTransferListPartIfNotInList(NQBinTreeCell* after,
                                               const NQDList* source,
                                               const NQDListCell* from,
                                               const NQDListCell* to) {
  return copyRun(after, source, from, to, [this](const NQObject* object) {
    return searchObject(object) != nullptr;
  });
}

int NQBinTree::copyTransferListIfNotInList(NQBinTreeCell* after, const NQDList* source) {
  return wholeList(source, [&](const NQDListCell* from, const NQDListCell* to) {
    return copyTransferListPartIfNotInList(after, source, from, to);
  });
}

template <class List>
int NQBinTree::fillFrom(const List* source) {
  deleteAllCells();
  if (refuses(source)) return 0;
  for (NQObject* const object : *source) appendObject(object);
  return 1;
}

template <class List>
int NQBinTree::cloneFrom(const List* source) {
  nqdetail::Clones<NQDList> clones;
  if (!refuses(source)) {
    for (const NQObject* const object : *source) clones.add<NQBinTreeCell>(object);
  }
  deleteAllCells();
  insertAll(nullptr, clones.list);
  return refuses(source) ? 0 : 1;
}

int NQBinTree::copyAllCells(const NQDList* source) {
  return fillFrom(source);
}

int NQBinTree::copyAllCells(const NQSList* source) {
  return fillFrom(source);
}

int NQBinTree::copyAllCellsAndObjects(const NQDList* source) {
  return cloneFrom(source);
}

int NQBinTree::copyAllCellsAndObjects(const NQSList* source) {
  return cloneFrom(source);
}

// ---- Reordering

int NQBinTree::reverse() {
  NQDList cells;
  cells.appendList(this);
  while (NQDListCell* const first = cells.pFirstCell()) {
    prependCell(cell(cells.removeCell(first)));
  }
  return 1;
}

void NQBinTree::swapPosition(NQBinTreeCell* a, NQBinTreeCell* b) {
  if (a == b || a == nullptr || b == nullptr) return;
  exchange(a, b);
  const auto sideBelow = [](const NQBinTreeCell* parent, const NQBinTreeCell* cell) {
    return parent == nullptr ? kLeft : parent->sideOf(cell);
  };
  const int sides[] = {sideBelow(a->pParent_, a), sideBelow(b->pParent_, b)};
  std::swap(a->pParent_, b->pParent_);
  std::swap(a->pChildren_, b->pChildren_);
  NQBinTreeCell* const cells[] = {a, b};
  for (int i = 0; i < 2; ++i) {
    NQBinTreeCell* const cell = cells[i];
    // A link of the cell to itself was one between the two.
    for (NQBinTreeCell** link :
         {&cell->pParent_, &cell->pChildren_[kLeft], &cell->pChildren_[kRight]}) {
      if (*link == cell) *link = cells[1 - i];
    }
  }
  for (int i = 0; i < 2; ++i) {
    NQBinTreeCell* const cell = cells[i];
    for (NQBinTreeCell* const child : cell->pChildren_) {
      if (isReal(child)) child->pParent_ = cell;
    }
    if (cell->pParent_ == nullptr) {
      pRoot_ = cell;
    } else {
      cell->pParent_->pChildren_[sides[1 - i]] = cell;
    }
  }
  exchangeColours(a, b);
}

int NQBinTree::merge(NQBinTree* a, NQBinTree* b) {
  NQDList cells;
  if (refuses(a) || refuses(b)) return 0;
  cells.merge(a, b);
  insertAll(pLastCell(), cells);
  return 1;
}

// ---- Balancing

void NQBinTree::exchangeColours(NQBinTreeCell* a, NQBinTreeCell* b) {
  const bool redA = a->isRed();
  const bool redB = b->isRed();
  redB ? makeRed(a) : makeBlack(a);
  redA ? makeRed(b) : makeBlack(b);
}

NQBinTreeCell* NQBinTree::pRoot(NQBinTreeCell* cell) {
  return pRoot_ = isReal(cell) ? cell : nullptr;
}

// Makes `child` a child of `parent`, null for the root, in the place of `old`.
void NQBinTree::replaceChild(NQBinTreeCell* parent, NQBinTreeCell* old,
                             NQBinTreeCell* child) {
  if (parent == nullptr) {
    pRoot(child);
  } else {
    parent->pChildren_[parent->sideOf(old)] = child;
  }
}

void NQBinTree::rotate(NQBinTreeCell* cell, int side) {
  NQBinTreeCell* const riser = cell->pChildren_[1 - side];
  NQBinTreeCell* const inner = riser->pChildren_[side];
  cell->pChildren_[1 - side] = inner;
  if (isReal(inner)) inner->pParent_ = cell;
  riser->pChildren_[side] = cell;
  riser->pParent_ = cell->pParent_;
  replaceChild(cell->pParent_, cell, riser);
  cell->pParent_ = riser;
}

// `x` is red; its parent must not be.
void NQBinTree::insertRedBlackFixup(NQBinTreeCell* x) {
  makeBlack(pRoot_);
  while (x != pRoot_) {
    NQBinTreeCell* const parent = x->pParent_;
    if (!parent->isRed() || parent == pRoot_) return;
    NQBinTreeCell* const grand = parent->pParent_;
    const int side = grand->sideOf(parent);
    NQBinTreeCell* const uncle = grand->pChildren_[1 - side];
    if (uncle->isRed()) {
      makeBlack(parent);
      makeBlack(uncle);
      makeRed(grand);
      x = grand;
      continue;
    }
    const bool inside = parent->sideOf(x) != side;
    if (inside) rotate(parent, side);
    makeBlack(inside ? x : parent);
    makeRed(grand);
    rotate(grand, 1 - side);
    return;
  }
}

// Paths through `x`, which may be the sentinel, lack a black cell; `parent` is its
// parent. The colours may be any: each turn ends the climb, or leaves fewer cells
// outside of x's subtree.
void NQBinTree::removeRedBlackFixup(NQBinTreeCell* x, NQBinTreeCell* parent) {
  const auto climb = [&] {
    x = parent;
    parent = x->pParent_;
  };
  while (x->isBlack() && parent != nullptr) {
    const int side = parent->sideOf(x);

    NQBinTreeCell* w = parent->pChildren_[1 - side];
    if (w->isRed()) {
      makeBlack(w);
      makeRed(parent);
      rotate(parent, side);
      w = parent->pChildren_[1 - side];
    }
    if (!isReal(w)) {
      climb();
      continue;
    }
    NQBinTreeCell* const near = w->pChildren_[side];
    NQBinTreeCell* far = w->pChildren_[1 - side];
    if (near->isBlack() && far->isBlack()) {
      makeRed(w);
      climb();
      continue;
    }
    if (far->isBlack()) {
      // `near` is not black, and so not the sentinel.
      makeBlack(near);
      makeRed(w);
      rotate(w, 1 - side);
      far = w;
      w = near;
    }
    parent->isRed() ? makeRed(w) : makeBlack(w);
    makeBlack(parent);
    makeBlack(far);
    rotate(parent, side);
    x = pRoot_;
    parent = nullptr;
  }
  if (isReal(x)) makeBlack(x);
}

int NQBinTree::isValidRedBlackTree() const {
  nqLong blacksOnPaths = -1;
  nqInt64 steps = nqInt64{200} * length();  // against circles
  for (const NQBinTreeCell* cell = length() == 0 ? nullptr : pFirstCell();
       cell != nullptr; cell = cell->pNextCell()) {
    const NQBinTreeCell* const parent = cell->pParent_;
    if (parent == nullptr ? cell != pRoot_
                          : parent->pLeft() != cell && parent->pRight() != cell) {
      return 0;
    }
    const NQBinTreeCell* next = parent;
    if (isReal(cell->pRight())) {
      next = cell->pRight();
      while (isReal(next->pLeft()) && steps-- > 0) next = next->pLeft();
    } else {
      for (const NQBinTreeCell* from = cell; next != nullptr && next->pRight() == from;) {
        if (steps-- < 0) return 0;
        from = next;
        next = next->pParent_;
      }
    }
    if (next != cell->pNextCell()) return 0;

    if (type_ != 1 || exclusiveColors() == 0) continue;
    if (cell->isRed() == cell->isBlack()) return 0;
    if (parent != nullptr && cell->isRed() && parent->isRed()) return 0;
    if (isReal(cell->pLeft()) && isReal(cell->pRight())) continue;
    nqLong blacks = 0;
    for (const NQBinTreeCell* above = cell; above != nullptr; above = above->pParent_) {
      if (steps-- < 0) return 0;
      blacks += above->isBlack() ? 1 : 0;
    }
    if (blacksOnPaths != -1 && blacksOnPaths != blacks) return 0;
    blacksOnPaths = blacks;
  }
  return sentinel()->isBlack() && !sentinel()->isRed() ? 1 : 0;
}

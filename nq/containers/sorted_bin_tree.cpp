#include "nq/containers/sorted_bin_tree.h"

#include <memory>
#include <type_traits>

#include "nq/containers/bin_tree_internal.h"
#include "nq/containers/linked_list_internal.h"
#include "nq/containers/slist.h"

// ---- Copy protocol; by hand, since there is nothing to make a clone of

NQSortedBinTree::NQSortedBinTree(const NQSortedBinTree& source, NQDeepFlagEnum flag) {
  NQCopyAccess::construct<NQSortedBinTree>(*this, source, flag);
}

NQSortedBinTree::NQSortedBinTree(const NQSortedBinTree& source)
    : NQSortedBinTree(source, NQ_DEEP_COPY) {}

const NQSortedBinTree& NQSortedBinTree::operator=(const NQSortedBinTree& source) {
  NQCopyAccess::copyObject<NQSortedBinTree>(*this, &source);
  return *this;
}

void NQSortedBinTree::copyObject(const NQObject* source) {
  NQCopyAccess::copyObject<NQSortedBinTree>(*this, source);
}

void NQSortedBinTree::copyAttributes(const NQObject* source) {
  NQCopyAccess::copyAttributes<NQSortedBinTree>(*this, source);
}

NQSortedBinTree* NQSortedBinTree::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQSortedBinTree>(object);
}

void NQSortedBinTree::NQSortedBinTreedeepCopy(const NQSortedBinTree& source) {
  NQCopyAccess::deep<NQBinTree>(*this, source);
}

void NQSortedBinTree::NQSortedBinTreeattributeCopy(const NQSortedBinTree& source) {
  NQCopyAccess::attributes<NQBinTree>(*this, source);
}

// ---- Search

int NQSortedBinTree::virtualCellCompare(const NQDListCell* a,
                                        const NQDListCell* b) const {
  return virtualObjectCompare(a->pObject(), b->pObject());
}

// The cell that `matches`, found by compare(cell): negative when the cell sorts
// before what is sought, 0 when it is equal, positive when after.
template <class Compare, class Matches>
NQBinTreeCell* NQSortedBinTree::find(Compare compare, Matches matches) const {
  NQBinTreeCell* equal = length() == 0 ? nullptr : pRoot_;
  for (;;) {
    if (equal == nullptr || !isReal(equal)) return nullptr;
    if (matches(equal)) return equal;
    equal->fetchChildren();
    const int order = compare(equal);
    if (order == 0) break;
    equal = equal->pChildren_[order < 0 ? kRight : kLeft];
  }
  NQBinTreeCell* cell = equal->pNextCell();
  while (cell != nullptr && compare(cell) == 0) {
    if (matches(cell)) return cell;
    cell = cell->pNextCell();
  }
  cell = equal->pPreviousCell();
  while (cell != nullptr && compare(cell) == 0) {
    if (matches(cell)) return cell;
    cell = cell->pPreviousCell();
  }
  return nullptr;
}

NQBinTreeCell* NQSortedBinTree::searchCell(const NQBinTreeCell* cell) const {
  if (cell == nullptr) return nullptr;
  return find([&](const NQBinTreeCell* other) { return virtualCellCompare(other, cell); },
              [&](const NQBinTreeCell* other) { return other == cell; });
}

NQBinTreeCell* NQSortedBinTree::searchObject(const NQObject* object) const {
  if (object == nullptr) return NQBinTree::searchObject(nullptr);
  return find(
      [&](const NQBinTreeCell* cell) {
        return virtualObjectCompare(cell->pObject(), object);
      },
      [&](const NQBinTreeCell* cell) { return cell->pObject() == object; });
}

// ---- Insertion

inline auto NQSortedBinTree::placeFor(const NQBinTreeCell* cell) const -> Place {
  if (length() == 0) return {nullptr, kLeft};
  const auto sideBelow = [&](const NQBinTreeCell* other) {
    return virtualCellCompare(other, cell) < 0 ? kRight : kLeft;
  };
  NQBinTreeCell* last = pRoot_;
  int side = sideBelow(last);
  NQBinTreeCell* next = last->pChildren_[side];
  constexpr int kStepsToEnd = 4;
  // Keys that come in order go along an edge of the tree, which the processor
  // predicts, and after a few steps most likely to its end. From the edge on no step
  // is a branch, as none could be predicted.
  const auto followEdge = [&](auto edge) {
    for (int step = 0; isReal(next); ++step) {
      if (step == kStepsToEnd) {
        NQBinTreeCell* const end = edge == kRight ? pLastCell() : pFirstCell();
        if (sideBelow(end) == edge) {
          last = end;
          next = end->pChildren_[edge];
          return;
        }
      }
      last = next;
      side = sideBelow(last);
      if (side != edge) {
        next = last->pChildren_[1 - edge];
        return;
      }
      next = last->pChildren_[edge];
    }
  };
  if (side == kRight) {
    followEdge(std::integral_constant<int, kRight>());
  } else {
    followEdge(std::integral_constant<int, kLeft>());
  }
  while (isReal(next)) {
    last = next;
    last->fetchChildren();
    side = sideBelow(last);
    next = last->pChildren_[side];
  }
  return {last, side};
}

NQBinTreeCell* NQSortedBinTree::insertCell(NQBinTreeCell* cell) {
  if (cell == nullptr) return nullptr;
  const Place place = placeFor(cell);
  attach(place.parent, place.side, cell);
  return cell;
}

NQBinTreeCell* NQSortedBinTree::addObject(NQObject* object) {
  std::unique_ptr<NQBinTreeCell> cell(new NQBinTreeCell(object));
  insertCell(cell.get());
  return cell.release();
}

// ---- Removal

NQBinTreeCell* NQSortedBinTree::searchAndRemoveCell(const NQBinTreeCell* cell) {
  return removeCell(searchCell(cell));
}

NQBinTreeCell* NQSortedBinTree::searchAndRemoveObject(const NQObject* object) {
  return removeCell(searchObject(object));
}

// ---- Moving and copying cells

struct NQSortedBinTree::Transfer {
  ~Transfer() { source->NQBinTree::insertAll(after, cells); }

  NQBinTree* source;
  NQBinTreeCell* after;
  NQDList cells;
};

void NQSortedBinTree::insertAll(NQDList& cells) {
  while (NQDListCell* const first = cells.pFirstCell()) {
    const Place place = placeFor(cell(first));
    attach(place.parent, place.side, cell(cells.removeCell(first)));
  }
}

template <class List>
int NQSortedBinTree::fillFrom(const List* source) {
  deleteAllCells();
  if (refuses(source)) return 0;
  for (NQObject* const object : *source) addObject(object);
  return 1;
}

template <class List>
int NQSortedBinTree::cloneFrom(const List* source) {
  nqdetail::Clones<NQDList> clones;
  if (!refuses(source)) {
    for (const NQObject* const object : *source) clones.add<NQBinTreeCell>(object);
  }
  deleteAllCells();
  insertAll(clones.list);
  return refuses(source) ? 0 : 1;
}

int NQSortedBinTree::copyAllCells(const NQDList* source) {
  return fillFrom(source);
}

int NQSortedBinTree::copyAllCells(const NQSList* source) {
  return fillFrom(source);
}

int NQSortedBinTree::copyAllCellsAndObjects(const NQDList* source) {
  return cloneFrom(source);
}

int NQSortedBinTree::copyAllCellsAndObjects(const NQSList* source) {
  return cloneFrom(source);
}

int NQSortedBinTree::transferListPart(NQBinTree* source, NQBinTreeCell* from,
                                      NQBinTreeCell* to) {
  if (refuses(source) || from == nullptr) return 0;
  Transfer transfer{source, from->pPreviousCell(), {}};
  if (!source->takeOut(from, to, transfer.cells)) return 0;
  insertAll(transfer.cells);
  return 1;
}

int NQSortedBinTree::transferList(NQBinTree* source) {
  if (refuses(source)) return 0;
  Transfer transfer{source, nullptr, {}};
  transfer.cells.appendList(source);
  insertAll(transfer.cells);
  return 1;
}

int NQSortedBinTree::copyTransferListPart(const NQDList* source, const NQDListCell* from,
                                          const NQDListCell* to) {
  return copyEach(source, from, to, nqdetail::HoldsNothing{},
                  [this](NQObject* object) { addObject(object); });
}

int NQSortedBinTree::copyTransferList(const NQDList* source) {
  return wholeList(source, [&](const NQDListCell* from, const NQDListCell* to) {
    return copyTransferListPart(source, from, to);
  });
}

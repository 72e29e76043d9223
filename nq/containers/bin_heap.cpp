#include "nq/containers/bin_heap.h"

#include "nq/containers/cell_pool_internal.h"
#include "nq/containers/list_sort_internal.h"

// ---- NQBinHeapCell

static_assert(sizeof(NQBinHeapCell) == 64, "one line of the cache");

NQBinHeapCell::NQBinHeapCell(const NQBinHeapCell& source, NQDeepFlagEnum flag)
    : NQDListCell(source, flag), value_(source.value_) {}

NQBinHeapCell::NQBinHeapCell(const NQBinHeapCell& source)
    : NQBinHeapCell(source, NQ_DEEP_COPY) {}

// copyObject() looks out for the object itself.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
const NQBinHeapCell& NQBinHeapCell::operator=(const NQBinHeapCell& source) {
  copyObject(&source);
  return *this;
}

NQ_COPY_OPERATIONS_IMPL(NQBinHeapCell)

void NQBinHeapCell::NQBinHeapCelldeepCopy(const NQBinHeapCell& source) {
  NQCopyAccess::deep<NQDListCell>(*this, source);
  value_ = source.value_;
}

void NQBinHeapCell::NQBinHeapCellattributeCopy(const NQBinHeapCell& source) {
  NQCopyAccess::attributes<NQDListCell>(*this, source);
  value_ = source.value_;
}

void* NQBinHeapCell::operator new(std::size_t size) noexcept {
  return nqdetail::allocateCell<NQBinHeapCell>(size);
}

void* NQBinHeapCell::operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return nqdetail::allocateCell<NQBinHeapCell>(size);
}

void NQBinHeapCell::operator delete(void* place, std::size_t size) noexcept {
  nqdetail::releaseCell<NQBinHeapCell>(place, size);
}

// ---- NQBinHeap

NQ_COPY_PROTOCOL_IMPL(NQBinHeap)

// The list's deep copy would make cells without values.
void NQBinHeap::NQBinHeapdeepCopy(const NQBinHeap& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  copyAllCellsAndObjects(&source);
}

void NQBinHeap::NQBinHeapattributeCopy(const NQBinHeap& source) {
  NQCopyAccess::attributes<NQDList>(*this, source);
}

NQObject* NQBinHeap::pMinObject() const {
  return length() == 0 ? nullptr : pFirstCell()->pObject();
}

NQBinHeapCell* NQBinHeap::insertCell(NQBinHeapCell* cell) {
  if (cell == nullptr) return nullptr;
  NQBinHeapCell* const parent = pInsertionParent();
  NQDList::appendCell(cell);
  cell->pLeft_ = cell->pRight_ = nullptr;
  cell->pParent_ = parent;
  if (parent != nullptr) {
    (parent->pLeft_ == nullptr ? parent->pLeft_ : parent->pRight_) = cell;
    bubbleUp(cell, cell);
  }
  return cell;
}

NQBinHeapCell* NQBinHeap::addObject(NQObject* object, nqLong value) {
  return insertCell(new NQBinHeapCell(object, value));
}

NQBinHeapCell* NQBinHeap::pExtractMinCell() {
  return removeCell(pFirstCell());
}

NQBinHeapCell* NQBinHeap::removeCell(NQBinHeapCell* cell) {
  if (cell == nullptr) return nullptr;
  NQBinHeapCell* const last = removeLastBinHeapCell();
  if (cell != last) {
    fillPlace(cell, last);
    cell->pLeft_ = cell->pRight_ = cell->pParent_ = nullptr;
  }
  return cell;
}

NQBinHeapCell* NQBinHeap::searchAndRemoveCell(const NQBinHeapCell* wanted) {
  return removeCell(cell(searchCell(wanted)));
}

NQBinHeapCell* NQBinHeap::searchAndRemoveObject(const NQObject* object) {
  return removeCell(cell(searchObject(object)));
}

void NQBinHeap::discardCell(NQBinHeapCell* cell) {
  delete removeCell(cell);
}

void NQBinHeap::changeValue(NQBinHeapCell* cell, nqLong value) {
  if (cell == nullptr) return;
  cell->value_ = value;
  if (!bubbleUp(cell, cell)) heapify(cell);
}

int NQBinHeap::copyAllCells(const NQBinHeap* source) {
  deleteAllCells();
  if (source == nullptr || source == this) return 0;
  for (auto* each = source->pFirstCell(); each != nullptr; each = each->pNextCell()) {
    addObject(each->pObject(), each->value_);
  }
  return 1;
}

int NQBinHeap::copyAllCellsAndObjects(const NQBinHeap* source) {
  const bool refused = source == nullptr || source == this;
  NQDList clones;
  if (!refused) {
    for (auto* each = source->pFirstCell(); each != nullptr; each = each->pNextCell()) {
      clones.appendCell(new NQBinHeapCell(*each, NQ_DEEP_COPY));
    }
  }
  deleteAllCellsAndObjects();
  while (clones.pFirstCell() != nullptr) {
    insertCell(cell(clones.removeCell(clones.pFirstCell())));
  }
  return refused ? 0 : 1;
}

int NQBinHeap::virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b) {
  return a->value_ < b->value_ ? -1 : a->value_ > b->value_ ? 1 : 0;
}

// ---- Places

namespace {

// No way from the root to a leaf is longer, since a length has 31 bits.
constexpr int kMaxDepth = 31;

}  // namespace

// The first cell with fewer than two children; null in an empty heap.
NQBinHeapCell* NQBinHeap::pInsertionParent() const {
  NQBinHeapCell* const last = pLastCell();
  if (last == nullptr || last->pParent_ == nullptr) return last;
  NQBinHeapCell* const parent = last->pParent_;
  return parent->pRight_ == last ? parent->pNextCell() : parent;
}

NQBinHeapCell* NQBinHeap::removeLastBinHeapCell() {
  NQBinHeapCell* const last = pLastCell();
  if (NQBinHeapCell* const parent = last->pParent_) {
    (parent->pRight_ == last ? parent->pRight_ : parent->pLeft_) = nullptr;
    last->pParent_ = nullptr;
  }
  NQDList::removeCell(last);
  return last;
}

// Moves `cell` from the place of `place`, which may be itself, up to where its
// parent is not greater, and answers whether that is another place.
bool NQBinHeap::bubbleUp(NQBinHeapCell* place, NQBinHeapCell* cell) {
  NQBinHeapCell* way[kMaxDepth + 1];
  NQBinHeapCell** top = way + kMaxDepth;
  *top = place;
  while (top != way + 1) {
    NQBinHeapCell* const parent = (*top)->pParent_;
    if (parent == nullptr || virtualCompare(parent, cell) <= 0) break;
    *--top = parent;
  }
  if (*top == place) return false;
  const auto count = static_cast<int>(way + kMaxDepth + 1 - top);
  // One further up than the places: the cells that come there.
  *--top = cell;
  movePlaces(top + 1, top, count);
  return true;
}

// Moves `cell` down to where no child is smaller.
void NQBinHeap::heapify(NQBinHeapCell* cell) {
  NQBinHeapCell* way[kMaxDepth + 1] = {cell};
  int count = 1;
  while (count < kMaxDepth) {
    NQBinHeapCell* const above = way[count - 1];
    NQBinHeapCell* smallest = cell;
    for (NQBinHeapCell* const child : {above->pLeft_, above->pRight_}) {
      if (child != nullptr && virtualCompare(child, smallest) < 0) smallest = child;
    }
    if (smallest == cell) break;
    way[count++] = smallest;
  }
  if (count == 1) return;
  way[count] = cell;
  movePlaces(way, way + 1, count);
}

// Puts `cell`, which comes from the end, into the order at or around the place of
// `place`, which leaves the heap.
void NQBinHeap::fillPlace(NQBinHeapCell* place, NQBinHeapCell* cell) {
  if (bubbleUp(place, cell)) return;
  NQBinHeapCell* way[kMaxDepth + 1] = {place};
  int count = 1;
  while (count < kMaxDepth) {
    NQBinHeapCell* const left = way[count - 1]->pLeft_;
    NQBinHeapCell* const right = way[count - 1]->pRight_;
    if (left == nullptr) break;
    nqdetail::prefetchCell(left->pLeft_);
    nqdetail::prefetchCell(left->pRight_);
    if (right == nullptr) {
      way[count++] = left;
      break;
    }
    nqdetail::prefetchCell(right->pLeft_);
    nqdetail::prefetchCell(right->pRight_);
    way[count++] = virtualCompare(right, left) < 0 ? right : left;
  }
  while (count > 1 && virtualCompare(way[count - 1], cell) >= 0) --count;
  way[count] = cell;
  movePlaces(way, way + 1, count);
}

// Gives each place of a way down the tree, known by the cell that is or was in it,
// the cell that stands for it in `cells`.
void NQBinHeap::movePlaces(NQBinHeapCell* const* places, NQBinHeapCell* const* cells,
                           int count) {
  struct Links {
    NQBinHeapCell *previous, *next, *left, *right;
  };
  Links links[kMaxDepth];
  for (int i = 0; i < count; ++i) {
    const NQBinHeapCell* const place = places[i];
    links[i] = {place->pPreviousCell(), place->pNextCell(), place->pLeft_,
                place->pRight_};
  }
  NQBinHeapCell* parent = places[0]->pParent_;
  if (parent != nullptr) {
    (parent->pLeft_ == places[0] ? parent->pLeft_ : parent->pRight_) = cells[0];
  }
  using ListLinks = nqdetail::ListLinks<NQDList, NQDListCell>;
  for (int i = 0; i < count; ++i) {
    NQBinHeapCell* const cell = cells[i];
    const bool hasNext = i + 1 < count;
    auto [previous, next, left, right] = links[i];
    // Of places above each other only the root and its left child are neighbours
    // in the list.
    if (i == 1 && previous == places[0]) previous = cells[0];
    if (i == 0 && hasNext && next == places[1]) next = cells[1];
    ListLinks::connect(*this, previous, cell);
    ListLinks::connect(*this, cell, next);
    cell->pParent_ = parent;
    NQBinHeapCell* const below = hasNext ? cells[i + 1] : nullptr;
    if (hasNext) (left == places[i + 1] ? left : right) = below;
    cell->pLeft_ = left;
    cell->pRight_ = right;
    if (left != nullptr) left->pParent_ = cell;
    if (right != nullptr) right->pParent_ = cell;
    parent = cell;
  }
}

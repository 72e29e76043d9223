#include "nq/containers/bin_heap.h"

#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "nq/containers/cell_pool_internal.h"
#include "nq/containers/linked_list_internal.h"
#include "nq/containers/list_sort_internal.h"
#include "nq/platform/prefetch.h"

// ---- NQBinHeapCell

static_assert(sizeof(NQBinHeapCell) == 64, "one line of the cache");

NQBinHeapCell::NQBinHeapCell(const NQBinHeapCell& source, NQDeepFlagEnum flag)
    : NQDListCell(source, flag), value_(source.value_) {}

NQBinHeapCell::NQBinHeapCell(const NQBinHeapCell& source)
    : NQBinHeapCell(source, NQ_DEEP_COPY) {}

// copyObject() looks out for the object itself.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
NQBinHeapCell& NQBinHeapCell::operator=(const NQBinHeapCell& source) {
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

NQ_CELL_MEMORY_IMPL(NQBinHeapCell)

// ---- NQBinHeap

NQ_COPY_PROTOCOL_IMPL(NQBinHeap)

NQBinHeap::NQBinHeap(NQBinHeap&& source) noexcept {
  fixPlaces();
  take(source);
}

NQBinHeap& NQBinHeap::operator=(NQBinHeap&& source) noexcept {
  if (&source != this) {
    deleteAllCellsAndObjects();
    take(source);
  }
  return *this;
}

namespace {

// No way from the root to a leaf is longer, since a length has 31 bits.
constexpr int kMaxDepth = 31;

// Without a branch: the side cannot be predicted.
void replaceChild(NQBinHeapCell*& left, NQBinHeapCell*& right, const NQBinHeapCell* child,
                  NQBinHeapCell* other) {
  left = left == child ? other : left;
  right = right == child ? other : right;
}

}  // namespace

// The links of the cell in a place, but for the one to its parent.
struct NQBinHeap::Place {
  explicit Place(const NQBinHeapCell* cell)
      : previous(cell->pPreviousCell()),
        next(nqdetail::ListLinks<NQDList, NQDListCell>::next(cell)),
        left(cell->pLeft_),
        right(cell->pRight_) {}

  NQDListCell* previous;
  NQDListCell* next;
  NQBinHeapCell* left;
  NQBinHeapCell* right;
};

// What the moves ask: whether a parent is greater than a cell below it, and which
// is the smallest of a cell and its children (`right` may be null), where ties leave
// the cell where it is and prefer the left child. Hooks are asked just that, as what
// they answer may be less than a full order.
struct NQBinHeap::ByValue {
  bool greater(const NQBinHeapCell* parent, const NQBinHeapCell* cell) const {
    return parent->value_ > cell->value_;
  }
  NQBinHeapCell* smallest(NQBinHeapCell* cell, NQBinHeapCell* left,
                          NQBinHeapCell* right) const {
    // Chosen without a branch, which could not be predicted.
    NQBinHeapCell* const children[] = {left, right};
    NQBinHeapCell* const child =
        right == nullptr ? left : children[right->value_ < left->value_ ? 1 : 0];
    return child->value_ < cell->value_ ? child : cell;
  }
};

struct NQBinHeap::ByHook {
  bool greater(NQBinHeapCell* parent, NQBinHeapCell* cell) const {
    return heap->virtualCompare(parent, cell) > 0;
  }
  NQBinHeapCell* smallest(NQBinHeapCell* cell, NQBinHeapCell* left,
                          NQBinHeapCell* right) const {
    NQBinHeapCell* least = cell;
    if (heap->virtualCompare(left, least) < 0) least = left;
    if (right != nullptr && heap->virtualCompare(right, least) < 0) least = right;
    return least;
  }
  NQBinHeap* heap;
};

// Nothing can have been overridden in an NQBinHeap itself. Operations move cells only
// when all is compared, so that `undo` finds what they found when a hook throws.
template <class Operation, class Undo>
void NQBinHeap::ordered(Operation operation, Undo undo) {
  if (typeid(*this) == typeid(NQBinHeap)) {
    operation(ByValue{});
    return;
  }
  try {
    operation(ByHook{this});
  } catch (...) {
    undo();
    throw;
  }
}

// ---- Places

// The first cell with fewer than two children; null in an empty heap.
NQBinHeapCell* NQBinHeap::pInsertionParent() const {
  NQBinHeapCell* const last = pLastCell();
  if (last == nullptr || last->pParent_ == nullptr) return last;
  NQBinHeapCell* const parent = last->pParent_;
  return parent->pRight_ == last ? parent->pNextCell() : parent;
}

void NQBinHeap::appendBinHeapCell(NQBinHeapCell* cell) {
  NQBinHeapCell* const parent = pInsertionParent();
  linkIn(pLastCell(), cell);
  cell->pLeft_ = cell->pRight_ = nullptr;
  cell->pParent_ = parent;
  if (parent != nullptr) {
    (parent->pLeft_ == nullptr ? parent->pLeft_ : parent->pRight_) = cell;
  }
}

NQBinHeapCell* NQBinHeap::removeLastBinHeapCell() {
  NQBinHeapCell* const last = pLastCell();
  if (NQBinHeapCell* const parent = last->pParent_) {
    (parent->pRight_ == last ? parent->pRight_ : parent->pLeft_) = nullptr;
    last->pParent_ = nullptr;
    // It will be the last but one.
    nqdetail::prefetch(last->pPreviousCell()->pPreviousCell());
  }
  removeAfter(last->pPreviousCell(), last);
  return last;
}

inline void NQBinHeap::put(NQBinHeapCell* cell, NQBinHeapCell* parent,
                           const Place& place) {
  using Links = nqdetail::ListLinks<NQDList, NQDListCell>;
  Links::connect(*this, cell, place.next);
  Links::connect(*this, place.previous, cell);
  cell->pLeft_ = place.left;
  cell->pRight_ = place.right;
  // Whether a cell has children cannot be predicted. Where one is missing, the cell
  // itself stands for it, as its own parent is set last.
  (place.left != nullptr ? place.left : cell)->pParent_ = cell;
  (place.right != nullptr ? place.right : cell)->pParent_ = cell;
  cell->pParent_ = parent;
}

// Moves `cell` from the place of `old`, which may be itself, up to where its
// parent is not greater, and answers whether that is another place.
template <class Order>
bool NQBinHeap::bubbleUp(Order order, NQBinHeapCell* old, NQBinHeapCell* cell) {
  NQBinHeapCell* parent = old->pParent_;
  while (parent != nullptr && order.greater(parent, cell)) parent = parent->pParent_;
  if (parent == old->pParent_) return false;
  moveUp(old, parent, cell);
  return true;
}

// Moves each cell above the place of `old` down by one place, as far as `end`, null
// beyond the root, and `cell` to the place that gets free below `end`.
void NQBinHeap::moveUp(NQBinHeapCell* old, NQBinHeapCell* end, NQBinHeapCell* cell) {
  NQBinHeapCell* parent = old->pParent_;
  Place free(old);
  do {
    NQBinHeapCell* const sinker = parent;
    Place vacated(sinker);
    parent = sinker->pParent_;
    replaceChild(vacated.left, vacated.right, old, sinker);
    // Of places above each other only the root and its left child are neighbours
    // in the list; `cell` becomes the root then.
    if (free.previous == sinker) {
      free.previous = cell;
      vacated.next = sinker;
    }
    put(sinker, cell, free);
    free = vacated;
    old = sinker;
  } while (parent != end);
  if (end != nullptr) replaceChild(end->pLeft_, end->pRight_, old, cell);
  put(cell, end, free);
}

// Moves `cell` from the place of `old`, which may be itself, down to where no child
// is smaller.
template <class Order>
void NQBinHeap::heapify(Order order, NQBinHeapCell* old, NQBinHeapCell* cell) {
  NQBinHeapCell* way[kMaxDepth] = {old};
  int count = 1;
  for (; count < kMaxDepth; ++count) {
    NQBinHeapCell* const left = way[count - 1]->pLeft_;
    NQBinHeapCell* const right = way[count - 1]->pRight_;
    if (left == nullptr) break;
    if (right != nullptr) {
      // Whichever is smaller, its children will be compared next.
      for (const NQBinHeapCell* const child : {left, right}) {
        nqdetail::prefetch(child->pLeft_);
        nqdetail::prefetch(child->pRight_);
      }
    }
    NQBinHeapCell* const smallest = order.smallest(cell, left, right);
    if (smallest == cell) break;
    way[count] = smallest;
  }
  if (count > 1 || old != cell) moveDown(way, count, cell);
}

// Moves each cell of a way down, but for the first, to the place before its own,
// and `cell` to the last place.
void NQBinHeap::moveDown(NQBinHeapCell* const* way, int count, NQBinHeapCell* cell) {
  NQBinHeapCell* parent = way[0]->pParent_;
  if (parent != nullptr) {
    replaceChild(parent->pLeft_, parent->pRight_, way[0], count > 1 ? way[1] : cell);
  }
  Place free(way[0]);
  for (int i = 1; i < count; ++i) {
    NQBinHeapCell* const riser = way[i];
    Place vacated(riser);
    replaceChild(free.left, free.right, riser, i + 1 < count ? way[i + 1] : cell);
    // As above; the other direction is set when the place is filled.
    if (vacated.previous == way[0]) vacated.previous = riser;
    put(riser, parent, free);
    free = vacated;
    parent = riser;
  }
  put(cell, parent, free);
}

// ---- Operations

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
  appendBinHeapCell(cell);
  ordered([&](auto order) { bubbleUp(order, cell, cell); },
          [&] { removeLastBinHeapCell(); });
  return cell;
}

NQBinHeapCell* NQBinHeap::addObject(NQObject* object, nqLong value) {
  std::unique_ptr<NQBinHeapCell> cell(new NQBinHeapCell(object, value));
  insertCell(cell.get());
  return cell.release();
}

NQBinHeapCell* NQBinHeap::pExtractMinCell() {
  return removeCell(pFirstCell());
}

NQBinHeapCell* NQBinHeap::removeCell(NQBinHeapCell* cell) {
  if (cell == nullptr || (cell->pParent_ == nullptr && cell != pFirstCell())) {
    return nullptr;
  }
  NQBinHeapCell* const last = removeLastBinHeapCell();
  if (cell != last) {
    ordered(
        [&](auto order) {
          if (!bubbleUp(order, cell, last)) heapify(order, cell, last);
        },
        [&] { appendBinHeapCell(last); });
    cell->pLeft_ = cell->pRight_ = cell->pParent_ = nullptr;
  }
  return cell;
}

NQBinHeapCell* NQBinHeap::searchAndRemoveCell(const NQBinHeapCell* wanted) {
  return removeCell(searchCell(wanted));
}

NQBinHeapCell* NQBinHeap::searchAndRemoveObject(const NQObject* object) {
  return removeCell(searchObject(object));
}

void NQBinHeap::discardCell(NQBinHeapCell* cell) {
  delete removeCell(cell);
}

void NQBinHeap::changeValue(NQBinHeapCell* cell, nqLong value) {
  if (cell == nullptr) return;
  const nqLong before = std::exchange(cell->value_, value);
  ordered(
      [&](auto order) {
        constexpr bool byValue = std::is_same_v<decltype(order), ByValue>;
        const bool knownSmaller = byValue && value < before;
        const bool risen = bubbleUp(order, cell, cell);
        if (!knownSmaller && !risen) heapify(order, cell, cell);
      },
      [&] { cell->value_ = before; });
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
  nqdetail::Clones<NQDList> clones;
  if (!refused) {
    for (auto* each = source->pFirstCell(); each != nullptr; each = each->pNextCell()) {
      clones.list.appendCell(new NQBinHeapCell(*each, NQ_DEEP_COPY));
    }
  }
  deleteAllCellsAndObjects();
  while (NQDListCell* const first = clones.list.removeCell(clones.list.pFirstCell())) {
    std::unique_ptr<NQBinHeapCell> next(cell(first));
    std::unique_ptr<NQObject> clone(next->pObject());
    insertCell(next.get());
    (void)next.release();
    (void)clone.release();
  }
  return refused ? 0 : 1;
}

int NQBinHeap::virtualCompare(NQBinHeapCell* a, NQBinHeapCell* b) {
  return a->value_ < b->value_ ? -1 : a->value_ > b->value_ ? 1 : 0;
}

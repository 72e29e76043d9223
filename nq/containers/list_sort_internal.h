// list_sort_internal.h -- the sorting algorithms, once for both kinds of lists.
//
// A sort works on chains: cells linked by their next pointers. Chains that fit a
// buffer on the stack are sorted there as arrays of cell pointers, and linked
// again once. Comparisons are calls that nobody can see into, and the cells and
// their objects lie anywhere in memory; what a sort can do is not to wait:
//   - Arrays are partitioned and merged without branches that depend on a
//     comparison, and merges run from both ends at once, so that the processor
//     works on several comparisons at a time. (O. R. L. Peters, L. Bergdoll,
//     "Driftsort", 2024.)
//   - While a chain has no final order, the previous link of a cell leads some
//     cells ahead, so that a walk can fetch what it will need. (A. Roth, G. S. Sohi,
//     "Effective jump-pointer prefetching for linked data structures", 1999.)
//   - Chains are merged many at a time, which touches each cell less often.
//
// Both halves of a quick sort's partition keep the order of their cells, and a
// pivot's equals stay on the side where they stood: equals never change places.
// So a part that cannot reach the depth limit may be finished by any stable sort.
//
// No comparison, however inconsistent, makes an algorithm lose a cell or loop. One that
// throws in an array leaves the chain, which is linked as before, in its old order; one
// that throws while chains are linked anew is not asked again until they are.

#ifndef NQ_CONTAINERS_LIST_SORT_INTERNAL_H
#define NQ_CONTAINERS_LIST_SORT_INTERNAL_H

#include <algorithm>
#include <array>
#include <cstddef>

#include "nq/containers/linked_list.h"
#include "nq/containers/list_sort.h"
#include "nq/core/memory_internal.h"
#include "nq/platform/prefetch.h"
#include "nq/platform/types.h"

namespace nqdetail {

// A sorter to which all cells are equal, and to which nothing is ever done.
template <class List, class Cell>
NQListSort<List, Cell>& sorterOfEquals();
template <>
NQListSort<NQDList, NQDListCell>& sorterOfEquals();
template <>
NQListSort<NQSList, NQSListCell>& sorterOfEquals();

// 1 for true. Compilers do not see that it is nothing else, and so make no branch
// of what depends on it.
inline std::size_t bit(bool value) {
  std::size_t result = value ? 1 : 0;
#if defined(__GNUC__)
  asm("" : "+r"(result));
#endif
  return result;
}

// One of two values, without a branch: b when `second` is 1, a when it is 0.
inline std::size_t choose(std::size_t second, std::size_t a, std::size_t b) {
  return a ^ ((a ^ b) & (0 - second));
}
template <class Cell>
Cell* choose(std::size_t second, Cell* a, Cell* b) {
  Cell* const both[] = {a, b};
  return both[second];
}

// The links of a list's cells.
template <class List, class Cell>
struct ListLinks {
  static bool mayReorder(const List* list) {
    return list != nullptr && !list->fixedPlaces_;
  }
  static Cell* next(const Cell* cell) { return cell->pNext_; }
  static void setNext(Cell* cell, Cell* next) { cell->pNext_ = next; }
  // Makes two cells neighbours; null stands for either end of the list.
  static void connect(List& list, Cell* left, Cell* right) { list.connect(left, right); }

  // Makes two cells neighbours.
  static void connect(Cell* left, Cell* right) {
    left->pNext_ = right;
    if constexpr (kHasPrevious<Cell>) right->pPrevious_ = left;
  }

  // The cell that stands `kFarAhead` cells further in a chain without final
  // order, as far as it is known.
  static constexpr nqLong kFarAhead = 8;
  static Cell* farAhead(Cell* cell) {
    if constexpr (kHasPrevious<Cell>) {
      return cell->pPrevious_;
    } else {
      return nullptr;
    }
  }
  static void setFarAhead([[maybe_unused]] Cell* cell, [[maybe_unused]] Cell* ahead) {
    if constexpr (kHasPrevious<Cell>) cell->pPrevious_ = ahead;
  }

  static void fetchObject(Cell* cell) { prefetch(cell->pObject_); }

  // Makes the list hold the cells it held before, which are neighbours already.
  static void setEnds(List& list, Cell* first, Cell* last) {
    list.pFirst_ = first;
    list.pLast_ = last;
    if (first == nullptr || last == nullptr) return;
    if constexpr (kHasPrevious<Cell>) first->pPrevious_ = nullptr;
    last->pNext_ = nullptr;
  }
};

// One run of a sort over one list. compare(a, b), of a Compare made of `comparer`,
// answers as virtualCompare does, and only 0 after compare.stop(). The two counters are
// the sorter's own.
template <class List, class Cell, class Compare>
class ListSort {
 public:
  template <class Comparer>
  ListSort(Comparer* comparer, int& recursionDepth, int& changed)
      : compare_{comparer}, recursionDepth_(recursionDepth), changed_(changed) {}

  const Compare& comparison() const { return compare_; }

  void quickSort(List& list) {
    Chain chain = take(list);
    qsortWrapper(chain);
    Links::setEnds(list, chain.first, chain.last);
  }
  void mergeSort(List& list) {
    if (isSorted(list)) return;
    changed_ = 1;
    Chain chain = take(list);
    msortWrapper(chain);
    Links::setEnds(list, chain.first, chain.last);
  }

  // Passes over ever fewer cells, until one swaps nothing.
  void bubbleSort(List& list) {
    Cell* first = list.pFirstCell();
    bool swapped = true;
    for (nqLong pairs = list.length() - 1; pairs > 0 && swapped; --pairs) {
      swapped = false;
      Cell* previous = nullptr;
      Cell* left = first;
      for (nqLong pair = 0; pair < pairs; ++pair) {
        Cell* const right = Links::next(left);
        if (guarded(left, right) > 0) {
          Links::setNext(left, Links::next(right));
          Links::setNext(right, left);
          if (previous == nullptr) {
            first = right;
          } else {
            Links::setNext(previous, right);
          }
          previous = right;
          swapped = true;
          changed_ = 1;
        } else {
          previous = left;
          left = right;
        }
      }
    }
    Cell* last = nullptr;
    for (Cell* cell = first; cell != nullptr; cell = Links::next(cell)) {
      if (last != nullptr) Links::connect(last, cell);
      last = cell;
    }
    Links::setEnds(list, first, last);
  }

  bool isSorted(const List& list) {
    for (Cell* cell = list.pFirstCell(); cell != nullptr; cell = Links::next(cell)) {
      Cell* const next = Links::next(cell);
      if (next != nullptr && compare_(cell, next) > 0) return false;
    }
    return true;
  }

  // The first of the smallest cells for sign 1, of the largest for -1; null in an
  // empty list.
  Cell* findExtreme(const List& list, int sign) {
    Cell* best = list.pFirstCell();
    for (Cell* cell = best; cell != nullptr; cell = Links::next(cell)) {
      const int order = cell == best ? 0 : compare_(cell, best);
      if (sign > 0 ? order < 0 : order > 0) best = cell;
    }
    return best;
  }

  // The cell that would be at `position` (from 1, within the list) if the list were
  // sorted, or null when memory is exhausted; the list stays as it is.
  Cell* ithWrapper(const List& list, nqLong position) {
    auto count = static_cast<std::size_t>(list.length());
    HeapArray<Cell*> memory;
    if (!resize(memory, 2 * count)) return nullptr;
    Cell** cells = memory.get();
    Cell** greater = cells + count;
    Cell* next = list.pFirstCell();
    for (std::size_t i = 0; i < count; ++i, next = Links::next(next)) cells[i] = next;
    for (;;) {
      Cell* const pivot = cells[(count + 1) / 2 - 1];
      std::size_t kept = 0;
      std::size_t moved = 0;
      for (std::size_t i = 0; i < count; ++i) {
        Cell* const cell = cells[i];
        const bool moves = cell != pivot && compare_(cell, pivot) > 0;
        (moves ? greater[moved++] : cells[kept++]) = cell;
      }
      const auto notGreater = static_cast<nqLong>(kept);
      if (position == notGreater) return pivot;
      if (position < notGreater) {
        (void)std::remove(cells, cells + kept, pivot);
        count = kept - 1;
      } else {
        std::swap(cells, greater);
        count = moved;
        position -= notGreater;
      }
    }
  }

 private:
  using Links = ListLinks<List, Cell>;

  // Quick sort nested this deep leaves its parts to the other sorts.
  static constexpr int kDepthLimit = 31;
  // Where it does, shorter parts than this count as sorted by bubbling.
  static constexpr std::size_t kMergeFrom = 6;
  // Parts of at most so many cells are not worth partitioning.
  static constexpr std::size_t kSmall = 32;
  // Chains of at most so many cells are sorted as arrays.
  static constexpr nqLong kBufferLength = 4096;
  // So many chains are merged at a time.
  static constexpr std::size_t kFan = 32;
  // The result again so often, which is enough for any length.
  static constexpr std::size_t kLevels = 4;

  // The last cell's next pointer means nothing.
  struct Chain {
    Cell* first = nullptr;
    Cell* last = nullptr;
    nqLong length = 0;

    // Appends cells that have their final order, as these have.
    void append(const Chain& other) {
      if (other.first == nullptr) return;
      if (last == nullptr) {
        *this = other;
        return;
      }
      Links::connect(last, other.first);
      last = other.last;
      length += other.length;
    }
  };

  // Builds a chain, in its final order or not.
  template <bool kFinal>
  class Builder {
   public:
    Builder() = default;
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;

    void append(Cell* cell) {
      if (last_ == nullptr) {
        first_ = cell;
      } else if constexpr (kFinal) {
        Links::connect(last_, cell);
      } else {
        Links::setNext(last_, cell);
      }
      last_ = cell;
      if constexpr (!kFinal) {
        Cell*& place = recent_[length_ % recent_.size()];
        if (place != nullptr) Links::setFarAhead(place, cell);
        place = cell;
      }
      ++length_;
    }
    Chain chain() { return {first_, last_, static_cast<nqLong>(length_)}; }

   private:
    Cell* first_ = nullptr;
    Cell* last_ = nullptr;
    std::size_t length_ = 0;
    std::array<Cell*, Links::kFarAhead> recent_{};  // the last ones
  };

  // Hands out the cells of a chain from the front, and fetches what stands ahead.
  class Walker {
   public:
    Walker() = default;
    explicit Walker(const Chain& chain)
        : cell_(chain.first), scout_(chain.first), left_(chain.length), ahead_(left_) {
      for (nqLong i = 0; i < kScoutsAhead && ahead_ > 0; ++i) advanceScout();
    }

    // Null at the end.
    Cell* cell() const { return left_ > 0 ? cell_ : nullptr; }
    Cell* take() {
      Cell* const cell = cell_;
      if (ahead_ > 0) advanceScout();
      cell_ = Links::next(cell);
      --left_;
      return cell;
    }

   private:
    static constexpr nqLong kScoutsAhead = 6;

    void advanceScout() {
      prefetch(Links::farAhead(scout_));
      Links::fetchObject(scout_);
      scout_ = Links::next(scout_);
      --ahead_;
    }

    Cell* cell_ = nullptr;
    Cell* scout_ = nullptr;  // some cells further
    nqLong left_ = 0;        // cells from cell_ on
    nqLong ahead_ = 0;       // cells from scout_ on
  };

  // An array of cells, with as many spare places for those on the move.
  struct Cells {
    Cell** at;
    Cell** spare;
    std::size_t length;

    Cells part(std::size_t from, std::size_t count) const {
      return {at + from, spare + from, count};
    }
  };

  // The list's cells as a chain. A long one gets its links ahead, by a walk from
  // both ends at once where that is possible.
  static Chain take(List& list) {
    const Chain chain{list.pFirstCell(), list.pLastCell(), list.length()};
    if constexpr (kHasPrevious<Cell>) {
      if (chain.length > kBufferLength) {
        std::array<Cell*, Links::kFarAhead> before{};
        std::array<Cell*, Links::kFarAhead> behind{};
        Cell* front = chain.first;
        Cell* back = chain.last;
        for (nqLong i = 0; i < chain.length / 2; ++i) {
          const auto place = static_cast<std::size_t>(i % Links::kFarAhead);
          if (before[place] != nullptr) Links::setFarAhead(before[place], front);
          before[place] = front;
          front = Links::next(front);
          Cell* const previous = back->pPreviousCell();
          Links::setFarAhead(back, behind[place]);
          behind[place] = back;
          back = previous;
        }
      }
    }
    return chain;
  }

  // The cell with so many before it, in the first half of a chain that take() or a
  // builder made.
  static Cell* cellAt(const Chain& chain, nqLong index) {
    Cell* cell = chain.first;
    if constexpr (kHasPrevious<Cell>) {
      for (; index > Links::kFarAhead; index -= Links::kFarAhead) {
        cell = Links::farAhead(cell);
      }
    }
    for (; index > 0; --index) cell = Links::next(cell);
    return cell;
  }

  // As many of a chain's next cells as fit, in an array.
  struct Buffer {
    std::array<Cell*, kBufferLength> at;
    std::array<Cell*, kBufferLength> spare;
    Cells cells{at.data(), spare.data(), 0};

    void fill(Walker& walker) {
      for (cells.length = 0; cells.length < at.size(); ++cells.length) {
        if (walker.cell() == nullptr) return;
        at[cells.length] = walker.take();
      }
    }
    Chain inFinalOrder() const {
      if (cells.length == 0) return {};
      for (std::size_t place = 1; place < cells.length; ++place) {
        Links::connect(at[place - 1], at[place]);
      }
      return {at[0], at[cells.length - 1], static_cast<nqLong>(cells.length)};
    }
    // For chains that will be merged.
    Chain inOrder() const {
      const std::size_t far = Links::kFarAhead;
      for (std::size_t place = 0; place < cells.length; ++place) {
        if (place > 0) Links::setNext(at[place - 1], at[place]);
        Links::setFarAhead(at[place],
                           place + far < cells.length ? at[place + far] : nullptr);
      }
      return {at[0], at[cells.length - 1], static_cast<nqLong>(cells.length)};
    }
  };

  // Runs `sort` over the chain's cells in a buffer, if they fit.
  template <class Sort>
  bool inBuffer(Chain& chain, Sort sort) {
    if (chain.length > kBufferLength) return false;
    Buffer buffer;
    Walker walker(chain);
    sortNext(buffer, walker, sort);
    chain = buffer.inFinalOrder();
    return true;
  }

  // Fills the buffer and runs `sort` over it.
  template <class Sort>
  void sortNext(Buffer& buffer, Walker& walker, Sort sort) {
    Walker start = walker;
    buffer.fill(walker);
    const int depth = recursionDepth_;
    try {
      sort(buffer.cells);
    } catch (...) {
      compare_.stop();
      recursionDepth_ = depth;
      buffer.fill(start);
    }
  }

  // For comparisons while chains are linked anew.
  int guarded(Cell* a, Cell* b) {
    try {
      return compare_(a, b);
    } catch (...) {
      compare_.stop();
      return 0;
    }
  }

  bool less(Cell* a, Cell* b) { return guarded(a, b) < 0; }

  // ---- Quick sort

  // Which of the first, middle and last cell lies between the other two.
  Cell* medianOfThree(Cell* first, Cell* middle, Cell* last) {
    if (less(last, middle)) {
      if (!less(first, middle)) return middle;
    } else {
      if (!less(middle, first)) return middle;
      return less(last, first) ? last : first;
    }
    return less(last, first) ? first : last;
  }

  void qsortWrapper(Chain& chain) {
    if (inBuffer(chain, [this](const Cells& cells) { qsortWrapper(cells); })) return;
    const int depth = ++recursionDepth_;
    Chain greater;
    Cell* const pivot = compareAndSplitIntoTwoLists(chain, greater);
    for (Chain* const part : {&chain, &greater}) {
      if (depth < kDepthLimit) {
        qsortWrapper(*part);
      } else {
        finishDeepPart(*part);
      }
    }
    chain.append(Chain{pivot, pivot, 1});
    chain.append(greater);
    --recursionDepth_;
  }

  void qsortWrapper(const Cells& cells) {
    if (cells.length < 2) return;
    // A level takes the pivot out and leaves a cell on either side of it. Only when
    // the pivot is the middle cell, the first one its equal and none behind it as
    // large does one side get all, which happens twice in a row at most: four cells
    // take three levels.
    const int levels = static_cast<int>(std::min(cells.length, kSmall) * 3 / 4);
    if (cells.length <= kSmall && recursionDepth_ + levels < kDepthLimit) {
      if (!isSorted(cells)) msortWrapper(cells);
      return;
    }
    const int depth = ++recursionDepth_;
    const std::size_t kept = compareAndSplitIntoTwoLists(cells);
    for (const Cells& part :
         {cells.part(0, kept), cells.part(kept + 1, cells.length - kept - 1)}) {
      if (depth < kDepthLimit) {
        qsortWrapper(part);
      } else {
        finishDeepPart(part);
      }
    }
    --recursionDepth_;
  }

  // Moves what belongs behind the pivot into `greater` and takes the pivot out.
  // Cells keep their order; the pivot's equals stay when they stood before it
  // and move when they stood behind it.
  Cell* compareAndSplitIntoTwoLists(Chain& chain, Chain& greater) {
    Cell* const middle = cellAt(chain, (chain.length + 1) / 2 - 1);
    Cell* const pivot = medianOfThree(chain.first, middle, chain.last);
    Walker walker(chain);
    Builder<false> parts[2];
    const auto split = [&](Cell* cell, int movesFrom) {
      parts[bit(guarded(cell, pivot) >= movesFrom)].append(cell);
    };
    while (walker.cell() != pivot) split(walker.take(), 1);
    walker.take();
    while (walker.cell() != nullptr) split(walker.take(), 0);
    chain = parts[0].chain();
    greater = parts[1].chain();
    return pivot;
  }

  // The same in an array: those that stay, the pivot, those that moved. Returns
  // how many stayed.
  std::size_t compareAndSplitIntoTwoLists(const Cells& cells) {
    const std::size_t length = cells.length;
    Cell* const pivot =
        medianOfThree(cells.at[0], cells.at[(length + 1) / 2 - 1], cells.at[length - 1]);
    std::size_t kept = 0;
    std::size_t moved = 0;
    std::size_t place = 0;
    const auto split = [&](Cell* cell, int movesFrom) {
      // Both stores are made, and one of them counts: no branch to mispredict.
      const std::size_t moves = bit(compare_(cell, pivot) >= movesFrom);
      cells.spare[moved] = cell;
      cells.at[kept] = cell;
      moved += moves;
      kept += 1 - moves;
    };
    for (; cells.at[place] != pivot; ++place) split(cells.at[place], 1);
    for (++place; place < length; ++place) split(cells.at[place], 0);
    cells.at[kept] = pivot;
    std::copy_n(cells.spare, moved, cells.at + kept + 1);
    return kept;
  }

  void finishDeepPart(Chain& chain) {
    if (inBuffer(chain, [this](const Cells& cells) { finishDeepPart(cells); })) return;
    bool sorted = true;
    Walker walker(chain);
    for (Cell* cell = walker.take(); sorted && walker.cell() != nullptr;) {
      Cell* const next = walker.take();
      sorted = guarded(cell, next) <= 0;
      cell = next;
    }
    if (!sorted) changed_ = 1;
    msortWrapper(chain);
  }

  void finishDeepPart(const Cells& cells) {
    if (cells.length < kMergeFrom) changed_ = 0;  // as a bubble sort would begin
    if (isSorted(cells)) return;
    changed_ = 1;
    msortWrapper(cells);
  }

  // ---- Merge sort

  bool isSorted(const Cells& cells) {
    for (std::size_t place = 1; place < cells.length; ++place) {
      if (compare_(cells.at[place - 1], cells.at[place]) > 0) return false;
    }
    return true;
  }

  // Sorts stretches in the buffer. They gather in levels[0]; when that is full
  // they are merged into one chain of levels[1], and so on.
  void msortWrapper(Chain& chain) {
    if (inBuffer(chain, [this](const Cells& cells) { msortWrapper(cells); })) return;
    Levels levels;
    Walker walker(chain);
    while (walker.cell() != nullptr) {
      Buffer buffer;
      sortNext(buffer, walker, [this](const Cells& cells) {
        if (!isSorted(cells)) msortWrapper(cells);
      });
      addRun(levels, 0, buffer.inOrder());
    }
    std::size_t top = kLevels - 1;
    while (levels[top].count == 0) --top;
    for (std::size_t low = 0; low < top; ++low) {
      if (levels[low].count > 0) {
        addRun(levels, low + 1, mergeSortedLists<false>(levels[low]));
      }
    }
    chain = mergeSortedLists<true>(levels[top]);
  }

  struct Level {
    std::array<Chain, kFan> runs;
    std::size_t count = 0;
  };

  using Levels = std::array<Level, kLevels>;

  void addRun(Levels& levels, std::size_t at, const Chain& run) {
    Level& level = levels[at];
    if (level.count == kFan && at + 1 < kLevels) {
      addRun(levels, at + 1, mergeSortedLists<false>(level));
      level.count = 0;
    }
    level.runs[level.count++] = run;
  }

  // Merges chains through a tree of losers (Knuth): `losers` holds, for each inner
  // node of a tree over them, the one that lost there; the winner goes on. Ties
  // keep the cell of the earlier chain first.
  template <bool kFinal>
  Chain mergeSortedLists(const Level& level) {
    const std::size_t count = level.count;
    std::array<Walker, kFan> walkers;
    std::array<std::size_t, kFan> losers;
    nqLong length = 0;
    for (std::size_t run = 0; run < count; ++run) {
      walkers[run] = Walker(level.runs[run]);
      length += level.runs[run].length;
    }
    const auto wins = [&](std::size_t a, std::size_t b) {
      Cell* const cellA = walkers[a].cell();
      Cell* const cellB = walkers[b].cell();
      if (cellA == nullptr || cellB == nullptr) return cellB == nullptr;
      return guarded(cellA, cellB) < (a < b ? 1 : 0);
    };
    std::array<std::size_t, 2 * kFan> winners;
    for (std::size_t node = 2 * count - 1; node >= count; --node) {
      winners[node] = node - count;
    }
    for (std::size_t node = count - 1; node > 0; --node) {
      const std::size_t a = winners[2 * node];
      const std::size_t b = winners[2 * node + 1];
      const bool aWins = wins(a, b);
      winners[node] = aWins ? a : b;
      losers[node] = aWins ? b : a;
    }
    std::size_t winner = winners[1];

    Builder<kFinal> merged;
    for (nqLong left = length; left > 0; --left) {
      merged.append(walkers[winner].take());
      for (std::size_t node = (winner + count) / 2; node > 0; node /= 2) {
        const std::size_t loser = losers[node];
        const std::size_t stays = bit(wins(winner, loser));
        losers[node] = choose(stays, winner, loser);
        winner = choose(stays, loser, winner);
      }
    }
    return merged.chain();
  }

  // Sorts a few cells at a time and merges them, to and fro between the array and
  // the spare places.
  void msortWrapper(const Cells& cells) {
    msortWrapper(cells.at, cells.spare, cells.length, false);
  }

  // The result goes to `spare` or stays in `at`.
  void msortWrapper(Cell** at, Cell** spare, std::size_t length, bool toSpare) {
    Cell** const to = toSpare ? spare : at;
    if (length < 4) {
      insertionSort(at, length, to);
    } else if (length == 4) {
      sortFour(at, to);
    } else {
      const std::size_t half = (length / 2 + 3) / 4 * 4;
      msortWrapper(at, spare, half, !toSpare);
      msortWrapper(at + half, spare + half, length - half, !toSpare);
      mergeSortedLists(toSpare ? at : spare, half, length, to);
    }
  }

  // Merges the first `half` cells with the others, from both ends.
  void mergeSortedLists(Cell* const* from, std::size_t half, std::size_t length,
                        Cell** to) {
    if (compare_(from[half - 1], from[half]) <= 0) {
      std::copy_n(from, length, to);
      return;
    }
    const std::size_t steps = std::min(half, length - half);
    std::size_t x = 0;  // the first that is left of either half
    std::size_t y = half;
    std::size_t endX = half;  // behind the last
    std::size_t endY = length;
    for (std::size_t step = 0; step < steps; ++step) {
      const std::size_t second = bit(compare_(from[x], from[y]) > 0);
      to[step] = from[choose(second, x, y)];
      x += 1 - second;
      y += second;
      const std::size_t first = bit(compare_(from[endX - 1], from[endY - 1]) > 0);
      to[length - 1 - step] = from[choose(first, endY, endX) - 1];
      endX -= first;
      endY -= 1 - first;
    }
    if (x > endX || y > endY) {
      // The two ends contradict each other.
      std::copy_n(from, length, to);
      return;
    }
    std::size_t place = steps;
    while (x < endX && y < endY) {
      to[place++] = from[compare_(from[x], from[y]) > 0 ? y++ : x++];
    }
    std::copy(from + y, from + endY, std::copy(from + x, from + endX, to + place));
  }

  // Both sort to another place, or the same.
  void insertionSort(Cell* const* from, std::size_t length, Cell** to) {
    for (std::size_t next = 0; next < length; ++next) {
      Cell* const cell = from[next];
      std::size_t place = next;
      for (; place > 0 && compare_(to[place - 1], cell) > 0; --place) {
        to[place] = to[place - 1];
      }
      to[place] = cell;
    }
  }

  // Orders two pairs, then the smallest and the largest of all, then the rest.
  void sortFour(Cell* const* from, Cell** to) {
    const std::size_t swapAB = bit(compare_(from[0], from[1]) > 0);
    const std::size_t swapCD = bit(compare_(from[2], from[3]) > 0);
    Cell* const a = from[swapAB];
    Cell* const b = from[1 - swapAB];
    Cell* const c = from[2 + swapCD];
    Cell* const d = from[3 - swapCD];
    const std::size_t cFirst = bit(compare_(a, c) > 0);
    const std::size_t bLast = bit(compare_(b, d) > 0);
    Cell* const left = choose(cFirst, choose(bLast, b, c), a);
    Cell* const right = choose(bLast, choose(cFirst, c, b), d);
    const std::size_t swapRest = bit(compare_(left, right) > 0);
    to[0] = choose(cFirst, a, c);
    to[1] = choose(swapRest, left, right);
    to[2] = choose(swapRest, right, left);
    to[3] = choose(bLast, d, b);
  }

  Compare compare_;
  int& recursionDepth_;
  int& changed_;
};

}  // namespace nqdetail

#endif  // NQ_CONTAINERS_LIST_SORT_INTERNAL_H

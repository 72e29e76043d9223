// list_sort_internal.h -- the sorting algorithms, once for both kinds of lists.
//
// A sort works on a chain: cells linked by their next pointers alone, the last
// one's null. The list's other links are put right once, at the end. Chains that
// fit a buffer on the stack are sorted there as arrays of cell pointers, by the
// same rules and with the same outcome, since an array is walked without waiting
// for memory at every cell.
//
// No comparison, however inconsistent, makes an algorithm lose a cell or loop.

#ifndef NQ_CONTAINERS_LIST_SORT_INTERNAL_H
#define NQ_CONTAINERS_LIST_SORT_INTERNAL_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "nq/containers/linked_list.h"
#include "nq/platform/types.h"

namespace nqdetail {

// A list's cells as a chain.
template <class List, class Cell>
struct ListLinks {
  static Cell* next(Cell* cell) { return cell->pNext_; }
  static void setNext(Cell* cell, Cell* next) { cell->pNext_ = next; }
  // Makes two cells neighbours; null stands for either end of the list.
  static void connect(List& list, Cell* left, Cell* right) { list.connect(left, right); }

  // Makes the list hold the cells it held before in the order of the chain.
  static void relink(List& list, Cell* first) {
    list.pFirst_ = first;
    Cell* last = nullptr;
    for (Cell* cell = first; cell != nullptr; cell = cell->pNext_) {
      if constexpr (kHasPrevious<Cell>) cell->pPrevious_ = last;
      last = cell;
    }
    list.pLast_ = last;
  }
};

// One run of a sort over one list. compare(a, b) answers as virtualCompare does.
// The two counters are the sorter's own.
template <class List, class Cell, class Compare>
class ListSort {
 public:
  ListSort(Compare compare, int& recursionDepth, int& changed)
      : compare_(compare), recursionDepth_(recursionDepth), changed_(changed) {}

  void quickSort(List& list) {
    Chain chain{list.pFirstCell(), list.pLastCell(), list.length()};
    qsortWrapper(chain);
    Links::relink(list, chain.first);
  }
  void mergeSort(List& list) {
    Chain chain{list.pFirstCell(), list.pLastCell(), list.length()};
    msortWrapper(chain);
    Links::relink(list, chain.first);
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
        if (compare_(left, right) > 0) {
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
    Links::relink(list, first);
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

  // The cell that would stand at `position` (from 1, within the list) if the
  // list were sorted; the list stays as it is.
  Cell* ithWrapper(const List& list, nqLong position) {
    std::vector<Cell*> cells;
    cells.reserve(static_cast<std::size_t>(list.length()));
    for (Cell* cell = list.pFirstCell(); cell != nullptr; cell = Links::next(cell)) {
      cells.push_back(cell);
    }
    std::vector<Cell*> greater;
    for (;;) {
      const std::size_t pivotAt = (cells.size() + 1) / 2 - 1;
      Cell* const pivot = cells[pivotAt];
      greater.clear();
      std::size_t kept = 0;
      for (Cell* const cell : cells) {
        if (cell != pivot && compare_(cell, pivot) > 0) {
          greater.push_back(cell);
        } else {
          cells[kept++] = cell;
        }
      }
      cells.resize(kept);
      const nqLong notGreater = static_cast<nqLong>(kept);
      if (position == notGreater) return pivot;
      if (position < notGreater) {
        cells.erase(std::find(cells.begin(), cells.end(), pivot));
      } else {
        cells.swap(greater);
        position -= notGreater;
      }
    }
  }

 private:
  using Links = ListLinks<List, Cell>;

  // Quick sort nested this deep leaves its parts to the other sorts.
  static constexpr int kDepthLimit = 31;
  // Where it does, shorter parts than this are not worth merging.
  static constexpr std::size_t kMergeFrom = 6;
  // Chains of at most so many cells are sorted as arrays.
  static constexpr nqLong kBufferLength = 4096;

  struct Chain {
    Cell* first = nullptr;
    Cell* last = nullptr;
    nqLong length = 0;

    void append(Cell* cell) { append(Chain{cell, cell, 1}); }
    void append(const Chain& other) {
      if (other.length == 0) return;
      if (length == 0) {
        *this = other;
        return;
      }
      // Mostly they are neighbours already, and need not be written to.
      if (Links::next(last) != other.first) Links::setNext(last, other.first);
      last = other.last;
      length += other.length;
    }
    void end() {
      if (last != nullptr) Links::setNext(last, nullptr);
    }
  };

  // An array of cells, with as many spare places for those on the move.
  struct Cells {
    Cell** at;
    Cell** spare;
    std::size_t length;

    Cells part(std::size_t from, std::size_t count) const {
      return {at + from, spare, count};
    }
  };

  // Runs `sort` over the chain's cells in a buffer.
  template <class Sort>
  static void inBuffer(Chain& chain, Sort sort) {
    if (chain.length == 0) return;
    std::array<Cell*, kBufferLength> buffer;
    std::array<Cell*, kBufferLength> spare;
    std::size_t length = 0;
    for (Cell* cell = chain.first; length < static_cast<std::size_t>(chain.length);
         cell = Links::next(cell)) {
      buffer[length++] = cell;
    }
    sort(Cells{buffer.data(), spare.data(), length});
    for (std::size_t place = 1; place < length; ++place) {
      Links::setNext(buffer[place - 1], buffer[place]);
    }
    chain.first = buffer[0];
    chain.last = buffer[length - 1];
    chain.end();
  }

  bool less(Cell* a, Cell* b) { return compare_(a, b) < 0; }

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
    if (chain.length <= kBufferLength) {
      inBuffer(chain, [this](const Cells& cells) { qsortWrapper(cells); });
      return;
    }
    const int depth = ++recursionDepth_;
    Chain greater;
    Cell* const pivot = compareAndSplitIntoTwoLists(chain, greater);
    for (Chain* const part : {&chain, &greater}) {
      if (depth < kDepthLimit) {
        qsortWrapper(*part);
      } else if (part->length <= kBufferLength) {
        inBuffer(*part, [this](const Cells& cells) { finishDeepPart(cells); });
      } else {
        msortWrapper(*part);
      }
    }
    chain.append(pivot);
    chain.append(greater);
    chain.end();
    --recursionDepth_;
  }

  void qsortWrapper(const Cells& cells) {
    if (cells.length < 2) return;
    const int depth = ++recursionDepth_;
    const std::size_t kept = compareAndSplitIntoTwoLists(cells);
    const Cells parts[] = {cells.part(0, kept),
                           cells.part(kept + 1, cells.length - kept - 1)};
    for (const Cells& part : parts) {
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
  // and move when they stood behind it. Leaves both chains ended.
  Cell* compareAndSplitIntoTwoLists(Chain& chain, Chain& greater) {
    Cell* middle = chain.first;
    for (nqLong place = 1; place < (chain.length + 1) / 2; ++place) {
      middle = Links::next(middle);
    }
    Cell* const pivot = medianOfThree(chain.first, middle, chain.last);
    Chain kept;
    int movesFrom = 1;  // the least comparison with the pivot that moves a cell
    for (Cell* cell = chain.first; cell != nullptr;) {
      Cell* const next = Links::next(cell);
      if (cell == pivot) {
        movesFrom = 0;
      } else if (compare_(cell, pivot) >= movesFrom) {
        greater.append(cell);
      } else {
        kept.append(cell);
      }
      cell = next;
    }
    kept.end();
    greater.end();
    chain = kept;
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
    int movesFrom = 1;
    for (std::size_t place = 0; place < length; ++place) {
      Cell* const cell = cells.at[place];
      if (cell == pivot) {
        movesFrom = 0;
        continue;
      }
      // Both stores are made, and one of them counts: no branch to mispredict.
      const bool moves = compare_(cell, pivot) >= movesFrom;
      cells.spare[moved] = cell;
      cells.at[kept] = cell;
      moved += moves ? 1 : 0;
      kept += moves ? 0 : 1;
    }
    cells.at[kept] = pivot;
    std::copy_n(cells.spare, moved, cells.at + kept + 1);
    return kept;
  }

  void finishDeepPart(const Cells& cells) {
    if (cells.length < kMergeFrom) {
      changed_ = 0;  // as a bubble sort of its own would begin
      insertionSort(cells);
    } else {
      msortWrapper(cells);
    }
  }

  // Sorts stretches in the buffer and merges them pairwise as they come: stretch
  // after stretch is carried into sizes[0], sizes[1], ..., where sizes[i] is
  // empty or holds 2 to the i stretches.
  void msortWrapper(Chain& chain) {
    std::array<Chain, 32> sizes;
    Cell* rest = chain.first;
    nqLong restLength = chain.length;
    while (restLength > 0) {
      Chain stretch{rest, nullptr, std::min(restLength, kBufferLength)};
      for (nqLong place = 0; place < stretch.length; ++place) rest = Links::next(rest);
      restLength -= stretch.length;
      inBuffer(stretch, [this](const Cells& cells) { msortWrapper(cells); });
      std::size_t size = 0;
      for (; sizes[size].length > 0; ++size) {
        stretch = mergeSortedLists(sizes[size], stretch);
        sizes[size] = Chain{};
      }
      sizes[size] = stretch;
    }
    Chain sorted;
    for (const Chain& size : sizes) sorted = mergeSortedLists(size, sorted);
    chain = sorted;
  }

  void msortWrapper(const Cells& cells) {
    if (cells.length < kMergeFrom) {
      insertionSort(cells);
      return;
    }
    const std::size_t half = (cells.length + 1) / 2;
    msortWrapper(cells.part(0, half));
    msortWrapper(cells.part(half, cells.length - half));
    mergeSortedLists(cells, half);
  }

  // Merges b into a, of which ties keep a's cell first. The chains stay ended.
  Chain mergeSortedLists(const Chain& a, const Chain& b) {
    if (a.length == 0) return b;
    if (b.length == 0) return a;
    Chain merged;
    if (compare_(a.last, b.first) <= 0) {
      merged = a;
      merged.append(b);
      return merged;
    }
    changed_ = 1;
    Cell* x = a.first;
    Cell* y = b.first;
    Cell* last = nullptr;
    const auto take = [&merged, &last](Cell*& from) {
      if (last == nullptr) {
        merged.first = from;
      } else {
        Links::setNext(last, from);
      }
      last = from;
      from = Links::next(from);
    };
    do {
      take(compare_(x, y) > 0 ? y : x);
    } while (x != nullptr && y != nullptr);
    Links::setNext(last, x != nullptr ? x : y);
    merged.last = x != nullptr ? a.last : b.last;
    merged.length = a.length + b.length;
    return merged;
  }

  // Merges the first `half` cells with the others.
  void mergeSortedLists(const Cells& cells, std::size_t half) {
    if (compare_(cells.at[half - 1], cells.at[half]) <= 0) return;
    changed_ = 1;
    std::copy_n(cells.at, half, cells.spare);
    std::size_t x = 0;
    std::size_t y = half;
    std::size_t place = 0;
    while (x < half && y < cells.length) {
      const bool second = compare_(cells.spare[x], cells.at[y]) > 0;
      cells.at[place++] = second ? cells.at[y] : cells.spare[x];
      x += second ? 0 : 1;
      y += second ? 1 : 0;
    }
    std::copy(cells.spare + x, cells.spare + half, cells.at + place);
  }

  void insertionSort(const Cells& cells) {
    for (std::size_t next = 1; next < cells.length; ++next) {
      Cell* const cell = cells.at[next];
      std::size_t place = next;
      for (; place > 0 && compare_(cells.at[place - 1], cell) > 0; --place) {
        cells.at[place] = cells.at[place - 1];
      }
      if (place != next) changed_ = 1;
      cells.at[place] = cell;
    }
  }

  Compare compare_;
  int& recursionDepth_;
  int& changed_;
};

}  // namespace nqdetail

#endif  // NQ_CONTAINERS_LIST_SORT_INTERNAL_H

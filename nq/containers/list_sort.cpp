#include "nq/containers/list_sort.h"

#include <exception>

#include "nq/containers/dlist.h"
#include "nq/containers/list_sort_internal.h"
#include "nq/containers/slist.h"

// Who compares the cells: the sorter, until it throws. Where cells are on the move then,
// they all count as equal from there on, and the algorithm, which keeps every cell
// whatever the answers are, comes to its end.
template <class List, class Cell>
struct NQListSort<List, Cell>::Comparison {
  int operator()(Cell* a, Cell* b) { return pSorter->virtualCompare(a, b); }
  // To be called while the exception is handled.
  void stop() {
    thrown = std::current_exception();
    pSorter = &nqdetail::sorterOfEquals<List, Cell>();
  }

  NQListSort* pSorter;
  std::exception_ptr thrown = nullptr;
};

// Answers as `operation`, which gets the algorithms, and throws what a comparison did.
template <class List, class Cell>
template <class Operation>
auto NQListSort<List, Cell>::run(Operation operation) {
  nqdetail::ListSort<List, Cell, Comparison> sort(this, recursionDepth_, changed_);
  const auto result = operation(sort);
  if (sort.comparison().thrown != nullptr) {
    std::rethrow_exception(sort.comparison().thrown);
  }
  return result;
}

template <class List, class Cell>
int NQListSort<List, Cell>::quickSort(List* list, int checkSortedFirst) {
  recursionDepth(0);
  if (!nqdetail::ListLinks<List, Cell>::mayReorder(list)) return changed();
  if (checkSortedFirst == 0) {
    return run([&](auto& sort) {
      sort.quickSort(*list);
      return changed();
    });
  }
  const int sorted = isSorted(list);
  if (!sorted) {
    run([&](auto& sort) {
      sort.quickSort(*list);
      return 0;
    });
  }
  return changed(sorted ? 0 : 1);
}

template <class List, class Cell>
int NQListSort<List, Cell>::mergeSort(List* list) {
  changed(0);
  if (!nqdetail::ListLinks<List, Cell>::mayReorder(list)) return 0;
  return run([&](auto& sort) {
    sort.mergeSort(*list);
    return changed();
  });
}

template <class List, class Cell>
int NQListSort<List, Cell>::bubbleSort(List* list) {
  changed(0);
  if (!nqdetail::ListLinks<List, Cell>::mayReorder(list)) return 0;
  return run([&](auto& sort) {
    sort.bubbleSort(*list);
    return changed();
  });
}

template <class List, class Cell>
int NQListSort<List, Cell>::isSorted(List* list) {
  if (list == nullptr) return 1;
  return run([&](auto& sort) { return sort.isSorted(*list) ? 1 : 0; });
}

template <class List, class Cell>
Cell* NQListSort<List, Cell>::findSmallestElement(List* list) {
  if (list == nullptr) return nullptr;
  return run([&](auto& sort) { return sort.findExtreme(*list, 1); });
}

template <class List, class Cell>
Cell* NQListSort<List, Cell>::findLargestElement(List* list) {
  if (list == nullptr) return nullptr;
  return run([&](auto& sort) { return sort.findExtreme(*list, -1); });
}

template <class List, class Cell>
void NQListSort<List, Cell>::debugOutputList(List*) {}

template class NQListSort<NQDList, NQDListCell>;
template class NQListSort<NQSList, NQSListCell>;

NQDListCell* NQDListSort::findIthElement(NQDList* list, nqLong i) {
  if (list == nullptr || i < 1 || i > list->length()) return nullptr;
  return run([&](auto& sort) { return sort.ithWrapper(*list, i); });
}

void NQDListSort::debugOutput(int) {}

void NQSListSort::debugOutput(int) {}

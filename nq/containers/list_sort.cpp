#include "nq/containers/list_sort.h"

#include "nq/containers/dlist.h"
#include "nq/containers/list_sort_internal.h"
#include "nq/containers/slist.h"

template <class List, class Cell>
auto NQListSort<List, Cell>::algorithms() {
  const auto compare = [this](Cell* a, Cell* b) { return virtualCompare(a, b); };
  return nqdetail::ListSort<List, Cell, decltype(compare)>(compare, recursionDepth_,
                                                           changed_);
}

template <class List, class Cell>
int NQListSort<List, Cell>::quickSort(List* list, int checkSortedFirst) {
  recursionDepth(0);
  if (list == nullptr) return changed();
  if (checkSortedFirst == 0) {
    algorithms().quickSort(*list);
    return changed();
  }
  const int sorted = isSorted(list);
  if (!sorted) algorithms().quickSort(*list);
  return changed(sorted ? 0 : 1);
}

template <class List, class Cell>
int NQListSort<List, Cell>::mergeSort(List* list) {
  changed(0);
  if (list != nullptr) algorithms().mergeSort(*list);
  return changed();
}

template <class List, class Cell>
int NQListSort<List, Cell>::bubbleSort(List* list) {
  changed(0);
  if (list != nullptr) algorithms().bubbleSort(*list);
  return changed();
}

template <class List, class Cell>
int NQListSort<List, Cell>::isSorted(List* list) {
  return list == nullptr || algorithms().isSorted(*list) ? 1 : 0;
}

template <class List, class Cell>
Cell* NQListSort<List, Cell>::findSmallestElement(List* list) {
  return list == nullptr ? nullptr : algorithms().findExtreme(*list, 1);
}

template <class List, class Cell>
Cell* NQListSort<List, Cell>::findLargestElement(List* list) {
  return list == nullptr ? nullptr : algorithms().findExtreme(*list, -1);
}

template <class List, class Cell>
void NQListSort<List, Cell>::debugOutputList(List*) {}

template class NQListSort<NQDList, NQDListCell>;
template class NQListSort<NQSList, NQSListCell>;

NQDListCell* NQDListSort::findIthElement(NQDList* list, nqLong i) {
  if (list == nullptr || i < 1 || i > list->length()) return nullptr;
  return algorithms().ithWrapper(*list, i);
}

void NQDListSort::debugOutput(int) {}

void NQSListSort::debugOutput(int) {}

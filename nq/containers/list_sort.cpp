#include "nq/containers/list_sort.h"

#include "nq/containers/dlist.h"
#include "nq/containers/list_sort_internal.h"
#include "nq/containers/slist.h"

namespace {

template <class List, class Cell, class Compare>
auto listSort(Compare compare, int& recursionDepth, int& changed) {
  return nqdetail::ListSort<List, Cell, Compare>(compare, recursionDepth, changed);
}

// The operations of both kinds of sorter, given the algorithms.

template <class Algorithms, class List>
int sortQuickly(Algorithms algorithms, List* list, int checkSortedFirst, int& changed) {
  if (list == nullptr) return changed;
  if (checkSortedFirst == 0) {
    algorithms.quickSort(*list);
    return changed;
  }
  const bool sorted = algorithms.isSorted(*list);
  if (!sorted) algorithms.quickSort(*list);
  return changed = sorted ? 0 : 1;
}

template <class Algorithms, class List>
int sortByMerging(Algorithms algorithms, List* list, int& changed) {
  changed = 0;
  if (list != nullptr) algorithms.mergeSort(*list);
  return changed;
}

template <class Algorithms, class List>
int sortByBubbling(Algorithms algorithms, List* list, int& changed) {
  changed = 0;
  if (list != nullptr) algorithms.bubbleSort(*list);
  return changed;
}

}  // namespace

auto NQDListSort::algorithms() {
  return listSort<NQDList, NQDListCell>(
      [this](NQDListCell* a, NQDListCell* b) { return virtualCompare(a, b); },
      recursionDepth_, changed_);
}

int NQDListSort::quickSort(NQDList* list, int checkSortedFirst) {
  recursionDepth(0);
  return sortQuickly(algorithms(), list, checkSortedFirst, changed_);
}

int NQDListSort::mergeSort(NQDList* list) {
  return sortByMerging(algorithms(), list, changed_);
}

int NQDListSort::bubbleSort(NQDList* list) {
  return sortByBubbling(algorithms(), list, changed_);
}

int NQDListSort::isSorted(NQDList* list) {
  return list == nullptr || algorithms().isSorted(*list) ? 1 : 0;
}

NQDListCell* NQDListSort::findSmallestElement(NQDList* list) {
  return list == nullptr ? nullptr : algorithms().findExtreme(*list, 1);
}

NQDListCell* NQDListSort::findLargestElement(NQDList* list) {
  return list == nullptr ? nullptr : algorithms().findExtreme(*list, -1);
}

NQDListCell* NQDListSort::findIthElement(NQDList* list, nqLong i) {
  if (list == nullptr || i < 1 || i > list->length()) return nullptr;
  return algorithms().ithWrapper(*list, i);
}

void NQDListSort::debugOutput(int) {}

void NQDListSort::debugOutputList(NQDList*) {}

auto NQSListSort::algorithms() {
  return listSort<NQSList, NQSListCell>(
      [this](NQSListCell* a, NQSListCell* b) { return virtualCompare(a, b); },
      recursionDepth_, changed_);
}

int NQSListSort::quickSort(NQSList* list, int checkSortedFirst) {
  recursionDepth(0);
  return sortQuickly(algorithms(), list, checkSortedFirst, changed_);
}

int NQSListSort::mergeSort(NQSList* list) {
  return sortByMerging(algorithms(), list, changed_);
}

int NQSListSort::bubbleSort(NQSList* list) {
  return sortByBubbling(algorithms(), list, changed_);
}

int NQSListSort::isSorted(NQSList* list) {
  return list == nullptr || algorithms().isSorted(*list) ? 1 : 0;
}

NQSListCell* NQSListSort::findSmallestElement(NQSList* list) {
  return list == nullptr ? nullptr : algorithms().findExtreme(*list, 1);
}

NQSListCell* NQSListSort::findLargestElement(NQSList* list) {
  return list == nullptr ? nullptr : algorithms().findExtreme(*list, -1);
}

void NQSListSort::debugOutput(int) {}

void NQSListSort::debugOutputList(NQSList*) {}

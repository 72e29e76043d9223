// sorted_order.h -- what is wrong with a container that should be in order.

#ifndef NQ_TESTS_SUPPORT_SORTED_ORDER_H
#define NQ_TESTS_SUPPORT_SORTED_ORDER_H

#include <sstream>
#include <string>

// The first fault of a list (or of what is derived from one) in the order of
// compare(a, b), which compares cells: a link, the length, two neighbours. Empty
// when there is none.
template <class List, class Compare>
std::string orderFault(const List& list, Compare compare) {
  std::ostringstream fault;
  decltype(list.pFirstCell()) previous = nullptr;
  int place = 0;
  for (auto* cell = list.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
    if (++place > list.length()) {
      fault << "more than " << list.length() << " cells, or a circle";
      return fault.str();
    }
    if constexpr (requires { cell->pPreviousCell(); }) {
      if (cell->pPreviousCell() != previous) fault << "backward link of cell " << place;
    }
    if (previous != nullptr && compare(previous, cell) > 0) {
      fault << "cell " << place << " belongs before cell " << place - 1;
    }
    if (!fault.str().empty()) return fault.str();
    previous = cell;
  }
  if (place != list.length()) fault << place << " cells, counted " << list.length();
  if (list.pLastCell() != previous) fault << "last cell is not the last";
  return fault.str();
}

#endif  // NQ_TESTS_SUPPORT_SORTED_ORDER_H

// Apart from list_sort.cpp, where compilers would take this comparison for the
// likely one, and test for it at each call.

#include "nq/containers/dlist.h"
#include "nq/containers/list_sort.h"

int NQMemAddressDListSort::virtualCompare(NQDListCell* a, NQDListCell* b) {
  const auto first = reinterpret_cast<nqInt64>(a->pObject());
  const auto second = reinterpret_cast<nqInt64>(b->pObject());
  return first < second ? -1 : first > second ? 1 : 0;
}

void NQMemAddressDListSort::virtualDebugOutputElement(NQDListCell*) {}

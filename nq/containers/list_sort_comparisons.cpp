// Apart from list_sort.cpp, where compilers would take one of these comparisons for the
// likely one, and test for it at each call.

#include "nq/containers/dlist.h"
#include "nq/containers/list_sort.h"
#include "nq/containers/list_sort_internal.h"
#include "nq/containers/slist.h"

int NQMemAddressDListSort::virtualCompare(NQDListCell* a, NQDListCell* b) {
  const auto first = reinterpret_cast<nqInt64>(a->pObject());
  const auto second = reinterpret_cast<nqInt64>(b->pObject());
  return first < second ? -1 : first > second ? 1 : 0;
}

void NQMemAddressDListSort::virtualDebugOutputElement(NQDListCell*) {}

namespace {

template <class Sorter, class Cell>
class Equals final : public Sorter {
 protected:
  int virtualCompare(Cell*, Cell*) override { return 0; }
  void virtualDebugOutputElement(Cell*) override {}
};

}  // namespace

namespace nqdetail {

template <>
NQListSort<NQDList, NQDListCell>& sorterOfEquals() {
  static Equals<NQDListSort, NQDListCell> sorter;
  return sorter;
}

template <>
NQListSort<NQSList, NQSListCell>& sorterOfEquals() {
  static Equals<NQSListSort, NQSListCell> sorter;
  return sorter;
}

}  // namespace nqdetail

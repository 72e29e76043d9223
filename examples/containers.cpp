// Lists: cells that move without being copied, sorting by a comparison of one's
// own, a table from objects to numbers, a heap and a tree.

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "nq/nq.h"

namespace {

nqLong value(const NQObject* object) {
  return NQLong::castDown(object)->value();
}

class BySize : public NQDListSort {
 protected:
  int virtualCompare(NQDListCell* a, NQDListCell* b) override {
    const nqLong left = value(a->pObject());
    const nqLong right = value(b->pObject());
    return left < right ? -1 : left > right;
  }
  void virtualDebugOutputElement(NQDListCell*) override {}
};

void print(const char* name, const NQDList& list) {
  std::printf("%s:", name);
  for (const NQObject* const object : list) std::printf(" %d", int(value(object)));
  std::printf("\n");
}

}  // namespace

int main() {
  NQDList waiting;
  for (const int size : {70, 20, 50, 10, 40}) waiting.appendObject(new NQLong(size));

  // A cell is a position: it stays valid while others come and go.
  NQDListCell* const fifty = waiting.pCellInPosition(3);
  waiting.addObject(fifty, new NQLong(55));
  print("waiting", waiting);

  // Runs of cells move to other lists without allocation.
  NQDList served;
  served.transferListPart(nullptr, &waiting, fifty, waiting.pLastCell());
  print("waiting", waiting);
  print("served", served);

  BySize sorter;
  sorter.mergeSort(&served);
  print("sorted", served);

  // As a view, a list goes wherever ranges go, and its objects have their type.
  const auto large = std::ranges::count_if(
      nqObjects<NQLong>(served), [](const NQLong* size) { return size->value() >= 50; });
  std::printf("%d are large\n", int(large));

  // What belongs to an object, without a field in it: addresses are good keys.
  const auto key = [](const NQObject* o) { return reinterpret_cast<std::intptr_t>(o); };
  NQIndexHashTable place(nextPrimeNumber(100), /*divisor=*/8, /*errorValue=*/-1);
  nqLong i = 0;
  for (const NQObject* const object : served) place.update(key(object), ++i);
  std::printf("55 is number %d, 70 number %d\n",
              int(place.lookup(key(served.pObjectInPosition(4)))),
              int(place.lookup(key(waiting.pObjectInPosition(1)))));

  // A heap hands out the smallest value first; values may change meanwhile.
  NQBinHeap due;
  NQBinHeapCell* const seventy = due.addObject(waiting.pObjectInPosition(1), 30);
  due.addObject(waiting.pObjectInPosition(2), 10);
  due.changeValue(seventy, 5);
  NQBinHeapCell* const next = due.pExtractMinCell();  // handed over
  std::printf("next is %d\n", int(value(next->pObject())));
  delete next;

  // A tree is a list that tells the order of two cells without walking.
  NQBinTree queue(NQ_EXCLUSIVE_COLORS);  // never deeper than 2 log2(n + 1)
  queue.copyAppendList(&served);
  const NQBinTreeCell* const early = queue.pCellInPosition(2);
  const NQBinTreeCell* const late = queue.insertBefore(
      queue.pLastCell(), new NQBinTreeCell(waiting.pObjectInPosition(1)));
  std::printf("40 comes %s 70\n", queue.compare(early, late) < 0 ? "before" : "after");

  waiting.deleteAllCellsAndObjects();
  served.deleteAllCellsAndObjects();
}

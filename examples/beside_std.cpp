// The containers beside those of the standard library: each pair of blocks does the
// same, and writes the same.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <list>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "nq/nq.h"

namespace {

template <class Numbers>
void print(const char* name, const Numbers& numbers) {
  std::printf("%s:", name);
  for (const auto& number : numbers) std::printf(" %d", int(number));
  std::printf("\n");
}

std::vector<nqLong> valuesOf(const NQDList& list) {
  std::vector<nqLong> values;
  for (const NQLong* each : nqObjects<NQLong>(list)) values.push_back(each->value());
  return values;
}

void nqLists() {
  NQDList line;
  for (const int stop : {30, 10, 20}) line.appendObject(new NQLong(stop));
  NQDListCell* const ten = line.pCellInPosition(2);
  line.addObject(ten, new NQLong(15));
  NQDList rest;
  rest.transferListPart(nullptr, &line, ten, line.pLastCell());
  rest.reverse();
  print("line", valuesOf(line));
  print("rest", valuesOf(rest));
  line.deleteAllCellsAndObjects();
  rest.deleteAllCellsAndObjects();
}

void stdLists() {
  std::list<int> line;
  for (const int stop : {30, 10, 20}) line.push_back(stop);
  const auto ten = std::next(line.begin());
  line.insert(std::next(ten), 15);
  std::list<int> rest;
  rest.splice(rest.begin(), line, ten, line.end());
  rest.reverse();
  print("line", line);
  print("rest", rest);
}

class BySize : public NQDListSort {
 protected:
  int virtualCompare(NQDListCell* a, NQDListCell* b) override {
    const nqLong left = NQLong::castDown(a->pObject())->value();
    const nqLong right = NQLong::castDown(b->pObject())->value();
    return left < right ? -1 : left > right;
  }
  void virtualDebugOutputElement(NQDListCell*) override {}
};

void nqSorting() {
  NQDList sizes;
  for (const int size : {70, 20, 50}) sizes.appendObject(new NQLong(size));
  BySize().mergeSort(&sizes);
  print("sorted", valuesOf(sizes));
  const auto large = [](const NQLong* size) { return size->value() >= 50; };
  std::printf("%d large\n", int(std::ranges::count_if(nqObjects<NQLong>(sizes), large)));
  sizes.deleteAllCellsAndObjects();
}

void stdSorting() {
  std::list<int> sizes;
  for (const int size : {70, 20, 50}) sizes.push_back(size);
  sizes.sort();
  print("sorted", sizes);
  const auto large = [](int size) { return size >= 50; };
  std::printf("%d large\n", int(std::ranges::count_if(sizes, large)));
}

class Ordered : public NQSortedBinTree {
 public:
  Ordered() : NQSortedBinTree(NQ_EXCLUSIVE_COLORS) {}

 protected:
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    const nqLong left = NQLong::castDown(a)->value();
    const nqLong right = NQLong::castDown(b)->value();
    return left < right ? -1 : left > right;
  }
};

void nqTrees() {
  std::vector<NQLong> keys;
  for (const int key : {5, 1, 4, 1}) keys.emplace_back(key);
  Ordered order;
  for (NQLong& key : keys) order.addObject(&key);
  delete order.searchAndRemoveObject(&keys[0]);
  print("order", valuesOf(order));
  std::printf("%s\n", order.searchObject(&keys[2]) != nullptr ? "found" : "missing");
}

void stdTrees() {
  std::vector<int> keys;
  for (const int key : {5, 1, 4, 1}) keys.emplace_back(key);
  std::multiset<int> order;
  for (const int key : keys) order.insert(key);
  order.erase(order.find(keys[0]));
  print("order", order);
  std::printf("%s\n", order.contains(keys[2]) ? "found" : "missing");
}

void nqHeaps() {
  NQInt first(1);
  NQInt second(2);
  NQBinHeap due;
  due.addObject(&first, 30);
  due.addObject(&second, 10);
  due.changeValue(due.searchObject(&first), 5);
  std::printf("next is %d\n", NQInt::castDown(due.pMinObject())->value());
  due.discardCell(due.pFirstCell());
  std::printf("%d due\n", int(due.length()));
}

void stdHeaps() {
  using Entry = std::pair<int, int>;
  const Entry first(30, 1);
  std::set<Entry> due;  // std::priority_queue cannot change a value
  due.insert(first);
  due.emplace(10, 2);
  due.erase(first);
  due.emplace(5, 1);
  std::printf("next is %d\n", due.begin()->second);
  due.erase(due.begin());
  std::printf("%d due\n", int(due.size()));
}

void nqTables() {
  const NQInt home;
  const NQInt work;
  const auto key = [](const NQObject& object) {
    return reinterpret_cast<std::intptr_t>(&object);
  };
  NQIndexHashTable places(nextPrimeNumber(100), /*divisor=*/8, /*errorValue=*/-1);
  places.update(key(home), 7);
  std::printf("%d %d\n", int(places.lookup(key(home))), int(places.lookup(key(work))));
}

void stdTables() {
  const int home = 0;
  const int work = 0;
  std::unordered_map<const int*, int> places;
  places.insert_or_assign(&home, 7);
  const auto lookup = [&](const int* key) {
    const auto found = places.find(key);
    return found == places.end() ? -1 : found->second;
  };
  std::printf("%d %d\n", lookup(&home), lookup(&work));
}

void nqPools() {
  NQStringPool names(100, 100, /*caseSensitive=*/1, /*withPointers=*/0);
  for (const char* const name : {"hill", "lake", "hill"}) {
    std::printf("%d ", int(names.update(name)));
  }
  std::printf("%s %d\n", names.decode(1), int(names.lookup("bridge")));
}

void stdPools() {
  std::unordered_map<std::string, int> codes;
  std::vector<std::string> names;
  for (const char* const name : {"hill", "lake", "hill"}) {
    const auto [entry, added] = codes.try_emplace(name, int(names.size()));
    if (added) names.push_back(name);
    std::printf("%d ", entry->second);
  }
  const auto bridge = codes.find("bridge");
  std::printf("%s %d\n", names[1].c_str(), bridge == codes.end() ? -1 : bridge->second);
}

void nqMoves() {
  std::vector<NQDList> layers;
  for (int i = 0; i < 3; ++i) {
    NQDList layer;
    layer.appendObject(new NQLong(i));
    layers.push_back(std::move(layer));
  }
  for (NQDList& layer : layers) {
    print("layer", valuesOf(layer));
    layer.deleteAllCellsAndObjects();
  }
}

void stdMoves() {
  std::vector<std::list<int>> layers;
  for (int i = 0; i < 3; ++i) {
    std::list<int> layer;
    layer.push_back(i);
    layers.push_back(std::move(layer));
  }
  for (const std::list<int>& layer : layers) print("layer", layer);
}

}  // namespace

int main() {
  nqLists();
  stdLists();
  nqSorting();
  stdSorting();
  nqTrees();
  stdTrees();
  nqHeaps();
  stdHeaps();
  nqTables();
  stdTables();
  nqPools();
  stdPools();
  nqMoves();
  stdMoves();
}

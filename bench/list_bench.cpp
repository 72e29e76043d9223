// NQDList beside std::list<NQObject*>. Both are filled by appending. Only what
// a row is named after is timed; the rest of each round is preparation.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <list>
#include <random>
#include <utility>
#include <vector>

#include "nq/containers/dlist.h"

namespace {

using StdList = std::list<NQObject*>;

std::vector<NQObject> makeObjects(benchmark::State& state) {
  return std::vector<NQObject>(static_cast<std::size_t>(state.range(0)));
}

template <class Action>
void timed(benchmark::State& state, Action action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  state.SetIterationTime(seconds.count());
}

void countItems(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The two lists behind one set of names.
struct Nq {
  using List = NQDList;
  using Position = NQDListCell*;
  static Position append(List& list, NQObject* object) {
    return list.appendObject(object);
  }
  static void remove(List& list, Position cell) { list.discardCell(cell); }
  static void clear(List& list) { list.deleteAllCells(); }
  static void moveRuns(List& to, List& from, int runLength) {
    while (from.pFirstCell() != nullptr) {
      NQDListCell* const first = from.pFirstCell();
      NQDListCell* last = first;
      for (int i = 1; i < runLength && last != from.pLastCell(); ++i) {
        last = last->pNextCell();
      }
      to.transferListPart(to.pLastCell(), &from, first, last);
    }
  }
};

struct Std {
  using List = StdList;
  using Position = StdList::iterator;
  static Position append(List& list, NQObject* object) {
    list.push_back(object);
    return std::prev(list.end());
  }
  static void remove(List& list, Position cell) { list.erase(cell); }
  static void clear(List& list) { list.clear(); }
  static void moveRuns(List& to, List& from, int runLength) {
    while (!from.empty()) {
      const auto first = from.begin();
      auto last = first;
      for (int i = 0; i < runLength && last != from.end(); ++i) ++last;
      to.splice(to.end(), from, first, last);
    }
  }
};

template <class Kind>
std::vector<typename Kind::Position> fill(typename Kind::List& list,
                                          std::vector<NQObject>& objects) {
  std::vector<typename Kind::Position> positions;
  positions.reserve(objects.size());
  for (NQObject& object : objects) positions.push_back(Kind::append(list, &object));
  return positions;
}

template <class Kind>
void append(benchmark::State& state) {
  auto objects = makeObjects(state);
  for (auto _ : state) {
    typename Kind::List list;
    timed(state, [&] {
      for (NQObject& object : objects) Kind::append(list, &object);
    });
  }
  countItems(state);
}

template <class Kind>
void appendAfterRemovals(benchmark::State& state) {
  auto objects = makeObjects(state);
  std::mt19937 random(1);
  for (auto _ : state) {
    typename Kind::List list;
    auto positions = fill<Kind>(list, objects);
    std::shuffle(positions.begin(), positions.end(), random);
    positions.resize(positions.size() / 2);
    for (auto position : positions) Kind::remove(list, position);
    timed(state, [&] {
      for (std::size_t i = 0; i < positions.size(); ++i) {
        Kind::append(list, &objects[i]);
      }
    });
  }
  countItems(state);
}

template <class Kind>
void clear(benchmark::State& state) {
  auto objects = makeObjects(state);
  for (auto _ : state) {
    typename Kind::List list;
    fill<Kind>(list, objects);
    timed(state, [&] { Kind::clear(list); });
  }
  countItems(state);
}

template <class Kind>
void removeCells(benchmark::State& state) {
  auto objects = makeObjects(state);
  std::mt19937 random(1);
  for (auto _ : state) {
    typename Kind::List list;
    auto positions = fill<Kind>(list, objects);
    std::shuffle(positions.begin(), positions.end(), random);
    timed(state, [&] {
      for (auto position : positions) Kind::remove(list, position);
    });
  }
  countItems(state);
}

template <class Kind>
void splice16(benchmark::State& state) {
  auto objects = makeObjects(state);
  typename Kind::List lists[2];
  fill<Kind>(lists[0], objects);
  int from = 0;
  for (auto _ : state) {
    timed(state, [&] { Kind::moveRuns(lists[1 - from], lists[from], 16); });
    from = 1 - from;
  }
  countItems(state);
}

// Adds up the addresses of a list's objects.
std::uintptr_t walkCells(const NQDList& list) {
  std::uintptr_t sum = 0;
  for (NQDListCell* cell = list.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
    sum += reinterpret_cast<std::uintptr_t>(cell->pObject());
  }
  return sum;
}

std::uintptr_t iterate(const NQDList& list) {
  std::uintptr_t sum = 0;
  for (NQDListIter iter(&list, NQ_FORWARD); iter; ++iter) {
    sum += reinterpret_cast<std::uintptr_t>(iter.pObject());
  }
  return sum;
}

template <class List>
std::uintptr_t rangeFor(const List& list) {
  std::uintptr_t sum = 0;
  for (NQObject* const object : list) sum += reinterpret_cast<std::uintptr_t>(object);
  return sum;
}

template <class Kind, auto kWalk>
void walk(benchmark::State& state) {
  auto objects = makeObjects(state);
  typename Kind::List list;
  fill<Kind>(list, objects);
  for (auto _ : state) benchmark::DoNotOptimize(kWalk(list));
  countItems(state);
}

void sizes(benchmark::internal::Benchmark* row) {
  for (const int size : {1000, 100000, 1000000}) row->Arg(size);
}
void timedSizes(benchmark::internal::Benchmark* row) {
  sizes(row);
  row->UseManualTime();
}

BENCHMARK(append<Nq>)->Name("append/nq")->Apply(timedSizes);
BENCHMARK(append<Std>)->Name("append/std")->Apply(timedSizes);
BENCHMARK(appendAfterRemovals<Nq>)->Name("append_after_removals/nq")->Apply(timedSizes);
BENCHMARK(appendAfterRemovals<Std>)->Name("append_after_removals/std")->Apply(timedSizes);
BENCHMARK(clear<Nq>)->Name("clear/nq")->Apply(timedSizes);
BENCHMARK(clear<Std>)->Name("clear/std")->Apply(timedSizes);
BENCHMARK(removeCells<Nq>)->Name("remove_by_cell/nq")->Apply(timedSizes);
BENCHMARK(removeCells<Std>)->Name("remove_by_cell/std")->Apply(timedSizes);
BENCHMARK(splice16<Nq>)->Name("splice_16/nq")->Apply(timedSizes);
BENCHMARK(splice16<Std>)->Name("splice_16/std")->Apply(timedSizes);
BENCHMARK((walk<Nq, walkCells>))->Name("walk_cells/nq")->Apply(sizes);
BENCHMARK((walk<Std, rangeFor<StdList>>))->Name("walk_cells/std")->Apply(sizes);
BENCHMARK((walk<Nq, iterate>))->Name("iterate/nq")->Apply(sizes);
BENCHMARK((walk<Std, rangeFor<StdList>>))->Name("iterate/std")->Apply(sizes);
BENCHMARK((walk<Nq, rangeFor<NQDList>>))->Name("range_for/nq")->Apply(sizes);
BENCHMARK((walk<Std, rangeFor<StdList>>))->Name("range_for/std")->Apply(sizes);

}  // namespace

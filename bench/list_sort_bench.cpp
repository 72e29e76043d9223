// Sorting lists whose cells lie in random order in memory, through a virtual
// comparison, beside std::list::sort through the same comparison.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <list>
#include <memory>
#include <random>
#include <vector>

#include "nq/nq.h"

namespace {

enum class Input { kRandom, kFewKeys, kNearlySorted };

std::vector<int> keys(Input input, std::size_t count) {
  std::mt19937 random(1);
  std::vector<int> result(count);
  for (std::size_t i = 0; i < count; ++i) {
    result[i] = input == Input::kRandom    ? static_cast<int>(random() >> 1)
                : input == Input::kFewKeys ? static_cast<int>(random() % 16)
                                           : static_cast<int>(i);
  }
  if (input == Input::kNearlySorted) {
    for (std::size_t i = 0; i < count / 100; ++i) {
      std::swap(result[random() % count], result[random() % count]);
    }
  }
  return result;
}

// The objects, and the order in which their cells lie in memory.
struct Objects {
  std::vector<std::unique_ptr<NQInt>> inOrder;
  std::vector<std::size_t> inMemory;

  Objects(Input input, std::size_t count) : inOrder(count), inMemory(count) {
    const std::vector<int> values = keys(input, count);
    for (std::size_t i = 0; i < count; ++i) inMemory[i] = i;
    std::shuffle(inMemory.begin(), inMemory.end(), std::mt19937(2));
    for (const std::size_t i : inMemory) inOrder[i] = std::make_unique<NQInt>(values[i]);
  }
};

int compareValues(const NQObject* a, const NQObject* b) {
  const int first = NQInt::castDown(a)->value();
  const int second = NQInt::castDown(b)->value();
  return first < second ? -1 : first > second ? 1 : 0;
}

class Sorter : public NQDListSort {
 protected:
  int virtualCompare(NQDListCell* a, NQDListCell* b) override {
    return compareValues(a->pObject(), b->pObject());
  }
  void virtualDebugOutputElement(NQDListCell*) override {}
};

// What the peer compares through. There are two, lest the compiler find that only
// one can be meant, and put its body into the peer instead of calling it.
class Comparison {
 public:
  virtual ~Comparison() = default;
  virtual int compare(const NQObject* a, const NQObject* b) const = 0;
};
class Forward : public Comparison {
 public:
  int compare(const NQObject* a, const NQObject* b) const override {
    return compareValues(a, b);
  }
};
class Backward : public Comparison {
 public:
  int compare(const NQObject* a, const NQObject* b) const override {
    return compareValues(b, a);
  }
};

using Sort = int (*)(Sorter&, NQDList&);

void nqSort(benchmark::State& state, Input input, Sort sort) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const Objects objects(input, count);
  std::vector<NQDListCell*> cells(count);
  for (const std::size_t i : objects.inMemory) {
    cells[i] = new NQDListCell(objects.inOrder[i].get());
  }
  Sorter sorter;
  benchmark::DoNotOptimize(&sorter);
  for (auto _ : state) {
    state.PauseTiming();
    NQDList list;
    for (NQDListCell* const cell : cells) list.appendCell(cell);
    state.ResumeTiming();
    sort(sorter, list);
    state.PauseTiming();
    while (list.pFirstCell() != nullptr) list.removeCell(list.pFirstCell());
    state.ResumeTiming();
  }
  for (NQDListCell* const cell : cells) delete cell;
}

void stdSort(benchmark::State& state, Input input) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const Objects objects(input, count);
  std::list<NQObject*> list;
  std::vector<std::list<NQObject*>::iterator> nodes(count);
  for (const std::size_t i : objects.inMemory) {
    nodes[i] = list.insert(list.end(), objects.inOrder[i].get());
  }
  const Forward forward;
  const Backward backward;
  bool isForward = true;
  benchmark::DoNotOptimize(isForward);
  const Comparison* const comparison =
      isForward ? static_cast<const Comparison*>(&forward) : &backward;
  for (auto _ : state) {
    state.PauseTiming();
    for (const auto& node : nodes) list.splice(list.end(), list, node);
    state.ResumeTiming();
    list.sort([&](const NQObject* a, const NQObject* b) {
      return comparison->compare(a, b) < 0;
    });
  }
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
}

const struct {
  const char* name;
  Input input;
} kInputs[] = {{"random", Input::kRandom},
               {"few_keys", Input::kFewKeys},
               {"nearly_sorted", Input::kNearlySorted}};

const struct {
  const char* name;
  Sort sort;
} kSorts[] = {
    {"quick_sort",
     [](Sorter& sorter, NQDList& list) { return sorter.quickSort(&list, 0); }},
    {"merge_sort", [](Sorter& sorter, NQDList& list) { return sorter.mergeSort(&list); }},
};

const bool registered = [] {
  for (const auto& sort : kSorts) {
    for (const auto& input : kInputs) {
      const std::string what = std::string(sort.name) + "_" + input.name;
      sizes(benchmark::RegisterBenchmark((what + "/nq").c_str(), nqSort, input.input,
                                         sort.sort));
      sizes(benchmark::RegisterBenchmark((what + "/std").c_str(), stdSort, input.input));
    }
  }
  return true;
}();

}  // namespace

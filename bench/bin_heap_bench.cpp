// The heap beside heaps of Boost whose entries can be changed as well: a binary heap
// in an array of handles and a Fibonacci heap, both with the values in the entries.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/heap/d_ary_heap.hpp>
#include <boost/heap/fibonacci_heap.hpp>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nq/nq.h"

namespace {

struct Entry {
  NQObject* object;
  nqLong value;
};
struct Later {
  bool operator()(const Entry& a, const Entry& b) const { return a.value > b.value; }
};
using Binary =
    boost::heap::d_ary_heap<Entry, boost::heap::arity<2>, boost::heap::mutable_<true>,
                            boost::heap::compare<Later>>;
using Fibonacci = boost::heap::fibonacci_heap<Entry, boost::heap::compare<Later>>;

// The operations under one set of names.
class NqHeap {
 public:
  using Handle = NQBinHeapCell*;
  Handle push(NQObject* object, nqLong value) { return heap_.addObject(object, value); }
  void decrease(Handle handle, nqLong value) { heap_.changeValue(handle, value); }
  nqLong top() const { return heap_.pFirstCell()->value(); }
  void pop() { delete heap_.pExtractMinCell(); }

 private:
  NQBinHeap heap_;
};

template <class Heap>
class BoostHeap {
 public:
  using Handle = typename Heap::handle_type;
  Handle push(NQObject* object, nqLong value) { return heap_.push({object, value}); }
  void decrease(Handle handle, nqLong value) {
    heap_.increase(handle, {(*handle).object, value});
  }
  nqLong top() const { return heap_.top().value; }
  void pop() { heap_.pop(); }

 private:
  Heap heap_;
};

constexpr nqLong kLargest = 1 << 30;

// New ones each time: a processor learns how comparisons of the same few turn out.
std::vector<nqLong> someValues(std::size_t count, nqLong below) {
  static std::mt19937 random(1);
  std::vector<nqLong> values(count);
  for (nqLong& value : values) {
    value = static_cast<nqLong>(random() % static_cast<unsigned>(below));
  }
  return values;
}

template <class Heap>
std::vector<typename Heap::Handle> fill(Heap& heap, const std::vector<nqLong>& values) {
  std::vector<typename Heap::Handle> handles;
  handles.reserve(values.size());
  for (const nqLong value : values) handles.push_back(heap.push(nullptr, value));
  return handles;
}

template <class Heap>
void push(benchmark::State& state) {
  const auto values = someValues(static_cast<std::size_t>(state.range(0)), kLargest);
  for (auto _ : state) {
    auto heap = std::make_unique<Heap>();
    for (const nqLong value : values) heap->push(nullptr, value);
    state.PauseTiming();
    heap.reset();
    state.ResumeTiming();
  }
}

// Every entry once, in random order, to about half its value.
template <class Heap>
void decrease(benchmark::State& state) {
  std::vector<std::size_t> order(static_cast<std::size_t>(state.range(0)));
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::shuffle(order.begin(), order.end(), std::mt19937(2));
  for (auto _ : state) {
    state.PauseTiming();
    const auto values = someValues(order.size(), kLargest);
    auto heap = std::make_unique<Heap>();
    auto handles = fill(*heap, values);
    state.ResumeTiming();
    for (const std::size_t i : order) heap->decrease(handles[i], values[i] / 2);
    state.PauseTiming();
    heap.reset();
    state.ResumeTiming();
  }
}

template <class Heap>
void pop(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    auto heap = std::make_unique<Heap>();
    (void)fill(*heap, someValues(count, kLargest));
    state.ResumeTiming();
    for (std::size_t i = 0; i < count; ++i) heap->pop();
    state.PauseTiming();
    heap.reset();
    state.ResumeTiming();
  }
}

// An event queue of constant size: the first goes, one a little later comes.
template <class Heap>
void popAndPush(benchmark::State& state) {
  const auto values = someValues(static_cast<std::size_t>(state.range(0)), kLargest);
  const auto steps = someValues(1024, kLargest / 1024);
  Heap heap;
  (void)fill(heap, values);
  nqLong now = 0;
  for (auto _ : state) {
    for (const nqLong step : steps) {
      now = heap.top();
      heap.pop();
      heap.push(nullptr, now + step);
    }
    // The clock goes round before it runs over.
    if (now > kLargest + kLargest / 2) {
      state.PauseTiming();
      heap.~Heap();
      new (&heap) Heap;
      (void)fill(heap, values);
      state.ResumeTiming();
    }
  }
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
}

template <class Heap>
void registerAll(const std::string& name) {
  sizes(benchmark::RegisterBenchmark(("push/" + name).c_str(), push<Heap>));
  sizes(benchmark::RegisterBenchmark(("decrease/" + name).c_str(), decrease<Heap>));
  sizes(benchmark::RegisterBenchmark(("pop/" + name).c_str(), pop<Heap>));
  sizes(benchmark::RegisterBenchmark(("pop_and_push/" + name).c_str(), popAndPush<Heap>));
}

const bool registered = [] {
  registerAll<NqHeap>("nq");
  registerAll<BoostHeap<Binary>>("boost_binary");
  registerAll<BoostHeap<Fibonacci>>("boost_fibonacci");
  return true;
}();

}  // namespace

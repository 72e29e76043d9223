// index_hash_table_bench.cpp -- the table of object addresses beside the standard
// hash map and Abseil's flat one.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "nq/containers/index_hash_table.h"
#include "nq/containers/numbers.h"

#ifdef NQ_BENCH_ABSL
#include <absl/container/flat_hash_map.h>
#endif

namespace {

template <class Map>
class Peer {
 public:
  explicit Peer(std::size_t count) { map_.reserve(count); }
  void update(nqInt64 key, nqInt64 value) { map_.insert_or_assign(key, value); }
  nqInt64 lookup(nqInt64 key) const {
    const auto found = map_.find(key);
    return found == map_.end() ? 0 : found->second;
  }

 private:
  Map map_;
};

template <class Table>
Table make(std::size_t count) {
  return Table(count);
}
template <>
NQIndexHashTable make(std::size_t count) {
  const nqLong size = nextPrimeNumber(static_cast<nqLong>(count));
  return NQIndexHashTable(size == 0 ? prevPrimeNumber(2147483647) : size);
}

enum class Order { kAscending, kRandom };

// The addresses of objects of three sizes, as the heap hands them out.
std::vector<nqInt64> addresses(std::size_t count, Order order) {
  static constexpr nqInt64 kSizes[] = {48, 80, 112};
  std::mt19937_64 random(3);
  std::vector<nqInt64> keys;
  for (nqInt64 next = 0x55d0c3a412a0; keys.size() < count; next += kSizes[random() % 3]) {
    keys.push_back(next);
  }
  if (order == Order::kRandom) std::shuffle(keys.begin(), keys.end(), random);
  return keys;
}

template <class Table>
void fill(Table& table, const std::vector<nqInt64>& keys) {
  for (const nqInt64 key : keys) table.update(key, key ^ 1);
}

template <class Table>
nqInt64 sum(Table& table, const std::vector<nqInt64>& keys, nqInt64 offset) {
  nqInt64 values = 0;
  for (const nqInt64 key : keys) values += table.lookup(key + offset);
  return values;
}

template <class Table>
void insert(benchmark::State& state, Order order) {
  const auto keys = addresses(static_cast<std::size_t>(state.range(0)), order);
  for (auto _ : state) {
    auto table = make<Table>(keys.size());
    fill(table, keys);
    benchmark::DoNotOptimize(table);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Keys that are there already, in an order of its own.
template <class Table>
void overwrite(benchmark::State& state, Order order) {
  const auto count = static_cast<std::size_t>(state.range(0));
  auto table = make<Table>(count);
  fill(table, addresses(count, Order::kAscending));
  const auto keys = addresses(count, order);
  for (auto _ : state) fill(table, keys);
  benchmark::DoNotOptimize(sum(table, keys, 0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The whole life of a table of a write: entered in order, each asked for once.
template <class Table>
void updateThenLookup(benchmark::State& state, Order order) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto keys = addresses(count, Order::kAscending);
  const auto queries = addresses(count, order);
  for (auto _ : state) {
    auto table = make<Table>(count);
    fill(table, keys);
    benchmark::DoNotOptimize(sum(table, queries, 0));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Table>
void look(benchmark::State& state, Order order, nqInt64 offset) {
  const auto count = static_cast<std::size_t>(state.range(0));
  auto table = make<Table>(count);
  fill(table, addresses(count, Order::kAscending));
  const auto queries = addresses(count, order);
  for (auto _ : state) benchmark::DoNotOptimize(sum(table, queries, offset));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Table>
void registerFor(const std::string& name) {
  for (const Order order : {Order::kAscending, Order::kRandom}) {
    const std::string suffix =
        (order == Order::kAscending ? "_ascending/" : "_random/") + name;
    for (const int count : {1000, 100000, 1000000}) {
      const auto add = [&](const char* what, auto function, auto... arguments) {
        benchmark::RegisterBenchmark((what + suffix).c_str(), function, order,
                                     arguments...)
            ->Arg(count)
            ->Unit(benchmark::kMicrosecond);
      };
      add("insert", insert<Table>);
      add("overwrite", overwrite<Table>);
      add("hit", look<Table>, nqInt64{0});
      add("miss", look<Table>, nqInt64{16});
      add("life", updateThenLookup<Table>);
    }
  }
}

const bool kRegistered = [] {
  registerFor<NQIndexHashTable>("nq");
  registerFor<Peer<std::unordered_map<nqInt64, nqInt64>>>("std");
#ifdef NQ_BENCH_ABSL
  registerFor<Peer<absl::flat_hash_map<nqInt64, nqInt64>>>("absl");
#endif
  return true;
}();

}  // namespace

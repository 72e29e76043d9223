// string_pool_bench.cpp -- interning and looking up beside the standard hash map and
// Abseil's flat one.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nq/core/string_pool.h"

#ifdef NQ_BENCH_ABSL
#include <absl/container/flat_hash_map.h>
#include <absl/strings/string_view.h>
#endif

namespace {

constexpr std::size_t kLookups = 1000000;

// Distinct identifiers as object files have them, 5 to 30 characters long.
std::vector<std::string> identifiers(std::size_t count, const char* last) {
  static constexpr const char* kParts[] = {"node",  "Edge",   "label", "width", "Color",
                                           "graph", "Source", "port",  "bend",  "Layer",
                                           "x",     "Style",  "_",     "id",    "Target"};
  std::mt19937 random(7);
  std::vector<std::string> names;
  for (std::size_t number = 0; number < count; ++number) {
    std::string name;
    for (auto parts = random() % 4 + 1; parts > 0; --parts) {
      name += kParts[random() % std::size(kParts)];
    }
    names.push_back(name + std::to_string(number) + last);
  }
  std::shuffle(names.begin(), names.end(), random);
  return names;
}

// The same texts over and over, the k-th of them in proportion to 1 / k, each
// read from a buffer of its own as a reader does.
struct Lookups {
  std::string text;
  std::vector<std::string_view> views;

  explicit Lookups(const std::vector<std::string>& names) {
    std::vector<double> sums;
    double sum = 0;
    for (std::size_t rank = 1; rank <= names.size(); ++rank) {
      sums.push_back(sum += 1.0 / static_cast<double>(rank));
    }
    std::mt19937 random(11);
    std::uniform_real_distribution<double> upTo(0, sum);
    std::vector<std::size_t> lengths;
    for (std::size_t number = 0; number < kLookups; ++number) {
      const auto rank = std::lower_bound(sums.begin(), sums.end(), upTo(random));
      const std::string& name = names[static_cast<std::size_t>(rank - sums.begin())];
      text += name;
      lengths.push_back(name.size());
    }
    std::size_t at = 0;
    for (const std::size_t length : lengths) {
      views.emplace_back(text.data() + at, length);
      at += length;
    }
  }
};

struct Hash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>()(text);
  }
};
using StdMap = std::unordered_map<std::string, nqLong, Hash, std::equal_to<>>;

// The map, used as a program would that interns names, with case or without. It is
// searched by View; Key is what it wants for an insertion.
template <class Map, class View, class Key>
class Peer {
 public:
  Peer(std::size_t size, bool caseSensitive) : caseSensitive_(caseSensitive) {
    map_.reserve(size);
  }
  nqLong update(std::string_view text) {
    char buffer[256];
    const auto code = static_cast<nqLong>(map_.size());
    return map_.try_emplace(Key(key(text, buffer)), code).first->second;
  }
  nqLong lookup(std::string_view text) const {
    char buffer[256];
    const auto found = map_.find(key(text, buffer));
    return found == map_.end() ? -1 : found->second;
  }

 private:
  View key(std::string_view text, char* buffer) const {
    if (caseSensitive_) return View(text.data(), text.size());
    std::transform(text.begin(), text.end(), buffer, [](char c) {
      return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    });
    return View(buffer, text.size());
  }

  Map map_;
  bool caseSensitive_;
};

template <class Table>
Table make(std::size_t size, bool caseSensitive) {
  return {size, caseSensitive};
}
template <>
NQStringPool make(std::size_t size, bool caseSensitive) {
  return {static_cast<nqLong>(size), static_cast<nqLong>(size), caseSensitive, 0};
}

template <class Table>
void fill(Table& table, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    benchmark::DoNotOptimize(table.update(std::string_view(name)));
  }
}

template <class Table>
void intern(benchmark::State& state, bool caseSensitive) {
  const auto names = identifiers(static_cast<std::size_t>(state.range(0)), "");
  for (auto _ : state) {
    auto table = make<Table>(names.size(), caseSensitive);
    fill(table, names);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Table>
void look(benchmark::State& state, bool caseSensitive, const char* last) {
  const auto count = static_cast<std::size_t>(state.range(0));
  auto table = make<Table>(count, caseSensitive);
  fill(table, identifiers(count, ""));
  const Lookups lookups(identifiers(count, last));
  for (auto _ : state) {
    nqLong sum = 0;
    for (const std::string_view view : lookups.views) sum += table.lookup(view) & 1;
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int>(kLookups));
}

// One million texts in a pool made for a thousand, and texts that all share the
// polynomial hash with factor 29, beside ordinary ones in a pool made for them.
void fillPool(benchmark::State& state, const std::vector<std::string>& names,
              nqLong size) {
  for (auto _ : state) {
    NQStringPool pool(size, size, 0, 0);
    fill(pool, names);
    for (const std::string& name : names) {
      benchmark::DoNotOptimize(pool.lookup(std::string_view(name)));
    }
  }
}

std::vector<std::string> blocks(const char* const (&choices)[2]) {
  std::vector<std::string> names;
  for (unsigned bits = 0; bits < 1U << 17; ++bits) {
    std::string name;
    for (unsigned block = 0; block < 17; ++block) name += choices[bits >> block & 1];
    names.push_back(name);
  }
  return names;
}

void overfull(benchmark::State& state, nqLong size) {
  fillPool(state, identifiers(1000000, ""), size);
}

void hostile(benchmark::State& state, const char* second) {
  const char* const choices[] = {"A_", second};
  fillPool(state, blocks(choices), 1 << 17);
}

template <class Table>
void registerFor(const std::string& name) {
  for (const bool caseSensitive : {true, false}) {
    const std::string suffix = (caseSensitive ? "/" : "_nocase/") + name;
    for (const int size : {1000, 50000, 500000, 1000000}) {
      benchmark::RegisterBenchmark(("intern" + suffix).c_str(), intern<Table>,
                                   caseSensitive)
          ->Arg(size)
          ->Unit(benchmark::kMicrosecond);
      benchmark::RegisterBenchmark(("hit" + suffix).c_str(), look<Table>, caseSensitive,
                                   "")
          ->Arg(size)
          ->Unit(benchmark::kMicrosecond);
      benchmark::RegisterBenchmark(("miss" + suffix).c_str(), look<Table>, caseSensitive,
                                   "q")
          ->Arg(size)
          ->Unit(benchmark::kMicrosecond);
    }
  }
}

const bool kRegistered = [] {
  registerFor<NQStringPool>("nq");
  registerFor<Peer<StdMap, std::string_view, std::string>>("std");
#ifdef NQ_BENCH_ABSL
  using AbslMap = absl::flat_hash_map<std::string, nqLong>;
  registerFor<Peer<AbslMap, absl::string_view, absl::string_view>>("absl");
#endif
  benchmark::RegisterBenchmark("overfull/made_for_1000", overfull, 1000);
  benchmark::RegisterBenchmark("overfull/made_for_1000000", overfull, 1000000);
  benchmark::RegisterBenchmark("hostile/one_hash", hostile, "BB");
  benchmark::RegisterBenchmark("hostile/ordinary", hostile, "c7");
  return true;
}();

}  // namespace

// resources_bench.cpp -- interning colours and shapes beside a standard hash map.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "nq/resources/color_resource.h"

namespace {

// Colours as a diagram has them: so many objects, of so many different colours.
std::vector<NQColor> colors(std::size_t count, std::size_t distinct) {
  std::mt19937 random(5);
  std::vector<NQColor> palette(distinct);
  for (NQColor& color : palette) {
    color.ired(static_cast<int>(random()));
    color.igreen(static_cast<int>(random()));
    color.iblue(static_cast<int>(random()));
  }
  std::vector<NQColor> all;
  for (std::size_t n = 0; n < count; ++n) all.push_back(palette[random() % distinct]);
  return all;
}

class Database {
 public:
  const void* insert(const NQColor& color) { return colors_.insert(color); }
  void remove(const void* held) {
    delete colors_.remove(static_cast<const NQResource*>(held));
  }

 protected:
  NQColorResourceDB colors_;
};

// With a resource made for each insertion, as kinds of resources have it that offer
// nothing else.
class DatabaseOfResources : public Database {
 public:
  const void* insert(const NQColor& color) {
    return colors_.insert(new NQColorResource(&colors_, &color));
  }
};

// The map, used as a program would that shares counted values.
class Peer {
 public:
  struct Shared {
    std::uint32_t key;
    int count;
    NQColor color;
  };

  const void* insert(const NQColor& color) {
    const std::uint32_t key = keyOf(color);
    std::unique_ptr<Shared>& shared = colors_[key];
    if (shared == nullptr) shared.reset(new Shared{key, 0, color});
    ++shared->count;
    return shared.get();
  }
  void remove(const void* held) {
    const auto found = colors_.find(static_cast<const Shared*>(held)->key);
    if (--found->second->count == 0) colors_.erase(found);
  }

 private:
  static std::uint32_t keyOf(const NQColor& color) {
    return static_cast<std::uint32_t>(color.ired()) << 24 |
           static_cast<std::uint32_t>(color.igreen()) << 16 |
           static_cast<std::uint32_t>(color.iblue()) << 8 |
           static_cast<std::uint32_t>(color.transparent());
  }

  std::unordered_map<std::uint32_t, std::unique_ptr<Shared>> colors_;
};

template <class Table>
void insert(benchmark::State& state) {
  const auto values = colors(static_cast<std::size_t>(state.range(0)),
                             static_cast<std::size_t>(state.range(1)));
  for (auto _ : state) {
    Table table;
    for (const NQColor& color : values) benchmark::DoNotOptimize(table.insert(color));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Each object takes its colour and gives it back.
template <class Table>
void insertThenRemove(benchmark::State& state) {
  const auto values = colors(static_cast<std::size_t>(state.range(0)),
                             static_cast<std::size_t>(state.range(1)));
  std::vector<const void*> held(values.size());
  for (auto _ : state) {
    Table table;
    for (std::size_t n = 0; n < values.size(); ++n) held[n] = table.insert(values[n]);
    for (const void* one : held) table.remove(one);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Table>
void registerFor(const std::string& how, const std::string& name) {
  for (const auto& [count, distinct] :
       {std::pair(1000, 100), {100000, 1000}, {1000000, 1000}, {1000000, 1000000}}) {
    benchmark::RegisterBenchmark(("insert" + how + "/" + name).c_str(), insert<Table>)
        ->Args({count, distinct})
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(("insert_remove" + how + "/" + name).c_str(),
                                 insertThenRemove<Table>)
        ->Args({count, distinct})
        ->Unit(benchmark::kMicrosecond);
  }
}

const bool kRegistered = [] {
  registerFor<Database>("", "nq");
  registerFor<Peer>("", "std");
  registerFor<DatabaseOfResources>("_resource", "nq");
  registerFor<Peer>("_resource", "std");
  return true;
}();

}  // namespace

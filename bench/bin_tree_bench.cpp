// The sorted tree beside std::multiset, both through the same virtual comparison.
// "established" keeps the colours that accumulate, "exclusive" has a bounded depth.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "nq/nq.h"

namespace {

int compareValues(const NQObject* a, const NQObject* b) {
  const int first = NQInt::castDown(a)->value();
  const int second = NQInt::castDown(b)->value();
  return first < second ? -1 : first > second ? 1 : 0;
}

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

struct Less {
  const Comparison* comparison;
  bool operator()(const NQObject* a, const NQObject* b) const {
    return comparison->compare(a, b) < 0;
  }
};

template <int kExclusive>
class NqTree : public NQSortedBinTree {
 public:
  explicit NqTree(const Comparison*) { exclusiveColors(kExclusive); }

  void insert(NQObject* object) { addObject(object); }
  bool contains(NQObject* object) const { return searchObject(object) != nullptr; }
  void remove(NQObject* object) { delete searchAndRemoveObject(object); }

 protected:
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    return compareValues(a, b);
  }
};

class StdTree {
 public:
  explicit StdTree(const Comparison* comparison) : set_(Less{comparison}) {}

  void insert(NQObject* object) { set_.insert(object); }
  bool contains(NQObject* object) const { return find(object) != set_.end(); }
  void remove(NQObject* object) { set_.erase(find(object)); }
  auto begin() const { return set_.begin(); }
  auto end() const { return set_.end(); }

 private:
  using Set = std::multiset<NQObject*, Less>;
  Set::const_iterator find(NQObject* object) const {
    auto found = set_.lower_bound(object);
    while (found != set_.end() && *found != object) {
      if (compareValues(object, *found) != 0) return set_.end();
      ++found;
    }
    return found;
  }

  Set set_;
};

enum class Keys { kRandom, kAscending };

// The objects in the order of insertion, and shuffled. Keys and orders are new for
// each turn: a processor learns how comparisons of the same few turn out.
class Objects {
 public:
  Objects(Keys keys, std::size_t count) : keys_(keys), owned_(count) {
    for (NQInt& object : owned_) inserted_.push_back(&object);
    shuffled_ = inserted_;
    renewKeys();
    shuffle();
  }

  const std::vector<NQObject*>& inserted() const { return inserted_; }
  const std::vector<NQObject*>& shuffled() const { return shuffled_; }

  void renewKeys() {
    int ascending = 0;
    for (NQInt& object : owned_) {
      object.value(keys_ == Keys::kRandom ? static_cast<int>(random_() >> 1)
                                          : ascending++);
    }
  }
  void shuffle() { std::shuffle(shuffled_.begin(), shuffled_.end(), random_); }

 private:
  Keys keys_;
  std::mt19937 random_{1};
  std::vector<NQInt> owned_;
  std::vector<NQObject*> inserted_;
  std::vector<NQObject*> shuffled_;
};

const Comparison* comparison() {
  static const Forward forward;
  static const Backward backward;
  bool isForward = true;
  benchmark::DoNotOptimize(isForward);
  return isForward ? static_cast<const Comparison*>(&forward) : &backward;
}

template <class Tree>
std::unique_ptr<Tree> treeOf(const Objects& objects) {
  auto tree = std::make_unique<Tree>(comparison());
  for (NQObject* const object : objects.inserted()) tree->insert(object);
  return tree;
}

template <class Tree>
void insert(benchmark::State& state, Keys keys) {
  Objects objects(keys, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    auto tree = treeOf<Tree>(objects);
    state.PauseTiming();
    tree.reset();
    objects.renewKeys();
    state.ResumeTiming();
  }
}

template <class Tree>
void search(benchmark::State& state, Keys keys) {
  Objects objects(keys, static_cast<std::size_t>(state.range(0)));
  const auto tree = treeOf<Tree>(objects);
  for (auto _ : state) {
    for (NQObject* const object : objects.shuffled()) {
      benchmark::DoNotOptimize(tree->contains(object));
    }
    state.PauseTiming();
    objects.shuffle();
    state.ResumeTiming();
  }
}

template <class Tree>
void searchAndRemove(benchmark::State& state, Keys keys) {
  Objects objects(keys, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    objects.renewKeys();
    objects.shuffle();
    auto tree = treeOf<Tree>(objects);
    state.ResumeTiming();
    for (NQObject* const object : objects.shuffled()) tree->remove(object);
  }
}

template <class Tree>
void iterate(benchmark::State& state, Keys keys) {
  const Objects objects(keys, static_cast<std::size_t>(state.range(0)));
  const auto tree = treeOf<Tree>(objects);
  for (auto _ : state) {
    for (NQObject* const object : *tree) benchmark::DoNotOptimize(object);
  }
}

template <class Tree>
void registerAll(const std::string& name, Keys keys, bool removing = true) {
  using Bench = void (*)(benchmark::State&, Keys);
  const struct {
    const char* operation;
    Bench bench;
  } kAll[] = {{"insert", insert<Tree>},
              {"search", search<Tree>},
              {"iterate", iterate<Tree>},
              {"search_and_remove", searchAndRemove<Tree>}};
  for (const auto& [operation, bench] : kAll) {
    const std::string keyName = keys == Keys::kRandom ? "_random/" : "_ascending/";
    for (const int size : {1000, 100000, 1000000}) {
      if (bench == searchAndRemove<Tree> && !removing && size > 1000) continue;
      benchmark::RegisterBenchmark((operation + keyName + name).c_str(), bench, keys)
          ->Arg(size)
          ->Unit(benchmark::kMicrosecond);
    }
  }
}

const bool registered = [] {
  // Removals bring a tree of established colours to a depth of its length.
  registerAll<NqTree<0>>("nq_established", Keys::kRandom, false);
  registerAll<NqTree<1>>("nq_exclusive", Keys::kRandom);
  registerAll<StdTree>("std", Keys::kRandom);
  registerAll<NqTree<1>>("nq_exclusive", Keys::kAscending);
  registerAll<StdTree>("std", Keys::kAscending);
  return true;
}();

}  // namespace

// All overlapping pairs of rectangles, found by a sweep: NQSweep beside the same
// sweep written with std::sort and std::multiset.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <set>
#include <vector>

#include "nq/nq.h"

namespace {

// Rectangles over a square, of which each overlaps about as many others whatever
// their number. Their sides are at most kSide long.
constexpr nqLong kSide = 1000;

std::vector<std::unique_ptr<NQRect>> rectangles(std::size_t count) {
  std::mt19937 random(3);
  const auto below = [&](nqLong bound) {
    return static_cast<nqLong>(random() % static_cast<unsigned>(bound));
  };
  const auto extent =
      static_cast<nqLong>(kSide / 1.5 * std::sqrt(static_cast<double>(count)));
  std::vector<std::unique_ptr<NQRect>> result(count);
  for (auto& rect : result) {
    const nqLong x = below(extent);
    const nqLong y = below(extent);
    rect = std::make_unique<NQRect>(x, y, x + 1 + below(kSide), y + 1 + below(kSide));
  }
  return result;
}

class Overlaps : public NQSweep {
 public:
  explicit Overlaps(const NQDList* rectangles)
      : NQSweep(rectangles, NQ_SWEEP_HORIZONTAL) {}

  nqInt64 pairs = 0;

 protected:
  static const NQRect& rect(const NQObject* object) {
    return *static_cast<const NQRect*>(object);
  }
  int virtualStartValue(NQObject* segment) override { return rect(segment).left(); }
  int virtualEndValue(NQObject* segment) override { return rect(segment).right(); }
  int virtualSweepLineValue(NQObject* segment) override { return rect(segment).bottom(); }
  void virtualSegmentInserted(NQObject* segment) override {
    const NQRect& own = rect(segment);
    const NQBinTreeCell* cell = pInsertedCell();
    while ((cell = cell->pNextCell()) != nullptr &&
           rect(cell->pObject()).bottom() <= own.top()) {
      ++pairs;
    }
    cell = pInsertedCell();
    while ((cell = cell->pPreviousCell()) != nullptr &&
           rect(cell->pObject()).bottom() >= own.bottom() - kSide) {
      if (rect(cell->pObject()).top() >= own.bottom()) ++pairs;
    }
  }
};

void nqSweep(benchmark::State& state) {
  const auto rects = rectangles(static_cast<std::size_t>(state.range(0)));
  NQDList list;
  for (const auto& rect : rects) list.appendObject(rect.get());
  nqInt64 pairs = 0;
  for (auto _ : state) {
    Overlaps overlaps(&list);
    overlaps.run();
    pairs = overlaps.pairs;
  }
  state.counters["pairs"] = static_cast<double>(pairs);
}

void stdSweep(benchmark::State& state) {
  const auto rects = rectangles(static_cast<std::size_t>(state.range(0)));
  struct Lower {
    bool operator()(const NQRect* a, const NQRect* b) const {
      return a->bottom() < b->bottom();
    }
  };
  using Line = std::multiset<const NQRect*, Lower>;
  nqInt64 pairs = 0;
  for (auto _ : state) {
    struct Event {
      const NQRect* rect;
      std::size_t index;
    };
    std::vector<Event> starts;
    starts.reserve(rects.size());
    for (const auto& rect : rects) starts.push_back({rect.get(), starts.size()});
    std::vector<Event> ends = starts;
    std::sort(starts.begin(), starts.end(), [](const Event& a, const Event& b) {
      return a.rect->left() < b.rect->left();
    });
    std::sort(ends.begin(), ends.end(), [](const Event& a, const Event& b) {
      return a.rect->right() < b.rect->right();
    });
    pairs = 0;
    Line line;
    std::vector<Line::iterator> places(rects.size());
    auto end = ends.begin();
    for (const Event& start : starts) {
      for (; end->rect->right() < start.rect->left(); ++end) {
        line.erase(places[end->index]);
      }
      const NQRect& own = *start.rect;
      const auto place = line.insert(&own);
      places[start.index] = place;
      for (auto other = std::next(place);
           other != line.end() && (*other)->bottom() <= own.top(); ++other) {
        ++pairs;
      }
      for (auto other = place; other != line.begin();) {
        --other;
        if ((*other)->bottom() < own.bottom() - kSide) break;
        if ((*other)->top() >= own.bottom()) ++pairs;
      }
    }
  }
  state.counters["pairs"] = static_cast<double>(pairs);
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(nqSweep)->Name("overlapping_pairs/nq")->Apply(sizes);
BENCHMARK(stdSweep)->Name("overlapping_pairs/std")->Apply(sizes);

}  // namespace

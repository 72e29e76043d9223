#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <span>

#include "hierarchy.h"

namespace {

Vertex* vertexIn(const NQDListCell* cell) {
  return static_cast<Vertex*>(cell->pObject());
}

class ByKey : public NQDListSort {
 protected:
  int virtualCompare(NQDListCell* a, NQDListCell* b) override {
    const double x = vertexIn(a)->key;
    const double y = vertexIn(b)->key;
    return (x > y) - (x < y);
  }
  void virtualDebugOutputElement(NQDListCell*) override {}
};

// Crossings as the layers are ordered now, and what to do about them.
class Ordering {
 public:
  // `comparisons`: how many it may make in sifting.
  Ordering(Hierarchy& h, long long comparisons)
      : h_(h), adjacency_(h.arcs, h.vertices.size()), comparisons_(comparisons) {}

  long long crossings() {
    long long sum = 0;
    for (std::size_t i = 1; i < h_.layers.size(); ++i)
      sum += crossingsAfter(h_.layers[i - 1]);
    return sum;
  }

  // Sorts each layer by where in the one before, or after, each vertex has its
  // neighbours on average; equal ones stay in their order.
  void sweep(Side side) {
    const auto sortLayer = [&](NQDList& layer) {
      for (Vertex* v : Range<Vertex>(layer)) {
        const auto& near = neighbours(*v, side);
        v->key = near.empty() ? v->position
                              : std::accumulate(near.begin(), near.end(), 0.0) /
                                    static_cast<double>(near.size());
      }
      sort(layer);
    };
    if (side == Side::kBefore) {
      std::for_each(h_.layers.begin(), h_.layers.end(), sortLayer);
    } else {
      std::for_each(h_.layers.rbegin(), h_.layers.rend(), sortLayer);
    }
  }

  // Moves vertices to where in their layers, not too far away, their edges cross the
  // fewest others, as long as that helps and comparisons are left. (C. Matuszewski, R.
  // Schönfeld, P. Molitor, "Using sifting for k-layer straightline crossing
  // minimization".)
  void sift() {
    for (bool moved = true; moved && maySift();) {
      moved = false;
      for (NQDList& layer : h_.layers) moved |= sift(layer);
    }
  }
  bool maySift() const { return comparisons_ > 0; }

  // Begins anew, from any order. (The engine's numbers are the same everywhere.)
  void shuffle() {
    for (NQDList& layer : h_.layers) {
      for (Vertex* v : Range<Vertex>(layer)) v->key = static_cast<double>(random_());
      sort(layer);
    }
    for (const Side side : {Side::kBefore, Side::kAfter, Side::kBefore, Side::kAfter}) {
      sweep(side);
    }
  }

  std::vector<nqLong> positions() const {
    std::vector<nqLong> all;
    all.reserve(h_.vertices.size());
    for (const Vertex& v : h_.vertices) all.push_back(v.position);
    return all;
  }
  void restore(const std::vector<nqLong>& positions) {
    for (Vertex& v : h_.vertices) {
      v.key = positions[static_cast<std::size_t>(v.number)];
    }
    for (NQDList& layer : h_.layers) sort(layer);
  }

 private:
  // By the keys of vertices.
  void sort(NQDList& layer) {
    sort_.mergeSort(&layer);
    nqLong position = 0;
    for (Vertex* v : Range<Vertex>(layer)) v->position = position++;
  }

  // The positions of the neighbours in the layer before or after, in order.
  const std::vector<nqLong>& neighbours(const Vertex& v, Side side) {
    near_.clear();
    if (side == Side::kBefore) {
      for (const std::size_t a : adjacency_.in(v))
        near_.push_back(h_.arcs[a].from->position);
    } else {
      for (const std::size_t a : adjacency_.out(v))
        near_.push_back(h_.arcs[a].to->position);
    }
    std::sort(near_.begin(), near_.end());
    return near_;
  }

  // A vertex with the positions of its neighbours, in order.
  struct Seat {
    Vertex* vertex;
    std::span<const nqLong> before;
    std::span<const nqLong> after;
  };

  // The seats of a layer; they hold as long as the layers beside it do not change.
  void takeSeats(const NQDList& layer) {
    seats_.clear();
    ends_.clear();
    for (Vertex* v : Range<Vertex>(layer)) {
      for (const Side side : {Side::kBefore, Side::kAfter}) {
        const std::vector<nqLong>& near = neighbours(*v, side);
        ends_.insert(ends_.end(), near.begin(), near.end());
      }
    }
    const nqLong* end = ends_.data();
    for (Vertex* v : Range<Vertex>(layer)) {
      const std::size_t before = adjacency_.in(*v).size();
      const std::size_t after = adjacency_.out(*v).size();
      seats_.push_back({v, {end, before}, {end + before, after}});
      end += before + after;
    }
  }

  // Whether any vertex moved.
  bool sift(NQDList& layer) {
    constexpr nqLong kReach = 200;
    takeSeats(layer);
    bool moved = false;
    for (const Vertex* v : Range<Vertex>(layer)) {
      if (!maySift()) break;
      const auto seat = seats_.begin() + v->position;
      const auto low = seats_.begin() + std::max(v->position - kReach, nqLong{0});
      const auto high =
          seats_.end() - std::max(layer.length() - v->position - kReach, nqLong{1});
      auto best = seat;
      long long most = 0;
      long long saved = 0;
      for (auto other = seat; other != low;) {
        saved += gain(*--other, *seat);
        if (saved > most) {
          most = saved;
          best = other;
        }
      }
      saved = 0;
      for (auto other = seat; other != high;) {
        saved += gain(*seat, *++other);
        if (saved > most) {
          most = saved;
          best = other;
        }
      }
      comparisons_ -= high - low;
      if (best == seat) continue;
      moved = true;
      if (best < seat) {
        std::rotate(best, seat, seat + 1);
      } else {
        std::rotate(seat, seat + 1, best + 1);
      }
      for (auto any = std::min(seat, best); any <= std::max(seat, best); ++any)
        any->vertex->position = static_cast<nqLong>(any - seats_.begin());
    }
    NQDListCell* cell = layer.pFirstCell();
    for (const Seat& seat : seats_) {
      cell->pObject(seat.vertex);
      cell = cell->pNextCell();
    }
    return moved;
  }

  // How many crossings of edges between ordered ends it saves to exchange them.
  static long long gain(std::span<const nqLong> left, std::span<const nqLong> right) {
    long long saved = 0;
    std::size_t below = 0;     // how many on the right are less
    std::size_t notAbove = 0;  // or equal
    for (const nqLong x : left) {
      while (below < right.size() && right[below] < x) ++below;
      while (notAbove < right.size() && right[notAbove] <= x) ++notAbove;
      saved +=
          static_cast<long long>(below + notAbove) - static_cast<long long>(right.size());
    }
    return saved;
  }
  static long long gain(const Seat& left, const Seat& right) {
    return gain(left.before, right.before) + gain(left.after, right.after);
  }

  // (W. Barth, M. Jünger, P. Mutzel, "Simple and efficient bilayer cross counting":
  // a tree over the positions of the next layer counts what was met before.)
  long long crossingsAfter(const NQDList& layer) {
    const auto width = static_cast<std::size_t>(
        h_.layers[static_cast<std::size_t>(vertexIn(layer.pFirstCell())->layer) + 1]
            .length());
    std::size_t first = 1;
    while (first < width) first *= 2;
    --first;
    tree_.assign(2 * first + 1, 0);
    long long count = 0;
    for (const Vertex* v : Range<Vertex>(layer)) {
      for (const nqLong position : neighbours(*v, Side::kAfter)) {
        std::size_t node = static_cast<std::size_t>(position) + first;
        ++tree_[node];
        while (node > 0) {
          if (node % 2 == 1) count += tree_[node + 1];
          node = (node - 1) / 2;
          ++tree_[node];
        }
      }
    }
    return count;
  }

  Hierarchy& h_;
  Adjacency adjacency_;
  long long comparisons_;
  ByKey sort_;
  std::minstd_rand random_;
  std::vector<nqLong> near_;
  std::vector<Seat> seats_;
  std::vector<nqLong> ends_;  // where the spans of seats are
  std::vector<nqLong> tree_;
};

}  // namespace

// Sweeps down and up again through the layers, as long as that helps. Then vertices are
// sifted: in small graphs after each sweep, and again and again from other orders, in
// large ones once. What is done is counted, not timed, so that a graph looks the same
// on every machine.
long long reduceCrossings(Hierarchy& h) {
  constexpr std::size_t kFew = 20'000;          // pieces of edges
  constexpr long long kMostVisits = 5'000'000;  // to vertices, in sorting
  const bool small = h.arcs.size() <= kFew;
  const int patience = small ? 1 : 5;  // for sweeps that do not help
  Ordering ordering(h, small ? 5'000'000 : 1'000'000'000);
  long long visits = kMostVisits;

  long long best = ordering.crossings();
  std::vector<nqLong> bestPositions = ordering.positions();
  while (best > 0) {
    long long bestHere = std::numeric_limits<long long>::max();
    int failures = 0;
    for (Side side = Side::kBefore; failures < patience && visits > 0;
         side = side == Side::kBefore ? Side::kAfter : Side::kBefore) {
      ordering.sweep(side);
      if (small) ordering.sift();
      visits -= static_cast<long long>(h.vertices.size());
      const long long crossings = ordering.crossings();
      failures = crossings < bestHere ? 0 : failures + 1;
      bestHere = std::min(bestHere, crossings);
      if (crossings >= best) continue;
      best = crossings;
      bestPositions = ordering.positions();
    }
    if (!small || visits <= 0 || !ordering.maySift()) break;
    ordering.shuffle();
  }
  ordering.restore(bestPositions);
  if (!small) ordering.sift();
  return ordering.crossings();
}

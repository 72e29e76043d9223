#include <algorithm>
#include <numeric>

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

void renumber(const NQDList& layer) {
  nqLong position = 0;
  for (Vertex* v : Range<Vertex>(layer)) v->position = position++;
}

enum class Side { kBefore, kAfter };

// Crossings as the layers are ordered now, and what to do about them.
class Ordering {
 public:
  explicit Ordering(Hierarchy& h) : h_(h), adjacency_(h.arcs, h.vertices.size()) {}

  long long crossings() {
    long long sum = 0;
    for (std::size_t i = 1; i < h_.layers.size(); ++i)
      sum += crossingsAfter(h_.layers[i - 1]);
    return sum;
  }

  // Puts each vertex of a layer where its neighbours in the next one are on
  // average; equal ones stay in their order.
  void sortBy(NQDList& layer, Side side) {
    for (Vertex* v : Range<Vertex>(layer)) {
      const auto& near = neighbours(*v, side);
      v->key = near.empty() ? v->position
                            : std::accumulate(near.begin(), near.end(), 0.0) /
                                  static_cast<double>(near.size());
    }
    sort_.mergeSort(&layer);
    renumber(layer);
  }

  // Exchanges neighbours as long as that saves crossings. Whether any did.
  bool exchange(NQDList& layer) {
    bool any = false;
    for (bool improved = true; improved;) {
      improved = false;
      NQDListCell* cell = layer.pFirstCell();
      while (cell != nullptr && cell->pNextCell() != nullptr) {
        NQDListCell* const next = cell->pNextCell();
        Vertex& left = *vertexIn(cell);
        Vertex& right = *vertexIn(next);
        if (gain(left, right) > 0) {
          cell->pObject(&right);
          next->pObject(&left);
          std::swap(left.position, right.position);
          improved = any = true;
        }
        cell = next;
      }
    }
    return any;
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
    for (NQDList& layer : h_.layers) {
      sort_.mergeSort(&layer);
      renumber(layer);
    }
  }

 private:
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

  // Pairs with the greater one first, among two ordered rows.
  static long long inversions(const std::vector<nqLong>& a,
                              const std::vector<nqLong>& b) {
    long long count = 0;
    std::size_t below = 0;
    for (const nqLong x : a) {
      while (below < b.size() && b[below] < x) ++below;
      count += static_cast<long long>(below);
    }
    return count;
  }

  // How many crossings it saves to exchange two neighbours.
  long long gain(const Vertex& left, const Vertex& right) {
    long long saved = 0;
    for (const Side side : {Side::kBefore, Side::kAfter}) {
      const std::vector<nqLong> a = neighbours(left, side);
      const std::vector<nqLong>& b = neighbours(right, side);
      saved += inversions(a, b) - inversions(b, a);
    }
    return saved;
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
  ByKey sort_;
  std::vector<nqLong> near_;
  std::vector<nqLong> tree_;
};

}  // namespace

// Down and up again through the layers, as long as that helps, and within reason:
// a graph of a million vertices is swept through a few times only.
long long reduceCrossings(Hierarchy& h) {
  Ordering ordering(h);
  constexpr std::size_t kVisits = 10'000'000;
  constexpr std::size_t kFew = 20'000;  // pieces, for which every exchange is tried
  const auto sweeps =
      static_cast<int>(std::clamp<std::size_t>(kVisits / (h.vertices.size() + 1), 2, 40));
  constexpr int kPatience = 6;

  long long best = ordering.crossings();
  std::vector<nqLong> bestPositions = ordering.positions();
  int failures = 0;
  for (int sweep = 0; sweep < sweeps && failures < kPatience && best > 0; ++sweep) {
    if (sweep % 2 == 0) {
      for (NQDList& layer : h.layers) ordering.sortBy(layer, Side::kBefore);
    } else {
      for (auto layer = h.layers.rbegin(); layer != h.layers.rend(); ++layer) {
        ordering.sortBy(*layer, Side::kAfter);
      }
    }
    if (h.arcs.size() <= kFew) {
      for (bool improved = true; improved;) {
        improved = false;
        for (NQDList& layer : h.layers) improved |= ordering.exchange(layer);
      }
    }
    const long long crossings = ordering.crossings();
    ++failures;
    if (crossings >= best) continue;
    best = crossings;
    bestPositions = ordering.positions();
    failures = 0;
  }
  ordering.restore(bestPositions);
  return best;
}

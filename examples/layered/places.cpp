#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "hierarchy.h"

namespace {

// One layer at a time: each vertex wants to stand at the mean of its neighbours,
// and the layer gets the places that come nearest to all wishes, in squares, while
// the order and the distances hold. (Without the least distances between vertices
// that is isotonic regression: M. Ayer and others, "An empirical distribution
// function for sampling with incomplete information", who join neighbours that
// stand in each other's way into blocks, which move as one.)
class Placing {
 public:
  explicit Placing(Hierarchy& h) : h_(h), adjacency_(h.arcs, h.vertices.size()) {}

  void start() {
    for (const NQDList& layer : h_.layers) {
      measure(layer);
      for (Vertex* v : Range<Vertex>(layer)) {
        v->across = offset(*v) - offset_.back() / 2;
      }
    }
  }

  // `before`, `after`: at which neighbours vertices look.
  void place(const NQDList& layer, bool before, bool after) {
    measure(layer);
    blocks_.clear();
    for (const Vertex* v : Range<Vertex>(layer)) {
      Block block = wish(*v, before, after);
      block.sum -= block.weight * offset(*v);
      while (!blocks_.empty() && blocks_.back().place() >= block.place()) {
        block.join(blocks_.back());
        blocks_.pop_back();
      }
      blocks_.push_back(block);
    }
    constexpr double most = kMostExtent;
    const NQDListCell* cell = layer.pFirstCell();
    for (const Block& block : blocks_) {
      const auto place =
          static_cast<nqLong>(std::clamp(std::floor(block.place() + 0.5), -most, most));
      for (nqLong i = 0; i < block.members; ++i, cell = cell->pNextCell()) {
        auto& v = static_cast<Vertex&>(*cell->pObject());
        v.across = place + offset(v);
      }
    }
  }

 private:
  // Neighbours in a layer that move as one, and what they wish together.
  struct Block {
    double weight = 0;
    double sum = 0;  // of wishes times weights
    nqLong members = 1;

    double place() const { return sum / weight; }
    void join(const Block& other) {
      weight += other.weight;
      sum += other.sum;
      members += other.members;
    }
  };

  // Long edges want to be straight more than short ones. (The weights are those of
  // E. R. Gansner and others, "A technique for drawing directed graphs".)
  Block wish(const Vertex& v, bool before, bool after) const {
    Block block;
    const auto pull = [&](const Vertex& other) {
      const int bends = (v.node == nullptr) + (other.node == nullptr);
      const double weight = bends == 2 ? 8 : bends == 1 ? 2 : 1;
      block.weight += weight;
      block.sum += weight * other.across;
    };
    if (before) {
      for (const std::size_t a : adjacency_.in(v)) pull(*h_.arcs[a].from);
    }
    if (after) {
      for (const std::size_t a : adjacency_.out(v)) pull(*h_.arcs[a].to);
    }
    if (block.weight == 0) {
      block.weight = 0.01;  // no wish but to stay
      block.sum = block.weight * v.across;
    }
    return block;
  }

  // Notes how far each vertex is from the first of its layer at least.
  void measure(const NQDList& layer) {
    offset_.clear();
    const Vertex* last = nullptr;
    nqLong at = 0;
    for (const Vertex* v : Range<Vertex>(layer)) {
      if (last != nullptr) at += h_.distance(*last, *v);
      offset_.push_back(at);
      last = v;
    }
  }
  nqLong offset(const Vertex& v) const {
    return offset_[static_cast<std::size_t>(v.position)];
  }

  Hierarchy& h_;
  Adjacency adjacency_;
  std::vector<nqLong> offset_;
  std::vector<Block> blocks_;
};

// Makes long edges straight as far as what stands beside them lets it: bends in
// neighbouring layers that have a place in common go there, and as many as can.
class Straightening {
 public:
  explicit Straightening(Hierarchy& h) : h_(h), beside_(h.vertices.size()) {
    for (const NQDList& layer : h.layers) {
      const Vertex* last = nullptr;
      for (const Vertex* v : Range<Vertex>(layer)) {
        beside(*v).before = last;
        if (last != nullptr) beside(*last).after = v;
        last = v;
      }
    }
  }

  // The bends of an edge.
  void straighten(std::span<Vertex* const> bends) {
    Room common;
    std::size_t start = 0;
    for (std::size_t i = 0; i < bends.size(); ++i) {
      const Room room = roomOf(*bends[i]);
      const Room both = {std::max(common.low, room.low),
                         std::min(common.high, room.high)};
      if (both.low <= both.high) {
        common = both;
        continue;
      }
      move(bends.subspan(start, i - start), common);
      start = i;
      common = room;
    }
    move(bends.subspan(start), common);
  }

 private:
  struct Beside {
    const Vertex* before = nullptr;
    const Vertex* after = nullptr;
  };
  struct Room {
    nqLong low = std::numeric_limits<nqLong>::min();
    nqLong high = std::numeric_limits<nqLong>::max();
  };

  Beside& beside(const Vertex& v) { return beside_[static_cast<std::size_t>(v.number)]; }

  Room roomOf(const Vertex& v) {
    const auto [before, after] = beside(v);
    Room room;
    if (before != nullptr) room.low = before->across + h_.distance(*before, v);
    if (after != nullptr) room.high = after->across - h_.distance(v, *after);
    return room;
  }

  static void move(std::span<Vertex* const> bends, const Room& room) {
    if (bends.empty()) return;
    nqInt64 sum = 0;
    for (const Vertex* v : bends) sum += v->across;
    const auto mean = static_cast<nqLong>(sum / static_cast<nqInt64>(bends.size()));
    for (Vertex* v : bends) v->across = std::clamp(mean, room.low, room.high);
  }

  Hierarchy& h_;
  std::vector<Beside> beside_;  // by vertex
};

}  // namespace

void placeAcross(Hierarchy& h, const std::vector<std::vector<Vertex*>>& ways) {
  // Small graphs get all the rounds that show.
  const auto rounds = static_cast<int>(
      std::clamp<std::size_t>(1'000'000 / (h.vertices.size() + 1), 6, 24));
  Placing placing(h);
  placing.start();
  for (int round = 0; round < rounds; ++round) {
    const bool both = round >= 4;  // then all neighbours have their say
    for (const NQDList& layer : h.layers) placing.place(layer, true, both);
    for (auto layer = h.layers.rbegin(); layer != h.layers.rend(); ++layer) {
      placing.place(*layer, both, true);
    }
  }

  // From one side to the other and back, so that edges beside each other make room.
  struct LongEdge {
    std::span<Vertex* const> bends;
    double place;
  };
  std::vector<LongEdge> edges;
  for (const std::vector<Vertex*>& way : ways) {
    if (way.size() < 4) continue;
    edges.push_back({std::span(way).subspan(1, way.size() - 2), 0});
    for (const Vertex* v : edges.back().bends) edges.back().place += v->across;
    edges.back().place /= static_cast<double>(edges.back().bends.size());
  }
  std::sort(edges.begin(), edges.end(),
            [](const LongEdge& a, const LongEdge& b) { return a.place < b.place; });
  Straightening straightening(h);
  for (int round = 0; round < rounds / 2; ++round) {
    for (const LongEdge& edge : edges) straightening.straighten(edge.bends);
    std::reverse(edges.begin(), edges.end());
  }
}

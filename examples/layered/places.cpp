#include <cmath>

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
    const NQDListCell* cell = layer.pFirstCell();
    for (const Block& block : blocks_) {
      const auto place = static_cast<nqLong>(std::floor(block.place() + 0.5));
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
      if (last != nullptr) {
        const bool bends = last->node == nullptr && v->node == nullptr;
        at += (last->breadth + v->breadth + 1) / 2 +
              (bends ? (h_.spacing + 1) / 2 : h_.spacing);
      }
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

}  // namespace

void placeAcross(Hierarchy& h) {
  Placing placing(h);
  placing.start();
  constexpr int kRounds = 6;
  for (int round = 0; round < kRounds; ++round) {
    const bool last = round + 1 == kRounds;  // then all neighbours have their say
    for (const NQDList& layer : h.layers) placing.place(layer, true, last);
    for (auto layer = h.layers.rbegin(); layer != h.layers.rend(); ++layer) {
      placing.place(*layer, last, true);
    }
  }
}

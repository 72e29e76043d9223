#include <algorithm>
#include <utility>

#include "hierarchy.h"
#include "text_size.h"

namespace {

nqLong spanOf(const Arc& arc) {
  return arc.to->layer - arc.from->layer;
}

// The vertices so that every arc leads forward.
std::vector<Vertex*> topological(Hierarchy& h, const Adjacency& adjacency) {
  std::vector<Vertex*> order;
  std::vector<std::size_t> open(h.vertices.size());
  for (Vertex& v : h.vertices) {
    open[static_cast<std::size_t>(v.number)] = adjacency.in(v).size();
    if (adjacency.in(v).empty()) order.push_back(&v);
  }
  for (std::size_t next = 0; next < order.size(); ++next) {
    for (const std::size_t a : adjacency.out(*order[next])) {
      Vertex* const after = h.arcs[a].to;
      if (--open[static_cast<std::size_t>(after->number)] == 0) order.push_back(after);
    }
  }
  return order;
}

// Makes edges shorter on the whole by moving vertices, one layer at a time: with a
// vertex goes what it would come too near to, and so on. (N. S. Nikolov, A. Tarassov,
// "Graph layering by promotion of nodes".)
class Promotion {
 public:
  Promotion(Hierarchy& h, const Adjacency& adjacency)
      : h_(h), adjacency_(adjacency), joined_(h.vertices.size()) {}

  // Moves a vertex as far as that helps. Whether it moved.
  bool promote(Vertex& v, Side side) {
    bool any = false;
    while (gather(v, side)) {
      for (Vertex* member : group_) member->layer += side == Side::kAfter ? 1 : -1;
      any = true;
    }
    return any;
  }

  // Whether enough has been tried for a graph of this size.
  bool tired() const { return steps_ > kMostSteps; }

 private:
  static constexpr nqInt64 kMostSteps = 20'000'000;  // to neighbours
  static constexpr std::size_t kMostMembers = 50;

  // Gathers the group that would go. Whether that makes edges shorter.
  bool gather(Vertex& v, Side side) {
    ++round_;
    group_.clear();
    join(v);
    std::ptrdiff_t longer = 0;
    for (std::size_t i = 0; i < group_.size(); ++i) {
      if (group_.size() > kMostMembers || tired()) return false;
      const auto in = adjacency_.in(*group_[i]);
      const auto out = adjacency_.out(*group_[i]);
      const auto change = std::ssize(in) - std::ssize(out);
      longer += side == Side::kAfter ? change : -change;
      for (const std::size_t a : side == Side::kAfter ? out : in) {
        const Arc& arc = h_.arcs[a];
        if (spanOf(arc) == arc.span) join(side == Side::kAfter ? *arc.to : *arc.from);
        ++steps_;
      }
    }
    return longer < 0;
  }

  void join(Vertex& v) {
    std::size_t& round = joined_[static_cast<std::size_t>(v.number)];
    if (round != round_) group_.push_back(&v);
    round = round_;
  }

  Hierarchy& h_;
  const Adjacency& adjacency_;
  std::vector<std::size_t> joined_;  // by vertex: the last round in which it joined
  std::size_t round_ = 0;
  std::vector<Vertex*> group_;
  nqInt64 steps_ = 0;
};

}  // namespace

// Longest ways first; then vertices go to where their edges are shorter.
void assignLayers(Hierarchy& h) {
  const Adjacency adjacency(h.arcs, h.vertices.size());
  const std::vector<Vertex*> order = topological(h, adjacency);
  for (Vertex* v : order) {
    for (const std::size_t a : adjacency.in(*v)) {
      v->layer = std::max(v->layer, h.arcs[a].from->layer + h.arcs[a].span);
    }
  }

  Promotion promotion(h, adjacency);
  for (bool moved = true; moved && !promotion.tired();) {
    moved = false;
    for (auto v = order.rbegin(); v != order.rend(); ++v)
      moved |= promotion.promote(**v, Side::kAfter);
    for (Vertex* v : order) moved |= promotion.promote(*v, Side::kBefore);
  }
  nqLong first = 0;
  for (const Vertex& v : h.vertices) first = std::min(first, v.layer);
  for (Vertex& v : h.vertices) v.layer -= first;
}

namespace {

// Takes the longest arcs out until the others need no more bends than that.
void separateFar(Hierarchy& h) {
  constexpr nqInt64 kMostBends = 300'000;
  std::vector<nqInt64> count;  // of arcs, by their span
  for (const Arc& arc : h.arcs) {
    const auto span = static_cast<std::size_t>(spanOf(arc));
    if (span >= count.size()) count.resize(span + 1);
    ++count[span];
  }
  std::size_t longest = 1;
  nqInt64 bends = 0;
  while (longest + 1 < count.size()) {
    bends += static_cast<nqInt64>(longest) * count[longest + 1];
    if (bends > kMostBends) break;
    ++longest;
  }
  const auto far = std::stable_partition(
      h.arcs.begin(), h.arcs.end(),
      [&](const Arc& arc) { return static_cast<std::size_t>(spanOf(arc)) <= longest; });
  h.far.assign(far, h.arcs.end());
  h.arcs.erase(far, h.arcs.end());
}

}  // namespace

std::vector<std::vector<Vertex*>> addBends(Hierarchy& h) {
  separateFar(h);
  std::vector<std::vector<Vertex*>> ways;
  std::vector<Arc> pieces;
  ways.reserve(h.arcs.size());
  for (const Arc& arc : h.arcs) {
    std::vector<Vertex*> way = {arc.from};
    for (nqLong layer = arc.from->layer + 1; layer < arc.to->layer; ++layer) {
      Vertex& bend = h.vertices.emplace_back();
      bend.number = static_cast<nqLong>(h.vertices.size() - 1);
      bend.layer = layer;
      way.push_back(&bend);
    }
    way.push_back(arc.to);
    for (std::size_t i = 1; i < way.size(); ++i) {
      pieces.push_back({way[i - 1], way[i], arc.edge, 1, arc.flipped});
    }
    // A label takes its place where the edge is half way.
    if (arc.edge->labels.length() > 0 && way.size() > 2) {
      const NQSize size = sizeOf(linesOf(*arc.edge));
      way[way.size() / 2]->breadth = h.across(size);
      way[way.size() / 2]->depth = h.along(size);
    }
    ways.push_back(std::move(way));
  }
  h.arcs = std::move(pieces);

  nqLong layers = 0;
  for (const Vertex& v : h.vertices) layers = std::max(layers, v.layer + 1);
  h.layers = std::vector<NQDList>(static_cast<std::size_t>(layers));

  // Depth first, so that what belongs together comes to stand together.
  const Adjacency adjacency(h.arcs, h.vertices.size());
  std::vector<bool> seen(h.vertices.size());
  std::vector<Vertex*> stack;
  const auto visit = [&](Vertex* v) {
    const auto i = static_cast<std::size_t>(v->number);
    if (seen[i]) return;
    seen[i] = true;
    NQDList& layer = h.layers[static_cast<std::size_t>(v->layer)];
    v->position = layer.length();
    layer.appendObject(v);
    stack.push_back(v);
  };
  for (Vertex& start : h.vertices) {
    visit(&start);
    while (!stack.empty()) {
      const Vertex& v = *stack.back();
      stack.pop_back();
      for (const std::size_t a : adjacency.out(v)) visit(h.arcs[a].to);
      for (const std::size_t a : adjacency.in(v)) visit(h.arcs[a].from);
    }
  }
  return ways;
}

#include <algorithm>
#include <limits>

#include "hierarchy.h"
#include "text_size.h"

namespace {

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

}  // namespace

// Longest ways first; then vertices slide towards where most of their arcs lead,
// which makes arcs shorter one step at a time. (The idea is that of N. S. Nikolov,
// A. Tarassov, "Graph layering by promotion of nodes".)
void assignLayers(Hierarchy& h) {
  const Adjacency adjacency(h.arcs, h.vertices.size());
  const std::vector<Vertex*> order = topological(h, adjacency);
  const auto earliest = [&](const Vertex& v) {
    nqLong layer = 0;
    for (const std::size_t a : adjacency.in(v)) {
      layer = std::max(layer, h.arcs[a].from->layer + h.arcs[a].span);
    }
    return layer;
  };
  const auto latest = [&](const Vertex& v) {
    nqLong layer = std::numeric_limits<nqLong>::max();
    for (const std::size_t a : adjacency.out(v)) {
      layer = std::min(layer, h.arcs[a].to->layer - h.arcs[a].span);
    }
    return layer;
  };
  for (Vertex* v : order) v->layer = earliest(*v);

  constexpr int kRounds = 8;
  bool moved = true;
  for (int round = 0; round < kRounds && moved; ++round) {
    moved = false;
    const auto slide = [&](Vertex& v) {
      const std::size_t in = adjacency.in(v).size();
      const std::size_t out = adjacency.out(v).size();
      const nqLong layer = out > in ? latest(v) : in > out ? earliest(v) : v.layer;
      moved |= layer != v.layer;
      v.layer = layer;
    };
    for (auto v = order.rbegin(); v != order.rend(); ++v) slide(**v);
    for (Vertex* v : order) slide(*v);
  }
}

namespace {

nqLong spanOf(const Arc& arc) {
  return arc.to->layer - arc.from->layer;
}

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
      h.measure(*way[way.size() / 2], sizeOf(linesOf(*arc.edge)));
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

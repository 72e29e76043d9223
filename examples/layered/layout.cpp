#include "layout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "hierarchy.h"
#include "text_size.h"

namespace {

// Where a place across and along is on paper.
NQPoint onPaper(Flow flow, nqLong across, nqLong along) {
  switch (flow) {
    case Flow::kUp:
      return {across, along};
    case Flow::kRightward:
      return {along, -across};
    case Flow::kLeftward:
      return {-along, -across};
    default:
      return {across, -along};
  }
}

// Makes a node so large that its outline has room for what it shows.
void fitToText(Node& node) {
  const NQSize text = sizeOf(linesOf(node));
  NQRect bounds;
  const NQRect inner(NQPoint(), text.width() + 14, text.height() + 8);
  if (node.outline().fitBoundingRectToInnerRect(bounds, inner) != 0) {
    node.size = bounds.size();
  }
}

// How wide a layer is along the flow, and where its middle is.
struct Band {
  nqLong depth = 0;
  nqLong middle = 0;
  nqLong start() const { return middle - depth / 2; }
  nqLong end() const { return start() + depth; }
};

// Whether there are coordinates enough for each layer and for all of them together.
bool fits(const Hierarchy& h) {
  nqInt64 along = 0;
  for (const NQDList& layer : h.layers) {
    nqInt64 across = 0;
    nqLong depth = 0;
    for (const Vertex* v : Range<Vertex>(layer)) {
      across += v->breadth + h.spacing;
      depth = std::max(depth, v->depth);
    }
    if (across > kMostExtent) return false;
    along += depth + 6 * h.spacing;
  }
  return along <= kMostExtent;
}

// An edge from a node to itself.
struct Loop {
  Edge* edge;
  Vertex* vertex;
  nqLong room = 0;  // from the node
};

// The free room beside a node before its edges to itself, and between them.
constexpr nqLong kBesideNode = 12;
constexpr nqLong kBetweenLoops = 6;

// How much room across an edge takes beside its node, to which it leads back.
nqLong breadthOfLoop(const Edge& edge, const Hierarchy& h) {
  if (edge.labels.length() == 0) return kBetweenLoops;
  return h.across(sizeOf(linesOf(edge))) + 2 * kBetweenLoops;
}

// Gives loops their room beside their nodes. Those with labels are outermost: there
// nothing runs through the first of them.
void makeRoom(Hierarchy& h, std::vector<Loop>& loops) {
  std::stable_partition(loops.begin(), loops.end(),
                        [](const Loop& loop) { return loop.edge->labels.length() == 0; });
  std::vector<nqLong> taken(h.vertices.size());  // beside each node
  for (Loop& loop : loops) {
    Vertex& v = *loop.vertex;
    nqLong& room = taken[static_cast<std::size_t>(v.number)];
    loop.room = std::max(room, kBesideNode);
    room = std::min(loop.room + breadthOfLoop(*loop.edge, h), kMostExtent);
    v.breadth = h.across(v.node->size) + 2 * room;
    v.depth = std::max(v.depth, h.along(sizeOf(linesOf(*loop.edge))));
  }
}

// Of a way of one piece across.
NQPoint middleOf(const std::vector<NQPoint>& route) {
  const NQPoint& a = route[(route.size() - 1) / 2];
  const NQPoint& b = route[route.size() / 2];
  return {(a.x() + b.x()) / 2, (a.y() + b.y()) / 2};
}

bool inLine(const NQPoint& a, const NQPoint& b, const NQPoint& c) {
  return (a.x() == b.x() && b.x() == c.x()) || (a.y() == b.y() && b.y() == c.y());
}

class Drawing {
 public:
  Drawing(Graph& graph, const Hierarchy& h)
      : graph_(graph), h_(h), adjacency_(h.arcs, h.vertices.size()) {}

  void placeNodes() {
    makeBands();
    for (const Vertex& v : h_.vertices) {
      if (v.node == nullptr) continue;
      v.node->center = paper(v.across, band(v).middle);
    }
  }

  void routeEdges(const std::vector<std::vector<Vertex*>>& ways) {
    spreadPorts();
    std::size_t piece = 0;  // of the way that comes next
    for (const std::vector<Vertex*>& way : ways) {
      const std::size_t last = piece + way.size() - 2;
      Edge& edge = *h_.arcs[piece].edge;
      edge.route = route(way, outPort_[piece], inPort_[last]);
      if (h_.arcs[piece].flipped) std::reverse(edge.route.begin(), edge.route.end());
      const Vertex& middle = *way[way.size() / 2];
      edge.labelCenter = paper(middle.across, band(middle).middle);
      piece = last + 1;
    }
    for (const Arc& arc : h_.far) {
      arc.edge->route = route({arc.from, arc.to}, 0, 0);
      if (arc.flipped) std::reverse(arc.edge->route.begin(), arc.edge->route.end());
      arc.edge->labelCenter = middleOf(arc.edge->route);
    }
  }

  // A handle beside the node.
  void routeLoop(const Loop& loop) const {
    Edge& edge = *loop.edge;
    const Vertex& v = *loop.vertex;
    const nqLong along = band(v).middle;
    const nqLong far = v.across + h_.across(v.node->size) / 2 + loop.room;
    const nqLong half =
        std::min(5 + (loop.room - kBesideNode) / 2, h_.along(v.node->size) / 2 - 1);
    const auto end = [&](nqLong at) {
      NQPoint point = paper(far, at);
      v.node->outline().intersectsSegment(point, paper(v.across, at), v.node->center,
                                          v.node->size);
      return point;
    };
    edge.route = {end(along - half), paper(far, along - half), paper(far, along + half),
                  end(along + half)};
    edge.labelCenter = paper(far + breadthOfLoop(edge, h_) / 2, along);
  }

 private:
  NQPoint paper(nqLong across, nqLong along) const {
    return onPaper(graph_.flow, across, along);
  }
  const Band& band(const Vertex& v) const {
    return bands_[static_cast<std::size_t>(v.layer)];
  }

  // Layers stand farther apart where edges between them go far across.
  void makeBands() {
    bands_.resize(h_.layers.size());
    std::vector<nqLong> reach(h_.layers.size());
    for (const Vertex& v : h_.vertices) {
      Band& own = bands_[static_cast<std::size_t>(v.layer)];
      own.depth = std::max(own.depth, v.depth);
    }
    for (const Arc& arc : h_.arcs) {
      nqLong& most = reach[static_cast<std::size_t>(arc.from->layer)];
      most = std::max(most, std::abs(arc.from->across - arc.to->across));
    }
    nqLong at = 0;
    for (std::size_t i = 0; i < bands_.size(); ++i) {
      bands_[i].middle = at + bands_[i].depth / 2;
      at += bands_[i].depth + std::clamp(reach[i] / 6, 2 * h_.spacing, 6 * h_.spacing);
    }
  }

  // Where each edge leaves and enters its nodes, from their middle: side by side,
  // in the order of the other ends.
  void spreadPorts() {
    outPort_.assign(h_.arcs.size(), 0);
    inPort_.assign(h_.arcs.size(), 0);
    std::vector<std::size_t> arcs;
    const auto spread = [&](const Vertex& v, std::span<const std::size_t> some,
                            Vertex* Arc::*other, std::vector<nqLong>& port) {
      if (some.empty()) return;
      arcs.assign(some.begin(), some.end());
      std::sort(arcs.begin(), arcs.end(), [&](std::size_t a, std::size_t b) {
        return (h_.arcs[a].*other)->position < (h_.arcs[b].*other)->position;
      });
      const bool straight = v.node->shape == ShapeKind::kBox;
      const nqLong room =
          h_.across(v.node->size) * (straight ? 2 : 1) / 5;  // to either side
      if (arcs.size() == 1) {
        port[arcs[0]] =
            std::clamp((h_.arcs[arcs[0]].*other)->across - v.across, -room, room);
        return;
      }
      // Where there is no room for all arrowheads, some edges share one.
      const nqLong gap = graph_.directed ? 7 : 2;
      const auto count = static_cast<nqLong>(arcs.size());
      const nqLong ports = std::min(count, 2 * room / gap + 1);
      const nqLong used = std::min(2 * room * (ports - 1) / ports, 16 * (ports - 1));
      for (nqLong i = 0; i < count; ++i) {
        const nqLong place = i * ports / count;
        port[arcs[static_cast<std::size_t>(i)]] =
            ports == 1 ? 0 : used * place / (ports - 1) - used / 2;
      }
    };
    for (const Vertex& v : h_.vertices) {
      if (v.node == nullptr) continue;
      spread(v, adjacency_.out(v), &Arc::to, outPort_);
      spread(v, adjacency_.in(v), &Arc::from, inPort_);
    }
  }

  // Straight through each layer; the ends stand on the outlines.
  std::vector<NQPoint> route(const std::vector<Vertex*>& way, nqLong outPort,
                             nqLong inPort) const {
    std::vector<NQPoint> points;
    // Ends that meet and pieces that go on straight are one.
    const auto lead = [&](const NQPoint& point) {
      const std::size_t n = points.size();
      if (n > 0 && points[n - 1] == point) return;
      if (n > 1 && inLine(points[n - 2], points[n - 1], point)) points.pop_back();
      points.push_back(point);
    };
    const Vertex& first = *way.front();
    const Vertex& last = *way.back();
    const nqLong start = first.across + outPort;
    const nqLong end = last.across + inPort;
    lead(clipped(first, start, band(first).end()));
    lead(paper(start, band(first).end()));
    for (std::size_t i = 1; i + 1 < way.size(); ++i) {
      const Band& layer = band(*way[i]);
      lead(paper(way[i]->across, layer.start()));
      lead(paper(way[i]->across, layer.end()));
    }
    lead(paper(end, band(last).start()));
    lead(clipped(last, end, band(last).start()));
    return points;
  }

  // Where the way into a node from the border of its layer meets the outline.
  NQPoint clipped(const Vertex& v, nqLong across, nqLong border) const {
    NQPoint point = paper(across, border);
    const NQPoint inside = paper(across, band(v).middle);
    v.node->outline().intersectsSegment(point, inside, v.node->center, v.node->size);
    return point;
  }

  Graph& graph_;
  const Hierarchy& h_;
  Adjacency adjacency_;
  std::vector<Band> bands_;
  std::vector<nqLong> outPort_;  // for each piece of an edge
  std::vector<nqLong> inPort_;
};

}  // namespace

void LayeredLayout::emptyInformation() {
  result_ = {};
  for (Edge* edge : Range<Edge>(edges_)) edge->route.clear();
}

void LayeredLayout::algorithmBody() {
  Hierarchy h;
  h.spacing = std::max<nqLong>(4, static_cast<nqLong>(std::lround(graph_.spacing)));
  h.vertical = graph_.flow == Flow::kDown || graph_.flow == Flow::kUp;

  // Addresses lead from nodes to vertices by way of a table made for them.
  NQIndexHashTable numbers(nextPrimeNumber(nodes_.length()), 16, -1);
  for (Node* node : Range<Node>(nodes_)) {
    fitToText(*node);
    Vertex& v = h.vertices.emplace_back();
    v.node = node;
    v.number = static_cast<nqLong>(h.vertices.size() - 1);
    v.breadth = h.across(node->size);
    v.depth = h.along(node->size);
    numbers.update(reinterpret_cast<nqInt64>(node), v.number);
  }
  const auto vertexOf = [&](const Node* node) {
    return &h.vertices[static_cast<std::size_t>(
        numbers.lookup(reinterpret_cast<nqInt64>(node)))];
  };
  std::vector<Loop> loops;
  for (Edge* edge : Range<Edge>(edges_)) {
    Vertex* const from = vertexOf(edge->from);
    if (edge->from == edge->to) {
      loops.push_back({edge, from});
    } else {
      const nqLong span = edge->labels.length() > 0 ? 2 : 1;
      h.arcs.push_back({from, vertexOf(edge->to), edge, span, false});
    }
  }
  makeRoom(h, loops);

  const std::size_t nodes = h.vertices.size();
  result_.reversed = breakCycles(h, graph_.directed);
  if (hideImplied_) result_.hidden = removeImplied(h);
  assignLayers(h);
  const std::vector<std::vector<Vertex*>> ways = addBends(h);
  result_.far = static_cast<int>(h.far.size());
  result_.bends = h.vertices.size() - nodes;
  result_.layers = static_cast<int>(h.layers.size());
  result_.tooLarge = !fits(h);
  if (result_.tooLarge) return;
  result_.crossings = reduceCrossings(h);
  placeAcross(h, ways);

  Drawing drawing(graph_, h);
  drawing.placeNodes();
  drawing.routeEdges(ways);
  for (const Loop& loop : loops) drawing.routeLoop(loop);
}

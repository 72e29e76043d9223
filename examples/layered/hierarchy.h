// hierarchy.h -- the layered form of a graph, on which the steps of the layout work.
//
// "Across" runs along the layers and "along" with the flow, whichever way that
// is on paper. Vertices stand for nodes and, where an edge passes a layer, for
// its bend there. The steps come in the order of their functions below.

#ifndef LAYERED_HIERARCHY_H
#define LAYERED_HIERARCHY_H

#include <deque>
#include <span>
#include <vector>

#include "graph.h"

class Vertex : public NQObject {
  NQ_COPY_MEMBERWISE(Vertex)

 public:
  Vertex() = default;

  Node* node = nullptr;  // null in a bend
  nqLong number = 0;     // of the vertex among all
  nqLong layer = 0;
  nqLong position = 0;  // in its layer, from 0
  double key = 0;       // by which the layer is being sorted
  nqLong across = 0;    // where its centre is
  nqLong breadth = 0;   // its extent across
  nqLong depth = 0;     // and along
};

// Of a vertex: where arcs come from, and where they lead.
enum class Side { kBefore, kAfter };

// A connection between two vertices, in the direction of the flow.
struct Arc {
  Vertex* from;
  Vertex* to;
  Edge* edge;
  nqLong span;   // how many layers apart the ends are at least
  bool flipped;  // whether it runs against its edge
};

// Which arcs lead from and to each vertex, as indices.
class Adjacency {
 public:
  Adjacency(const std::vector<Arc>& arcs, std::size_t vertices);
  std::span<const std::size_t> out(const Vertex& v) const {
    return of(v, outStart_, out_);
  }
  std::span<const std::size_t> in(const Vertex& v) const { return of(v, inStart_, in_); }

 private:
  using Indices = std::vector<std::size_t>;
  static std::span<const std::size_t> of(const Vertex& v, const Indices& start,
                                         const Indices& arcs) {
    const auto i = static_cast<std::size_t>(v.number);
    return {arcs.data() + start[i], start[i + 1] - start[i]};
  }

  Indices outStart_, out_, inStart_, in_;
};

struct Hierarchy {
  std::deque<Vertex> vertices;  // first one for each node, in the graph's order
  std::vector<Arc> arcs;        // between nodes; after addBends() between layers
  std::vector<Arc> far;         // arcs that are not cut, since they are too long
  std::vector<NQDList> layers;  // of Vertex, in their order across
  nqLong spacing = 24;
  bool vertical = true;  // whether the flow runs up or down on paper

  // Of something on paper.
  nqLong across(const NQSize& size) const {
    return vertical ? size.width() : size.height();
  }
  nqLong along(const NQSize& size) const {
    return vertical ? size.height() : size.width();
  }

  // How far apart the centres of neighbours in a layer are at least.
  nqLong distance(const Vertex& a, const Vertex& b) const {
    const bool bends = a.node == nullptr && b.node == nullptr;
    return (a.breadth + b.breadth + 1) / 2 + (bends ? (spacing + 1) / 2 : spacing);
  }
};

// How large a drawing may be either way, so that sums of two coordinates have 32 bits.
constexpr nqLong kMostExtent = 250'000'000;

// Turns arcs so that no way leads back. Returns how many edges run against the flow
// of a directed graph.
int breakCycles(Hierarchy& h, bool directed);

// Takes out arcs that other ways imply, unless the graph is too large to find
// out. Returns how many.
int removeImplied(Hierarchy& h);

// Gives each vertex a layer, from 0.
void assignLayers(Hierarchy& h);

// Cuts arcs into pieces between neighbouring layers and fills the layers. Gives
// for each edge its vertices, in the direction of the flow. Where that would take
// more bends than anybody can look at, the longest arcs become `far` instead.
std::vector<std::vector<Vertex*>> addBends(Hierarchy& h);

// Orders the layers. Returns the number of crossings that are left.
long long reduceCrossings(Hierarchy& h);

// Gives each vertex its place across. `ways` are those of addBends().
void placeAcross(Hierarchy& h, const std::vector<std::vector<Vertex*>>& ways);

#endif  // LAYERED_HIERARCHY_H

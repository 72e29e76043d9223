// layout.h -- drawing a graph in layers.
//
// Nodes are put on layers so that edges run in one direction, the graph's flow;
// each layer is ordered so that few edges cross; then everything gets its place,
// without overlaps, and edges end at the outlines of their nodes. (K. Sugiyama,
// S. Tagawa, M. Toda, "Methods for visual understanding of hierarchical system
// structures"; each step names what it follows.)

#ifndef LAYERED_LAYOUT_H
#define LAYERED_LAYOUT_H

#include "graph.h"

class LayeredLayout : public NQMORAlgorithm {
 public:
  struct Result {
    bool tooLarge = false;  // for coordinates: then nothing got a place
    int layers = 0;
    int reversed = 0;         // edges against the flow
    int hidden = 0;           // edges not drawn, since longer ways say the same
    int far = 0;              // edges too long to be led around nodes
    std::size_t bends = 0;    // places where an edge passes a layer
    long long crossings = 0;  // of pieces of edges between neighbouring layers
  };

  // `hideImplied`: whether an edge is left out where a longer way leads from its
  // one node to the other. The graph is borrowed.
  LayeredLayout(Graph& graph, bool hideImplied)
      : graph_(graph), hideImplied_(hideImplied) {
    graph.collectNodes(nodes_);
    graph.collectEdges(edges_);
  }

  // Of the last run.
  const Result& result() const { return result_; }

  void emptyInformation() override;
  void algorithmBody() override;

 private:
  Graph& graph_;
  NQDList nodes_;  // of nested graphs, too
  NQDList edges_;
  bool hideImplied_;
  Result result_;
};

#endif  // LAYERED_LAYOUT_H

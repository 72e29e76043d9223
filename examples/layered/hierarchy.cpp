#include "hierarchy.h"

Adjacency::Adjacency(const std::vector<Arc>& arcs, std::size_t vertices)
    : outStart_(vertices + 1),
      out_(arcs.size()),
      inStart_(vertices + 1),
      in_(arcs.size()) {
  const auto number = [](const Vertex* v) { return static_cast<std::size_t>(v->number); };
  for (const Arc& arc : arcs) {
    ++outStart_[number(arc.from)];
    ++inStart_[number(arc.to)];
  }
  // Counts become ends, and filling in from the back turns ends into starts.
  for (std::size_t i = 1; i <= vertices; ++i) {
    outStart_[i] += outStart_[i - 1];
    inStart_[i] += inStart_[i - 1];
  }
  for (std::size_t i = arcs.size(); i-- > 0;) {
    out_[--outStart_[number(arcs[i].from)]] = i;
    in_[--inStart_[number(arcs[i].to)]] = i;
  }
}

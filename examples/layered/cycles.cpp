#include <algorithm>
#include <cstdint>
#include <utility>

#include "hierarchy.h"

namespace {

std::size_t index(const Vertex& v) {
  return static_cast<std::size_t>(v.number);
}

// The rank of each vertex in an order in which few arcs run backward: sinks are
// taken off to the back, sources to the front, and else the vertex that has most
// arcs going out over those coming in. A heap always knows the next one.
// (P. Eades, X. Lin, W. F. Smyth, "A fast and effective heuristic for the feedback
// arc set problem".)
std::vector<std::size_t> rankDirected(Hierarchy& h) {
  const std::size_t n = h.vertices.size();
  const Adjacency adjacency(h.arcs, n);
  std::vector<nqLong> out(n);
  std::vector<nqLong> in(n);
  std::vector<NQBinHeapCell*> cells(n);
  constexpr nqLong kSink = -2000000000;
  constexpr nqLong kSource = -1000000000;
  const auto urgency = [&](std::size_t v) {
    if (out[v] == 0) return kSink;
    return in[v] == 0 ? kSource : in[v] - out[v];
  };
  NQBinHeap heap;
  for (Vertex& v : h.vertices) {
    const std::size_t i = index(v);
    out[i] = static_cast<nqLong>(adjacency.out(v).size());
    in[i] = static_cast<nqLong>(adjacency.in(v).size());
    cells[i] = heap.addObject(&v, urgency(i));
  }
  std::vector<std::size_t> rank(n);
  std::size_t front = 0;
  std::size_t back = n;
  while (NQBinHeapCell* const cell = heap.pExtractMinCell()) {
    const auto& v = static_cast<const Vertex&>(*cell->pObject());
    const std::size_t i = index(v);
    rank[i] = out[i] == 0 ? --back : front++;
    cells[i] = nullptr;
    delete cell;
    const auto lose = [&](const Vertex& neighbour, std::vector<nqLong>& arcs) {
      const std::size_t j = index(neighbour);
      if (cells[j] == nullptr) return;
      --arcs[j];
      heap.changeValue(cells[j], urgency(j));
    };
    for (const std::size_t a : adjacency.out(v)) lose(*h.arcs[a].to, in);
    for (const std::size_t a : adjacency.in(v)) lose(*h.arcs[a].from, out);
  }
  return rank;
}

// Where edges have no direction: breadth first, from vertices of many edges.
std::vector<std::size_t> rankUndirected(Hierarchy& h) {
  const std::size_t n = h.vertices.size();
  const Adjacency adjacency(h.arcs, n);
  const auto degree = [&](const Vertex* v) {
    return adjacency.out(*v).size() + adjacency.in(*v).size();
  };
  std::vector<const Vertex*> starts;
  for (const Vertex& v : h.vertices) starts.push_back(&v);
  std::stable_sort(starts.begin(), starts.end(), [&](const Vertex* a, const Vertex* b) {
    return degree(a) > degree(b);
  });
  std::vector<std::size_t> rank(n, n);
  std::vector<const Vertex*> queue;
  const auto visit = [&](const Vertex* v) {
    if (rank[index(*v)] != n) return;
    rank[index(*v)] = queue.size();
    queue.push_back(v);
  };
  std::size_t next = 0;
  for (const Vertex* start : starts) {
    visit(start);
    for (; next < queue.size(); ++next) {
      const Vertex& v = *queue[next];
      for (const std::size_t a : adjacency.out(v)) visit(h.arcs[a].to);
      for (const std::size_t a : adjacency.in(v)) visit(h.arcs[a].from);
    }
  }
  return rank;
}

}  // namespace

int breakCycles(Hierarchy& h, bool directed) {
  const std::vector<std::size_t> rank = directed ? rankDirected(h) : rankUndirected(h);
  int flipped = 0;
  for (Arc& arc : h.arcs) {
    if (rank[index(*arc.from)] < rank[index(*arc.to)]) continue;
    std::swap(arc.from, arc.to);
    arc.flipped = true;
    ++flipped;
  }
  return directed ? flipped : 0;
}

// What each vertex reaches is kept as a set of bits, last vertices first. An arc
// is implied when its end is reached by another arc from its start. (A. V. Aho,
// M. R. Garey, J. D. Ullman, "The transitive reduction of a directed graph".)
int removeImplied(Hierarchy& h) {
  using Bits = std::vector<std::uint64_t>;
  constexpr std::size_t kMost = 4096;  // vertices: the sets take n * n / 8 bytes
  const std::size_t n = h.vertices.size();
  if (n > kMost) return 0;
  const Adjacency adjacency(h.arcs, n);

  // Vertices with all their successors before them.
  std::vector<const Vertex*> order;
  std::vector<std::size_t> open(n);
  for (const Vertex& v : h.vertices) {
    open[index(v)] = adjacency.out(v).size();
    if (open[index(v)] == 0) order.push_back(&v);
  }
  for (std::size_t next = 0; next < order.size(); ++next) {
    for (const std::size_t a : adjacency.in(*order[next])) {
      const Vertex* const before = h.arcs[a].from;
      if (--open[index(*before)] == 0) order.push_back(before);
    }
  }

  std::vector<Bits> reached(n, Bits(n / 64 + 1));
  const auto has = [](const Bits& bits, std::size_t i) {
    return (bits[i / 64] >> i % 64 & 1) != 0;
  };
  std::vector<bool> implied(h.arcs.size());
  for (const Vertex* v : order) {
    Bits beyond(n / 64 + 1);  // reached by two arcs or more
    for (const std::size_t a : adjacency.out(*v)) {
      const Bits& bits = reached[index(*h.arcs[a].to)];
      for (std::size_t w = 0; w < bits.size(); ++w) beyond[w] |= bits[w];
    }
    Bits& own = reached[index(*v)];
    own = beyond;
    for (const std::size_t a : adjacency.out(*v)) {
      const std::size_t end = index(*h.arcs[a].to);
      implied[a] = has(own, end);  // by a longer way, or by an arc just like it
      own[end / 64] |= std::uint64_t{1} << end % 64;
    }
  }
  std::size_t kept = 0;
  for (std::size_t a = 0; a < h.arcs.size(); ++a) {
    if (!implied[a]) h.arcs[kept++] = h.arcs[a];
  }
  const std::size_t removed = h.arcs.size() - kept;
  h.arcs.erase(h.arcs.begin() + static_cast<std::ptrdiff_t>(kept), h.arcs.end());
  return static_cast<int>(removed);
}

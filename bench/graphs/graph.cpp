#include "graph.h"

#include "nq/containers/dlist.h"

#include <cmath>
#include <fstream>

namespace {

// Coordinates have two digits behind the point, and other reals four.
constexpr int kScale = 100;

class Hash {
 public:
  void add(std::uint64_t value) {
    sum_ = (sum_ ^ value) * 0x9E3779B97F4A7C15U;
    sum_ ^= sum_ >> 29;
  }
  void add(int value) { add(static_cast<std::uint64_t>(value)); }
  void add(double value, int scale) {
    add(static_cast<std::uint64_t>(std::llround(value * scale)));
  }
  void add(const std::string& text) { add(std::hash<std::string>()(text)); }

  std::uint64_t sum() const { return sum_; }

 private:
  std::uint64_t sum_ = 0;
};

}  // namespace

NQOMLObject* Item::pOMLOwner() const {
  return owner;
}

void Item::prepareIDForGraphFile(NQIndexHashTable* table) {
  if (!owner->keepsIDs) NQOMLObject::prepareIDForGraphFile(table);
}

void Graph::prepareIDForGraphFile(NQIndexHashTable* table) {
  if (!keepsIDs) NQOMLObject::prepareIDForGraphFile(table);
}

void Graph::collectOwnedOMLObjects(NQDList& parts) {
  for (GraphNode& node : nodes) parts.appendObject(&node);
  for (GraphEdge& edge : edges) parts.appendObject(&edge);
}

void Graph::numberObjects() {
  if (keepsIDs) return;
  nqInt64 id = 0;
  for (GraphNode& node : nodes) node.iUserField(++id);
  for (GraphEdge& edge : edges) edge.iUserField(++id);
  iUserField(++id);
}

std::uint64_t Graph::checksum() const {
  Hash hash;
  hash.add(title);
  hash.add(directed ? 1 : 0);
  for (const GraphNode& node : nodes) {
    hash.add(node.title);
    for (const int value : {node.group, node.shape, node.width, node.height, node.stroke})
      hash.add(value);
    for (const Number value : {node.x, node.y, node.thickness}) hash.add(value, kScale);
    hash.add(node.importance, 100 * kScale);
    hash.add(node.fill);
  }
  for (const GraphEdge& edge : edges) {
    for (const GraphNode* const end : {edge.from, edge.to}) {
      hash.add(end->x, kScale);
      hash.add(end->y, kScale);
      hash.add(end->group);
    }
    hash.add(edge.title);
    hash.add(edge.weight, 100 * kScale);
    hash.add(edge.routing);
    hash.add(edge.head);
    for (const Number bend : edge.bend) hash.add(bend, kScale);
    hash.add(edge.bend.size());
  }
  return hash.sum();
}

Contents::Contents(const std::string& path) {
  std::filebuf file;
  if (file.open(path, std::ios::in | std::ios::binary) == nullptr) return;
  const std::streamoff end = file.pubseekoff(0, std::ios::end);
  if (end < 0) return;
  file.pubseekoff(0, std::ios::beg);
  size = static_cast<std::size_t>(end);
  text = std::make_unique_for_overwrite<char[]>(size + 1);
  text[size] = '\0';
  if (file.sgetn(text.get(), end) != end) text.reset();
}

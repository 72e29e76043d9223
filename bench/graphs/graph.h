// graph.h -- the graphs of scripts/generate_graph.py as an application keeps them, and
// what the readers and writers in this folder share.
//
// Every reader checks the file against its grammar or schema, makes these objects and
// resolves the references; none reads another's format better by doing less. Programs
// are built twice: with NQ_BENCH_REALS for graphs whose coordinates are reals, without
// it for graphs of integers.

#ifndef NQ_BENCH_GRAPHS_GRAPH_H
#define NQ_BENCH_GRAPHS_GRAPH_H

#include "nq/oml/oml_object.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#if defined(NQ_BENCH_REALS)
using Number = double;
constexpr bool kReals = true;
#else
using Number = int;
constexpr bool kReals = false;
#endif

struct Graph;

struct Item : NQOMLObject {
  explicit Item(Graph* graph) : owner(graph) {}
  NQOMLObject* pOMLOwner() const override;
  void prepareIDForGraphFile(NQIndexHashTable* table) override;

  Graph* owner;
};

struct GraphNode : Item {
  using Item::Item;

  std::string title;
  int group = 0;
  int shape = 0;
  Number x = 0, y = 0;
  int width = 0, height = 0;
  double importance = 0;  // this, fill and stroke: graphs of reals
  std::string fill;
  int stroke = 0;
  Number thickness = 0;
};

struct GraphEdge : Item {
  using Item::Item;

  GraphNode* from = nullptr;
  GraphNode* to = nullptr;
  std::string title;  // graphs of integers
  double weight = 0;
  int routing = 0;  // this and head: graphs of reals
  int head = 0;
  std::vector<Number> bend;
};

struct Graph : NQOMLObject {
  void prepareIDForGraphFile(NQIndexHashTable* table) override;
  void collectOwnedOMLObjects(NQDList& parts) override;
  // Gives all objects the numbers from 1, unless they keep what they have; for writers
  // that have no ids of their own.
  void numberObjects();

  // Depends on every value, and on the order of the objects. Reals count with as many
  // digits as the generator gives them, which every format keeps.
  std::uint64_t checksum() const;

  std::string title;
  bool directed = false;
  std::deque<GraphNode> nodes;
  std::deque<GraphEdge> edges;
  // Whether objects are written with the numbers that they have, instead of those that
  // a writer gives them.
  bool keepsIDs = false;
};

// --- Names

// In the order in which the grammar names them first.
enum Field {
  kTitle,
  kDirected,
  kGroup,
  kImportance,
  kX,
  kY,
  kWidth,
  kHeight,
  kShape,
  kFill,
  kStroke,
  kThickness,
  kFrom,
  kTo,
  kWeight,
  kRouting,
  kBend,
  kHead,
  kFields  // their number; no field
};

constexpr std::array<std::string_view, kFields> kFieldNames = {
    "title", "directed", "group",  "importance", "x",      "y",
    "width", "height",   "shape",  "fill",       "stroke", "thickness",
    "from",  "to",       "weight", "routing",    "bend",   "head"};

// Finds a field in one step: the length and two letters tell all names apart.
class FieldIndex {
 public:
  constexpr FieldIndex() {
    slots_.fill(kFields);
    for (int field = 0; field < kFields; ++field) {
      const auto name = kFieldNames[static_cast<std::size_t>(field)];
      if (slots_[slot(name)] != kFields) throw "two names in one slot";
      slots_[slot(name)] = static_cast<Field>(field);
    }
  }
  // The field of that name, or kFields.
  constexpr Field find(std::string_view name) const {
    if (name.empty()) return kFields;
    const Field field = slots_[slot(name)];
    return field != kFields && kFieldNames[field] == name ? field : kFields;
  }

 private:
  static constexpr std::size_t slot(std::string_view name) {
    const std::size_t first = static_cast<unsigned char>(name.front());
    const std::size_t last = static_cast<unsigned char>(name.back());
    return (name.size() + 2 * first + 3 * last) % 64;
  }

  std::array<Field, 64> slots_{};
};
inline constexpr FieldIndex kFieldIndex;

using Names = std::array<const char*, 4>;  // of enumerators; null behind the last

constexpr Names kShapes = {"box", "rounded", "ellipse", "diamond"};
constexpr Names kStrokes = {"solid", "dashed", "dotted", nullptr};
constexpr Names kRoutings = {"straight", "polyline", "curved", "orthogonal"};
constexpr Names kHeads = {"none", "arrow", "dot", nullptr};

inline bool takeEnumerator(std::string_view name, int& value, const Names& names) {
  for (std::size_t i = 0; i < names.size() && names[i] != nullptr; ++i) {
    if (name != names[i]) continue;
    value = static_cast<int>(i);
    return true;
  }
  return false;
}

inline const char* nameOf(int value, const Names& names) {
  return names[static_cast<std::size_t>(value)];
}

// --- From values to objects

// Hands the value of a field to the member that it belongs to. A Value has an operation
// take() for each kind of member, which answers whether the value was of that kind.
template <typename Value>
bool fill(GraphNode& node, Field field, const Value& value) {
  switch (field) {
    case kTitle:
      return value.take(node.title);
    case kGroup:
      return value.take(node.group);
    case kImportance:
      return value.take(node.importance);
    case kX:
      return value.take(node.x);
    case kY:
      return value.take(node.y);
    case kWidth:
      return value.take(node.width);
    case kHeight:
      return value.take(node.height);
    case kShape:
      return value.take(node.shape, kShapes);
    case kFill:
      return value.take(node.fill);
    case kStroke:
      return value.take(node.stroke, kStrokes);
    case kThickness:
      return value.take(node.thickness);
    default:
      return false;
  }
}

template <typename Value>
bool fill(GraphEdge& edge, Field field, const Value& value) {
  switch (field) {
    case kTitle:
      return value.take(edge.title);
    case kFrom:
      return value.take(edge.from);
    case kTo:
      return value.take(edge.to);
    case kWeight:
      return value.take(edge.weight);
    case kRouting:
      return value.take(edge.routing, kRoutings);
    case kBend:
      return value.take(edge.bend);
    case kHead:
      return value.take(edge.head, kHeads);
    default:
      return false;
  }
}

template <typename Value>
bool fill(Graph& graph, Field field, const Value& value) {
  switch (field) {
    case kTitle:
      return value.take(graph.title);
    case kDirected:
      return value.take(graph.directed);
    default:
      return false;
  }
}

template <typename T>
bool takeNumber(std::string_view text, T& value) {
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// The nodes by their ids, for readers that resolve references themselves: open
// addressing in one piece of memory.
class NodeIDs {
 public:
  explicit NodeIDs(std::size_t expected = 0) { resize(expected); }

  // Whether the id is new.
  bool insert(int id, GraphNode* node) {
    if (2 * ++count_ > slots_.size()) resize(count_);
    Slot& slot = find(id);
    if (slot.node != nullptr) return false;
    slot = {id, node};
    return true;
  }
  // The node, or null.
  GraphNode* operator[](int id) { return find(id).node; }

 private:
  struct Slot {
    int id = 0;
    GraphNode* node = nullptr;
  };

  Slot& find(int id) {
    std::size_t at = (static_cast<std::uint32_t>(id) * 0x9E3779B1U) >> shift_;
    while (slots_[at].node != nullptr && slots_[at].id != id)
      at = (at + 1) & (slots_.size() - 1);
    return slots_[at];
  }
  // Makes room for that number of nodes.
  void resize(std::size_t expected) {
    shift_ = 28;
    while ((std::size_t{1} << (32 - shift_)) < 2 * expected) --shift_;
    std::vector<Slot> old(std::size_t{1} << (32 - shift_));
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.node != nullptr) find(slot.id) = slot;
    }
  }

  std::vector<Slot> slots_;  // at most half full; the size is a power of two
  std::size_t count_ = 0;
  int shift_ = 0;
};

// --- Files

// A whole file, with a zero behind it. Without a text when it cannot be read.
struct Contents {
  explicit Contents(const std::string& path);

  std::unique_ptr<char[]> text;
  std::size_t size = 0;
};

// A format, as one library reads and writes it; null for what it does not do.
struct Format {
  const char* name;
  // Makes the grammar, or compiles the schema, before the clock starts.
  void (*prepare)();
  // Returns null for a file that cannot be read or is not valid.
  std::unique_ptr<Graph> (*read)(const std::string& path);
  // Whether the whole graph was written.
  bool (*write)(Graph& graph, const std::string& path);
};

extern const Format kNQText, kNQLossless, kNQBinary;
extern const Format kByHand;
// The peers, where the build has found them.
extern const Format kRapidJSONDOM, kRapidJSONSAX, kLibXML2, kProtobuf;

#endif  // NQ_BENCH_GRAPHS_GRAPH_H

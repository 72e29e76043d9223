#include "graph_readers.h"

#include "nq/core/string_pool.h"
#include "nq/oml/grammar.h"
#include "nq/oml/oml_file.h"
#include "nq/oml/syntax_tree.h"

#include <array>

namespace {

template <std::size_t count>
int numberOf(const std::array<std::string_view, count>& names, std::string_view name) {
  for (std::size_t i = 0; i < count; ++i) {
    if (names[i] == name) return static_cast<int>(i);
  }
  return -1;
}

// --- OML: tables and hooks, as an application writes them

enum TypeIndex : nqLong { kGraph = 1, kNode, kEdge };  // in the order of kTypes

const char* const kTypes[] = {"graph", "node", "edge", nullptr};
const char* const kSections[] = {"layout", "drawing", "line", nullptr};
NQOMLStaticVEStruct kEnumerators[] = {
    {"straight", 0}, {"polyline", 1}, {"curved", 2},  {"orthogonal", 3}, {"box", 0},
    {"rounded", 1},  {"ellipse", 2},  {"diamond", 3}, {"solid", 0},      {"dashed", 1},
    {"dotted", 2},   {"none", 0},     {"arrow", 1},   {"dot", 2},        {nullptr, 0}};
// clang-format off
const char* const kDefinitions[] = {
    "O $toplevel$", "[", "T graph", "]",
    "O graph", "[",
      "F title S", "F directed B R", "T node", "T edge",
    "]",
    "O node", "[",
      "F title S", "F group I", "F importance R",
      "S layout", "[", "F x R", "F y R", "F width I", "F height I", "]",
      "S drawing", "[",
        "E shape [box..diamond]", "F fill S",
        "S line", "[", "E stroke [solid..dotted]", "F thickness R", "]",
      "]",
    "]",
    "O edge", "[",
      "R from node R", "R to node R", "F weight R",
      "S layout", "[", "E routing [straight..orthogonal]", "F bend R", "]",
      "S drawing", "[", "E head [none arrow dot]", "]",
    "]",
    nullptr};
// clang-format on

// clang-format off
// The fields in the order in which the definitions name them first.
enum FieldIndex : nqLong {
  kTitle = NQ_OML_BUILT_IN_FIELDS,
  kDirected, kGroup, kImportance, kX, kY, kWidth, kHeight, kShape, kFill, kStroke,
  kThickness, kFrom, kTo, kWeight, kRouting, kBend, kHead
};
// clang-format on

class GraphReader : public NQOMLFile {
 public:
  std::unique_ptr<Graph> graph;

 protected:
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject*,
                          NQObject*) override {
    switch (syntax->typeIndex()) {
      case kGraph:
        graph = std::make_unique<Graph>();
        return graph.get();
      case kNode:
        return graph->nodes.emplace_back(std::make_unique<GraphNode>()).get();
      case kEdge:
        return graph->edges.emplace_back(std::make_unique<GraphEdge>()).get();
      default:
        return nullptr;
    }
  }

  int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                 NQObject* object) override {
    switch (syntax->typeIndex()) {
      case kNode:
        return readNodeField(*field, static_cast<GraphNode&>(*object));
      case kEdge:
        return readEdgeField(*field, static_cast<GraphEdge&>(*object));
      case kGraph:
        return readGraphField(*field, static_cast<Graph&>(*object));
      default:
        return 0;
    }
  }

 private:
  static int readGraphField(const NQOMLSyntaxField& field, Graph& object) {
    switch (field.nameIndex()) {
      case kTitle:
        object.title = field.stringValue();
        break;
      case kDirected:
        object.directed = field.boolValue() != 0;
        break;
      default:
        return 0;
    }
    return 1;
  }

  static int readNodeField(const NQOMLSyntaxField& field, GraphNode& node) {
    switch (field.nameIndex()) {
      case kTitle:
        node.title = field.stringValue();
        break;
      case kGroup:
        node.group = field.intValue();
        break;
      case kImportance:
        node.importance = field.doubleValue();
        break;
      case kX:
        node.x = field.doubleValue();
        break;
      case kY:
        node.y = field.doubleValue();
        break;
      case kWidth:
        node.width = field.intValue();
        break;
      case kHeight:
        node.height = field.intValue();
        break;
      case kShape:
        node.shape = field.enumValue();
        break;
      case kFill:
        node.fill = field.stringValue();
        break;
      case kStroke:
        node.stroke = field.enumValue();
        break;
      case kThickness:
        node.thickness = field.doubleValue();
        break;
      default:
        return 0;
    }
    return 1;
  }

  static int readEdgeField(const NQOMLSyntaxField& field, GraphEdge& edge) {
    switch (field.nameIndex()) {
      case kFrom:
        edge.from = static_cast<GraphNode*>(field.objectValue());
        break;
      case kTo:
        edge.to = static_cast<GraphNode*>(field.objectValue());
        break;
      case kWeight:
        edge.weight = field.doubleValue();
        break;
      case kRouting:
        edge.routing = field.enumValue();
        break;
      case kBend:
        edge.bend.push_back(field.doubleValue());
        break;
      case kHead:
        edge.head = field.enumValue();
        break;
      default:
        return 0;
    }
    return 1;
  }
};

template <std::size_t count>
const char* nameOf(const std::array<std::string_view, count>& names, int number) {
  return names.at(static_cast<std::size_t>(number)).data();
}

constexpr std::array<std::string_view, 4> kShapes = {"box", "rounded", "ellipse",
                                                     "diamond"};
constexpr std::array<std::string_view, 3> kStrokes = {"solid", "dashed", "dotted"};
constexpr std::array<std::string_view, 4> kRoutings = {"straight", "polyline", "curved",
                                                       "orthogonal"};
constexpr std::array<std::string_view, 3> kHeads = {"none", "arrow", "dot"};

}  // namespace

int shapeNumber(std::string_view name) {
  return numberOf(kShapes, name);
}
int strokeNumber(std::string_view name) {
  return numberOf(kStrokes, name);
}
int routingNumber(std::string_view name) {
  return numberOf(kRoutings, name);
}
int headNumber(std::string_view name) {
  return numberOf(kHeads, name);
}

const char* shapeName(int number) {
  return nameOf(kShapes, number);
}
const char* strokeName(int number) {
  return nameOf(kStrokes, number);
}
const char* routingName(int number) {
  return nameOf(kRoutings, number);
}
const char* headName(int number) {
  return nameOf(kHeads, number);
}

NQOMLStatic& graphGrammar() {
  static NQOMLStatic grammar(kTypes, kSections, kEnumerators, kDefinitions, 10000, 32, 16,
                             16, 32, 10000);
  return grammar;
}

double Graph::checksum() const {
  const auto textSum = [](const std::string& text) {
    double sum = 0;
    for (const char c : text) sum = sum * 3 + c;
    return sum;
  };
  double sum = textSum(title) + (directed ? 1 : 0);
  for (const auto& node : nodes) {
    sum += textSum(node->title) + node->group + node->importance + node->x + 2 * node->y +
           3 * node->width + 4 * node->height + 5 * node->shape + textSum(node->fill) +
           6 * node->stroke + 7 * node->thickness;
  }
  for (const auto& edge : edges) {
    sum += edge->from->x + 2 * edge->to->y + edge->weight + 3 * edge->routing +
           4 * edge->head;
    for (const double bend : edge->bend) sum = sum + bend;
  }
  return sum;
}

std::unique_ptr<Graph> readGraphOML(const std::string& path, bool binary) {
  GraphReader reader;
  if (reader.readOMLFile(path.c_str(), &graphGrammar(), nullptr, kGraph, binary ? 1 : 0,
                         0, 0) != NQ_FILE_OK ||
      reader.numberOfWarnings() > 0) {
    return nullptr;
  }
  return std::move(reader.graph);
}

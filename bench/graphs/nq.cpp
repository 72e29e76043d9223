// OML by the library's public interface, as its users write it: tables, three hooks,
// and the writing operations.

#include "graph.h"

#include "nq/oml/grammar.h"
#include "nq/oml/oml_file.h"
#include "nq/oml/syntax_tree.h"

namespace {

enum Type : nqLong { kGraph = 1, kNode, kEdge };  // in the order of kTypes

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
      "S layout", "[",
        kReals ? "F x R" : "F x I", kReals ? "F y R" : "F y I",
        "F width I", "F height I",
      "]",
      "S drawing", "[",
        "E shape [box..diamond]", "F fill S",
        "S line", "[",
          "E stroke [solid..dotted]", kReals ? "F thickness R" : "F thickness I",
        "]",
      "]",
    "]",
    "O edge", "[",
      "R from node R", "R to node R", "F title S", "F weight R",
      "S layout", "[",
        "E routing [straight..orthogonal]", kReals ? "F bend R" : "F bend I",
      "]",
      "S drawing", "[", "E head [none arrow dot]", "]",
    "]",
    nullptr};
// clang-format on

NQOMLStatic& grammar() {
  static NQOMLStatic built(kTypes, kSections, kEnumerators, kDefinitions, 100000, 32, 16,
                           16, 32, 100000);
  return built;
}

struct Value {
  bool take(std::string& value) const {
    value = field.stringValue();
    return true;
  }
  bool take(bool& value) const {
    value = field.boolValue() != 0;
    return true;
  }
  bool take(int& value) const {
    value = field.intValue();
    return true;
  }
  bool take(double& value) const {
    value = field.doubleValue();
    return true;
  }
  bool take(int& value, const Names&) const {
    value = field.enumValue();
    return true;
  }
  bool take(GraphNode*& value) const {
    value = static_cast<GraphNode*>(field.objectValue());
    return true;
  }
  bool take(std::vector<Number>& values) const { return take(values.emplace_back()); }

  const NQOMLSyntaxField& field;
};

class Reader : public NQOMLFile {
 public:
  std::unique_ptr<Graph> graph = std::make_unique<Graph>();

 protected:
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject*,
                          NQObject*) override {
    switch (syntax->typeIndex()) {
      case kGraph:
        return graph.get();
      case kNode:
        return &graph->nodes.emplace_back(graph.get());
      case kEdge:
        return &graph->edges.emplace_back(graph.get());
      default:
        return nullptr;
    }
  }

  int vReadField(NQOMLSyntaxField* syntax, NQOMLSyntaxObject* owner,
                 NQObject* object) override {
    const auto field = static_cast<Field>(syntax->nameIndex() - NQ_OML_BUILT_IN_FIELDS);
    const Value value = {*syntax};
    switch (owner->typeIndex()) {
      case kNode:
        return fill(static_cast<GraphNode&>(*object), field, value) ? 1 : 0;
      case kEdge:
        return fill(static_cast<GraphEdge&>(*object), field, value) ? 1 : 0;
      default:
        return fill(static_cast<Graph&>(*object), field, value) ? 1 : 0;
    }
  }
};

std::unique_ptr<Graph> read(const std::string& path, int binary) {
  Reader reader;
  if (reader.readOMLFile(path.c_str(), &grammar(), nullptr, kGraph, binary, 0, 0) !=
          NQ_FILE_OK ||
      reader.numberOfWarnings() > 0)
    return nullptr;
  return std::move(reader.graph);
}

class Writer : public NQOMLFile {
 protected:
  void vWriteObject(NQObject* top) override {
    auto& graph = *static_cast<Graph*>(top);
    graph.preFileWrite(this);
    writeObjectStart("graph", &graph, 0, 1);
    writeOpeningBracket();
    writeStringAttribute("title", graph.title.c_str());
    writeBoolAttribute("directed", graph.directed ? 1 : 0);
    for (const GraphNode& node : graph.nodes) write(node);
    for (const GraphEdge& edge : graph.edges) write(edge);
    writeClosingBracket();
    graph.postFileWrite(this, NQ_FILE_OK);
  }

 private:
  void write(const GraphNode& node) {
    writeObjectStart("node", &node, 0, 1);
    writeOpeningBracket();
    writeStringAttribute("title", node.title.c_str());
    writeAttribute("group", node.group);
    if (kReals) writeAttribute("importance", node.importance);
    openSection("layout");
    writeAttribute("x", node.x);
    writeAttribute("y", node.y);
    writeAttribute("width", node.width);
    writeAttribute("height", node.height);
    writeClosingBracket();
    openSection("drawing");
    writeAttribute("shape", nameOf(node.shape, kShapes));
    if (kReals) writeStringAttribute("fill", node.fill.c_str());
    openSection("line");
    if (kReals) writeAttribute("stroke", nameOf(node.stroke, kStrokes));
    writeAttribute("thickness", node.thickness);
    writeClosingBracket();
    writeClosingBracket();
    writeClosingBracket();
  }

  void write(const GraphEdge& edge) {
    writeObjectStart("edge", &edge, 0, 1);
    writeOpeningBracket();
    writeAttribute("from", edge.from, &edge, 1);
    writeAttribute("to", edge.to, &edge, 1);
    if (!kReals) writeStringAttribute("title", edge.title.c_str());
    writeAttribute("weight", edge.weight);
    openSection("layout");
    if (kReals) writeAttribute("routing", nameOf(edge.routing, kRoutings));
    for (const Number bend : edge.bend) writeAttribute("bend", bend);
    writeClosingBracket();
    if (kReals) {
      openSection("drawing");
      writeAttribute("head", nameOf(edge.head, kHeads));
      writeClosingBracket();
    }
    writeClosingBracket();
  }

  void openSection(const char* name) {
    writeSectionStart(name, 1);
    writeOpeningBracket();
  }
};

bool write(Graph& graph, const std::string& path, int binary, int lossless) {
  Writer writer;
  writer.losslessWriting(lossless);
  return writer.writeOMLFile(path.c_str(), &grammar(), &graph, binary, 0, 0) ==
         NQ_FILE_OK;
}

void prepare() {
  (void)grammar();
}

std::unique_ptr<Graph> readText(const std::string& path) {
  return read(path, 0);
}

std::unique_ptr<Graph> readBinary(const std::string& path) {
  return read(path, 1);
}

bool writeText(Graph& graph, const std::string& path) {
  return write(graph, path, 0, 0);
}

bool writeLossless(Graph& graph, const std::string& path) {
  return write(graph, path, 0, 1);
}

bool writeBinary(Graph& graph, const std::string& path) {
  return write(graph, path, 1, 0);
}

}  // namespace

const Format kNQText = {"nq-text", prepare, readText, writeText};
const Format kNQLossless = {"nq-lossless-text", prepare, readText, writeLossless};
const Format kNQBinary = {"nq-binary", prepare, readBinary, writeBinary};

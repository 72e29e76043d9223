#include "graph_file.h"

#include <array>
#include <cctype>
#include <string_view>

namespace {

const char* const kTypes[] = {"graph", "node", "edge", "label", nullptr};

const char* const kSections[] = {"origin", "layout", "margins", "drawing",
                                 "line",   "font",   nullptr};

NQOMLStaticVEStruct kEnumerators[] = {
    {"layered", 0},  {"force", 1},    {"circular", 2},                     // algorithm
    {"down", 0},     {"up", 1},       {"leftward", 2}, {"rightward", 3},   // flow
    {"straight", 0}, {"polyline", 1}, {"curved", 2},   {"orthogonal", 3},  // routing
    {"box", 0},      {"rounded", 1},  {"ellipse", 2},  {"diamond", 3},     // shape
    {"solid", 0},    {"dashed", 1},   {"dotted", 2},                       // stroke
    {"none", 0},     {"arrow", 1},    {"dot", 2},                          // head
    {"centered", 0}, {"above", 1},    {"below", 2},                        // place
    {nullptr, 0}};

// clang-format off
const char* const kDefinitions[] = {
    "O $toplevel$", "[", "T graph", "]",
    "O graph", "[",
      "F title S", "F directed B R",
      "S origin", "[", "F citation S", "F server P", "F digest X", "]",
      "S layout", "[",
        "E algorithm [layered..circular]", "E flow [down..rightward]",
        "F spacing R", "F seed I",
        "S margins", "[", "F horizontal I", "F vertical I", "]",
      "]",
      "S drawing", "[", "F background S", "]",
      "T graph", "T node", "T edge", "T label",
    "]",
    "O node", "[",
      "F title S", "F group I", "F importance R",
      "F address P", "F icon X", "R parent node",
      "S layout", "[",
        "F x R", "F y R", "F width I", "F height I", "F fixed B",
      "]",
      "S drawing", "[",
        "E shape [box..diamond]", "F fill S",
        "S line", "[", "E stroke [solid..dotted]", "F thickness R", "]",
        "S font", "[", "F family S", "F points I", "]",
      "]",
      "T label",
    "]",
    "O edge", "[",
      "R from node R", "R to node R", "F weight R",
      "R bundle edge", "R subject _",
      "S layout", "[", "E routing [straight..orthogonal]", "F bend R", "]",
      "S drawing", "[",
        "E head [none arrow dot]",
        "S line", "[", "E stroke [solid..dotted]", "F thickness R", "]",
      "]",
      "T label",
    "]",
    "O label", "[",
      "F text S R", "E place [centered above below]",
      "S drawing", "[", "S font", "[", "F family S", "F points I", "]", "]",
    "]",
    nullptr};
// clang-format on

template <class Enum, std::size_t count>
const char* word(const std::array<const char*, count>& words, Enum value) {
  return words.at(static_cast<std::size_t>(value));
}

// Fields that say what a layout computes anew.
template <class T>
void passOver(T&, const NQOMLSyntaxField&, NQOMLFile&) {}

void setEnd(Node*& end, const NQOMLSyntaxField& field) {
  if (auto* const node = dynamic_cast<Node*>(field.objectValue())) end = node;
}

// Fields that are neither drawn nor written.
template <class T>
void leaveOut(T&, const NQOMLSyntaxField& field, NQOMLFile& file) {
  static_cast<GraphFile&>(file).leaveOut(field);
}

}  // namespace

const char* wordOf(Flow flow) {
  return word<Flow, 4>({"down", "up", "leftward", "rightward"}, flow);
}

const char* wordOf(ShapeKind shape) {
  return word<ShapeKind, 4>({"box", "rounded", "ellipse", "diamond"}, shape);
}

const char* wordOf(Stroke stroke) {
  return word<Stroke, 3>({"solid", "dashed", "dotted"}, stroke);
}

const char* wordOf(Head head) {
  return word<Head, 3>({"none", "arrow", "dot"}, head);
}

GraphGrammar::GraphGrammar()
    : NQOMLStatic(kTypes, kSections, kEnumerators, kDefinitions, 1000, 100, 100, 100, 100,
                  1000) {
  using Field = const NQOMLSyntaxField&;
  const auto add = [this](auto& readers, const char* name, auto reader) {
    readers.add(*this, name, reader);
  };
  add(graphFields, "title",
      [](Graph& g, Field f, NQOMLFile&) { g.title = f.stringValue(); });
  add(graphFields, "directed",
      [](Graph& g, Field f, NQOMLFile&) { g.directed = f.boolValue() != 0; });
  add(graphFields, "citation",
      [](Graph& g, Field f, NQOMLFile&) { g.citation = f.stringValue(); });
  add(graphFields, "flow",
      [](Graph& g, Field f, NQOMLFile&) { g.flow = static_cast<Flow>(f.enumValue()); });
  add(graphFields, "spacing", [](Graph& g, Field f, NQOMLFile& file) {
    const double spacing = f.doubleValue();
    if (spacing >= 1 && spacing <= 10000) {
      g.spacing = spacing;
    } else {
      file.warningMessage(const_cast<NQOMLSyntaxField*>(&f), 100,
                          "spacing is not between 1 and 10000");
    }
  });
  for (const char* name : {"algorithm", "seed"}) add(graphFields, name, passOver<Graph>);
  for (const char* name : {"server", "digest", "horizontal", "vertical", "background"})
    add(graphFields, name, leaveOut<Graph>);

  add(nodeFields, "title",
      [](Node& n, Field f, NQOMLFile&) { n.title = f.stringValue(); });
  add(nodeFields, "group", [](Node& n, Field f, NQOMLFile&) { n.group = f.intValue(); });
  add(nodeFields, "importance",
      [](Node& n, Field f, NQOMLFile&) { n.importance = f.doubleValue(); });
  add(nodeFields, "shape", [](Node& n, Field f, NQOMLFile&) {
    n.shape = static_cast<ShapeKind>(f.enumValue());
  });
  add(nodeFields, "fill", [](Node& n, Field f, NQOMLFile& file) {
    NQColor color;
    if (parseHex(f.stringValue(), color)) {
      n.fill(color);
    } else {
      file.warningMessage(const_cast<NQOMLSyntaxField*>(&f), 101,
                          "colour is not of the form #rrggbb");
    }
  });
  add(nodeFields, "stroke", [](Node& n, Field f, NQOMLFile&) {
    n.stroke = static_cast<Stroke>(f.enumValue());
  });
  add(nodeFields, "thickness",
      [](Node& n, Field f, NQOMLFile&) { n.thickness = f.doubleValue(); });
  for (const char* name : {"x", "y", "width", "height"})
    add(nodeFields, name, passOver<Node>);
  for (const char* name : {"address", "icon", "parent", "fixed", "family", "points"})
    add(nodeFields, name, leaveOut<Node>);

  add(edgeFields, "from", [](Edge& e, Field f, NQOMLFile&) { setEnd(e.from, f); });
  add(edgeFields, "to", [](Edge& e, Field f, NQOMLFile&) { setEnd(e.to, f); });
  add(edgeFields, "weight",
      [](Edge& e, Field f, NQOMLFile&) { e.weight = f.doubleValue(); });
  add(edgeFields, "head",
      [](Edge& e, Field f, NQOMLFile&) { e.head = static_cast<Head>(f.enumValue()); });
  for (const char* name : {"routing", "bend"}) add(edgeFields, name, passOver<Edge>);
  for (const char* name : {"bundle", "subject"}) add(edgeFields, name, leaveOut<Edge>);
  add(edgeFields, "stroke", [](Edge& e, Field f, NQOMLFile&) {
    e.stroke = static_cast<Stroke>(f.enumValue());
  });
  add(edgeFields, "thickness",
      [](Edge& e, Field f, NQOMLFile&) { e.thickness = f.doubleValue(); });

  add(labelFields, "text",
      [](Label& l, Field f, NQOMLFile&) { l.text = f.stringValue(); });
  for (const char* name : {"place", "family", "points"})
    add(labelFields, name, leaveOut<Label>);
}

// ---- The factory

namespace {

// Makes an element for its owner, who keeps it in one of its lists.
template <class Made, class Owner>
NQOMLObject* makeIn(NQDList Owner::*list, NQOMLObject* owner) {
  auto& keeper = static_cast<Owner&>(*owner);
  auto* const made = new Made(&keeper);
  (keeper.*list).appendObject(made);
  return made;
}

}  // namespace

NQOMLObject* GraphFactory::vNewGraph(NQOMLObject* owner, int) {
  // Where no owner was given, the factory is.
  return owner == this ? new Graph : makeIn<Graph>(&Graph::graphs, owner);
}

NQOMLObject* GraphFactory::vNewNode(NQOMLObject* owner, int) {
  return makeIn<Node>(&Graph::nodes, owner);
}

NQOMLObject* GraphFactory::vNewEdge(NQOMLObject* owner, int) {
  return makeIn<Edge>(&Graph::edges, owner);
}

NQOMLObject* GraphFactory::vNewGraphLabel(NQOMLObject* owner, int) {
  return makeIn<Label>(&Graph::labels, owner);
}

NQOMLObject* GraphFactory::vNewNodeLabel(NQOMLObject* owner, int) {
  return makeIn<Label>(&Node::labels, owner);
}

NQOMLObject* GraphFactory::vNewEdgeLabel(NQOMLObject* owner, int) {
  return makeIn<Label>(&Edge::labels, owner);
}

NQOMLFile* GraphFactory::vNewGraphFile(NQOMLObject*) {
  return new GraphFile(this);
}

NQOMLStatic* GraphFactory::vNewGrammar() {
  return new GraphGrammar;
}

// ---- Files

GraphFile::GraphFile(GraphFactory* factory) : factory_(factory) {
  pErrorStringBuffer(1 << 16);
  pWarningStringBuffer(1 << 16);
  losslessWriting(1);
  strictReading(1);  // whoever wrote the file: an edge has both its ends
}

std::unique_ptr<Graph> GraphFile::read(const char* name, GraphGrammar& grammar,
                                       bool binary) {
  graphs_.clear();
  leftOut_.clear();
  sharedReading(1);  // others may look at the graph at the same time
  const NQFileCodeEnum result =
      readOMLFile(name, &grammar, nullptr, -1, binary ? 1 : 0, 0, 0);
  if (result != NQ_FILE_OK || graphs_.size() != 1) return nullptr;
  return std::move(graphs_.front());
}

bool GraphFile::write(const char* name, GraphGrammar& grammar, Graph& graph,
                      bool binary) {
  return writeOMLFile(name, &grammar, &graph, binary ? 1 : 0, 0, 0) == NQ_FILE_OK;
}

void GraphFile::leaveOut(const NQOMLSyntaxField& field) {
  std::string name = field.nameString();  // in upper case, as names are kept
  for (char& c : name) c = static_cast<char>(std::tolower(c));
  ++leftOut_[name];
}

NQObject* GraphFile::vCreateObject(NQOMLSyntaxObject* syntax,
                                   NQOMLSyntaxObject* ownerSyntax, NQObject* owner) {
  auto* const keeper = static_cast<NQOMLObject*>(owner);
  switch (syntax->typeIndex()) {
    case kGraphType:
      if (keeper != nullptr) return factory_->nqNewGraph(keeper, 0);
      graphs_.emplace_back(static_cast<Graph*>(factory_->nqNewGraph(nullptr, 0)));
      return graphs_.back().get();
    case kNodeType:
      return factory_->nqNewNode(keeper, 0);
    case kEdgeType:
      return factory_->nqNewEdge(keeper, 0);
    case kLabelType:
      switch (ownerSyntax->typeIndex()) {
        case kNodeType:
          return factory_->nqNewNodeLabel(keeper, 0);
        case kEdgeType:
          return factory_->nqNewEdgeLabel(keeper, 0);
        default:
          return factory_->nqNewGraphLabel(keeper, 0);
      }
    default:
      return nullptr;
  }
}

void GraphFile::vWriteObject(NQObject* top) {
  auto& graph = static_cast<Graph&>(*top);
  graph.preFileWrite(this);
  graph.write(*this);
  graph.postFileWrite(this, NQ_FILE_OK);
}

// Reads graphs: a grammar in tables, and a reader that makes the application's
// objects from what it finds.
//
//   nq_example_oml FILE.oml

#include <cstdio>
#include <memory>
#include <vector>

#include "nq/nq.h"

namespace {

const char* const kTypes[] = {"graph", "node", "edge", nullptr};
const char* const kSections[] = {"layout", nullptr};
const NQOMLStaticVEStruct kEnumerators[] = {{"box", 0}, {"ellipse", 1}, {nullptr, 0}};

// What may stand where; each text is one entry.
// clang-format off
const char* const kDefinitions[] = {
    "O $toplevel$", "[", "T graph", "]",

    "O graph", "[",
      "F title S",
      "T node",
      "T edge", "]",

    "O node", "[",
      "E shape [box ellipse]",
      "S layout", "[",
        "F x R",
        "F y R", "]", "]",

    "O edge", "[",
      "R from node R",  // a reference to a node, and required
      "R to node R", "]",

    nullptr};
// clang-format on

class Node : public NQObject {
  NQ_COPY_MEMBERWISE(Node)

 public:
  Node() = default;

  NQText name;
  double x = 0;
  double y = 0;
  int shape = 0;
};

class Edge : public NQObject {
  NQ_COPY_MEMBERWISE(Edge)

 public:
  Edge() = default;

  const Node* from = nullptr;
  const Node* to = nullptr;
};

class GraphReader : public NQOMLFile {
 public:
  std::vector<std::unique_ptr<Node>> nodes;
  std::vector<std::unique_ptr<Edge>> edges;
  NQInternalText title{"Untitled"};

 protected:
  // Called for each object of the file, parents first.
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject*,
                          NQObject*) override {
    if (isType(syntax, "node")) {
      nodes.push_back(std::make_unique<Node>());
      nodes.back()->name.pString(syntax->nameString());
      return nodes.back().get();
    }
    if (isType(syntax, "edge")) {
      edges.push_back(std::make_unique<Edge>());
      return edges.back().get();
    }
    return nullptr;
  }

  // Called for each field once all objects are made, so that references lead
  // somewhere.
  int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQObject* object) override {
    if (auto* const node = dynamic_cast<Node*>(object)) {
      if (isField(field, "shape")) node->shape = field->enumValue();
      if (isField(field, "x")) node->x = field->doubleValue();
      if (isField(field, "y")) node->y = field->doubleValue();
    } else if (auto* const edge = dynamic_cast<Edge*>(object)) {
      const auto* const end = dynamic_cast<const Node*>(field->objectValue());
      if (isField(field, "from")) edge->from = end;
      if (isField(field, "to")) edge->to = end;
    } else if (isField(field, "title")) {
      title.pString(field->stringValue());
    }
    return 1;
  }

 private:
  // Names are numbers since the grammar was built.
  bool isType(const NQOMLSyntaxObject* syntax, const char* name) const {
    return syntax->typeIndex() == pOMLStatic()->pObjTypePool()->lookup(name);
  }
  bool isField(const NQOMLSyntaxField* field, const char* name) const {
    return field->nameIndex() == pOMLStatic()->pFieldPool()->lookup(name);
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::printf("usage: %s FILE.oml\n", argv[0]);
    return 2;
  }
  NQOMLStatic grammar(kTypes, kSections, kEnumerators, kDefinitions);
  GraphReader reader;
  reader.strictReading(1);          // whoever wrote the file, the grammar holds
  reader.pErrorStringBuffer(2000);  // where messages are gathered
  if (reader.readOMLFile(argv[1], &grammar, /*top=*/nullptr, /*topTypeIndex=*/0,
                         /*binary=*/0, /*useIndexHashTable=*/0, 0) != NQ_FILE_OK) {
    std::printf("%s", reader.pErrorStringBuffer());
    return 1;
  }
  std::printf("%s\n", reader.title.pString());
  for (const auto& node : reader.nodes) {
    std::printf("%s at (%g, %g)%s\n", node->name.pString(), node->x, node->y,
                node->shape == 1 ? ", an ellipse" : "");
  }
  for (const auto& edge : reader.edges) {
    if (edge->from == nullptr || edge->to == nullptr) continue;
    std::printf("%s to %s\n", edge->from->name.pString(), edge->to->name.pString());
  }

  NQMemorySource source("graph triangle { title: \"In memory\" }");
  GraphReader memoryReader;
  if (memoryReader.readOML(source, "<memory>", &grammar, nullptr, 0, 0, 0) ==
      NQ_FILE_OK) {
    std::printf("%s\n", memoryReader.title.pString());
  }
}

// graph_file.h -- graphs in files: the grammar, the factory and the reader.

#ifndef LAYERED_GRAPH_FILE_H
#define LAYERED_GRAPH_FILE_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "graph.h"

// How the fields of one kind of object are read: a function for each name.
template <class T>
class FieldReaders {
 public:
  using Reader = void (*)(T& object, const NQOMLSyntaxField& field, NQOMLFile& file);

  void add(const NQOMLStatic& grammar, const char* name, Reader reader) {
    const auto index = static_cast<std::size_t>(grammar.pFieldPool()->lookup(name));
    if (index >= readers_.size()) readers_.resize(index + 1);
    readers_[index] = reader;
  }
  // 1 when the field was taken, as the reading hooks answer.
  int read(T& object, NQOMLSyntaxField& field, NQOMLFile& file) const {
    const auto index = static_cast<std::size_t>(field.nameIndex());
    if (index >= readers_.size() || readers_[index] == nullptr) return 0;
    readers_[index](object, field, file);
    return 1;
  }

 private:
  std::vector<Reader> readers_;  // by the index of the name
};

// The object types in the order of the grammar's table.
enum ElementType : nqLong { kGraphType = 1, kNodeType, kEdgeType, kLabelType };

class GraphGrammar : public NQOMLStatic {
 public:
  GraphGrammar();
  static const GraphGrammar& of(const NQOMLFile& file) {
    return static_cast<const GraphGrammar&>(*file.pOMLStatic());
  }

  FieldReaders<Graph> graphFields;
  FieldReaders<Node> nodeFields;
  FieldReaders<Edge> edgeFields;
  FieldReaders<Label> labelFields;
};

// The words that stand for enumerators in a file.
const char* wordOf(Flow flow);
const char* wordOf(ShapeKind shape);
const char* wordOf(Stroke stroke);
const char* wordOf(Head head);

// Makes graphs and what they consist of. An owner keeps what is made for it.
class GraphFactory : public NQUFactory {
 protected:
  NQOMLObject* vNewGraph(NQOMLObject* owner, int flag) override;
  NQOMLObject* vNewNode(NQOMLObject* owner, int flag) override;
  NQOMLObject* vNewEdge(NQOMLObject* owner, int flag) override;
  NQOMLObject* vNewGraphLabel(NQOMLObject* owner, int flag) override;
  NQOMLObject* vNewNodeLabel(NQOMLObject* owner, int flag) override;
  NQOMLObject* vNewEdgeLabel(NQOMLObject* owner, int flag) override;
  NQOMLFile* vNewGraphFile(NQOMLObject* owner) override;
  NQOMLStatic* vNewGrammar() override;
};

// Reads and writes a graph. Messages of a read are in pErrorStringBuffer().
class GraphFile : public NQOMLFile {
 public:
  explicit GraphFile(GraphFactory* factory);

  // The graph in the file, or null when it has an error.
  std::unique_ptr<Graph> read(const char* name, GraphGrammar& grammar, bool binary);
  // The fields of that file for which a graph has no place: how many of each name.
  const std::map<std::string, int>& leftOut() const { return leftOut_; }
  void leaveOut(const NQOMLSyntaxField& field);
  // Whether the whole graph was written. What is written reads back equal.
  bool write(const char* name, GraphGrammar& grammar, Graph& graph, bool binary);

 protected:
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject* ownerSyntax,
                          NQObject* owner) override;
  void vWriteObject(NQObject* top) override;

 private:
  GraphFactory* factory_;
  std::vector<std::unique_ptr<Graph>> graphs_;  // outermost ones of this read
  std::map<std::string, int> leftOut_;
};

#endif  // LAYERED_GRAPH_FILE_H

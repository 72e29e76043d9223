// graph.h -- the objects of a graph that reads, writes and draws itself.
//
// A Graph owns its nodes, edges, labels and nested graphs; an edge refers to two nodes,
// wherever they are. Colours and outlines are values that many nodes share: they live
// once in the resource databases of the outermost graph. y grows upward, as everywhere in
// nq.

#ifndef LAYERED_GRAPH_H
#define LAYERED_GRAPH_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <nq/nq.h>

class Graph;

// The words of each enumeration stand in graph_file.cpp, in this order.
enum class Flow { kDown, kUp, kLeftward, kRightward };
enum class ShapeKind { kBox, kRounded, kEllipse, kDiamond };
enum class Stroke { kSolid, kDashed, kDotted };
enum class Head { kNone, kArrow, kDot };

// The objects of an NQDList as what they are, for range-based loops.
template <class T>
class Range {
 public:
  explicit Range(const NQDList& list) : list_(list) {}
  class Iterator {
   public:
    explicit Iterator(NQDListCell* cell) : cell_(cell) {}
    T* operator*() const { return static_cast<T*>(cell_->pObject()); }
    Iterator& operator++() {
      cell_ = cell_->pNextCell();
      return *this;
    }
    bool operator!=(const Iterator& other) const { return cell_ != other.cell_; }

   private:
    NQDListCell* cell_;
  };
  Iterator begin() const { return Iterator(list_.pFirstCell()); }
  Iterator end() const { return Iterator(nullptr); }

 private:
  const NQDList& list_;
};

// An object of a graph: it knows its owner, takes its fields from a file and
// writes itself to one.
class Element : public NQOMLObject {
 public:
  explicit Element(NQOMLObject* owner) : owner_(owner) {}
  Element(const Element&) = delete;
  Element& operator=(const Element&) = delete;

  NQOMLObject* pOMLOwner() const override { return owner_; }
  virtual void write(NQOMLFile& file) const = 0;

 private:
  NQOMLObject* owner_;
};

class Label : public Element {
 public:
  using Element::Element;
  int readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                NQOMLFile* file) override;
  void write(NQOMLFile& file) const override;

  std::string text;
};

class Node : public Element {
 public:
  explicit Node(Graph* graph);
  ~Node() override { labels.deleteAllCellsAndObjects(); }

  // A file's id serves as title where none is given.
  void preReadFields(NQOMLSyntaxObject* syntax, NQOMLFile* file) override;
  int readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                NQOMLFile* file) override;
  void collectOwnedOMLObjects(NQDList& parts) override;
  void write(NQOMLFile& file) const override;

  // The outline and the colour are shared with other nodes.
  const NQShape& outline() const;
  const NQColor* fill() const;  // null for none
  void fill(const NQColor& color);

  NQRect box() const { return NQRect(center, size); }
  Graph& graph() const;  // the innermost that it is in

  std::string title;
  int group = 0;
  double importance = 1;
  ShapeKind shape = ShapeKind::kBox;
  Stroke stroke = Stroke::kSolid;
  double thickness = 1;
  NQPoint center;
  NQSize size;     // (0, 0) until it is read or computed
  NQDList labels;  // of Label, owned

 private:
  const NQResource* fill_ = nullptr;
};

class Edge : public Element {
 public:
  using Element::Element;
  ~Edge() override { labels.deleteAllCellsAndObjects(); }

  int readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                NQOMLFile* file) override;
  void collectOwnedOMLObjects(NQDList& parts) override;
  void write(NQOMLFile& file) const override;

  Node* from = nullptr;
  Node* to = nullptr;
  double weight = 1;
  Head head = Head::kArrow;
  Stroke stroke = Stroke::kSolid;
  double thickness = 1;
  std::vector<NQPoint> route;  // its ends included; empty when it is not drawn
  NQPoint labelCenter;
  NQDList labels;  // of Label, owned
};

class Graph : public Element {
 public:
  // `owner`: the graph in which it is nested; null for none.
  explicit Graph(Graph* owner = nullptr);
  ~Graph() override;

  // A file's id serves as title where none is given.
  void preReadFields(NQOMLSyntaxObject* syntax, NQOMLFile* file) override;
  int readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                NQOMLFile* file) override;
  void collectOwnedOMLObjects(NQDList& parts) override;
  void write(NQOMLFile& file) const override;

  // The one copy of a value that all its users share.
  const NQResource* shared(const NQColor& color);
  // That of all nodes of a kind; equal ones are shared by kinds, too.
  const NQShape& outline(ShapeKind kind) const;

  bool nested() const { return pOMLOwner() != nullptr; }
  // Adds those of this graph and of all that are nested in it.
  void collectNodes(NQDList& all) const;
  void collectEdges(NQDList& all) const;

  std::string title;
  std::string citation;
  bool directed = true;
  Flow flow = Flow::kDown;
  double spacing = 24;
  NQDList nodes;   // of Node, owned
  NQDList edges;   // of Edge, owned
  NQDList labels;  // of Label, owned
  NQDList graphs;  // of Graph, owned

 private:
  // Where what is shared stands.
  Graph& outermost();
  const Graph& outermost() const;

  NQColorResourceDB colors_;
  NQShapeResourceDB shapes_;
  std::array<const NQResource*, 4> outlines_{};  // by kind
};

// The folder that the title begins with, up to its last slash, as in "nq/core/text.h";
// empty for none and in nested graphs. A colour tells it.
std::string_view folderOf(const Node& node);

// The lines of what is shown: of a node its title without a folder, and then its labels.
std::vector<std::string_view> linesOf(const Node& node);
std::vector<std::string_view> linesOf(const Edge& edge);

// "#rrggbb" for a colour, and back; false for any other text.
std::string hexOf(const NQColor& color);
bool parseHex(std::string_view text, NQColor& color);

#endif  // LAYERED_GRAPH_H

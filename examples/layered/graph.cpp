#include "graph.h"

#include <charconv>

#include "graph_file.h"

namespace {

void writeSection(NQOMLFile& file, const char* name) {
  file.writeSectionStart(name, 0);
  file.writeOpeningBracket();
}

void writeStart(NQOMLFile& file, const char* type, const NQOMLObject& object) {
  file.writeObjectStart(type, &object, 0, 1);
  file.writeOpeningBracket();
}

void writeAll(NQOMLFile& file, const NQDList& elements) {
  for (const Element* element : Range<Element>(elements)) element->write(file);
}

// The id of an object without those of what it is in.
std::string_view lastNameOf(NQOMLSyntaxObject& syntax) {
  const std::string_view path = syntax.nameString();
  return path.substr(path.rfind(',') + 1);
}

// Which part of the node's box an outline leaves for text, in thousandths.
NQRect textPlace(ShapeKind kind) {
  switch (kind) {
    case ShapeKind::kEllipse:
      return NQRect(-707, -707, 707, 707);
    case ShapeKind::kDiamond:
      return NQRect(-500, -500, 500, 500);
    default:
      return NQRect(-1000, -1000, 1000, 1000);
  }
}

void addLines(std::string_view text, std::vector<std::string_view>& lines) {
  for (;;) {
    const std::size_t end = text.find('\n');
    lines.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

NQPointDList* diamondCorners() {
  auto* const corners = new NQPointDList;
  corners->appendPoint(new NQPoint(0, -1000));
  corners->appendPoint(new NQPoint(1000, 0));
  corners->appendPoint(new NQPoint(0, 1000));
  corners->appendPoint(new NQPoint(-1000, 0));
  return corners;
}

NQShape outlineOf(ShapeKind kind) {
  NQShape shape(kind == ShapeKind::kEllipse ? NQShapeEllipse : NQShapeRectangle);
  if (kind == ShapeKind::kDiamond) shape.pPointList(diamondCorners());
  shape.setInnerRect(textPlace(kind));
  return shape;
}

}  // namespace

// ---- Labels

int Label::readField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQOMLFile* file) {
  return GraphGrammar::of(*file).labelFields.read(*this, *field, *file);
}

void Label::write(NQOMLFile& file) const {
  file.writeObjectStart("label", this, 1);
  file.writeOpeningBracket();
  file.writeStringAttribute("text", text.c_str());
  file.writeClosingBracket();
}

// ---- Nodes

Node::Node(Graph* graph) : Element(graph) {}

Graph& Node::graph() const {
  return static_cast<Graph&>(*pOMLOwner());
}

const NQShape& Node::outline() const {
  return graph().outline(shape);
}

const NQColor* Node::fill() const {
  return fill_ == nullptr ? nullptr
                          : static_cast<const NQColorResource*>(fill_)->pColor();
}

void Node::fill(const NQColor& color) {
  fill_ = graph().shared(color);
}

void Node::preReadFields(NQOMLSyntaxObject* syntax, NQOMLFile*) {
  title = lastNameOf(*syntax);
}

int Node::readField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQOMLFile* file) {
  return GraphGrammar::of(*file).nodeFields.read(*this, *field, *file);
}

void Node::collectOwnedOMLObjects(NQDList& parts) {
  parts.copyAppendList(&labels);
}

void Node::write(NQOMLFile& file) const {
  writeStart(file, "node", *this);
  file.writeStringAttribute("title", title.c_str());
  file.writeAttribute("group", group);
  if (importance != 1) file.writeAttribute("importance", importance);
  writeSection(file, "layout");
  file.writeAttribute("x", static_cast<double>(center.x()));
  file.writeAttribute("y", static_cast<double>(center.y()));
  file.writeAttribute("width", static_cast<int>(size.width()));
  file.writeAttribute("height", static_cast<int>(size.height()));
  file.writeClosingBracket();
  writeSection(file, "drawing");
  file.writeAttribute("shape", wordOf(shape));
  if (fill_ != nullptr) file.writeStringAttribute("fill", hexOf(*fill()).c_str());
  writeSection(file, "line");
  file.writeAttribute("stroke", wordOf(stroke));
  file.writeAttribute("thickness", thickness);
  file.writeClosingBracket();
  file.writeClosingBracket();
  writeAll(file, labels);
  file.writeClosingBracket();
}

std::string_view folderOf(const Node& node) {
  if (node.graph().nested()) return {};
  const std::string_view line =
      std::string_view(node.title).substr(0, node.title.find('\n'));
  if (line.size() < 2) return {};
  return line.substr(0, line.rfind('/', line.size() - 2) + 1);  // some name remains
}

std::vector<std::string_view> linesOf(const Node& node) {
  std::vector<std::string_view> lines;
  addLines(std::string_view(node.title).substr(folderOf(node).size()), lines);
  for (const Label* label : Range<Label>(node.labels)) addLines(label->text, lines);
  return lines;
}

std::vector<std::string_view> linesOf(const Edge& edge) {
  std::vector<std::string_view> lines;
  for (const Label* label : Range<Label>(edge.labels)) addLines(label->text, lines);
  return lines;
}

// ---- Edges

int Edge::readField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQOMLFile* file) {
  return GraphGrammar::of(*file).edgeFields.read(*this, *field, *file);
}

void Edge::collectOwnedOMLObjects(NQDList& parts) {
  parts.copyAppendList(&labels);
}

void Edge::write(NQOMLFile& file) const {
  auto* const self = const_cast<Edge*>(this);  // addresses are made without const
  writeStart(file, "edge", *this);
  file.writeAttribute("from", from, self, 1);
  file.writeAttribute("to", to, self, 1);
  if (weight != 1) file.writeAttribute("weight", weight);
  if (!route.empty()) {
    writeSection(file, "layout");
    file.writeAttribute("routing", "curved");
    for (const NQPoint& point : route) {
      file.writeAttribute("bend", static_cast<double>(point.x()));
      file.writeAttribute("bend", static_cast<double>(point.y()));
    }
    file.writeClosingBracket();
  }
  writeSection(file, "drawing");
  file.writeAttribute("head", wordOf(head));
  if (stroke != Stroke::kSolid || thickness != 1) {
    writeSection(file, "line");
    file.writeAttribute("stroke", wordOf(stroke));
    file.writeAttribute("thickness", thickness);
    file.writeClosingBracket();
  }
  file.writeClosingBracket();
  writeAll(file, labels);
  file.writeClosingBracket();
}

// ---- The graph

Graph::Graph(Graph* owner) : Element(owner) {
  if (owner != nullptr) return;
  for (std::size_t kind = 0; kind < outlines_.size(); ++kind) {
    const NQShape shape = outlineOf(static_cast<ShapeKind>(kind));
    outlines_[kind] = shapes_.insert(new NQShapeResource(&shapes_, &shape));
  }
}

Graph::~Graph() {
  edges.deleteAllCellsAndObjects();
  nodes.deleteAllCellsAndObjects();
  labels.deleteAllCellsAndObjects();
  graphs.deleteAllCellsAndObjects();
}

Graph& Graph::outermost() {
  return nested() ? static_cast<Graph&>(*pOMLOwner()).outermost() : *this;
}

const Graph& Graph::outermost() const {
  return nested() ? static_cast<const Graph&>(*pOMLOwner()).outermost() : *this;
}

void Graph::collectNodes(NQDList& all) const {
  all.copyAppendList(&nodes);
  for (const Graph* inner : Range<Graph>(graphs)) inner->collectNodes(all);
}

void Graph::collectEdges(NQDList& all) const {
  all.copyAppendList(&edges);
  for (const Graph* inner : Range<Graph>(graphs)) inner->collectEdges(all);
}

void Graph::preReadFields(NQOMLSyntaxObject* syntax, NQOMLFile*) {
  title = lastNameOf(*syntax);
}

int Graph::readField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQOMLFile* file) {
  return GraphGrammar::of(*file).graphFields.read(*this, *field, *file);
}

void Graph::collectOwnedOMLObjects(NQDList& parts) {
  parts.copyAppendList(&labels);
  parts.copyAppendList(&nodes);
  parts.copyAppendList(&graphs);
  parts.copyAppendList(&edges);
}

void Graph::write(NQOMLFile& file) const {
  writeStart(file, "graph", *this);
  file.writeStringAttribute("title", title.c_str());
  file.writeBoolAttribute("directed", directed ? 1 : 0);
  if (!citation.empty()) {
    writeSection(file, "origin");
    file.writeStringAttribute("citation", citation.c_str());
    file.writeClosingBracket();
  }
  writeSection(file, "layout");
  file.writeAttribute("algorithm", "layered");
  file.writeAttribute("flow", wordOf(flow));
  file.writeAttribute("spacing", spacing);
  file.writeClosingBracket();
  writeAll(file, labels);
  writeAll(file, nodes);
  writeAll(file, graphs);
  writeAll(file, edges);
  file.writeClosingBracket();
}

const NQResource* Graph::shared(const NQColor& color) {
  NQColorResourceDB& colors = outermost().colors_;
  return colors.insert(new NQColorResource(&colors, &color));
}

const NQShape& Graph::outline(ShapeKind kind) const {
  const NQResource* const outline =
      outermost().outlines_.at(static_cast<std::size_t>(kind));
  return *static_cast<const NQShapeResource*>(outline)->pShape();
}

// ---- Colours

std::string hexOf(const NQColor& color) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "#";
  for (const int channel : {color.ired(), color.igreen(), color.iblue()}) {
    text += kDigits[channel / 16];
    text += kDigits[channel % 16];
  }
  return text;
}

bool parseHex(std::string_view text, NQColor& color) {
  unsigned rgb = 0;
  if (text.size() != 7 || text[0] != '#') return false;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data() + 1, end, rgb, 16);
  if (error != std::errc() || rest != end) return false;
  color.ired(static_cast<int>(rgb >> 16));
  color.igreen(static_cast<int>(rgb >> 8 & 255));
  color.iblue(static_cast<int>(rgb & 255));
  return true;
}

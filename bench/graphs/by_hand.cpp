// OML by a reader that was written for the grammar of the graphs and knows nothing else:
// no grammar tables, no tree, values straight into the objects. It tells what a file
// costs at least. Nodes stand before the edges that refer to them. The objects keep the
// numbers in their ids, for whoever writes them again.

#include "graph.h"

#include <cstring>

namespace {

enum class Section { kNone, kLayout, kDrawing, kLine };

constexpr Section sectionOf(Field field) {
  switch (field) {
    case kX:
    case kY:
    case kWidth:
    case kHeight:
    case kRouting:
    case kBend:
      return Section::kLayout;
    case kShape:
    case kFill:
    case kHead:
      return Section::kDrawing;
    case kStroke:
    case kThickness:
      return Section::kLine;
    default:
      return Section::kNone;
  }
}

class Parser {
 public:
  explicit Parser(const Contents& file)
      : at_(file.text.get()), end_(at_ + file.size), ids_(file.size / 512) {}

  // The graph, or null for a file that is not one.
  std::unique_ptr<Graph> parse() {
    auto graph = std::make_unique<Graph>();
    if (word() != "graph") return nullptr;
    int id = 0;
    if (!takeNumber(word(), id) && !kReals) return nullptr;
    graph->iUserField(id);
    if (!next('{')) return nullptr;
    while (!next('}')) {
      const std::string_view name = word();
      if (name == "node" ? !parseNode(*graph)
                         : (name == "edge" ? !parseEdge(*graph)
                                           : !parseField(*graph, name, Section::kNone)))
        return nullptr;
    }
    skipBlanks();
    if (at_ != end_) return nullptr;
    return graph;
  }

  // The values of fields.
  bool take(std::string& value) {
    if (!next('"')) return false;
    const char* const begin = at_;
    at_ = std::strpbrk(begin, "\"\\");
    if (at_ == nullptr || *at_ == '\\') return false;  // the graphs have no escapes
    value.assign(begin, at_++);
    return true;
  }
  bool take(bool& value) {
    const std::string_view name = word();
    value = name == "true";
    return value || name == "false";
  }
  bool take(int& value) { return takeArithmetic(value); }
  bool take(double& value) { return takeArithmetic(value); }
  bool take(int& value, const Names& names) {
    return takeEnumerator(word(), value, names);
  }
  bool take(GraphNode*& value) {
    int id = 0;
    value = takeID(id) ? ids_[id] : nullptr;
    return value != nullptr;
  }
  bool take(std::vector<Number>& values) {
    if (!next('{')) return take(values.emplace_back());
    while (!next('}')) {
      if (!take(values.emplace_back())) return false;
    }
    return true;
  }

 private:
  // A parser as the value that comes next.
  struct Value {
    template <typename... T>
    bool take(T&... to) const {
      return parser.take(to...);
    }
    Parser& parser;
  };

  bool parseNode(Graph& graph) {
    GraphNode& node = graph.nodes.emplace_back(&graph);
    int id = 0;
    if (!takeID(id) || !ids_.insert(id, &node)) return false;
    node.iUserField(id);
    return parseBody(node, Section::kNone);
  }

  bool parseEdge(Graph& graph) {
    GraphEdge& edge = graph.edges.emplace_back(&graph);
    int id = 0;
    if (!takeID(id)) return false;
    edge.iUserField(id);
    return parseBody(edge, Section::kNone) && edge.from != nullptr && edge.to != nullptr;
  }

  template <typename Object>
  bool parseBody(Object& object, Section section) {
    next(':');
    if (!next('{')) return false;
    while (!next('}')) {
      if (!parseField(object, word(), section)) return false;
    }
    return true;
  }

  template <typename Object>
  bool parseField(Object& object, std::string_view name, Section section) {
    const Field field = kFieldIndex.find(name);
    if (field != kFields) {
      next(':');
      return sectionOf(field) == section && fill(object, field, Value{*this});
    }
    if (section == Section::kNone && name == "layout")
      return parseBody(object, Section::kLayout);
    if (section == Section::kNone && name == "drawing")
      return parseBody(object, Section::kDrawing);
    if (section == Section::kDrawing && name == "line")
      return parseBody(object, Section::kLine);
    return false;
  }

  // An id: a number, perhaps with a letter in front.
  bool takeID(int& id) {
    next(':');
    skipBlanks();
    if (*at_ >= 'a' && *at_ <= 'z') ++at_;
    return takeArithmetic(id);
  }

  template <typename T>
  bool takeArithmetic(T& value) {
    skipBlanks();
    const auto [end, error] = std::from_chars(at_, end_, value);
    at_ = end;
    return error == std::errc();
  }

  std::string_view word() {
    next(':');
    skipBlanks();
    const char* const begin = at_;
    while ((*at_ >= 'a' && *at_ <= 'z') || (*at_ >= '0' && *at_ <= '9') || *at_ == '-')
      ++at_;
    return {begin, at_};
  }

  // Whether that character comes next; then it is taken.
  bool next(char c) {
    skipBlanks();
    if (*at_ != c) return false;
    ++at_;
    return true;
  }

  void skipBlanks() {
    while (*at_ == ' ' || *at_ == '\n' || *at_ == '\t' || *at_ == '\r') ++at_;
  }

  const char* at_;
  const char* end_;  // a zero stands there
  NodeIDs ids_;
};

std::unique_ptr<Graph> read(const std::string& path) {
  const Contents file(path);
  if (file.text == nullptr) return nullptr;
  return Parser(file).parse();
}

void prepare() {}

}  // namespace

const Format kByHand = {"by-hand", prepare, read, nullptr};

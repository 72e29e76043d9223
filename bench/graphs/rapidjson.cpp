// JSON, checked against bench/graphs/schema.json.in: as a document and as events, both
// in place in the text of the whole file.

#include "graph.h"

#define RAPIDJSON_SSE2
#include <rapidjson/document.h>
#include <rapidjson/filewritestream.h>
#include <rapidjson/schema.h>
#include <rapidjson/writer.h>
#include <cstdio>

namespace {

using JSON = rapidjson::Value;

const rapidjson::SchemaDocument& schema() {
  static const rapidjson::SchemaDocument compiled = [] {
    const Contents file(NQ_BENCH_SCHEMAS "schema.json");
    rapidjson::Document document;
    document.Parse(file.text.get());
    return rapidjson::SchemaDocument(document);
  }();
  return compiled;
}

// A member that the schema requires.
const JSON& member(const JSON& object, const char* name) {
  return object.FindMember(name)->value;
}

std::string_view view(const JSON& value) {
  return {value.GetString(), value.GetStringLength()};
}

// --- The document

struct Value {
  bool take(std::string& value) const {
    value = view(json);
    return true;
  }
  bool take(bool& value) const {
    value = json.GetBool();
    return true;
  }
  bool take(int& value) const {
    value = json.GetInt();
    return true;
  }
  bool take(double& value) const {
    value = json.GetDouble();
    return true;
  }
  bool take(int& value, const Names& names) const {
    return takeEnumerator(view(json), value, names);
  }
  bool take(GraphNode*& value) const {
    value = ids[json.GetInt()];
    return value != nullptr;
  }
  bool take(std::vector<Number>& values) const {
    values.reserve(json.Size());
    for (const JSON& value : json.GetArray()) values.push_back(value.Get<Number>());
    return true;
  }

  const JSON& json;
  NodeIDs& ids;
};

// Fills a node or edge with the members of a JSON object and of those inside.
template <typename Object>
bool fillFrom(const JSON& json, Object& object, NodeIDs& ids) {
  for (const auto& [name, value] : json.GetObject()) {
    if (value.IsObject()) {
      if (!fillFrom(value, object, ids)) return false;
    } else if (view(name) != "id") {
      if (!fill(object, kFieldIndex.find(view(name)), Value{value, ids})) return false;
    }
  }
  return true;
}

std::unique_ptr<Graph> readDOM(const std::string& path) {
  const Contents file(path);
  if (file.text == nullptr) return nullptr;
  rapidjson::InsituStringStream stream(file.text.get());
  rapidjson::SchemaValidatingReader<rapidjson::kParseInsituFlag,
                                    rapidjson::InsituStringStream, rapidjson::UTF8<>>
      reader(stream, schema());
  rapidjson::Document document;
  document.Populate(reader);
  if (!reader.GetParseResult() || !reader.IsValid()) return nullptr;

  auto graph = std::make_unique<Graph>();
  const JSON& nodes = member(document, "nodes");
  NodeIDs ids(nodes.Size());
  for (const JSON& json : nodes.GetArray()) {
    GraphNode& node = graph->nodes.emplace_back(graph.get());
    if (!ids.insert(member(json, "id").GetInt(), &node) || !fillFrom(json, node, ids))
      return nullptr;
  }
  for (const JSON& json : member(document, "edges").GetArray()) {
    if (!fillFrom(json, graph->edges.emplace_back(graph.get()), ids)) return nullptr;
  }
  graph->title = view(member(document, "title"));
  graph->directed = member(document, "directed").GetBool();
  return graph;
}

// --- Events

// Values as they come; each takes what it can be.
struct Text {
  template <typename T>
  bool take(T&) const {
    return false;
  }
  bool take(std::string& value) const {
    value = text;
    return true;
  }
  bool take(int& value, const Names& names) const {
    return takeEnumerator(text, value, names);
  }

  std::string_view text;
};

template <typename Arithmetic>
struct Plain {
  template <typename T>
  bool take(T&) const {
    return false;
  }
  bool take(int&, const Names&) const { return false; }
  bool take(Arithmetic& to) const {
    to = value;
    return true;
  }
  bool take(std::vector<Number>& values) const {
    values.push_back(static_cast<Number>(value));
    return true;
  }
  bool take(GraphNode*& node) const {
    node = ids[static_cast<int>(value)];
    return node != nullptr;
  }

  Arithmetic value;
  NodeIDs& ids;
};

// Makes the objects as the events come. The schema has seen to it that the file is of the
// right shape; nodes stand before edges.
class Handler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Handler> {
 public:
  explicit Handler(std::size_t fileSize = 0) : ids_(fileSize / 512) {}

  std::unique_ptr<Graph> graph = std::make_unique<Graph>();

  bool Key(const char* text, rapidjson::SizeType length, bool) {
    const std::string_view name(text, length);
    field_ = kFieldIndex.find(name);
    if (depth_ == 1) inEdges_ = name == "edges";
    return true;
  }
  bool StartObject() {
    if (++depth_ == 2) {
      if (inEdges_)
        edge_ = &graph->edges.emplace_back(graph.get());
      else
        node_ = &graph->nodes.emplace_back(graph.get());
    }
    return true;
  }
  bool EndObject(rapidjson::SizeType) {
    --depth_;
    return true;
  }

  bool String(const char* text, rapidjson::SizeType length, bool) {
    return hand(Text{{text, length}});
  }
  bool Int(int value) {
    if (field_ != kFields) return hand(Plain<int>{value, ids_});
    return inEdges_ || ids_.insert(value, node_);  // nobody asks for ids of edges
  }
  bool Uint(unsigned value) { return Int(static_cast<int>(value)); }
  bool Double(double value) { return hand(Plain<double>{value, ids_}); }
  bool Bool(bool value) { return hand(Plain<bool>{value, ids_}); }

 private:
  template <typename Value>
  bool hand(const Value& value) {
    if (depth_ == 1) return fill(*graph, field_, value);
    return inEdges_ ? fill(*edge_, field_, value) : fill(*node_, field_, value);
  }

  NodeIDs ids_;
  Field field_ = kFields;  // kFields: an id
  int depth_ = 0;
  bool inEdges_ = false;
  GraphNode* node_ = nullptr;
  GraphEdge* edge_ = nullptr;
};

std::unique_ptr<Graph> readSAX(const std::string& path) {
  const Contents file(path);
  if (file.text == nullptr) return nullptr;
  rapidjson::InsituStringStream stream(file.text.get());
  Handler handler(file.size);
  rapidjson::GenericSchemaValidator<rapidjson::SchemaDocument, Handler> validator(
      schema(), handler);
  rapidjson::Reader reader;
  if (!reader.Parse<rapidjson::kParseInsituFlag>(stream, validator) ||
      !validator.IsValid())
    return nullptr;
  return std::move(handler.graph);
}

// --- Writing

using Writer = rapidjson::Writer<rapidjson::FileWriteStream>;

void write(Writer& json, const char* name, int value) {
  json.Key(name);
  json.Int(value);
}

void write(Writer& json, const char* name, double value) {
  json.Key(name);
  json.Double(value);
}

void write(Writer& json, const char* name, std::string_view value) {
  json.Key(name);
  json.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

void writeID(Writer& json, const char* name, const NQOMLObject& object) {
  write(json, name, static_cast<int>(object.iUserField()));
}

void openSection(Writer& json, const char* name) {
  json.Key(name);
  json.StartObject();
}

void write(Writer& json, const GraphNode& node) {
  json.StartObject();
  writeID(json, "id", node);
  write(json, "title", node.title);
  write(json, "group", node.group);
  if (kReals) write(json, "importance", node.importance);
  openSection(json, "layout");
  write(json, "x", node.x);
  write(json, "y", node.y);
  write(json, "width", node.width);
  write(json, "height", node.height);
  json.EndObject();
  openSection(json, "drawing");
  write(json, "shape", nameOf(node.shape, kShapes));
  if (kReals) write(json, "fill", node.fill);
  openSection(json, "line");
  if (kReals) write(json, "stroke", nameOf(node.stroke, kStrokes));
  write(json, "thickness", node.thickness);
  json.EndObject();
  json.EndObject();
  json.EndObject();
}

void write(Writer& json, const GraphEdge& edge) {
  json.StartObject();
  writeID(json, "id", edge);
  writeID(json, "from", *edge.from);
  writeID(json, "to", *edge.to);
  if (!kReals) write(json, "title", edge.title);
  write(json, "weight", edge.weight);
  openSection(json, "layout");
  if (kReals) write(json, "routing", nameOf(edge.routing, kRoutings));
  json.Key("bend");
  json.StartArray();
  for (const double bend : edge.bend) {
    if (kReals)
      json.Double(bend);
    else
      json.Int(static_cast<int>(bend));
  }
  json.EndArray();
  json.EndObject();
  if (kReals) {
    openSection(json, "drawing");
    write(json, "head", nameOf(edge.head, kHeads));
    json.EndObject();
  }
  json.EndObject();
}

bool write(Graph& graph, const std::string& path) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  graph.numberObjects();
  std::vector<char> buffer(65536);
  rapidjson::FileWriteStream stream(file, buffer.data(), buffer.size());
  Writer json(stream);
  json.StartObject();
  write(json, "title", graph.title);
  json.Key("directed");
  json.Bool(graph.directed);
  json.Key("nodes");
  json.StartArray();
  for (const GraphNode& node : graph.nodes) write(json, node);
  json.EndArray();
  json.Key("edges");
  json.StartArray();
  for (const GraphEdge& edge : graph.edges) write(json, edge);
  json.EndArray();
  json.EndObject();
  stream.Flush();
  const bool written = std::ferror(file) == 0;
  return std::fclose(file) == 0 && written;
}

void prepare() {
  (void)schema();
}

}  // namespace

const Format kRapidJSONDOM = {"rapidjson-dom", prepare, readDOM, nullptr};
const Format kRapidJSONSAX = {"rapidjson-sax", prepare, readSAX, write};

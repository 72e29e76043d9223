#include "graph_readers.h"

#include <rapidjson/document.h>
#include <rapidjson/filereadstream.h>
#include <rapidjson/schema.h>
#include <cstdio>
#include <unordered_map>

namespace {

using rapidjson::Value;

// A file as RapidJSON reads one.
class Input {
 public:
  explicit Input(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {}
  ~Input() {
    if (file_ != nullptr) std::fclose(file_);
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  bool isOpen() const { return file_ != nullptr; }
  rapidjson::FileReadStream stream() { return {file_, buffer_, sizeof buffer_}; }

 private:
  std::FILE* file_;
  char buffer_[65536];
};

std::string_view text(const Value& value) {
  return {value.GetString(), value.GetStringLength()};
}

const rapidjson::SchemaDocument& schema() {
  static const rapidjson::SchemaDocument parsed = [] {
    Input input(NQ_BENCH_SCHEMAS "graph.schema.json");
    rapidjson::FileReadStream stream = input.stream();
    rapidjson::Document document;
    document.ParseStream(stream);
    return rapidjson::SchemaDocument(document);
  }();
  return parsed;
}

}  // namespace

std::unique_ptr<Graph> readGraphJSON(const std::string& path) {
  Input input(path);
  if (!input.isOpen()) return nullptr;
  rapidjson::FileReadStream stream = input.stream();
  rapidjson::SchemaValidatingReader<rapidjson::kParseDefaultFlags,
                                    rapidjson::FileReadStream, rapidjson::UTF8<>>
      reader(stream, schema());
  rapidjson::Document document;
  document.Populate(reader);
  if (!reader.GetParseResult() || !reader.IsValid()) return nullptr;

  auto graph = std::make_unique<Graph>();
  graph->title = text(document["title"]);
  graph->directed = document["directed"].GetBool();
  std::unordered_map<std::string_view, GraphNode*> ids;
  for (const Value& value : document["nodes"].GetArray()) {
    GraphNode* node = graph->nodes.emplace_back(std::make_unique<GraphNode>()).get();
    ids.emplace(text(value["id"]), node);
    node->title = text(value["title"]);
    node->group = value["group"].GetInt();
    node->importance = value["importance"].GetDouble();
    const Value& layout = value["layout"];
    node->x = layout["x"].GetDouble();
    node->y = layout["y"].GetDouble();
    node->width = layout["width"].GetInt();
    node->height = layout["height"].GetInt();
    const Value& drawing = value["drawing"];
    node->shape = shapeNumber(text(drawing["shape"]));
    node->fill = text(drawing["fill"]);
    const Value& line = drawing["line"];
    node->stroke = strokeNumber(text(line["stroke"]));
    node->thickness = line["thickness"].GetDouble();
  }
  for (const Value& value : document["edges"].GetArray()) {
    GraphEdge* edge = graph->edges.emplace_back(std::make_unique<GraphEdge>()).get();
    const auto from = ids.find(text(value["from"]));
    const auto to = ids.find(text(value["to"]));
    if (from == ids.end() || to == ids.end()) return nullptr;
    edge->from = from->second;
    edge->to = to->second;
    edge->weight = value["weight"].GetDouble();
    const Value& layout = value["layout"];
    edge->routing = routingNumber(text(layout["routing"]));
    for (const Value& bend : layout["bend"].GetArray())
      edge->bend.push_back(bend.GetDouble());
    edge->head = headNumber(text(value["drawing"]["head"]));
  }
  return graph;
}

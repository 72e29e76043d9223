// Writes graphs that an application holds as objects: OML in both encodings beside
// JSON, with the same ids and values in the same order. The files in the two
// encodings are then read, beside protocol buffers, so that their times compare too.

#include "graph_readers.h"

#include "nq/oml/oml_file.h"
#include "nq/oml/oml_object.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#if defined(NQ_BENCH_RAPIDJSON)
#include <rapidjson/filewritestream.h>
#include <rapidjson/writer.h>
#endif

namespace {

// --- The graph as objects that can be referred to

struct Item : NQOMLObject {
  NQOMLObject* pOMLOwner() const override { return owner; }
  NQOMLObject* owner = nullptr;
};

struct NodeItem : Item {
  const GraphNode* values = nullptr;
};

struct EdgeItem : Item {
  const GraphEdge* values = nullptr;
  const NodeItem* from = nullptr;
  const NodeItem* to = nullptr;
};

struct GraphItem : Item {
  const Graph* values = nullptr;
  std::vector<NodeItem> nodes;
  std::vector<EdgeItem> edges;
};

struct Example {
  explicit Example(std::int64_t size)
      : graph(
            readGraphOML(NQ_BENCH_DATA "graph_" + std::to_string(size) + ".oml", false)) {
    if (graph == nullptr) return;
    items.values = graph.get();
    items.nodes = std::vector<NodeItem>(graph->nodes.size());
    items.edges = std::vector<EdgeItem>(graph->edges.size());
    nqInt64 id = 0;
    items.iUserField(++id);
    std::unordered_map<const GraphNode*, const NodeItem*> known;
    for (std::size_t i = 0; i < items.nodes.size(); ++i) {
      items.nodes[i].owner = &items;
      items.nodes[i].iUserField(++id);
      items.nodes[i].values = graph->nodes[i].get();
      known[graph->nodes[i].get()] = &items.nodes[i];
    }
    for (std::size_t i = 0; i < items.edges.size(); ++i) {
      items.edges[i].owner = &items;
      items.edges[i].iUserField(++id);
      items.edges[i].values = graph->edges[i].get();
      items.edges[i].from = known[graph->edges[i]->from];
      items.edges[i].to = known[graph->edges[i]->to];
    }
  }

  std::unique_ptr<Graph> graph;
  GraphItem items;
};

const Example& example(std::int64_t size) {
  static std::map<std::int64_t, std::unique_ptr<Example>> examples;
  auto& found = examples[size];
  if (found == nullptr) found = std::make_unique<Example>(size);
  return *found;
}

// --- OML

class GraphWriter : public NQOMLFile {
 protected:
  void vWriteObject(NQObject* top) override {
    const auto& graph = *static_cast<const GraphItem*>(top);
    writeObjectStart("graph", &graph, 0, 1);
    writeOpeningBracket();
    writeStringAttribute("title", graph.values->title.c_str());
    writeBoolAttribute("directed", graph.values->directed ? 1 : 0);
    for (const NodeItem& node : graph.nodes) writeNode(node);
    for (const EdgeItem& edge : graph.edges) writeEdge(edge);
    writeClosingBracket();
  }

 private:
  void writeNode(const NodeItem& node) {
    const GraphNode& values = *node.values;
    writeObjectStart("node", &node, 0, 1);
    writeOpeningBracket();
    writeStringAttribute("title", values.title.c_str());
    writeAttribute("group", values.group);
    writeAttribute("importance", values.importance);
    writeSectionStart("layout", 1);
    writeOpeningBracket();
    writeAttribute("x", values.x);
    writeAttribute("y", values.y);
    writeAttribute("width", values.width);
    writeAttribute("height", values.height);
    writeClosingBracket();
    writeSectionStart("drawing", 0);
    writeOpeningBracket();
    writeAttribute("shape", shapeName(values.shape));
    writeStringAttribute("fill", values.fill.c_str());
    writeSectionStart("line", 1);
    writeOpeningBracket();
    writeAttribute("stroke", strokeName(values.stroke));
    writeAttribute("thickness", values.thickness);
    writeClosingBracket();
    writeClosingBracket();
    writeClosingBracket();
  }

  void writeEdge(const EdgeItem& edge) {
    const GraphEdge& values = *edge.values;
    writeObjectStart("edge", &edge, 0, 1);
    writeOpeningBracket();
    writeAttribute("from", edge.from, &edge, 1);
    writeAttribute("to", edge.to, &edge, 1);
    writeAttribute("weight", values.weight);
    writeSectionStart("layout", 1);
    writeOpeningBracket();
    writeAttribute("routing", routingName(values.routing));
    for (const double bend : values.bend) writeAttribute("bend", bend);
    writeClosingBracket();
    writeSectionStart("drawing", 1);
    writeOpeningBracket();
    writeAttribute("head", headName(values.head));
    writeClosingBracket();
    writeClosingBracket();
  }
};

bool writeOML(const GraphItem& graph, const std::string& path, bool binary,
              bool lossless) {
  GraphWriter writer;
  writer.losslessWriting(lossless ? 1 : 0);
  return writer.writeOMLFile(path.c_str(), &graphGrammar(),
                             const_cast<GraphItem*>(&graph), binary ? 1 : 0, 0,
                             0) == NQ_FILE_OK;
}

bool writeText(const GraphItem& graph, const std::string& path) {
  return writeOML(graph, path, false, false);
}

bool writeLosslessText(const GraphItem& graph, const std::string& path) {
  return writeOML(graph, path, false, true);
}

bool writeBinary(const GraphItem& graph, const std::string& path) {
  return writeOML(graph, path, true, false);
}

// --- JSON

#if defined(NQ_BENCH_RAPIDJSON)
using JSONWriter = rapidjson::Writer<rapidjson::FileWriteStream>;

void writeText(JSONWriter& json, const std::string& text) {
  json.String(text.c_str(), static_cast<rapidjson::SizeType>(text.size()));
}

void writeNode(JSONWriter& json, const NodeItem& node) {
  const GraphNode& values = *node.values;
  json.StartObject();
  json.Key("id");
  json.Int(static_cast<int>(node.graphFileID()));
  json.Key("title");
  writeText(json, values.title);
  json.Key("group");
  json.Int(values.group);
  json.Key("importance");
  json.Double(values.importance);
  json.Key("layout");
  json.StartObject();
  json.Key("x");
  json.Double(values.x);
  json.Key("y");
  json.Double(values.y);
  json.Key("width");
  json.Int(values.width);
  json.Key("height");
  json.Int(values.height);
  json.EndObject();
  json.Key("drawing");
  json.StartObject();
  json.Key("shape");
  json.String(shapeName(values.shape));
  json.Key("fill");
  writeText(json, values.fill);
  json.Key("line");
  json.StartObject();
  json.Key("stroke");
  json.String(strokeName(values.stroke));
  json.Key("thickness");
  json.Double(values.thickness);
  json.EndObject();
  json.EndObject();
  json.EndObject();
}

void writeEdge(JSONWriter& json, const EdgeItem& edge) {
  const GraphEdge& values = *edge.values;
  json.StartObject();
  json.Key("id");
  json.Int(static_cast<int>(edge.graphFileID()));
  json.Key("from");
  json.Int(static_cast<int>(edge.from->graphFileID()));
  json.Key("to");
  json.Int(static_cast<int>(edge.to->graphFileID()));
  json.Key("weight");
  json.Double(values.weight);
  json.Key("layout");
  json.StartObject();
  json.Key("routing");
  json.String(routingName(values.routing));
  json.Key("bend");
  json.StartArray();
  for (const double bend : values.bend) json.Double(bend);
  json.EndArray();
  json.EndObject();
  json.Key("drawing");
  json.StartObject();
  json.Key("head");
  json.String(headName(values.head));
  json.EndObject();
  json.EndObject();
}

bool writeJSON(const GraphItem& graph, const std::string& path) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  std::vector<char> buffer(65536);
  rapidjson::FileWriteStream stream(file, buffer.data(), buffer.size());
  JSONWriter json(stream);
  json.StartObject();
  json.Key("title");
  writeText(json, graph.values->title);
  json.Key("directed");
  json.Bool(graph.values->directed);
  json.Key("nodes");
  json.StartArray();
  for (const NodeItem& node : graph.nodes) writeNode(json, node);
  json.EndArray();
  json.Key("edges");
  json.StartArray();
  for (const EdgeItem& edge : graph.edges) writeEdge(json, edge);
  json.EndArray();
  json.EndObject();
  stream.Flush();
  return std::fclose(file) == 0;
}
#endif

// --- The benchmarks

std::string written(std::int64_t size, const char* ending) {
  return NQ_BENCH_DATA "written_" + std::to_string(size) + "." + ending;
}

using Write = bool (*)(const GraphItem& graph, const std::string& path);

void write(benchmark::State& state, Write writeGraph, const char* ending) {
  const Example& source = example(state.range(0));
  const std::string path = written(state.range(0), ending);
  for (auto _ : state) {
    if (source.graph == nullptr || !writeGraph(source.items, path)) {
      state.SkipWithError(("cannot write " + path).c_str());
      return;
    }
  }
}

// A file that is written for being read.
struct Format {
  const char* ending;
  bool (*write)(const Example& source, const std::string& path);
  std::unique_ptr<Graph> (*read)(const std::string& path);
};

const Format kText = {"read.oml",
                      [](const Example& source, const std::string& path) {
                        return writeText(source.items, path);
                      },
                      [](const std::string& path) { return readGraphOML(path, false); }};

const Format kBinary = {"read.omb",
                        [](const Example& source, const std::string& path) {
                          return writeBinary(source.items, path);
                        },
                        [](const std::string& path) { return readGraphOML(path, true); }};

#if defined(NQ_BENCH_PROTOBUF)
const Format kProtobuf = {"pb",
                          [](const Example& source, const std::string& path) {
                            return writeGraphProtobuf(*source.graph, path);
                          },
                          readGraphProtobuf};
#endif

// What the text encoding keeps of a graph tells whether the file is right; the
// binary one keeps eight digits of a real.
void read(benchmark::State& state, const Format& format) {
  const Example& source = example(state.range(0));
  const std::string path = written(state.range(0), format.ending);
  if (source.graph == nullptr || !format.write(source, path)) {
    state.SkipWithError(("cannot write " + path).c_str());
    return;
  }
  for (auto _ : state) {
    auto graph = format.read(path);
    if (graph == nullptr) {
      state.SkipWithError(("cannot read " + path).c_str());
      return;
    }
    state.PauseTiming();
    const double sum = source.graph->checksum();
    const double difference = graph->checksum() - sum;
    if (difference > 1e-7 * sum || difference < -1e-7 * sum) {
      state.SkipWithError("not the graph that was written");
      return;
    }
    graph.reset();
    state.ResumeTiming();
  }
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(write, nq_text, writeText, "oml")->Apply(sizes);
BENCHMARK_CAPTURE(write, nq_lossless_text, writeLosslessText, "lossless.oml")
    ->Apply(sizes);
BENCHMARK_CAPTURE(write, nq_binary, writeBinary, "omb")->Apply(sizes);
#if defined(NQ_BENCH_RAPIDJSON)
BENCHMARK_CAPTURE(write, rapidjson, writeJSON, "json")->Apply(sizes);
#endif
BENCHMARK_CAPTURE(read, nq_text, kText)->Apply(sizes);
BENCHMARK_CAPTURE(read, nq_binary, kBinary)->Apply(sizes);
#if defined(NQ_BENCH_PROTOBUF)
BENCHMARK_CAPTURE(read, protobuf, kProtobuf)->Apply(sizes);
#endif

}  // namespace

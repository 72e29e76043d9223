// graph_readers.h -- the graphs of scripts/generate_graph.py as an application
// would keep them, and readers for the formats in which they are compared.
//
// Each reader checks the file against its grammar or schema, makes the objects
// and resolves the references, so that the times compare.

#ifndef NQ_BENCH_GRAPH_READERS_H
#define NQ_BENCH_GRAPH_READERS_H

#include "nq/core/object.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class NQOMLStatic;

struct GraphNode : NQObject {
  std::string title;
  int group = 0;
  double importance = 0;
  double x = 0, y = 0;
  int width = 0, height = 0;
  int shape = 0;
  std::string fill;
  int stroke = 0;
  double thickness = 0;
};

struct GraphEdge : NQObject {
  GraphNode* from = nullptr;
  GraphNode* to = nullptr;
  double weight = 0;
  int routing = 0;
  std::vector<double> bend;
  int head = 0;
};

struct Graph : NQObject {
  std::string title;
  bool directed = false;
  std::vector<std::unique_ptr<GraphNode>> nodes;
  std::vector<std::unique_ptr<GraphEdge>> edges;

  // Equal for equal graphs: every value has a part in it.
  double checksum() const;
};

// The number of an enumerator's name, as the grammar has it; -1 for another.
int shapeNumber(std::string_view name);
int strokeNumber(std::string_view name);
int routingNumber(std::string_view name);
int headNumber(std::string_view name);
// And the way back, for numbers that these give.
const char* shapeName(int number);
const char* strokeName(int number);
const char* routingName(int number);
const char* headName(int number);

// The grammar of the graphs, with the object types graph, node and edge.
NQOMLStatic& graphGrammar();

// Each returns null when the file cannot be read or is not valid.
std::unique_ptr<Graph> readGraphOML(const std::string& path, bool binary);
#if defined(NQ_BENCH_LIBXML2)
std::unique_ptr<Graph> readGraphXML(const std::string& path);  // SAX, with XSD
#endif
#if defined(NQ_BENCH_RAPIDJSON)
std::unique_ptr<Graph> readGraphJSON(const std::string& path);  // DOM, with schema
#endif
#if defined(NQ_BENCH_PROTOBUF)
std::unique_ptr<Graph> readGraphProtobuf(const std::string& path);
bool writeGraphProtobuf(const Graph& graph, const std::string& path);
#endif

#endif  // NQ_BENCH_GRAPH_READERS_H

// XML, checked against bench/graphs/graph.xsd.in as its events come.

#include "graph.h"

#include <libxml/parser.h>
#include <libxml/xmlschemas.h>
#include <algorithm>
#include <cstring>
#include <filesystem>

namespace {

std::string_view view(const xmlChar* text) {
  return reinterpret_cast<const char*>(text);
}

// An attribute. The schema has seen to it that numbers are numbers, but they may have a
// plus sign or blanks around them, which no file here has.
struct Value {
  bool take(std::string& value) const {
    value = text;
    return true;
  }
  bool take(bool& value) const {
    value = text == "true" || text == "1";
    return true;
  }
  bool take(int& value) const { return takeNumber(text, value); }
  bool take(double& value) const { return takeNumber(text, value); }
  bool take(int& value, const Names& names) const {
    return takeEnumerator(text, value, names);
  }
  bool take(GraphNode*& value) const {
    int id = 0;
    value = takeNumber(text, id) ? ids[id] : nullptr;
    return value != nullptr;
  }
  bool take(std::vector<Number>& values) const {
    for (std::string_view rest = text; !rest.empty();) {
      const std::string_view word = rest.substr(0, rest.find(' '));
      if (!takeNumber(word, values.emplace_back())) return false;
      rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    }
    return true;
  }

  std::string_view text;
  NodeIDs& ids;
};

// Makes the objects as the elements come; nodes stand before edges.
class Builder {
 public:
  explicit Builder(std::size_t fileSize) : ids_(fileSize / 512) {}

  std::unique_ptr<Graph> graph = std::make_unique<Graph>();
  bool failed = false;

  // Five pointers for each attribute: name, prefix, namespace, begin and end of the
  // value.
  void start(std::string_view element, int count, const xmlChar** attributes) {
    if (element == "node")
      node_ = &graph->nodes.emplace_back(graph.get());
    else if (element == "edge")
      edge_ = &graph->edges.emplace_back(graph.get());
    for (int i = 0; i < count; ++i, attributes += 5) {
      const auto* const text = reinterpret_cast<const char*>(attributes[3]);
      const auto* const end = reinterpret_cast<const char*>(attributes[4]);
      if (!attribute(view(attributes[0]), {{text, end}, ids_})) failed = true;
    }
  }

 private:
  bool attribute(std::string_view name, const Value& value) {
    const Field field = kFieldIndex.find(name);
    if (field == kFields) {
      int id = 0;
      return edge_ != nullptr || (value.take(id) && ids_.insert(id, node_));
    }
    if (edge_ != nullptr) return fill(*edge_, field, value);
    if (node_ != nullptr) return fill(*node_, field, value);
    return fill(*graph, field, value);
  }

  NodeIDs ids_;
  GraphNode* node_ = nullptr;
  GraphEdge* edge_ = nullptr;
};

void startElement(void* context, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                  const xmlChar**, int count, int, const xmlChar** attributes) {
  static_cast<Builder*>(context)->start(view(name), count, attributes);
}

xmlSchemaPtr schema() {
  static xmlSchemaPtr compiled = [] {
    xmlSchemaParserCtxtPtr context = xmlSchemaNewParserCtxt(NQ_BENCH_SCHEMAS "graph.xsd");
    xmlSchemaPtr result = xmlSchemaParse(context);
    xmlSchemaFreeParserCtxt(context);
    return result;
  }();
  return compiled;
}

// The parser reads the file in small pieces; a text that is in memory as a whole takes
// the same time, and its memory.
std::unique_ptr<Graph> read(const std::string& path) {
  xmlSchemaValidCtxtPtr validator = xmlSchemaNewValidCtxt(schema());
  xmlParserInputBufferPtr input =
      xmlParserInputBufferCreateFilename(path.c_str(), XML_CHAR_ENCODING_NONE);
  if (validator == nullptr || input == nullptr) return nullptr;
  xmlSAXHandler handler;
  std::memset(&handler, 0, sizeof handler);
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = startElement;
  Builder builder(std::filesystem::file_size(path));
  const int result = xmlSchemaValidateStream(validator, input, XML_CHAR_ENCODING_NONE,
                                             &handler, &builder);
  xmlSchemaFreeValidCtxt(validator);
  return result == 0 && !builder.failed ? std::move(builder.graph) : nullptr;
}

void prepare() {
  (void)schema();
}

}  // namespace

const Format kLibXML2 = {"libxml2-sax", prepare, read, nullptr};

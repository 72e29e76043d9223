#include "graph_readers.h"

#include <libxml/parser.h>
#include <libxml/xmlschemas.h>
#include <charconv>
#include <cstring>
#include <unordered_map>

namespace {

std::string_view view(const xmlChar* text) {
  return reinterpret_cast<const char*>(text);
}

template <typename Number>
void take(std::string_view text, Number& value) {
  (void)std::from_chars(text.data(), text.data() + text.size(), value);
}

// Makes the objects as the elements come.
class Builder {
 public:
  std::unique_ptr<Graph> graph = std::make_unique<Graph>();
  bool failed = false;

  void start(std::string_view name, int count, const xmlChar** attributes) {
    // Five pointers each: name, prefix, namespace, begin and end of the value.
    for (int i = 0; i < count; ++i, attributes += 5) {
      attribute(name, view(attributes[0]),
                {reinterpret_cast<const char*>(attributes[3]),
                 static_cast<std::size_t>(attributes[4] - attributes[3])});
    }
  }
  void begin(std::string_view name) {
    if (name == "node") {
      node_ = graph->nodes.emplace_back(std::make_unique<GraphNode>()).get();
      edge_ = nullptr;
    } else if (name == "edge") {
      edge_ = graph->edges.emplace_back(std::make_unique<GraphEdge>()).get();
      node_ = nullptr;
    }
  }

 private:
  void attribute(std::string_view element, std::string_view name,
                 std::string_view value) {
    if (edge_ != nullptr) {
      edgeAttribute(name, value);
    } else if (node_ != nullptr) {
      nodeAttribute(name, value);
    } else if (element == "graph" && name == "title") {
      graph->title = value;
    } else if (name == "directed") {
      graph->directed = value == "true";
    }
  }

  void nodeAttribute(std::string_view name, std::string_view value) {
    if (name == "id")
      ids_.emplace(value, node_);
    else if (name == "title")
      node_->title = value;
    else if (name == "group")
      take(value, node_->group);
    else if (name == "importance")
      take(value, node_->importance);
    else if (name == "x")
      take(value, node_->x);
    else if (name == "y")
      take(value, node_->y);
    else if (name == "width")
      take(value, node_->width);
    else if (name == "height")
      take(value, node_->height);
    else if (name == "shape")
      node_->shape = shapeNumber(value);
    else if (name == "fill")
      node_->fill = value;
    else if (name == "stroke")
      node_->stroke = strokeNumber(value);
    else if (name == "thickness")
      take(value, node_->thickness);
  }

  void edgeAttribute(std::string_view name, std::string_view value) {
    if (name == "from")
      edge_->from = find(value);
    else if (name == "to")
      edge_->to = find(value);
    else if (name == "weight")
      take(value, edge_->weight);
    else if (name == "routing")
      edge_->routing = routingNumber(value);
    else if (name == "head")
      edge_->head = headNumber(value);
    else if (name == "bend") {
      while (!value.empty()) {
        take(value, edge_->bend.emplace_back());
        const std::size_t blank = value.find(' ');
        value.remove_prefix(blank == std::string_view::npos ? value.size() : blank + 1);
      }
    }
  }

  GraphNode* find(std::string_view id) {
    const auto node = ids_.find(std::string(id));
    if (node == ids_.end()) failed = true;
    return node == ids_.end() ? nullptr : node->second;
  }

  std::unordered_map<std::string, GraphNode*> ids_;
  GraphNode* node_ = nullptr;
  GraphEdge* edge_ = nullptr;
};

void startElement(void* context, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                  const xmlChar**, int count, int, const xmlChar** attributes) {
  auto& builder = *static_cast<Builder*>(context);
  builder.begin(view(name));
  builder.start(view(name), count, attributes);
}

xmlSchemaPtr schema() {
  static xmlSchemaPtr parsed = [] {
    xmlSchemaParserCtxtPtr context = xmlSchemaNewParserCtxt(NQ_BENCH_SCHEMAS "graph.xsd");
    xmlSchemaPtr result = xmlSchemaParse(context);
    xmlSchemaFreeParserCtxt(context);
    return result;
  }();
  return parsed;
}

}  // namespace

std::unique_ptr<Graph> readGraphXML(const std::string& path) {
  xmlSchemaValidCtxtPtr validator = xmlSchemaNewValidCtxt(schema());
  xmlParserInputBufferPtr input =
      xmlParserInputBufferCreateFilename(path.c_str(), XML_CHAR_ENCODING_NONE);
  if (validator == nullptr || input == nullptr) return nullptr;
  xmlSAXHandler handler;
  std::memset(&handler, 0, sizeof handler);
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = startElement;
  Builder builder;
  const int result = xmlSchemaValidateStream(validator, input, XML_CHAR_ENCODING_NONE,
                                             &handler, &builder);
  xmlSchemaFreeValidCtxt(validator);
  return result == 0 && !builder.failed ? std::move(builder.graph) : nullptr;
}

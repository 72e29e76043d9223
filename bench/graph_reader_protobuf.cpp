#include "graph_readers.h"

#include <fstream>
#include <unordered_map>

#include "graph.pb.h"

std::unique_ptr<Graph> readGraphProtobuf(const std::string& path) {
  google::protobuf::Arena arena;
  auto& message = *google::protobuf::Arena::CreateMessage<graph_file::Graph>(&arena);
  std::ifstream file(path, std::ios::binary);
  if (!message.ParseFromIstream(&file)) return nullptr;

  auto graph = std::make_unique<Graph>();
  graph->title = message.title();
  graph->directed = message.directed();
  std::unordered_map<int, GraphNode*> ids;
  for (const graph_file::Node& value : message.nodes()) {
    GraphNode* node = graph->nodes.emplace_back(std::make_unique<GraphNode>()).get();
    ids.emplace(value.id(), node);
    node->title = value.title();
    node->group = value.group();
    node->importance = value.importance();
    node->x = value.layout().x();
    node->y = value.layout().y();
    node->width = value.layout().width();
    node->height = value.layout().height();
    node->shape = value.drawing().shape();
    node->fill = value.drawing().fill();
    node->stroke = value.drawing().line().stroke();
    node->thickness = value.drawing().line().thickness();
  }
  for (const graph_file::Edge& value : message.edges()) {
    GraphEdge* edge = graph->edges.emplace_back(std::make_unique<GraphEdge>()).get();
    const auto from = ids.find(value.from());
    const auto to = ids.find(value.to());
    if (from == ids.end() || to == ids.end()) return nullptr;
    edge->from = from->second;
    edge->to = to->second;
    edge->weight = value.weight();
    edge->routing = value.layout().routing();
    edge->bend.assign(value.layout().bend().begin(), value.layout().bend().end());
    edge->head = value.drawing().head();
  }
  return graph;
}

bool writeGraphProtobuf(const Graph& graph, const std::string& path) {
  graph_file::Graph message;
  message.set_title(graph.title);
  message.set_directed(graph.directed);
  int id = 0;
  std::unordered_map<const GraphNode*, int> ids;
  for (const auto& node : graph.nodes) {
    graph_file::Node& value = *message.add_nodes();
    value.set_id(++id);
    ids[node.get()] = id;
    value.set_title(node->title);
    value.set_group(node->group);
    value.set_importance(node->importance);
    value.mutable_layout()->set_x(node->x);
    value.mutable_layout()->set_y(node->y);
    value.mutable_layout()->set_width(node->width);
    value.mutable_layout()->set_height(node->height);
    auto& drawing = *value.mutable_drawing();
    drawing.set_shape(static_cast<graph_file::Node_Drawing_Shape>(node->shape));
    drawing.set_fill(node->fill);
    auto& line = *drawing.mutable_line();
    line.set_stroke(static_cast<graph_file::Node_Line_Stroke>(node->stroke));
    line.set_thickness(node->thickness);
  }
  for (const auto& edge : graph.edges) {
    graph_file::Edge& value = *message.add_edges();
    value.set_id(++id);
    value.set_from(ids[edge->from]);
    value.set_to(ids[edge->to]);
    value.set_weight(edge->weight);
    auto& layout = *value.mutable_layout();
    layout.set_routing(static_cast<graph_file::Edge_Layout_Routing>(edge->routing));
    for (const double bend : edge->bend) layout.add_bend(bend);
    value.mutable_drawing()->set_head(
        static_cast<graph_file::Edge_Drawing_Head>(edge->head));
  }
  std::ofstream file(path, std::ios::binary);
  return message.SerializeToOstream(&file);
}

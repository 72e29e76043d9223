#include "svg.h"

#include <algorithm>
#include <array>
#include <utility>

#include "text_size.h"

namespace {

constexpr nqLong kMargin = 24;
constexpr nqLong kTitleHeight = 34;
constexpr nqLong kTitleSize = 17;
constexpr nqLong kLegendBox = 17;  // what the name of a group stands beside
constexpr nqLong kLegendGap = 19;  // from one name to the next
constexpr nqLong kLegendHeight = 20;

// Light colours, far from each other, on which dark text can be read.
constexpr std::array<const char*, 12> kPalette = {
    "#cfe3f4", "#f6dcc4", "#d5ecd0", "#f4cfd6", "#e3d7f0", "#f7efb9",
    "#c9ece9", "#d6d6d6", "#e2e6c3", "#ecd9e7", "#c8d3ee", "#fbe0de"};

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        // Control characters must not stand in XML.
        out += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return out;
}

// Whether light text is read more easily on it than dark.
bool isDark(const NQColor& color) {
  return 299 * color.ired() + 587 * color.igreen() + 114 * color.iblue() < 125'000;
}

// A name for nodes that get the same colour.
class Group : public NQObject {
  NQ_COPY_MEMBERWISE(Group)

 public:
  Group(nqLong itsCode, const char* itsName) : code(itsCode), name(itsName) {}
  nqLong code;
  std::string_view name;
};

// What nodes are in: a nested graph, or the folder that their titles tell, or else just
// a group. A pool gives each name a small number, which chooses the colour; a tree keeps
// the names in the order of the legend.
class Groups {
 public:
  explicit Groups(const NQDList& nodes) : names_(16, 16, 1, 0) {
    for (const Node* node : Range<Node>(nodes)) {
      const std::string_view name = nameOf(*node);
      if (name.empty()) continue;
      const nqLong known = names_.decodeTableMax();
      const nqLong code = names_.update(name);
      if (code == known) legend_.addObject(new Group(code, names_.decode(code)));
    }
  }
  ~Groups() { legend_.deleteAllCellsAndObjects(); }
  Groups(const Groups&) = delete;
  Groups& operator=(const Groups&) = delete;

  // Of those that have names.
  Range<Group> legend() const { return Range<Group>(legend_); }

  const char* colorOf(const Node& node) const {
    const std::string_view name = nameOf(node);
    return color(name.empty() ? node.group & 0xffff : names_.lookup(name));
  }
  static const char* color(nqLong code) {
    return kPalette.at(static_cast<std::size_t>(code) % kPalette.size());
  }

 private:
  static std::string_view nameOf(const Node& node) {
    return node.graph().nested() ? node.graph().title : folderOf(node);
  }

  class ByName : public NQSortedBinTree {
   public:
    ByName() { exclusiveColors(1); }

   protected:
    int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
      return static_cast<const Group*>(a)->name.compare(
          static_cast<const Group*>(b)->name);
    }
  };

  NQStringPool names_;
  ByName legend_;  // owns its groups
};

class Picture {
 public:
  Picture(const Graph& graph, const NQDList& nodes, const NQDList& edges)
      : graph_(graph), nodes_(nodes), edges_(edges), groups_(nodes) {}

  std::string draw() {
    open();
    for (const Edge* edge : Range<Edge>(edges_)) {
      if (edge->route.size() > 1) drawEdge(*edge);
    }
    for (const Node* node : Range<Node>(nodes_)) drawNode(*node);
    for (const Edge* edge : Range<Edge>(edges_)) {
      if (!edge->route.empty())
        drawLines(linesOf(*edge), edge->labelCenter, " class=\"halo\"");
    }
    drawTitle();
    drawLegend();
    out_ += "</svg>\n";
    return std::move(out_);
  }

 private:
  // From the graph's coordinates, where y grows upward, to the picture's.
  void open() {
    NQRect bounds;
    bounds.setZero();
    for (const Node* node : Range<Node>(nodes_)) bounds |= node->box();
    for (const Edge* edge : Range<Edge>(edges_)) {
      for (const NQPoint& point : edge->route) bounds |= NQRect(point, point);
      if (!edge->route.empty() && edge->labels.length() > 0)
        bounds |= NQRect(edge->labelCenter, sizeOf(linesOf(*edge)));
    }
    paper_.sourceOriginX(bounds.left());
    paper_.sourceOriginY(bounds.top());
    paper_.targetOriginX(kMargin);
    paper_.targetOriginY(kMargin + kTitleHeight);
    paper_.targetExtentY(-1);
    width_ =
        std::max(bounds.width(), widthOf(title()) * kTitleSize / kFontSize) + 2 * kMargin;
    height_ = kMargin + kTitleHeight + bounds.height();
    placeLegend();
    height_ += kMargin;

    add("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"", width_, "\" height=\"",
        height_, "\" viewBox=\"0 0 ", width_, " ", height_,
        "\">\n<style>\nsvg { background: white; font: ", kFontSize,
        "px Helvetica, Arial, sans-serif }\n"
        "text { text-anchor: middle; fill: #222 }\n"
        ".title { font-size: ",
        kTitleSize,
        "px; text-anchor: start }\n"
        ".legend { text-anchor: start }\n"
        ".onDark { fill: white }\n"
        ".halo { stroke: white; stroke-width: 4; paint-order: stroke }\n"
        ".edge { fill: none; stroke: #5b6b7d; stroke-width: 1; stroke-opacity: 0.75; "
        "stroke-linejoin: round }\n"
        "</style>\n<defs>"
        "<marker id=\"arrow\" viewBox=\"0 0 10 8\" refX=\"9\" refY=\"4\" "
        "markerWidth=\"8\" markerHeight=\"7\" orient=\"auto\">"
        "<path d=\"M0,0 L10,4 L0,8 L2.5,4 z\" fill=\"#4a5866\"/></marker>"
        "<marker id=\"dot\" viewBox=\"0 0 8 8\" refX=\"8\" refY=\"4\" "
        "markerWidth=\"6\" markerHeight=\"6\" orient=\"auto\">"
        "<circle cx=\"4\" cy=\"4\" r=\"4\" fill=\"#4a5866\"/></marker></defs>\n");
  }

  void drawEdge(const Edge& edge) {
    out_ += "<path class=\"edge\" d=\"M";
    NQPoint last = onPaper(edge.route.front());
    addPoint(last);
    const bool vertical = graph_.flow == Flow::kDown || graph_.flow == Flow::kUp;
    for (std::size_t i = 1; i < edge.route.size(); ++i) {
      const NQPoint next = onPaper(edge.route[i]);
      // Edges leave and reach each layer along the flow.
      if (last.x() == next.x() || last.y() == next.y()) {
        out_ += " L";
      } else {
        const NQPoint middle((last.x() + next.x()) / 2, (last.y() + next.y()) / 2);
        out_ += " C";
        addPoint(vertical ? NQPoint(last.x(), middle.y())
                          : NQPoint(middle.x(), last.y()));
        out_ += ' ';
        addPoint(vertical ? NQPoint(next.x(), middle.y())
                          : NQPoint(middle.x(), next.y()));
        out_ += ' ';
      }
      addPoint(next);
      last = next;
    }
    out_ += '"';
    if (edge.stroke != Stroke::kSolid) out_ += dashesOf(edge.stroke);
    if (edge.thickness != 1)
      add(" style=\"stroke-width: ", shortReal(edge.thickness), "\"");
    if (graph_.directed && edge.head == Head::kArrow)
      out_ += " marker-end=\"url(#arrow)\"";
    if (edge.head == Head::kDot) out_ += " marker-end=\"url(#dot)\"";
    out_ += "/>\n";
  }

  void drawNode(const Node& node) {
    NQRect box;
    paper_.transformRect(node.box(), box);
    NQColor color;
    parseHex(groups_.colorOf(node), color);
    if (node.fill() != nullptr) color = *node.fill();
    const std::string fill = hexOf(color);
    const std::string style =
        " fill=\"" + fill + "\" stroke=\"#5b6b7d\" stroke-width=\"" +
        shortReal(node.thickness) + "\"" + dashesOf(node.stroke) + "/>\n";
    // On paper y grows downward: the rectangle's bottom is what is drawn on top.
    switch (node.shape) {
      case ShapeKind::kEllipse:
        add("<ellipse cx=\"", shortReal((box.left() + box.right()) / 2.0), "\" cy=\"",
            shortReal((box.bottom() + box.top()) / 2.0), "\" rx=\"",
            shortReal(box.width() / 2.0), "\" ry=\"", shortReal(box.height() / 2.0), "\"",
            style);
        break;
      case ShapeKind::kDiamond:
        add("<polygon points=\"", box.x(), ",", box.bottom(), " ", box.right(), ",",
            box.y(), " ", box.x(), ",", box.top(), " ", box.left(), ",", box.y(), "\"",
            style);
        break;
      default:
        add("<rect x=\"", box.left(), "\" y=\"", box.bottom(), "\" width=\"", box.width(),
            "\" height=\"", box.height(), "\" rx=\"",
            node.shape == ShapeKind::kRounded ? 7 : 2, "\"", style);
    }
    NQRect inner;
    node.outline().getCurrentInnerRect(inner, node.center, node.size);
    drawLines(linesOf(node), inner.center(), isDark(color) ? " class=\"onDark\"" : "");
  }

  // `style`: attributes of the text, with a blank in front.
  void drawLines(const std::vector<std::string_view>& lines, const NQPoint& center,
                 const char* style) {
    const NQPoint at = onPaper(center);
    const auto count = static_cast<nqInt64>(lines.size());
    nqInt64 y = at.y() - count * kLineHeight / 2 + kLineHeight * 3 / 4;
    for (const std::string_view line : lines) {
      add("<text", style, " x=\"", at.x(), "\" y=\"", y, "\">", escaped(line),
          "</text>\n");
      y += kLineHeight;
    }
  }

  std::string title() const {
    std::string text = graph_.title;
    for (const Label* label : Range<Label>(graph_.labels)) {
      if (!text.empty()) text += " \u2013 ";
      text += label->text;
    }
    return text;
  }

  void drawTitle() {
    add("<text class=\"title\" x=\"", kMargin, "\" y=\"", kMargin + 10, "\">",
        escaped(title()), "</text>\n");
  }

  // Puts the legend below what there is, in rows as wide as the picture.
  void placeLegend() {
    nqLong x = kMargin;
    for (const Group* group : groups_.legend()) {
      const nqLong width = kLegendBox + widthOf(group->name);
      width_ = std::max(width_, width + 2 * kMargin);
      if (legend_.empty()) {
        height_ += 2 * kLineHeight;
      } else if (x + width > width_ - kMargin) {
        x = kMargin;
        height_ += kLegendHeight;
      }
      legend_.push_back({x, height_});
      x += width + kLegendGap;
    }
  }

  void drawLegend() {
    auto place = legend_.begin();
    for (const Group* group : groups_.legend()) {
      const nqLong x = place->x();
      const nqLong y = place->y();
      add("<rect x=\"", x, "\" y=\"", y - 10, "\" width=\"12\" height=\"12\" fill=\"",
          Groups::color(group->code),
          "\" stroke=\"#5b6b7d\"/>\n<text class=\"legend\" x=\"", x + kLegendBox,
          "\" y=\"", y, "\">", escaped(group->name), "</text>\n");
      ++place;
    }
  }

  static std::string dashesOf(Stroke stroke) {
    switch (stroke) {
      case Stroke::kDashed:
        return " stroke-dasharray=\"6 3\"";
      case Stroke::kDotted:
        return " stroke-dasharray=\"1.5 3\"";
      default:
        return {};
    }
  }
  static std::string shortReal(double value) {
    char text[254];  // the most that one conversion writes
    nq_vs8_nqprintf(text, "%.1f", value);
    return text;
  }

  NQPoint onPaper(const NQPoint& point) const {
    NQPoint to;
    paper_.transformPoint(point, to);
    return to;
  }
  void addPoint(const NQPoint& point) { add(point.x(), ",", point.y()); }

  void addOne(nqInt64 number) { out_ += std::to_string(number); }
  void addOne(const std::string& text) { out_ += text; }
  void addOne(const char* text) { out_ += text; }
  template <class... Piece>
  void add(const Piece&... piece) {
    (addOne(piece), ...);
  }

  const Graph& graph_;
  const NQDList& nodes_;  // of nested graphs, too
  const NQDList& edges_;
  Groups groups_;
  NQTransform paper_;
  nqLong width_ = 0;
  nqLong height_ = 0;
  std::vector<NQPoint> legend_;  // where each of its groups is
  std::string out_;
};

}  // namespace

std::string svgOf(const Graph& graph) {
  NQDList nodes;
  NQDList edges;
  graph.collectNodes(nodes);
  graph.collectEdges(edges);
  return Picture(graph, nodes, edges).draw();
}

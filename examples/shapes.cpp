// Draws what a shape knows as an SVG picture: segments that come from all around
// end at its outline, places are tied to the nearest points of the outline, and
// the text rectangle lies where text may stand.
//
//   nq_example_shapes > shapes.svg

#include <cmath>
#include <cstdio>
#include <numbers>

#include "nq/nq.h"

namespace {

constexpr nqLong kCell = 320;  // of the picture, for each shape

NQPointDList* ring(int corners, double innerRadius, double turn) {
  auto* const points = new NQPointDList;
  for (int i = 0; i < corners; ++i) {
    const double radius = i % 2 == 0 ? 1000 : innerRadius;
    const double angle = 2 * std::numbers::pi * (i + turn) / corners;
    const NQDTuple corner(radius * std::cos(angle), radius * std::sin(angle));
    auto* const point = new NQPoint;
    point->set(NQTuple(corner).x(), NQTuple(corner).y());
    points->appendPoint(point);
  }
  return points;
}

NQPointDList* arrow() {
  auto* const points = new NQPointDList;
  const nqLong corners[][2] = {{-1000, -450}, {200, -450}, {200, -1000}, {1000, 0},
                               {200, 1000},   {200, 450},  {-1000, 450}, {-650, 0}};
  for (const auto& [x, y] : corners) points->appendPoint(new NQPoint(x, y));
  return points;
}

// y grows upward in nq and downward in SVG.
void line(const char* kind, const NQPoint& a, const NQPoint& b) {
  std::printf("<line class=\"%s\" x1=\"%d\" y1=\"%d\" x2=\"%d\" y2=\"%d\"/>\n", kind,
              int(a.x()), int(-a.y()), int(b.x()), int(-b.y()));
}

void dot(const char* kind, const NQPoint& p, double radius) {
  std::printf("<circle class=\"%s\" cx=\"%d\" cy=\"%d\" r=\"%.1f\"/>\n", kind, int(p.x()),
              int(-p.y()), radius);
}

void rect(const char* kind, const NQRect& r) {
  std::printf("<rect class=\"%s\" x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\"/>\n", kind,
              int(r.left()), int(-r.top()), int(r.width()), int(r.height()));
}

// The outline as the picture's own elements draw it: what the shape answers must
// fall on it.
void outline(const NQShape& shape, const NQRect& box) {
  const NQPoint center = box.center();
  if (shape.shapeType() == NQShapeRectangle) {
    rect("outline", box);
  } else if (shape.shapeType() == NQShapeEllipse) {
    std::printf("<ellipse class=\"outline\" cx=\"%d\" cy=\"%d\" rx=\"%g\" ry=\"%g\"/>\n",
                int(center.x()), int(-center.y()), box.width() / 2.0, box.height() / 2.0);
  } else {
    std::printf("<polygon class=\"outline\" points=\"");
    for (NQPointDListIter corner(shape.pPointList(), NQ_FORWARD); corner; ++corner) {
      std::printf("%g,%g ", center.x() + corner.pPoint()->x() * box.width() / 2000.0,
                  -center.y() - corner.pPoint()->y() * box.height() / 2000.0);
    }
    std::printf("\"/>\n");
  }
}

void draw(const NQShape& shape, const char* name, const NQPoint& center,
          const NQSize& size) {
  const NQRect box(center, size);
  rect("box", box);
  // The inside, place by place.
  for (nqLong y = box.bottom(); y <= box.top(); y += 10) {
    for (nqLong x = box.left(); x <= box.right(); x += 10) {
      const NQPoint p(x, y);
      if (shape.withinInterior(p, center, size)) dot("inside", p, 1);
    }
  }
  outline(shape, box);
  // A fan of segments towards the centre, clipped at the outline.
  constexpr int kRays = 48;
  for (int i = 0; i < kRays; ++i) {
    const double angle = 2 * std::numbers::pi * i / kRays;
    const NQDTuple way(140 * std::cos(angle), 140 * std::sin(angle));
    NQPoint start(center);
    start += NQTuple(way);
    NQPoint end(start);
    if (shape.intersectsSegment(end, center, center, size)) {
      line("ray", start, end);
      dot("met", end, 2);
    }
  }
  // Nearest points, from outside and from inside.
  for (const double distance : {0.35, 1.25}) {
    for (int i = 0; i < 16; ++i) {
      const double angle = 2 * std::numbers::pi * (i + 0.25) / 16;
      const NQDTuple way(distance * size.width() / 2 * std::cos(angle),
                         distance * size.height() / 2 * std::sin(angle));
      NQPoint from(center);
      from += NQTuple(way);
      NQPoint nearest(from);
      shape.nearestPoint(nearest, center, size);
      line("near", from, nearest);
      dot("near", from, 1.5);
    }
  }
  NQRect text;
  shape.getCurrentInnerRect(text, center, size);
  rect("text", text);
  std::printf("<text x=\"%d\" y=\"%d\">%s</text>\n", int(center.x()),
              int(-center.y() + kCell / 2 - 4), name);
}

}  // namespace

int main() {
  NQShape rectangle;
  NQShape ellipse(NQShapeEllipse);
  NQShape octagon(ring(8, 1000, 0.5));
  NQShape star(ring(10, 450, 2.5));
  NQShape pointer(arrow());
  NQShape turned(pointer);
  turned.rotate(90);
  rectangle.setInnerRect(NQRect(-900, -850, 900, 850));
  ellipse.setInnerRect(NQRect(-707, -707, 707, 707));
  octagon.setInnerRect(NQRect(-900, -380, 900, 380));
  star.setInnerRect(NQRect(-330, -290, 330, 290));
  pointer.setInnerRect(NQRect(-640, -420, 500, 420));
  turned.setInnerRect(NQRect(-420, -640, 420, 500));

  std::printf(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 %d %d %d\">\n"
      "<style>\n"
      "svg { background: white; font: 14px sans-serif }\n"
      "text { text-anchor: middle }\n"
      "rect { fill: none } .box { stroke: #bbb; stroke-dasharray: 3 3 }\n"
      ".text { stroke: #2a7; fill: #2a7; fill-opacity: 0.15 }\n"
      ".outline { stroke: #555; stroke-width: 1.2; fill: none }\n"
      ".inside { fill: #cbd } .met { fill: #15c }\n"
      ".ray { stroke: #15c; stroke-width: 0.6 }\n"
      ".near { stroke: #c41; stroke-width: 0.8; fill: #c41 }\n"
      "</style>\n",
      int(-2 * kCell), int(3 * kCell), int(2 * kCell));
  const struct {
    const NQShape& shape;
    const char* name;
    NQSize size;
  } pictures[] = {
      {rectangle, "rectangle", {200, 121}},
      {ellipse, "ellipse", {200, 120}},
      {octagon, "convex polygon", {180, 180}},
      {star, "non-convex polygon", {200, 200}},
      {pointer, "non-convex polygon", {200, 160}},
      {turned, "turned by 90 degrees", {160, 200}},
  };
  for (int i = 0; i < 6; ++i) {
    const NQPoint center(kCell * (i % 3) + kCell / 2, kCell / 2 + kCell * (1 - i / 3));
    draw(pictures[i].shape, pictures[i].name, center, pictures[i].size);
  }
  std::printf("</svg>\n");
}

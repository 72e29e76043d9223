// An edge between two nodes: cut off at their outlines, moved out of the way of a
// third, and scaled to a screen.

#include <cstdio>

#include "nq/nq.h"

namespace {

void print(const char* name, const NQPoint& p) {
  std::printf("%s (%d, %d)\n", name, int(p.x()), int(p.y()));
}

}  // namespace

int main() {
  // One shape serves any number of nodes; place and size are the node's.
  const NQShape ellipse(NQShapeEllipse);
  const NQPoint source(0, 0);
  const NQPoint target(300, 400);
  const NQSize size(100, 60);

  // The drawn edge begins and ends at the outlines: the first point becomes the
  // meeting point nearest to the second.
  NQPoint start(source);
  NQPoint end(target);
  ellipse.intersectsSegment(start, target, source, size);
  ellipse.intersectsSegment(end, source, target, size);
  print("starts at", start);
  print("ends at", end);
  std::printf("is %d long\n", int(start.distance(end)));

  // Touching counts as meeting, and all four edges belong to a rectangle.
  const NQRect box(NQPoint(150, 200), size);
  std::printf("box: left %d, bottom %d, right %d, top %d\n", int(box.left()),
              int(box.bottom()), int(box.right()), int(box.top()));
  if (box.overlapsSegment(start, end)) {
    NQPoint bend(box.center());
    box.getPointOutsideRect(bend, NQPoint(150, 300));
    print("bends at", bend);
  }

  // The world, with y upward, to a screen of 200 by 200 with y downward.
  NQTransform screen;
  screen.sourceExtentX(400);
  screen.sourceExtentY(400);
  screen.targetOriginY(200);
  screen.targetExtentX(200);
  screen.targetExtentY(-200);
  NQPoint pixel;
  screen.transformPoint(end, pixel);
  print("on the screen", pixel);
}

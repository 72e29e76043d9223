// Finds every pair of overlapping rectangles with a plane sweep, and draws what
// it found as an SVG picture: the overlaps themselves, links between the pairs,
// and the sweep line where it cut the most rectangles.
//
//   nq_example_sweep > sweep.svg
//
// The answer is compared with that of trying all pairs; where they differ the
// program fails.

#include <algorithm>
#include <cstdio>
#include <random>
#include <utility>
#include <vector>

#include "nq/nq.h"

namespace {

constexpr nqLong kWidth = 960;
constexpr nqLong kHeight = 540;
constexpr nqLong kMaxHeight = 110;  // of a rectangle

const NQRect& rect(const NQObject* object) {
  return *NQRect::castDown(object);
}

// The line moves to the right, and the rectangles on it are ordered by their
// lower edges. Whoever comes overlaps some of those that begin below its own top
// and not too far below its bottom.
class Overlaps : public NQSweep {
 public:
  using Pair = std::pair<const NQRect*, const NQRect*>;

  explicit Overlaps(const NQDList* rects) : NQSweep(rects, NQ_SWEEP_HORIZONTAL) {}

  std::vector<Pair> pairs;
  // Where the line cut the most rectangles, and which.
  nqLong fullestAt = 0;
  std::vector<const NQRect*> fullest;

 protected:
  int virtualStartValue(NQObject* segment) override { return rect(segment).left(); }
  int virtualEndValue(NQObject* segment) override { return rect(segment).right(); }
  int virtualSweepLineValue(NQObject* segment) override { return rect(segment).bottom(); }

  void virtualSegmentInserted(NQObject* segment) override {
    const NQRect& own = rect(segment);
    const NQBinTreeCell* cell = pInsertedCell();
    while ((cell = cell->pNextCell()) != nullptr &&
           rect(cell->pObject()).bottom() <= own.top()) {
      pairs.emplace_back(&rect(cell->pObject()), &own);
    }
    cell = pInsertedCell();
    while ((cell = cell->pPreviousCell()) != nullptr &&
           rect(cell->pObject()).bottom() >= own.bottom() - kMaxHeight) {
      const NQRect& other = rect(cell->pObject());
      if (other.top() >= own.bottom()) pairs.emplace_back(&other, &own);
    }
    if (static_cast<std::size_t>(pSweepLine()->length()) > fullest.size()) {
      fullestAt = own.left();
      fullest.clear();
      for (const NQObject* const each : *pSweepLine()) fullest.push_back(&rect(each));
    }
  }
};

// The pairs in one order, whichever way they were found.
std::vector<Overlaps::Pair> sorted(std::vector<Overlaps::Pair> pairs) {
  for (auto& [a, b] : pairs) {
    if (b < a) std::swap(a, b);
  }
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}

// y grows upward in nq and downward in SVG.
void draw(const char* kind, const NQRect& r) {
  std::printf("<rect class=\"%s\" x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\"/>\n", kind,
              int(r.left()), int(-r.top()), int(r.width()), int(r.height()));
}

void line(const char* kind, nqLong x1, nqLong y1, nqLong x2, nqLong y2) {
  std::printf("<line class=\"%s\" x1=\"%d\" y1=\"%d\" x2=\"%d\" y2=\"%d\"/>\n", kind,
              int(x1), int(-y1), int(x2), int(-y2));
}

}  // namespace

int main() {
  std::mt19937 random(9);
  const auto between = [&](nqLong least, nqLong most) {
    return least +
           static_cast<nqLong>(random() % static_cast<unsigned>(most - least + 1));
  };
  std::vector<NQRect> rects;
  for (int i = 0; i < 90; ++i) {
    const nqLong width = between(20, 120);
    const nqLong height = between(15, kMaxHeight);
    const nqLong left = between(10, kWidth - width - 10);
    const nqLong bottom = between(10, kHeight - height - 10);
    rects.emplace_back(left, bottom, left + width, bottom + height);
  }
  NQDList list;
  for (NQRect& each : rects) list.appendObject(&each);

  Overlaps overlaps(&list);
  overlaps.run();

  std::vector<Overlaps::Pair> tried;
  for (const NQRect& a : rects) {
    for (const NQRect& b : rects) {
      if (&a < &b && a.intersectsRect(b) != 0) tried.emplace_back(&a, &b);
    }
  }
  if (sorted(overlaps.pairs) != sorted(tried)) {
    std::fprintf(stderr, "the sweep found %d pairs, there are %d\n",
                 int(overlaps.pairs.size()), int(tried.size()));
    return 1;
  }

  std::printf(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 %d %d %d\">\n"
      "<style>\n"
      "svg { background: white; font: 14px sans-serif }\n"
      ".box { fill: #dde4ef; fill-opacity: 0.55; stroke: #8a97ad; stroke-width: 0.8 }\n"
      ".cut { fill: #2a7; fill-opacity: 0.18; stroke: #2a7; stroke-width: 1.4 }\n"
      ".overlap { fill: #c41; fill-opacity: 0.35 }\n"
      ".link { stroke: #15c; stroke-width: 0.9 } .end { fill: #15c }\n"
      ".sweep { stroke: #174; stroke-width: 1.2; stroke-dasharray: 6 4 }\n"
      ".on { stroke: #174; stroke-width: 5; stroke-opacity: 0.55 }\n"
      "text { fill: #333 }\n"
      "</style>\n",
      int(-kHeight), int(kWidth), int(kHeight + 30));
  for (const NQRect& each : rects) {
    const bool cut = std::find(overlaps.fullest.begin(), overlaps.fullest.end(), &each) !=
                     overlaps.fullest.end();
    draw(cut ? "cut" : "box", each);
  }
  for (const auto& [a, b] : overlaps.pairs) {
    NQRect overlap(*a);
    overlap &= *b;
    draw("overlap", overlap);
  }
  for (const auto& [a, b] : overlaps.pairs) line("link", a->x(), a->y(), b->x(), b->y());
  for (const NQRect& each : rects) {
    std::printf("<circle class=\"end\" cx=\"%d\" cy=\"%d\" r=\"2\"/>\n", int(each.x()),
                int(-each.y()));
  }
  line("sweep", overlaps.fullestAt, 0, overlaps.fullestAt, kHeight);
  for (const NQRect* const each : overlaps.fullest) {
    line("on", overlaps.fullestAt, each->bottom(), overlaps.fullestAt, each->top());
  }
  std::printf(
      "<text x=\"10\" y=\"20\">%d rectangles, %d overlapping pairs; the line cuts at "
      "most "
      "%d at a time</text>\n"
      "</svg>\n",
      int(rects.size()), int(overlaps.pairs.size()), int(overlaps.fullest.size()));
}

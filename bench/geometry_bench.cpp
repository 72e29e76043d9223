// Points, segments and rectangles beside Boost.Geometry: each operation over
// the same 65,536 random cases, of which some meet and some do not.

#include <benchmark/benchmark.h>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <boost/geometry/geometries/segment.hpp>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "nq/geometry/point_list.h"
#include "nq/geometry/rect.h"
#include "nq/geometry/shape.h"

namespace {

namespace bg = boost::geometry;
// Boost clips in the type of its coordinates, so it is given doubles where it
// has to compute a crossing, as nq does inside.
using IntPoint = bg::model::d2::point_xy<int>;
using RealPoint = bg::model::d2::point_xy<double>;

constexpr int kCases = 65536;

// Segments and boxes about as large as nodes and edges of a drawing are.
struct Cases {
  std::vector<NQPoint> a, b, c, d;
  std::vector<NQRect> first, second;

  Cases() {
    std::mt19937 random(65);
    std::uniform_int_distribution<nqLong> place(-1000, 1000);
    std::uniform_int_distribution<nqLong> extent(1, 600);
    const auto point = [&] { return NQPoint(place(random), place(random)); };
    const auto rect = [&] { return NQRect(point(), extent(random), extent(random)); };
    for (int i = 0; i < kCases; ++i) {
      for (auto* points : {&a, &b, &c, &d}) points->push_back(point());
      first.push_back(rect());
      second.push_back(rect());
    }
  }
};

const Cases& cases() {
  static const Cases kAll;
  return kAll;
}

template <class Point>
struct BoostCases {
  using Segment = bg::model::segment<Point>;
  using Box = bg::model::box<Point>;
  std::vector<Segment> s, t;
  std::vector<Box> first, second;

  BoostCases() {
    const Cases& from = cases();
    const auto point = [](const NQPoint& p) { return Point(p.x(), p.y()); };
    const auto box = [&](const NQRect& r) {
      return Box(point(r.bottomLeft()), point(r.topRight()));
    };
    for (size_t i = 0; i < kCases; ++i) {
      s.emplace_back(point(from.a[i]), point(from.b[i]));
      t.emplace_back(point(from.c[i]), point(from.d[i]));
      first.push_back(box(from.first[i]));
      second.push_back(box(from.second[i]));
    }
  }
};

template <class Point>
const BoostCases<Point>& boostCases() {
  static const BoostCases<Point> kAll;
  return kAll;
}

// Runs `answer(i)` over all cases.
template <class Answer>
void overAll(benchmark::State& state, Answer answer) {
  for (auto _ : state) {
    int sum = 0;
    for (size_t i = 0; i < kCases; ++i) sum += answer(i);
    benchmark::DoNotOptimize(sum);
    state.counters["hits"] = sum;
  }
  state.SetItemsProcessed(state.iterations() * kCases);
}

void rectRectNq(benchmark::State& state) {
  const Cases& c = cases();
  overAll(state, [&](size_t i) { return c.first[i].intersectsRect(c.second[i]); });
}
void rectRectBoost(benchmark::State& state) {
  const auto& c = boostCases<IntPoint>();
  overAll(state, [&](size_t i) { return bg::intersects(c.first[i], c.second[i]); });
}

void overlapNq(benchmark::State& state) {
  const Cases& c = cases();
  overAll(state, [&](size_t i) { return c.first[i].overlapsSegment(c.a[i], c.b[i]); });
}
void overlapBoost(benchmark::State& state) {
  const auto& c = boostCases<RealPoint>();
  overAll(state, [&](size_t i) { return bg::intersects(c.s[i], c.first[i]); });
}

void clipNq(benchmark::State& state) {
  const Cases& c = cases();
  overAll(state, [&](size_t i) {
    NQPoint a = c.a[i], b = c.b[i];
    const int crossings = c.first[i].intersectsSegment(a, b);
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(b);
    return crossings > 0;
  });
}
void clipBoost(benchmark::State& state) {
  const auto& c = boostCases<RealPoint>();
  bg::strategy::intersection::liang_barsky<bg::model::box<RealPoint>, RealPoint> strategy;
  overAll(state, [&](size_t i) {
    bg::model::segment<RealPoint> s = c.s[i];
    bool first = false, second = false;
    bg::model::referring_segment<RealPoint> refers(s.first, s.second);
    const bool remains = strategy.clip_segment(c.first[i], refers, first, second);
    benchmark::DoNotOptimize(s);
    return remains;
  });
}

void segmentSegmentNq(benchmark::State& state) {
  const Cases& c = cases();
  overAll(state, [&](size_t i) {
    nqLong x = c.a[i].x(), y = c.a[i].y();
    const int met = NQPoint::segmentsIntersect(x, y, c.b[i].x(), c.b[i].y(), c.c[i].x(),
                                               c.c[i].y(), c.d[i].x(), c.d[i].y());
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(y);
    return met;
  });
}
// Whether they meet.
void segmentSegmentBoost(benchmark::State& state) {
  const auto& c = boostCases<RealPoint>();
  overAll(state, [&](size_t i) { return bg::intersects(c.s[i], c.t[i]); });
}
// Where they meet.
void crossingBoost(benchmark::State& state) {
  const auto& c = boostCases<RealPoint>();
  std::vector<RealPoint> points;
  overAll(state, [&](size_t i) {
    points.clear();
    bg::intersection(c.s[i], c.t[i], points);
    benchmark::DoNotOptimize(points.data());
    return !points.empty();
  });
}

// The corners of a regular polygon, or of a star when every second one is nearer
// to the centre, in the thousandths of a shape.
std::vector<NQPoint> ring(int corners, double innerRadius) {
  std::vector<NQPoint> points;
  for (int i = 0; i < corners; ++i) {
    const double radius = i % 2 == 0 ? 1000 : innerRadius;
    const double angle = 2 * std::numbers::pi * i / corners;
    points.emplace_back(static_cast<nqLong>(std::lround(radius * std::cos(angle))),
                        static_cast<nqLong>(std::lround(radius * std::sin(angle))));
  }
  return points;
}

// Whether a place is in the polygon in a node of 1700 by 1700, but not on its
// boundary. Some places are beyond the node.
void withinNq(benchmark::State& state, int corners, double innerRadius) {
  auto* const points = new NQPointDList;
  for (const NQPoint& p : ring(corners, innerRadius)) points->appendPoint(new NQPoint(p));
  const NQShape shape(points);
  const Cases& c = cases();
  overAll(state, [&](size_t i) {
    return shape.withinInterior(c.a[i].x(), c.a[i].y(), 0, 0, 1700, 1700);
  });
}
template <class Point>
void withinBoost(benchmark::State& state, int corners, double innerRadius) {
  bg::model::polygon<Point> polygon;
  for (const NQPoint& p : ring(corners, innerRadius)) {
    bg::append(polygon, Point(p.x() * 1700 / 2000, p.y() * 1700 / 2000));
  }
  bg::correct(polygon);
  std::vector<Point> places;
  for (const NQPoint& p : cases().a) places.emplace_back(p.x(), p.y());
  overAll(state, [&](size_t i) { return bg::within(places[i], polygon); });
}

constexpr auto withinBoostInt = withinBoost<IntPoint>;
constexpr auto withinBoostReal = withinBoost<RealPoint>;

BENCHMARK_CAPTURE(withinNq, convex, 8, 1000)->Name("within_8_gon/nq/65536");
BENCHMARK_CAPTURE(withinBoostInt, convex, 8, 1000)->Name("within_8_gon/boost/65536");
BENCHMARK_CAPTURE(withinBoostReal, convex, 8, 1000)
    ->Name("within_8_gon/boost_double/65536");
BENCHMARK_CAPTURE(withinNq, star, 20, 400)->Name("within_20_star/nq/65536");
BENCHMARK_CAPTURE(withinBoostInt, star, 20, 400)->Name("within_20_star/boost/65536");
BENCHMARK_CAPTURE(withinBoostReal, star, 20, 400)
    ->Name("within_20_star/boost_double/65536");
BENCHMARK(rectRectNq)->Name("rect_meets_rect/nq/65536");
BENCHMARK(rectRectBoost)->Name("rect_meets_rect/boost/65536");
BENCHMARK(overlapNq)->Name("segment_overlaps_rect/nq/65536");
BENCHMARK(overlapBoost)->Name("segment_overlaps_rect/boost/65536");
BENCHMARK(clipNq)->Name("segment_clipped_to_rect/nq/65536");
BENCHMARK(clipBoost)->Name("segment_clipped_to_rect/boost/65536");
BENCHMARK(segmentSegmentNq)->Name("segment_meets_segment/nq/65536");
BENCHMARK(segmentSegmentBoost)->Name("segment_meets_segment/boost/65536");
BENCHMARK(segmentSegmentNq)->Name("crossing_point/nq/65536");
BENCHMARK(crossingBoost)->Name("crossing_point/boost/65536");

}  // namespace

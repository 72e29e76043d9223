#include "nq/geometry/rotated_rect.h"

#include <algorithm>

NQ_COPY_OPERATIONS_IMPL(NQRotatedRect)

namespace {

// Wider than any error of the coordinates along and across the band.
constexpr double kTolerance = 1e-5;

// The part of a segment, from 0 at its start to 1 at its end, that satisfies
// all conditions put to it so far.
struct Part {
  double from = 0;
  double to = 1;

  // Keeps what lies between 0 and `extent` on an axis on which the segment
  // runs from `start` to `end`; false when nothing is left. (Y.-D. Liang and
  // B. A. Barsky, A New Concept and Method for Line Clipping.)
  bool keep(double start, double end, double extent) {
    const double low = -kTolerance;
    const double high = extent + kTolerance;
    const double way = end - start;
    if (way == 0) return low <= start && start <= high;
    const double atLow = (low - start) / way;
    const double atHigh = (high - start) / way;
    from = std::max(from, std::min(atLow, atHigh));
    to = std::min(to, std::max(atLow, atHigh));
    return from <= to;
  }
};

}  // namespace

int NQRotatedRect::clipping(NQPoint* p, NQPoint* q) const {
  if (p == nullptr || q == nullptr) return 0;
  if (length_ < 0 || width_ < 0 || (cosine_ == 0 && sine_ == 0)) return 0;
  if (std::max(p->x(), q->x()) < minX_ - kTolerance ||
      std::min(p->x(), q->x()) > maxX_ + kTolerance ||
      std::max(p->y(), q->y()) < minY_ - kTolerance ||
      std::min(p->y(), q->y()) > maxY_ + kTolerance) {
    return 0;
  }
  const auto along = [this](const NQPoint& point) {
    return (point.x() - cornerX_) * cosine_ + (point.y() - cornerY_) * sine_;
  };
  const auto across = [this](const NQPoint& point) {
    return (point.y() - cornerY_) * cosine_ - (point.x() - cornerX_) * sine_;
  };
  Part part;
  if (!part.keep(along(*p), along(*q), length_)) return 0;
  if (!part.keep(across(*p), across(*q), width_)) return 0;

  // At 0 and 1 these are the ends exactly.
  const NQDTuple start = *p;
  NQDTuple way = *q;
  way -= start;
  const auto at = [&](double t) {
    return NQPoint(nqRound(start.x() + t * way.x()), nqRound(start.y() + t * way.y()));
  };
  *p = at(part.from);
  *q = at(part.to);
  return 1;
}

void NQRotatedRect::set(const NQPoint* a, const NQPoint* b, nqLong delta) {
  if (a == nullptr || b == nullptr) return;
  const double dx = nqDifference(b->x(), a->x());
  const double dy = nqDifference(b->y(), a->y());
  const double distance = std::sqrt(dx * dx + dy * dy);
  delta_ = delta;
  cosine_ = distance == 0 ? 1 : dx / distance;
  sine_ = distance == 0 ? 0 : dy / distance;
  cornerX_ = a->x() - (cosine_ - sine_) * delta;
  cornerY_ = a->y() - (sine_ + cosine_) * delta;
  length_ = distance + 2.0 * delta;
  width_ = 2.0 * delta;
  minX_ = std::min({x1(), x2(), x3(), x4()});
  minY_ = std::min({y1(), y2(), y3(), y4()});
  maxX_ = std::max({x1(), x2(), x3(), x4()});
  maxY_ = std::max({y1(), y2(), y3(), y4()});
}

#include "nq/geometry/transform.h"

NQ_COPY_OPERATIONS_IMPL(NQTransform)

void NQTransform::transformPoint(const NQDTuple& from, NQDTuple& to) const {
  to.set(transformX(from.x()), transformY(from.y()));
}

void NQTransform::transformPoint(const NQPoint& from, NQPoint& to) const {
  to.set(transformX(from.x()), transformY(from.y()));
}

void NQTransform::inverseTransformPoint(const NQDTuple& from, NQDTuple& to) const {
  to.set(inverseTransformX(from.x()), inverseTransformY(from.y()));
}

void NQTransform::inverseTransformPoint(const NQPoint& from, NQPoint& to) const {
  to.set(inverseTransformX(from.x()), inverseTransformY(from.y()));
}

void NQTransform::transformSize(const NQDTuple& from, NQDTuple& to) const {
  to.set(transformX(from.x()) - transformX(0.0), transformY(from.y()) - transformY(0.0));
}

void NQTransform::transformSize(const NQSize& from, NQSize& to) const {
  to.set(nqDifference(transformX(from.width()), transformX(0)),
         nqDifference(transformY(from.height()), transformY(0)));
}

void NQTransform::inverseTransformSize(const NQDTuple& from, NQDTuple& to) const {
  to.set(inverseTransformX(from.x()) - inverseTransformX(0.0),
         inverseTransformY(from.y()) - inverseTransformY(0.0));
}

void NQTransform::inverseTransformSize(const NQSize& from, NQSize& to) const {
  to.set(nqDifference(inverseTransformX(from.width()), inverseTransformX(0)),
         nqDifference(inverseTransformY(from.height()), inverseTransformY(0)));
}

void NQTransform::transformRect(const NQRect& from, NQRect& to) const {
  to.setCorners(transformX(from.left()), transformY(from.bottom()),
                transformX(from.right()), transformY(from.top()));
}

void NQTransform::inverseTransformRect(const NQRect& from, NQRect& to) const {
  to.setCorners(inverseTransformX(from.left()), inverseTransformY(from.bottom()),
                inverseTransformX(from.right()), inverseTransformY(from.top()));
}

int NQTransform::hasNormalizedExt() const {
  const auto normalized = [](const Axis& axis) {
    return axis.sourceExtent == 1 || axis.targetExtent == 1;
  };
  return normalized(x_) && normalized(y_);
}

void NQTransform::adjustExtentToPreserveAspectRatio() {
  if (x_.targetExtent == 0 || y_.targetExtent == 0) return;
  const auto widened = [](double product, double targetExtent) {
    return targetExtent > 0 ? product / targetExtent : 0;
  };
  const double a = x_.sourceExtent * y_.targetExtent;
  const double b = y_.sourceExtent * x_.targetExtent;
  if (b > a) {
    x_.sourceExtent = widened(b, y_.targetExtent);
  } else {
    y_.sourceExtent = widened(a, x_.targetExtent);
  }
}

void NQTransform::normalizeExt() {
  x_.normalize();
  y_.normalize();
}

void NQTransform::Axis::normalize() {
  const double source = sourceExtent == 0 ? 1 : sourceExtent;
  const double target = targetExtent == 0 ? 1 : targetExtent;
  if (std::abs(target) > std::abs(source)) {
    targetExtent = target / source;
    sourceExtent = 1;
  } else {
    sourceExtent = source / target;
    targetExtent = 1;
  }
}

std::string NQTransform::asText() const {
  return "x: " + x_.asText() + ", y: " + y_.asText();
}

std::string NQTransform::Axis::asText() const {
  return nqTextOf(sourceOrigin) + " + " + nqTextOf(sourceExtent) + " to " +
         nqTextOf(targetOrigin) + " + " + nqTextOf(targetExtent);
}

#include "nq/resources/shape_resource.h"

#include <cstdint>
#include <new>
#include <typeinfo>

#include "nq/core/hash_internal.h"
#include "nq/geometry/point_list.h"
#include "nq/geometry/rounding.h"

NQ_COPY_PROTOCOL_IMPL(NQShapeResource)
NQ_COPY_ALIKE_IMPL(NQShapeResource, NQResource)

void NQShapeResource::copyFields(const NQShapeResource& source) {
  shape_ = source.shape_;
}

void NQShapeResource::init() {
  shape_ = NQShape();
}

NQShapeResource::NQShapeResource(NQShapeResourceDB* database, const NQShape* shape)
    : NQResource(database) {
  if (shape != nullptr) shape_ = *shape;
}

NQShapeResource::~NQShapeResource() = default;

nqLong NQShapeResource::sortKey() const {
  const NQPointDList* const points = shape_.pPointList();
  const nqLong corners = points == nullptr ? 0 : points->length();
  switch (shape_.shapeType()) {
    case NQShapeRectangle:
      return 0;
    case NQShapeEllipse:
      return 1;
    case NQShapeConvexPolygon:
      return nqProduct(2, corners);
    case NQShapeNonConvexPolygon:
      return nqSum(nqProduct(2, corners), 1);
  }
  return -1;
}

int NQShapeResource::isEqual(const NQResource* other) const {
  return other == nullptr ? 0 : shape_.compare(castDown(other)->pShape());
}

nqInt64 NQShapeResource::vHash() const {
  // A derived class may call more shapes equal than compare() does.
  if (typeid(*this) != typeid(NQShapeResource)) return NQResource::vHash();
  const auto two = [](nqLong x, nqLong y) {
    return std::uint64_t{static_cast<nqULong>(x)} << 32 | static_cast<nqULong>(y);
  };
  constexpr std::uint64_t kFactor = 0xa0761d6478bd642fU;
  std::uint64_t hash = two(shape_.textRectLeftBorder(), shape_.textRectRightBorder());
  hash = nqdetail::mix(
      hash ^ two(shape_.textRectTopBorder(), shape_.textRectBottomBorder()) << 16,
      kFactor ^ static_cast<std::uint64_t>(shape_.shapeType()));
  if (const NQPointDList* const points = shape_.pPointList()) {
    for (const NQObject* const object : *points) {
      const NQPoint* const corner = NQPoint::castDown(object);
      hash = nqdetail::mix(hash ^ two(corner->x(), corner->y()), kFactor);
    }
  }
  return static_cast<nqInt64>(hash);
}

NQShapeResourceDB::~NQShapeResourceDB() = default;

NQShapeResourceDB* NQShapeResourceDB::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQShapeResourceDB>(object);
}

const NQShapeResource* NQShapeResourceDB::insert(const NQShape& shape) {
  return NQShapeResource::castDown(insertCopy(NQShapeResource(this, &shape)));
}

NQResource* NQShapeResourceDB::vNewResource() {
  return new (std::nothrow) NQShapeResource(this);
}

#include "nq/resources/color_resource.h"

#include "nq/containers/cell_pool_internal.h"

NQ_COPY_PROTOCOL_IMPL(NQColorResource)
NQ_COPY_ALIKE_IMPL(NQColorResource, NQResource)

void NQColorResource::copyFields(const NQColorResource& source) {
  color_ = source.color_;
}

void NQColorResource::init() {
  color_ = NQColor();
}

NQColorResource::NQColorResource(NQColorResourceDB* database, const NQColor* color)
    : NQResource(database) {
  if (color != nullptr) color_ = *color;
}

NQColorResource::~NQColorResource() = default;

nqLong NQColorResource::sortKey() const {
  return color_.ired() * 65536 + color_.igreen() * 256 + color_.iblue();
}

int NQColorResource::isEqual(const NQResource* other) const {
  return other == nullptr ? 0 : color_.compare(castDown(other)->pColor());
}

NQ_CELL_MEMORY_IMPL(NQColorResource)

NQColorResourceDB::~NQColorResourceDB() = default;

NQColorResourceDB* NQColorResourceDB::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQColorResourceDB>(object);
}

const NQColorResource* NQColorResourceDB::insert(const NQColor& color) {
  return NQColorResource::castDown(insertCopy(NQColorResource(this, &color)));
}

NQResource* NQColorResourceDB::vNewResource() {
  return new (std::nothrow) NQColorResource(this);
}

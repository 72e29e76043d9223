#include "nq/core/object_with_id.h"

NQ_COPY_PROTOCOL_IMPL(NQObjectWithID)

void NQObjectWithID::NQObjectWithIDdeepCopy(const NQObjectWithID& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
}

void NQObjectWithID::NQObjectWithIDattributeCopy(const NQObjectWithID& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
}

nqLong NQObjectWithID::localID() const {
  return 0;
}

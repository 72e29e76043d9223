#include "nq/core/unique_id.h"

#include "nq/core/format.h"

NQUniqueID::NQUniqueID(const NQObject* object)
    : firstID_(reinterpret_cast<nqInt64>(object)), secondID_(object->localID()) {}

char* NQUniqueID::idString(char* buffer) const {
  nq_vs8_nqprintf(buffer, "ID%08lx%08lx", static_cast<nqLong>(firstID_),
                  static_cast<nqLong>(secondID_));
  return buffer;
}

const NQUniqueID& NQUniqueID::operator=(const NQObject* object) {
  return *this = object == nullptr ? NQUniqueID() : NQUniqueID(object);
}

void NQUniqueID::getObjectID(const NQObject* object) {
  *this = object;
}

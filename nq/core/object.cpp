#include "nq/core/object.h"

#include <limits>

#include "nq/core/copy_protocol.h"

NQObject::NQObject(const NQObject&) noexcept {}

NQObject::NQObject(const NQObject&, int) {}

const NQObject& NQObject::operator=(const NQObject&) noexcept {
  return *this;
}

void NQObject::copyObject(const NQObject*) {}

void NQObject::copyAttributes(const NQObject*) {}

nqInt64 NQObject::graphFileID() const {
  return reinterpret_cast<nqInt64>(this);
}

nqLong NQObject::localID() const {
  return std::numeric_limits<nqLong>::min();
}

int NQObject::isOMLObject() const {
  return 0;
}

void NQObject::debugOutput(int) {}

NQObject* NQObject::cloneObject() const {
  return NQCopyAccess::cloneObject(this);
}

NQObject* NQObject::cloneAttributes() const {
  return NQCopyAccess::cloneAttributes(this);
}

NQObject* NQObject::castDown(const NQObject* object) {
  return const_cast<NQObject*>(object);
}

NQErrorCodeEnum NQObject::fileOutput(const char* fileName, const char* text,
                                     const char* mode) const {
  return staticFileOutput(fileName, text, mode == nullptr ? "a" : mode);
}

NQErrorCodeEnum NQObject::staticFileOutput(const char*, const char*, const char*) {
  return NQ_NO_ERROR;
}

NQObject* NQObject::vCloneObject() const {
  return new (std::nothrow) NQObject;
}

NQObject* NQObject::vCloneAttributes() const {
  return new (std::nothrow) NQObject;
}

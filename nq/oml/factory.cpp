#include "nq/oml/factory.h"

#include <new>

#include "nq/core/copy_protocol.h"

NQUFactory::~NQUFactory() = default;

NQUFactory* NQUFactory::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQUFactory>(object);
}

const char* NQUFactory::pCreatorString(const char* text) {
  if (text == nullptr) return pCreatorString();
  try {
    creatorString_ = std::string(text);  // it may be a part of the old one
  } catch (const std::bad_alloc&) {
  }
  return pCreatorString();
}

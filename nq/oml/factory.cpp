#include "nq/oml/factory.h"

#include "nq/core/copy_protocol.h"

NQUFactory::~NQUFactory() = default;

NQUFactory* NQUFactory::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQUFactory>(object);
}

const char* NQUFactory::pCreatorString(const char* text) {
  if (text != nullptr)
    creatorString_ = std::string(text);  // it may be a part of the old one
  return pCreatorString();
}

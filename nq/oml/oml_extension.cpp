#include "nq/oml/oml_extension.h"

#include <new>

NQ_COPY_PROTOCOL_IMPL(NQOMLExtension)
NQ_COPY_ALIKE_IMPL(NQOMLExtension, NQObject)

void NQOMLExtension::copyFields(const NQOMLExtension&) {
  ownedFile_.reset();
}

void NQOMLExtension::init() {
  pFile_ = nullptr;
  ownedFile_.reset();
}

NQOMLExtension::~NQOMLExtension() = default;

nqLong NQOMLExtension::sizeOf() const {
  const auto own = static_cast<nqLong>(sizeof *this);
  return ownedFile_ == nullptr ? own : own + ownedFile_->sizeOf();
}

NQOMLFile* NQOMLExtension::pOwnedOMLFile() {
  if (ownedFile_ != nullptr) return ownedFile_.get();
  try {
    ownedFile_.reset(vNewOwnedOMLFile());
  } catch (const std::bad_alloc&) {
  }
  return ownedFile_.get();
}

NQOMLFile* NQOMLExtension::vNewOwnedOMLFile() {
  auto* const file = new NQOMLFile;
  file->pOMLExtension(this);
  return file;
}

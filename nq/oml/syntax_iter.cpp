#include "nq/oml/syntax_iter.h"

#include "nq/oml/grammar/section_path.h"

NQ_COPY_PROTOCOL_IMPL(NQOMLSyntaxObjectIter)
NQ_COPY_ALIKE_IMPL(NQOMLSyntaxObjectIter, NQObject)

NQ_COPY_PROTOCOL_IMPL(NQOMLSyntaxFieldIter)
NQ_COPY_ALIKE_IMPL(NQOMLSyntaxFieldIter, NQObject)

NQOMLSyntaxFieldIter::View::View(const NQOMLSyntaxField& written,
                                 const NQOMLDefSection& section, NQOMLDefField* defField)
    : kind(written.kindIn(section, defField)), field(written, &kind) {}

void NQOMLSyntaxFieldIter::copyFields(const NQOMLSyntaxFieldIter& source) {
  cell_ = source.cell_;
  defaults_ = source.defaults_;
  ownFields_ = source.ownFields_;
  defObjType_ = source.defObjType_;
  section_ = source.section_;
  if (section_ != nullptr) {
    view_.emplace(*pWrittenField(), *section_, source.view_->field.pDefField());
  }
}

void NQOMLSyntaxFieldIter::init() {
  cell_ = nullptr;
  defaults_ = nullptr;
  ownFields_ = nullptr;
  defObjType_ = nullptr;
  section_ = nullptr;
}

void NQOMLSyntaxFieldIter::init(const NQOMLSyntaxObject* object) {
  init();
  if (object == nullptr) return;
  defaults_ = object->pDefaultList();
  ownFields_ = object->pFieldList();
  defObjType_ = object->pDefObjType();
  settle();
}

// Goes on from the current cell, which may be null, to one that has something to
// yield, or to the end.
void NQOMLSyntaxFieldIter::settle() {
  for (;; cell_ = cell_->pNext()) {
    while (cell_ == nullptr) {
      if (!enterNextList()) return;
    }
    const NQOMLSyntaxField* const field = cell_->pField();
    if (field == nullptr) continue;
    if (field->unchecked() != 0 || field->pDefField() != nullptr) return;
    if (settleIn(nqdetail::firstMatch(defObjType_, field->sectionPath()))) return;
  }
}

bool NQOMLSyntaxFieldIter::enterNextList() {
  if (defaults_ != nullptr) {
    cell_ = defaults_->pFieldList();
    defaults_ = defaults_->pNext();
    return true;
  }
  cell_ = ownFields_;
  ownFields_ = nullptr;
  return cell_ != nullptr;
}

bool NQOMLSyntaxFieldIter::settleInNextSection() {
  return settleIn(nqdetail::nextMatch(section_, pWrittenField()->sectionPath()));
}

// Settles in the first section from the given match on that defines the field.
bool NQOMLSyntaxFieldIter::settleIn(NQOMLDefSection* section) {
  const NQOMLSyntaxField& field = *pWrittenField();
  for (; section != nullptr;
       section = nqdetail::nextMatch(section, field.sectionPath())) {
    NQOMLDefField* const definition = section->pField(field.nameIndex());
    if (definition == nullptr) continue;
    section_ = section;
    view_.emplace(field, *section, definition);
    return true;
  }
  section_ = nullptr;
  return false;
}

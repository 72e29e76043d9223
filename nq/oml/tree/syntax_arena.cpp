#include "nq/oml/tree/syntax_arena.h"

#include <new>

namespace nqdetail {

struct SyntaxArena::FieldRecord final : NQOMLSyntaxField {
  template <class... Arguments>
  explicit FieldRecord(Arguments... arguments)
      : NQOMLSyntaxField(arguments...), cell(nullptr) {}

  NQOMLSyntaxFieldList cell;
};

namespace {

// Memory is counted in words, so that every piece of the arena begins at one.
template <class... Ts>
void* allocate(std::optional<Arena>& memory) {
  static_assert(((sizeof(Ts) % 8 == 0 && alignof(Ts) <= 8) && ...));
  if (!memory.has_value()) memory.emplace();
  return memory->allocate((sizeof(Ts) + ...));
}

}  // namespace

NQOMLSyntaxObject* SyntaxArena::makeObject(NQOMLFile* file, nqLong line, int position,
                                           nqLong fileNameIndex, nqLong typeIndex,
                                           nqLong objectIDIndex, nqLong sectionIDIndex,
                                           nqULong sectionPath,
                                           NQOMLDefObjType* defObjType) {
  // The cell stands before the object, whose constructor already shows the object to
  // the reading file, which may add it somewhere.
  void* const place = allocate<NQOMLSyntaxObjectList, NQOMLSyntaxObject>(memory_);
  if (place == nullptr) return nullptr;
  auto* const cell = new (place) NQOMLSyntaxObjectList(nullptr);
  return new (cell + 1)
      NQOMLSyntaxObject(this, file, line, position, fileNameIndex, typeIndex,
                        objectIDIndex, sectionIDIndex, sectionPath, defObjType);
}

NQOMLSyntaxField* SyntaxArena::makeField(NQOMLFile* file, nqLong line, int position,
                                         nqLong fileNameIndex, nqLong nameIndex,
                                         nqLong sectionIDIndex, nqULong sectionPath,
                                         const NQOMLToken& token, NQOMLDefField* defField,
                                         int unchecked) {
  static_assert(sizeof(FieldRecord) == 72, "files hold fields by the million");
  void* const place = allocate<FieldRecord>(memory_);
  if (place == nullptr) return nullptr;
  auto* const field =
      new (place) FieldRecord(file, line, position, fileNameIndex, nameIndex,
                              sectionIDIndex, sectionPath, nullptr, defField, unchecked);
  field->takeValue(token);
  field->storage_ = NQOMLSyntaxField::kArena;
  if (NQOMLBinValue* const value = token.pBinValue()) binValues_.emplace_back(value);
  return field;
}

void SyntaxArena::clear() {
  for (NQOMLSyntaxObject* const holder : holders_) holder->destroyContents();
  holders_.clear();
  defaultsIndices_.clear();
  binValues_.clear();
  memory_.reset();
}

NQOMLSyntaxDefaultList* SyntaxArena::makeDefaultList(NQOMLSyntaxFieldList* fields,
                                                     NQOMLSyntaxDefaultList* next) {
  void* const place = allocate<NQOMLSyntaxDefaultList>(memory_);
  if (place == nullptr) return nullptr;
  auto* const node = new (place) NQOMLSyntaxDefaultList(fields, next);
  node->inArena_ = true;
  return node;
}

DefaultsIndex* SyntaxArena::makeDefaultsIndex() {
  return defaultsIndices_.emplace_back(std::make_unique<DefaultsIndex>()).get();
}

NQOMLSyntaxObjectList* SyntaxArena::cellOf(NQOMLSyntaxObject* object) {
  return reinterpret_cast<NQOMLSyntaxObjectList*>(object) - 1;
}

NQOMLSyntaxFieldList* SyntaxArena::cellOf(NQOMLSyntaxField* field) {
  return &static_cast<FieldRecord*>(field)->cell;
}

}  // namespace nqdetail

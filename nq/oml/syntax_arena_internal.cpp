#include "nq/oml/syntax_arena_internal.h"

#include <new>

namespace nqdetail {

struct SyntaxArena::ObjectRecord final : NQOMLSyntaxObject {
  template <class... Arguments>
  explicit ObjectRecord(Arguments... arguments)
      : NQOMLSyntaxObject(arguments...), cell(nullptr) {}

  NQOMLSyntaxObjectList cell;
};

struct SyntaxArena::FieldRecord final : NQOMLSyntaxField {
  template <class... Arguments>
  explicit FieldRecord(const NQOMLToken& value, Arguments... arguments)
      : NQOMLSyntaxField(arguments...), cell(nullptr), token(value) {}

  NQOMLSyntaxFieldList cell;
  NQOMLToken token;
};

namespace {

// Memory is counted in words, so that every piece of the arena begins at one.
template <class T>
void* allocate(std::optional<Arena>& memory) {
  static_assert(sizeof(T) % 8 == 0 && alignof(T) <= 8);
  if (!memory.has_value()) memory.emplace();
  return memory->allocate(sizeof(T));
}

}  // namespace

NQOMLSyntaxObject* SyntaxArena::makeObject(NQOMLFile* file, nqLong line, int position,
                                           nqLong fileNameIndex, nqLong typeIndex,
                                           nqLong objectIDIndex, nqLong sectionIDIndex,
                                           nqULong sectionPath,
                                           NQOMLDefObjType* defObjType) {
  void* const place = allocate<ObjectRecord>(memory_);
  if (place == nullptr) return nullptr;
  return new (place) ObjectRecord(this, file, line, position, fileNameIndex, typeIndex,
                                  objectIDIndex, sectionIDIndex, sectionPath, defObjType);
}

NQOMLSyntaxField* SyntaxArena::makeField(NQOMLFile* file, nqLong line, int position,
                                         nqLong fileNameIndex, nqLong nameIndex,
                                         nqLong sectionIDIndex, nqULong sectionPath,
                                         const NQOMLToken& token, NQOMLDefField* defField,
                                         int unchecked) {
  static_assert(sizeof(FieldRecord) <= 96, "files hold fields by the million");
  void* const place = allocate<FieldRecord>(memory_);
  if (place == nullptr) return nullptr;
  auto* const field =
      new (place) FieldRecord(token, file, line, position, fileNameIndex, nameIndex,
                              sectionIDIndex, sectionPath, nullptr, defField, unchecked);
  field->token_ = &field->token;
  field->storage(NQOMLSyntaxField::Storage::kArena);
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
  return &static_cast<ObjectRecord*>(object)->cell;
}

NQOMLSyntaxFieldList* SyntaxArena::cellOf(NQOMLSyntaxField* field) {
  return &static_cast<FieldRecord*>(field)->cell;
}

}  // namespace nqdetail

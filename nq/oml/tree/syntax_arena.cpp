#include "nq/oml/tree/syntax_arena.h"

#include <new>

namespace nqdetail {

// The cell stands before the object, whose constructor already shows the object to
// the reading file, which may add it somewhere.
struct SyntaxArena::ObjectRecord {
  CellLink link;
  NQOMLSyntaxObject object;
};

struct SyntaxArena::FieldRecord {
  NQOMLSyntaxField field;
  CellLink link;
};

namespace {

// Memory is counted in words, so that every piece of the arena begins at one.
template <class T>
void* allocate(std::optional<Arena>& memory) {
  static_assert(sizeof(T) % 8 == 0 && alignof(T) <= 8);
  if (!memory.has_value()) memory.emplace();
  return memory->allocate(sizeof(T));
}

std::size_t hashOf(const NodeKind& kind) {
  const auto definition = reinterpret_cast<std::uintptr_t>(kind.defField) ^
                          reinterpret_cast<std::uintptr_t>(kind.defObjType);
  return static_cast<std::size_t>(kind.nameIndex) * 7 +
         static_cast<std::size_t>(kind.sectionPath) * 5 +
         static_cast<std::size_t>(kind.fileNameIndex) * 3 + definition / 16;
}

}  // namespace

NodeKind* SyntaxArena::kindOf(NodeKind kind) {
  kind.arena = this;
  kind.ofOneNode = false;
  NodeKind*& known = kinds_[hashOf(kind) % kinds_.size()];
  if (known != nullptr && *known == kind) return known;
  void* const place = allocate<NodeKind>(fields_);
  if (place == nullptr) return nullptr;
  return known = new (place) NodeKind(kind);
}

NQOMLSyntaxObject* SyntaxArena::makeObject(NodeKind* kind, nqLong line, nqLong column,
                                           nqLong objectIDIndex) {
  void* const place = allocate<ObjectRecord>(objects_);
  if (place == nullptr) return nullptr;
  auto* const link = new (place) CellLink(CellLink::ofNode());
  return new (link + 1) NQOMLSyntaxObject(kind, line, column, objectIDIndex);
}

NQOMLSyntaxField* SyntaxArena::makeField(NodeKind* kind, nqLong line, nqLong column,
                                         const NQOMLToken& token) {
  static_assert(sizeof(FieldRecord) == 40, "files hold fields by the million");
  void* const place = allocate<FieldRecord>(fields_);
  if (place == nullptr) return nullptr;
  if (NQOMLBinValue* const value = token.pBinValue()) binValues_.emplace_back(value);
  auto* const field = new (place) NQOMLSyntaxField(kind, line, column, token);
  new (field + 1) CellLink(CellLink::ofNode());
  return field;
}

NQOMLSyntaxField* SyntaxArena::lastingView(const NQOMLSyntaxFieldIter& iter) {
  NQOMLSyntaxField* const written = iter.pWrittenField();
  NQOMLSyntaxField*& view = views_[{written, iter.section_->path()}];
  if (view == nullptr) {
    using View = NQOMLSyntaxFieldIter::View;
    void* const place = allocate<View>(fields_);
    if (place == nullptr) throw std::bad_alloc();
    NQOMLDefField* const definition = iter.pField()->pDefField();
    view = &(new (place) View(*written, *iter.section_, definition))->field;
  }
  return view;
}

void SyntaxArena::clear() {
  for (NQOMLSyntaxObject* const holder : holders_) holder->destroyContents();
  holders_.clear();
  defaultsIndices_.clear();
  binValues_.clear();
  kinds_.fill(nullptr);
  fields_.reset();
  objects_.reset();
  views_.clear();
}

NQOMLSyntaxDefaultList* SyntaxArena::makeDefaultList(NQOMLSyntaxFieldList* fields,
                                                     NQOMLSyntaxDefaultList* next) {
  void* const place = allocate<NQOMLSyntaxDefaultList>(fields_);
  if (place == nullptr) return nullptr;
  auto* const node = new (place) NQOMLSyntaxDefaultList(fields, next);
  node->inArena_ = true;
  return node;
}

DefaultsIndex* SyntaxArena::makeDefaultsIndex() {
  return defaultsIndices_.emplace_back(std::make_unique<DefaultsIndex>()).get();
}

NQOMLSyntaxObjectList* SyntaxArena::cellOf(NQOMLSyntaxObject* object) {
  if (object->arena() == nullptr) return nullptr;
  return reinterpret_cast<NQOMLSyntaxObjectList*>(reinterpret_cast<CellLink*>(object) -
                                                  1);
}

NQOMLSyntaxFieldList* SyntaxArena::cellOf(NQOMLSyntaxField* field) {
  if (field->kind_->arena == nullptr) return nullptr;
  return reinterpret_cast<NQOMLSyntaxFieldList*>(field + 1);
}

}  // namespace nqdetail

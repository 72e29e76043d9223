#include "nq/oml/syntax_tree.h"

#include <algorithm>
#include <new>

#include "nq/oml/bin_value.h"
#include "nq/oml/grammar.h"
#include "nq/oml/grammar/section_path.h"
#include "nq/oml/tree/read_tables.h"
#include "nq/oml/tree/syntax_arena.h"

using nqdetail::readTables;
using nqdetail::ReadTables;
using nqdetail::SyntaxArena;

// NQOMLSyntaxStruct

NQ_COPY_PROTOCOL_IMPL(NQOMLSyntaxStruct)
NQ_COPY_ALIKE_IMPL(NQOMLSyntaxStruct, NQObject)

void NQOMLSyntaxStruct::copyFields(const NQOMLSyntaxStruct& source) {
  file_ = source.file_;
  fileNameIndex_ = source.fileNameIndex_;
  line_ = source.line_;
  column_ = source.column_;
}

void NQOMLSyntaxStruct::init() {
  file_ = nullptr;
  fileNameIndex_ = -1;
  line_ = -1;
  column_ = 0;
}

const char* NQOMLSyntaxStruct::fileNameString() const {
  return nqdetail::stringText(readTables(file_), fileNameIndex_);
}

// NQOMLSyntaxField

namespace {

constexpr std::uint32_t kSectionBits =
    static_cast<std::uint32_t>(NQOMLSyntaxField::kMaxSectionIDIndex) + 1;

}  // namespace

NQOMLSyntaxField::NQOMLSyntaxField(NQOMLFile* file, nqLong line, int position,
                                   nqLong fileNameIndex, nqLong nameIndex,
                                   nqLong sectionIDIndex, nqULong sectionPath,
                                   NQOMLToken* token, NQOMLDefField* defField,
                                   int unchecked)
    : NQOMLSyntaxStruct(file, line, position, fileNameIndex),
      nameIndex_(nameIndex),
      section_(packedSection(sectionIDIndex) & kSectionBits),
      storage_(kHeap),
      tag_(kNoToken),
      unchecked_(unchecked != 0),
      sectionPath_(sectionPath),
      defField_(defField),
      word_(0) {
  if (token != nullptr) takeValue(*token);
  delete token;
}

NQOMLSyntaxField::NQOMLSyntaxField(const NQOMLSyntaxField& field,
                                   const NQOMLDefSection& section,
                                   NQOMLDefField* defField)
    : NQOMLSyntaxStruct(field),
      nameIndex_(field.nameIndex_),
      section_(packedSection(section.nameIndex()) & kSectionBits),
      storage_(kView),
      tag_(field.tag_),
      unchecked_(field.unchecked_),
      sectionPath_(section.path()),
      defField_(defField),
      word_(field.word_) {}

NQOMLSyntaxField::~NQOMLSyntaxField() {
  if (storage_ == kHeap) token().deleteValue();
}

std::uint32_t NQOMLSyntaxField::packedSection(nqLong sectionIDIndex) {
  return static_cast<std::uint32_t>(
      std::clamp(sectionIDIndex, nqLong{-1}, kMaxSectionIDIndex) + 1);
}

void NQOMLSyntaxField::takeValue(const NQOMLToken& token) {
  tag_ = static_cast<std::uint32_t>(token.tag) & kNoToken;
  word_ = token.word;
}

void NQOMLSyntaxField::reference(nqLong objectIDIndex) {
  NQOMLToken token;
  token.tag = NQ_OML_OBJECT_ID;
  token.integer(objectIDIndex);
  takeValue(token);
}

NQOMLToken NQOMLSyntaxField::token() const {
  NQOMLToken token;
  if (hasToken()) token.tag = static_cast<NQOMLTokenTagEnum>(tag_);
  token.word = word_;
  return token;
}

const char* NQOMLSyntaxField::nameString() const {
  return nqdetail::fieldName(readTables(pFile()), nameIndex_);
}

const char* NQOMLSyntaxField::sectionString() const {
  return nqdetail::sectionName(readTables(pFile()), sectionIDIndex());
}

NQOMLFieldTypeEnum NQOMLSyntaxField::valueType() const {
  switch (tag_) {
    case NQ_OML_INTEGER:
      return NQ_OML_VALUE_INTEGER;
    case NQ_OML_REAL:
      return NQ_OML_VALUE_REAL;
    case NQ_OML_STRING:
      return NQ_OML_VALUE_STRING;
    case NQ_OML_ENUMERATOR:
      return NQ_OML_VALUE_ENUMERATOR;
    case NQ_OML_BINARY_VALUE:
      return NQ_OML_VALUE_BINARY;
    case NQ_OML_OBJECT_TYPE_NAME:
      return NQ_OML_VALUE_OBJECT_TYPE;
    default:
      return NQ_OML_VALUE_OTHER;
  }
}

int NQOMLSyntaxField::intValue() const {
  return token().integer();
}

short NQOMLSyntaxField::shortValue() const {
  return static_cast<short>(intValue());
}

double NQOMLSyntaxField::doubleValue() const {
  return token().real();
}

float NQOMLSyntaxField::floatValue() const {
  return static_cast<float>(doubleValue());
}

int NQOMLSyntaxField::enumValue() const {
  const ReadTables* const tables = readTables(pFile());
  if (!hasToken() || tables == nullptr || tables->pGrammar == nullptr) return 0;
  return tables->pGrammar->enumValue(token().integer());
}

int NQOMLSyntaxField::boolValue() const {
  return enumValue();
}

const char* NQOMLSyntaxField::stringValue() const {
  if (!hasToken()) return "";
  return nqdetail::stringText(readTables(pFile()), token().integer());
}

NQObject* NQOMLSyntaxField::objectValue() const {
  const ReadTables* const tables = readTables(pFile());
  if (tag_ != NQ_OML_OBJECT_ID || tables == nullptr || tables->pObjectIDs == nullptr) {
    return nullptr;
  }
  return tables->pObjectIDs->pObject(token().integer());
}

nqLong NQOMLSyntaxField::objectTypeIndex() const {
  const ReadTables* const tables = readTables(pFile());
  if (tag_ != NQ_OML_OBJECT_ID || tables == nullptr || tables->pObjectIDs == nullptr) {
    return -1;
  }
  const NQOMLSyntaxObject* const object =
      tables->pObjectIDs->pSyntaxObject(token().integer());
  return object == nullptr ? -1 : object->typeIndex();
}

const char* NQOMLSyntaxField::objectTypeString() const {
  return nqdetail::objectTypeName(readTables(pFile()), objectTypeIndex());
}

NQOMLBinValue* NQOMLSyntaxField::pBinValue() const {
  return token().pBinValue();
}

NQOMLSyntaxField* NQOMLSyntaxField::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQOMLSyntaxField>(object);
}

// NQOMLSyntaxObject

NQOMLSyntaxObject::NQOMLSyntaxObject(NQOMLFile* file, nqLong line, int position,
                                     nqLong fileNameIndex, nqLong typeIndex,
                                     nqLong objectIDIndex, nqLong sectionIDIndex,
                                     nqULong sectionPath, NQOMLDefObjType* defObjType)
    : NQOMLSyntaxObject(nullptr, file, line, position, fileNameIndex, typeIndex,
                        objectIDIndex, sectionIDIndex, sectionPath, defObjType) {}

NQOMLSyntaxObject::NQOMLSyntaxObject(SyntaxArena* arena, NQOMLFile* file, nqLong line,
                                     int position, nqLong fileNameIndex, nqLong typeIndex,
                                     nqLong objectIDIndex, nqLong sectionIDIndex,
                                     nqULong sectionPath, NQOMLDefObjType* defObjType)
    : NQOMLSyntaxStruct(file, line, position, fileNameIndex),
      typeIndex_(typeIndex),
      objectIDIndex_(objectIDIndex),
      sectionIDIndex_(sectionIDIndex),
      sectionPath_(sectionPath),
      defObjType_(defObjType),
      arena_(arena) {
  nqdetail::announceSyntaxObject(file, this, line, position);
}

NQOMLSyntaxObject::~NQOMLSyntaxObject() {
  destroyContents();
}

const char* NQOMLSyntaxObject::typeString() const {
  return nqdetail::objectTypeName(readTables(pFile()), typeIndex_);
}

const char* NQOMLSyntaxObject::nameString() const {
  return nqdetail::objectIDText(readTables(pFile()), objectIDIndex_);
}

NQObject* NQOMLSyntaxObject::object() const {
  const ReadTables* const tables = readTables(pFile());
  if (tables == nullptr || tables->pObjectIDs == nullptr) return nullptr;
  return tables->pObjectIDs->pObject(objectIDIndex_);
}

const char* NQOMLSyntaxObject::sectionString() const {
  return nqdetail::sectionName(readTables(pFile()), sectionIDIndex_);
}

// A node from an arena brings its own cell; it is used once.
void NQOMLSyntaxObject::addObject(NQOMLSyntaxObject* object) {
  if (object == nullptr) return;
  NQOMLSyntaxObjectList* cell =
      object->arena_ != nullptr ? SyntaxArena::cellOf(object) : nullptr;
  if (cell != nullptr && cell->object_ == nullptr) {
    cell->object_ = object;
  } else {
    cell = new (std::nothrow) NQOMLSyntaxObjectList(object);
    if (cell == nullptr) return;
    noteHeapNodes();
  }
  object->parent_ = this;
  (objectsEnd_ == nullptr ? objects_ : objectsEnd_->next_) = cell;
  objectsEnd_ = cell;
}

void NQOMLSyntaxObject::addField(NQOMLSyntaxField* field) {
  if (field == nullptr) return;
  NQOMLSyntaxFieldList* cell =
      field->storage_ == NQOMLSyntaxField::kArena ? SyntaxArena::cellOf(field) : nullptr;
  if (cell != nullptr && cell->field_ == nullptr) {
    cell->field_ = field;
  } else {
    cell = new (std::nothrow) NQOMLSyntaxFieldList(field);
    if (cell == nullptr) return;
    noteHeapNodes();
  }
  (fieldsEnd_ == nullptr ? fields_ : fieldsEnd_->next_) = cell;
  fieldsEnd_ = cell;
}

void NQOMLSyntaxObject::addDefaultList(NQOMLSyntaxFieldList* fields) {
  if (fields == nullptr) return;
  NQOMLSyntaxDefaultList* const node =
      arena_ != nullptr ? arena_->makeDefaultList(fields, defaults_)
                        : new (std::nothrow) NQOMLSyntaxDefaultList(fields, defaults_);
  if (node == nullptr) return;
  defaults_ = node;
  if (defaultsIndex_ != nullptr) defaultsIndex_->lists.insert(fields);
}

void NQOMLSyntaxObject::append(NQOMLSyntaxObject* other) {
  if (other == nullptr || other == this) return;
  if (arena_ != other->arena_ || (arena_ != nullptr && arena_->hasHeapNodes())) {
    noteHeapNodes();
  }
  for (NQOMLSyntaxObjectList* cell = other->objects_; cell != nullptr;
       cell = cell->next_) {
    if (cell->object_ != nullptr) cell->object_->parent_ = this;
  }
  if (other->objects_ != nullptr) {
    (objectsEnd_ == nullptr ? objects_ : objectsEnd_->next_) = other->objects_;
    objectsEnd_ = other->objectsEnd_;
    other->objects_ = nullptr;
    other->objectsEnd_ = nullptr;
  }
  if (other->fields_ != nullptr) {
    (fieldsEnd_ == nullptr ? fields_ : fieldsEnd_->next_) = other->fields_;
    fieldsEnd_ = other->fieldsEnd_;
    other->fields_ = nullptr;
    other->fieldsEnd_ = nullptr;
  }
  takeDefaults(*other);
}

// A node in an arena is not destroyed with it unless the arena knows that it holds
// something from elsewhere.
void NQOMLSyntaxObject::noteHeapNodes() {
  if (arena_ != nullptr) arena_->noteHeapNodes(this);
}

void NQOMLSyntaxObject::takeDefaults(NQOMLSyntaxObject& other) {
  NQOMLSyntaxDefaultList* node = other.defaults_;
  other.defaults_ = nullptr;
  other.dropDefaultsIndex();
  while (node != nullptr) {
    NQOMLSyntaxDefaultList* const next = node->next_;
    node->next_ = nullptr;
    if (!linkDefaults(node)) NQOMLSyntaxDefaultList::destroyChain(node);
    node = next;
  }
}

// Links one node at the end; false when its list is in the chain already. One
// object may be written in as many blocks as a file has room for, each with
// defaults of its own, so a chain that grows long gets an index.
bool NQOMLSyntaxObject::linkDefaults(NQOMLSyntaxDefaultList* node) {
  constexpr int kLongChain = 32;
  if (defaultsIndex_ != nullptr) {
    nqdetail::DefaultsIndex& index = *defaultsIndex_;
    // Somebody may have lengthened the chain itself.
    while (index.pLast->next_ != nullptr) {
      index.pLast = index.pLast->next_;
      index.lists.insert(index.pLast->fields_);
    }
    if (!index.lists.insert(node->fields_).second) return false;
    index.pLast->next_ = node;
    index.pLast = node;
    return true;
  }
  int length = 1;
  NQOMLSyntaxDefaultList** end = &defaults_;
  for (; *end != nullptr; end = &(*end)->next_, ++length) {
    if ((*end)->fields_ == node->fields_) return false;
  }
  *end = node;
  if (length > kLongChain) {
    defaultsIndex_ =
        arena_ != nullptr ? arena_->makeDefaultsIndex() : new nqdetail::DefaultsIndex;
    defaultsIndex_->pLast = node;
    for (const NQOMLSyntaxDefaultList* at = defaults_; at != nullptr; at = at->next_) {
      defaultsIndex_->lists.insert(at->fields_);
    }
  }
  return true;
}

void NQOMLSyntaxObject::dropDefaultsIndex() {
  if (arena_ == nullptr) delete defaultsIndex_;
  defaultsIndex_ = nullptr;
}

void NQOMLSyntaxObject::deleteObjectItem(NQOMLSyntaxObjectList* before) {
  NQOMLSyntaxObjectList*& link = before == nullptr ? objects_ : before->next_;
  NQOMLSyntaxObjectList* const cell = link;
  if (cell == nullptr) return;
  link = cell->next_;
  if (objectsEnd_ == cell) objectsEnd_ = before;
  cell->next_ = nullptr;
  NQOMLSyntaxObjectList::destroyOne(cell);
}

NQOMLSyntaxField* NQOMLSyntaxObject::searchField(nqLong nameIndex,
                                                 nqLong sectionIDIndex) const {
  for (NQOMLSyntaxFieldIter iter(this); iter; ++iter) {
    const NQOMLSyntaxField& field = *iter.pField();
    if (field.nameIndex_ == nameIndex &&
        (sectionIDIndex == -1 || field.sectionIDIndex() == sectionIDIndex)) {
      return iter.pWrittenField();
    }
  }
  return nullptr;
}

NQOMLSyntaxField* NQOMLSyntaxObject::searchField(const char* name,
                                                 const char* section) const {
  const ReadTables* const tables = readTables(pFile());
  return searchField(nqdetail::fieldIndex(tables, name),
                     nqdetail::sectionIndex(tables, section));
}

NQOMLSyntaxField* NQOMLSyntaxObject::searchUniqueField(nqLong nameIndex,
                                                       nqULong sectionPath) const {
  const auto searchList = [=](const NQOMLSyntaxFieldList* cell) -> NQOMLSyntaxField* {
    for (; cell != nullptr; cell = cell->next_) {
      NQOMLSyntaxField* const field = cell->field_;
      if (field != nullptr && field->nameIndex_ == nameIndex &&
          field->sectionPath_ == sectionPath) {
        return field;
      }
    }
    return nullptr;
  };
  for (const NQOMLSyntaxDefaultList* node = defaults_; node != nullptr;
       node = node->next_) {
    if (NQOMLSyntaxField* const field = searchList(node->fields_)) return field;
  }
  return searchList(fields_);
}

NQOMLSyntaxFieldList* NQOMLSyntaxObject::pFieldList(NQOMLSyntaxFieldList* fields) {
  if (fields != nullptr) noteHeapNodes();
  fields_ = fields;
  fieldsEnd_ = fields;
  while (fieldsEnd_ != nullptr && fieldsEnd_->next_ != nullptr) {
    fieldsEnd_ = fieldsEnd_->next_;
  }
  return fields_;
}

NQOMLSyntaxDefaultList* NQOMLSyntaxObject::pDefaultList(
    NQOMLSyntaxDefaultList* defaults) {
  if (defaults != nullptr) noteHeapNodes();
  dropDefaultsIndex();
  return defaults_ = defaults;
}

NQOMLSyntaxObject* NQOMLSyntaxObject::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQOMLSyntaxObject>(object);
}

// Instead of descending, the children of each child are taken over before it goes.
void NQOMLSyntaxObject::destroyContents() {
  NQOMLSyntaxDefaultList::destroyChain(defaults_);
  defaults_ = nullptr;
  dropDefaultsIndex();
  while (objects_ != nullptr) {
    NQOMLSyntaxObjectList* const cell = objects_;
    NQOMLSyntaxObject* const child = cell->object_;
    if (child != nullptr && child->objects_ != nullptr) {
      objectsEnd_->next_ = child->objects_;
      objectsEnd_ = child->objectsEnd_;
      child->objects_ = nullptr;
      child->objectsEnd_ = nullptr;
    }
    objects_ = cell->next_;
    cell->next_ = nullptr;
    NQOMLSyntaxObjectList::destroyOne(cell);
  }
  objectsEnd_ = nullptr;
  NQOMLSyntaxFieldList::destroyChain(fields_);
  fields_ = nullptr;
  fieldsEnd_ = nullptr;
}

// The lists

NQOMLSyntaxObjectList::~NQOMLSyntaxObjectList() {
  destroyChain(next_);
  if (object_ == nullptr) return;
  if (object_->arena_ != nullptr) {
    object_->destroyContents();
  } else {
    delete object_;
  }
}

void NQOMLSyntaxObjectList::destroyChain(NQOMLSyntaxObjectList* first) {
  while (first != nullptr) {
    NQOMLSyntaxObjectList* const cell = first;
    first = cell->next_;
    cell->next_ = nullptr;
    destroyOne(cell);
  }
}

// A cell that lies in an arena, as part of its object, is only emptied.
void NQOMLSyntaxObjectList::destroyOne(NQOMLSyntaxObjectList* cell) {
  NQOMLSyntaxObject* const object = cell->object_;
  if (object != nullptr && object->arena_ != nullptr &&
      cell == SyntaxArena::cellOf(object)) {
    object->destroyContents();
  } else {
    delete cell;
  }
}

NQOMLSyntaxFieldList::~NQOMLSyntaxFieldList() {
  destroyChain(next_);
  if (field_ != nullptr && field_->storage_ == NQOMLSyntaxField::kHeap) delete field_;
}

void NQOMLSyntaxFieldList::destroyChain(NQOMLSyntaxFieldList* first) {
  while (first != nullptr) {
    NQOMLSyntaxFieldList* const cell = first;
    first = cell->next_;
    cell->next_ = nullptr;
    destroyOne(cell);
  }
}

void NQOMLSyntaxFieldList::destroyOne(NQOMLSyntaxFieldList* cell) {
  NQOMLSyntaxField* const field = cell->field_;
  if (field != nullptr && field->storage_ == NQOMLSyntaxField::kArena &&
      cell == SyntaxArena::cellOf(field)) {
    return;
  }
  delete cell;
}

NQOMLSyntaxDefaultList::~NQOMLSyntaxDefaultList() {
  destroyChain(next_);
}

void NQOMLSyntaxDefaultList::append(NQOMLSyntaxDefaultList* chain) {
  NQOMLSyntaxDefaultList* last = this;
  while (last != chain && last->next_ != nullptr) last = last->next_;
  if (last != chain) last->next_ = chain;
}

void NQOMLSyntaxDefaultList::destroyChain(NQOMLSyntaxDefaultList* first) {
  while (first != nullptr) {
    NQOMLSyntaxDefaultList* const node = first;
    first = node->next_;
    node->next_ = nullptr;
    if (!node->inArena_) delete node;
  }
}

// The iterators

NQ_COPY_PROTOCOL_IMPL(NQOMLSyntaxObjectIter)
NQ_COPY_ALIKE_IMPL(NQOMLSyntaxObjectIter, NQObject)

NQ_COPY_PROTOCOL_IMPL(NQOMLSyntaxFieldIter)
NQ_COPY_ALIKE_IMPL(NQOMLSyntaxFieldIter, NQObject)

void NQOMLSyntaxFieldIter::copyFields(const NQOMLSyntaxFieldIter& source) {
  cell_ = source.cell_;
  defaults_ = source.defaults_;
  ownFields_ = source.ownFields_;
  defObjType_ = source.defObjType_;
  section_ = source.section_;
  if (section_ != nullptr) {
    view_.emplace(*pWrittenField(), *section_, source.view_->pDefField());
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
    if (field->unchecked_ || field->defField_ != nullptr) return;
    if (settleIn(nqdetail::firstMatch(defObjType_, field->sectionPath_))) return;
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
  return settleIn(nqdetail::nextMatch(section_, pWrittenField()->sectionPath_));
}

// Settles in the first section from the given match on that defines the field.
bool NQOMLSyntaxFieldIter::settleIn(NQOMLDefSection* section) {
  const NQOMLSyntaxField& field = *pWrittenField();
  for (; section != nullptr; section = nqdetail::nextMatch(section, field.sectionPath_)) {
    NQOMLDefField* const definition = section->pField(field.nameIndex_);
    if (definition == nullptr) continue;
    section_ = section;
    view_.emplace(field, *section, definition);
    return true;
  }
  section_ = nullptr;
  return false;
}

#include "nq/oml/syntax_node.h"

#include <memory>
#include <new>
#include <utility>

#include "nq/oml/bin_value.h"
#include "nq/oml/grammar.h"
#include "nq/oml/syntax_iter.h"
#include "nq/oml/syntax_list.h"
#include "nq/oml/tree/read_tables.h"
#include "nq/oml/tree/syntax_arena.h"

using nqdetail::NodeKind;
using nqdetail::readTables;
using nqdetail::ReadTables;
using nqdetail::SyntaxArena;

namespace {

// That of a place in no file. Nobody writes to a kind that is not of one node.
NodeKind kNoKind;

}  // namespace

// NQOMLSyntaxStruct

NQ_COPY_PROTOCOL_IMPL(NQOMLSyntaxStruct)
NQ_COPY_ALIKE_IMPL(NQOMLSyntaxStruct, NQObject)

NQOMLSyntaxStruct::NQOMLSyntaxStruct(NQOMLFile* file, nqLong line, int position,
                                     nqLong fileNameIndex)
    : NQOMLSyntaxStruct(
          NodeKind{
              .file = file, .tables = readTables(file), .fileNameIndex = fileNameIndex},
          line, position) {}

NQOMLSyntaxStruct::NQOMLSyntaxStruct(const NodeKind& kind, nqLong line, int position)
    : NQOMLSyntaxStruct(new NodeKind(kind), line, position) {
  kind_->ofOneNode = true;
}

NQOMLSyntaxStruct::NQOMLSyntaxStruct(NodeKind* shared, nqLong line, int position)
    : kind_(shared),
      line_(line),
      column_(static_cast<std::uint32_t>(position) & kNoColumn),
      tag_(0) {}

NQOMLSyntaxStruct::~NQOMLSyntaxStruct() {
  if (kind_->ofOneNode) delete kind_;
}

void NQOMLSyntaxStruct::copyFields(const NQOMLSyntaxStruct& source) {
  NodeKind kind = *kind_;
  kind.file = source.kind_->file;
  kind.tables = source.kind_->tables;
  kind.fileNameIndex = source.kind_->fileNameIndex;
  changeKind(kind);
  line_ = source.line_;
  column_ = source.column_;
}

void NQOMLSyntaxStruct::init() {
  kind_ = &kNoKind;
  line_ = -1;
  column_ = 0;
  tag_ = 0;
}

// Memory that is lacking in an arena leaves the kind as it is.
void NQOMLSyntaxStruct::changeKind(const NodeKind& kind) {
  if (SyntaxArena* const arena = kind_->arena) {
    NodeKind* const shared = arena->kindOf(kind);
    if (shared == nullptr) throw std::bad_alloc();
    kind_ = shared;
  } else if (kind_ == &kNoKind) {
    kind_ = new NodeKind(kind);
    kind_->ofOneNode = true;
  } else {
    *kind_ = kind;
  }
}

template <class T>
T NQOMLSyntaxStruct::change(T NodeKind::*member, T value) {
  NodeKind kind = *kind_;
  kind.*member = value;
  changeKind(kind);
  return value;
}

const char* NQOMLSyntaxStruct::fileNameString() const {
  return nqdetail::stringText(kind_->tables, fileNameIndex());
}

// NQOMLSyntaxField

NQOMLSyntaxField::NQOMLSyntaxField(NQOMLFile* file, nqLong line, int position,
                                   nqLong fileNameIndex, nqLong nameIndex,
                                   nqLong sectionIDIndex, nqULong sectionPath,
                                   NQOMLToken* token, NQOMLDefField* defField,
                                   int unchecked)
    : NQOMLSyntaxStruct(NodeKind{.file = file,
                                 .tables = readTables(file),
                                 .fileNameIndex = fileNameIndex,
                                 .nameIndex = nameIndex,
                                 .sectionIDIndex = sectionIDIndex,
                                 .sectionPath = sectionPath,
                                 .defField = defField,
                                 .unchecked = unchecked != 0},
                        line, position),
      word_(0) {
  tag_ = kNoToken;
  if (token != nullptr) takeValue(*token);
  delete token;
}

NQOMLSyntaxField::NQOMLSyntaxField(NodeKind* shared, nqLong line, nqLong column,
                                   const NQOMLToken& token)
    : NQOMLSyntaxStruct(shared, line, column) {
  takeValue(token);
}

NQOMLSyntaxField::NQOMLSyntaxField(const NQOMLSyntaxField& field, NodeKind* inSection)
    : NQOMLSyntaxField(inSection, field.line(), field.column(), field.token()) {
  tag_ = field.tag_;  // which may be that of no token
}

NQOMLSyntaxField::~NQOMLSyntaxField() {
  if (kind_->ofOneNode) token().deleteValue();
}

NQOMLDefField* NQOMLSyntaxField::pDefField(NQOMLDefField* defField) {
  return change(&NodeKind::defField, defField);
}

NodeKind NQOMLSyntaxField::kindIn(const NQOMLDefSection& section,
                                  NQOMLDefField* defField) const {
  NodeKind kind = *kind_;
  kind.sectionIDIndex = section.nameIndex();
  kind.sectionPath = section.path();
  kind.defField = defField;
  kind.arena = nullptr;
  kind.ofOneNode = false;
  return kind;
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
  return nqdetail::fieldName(kind_->tables, nameIndex());
}

const char* NQOMLSyntaxField::sectionString() const {
  return nqdetail::sectionName(kind_->tables, sectionIDIndex());
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

const char* NQOMLSyntaxField::wordString() const {
  const ReadTables* const tables = kind_->tables;
  const nqLong index = token().integer();
  switch (tag_) {
    case NQ_OML_ENUMERATOR:
      return nqdetail::enumeratorName(tables, index);
    case NQ_OML_OBJECT_TYPE_NAME:
      return nqdetail::objectTypeName(tables, index);
    case NQ_OML_SECTION_NAME:
      return nqdetail::sectionName(tables, index);
    case NQ_OML_FIELD_NAME:
      return nqdetail::fieldName(tables, index);
    case NQ_OML_OBJECT_ID:
      return nqdetail::objectIDText(tables, index);
    default:
      return "";
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
  const ReadTables* const tables = kind_->tables;
  if (!hasToken() || tables == nullptr || tables->pGrammar == nullptr) return 0;
  return tables->pGrammar->enumValue(token().integer());
}

int NQOMLSyntaxField::boolValue() const {
  return enumValue();
}

const char* NQOMLSyntaxField::stringValue() const {
  if (!hasToken()) return "";
  return nqdetail::stringText(kind_->tables, token().integer());
}

NQObject* NQOMLSyntaxField::objectValue() const {
  const ReadTables* const tables = kind_->tables;
  if (tag_ != NQ_OML_OBJECT_ID || tables == nullptr || tables->pObjectIDs == nullptr) {
    return nullptr;
  }
  return tables->pObjectIDs->pObject(token().integer());
}

nqLong NQOMLSyntaxField::objectTypeIndex() const {
  const ReadTables* const tables = kind_->tables;
  if (tag_ != NQ_OML_OBJECT_ID || tables == nullptr || tables->pObjectIDs == nullptr) {
    return -1;
  }
  const NQOMLSyntaxObject* const object =
      tables->pObjectIDs->pSyntaxObject(token().integer());
  return object == nullptr ? -1 : object->typeIndex();
}

const char* NQOMLSyntaxField::objectTypeString() const {
  return nqdetail::objectTypeName(kind_->tables, objectTypeIndex());
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
    : NQOMLSyntaxStruct(NodeKind{.file = file,
                                 .tables = readTables(file),
                                 .fileNameIndex = fileNameIndex,
                                 .nameIndex = typeIndex,
                                 .sectionIDIndex = sectionIDIndex,
                                 .sectionPath = sectionPath,
                                 .defObjType = defObjType},
                        line, position),
      objectIDIndex_(objectIDIndex) {
  nqdetail::announceSyntaxObject(file, this, line, position);
}

NQOMLSyntaxObject::NQOMLSyntaxObject(NodeKind* shared, nqLong line, nqLong column,
                                     nqLong objectIDIndex)
    : NQOMLSyntaxStruct(shared, line, column), objectIDIndex_(objectIDIndex) {
  nqdetail::announceSyntaxObject(shared->file, this, line, column);
}

NQOMLSyntaxObject::~NQOMLSyntaxObject() {
  destroyContents();
}

const char* NQOMLSyntaxObject::typeString() const {
  return nqdetail::objectTypeName(kind_->tables, typeIndex());
}

const char* NQOMLSyntaxObject::nameString() const {
  return nqdetail::objectIDText(kind_->tables, objectIDIndex_);
}

const char* NQOMLSyntaxObject::writtenIDString() const {
  return nqdetail::writtenIDText(kind_->tables, objectIDIndex_);
}

NQObject* NQOMLSyntaxObject::object() const {
  const ReadTables* const tables = kind_->tables;
  if (tables == nullptr || tables->pObjectIDs == nullptr) return nullptr;
  return tables->pObjectIDs->pObject(objectIDIndex_);
}

const char* NQOMLSyntaxObject::sectionString() const {
  return nqdetail::sectionName(kind_->tables, sectionIDIndex());
}

nqLong NQOMLSyntaxObject::sectionIDIndex(nqLong index) {
  return change(&NodeKind::sectionIDIndex, index);
}

nqULong NQOMLSyntaxObject::sectionPathIndex(nqULong path) {
  return change(&NodeKind::sectionPath, path);
}

NQOMLDefObjType* NQOMLSyntaxObject::pDefObjType(NQOMLDefObjType* type) {
  return change(&NodeKind::defObjType, type);
}

void NQOMLSyntaxObject::addObject(NQOMLSyntaxObject* object) {
  if (object == nullptr) return;
  NQOMLSyntaxObjectList* const cell = NQOMLSyntaxObjectList::cellFor(object);
  if (cell == nullptr) return;
  if (!cell->link_.isPartOfNode()) noteHeapNodes();
  object->parent_ = this;
  if (objectsEnd_ == nullptr) {
    objects_ = cell;
  } else {
    objectsEnd_->link_.pNext(cell);
  }
  objectsEnd_ = cell;
}

void NQOMLSyntaxObject::addField(NQOMLSyntaxField* field) {
  if (field == nullptr) return;
  NQOMLSyntaxFieldList* const cell = NQOMLSyntaxFieldList::cellFor(field);
  if (cell == nullptr) return;
  if (!cell->link_.isPartOfNode()) noteHeapNodes();
  if (fieldsEnd_ == nullptr) {
    fields_ = cell;
  } else {
    fieldsEnd_->link_.pNext(cell);
  }
  fieldsEnd_ = cell;
}

void NQOMLSyntaxObject::addDefaultList(NQOMLSyntaxFieldList* fields) {
  if (fields == nullptr) return;
  NQOMLSyntaxDefaultList* const node =
      arena() != nullptr ? arena()->makeDefaultList(fields, defaults_)
                         : new (std::nothrow) NQOMLSyntaxDefaultList(fields, defaults_);
  if (node == nullptr) return;
  defaults_ = node;
  if (defaultsIndex_ != nullptr) defaultsIndex_->lists.insert(fields);
}

void NQOMLSyntaxObject::append(NQOMLSyntaxObject* other) {
  if (other == nullptr || other == this) return;
  if (arena() != other->arena() || (arena() != nullptr && arena()->hasHeapNodes())) {
    noteHeapNodes();
  }
  for (NQOMLSyntaxObjectList* cell = other->objects_; cell != nullptr;
       cell = cell->pNext()) {
    if (cell->pObject() != nullptr) cell->pObject()->parent_ = this;
  }
  if (other->objects_ != nullptr) {
    if (objectsEnd_ == nullptr) {
      objects_ = other->objects_;
    } else {
      objectsEnd_->link_.pNext(other->objects_);
    }
    objectsEnd_ = other->objectsEnd_;
    other->objects_ = nullptr;
    other->objectsEnd_ = nullptr;
  }
  if (other->fields_ != nullptr) {
    if (fieldsEnd_ == nullptr) {
      fields_ = other->fields_;
    } else {
      fieldsEnd_->link_.pNext(other->fields_);
    }
    fieldsEnd_ = other->fieldsEnd_;
    other->fields_ = nullptr;
    other->fieldsEnd_ = nullptr;
  }
  takeDefaults(*other);
}

// A node in an arena is not destroyed with it unless the arena knows that it holds
// something from elsewhere.
void NQOMLSyntaxObject::noteHeapNodes() {
  if (arena() != nullptr) arena()->noteHeapNodes(this);
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
        arena() != nullptr ? arena()->makeDefaultsIndex() : new nqdetail::DefaultsIndex;
    defaultsIndex_->pLast = node;
    for (const NQOMLSyntaxDefaultList* at = defaults_; at != nullptr; at = at->next_) {
      defaultsIndex_->lists.insert(at->fields_);
    }
  }
  return true;
}

void NQOMLSyntaxObject::dropDefaultsIndex() {
  if (arena() == nullptr) delete defaultsIndex_;
  defaultsIndex_ = nullptr;
}

void NQOMLSyntaxObject::deleteObjectItem(NQOMLSyntaxObjectList* before) {
  NQOMLSyntaxObjectList* const cell = before == nullptr ? objects_ : before->pNext();
  if (cell == nullptr) return;
  if (before == nullptr) {
    objects_ = cell->pNext();
  } else {
    before->link_.pNext(cell->pNext());
  }
  if (objectsEnd_ == cell) objectsEnd_ = before;
  cell->link_.pNext(nullptr);
  NQOMLSyntaxObjectList::destroyOne(cell);
}

NQOMLSyntaxField* NQOMLSyntaxObject::searchField(nqLong nameIndex,
                                                 nqLong sectionIDIndex) const {
  for (NQOMLSyntaxFieldIter iter(this); iter; ++iter) {
    const NQOMLSyntaxField& field = *iter.pField();
    if (field.nameIndex() == nameIndex &&
        (sectionIDIndex == -1 || field.sectionIDIndex() == sectionIDIndex)) {
      return iter.pWrittenField();
    }
  }
  return nullptr;
}

NQOMLSyntaxField* NQOMLSyntaxObject::searchField(const char* name,
                                                 const char* section) const {
  const ReadTables* const tables = kind_->tables;
  return searchField(nqdetail::fieldIndex(tables, name),
                     nqdetail::sectionIndex(tables, section));
}

NQOMLSyntaxField* NQOMLSyntaxObject::searchUniqueField(nqLong nameIndex,
                                                       nqULong sectionPath) const {
  const auto searchList = [=](const NQOMLSyntaxFieldList* cell) -> NQOMLSyntaxField* {
    for (; cell != nullptr; cell = cell->pNext()) {
      NQOMLSyntaxField* const field = cell->pField();
      if (field != nullptr && field->nameIndex() == nameIndex &&
          field->sectionPath() == sectionPath) {
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
  while (fieldsEnd_ != nullptr && fieldsEnd_->pNext() != nullptr) {
    fieldsEnd_ = fieldsEnd_->pNext();
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
    NQOMLSyntaxObject* const child = cell->pObject();
    if (child != nullptr && child->objects_ != nullptr) {
      objectsEnd_->link_.pNext(child->objects_);
      objectsEnd_ = child->objectsEnd_;
      child->objects_ = nullptr;
      child->objectsEnd_ = nullptr;
    }
    objects_ = cell->pNext();
    cell->link_.pNext(nullptr);
    NQOMLSyntaxObjectList::destroyOne(cell);
  }
  objectsEnd_ = nullptr;
  NQOMLSyntaxFieldList::destroyChain(fields_);
  fields_ = nullptr;
  fieldsEnd_ = nullptr;
}

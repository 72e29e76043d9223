#include "nq/oml/grammar.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "nq/containers/numbers.h"
#include "nq/core/string_pool.h"
#include "nq/file/text_file.h"
#include "nq/oml/grammar/definition_language.h"
#include "nq/oml/grammar/pool_size.h"

namespace {

std::unique_ptr<NQStringPool> makePool(nqLong hashSize, nqLong poolSize,
                                       bool withPointers) {
  return std::make_unique<NQStringPool>(hashSize, nqdetail::poolStart(poolSize), 0,
                                        withPointers ? 1 : 0);
}

nqLong enter(NQStringPool& pool, const char* name) {
  return name == nullptr || *name == '\0' ? -1 : pool.update(name);
}

}  // namespace

NQOMLStatic::NQOMLStatic(const char* const* objectTypeNames,
                         const char* const* sectionNames,
                         NQOMLStaticVEStruct* enumerators, const char* const* definitions,
                         nqLong stringPoolSize, nqLong enumPoolSize,
                         nqLong objectTypePoolSize, nqLong sectionPoolSize,
                         nqLong fieldPoolSize, nqLong objectIDPoolSize) {
  initialize(stringPoolSize, enumPoolSize, objectTypePoolSize, sectionPoolSize,
             fieldPoolSize, objectIDPoolSize);
  installObjectTypeTable(objectTypeNames);
  installSectionTable(sectionNames);
  installEnumValueTable(enumerators);
  installDefinitionTable(definitions);
}

NQOMLStatic::NQOMLStatic(NQOMLStaticOEStruct* objectTypes,
                         const char* const* sectionNames,
                         NQOMLStaticVEStruct* enumerators, const char* const* definitions,
                         nqLong stringPoolSize, nqLong enumPoolSize,
                         nqLong objectTypePoolSize, nqLong sectionPoolSize,
                         nqLong fieldPoolSize, nqLong objectIDPoolSize) {
  initialize(stringPoolSize, enumPoolSize, objectTypePoolSize, sectionPoolSize,
             fieldPoolSize, objectIDPoolSize);
  installObjectTypeTable(objectTypes);
  installSectionTable(sectionNames);
  installEnumValueTable(enumerators);
  installDefinitionTable(definitions);
}

NQOMLStatic::~NQOMLStatic() {
  empty();
}

nqLong NQOMLStatic::hashTableSize(nqLong size) {
  constexpr nqLong kBeyondThePrimes = 15013;
  const nqInt64 half = nqInt64{3} * size / 2;
  nqInt64 wanted = half;
  if (half < 256) {
    wanted = 4 * half;
  } else if (nqInt64{3} * size < 1024) {
    wanted = 2 * half;
  }
  constexpr nqInt64 kLargest = INT32_MAX;
  const nqLong prime =
      nextPrimeNumber(static_cast<nqLong>(std::clamp(wanted, -kLargest, kLargest)));
  return prime < 1 ? kBeyondThePrimes : prime;
}

NQOMLDefObjType* NQOMLStatic::pObjTypeDefinition(nqLong typeIndex) const {
  return static_cast<NQOMLDefObjType*>(objTypePool_->pointer(typeIndex));
}

nqLong NQOMLStatic::enumValue(nqLong enumIndex) const {
  // The slot holds the value itself in place of a pointer.
  return static_cast<nqLong>(
      reinterpret_cast<std::intptr_t>(enumPool_->pointer(enumIndex)));
}

int NQOMLStatic::definedSection(nqLong sectionIndex) const {
  return sectionIndex >= 0 && sectionIndex < sectionPool_->decodeTableMax() ? 1 : 0;
}

nqLong NQOMLStatic::refusedLine(nqLong n) const {
  return n < 0 || n >= numberOfRefusedLines()
             ? -1
             : refusedLines_[static_cast<std::size_t>(n)];
}

NQFileCodeEnum NQOMLStatic::writeIndexDefinitions(const char* fileName) const {
  const struct {
    const char* title;
    const char* prefix;
    const NQStringPool& pool;
    nqLong first;  // those before it are of use to the reader only
  } blocks[] = {
      {"fields", "FI_", *fieldPool_, NQ_OML_ID_FIELD},
      {"sections", "SI_", *sectionPool_, NQ_OML_BUILT_IN_SECTIONS},
      {"enum value identifiers", "VI_", *enumPool_, NQ_OML_TRUE},
      {"object type identifiers", "OI_", *objTypePool_, NQ_OML_TOPLEVEL_TYPE + 1},
  };
  NQTextFile file;
  if (file.open(fileName, NQ_WRITE_ASCII) != NQ_FILE_OK) return NQ_FILE_OPEN_ERROR;
  for (const auto& block : blocks) {
    file.writeLine("");
    file.writeLine((std::string("/* Coding of ") + block.title + " */").c_str());
    file.writeLine("");
    for (nqLong index = block.first; index < block.pool.decodeTableMax(); ++index) {
      const std::string line = std::string("#define NQ_XKEY_") + block.prefix +
                               block.pool.decode(index) + " " + std::to_string(index);
      file.writeLine(line.c_str());
    }
  }
  file.writeLine("");
  return file.close();
}

NQOMLDefObjType* NQOMLStatic::installObjTypeID(const char* name, NQOMLCheckFunction check,
                                               NQOMLCreateFunction create,
                                               NQOMLReadFieldFunction readField,
                                               NQOMLWriteFunction write) {
  NQOMLDefObjType* const type = installObjType(name);
  if (type == nullptr) return nullptr;
  if (check != nullptr) type->check_ = check;
  if (create != nullptr) type->create_ = create;
  if (readField != nullptr) type->readField_ = readField;
  if (write != nullptr) type->write_ = write;
  return type;
}

nqLong NQOMLStatic::installSectionID(const char* name) {
  return enter(*sectionPool_, name);
}

nqLong NQOMLStatic::installFieldID(const char* name) {
  return enter(*fieldPool_, name);
}

int NQOMLStatic::installEnumValueID(const char* name, nqLong value) {
  const nqLong index = enter(*enumPool_, name);
  if (index < 0) return 0;
  enumPool_->pointer(index, reinterpret_cast<void*>(std::intptr_t{value}));
  return 1;
}

void NQOMLStatic::installObjectTypeTable(const char* const* names) {
  for (; names != nullptr && *names != nullptr; ++names) installObjType(*names);
}

void NQOMLStatic::installObjectTypeTable(const NQOMLStaticOEStruct* rows) {
  for (; rows != nullptr && rows->name != nullptr; ++rows) {
    installObjTypeID(rows->name, rows->check, rows->create, rows->readField, rows->write);
  }
}

void NQOMLStatic::installSectionTable(const char* const* names) {
  for (; names != nullptr && *names != nullptr; ++names) installSectionID(*names);
}

void NQOMLStatic::installFieldTable(const char* const* names) {
  for (; names != nullptr && *names != nullptr; ++names) installFieldID(*names);
}

void NQOMLStatic::installEnumValueTable(const NQOMLStaticVEStruct* rows) {
  for (; rows != nullptr && rows->name != nullptr; ++rows) {
    installEnumValueID(rows->name, rows->value);
  }
}

void NQOMLStatic::installDefinitionTable(const char* const* lines) {
  if (lines != nullptr) nqdetail::DefinitionReader(*this, lines).read();
}

void NQOMLStatic::initialize(nqLong stringPoolSize, nqLong enumPoolSize,
                             nqLong objectTypePoolSize, nqLong sectionPoolSize,
                             nqLong fieldPoolSize, nqLong objectIDPoolSize) {
  const auto sizes = [](nqLong size) { return Sizes{size, hashTableSize(size)}; };
  empty();
  stringSize_ = sizes(stringPoolSize);
  enumSize_ = sizes(enumPoolSize);
  objTypeSize_ = sizes(objectTypePoolSize);
  sectionSize_ = sizes(sectionPoolSize);
  fieldSize_ = sizes(fieldPoolSize);
  objectIDSize_ = sizes(objectIDPoolSize);
  enumPool_ = makePool(enumSize_.hash, enumSize_.pool, true);
  objTypePool_ = makePool(objTypeSize_.hash, objTypeSize_.pool, true);
  sectionPool_ = makePool(sectionSize_.hash, sectionSize_.pool, false);
  fieldPool_ = makePool(fieldSize_.hash, fieldSize_.pool, false);

  for (const char* name :
       {"include", "input", "comment", "section", "id", "name", "field"}) {
    installFieldID(name);
  }
  installSectionID("skip");
  installSectionID("_");
  installEnumValueID("true", 1);
  installEnumValueID("false", 0);
  installObjType("$toplevel$");
}

void NQOMLStatic::empty() {
  if (objTypePool_ != nullptr) {
    for (nqLong index = 0; index < objTypePool_->decodeTableMax(); ++index) {
      delete pObjTypeDefinition(index);
    }
  }
  enumPool_.reset();
  objTypePool_.reset();
  sectionPool_.reset();
  fieldPool_.reset();
  refusedLines_.clear();
}

NQOMLDefObjType* NQOMLStatic::installObjType(const char* name) {
  const nqLong index = enter(*objTypePool_, name);
  if (index < 0) return nullptr;
  NQOMLDefObjType* type = pObjTypeDefinition(index);
  if (type == nullptr) {
    type = new NQOMLDefObjType;
    objTypePool_->pointer(index, type);
  }
  return type;
}

NQOMLDefSection* NQOMLStatic::addSection(NQOMLDefObjType& type, NQOMLDefSection* parent,
                                         const char* name) {
  NQOMLDefScope& scope = parent == nullptr ? static_cast<NQOMLDefScope&>(type) : *parent;
  const nqLong known = sectionPool_->lookup(name);
  if (NQOMLDefSection* const section = known < 0 ? nullptr : scope.pSection(known)) {
    return section;
  }
  // Only a section that has room may bring a new name.
  if (!type.hasRoomForSection(parent)) return nullptr;
  const nqLong index = installSectionID(name);
  return index < 0 ? nullptr : type.addSection(parent, index);
}

NQOMLDefField* NQOMLStatic::addField(const char* type, nqULong sectionPath,
                                     const char* field, NQFieldTypeEnum fieldType,
                                     int required) {
  NQOMLDefObjType* const definition = installObjType(type);
  if (definition == nullptr) return nullptr;
  NQOMLDefScope* const scope = definition->pScope(sectionPath);
  if (scope == nullptr) return nullptr;
  const nqLong index = installFieldID(field);
  return index < 0 ? nullptr : definition->addField(*scope, index, fieldType, required);
}

int NQOMLStatic::addObjectTypeDefinition(const char* type, const char* childType) {
  return addObjectTypeDefinition(type, 0, childType);
}

int NQOMLStatic::addObjectTypeDefinition(const char* type, nqULong sectionPath,
                                         const char* childType) {
  NQOMLDefObjType* const definition = installObjType(type);
  if (definition == nullptr) return 0;
  NQOMLDefScope* const scope = definition->pScope(sectionPath);
  if (scope == nullptr || installObjType(childType) == nullptr) return 0;
  scope->objectTypes_.add(objTypePool_->lookup(childType));
  return 1;
}

nqULong NQOMLStatic::addSectionDefinition(const char* type, const char* section) {
  return addSectionDefinition(type, 0, section);
}

nqULong NQOMLStatic::addSectionDefinition(const char* type, nqULong parentPath,
                                          const char* section) {
  NQOMLDefObjType* const definition = installObjType(type);
  if (definition == nullptr) return 0;
  NQOMLDefSection* const parent = definition->pSectionAt(parentPath);
  if (parentPath != 0 && parent == nullptr) return 0;
  const NQOMLDefSection* const made = addSection(*definition, parent, section);
  return made == nullptr ? 0 : made->path();
}

int NQOMLStatic::addFieldDefinition(const char* type, const char* field,
                                    NQFieldTypeEnum fieldType, int required) {
  return addFieldDefinition(type, 0, field, fieldType, required);
}

int NQOMLStatic::addFieldDefinition(const char* type, nqULong sectionPath,
                                    const char* field, NQFieldTypeEnum fieldType,
                                    int required) {
  return addField(type, sectionPath, field, fieldType, required) != nullptr ? 1 : 0;
}

int NQOMLStatic::addFieldDefinition(const char* type, const char* field,
                                    const char* valueName, int required) {
  return addFieldDefinition(type, 0, field, valueName, required);
}

int NQOMLStatic::addFieldDefinition(const char* type, nqULong sectionPath,
                                    const char* field, const char* valueName,
                                    int required) {
  const nqLong enumerator = enumPool_->lookup(valueName);
  const nqLong objType = objTypePool_->lookup(valueName);
  if (enumerator < 0 && objType < 0) return 0;
  NQOMLDefField* const definition =
      addField(type, sectionPath, field,
               enumerator >= 0 ? NQ_ENUMERATION_FIELD : NQ_REFERENCE_FIELD, required);
  if (definition == nullptr) return 0;
  if (enumerator >= 0) {
    definition->values_.add(enumerator);
  } else if (definition->pValueList() == nullptr) {
    definition->values_.add(objType);
  } else if (definition->referencedTypeIndex() != objType) {
    return 0;
  }
  return 1;
}

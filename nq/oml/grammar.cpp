#include "nq/oml/grammar.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>

#include "nq/containers/numbers.h"
#include "nq/core/string_pool.h"
#include "nq/file/text_file.h"
#include "nq/oml/grammar/definition_language.h"
#include "nq/oml/grammar/pool_size.h"

namespace {

std::string_view textOf(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

// Whether `enter` takes every name of the table but the empty ones.
template <class Enter>
int enterAll(const char* const* names, Enter enter) {
  int all = 1;
  for (; names != nullptr && *names != nullptr; ++names) {
    if (!enter(*names) && **names != '\0') all = 0;
  }
  return all;
}

}  // namespace

NQOMLStatic::NQOMLStatic(const char* const* objectTypeNames,
                         const char* const* sectionNames,
                         const NQOMLStaticVEStruct* enumerators,
                         const char* const* definitions, nqLong stringPoolSize,
                         nqLong enumPoolSize, nqLong objectTypePoolSize,
                         nqLong sectionPoolSize, nqLong fieldPoolSize,
                         nqLong objectIDPoolSize) {
  initialize(stringPoolSize, enumPoolSize, objectTypePoolSize, sectionPoolSize,
             fieldPoolSize, objectIDPoolSize);
  install(objectTypeNames, sectionNames, enumerators, definitions);
}

NQOMLStatic::NQOMLStatic(const NQOMLStaticOEStruct* objectTypes,
                         const char* const* sectionNames,
                         const NQOMLStaticVEStruct* enumerators,
                         const char* const* definitions, nqLong stringPoolSize,
                         nqLong enumPoolSize, nqLong objectTypePoolSize,
                         nqLong sectionPoolSize, nqLong fieldPoolSize,
                         nqLong objectIDPoolSize) {
  initialize(stringPoolSize, enumPoolSize, objectTypePoolSize, sectionPoolSize,
             fieldPoolSize, objectIDPoolSize);
  install(objectTypes, sectionNames, enumerators, definitions);
}

template <class Type>
void NQOMLStatic::install(const Type* objectTypes, const char* const* sectionNames,
                          const NQOMLStaticVEStruct* enumerators,
                          const char* const* definitions) {
  if (installObjectTypeTable(objectTypes) == 0 ||
      installSectionTable(sectionNames) == 0 || installEnumValueTable(enumerators) == 0) {
    empty();  // there will be no destructor
    throw std::bad_alloc();
  }
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
  return static_cast<NQOMLDefObjType*>(pObjTypePool()->pointer(typeIndex));
}

nqLong NQOMLStatic::enumValue(nqLong enumIndex) const {
  // The slot holds the value itself in place of a pointer.
  return static_cast<nqLong>(
      reinterpret_cast<std::intptr_t>(pEnumPool()->pointer(enumIndex)));
}

int NQOMLStatic::definedSection(nqLong sectionIndex) const {
  return sectionIndex >= 0 && sectionIndex < pSectionPool()->decodeTableMax() ? 1 : 0;
}

std::string_view NQOMLStatic::spelling(std::string_view name) const {
  for (const NameTable* table : {&objTypes_, &sections_, &fields_, &enumerators_}) {
    const nqLong index = table->pool->lookup(name);
    if (index < 0) continue;
    const auto place = static_cast<std::size_t>(index);
    return place < table->spellings.size() ? std::string_view(table->spellings[place])
                                           : table->pool->decode(index);
  }
  return name;
}

nqLong NQOMLStatic::refusedLine(nqLong n) const {
  return n < 0 || static_cast<std::size_t>(n) >= refusedLines_.size()
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
      {"fields", "FI_", *pFieldPool(), NQ_OML_ID_FIELD},
      {"sections", "SI_", *pSectionPool(), NQ_OML_BUILT_IN_SECTIONS},
      {"enum value identifiers", "VI_", *pEnumPool(), NQ_OML_TRUE},
      {"object type identifiers", "OI_", *pObjTypePool(), NQ_OML_TOPLEVEL_TYPE + 1},
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
  NQOMLDefObjType* const type = installObjType(textOf(name));
  if (type == nullptr) return nullptr;
  if (check != nullptr) type->check_ = check;
  if (create != nullptr) type->create_ = create;
  if (readField != nullptr) type->readField_ = readField;
  if (write != nullptr) type->write_ = write;
  return type;
}

nqLong NQOMLStatic::installSectionID(const char* name) {
  return sections_.enter(textOf(name));
}

nqLong NQOMLStatic::installFieldID(const char* name) {
  return fields_.enter(textOf(name));
}

int NQOMLStatic::installEnumValueID(const char* name, nqLong value) {
  const nqLong index = enumerators_.enter(textOf(name));
  if (index < 0) return 0;
  pEnumPool()->pointer(index, reinterpret_cast<void*>(std::intptr_t{value}));
  return 1;
}

int NQOMLStatic::installObjectTypeTable(const char* const* names) {
  return enterAll(names, [this](auto name) { return installObjType(name) != nullptr; });
}

int NQOMLStatic::installObjectTypeTable(const NQOMLStaticOEStruct* rows) {
  int all = 1;
  for (; rows != nullptr && rows->name != nullptr; ++rows) {
    const auto* const type = installObjTypeID(rows->name, rows->check, rows->create,
                                              rows->readField, rows->write);
    if (type == nullptr && *rows->name != '\0') all = 0;
  }
  return all;
}

int NQOMLStatic::installSectionTable(const char* const* names) {
  return enterAll(names, [this](auto name) { return installSectionID(name) >= 0; });
}

int NQOMLStatic::installFieldTable(const char* const* names) {
  return enterAll(names, [this](auto name) { return installFieldID(name) >= 0; });
}

int NQOMLStatic::installEnumValueTable(const NQOMLStaticVEStruct* rows) {
  int all = 1;
  for (; rows != nullptr && rows->name != nullptr; ++rows) {
    if (installEnumValueID(rows->name, rows->value) == 0 && *rows->name != '\0') all = 0;
  }
  return all;
}

void NQOMLStatic::installDefinitionTable(const char* const* lines) {
  if (lines == nullptr) return;
  nqdetail::DefinitionReader reader(*this);
  for (nqLong number = 0; lines[number] != nullptr; ++number) {
    if (reader.readLine(lines[number])) continue;
    try {
      if (numberOfRefusedLines_++ == static_cast<nqInt64>(refusedLines_.size())) {
        refusedLines_.push_back(number);
      }
    } catch (const std::bad_alloc&) {
      // It is counted.
    }
  }
}

void NQOMLStatic::initialize(nqLong stringPoolSize, nqLong enumPoolSize,
                             nqLong objectTypePoolSize, nqLong sectionPoolSize,
                             nqLong fieldPoolSize, nqLong objectIDPoolSize) {
  empty();
  stringSize_ = {stringPoolSize, hashTableSize(stringPoolSize)};
  objectIDSize_ = {objectIDPoolSize, hashTableSize(objectIDPoolSize)};
  enumerators_.make(enumPoolSize, true);
  objTypes_.make(objectTypePoolSize, true);
  sections_.make(sectionPoolSize, false);
  fields_.make(fieldPoolSize, false);

  bool all = true;
#define NQ_OML_BUILT_IN_FIELD(key, name) all = installFieldID(name) >= 0 && all;
#define NQ_OML_BUILT_IN_SECTION(key, name) all = installSectionID(name) >= 0 && all;
#define NQ_OML_BUILT_IN_ENUMERATOR(key, name, value) \
  all = installEnumValueID(name, value) != 0 && all;
#define NQ_OML_BUILT_IN_TYPE(key, name) all = installObjType(name) != nullptr && all;
#include "nq/oml/built_in_names.def"
  if (all) return;
  empty();
  throw std::bad_alloc();
}

void NQOMLStatic::empty() {
  if (pObjTypePool() != nullptr) {
    for (nqLong index = 0; index < pObjTypePool()->decodeTableMax(); ++index) {
      delete pObjTypeDefinition(index);
    }
  }
  for (NameTable* table : {&enumerators_, &objTypes_, &sections_, &fields_}) *table = {};
  numberOfRefusedLines_ = 0;
  refusedLines_.clear();
}

void NQOMLStatic::NameTable::make(nqLong poolSize, bool withPointers) {
  size = {poolSize, hashTableSize(poolSize)};
  pool = std::make_unique<NQStringPool>(size.hash, nqdetail::poolStart(poolSize), 0,
                                        withPointers ? 1 : 0);
}

nqLong NQOMLStatic::NameTable::enter(std::string_view name) {
  if (name.empty()) return -1;
  const nqLong index = pool->update(name);
  try {
    // Others may have entered names in the pool.
    while (index > static_cast<nqInt64>(spellings.size())) {
      spellings.emplace_back(pool->decode(static_cast<nqLong>(spellings.size())));
    }
    if (index == static_cast<nqInt64>(spellings.size())) spellings.emplace_back(name);
  } catch (const std::bad_alloc&) {
    // It is shown as the pool has it.
  }
  return index;
}

NQOMLDefObjType* NQOMLStatic::installObjType(std::string_view name) {
  if (NQOMLDefObjType* const known = pObjTypeDefinition(pObjTypePool()->lookup(name))) {
    return known;
  }
  std::unique_ptr<NQOMLDefObjType> type(new (std::nothrow) NQOMLDefObjType);
  const nqLong index = type == nullptr ? -1 : objTypes_.enter(name);
  if (index < 0) return nullptr;
  pObjTypePool()->pointer(index, type.get());
  return type.release();
}

NQOMLDefSection* NQOMLStatic::addSection(NQOMLDefObjType& type, NQOMLDefSection* parent,
                                         std::string_view name) {
  NQOMLDefScope& scope = parent == nullptr ? static_cast<NQOMLDefScope&>(type) : *parent;
  const nqLong known = pSectionPool()->lookup(name);
  if (NQOMLDefSection* const section = known < 0 ? nullptr : scope.pSection(known)) {
    return section;
  }
  // Only a section that has room may bring a new name.
  if (!type.hasRoomForSection(parent)) return nullptr;
  const nqLong index = sections_.enter(name);
  return index < 0 ? nullptr : type.addSection(parent, index);
}

NQOMLDefField* NQOMLStatic::addField(const char* type, nqULong sectionPath,
                                     const char* field, NQFieldTypeEnum fieldType,
                                     int required) {
  NQOMLDefObjType* const definition = installObjType(textOf(type));
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
  NQOMLDefObjType* const definition = installObjType(textOf(type));
  if (definition == nullptr) return 0;
  NQOMLDefScope* const scope = definition->pScope(sectionPath);
  if (scope == nullptr || installObjType(textOf(childType)) == nullptr) return 0;
  return scope->objectTypes_.add(pObjTypePool()->lookup(childType)) ? 1 : 0;
}

nqULong NQOMLStatic::addSectionDefinition(const char* type, const char* section) {
  return addSectionDefinition(type, 0, section);
}

nqULong NQOMLStatic::addSectionDefinition(const char* type, nqULong parentPath,
                                          const char* section) {
  NQOMLDefObjType* const definition = installObjType(textOf(type));
  if (definition == nullptr) return 0;
  NQOMLDefSection* const parent = definition->pSectionAt(parentPath);
  if (parentPath != 0 && parent == nullptr) return 0;
  const NQOMLDefSection* const made = addSection(*definition, parent, textOf(section));
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
  const nqLong enumerator = pEnumPool()->lookup(valueName);
  const nqLong objType = pObjTypePool()->lookup(valueName);
  if (enumerator < 0 && objType < 0) return 0;
  NQOMLDefField* const definition =
      addField(type, sectionPath, field,
               enumerator >= 0 ? NQ_ENUMERATION_FIELD : NQ_REFERENCE_FIELD, required);
  if (definition == nullptr) return 0;
  const nqLong index = enumerator >= 0 ? enumerator : objType;
  if (enumerator >= 0 || definition->pValueList() == nullptr) {
    return definition->values_.add(index) ? 1 : 0;
  }
  return definition->referencedTypeIndex() == index ? 1 : 0;
}

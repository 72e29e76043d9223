#include "nq/oml/tree/read_tables.h"

#include "nq/core/string_pool.h"
#include "nq/oml/grammar.h"
#include "nq/oml/tree/string_table.h"

namespace nqdetail {

namespace {

template <class Table>
const char* decode(const Table* pool, nqLong index) {
  return pool == nullptr ? "" : pool->decode(index);
}

nqLong lookup(const NQStringPool* pool, const char* name) {
  return pool == nullptr ? -1 : pool->lookup(name);
}

const char* decode(const NQStringPool& known, const NQStringPool* declared,
                   nqLong index) {
  const nqLong count = known.decodeTableMax();
  return index < count ? known.decode(index) : decode(declared, index - count);
}

nqLong lookup(const NQStringPool& known, const NQStringPool* declared, const char* name) {
  const nqLong index = known.lookup(name);
  if (index >= 0) return index;
  const nqLong own = lookup(declared, name);
  return own < 0 ? -1 : known.decodeTableMax() + own;
}

bool hasGrammar(const ReadTables* tables) {
  return tables != nullptr && tables->pGrammar != nullptr;
}

}  // namespace

const char* fieldName(const ReadTables* tables, nqLong index) {
  if (!hasGrammar(tables)) return "";
  return decode(*tables->pGrammar->pFieldPool(), tables->pDeclaredFields, index);
}

const char* sectionName(const ReadTables* tables, nqLong index) {
  if (!hasGrammar(tables)) return "";
  return decode(*tables->pGrammar->pSectionPool(), tables->pDeclaredSections, index);
}

const char* objectTypeName(const ReadTables* tables, nqLong index) {
  return hasGrammar(tables) ? tables->pGrammar->pObjTypePool()->decode(index) : "";
}

const char* enumeratorName(const ReadTables* tables, nqLong index) {
  return hasGrammar(tables) ? tables->pGrammar->pEnumPool()->decode(index) : "";
}

const char* writtenIDText(const ReadTables* tables, nqLong index) {
  if (tables == nullptr || tables->pObjectIDs == nullptr) return "";
  return tables->pObjectIDs->writtenText(index);
}

const char* objectIDText(const ReadTables* tables, nqLong index) {
  if (tables == nullptr || tables->pObjectIDs == nullptr) return "";
  return tables->pObjectIDs->text(index);
}

const char* stringText(const ReadTables* tables, nqLong index) {
  return tables == nullptr ? "" : decode(tables->pStrings, index);
}

nqLong fieldIndex(const ReadTables* tables, const char* name) {
  if (!hasGrammar(tables)) return -1;
  return lookup(*tables->pGrammar->pFieldPool(), tables->pDeclaredFields, name);
}

nqLong sectionIndex(const ReadTables* tables, const char* name) {
  if (!hasGrammar(tables)) return -1;
  return lookup(*tables->pGrammar->pSectionPool(), tables->pDeclaredSections, name);
}

}  // namespace nqdetail

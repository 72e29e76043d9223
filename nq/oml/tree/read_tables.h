// read_tables.h -- the tables of one read, as the syntax tree sees them.
//
// NQOMLFile makes and owns the tables; readTables() and announceSyntaxObject()
// are defined beside it. Every pointer may be null, as before the first read and
// after cleanup(): names and strings are then empty and objects null.

#ifndef NQ_OML_TREE_READ_TABLES_H
#define NQ_OML_TREE_READ_TABLES_H

#include "nq/platform/types.h"

class NQObject;
class NQOMLFile;
class NQOMLStatic;
class NQOMLSyntaxObject;
class NQStringPool;

namespace nqdetail {

class StringTable;

// The ids of a read, with what stands for each. An index out of range gives ""
// and null.
class ObjectIDs {
 public:
  virtual ~ObjectIDs() = default;

  // The text, valid as long as the table; made when first asked for.
  virtual const char* text(nqLong index) const = 0;
  // The same of the last component alone, by which an object is called in the file; ""
  // when it has no id there.
  virtual const char* writtenText(nqLong index) const = 0;
  // The node that defines the id.
  virtual NQOMLSyntaxObject* pSyntaxObject(nqLong index) const = 0;
  // The application's object made for it.
  virtual NQObject* pObject(nqLong index) const = 0;
};

struct ReadTables {
  const NQOMLStatic* pGrammar = nullptr;
  const StringTable* pStrings = nullptr;  // string values, and names of source files
  const NQStringPool* pDeclaredSections = nullptr;
  const NQStringPool* pDeclaredFields = nullptr;  // met unchecked; their fields are kept
  const NQStringPool* pIgnoredFields = nullptr;   // declared so; their values are not
  const ObjectIDs* pObjectIDs = nullptr;
};

// The tables of a file; null for a null file and for one that has none.
const ReadTables* readTables(const NQOMLFile* file);
// Calls the file's vSyntaxObjectCreated(); nothing for a null file.
void announceSyntaxObject(NQOMLFile* file, NQOMLSyntaxObject* node, nqLong line,
                          int position);

// Fields and sections that the grammar does not know are numbered behind those
// that it knows: an index is one in the grammar's pool, or the size of that pool
// plus an index in the table of declared names.
const char* fieldName(const ReadTables* tables, nqLong index);
const char* sectionName(const ReadTables* tables, nqLong index);
const char* objectTypeName(const ReadTables* tables, nqLong index);
const char* enumeratorName(const ReadTables* tables, nqLong index);
const char* objectIDText(const ReadTables* tables, nqLong index);
const char* writtenIDText(const ReadTables* tables, nqLong index);
const char* stringText(const ReadTables* tables, nqLong index);
// The way back; -1 when the name is unknown or null, or there is no grammar.
nqLong fieldIndex(const ReadTables* tables, const char* name);
nqLong sectionIndex(const ReadTables* tables, const char* name);

}  // namespace nqdetail

#endif  // NQ_OML_TREE_READ_TABLES_H

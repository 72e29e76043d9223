// grammar.h -- the names and rules against which OML files are read and written.
//
// An application states its object types, sections, enumerators and, in a small
// language, what may stand in what; NQOMLStatic turns these tables into pools of
// names and definitions (definitions.h). It is built once, may be extended by
// derived classes, and is then handed to any number of reads and writes, which
// do not change it: readers in several threads may share one grammar.
//
// Names are those of ASCII without regard to case. Each of the four pools gives
// a name its index: object types, sections, fields and enumerators.
//
// The definition language, one entry a line; words consist of letters, digits,
// "$" and "_", blanks are spaces and tabs, keys may be written in either case:
//
//   O name                      an object type; its entries follow
//   [  or  {                    may follow an O or S line
//   ]  or  }                    ends the innermost O or S
//   F name T [R]                a field of type T: I integer, B boolean, S string,
//                               R real, P IP address, X binary value; R: required
//   E name [a, b, c..d] [R]     an enumeration of known enumerators; c..d are all
//                               those from c to d in the order of installation
//   R name type [R]             a reference to an object of that type; "_" or
//                               nothing for any type
//   T type                      objects of that type may stand here
//   S name                      a section; its entries follow
//
// A level holds at most fourteen sections, and sections nest to eight levels.

#ifndef NQ_OML_GRAMMAR_H
#define NQ_OML_GRAMMAR_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "nq/core/object.h"
#include "nq/file/file_codes.h"
#include "nq/oml/definitions.h"

class NQStringPool;

// One row of a table of object types; a row with a null name ends the table.
struct NQOMLStaticOEStruct {
  const char* name;
  NQOMLCheckFunction check;
  NQOMLCreateFunction create;
  NQOMLReadFieldFunction readField;
  NQOMLWriteFunction write;
};

// One row of a table of enumerators; a row with a null name ends the table.
struct NQOMLStaticVEStruct {
  const char* name;
  nqLong value;
};

// The indices of the names that every grammar has: NQ_OML_INCLUDE_FIELD is 0, and so
// on in the order of built_in_names.def. The last of fields and of sections is their
// number.
enum NQOMLBuiltInFieldEnum : int {
#define NQ_OML_BUILT_IN_FIELD(key, name) NQ_OML_##key##_FIELD,
#include "nq/oml/built_in_names.def"
  NQ_OML_BUILT_IN_FIELDS
};
enum NQOMLBuiltInSectionEnum : int {
#define NQ_OML_BUILT_IN_SECTION(key, name) NQ_OML_##key##_SECTION,
#include "nq/oml/built_in_names.def"
  NQ_OML_BUILT_IN_SECTIONS
};
enum NQOMLBuiltInEnumeratorEnum : int {
#define NQ_OML_BUILT_IN_ENUMERATOR(key, name, value) NQ_OML_##key,
#include "nq/oml/built_in_names.def"
};
enum NQOMLBuiltInObjectTypeEnum : int {
#define NQ_OML_BUILT_IN_TYPE(key, name) NQ_OML_##key##_TYPE,
#include "nq/oml/built_in_names.def"
};

class NQ_EXPORT NQOMLStatic : public NQObject {
 public:
  // Installs the tables that are not null, in the order object types, sections,
  // enumerators, definitions. All tables end with their first null entry and are
  // only read here. The sizes are numbers of names to prepare for; a wrong guess
  // costs time, not correctness. The sizes for strings and object ids are those
  // of the tables that each read makes for itself. Throws std::bad_alloc when memory
  // does not suffice for the names; definitions without room are refused lines.
  explicit NQOMLStatic(const char* const* objectTypeNames = nullptr,
                       const char* const* sectionNames = nullptr,
                       const NQOMLStaticVEStruct* enumerators = nullptr,
                       const char* const* definitions = nullptr,
                       nqLong stringPoolSize = 1000, nqLong enumPoolSize = 100,
                       nqLong objectTypePoolSize = 100, nqLong sectionPoolSize = 100,
                       nqLong fieldPoolSize = 100, nqLong objectIDPoolSize = 1000);
  NQOMLStatic(const NQOMLStaticOEStruct* objectTypes, const char* const* sectionNames,
              const NQOMLStaticVEStruct* enumerators, const char* const* definitions,
              nqLong stringPoolSize = 1000, nqLong enumPoolSize = 100,
              nqLong objectTypePoolSize = 100, nqLong sectionPoolSize = 100,
              nqLong fieldPoolSize = 100, nqLong objectIDPoolSize = 1000);
  NQOMLStatic(const NQOMLStatic&) = delete;
  NQOMLStatic& operator=(const NQOMLStatic&) = delete;
  ~NQOMLStatic() override;

  // The pools, owned by the grammar and never null.
  NQStringPool* pEnumPool() const { return enumerators_.pool.get(); }
  NQStringPool* pObjTypePool() const { return objTypes_.pool.get(); }
  NQStringPool* pSectionPool() const { return sections_.pool.get(); }
  NQStringPool* pFieldPool() const { return fields_.pool.get(); }

  // A name as it was first written (the pools hold names in upper case), for
  // messages to show; `name` itself when the grammar does not know it. One that
  // names several things is that of an object type, section, field or enumerator,
  // whichever comes first.
  std::string_view spelling(std::string_view name) const;

  // The sizes given, and the hash table sizes made from them.
  nqLong stringPoolSize() const { return stringSize_.pool; }
  nqLong stringHashSize() const { return stringSize_.hash; }
  nqLong valueIDHashSize() const { return enumerators_.size.hash; }
  nqLong objTypeIDHashSize() const { return objTypes_.size.hash; }
  nqLong sectionIDPoolSize() const { return sections_.size.pool; }
  nqLong sectionIDHashSize() const { return sections_.size.hash; }
  nqLong fieldIDHashSize() const { return fields_.size.hash; }
  nqLong objectIDPoolSize() const { return objectIDSize_.pool; }
  nqLong objectIDHashSize() const { return objectIDSize_.hash; }
  // The hash table size for `size` names: a prime some way above it.
  static nqLong hashTableSize(nqLong size);

  // The definition of an object type; null when there is no such type.
  NQOMLDefObjType* pObjTypeDefinition(nqLong typeIndex) const;
  // The value of an enumerator; 0 when there is no such enumerator.
  nqLong enumValue(nqLong enumIndex) const;
  // Whether the grammar has a section name with that index.
  int definedSection(nqLong sectionIndex) const;

  // The definition lines that had no effect because they are not understood,
  // contradict an earlier definition, go beyond a limit or found no memory: how many
  // there are, and the index (from 0) of the n-th of them (from 0) in its table; -1
  // for an n that is out of range. A line that repeats what holds already is not
  // among them.
  nqLong numberOfRefusedLines() const { return numberOfRefusedLines_; }
  nqLong refusedLine(nqLong n) const;

  // Writes a C header of the indices of all names but the key words, for
  // applications to include, in place of any file of that name. A line is
  //   #define NQ_XKEY_FI_COLOUR 7
  // for a field; SI stands for a section, VI for an enumerator and OI for an
  // object type. Names stand as the pools hold them, in upper case, whether the
  // line is then good C or not. NQ_FILE_OPEN_ERROR or NQ_FILE_CLOSE_ERROR when not all
  // of it could be written.
  NQFileCodeEnum writeIndexDefinitions(const char* fileName) const;

  // Installs an object type, or replaces those callbacks of an installed one that
  // are not null here. Returns its definition; null for a null or empty name.
  NQOMLDefObjType* installObjTypeID(const char* name, NQOMLCheckFunction check,
                                    NQOMLCreateFunction create,
                                    NQOMLReadFieldFunction readField,
                                    NQOMLWriteFunction write);
  // The index of the name, which is entered when it is new; -1 for a null or
  // empty one, and when memory is exhausted.
  nqLong installSectionID(const char* name);
  nqLong installFieldID(const char* name);
  // Enters an enumerator, or gives an existing one a new value. 0 for a null or
  // empty name and when memory is exhausted, else 1.
  int installEnumValueID(const char* name, nqLong value);

  // Whole tables; null changes nothing, and empty names are passed over. 0 when
  // memory did not suffice for every name, else 1.
  int installObjectTypeTable(const char* const* names);
  int installObjectTypeTable(const NQOMLStaticOEStruct* rows);
  int installSectionTable(const char* const* names);
  int installFieldTable(const char* const* names);
  int installEnumValueTable(const NQOMLStaticVEStruct* rows);
  // Lines that have no effect are added to the refused ones.
  void installDefinitionTable(const char* const* lines);

 protected:
  // Makes the pools with their built-in names; called by the constructors.
  void initialize(nqLong stringPoolSize, nqLong enumPoolSize, nqLong objectTypePoolSize,
                  nqLong sectionPoolSize, nqLong fieldPoolSize, nqLong objectIDPoolSize);
  // Deletes all definitions and the pools; called by the destructor.
  void empty();

  // What definition lines do, for derived grammars that build themselves. Names
  // of types and fields are installed when they are new. Path 0 means the type
  // itself. The answers are 0, and no definition is added, when a name is null or
  // empty, a section does not exist or a definition contradicts an earlier one.

  // Permits objects of one type directly inside another, or inside a section.
  int addObjectTypeDefinition(const char* type, const char* childType);
  int addObjectTypeDefinition(const char* type, nqULong sectionPath,
                              const char* childType);
  // The path of the section of that name, which is made when it is new; 0 when it
  // cannot be made, since its level is full or would be the ninth.
  nqULong addSectionDefinition(const char* type, const char* section);
  nqULong addSectionDefinition(const char* type, nqULong parentPath, const char* section);
  // Adds a field of a simple type.
  int addFieldDefinition(const char* type, const char* field, NQFieldTypeEnum fieldType,
                         int required);
  int addFieldDefinition(const char* type, nqULong sectionPath, const char* field,
                         NQFieldTypeEnum fieldType, int required);
  // Adds an enumeration that permits the known enumerator `valueName`, or permits
  // it in an existing one; or else a reference to the known type of that name.
  int addFieldDefinition(const char* type, const char* field, const char* valueName,
                         int required);
  int addFieldDefinition(const char* type, nqULong sectionPath, const char* field,
                         const char* valueName, int required);

 private:
  friend class nqdetail::DefinitionReader;

  struct Sizes {
    nqLong pool = 0;  // as given
    nqLong hash = 0;  // hashTableSize(pool)
  };

  // The names of one kind.
  struct NameTable {
    std::unique_ptr<NQStringPool> pool;
    std::vector<std::string> spellings;  // by index; one that is missing is as in pool
    Sizes size;

    void make(nqLong poolSize, bool withPointers);
    // The index of the name, which is entered when it is new; -1 for an empty one, and
    // when memory is exhausted.
    nqLong enter(std::string_view name);
  };

  template <class Type>
  void install(const Type* objectTypes, const char* const* sectionNames,
               const NQOMLStaticVEStruct* enumerators, const char* const* definitions);
  // The definition of the type, made when it is new; null for no name.
  NQOMLDefObjType* installObjType(std::string_view name);
  // The section of that name inside `parent`, or for null directly in the type.
  NQOMLDefSection* addSection(NQOMLDefObjType& type, NQOMLDefSection* parent,
                              std::string_view name);
  NQOMLDefField* addField(const char* type, nqULong sectionPath, const char* field,
                          NQFieldTypeEnum fieldType, int required);

  NameTable enumerators_;  // with values
  NameTable objTypes_;     // with owned NQOMLDefObjType*
  NameTable sections_;
  NameTable fields_;
  Sizes stringSize_;
  Sizes objectIDSize_;
  nqLong numberOfRefusedLines_ = 0;
  std::vector<nqLong> refusedLines_;  // the first of them, or all
};

#endif  // NQ_OML_GRAMMAR_H

// definition_language.h -- reading a grammar's definition lines.
//
// DefinitionReader goes through the lines of one table and enters what they say
// in a grammar. It never recurses and ends with the table, wherever that is. A
// section that cannot be made is skipped with all its entries; each of these
// lines counts as refused.

#ifndef NQ_OML_GRAMMAR_DEFINITION_LANGUAGE_H
#define NQ_OML_GRAMMAR_DEFINITION_LANGUAGE_H

#include <string>
#include <vector>

#include "nq/oml/grammar.h"

namespace nqdetail {

// Skips blanks and takes the word at `cursor`, which is left behind it; an empty
// word when there is none.
std::string makeCopyOfNextWord(const char*& cursor);

class DefinitionReader {
 public:
  DefinitionReader(NQOMLStatic& grammar, const char* const* lines)
      : grammar_(grammar), lines_(lines) {}

  void read();

 private:
  // An object type or section whose entries are being read.
  struct Level {
    NQOMLDefScope* scope;      // null: the entries are skipped
    NQOMLDefSection* section;  // null for the type itself
  };

  bool readLine(const char* line);
  bool readEntry(char key, const char* cursor);
  bool beginObjectType(const char* cursor);
  bool beginSection(const char* cursor);
  bool readSimpleField(const char* cursor);
  bool readEnumeration(const char* cursor);
  bool readReference(const char* cursor);
  bool readObjectType(const char* cursor);

  void readEnumerators(const char*& cursor, IndexList& values) const;
  NQOMLDefField* addField(const std::string& name, NQFieldTypeEnum type, bool required);
  void skipOpeningBracket();

  NQOMLStatic& grammar_;
  const char* const* lines_;
  nqLong next_ = 0;                  // the line to be read next
  NQOMLDefObjType* type_ = nullptr;  // the one that the levels belong to
  std::vector<Level> levels_;        // empty between object types
};

}  // namespace nqdetail

#endif  // NQ_OML_GRAMMAR_DEFINITION_LANGUAGE_H

// definition_language.h -- reading a grammar's definition lines.
//
// DefinitionReader takes one line after the other and enters what it says in a
// grammar, for the tables of applications and for grammar files alike. It never
// recurses, and may be left after any line. A section that cannot be made is
// skipped with all its entries.
//
// A table may be careless: what follows an entry on its line is passed over, types
// and sections are known once they are named, unknown enumerators match nothing. A
// grammar file may not; a derived class that asks for it (kFile) has every such fault
// refused, and is told the place and the reason.

#ifndef NQ_OML_GRAMMAR_DEFINITION_LANGUAGE_H
#define NQ_OML_GRAMMAR_DEFINITION_LANGUAGE_H

#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "nq/oml/grammar.h"
#include "nq/oml/grammar/names.h"

namespace nqdetail {

// A word, a number, a bracket or another sign, and where it begins (from 1).
struct DefinitionToken {
  std::string_view text;  // empty behind the end of a line
  nqLong line = 0;
  nqLong column = 0;

  bool isWord() const { return !text.empty() && isNameCharacter(text.front()); }
  bool opens() const { return text == "[" || text == "{"; }
  bool closes() const { return text == "]" || text == "}"; }
  // Whether it is that letter (upper case), in either case.
  bool is(char letter) const {
    return text.size() == 1 && upperCase(text.front()) == letter;
  }
};

class DefinitionReader {
 public:
  // Reads the lines of an application's table.
  explicit DefinitionReader(NQOMLStatic& grammar) : DefinitionReader(grammar, kTable) {}
  virtual ~DefinitionReader() = default;

  // Whether the line holds: false for one that has no effect and should have. When
  // memory is exhausted, all lines up to the next object type are skipped.
  bool readLine(const char* line);

 protected:
  using Token = DefinitionToken;
  using Arguments = std::initializer_list<std::string_view>;
  enum Strictness { kTable, kFile };

  DefinitionReader(NQOMLStatic& grammar, Strictness strictness)
      : grammar_(grammar), strict_(strictness == kFile) {}

  // Cuts a line into its tokens. In a table a key needs no blank behind it.
  void tokenize(std::string_view line, nqLong number);
  // Reads the line of these tokens.
  bool readTokens();
  const std::vector<Token>& tokens() const { return tokens_; }
  // The token with that index; one that is empty behind the last.
  const Token& token(std::size_t index) const;
  // Between two object types.
  bool isOutside() const { return levels_.empty(); }
  // Ends all levels; `next` is the line that ends them, if there is one.
  void endLevels(const Token* next);

  // Hears what is wrong at a token, with "%s" for each argument, and the kind of names
  // among which there may be a similar one. Always false, for the caller to return.
  virtual bool refuse(const Token& at, const char* format, Arguments arguments,
                      std::optional<NameKind> similar = std::nullopt);
  // Hears of another place that explains what was refused last. Always false.
  virtual bool note(const Token&, const char*) { return false; }
  // Whether an object type may be referred to.
  virtual bool isDeclaredType(std::string_view) const { return true; }
  // A field was made by the line that is being read.
  virtual void fieldAdded(const NQOMLDefField*) {}
  // The first token of the line that made a field.
  virtual Token keyOf(const NQOMLDefField*) const { return {}; }

  // Whether the line has no tokens but these; complains about the next one.
  bool endsAfter(std::size_t count);
  // Whether the token may be a name; complains if not.
  bool isName(const Token& token);
  // Whether two brackets are of one kind; complains if not.
  bool isPair(const Token& opening, const Token& closing);

  NQOMLStatic& grammar_;

 private:
  // An object type or section whose entries are being read.
  struct Level {
    NQOMLDefScope* scope = nullptr;      // null: the entries are skipped
    NQOMLDefSection* section = nullptr;  // null for the type itself
    std::string_view name;
    Token bracket;  // that opened it; empty when none did
  };
  // What a bracket on the next line opens.
  enum Opening { kNothing, kLevel, kSkipped };

  bool beginObjectType();
  bool beginSection();
  NQOMLDefSection* readSection(const Level& outside);
  bool endLevel();
  bool readEntry();
  bool readSimpleField();
  bool readEnumeration();
  bool readEnumerators(const Token& name, IndexList& values, std::size_t& next);
  bool readReference();
  bool readObjectType();

  const Token* entryName(const char* what);
  bool knowsType(const Token& type);
  bool readRequired(std::size_t next, bool& required);
  bool addEnumerator(const Token& token, IndexList& values);
  bool addRange(const Token& dots, const Token& first, const Token& last,
                IndexList& values);
  NQOMLDefField* addField(const Token& name, NQFieldTypeEnum type, bool required);
  bool setValues(const Token& name, NQOMLDefField& field, const IndexList& values);
  bool refuseOther(const Token& name, const NQOMLDefField& first);
  nqLong install(std::string_view type);

  const bool strict_;
  std::vector<Token> tokens_;  // of the line
  Opening opening_ = kNothing;
  NQOMLDefObjType* type_ = nullptr;  // the one that the levels belong to
  std::vector<Level> levels_;        // empty between object types
  bool isNewField_ = false;          // the one that addField returned last
  std::size_t inField_ = 0;          // enumerators of the line, repetitions included
  std::size_t inAll_ = 0;            // and those of all lines
};

}  // namespace nqdetail

#endif  // NQ_OML_GRAMMAR_DEFINITION_LANGUAGE_H

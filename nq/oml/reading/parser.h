// parser.h -- tokens to the syntax tree.
//
// Receives the tokens of one read. Leaves a tree under a root of the grammar's
// type 0 in the arena; when anything was reported, nodes may be missing from it
// and it is of no use. Checks every name and value against the grammar and
// carries out what the file tells its reader: include, ids and, unless it is strict,
// comment "unchecked" and declared sections and fields. Knows nothing of application
// objects.
//
// A recursive descent, one level deep for each open block and no deeper than the
// limit it is given. Whoever takes a binary value out of the lexer gives it to a
// field or deletes it. Throws std::bad_alloc where memory does not suffice.

#ifndef NQ_OML_READING_PARSER_H
#define NQ_OML_READING_PARSER_H

#include <array>

#include "nq/oml/reading/lexer.h"
#include "nq/oml/tree/syntax_arena.h"

namespace nqdetail {

class Parser {
 public:
  // `file` is the one whose tree this is.
  Parser(NQOMLFile* file, Sources& sources, Lexer& lexer, NameTables& names,
         Diagnostics& diagnostics, SyntaxArena& tree, int maxNestingDepth, bool strict)
      : file_(file),
        sources_(sources),
        lexer_(lexer),
        names_(names),
        diagnostics_(diagnostics),
        tree_(tree),
        maxNestingDepth_(maxNestingDepth),
        strict_(strict) {}

  // Reads a file with all that it includes. Null when anything was reported.
  NQOMLSyntaxObject* parse(const char* fileName);

 private:
  // Where an attribute stands: in which object, and under which section there.
  struct Context {
    NQOMLSyntaxObject& object;
    nqLong sectionIDIndex;
    nqULong sectionPath;

    NQOMLDefObjType* type() const { return object.pDefObjType(); }
  };

  // Reads attributes until the end of the input or, in a block, to behind its
  // closing bracket. `descriptor`, if not null, names every value of the list.
  void parseAttributeList(const SourceToken* descriptor, const Context& context,
                          bool inBlock);
  // The attributes of a block whose opening bracket was the last token.
  void parseBlock(const SourceToken& bracket, const SourceToken* descriptor,
                  const Context& context);
  // Reads the attribute that begins with `token`, the position-th of its list.
  void parseAttribute(const SourceToken* descriptor, Context context, SourceToken token,
                      int position);
  void parseValue(const SourceToken* name, const Context& context, SourceToken& value,
                  int position);
  // A node for an object; null when memory is exhausted.
  NQOMLSyntaxObject* makeObject(const SourceToken& type, nqLong objectIDIndex,
                                nqLong sectionIDIndex, nqULong sectionPath);
  // `bracket` opens the object's block; null when it has none.
  void parseObject(const SourceToken& type, nqLong objectIDIndex, const Context& context,
                   const SourceToken* bracket);
  void parseField(const SourceToken* name, const Context& context, SourceToken& value,
                  int position);
  void parseBuiltIn(nqLong fieldIndex, const Context& context, SourceToken& value);
  void include(const SourceToken& name);
  // Reports the name behind which the input ends, or, when `name` is null, the section
  // or colon, if any.
  void reportMissingValue(const SourceToken* name, const SourceToken* before,
                          const Context& context);
  void takeSemicolon();

  // The path of a section inside the one where `context` is; that one's path when
  // the section is skipped, or is none there, which is reported.
  nqULong extendSectionPath(const SourceToken& section, const Context& context);
  bool nthFieldDescrToken(const Context& context, int position, const SourceToken& value,
                          SourceToken& name) const;
  NQOMLDefField* checkFieldSection(const SourceToken& name, const Context& context);
  NQOMLDefField* fieldInMatchingSections(nqLong name, const Context& context) const;
  void checkFieldType(const NQOMLDefField* definition, const SourceToken& value);
  void checkObjectSection(const SourceToken& type, nqLong objectIDIndex,
                          const Context& context);
  // Judges the children read so far once more: the object has turned into defaults.
  void checkChildrenAgain(NQOMLSyntaxObject& object);
  void illegalSectionInside(const SourceToken& held, const SourceToken& next);
  void checkSomething(const SourceToken& token, NQOMLTokenTagEnum tag, int what);
  void checkBool(const SourceToken& token);
  void checkScope(const SourceToken& token);
  // The id, of one component, that the token stands for; reports what is none.
  nqLong checkSimpleScope(const SourceToken& token);
  bool isSkipSection(nqLong section) const;

  void error(const SourceToken& token, int code, const char* a1 = nullptr,
             const char* a2 = nullptr, const char* a3 = nullptr) {
    diagnostics_.error(token.place(), code, a1, a2, a3);
  }
  // The text of a token that is a name or an id.
  const char* text(const SourceToken& token) const;
  const char* typeName(const NQOMLSyntaxObject& object) const;
  const char* sectionName(nqLong index) const;

  NQOMLFile* file_;
  Sources& sources_;
  Lexer& lexer_;
  NameTables& names_;
  Diagnostics& diagnostics_;
  SyntaxArena& tree_;
  int maxNestingDepth_;
  bool strict_;  // the file cannot take back what the grammar demands
  NQOMLSyntaxObject* root_ = nullptr;
  int depth_ = 0;  // open blocks

  // A field that the grammar defines there: a file has few kinds of fields, and many of
  // each.
  struct KnownField {
    const NQOMLDefObjType* type = nullptr;
    nqULong path = 0;
    NodeKind* kind = nullptr;
  };
  std::array<KnownField, 64> known_;  // by name, the last one each
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_PARSER_H

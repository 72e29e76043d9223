// lexer.h -- characters to tokens.
//
// Receives the open files of a read, its tables and its diagnostics. Leaves one
// token after the other, each with the file it stood in, until the bottom file
// ends; from then on, and after a fatal error, there is none. Reports what is
// wrong with characters and brackets; what may stand where is not its affair.
// A file that ends is closed, and reading goes on in the one that included it.
//
// Lexer holds what both encodings share: brackets, the look-ahead, the joining
// of binary values written in pieces, the end of files. TextLexer and BinaryLexer
// read one token.

#ifndef NQ_OML_READING_LEXER_H
#define NQ_OML_READING_LEXER_H

#include <memory>
#include <string>
#include <string_view>

#include "nq/core/string_pool.h"
#include "nq/oml/diagnostics/diagnostics.h"
#include "nq/oml/encoding/bin_value_builder.h"
#include "nq/oml/grammar.h"
#include "nq/oml/grammar/name_index.h"
#include "nq/oml/reading/sources.h"
#include "nq/oml/token.h"
#include "nq/oml/tree/id_table.h"
#include "nq/oml/tree/string_table.h"

namespace nqdetail {

// A token and the file it stood in.
struct SourceToken : NQOMLToken {
  nqLong fileIndex = -1;

  Place place() const { return {fileIndex, line, column}; }
};

// The tables that tokens refer to.
struct NameTables {
  explicit NameTables(const NQOMLStatic& readGrammar);

  const NQOMLStatic& grammar;
  NameIndex meanings;
  StringTable strings;
  NQStringPool declaredSections;
  NQStringPool declaredFields;  // met in unchecked mode
  NQStringPool ignoredFields;   // declared as fields whose values do not matter
  IDTable ids;
  bool unchecked = false;  // every name is that of a field

  // What the file declares, known to the next token. These throw std::bad_alloc when a
  // name cannot be kept.
  void declareSection(const char* name);
  void ignoreField(const char* name);
  // The index, as tokens have it, of a field that is kept though the grammar lacks it.
  nqLong keptFieldIndex(std::string_view name);
};

class Lexer {
 public:
  static std::unique_ptr<Lexer> make(bool binary, Sources& sources, NameTables& names,
                                     Diagnostics& diagnostics);
  virtual ~Lexer();

  // The next token; false at the end of the input. A binary value belongs to the
  // caller. Values that follow a binary value directly are joined to it, unless
  // `join` is false.
  bool next(SourceToken& token, bool join = true);
  // The token that next() will give, without its binary value; null at the end.
  const SourceToken* lookAhead();
  // Makes `token`, the last one given, the next one again.
  void putBack(const SourceToken& token);

  // Skips the block whose opening bracket was the last token, to behind the
  // bracket that closes it.
  void skipBlock();
  // Skips what stands on the same line behind the last token, a value that nobody
  // wants; if that was binary, also the pieces of it that follow on further lines,
  // each with the rest of its own.
  virtual void skipRestOfLine(bool ofBinaryValue) = 0;
  // Takes a ";" if it comes next, and nothing else that could be a token.
  virtual void takeSemicolon() = 0;
  // The character with which the next token begins, 0 when it is not known without
  // reading the token: it may stand in another file. takeSign() takes it as the token
  // of punctuation that it is.
  virtual char signAhead() { return '\0'; }
  virtual void takeSign(SourceToken&) {}

 protected:
  Lexer(Sources& sources, NameTables& names, Diagnostics& diagnostics)
      : sources_(sources), names_(names), diagnostics_(diagnostics) {}

  // Reads a token of the file on top, all but its file; the bytes of a binary
  // value go to binary_. False when the file has ended.
  virtual bool read(NQOMLToken& token) = 0;
  // Skips to behind the bracket below which `depth` brackets are open; false
  // when the file has ended before.
  virtual bool skipTo(std::size_t depth) = 0;

  Source& source() { return sources_.top(); }
  bool holdsAhead() const { return holdsAhead_; }
  // Notes that `token` begins at `start`.
  void begin(NQOMLToken& token, const char* start) {
    token.line = source().line();
    token.column = source().column(start);
  }
  Place placeOf(const NQOMLToken& token) const {
    return {sources_.top().fileIndex(), token.line, token.column};
  }

  void openBracket(char bracket, const Place& place);
  // False when there is none to close; that is reported and forgotten.
  bool closeBracket(char bracket, const Place& place);
  // Reports that the file ends before what began at `place`, unless reading failed:
  // then nobody knows where it ends.
  void unterminated(const Place& place, int code) {
    if (!source().failed()) diagnostics_.error(place, code);
  }
  // The string value that stands for `text`; reports what it cannot hold.
  void makeString(NQOMLToken& token, std::string_view text);
  // The same for a text with escape sequences.
  void makeEscapedString(NQOMLToken& token, std::string& text);

  Sources& sources_;
  NameTables& names_;
  Diagnostics& diagnostics_;
  BinValueBuilder binary_;

 private:
  bool readAcrossFiles(SourceToken& token);
  // Leaves a file that has ended; false when it was the last.
  bool leaveFile();
  void endInput();

  SourceToken ahead_;
  bool holdsAhead_ = false;
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_LEXER_H

// text_lexer.h -- the tokens of the text encoding.

#ifndef NQ_OML_READING_TEXT_LEXER_H
#define NQ_OML_READING_TEXT_LEXER_H

#include "nq/oml/reading/lexer.h"

namespace nqdetail {

// Scans in place, in the window of the file on top. The methods that read a
// token of one kind find its first character at `at` and leave `at` behind it.
class TextLexer final : public Lexer {
 public:
  TextLexer(Sources& sources, NameTables& names, Diagnostics& diagnostics)
      : Lexer(sources, names, diagnostics) {}

  void skipRestOfLine(bool ofBinaryValue) override;
  void takeSemicolon() override;
  char signAhead() override;
  void takeSign(SourceToken& token) override;

 protected:
  bool read(NQOMLToken& token) override;
  bool skipTo(std::size_t depth) override;

 private:
  // Skips blanks, line ends and comments; false at the end of the file.
  bool skipTextWhiteSpace();
  void skipToLineEnd();
  void skipComment(const Place& place);
  // Takes the characters of some classes that come next; `start`, from where on
  // the window is kept, moves with it.
  void takeRun(int classes, const char*& start);
  // Takes all that endOfNumber() says belongs to the number at `start`.
  void takeNumber(const char*& start);

  void readIdentifier(NQOMLToken& token);
  // A name in unchecked mode, which is that of a field whatever else it means.
  void readFieldName(NQOMLToken& token, std::string_view name);
  void readIntRealScopeOrIP(NQOMLToken& token);
  // An integer of few digits, which most numbers are; false for anything else.
  bool readShortInteger(NQOMLToken& token);
  void readBinValue(NQOMLToken& token);
  // Skips a binary value if it comes next.
  bool skipBinValue();
  void readString(NQOMLToken& token);
  void readFullScope(NQOMLToken& token);
  // Reads the components behind the id `id`, each after a separator. What is not
  // a component makes the token unrecognised.
  void readRemainingScope(NQOMLToken& token, nqLong id);
  // One component behind `scope`; kNone when none comes next.
  nqLong readComponent(nqLong scope);

  std::string scratch_;       // a string that cannot be taken as it stands
  bool tookLineEnd_ = false;  // the last token ended with the end of its line
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_TEXT_LEXER_H

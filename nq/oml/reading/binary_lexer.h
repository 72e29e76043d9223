// binary_lexer.h -- the tokens of the binary encoding.

#ifndef NQ_OML_READING_BINARY_LEXER_H
#define NQ_OML_READING_BINARY_LEXER_H

#include <cstdint>

#include "nq/oml/reading/lexer.h"

namespace nqdetail {

// Places have line 1 and, as the column, the number of the byte in its file from
// 1. A record that is cut off, a letter that means nothing and an index that no
// table has make an unrecognised token.
class BinaryLexer final : public Lexer {
 public:
  BinaryLexer(Sources& sources, NameTables& names, Diagnostics& diagnostics)
      : Lexer(sources, names, diagnostics) {}

  // There are no lines, only pieces.
  void skipRestOfLine(bool ofBinaryValue) override;
  // And no punctuation.
  void takeSemicolon() override {}

 protected:
  bool read(NQOMLToken& token) override;
  bool skipTo(std::size_t depth) override;

 private:
  void readRecord(NQOMLToken& token, char letter);
  // The value behind the letter; false when the file ends within it.
  bool readValue(char letter, std::uint32_t& value);
  // A record with that letter in either form; takes nothing else.
  bool readNumber(char letter, nqLong& value);
  void readReal(NQOMLToken& token, nqLong mantissa);
  void readBinValue(NQOMLToken& token);
  // The bytes up to the closing quotation mark, escapes and all, to scratch_.
  void readText(const NQOMLToken& token);
  bool readNumberedID(NQOMLToken& token, nqLong scope);
  void readID(NQOMLToken& token, nqLong scope);

  std::string scratch_;
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_BINARY_LEXER_H

#include "tests/support/token_dump.h"

#include "tests/support/value_text.h"

namespace {

std::string wordOf(const nqdetail::SourceToken& token,
                   const nqdetail::NameTables& names) {
  const NQOMLStatic& grammar = names.grammar;
  const nqLong index = token.integer();
  switch (token.tag) {
    case NQ_OML_OPENING_BRACKET:
    case NQ_OML_CLOSING_BRACKET:
    case NQ_OML_COLON:
    case NQ_OML_SEMICOLON:
      return std::string(1, static_cast<char>(index));
    case NQ_OML_INTEGER:
      return std::to_string(index);
    case NQ_OML_STRING:
      return std::string("s\"") + names.strings.decode(index) + '"';
    case NQ_OML_ENUMERATOR:
      return std::string("e") + grammar.pEnumPool()->decode(index);
    case NQ_OML_OBJECT_TYPE_NAME:
      return std::string("t") + grammar.pObjTypePool()->decode(index);
    case NQ_OML_SECTION_NAME: {
      const nqLong known = grammar.pSectionPool()->decodeTableMax();
      return index < known
                 ? std::string("S") + grammar.pSectionPool()->decode(index)
                 : std::string("S!") + names.declaredSections.decode(index - known);
    }
    case NQ_OML_FIELD_NAME: {
      const nqLong known = grammar.pFieldPool()->decodeTableMax();
      if (index < known) return std::string("f") + grammar.pFieldPool()->decode(index);
      return token.declared != 0
                 ? std::string("f!") + names.ignoredFields.decode(index - known)
                 : std::string("f?") + names.declaredFields.decode(index - known);
    }
    case NQ_OML_OBJECT_ID:
      return std::string("#") + names.ids.text(index);
    case NQ_OML_REAL:
      return "r" + realText(token.real());
    case NQ_OML_IP_ADDRESS:
      return "ip" + addressText(token.address());
    case NQ_OML_BINARY_VALUE:
      return "x" + bytesText(*token.pBinValue());
    case NQ_OML_UNRECOGNISED:
      break;
  }
  return "?";
}

}  // namespace

std::string LexerHarness::dump() {
  text_.clear();
  nqdetail::SourceToken token;
  while (lexer->next(token)) {
    std::string word = wordOf(token, names);
    if (places) {
      word.append("@").append(std::to_string(token.line));
      word.append(":").append(std::to_string(token.column));
    }
    add(word);
    token.deleteValue();
    if (afterToken) afterToken(token);
  }
  return text_;
}

const char* LexerHarness::sourceName(nqLong fileIndex) {
  return names.strings.decode(fileIndex);
}

void LexerHarness::error(const char*, nqLong line, int column, int code, const char*,
                         int) {
  std::string word = "!";
  word.append(std::to_string(code)).append("@").append(std::to_string(line));
  add(word.append(":").append(std::to_string(column)));
}

void LexerHarness::add(const std::string& word) {
  if (!text_.empty()) text_ += ' ';
  text_ += word;
}

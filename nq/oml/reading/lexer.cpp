#include "nq/oml/reading/lexer.h"

#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/encoding/escapes.h"
#include "nq/oml/encoding/records.h"
#include "nq/oml/grammar/pool_size.h"
#include "nq/oml/reading/binary_lexer.h"
#include "nq/oml/reading/text_lexer.h"

namespace nqdetail {

NameTables::NameTables(const NQOMLStatic& readGrammar)
    : grammar(readGrammar),
      meanings(grammar),
      declaredSections(grammar.sectionIDHashSize(),
                       poolStart(grammar.sectionIDPoolSize()), 0, 0),
      declaredFields(grammar.fieldIDHashSize(), poolStart(grammar.fieldIDHashSize()), 0,
                     0),
      ignoredFields(grammar.fieldIDHashSize(), poolStart(grammar.fieldIDHashSize()), 0,
                    0) {}

void NameTables::declareSection(const char* name) {
  const nqLong known = grammar.pSectionPool()->decodeTableMax();
  const nqLong index = declaredSections.update(name);
  if (index < 0) throw std::bad_alloc();
  meanings.declareSection(name, known + index);
}

void NameTables::ignoreField(const char* name) {
  const nqLong index = ignoredFields.update(name);
  if (index < 0) throw std::bad_alloc();
  meanings.declareField(name, grammar.pFieldPool()->decodeTableMax() + index);
}

nqLong NameTables::keptFieldIndex(std::string_view name) {
  const nqLong index = declaredFields.update(name);
  if (index < 0) throw std::bad_alloc();
  return grammar.pFieldPool()->decodeTableMax() + index;
}

std::unique_ptr<Lexer> Lexer::make(bool binary, Sources& sources, NameTables& names,
                                   Diagnostics& diagnostics) {
  if (binary) return std::make_unique<BinaryLexer>(sources, names, diagnostics);
  return std::make_unique<TextLexer>(sources, names, diagnostics);
}

Lexer::~Lexer() = default;

bool Lexer::next(SourceToken& token, bool join) {
  if (holdsAhead_) {
    token = ahead_;
    holdsAhead_ = false;
    if (diagnostics_.ended()) return false;
  } else if (!readAcrossFiles(token)) {
    return false;
  }
  if (token.tag != NQ_OML_BINARY_VALUE) return true;

  while (join && lookAhead() != nullptr && ahead_.tag == NQ_OML_BINARY_VALUE) {
    holdsAhead_ = false;
  }
  token.pBinValue(binary_.finish());
  if (token.pBinValue() != nullptr) return true;
  diagnostics_.fatalError(token.place(), kMemoryExhausted);
  return false;
}

const SourceToken* Lexer::lookAhead() {
  if (!holdsAhead_) holdsAhead_ = readAcrossFiles(ahead_);
  return holdsAhead_ && !diagnostics_.ended() ? &ahead_ : nullptr;
}

void Lexer::putBack(const SourceToken& token) {
  ahead_ = token;
  holdsAhead_ = true;
}

void Lexer::skipBlock() {
  const std::size_t depth = sources_.brackets.size() - 1;
  while (!diagnostics_.ended() && !sources_.empty() && !skipTo(depth)) {
    if (!leaveFile()) endInput();
  }
}

bool Lexer::readAcrossFiles(SourceToken& token) {
  while (!diagnostics_.ended() && !sources_.empty()) {
    // A token that a failing read has cut is none.
    if (read(token) && !source().failed()) {
      token.fileIndex = source().fileIndex();
      if (names_.ids.exhausted())
        diagnostics_.fatalError(token.place(), kMemoryExhausted);
      return !diagnostics_.ended();
    }
    if (!leaveFile()) endInput();
  }
  return false;
}

bool Lexer::leaveFile() {
  const Place place = sources_.place();
  if (source().failed()) {
    diagnostics_.fatalError(place, kSomethingWrong, "cannot read `%s'",
                            source().name().c_str());
    return true;
  }
  if (source().cutByZero()) diagnostics_.error(place, kUnexpectedToken);
  if (!sources_.pop()) diagnostics_.error(place, kCannotClose);
  return !sources_.empty();
}

void Lexer::endInput() {
  auto& brackets = sources_.brackets;
  for (; !brackets.empty() && !diagnostics_.ended(); brackets.pop_back()) {
    diagnostics_.error(brackets.back().place, kUnclosedBracket);
  }
}

void Lexer::openBracket(char bracket, const Place& place) {
  sources_.brackets.push_back({bracket, place});
}

bool Lexer::closeBracket(char bracket, const Place& place) {
  if (sources_.brackets.empty()) {
    diagnostics_.error(place, kUnopenedBracket);
    return false;
  }
  const Sources::Bracket opening = sources_.brackets.back();
  sources_.brackets.pop_back();
  if (closingOf(opening.character) != bracket) {
    diagnostics_.error(opening.place, kOtherClosingBracket);
    diagnostics_.error(place, kOtherOpeningBracket);
  }
  return true;
}

void Lexer::makeString(NQOMLToken& token, std::string_view text) {
  // A string ends at its first zero byte; what holds one is no string.
  if (text.find('\0') != std::string_view::npos) return;
  const nqLong index = names_.strings.add(text);
  if (index < 0) {
    diagnostics_.fatalError(placeOf(token), kMemoryExhausted);
    return;
  }
  token.tag = NQ_OML_STRING;
  token.integer(index);
}

void Lexer::makeEscapedString(NQOMLToken& token, std::string& text) {
  const UnescapedText rest = removeEscapeSequences(text.data(), text.size());
  if (rest.zeroCode) diagnostics_.error(placeOf(token), kUnexpectedToken);
  makeString(token, std::string_view(text.data(), rest.length));
}

}  // namespace nqdetail

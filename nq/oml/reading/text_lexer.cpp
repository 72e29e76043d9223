#include "nq/oml/reading/text_lexer.h"

#include <algorithm>
#include <new>

#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/encoding/number_scan.h"
#include "nq/oml/encoding/records.h"

namespace nqdetail {

namespace {

constexpr bool isSign(char c) {
  return c == '+' || c == '-';
}

// Whether `text`, which is not empty, is digits behind a sign or none.
constexpr bool isDigits(std::string_view text) {
  if (isSign(text[0])) text.remove_prefix(1);
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return isOf(c, kDigit); });
}

// Whether the digits from `start` to `end` and what follows begin a binary value.
bool beginsBinValue(const char* start, const char* end) {
  return start != end && *end == 'x' &&
         std::all_of(start, end, [](char c) { return c == '0'; });
}

constexpr bool isSeparator(char c) {
  return c == kScopeSeparator || c == kScopeSeparatorAlias;
}

void makeID(NQOMLToken& token, nqLong id) {
  token.tag = NQ_OML_OBJECT_ID;
  token.integer(id);
}

}  // namespace

// A run of characters never ends at the end of the window alone: behind it stands
// a zero byte, which belongs to no class, and then the window is moved on.

void TextLexer::takeRun(int classes, const char*& start) {
  Source& file = source();
  const char* at = file.at;
  for (;;) {
    while (isOf(*at, classes)) ++at;
    file.at = at;
    if (at != file.end || !file.more(start)) return;
    at = file.at;
  }
}

void TextLexer::takeNumber(const char*& start) {
  Source& file = source();
  do {
    file.at = endOfNumber(start, file.end);
  } while (file.at == file.end && file.more(start));
}

bool TextLexer::skipTextWhiteSpace() {
  Source& file = source();
  const char* at = file.at;
  for (;;) {
    while (isOf(*at, kBlank)) ++at;
    file.at = at;
    if (isOf(*at, kLineEnd)) {
      file.takeLineEnd();
    } else if (*at == '#') {
      skipToLineEnd();
    } else if (*at == '/') {
      const Place place = sources_.place();
      if (at + 1 == file.end) (void)file.more();
      if (file.at[1] == '/') {
        skipToLineEnd();
      } else if (file.at[1] == '*') {
        skipComment(place);
      } else {
        return true;
      }
    } else if (at != file.end) {
      return true;
    } else if (!file.more()) {
      return false;
    }
    at = file.at;
  }
}

void TextLexer::skipToLineEnd() {
  Source& file = source();
  while (file.hasByte()) {
    while (file.at != file.end && !isOf(*file.at, kLineEnd)) ++file.at;
    if (file.at != file.end) return;
  }
}

void TextLexer::skipComment(const Place& place) {
  Source& file = source();
  file.at += 2;
  for (bool star = false; file.hasByte();) {
    const char c = *file.at;
    if (isOf(c, kLineEnd)) {
      file.takeLineEnd();
    } else {
      ++file.at;
      if (star && c == '/') return;
    }
    star = c == '*';
  }
  unterminated(place, kUnterminatedComment);
}

void TextLexer::skipRestOfLine(bool ofBinaryValue) {
  if (sources_.empty()) return;
  do {
    if (!tookLineEnd_) {
      skipToLineEnd();
      if (source().hasByte()) source().takeLineEnd();
    }
  } while (ofBinaryValue && skipTextWhiteSpace() && skipBinValue());
}

void TextLexer::takeSemicolon() {
  if (!sources_.empty() && skipTextWhiteSpace() && *source().at == ';') ++source().at;
}

char TextLexer::signAhead() {
  if (holdsAhead() || diagnostics_.ended() || sources_.empty()) return '\0';
  return skipTextWhiteSpace() && !diagnostics_.ended() ? *source().at : '\0';
}

void TextLexer::takeSign(SourceToken& token) {
  token = SourceToken();
  begin(token, source().at);
  token.fileIndex = source().fileIndex();
  token.integer(*source().at);
  token.tag = *source().at == ';' ? NQ_OML_SEMICOLON : NQ_OML_COLON;
  ++source().at;
}

bool TextLexer::skipTo(std::size_t depth) {
  Source& file = source();
  while (file.hasByte()) {
    const char c = *file.at;
    if (isOf(c, kLineEnd)) {
      file.takeLineEnd();
      continue;
    }
    if (isOf(c, kOpening)) {
      openBracket(c, sources_.place());
    } else if (isOf(c, kClosing)) {
      (void)closeBracket(c, sources_.place());
      if (sources_.brackets.size() <= depth) {
        ++file.at;
        return true;
      }
    }
    ++file.at;
  }
  return false;
}

bool TextLexer::read(NQOMLToken& token) {
  for (;;) {
    if (!skipTextWhiteSpace()) return false;
    const char c = *source().at;
    token = NQOMLToken();
    tookLineEnd_ = false;
    begin(token, source().at);
    if (isOf(c, kNameStart)) {
      readIdentifier(token);
    } else if (isOf(c, kNumberPart) || isSign(c)) {
      readIntRealScopeOrIP(token);
    } else if (c == kQuote) {
      readString(token);
    } else if (c == kFullAddress) {
      readFullScope(token);
    } else {
      ++source().at;
      token.integer(c);
      if (c == ':' || c == '=') {
        token.tag = NQ_OML_COLON;
      } else if (c == ';') {
        token.tag = NQ_OML_SEMICOLON;
      } else if (isOf(c, kOpening)) {
        token.tag = NQ_OML_OPENING_BRACKET;
        openBracket(c, placeOf(token));
      } else if (isOf(c, kClosing)) {
        token.tag = NQ_OML_CLOSING_BRACKET;
        if (!closeBracket(c, placeOf(token))) continue;
      }
    }
    return true;
  }
}

void TextLexer::readIdentifier(NQOMLToken& token) {
  const char* start = source().at;
  takeRun(kNamePart, start);
  const char* const end = source().at;
  const std::string_view name(start, static_cast<std::size_t>(end - start));
  if (isSeparator(*end)) {
    readRemainingScope(token, names_.ids.withName(name));
    return;
  }
  if (names_.unchecked) {
    readFieldName(token, name);
    return;
  }
  if (const NameMeaning* const meaning = names_.meanings.lookup(name)) {
    token.tag = meaning->tag;
    token.integer(meaning->index);
    token.declared = meaning->declared;
    return;
  }
  makeID(token, names_.ids.withName(name));
}

void TextLexer::readFieldName(NQOMLToken& token, std::string_view name) {
  const NQStringPool& known = *names_.grammar.pFieldPool();
  nqLong index = known.lookup(name);
  if (index < 0) {
    const nqLong ignored = names_.ignoredFields.lookup(name);
    token.declared = ignored >= 0 ? 1 : 0;
    index = ignored >= 0 ? known.decodeTableMax() + ignored : names_.keptFieldIndex(name);
  }
  token.tag = NQ_OML_FIELD_NAME;
  token.integer(index);
}

bool TextLexer::readShortInteger(NQOMLToken& token) {
  constexpr int kMostDigits = 9;  // any such number is an nqLong
  Source& file = source();
  const bool negative = *file.at == '-';
  const char* const digits = file.at + (negative ? 1 : 0);
  const char* at = digits;
  nqLong value = 0;
  while (isOf(*at, kDigit) && at - digits < kMostDigits)
    value = 10 * value + (*at++ - '0');
  // What goes on behind the digits, perhaps behind the window, is of another kind.
  if (at == digits || at == file.end || isSeparator(*at) ||
      isOf(*at, kNamePart | kNumberPart)) {
    return false;
  }
  file.at = at;
  token.tag = NQ_OML_INTEGER;
  token.integer(negative ? -value : value);
  return true;
}

void TextLexer::readIntRealScopeOrIP(NQOMLToken& token) {
  if (readShortInteger(token)) return;
  const char* start = source().at;
  takeNumber(start);
  const char* const end = source().at;
  const std::string_view text(start, static_cast<std::size_t>(end - start));
  if (beginsBinValue(start, end)) {
    ++source().at;
    readBinValue(token);
    return;
  }
  const Number number = scanNumber(text);
  switch (number.kind) {
    case NumberKind::kInteger:
      token.tag = NQ_OML_INTEGER;
      token.integer(number.integer);
      if (isSeparator(*end)) {
        readRemainingScope(token, names_.ids.withNumber(number.integer));
      }
      break;
    case NumberKind::kReal:
      token.tag = NQ_OML_REAL;
      token.real(number.real);
      break;
    case NumberKind::kIPAddress:
      token.tag = NQ_OML_IP_ADDRESS;
      token.address(number.address);
      break;
    case NumberKind::kNone:
      // An integer out of range spoils the scope that it begins. Nothing else that is
      // not a number begins one: it ends at the separator.
      if (isSeparator(*end) && isDigits(text)) {
        readRemainingScope(token, IDTable::kTop);
      }
      token.tag = NQ_OML_UNRECOGNISED;
      break;
  }
}

void TextLexer::readBinValue(NQOMLToken& token) {
  token.tag = NQ_OML_BINARY_VALUE;
  Source& file = source();
  while (file.hasByte() && hexValue(*file.at) >= 0) {
    const int high = hexValue(*file.at++);
    int low = 0;
    if (file.hasByte()) {
      // Whatever stands in its place is taken for the low half.
      low = std::max(hexValue(*file.at), 0);
      tookLineEnd_ = isOf(*file.at, kLineEnd);
      if (tookLineEnd_) {
        file.takeLineEnd();
      } else {
        ++file.at;
      }
    }
    binary_.append(static_cast<char>(high << 4 | low));
  }
}

bool TextLexer::skipBinValue() {
  Source& file = source();
  const char* start = file.at;
  takeNumber(start);
  if (!beginsBinValue(start, file.at)) {
    file.at = start;
    return false;
  }
  ++file.at;
  tookLineEnd_ = false;
  NQOMLToken piece;
  readBinValue(piece);
  binary_.clear();
  return true;
}

void TextLexer::readString(NQOMLToken& token) {
  Source& file = source();
  const char* start = ++file.at;
  bool escaped = false;
  scratch_.clear();
  const auto keepLine = [&] {
    scratch_.append(start, file.at);
    scratch_ += '\n';
    file.takeLineEnd();
    start = file.at;
  };
  for (;;) {
    const char* at = file.at;
    while (!isOf(*at, kStringStop)) ++at;
    file.at = at;
    if (*at == kQuote) break;
    if (isOf(*at, kLineEnd)) {
      keepLine();
    } else if (*at == kEscape) {
      // What follows a backslash never ends the string.
      escaped = true;
      ++file.at;
      if (file.at == file.end && !file.more(start)) break;
      if (isOf(*file.at, kLineEnd)) {
        keepLine();
      } else {
        ++file.at;
      }
    } else if (!file.more(start)) {
      break;
    }
  }
  const std::string_view rest(start, static_cast<std::size_t>(file.at - start));
  if (file.at != file.end) {
    ++file.at;
  } else {
    unterminated(placeOf(token), kUnterminatedString);
    if (file.failed()) return;
  }
  if (!escaped && scratch_.empty()) {
    makeString(token, rest);
  } else {
    scratch_.append(rest);
    makeEscapedString(token, scratch_);
  }
}

void TextLexer::readFullScope(NQOMLToken& token) {
  ++source().at;
  const char next = source().hasByte() ? *source().at : '\0';
  if (isSeparator(next)) {
    readRemainingScope(token, IDTable::kTop);
  } else if (isOf(next, kNameStart | kDigit) || isSign(next)) {
    const nqLong id = readComponent(IDTable::kTop);
    if (id != IDTable::kNone) readRemainingScope(token, id);
  } else {
    makeID(token, IDTable::kTop);
  }
}

void TextLexer::readRemainingScope(NQOMLToken& token, nqLong id) {
  Source& file = source();
  while (file.hasByte() && isSeparator(*file.at)) {
    ++file.at;
    id = readComponent(id);
    if (id == IDTable::kNone) {
      while (file.hasByte() && isSeparator(*file.at)) ++file.at;
      token.tag = NQ_OML_UNRECOGNISED;
      return;
    }
  }
  makeID(token, id);
}

nqLong TextLexer::readComponent(nqLong scope) {
  Source& file = source();
  if (!file.hasByte()) return IDTable::kNone;
  const char* start = file.at;
  if (isOf(*start, kNameStart)) {
    takeRun(kNamePart, start);
    return names_.ids.withName({start, static_cast<std::size_t>(file.at - start)}, scope);
  }
  if (isSign(*start)) ++file.at;
  takeRun(kDigit, start);
  nqLong number = 0;
  const std::string_view digits(start, static_cast<std::size_t>(file.at - start));
  return scanInteger(digits, number) ? names_.ids.withNumber(number, scope)
                                     : IDTable::kNone;
}

}  // namespace nqdetail

#include "nq/oml/reading/binary_lexer.h"

#include <algorithm>
#include <charconv>

#include "nq/core/real_scan_internal.h"
#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/encoding/escapes.h"
#include "nq/oml/encoding/number_scan.h"
#include "nq/oml/encoding/records.h"

namespace nqdetail {

namespace {

// The powers of ten that a double holds exactly.
constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr nqLong kLargestPower = 22;

// mantissa * 10^exponent, rounded once; false when it is too large.
bool scaled(nqLong mantissa, nqLong exponent, double& value) {
  if (exponent >= -kLargestPower && exponent <= kLargestPower) {
    value = exponent < 0 ? mantissa / kPowers[-exponent] : mantissa * kPowers[exponent];
    return true;
  }
  char text[32];
  char* end = std::to_chars(text, text + 12, mantissa).ptr;
  *end++ = 'e';
  end = std::to_chars(end, text + sizeof text, exponent).ptr;
  return scanDecimal(text, end, value).ec == std::errc();
}

}  // namespace

bool BinaryLexer::read(NQOMLToken& token) {
  while (source().hasByte()) {
    token = NQOMLToken();
    begin(token, source().at);
    const char c = *source().at++;
    if (isOf(c, kOpening)) {
      token.tag = NQ_OML_OPENING_BRACKET;
      token.integer(c);
      openBracket(c, placeOf(token));
    } else if (isOf(c, kClosing)) {
      token.tag = NQ_OML_CLOSING_BRACKET;
      token.integer(c);
      if (!closeBracket(c, placeOf(token))) continue;
    } else {
      readRecord(token, c);
    }
    return true;
  }
  return false;
}

void BinaryLexer::skipRestOfLine(bool ofBinaryValue) {
  const SourceToken* const ahead = ofBinaryValue ? lookAhead() : nullptr;
  SourceToken pieces;
  if (ahead != nullptr && ahead->tag == NQ_OML_BINARY_VALUE && next(pieces)) {
    pieces.deleteValue();
  }
}

bool BinaryLexer::skipTo(std::size_t depth) {
  NQOMLToken token;
  while (sources_.brackets.size() > depth) {
    if (diagnostics_.ended() || !read(token)) return false;
    if (token.tag == NQ_OML_BINARY_VALUE) binary_.clear();
  }
  return true;
}

void BinaryLexer::readRecord(NQOMLToken& token, char letter) {
  switch (letter) {
    case kQuote:
      readText(token);
      if (source().failed()) return;
      makeEscapedString(token, scratch_);
      return;
    case kObjectIDText:
      readID(token, IDTable::kNone);
      return;
    case kFullAddress:
      readID(token, IDTable::kTop);
      return;
    case kBinaryValue:
      readBinValue(token);
      return;
    default:
      break;
  }

  const auto isIndexOf = [](nqLong index, nqLong count) {
    return index >= 0 && index < count;
  };
  const NQOMLStatic& grammar = names_.grammar;
  NQOMLTokenTagEnum tag = NQ_OML_UNRECOGNISED;
  std::uint32_t value = 0;
  if (!isRecord(letter) || !readValue(letter, value)) return;
  const auto index = static_cast<nqLong>(value);
  switch (longForm(letter)) {
    case kEnumeratorRecord:
      if (isIndexOf(index, grammar.pEnumPool()->decodeTableMax()))
        tag = NQ_OML_ENUMERATOR;
      break;
    case kFieldRecord: {
      const nqLong known = grammar.pFieldPool()->decodeTableMax();
      if (isIndexOf(index, known + names_.ignoredFields.decodeTableMax())) {
        tag = NQ_OML_FIELD_NAME;
        token.declared = index >= known ? 1 : 0;
      }
      break;
    }
    case kSectionRecord:
      if (isIndexOf(index, grammar.pSectionPool()->decodeTableMax() +
                               names_.declaredSections.decodeTableMax())) {
        tag = NQ_OML_SECTION_NAME;
      }
      break;
    case kObjectTypeRecord:
      if (isIndexOf(index, grammar.pObjTypePool()->decodeTableMax())) {
        tag = NQ_OML_OBJECT_TYPE_NAME;
      }
      break;
    case kIntegerRecord:
      tag = NQ_OML_INTEGER;
      break;
    case kIPAddressRecord:
      tag = NQ_OML_IP_ADDRESS;
      break;
    case kRealRecord:
      readReal(token, index);
      return;
    default:
      break;
  }
  token.tag = tag;
  token.address(value);
}

bool BinaryLexer::readValue(char letter, std::uint32_t& value) {
  value = 0;
  for (int bytes = isLongForm(letter) ? 4 : 1; bytes > 0; --bytes) {
    if (!source().hasByte()) return false;
    value = value << 8 | static_cast<unsigned char>(*source().at++);
  }
  return true;
}

bool BinaryLexer::readNumber(char letter, nqLong& value) {
  if (!source().hasByte()) return false;
  const char found = *source().at;
  if (found != letter && found != shortForm(letter)) return false;
  ++source().at;
  std::uint32_t bits = 0;
  if (!readValue(found, bits)) return false;
  value = static_cast<nqLong>(bits);
  return true;
}

void BinaryLexer::readReal(NQOMLToken& token, nqLong mantissa) {
  nqLong exponent = 0;
  double value = 0;
  if (!readNumber(kRealRecord, exponent) || !scaled(mantissa, exponent, value)) return;
  token.tag = NQ_OML_REAL;
  token.real(value);
}

void BinaryLexer::readBinValue(NQOMLToken& token) {
  nqLong length = 0;
  if (!readNumber(kIntegerRecord, length) || length < 0) return;
  token.tag = NQ_OML_BINARY_VALUE;
  Source& file = source();
  for (auto missing = static_cast<std::size_t>(length); missing > 0;) {
    if (!file.hasByte()) {
      unterminated(placeOf(token), kUnterminatedBinaryValue);
      return;
    }
    const std::size_t count =
        std::min(missing, static_cast<std::size_t>(file.end - file.at));
    binary_.append({file.at, count});
    file.at += count;
    missing -= count;
  }
}

void BinaryLexer::readText(const NQOMLToken& token) {
  scratch_.clear();
  Source& file = source();
  bool escaped = false;
  while (file.hasByte()) {
    const char* const start = file.at;
    for (; file.at != file.end; ++file.at) {
      if (escaped) {
        escaped = false;
      } else if (*file.at == kEscape) {
        escaped = true;
      } else if (*file.at == kQuote) {
        scratch_.append(start, file.at);
        ++file.at;
        return;
      }
    }
    scratch_.append(start, file.at);
  }
  unterminated(placeOf(token), kUnterminatedString);
}

// Nearly every id is a number, which the window shows whole.
bool BinaryLexer::readNumberedID(NQOMLToken& token, nqLong scope) {
  Source& file = source();
  const char* at = file.at;
  while (isOf(*at, kDigit) || *at == '-') ++at;
  const std::string_view text(file.at, static_cast<std::size_t>(at - file.at));
  nqLong number = 0;
  if (*at != kQuote || !scanInteger(text, number)) return false;
  // A number with needless zeros is a name.
  if (text.size() > 1 && text[text[0] == '-' ? 1 : 0] == '0') return false;
  file.at = at + 1;
  token.tag = NQ_OML_OBJECT_ID;
  token.integer(names_.ids.withNumber(number, scope));
  return true;
}

void BinaryLexer::readID(NQOMLToken& token, nqLong scope) {
  if (readNumberedID(token, scope)) return;
  readText(token);
  const UnescapedText rest = removeEscapeSequences(scratch_.data(), scratch_.size());
  std::string_view text(scratch_.data(), rest.length);
  if (rest.zeroCode || text.find('\0') != std::string_view::npos) return;
  // A full address may begin with the separator that its text would have there.
  if (scope != IDTable::kNone && !text.empty() && text[0] == kScopeSeparator) {
    text.remove_prefix(1);
  }
  const bool whole = scope != IDTable::kNone && text.empty();
  token.tag = NQ_OML_OBJECT_ID;
  token.integer(whole ? scope : names_.ids.withText(text, scope));
}

}  // namespace nqdetail

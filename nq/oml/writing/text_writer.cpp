#include "nq/oml/writing/text_writer.h"

#include <algorithm>
#include <cstring>

#include "nq/oml/bin_value.h"
#include "nq/oml/encoding/number_text.h"
#include "nq/oml/encoding/records.h"

namespace nqdetail {

namespace {

constexpr std::string_view kEndOfLine = "\r\n";
constexpr std::string_view kBeforeValue = ": ";
constexpr std::string_view kBeforeBytes = "0x";

// A binary value stands on the line of its name up to a line's bytes, then in a
// block of such lines, and beyond kBytesOfBlock in wide lines at the margin.
constexpr std::size_t kBytesOfLine = 16;
constexpr std::size_t kBytesOfBlock = 256;
constexpr std::size_t kBytesOfWideLine = 32;

constexpr std::size_t kPieceOfString = 4096;

char* put(char* at, std::string_view text) {
  std::memcpy(at, text.data(), text.size());
  return at + text.size();
}

}  // namespace

TextWriter::TextWriter(const WriteSettings& settings)
    : Writer(settings), escapes_(settings.lossless ? kLosslessEscapes : kPlainEscapes) {}

char* TextWriter::begin(std::size_t count) {
  const auto tabs = static_cast<std::size_t>(std::max(depth_, nqLong{0}));
  char* const at = output_.room(tabs + 1 + count + kEndOfLine.size());
  if (singleLine_) {
    *at = ' ';
    return at + 1;
  }
  std::memset(at, '\t', tabs);
  return at + tabs;
}

char* TextWriter::beginValue(std::string_view name, std::size_t count) {
  char* const at = begin(name.size() + kBeforeValue.size() + count);
  return put(put(at, name), kBeforeValue);
}

void TextWriter::end(char* at) {
  if (singleLine_) {
    output_.written(at);
  } else {
    endLine(at);
  }
}

void TextWriter::endLine(char* at) {
  output_.written(put(at, kEndOfLine));
}

void TextWriter::objectStart(const char* type, std::string_view id, bool singleLine) {
  if (type == nullptr) return;
  const std::string_view name = type;
  char* at = put(begin(name.size() + kBeforeValue.size() + id.size()), name);
  at = put(at, id.empty() ? kBeforeValue.substr(0, 1) : kBeforeValue);
  at = put(at, id);
  singleLine_ = singleLine;
  end(at);
}

void TextWriter::defaultsStart(const char* type) {
  objectStart(type, kDefaultsID, singleLine_);
}

void TextWriter::sectionStart(const char* section, bool singleLine) {
  if (section == nullptr) return;
  char* const at = beginValue(section, 0);
  singleLine_ = singleLine;
  end(at);
}

void TextWriter::openingBracket() {
  char* at = begin(1);
  *at++ = kOpeningBracket;
  end(at);
  ++depth_;
}

void TextWriter::closingBracket() {
  --depth_;
  char* at = begin(1);
  *at++ = kClosingBracket;
  endLine(at);
  singleLine_ = false;
}

void TextWriter::blankLine() {
  endLine(output_.room(kEndOfLine.size()));
}

void TextWriter::word(const char* name, const char* word) {
  if (name == nullptr || word == nullptr) return;
  const std::string_view text = word;
  end(put(beginValue(name, text.size()), text));
}

void TextWriter::integer(const char* name, nqLong value) {
  if (name != nullptr) end(putInteger(beginValue(name, kIntegerText), value));
}

void TextWriter::real(const char* name, double value) {
  value = finite(value);
  if (name == nullptr) return;
  char* const at = beginValue(name, kRealText);
  end(lossless() ? putShortestReal(at, value) : putReal(at, value));
}

void TextWriter::string(const char* name, std::string_view text) {
  if (name == nullptr) return;
  char* at = beginValue(name, 1);
  *at++ = kQuote;
  while (text.size() > kPieceOfString) {
    output_.written(at);
    at = output_.room(kPieceOfString * kLongestEscape);
    at = putEscaped(at, text.substr(0, kPieceOfString), escapes_);
    text.remove_prefix(kPieceOfString);
  }
  output_.written(at);
  at = output_.room(text.size() * kLongestEscape + 1 + kEndOfLine.size());
  at = putEscaped(at, text, escapes_);
  *at++ = kQuote;
  end(at);
}

void TextWriter::ipAddress(const char* name, nqULong address) {
  if (name == nullptr) return;
  char* at = beginValue(name, 4 * kIntegerText);
  for (int shift = 24; shift >= 0; shift -= 8) {
    at = putInteger(at, static_cast<nqLong>(address >> shift & 0xFF));
    if (shift > 0) *at++ = '.';
  }
  end(at);
}

void TextWriter::binaryValue(const char* name, const NQOMLBinValue& value) {
  if (name == nullptr) return;
  std::string_view bytes(value.pByteSequence(), static_cast<std::size_t>(value.length()));
  char* at = beginValue(name, kBeforeBytes.size() + 2 * kBytesOfLine);
  if (bytes.size() <= kBytesOfLine) {
    end(putBytes(at, bytes));
    return;
  }
  endLine(at);
  const bool wide = bytes.size() > kBytesOfBlock;
  const std::size_t line = wide ? kBytesOfWideLine : kBytesOfLine;
  const auto tabs =
      wide ? std::size_t{0} : static_cast<std::size_t>(std::max(depth_ + 1, nqLong{0}));
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, line);
    at = output_.room(tabs + kBeforeBytes.size() + 2 * line + kEndOfLine.size());
    std::memset(at, '\t', tabs);
    endLine(putBytes(at + tabs, piece));
    bytes.remove_prefix(piece.size());
  }
}

char* TextWriter::putBytes(char* at, std::string_view bytes) {
  at = put(at, kBeforeBytes);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    *at++ = kHexDigits[byte >> 4];
    *at++ = kHexDigits[byte & 15];
  }
  return at;
}

char* TextWriter::beginReference(const char* name, std::size_t count) {
  return name == nullptr ? begin(count) : beginValue(name, count);
}

void TextWriter::sibling(const char* name, nqLong id) {
  end(putInteger(beginReference(name, kIntegerText), id));
}

void TextWriter::address(const char* name, std::string_view address) {
  end(put(beginReference(name, address.size()), address));
}

}  // namespace nqdetail

#include "nq/file/text_file.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <system_error>
#include <type_traits>
#include <typeinfo>

#include "nq/core/format_internal.h"
#include "nq/core/real_scan_internal.h"

namespace {

constexpr const char* kLineEnd = "\r\n";

// A number as text: an integer, or a double with six digits behind its point
// and up to 309 before it.
class NumberText {
 public:
  template <class Integer>
  explicit NumberText(Integer value) {
    *std::to_chars(text_.data(), text_.data() + text_.size() - 1, value).ptr = '\0';
  }
  explicit NumberText(double value) {
    *std::to_chars(text_.data(), text_.data() + text_.size() - 1, value,
                   std::chars_format::fixed, 6)
         .ptr = '\0';
  }
  const char* pText() const { return text_.data(); }

 private:
  std::array<char, 320> text_;
};

// The one number of a format is at most 253 characters long.
std::unique_ptr<char[]> formatted(double value, const char* format) {
  const std::size_t size = std::strlen(format) + 254;
  auto text = std::make_unique<char[]>(size);
  const nqdetail::FormatArgument argument = value;
  nqdetail::formatText(text.get(), size, format, {&argument, 1});
  return text;
}

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Passes over blanks and a sign; returns the place behind them.
const char* skipSign(const char* text, bool* negative) {
  while (isBlank(*text)) ++text;
  *negative = *text == '-';
  return *text == '-' || *text == '+' ? text + 1 : text;
}

template <class Integer>
bool scanInteger(const char* text, Integer& value) {
  using Limits =
      std::numeric_limits<std::conditional_t<std::is_signed_v<Integer>, nqLong, nqULong>>;
  bool negative;
  text = skipSign(text, &negative);
  std::uint64_t magnitude = 0;
  const auto result = std::from_chars(text, text + std::strlen(text), magnitude);
  if (result.ec != std::errc()) return false;
  const bool oneMore = Limits::is_signed && negative;
  if (magnitude > static_cast<std::uint64_t>(Limits::max()) + (oneMore ? 1 : 0)) {
    return false;
  }
  const auto low = static_cast<std::uint32_t>(magnitude);
  value = static_cast<std::conditional_t<Limits::is_signed, std::int32_t, std::uint32_t>>(
      negative ? 0 - low : low);
  return true;
}

bool isHexadecimal(const char* text) {
  if (text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
  const char first = text[2] == '.' ? text[3] : text[2];
  return (first >= '0' && first <= '9') || (first >= 'a' && first <= 'f') ||
         (first >= 'A' && first <= 'F');
}

bool scanReal(const char* text, double& value) {
  bool negative;
  text = skipSign(text, &negative);
  if (*text == '-') return false;
  const char* const end = text + std::strlen(text);
  double magnitude = 0;
  const auto result = isHexadecimal(text) ? std::from_chars(text + 2, end, magnitude,
                                                            std::chars_format::hex)
                                          : nqdetail::scanDecimal(text, end, magnitude);
  if (result.ec != std::errc()) return false;
  value = negative ? -magnitude : magnitude;
  return true;
}

bool scanTruth(const char* text, int& value) {
  const bool isTrue = std::strncmp(text, "TRUE", 4) == 0;
  if (!isTrue && std::strncmp(text, "FALSE", 5) != 0) return false;
  value = isTrue ? 1 : 0;
  return true;
}

}  // namespace

NQ_COPY_PROTOCOL_IMPL(NQTextFile)

void NQTextFile::NQTextFiledeepCopy(const NQTextFile& source) {
  NQCopyAccess::deep<NQFile>(*this, source);
}

void NQTextFile::NQTextFileattributeCopy(const NQTextFile& source) {
  NQCopyAccess::attributes<NQFile>(*this, source);
}

NQTextFile::~NQTextFile() = default;

NQFileCodeEnum NQTextFile::write(const char* text) {
  return writeString(text);
}

NQFileCodeEnum NQTextFile::write(int value) {
  return write(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::write(unsigned int value) {
  return write(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::write(long value) {
  return write(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::write(unsigned long value) {
  return write(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::write(long long value) {
  return write(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::write(unsigned long long value) {
  return write(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::write(double value) {
  return write(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::write(double value, const char* format) {
  return write(format == nullptr ? nullptr : formatted(value, format).get());
}

NQFileCodeEnum NQTextFile::writeLine(const char* text) {
  if (writeString(text) == NQ_FILE_OK && writeString(kLineEnd) == NQ_FILE_OK) {
    return NQ_FILE_OK;
  }
  error(1);
  return NQ_FILE_WRITE_ERROR;
}

NQFileCodeEnum NQTextFile::writeLine(int value) {
  return writeLine(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::writeLine(unsigned int value) {
  return writeLine(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::writeLine(long value) {
  return writeLine(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::writeLine(unsigned long value) {
  return writeLine(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::writeLine(long long value) {
  return writeLine(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::writeLine(unsigned long long value) {
  return writeLine(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::writeLine(double value) {
  return writeLine(NumberText(value).pText());
}

NQFileCodeEnum NQTextFile::writeLine(double value, const char* format) {
  return writeLine(format == nullptr ? nullptr : formatted(value, format).get());
}

NQFileCodeEnum NQTextFile::writeTrueOrFalse(int value) {
  return write(value != 0 ? "TRUE" : "FALSE");
}

NQFileCodeEnum NQTextFile::writeLineTrueOrFalse(int value) {
  return writeLine(value != 0 ? "TRUE" : "FALSE");
}

NQFileCodeEnum NQTextFile::readLine(NQStringHandle& out) {
  const int before = error();
  // In a file of this very class nothing is overridden: a line end that would
  // be stripped again need not be added.
  const bool plain = &typeid(*this) == &typeid(NQTextFile);
  if ((plain ? readBareString(out) : readString(out)) != NQ_FILE_OK) {
    error(endOfFile() ? before : 1);
    return NQ_FILE_READ_ERROR;
  }
  if (!plain || !buffered()) stripInPlace(out);
  return NQ_FILE_OK;
}

NQFileCodeEnum NQTextFile::readLine(int& value) {
  return readValue(value, scanInteger<int>);
}

NQFileCodeEnum NQTextFile::readLine(unsigned int& value) {
  return readValue(value, scanInteger<unsigned int>);
}

NQFileCodeEnum NQTextFile::readLine(long& value) {
  return readValue(value, scanInteger<long>);
}

NQFileCodeEnum NQTextFile::readLine(unsigned long& value) {
  return readValue(value, scanInteger<unsigned long>);
}

NQFileCodeEnum NQTextFile::readLine(double& value) {
  return readValue(value, scanReal);
}

NQFileCodeEnum NQTextFile::readLineTrueOrFalse(int& value) {
  return readValue(value, scanTruth);
}

nqLong NQTextFile::sizeOf() const {
  return NQFile::sizeOf();
}

char* NQTextFile::stripBuffer(char* text) {
  if (text == nullptr) return nullptr;
  std::size_t length = std::strlen(text);
  while (length > 0 && isCntrl(text[length - 1])) --length;
  text[length] = '\0';
  return text;
}

int NQTextFile::isDoubleSlashString(const char* text) {
  return text != nullptr && text[0] == '/' && text[1] == '/';
}

// The one character by which an override may lengthen the text goes into the byte
// that a handle has to spare.
void NQTextFile::stripInPlace(NQStringHandle& line) {
  char* const text = line.pChangeableString();
  const char* const stripped = stripBuffer(text);
  if (stripped == text) return;
  const std::string copy = stripped == nullptr ? "" : stripped;  // may lie in `text`
  line.empty();
  line.appendText(copy);
}

template <class Value>
NQFileCodeEnum NQTextFile::readValue(Value& value, bool (*scan)(const char*, Value&)) {
  NQStringHandle line;
  if (readLine(line) == NQ_FILE_OK && scan(line.pString(), value)) return NQ_FILE_OK;
  if (!endOfFile()) error(1);
  return NQ_FILE_READ_ERROR;
}

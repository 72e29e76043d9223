#include "nq/core/format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

#include "nq/core/format_internal.h"

namespace nqdetail {

namespace {

// The longest piece that one number, character or pointer adds.
constexpr std::size_t kMaxPiece = 253;

// Widths and precisions above it are taken as it: large enough that nothing
// changes within the first kMaxPiece characters.
constexpr int kMaxCount = 10000;

// No double has a digit other than 0 further behind its point, and none has as
// many significant ones: a higher precision only adds zeros, which are cut.
constexpr int kMaxRealPrecision = 1074;

// The digits before and behind the point, the point itself, the exponent.
constexpr std::size_t kMaxReal =
    std::numeric_limits<double>::max_exponent10 + kMaxRealPrecision + 16;

// Where the arguments come from. Each function takes the next one; a null text
// adds nothing, and so does an argument that is not there.
class ArgumentSource {
 public:
  virtual std::optional<std::uint32_t> nextInteger() = 0;
  virtual std::optional<double> nextReal() = 0;
  virtual std::optional<const void*> nextPointer() = 0;
  virtual const char* nextText() = 0;

 protected:
  ~ArgumentSource() = default;
};

class VariadicArguments final : public ArgumentSource {
 public:
  explicit VariadicArguments(va_list* list) : list_(list) {}

  std::optional<std::uint32_t> nextInteger() override {
    return va_arg(*list_, std::uint32_t);
  }
  std::optional<double> nextReal() override { return va_arg(*list_, double); }
  std::optional<const void*> nextPointer() override { return va_arg(*list_, void*); }
  const char* nextText() override { return va_arg(*list_, const char*); }

 private:
  va_list* list_;
};

class TypedArguments final : public ArgumentSource {
 public:
  explicit TypedArguments(std::span<const FormatArgument> list) : rest_(list) {}

  std::optional<std::uint32_t> nextInteger() override { return next<std::uint32_t>(); }
  std::optional<double> nextReal() override { return next<double>(); }
  std::optional<const void*> nextPointer() override { return next<const void*>(); }
  const char* nextText() override { return next<const char*>().value_or(nullptr); }

 private:
  template <class Type>
  std::optional<Type> next() {
    if (rest_.empty()) return std::nullopt;
    const Type* const value = rest_.front().valueAs<Type>();
    rest_ = rest_.subspan(1);
    return value == nullptr ? std::nullopt : std::optional<Type>(*value);
  }

  std::span<const FormatArgument> rest_;
};

// The bounded output. It is terminated after every addition, so that a text
// argument may be the output itself: what it holds so far is then added.
class Output {
 public:
  Output(char* data, std::size_t size) : data_(data), size_(size) {
    if (size_ > 0) data_[0] = '\0';
  }

  void add(std::string_view text) {
    if (length_ + 1 < size_) {
      const std::size_t count = std::min(text.size(), size_ - 1 - length_);
      std::memcpy(data_ + length_, text.data(), count);
      data_[length_ + count] = '\0';
    }
    length_ += text.size();
  }

  std::size_t length() const { return length_; }

 private:
  char* data_;
  std::size_t size_;
  std::size_t length_ = 0;  // of the whole text, whatever fitted
};

struct Specification {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool alternate = false;
  bool zeroFill = false;
  bool usable = true;  // false with a "*"
  int width = 0;
  int precision = -1;      // -1: none given
  int shorts = 0;          // how many "h"
  char conversion = '\0';  // '\0': cut off by the format's end
};

const char* readFlags(const char* text, Specification* specification) {
  for (;; ++text) {
    switch (*text) {
      case '-':
        specification->left = true;
        break;
      case '+':
        specification->plus = true;
        break;
      case ' ':
        specification->blank = true;
        break;
      case '#':
        specification->alternate = true;
        break;
      case '0':
        specification->zeroFill = true;
        break;
      case '\'':  // groups of thousands: the "C" locale has none
        break;
      default:
        return text;
    }
  }
}

// Digits, or the "*" that makes the conversion unusable.
const char* readCount(const char* text, int* count, Specification* specification) {
  *count = 0;
  if (*text == '*') {
    specification->usable = false;
    return text + 1;
  }
  for (; *text >= '0' && *text <= '9'; ++text) {
    *count = std::min(*count * 10 + (*text - '0'), kMaxCount);
  }
  return text;
}

const char* readLength(const char* text, Specification* specification) {
  for (;; ++text) {
    switch (*text) {
      case 'h':
        ++specification->shorts;
        break;
      case 'I':
        if (std::strncmp(text + 1, "64", 2) == 0 ||
            std::strncmp(text + 1, "32", 2) == 0) {
          text += 2;
        }
        break;
      case 'L':
      case 'j':
      case 'l':
      case 't':
      case 'w':
      case 'z':
        break;
      default:
        return text;
    }
  }
}

// Reads what follows the "%" and returns the place behind it.
const char* readSpecification(const char* text, Specification* specification) {
  text = readFlags(text, specification);
  text = readCount(text, &specification->width, specification);
  if (*text == '.') {
    text = readCount(text + 1, &specification->precision, specification);
  }
  text = readLength(text, specification);
  specification->conversion = *text;
  return *text == '\0' ? text : text + 1;
}

class Piece {
 public:
  void add(std::string_view text) {
    const std::size_t count = std::min(text.size(), kMaxPiece - length_);
    std::memcpy(text_ + length_, text.data(), count);
    length_ += count;
  }
  void add(std::size_t count, char c) {
    count = std::min(count, kMaxPiece - length_);
    std::memset(text_ + length_, c, count);
    length_ += count;
  }

  void makeUpper() {
    for (char* c = text_; c != text_ + length_; ++c) {
      if (*c >= 'a' && *c <= 'z') *c = static_cast<char>(*c - 'a' + 'A');
    }
  }

  std::string_view text() const { return {text_, length_}; }

 private:
  char text_[kMaxPiece];
  std::size_t length_ = 0;
};

enum class ZeroFill { kAllowed, kNever };

// The prefix and the digits, these filled up to `minDigits` with zeros, in the
// width and the case that the conversion asks for.
Piece layOut(const Specification& specification, std::string_view prefix,
             std::string_view digits, std::size_t minDigits, ZeroFill zeroFill) {
  std::size_t zeros = minDigits > digits.size() ? minDigits - digits.size() : 0;
  const std::size_t used = prefix.size() + zeros + digits.size();
  const auto width = static_cast<std::size_t>(specification.width);
  std::size_t blanks = width > used ? width - used : 0;
  if (zeroFill == ZeroFill::kAllowed && specification.zeroFill && !specification.left) {
    zeros += blanks;
    blanks = 0;
  }
  Piece piece;
  if (!specification.left) piece.add(blanks, ' ');
  piece.add(prefix);
  piece.add(zeros, '0');
  piece.add(digits);
  if (specification.left) piece.add(blanks, ' ');
  if (std::strchr("EGXp", specification.conversion) != nullptr) piece.makeUpper();
  return piece;
}

std::string_view signFor(const Specification& specification, bool negative) {
  if (negative) return "-";
  if (specification.plus) return "+";
  return specification.blank ? " " : "";
}

Piece integerPiece(const Specification& specification, std::uint32_t bits) {
  const char conversion = specification.conversion;
  const bool isSigned = conversion == 'd' || conversion == 'i';
  const bool isHexadecimal = conversion == 'x' || conversion == 'X';

  // One "h" leaves 16 bits of the number, two leave 8.
  const int shift = specification.shorts == 0 ? 0 : specification.shorts == 1 ? 16 : 24;
  const std::uint32_t highest = bits << shift;
  const bool negative = isSigned && highest >> 31 != 0;
  const std::uint32_t magnitude = (negative ? 0 - highest : highest) >> shift;

  char text[16];
  const int base = isHexadecimal ? 16 : conversion == 'o' ? 8 : 10;
  char* const end = std::to_chars(text, text + sizeof text, magnitude, base).ptr;
  std::string_view digits(text, static_cast<std::size_t>(end - text));
  if (magnitude == 0 && specification.precision == 0) digits = "";

  std::string_view prefix = isSigned ? signFor(specification, negative) : "";
  auto minDigits = static_cast<std::size_t>(std::max(specification.precision, 0));
  if (specification.alternate) {
    if (isHexadecimal && magnitude != 0) prefix = "0x";
    if (conversion == 'o' && !digits.starts_with('0')) {
      minDigits = std::max(minDigits, digits.size() + 1);
    }
  }
  return layOut(specification, prefix, digits, minDigits,
                specification.precision < 0 ? ZeroFill::kAllowed : ZeroFill::kNever);
}

Piece realPiece(const Specification& specification, double value) {
  const char conversion = specification.conversion;
  const bool isGeneral = conversion == 'g' || conversion == 'G';
  const std::string_view sign = signFor(specification, std::signbit(value));
  if (!std::isfinite(value)) {
    const char* const name = std::isnan(value) ? "nan" : "inf";
    return layOut(specification, sign, name, 0, ZeroFill::kNever);
  }

  char text[kMaxReal];
  const auto print = [&](std::chars_format format, int precision) {
    return std::to_chars(text, text + sizeof text, std::fabs(value), format, precision)
        .ptr;
  };
  const auto exponentIn = [&text](char* end) { return std::find(text, end, 'e'); };

  int precision = specification.precision < 0
                      ? 6
                      : std::min(specification.precision, kMaxRealPrecision);
  char* end;
  if (isGeneral) {
    // The precision counts significant digits; the exponent after rounding to
    // them decides between the two forms.
    precision = std::max(precision, 1);
    end = print(std::chars_format::scientific, precision - 1);
    const char* const digits = exponentIn(end) + 1;
    int exponent = 0;
    std::from_chars(*digits == '+' ? digits + 1 : digits, end, exponent);
    if (exponent >= -4 && exponent < precision) {
      end = print(std::chars_format::fixed, precision - 1 - exponent);
    }
  } else if (conversion == 'f') {
    end = print(std::chars_format::fixed, precision);
  } else {
    end = print(std::chars_format::scientific, precision);
  }

  char* const mantissaEnd = exponentIn(end);
  const bool hasPoint = std::find(text, mantissaEnd, '.') != mantissaEnd;
  if (specification.alternate && !hasPoint) {
    std::memmove(mantissaEnd + 1, mantissaEnd,
                 static_cast<std::size_t>(end - mantissaEnd));
    *mantissaEnd = '.';
    ++end;
  } else if (isGeneral && !specification.alternate && hasPoint) {
    char* last = mantissaEnd;
    while (last[-1] == '0') --last;
    if (last[-1] == '.') --last;
    end = std::copy(mantissaEnd, end, last);
  }
  return layOut(specification, sign, {text, static_cast<std::size_t>(end - text)}, 0,
                ZeroFill::kAllowed);
}

Piece pointerPiece(const Specification& specification, const void* pointer) {
  char text[16];
  char* const end = std::to_chars(text, text + sizeof text,
                                  reinterpret_cast<std::uintptr_t>(pointer), 16)
                        .ptr;
  return layOut(specification, "", {text, static_cast<std::size_t>(end - text)},
                sizeof text, ZeroFill::kNever);
}

// Takes the argument of a specification and adds what it becomes.
void addConverted(const Specification& specification, ArgumentSource& arguments,
                  Output& output) {
  switch (specification.conversion) {
    case 'S':
    case 's':
      if (const char* const text = arguments.nextText()) output.add(text);
      break;
    case 'X':
    case 'd':
    case 'i':
    case 'o':
    case 'u':
    case 'x':
      if (const auto bits = arguments.nextInteger()) {
        output.add(integerPiece(specification, *bits).text());
      }
      break;
    case 'c':
      if (const auto code = arguments.nextInteger()) {
        const char c = static_cast<char>(*code);
        const Piece piece = layOut(specification, "", {&c, 1}, 0, ZeroFill::kNever);
        // A zero character ends the piece as it would end any text.
        output.add(piece.text().substr(0, piece.text().find('\0')));
      }
      break;
    case 'E':
    case 'G':
    case 'e':
    case 'f':
    case 'g':
      if (const auto value = arguments.nextReal()) {
        output.add(realPiece(specification, *value).text());
      }
      break;
    case 'p':
      if (const auto pointer = arguments.nextPointer()) {
        output.add(pointerPiece(specification, *pointer).text());
      }
      break;
    default:
      break;
  }
}

std::size_t formatFrom(ArgumentSource& arguments, char* output, std::size_t size,
                       const char* format) {
  Output out(output, size);
  if (format == nullptr) return 0;
  while (*format != '\0') {
    const std::size_t plain = std::strcspn(format, "%");
    out.add({format, plain});
    format += plain;
    if (*format == '\0') break;
    ++format;
    if (*format == '%') {
      out.add("%");
      ++format;
      continue;
    }
    Specification specification;
    format = readSpecification(format, &specification);
    if (specification.usable) addConverted(specification, arguments, out);
  }
  return out.length();
}

// The public functions trust the caller's size.
int formatUnbounded(char* output, const char* format, va_list* list) {
  VariadicArguments arguments(list);
  const std::size_t size =
      output == nullptr ? 0 : std::numeric_limits<std::size_t>::max();
  const std::size_t length = formatFrom(arguments, output, size, format);
  if (output == nullptr) return 0;
  return static_cast<int>(std::min<std::size_t>(length, std::numeric_limits<int>::max()));
}

}  // namespace

std::size_t formatText(char* output, std::size_t size, const char* format,
                       std::span<const FormatArgument> arguments) {
  TypedArguments source(arguments);
  return formatFrom(source, output, size, format);
}

}  // namespace nqdetail

int nq_vs8_nqprintf(char* output, const char* format, ...) {
  va_list list;
  va_start(list, format);
  const int length = nqdetail::formatUnbounded(output, format, &list);
  va_end(list);
  return length;
}

int nq_vs8_ansi_sprintf(char* output, const char* format, ...) {
  va_list list;
  va_start(list, format);
  const int length = nqdetail::formatUnbounded(output, format, &list);
  va_end(list);
  return length;
}

// records.h -- what the two encodings are made of, for reader and writer.
//
// Text encoding: names and values separated by blanks. Binary encoding: every
// name, number and marker is one record, a letter and its value; a lower-case
// letter is followed by one unsigned byte, an upper-case letter by four, most
// significant first. Texts are a marker, their bytes and a quotation mark.

#ifndef NQ_OML_ENCODING_RECORDS_H
#define NQ_OML_ENCODING_RECORDS_H

#include <array>
#include <cstdint>

namespace nqdetail {

// Signs of both encodings.
inline constexpr char kQuote = '"';
inline constexpr char kEscape = '\\';
inline constexpr char kFullAddress = '$';  // begins the address of an object from the top
inline constexpr char kScopeSeparator = ',';
inline constexpr char kScopeSeparatorAlias = '|';  // read, never written
inline constexpr char kOpeningBracket = '{';       // the kind that is written
inline constexpr char kClosingBracket = '}';

// The id of an object that holds defaults.
inline constexpr char kDefaultsID[] = "defaults";

// Letters of records, in their long form, and markers of texts.
inline constexpr char kEnumeratorRecord = 'E';
inline constexpr char kFieldRecord = 'F';
inline constexpr char kIntegerRecord = 'I';
inline constexpr char kObjectTypeRecord = 'O';
inline constexpr char kIPAddressRecord = 'P';
inline constexpr char kRealRecord = 'R';  // mantissa, then a second one: exponent of ten
inline constexpr char kSectionRecord = 'S';
inline constexpr char kBinaryValue = 'X';  // an integer record (length), then the bytes
inline constexpr char kObjectIDText = 'N';

// The short form of a record's letter.
constexpr char shortForm(char letter) {
  return static_cast<char>(letter | 0x20);
}

// The long form of a record's letter; the letter itself when it is one.
constexpr char longForm(char letter) {
  return static_cast<char>(letter & ~0x20);
}
constexpr bool isLongForm(char letter) {
  return letter >= 'A' && letter <= 'Z';
}
// Whether a letter, in either form, begins a record of one number.
constexpr bool isRecord(char letter) {
  switch (longForm(letter)) {
    case kEnumeratorRecord:
    case kFieldRecord:
    case kIntegerRecord:
    case kObjectTypeRecord:
    case kIPAddressRecord:
    case kRealRecord:
    case kSectionRecord:
      return true;
    default:
      return false;
  }
}

// What a character may begin or continue in a text, as a set of flags.
enum CharacterClass : std::uint16_t {
  kBlank = 1,    // space and tab
  kLineEnd = 2,  // line feed and carriage return
  kDigit = 4,
  kNameStart = 8,     // letters and "_"
  kNamePart = 16,     // letters, digits, "$" and "_"
  kOpening = 32,      // ( < [ {
  kClosing = 64,      // ) > ] }
  kNumberPart = 128,  // digits and "."
  kStringStop = 256,  // what ends or interrupts the plain characters of a string
};

namespace characters {
constexpr std::array<std::uint16_t, 256> classify() {
  std::array<std::uint16_t, 256> classes{};
  const auto add = [&classes](const char* set, int flags) {
    for (; *set != '\0'; ++set) {
      auto& entry = classes[static_cast<unsigned char>(*set)];
      entry = static_cast<std::uint16_t>(entry | flags);
    }
  };
  add(" \t", kBlank);
  add("\n\r", kLineEnd | kStringStop);
  add("\"\\", kStringStop);
  classes[0] = kStringStop;
  add("0123456789", kDigit | kNamePart | kNumberPart);
  add(".", kNumberPart);
  add("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_", kNameStart | kNamePart);
  add("$", kNamePart);
  add("(<[{", kOpening);
  add(")>]}", kClosing);
  return classes;
}
inline constexpr std::array<std::uint16_t, 256> kClasses = classify();
}  // namespace characters

// Whether `c` belongs to one of the classes in `flags`.
constexpr bool isOf(char c, int flags) {
  return (characters::kClasses[static_cast<unsigned char>(c)] & flags) != 0;
}

// The bracket that closes what `opening` opens.
constexpr char closingOf(char opening) {
  switch (opening) {
    case '(':
      return ')';
    case '<':
      return '>';
    case '[':
      return ']';
    default:
      return '}';
  }
}

inline constexpr char kHexDigits[] = "0123456789abcdef";  // as they are written

// The value of a hexadecimal digit, -1 for any other character.
constexpr int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace nqdetail

#endif  // NQ_OML_ENCODING_RECORDS_H

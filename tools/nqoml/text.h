// text.h -- texts of unknown origin, made fit to be shown.

#ifndef NQ_TOOLS_NQOML_TEXT_H
#define NQ_TOOLS_NQOML_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nqoml {

// What a name may be made of, and what it may begin with. ASCII only.
constexpr bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool isNameChar(char c) {
  return isLetter(c) || isDigit(c) || c == '_' || c == '$';
}

// Upper case of ASCII letters, as the library's pools keep names.
std::string upperCase(std::string_view text);

// The name that begins at `position` of `line` (0-based); empty when none does.
std::string_view nameAt(std::string_view line, std::size_t position);

// One character of a text: `length` bytes, shown in `width` columns.
struct Character {
  std::size_t length = 0;
  int width = 0;
  char32_t code = 0;       // meaningless when not valid
  bool valid = false;      // well-formed UTF-8
  bool printable = false;  // may be shown as it is
};

// The character at the front of `text`, which is not empty. A byte that begins
// no well-formed UTF-8 is a character of its own. Controls, and the signs that
// reorder or hide text, are not printable.
Character firstCharacter(std::string_view text);

// Appends `text` with what is not printable spelt out ("\x1b", "\u{202e}").
void appendPrintable(std::string& out, std::string_view text);
std::string printable(std::string_view text);

// Appends `text` as a JSON string, quotation marks included. Bytes that are no
// UTF-8 become U+FFFD; only ASCII is written.
void appendJsonString(std::string& out, std::string_view text);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_TEXT_H

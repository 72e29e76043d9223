// escapes.h -- escape sequences in strings.

#ifndef NQ_OML_ENCODING_ESCAPES_H
#define NQ_OML_ENCODING_ESCAPES_H

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace nqdetail {

struct UnescapedText {
  std::size_t length;  // of what is left
  bool zeroCode;       // an escape gave the code 0, which adds nothing
};

// Replaces the escape sequences of the `length` characters at `text`, in place;
// the result is never longer. A backslash before a character without a meaning
// of its own gives that character; one at the very end gives nothing.
UnescapedText removeEscapeSequences(char* text, std::size_t length);

// What to write for each character.
struct Escape {
  char text[4];
  unsigned char length;
};
using EscapeTable = std::array<Escape, 256>;
inline constexpr std::size_t kLongestEscape = sizeof(Escape::text);

// A backslash before quotation marks and backslashes; the same done once more to
// the result; and the first with escapes for the control characters too, so that a
// reader of either encoding gets back every character.
extern const EscapeTable kPlainEscapes;
extern const EscapeTable kDoubledEscapes;
extern const EscapeTable kLosslessEscapes;

// Writes the text with its escapes and returns the end; there is room for
// kLongestEscape bytes for each character.
inline char* putEscaped(char* to, std::string_view text, const EscapeTable& escapes) {
  for (const char c : text) {
    const Escape& escape = escapes[static_cast<unsigned char>(c)];
    std::memcpy(to, escape.text, sizeof escape.text);
    to += escape.length;
  }
  return to;
}

}  // namespace nqdetail

#endif  // NQ_OML_ENCODING_ESCAPES_H

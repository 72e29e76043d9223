#include "nq/oml/encoding/escapes.h"

#include <cstring>

#include "nq/oml/encoding/records.h"

namespace nqdetail {

namespace {

constexpr bool isOctal(char c) {
  return c >= '0' && c <= '7';
}

// The character for a letter that has a meaning behind a backslash, else the
// letter itself.
constexpr char escapedCharacter(char letter) {
  switch (letter) {
    case 'a':
      return '\a';
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'v':
      return '\v';
    default:
      return letter;
  }
}

constexpr void add(Escape& escape, char c) {
  escape.text[escape.length++] = c;
}

constexpr EscapeTable makePlain() {
  EscapeTable table{};
  for (int c = 0; c < 256; ++c) {
    Escape& escape = table[static_cast<std::size_t>(c)];
    if (c == kQuote || c == kEscape) add(escape, kEscape);
    add(escape, static_cast<char>(c));
  }
  return table;
}

constexpr EscapeTable makeDoubled() {
  EscapeTable table{};
  const EscapeTable plain = makePlain();
  for (std::size_t c = 0; c < table.size(); ++c) {
    for (int i = 0; i < plain[c].length; ++i) {
      const Escape& again = plain[static_cast<unsigned char>(plain[c].text[i])];
      for (int j = 0; j < again.length; ++j) add(table[c], again.text[j]);
    }
  }
  return table;
}

// Control characters in three octal digits, which no digit behind them changes.
constexpr EscapeTable makeLossless() {
  EscapeTable table = makePlain();
  const auto escapeControl = [&table](int c) {
    table[static_cast<std::size_t>(c)] = {
        {kEscape, static_cast<char>('0' + (c >> 6)),
         static_cast<char>('0' + (c >> 3 & 7)), static_cast<char>('0' + (c & 7))},
        4};
  };
  for (int c = 0; c < ' '; ++c) escapeControl(c);
  escapeControl(0x7F);
  for (const char letter : {'a', 'b', 'f', 'n', 'r', 't', 'v'}) {
    table[static_cast<std::size_t>(escapedCharacter(letter))] = {{kEscape, letter}, 2};
  }
  return table;
}

}  // namespace

constexpr EscapeTable kPlainEscapes = makePlain();
constexpr EscapeTable kDoubledEscapes = makeDoubled();
constexpr EscapeTable kLosslessEscapes = makeLossless();

UnescapedText removeEscapeSequences(char* text, std::size_t length) {
  const char* const end = text + length;
  const void* const first = length == 0 ? nullptr : std::memchr(text, kEscape, length);
  if (first == nullptr) return {length, false};

  bool zeroCode = false;
  char* to = text + (static_cast<const char*>(first) - text);
  const char* from = to;
  const auto addCode = [&](int code) {
    if ((code & 0xFF) == 0) {
      zeroCode = true;
    } else {
      *to++ = static_cast<char>(code);
    }
  };
  while (from != end) {
    if (*from != kEscape) {
      *to++ = *from++;
      continue;
    }
    if (++from == end) break;
    if (isOctal(*from)) {
      int code = 0;
      for (int digit = 0; digit < 3 && from != end && isOctal(*from); ++digit) {
        code = code * 8 + (*from++ - '0');
      }
      addCode(code);
    } else if (*from == 'x' && from + 1 != end && hexValue(from[1]) >= 0) {
      ++from;
      int code = 0;
      for (int digit = 0; digit < 2 && from != end && hexValue(*from) >= 0; ++digit) {
        code = code * 16 + hexValue(*from++);
      }
      addCode(code);
    } else {
      *to++ = escapedCharacter(*from++);
    }
  }
  return {static_cast<std::size_t>(to - text), zeroCode};
}

}  // namespace nqdetail

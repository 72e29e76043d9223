#include "tools/nqoml/text.h"

#include <algorithm>
#include <cstdint>

namespace nqoml {

namespace {

struct Range {
  char32_t first, last;
};

template <std::size_t count>
bool contains(const Range (&ranges)[count], char32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges), [code](const Range& range) {
    return code >= range.first && code <= range.last;
  });
}

// Controls, line separators, and the signs that reorder or hide text.
constexpr Range kUnprintable[] = {{0x00, 0x1f},      {0x7f, 0x9f},     {0xad, 0xad},
                                  {0x61c, 0x61c},    {0x200b, 0x200f}, {0x2028, 0x202e},
                                  {0x2060, 0x206f},  {0xfeff, 0xfeff}, {0xfff9, 0xffff},
                                  {0xe0000, 0xe0fff}};
// Marks that stand on the character before them.
constexpr Range kCombining[] = {
    {0x300, 0x36f}, {0x1ab0, 0x1aff}, {0x20d0, 0x20ff}, {0xfe00, 0xfe0f}};
// Characters that terminals show in two columns.
constexpr Range kWide[] = {{0x1100, 0x115f},  {0x2e80, 0xa4cf},   {0xac00, 0xd7a3},
                           {0xf900, 0xfaff},  {0xfe30, 0xfe6f},   {0xff00, 0xff60},
                           {0xffe0, 0xffe6},  {0x1f300, 0x1f64f}, {0x1f900, 0x1f9ff},
                           {0x20000, 0x3fffd}};

constexpr char kHexDigits[] = "0123456789abcdef";

void appendHex(std::string& out, std::uint32_t value, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    out += kHexDigits[(value >> shift) & 15];
  }
}

}  // namespace

std::string upperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string_view nameAt(std::string_view line, std::size_t position) {
  std::size_t end = position;
  if (end < line.size() && (isLetter(line[end]) || line[end] == '_')) {
    while (end < line.size() && isNameChar(line[end])) ++end;
  }
  return position < line.size() ? line.substr(position, end - position)
                                : std::string_view();
}

Character firstCharacter(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  std::size_t length = lead < 0x80   ? 1
                       : lead < 0xc2 ? 0
                       : lead < 0xe0 ? 2
                       : lead < 0xf0 ? 3
                       : lead < 0xf5 ? 4
                                     : 0;
  char32_t code = length == 1 ? lead : lead & (0x7fU >> length);
  if (length > text.size()) length = 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) {
      length = 0;
      break;
    }
    code = code << 6 | (byte(i) & 0x3fU);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  if (length == 0 || overlong || code > 0x10ffff || (code >= 0xd800 && code <= 0xdfff)) {
    return {.length = 1, .width = 4};
  }

  Character character{.length = length, .width = 1, .code = code, .valid = true};
  character.printable = !contains(kUnprintable, code);
  if (!character.printable) {
    character.width = code < 0x80 ? 4 : code > 0xffff ? 10 : 8;  // as spelt out below
  } else if (contains(kCombining, code)) {
    character.width = 0;
  } else if (contains(kWide, code)) {
    character.width = 2;
  }
  return character;
}

void appendPrintable(std::string& out, std::string_view text) {
  while (!text.empty()) {
    const char first = text.front();
    if (first == '\x7f' || (first >= 0 && first < ' ')) {
      out += "\\x";
      appendHex(out, static_cast<unsigned char>(first), 2);
      text.remove_prefix(1);
      continue;
    }
    const Character character = firstCharacter(text);
    if (character.printable) {
      out += text.substr(0, character.length);
    } else if (character.valid) {
      out += "\\u{";
      appendHex(out, character.code, character.code > 0xffff ? 6 : 4);
      out += '}';
    } else {
      out += "\\x";
      appendHex(out, static_cast<unsigned char>(first), 2);
    }
    text.remove_prefix(character.length);
  }
}

std::string printable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  appendPrintable(out, text);
  return out;
}

void appendJsonString(std::string& out, std::string_view text) {
  const auto appendUnit = [&out](std::uint32_t unit) {
    out += "\\u";
    appendHex(out, unit, 4);
  };
  out += '"';
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    const char32_t code = character.code;
    if (!character.valid) {
      appendUnit(0xfffd);
    } else if (code > 0xffff) {
      appendUnit(0xd800 + ((code - 0x10000) >> 10));
      appendUnit(0xdc00 + ((code - 0x10000) & 0x3ff));
    } else if (code == '"' || code == '\\') {
      out += '\\';
      out += static_cast<char>(code);
    } else if (code == '\n') {
      out += "\\n";
    } else if (code == '\t') {
      out += "\\t";
    } else if (code < ' ' || code > '~') {
      appendUnit(code);
    } else {
      out += static_cast<char>(code);
    }
    text.remove_prefix(character.length);
  }
  out += '"';
}

}  // namespace nqoml

#include "nq/resources/color.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>
#include <system_error>

#include "nq/geometry/rounding.h"

namespace {

struct Fractions {
  double red;
  double green;
  double blue;
};

constexpr Fractions kPalette[] = {
    {0, 0, 0},        // black
    {0, 0, 1},        // blue
    {1, 0, 0},        // red
    {0, 1, 0},        // green
    {1, 1, 0},        // yellow
    {1, 0, 1},        // magenta
    {0, 1, 1},        // cyan
    {0.9, 0.9, 0.9},  // light grey
    {0.8, 0.8, 1},    // light blue
    {1, 0.8, 0.8},    // light red
    {0.8, 1, 0.8},    // light green
    {1, 1, 0.7},      // light yellow
    {1, 0.7, 1},      // light magenta
    {0.7, 1, 1},      // light cyan
    {0.6, 0.6, 0.6},  // grey
    {0.1, 0.1, 0.8},  // medium blue
    {0.8, 0.1, 0.1},  // medium red
    {0.1, 0.8, 0.1},  // medium green
    {0.8, 0.8, 0.1},  // medium yellow
    {0.8, 0.1, 0.8},  // medium magenta
    {0.1, 0.8, 0.8},  // medium cyan
    {0.4, 0.4, 0.4},  // dark grey
    {0, 0, 0.5},      // dark blue
    {0.5, 0, 0},      // dark red
    {0, 0.5, 0},      // dark green
    {0.5, 0.5, 0},    // dark yellow
    {0.5, 0, 0.5},    // dark magenta
    {0, 0.5, 0.5},    // dark cyan
    {1, 1, 1},        // white
};
static_assert(std::size(kPalette) == NQ_COLOR_WHITE + 1);

unsigned char byteOf(double fraction) {
  constexpr nqLong kLargest = 255;
  return static_cast<unsigned char>(
      std::clamp(nqTruncate(fraction * 255 + 0.5), nqLong{0}, kLargest));
}

// Of a decimal number that no double holds, whether it is too large rather than too
// near to 0.
bool isLarge(std::string_view digits) {
  const std::size_t exponent = digits.find_first_of("eE");
  if (exponent != digits.npos) return digits.substr(exponent + 1, 1) != "-";
  const std::size_t leading = digits.find_first_not_of('0');
  return digits.substr(leading, 1) != ".";
}

// The decimal number at the front of the word, 0 where there is none.
double numberOf(std::string_view word) {
  const bool negative = word.front() == '-';
  if (negative || word.front() == '+') word.remove_prefix(1);
  // There are numbers in letters, too, of which colours know nothing.
  if (word.find_first_of("0123456789.") != 0) return 0;
  double value = 0;
  const auto [end, error] =
      std::from_chars(word.data(), word.data() + word.size(), value);
  if (error == std::errc::result_out_of_range && isLarge({word.data(), end})) {
    value = std::numeric_limits<double>::max();
  }
  return negative ? -value : value;
}

// Writes the fraction that stands for a byte; returns the place behind it.
char* writeFraction(char* out, int byte) {
  int hundredths = byte * 100 / 255;
  while (hundredths < 100 && byteOf(hundredths / 100.0) < byte) ++hundredths;
  *out++ = static_cast<char>('0' + hundredths / 100);
  *out++ = '.';
  *out++ = static_cast<char>('0' + hundredths / 10 % 10);
  *out++ = static_cast<char>('0' + hundredths % 10);
  return out;
}

}  // namespace

NQ_COPY_OPERATIONS_IMPL(NQColor)

NQColor NQColor::invertColor() const {
  NQColor inverse;
  inverse.ired(255 - red_);
  inverse.igreen(255 - green_);
  inverse.iblue(255 - blue_);
  inverse.transparent(transparent());
  return inverse;
}

int NQColor::setStringFromRGB(char* out) const {
  if (out == nullptr) return 0;
  out = writeFraction(out, red_);
  *out++ = ' ';
  out = writeFraction(out, green_);
  *out++ = ' ';
  out = writeFraction(out, blue_);
  *out = '\0';
  return 0;
}

std::string NQColor::hexText() const {
  std::string text = "#";
  const auto add = [&text](int byte) {
    constexpr const char* kDigits = "0123456789abcdef";
    text += kDigits[byte / 16];
    text += kDigits[byte % 16];
  };
  add(red_);
  add(green_);
  add(blue_);
  if (transparent() != 0) add(0);
  return text;
}

double NQColor::red(double fraction) {
  setByte(red_, byteOf(fraction));
  return red();
}

double NQColor::green(double fraction) {
  setByte(green_, byteOf(fraction));
  return green();
}

double NQColor::blue(double fraction) {
  setByte(blue_, byteOf(fraction));
  return blue();
}

double NQColor::gray(double fraction) {
  rgb(fraction, fraction, fraction);
  return red();
}

int NQColor::ired(int byte) {
  setByte(red_, static_cast<unsigned char>(byte));
  return red_;
}

int NQColor::igreen(int byte) {
  setByte(green_, static_cast<unsigned char>(byte));
  return green_;
}

int NQColor::iblue(int byte) {
  setByte(blue_, static_cast<unsigned char>(byte));
  return blue_;
}

void NQColor::rgb(double redFraction, double greenFraction, double blueFraction) {
  red(redFraction);
  green(greenFraction);
  blue(blueFraction);
}

void NQColor::rgb(NQColorIdentifierEnum color) {
  if (color < NQ_COLOR_BLACK || color > NQ_COLOR_WHITE) return;
  const Fractions& fractions = kPalette[color];
  rgb(fractions.red, fractions.green, fractions.blue);
}

int NQColor::needsSaving(int needsSaving) {
  flags_ = static_cast<unsigned char>((flags_ & ~kNeedsSaving) |
                                      (needsSaving != 0 ? kNeedsSaving : 0));
  return this->needsSaving();
}

int NQColor::setRGBFromString(const char* text) {
  if (text == nullptr) return 0;
  std::string_view rest = text;
  double numbers[3];
  for (double& number : numbers) {
    const std::size_t begin = rest.find_first_not_of(' ');
    if (begin == rest.npos) return 0;
    rest.remove_prefix(begin);
    const std::size_t end = std::min(rest.find(' '), rest.size());
    number = numberOf(rest.substr(0, end));
    rest.remove_prefix(end);
  }
  rgb(numbers[0], numbers[1], numbers[2]);
  return 1;
}

int NQColor::setFromHexText(const char* text) {
  if (text == nullptr || *text != '#') return 0;
  const std::string_view digits(text + 1);
  std::uint32_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  const bool hasAlpha = digits.size() == 8;
  if (error != std::errc() || end != digits.data() + digits.size() ||
      (!hasAlpha && digits.size() != 6)) {
    return 0;
  }
  const std::uint32_t channels = hasAlpha ? value >> 8 : value;
  ired(static_cast<int>(channels >> 16));
  igreen(static_cast<int>(channels >> 8));
  iblue(static_cast<int>(channels));
  transparent(hasAlpha && (value & 0xff) < 0x80);
  return 1;
}

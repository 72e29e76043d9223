#include "nq/core/value.h"

#include <array>
#include <charconv>

std::string nqTextOf(double number) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return std::string(text.data(), end);
}

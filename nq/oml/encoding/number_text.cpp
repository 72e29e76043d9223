#include "nq/oml/encoding/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace nqdetail {

namespace {

// "00" to "99".
constexpr std::array<char, 200> makePairs() {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}
constexpr std::array<char, 200> kPairs = makePairs();

char* putPair(char* to, std::uint32_t pair) {
  std::memcpy(to, &kPairs[std::size_t{2} * pair], 2);
  return to + 2;
}

char* putUnsigned(char* to, std::uint32_t value) {
  if (value < 10) {
    *to = static_cast<char>('0' + value);
    return to + 1;
  }
  if (value < 100) return putPair(to, value);
  if (value < 10000) {
    to = putUnsigned(to, value / 100);
    return putPair(to, value % 100);
  }
  to = putUnsigned(to, value / 10000);
  to = putPair(to, value / 100 % 100);
  return putPair(to, value % 100);
}

}  // namespace

char* putInteger(char* to, nqLong value) {
  auto magnitude = static_cast<std::uint32_t>(value);
  if (value < 0) {
    *to++ = '-';
    magnitude = 0 - magnitude;
  }
  return putUnsigned(to, magnitude);
}

// Below 2^32 - 1 the two sides of the point are taken apart without loss: the part
// behind it as a multiple of 2^-64, which every double from 2^-12 on has. Times a
// million in two halves, it gives the six digits and what is left for rounding.
char* putReal(char* to, double value) {
  const double magnitude = std::fabs(value);
  if (!(magnitude < 4294967295.0) || (magnitude < 0x1p-12 && magnitude != 0)) {
    return std::to_chars(to, to + kRealText, value, std::chars_format::fixed, 6).ptr;
  }
  constexpr std::uint64_t kMillion = 1000000;
  constexpr std::uint64_t kLow = 0xFFFFFFFF;
  auto whole = static_cast<std::uint32_t>(magnitude);
  const auto fraction = static_cast<std::uint64_t>((magnitude - whole) * 0x1p64);
  const std::uint64_t low = (fraction & kLow) * kMillion;
  const std::uint64_t high = (fraction >> 32) * kMillion + (low >> 32);
  auto digits = static_cast<std::uint32_t>(high >> 32);
  const std::uint64_t rest = high << 32 | (low & kLow);
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
  if (rest > kHalf || (rest == kHalf && digits % 2 != 0)) ++digits;

  if (std::signbit(value)) *to++ = '-';
  if (digits == kMillion) {
    digits = 0;
    ++whole;
  }
  to = putUnsigned(to, whole);
  *to++ = '.';
  to = putPair(to, digits / 10000);
  to = putPair(to, digits / 100 % 100);
  return putPair(to, digits % 100);
}

char* putShortestReal(char* to, double value) {
  char* end = std::to_chars(to, to + kRealText, value).ptr;
  if (std::none_of(to, end, [](char c) { return c == '.' || c == 'e'; })) {
    *end++ = '.';
    *end++ = '0';
  }
  return end;
}

}  // namespace nqdetail

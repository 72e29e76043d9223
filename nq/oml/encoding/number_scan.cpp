#include "nq/oml/encoding/number_scan.h"

#include <charconv>
#include <type_traits>

#include "nq/core/real_scan_internal.h"
#include "nq/oml/encoding/records.h"

namespace nqdetail {

namespace {

// std::from_chars rejects "+"; "+-1" is not a number.
std::string_view withoutPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && isOf(text[1], kNumberPart)) {
    text.remove_prefix(1);
  }
  return text;
}

template <class Value>
bool convertsWhole(std::string_view text, Value& value) {
  const char* const end = text.data() + text.size();
  std::from_chars_result result;
  if constexpr (std::is_same_v<Value, double>) {
    result = scanDecimal(text.data(), end, value);
  } else {
    result = std::from_chars(text.data(), end, value);
  }
  return result.ec == std::errc() && result.ptr == end;
}

// Four parts from 0 to 255, joined by points.
bool scanIPAddress(std::string_view text, std::uint32_t& address) {
  address = 0;
  for (int part = 0; part < 4; ++part) {
    const std::size_t length = part < 3 ? text.find('.') : text.size();
    std::uint8_t value = 0;
    if (length == std::string_view::npos ||
        !convertsWhole(text.substr(0, length), value)) {
      return false;
    }
    address = address << 8 | value;
    text.remove_prefix(part < 3 ? length + 1 : length);
  }
  return true;
}

}  // namespace

const char* endOfNumber(const char* begin, const char* end) {
  const char* at = begin;
  if (at != end && (*at == '+' || *at == '-')) ++at;
  const char* const digits = at;
  while (at != end && isOf(*at, kNumberPart)) ++at;
  if (at == digits || at == end || (*at | 0x20) != 'e') return at;
  ++at;
  if (at != end && (*at == '+' || *at == '-')) ++at;
  while (at != end && isOf(*at, kNumberPart)) ++at;
  return at;
}

bool scanInteger(std::string_view text, nqLong& value) {
  return convertsWhole(withoutPlus(text), value);
}

Number scanNumber(std::string_view text) {
  Number number;
  if (scanInteger(text, number.integer)) {
    number.kind = NumberKind::kInteger;
  } else if (text.find_first_of(".eE") == std::string_view::npos) {
    number.kind = NumberKind::kNone;
  } else if (convertsWhole(withoutPlus(text), number.real)) {
    number.kind = NumberKind::kReal;
  } else if (scanIPAddress(text, number.address)) {
    number.kind = NumberKind::kIPAddress;
  }
  return number;
}

}  // namespace nqdetail

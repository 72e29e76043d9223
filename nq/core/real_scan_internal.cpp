#include "nq/core/real_scan_internal.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace nqdetail {

namespace {

// Of a number, without its sign, that no double holds: whether it is too small, so
// that 0 is its nearest double, rather than too large.
bool isTooSmall(std::string_view number) {
  const std::size_t exponent = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, exponent);
  const auto point =
      static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto firstDigit = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
  // The number is 0.d... times ten to the power of `places`, and of its exponent.
  const std::int64_t places = point - firstDigit + (firstDigit > point ? 1 : 0);
  std::string_view powerText = number.substr(std::min(exponent + 1, number.size()));
  if (powerText.starts_with('+')) powerText.remove_prefix(1);
  std::int64_t power = 0;
  const auto result =
      std::from_chars(powerText.data(), powerText.data() + powerText.size(), power);
  if (result.ec == std::errc::result_out_of_range) return powerText.starts_with('-');
  return power < -places;
}

}  // namespace

std::from_chars_result scanDecimal(const char* first, const char* last, double& value) {
  const std::from_chars_result result = std::from_chars(first, last, value);
  if (result.ec != std::errc::result_out_of_range) return result;
  const bool negative = *first == '-';
  const char* const number = negative ? first + 1 : first;
  if (!isTooSmall({number, static_cast<std::size_t>(result.ptr - number)})) return result;
  value = negative ? -0.0 : 0.0;
  return {result.ptr, std::errc()};
}

}  // namespace nqdetail

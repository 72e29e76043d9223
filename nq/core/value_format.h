// value_format.h -- values (value.h) in std::format(), where the standard library has
// it: std::format("{:>12}", NQPoint(3, -4)). Includes <format>, which takes compilers
// some time.

#ifndef NQ_CORE_VALUE_FORMAT_H
#define NQ_CORE_VALUE_FORMAT_H

#include <version>

#include "nq/core/value.h"

#if defined(__cpp_lib_format)

#include <format>
#include <string_view>

// A value is formatted as its text is.
template <NQValue Value>
struct std::formatter<Value, char> : std::formatter<std::string_view, char> {
  template <class Context>
  auto format(const Value& value, Context& context) const {
    return std::formatter<std::string_view, char>::format(value.asText(), context);
  }
};

#endif

#endif  // NQ_CORE_VALUE_FORMAT_H

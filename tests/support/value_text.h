// value_text.h -- values of tokens as the dumps of tests write them.

#ifndef NQ_TESTS_SUPPORT_VALUE_TEXT_H
#define NQ_TESTS_SUPPORT_VALUE_TEXT_H

#include <cstdio>
#include <string>

#include "nq/oml/bin_value.h"

inline std::string realText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

inline std::string addressText(nqULong address) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    text += std::to_string(address >> shift & 255);
    if (shift > 0) text += '.';
  }
  return text;
}

inline std::string bytesText(const NQOMLBinValue& value) {
  std::string text;
  for (nqLong i = 0; i < value.length(); ++i) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x",
                  static_cast<unsigned>(value.pByteSequence()[i]) & 255U);
    text += digits;
  }
  return text;
}

#endif  // NQ_TESTS_SUPPORT_VALUE_TEXT_H

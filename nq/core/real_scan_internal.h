// real_scan_internal.h -- decimal texts as doubles.

#ifndef NQ_CORE_REAL_SCAN_INTERNAL_H
#define NQ_CORE_REAL_SCAN_INTERNAL_H

#include <charconv>

namespace nqdetail {

// What std::from_chars does with a decimal number, except that one too small for a
// double is 0 and no error.
std::from_chars_result scanDecimal(const char* first, const char* last, double& value);

}  // namespace nqdetail

#endif  // NQ_CORE_REAL_SCAN_INTERNAL_H

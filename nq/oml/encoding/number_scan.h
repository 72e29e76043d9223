// number_scan.h -- what a number written in a text is.

#ifndef NQ_OML_ENCODING_NUMBER_SCAN_H
#define NQ_OML_ENCODING_NUMBER_SCAN_H

#include <cstdint>
#include <string_view>

#include "nq/platform/types.h"

namespace nqdetail {

enum class NumberKind {
  kInteger,    // an optional sign and digits, within 32 bits
  kReal,       // a point or an exponent; 0 when it is too small for a double
  kIPAddress,  // four parts from 0 to 255, without a sign
  kNone        // anything else: 1.2.3, 1e, a lone sign, a number too large
};

struct Number {
  NumberKind kind = NumberKind::kNone;
  nqLong integer = 0;
  double real = 0;
  std::uint32_t address = 0;  // first part in the highest byte
};

// Where the number ends that begins at `begin` with a digit, a sign or a point:
// it reaches as far as its digits, points and exponent do. `end` when it may go
// on behind the text.
const char* endOfNumber(const char* begin, const char* end);

// The number that `text`, as endOfNumber() delimits it, stands for.
Number scanNumber(std::string_view text);

// The integer of 32 bits that `text`, an optional sign and digits, stands for.
bool scanInteger(std::string_view text, nqLong& value);

}  // namespace nqdetail

#endif  // NQ_OML_ENCODING_NUMBER_SCAN_H

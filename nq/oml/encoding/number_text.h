// number_text.h -- numbers as the text encoding writes them.
//
// Each function writes to a place with room enough for any value, and returns the
// end of what it wrote. Nothing depends on the program's locale.

#ifndef NQ_OML_ENCODING_NUMBER_TEXT_H
#define NQ_OML_ENCODING_NUMBER_TEXT_H

#include <cstddef>

#include "nq/platform/types.h"

namespace nqdetail {

// The longest texts: an integer, and a real of 309 digits before its point.
inline constexpr std::size_t kIntegerText = 11;
inline constexpr std::size_t kRealText = 317;

// As "%ld" prints it.
char* putInteger(char* to, nqLong value);
// As "%lf" prints it: exactly, rounded to six digits behind the point, a half to
// the even digit. The number is finite.
char* putReal(char* to, double value);
// The shortest text that reads back as the same real, always with a point or an
// exponent. The number is finite.
char* putShortestReal(char* to, double value);

}  // namespace nqdetail

#endif  // NQ_OML_ENCODING_NUMBER_TEXT_H

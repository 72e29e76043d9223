// format.h -- the library's own sprintf.
//
// A format is text with specifications like the C library's:
//
//   %[flags][width][.precision][length]conversion
//
//   d i u o x X   an integer, of which the low 32 bits count
//   c             a character, passed as an int
//   e E f g G     a double
//   s S           a text of any length; flags, width and precision have no
//                 effect, and a null text adds nothing
//   p             a pointer, as sixteen upper-case hexadecimal digits
//   %%            one "%"
//
// Flags (- + blank # 0), width, precision and the length h mean what they mean
// in C; other lengths are accepted and change nothing. So a 64-bit number is
// written as two halves. What one number, character or pointer adds is cut
// after 253 characters.
//
// The result is that of the "C" locale whatever the program's locale. It is
// also safe: a "*", an unknown conversion, or a specification that the format's
// end cuts off takes no argument and adds nothing; "%n" does not exist.

#ifndef NQ_CORE_FORMAT_H
#define NQ_CORE_FORMAT_H

#include "nq/platform/export.h"

// Both are the same: they write the formatted text and a terminator into
// `output`, which the caller makes large enough, and return the text's length.
// A null output or format counts as an empty text.
NQ_EXPORT int nq_vs8_nqprintf(char* output, const char* format, ...);
NQ_EXPORT int nq_vs8_ansi_sprintf(char* output, const char* format, ...);

#endif  // NQ_CORE_FORMAT_H

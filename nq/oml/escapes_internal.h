// escapes_internal.h -- escape sequences in strings.

#ifndef NQ_OML_ESCAPES_INTERNAL_H
#define NQ_OML_ESCAPES_INTERNAL_H

#include <cstddef>

namespace nqdetail {

struct UnescapedText {
  std::size_t length;  // of what is left
  bool zeroCode;       // an escape gave the code 0, which adds nothing
};

// Replaces the escape sequences of the `length` characters at `text`, in place;
// the result is never longer. A backslash before a character without a meaning
// of its own gives that character; one at the very end gives nothing.
UnescapedText removeEscapeSequences(char* text, std::size_t length);

}  // namespace nqdetail

#endif  // NQ_OML_ESCAPES_INTERNAL_H

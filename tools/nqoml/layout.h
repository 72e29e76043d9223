// layout.h -- the canonical layout of a file in the text encoding.
//
// What stands on a line stays on it. Each line is indented by its open brackets, up to
// 64 of them.
// Between two tokens stands one blank, or two where there were more; none before ":"
// and ";" and in an empty pair of brackets; two or more before a comment that ends a
// line. Of several empty lines one is left, of those at the beginning and the end
// none. Line ends become those of the first line.
//
// Everything a reader sees stays: tokens as they are spelt, comments, the inside of
// strings. What a reader passes over unread is copied unchanged: blocks of "skip" and
// of declared sections, and the rest of a line behind the value of an ignored field.
// No grammar is needed; where only one could tell what is read and what is not, and
// it matters, the file is refused.

#ifndef NQ_TOOLS_NQOML_LAYOUT_H
#define NQ_TOOLS_NQOML_LAYOUT_H

#include <cstdint>
#include <string>
#include <string_view>

namespace nqoml {

struct Layout {
  std::string text;
  std::uint64_t tokens = 0;  // a digest of all tokens in their order
  // Why there is no layout; "" when there is one.
  std::string trouble;
  long line = -1;    // of the trouble, from 1
  long column = -1;  // in bytes, from 1
};

// `indent` blanks for each open bracket; a tab for 0.
Layout layOut(std::string_view text, int indent);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_LAYOUT_H

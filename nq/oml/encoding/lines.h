// lines.h -- where lines end: at "\n", "\r", "\r\n" or "\n\r".

#ifndef NQ_OML_ENCODING_LINES_H
#define NQ_OML_ENCODING_LINES_H

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace nqdetail {

// The position behind the line that begins at `start`, its end included; `length`
// becomes the length of the line without it.
inline std::size_t nextLine(std::string_view text, std::size_t start,
                            std::size_t& length) {
  std::size_t end = std::min(text.find_first_of("\n\r", start), text.size());
  length = end - start;
  if (end == text.size()) return end;
  const char first = text[end++];
  if (end < text.size() && text[end] != first &&
      (text[end] == '\n' || text[end] == '\r')) {
    ++end;
  }
  return end;
}

}  // namespace nqdetail

#endif  // NQ_OML_ENCODING_LINES_H

#include "text_size.h"

#include <algorithm>

nqLong widthOf(std::string_view text) {
  double widths = 0;  // in the size of the font
  for (const char c : text) {
    if ((c & 0xc0) == 0x80) continue;  // goes on with a character
    const std::string_view narrow = "iljft.,:;'|!()[]I/ ";
    const std::string_view wide = "mwMW@%";
    if (narrow.find(c) != std::string_view::npos) {
      widths += 0.36;
    } else {
      widths += wide.find(c) != std::string_view::npos ? 0.95 : 0.63;
    }
  }
  return static_cast<nqLong>(widths * kFontSize) + 1;
}

NQSize sizeOf(const std::vector<std::string_view>& lines) {
  nqLong width = 0;
  for (const std::string_view line : lines) width = std::max(width, widthOf(line));
  return {width, kLineHeight * static_cast<nqLong>(lines.size())};
}

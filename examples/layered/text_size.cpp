#include "text_size.h"

#include <algorithm>

namespace {

constexpr nqLong kMost = 100'000;

}  // namespace

nqLong widthOf(std::string_view text) {
  double widths = 0;  // in the size of the font
  for (const char c : text) {
    const std::string_view narrow = "iljft.,:;'|!()[]I/ ";
    const std::string_view wide = "mwMW@%";
    if ((c & 0xc0) == 0x80) continue;  // goes on with a character
    if ((c & 0xe0) == 0xe0) {          // the first of three bytes or four
      widths += 1;
    } else if (narrow.find(c) != std::string_view::npos) {
      widths += 0.36;
    } else if (wide.find(c) != std::string_view::npos) {
      widths += 0.95;
    } else {
      widths += c >= 'A' && c <= 'Z' ? 0.75 : 0.63;
    }
  }
  return static_cast<nqLong>(std::min(widths * kFontSize + 1, double{kMost}));
}

NQSize sizeOf(const std::vector<std::string_view>& lines) {
  nqLong width = 0;
  for (const std::string_view line : lines) width = std::max(width, widthOf(line));
  const std::size_t count = std::min<std::size_t>(lines.size(), kMost / kLineHeight);
  return {width, kLineHeight * static_cast<nqLong>(count)};
}

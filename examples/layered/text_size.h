// text_size.h -- how much room text takes.
//
// Without the fonts of whoever looks at a picture this is a guess, on the safe
// side for common fonts without serifs.

#ifndef LAYERED_TEXT_SIZE_H
#define LAYERED_TEXT_SIZE_H

#include <string_view>
#include <vector>

#include <nq/nq.h>

constexpr nqLong kFontSize = 11;
constexpr nqLong kLineHeight = 14;

// Of UTF-8 text. What is more than 100,000 wide or high is taken to be that.
nqLong widthOf(std::string_view text);
NQSize sizeOf(const std::vector<std::string_view>& lines);

#endif  // LAYERED_TEXT_SIZE_H

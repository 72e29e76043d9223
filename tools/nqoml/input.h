// input.h -- a file named on the command line, made ready for the library.

#ifndef NQ_TOOLS_NQOML_INPUT_H
#define NQ_TOOLS_NQOML_INPUT_H

#include "tools/nqoml/terminal.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace nqoml {

// The library reads regular files only, and no long names: what it cannot read where
// it is, is copied.
struct Input {
  std::string shownAs;                 // in messages: the name as given, or "<stdin>"
  std::string path;                    // what the library is to open; "" with trouble
  std::string directory = ".";         // that includes are restricted to; never ""
  std::string start;                   // its first bytes
  std::string trouble;                 // why it cannot be read; "" when it can
  std::optional<std::string> content;  // of a file that was copied
  std::optional<TemporaryFile> copy;
};

// Regular files that are read in their place are not opened yet.
Input openInput(const std::string& name, std::istream& in);

// A whole file, for commands that work on its bytes; "-" is `in`.
struct Content {
  std::string shownAs;
  std::string bytes;
  std::string trouble;  // why they are not to be used; "" when they are
};

Content readContent(const std::string& name, std::istream& in,
                    std::size_t limit = std::size_t{1} << 30);

// Why the file at `path` could not be opened: "does not exist", ...
std::string whyClosed(const std::string& path);

// True when `content` can only be the binary encoding: it begins with a record
// that no text begins with. A binary file may begin otherwise, so false decides
// nothing.
bool isSurelyBinary(std::string_view content);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_INPUT_H

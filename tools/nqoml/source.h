// source.h -- the files that messages speak of, and the lines to show of them.
//
// Lines end as the library reads them: at "\n", "\r", "\r\n" or "\n\r".

#ifndef NQ_TOOLS_NQOML_SOURCE_H
#define NQ_TOOLS_NQOML_SOURCE_H

#include <cstddef>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nqoml {

// The bytes that are left in `in`; of more than `limit` some more than those. Whether
// they came to an end is in the state of `in`.
std::string readStream(std::istream& in, std::size_t limit);

// A file's bytes, or nothing when they cannot be read or are more than
// `limit` bytes.
std::optional<std::string> readFile(const std::string& path, std::size_t limit);

class SourceText {
 public:
  explicit SourceText(std::string text);
  SourceText(const SourceText&) = delete;
  SourceText& operator=(const SourceText&) = delete;

  const std::string& text() const { return text_; }
  // Without its line end; empty when there is no such line. Lines count from 1.
  std::string_view line(long number) const;

 private:
  std::string text_;
  // Where every 256th line begins, the first included: any line is then found
  // by a short walk, whatever the file is made of.
  std::vector<std::size_t> starts_;
  // The line that was asked for last: many messages may speak of a long one.
  mutable long lastNumber_ = 0;
  mutable std::string_view lastLine_;  // within text_
};

// Files by the names that messages give them, read when first asked for.
class SourceCache {
 public:
  // Gives the text of a name that is not to be read from a file.
  void hold(const std::string& name, std::string text);
  // Null when the file cannot be read. Valid until the next call.
  const SourceText* find(const std::string& name);

 private:
  std::map<std::string, std::unique_ptr<SourceText>> given_;
  std::map<std::string, std::unique_ptr<SourceText>> read_;  // null: cannot be read
  std::size_t readBytes_ = 0;                                // in read_
};

// A source line and the line under it that marks a column. Both have the same
// width up to the mark: tabs stand in both.
struct Excerpt {
  std::string text;
  std::string mark;
};

// Shows `line` (without line end) with a caret under `column` (from 1; beyond
// the end it points behind the last character) and a tail under the rest of
// the name that begins there. Of a long line only the neighbourhood of the
// column is shown; what cannot be printed is spelt out.
Excerpt excerpt(std::string_view line, long column);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_SOURCE_H

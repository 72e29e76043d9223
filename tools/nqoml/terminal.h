// terminal.h -- what the tool needs of the system besides files by name.

#ifndef NQ_TOOLS_NQOML_TERMINAL_H
#define NQ_TOOLS_NQOML_TERMINAL_H

#include <optional>
#include <string>

namespace nqoml {

// Makes standard input and output pass bytes through unchanged.
void useBinaryStreams();

// True when standard output is a terminal that shows colours and the user has
// not asked for none (NO_COLOR).
bool outputShowsColors();

// A new file in the system's directory for temporary ones, readable by nobody
// else where the system can tell users apart; removed on destruction.
class TemporaryFile {
 public:
  // Nothing when the file cannot be made or written.
  static std::optional<TemporaryFile> make(const std::string& content);
  TemporaryFile(TemporaryFile&& other) noexcept;
  TemporaryFile& operator=(TemporaryFile&&) = delete;
  ~TemporaryFile();

  const std::string& path() const { return path_; }

 private:
  explicit TemporaryFile(std::string path);

  std::string path_;  // empty when moved from
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_TERMINAL_H

// terminal.h -- what the tool needs of the system besides files by name.

#ifndef NQ_TOOLS_NQOML_TERMINAL_H
#define NQ_TOOLS_NQOML_TERMINAL_H

#include <optional>
#include <string>

namespace nqoml {

// Makes standard input and output pass bytes through unchanged, and writing to a
// pipe that nobody reads fail instead of ending the program.
void prepareStreams();

// True when standard output is a terminal that shows colours and the user has
// not asked for none (NO_COLOR).
bool outputShowsColors();

bool errorsShowColors();  // the same of standard error

// True when standard error is a terminal that a bar can be drawn on.
bool errorsShowProgress();

// A new file that is removed on destruction.
class TemporaryFile {
 public:
  // In the system's directory for temporary files, readable by nobody else where
  // the system can tell users apart. Nothing when it cannot be made or written.
  static std::optional<TemporaryFile> make(const std::string& content);
  // An empty one in the directory of `path`, with the permissions that the file at
  // `path` has, or would be made with. Nothing when it cannot be made.
  static std::optional<TemporaryFile> makeBeside(const std::string& path);
  TemporaryFile(TemporaryFile&& other) noexcept;
  TemporaryFile& operator=(TemporaryFile&& other) noexcept;
  ~TemporaryFile();

  const std::string& path() const { return path_; }
  // Puts the file in the place of the one at `path`, in one step; false, and both
  // are as they were, when that fails.
  bool replace(const std::string& path);

 private:
  explicit TemporaryFile(std::string path);

  std::string path_;  // empty when moved from
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_TERMINAL_H

// terminal.h -- what the tool needs of the system besides files by name.

#ifndef NQ_TOOLS_NQOML_TERMINAL_H
#define NQ_TOOLS_NQOML_TERMINAL_H

#include <memory>
#include <optional>
#include <string>

namespace nqoml {

// Makes standard input and output pass bytes through unchanged, and sees to it that
// no file that is opened later is taken for a standard stream that is closed.
void prepareStreams();

// From here on no temporary file stays behind when a signal ends the program: an
// interrupt, a hang-up, a request to terminate, a limit on time or on the size of
// files, or a write to a pipe that nobody reads. (Not on Windows, where an open file
// cannot be removed.)
void cleanUpOnSignals();

// True when standard output is a terminal that shows colours and the user has
// not asked for none (by a NO_COLOR that is not empty).
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
  // An empty one in the directory of `path`, with the permissions and, if we may, the
  // owner that the file at `path` has, or would be made with. Nothing when it cannot
  // be made.
  static std::optional<TemporaryFile> makeBeside(const std::string& path);

  const std::string& path() const { return *path_; }
  // Puts the file in the place of the one at `path`, in one step; false, and both
  // are as they were, when that fails.
  bool replace(const std::string& path);

 private:
  struct Remover {
    void operator()(const std::string* path) const;
  };

  explicit TemporaryFile(std::string path);

  std::unique_ptr<const std::string, Remover> path_;  // null when replaced or moved from
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_TERMINAL_H

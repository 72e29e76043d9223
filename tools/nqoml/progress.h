// progress.h -- a bar that tells how far a large file has come.

#ifndef NQ_TOOLS_NQOML_PROGRESS_H
#define NQ_TOOLS_NQOML_PROGRESS_H

#include "tools/nqoml/options.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace nqoml {

class Progress {
 public:
  // Draws on `out`, which is borrowed. By itself (kAuto) a bar appears when
  // standard error is a terminal and `least` steps or more are ahead.
  Progress(std::ostream& out, When when, const std::string& label,
           std::int64_t least = std::int64_t{8} << 20);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  // Ends the line of a bar that did not come to its end.
  ~Progress();

  // So many of `total` steps are done; nothing is drawn while `total` is not
  // known (0 or less). A total that grows never moves the bar back.
  void at(std::int64_t done, std::int64_t total);

 private:
  struct Bar;

  std::ostream& out_;
  std::string label_;
  std::int64_t least_;
  bool shown_;
  std::unique_ptr<Bar> bar_;  // null until there is something to draw
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_PROGRESS_H

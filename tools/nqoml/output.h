// output.h -- where a command writes: a file that appears only when it is complete.

#ifndef NQ_TOOLS_NQOML_OUTPUT_H
#define NQ_TOOLS_NQOML_OUTPUT_H

#include "tools/nqoml/terminal.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace nqoml {

// A file, which is written beside its target and takes the target's place in the
// end; or `out`, or a device, which receives the whole in the end. Until then, and
// when anything fails, the target is as it was. A link stays one: what it points
// to is replaced.
class Output {
 public:
  // "-" is `out`, which is borrowed.
  Output(const std::string& target, std::ostream& out);

  // Why there is nothing to write to; "" when there is.
  const std::string& trouble() const { return trouble_; }
  // An empty file to write to by its name.
  const std::string& path() const { return file_->path(); }
  // Fills that file. False, with trouble, when it cannot be written.
  bool write(std::string_view content);
  // Delivers what was written. False, with trouble, when that fails.
  bool commit();

 private:
  enum class Target { kFile, kDevice, kStream };

  bool fail(const char* trouble);

  Target kind_ = Target::kFile;
  std::string target_;  // of a file with links followed
  std::ostream& out_;
  std::optional<TemporaryFile> file_;  // none with trouble
  std::string trouble_;
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_OUTPUT_H

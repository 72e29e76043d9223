// format.h -- the command `nqoml format`: text files in their canonical layout.

#ifndef NQ_TOOLS_NQOML_FORMAT_H
#define NQ_TOOLS_NQOML_FORMAT_H

#include "tools/nqoml/options.h"

#include <iosfwd>

namespace nqoml {

// Formats every file in its place, or tells what would change; what keeps a file
// from it goes to `err`. Returns an ExitCode, the worst of all files'.
int runFormat(const FormatOptions& options, std::istream& in, std::ostream& out,
              std::ostream& err);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_FORMAT_H

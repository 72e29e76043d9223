// check.h -- the command `nqoml check`: files in, messages out.

#ifndef NQ_TOOLS_NQOML_CHECK_H
#define NQ_TOOLS_NQOML_CHECK_H

#include "tools/nqoml/options.h"

#include <iosfwd>
#include <string_view>

namespace nqoml {

// Checks every file and writes what was found to `out`; what kept the tool from
// its work goes to `err`. Returns an ExitCode, the worst of all files'.
int runCheck(const CheckOptions& options, std::istream& in, std::ostream& out,
             std::ostream& err);

// True when `content` can only be the binary encoding: it begins with a record
// that no text begins with. A binary file may begin otherwise, so false decides
// nothing.
bool isSurelyBinary(std::string_view content);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_CHECK_H

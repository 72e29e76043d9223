// check.h -- the command `nqoml check`: files in, messages out.

#ifndef NQ_TOOLS_NQOML_CHECK_H
#define NQ_TOOLS_NQOML_CHECK_H

#include "tools/nqoml/options.h"

#include <iosfwd>

namespace nqoml {

// Checks every file and writes what was found to `out`; what kept the tool from
// its work goes to `err`. Returns an ExitCode, the worst of all files'.
int runCheck(const CheckOptions& options, std::istream& in, std::ostream& out,
             std::ostream& err);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_CHECK_H

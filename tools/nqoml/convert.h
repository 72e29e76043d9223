// convert.h -- the command `nqoml convert`: a file in the other encoding.

#ifndef NQ_TOOLS_NQOML_CONVERT_H
#define NQ_TOOLS_NQOML_CONVERT_H

#include "tools/nqoml/options.h"

#include <iosfwd>

namespace nqoml {

// Converts one file; messages about it, and what kept the tool from its work, go to
// `err`. Unless the established encodings are asked for, what was written is read
// back and delivered only when it says the same. Returns an ExitCode.
int runConvert(const ConvertOptions& options, std::istream& in, std::ostream& out,
               std::ostream& err);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_CONVERT_H

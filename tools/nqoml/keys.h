// keys.h -- the command `nqoml keys`: the indices of a grammar's names as a header.

#ifndef NQ_TOOLS_NQOML_KEYS_H
#define NQ_TOOLS_NQOML_KEYS_H

#include "tools/nqoml/options.h"

#include <iosfwd>

namespace nqoml {

// Writes the header; what kept the tool from it goes to `err`. Returns an ExitCode.
int runKeys(const KeysOptions& options, std::ostream& out, std::ostream& err);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_KEYS_H

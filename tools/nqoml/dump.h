// dump.h -- the command `nqoml dump`: a binary file, record by record.

#ifndef NQ_TOOLS_NQOML_DUMP_H
#define NQ_TOOLS_NQOML_DUMP_H

#include "tools/nqoml/options.h"

#include <iosfwd>
#include <string_view>

class NQOMLStatic;

namespace nqoml {

// Shows the file on `out`; what kept the tool from it goes to `err`. Returns an
// ExitCode: kErrorsFound when a part of the file is no whole record.
int runDump(const DumpOptions& options, std::istream& in, std::ostream& out,
            std::ostream& err);

// Shows the records of `bytes`, with the names of `grammar` unless it is null.
// Returns how many damaged places there are.
long dumpRecords(std::ostream& out, std::string_view bytes, const NQOMLStatic* grammar);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_DUMP_H

// reading.h -- one file read against a grammar, with what is to be said about it.

#ifndef NQ_TOOLS_NQOML_READING_H
#define NQ_TOOLS_NQOML_READING_H

#include "nq/oml/grammar.h"
#include "tools/nqoml/input.h"
#include "tools/nqoml/options.h"
#include "tools/nqoml/reader.h"
#include "tools/nqoml/render.h"

#include <iosfwd>
#include <memory>
#include <string>

namespace nqoml {

class SourceCache;

// A grammar that a command works with; what is wrong with it is in the report.
struct LoadedGrammar {
  std::unique_ptr<NQOMLStatic> grammar;  // null when it cannot be used
  Report report;

  bool usable() const { return grammar != nullptr; }
};

// Only a file with a name: "-" cannot be read.
LoadedGrammar loadGrammar(const std::string& path);

// Reads `input`, which has no trouble, with a reader made for it.
Report readReport(CheckingReader& reader, const Input& input, const ReadOptions& options,
                  NQOMLStatic& grammar, SourceCache& sources);

// Whether a file is taken as binary.
bool readsBinary(const Input& input, const ReadOptions& options);

// What a report comes to, as an ExitCode.
int exitCodeOf(const Report& report);

// Shows what is wrong with a grammar; false when it cannot be worked with.
bool showGrammar(std::ostream& err, const LoadedGrammar& grammar, bool color);

// "nqoml: `file': trouble", if there is any.
void showTrouble(std::ostream& err, const std::string& file, const std::string& trouble);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_READING_H

// grammar_file.h -- a grammar as a text file: tables of names, then the
// definition language of NQOMLStatic, one entry a line.
//
// The format is told in docs/grammar_file.md. Every line is checked before the
// library sees it, so that a mistake is reported at its place instead of being
// passed over; what the library refuses beyond that is reported too.

#ifndef NQ_TOOLS_NQOML_GRAMMAR_FILE_H
#define NQ_TOOLS_NQOML_GRAMMAR_FILE_H

#include "nq/oml/grammar.h"
#include "tools/nqoml/diagnostic.h"
#include "tools/nqoml/names.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace nqoml {

struct GrammarFile {
  // Null when the file has an error. Hands its tables over to the library by
  // copy: nothing of the text is needed any more.
  std::unique_ptr<NQOMLStatic> grammar;
  Names names;
  std::vector<Diagnostic> problems;  // in the order of their lines

  bool hasErrors() const { return grammar == nullptr; }
};

// Reads a grammar from `text`; problems name the file `fileName`.
GrammarFile parseGrammar(const std::string& fileName, std::string_view text);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_GRAMMAR_FILE_H

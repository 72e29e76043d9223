// grammar_file.h -- a grammar from a text file, at run time.
//
// A grammar file holds what the tables of an application hold: names of object types
// and sections, enumerators with their values, and definition lines (grammar.h). Its
// format is described in docs/grammar_file.md. Every line is checked, more strictly
// than those of tables, and all faults of a file are reported at once, each at its
// place.
//
// The grammar has no callbacks; installObjTypeID of NQOMLStatic adds them. It refers
// to nothing of the file's text.

#ifndef NQ_OML_GRAMMAR_FILE_H
#define NQ_OML_GRAMMAR_FILE_H

#include <memory>
#include <string_view>
#include <vector>

#include "nq/oml/diagnostic.h"
#include "nq/oml/grammar.h"

// Files and texts with more bytes are refused.
constexpr nqLong NQ_OML_LARGEST_GRAMMAR_FILE = 16 * 1024 * 1024;

// Read a grammar, from the file of that name or from the text itself; messages show
// `displayName` as the file (null: none). Null when there is an error, or the file
// cannot be read.
//
// `diagnostics` is replaced by what is to be said, in the order of lines and then of
// what concerns the whole: at most 50 errors and warnings, and one error that says so
// when there are more. A warning is a name that no file can use. Without memory for
// more, the one diagnostic has the code 12; without memory for that there is none.
NQ_EXPORT std::unique_ptr<NQOMLStatic> nqReadGrammarFile(
    const char* fileName, std::vector<NQOMLDiagnostic>& diagnostics);
NQ_EXPORT std::unique_ptr<NQOMLStatic> nqReadGrammarText(
    std::string_view text, const char* displayName,
    std::vector<NQOMLDiagnostic>& diagnostics);

#endif  // NQ_OML_GRAMMAR_FILE_H

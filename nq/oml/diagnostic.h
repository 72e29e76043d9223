// diagnostic.h -- what is wrong with a file, and where, as a value.
//
// Reading an OML file and reading a grammar file produce diagnostics. They are
// plain values: copy them, keep them, sort them; they refer to nothing.
//
// Lines and columns count from 1, byte offsets from 0, each within its file. A
// column counts bytes, and a tab is one of them. What is not known is -1.

#ifndef NQ_OML_DIAGNOSTIC_H
#define NQ_OML_DIAGNOSTIC_H

#include <string>
#include <vector>

#include "nq/platform/export.h"
#include "nq/platform/types.h"

// How bad it is.
enum NQOMLSeverityEnum : int {
  NQ_OML_WARNING = 0,      // does not change the result
  NQ_OML_ERROR = 1,        // the file is refused, but checked to its end
  NQ_OML_FATAL_ERROR = 2,  // the file is refused, and nothing more is read of it
};

// The code of a diagnostic whose text is not in the message table.
constexpr int NQ_OML_NO_CODE = -2147483647 - 1;

// One byte of a file.
struct NQOMLDiagnosticPlace {
  nqLong line = -1;
  nqLong column = -1;
  nqInt64 offset = -1;

  bool isKnown() const { return line >= 0; }
  bool operator==(const NQOMLDiagnosticPlace&) const = default;
};

// A further place that explains the first one, such as where a bracket was opened.
struct NQOMLDiagnosticNote {
  std::string text;  // without a full stop: "opened here"
  std::string file;
  NQOMLDiagnosticPlace place;
};

struct NQ_EXPORT NQOMLDiagnostic {
  int code = NQ_OML_NO_CODE;  // of the message table (message_table.h), or the user's
  NQOMLSeverityEnum severity = NQ_OML_ERROR;
  std::string file;                    // as messages show it; empty when there is none
  NQOMLDiagnosticPlace first;          // of the faulty text: its first byte
  NQOMLDiagnosticPlace last;           // and its last one; unknown when its end is
  std::string text;                    // the established message, arguments filled in
  std::vector<std::string> arguments;  // of the text, in their order there
  std::vector<NQOMLDiagnosticNote> notes;
  std::string hint;  // how it might be mended; empty when nothing is known

  // The established line, line end included; notes and hint are not in it:
  //   Error #022 (a.oml:12:5) unexpected identifier `foo' !
  // "#022" is missing without a code, and the part in brackets without a place.
  std::string message() const;
};

#endif  // NQ_OML_DIAGNOSTIC_H

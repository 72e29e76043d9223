// diagnostic.h -- what the tool has to say about a place in a file.

#ifndef NQ_TOOLS_NQOML_DIAGNOSTIC_H
#define NQ_TOOLS_NQOML_DIAGNOSTIC_H

#include <string>
#include <vector>

namespace nqoml {

// A place in a file; line and column count from 1 and are -1 when unknown.
struct Place {
  std::string file;
  long line = -1;
  long column = -1;

  bool known() const { return line > 0; }
  bool operator==(const Place&) const = default;
};

enum class Severity { kWarning, kError, kFatal };

// Something that the tool adds to a message: a second place, or advice.
struct Note {
  std::string text;
  Place place;  // unknown for plain advice
};

struct Diagnostic {
  Severity severity = Severity::kError;
  int code = -1;  // the library's number; -1 for the tool's own messages
  Place place;
  std::string text;     // the message alone
  std::string message;  // messageLine(), once it is reported
  std::vector<Note> notes;
};

// The line that the library writes for it, without its line end.
std::string messageLine(const Diagnostic& diagnostic);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_DIAGNOSTIC_H

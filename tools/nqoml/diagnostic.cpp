#include "tools/nqoml/diagnostic.h"

namespace nqoml {

std::string messageLine(const Diagnostic& diagnostic) {
  std::string line = diagnostic.severity == Severity::kWarning ? "Warning"
                     : diagnostic.severity == Severity::kFatal ? "Fatal error"
                                                               : "Error";
  const Place& place = diagnostic.place;
  if (place.known()) {
    line += " (" + place.file + ":" + std::to_string(place.line) + ":" +
            std::to_string(place.column) + ")";
  }
  return line + " " + diagnostic.text + " !";
}

}  // namespace nqoml

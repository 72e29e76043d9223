#include "tools/nqoml/diagnostic.h"

#include "nq/oml/diagnostic.h"

namespace nqoml {

std::string messageLine(const Diagnostic& diagnostic) {
  NQOMLDiagnostic line;
  if (diagnostic.code >= 0) line.code = diagnostic.code;
  line.severity = diagnostic.severity == Severity::kWarning ? NQ_OML_WARNING
                  : diagnostic.severity == Severity::kFatal ? NQ_OML_FATAL_ERROR
                                                            : NQ_OML_ERROR;
  line.file = diagnostic.place.file;
  line.first.line = static_cast<nqLong>(diagnostic.place.line);
  line.first.column = static_cast<nqLong>(diagnostic.place.column);
  line.text = diagnostic.text;
  std::string message = line.message();
  message.pop_back();
  return message;
}

}  // namespace nqoml

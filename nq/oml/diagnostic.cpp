#include "nq/oml/diagnostic.h"

#include <cstdio>

#include "nq/core/message_table.h"

std::string NQOMLDiagnostic::message() const {
  // The texts 0 to 2 of the message table.
  std::string line = getStringResource(severity == NQ_OML_WARNING ? 2
                                       : severity == NQ_OML_ERROR ? 0
                                                                  : 1);
  if (code != NQ_OML_NO_CODE) {
    const bool blanks = severity == NQ_OML_WARNING && !first.isKnown();
    char number[16];
    std::snprintf(number, sizeof number, blanks ? " #%3d" : " #%03d", code);
    line += number;
  }
  if (first.isKnown()) {
    line.append(" (").append(file).append(":").append(std::to_string(first.line));
    line.append(":").append(std::to_string(first.column)).append(")");
  }
  return line.append(" ").append(text).append(" !\n");
}

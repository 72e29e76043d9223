// render.h -- diagnostics as text for people, lines for editors, or JSON.

#ifndef NQ_TOOLS_NQOML_RENDER_H
#define NQ_TOOLS_NQOML_RENDER_H

#include "tools/nqoml/diagnostic.h"
#include "tools/nqoml/options.h"

#include <ostream>
#include <string>
#include <vector>

namespace nqoml {

class SourceCache;

// What one file came to.
struct Report {
  std::string file;
  std::vector<Diagnostic> diagnostics;
  bool binary = false;  // its lines are not shown
  std::string trouble;  // why it could not be checked at all; "" when it was

  long errors() const;
  long warnings() const;
};

// For people: the library's line, the source line with a caret, notes, and
// after all files one line that counts. Control characters are spelt out.
void renderText(std::ostream& out, const Report& report, SourceCache& sources,
                bool color);
void renderSummary(std::ostream& out, const std::vector<Report>& reports, bool color);

// For editors: "file:line:column: error: text [#code]", one line each.
void renderGcc(std::ostream& out, const Report& report);

// For programs: one JSON document for all files.
void renderJson(std::ostream& out, const std::vector<Report>& reports);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_RENDER_H

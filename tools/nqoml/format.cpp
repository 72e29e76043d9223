#include "tools/nqoml/format.h"

#include "tools/nqoml/diff.h"
#include "tools/nqoml/input.h"
#include "tools/nqoml/layout.h"
#include "tools/nqoml/output.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/terminal.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>

namespace nqoml {

namespace {

// What keeps the file from being formatted, with its line.
void showRefusal(std::ostream& err, const Content& content, const Layout& layout) {
  Diagnostic diagnostic;
  diagnostic.place = {content.shownAs, layout.line, layout.column};
  diagnostic.text = layout.trouble;
  diagnostic.message = messageLine(diagnostic);
  Report report;
  report.file = content.shownAs;
  report.diagnostics.push_back(std::move(diagnostic));
  SourceCache sources;
  sources.hold(content.shownAs, content.bytes);
  renderText(err, report, sources, errorsShowColors());
}

int formatFile(const std::string& name, const FormatOptions& options, std::istream& in,
               std::ostream& out, std::ostream& err) {
  const auto trouble = [&err](const std::string& file, const char* text) {
    showTrouble(err, file, text);
    return kTrouble;
  };
  if (std::error_code code; std::filesystem::is_other(name, code)) {
    return trouble(name, "is a device, which cannot be replaced");
  }
  const Content content = readContent(name, in);
  if (!content.trouble.empty()) return trouble(content.shownAs, content.trouble.c_str());
  if (isSurelyBinary(content.bytes) || content.bytes.find('\0') != std::string::npos) {
    return trouble(content.shownAs, "is no text");
  }
  const Layout layout = layOut(content.bytes, options.indent);
  if (!layout.trouble.empty()) {
    showRefusal(err, content, layout);
    return kErrorsFound;
  }
  // Nothing is replaced by what would not be the same to a reader.
  const Layout again = layOut(layout.text, options.indent);
  if (again.tokens != layout.tokens || again.text != layout.text) {
    return trouble(content.shownAs, "has a layout that cannot be kept");
  }

  const bool changes = layout.text != content.bytes;
  if (options.diff) unifiedDiff(out, content.shownAs, content.bytes, layout.text);
  if (options.check) {
    if (changes && !options.diff) out << content.shownAs << '\n';
    return changes ? kErrorsFound : kClean;
  }
  if (options.diff || (!changes && name != "-")) return kClean;
  Output output(name, out);
  if (!output.trouble().empty() || !output.write(layout.text) || !output.commit()) {
    return trouble(name, output.trouble().c_str());
  }
  return kClean;
}

}  // namespace

int runFormat(const FormatOptions& options, std::istream& in, std::ostream& out,
              std::ostream& err) {
  int exitCode = kClean;
  for (const std::string& file : options.files) {
    exitCode =
        std::max(exitCode, static_cast<int>(formatFile(file, options, in, out, err)));
  }
  return exitCode;
}

}  // namespace nqoml

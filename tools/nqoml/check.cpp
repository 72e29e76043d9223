#include "tools/nqoml/check.h"

#include "tools/nqoml/progress.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/render.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/terminal.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace nqoml {

namespace {

Report checkFile(const std::string& name, std::istream& in, const CheckOptions& options,
                 NQOMLStatic& grammar, SourceCache& sources, std::ostream& err) {
  const Input input = openInput(name, in);
  if (!input.trouble.empty()) {
    Report report;
    report.file = input.shownAs;
    report.trouble = input.trouble;
    return report;
  }
  CheckingReader reader(input.path, input.shownAs,
                        options.allowIncludes ? "" : input.directory);
  Progress progress(err, options.progress, "checking " + input.shownAs);
  reader.reportTo(&progress);
  return readReport(reader, input, options, grammar, sources);
}

}  // namespace

int runCheck(const CheckOptions& options, std::istream& in, std::ostream& out,
             std::ostream& err) {
  SourceCache sources;
  const bool color = options.color == When::kAlways ||
                     (options.color == When::kAuto && outputShowsColors());

  const LoadedGrammar grammar = loadGrammar(options.grammar);
  std::vector<Report> reports;
  const auto show = [&](const Report& report) {
    if (options.format == Format::kText) renderText(out, report, sources, color);
    if (options.format == Format::kGcc) renderGcc(out, report);
    showTrouble(err, report.file, report.trouble);
  };
  show(grammar.report);

  int exitCode = kClean;
  if (!grammar.usable()) {
    err << "nqoml: nothing was checked without a grammar\n";
    exitCode = kTrouble;
  } else {
    for (const std::string& file : options.files) {
      reports.push_back(checkFile(file, in, options, *grammar.grammar, sources, err));
      const Report& report = reports.back();
      show(report);
      exitCode = std::max(exitCode, exitCodeOf(report));
    }
    if (options.format == Format::kText && !options.quiet) {
      renderSummary(out, reports, color);
    }
  }
  if (options.format == Format::kJson) {
    if (!grammar.usable() || !grammar.report.diagnostics.empty()) {
      reports.insert(reports.begin(), grammar.report);
    }
    renderJson(out, reports);
  }
  return exitCode;
}

}  // namespace nqoml

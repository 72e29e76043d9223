#include "tools/nqoml/reading.h"

#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/grammar_file.h"
#include "tools/nqoml/advice.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/text.h"

#include <istream>
#include <ostream>
#include <utility>

namespace nqoml {

namespace {

// The library reports a failing read as "something wrong" that is fatal.
bool isReadError(const Report& report) {
  const Diagnostic& last = report.diagnostics.back();
  return last.severity == Severity::kFatal && last.code == nqdetail::kSomethingWrong;
}

// What the library says of a grammar, as the tool shows it. The texts name further
// places themselves.
Diagnostic shownOf(const NQOMLDiagnostic& said) {
  Diagnostic diagnostic;
  diagnostic.severity = static_cast<Severity>(said.severity);
  diagnostic.code = said.code == NQ_OML_NO_CODE ? -1 : said.code;
  diagnostic.place = {said.file, said.first.line, said.first.column};
  diagnostic.text = said.text;
  diagnostic.message = said.message();
  diagnostic.message.pop_back();  // the line end
  if (!said.hint.empty()) diagnostic.notes.push_back({said.hint, {}});
  return diagnostic;
}

}  // namespace

LoadedGrammar loadGrammar(const std::string& path) {
  LoadedGrammar loaded;
  loaded.report.file = path;
  std::istream none(nullptr);
  const Content content = readContent(path, none, NQ_OML_LARGEST_GRAMMAR_FILE);
  if (!content.trouble.empty()) {
    loaded.report.trouble = "the grammar file " + content.trouble;
    return loaded;
  }
  std::vector<NQOMLDiagnostic> diagnostics;
  loaded.grammar = nqReadGrammarText(content.bytes, path.c_str(), diagnostics);
  for (const NQOMLDiagnostic& said : diagnostics) {
    loaded.report.diagnostics.push_back(shownOf(said));
  }
  return loaded;
}

bool readsBinary(const Input& input, const ReadOptions& options) {
  return options.binary || isSurelyBinary(input.start);
}

Report readReport(CheckingReader& reader, const Input& input, const ReadOptions& options,
                  NQOMLStatic& grammar, SourceCache& sources) {
  Report report;
  report.file = input.shownAs;
  report.binary = readsBinary(input, options);
  if (input.content) sources.hold(input.shownAs, *input.content);
  reader.maxNumberOfErrors(options.maxErrors);
  reader.maxNumberOfWarnings(options.maxWarnings);
  reader.maxNestingDepth(options.maxDepth);
  const NQFileCodeEnum result = reader.read(&grammar, report.binary);
  report.diagnostics = std::move(reader.diagnostics());
  if (result == NQ_FILE_OPEN_ERROR && report.diagnostics.size() == 1 &&
      !report.diagnostics[0].place.known()) {
    report.trouble = whyClosed(input.path);
    report.diagnostics.clear();
    return report;
  }
  if (result != NQ_FILE_OK && (report.errors() == 0 || isReadError(report))) {
    report.trouble = "cannot be read to its end";
  }
  if (!report.binary && !report.diagnostics.empty()) {
    Adviser(Names(grammar), sources).advise(report.diagnostics);
  }
  return report;
}

int exitCodeOf(const Report& report) {
  return !report.trouble.empty() ? kTrouble : report.errors() > 0 ? kErrorsFound : kClean;
}

bool showGrammar(std::ostream& err, const LoadedGrammar& grammar, bool color) {
  SourceCache sources;
  renderText(err, grammar.report, sources, color);
  showTrouble(err, grammar.report.file, grammar.report.trouble);
  return grammar.usable();
}

void showTrouble(std::ostream& err, const std::string& file, const std::string& trouble) {
  if (!trouble.empty()) {
    err << "nqoml: `" << printable(file) << "': " << printable(trouble) << '\n';
  }
}

}  // namespace nqoml

#include "tools/nqoml/check.h"

#include "tools/nqoml/advice.h"
#include "tools/nqoml/grammar_file.h"
#include "tools/nqoml/reader.h"
#include "tools/nqoml/render.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/terminal.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <istream>
#include <iterator>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace nqoml {

namespace {

constexpr std::size_t kLargestGrammar = std::size_t{16} << 20;  // bytes
constexpr std::size_t kLargestCopy = std::size_t{1} << 30;
constexpr char kStandardInput[] = "<stdin>";

std::string directoryOf(const std::string& path) {
  const std::size_t end = path.find_last_of(
#if defined(_WIN32)
      "/\\:"
#else
      '/'
#endif
  );
  return end == std::string::npos ? "." : path.substr(0, end + 1);
}

// The library reports a failing read as "something wrong" that is fatal.
bool isReadError(const Report& report) {
  constexpr int kSomethingWrong = 3;
  const Diagnostic& last = report.diagnostics.back();
  return last.severity == Severity::kFatal && last.code == kSomethingWrong;
}

class Checker {
 public:
  Checker(const CheckOptions& options, const GrammarFile& grammar, SourceCache& sources)
      : options_(options), grammar_(grammar), sources_(sources) {}

  Report check(const std::string& name, std::istream& in) {
    namespace fs = std::filesystem;
    Report report;
    report.file = name == "-" ? kStandardInput : name;
    std::error_code code;
    if (name == "-") {
      const std::string content{std::istreambuf_iterator<char>(in), {}};
      checkCopy(report, content, ".");
    } else if (const auto type = fs::status(name, code).type();
               type == fs::file_type::regular) {
      std::ifstream file(name, std::ios::binary);
      char bytes[16];
      file.read(bytes, sizeof bytes);
      file.close();  // the library opens for itself alone
      checkFile(report, {bytes, static_cast<std::size_t>(file.gcount())}, name,
                directoryOf(name));
    } else if (type == fs::file_type::directory) {
      report.trouble = "is a directory";
    } else if (const auto content = readFile(name, kLargestCopy)) {
      checkCopy(report, *content, directoryOf(name));
    } else {
      report.trouble = "cannot be read";
    }
    return report;
  }

 private:
  // The library reads regular files only: what comes from elsewhere is copied.
  void checkCopy(Report& report, const std::string& content,
                 const std::string& directory) {
    const auto copy = TemporaryFile::make(content);
    if (!copy) {
      report.trouble = "cannot be copied to a temporary file";
      return;
    }
    sources_.hold(report.file, content);
    checkFile(report, content, copy->path(), directory);
  }

  // Checks the file at `path`, which begins with `start`.
  void checkFile(Report& report, std::string_view start, const std::string& path,
                 const std::string& directory) {
    report.binary = options_.binary || isSurelyBinary(start);
    CheckingReader reader(path, report.file, options_.allowIncludes ? "" : directory);
    reader.maxNumberOfErrors(options_.maxErrors);
    reader.maxNumberOfWarnings(options_.maxWarnings);
    reader.maxNestingDepth(options_.maxDepth);
    const NQFileCodeEnum result = reader.read(grammar_.grammar.get(), report.binary);
    report.diagnostics = std::move(reader.diagnostics());
    if (result == NQ_FILE_OPEN_ERROR && report.diagnostics.size() == 1 &&
        !report.diagnostics[0].place.known()) {
      report.trouble = report.diagnostics[0].text;
      report.diagnostics.clear();
      return;
    }
    if (result != NQ_FILE_OK && (report.errors() == 0 || isReadError(report))) {
      report.trouble = "cannot be read to its end";
    }
    if (!report.binary) Adviser(grammar_.names, sources_).advise(report.diagnostics);
  }

  const CheckOptions& options_;
  const GrammarFile& grammar_;
  SourceCache& sources_;
};

}  // namespace

bool isSurelyBinary(std::string_view content) {
  // The first record of a file is a name, and its index follows: four bytes
  // after a capital letter, the highest of which is 0 in any real grammar, or
  // one byte. A text has neither a zero byte nor a control character there.
  if (content.size() < 2) return false;
  const auto index = static_cast<unsigned char>(content[1]);
  switch (content[0]) {
    case 'O':
    case 'F':
    case 'S':
      return index == 0;
    case 'o':
    case 'f':
    case 's':
      return index < ' ' && (index < '\t' || index > '\r');
    default:
      return false;
  }
}

int runCheck(const CheckOptions& options, std::istream& in, std::ostream& out,
             std::ostream& err) {
  SourceCache sources;
  const bool color = options.color == Color::kAlways ||
                     (options.color == Color::kAuto && outputShowsColors());

  const auto text = readFile(options.grammar, kLargestGrammar);
  if (!text) {
    err << "nqoml: the grammar file `" << options.grammar << "' cannot be read\n";
    return kTrouble;
  }
  GrammarFile grammar = parseGrammar(options.grammar, *text);
  std::vector<Report> reports;
  const auto show = [&](const Report& report) {
    if (options.format == Format::kText) renderText(out, report, sources, color);
    if (options.format == Format::kGcc) renderGcc(out, report);
    if (!report.trouble.empty()) {
      err << "nqoml: `" << report.file << "': " << report.trouble << '\n';
    }
  };
  Report grammarReport;
  grammarReport.file = options.grammar;
  grammarReport.diagnostics = std::move(grammar.problems);
  show(grammarReport);

  int exitCode = kClean;
  if (grammar.hasErrors()) {
    err << "nqoml: nothing was checked, as the grammar file has errors\n";
    exitCode = kTrouble;
  } else {
    Checker checker(options, grammar, sources);
    for (const std::string& file : options.files) {
      reports.push_back(checker.check(file, in));
      const Report& report = reports.back();
      show(report);
      const int code = !report.trouble.empty() ? kTrouble
                       : report.errors() > 0   ? kErrorsFound
                                               : kClean;
      exitCode = std::max(exitCode, code);
    }
    if (options.format == Format::kText && !options.quiet) {
      renderSummary(out, reports, color);
    }
  }
  if (options.format == Format::kJson) {
    if (!grammarReport.diagnostics.empty())
      reports.insert(reports.begin(), grammarReport);
    renderJson(out, reports);
  }
  return exitCode;
}

}  // namespace nqoml

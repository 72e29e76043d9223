#include "tools/nqoml/convert.h"

#include "tools/nqoml/output.h"
#include "tools/nqoml/progress.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/terminal.h"
#include "tools/nqoml/tree.h"
#include "tools/nqoml/tree_writer.h"

#include <cmath>
#include <ostream>
#include <string>

namespace nqoml {

namespace {

constexpr int kDeepest = 1024;  // what is read back may nest deeper by its sections
constexpr std::int64_t kManyNodes = 200'000;

class Converter {
 public:
  Converter(const ConvertOptions& options, NQOMLStatic& grammar, std::ostream& err)
      : options_(options), grammar_(grammar), err_(err) {}

  int convert(std::istream& in, std::ostream& out) {
    const Input input = openInput(options_.file, in);
    if (!input.trouble.empty()) return trouble(input.shownAs, input.trouble);
    Output output(options_.output, out);
    if (!output.trouble().empty()) return trouble(options_.output, output.trouble());

    const Report report = write(input, output.path());
    renderText(err_, report, sources_, color());
    showTrouble(err_, report.file, report.trouble);
    if (exitCodeOf(report) != kClean) return exitCodeOf(report);
    if (!trouble_.empty()) return trouble(input.shownAs, trouble_);
    if (!options_.established && !isSame(output.path())) {
      return trouble(input.shownAs, trouble_);
    }
    if (!output.commit()) return trouble(options_.output, output.trouble());
    if (rounded_ > 0) {
      showTrouble(err_, input.shownAs,
                  "real numbers rounded to eight digits: " + std::to_string(rounded_));
    }
    return kClean;
  }

 private:
  bool toBinary() const { return options_.to == Encoding::kBinary; }
  bool color() const {
    return options_.color == When::kAlways ||
           (options_.color == When::kAuto && errorsShowColors());
  }

  int trouble(const std::string& file, const std::string& text) {
    showTrouble(err_, file, text);
    return kTrouble;
  }

  // Reads the input and writes it to `path` while its tree is there.
  Report write(const Input& input, const std::string& path) {
    CheckingReader reader(input.path, input.shownAs,
                          options_.allowIncludes ? "" : input.directory);
    Progress progress(err_, options_.progress, "reading " + input.shownAs);
    reader.reportTo(&progress);
    trouble_ = "cannot be converted";
    reader.onTree([&](const NQOMLSyntaxObject& root) {
      written_ = summarize(root);
      Progress writing(err_, options_.progress, "writing", kManyNodes);
      TreeWriter writer(root, grammar_, writing, written_.nodes);
      const NQFileCodeEnum result = writer.write(path, toBinary(), !options_.established);
      trouble_ = !writer.trouble().empty() ? writer.trouble()
                 : result != NQ_FILE_OK    ? "its conversion cannot be written"
                                           : "";
    });
    return readReport(reader, input, options_, grammar_, sources_);
  }

  // Whether the file at `path` says what was written to it.
  bool isSame(const std::string& path) {
    CheckingReader reader(path, path, ".");
    reader.maxNestingDepth(kDeepest);
    Progress progress(err_, options_.progress, "reading back");
    reader.reportTo(&progress);
    TreeSummary readBack;
    reader.onTree([&](const NQOMLSyntaxObject& root) { readBack = summarize(root); });
    const NQFileCodeEnum result = reader.read(&grammar_, toBinary());
    if (result == NQ_FILE_OK && readBack.digest == written_.digest &&
        sameReals(readBack)) {
      return true;
    }
    trouble_ = std::string("holds something that the ") +
               (toBinary() ? "binary" : "text") + " encoding cannot say";
    if (!reader.diagnostics().empty()) {
      trouble_ += " (" + reader.diagnostics().front().text + ")";
    }
    return false;
  }

  // A real in the binary encoding has eight digits.
  bool sameReals(const TreeSummary& readBack) {
    constexpr double kEightDigits = 1e-7;
    if (written_.reals.size() != readBack.reals.size()) return false;
    for (std::size_t i = 0; i < written_.reals.size(); ++i) {
      const double before = written_.reals[i];
      const double after = readBack.reals[i];
      if (before == after) continue;
      if (!toBinary() || std::abs(before - after) > kEightDigits * std::abs(before)) {
        return false;
      }
      ++rounded_;
    }
    return true;
  }

  const ConvertOptions& options_;
  NQOMLStatic& grammar_;
  std::ostream& err_;
  SourceCache sources_;
  TreeSummary written_;
  std::int64_t rounded_ = 0;
  std::string trouble_;
};

}  // namespace

int runConvert(const ConvertOptions& options, std::istream& in, std::ostream& out,
               std::ostream& err) {
  const LoadedGrammar grammar = loadGrammar(options.grammar);
  if (!showGrammar(err, grammar, errorsShowColors())) return kTrouble;
  return Converter(options, *grammar.grammar, err).convert(in, out);
}

}  // namespace nqoml

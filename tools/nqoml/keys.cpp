#include "tools/nqoml/keys.h"

#include "tools/nqoml/output.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/terminal.h"

#include <fstream>
#include <ostream>
#include <string>

namespace nqoml {

namespace {

// Each of the four blocks has two empty lines, and one ends the header: where
// writing broke off, some are missing.
bool isWhole(const std::string& header) {
  constexpr int kEmptyLines = 9;
  std::ifstream file(header, std::ios::binary);
  int count = 0;
  for (std::string line; std::getline(file, line);) {
    if (line == "\r" && !file.eof()) ++count;
  }
  return count == kEmptyLines;
}

}  // namespace

int runKeys(const KeysOptions& options, std::ostream& out, std::ostream& err) {
  const LoadedGrammar grammar = loadGrammar(options.grammar);
  if (!showGrammar(err, grammar, errorsShowColors())) return kTrouble;

  Output output(options.output, out);
  std::string trouble = output.trouble();
  if (trouble.empty()) {
    grammar.file.grammar->writeIndexDefinitions(output.path().c_str());
    // The library does not tell whether it could write.
    if (!isWhole(output.path())) {
      trouble = "cannot be written";
    } else if (!output.commit()) {
      trouble = output.trouble();
    }
  }
  showTrouble(err, options.output, trouble);
  return trouble.empty() ? kClean : kTrouble;
}

}  // namespace nqoml

#include "tools/nqoml/keys.h"

#include "tools/nqoml/output.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/terminal.h"

#include <filesystem>
#include <ostream>
#include <system_error>

namespace nqoml {

int runKeys(const KeysOptions& options, std::ostream& out, std::ostream& err) {
  const LoadedGrammar grammar = loadGrammar(options.grammar);
  if (!showGrammar(err, grammar, errorsShowColors())) return kTrouble;

  Output output(options.output, out);
  std::string trouble = output.trouble();
  if (trouble.empty()) {
    grammar.file.grammar->writeIndexDefinitions(output.path().c_str());
    // The library does not tell whether it could write; every header has lines.
    std::error_code code;
    if (std::filesystem::file_size(output.path(), code) == 0 || code) {
      trouble = "cannot be written";
    } else if (!output.commit()) {
      trouble = output.trouble();
    }
  }
  showTrouble(err, options.output, trouble);
  return trouble.empty() ? kClean : kTrouble;
}

}  // namespace nqoml

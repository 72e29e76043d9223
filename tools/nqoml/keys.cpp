#include "tools/nqoml/keys.h"

#include "tools/nqoml/output.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/terminal.h"

#include <ostream>
#include <string>

namespace nqoml {

int runKeys(const KeysOptions& options, std::ostream& out, std::ostream& err) {
  const LoadedGrammar grammar = loadGrammar(options.grammar);
  if (!showGrammar(err, grammar, errorsShowColors())) return kTrouble;

  Output output(options.output, out);
  std::string trouble = output.trouble();
  if (trouble.empty()) {
    if (grammar.grammar->writeIndexDefinitions(output.path().c_str()) != NQ_FILE_OK) {
      trouble = "cannot be written";
    } else if (!output.commit()) {
      trouble = output.trouble();
    }
  }
  showTrouble(err, options.output, trouble);
  return trouble.empty() ? kClean : kTrouble;
}

}  // namespace nqoml

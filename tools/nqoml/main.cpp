// nqoml -- works on OML files from the command line.

#include "tools/nqoml/check.h"
#include "tools/nqoml/convert.h"
#include "tools/nqoml/dump.h"
#include "tools/nqoml/format.h"
#include "tools/nqoml/keys.h"
#include "tools/nqoml/options.h"
#include "tools/nqoml/terminal.h"

#include <exception>
#include <iostream>

namespace {

// Carries out one command; each is one call.
struct Runner {
  int operator()(const nqoml::CheckOptions& options) const {
    return nqoml::runCheck(options, std::cin, std::cout, std::cerr);
  }
  int operator()(const nqoml::ConvertOptions& options) const {
    return nqoml::runConvert(options, std::cin, std::cout, std::cerr);
  }
  int operator()(const nqoml::FormatOptions& options) const {
    return nqoml::runFormat(options, std::cin, std::cout, std::cerr);
  }
  int operator()(const nqoml::DumpOptions& options) const {
    return nqoml::runDump(options, std::cin, std::cout, std::cerr);
  }
  int operator()(const nqoml::KeysOptions& options) const {
    return nqoml::runKeys(options, std::cout, std::cerr);
  }
};

}  // namespace

int main(int argc, char** argv) {
  nqoml::prepareStreams();
  nqoml::cleanUpOnSignals();
  std::ios::sync_with_stdio(false);
  int exitCode = nqoml::kClean;
  try {
    const auto command = nqoml::parseOptions(argc, argv, std::cout, std::cerr, exitCode);
    if (command) exitCode = std::visit(Runner{}, *command);
    std::cout.flush();
    if (std::cout || exitCode == nqoml::kTrouble) return exitCode;
    std::cerr << "nqoml: standard output cannot be written\n";
  } catch (const std::exception& error) {  // no memory left, above all
    std::cerr << "nqoml: " << error.what() << '\n';
  }
  return nqoml::kTrouble;
}

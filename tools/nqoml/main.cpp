// nqoml -- works on OML files from the command line.

#include "tools/nqoml/check.h"
#include "tools/nqoml/options.h"
#include "tools/nqoml/terminal.h"

#include <iostream>

int main(int argc, char** argv) {
  nqoml::useBinaryStreams();
  std::ios::sync_with_stdio(false);
  int exitCode = nqoml::kClean;
  const auto options = nqoml::parseOptions(argc, argv, std::cout, std::cerr, exitCode);
  if (options) exitCode = nqoml::runCheck(*options, std::cin, std::cout, std::cerr);
  std::cout.flush();
  return std::cout ? exitCode : nqoml::kTrouble;
}

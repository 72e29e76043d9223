// options.h -- what the command line asks for.

#ifndef NQ_TOOLS_NQOML_OPTIONS_H
#define NQ_TOOLS_NQOML_OPTIONS_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace nqoml {

// What the program answers to its caller.
enum ExitCode : int { kClean = 0, kErrorsFound = 1, kTrouble = 2 };

enum class Format { kText, kGcc, kJson };
enum class Color { kAuto, kAlways, kNever };

struct CheckOptions {
  std::string grammar;
  std::vector<std::string> files;  // "-" is standard input
  Format format = Format::kText;
  Color color = Color::kAuto;
  bool binary = false;  // taken as binary whatever the content looks like
  bool allowIncludes = false;
  bool quiet = false;
  int maxErrors = 16;
  int maxWarnings = 32000;
  int maxDepth = 256;
};

// The options of `nqoml check`. Nothing when there is nothing more to do (help
// or version was asked for, or the command line is wrong): then what is to be
// said went to `out` or `err`, and `exitCode` is set.
std::optional<CheckOptions> parseOptions(int argc, const char* const* argv,
                                         std::ostream& out, std::ostream& err,
                                         int& exitCode);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_OPTIONS_H

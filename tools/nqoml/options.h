// options.h -- what the command line asks for.

#ifndef NQ_TOOLS_NQOML_OPTIONS_H
#define NQ_TOOLS_NQOML_OPTIONS_H

#include <iosfwd>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace nqoml {

// What the program answers to its caller.
enum ExitCode : int { kClean = 0, kErrorsFound = 1, kTrouble = 2 };

enum class Format { kText, kGcc, kJson };
enum class When { kAuto, kAlways, kNever };
enum class Encoding { kText, kBinary };

// How files are read against a grammar. In all options "-" as a file is
// standard input, or standard output where something is written.
struct ReadOptions {
  std::string grammar;
  bool binary = false;  // taken as binary whatever the content looks like
  bool allowIncludes = false;
  int maxErrors = 16;
  int maxWarnings = 32000;
  int maxDepth = 256;
  When color = When::kAuto;
  When progress = When::kAuto;
};

struct CheckOptions : ReadOptions {
  std::vector<std::string> files;
  Format format = Format::kText;
  bool quiet = false;
};

struct ConvertOptions : ReadOptions {
  std::string file;
  std::string output = "-";
  Encoding to = Encoding::kText;
  bool established = false;  // exactly as other programs write, with some loss
};

struct FormatOptions {
  std::vector<std::string> files;
  bool check = false;  // only tells
  bool diff = false;   // only shows
  int indent = 2;      // blanks for each open bracket; 0 is a tab
};

struct DumpOptions {
  std::string file;
  std::string grammar;  // "" for none
};

struct KeysOptions {
  std::string grammar;
  std::string output = "-";
};

using Command =
    std::variant<CheckOptions, ConvertOptions, FormatOptions, DumpOptions, KeysOptions>;

// What the command line asks for. Nothing when there is nothing more to do (help
// or version was asked for, or the command line is wrong): then what is to be
// said went to `out` or `err`, and `exitCode` is set.
std::optional<Command> parseOptions(int argc, const char* const* argv, std::ostream& out,
                                    std::ostream& err, int& exitCode);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_OPTIONS_H

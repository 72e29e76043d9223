#include "tools/nqoml/options.h"

#include <CLI/CLI.hpp>
#include <string>

namespace nqoml {

std::optional<CheckOptions> parseOptions(int argc, const char* const* argv,
                                         std::ostream& out, std::ostream& err,
                                         int& exitCode) {
  CheckOptions options;
  CLI::App app("Works on OML files: finds out what is wrong with them, and where.",
               "nqoml");
  app.set_version_flag("--version", "nqoml " NQOML_VERSION);
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // "/path" is a path everywhere
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string("nqoml: ") + error.what() + "\nnqoml check --help tells more\n";
  });

  CLI::App* check = app.add_subcommand(
      "check", "Checks OML files against a grammar and shows each error in its line.");
  check->footer(
      "Answers 0 when every file is clean, 1 when errors were found, and 2 when the\n"
      "command line, the grammar file or the reading of a file was at fault.");
  check->add_option("-g,--grammar", options.grammar, "the grammar file")
      ->required()
      ->type_name("FILE");
  check->add_option("files", options.files, "the files to check; - is standard input")
      ->required()
      ->type_name("FILE");
  std::string format = "text";
  std::string color = "auto";
  check
      ->add_option("--format", format,
                   "text for people, gcc for editors, json for programs (default: text)")
      ->check(CLI::IsMember({"text", "gcc", "json"}))
      ->option_text("text|gcc|json");
  check->add_option("--color", color, "colours in text (default: auto)")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->option_text("auto|always|never");
  check->add_flag("--binary", options.binary,
                  "the files are in the binary encoding, where that does not show");
  check->add_flag("--allow-includes", options.allowIncludes,
                  "read included files from anywhere, not only from the directory of the "
                  "file that is checked and those below it");
  check->add_flag("-q,--quiet", options.quiet, "no closing line, only what is wrong");
  check
      ->add_option("--max-errors", options.maxErrors, "stop after N errors (default: 16)")
      ->check(CLI::Range(1, 1000000))
      ->option_text("N");
  check
      ->add_option("--max-warnings", options.maxWarnings,
                   "stop after N warnings (default: 32000)")
      ->check(CLI::Range(1, 1000000))
      ->option_text("N");
  check
      ->add_option("--max-depth", options.maxDepth,
                   "how deep blocks may nest (default: 256)")
      ->check(CLI::Range(1, 1024))
      ->option_text("N");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    exitCode = app.exit(error, out, err) == 0 ? kClean : kTrouble;
    return std::nullopt;
  }
  options.format = format == "gcc"    ? Format::kGcc
                   : format == "json" ? Format::kJson
                                      : Format::kText;
  options.color = color == "always"  ? Color::kAlways
                  : color == "never" ? Color::kNever
                                     : Color::kAuto;
  exitCode = kClean;
  return options;
}

}  // namespace nqoml

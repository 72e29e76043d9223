#include "tools/nqoml/options.h"

#include <CLI/CLI.hpp>
#include <string>

namespace nqoml {

namespace {

// For options whose values are words.
template <class Value>
using Words = std::vector<std::pair<std::string, Value>>;

template <class Value>
void addChoice(CLI::App& command, const char* name, Value& value, const char* text,
               const Words<Value>& words) {
  std::string shown;
  std::vector<std::string> known;
  for (const auto& [word, meaning] : words) {
    shown += (shown.empty() ? "" : "|") + word;
    known.push_back(word);
  }
  command
      .add_option_function<std::string>(
          name,
          [&value, words](const std::string& given) {
            for (const auto& [word, meaning] : words) {
              if (word == given) value = meaning;
            }
          },
          text)
      ->check(CLI::IsMember(known))
      ->option_text(shown);
}

const Words<When> kWhen = {
    {"auto", When::kAuto}, {"always", When::kAlways}, {"never", When::kNever}};

void addReadOptions(CLI::App& command, ReadOptions& options) {
  command.add_option("-g,--grammar", options.grammar, "the grammar file")
      ->required()
      ->type_name("FILE");
  addChoice(command, "--color", options.color, "colours in messages (default: auto)",
            kWhen);
  addChoice(command, "--progress", options.progress,
            "a bar while large files are read (default: auto)", kWhen);
  command.add_flag("--binary", options.binary,
                   "what is read is in the binary encoding, where that does not show");
  command.add_flag(
      "--allow-includes", options.allowIncludes,
      "read included files from anywhere, not only from the directory of the "
      "file that is read and those below it");
  command
      .add_option("--max-errors", options.maxErrors, "stop after N errors (default: 16)")
      ->check(CLI::Range(1, 1000000))
      ->option_text("N");
  command
      .add_option("--max-warnings", options.maxWarnings,
                  "stop after N warnings (default: 32000)")
      ->check(CLI::Range(1, 1000000))
      ->option_text("N");
  command
      .add_option("--max-depth", options.maxDepth,
                  "how deep blocks may nest (default: 256)")
      ->check(CLI::Range(1, 1024))
      ->option_text("N");
}

void addCheck(CLI::App& app, CheckOptions& options) {
  CLI::App& command = *app.add_subcommand(
      "check", "Checks OML files against a grammar and shows each error in its line.");
  command.footer(
      "Answers 0 when every file is clean, 1 when errors were found, and 2 when the\n"
      "command line, the grammar file or the reading of a file was at fault.");
  addReadOptions(command, options);
  command.add_option("files", options.files, "the files to check; - is standard input")
      ->required()
      ->type_name("FILE");
  addChoice(command, "--format", options.format,
            "text for people, gcc for editors, json for programs (default: text)",
            {{"text", Format::kText}, {"gcc", Format::kGcc}, {"json", Format::kJson}});
  command.add_flag("-q,--quiet", options.quiet, "no closing line, only what is wrong");
}

void addConvert(CLI::App& app, ConvertOptions& options) {
  CLI::App& command =
      *app.add_subcommand("convert", "Writes a file in the text or the binary encoding.");
  command.footer(
      "A file with errors is not converted. Answers 0 when the file was written, 1 when\n"
      "it has errors, and 2 when the command line, the grammar file, or reading or\n"
      "writing a file was at fault; what the output was before, it then still is.");
  addReadOptions(command, options);
  command.add_option("file", options.file, "the file to convert; - is standard input")
      ->required()
      ->type_name("FILE");
  command.add_option("-o,--output", options.output, "where to write (default: -)")
      ->type_name("FILE");
  addChoice(command, "--to", options.to, "the encoding to write",
            {{"text", Encoding::kText}, {"binary", Encoding::kBinary}});
  command.get_option("--to")->required();
  command.add_flag("--established", options.established,
                   "write exactly as programs have always written, which loses something "
                   "of strings, reals and binary values");
}

void addFormat(CLI::App& app, FormatOptions& options) {
  CLI::App& command = *app.add_subcommand(
      "format", "Lays text files out alike: indentation, blanks, empty lines.");
  command.footer(
      "Comments, includes and the spelling of values stay as they are, and so does the\n"
      "division into lines. Answers 0; 1 when a bracket, string or comment of a file "
      "has\n"
      "no end, and with --check when a file would change; 2 when the command line, or\n"
      "reading or writing a file was at fault. A file that fails stays as it was.");
  command
      .add_option("files", options.files,
                  "the files to format in place; - goes from standard input to output")
      ->required()
      ->type_name("FILE");
  command.add_flag("--check", options.check,
                   "change nothing, only tell what would change");
  command.add_flag("--diff", options.diff, "change nothing, show what would change");
  command
      .add_option("--indent", options.indent,
                  "blanks for each open bracket, 0 for a tab (default: 2)")
      ->check(CLI::Range(0, 16))
      ->option_text("N");
}

void addDump(CLI::App& app, DumpOptions& options) {
  CLI::App& command =
      *app.add_subcommand("dump", "Shows a binary file record by record.");
  command.footer(
      "Damaged places are shown as such, and the rest after them. Answers 0 when every\n"
      "byte belongs to a whole record, 1 when some do not, and 2 when the file or the\n"
      "grammar cannot be read.");
  command.add_option("-g,--grammar", options.grammar, "shows the names of indices")
      ->type_name("FILE");
  command.add_option("file", options.file, "the file to show; - is standard input")
      ->required()
      ->type_name("FILE");
}

void addKeys(CLI::App& app, KeysOptions& options) {
  CLI::App& command = *app.add_subcommand(
      "keys", "Writes a C header of the indices of a grammar's names.");
  command.add_option("grammar", options.grammar, "the grammar file")
      ->required()
      ->type_name("FILE");
  command.add_option("-o,--output", options.output, "where to write (default: -)")
      ->type_name("FILE");
}

}  // namespace

std::optional<Command> parseOptions(int argc, const char* const* argv, std::ostream& out,
                                    std::ostream& err, int& exitCode) {
  CLI::App app("Works on OML files.", "nqoml");
  app.set_version_flag("--version", "nqoml " NQOML_VERSION);
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // "/path" is a path everywhere
  app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
    // The command's own help, when one was named.
    const auto commands = failed->get_subcommands();
    const std::string name = commands.empty() ? "" : commands.front()->get_name() + " ";
    const auto unknown = failed->remaining();
    const std::string what = commands.empty() && !unknown.empty()
                                 ? "there is no command " + unknown.front()
                                 : error.what();
    return "nqoml: " + what + "\nnqoml " + name + "--help tells more\n";
  });

  CheckOptions check;
  ConvertOptions convert;
  FormatOptions format;
  DumpOptions dump;
  KeysOptions keys;
  addCheck(app, check);
  addConvert(app, convert);
  addFormat(app, format);
  addDump(app, dump);
  addKeys(app, keys);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    exitCode = app.exit(error, out, err) == 0 ? kClean : kTrouble;
    return std::nullopt;
  }
  exitCode = kClean;
  if (app.got_subcommand("check")) return check;
  if (app.got_subcommand("convert")) return convert;
  if (app.got_subcommand("format")) return format;
  if (app.got_subcommand("dump")) return dump;
  return keys;
}

}  // namespace nqoml

// tool_test.h -- what tests of commands share: a folder of their own, and a look at
// what a file says.

#ifndef NQ_TESTS_TOOLS_TOOL_TEST_H
#define NQ_TESTS_TOOLS_TOOL_TEST_H

#include "tools/nqoml/reader.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/tree.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace nqoml {

// What reading a file comes to: the errors, or else the objects that are made.
struct Reading {
  std::vector<std::string> errors;  // "code text"
  TreeSummary tree;

  bool operator==(const Reading& other) const {
    return errors == other.errors && tree.digest == other.tree.digest &&
           tree.reals == other.tree.reals;
  }
};

class ToolTest : public testing::Test {
 protected:
  void SetUp() override {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              (std::string("nqoml_") + test->name() + "_" +
               std::to_string(std::random_device{}()));
    std::filesystem::create_directories(folder_ / "inner");
  }
  void TearDown() override {
    std::error_code code;
    std::filesystem::remove_all(folder_, code);
  }

  std::string pathOf(const char* name) const { return (folder_ / name).string(); }
  std::string write(const char* name, const std::string& text) const {
    std::ofstream(pathOf(name), std::ios::binary) << text;
    return pathOf(name);
  }
  std::string content(const char* name) const {
    return readFile(pathOf(name), 1 << 26).value_or("(no file)");
  }
  // How many files are there, folders not counted.
  long files() const {
    long count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      count += entry.is_regular_file() ? 1 : 0;
    }
    return count;
  }

  Reading read(const std::string& text, bool binary = false) const {
    static const LoadedGrammar grammar = loadGrammar(NQ_SAMPLES "graph.grammar");
    CheckingReader reader(write("read", text), "read", "");
    reader.maxNumberOfErrors(100000);
    Reading reading;
    reader.onTree(
        [&reading](const NQOMLSyntaxObject& root) { reading.tree = summarize(root); });
    reader.read(grammar.grammar.get(), binary);
    for (const Diagnostic& diagnostic : reader.diagnostics()) {
      // Some texts end with a place in parentheses.
      reading.errors.push_back(std::to_string(diagnostic.code) + " " +
                               diagnostic.text.substr(0, diagnostic.text.find(" (")));
    }
    return reading;
  }

  // Runs a command; output and errors are in out_ and err_.
  template <class Options>
  int run(int (*command)(const Options&, std::istream&, std::ostream&, std::ostream&),
          const Options& options, const std::string& input = {}) {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    const int code = command(options, in, out, err);
    out_ = out.str();
    err_ = err.str();
    return code;
  }

  std::filesystem::path folder_;
  std::string out_;
  std::string err_;
};

// A sample's text.
inline std::string sample(const char* name) {
  return readFile(std::string(NQ_SAMPLES) + name, 1 << 20).value_or("");
}

}  // namespace nqoml

#endif  // NQ_TESTS_TOOLS_TOOL_TEST_H

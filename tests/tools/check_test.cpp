#include "tools/nqoml/check.h"

#include "nq/file/file.h"
#include "tests/tools/tool_test.h"

#include <string_view>

namespace nqoml {
namespace {

namespace fs = std::filesystem;

class Check : public ToolTest {
 protected:
  Check() { options_.grammar = NQ_SAMPLES "graph.grammar"; }
  int run(const std::string& input = {}) {
    return ToolTest::run(runCheck, options_, input);
  }

  CheckOptions options_;
};

TEST_F(Check, DamagedFilesAreAnsweredInEveryFormat) {
  const std::string network = *readFile(NQ_SAMPLES "network.oml", 1 << 20);
  const std::string karate = *readFile(NQ_SAMPLES "karate.oml", 1 << 20);
  std::mt19937 random(7);
  options_.files = {"-"};
  int broken = 0;
  for (int round = 0; round < 600; ++round) {
    std::string text = round % 2 == 0 ? network : karate;
    if (round % 3 == 0) text.resize(random() % text.size());
    for (int i = round % 5; i > 0 && !text.empty(); --i) {
      text[random() % text.size()] = static_cast<char>(random() % 256);
    }
    options_.format = static_cast<Format>(round % 3);
    options_.color = round % 4 == 0 ? When::kAlways : When::kNever;
    options_.maxErrors = round % 7 == 0 ? 1000 : 16;
    options_.binary = round % 11 == 0;
    const int code = run(text);
    ASSERT_TRUE(code == kClean || code == kErrorsFound) << err_;
    ASSERT_EQ(err_, "");
    broken += code;
    // Nothing that a terminal or a program would trip over.
    for (const char c : out_) {
      ASSERT_TRUE(c == '\n' || c == '\t' || c < 0 || c >= ' ' ||
                  (c == '\x1b' && options_.color == When::kAlways))
          << static_cast<int>(c);
    }
  }
  EXPECT_GT(broken, 400);
}

TEST_F(Check, IncludesStayBelowTheCheckedFile) {
  const std::string graph = "graph g { directed: true include: \"";
  write("outside.oml", "node a");
  write("inner/beside.oml", "node a");
  fs::create_directories(folder_ / "inner" / "below");
  write("inner/below/part.oml", "node a include: \"../beside.oml\";");
  const struct {
    std::string name;
    int code;
  } rows[] = {{"beside.oml", kClean},
              {"below/part.oml", kClean},
              {"below/../beside.oml", kClean},
              {"../outside.oml", kErrorsFound},
              {"below/../../outside.oml", kErrorsFound},
              {(folder_ / "outside.oml").generic_string(), kErrorsFound},
              {(folder_ / "inner" / "beside.oml").generic_string(), kClean},
              {"link.oml", kErrorsFound}};
  std::error_code code;
  fs::create_symlink(folder_ / "outside.oml", folder_ / "inner" / "link.oml", code);
  for (const auto& row : rows) {
    if (row.name == "link.oml" && code) continue;  // no links here
    options_.files = {write("inner/main.oml", graph + row.name + "\";}")};
    options_.allowIncludes = false;
    const int restricted = run();
    EXPECT_EQ(restricted, row.code) << row.name << "\n" << out_;
    EXPECT_EQ(out_.find("--allow-includes") != std::string::npos, row.code != kClean);
    options_.allowIncludes = true;
    EXPECT_EQ(run(), kClean) << row.name << "\n" << out_;
  }
}

TEST_F(Check, TellsWhyAFileIsNotIncluded) {
  const std::string outer = write("inner/outer.oml", "graph g { include \"main.oml\"; }");
  const struct {
    std::string name;
    std::string hint;
  } rows[] = {
      {"missing.oml", "`" + pathOf("inner/missing.oml") + "' does not exist"},
      {"folder", "`" + pathOf("inner/folder") + "' is a directory"},
      {"main.oml", "a file cannot include itself, over whatever detour"},
      {"outer.oml", "a file cannot include itself, over whatever detour"},
      {"../inner/./outer.oml", "a file cannot include itself, over whatever detour"},
      {std::string(300, 'x'), "too many files are included, or too many within each "},
  };
  fs::create_directories(folder_ / "inner" / "folder");
  options_.files = {outer};
  for (const auto& row : rows) {
    write("inner/twice.oml", "node a");
    write("inner/main.oml",
          "include \"twice.oml\"; include \"twice.oml\"; include \"" + row.name + "\";");
    EXPECT_EQ(run(), kErrorsFound) << row.name;
    EXPECT_NE(out_.find("hint: " + row.hint), std::string::npos) << out_;
  }
  // So many that the last is not even tried, though it is there.
  std::string many;
  for (int i = 0; i < 1000; ++i) many += "include \"twice.oml\";\n";
  write("inner/main.oml", many);
  EXPECT_EQ(run(), kErrorsFound);
  EXPECT_NE(out_.find("hint: too many files are included"), std::string::npos) << out_;
  // Standard input has the current directory only.
  options_.files = {"-"};
  EXPECT_EQ(run("graph g { include \"" + fs::path(outer).generic_string() + "\"; }"),
            kErrorsFound);
  EXPECT_NE(out_.find("--allow-includes lifts this"), std::string::npos) << out_;
  options_.allowIncludes = true;
  EXPECT_EQ(run("graph g { include \"missing.oml\"; }"), kErrorsFound);
  EXPECT_NE(out_.find("hint: `missing.oml' does not exist"), std::string::npos) << out_;
}

TEST_F(Check, ReadsFilesBesideOtherReaders) {
  options_.files = {write("main.oml", "graph g { directed true include \"part.oml\"; }")};
  write("part.oml", "node a");
  for (const char* name : {"main.oml", "part.oml"}) {
    NQFile other;
    other.sharedReading(1);
    ASSERT_EQ(other.open(pathOf(name).c_str(), NQ_READ), NQ_FILE_OK);
    EXPECT_EQ(run(), kClean) << out_ << err_;
    other.sharedReading(0);
    ASSERT_EQ(other.open(pathOf(name).c_str(), NQ_READ), NQ_FILE_OK);
    const bool isMain = std::string_view(name) == "main.oml";
    EXPECT_EQ(run(), isMain ? kTrouble : kErrorsFound);
    EXPECT_NE((isMain ? err_ : out_).find("is in use by another program"),
              std::string::npos)
        << out_ << err_;
  }
}

TEST_F(Check, TheWorstFileDecides) {
  const std::string clean = write("clean.oml", "graph g { directed: true }");
  const std::string faulty = write("faulty.oml", "graph g { }");
  const std::string missing = (folder_ / "missing.oml").string();
  const struct {
    std::vector<std::string> files;
    int code;
    const char* summary;
  } rows[] = {{{clean}, kClean, "1 file checked: no errors\n"},
              {{clean, faulty, clean}, kErrorsFound, "3 files checked: 1 error\n"},
              {{missing, faulty}, kTrouble, "1 file checked: 1 error, 1 file not read\n"},
              {{folder_.string(), clean},
               kTrouble,
               "1 file checked: no errors, 1 file not read\n"}};
  for (const auto& row : rows) {
    options_.files = row.files;
    EXPECT_EQ(run(), row.code) << err_;
    EXPECT_TRUE(out_.ends_with(row.summary)) << out_;
    EXPECT_EQ(err_.empty(), row.code != kTrouble) << err_;
  }
  options_.quiet = true;
  options_.files = {clean};
  EXPECT_EQ(run(), kClean);
  EXPECT_EQ(out_, "");
}

}  // namespace
}  // namespace nqoml

#include "tools/nqoml/format.h"

#include "tests/tools/tool_test.h"
#include "tools/nqoml/diff.h"
#include "tools/nqoml/layout.h"

namespace nqoml {
namespace {

TEST(Layout, Rows) {
  const struct {
    const char* text;
    const char* layout;
  } kRows[] = {
      {"", ""},
      {" \n\t\n", ""},
      {"a", "a\n"},
      {"\n\n a  \n\n\n\n b\n\n", "a\n\nb\n"},
      // Blanks: none before ":" and ";", one or two elsewhere.
      {"a :b;c = d=e", "a: b; c = d = e\n"},
      {"a:1    b:\t2 ; c", "a: 1  b: 2; c\n"},
      {"a{b{ }c(1 2)}", "a { b {} c ( 1 2 ) }\n"},
      {"x\"s\"\"t\"y", "x \"s\" \"t\" y\n"},
      // Indentation follows the brackets, closing ones first of all on a line.
      {"a\n{\nb {\nc\n} }\nd", "a\n{\n  b {\n    c\n} }\nd\n"},
      {"a {\n} b {\nc\n} ; }", nullptr},
      // Comments keep their place and their text.
      {"a// b  \n/*c\n  d */e /* f*/\n# g\n", "a  // b\n/*c\n  d */ e /* f*/\n# g\n"},
      {"{\n//a\n}", "{\n  //a\n}\n"},
      {"a /b/ //\nc/d", "a /b/  //\nc/d\n"},
      {"/*/ \"*/ a", "/*/ \"*/ a\n"},
      // Strings and numbers are copied; an odd digit takes what follows it.
      {"s:\"a  b\\\"  \n  c\"  t", "s: \"a  b\\\"  \n  c\"  t\n"},
      {"0xab   0xabc  d  e", "0xab  0xabc  d  e\n"},
      {"0xabc\n   1", "0xabc\n  1\n"},
      {"$,a|b   -1.5e3   1.2.3.4,", "$,a|b  -1.5e3  1.2.3.4,\n"},
      // Line ends are those of the first line.
      {"a\r\n b\n\rc\rd", "a\r\nb\r\nc\r\nd\r\n"},
      {"a\n\"b\r\nc\"", "a\n\"b\nc\"\n"},
      // What is not read is not touched.
      {"skip  {a   \"b\n  } c", "skip  {a   \"b\n  } c\n"},
      {"skip  {a   b\n   c  {} }   d", "skip  {a   b\n   c  {} }  d\n"},
      {"skip { \" } a   \"b\"", "skip { \" } a  \"b\"\n"},
      {"section:\"s\" s {  x  }  layout {  y  }",
       "section: \"s\" s {  x  }  layout {  y  }\n"},
      {"field  \"f\" f:  1   2  \"  \n  a   b", "field  \"f\" f: 1  2  \"\na  b\n"},
      {"field{\"f\"}\nf:\n  \"x\"   2   {  \n  a   b",
       "field { \"f\" }\nf:\n\"x\"  2   {\na  b\n"},
  };
  for (const auto& row : kRows) {
    const Layout layout = layOut(row.text, 2);
    if (row.layout == nullptr) {
      EXPECT_NE(layout.trouble, "") << row.text << "\n" << layout.text;
      continue;
    }
    EXPECT_EQ(layout.text, row.layout) << row.text << "\n" << layout.trouble;
    EXPECT_EQ(layOut(layout.text, 2).text, row.layout) << row.text;
  }
  EXPECT_EQ(layOut("a {\nb }", 0).text, "a {\n\tb }\n");
  // However deep brackets nest, the text stays in proportion.
  constexpr std::size_t kMany = 100000;
  std::string deep;
  for (std::size_t i = 0; i < kMany; ++i) deep += "{\n";
  for (std::size_t i = 0; i < kMany; ++i) deep += "}\n";
  const Layout layout = layOut(deep, 2);
  EXPECT_EQ(layout.trouble, "");
  EXPECT_LT(layout.text.size(), 100 * deep.size());
  EXPECT_EQ(layOut(layout.text, 2).text, layout.text);
}

TEST(Layout, RefusesWhatCannotBeKept) {
  const struct {
    const char* text;
    long line;
    long column;
  } kRows[] = {
      {"a\n \"b", 2, 2},
      {"a /* b", 1, 3},
      {"a\r\nb {\r\n{ }", 2, 3},
      {"a\n}", 2, 1},
      {"{ ]", 1, 3},
      {"skip {", 1, 6},
      // Only a grammar could tell what is read here.
      {"skip a { \" } \" }", 1, 8},
      {"field \"f\" f { 1 }", 1, 13},
      {"field \"f\" f a \"b\n\"", 1, 14},
      {"comment \"unchecked\" skip { \"}\" }", 1, 26},
  };
  for (const auto& row : kRows) {
    const Layout layout = layOut(row.text, 2);
    EXPECT_NE(layout.trouble, "") << row.text;
    EXPECT_EQ(layout.line, row.line) << row.text;
    EXPECT_EQ(layout.column, row.column) << row.text;
    EXPECT_EQ(layout.text, "");
  }
}

class FormatTest : public ToolTest {
 protected:
  // The text with its blanks changed and some bytes damaged.
  std::string disturbed(std::string text, int damages) {
    static constexpr std::string_view kBytes =
        " \t\n\r{}[]()<>:=;\"#/*\\x0a,|$.-+1e_'\xff";
    std::string result;
    for (const char c : text) {
      result += c;
      if (c == ' ' && random_() % 8 == 0)
        result.append(random_() % 4, random_() % 2 ? ' ' : '\t');
      if (c == '\n' && random_() % 8 == 0) result.append(random_() % 3, '\n');
    }
    for (; damages > 0; --damages) {
      const std::size_t at = random_() % result.size();
      const char c = kBytes[random_() % kBytes.size()];
      if (random_() % 2 == 0) {
        result[at] = c;
      } else {
        result.insert(at, 1, c);
      }
    }
    return result;
  }

  std::mt19937 random_{11};
  FormatOptions options_;
};

TEST_F(FormatTest, NeverChangesWhatIsRead) {
  // Everything that is read line by line or not at all is in front of the sample.
  std::string network = sample("network.oml");
  const std::size_t include = network.find("include");
  network.erase(include, network.find('\n', include) - include);
  const std::string text = "field: \"junk\"  section: \"mine\"\njunk: 1 \" { \n" +
                           network + "mine { \" }\njunk layout\n";
  int formatted = 0;
  for (int round = 0; round < 400; ++round) {
    const std::string before = disturbed(text, round % 4);
    const Layout layout = layOut(before, round % 3);
    if (!layout.trouble.empty()) continue;
    ++formatted;
    const Layout again = layOut(layout.text, round % 3);
    ASSERT_EQ(again.text, layout.text) << before;
    ASSERT_EQ(again.tokens, layout.tokens);
    ASSERT_TRUE(read(before) == read(layout.text)) << before << "\n---\n" << layout.text;
  }
  EXPECT_GT(formatted, 150);
}

TEST_F(FormatTest, ReplacesFilesOnlyWhenTheyAreComplete) {
  namespace fs = std::filesystem;
  options_.files = {write("a.oml", "a  :1\r\n"), write("b.oml", "{"),
                    write("c.oml", "c: 1\n"), pathOf("missing"), pathOf("inner")};
#if !defined(_WIN32)
  fs::permissions(options_.files[0], fs::perms::owner_all | fs::perms::group_read);
  fs::create_symlink(options_.files[0], pathOf("link"));
  options_.files[0] = pathOf("link");
#endif
  EXPECT_EQ(run(runFormat, options_), kTrouble);
  EXPECT_EQ(out_, "");
  EXPECT_NE(err_.find("b.oml:1:1) this bracket is not closed"), std::string::npos)
      << err_;
  EXPECT_NE(err_.find("missing': does not exist"), std::string::npos) << err_;
  EXPECT_NE(err_.find("inner': is a directory"), std::string::npos) << err_;
  EXPECT_EQ(content("a.oml"), "a: 1\r\n");
  EXPECT_EQ(content("b.oml"), "{");
#if !defined(_WIN32)
  EXPECT_EQ(fs::status(pathOf("a.oml")).permissions(),
            fs::perms::owner_all | fs::perms::group_read);
  EXPECT_TRUE(fs::is_symlink(pathOf("link")));
#endif
  // Nothing is left behind, and a protected file is left alone.
  write("p.oml", "p  :1");
  fs::permissions(pathOf("p.oml"), fs::perms::owner_read);
  const long files = this->files();
  options_.files = {pathOf("p.oml")};
  EXPECT_EQ(run(runFormat, options_), kTrouble);
  EXPECT_NE(err_.find("p.oml': is protected from writing"), std::string::npos) << err_;
  EXPECT_EQ(content("p.oml"), "p  :1");
  EXPECT_EQ(this->files(), files);
  fs::permissions(pathOf("p.oml"), fs::perms::owner_all);

  options_.files = {"-"};
  EXPECT_EQ(run(runFormat, options_, "a  :1"), kClean);
  EXPECT_EQ(out_, "a: 1\n");
  for (const char* noText : {"o\1{}", "a: 1\n\x1f{"}) {
    const bool zero = noText[0] == 'a';
    const std::string text = zero ? std::string("a\0b", 3) : noText;
    EXPECT_EQ(run(runFormat, options_, text), kTrouble);
    EXPECT_EQ(err_, "nqoml: `<stdin>': is no text\n");
  }
}

TEST_F(FormatTest, TellsWithoutWriting) {
  options_.files = {write("a.oml", "a\n\n\nb\nc\nd\nd\ne\nf\ng\nh  ;\ni"),
                    write("b.oml", "b\n")};
  options_.check = true;
  EXPECT_EQ(run(runFormat, options_), kErrorsFound);
  EXPECT_EQ(out_, options_.files[0] + "\n");
  options_.check = false;
  options_.diff = true;
  EXPECT_EQ(run(runFormat, options_), kClean);
  const std::string name = options_.files[0] + "\n";
  EXPECT_EQ(out_, "--- " + name + "+++ " + name +
                      "@@ -1,6 +1,5 @@\n a\n \n-\n b\n c\n d\n"
                      "@@ -8,5 +7,5 @@\n e\n f\n g\n-h  ;\n-i\n"
                      "\\ No newline at end of file\n+h;\n+i\n");
  EXPECT_EQ(content("a.oml"), "a\n\n\nb\nc\nd\nd\ne\nf\ng\nh  ;\ni");
}

}  // namespace
}  // namespace nqoml

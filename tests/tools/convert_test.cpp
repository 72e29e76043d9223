#include "tools/nqoml/convert.h"

#include "tests/tools/tool_test.h"

namespace nqoml {
namespace {

class ConvertTest : public ToolTest {
 protected:
  ConvertTest() { options_.grammar = NQ_SAMPLES "graph.grammar"; }

  // `text` in the other encoding, "" when it cannot be converted.
  std::string converted(const std::string& text, Encoding to) {
    options_.to = to;
    options_.file = "-";
    options_.binary = to == Encoding::kText && binaryInput_;
    code_ = run(runConvert, options_, text);
    return out_;
  }

  ConvertOptions options_;
  bool binaryInput_ = false;
  int code_ = kClean;
};

TEST_F(ConvertTest, SaysTheSameInBothEncodings) {
  // Each within graph g { ... }.
  const char* const kRows[] = {
      "title: \"a\\\"b\\\\c\\t\\x1b\xff\"",
      "title: \"\" layout spacing { 1e300 0.1 9906.48 -4.35e-7 }",
      "layout { seed: -2147483648 seed 2147483647 }",
      "origin { digest { 0x 0x00ff22 0x5c } server 255.0.0.1 }",
      "origin { digest 0x000102030405060708090a0b0c0d0e0f1011 }",
      // Ids: words, numbers, numbers that the reader gives, and those like them.
      "node a node 7 node { } node { title: \"x\" } edge { from: -3 to: 7 }",
      "node -2 node { } edge { from -2 to -3 }",
      "node { label { text: \"u\" } } node b { label { text: \"t\" } }",
      "node { id: a } edge { from $,g,a to a weight 1.0 }",
      "graph h { directed true node a } edge { from h,a to $g|h,a subject $g }",
      // Defaults, and objects written in several places.
      "node defaults { group 1 node a } node a { group 2 }",
      "node a { group 2 } node defaults { group 1 node a node b { title \"b\" } }",
      "node a node defaults { group 1 node a } node defaults { group 2 node b node a }",
      "node defaults { node a parent b } node b",
      "edge defaults { from: a to: b edge { } edge e { subject f } } node a node b edge "
      "f { "
      "from e2 to a } node e2",
      // Sections, with wildcards, and multiple values.
      "node a { drawing _ points: 3 drawing { line stroke dashed shape box } layout { x "
      "{ 1.0 2.0 } } }",
      "node a { drawing line { thickness 1.0 } drawing fill \"x\" }",
      "node a { { \"t\" } { \"u\" 1 } } skip { } comment \"c\"",
      // Sections whose numbers do not tell their names: those of different wildcards, and
      // those that are passed over.
      "node a { _ line { thickness 1.0 } drawing _ thickness 2.0 }",
      "skip title \"t\" node a { skip group 1 layout skip x 1.0 layout y 2.0 } skip node "
      "b",
      "section \"own\" own title \"t\" skip edge { own from a to b } node a node b"};
  for (const char* const row : kRows) {
    const std::string text = std::string("graph g { directed: true ") + row + " }";
    const Reading before = read(text);
    const std::string binary = converted(text, Encoding::kBinary);
    EXPECT_EQ(before.errors, std::vector<std::string>()) << row;
    EXPECT_EQ(code_, kClean) << row << "\n" << err_;
    EXPECT_EQ(err_, "") << row;
    EXPECT_TRUE(read(binary, true) == before) << row;
    const std::string direct = converted(text, Encoding::kText);
    EXPECT_EQ(code_, kClean) << row << "\n" << err_;
    EXPECT_TRUE(read(direct) == before) << row << "\n" << direct;
    EXPECT_EQ(converted(binary, Encoding::kText), direct) << row;
  }
}

// Behind a wildcard the number of a section does not tell its name, and only the right
// name, or the right jump over levels, leads there.
TEST_F(ConvertTest, FindsTheNamesOfSectionsBehindWildcards) {
  std::string lines =
      "types/[/t/]/sections/[/a/b/c/x/y/deep/]/O $toplevel$/[/T t/]/O t/["
      "/S a/[/S x/[/F f I/S deep/[/F g I/]/]/]"
      "/S b/[/S y/[/F f I/S c/[/F g I/]/S deep/[/F g I/S c/[/S deep/[/F g I/]/]/]/]/]/]";
  std::replace(lines.begin(), lines.end(), '/', '\n');
  options_.grammar = write("grammar", lines);
  const struct {
    const char* text;
    const char* names;  // of the sections, in the text that is written
  } kRows[] = {
      {"t 1 { _ x f 1 }", "_ x"},
      {"t 1 { _ y f 1 _ x f 2 }", "_ y x"},
      {"t 1 { _ deep g 1 }", "_ deep"},
      {"t 1 { _ x skip f 1 }", "_ y"},
  };
  for (const auto& row : kRows) {
    const std::string text = converted(row.text, Encoding::kText);
    EXPECT_EQ(err_, "") << row.text;
    std::string names;
    std::istringstream written(text);
    for (std::string line; std::getline(written, line);) {
      const std::size_t colon = line.find(": \r");
      if (colon == line.npos) continue;
      const std::size_t begin = line.find_first_not_of('\t');
      names += (names.empty() ? "" : " ") + line.substr(begin, colon - begin);
    }
    EXPECT_EQ(names, row.names) << text;
    const std::string binary = converted(row.text, Encoding::kBinary);
    EXPECT_EQ(converted(binary, Encoding::kText), text) << row.text << err_;
  }
}

TEST_F(ConvertTest, WritesTheTextEncoding) {
  EXPECT_EQ(
      converted(
          "graph g { directed true title \"t\" node defaults { group 1 node node 3 "
          "{ group 2 layout margins x 1 } node 4 { drawing _ points 3 label { text "
          "\"1\" } } } edge { from -2 to 3 weight 1e10 } comment \"unchecked\" q 1.5 }",
          Encoding::kText),
      "");
  EXPECT_EQ(code_, kErrorsFound);
  EXPECT_EQ(
      converted(
          "graph g { directed true node defaults { group 1 node { } node 3 { layout "
          "x 1.0 } node 4 { drawing _ points 3 } } edge { from -2 to 3 weight 1e10 } "
          "comment \"unchecked\" q 1.5 }",
          Encoding::kText),
      "graph: g\r\n{\r\n\tdirected: true\r\n\t{\r\n\t\tcomment: \"unchecked\"\r\n"
      "\t\tQ: 1.5\r\n\t}\r\n\tnode: defaults\r\n\t{\r\n\t\tgroup: 1\r\n"
      "\t\tnode:\r\n\t\t{\r\n\t\t}\r\n"
      "\t\tnode: 3\r\n\t\t{\r\n\t\t\tlayout: \r\n\t\t\t{\r\n\t\t\t\tx: 1.0\r\n"
      "\t\t\t}\r\n\t\t}\r\n"
      "\t\tnode: 4\r\n\t\t{\r\n\t\t\tdrawing: \r\n\t\t\t{\r\n\t\t\t\t_: \r\n"
      "\t\t\t\t{\r\n\t\t\t\t\tpoints: 3\r\n\t\t\t\t}\r\n\t\t\t}\r\n\t\t}\r\n\t}\r\n"
      "\tedge: { from: -2 to: 3 weight: 1e+10 }\r\n}\r\n")
      << err_;
}

TEST_F(ConvertTest, DeliversNothingThatWouldLoseSomething) {
  const std::string graph = "graph g { directed true ";
  const std::string target = write("target", "as it was");
  options_.output = target;
  const auto refusal = [&](const std::string& text, Encoding to) {
    EXPECT_EQ(converted(text, to), "");
    EXPECT_EQ(content("target"), "as it was");
    EXPECT_EQ(files(), 1);
    return std::to_string(code_) + " " + err_;
  };
  EXPECT_TRUE(
      refusal("graph g { }", Encoding::kText).starts_with("1 Error #029 (<stdin>:"));
  EXPECT_EQ(
      refusal(graph + "comment \"unchecked\" what 1 }", Encoding::kBinary),
      "2 nqoml: `<stdin>': has a field that the grammar does not know, `WHAT', which "
      "the binary encoding cannot name\n");
  binaryInput_ = true;
  EXPECT_EQ(refusal(std::string("o\1Na b\"{f\be\0}", 13), Encoding::kText),
            "2 nqoml: `<stdin>': holds something that the text encoding cannot say "
            "(unexpected attribute value)\n");
  binaryInput_ = false;

  options_.output = pathOf("inner");
  EXPECT_EQ(converted(graph + "}", Encoding::kText), "");
  EXPECT_EQ(err_, "nqoml: `" + options_.output + "': is a directory\n");
  options_.output = pathOf("missing/target");
  EXPECT_EQ(converted(graph + "}", Encoding::kText), "");
  EXPECT_EQ(code_, kTrouble);
  options_.output = target;
  EXPECT_EQ(converted(graph + "}", Encoding::kText), "");
  EXPECT_EQ(content("target"), "graph: g { directed: true }\r\n");
}

TEST_F(ConvertTest, SaysWhatTheBinaryEncodingRounds) {
  const std::string text =
      "graph g { directed true layout { spacing 0.123456789012 spacing 0.5 } }";
  const std::string binary = converted(text, Encoding::kBinary);
  EXPECT_EQ(code_, kClean);
  EXPECT_EQ(err_, "nqoml: `<stdin>': real numbers rounded to eight digits: 1\n");
  const Reading reading = read(binary, true);
  ASSERT_EQ(reading.tree.reals.size(), 2U);
  EXPECT_NEAR(reading.tree.reals[0], 0.123456789012, 1e-8);
  EXPECT_EQ(reading.tree.reals[1], 0.5);
  // The established encodings are what they are.
  options_.established = true;
  EXPECT_NE(converted(text, Encoding::kText).find("0.123457\r\n"), std::string::npos);
}

TEST_F(ConvertTest, ShowsProgress) {
  options_.progress = When::kAlways;
  EXPECT_NE(converted("graph g { directed true }", Encoding::kText), "");
  long bars = 0;
  for (const char* what : {"reading <stdin>", "writing", "reading back"}) {
    const std::size_t at = err_.find(std::string(what) + "\n0%   10");
    EXPECT_NE(at, std::string::npos) << what << "\n" << err_;
    bars += at != std::string::npos ? 1 : 0;
  }
  EXPECT_EQ(std::count(err_.begin(), err_.end(), '*'), 51 * bars) << err_;
}

}  // namespace
}  // namespace nqoml

#include <gtest/gtest.h>

#include <string>

#include "nq/core/string_pool.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"

namespace {

struct Row {
  const char* text;
  const char* tree;
};

// Good files, and the trees that they make.
const Row kGood[] = {
    {"", ""},
    {"graph 1 {}", "graph#$,1"},
    {"graph 1", "graph#$,1"},
    {"graph { id: a }", "graph#$,a"},
    {"graph { name a }", "graph#$,a"},
    {"graph: a { id: a; name = a }", "graph#$,a"},
    {"graph \"x\"", nullptr},
    {"version: 7 graph 1 { }", "version=7 graph#$,1"},
    // Values of each type.
    {"graph 1 { title: \"t\"; count = 3 flag true ratio 1.5 addr: 1.2.3.4 blob 0x0a0b "
     "0x0c }",
     "graph#$,1{title=\"t\" count=3 flag=e1 ratio=1.5 addr=1.2.3.4 blob=0x0a0b0c}"},
    {"graph 1 { size: MEDIUM few small Flag FALSE }",
     "graph#$,1{size=e2 few=e1 flag=e0}"},
    {"graph 1 { link 1,2 any $1,a any $,1 node 2 node a { next 2 } }",
     "graph#$,1{link=->$,1,2 any=->$,1,a any=->$,1 node#$,1,2 node#$,1,a{next=->$,1,2}}"},
    // Blocks of values, and values without names.
    {"graph 1 { count { 1 2 3 } }", "graph#$,1{count=1 count=2 count=3}"},
    {"graph 1 { \"t\" 2 true }", "graph#$,1{title=\"t\" count=2 flag=e1}"},
    {"graph 1 { layout { 1.5 2 } }", "graph#$,1{layout.spacing=1.5 layout.kind=2}"},
    {"graph 1 { { count 1 } ( count 2 ) < title \"x\" > }",
     "graph#$,1{count=1 count=2 title=\"x\"}"},
    {"graph 1 { blob { 0x01 } blob: 0x }", "graph#$,1{blob=0x01 blob=0x}"},
    // Sections, direct and unique further down.
    {"graph 1 { layout kind 1 layout { kind 2 inner { depth 3 deep level 4 } } }",
     "graph#$,1{layout.kind=1 layout.kind=2 layout.inner.depth=3 "
     "layout.inner.deep.level=4}"},
    {"graph 1 { deep level 1 layout deep level 2 outer depth 3 view inner depth 4 }",
     "graph#$,1{layout.inner.deep.level=1 layout.inner.deep.level=2 "
     "layout.outer.depth=3 view.inner.depth=4}"},
    {"graph 1 { layout node 2 { x 1 } }", "graph#$,1{layout.node#$,1,2{x=1}}"},
    // Wildcards, newest section first.
    {"graph 1 { layout _ depth 1 }",
     "graph#$,1{layout.outer.depth=1 layout.inner.depth=1}"},
    {"graph 1 { _ inner depth 1 }", "graph#$,1{view.inner.depth=1 layout.inner.depth=1}"},
    {"graph 1 { _ _ { depth 1 only 2 } }",
     "graph#$,1{view.inner.depth=1 layout.outer.depth=1 layout.inner.depth=1 "
     "layout.inner.only=2}"},
    {"graph 1 { _ _ _ level 1 }", "graph#$,1{layout.inner.deep.level=1}"},
    {"graph 1 { _ deep level 1 }", "graph#$,1{layout.inner.deep.level=1}"},
    // Skipped and declared things.
    {"skip { } } graph 1 { skip { \"{ }\" } } count 1 }", nullptr},
    {"graph 1 { skip { node { ( % ) } } count 1 }", "graph#$,1{count=1}"},
    {"section \"Mine\" graph 1 { mine { % } count 1 }", "graph#$,1{count=1}"},
    {"field \"Mine\" graph 1 { mine: 3 % { }\n count 1 MINE 0x01 }\n count 2 mine }",
     "graph#$,1{count=1 count=2}"},
    // A binary value takes the end of its line for a digit, and may go on behind it.
    {"field \"old\" graph 1 { old 0x123\n count 1 old 0x1\n2 { %\r\n count 2 }",
     "graph#$,1{count=1 count=2}"},
    // The pieces of one are ignored together, however they are laid out.
    {"field \"old\" graph 1 { old\n  0x01 0x02 {\n  0x03 }\n/* */ 00x4\n05 count 1\n "
     "count 2 old 0x01\n }",
     "graph#$,1{count=2}"},
    {"field { \"a\" \"b\" } graph 1 { a 1\n b 2\n count 1 }", "graph#$,1{count=1}"},
    {"field \"small\" graph 1 { small 5\n count 1 }", "graph#$,1{count=1}"},
    // Unchecked to the end of the first list that ends after the word.
    {"graph 1 { comment \"unchecked\" graph 3 x { 1 \"a\" } count b } version 5",
     nullptr},
    {"graph 1 { node 2 { comment \"unchecked\" graph 3 label 0x01 x.5 next a,b } count 1 "
     "}",
     "graph#$,1{count=1 node#$,1,2{?graph=3 ?label=0x01 ?x=0.5 ?next=->a,b}}"},
    {"graph 1 { node 2 { comment \"unchecked\" what 3 id 5 id 5 } }", nullptr},
    {"graph 1 { node { comment \"unchecked\" what 3 id 5 } comment \"checked\" count 1 }",
     "graph#$,1{count=1 node#$,1,5{?what=3}}"},
    // What the file ignores it ignores there too, unless the grammar knows it.
    {"field \"mine\" field \"x\" graph 1 { node 2 { comment \"unchecked\" mine 5 { %\n"
     " other 3 x 4 field \"more\" more {\n } mine 6 %\n } }",
     "graph#$,1{node#$,1,2{?other=3 ?x=4}}"},
    // The input ends wherever a value may.
    {"graph a version 1", "version=1 graph#$,a"},
    {"# only a comment", ""},
};

TEST(Parser, BuildsTrees) {
  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
  for (const Row& row : kGood) {
    SCOPED_TRACE(row.text);
    system.files = {{"f", row.text}};
    const NQFileCodeEnum result = reader.read("f", grammar);
    EXPECT_EQ(result, row.tree != nullptr ? NQ_FILE_OK : NQ_FILE_READ_ERROR);
    EXPECT_EQ(reader.tree, row.tree != nullptr ? row.tree : "");
    if (row.tree != nullptr) {
      EXPECT_EQ(reader.errors(), "");
    }
    EXPECT_EQ(system.openFiles(), 0);
  }
}

// What a file says about itself is not believed.
TEST(Parser, ReadsStrictly) {
  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
  reader.strictReading(1);
  const struct {
    const char* text;
    const char* result;  // the tree, or the beginning of the errors
  } rows[] = {
      {"field \"f\" section \"s\" comment \"c\" graph 1 { skip { % } count 1 }",
       "graph#$,1{count=1}"},
      {"graph 1 { comment \"unchecked\" count \"x\" }", "Error #024 (f:1:37) "},
      {"graph 1 { comment \"unchecked\" what 1 }", "Error #022 (f:1:31) "},
      {"field \"mine\" graph 1 { count mine }", "Error #022 (f:1:30) "},
      {"section \"mine\" graph 1 { mine { } }", "Error #022 (f:1:26) "},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    system.files["f"] = row.text;
    (void)reader.read("f", grammar);
    EXPECT_EQ((reader.tree + reader.errors()).substr(0, std::string(row.result).size()),
              row.result);
  }
  const std::string section{'S', 0, 0, 0,
                            static_cast<char>(grammar.pSectionPool()->decodeTableMax())};
  system.files["f"] = "f\3\"mine\"" + section + "{}";
  EXPECT_EQ(reader.read("f", grammar, true), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.errors().substr(0, 20), "Error #020 (f:1:9) u");
  EXPECT_EQ(reader.strictReading(0), 0);
  EXPECT_EQ(reader.read("f", grammar, true), NQ_FILE_OK);
}

TEST(Parser, ReadsTheBinaryEncoding) {
  FakeSystem system;
  EverythingGrammar grammar;
  const auto index = [](const NQStringPool* pool, const char* name) {
    return std::string(1, static_cast<char>(pool->lookup(name)));
  };
  const auto type = [&](const char* name) {
    return "o" + index(grammar.pObjTypePool(), name);
  };
  const auto field = [&](const char* name) {
    return "f" + index(grammar.pFieldPool(), name);
  };
  const auto section = [&](const char* name) {
    return "s" + index(grammar.pSectionPool(), name);
  };
  const std::string zero(1, '\0');
  system.files["f"] = type("graph") + "N1\"{" + field("count") + "i\5" + field("title") +
                      "\"a\\\"b\"" + field("blob") + "Xi\3" + zero + "{}" +
                      section("layout") + "{" + section("inner") + field("depth") +
                      "I\xff\xff\xff\xff" + "}" + section("skip") + "{" + zero + "}" +
                      field("link") + "N1,2\"" + field("any") + "$1,2\"" + type("node") +
                      "N2\"" + field("field") + "\"mine\"" + "F" + std::string(3, '\0') +
                      static_cast<char>(grammar.pFieldPool()->decodeTableMax()) +
                      "Xi\1aXi\1bXi\1c" + field("flag") + "e" + zero + "}";
  TestReader reader;
  EXPECT_EQ(reader.read("f", grammar, true), NQ_FILE_OK) << reader.errors();
  EXPECT_EQ(reader.tree,
            "graph#$,1{count=5 title=\"a\"b\" blob=0x007b7d layout.inner.depth=-1 "
            "link=->$,1,2 any=->$,1,2 flag=e1 node#$,1,2}");
}

TEST(Parser, ReadsIncludedFiles) {
  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
  const struct {
    std::map<std::string, std::string> files;
    const char* tree;  // null: error 13
  } rows[] = {
      {{{"f", "graph 1 { include \"g\"; count 2 }"}, {"g", "count 1"}},
       "graph#$,1{count=1 count=2}"},
      // Blocks go on over the end of a file; what it declares is known at once.
      {{{"f", "include \"g\" count 2 }"}, {"g", "graph 1 {"}}, "graph#$,1{count=2}"},
      {{{"f", "graph 1 { include \"g\";mine 5\n count 2 }"}, {"g", "field \"mine\""}},
       "graph#$,1{count=2}"},
      // Beside the including file when not found as named.
      {{{"f", "include \"d/g\""}, {"d/g", "include \"h\""}, {"d/h", "graph 1"}},
       "graph#$,1"},
      {{{"f", "include \"d/g\""},
        {"d/g", "include \"h\""},
        {"h", "graph 1"},
        {"d/h", "graph 2"}},
       "graph#$,1"},
      {{{"f", "include \"d/g\""}, {"d/g", "include \"/h\""}, {"d//h", "graph 1"}},
       nullptr},
      // Open already, missing, forbidden, no file, too long a name.
      {{{"f", "include \"f\""}}, nullptr},
      {{{"f", "include \"g\""}, {"g", "include \"f\""}}, nullptr},
      {{{"f", "include \"\""}}, nullptr},
      {{{"f", "include \"secret\""}, {"secret", "graph 1"}}, nullptr},
      {{{"f", "include \"device\""}, {"device", "graph 1"}}, nullptr},
      {{{"f", "include \"" + std::string(260, 'n') + "\""}, {std::string(260, 'n'), ""}},
       nullptr},
  };
  reader.forbidden = "secret";
  system.devices = {"device"};
  for (const int shared : {0, 1}) {
    reader.sharedReading(shared);
    for (const auto& row : rows) {
      SCOPED_TRACE(row.files.at("f"));
      system.files = row.files;
      EXPECT_EQ(reader.read("f", grammar),
                row.tree != nullptr ? NQ_FILE_OK : NQ_FILE_OPEN_ERROR);
      EXPECT_EQ(reader.tree, row.tree != nullptr ? row.tree : "") << reader.errors();
      EXPECT_EQ(system.openFiles(), 0);
    }
    system.files.clear();
    EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OPEN_ERROR);

    // Two readers of one file, in the middle of it.
    system.files = {{"f", "graph 1 { include \"g\" }"}, {"g", "count 1"}};
    TestReader second;
    second.sharedReading(1);
    reader.atHook = [&](const std::string& hook) {
      if (hook == "include") second.read("f", grammar);
    };
    EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OK);
    EXPECT_EQ(second.result, shared != 0 ? NQ_FILE_OK : NQ_FILE_OPEN_ERROR);
    reader.atHook = nullptr;
  }
}

TEST(Parser, LimitsIncludes) {
  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
  const auto chain = [&system](int length) {
    for (int i = 1; i < length; ++i) {
      system.files[std::to_string(i)] = "include \"" + std::to_string(i + 1) + "\"";
    }
    system.files[std::to_string(length)] = "graph 1";
  };
  chain(64);
  EXPECT_EQ(reader.read("1", grammar), NQ_FILE_OK);
  EXPECT_EQ(reader.tree, "graph#$,1");
  chain(65);
  EXPECT_EQ(reader.read("1", grammar), NQ_FILE_OPEN_ERROR);

  system.files["one"] = "";
  const auto times = [](int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "include \"one\"\n";
    return text;
  };
  system.files["f"] = times(999);
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OK);
  system.files["f"] = times(1000);
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OPEN_ERROR);

  reader.maxNumberOfFiles(1001);
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OK);
  reader.maxNumberOfOpenFiles(65);
  EXPECT_EQ(reader.read("1", grammar), NQ_FILE_OK);
  reader.maxNumberOfOpenFiles(0);
  EXPECT_EQ(reader.read("1", grammar), NQ_FILE_OPEN_ERROR);
}

TEST(Parser, LimitsNesting) {
  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
  const auto nested = [](int depth) {
    return "graph 1 {" + std::string(static_cast<std::size_t>(depth - 1), '{') +
           std::string(static_cast<std::size_t>(depth - 1), '}') + "}";
  };
  const auto read = [&](int depth) {
    system.files["f"] = nested(depth);
    return reader.read("f", grammar);
  };
  EXPECT_EQ(reader.maxNestingDepth(), 256);
  EXPECT_EQ(read(256), NQ_FILE_OK);
  EXPECT_EQ(read(257), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.errors(), "Fatal error #012 (f:1:265) memory exhausted !\n");
  EXPECT_EQ(reader.maxNestingDepth(2), 2);
  EXPECT_EQ(read(2), NQ_FILE_OK);
  EXPECT_EQ(read(3), NQ_FILE_READ_ERROR);
  reader.maxNestingDepth(1'000'000);
  EXPECT_EQ(read(1024), NQ_FILE_OK);
  EXPECT_EQ(read(1025), NQ_FILE_READ_ERROR);
}

}  // namespace

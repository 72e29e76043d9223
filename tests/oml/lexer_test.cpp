#include <gtest/gtest.h>

#include <string>

#include "nq/oml/encoding/escapes.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"
#include "tests/support/token_dump.h"

namespace {

std::string tokens(FakeSystem& system, const std::string& text, bool unchecked = false) {
  static const EverythingGrammar grammar;
  system.files["f"] = text;
  LexerHarness harness(grammar, false);
  harness.names.unchecked = unchecked;
  EXPECT_TRUE(harness.sources.push("f"));
  std::string result = harness.dump();
  EXPECT_EQ(system.openFiles(), 0);
  return result;
}

struct Row {
  const char* text;
  const char* tokens;
};

const Row kRows[] = {
    {"", ""},
    {" \t\r\n\n\r\r", ""},
    // Brackets and punctuation.
    {"{}()<>[]", "{ } ( ) < > [ ]"},
    {":=;,|%", ": = ; ? ? ?"},
    {"}", "!16@1:1"},
    {" } 1", "!16@1:2 1"},
    {"{)1", "{ !50@1:1 !51@1:2 ) 1"},
    {"{ [ (\n1", "{ [ ( 1 !15@1:5 !15@1:3 !15@1:1"},
    // Comments.
    {"1#x\n2//x}\r3/*x\n*{ */4 /**/5", "1 2 3 4 5"},
    {"1/*/ */2", "1 2"},
    {"#x", ""},
    {"1//", "1"},
    {" /* x", "!17@1:2"},
    {"1 / 2", "1 ? 2"},
    {"1 /*\n*", "1 !17@1:3"},
    // Integers.
    {"0 12 -12 +12 007", "0 12 -12 12 7"},
    {"2147483647 -2147483648", "2147483647 -2147483648"},
    {"2147483648 -2147483649 99999999999999999999", "? ? ?"},
    {"5-3 12abc", "5 -3 12 #abc"},
    {"+ - +-5", "? ? ? -5"},
    // Reals.
    {"10.5 300.5 1e3 1E-3 1.e+2 10. .5 -.5 +.5",
     "r10.5 r300.5 r1000 r0.001 r100 r10 r0.5 r-0.5 r0.5"},
    {"99999999999. 99999999999e0", "r99999999999 r99999999999"},
    {"0.1 1e308", "r0.10000000000000001 r1e+308"},
    {"1e-400 -.00001e-320 1e-99999999999999999999 0e999", "r0 r-0 r0 r0"},
    {"1e 1e+ 1.2.3 . .. -. 1e309 1e3.5 300.1.2.3 1.2.3.4e1", "? ? ? ? ? ? ? ? ? ?"},
    // IP addresses.
    {"10.1.2.3 255.255.255.255 0.0.0.0", "ip10.1.2.3 ip255.255.255.255 ip0.0.0.0"},
    {"256.1.2.3 1.2.3.256 1.2.3.4.5 1..2.3 -1.2.3.4 1.2.3.", "? ? ? ? ? ?"},
    // Binary values, and their pieces.
    {"0x0a0B 1", "x0a0b 1"},
    {"0x 1", "x 1"},
    {"00xff", "xff"},
    {"0x123 ;", "x1230 ;"},  // the blank is taken for a digit
    {"0x123 4;", "x123040"},
    {"0x1", "x10"},
    {"0x1\n\r;", "x10 ;"},
    {"0x1g", "x10"},
    {"0x01 /* */\n0x02#\n0x 0x03 0 0x04", "x010203 0 x04"},
    {"-0x1 1x2", "0 #x1 1 #x2"},
    // Strings.
    {"\"\" \"a b\"\"c\"", "s\"\" s\"a b\" s\"c\""},
    {"\"a\nb\rc\r\nd\n\re\r\rf\"", "s\"a\nb\nc\nd\ne\n\nf\""},
    {"\"\\101\\x41\\q\\\\\\\"\\n\\xq\\7z\\1234\" 1", "s\"AAq\\\"\nxq\7zS4\" 1"},
    {"\"a\\\r\nb\"", "s\"a\nb\""},
    {"\"a\\0b\"", "!20@1:1 s\"ab\""},
    {" \"a{", "!18@1:2 s\"a{\""},
    {"\"a\\", "!18@1:1 s\"a\""},
    {"{ \"a\nb", "{ !18@1:3 s\"a\nb\" !15@1:1"},
    // Names, in the order in which their meanings are tried.
    {"Graph LAYOUT x Small skip _ include", "tGRAPH SLAYOUT fX eSMALL SSKIP S_ fINCLUDE"},
    {"both", "tBOTH"},
    {"unknown Unknown _a a$1 true", "#unknown #Unknown #_a #a$1 eTRUE"},
    // Ids.
    {"12,a a,12 a|b,c graph,x -1,+2", "#12,a #a,12 #a,b,c #graph,x #-1,2"},
    {"$a,b $,a,b $ $1 $-2,x $_ $|a", "#$,a,b #$,a,b #$ #$,1 #$,-2,x #$,_ #$,a"},
    {"007,08 $007", "#7,8 #$,7"},
    {"a,,b a, 1,%", "? #b ? ? ?"},
    {"$, $- $, a 4294967296,a a,4294967296", "? ? ? #a ? ?"},
    // What is not a number ends before a separator.
    {"1.2.3,4 1e|a 300.1.2.3,-1 -,1", "? ? 4 ? ? #a ? ? -1 ? ? 1"},
    {"$$a", "#$ #$,a"},
    // A zero byte ends a text; more behind it is an error.
    {"\x80 \xff", "? ?"},
};

TEST(TextLexer, CutsTextIntoTokens) {
  FakeSystem system;
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.text);
    // Short reads let every token begin and end at the end of the window.
    for (const std::size_t transfer :
         {FakeSystem::kUnlimited, std::size_t{1}, std::size_t{2}, std::size_t{3}}) {
      system.largestTransfer = transfer;
      EXPECT_EQ(tokens(system, row.text), row.tokens) << "reads of " << transfer;
    }
  }
}

TEST(TextLexer, KeepsTokensWholeWhenTheWindowMoves) {
  FakeSystem system;
  const std::string text = "graph:1{x=-12.5e1 \"a\\x41\nb\"0x0a0b $a,b/*c*/10.1.2.3}";
  const std::string expected =
      "tGRAPH : 1 { fX = r-125 s\"aA\nb\" x0a0b #$,a,b ip10.1.2.3 }";
  for (std::size_t shift = 0; shift <= text.size(); ++shift) {
    const std::string padding(nqdetail::Source::kFirstWindow - shift, ' ');
    ASSERT_EQ(tokens(system, padding + text), expected) << "shift " << shift;
  }
  // Tokens longer than a window.
  const std::string name(300000, 'n');
  const std::string longString(600000, 's');
  EXPECT_EQ(tokens(system, name + " \"" + longString + "\" 1"),
            "#" + name + " s\"" + longString + "\" 1");
}

TEST(TextLexer, TellsWhereTokensStand) {
  FakeSystem system;
  const EverythingGrammar grammar;
  for (const std::size_t transfer : {FakeSystem::kUnlimited, std::size_t{1}}) {
    system.largestTransfer = transfer;
    system.files["f"] = "1\t2\n 3\r\n4\r5\n\r\"a\r\nb\" 6 /*\n*/ 7 0x1\r\n;";
    LexerHarness harness(grammar, false);
    harness.places = true;
    ASSERT_TRUE(harness.sources.push("f"));
    EXPECT_EQ(harness.dump(),
              "1@1:1 2@1:3 3@2:2 4@3:1 5@4:1 s\"a\nb\"@5:1 6@6:4 7@7:4 x10@7:6 ;@8:1");
  }
}

TEST(TextLexer, EndsAtAZeroByte) {
  FakeSystem system;
  for (const std::size_t transfer : {FakeSystem::kUnlimited, std::size_t{1}}) {
    system.largestTransfer = transfer;
    EXPECT_EQ(tokens(system, std::string("1\0", 2)), "1");
    EXPECT_EQ(tokens(system, std::string("1\n 2\0 3", 7)), "1 2 !20@2:3");
    EXPECT_EQ(tokens(system, std::string("\"a\0\"", 4)), "!18@1:1 s\"a\" !20@1:3");
  }
}

TEST(TextLexer, TakesEveryNameForAFieldWhenUnchecked) {
  FakeSystem system;
  EXPECT_EQ(tokens(system, "graph x small a,b Graph include", true),
            "f?GRAPH fX f?SMALL #a,b f?GRAPH fINCLUDE");
}

TEST(TextLexer, KnowsWhatTheFileDeclares) {
  FakeSystem system;
  const EverythingGrammar grammar;
  system.files["f"] = "mine 1 mine 2 yours 3 small 4 layout 5 mine";
  LexerHarness harness(grammar, false);
  harness.afterToken = [&harness](const nqdetail::SourceToken& token) {
    if (token.tag != NQ_OML_INTEGER) return;
    nqdetail::NameTables& names = harness.names;
    if (token.integer() == 1) names.declareSection("Mine");
    if (token.integer() == 2) names.ignoreField("Yours");
    if (token.integer() == 3) names.ignoreField("small"), names.ignoreField("layout");
    if (token.integer() == 5) names.ignoreField("mine");
  };
  ASSERT_TRUE(harness.sources.push("f"));
  EXPECT_EQ(harness.dump(), "#mine 1 S!MINE 2 f!YOURS 3 f!SMALL 4 SLAYOUT 5 S!MINE");
}

// Files: tokens end with theirs, brackets and skipped blocks do not.
TEST(Lexer, GoesOnInTheIncludingFile) {
  FakeSystem system;
  const EverythingGrammar grammar;
  const struct {
    const char* outer;
    const char* inner;
    const char* tokens;
  } rows[] = {
      {"1 here 2", "a", "1 #here #a 2"},
      {"{ here } 2", "3 /*", "{ #here 3 !17@1:3 } 2"},
      {"{ here ) 2", "} (", "{ #here } ( ) 2"},
      {"here } 2", "{ \"a", "#here { !18@1:3 s\"a\" } 2"},
      {"here 2 ", "{ [", "#here { [ 2 !15@1:3 !15@1:1"},
      {"here 0x02 3", "0x01", "#here x0102 3"},
      {"here } } 2", "skip { {", "#here SSKIP { 2"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.outer);
    system.files = {{"f", row.outer}, {"g", row.inner}};
    LexerHarness harness(grammar, false);
    bool skip = false;
    harness.afterToken = [&](const nqdetail::SourceToken& token) {
      if (token.tag == NQ_OML_OBJECT_ID && system.files.contains("g") &&
          harness.sources.depth() == 1 && harness.sources.top().name() == "f") {
        if (std::string(harness.names.ids.text(token.integer())) == "here") {
          EXPECT_TRUE(harness.sources.push("g"));
        }
      }
      if (skip && token.tag == NQ_OML_OPENING_BRACKET) harness.lexer->skipBlock();
      skip = token.tag == NQ_OML_SECTION_NAME;
    };
    ASSERT_TRUE(harness.sources.push("f"));
    EXPECT_EQ(harness.dump(), row.tokens);
    EXPECT_EQ(system.openFiles(), 0);
  }
}

TEST(TextLexer, SkipsBlocksAndLines) {
  FakeSystem system;
  const EverythingGrammar grammar;
  const struct {
    const char* text;
    const char* tokens;
  } rows[] = {
      {"skip { a \"}% 2", "SSKIP { ? 2"},  // brackets count in strings too
      {"skip { ( [ ] ) % } 2", "SSKIP { 2"},
      {"skip { # } 2", "SSKIP { 2"},
      {"skip { ) 2", "SSKIP { !50@1:6 !51@1:8 2"},
      {"skip { (", "SSKIP { !15@1:8 !15@1:6"},
      {"line 1 } 2 { \"\n3", "#line 3"},
      {"line\r\n3", "#line 3"},
      {"line", "#line"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    for (const std::size_t transfer : {FakeSystem::kUnlimited, std::size_t{1}}) {
      system.largestTransfer = transfer;
      system.files["f"] = row.text;
      LexerHarness harness(grammar, false);
      bool skip = false;
      harness.afterToken = [&](const nqdetail::SourceToken& token) {
        if (skip && token.tag == NQ_OML_OPENING_BRACKET) harness.lexer->skipBlock();
        skip = token.tag == NQ_OML_SECTION_NAME;
        if (token.tag == NQ_OML_OBJECT_ID) harness.lexer->skipRestOfLine(false);
      };
      ASSERT_TRUE(harness.sources.push("f"));
      EXPECT_EQ(harness.dump(), row.tokens);
    }
  }
}

TEST(Escapes, AreRemovedOnce) {
  const struct {
    std::string text;
    std::string result;
    bool zeroCode;
  } rows[] = {
      {"", "", false},
      {"plain", "plain", false},
      {"\\a\\b\\f\\n\\r\\t\\v\\q", "\a\b\f\n\r\t\vq", false},
      {"\\1\\12\\123\\1234\\8",
       "\1\12\123\1234"
       "8",
       false},
      {"\\x4\\x41\\x411\\x\\xg", "\4AA1xxg", false},
      {"\\\\n\\\"", "\\n\"", false},
      {"\\377\\xfF", "\377\377", false},
      {"a\\0b\\x00c\\400d", "abcd", true},
      {"a\\", "a", false},
  };
  for (const auto& row : rows) {
    std::string text = row.text;
    const nqdetail::UnescapedText rest =
        nqdetail::removeEscapeSequences(text.data(), text.size());
    EXPECT_EQ(text.substr(0, rest.length), row.result) << row.text;
    EXPECT_EQ(rest.zeroCode, row.zeroCode) << row.text;
  }
}

}  // namespace

#include <gtest/gtest.h>

#include <string>

#include "nq/core/string_pool.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"
#include "tests/support/token_dump.h"

namespace {

// Bytes written down as text: two hexadecimal digits for a byte, 'c for the
// character c, blanks between.
std::string bytes(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\'') {
      result += text[++i];
    } else if (text[i] != ' ') {
      result += static_cast<char>(std::stoi(text.substr(i++, 2), nullptr, 16));
    }
  }
  return result;
}

std::string tokens(FakeSystem& system, const std::string& contents) {
  static const EverythingGrammar grammar;
  system.files["f"] = contents;
  LexerHarness harness(grammar, true);
  EXPECT_TRUE(harness.sources.push("f"));
  std::string result = harness.dump();
  EXPECT_EQ(system.openFiles(), 0);
  return result;
}

TEST(BinaryLexer, ReadsRecords) {
  FakeSystem system;
  const struct {
    const char* bytes;
    const char* tokens;
  } rows[] = {
      {"", ""},
      {"'{ '} '( ') '< '> '[ ']", "{ } ( ) < > [ ]"},
      {"'}", "!16@1:1"},
      {"'{ ')", "{ !50@1:1 !51@1:2 )"},
      {"'{", "{ !15@1:1"},
      // Numbers, short and long.
      {"'i 00 'i ff 'I 00000100 'I ffffffff 'I 80000000", "0 255 256 -1 -2147483648"},
      {"'p 07 'P 0a010203", "ip0.0.0.7 ip10.1.2.3"},
      {"'R 00e4e1c0 'R fffffff9", "r1.5"},
      {"'r 00 'r 00 'r 01 'r 16 'R fffffffe 'r 01", "r0 r1e+22 r-20"},
      {"'r 01 'R 00000134 'r 01 'R 00000135 'r 00 'R 7fffffff 'r 01 'R 80000000",
       "r1e+308 ? r0 r0"},
      // Indices, by the tables that they belong to.
      {"'e 00 'E 00000001 'e ff 'E ffffffff", "eTRUE eFALSE ? ?"},
      {"'f 00 'F 00000006 'f ff 'F ffffffff 'F 7fffffff", "fINCLUDE fFIELD ? ? ?"},
      {"'o 00 'o 01 'O 80000000", "t$TOPLEVEL$ tGRAPH ?"},
      {"'s 00 's 01 's ff", "SSKIP S_ ?"},
      // Texts.
      {"'\" 'a 'b '\" '\" '\"", "s\"ab\" s\"\""},
      {"'\" '\\ '\\ '\\ '\" '\"", "s\"\\\"\""},
      {"'\" 'a 00 'b '\" 'i 01", "? 1"},
      {"'\" '\\ '0 '\"", "!20@1:1 s\"\""},
      {"'N 'a '\" 'N '1 '2 '\" 'N 'a ', '- '3 '\" 'N '\"", "#a #12 #a,-3 #"},
      {"'N '0 '1 '\" 'N '9 '9 '9 '9 '9 '9 '9 '9 '9 '9 '\"", "#01 #9999999999"},
      {"'$ '3 ', '7 '\" '$ '\" '$ ', '3 '\" 'N '$ ', '3 '\"", "#$,3,7 #$ #$,3 #$,3"},
      {"'N 'a 00 '\"", "?"},
      {"'\" 'a", "!18@1:1 s\"a\""},
      {"'N 'a", "!18@1:1 #a"},
      // Binary values; a zero is a byte like others.
      {"'X 'i 03 00 ff '\" 'i 05", "x00ff22 5"},
      {"'X 'I 00000002 0102 'X 'i 01 03", "x010203"},
      {"'X 'i 00 'i 05", "x 5"},
      {"'X 'i 03 0102", "!19@1:1 x0102"},
      {"'X 'I 7fffffff 01", "!19@1:1 x01"},
      {"'X 'I ffffffff 'i 05", "? 5"},
      {"'X 'f 01", "? fINPUT"},
      {"'X", "?"},
      // What is cut off or means nothing.
      {"'i", "?"},
      {"'I 000000", "?"},
      {"'r 01", "?"},
      {"'r 01 'i 05", "? 5"},
      {"'x 'n 'a ': '; 00 80 ff '  0a 'A 'Z 'z", "? ? ? ? ? ? ? ? ? ? ? ? ?"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.bytes);
    for (const std::size_t transfer :
         {FakeSystem::kUnlimited, std::size_t{1}, std::size_t{3}}) {
      system.largestTransfer = transfer;
      EXPECT_EQ(tokens(system, bytes(row.bytes)), row.tokens) << "reads of " << transfer;
    }
  }
}

TEST(BinaryLexer, SkipsRecordByRecord) {
  FakeSystem system;
  const EverythingGrammar grammar;
  // Brackets inside texts and values do not count here.
  system.files["f"] =
      bytes("'{ '\" '} '\" 'N '} '\" 'X 'i 02 '} '} 'i '} '( 'i '{ ') 00 '} 'i 07");
  LexerHarness harness(grammar, true);
  bool skipped = false;
  harness.afterToken = [&](const nqdetail::SourceToken&) {
    if (!skipped) harness.lexer->skipBlock();
    skipped = true;
  };
  ASSERT_TRUE(harness.sources.push("f"));
  EXPECT_EQ(harness.dump(), "{ 7");
}

TEST(BinaryLexer, CountsNamesThatTheFileDeclaresBehindTheGrammars) {
  FakeSystem system;
  const EverythingGrammar grammar;
  const auto record = [](char letter, nqLong index) {
    return std::string{letter, 0, 0, 0, static_cast<char>(index)};
  };
  const nqLong fields = grammar.pFieldPool()->decodeTableMax();
  const nqLong sections = grammar.pSectionPool()->decodeTableMax();
  system.files["f"] = record('F', fields) + record('F', fields + 1) +
                      record('S', sections) + record('S', sections + 1);
  LexerHarness harness(grammar, true);
  harness.names.ignoreField("mine");
  harness.names.declareSection("part");
  ASSERT_TRUE(harness.sources.push("f"));
  EXPECT_EQ(harness.dump(), "f!MINE ? S!PART ?");
}

}  // namespace

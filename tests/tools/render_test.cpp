#include "tools/nqoml/render.h"

#include "tools/nqoml/input.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/text.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace nqoml {
namespace {

TEST(Source, LinesEndAsTheLibraryReadsThem) {
  const SourceText source("a\nb\rc\r\nd\n\re\n\nf");
  const char* kLines[] = {"a", "b", "c", "d", "e", "", "f"};
  for (long i = 1; i <= 7; ++i) EXPECT_EQ(source.line(i), kLines[i - 1]) << i;
  for (const long i : {-1L, 0L, 8L, 1000L}) EXPECT_EQ(source.line(i), "") << i;

  std::string many;
  for (int i = 1; i <= 1000; ++i) many += std::to_string(i) + "\n";
  const SourceText longer(many);
  for (const long i : {1L, 256L, 257L, 512L, 513L, 1000L}) {
    EXPECT_EQ(longer.line(i), std::to_string(i));
  }
  EXPECT_EQ(longer.line(1001), "");
}

TEST(Source, TheMarkStandsUnderTheColumn) {
  const struct {
    const char* line;
    long column;
    const char* text;
    const char* mark;
  } kRows[] = {
      {"width: 3", 1, "width: 3", "^~~~~"},
      {"width: 3", 8, "width: 3", "       ^"},
      {"", 1, "", "^"},
      {"ab", 99, "ab", "  ^"},
      {"ab", -1, "ab", "^~"},
      {"\ta\tbc d", 4, "\ta\tbc d", "\t \t^~"},
      {"a\x01z", 3, "a\\x01z", "     ^"},
      {"\xc3\xa9 b", 4, "\xc3\xa9 b", "  ^"},           // one column, two bytes
      {"\xe6\x97\xa5 b", 5, "\xe6\x97\xa5 b", "   ^"},  // two columns, three bytes
      {"\xff\xc3(", 3, "\\xff\\xc3(", "        ^"},     // no UTF-8
      {"\xe2\x80\xae x", 5, "\\u{202e} x", "         ^"},
      {"a\xc3\xa9", 3, "a\xc3\xa9", " ^"},  // inside a character
  };
  for (const auto& row : kRows) {
    const Excerpt shown = excerpt(row.line, row.column);
    EXPECT_EQ(shown.text, row.text);
    EXPECT_EQ(shown.mark, row.mark) << row.text;
  }
}

TEST(Source, LongLinesShowTheNeighbourhoodOfTheColumn) {
  for (const std::size_t at : {0U, 30U, 70U, 500U, 3000U, 9990U}) {
    for (const char* filler : {"x", "\t", "\x01", "\xcc\x81", "\xe6\x97\xa5"}) {
      std::string line;
      while (line.size() < at) line += filler;
      const long column = static_cast<long>(line.size()) + 1;
      line += "@";
      while (line.size() < 10000) line += filler;
      const Excerpt shown = excerpt(line, column);
      EXPECT_LT(shown.text.size(), 2500U);
      // The mark's caret is as many columns in as the "@" is.
      const std::string front = shown.text.substr(0, shown.text.find('@'));
      const Excerpt again = excerpt(front, static_cast<long>(front.size()) + 1);
      EXPECT_EQ(again.mark.size(), shown.mark.size()) << at << " " << filler;
      if (at < 9000) {
        EXPECT_TRUE(shown.text.ends_with("...")) << at << " " << filler;
      }
      if (*filler == 'x') {
        EXPECT_EQ(shown.text.starts_with("..."), at > 60) << at;
      }
    }
  }
}

Report sampleReport() {
  Report report;
  report.file = "a.oml";
  Diagnostic diagnostic;
  diagnostic.code = 22;
  diagnostic.place = {"a.oml", 2, 3};
  diagnostic.text = "unexpected identifier `x\x1b'";
  diagnostic.message = "Error #022 (a.oml:2:3) unexpected identifier `x\x1b' !";
  diagnostic.notes = {{"look \"here\"", {"b.oml", 1, 1}}, {"think", {}}};
  report.diagnostics = {diagnostic};
  diagnostic = {};
  diagnostic.severity = Severity::kFatal;
  diagnostic.code = 10;
  diagnostic.text = "too many errors";
  diagnostic.message = "Fatal error #010 too many errors !";
  report.diagnostics.push_back(diagnostic);
  return report;
}

TEST(Render, TextShowsLinesAndNotes) {
  SourceCache sources;
  sources.hold("a.oml", "one\n\tx: 1\n");
  sources.hold("b.oml", "{");
  std::ostringstream out;
  renderText(out, sampleReport(), sources, false);
  EXPECT_EQ(out.str(),
            "Error #022 (a.oml:2:3) unexpected identifier `x\\x1b' !\n"
            "    2 | \tx: 1\n"
            "      | \t ^\n"
            "      note: look \"here\" (b.oml:1:1)\n"
            "    1 | {\n"
            "      | ^\n"
            "      hint: think\n"
            "Fatal error #010 too many errors !\n");
  Report bytes = sampleReport();
  bytes.binary = true;
  bytes.diagnostics.resize(1);
  bytes.diagnostics[0].notes.clear();
  bytes.diagnostics[0].place = {"a.oml", 1, 6};
  out.str("");
  renderText(out, bytes, sources, false);
  EXPECT_NE(out.str().find("    1 | one\\x0a\tx: 1\\x0a\n      |        \t^\n"),
            std::string::npos)
      << out.str();
  std::ostringstream colored;
  renderText(colored, sampleReport(), sources, true);
  EXPECT_NE(colored.str().find("\x1b[1;31mError #022"), std::string::npos);
}

TEST(Render, GccHasOneLineForEach) {
  std::ostringstream out;
  renderGcc(out, sampleReport());
  EXPECT_EQ(out.str(),
            "a.oml:2:3: error: unexpected identifier `x\\x1b' [#22]\n"
            "b.oml:1:1: note: look \"here\"\n"
            "a.oml:2:3: note: think\n"
            "a.oml: fatal error: too many errors [#10]\n");
}

TEST(Render, JsonIsEscaped) {
  std::ostringstream out;
  renderJson(out, {sampleReport()});
  EXPECT_EQ(
      out.str(),
      "{\"files\":[\n{\"file\":\"a.oml\",\"read\":true,\"errors\":2,\"warnings\":0,"
      "\"diagnostics\":[\n {\"severity\":\"error\",\"fatal\":false,\"code\":22,"
      "\"file\":\"a.oml\",\"line\":2,\"column\":3,"
      "\"text\":\"unexpected identifier `x\\u001b'\","
      "\"message\":\"Error #022 (a.oml:2:3) unexpected identifier `x\\u001b' !\","
      "\"notes\":[{\"text\":\"look \\\"here\\\"\",\"file\":\"b.oml\",\"line\":1,"
      "\"column\":1},{\"text\":\"think\"}]},\n"
      " {\"severity\":\"error\",\"fatal\":true,\"code\":10,\"file\":null,\"line\":null,"
      "\"column\":null,\"text\":\"too many errors\","
      "\"message\":\"Fatal error #010 too many errors !\",\"notes\":[]}]}\n]}\n");

  const struct {
    std::string_view text;
    const char* json;
  } kRows[] = {{"a\"b\\c\n\t\r", "\"a\\\"b\\\\c\\n\\t\\u000d\""},
               {std::string_view("\0\x7f", 2), "\"\\u0000\\u007f\""},
               {"\xc3\xa9\xe2\x82\xac", "\"\\u00e9\\u20ac\""},
               {"\xf0\x9f\x98\x80", "\"\\ud83d\\ude00\""},
               {"\xff\xc0\x80", "\"\\ufffd\\ufffd\\ufffd\""},
               {"\xed\xa0\x80", "\"\\ufffd\\ufffd\\ufffd\""},
               {"\xe2\x82", "\"\\ufffd\\ufffd\""}};
  for (const auto& row : kRows) {
    std::string json;
    appendJsonString(json, row.text);
    EXPECT_EQ(json, row.json);
  }
}

TEST(Binary, OnlyWhatNoTextBeginsWithIsTakenAsBinary) {
  const struct {
    std::string_view start;
    bool binary;
  } kRows[] = {{"", false},
               {"o", false},
               {"graph g {", false},
               {"object", false},
               {"o\n{", false},
               {"Only", false},
               {std::string_view("o\x01$", 3), true},
               {std::string_view("O\0\0\x01\0{", 6), true},
               {std::string_view("\0\0", 2), false}};
  for (const auto& row : kRows)
    EXPECT_EQ(isSurelyBinary(row.start), row.binary) << row.start;
}

}  // namespace
}  // namespace nqoml

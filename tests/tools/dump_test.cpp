#include "tools/nqoml/dump.h"

#include "tests/tools/tool_test.h"
#include "tools/nqoml/convert.h"

#include <iterator>
#include <map>

namespace nqoml {
namespace {

TEST(Dump, Rows) {
  const LoadedGrammar grammar = loadGrammar(NQ_SAMPLES "graph.grammar");
  const struct {
    std::string_view bytes;
    const char* lines;
    long damages;
  } kRows[] = {
      {{"", 0}, "", 0},
      {{"o\1N1\"{}", 7},
       "00000000  object type 1 `graph'\n00000002  id \"1\"\n00000005  {\n00000006  }\n",
       0},
      {{"f\7I\xff\xff\xff\xfei\2", 9},
       "00000000  field 7 `title'\n00000002  integer -2\n00000007  integer 2\n",
       0},
      {{"F\0\0\1\0s\1e\0", 9},
       "00000000  field 256 (not in the grammar)\n00000005  section 1 `_'\n"
       "00000007  enumerator 0 `true'\n",
       0},
      {{"p\1P\xc0\0\2\1r\1r\2", 11},
       "00000000  IP address 0.0.0.1\n00000002  IP address 192.0.2.1\n00000007  real "
       "1e2\n",
       0},
      {{"\"a\\\"b\"$,a\"", 10},
       "00000000  string \"a\\\"b\"\n00000006  address from the top \",a\"\n",
       0},
      {{"Xi\2ab", 5}, "00000000  binary value of 2 bytes: 61 62\n", 0},
      // Damaged places, and what follows them.
      {{"zz}n\0x{", 7},
       "00000000  -- 2 bytes that are no record: 7a 7a\n00000002  }\n"
       "00000003  -- 3 bytes that are no record: 6e 00 78\n00000006  {\n",
       2},
      {{"{I\0\0}", 5},
       "00000000  {\n00000001    integer -- the file ends within it\n",
       1},
      {{"r}i\1", 4}, "00000000  real 125 -- has no exponent\n00000002  integer 1\n", 1},
      {{"X}", 2}, "00000000  binary value -- has no length\n00000001  }\n", 1},
      {{"Xi\5ab{", 6},
       "00000000  binary value of 5 bytes -- only 3 are there\n"
       "00000003  -- 2 bytes that are no record: 61 62\n00000005  {\n",
       2},
      {{"XI\xff\xff\xff\xff{", 7},
       "00000000  binary value of -1 bytes -- no such length\n00000006  {\n",
       1},
      {{"{\"a\\", 4}, "00000000  {\n00000001    string \"a\\\" -- has no end\n", 1},
  };
  for (const auto& row : kRows) {
    std::ostringstream out;
    EXPECT_EQ(dumpRecords(out, row.bytes, grammar.grammar.get()), row.damages)
        << out.str();
    EXPECT_EQ(out.str(), row.lines);
  }
}

// Every kind of record, cut off anywhere: what is whole is shown as before, and then
// where the file breaks off.
TEST(Dump, EndsWhereTheFileDoes) {
  using namespace std::string_literals;
  const std::string whole =
      "O\0\0\0\1o\1F\0\0\0\7f\7S\0\0\0\1s\1E\0\0\0\1e\1"
      "I\0\0\0\3i\3P\x7f\0\0\1p\1R\0\0\0\1r\2r\1R\0\0\0\2"
      "XI\0\0\0\2abXi\1aXi\0\"a\\\"b\"\"\"N1\"$,a\"{[(<>)]}"s;
  std::ostringstream all;
  ASSERT_EQ(dumpRecords(all, whole, nullptr), 0) << all.str();
  const std::string lines = all.str();
  std::map<std::size_t, std::size_t> records;  // where each begins: and its line
  for (std::size_t at = 0; at < lines.size(); at = lines.find('\n', at) + 1) {
    records[std::stoul(lines.substr(at, 8), nullptr, 16)] = at;
  }
  EXPECT_EQ(records.size(), 29U) << lines;
  records[whole.size()] = lines.size();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const auto next = records.lower_bound(length);
    const bool isWhole = next->first == length;
    const std::size_t end = isWhole ? next->second : std::prev(next)->second;
    std::ostringstream out;
    const long damages = dumpRecords(out, whole.substr(0, length), nullptr);
    ASSERT_EQ(damages == 0, isWhole) << length << "\n" << out.str();
    ASSERT_EQ(out.str().substr(0, end), lines.substr(0, end)) << length;
    const std::string rest = out.str().substr(end);
    ASSERT_EQ(rest.empty(), isWhole) << length << "\n" << rest;
    if (isWhole) continue;
    EXPECT_EQ(rest.substr(0, 8), lines.substr(end, 8)) << length << "\n" << rest;
    EXPECT_NE(rest.find(" -- "), std::string::npos) << rest;
  }
}

class DumpTest : public ToolTest {};

TEST_F(DumpTest, SurvivesEveryDamage) {
  ConvertOptions convert;
  convert.grammar = NQ_SAMPLES "graph.grammar";
  convert.file = NQ_SAMPLES "karate.oml";
  convert.to = Encoding::kBinary;
  ASSERT_EQ(run(runConvert, convert), kClean) << err_;
  const std::string whole = out_;
  DumpOptions options;
  options.file = "-";
  ASSERT_EQ(run(runDump, options, whole), kClean) << out_;
  std::mt19937 random(3);
  for (int round = 0; round < 500; ++round) {
    std::string bytes = whole;
    if (round % 3 == 0) bytes.resize(random() % bytes.size());
    for (int i = round % 4; i > 0 && !bytes.empty(); --i) {
      bytes[random() % bytes.size()] = static_cast<char>(random() % 256);
    }
    options.grammar = round % 2 == 0 ? "" : convert.grammar;
    const int code = run(runDump, options, bytes);
    ASSERT_NE(code, kTrouble) << err_;
    for (const char c : out_) ASSERT_TRUE(c == '\n' || c < 0 || c >= ' ');
  }
}

}  // namespace
}  // namespace nqoml

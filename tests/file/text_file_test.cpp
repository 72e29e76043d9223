#include "nq/file/text_file.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>

#include "tests/support/copy_protocol_check.h"
#include "tests/support/fake_system.h"

namespace {

// What the function leaves in a file.
std::string written(const std::function<NQFileCodeEnum(NQTextFile&)>& write) {
  FakeSystem fake;
  NQTextFile file;
  EXPECT_EQ(file.open("a", NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(write(file), NQ_FILE_OK);
  EXPECT_EQ(file.close(), NQ_FILE_OK);
  return fake.files["a"];
}

template <class Value>
void expectWritten(Value value, const std::string& text) {
  EXPECT_EQ(written([=](NQTextFile& file) { return file.write(value); }), text);
  EXPECT_EQ(written([=](NQTextFile& file) { return file.writeLine(value); }),
            text + "\r\n");
}

// A real in full, by the C library.
std::string inFull(double value) {
  char text[400];
  std::snprintf(text, sizeof text, "%f", value);
  return text;
}

TEST(NQTextFile, WritesValuesWithAndWithoutLineEnd) {
  expectWritten("text", "text");
  expectWritten("", "");
  expectWritten(42, "42");
  expectWritten(INT_MIN, "-2147483648");
  expectWritten(UINT_MAX, "4294967295");
  expectWritten(-1L, "-1");
  expectWritten(4294967295UL, "4294967295");
  expectWritten(LLONG_MIN, "-9223372036854775808");
  expectWritten(ULLONG_MAX, "18446744073709551615");
  expectWritten(std::int64_t{1} << 40, "1099511627776");  // a long on some systems
  expectWritten(std::size_t{1} << 40, "1099511627776");
  expectWritten(short{-3}, "-3");
  expectWritten(true, "1");
  for (const double value : {1.5, -0.0000004, 0.0000005, 1e300, -DBL_MAX}) {
    expectWritten(value, inFull(value));
  }
  for (const int value : {0, 1, -7}) {
    const std::string text = value != 0 ? "TRUE" : "FALSE";
    EXPECT_EQ(written([=](NQTextFile& file) { return file.writeTrueOrFalse(value); }),
              text);
    EXPECT_EQ(written([=](NQTextFile& file) { return file.writeLineTrueOrFalse(value); }),
              text + "\r\n");
  }
}

TEST(NQTextFile, FormatsOneRealSafely) {
  const struct {
    double value;
    const char* format;
    std::string text;
  } kRows[] = {{2.5, "<%8.2lf>", "<    2.50>"},
               {2.5, "%g %g", "2.5 "},
               {2.5, "100%", "100"},
               {2.5, "%", ""},
               {2.5, "%%", "%"},
               {2.5, "%d%s%n", ""},
               {2.5, "", ""},
               {1e300, "%lf", inFull(1e300).substr(0, 253)}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(
        written([&](NQTextFile& file) { return file.write(row.value, row.format); }),
        row.text);
    EXPECT_EQ(
        written([&](NQTextFile& file) { return file.writeLine(row.value, row.format); }),
        row.text + "\r\n");
  }
  FakeSystem fake;
  NQTextFile file;
  ASSERT_EQ(file.open("a", NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.write(1.0, nullptr), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.writeLine(1.0, nullptr), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.writeLine(static_cast<const char*>(nullptr)), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.error(), 1);
  EXPECT_EQ(file.close(), NQ_FILE_OK);
  EXPECT_EQ(fake.files["a"], "");
}

// Reads the text as a number; tells whether it was one.
template <class Value>
bool readNumber(const std::string& text, Value& value) {
  FakeSystem fake;
  fake.files["a"] = text + "\r\nnext\n";
  NQTextFile file;
  EXPECT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
  const NQFileCodeEnum result = file.readLine(value);
  EXPECT_TRUE(result == NQ_FILE_OK || result == NQ_FILE_READ_ERROR);
  EXPECT_EQ(file.error(), result != NQ_FILE_OK);
  NQStringHandle next;
  EXPECT_EQ(file.readLine(next), NQ_FILE_OK);
  EXPECT_STREQ(next.pString(), "next");
  return result == NQ_FILE_OK;
}

template <class Signed, class Unsigned>
void checkIntegers() {
  constexpr nqInt64 kNone = LLONG_MIN;
  const struct {
    const char* text;
    nqInt64 asSigned;
    nqInt64 asUnsigned;
  } kRows[] = {{"42", 42, 42},
               {" \t+42abc", 42, 42},
               {"-1", -1, 4294967295},
               {"-0", 0, 0},
               {"0012", 12, 12},
               {"0x10", 0, 0},
               {"2147483647", 2147483647, 2147483647},
               {"-2147483648", -2147483648LL, 2147483648},
               {"2147483648", kNone, 2147483648},
               {"-2147483649", kNone, 2147483647},
               {"4294967295", kNone, 4294967295},
               {"4294967296", kNone, kNone},
               {"-4294967296", kNone, kNone},
               {"99999999999999999999999", kNone, kNone},
               {"abc", kNone, kNone},
               {"", kNone, kNone},
               {"-", kNone, kNone},
               {"+-1", kNone, kNone},
               {"- 1", kNone, kNone}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    Signed number = 7;
    EXPECT_EQ(readNumber(row.text, number), row.asSigned != kNone);
    EXPECT_EQ(number, static_cast<Signed>(row.asSigned == kNone ? 7 : row.asSigned));
    Unsigned natural = 7;
    EXPECT_EQ(readNumber(row.text, natural), row.asUnsigned != kNone);
    EXPECT_EQ(natural,
              static_cast<Unsigned>(row.asUnsigned == kNone ? 7 : row.asUnsigned));
  }
}

TEST(NQTextFile, ReadsIntegersThatFitAndRefusesOthers) {
  checkIntegers<int, unsigned int>();
  checkIntegers<long, unsigned long>();
}

TEST(NQTextFile, ReadsRealsWhateverTheLocale) {
  const double none = 7;
  const struct {
    const char* text;
    double value;
  } kRows[] = {{"1.5", 1.5},
               {" -1.5e2xyz", -150},
               {".5", 0.5},
               {"+5.", 5},
               {"1e300", 1e300},
               {"0x1.8p1", 3},
               {"-0X10", -16},
               {"0xg", 0},
               {"1e", 1},
               {"inf", HUGE_VAL},
               {"-infinity", -HUGE_VAL},
               {"1,5", 1},
               {"1e999", none},
               {"1e-999", 0},
               {"-0.00001e-400", 0},
               {"100e-999999999999999999999", 0},
               {"0.1e999999999999999999999", none},
               {"--1", none},
               {"+-1", none},
               {"0x-1", 0},
               {"0xinf", 0},
               {".", none},
               {"e5", none},
               {"", none}};
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* const locale : {"C", "de_DE.UTF-8", "fr_FR.UTF-8"}) {
    if (std::setlocale(LC_ALL, locale) == nullptr) continue;
    expectWritten(1.5, "1.500000");
    for (const auto& row : kRows) {
      SCOPED_TRACE(row.text);
      double value = none;
      EXPECT_EQ(readNumber(row.text, value), row.value != none);
      EXPECT_EQ(value, row.value);
    }
  }
  std::setlocale(LC_ALL, before.c_str());
  double value = 0;
  EXPECT_TRUE(readNumber("nan", value));
  EXPECT_TRUE(std::isnan(value));
  EXPECT_TRUE(
      readNumber(written([](NQTextFile& file) { return file.write(1e300); }), value));
  EXPECT_EQ(value, 1e300);
}

TEST(NQTextFile, ReadsTruthByItsPrefix) {
  const struct {
    const char* text;
    int value;  // 7: none
  } kRows[] = {{"TRUE", 1}, {"TRUEST", 1}, {"FALSE", 0}, {"FALSEHOOD", 0}, {"TRU", 7},
               {"true", 7}, {"FALS", 7},   {"", 7},      {" TRUE", 7}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    FakeSystem fake;
    fake.files["a"] = std::string(row.text) + "\n";
    NQTextFile file;
    int value = 7;
    ASSERT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
    EXPECT_EQ(file.readLineTrueOrFalse(value),
              row.value == 7 ? NQ_FILE_READ_ERROR : NQ_FILE_OK);
    EXPECT_EQ(file.error(), row.value == 7);
    EXPECT_EQ(value, row.value);
  }
}

TEST(NQTextFile, TheEndOfTheDataIsNoErrorButAFailureIs) {
  FakeSystem fake;
  fake.files["a"] = "one\r\n\n\rtwo";
  NQTextFile file;
  NQStringHandle line;
  ASSERT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
  for (const char* const expected : {"one", "", "two"}) {
    EXPECT_EQ(file.readLine(line), NQ_FILE_OK);
    EXPECT_STREQ(line.pString(), expected);
  }
  int number = 7;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(file.readLine(line), NQ_FILE_READ_ERROR);
    EXPECT_EQ(file.readLine(number), NQ_FILE_READ_ERROR);
    EXPECT_EQ(file.endOfFile(), 1);
    EXPECT_EQ(file.error(), 0);
  }
  EXPECT_EQ(number, 7);
  EXPECT_EQ(file.writeString("x"), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.readLine(line), NQ_FILE_READ_ERROR);
  EXPECT_EQ(file.error(), 1) << "as it was before the call";

  ASSERT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
  fake.readsUntilFailure = 0;
  EXPECT_EQ(file.readLine(line), NQ_FILE_READ_ERROR);
  EXPECT_EQ(file.error(), 1);
  EXPECT_EQ(file.readLine(number), NQ_FILE_READ_ERROR);
  EXPECT_EQ(file.endOfFile(), 0);
}

// Strips in all the ways that an override may.
class StrippingFile : public NQTextFile {
 public:
  enum Way { kBlanks, kLonger, kElsewhere, kNothing } way = kBlanks;

  char* stripBuffer(char* text) override {
    seen += text;
    NQTextFile::stripBuffer(text);
    static char elsewhere[] = "elsewhere";
    switch (way) {
      case kBlanks:
        while (isSpace(*text)) ++text;
        return text;
      case kLonger:  // by one character than what was read
        return std::strcat(text, "\n!");
      case kElsewhere:
        return elsewhere;
      case kNothing:
        break;
    }
    return nullptr;
  }
  std::string seen;
};

TEST(NQTextFile, ReadsLinesThroughStripBuffer) {
  FakeSystem fake;
  StrippingFile file;
  const std::string text(251, 'x');  // fills a handle's first buffer but for the spare
  fake.files["a"] = " \tindented\r" + text + "\n\nlast\n";
  ASSERT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
  NQStringHandle line;
  std::string seen;
  const struct {
    StrippingFile::Way way;
    std::string read;
    std::string line;
  } kRows[] = {{StrippingFile::kBlanks, " \tindented\n", "indented"},
               {StrippingFile::kLonger, text + "\n", text + "\n!"},
               {StrippingFile::kElsewhere, "\n", "elsewhere"},
               {StrippingFile::kNothing, "last\n", ""}};
  for (const auto& row : kRows) {
    file.way = row.way;
    EXPECT_EQ(file.readLine(line), NQ_FILE_OK);
    EXPECT_EQ(line.pString(), row.line);
    EXPECT_EQ(line.strlenBuf(), static_cast<nqLong>(row.line.size()));
    EXPECT_EQ(file.seen, seen += row.read);
  }
}

TEST(NQTextFile, StripsAllLineEndsAndKnowsComments) {
  NQTextFile file;
  const struct {
    const char* text;
    const char* stripped;
  } kRows[] = {
      {"a\r\n\r\n", "a"}, {"\n", ""}, {"", ""}, {"a\nb", "a\nb"}, {"a \r", "a "}};
  for (const auto& row : kRows) {
    std::string text = row.text;
    EXPECT_EQ(file.stripBuffer(text.data()), text.data());
    EXPECT_STREQ(text.c_str(), row.stripped);
  }
  EXPECT_EQ(file.stripBuffer(nullptr), nullptr);
  EXPECT_EQ(NQTextFile::isDoubleSlashString("//x"), 1);
  for (const char* const text : {"/", "", "/ /", " //"}) {
    EXPECT_EQ(NQTextFile::isDoubleSlashString(text), 0) << text;
  }
  EXPECT_EQ(NQTextFile::isDoubleSlashString(nullptr), 0);
}

TEST(NQTextFile, HasTheCopyProtocol) {
  FakeSystem fake;
  NQTextFile sample;
  EXPECT_EQ(sample.open("missing", NQ_READ_ASCII), NQ_FILE_OPEN_ERROR);
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQTextFile>(); },
      [](const NQTextFile& a, const NQTextFile& b) { return a.mode() == b.mode(); },
      [](const NQTextFile&, const NQTextFile& b) { return b.mode() == NQ_READ; });
  EXPECT_EQ(sample.sizeOf(), 72);
}

}  // namespace

#include <gtest/gtest.h>

#include <string>

#include "tests/support/fake_system.h"
#include "tests/support/hostile_files.h"
#include "tests/support/oml_reading.h"

namespace {

// Something of everything, good as it stands.
constexpr char kSample[] =
    "version 3 /* c */ section \"mine\" field \"old\" // l\n"
    "graph: 1\r\n{ title: \"a\\x41\\\\\\\"\n\" count=-5; ratio 1.5e1 addr 10.1.2.3\n"
    "  blob 0x0a 0x0b flag true size medium old 5 }\n link 1,b any $1,a include \"g\";\n"
    "  layout { spacing .5 inner depth 1 deep { level 2 } _ depth { 3 4 } node s }\n"
    "  mine { ( ) % } skip { \" } node defaults [ x 7 node a { next b } node a {} ]\n"
    "  node b < x 1 comment \"unchecked\" foo a,b bar 1.2.3.4 > node {} group 9 ( id 9 "
    ")\n"
    "  strict { 1 \"x\" } }\n";

class Hostile : public testing::Test {
 protected:
  Hostile() { system.files["g"] = "count 6 node a { label \"g\" }"; }

  // A read that may end as it likes, then a good one with the same reader.
  void survive(const std::string& contents, bool binary) {
    system.files["f"] = contents;
    reader.keepTree = false;  // it can be far longer than the file
    const NQFileCodeEnum result = reader.read("f", grammar, binary);
    reader.keepTree = true;
    EXPECT_EQ(result == NQ_FILE_OK, reader.numberOfErrors() == 0);
    EXPECT_LE(reader.numberOfErrors(), reader.maxNumberOfErrors() + 1);
    ASSERT_EQ(system.openFiles(), 0);
    ASSERT_EQ(reader.read("good", grammar), NQ_FILE_OK);
    ASSERT_EQ(reader.tree, "graph#$,1{count=1}");
  }

  FakeSystem system{};
  EverythingGrammar grammar;
  TestReader reader;
  const bool filled_ = (system.files["good"] = "graph 1 { count 1 }", true);
};

TEST_F(Hostile, EveryKindOfFileIsAnswered) {
  for (const HostileFile& file : hostileFiles(1 << 15)) {
    SCOPED_TRACE(file.name);
    for (const int limit : {16, 1'000'000}) {
      reader.maxNumberOfErrors(limit);
      survive(file.contents, file.binary);
      // The other encoding's reader must live with it too.
      survive(file.contents, !file.binary);
    }
  }
}

TEST_F(Hostile, AFileMayEndAnywhere) {
  const std::string sample = kSample;
  system.files["f"] = sample;
  ASSERT_EQ(reader.read("f", grammar), NQ_FILE_OK) << reader.errors();
  for (std::size_t length = 0; length < sample.size(); ++length) {
    SCOPED_TRACE(length);
    survive(sample.substr(0, length), false);
    // In the included file too.
    system.files["g"] = sample.substr(0, length);
    survive(sample, false);
    system.files["g"] = "count 6";
  }
}

TEST_F(Hostile, AnyByteMayStandAnywhere) {
  constexpr char kBytes[] = " \n\"\\{})$,#/_x0.-eE:;%\0\x80\xff";
  const std::string bytes(kBytes, sizeof kBytes - 1);
  for (std::size_t place = 0; place + 1 < sizeof kSample; ++place) {
    for (const char byte : bytes) {
      std::string sample = kSample;
      sample[place] = byte;
      survive(sample, false);
    }
  }
}

TEST_F(Hostile, AnyBinaryRecordMayStandAnywhere) {
  unsigned random = 1;
  const auto next = [&random](unsigned below) {
    random = random * 1664525U + 1013904223U;
    return (random >> 8) % below;
  };
  const std::string letters = "eEfFiIoOpPrRsSXN$\"{}[]()";
  for (int round = 0; round < 3000; ++round) {
    std::string contents = round % 2 == 0 ? std::string("o\1N1\"{", 6) : "";
    for (unsigned i = 0, count = next(40); i < count; ++i) {
      contents += letters[next(static_cast<unsigned>(letters.size()))];
      if (next(3) > 0) contents += static_cast<char>(next(next(2) != 0 ? 24 : 256));
      if (next(4) == 0) contents += std::string("\0\0\0", next(4)) + "\"";
    }
    survive(contents, true);
  }
}

}  // namespace

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "nq/oml/bin_value.h"
#include "tests/support/failing_memory.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"

namespace {

// Takes part in a read without memory of its own: all that it is told goes into one
// number.
class SummingReader : public NQOMLFile {
 public:
  SummingReader() { (void)pErrorStringBuffer(4000); }

  unsigned sum = 0;

 protected:
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject*,
                          NQObject*) override {
    add(syntax->nameString());
    return &object_;
  }
  int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQObject*) override {
    add(field->nameString());
    add(field->sectionString());
    if (field->valueType() == NQ_OML_VALUE_STRING) add(field->stringValue());
    if (field->valueType() == NQ_OML_VALUE_INTEGER) sum += 7 * field->shortValue();
    if (const NQOMLBinValue* const bytes = field->pBinValue()) {
      sum += 31 * static_cast<unsigned>(bytes->length());
    }
    if (field->objectValue() != nullptr) ++sum;
    return 1;
  }

 private:
  void add(const char* text) {
    for (; *text != '\0'; ++text) sum = 31 * sum + static_cast<unsigned char>(*text);
  }

  NQObject object_;
};

// Files that need memory of every kind, and what is wrong with them.
struct Sample {
  const char* name;
  std::string text;
  bool binary;
};

// Something of everything, and an object that inherits from as many blocks as it takes
// for an index of them.
std::string richText() {
  std::string text = "include \"g\"; field \"mine\" section \"own\" graph 1 { title \"";
  text += std::string(200'000, 't') + "\\x41\" blob 0x01 0x02 mine 5\n own { }\n";
  text +=
      "layout _ depth 4 link 1,n3 node far { comment \"unchecked\" a 1 b $1 d 0x05 }\n";
  for (int block = 0; block < 40; ++block) {
    text += "node defaults { x " + std::to_string(block) + " node n3 { label \"n\" } }\n";
  }
  for (std::size_t object = 0; object < 100; ++object) {
    text += "node " + std::string(1 + object % 20, 'k') + std::to_string(object * 1000) +
            " { } node { }\n";
  }
  return text + "}";
}

TEST(Memory, IsExhaustedAnywhereInARead) {
  if (!FailingMemory::kWorks) GTEST_SKIP();
  EverythingGrammar grammar;
  const std::string good = richText();
  const Sample samples[] = {
      {"good", good, false},
      {"bad values", "graph 1 { count 0x0102 foo 0x01 size 0x02 include 0x03 0x04 }",
       false},
      {"bad places", "graph 1 { group { graph node x inner } strict s { ( } any a,,b \"c",
       false},
      {"binary", "o\1N1\"{f\10\"text\"f\15Xi\2abXi\1a}", true},
  };
  for (const Sample& sample : samples) {
    const auto read = [&](SummingReader& reader) {
      reader.sum = 0;
      return reader.readOMLFile("f", &grammar, nullptr, -1, sample.binary ? 1 : 0, 1, 0);
    };
    const auto makeFiles = [&sample](FakeSystem& system) {
      system.files = {{"f", sample.text}, {"g", "version 3 // nothing"}};
    };
    // What a read answers with all the memory it wants.
    NQFileCodeEnum expected = NQ_FILE_OK;
    unsigned sum = 0;
    std::string errors;
    {
      FakeSystem system;
      makeFiles(system);
      SummingReader reader;
      expected = read(reader);
      sum = reader.sum;
      errors = reader.pErrorStringBuffer();
      ASSERT_EQ(errors.empty(), std::strncmp(sample.name, "bad", 3) != 0) << errors;
    }
    for (const bool forGood : {false, true}) {
      bool failed = true;
      for (long successes = 0; failed; ++successes) {
        SCOPED_TRACE(std::string(sample.name) + (forGood ? " for good" : "") + " after " +
                     std::to_string(successes));
        const long live = FailingMemory::live();
        {
          FakeSystem system;
          makeFiles(system);
          SummingReader reader;
          FailingMemory memory(successes, forGood);
          const NQFileCodeEnum result = read(reader);
          memory.stop();
          failed = memory.hasFailed();
          // What is only prepared for may be lacking; all else ends the read, without a
          // message where there is no memory for it.
          const char* const told = reader.pErrorStringBuffer();
          if (std::strstr(told, "Fatal error #012 ") != nullptr ||
              (forGood && result == NQ_FILE_READ_ERROR)) {
            ASSERT_EQ(result, NQ_FILE_READ_ERROR);
            ASSERT_GT(reader.numberOfErrors(), 0);
          } else {
            ASSERT_EQ(told, errors);
            ASSERT_EQ(result, expected);
            ASSERT_EQ(reader.sum, sum);
          }
          ASSERT_EQ(system.openFiles(), 0);
          ASSERT_EQ(read(reader), expected);
          ASSERT_EQ(reader.sum, sum);
        }
        ASSERT_EQ(FailingMemory::live(), live);
      }
    }
  }
}

}  // namespace

// Reading and writing what is not a file with a name.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "nq/file/byte_stream.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"

namespace {

// Has included files supplied; "itself" has what includes it again.
class SuppliedReader : public TestReader {
 public:
  NQFileCodeEnum readSource(NQByteSource& source, NQOMLStatic& grammar,
                            const char* name = "d/f") {
    tree.clear();
    progress.clear();
    return readOML(source, name, &grammar, nullptr, -1, 0, 0);
  }
  std::map<std::string, std::string> supplied;
  std::string asked;

 protected:
  std::unique_ptr<NQByteSource> vIncludedSource(const char* name) override {
    asked.append(name).append(" ");
    const auto found = supplied.find(name);
    if (found == supplied.end()) return nullptr;
    return std::make_unique<NQMemorySource>(found->second);
  }
};

TEST(Streams, AreReadAsTheFileOfTheirNameWouldBe) {
  EverythingGrammar grammar;
  const std::string comment = "# " + std::string(200000, '-') + "\n";
  for (const std::string& text :
       {std::string(), std::string("graph 1 { count 2 }"), comment + "graph 1 { count }",
        std::string("graph 1 { include \"g\"; count 2"),
        std::string("graph 1 { include \"g\"; title \"a\0b", 34),
        std::string("graph 1 { include \"missing\" }")}) {
    SCOPED_TRACE(text.substr(0, 40));
    FakeSystem system;
    system.files = {{"d/f", text}, {"d/g", "count 1"}};
    TestReader file;
    file.read("d/f", grammar);
    NQMemorySource memory(text);
    std::istringstream stream(text);
    NQStreamSource streamed(stream);
    NQHandleSource handle(system.handleOn("d/f"));
    for (NQByteSource* const source :
         {static_cast<NQByteSource*>(&memory), static_cast<NQByteSource*>(&streamed),
          static_cast<NQByteSource*>(&handle)}) {
      SuppliedReader reader;
      EXPECT_EQ(reader.readSource(*source, grammar), file.result);
      EXPECT_EQ(reader.tree, file.tree);
      EXPECT_EQ(reader.errors(), file.errors());
      EXPECT_TRUE(source == &streamed || reader.progress == file.progress);
      EXPECT_EQ(system.openFiles(), 1) << "the handle is borrowed";
    }
  }
}

// Gives blanks without end, or throws.
class EndlessSource : public NQByteSource {
 public:
  explicit EndlessSource(bool throws) : throws_(throws) {}
  NQFileCodeEnum read(char* data, std::size_t count, std::size_t& copied) override {
    if (throws_) throw std::runtime_error("broken");
    std::fill_n(data, count, ' ');
    copied = count;
    return NQ_FILE_OK;
  }
  nqInt64 size() const override {
    if (throws_) throw std::runtime_error("broken");
    return -1;
  }

 private:
  bool throws_;
};

TEST(Streams, ThatFailOrNeverEndEndTheRead) {
  EverythingGrammar grammar;
  SuppliedReader reader;
  NQMemorySource null(nullptr, 5);
  EXPECT_EQ(reader.readSource(null, grammar), NQ_FILE_READ_ERROR);
  NQMemorySource nothing(nullptr, 0);
  EXPECT_EQ(reader.readSource(nothing, grammar), NQ_FILE_OK);
  EndlessSource broken(true);
  EXPECT_EQ(reader.readSource(broken, grammar), NQ_FILE_READ_ERROR);
  EndlessSource endless(false);
  reader.stopAfter = 10'000'000;
  EXPECT_EQ(reader.readSource(endless, grammar), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.readSource(nothing, grammar, nullptr), NQ_FILE_READ_ARGUMENT_ERROR);
  EXPECT_EQ(reader.readOML(nothing, "f", nullptr, nullptr, -1, 0, 0),
            NQ_FILE_READ_ARGUMENT_ERROR);
}

TEST(Streams, TakeThePlaceOfIncludedFiles) {
  EverythingGrammar grammar;
  FakeSystem system;
  system.files = {{"d/f", "graph 1 { include \"g\"; include \"h\"; }"},
                  {"d/g", "count 1"},
                  {"secret", "count 4"}};
  SuppliedReader reader;
  reader.supplied = {
      {"g", "count 2"}, {"d/h", "include \"deep\" "}, {"d/deep", "count 3"}};
  EXPECT_EQ(reader.read("d/f", grammar), NQ_FILE_OK) << reader.errors();
  EXPECT_EQ(reader.tree, "graph#$,1{count=2 count=3}");
  EXPECT_EQ(reader.asked, "g h d/h deep d/deep ");

  // Nothing, itself without end, and what may not be included.
  reader.supplied = {{"itself", "include \"itself\";"}};
  reader.forbidden = "secret";
  for (const char* const name : {"missing", "itself", "secret"}) {
    reader.asked.clear();
    system.files["d/f"] = std::string("include \"") + name + "\"";
    EXPECT_EQ(reader.read("d/f", grammar), NQ_FILE_OPEN_ERROR) << name;
    EXPECT_FALSE(reader.asked.starts_with("secret "));
  }
  EXPECT_EQ(system.openFiles(), 0);
}

class OneField : public NQOMLFile {
 public:
  bool throws = false;

 protected:
  void vWriteObject(NQObject*) override {
    writeAttribute("x", 1);
    if (throws) throw std::runtime_error("out of the hook");
    std::string big(300000, 'b');
    writeStringAttribute("title", big.c_str());
  }
};

// Takes the first so many bytes, and may throw at the next.
class SmallSink : public NQByteSink {
 public:
  explicit SmallSink(bool throws) : throws_(throws) {}
  NQFileCodeEnum write(const char*, std::size_t count) override {
    if (count <= room_) {
      room_ -= count;
      return NQ_FILE_OK;
    }
    if (throws_) throw std::runtime_error("full");
    return NQ_FILE_WRITE_ERROR;
  }

 private:
  std::size_t room_ = 280000;
  bool throws_;
};

TEST(Streams, AreWrittenAsFilesAre) {
  EverythingGrammar grammar;
  FakeSystem system;
  for (const int binary : {0, 1}) {
    OneField file;
    EXPECT_EQ(file.writeOMLFile("f", &grammar, nullptr, binary, 0, 0), NQ_FILE_OK);
    std::string text;
    NQStringSink sink(text);
    std::ostringstream stream;
    NQStreamSink streamed(stream);
    EXPECT_EQ(file.writeOML(sink, &grammar, nullptr, binary, 0), NQ_FILE_OK);
    EXPECT_EQ(file.isAttached(), 0);
    EXPECT_EQ(file.writeOML(streamed, &grammar, nullptr, binary, 0), NQ_FILE_OK);
    EXPECT_EQ(text, system.files["f"]);
    EXPECT_EQ(stream.str(), text);
    for (const bool throws : {false, true}) {
      SmallSink small(throws);
      EXPECT_EQ(file.writeOML(small, &grammar, nullptr, binary, 0), NQ_FILE_WRITE_ERROR);
      EXPECT_EQ(file.storedOnDisk(), 0);
      EXPECT_EQ(file.isAttached(), 0);
    }
    EXPECT_EQ(file.writeOML(sink, nullptr, nullptr, binary, 0),
              NQ_FILE_WRITE_ARGUMENT_ERROR);
    file.throws = true;
    EXPECT_EQ(file.writeOML(sink, &grammar, nullptr, binary, 0), NQ_FILE_WRITE_ERROR);
    EXPECT_EQ(file.isAttached(), 0);
  }
}

}  // namespace

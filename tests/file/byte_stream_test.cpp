#include "nq/file/byte_stream.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

#include "nq/file/text_file.h"
#include "tests/support/fake_system.h"

#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace {

// The lines of a source, and then "!" when a read failed.
std::vector<std::string> lines(NQByteSource& source) {
  NQTextFile file;
  EXPECT_EQ(file.attachSource(source, NQ_READ), NQ_FILE_OK);
  EXPECT_EQ(file.isAttached(), 1);
  EXPECT_EQ(file.fileHandle(), nqdetail::noHandle());
  std::vector<std::string> result;
  NQStringHandle line;
  while (file.readLine(line) == NQ_FILE_OK) result.emplace_back(line.pString());
  EXPECT_EQ(file.error(), file.endOfFile() ? 0 : 1);
  if (!file.endOfFile()) result.emplace_back("!");
  EXPECT_EQ(file.detach(0), NQ_FILE_OK);
  EXPECT_EQ(file.readLine(line), NQ_FILE_READ_ERROR);
  return result;
}

// Gives its text and then throws, or says that it failed.
class BreakingBuffer : public std::stringbuf {
 public:
  explicit BreakingBuffer(const std::string& text) : std::stringbuf(text) {}

 protected:
  int_type underflow() override { throw std::runtime_error("no more"); }
  std::streamsize xsgetn(char* to, std::streamsize count) override {
    const std::streamsize taken = std::stringbuf::xsgetn(to, in_avail());
    if (taken < count) throw std::runtime_error("no more");
    return taken;
  }
  int_type overflow(int_type) override { throw std::runtime_error("no room"); }
  std::streamsize xsputn(const char*, std::streamsize) override { return 0; }
};

// What an application may get wrong.
class OddSource : public NQByteSource {
 public:
  enum Kind { kThrows, kFails, kLies, kTrickles };
  explicit OddSource(Kind kind) : kind_(kind) {}

  NQFileCodeEnum read(char* data, std::size_t count, std::size_t& copied) override {
    const std::string_view text = "one\ntwo\n";
    if (at_ < text.size()) {
      data[0] = text[at_++];
      copied = 1;
      return NQ_FILE_OK;
    }
    if (kind_ == kThrows) throw std::runtime_error("no more");
    copied = kind_ == kLies ? count + 1 : 0;
    return kind_ == kFails ? NQ_FILE_READ_ERROR : NQ_FILE_OK;
  }

 private:
  Kind kind_;
  std::size_t at_ = 0;
};

TEST(ByteSources, AreReadAsFilesAre) {
  const std::string big = std::string(70000, 'a') + "\r\n" + std::string(200000, 'b');
  const struct {
    std::string text;
    std::vector<std::string> lines;
  } kRows[] = {{"", {}},
               {"one\r\ntwo\rthree\n\rfour", {"one", "two", "three", "four"}},
               {big, {std::string(70000, 'a'), std::string(200000, 'b')}},
               {std::string("a\0b", 3), {"a"}}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text.substr(0, 20));
    NQMemorySource memory(row.text);
    EXPECT_EQ(memory.size(), static_cast<nqInt64>(row.text.size()));
    EXPECT_EQ(lines(memory), row.lines);
    for (const bool throwing : {false, true}) {
      std::istringstream stream(row.text);
      if (throwing) stream.exceptions(std::ios::failbit | std::ios::badbit);
      NQStreamSource source(stream);
      EXPECT_EQ(source.size(), -1);
      EXPECT_EQ(lines(source), row.lines);
    }
    FakeSystem fake;
    fake.files["a"] = row.text;
    fake.largestTransfer = 7;
    NQHandleSource handle(fake.handleOn("a"));
    EXPECT_EQ(handle.size(), memory.size());
    EXPECT_EQ(lines(handle), row.lines);
  }
  NQMemorySource bytes("data");
  NQFile file;
  ASSERT_EQ(file.attachSource(bytes, NQ_READ_BINARY), NQ_FILE_OK);
  char data[10];
  int count = 3;
  EXPECT_EQ(file.readBinary(data, count), NQ_FILE_OK);
  EXPECT_EQ(NQFile(file).isAttached(), 0) << "what is attached is never shared";
  count = 10;
  EXPECT_EQ(file.readBinary(data, count), NQ_FILE_OK);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(file.endOfFile(), 1);
}

TEST(ByteSources, ThatFailAreNeverTakenForTheEnd) {
  BreakingBuffer buffer("one\ntwo\n");
  std::istream breaking(&buffer);
  NQStreamSource thrown(breaking);
  EXPECT_EQ(lines(thrown), (std::vector<std::string>{"!"}));
  std::istringstream bad("text");
  bad.setstate(std::ios::failbit);  // as that of a file that could not be opened
  NQStreamSource failed(bad);
  EXPECT_EQ(lines(failed), (std::vector<std::string>{"!"}));
  for (const auto kind : {OddSource::kThrows, OddSource::kFails, OddSource::kLies}) {
    OddSource source(kind);  // fails as it looks what is behind the second line
    EXPECT_EQ(lines(source), (std::vector<std::string>{"one", "!"})) << kind;
  }
  OddSource trickle(OddSource::kTrickles);
  EXPECT_EQ(lines(trickle), (std::vector<std::string>{"one", "two"}));
  NQMemorySource nothing(nullptr, 0);
  EXPECT_EQ(lines(nothing), std::vector<std::string>());
  for (const std::size_t length : {std::size_t{1}, std::size_t(-1)}) {
    NQMemorySource null(nullptr, length);
    EXPECT_EQ(lines(null), (std::vector<std::string>{"!"}));
  }
}

TEST(ByteSources, AreAttachedInTheModesTheyCanServe) {
  NQMemorySource source("text");
  std::string text;
  NQStringSink sink(text);
  NQFile file;
  for (int mode = -1; mode <= 8; ++mode) {
    const auto asMode = static_cast<NQFileModeEnum>(mode);
    const bool reads = mode == 0 || mode == 4 || mode == 6;
    const bool writes = mode == 1 || mode == 3 || mode == 5 || mode == 7;
    EXPECT_EQ(file.attachSource(source, asMode), reads ? NQ_FILE_OK : NQ_FILE_OPEN_ERROR);
    EXPECT_EQ(file.error(), reads ? 0 : 1);
    EXPECT_EQ(file.attachSink(sink, asMode), writes ? NQ_FILE_OK : NQ_FILE_OPEN_ERROR);
    EXPECT_EQ(file.empty(), NQ_FILE_OK);
  }
}

TEST(ByteSinks, TakeWhatIsWritten) {
  std::string text = "before ";
  std::ostringstream stream;
  NQStringSink textSink(text);
  NQStreamSink streamSink(stream);
  for (NQByteSink* const sink :
       {static_cast<NQByteSink*>(&textSink), static_cast<NQByteSink*>(&streamSink)}) {
    NQTextFile file;
    ASSERT_EQ(file.attachSink(*sink, NQ_WRITE), NQ_FILE_OK);
    EXPECT_EQ(file.writeLine(42), NQ_FILE_OK);
    EXPECT_EQ(file.detach(1), NQ_FILE_OK);
    EXPECT_EQ(file.writeLine(42), NQ_FILE_WRITE_ERROR);
    ASSERT_EQ(file.attachSink(*sink, NQ_WRITE_BINARY), NQ_FILE_OK);
    EXPECT_EQ(file.writeBinary("a\0b", 3), NQ_FILE_OK);
  }
  EXPECT_EQ(text, "before " + stream.str());
  EXPECT_EQ(stream.str(), std::string("42\r\na\0b", 7));
}

// Gathers, and does not get rid of it.
class FullSink : public NQByteSink {
 public:
  NQFileCodeEnum write(const char*, std::size_t) override { return NQ_FILE_OK; }
  NQFileCodeEnum flush() override {
    if (throws) throw std::runtime_error("full");
    return NQ_FILE_WRITE_ERROR;
  }
  bool throws = false;
};

TEST(ByteSinks, ThatLoseSomethingAreReportedAtTheLatestByDetach) {
  BreakingBuffer buffer("");
  std::ostream breaking(&buffer);
  NQStreamSink broken(breaking);
  std::ostream throwing(&buffer);
  throwing.exceptions(std::ios::badbit);
  NQStreamSink throws(throwing);
  FullSink full;
  FullSink thrownOut;
  thrownOut.throws = true;
  const struct {
    NQByteSink& sink;
    NQFileCodeEnum written;
  } kRows[] = {{broken, NQ_FILE_WRITE_ERROR},
               {throws, NQ_FILE_WRITE_ERROR},
               {full, NQ_FILE_OK},
               {thrownOut, NQ_FILE_OK}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(&row - kRows);
    NQFile file;
    for (const bool opensNext : {false, true}) {
      FakeSystem fake;
      ASSERT_EQ(file.attachSink(row.sink, NQ_WRITE), NQ_FILE_OK);
      EXPECT_EQ(file.writeString("text"), row.written);
      EXPECT_EQ(opensNext ? file.open("a", NQ_WRITE) : file.detach(0),
                NQ_FILE_CLOSE_ERROR);
      EXPECT_EQ(file.isAttached(), 0);
      EXPECT_EQ(file.error(), 1);
      EXPECT_TRUE(fake.files.empty());
    }
  }
}

#if !defined(_WIN32)
// A pipe is read as it comes, and its end is the end.
TEST(ByteSources, ReadPipes) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  NQHandleSource source(std::bit_cast<void*>(std::intptr_t{ends[0]}));
  EXPECT_EQ(source.size(), -1);
  NQTextFile file;
  ASSERT_EQ(file.attachSource(source, NQ_READ), NQ_FILE_OK);
  NQStringHandle line;
  ASSERT_EQ(write(ends[1], "one\nand\n", 8), 8);
  EXPECT_EQ(file.readLine(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "one");
  ASSERT_EQ(write(ends[1], "two", 3), 3);
  close(ends[1]);
  EXPECT_EQ(file.readLine(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "and");
  EXPECT_EQ(file.readLine(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "two");
  EXPECT_EQ(file.readLine(line), NQ_FILE_READ_ERROR);
  EXPECT_EQ(file.endOfFile(), 1);
  close(ends[0]);
}
#endif

}  // namespace

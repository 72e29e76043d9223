#include "nq/file/file.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/file/test_peer.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/fake_system.h"
#include "tests/support/temporary_directory.h"

class NQArchiveClass {};

namespace {

using nqdetail::noHandle;

constexpr NQFileModeEnum kModes[] = {NQ_READ,       NQ_WRITE,       NQ_READ_WRITE,
                                     NQ_APPEND,     NQ_READ_BINARY, NQ_WRITE_BINARY,
                                     NQ_READ_ASCII, NQ_WRITE_ASCII};

bool isOneOf(NQFileModeEnum mode, const std::string& digits) {
  return digits.find(static_cast<char>('0' + mode)) != std::string::npos;
}

bool isIdle(const NQFile& file) {
  return !file.isOpen() && !file.isAttached() && file.fileHandle() == noHandle() &&
         file.pArchive() == nullptr;
}

TEST(NQFile, EachModeAllowsItsOperations) {
  for (const NQFileModeEnum mode : kModes) {
    SCOPED_TRACE(mode);
    FakeSystem fake;
    fake.files["a"] = "one\rtwo\rthree\r";
    NQFile file;
    ASSERT_EQ(file.open("a", mode), NQ_FILE_OK);
    EXPECT_EQ(file.isOpen(), 1);
    EXPECT_EQ(file.mode(), mode);
    EXPECT_EQ(file.buffered(), isOneOf(mode, "046"));
    EXPECT_EQ(fake.files["a"].empty(), isOneOf(mode, "157"));
    NQStringHandle line;
    char bytes[2];
    int count = 2;
    const auto expect = [&](const char* modes, NQFileCodeEnum failure,
                            NQFileCodeEnum result) {
      EXPECT_EQ(result, isOneOf(mode, modes) ? NQ_FILE_OK : failure) << modes;
      EXPECT_EQ(file.error(), result != NQ_FILE_OK) << modes;
    };
    expect("026", NQ_FILE_READ_ERROR, file.readString(line));
    ASSERT_EQ(file.open("a", mode), NQ_FILE_OK);
    expect("6", NQ_FILE_READ_ERROR, NQTestPeer::readAscii(file, line));
    ASSERT_EQ(file.open("a", mode), NQ_FILE_OK);
    expect("4", NQ_FILE_READ_ERROR, file.readBinary(bytes, count));
    ASSERT_EQ(file.open("a", mode), NQ_FILE_OK);
    EXPECT_EQ(NQTestPeer::readUnbuffered(file, bytes, count),
              isOneOf(mode, "0246") ? NQ_FILE_OK : NQ_FILE_READ_ERROR);
    expect("1237", NQ_FILE_WRITE_ERROR, file.writeString("x"));
    expect("7", NQ_FILE_WRITE_ERROR, NQTestPeer::writeAscii(file, "x"));
    expect("5", NQ_FILE_WRITE_ERROR, file.writeBinary("x", 1));
    EXPECT_EQ(file.close(), NQ_FILE_OK);
    expect("", NQ_FILE_READ_ERROR, file.readString(line));
    expect("", NQ_FILE_WRITE_ERROR, file.writeString("x"));
    expect("", NQ_FILE_WRITE_ERROR, file.writeBinary("x", 1));
    expect("", NQ_FILE_CLOSE_ERROR, file.close());
  }
}

TEST(NQFile, RefusesBadArguments) {
  FakeSystem fake;
  fake.files["a"] = "text";
  NQFile file;
  ASSERT_EQ(file.open("a", NQ_READ_BINARY), NQ_FILE_OK);
  char bytes[4];
  for (int count : {0, -1, INT_MIN}) {
    EXPECT_EQ(file.readBinary(bytes, count), NQ_FILE_READ_ERROR);
  }
  int count = 4;
  EXPECT_EQ(file.readBinary(nullptr, count), NQ_FILE_READ_ERROR);
  EXPECT_EQ(NQTestPeer::readUnbuffered(file, nullptr, count), NQ_FILE_READ_ERROR);
  EXPECT_EQ(count, 4);
  ASSERT_EQ(file.open("a", NQ_WRITE_BINARY), NQ_FILE_OK);
  EXPECT_EQ(file.writeBinary(nullptr, 1), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.writeBinary("text", -1), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.writeBinary("text", 0), NQ_FILE_OK);
  ASSERT_EQ(file.open("a", NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.writeString(nullptr), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(NQTestPeer::nextChar(file), '\0');
  EXPECT_EQ(file.error(), 1);
  EXPECT_EQ(file.endOfFile(), 0);
}

TEST(NQFile, AFailedOpenLeavesItIdle) {
  FakeSystem fake;
  const std::string longest(259, 'n');
  const std::string tooLong = longest + "n";
  fake.files["a"] = fake.files["taken"] = "text";
  NQFile other;
  ASSERT_EQ(other.open("taken", NQ_READ), NQ_FILE_OK);
  const struct {
    const char* name;
    int mode;
    bool buffered;
  } kRows[] = {{nullptr, NQ_READ, false},
               {"missing", NQ_READ, true},
               {tooLong.c_str(), NQ_WRITE, false},
               {tooLong.c_str(), NQ_READ_ASCII, true},
               {"taken", NQ_APPEND, false},
               {"taken", NQ_WRITE, false},
               {"a", 8, false},
               {"a", -1, false}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << (row.name ? row.name : "null") << row.mode);
    NQFile file;
    ASSERT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
    EXPECT_EQ(file.open(row.name, static_cast<NQFileModeEnum>(row.mode)),
              NQ_FILE_OPEN_ERROR);
    EXPECT_TRUE(isIdle(file));
    EXPECT_EQ(file.error(), 1);
    EXPECT_EQ(file.buffered(), row.buffered);
    EXPECT_EQ(NQTestPeer::nextChar(file), '\0');
    EXPECT_STREQ(file.pFileName(), "");
  }
  EXPECT_EQ(fake.files["taken"], "text");
  EXPECT_FALSE(fake.files.contains(tooLong));
  EXPECT_EQ(fake.openFiles(), 1);
  NQFile file;
  EXPECT_EQ(file.open(longest.c_str(), NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.pFileName(), longest);
}

TEST(NQFile, KeepsTheNameItWasOpenedWith) {
  FakeSystem fake;
  NQFile file;
  EXPECT_EQ(file.pQueryFileName(), nullptr);
  EXPECT_EQ(file.pQueryPathName(), nullptr);
  EXPECT_EQ(file.sizeOf(), 72);
  ASSERT_EQ(file.open("d/e\\a.txt", NQ_WRITE), NQ_FILE_OK);
  EXPECT_STREQ(file.pFileName(), "d/e\\a.txt");
  EXPECT_STREQ(file.pPathName(), "d/e\\");
  EXPECT_EQ(file.sizeOf(), 72 + 9 + 4);
  ASSERT_EQ(file.open(file.pFileName(), NQ_READ), NQ_FILE_OK);  // its own buffer
  EXPECT_STREQ(file.pFileName(), "d/e\\a.txt");
  EXPECT_EQ(file.sizeOf(), 72 + 10240 + 9 + 4);
  NQTestPeer::fileName(file, "plain");
  EXPECT_STREQ(file.pPathName(), "");
  NQTestPeer::fileName(file, std::string(260, 'n').c_str());
  EXPECT_STREQ(file.pFileName(), "plain");
  EXPECT_EQ(file.close(), NQ_FILE_OK);
  EXPECT_STREQ(file.pQueryFileName(), "");
  EXPECT_EQ(file.sizeOf(), 72 + 10240);
  EXPECT_EQ(file.empty(), NQ_FILE_OK);
  EXPECT_EQ(file.pQueryFileName(), nullptr);
  EXPECT_EQ(file.sizeOf(), 72);
}

TEST(NQFile, NothingIsReadAfterACloseAndEmptyClearsTheEnd) {
  FakeSystem fake;
  fake.files["a"] = "one\ntwo\n";
  NQFile file;
  NQStringHandle line;
  ASSERT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  EXPECT_EQ(NQTestPeer::lookAhead(file), 't');
  fake.failingClose = true;
  EXPECT_EQ(file.close(), NQ_FILE_CLOSE_ERROR);
  EXPECT_TRUE(isIdle(file));
  EXPECT_EQ(NQTestPeer::lookAhead(file), '\0');
  EXPECT_EQ(file.readString(line), NQ_FILE_READ_ERROR);
  EXPECT_EQ(file.endOfFile(), 1);
  EXPECT_EQ(file.empty(), NQ_FILE_OK);
  EXPECT_EQ(file.endOfFile(), 0);
  fake.failingClose = false;
  ASSERT_EQ(file.open("a", NQ_READ), NQ_FILE_OK);
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "one\n");
}

TEST(NQFile, AShortReadIsNoFailureAndSetsTheEnd) {
  FakeSystem fake;
  fake.files["a"] = "data";
  NQFile file;
  ASSERT_EQ(file.open("a", NQ_READ_BINARY), NQ_FILE_OK);
  char bytes[10];
  int count = 10;
  EXPECT_EQ(file.readBinary(bytes, count), NQ_FILE_OK);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(file.endOfFile(), 1);
  EXPECT_EQ(file.readBinary(bytes, count), NQ_FILE_READ_ERROR);
}

// Every way in which gathered output is sent on.
TEST(NQFile, GathersOutputAndSendsItOnInOrder) {
  FakeSystem fake;
  fake.largestTransfer = 50000;
  const std::string big(200000, 'b');
  std::string expected;
  auto file = std::make_unique<NQFile>();
  const auto write = [&](const std::string& text) {
    EXPECT_EQ(file->writeString(text.c_str()), NQ_FILE_OK);
    expected += text;
  };
  ASSERT_EQ(file->open("a", NQ_WRITE), NQ_FILE_OK);
  for (int i = 0; i < 1000; ++i) write("line " + std::to_string(i) + "\n");
  EXPECT_EQ(fake.writes, 0);
  EXPECT_EQ(file->flush(), NQ_FILE_OK);
  EXPECT_EQ(fake.files["a"], expected);
  write("small");
  write(big);
  EXPECT_EQ(fake.files["a"], expected);
  for (int i = 0; i < 100; ++i) write(std::string(1000, static_cast<char>('0' + i % 10)));
  write("handed out");
  EXPECT_NE(file->fileHandle(), noHandle());
  EXPECT_EQ(fake.files["a"], expected);
  write("at once");
  EXPECT_EQ(fake.files["a"], expected);
  EXPECT_EQ(file->close(), NQ_FILE_OK);
  EXPECT_EQ(fake.files["a"], expected);

  ASSERT_EQ(file->open("a", NQ_APPEND), NQ_FILE_OK);
  write("appended");
  file.reset();
  EXPECT_EQ(fake.files["a"], expected);
  EXPECT_EQ(fake.openFiles(), 0);

  file = std::make_unique<NQFile>();
  ASSERT_EQ(file->open("b", NQ_READ_WRITE), NQ_FILE_OK);
  NQStringHandle line;
  EXPECT_EQ(file->writeString("x\r"), NQ_FILE_OK);
  EXPECT_EQ(file->readString(line), NQ_FILE_OK);  // behind what was written
  EXPECT_EQ(file->endOfFile(), 1);
  EXPECT_EQ(fake.files["b"], "x\r");
}

TEST(NQFile, AFullDiskIsReportedAndLosesNothingThatWasAccepted) {
  FakeSystem fake;
  NQFile file;
  fake.diskSpace = 3;
  ASSERT_EQ(file.open("a", NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.writeString("01234"), NQ_FILE_OK);
  EXPECT_EQ(file.close(), NQ_FILE_CLOSE_ERROR);
  EXPECT_EQ(file.error(), 1);
  EXPECT_TRUE(isIdle(file));
  EXPECT_EQ(fake.files["a"], "012");
  EXPECT_EQ(fake.openFiles(), 0);

  // Whatever closes the file answers for it, and opens or attaches nothing else.
  NQArchiveClass archive;
  const std::function<NQFileCodeEnum()> closing[] = {
      [&] { return file.empty(); }, [&] { return file.open("b", NQ_WRITE); },
      [&] { return file.open(nullptr, NQ_READ); }, [&] { return file.attach(&archive); },
      [&] { return file.attach(noHandle(), NQ_READ); }};
  for (const auto& close : closing) {
    ASSERT_EQ(file.open("a", NQ_WRITE), NQ_FILE_OK);
    EXPECT_EQ(file.writeString("01234"), NQ_FILE_OK);
    EXPECT_EQ(close(), NQ_FILE_CLOSE_ERROR);
    EXPECT_TRUE(isIdle(file));
    EXPECT_EQ(file.error(), 1);
  }
  EXPECT_FALSE(fake.files.contains("b"));

  // Failures on the way, then room again.
  ASSERT_EQ(file.open("a", NQ_READ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.writeString("01234"), NQ_FILE_OK);
  EXPECT_EQ(file.flush(), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.error(), 1);
  NQStringHandle line;
  EXPECT_EQ(file.readString(line), NQ_FILE_READ_ERROR);
  fake.diskSpace = FakeSystem::kUnlimited;
  EXPECT_EQ(file.flush(), NQ_FILE_OK);
  EXPECT_EQ(file.writeString("56"), NQ_FILE_OK);
  EXPECT_EQ(file.close(), NQ_FILE_OK);
  EXPECT_EQ(fake.files["a"], "0123456");

  // What one write lost is missing whatever follows.
  ASSERT_EQ(file.open("a", NQ_WRITE), NQ_FILE_OK);
  fake.diskSpace = 2;
  EXPECT_EQ(file.writeString(std::string(100000, 'b').c_str()), NQ_FILE_WRITE_ERROR);
  fake.diskSpace = FakeSystem::kUnlimited;
  EXPECT_EQ(file.writeString("56"), NQ_FILE_OK);
  EXPECT_EQ(file.close(), NQ_FILE_CLOSE_ERROR);

  // Only the system's own close fails.
  ASSERT_EQ(file.open("a", NQ_WRITE_BINARY), NQ_FILE_OK);
  EXPECT_EQ(file.writeBinary("a\0b", 3), NQ_FILE_OK);
  fake.failingClose = true;
  EXPECT_EQ(file.close(), NQ_FILE_CLOSE_ERROR);
  EXPECT_EQ(fake.files["a"], std::string("a\0b", 3));
}

TEST(NQFile, AnAttachedHandleIsBorrowed) {
  FakeSystem fake;
  const nqdetail::Handle handle = fake.handleOn("a");
  NQFile file;
  EXPECT_EQ(file.detach(1), NQ_FILE_CLOSE_ERROR);
  EXPECT_EQ(file.error(), 1);
  ASSERT_EQ(file.attach(handle, NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.error(), 0);
  EXPECT_EQ(file.isAttached(), 1);
  EXPECT_EQ(file.close(), NQ_FILE_CLOSE_ERROR);
  EXPECT_EQ(file.writeString("text"), NQ_FILE_OK);
  EXPECT_EQ(fake.files["a"], "text") << "is written through";
  EXPECT_EQ(file.writeEndOfFile(), NQ_FILE_OK);
  EXPECT_EQ(file.detach(1), NQ_FILE_OK);
  EXPECT_TRUE(isIdle(file));
  EXPECT_EQ(fake.files["a"], "text") << "the end mark is for archives";
  EXPECT_EQ(file.writeString("text"), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(fake.openFiles(), 1);

  fake.files["b"] = "one\r\ntwo";
  NQStringHandle line;
  ASSERT_EQ(file.attach(fake.handleOn("b"), NQ_READ), NQ_FILE_OK);
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "one\n");
  EXPECT_EQ(file.detach(0), NQ_FILE_OK);
  EXPECT_EQ(file.readString(line), NQ_FILE_READ_ERROR);
  for (const NQFileModeEnum mode : {NQ_READ, NQ_READ_WRITE, NQ_WRITE}) {
    EXPECT_EQ(file.attach(noHandle(), mode), NQ_FILE_OK);
    EXPECT_EQ(file.readString(line), NQ_FILE_READ_ERROR) << mode;
    EXPECT_EQ(file.writeString("x"), NQ_FILE_WRITE_ERROR) << mode;
  }
}

// Keeps what is written, and can fail.
class RecordingFile : public NQFile {
 public:
  NQFileCodeEnum writeString(const char* text) override {
    if (fails) return NQ_FILE_WRITE_ERROR;
    texts.emplace_back(text);
    return NQFile::writeString(text);
  }
  std::vector<std::string> texts;
  bool fails = false;
};

TEST(NQFile, AnArchiveTakesOutputAndAnEndMark) {
  NQArchiveClass archive;
  RecordingFile file;
  for (const int mark : {0, 1}) {
    ASSERT_EQ(file.attach(&archive), NQ_FILE_OK);
    EXPECT_EQ(file.mode(), NQ_WRITE);
    EXPECT_EQ(file.pArchive(), &archive);
    EXPECT_EQ(file.writeString("text"), NQ_FILE_OK);
    EXPECT_EQ(file.detach(mark), NQ_FILE_OK);
    EXPECT_TRUE(isIdle(file));
  }
  EXPECT_EQ(file.texts,
            (std::vector<std::string>{"text", "text", "__NQ_END_OF_FILE__", "\n\r"}));
  ASSERT_EQ(file.attach(&archive), NQ_FILE_OK);
  file.fails = true;
  EXPECT_EQ(file.writeEndOfFile(), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(file.error(), 1);
  NQTestPeer::mode(file, NQ_READ_WRITE);
  NQStringHandle line;
  EXPECT_EQ(line.appendString("old"), 1);
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "");
}

TEST(NQFile, ReadsNoLineWithoutABuffer) {
  FakeSystem fake;
  NQFile file;
  NQStringHandle line;
  EXPECT_EQ(file.open("missing", NQ_READ), NQ_FILE_OPEN_ERROR);
  EXPECT_EQ(file.readString(line), NQ_FILE_READ_ERROR);
  EXPECT_EQ(file.endOfFile(), 1);
}

TEST(NQFile, CopiesTheStateOfIdleFilesOnly) {
  FakeSystem fake;
  NQFile sample;
  EXPECT_EQ(sample.open("missing", NQ_READ_BINARY), NQ_FILE_OPEN_ERROR);
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQFile>(); },
      [](const NQFile& a, const NQFile& b) {
        return a.mode() == b.mode() && a.bits() == b.bits() && isIdle(b);
      },
      [](const NQFile&, const NQFile& b) { return b.mode() == NQ_READ && isIdle(b); });

  NQFile target;
  ASSERT_EQ(target.open("a", NQ_WRITE), NQ_FILE_OK);
  NQFile source;
  ASSERT_EQ(source.open("b", NQ_WRITE), NQ_FILE_OK);
  target = source;
  EXPECT_TRUE(isIdle(target));
  EXPECT_EQ(source.isOpen(), 1);
  EXPECT_EQ(fake.openFiles(), 1);
}

TEST(NQFile, FindsAndSplitsAtSeparators) {
  const struct {
    const char* text;
    const char* set;
    int forward;
    int backward;
  } kTokens[] = {{"a.b.c", ".", 1, 3},    {"a.b:c", ":.", 1, 3}, {"abc", ".", -1, -1},
                 {"", ".", -1, -1},       {"abc", "", -1, -1},   {nullptr, ".", -1, -1},
                 {"abc", nullptr, -1, -1}};
  for (const auto& row : kTokens) {
    EXPECT_EQ(NQFile::searchForToken(row.text, row.set, '+'), row.forward);
    EXPECT_EQ(NQFile::searchForToken(row.text, row.set, '-'), row.backward);
    EXPECT_EQ(NQFile::searchForToken(row.text, row.set, '*'), -1);
  }
  const struct {
    const char* full;
    const char* file;
    const char* path;
  } kNames[] = {{"C:data", "data", "C:"},
                {"a/b\\c", "c", "a/b\\"},
                {"plain", "plain", "?"},
                {"dir/", "", "dir/"},
                {"", "", "?"}};
  for (const auto& row : kNames) {
    char file[10] = "?";
    char path[10] = "?";
    NQFile::separatePathFromFile(row.full, file, path);
    EXPECT_STREQ(file, row.file);
    EXPECT_STREQ(path, row.path);
    NQFile::separatePathFromFile(nullptr, file, path);
    NQFile::separatePathFromFile(row.full, nullptr, path);
    NQFile::separatePathFromFile("x/y", file, nullptr);
    EXPECT_STREQ(file, row.file);
  }
}

TEST(NQFile, MakesNamesUnique) {
  FakeSystem fake;
  for (const char* const name : {"a1.txt", "a2.txt", "a4.txt", "b1."}) fake.files[name];
  fake.handleOn("a1.txt");  // which somebody has open
  for (int i = 1; i <= 998; ++i) fake.files["full" + std::to_string(i) + ".x"];
  const std::string longest = std::string(257, 'n');  // "1." still fits
  const std::string tooLong(258, 'n');
  const struct {
    std::string name;
    int result;
    std::string unique;
  } kRows[] = {
      {"a.txt", 1, "a3.txt"}, {"out", 1, "out1."},        {"b", 1, "b2."},
      {"x.y.z", 1, "x.y1.z"}, {"full.x", 0, "full999.x"}, {longest, 1, longest + "1."},
      {tooLong, 0, tooLong}};
  for (const auto& row : kRows) {
    char name[NQFile::kNameSize] = "";
    row.name.copy(name, sizeof name - 1);
    EXPECT_EQ(NQFile::renameUnique(name), row.result) << row.name;
    EXPECT_EQ(name, row.unique);
  }
  EXPECT_EQ(NQFile::renameUnique(nullptr), 0);
  EXPECT_EQ(fake.openFiles(), 1) << "nothing is opened to ask";
}

// Every call of the system fails once, and also with all that follow, as when the
// machine stops. There are never half a file and never two.
TEST(NQFile, SafeWritingLeavesTheOldFileOrTheNewOne) {
  const std::string news(100000, 'n');
  const auto attempt = [&news](const char* name) {
    NQFile file;
    file.safeWriting(1);
    NQFileCodeEnum result = file.open(name, NQ_WRITE);
    if (result != NQ_FILE_OK) return result;
    file.writeString(news.substr(0, 50000).c_str());
    file.writeString(news.substr(50000).c_str());
    return file.close();
  };
  for (const char* const old : {"old", "link to old", "missing"}) {
    int failed = 0;
    for (int call = 0; call >= 0; ++call) {
      for (const bool on : {false, true}) {
        SCOPED_TRACE(testing::Message() << old << call << on);
        FakeSystem fake;
        const bool isMissing = std::string(old) == "missing";
        const std::string target = isMissing ? old : "old";
        if (!isMissing) fake.files[target] = "old text";
        fake.links["link to old"] = target;
        fake.failingCall = call;
        fake.failingOn = on;
        const NQFileCodeEnum result = attempt(old);
        const bool reached = fake.calls > call;
        if (result == NQ_FILE_OK) {
          EXPECT_EQ(fake.files[target], news);
          EXPECT_TRUE(reached || fake.unsynced.empty());
        } else {
          EXPECT_TRUE(reached);
          ++failed;
          EXPECT_EQ(fake.files.contains(target), !isMissing);
          EXPECT_TRUE(isMissing || fake.files[target] == "old text");
        }
        EXPECT_LE(fake.files.size(), on ? 2U : 1U) << "nothing is left behind";
        EXPECT_EQ(fake.openFiles(), 0);
        if (!reached && on) call = -2;
      }
    }
    EXPECT_GT(failed, 8);
  }
  FakeSystem fake;
  fake.files["a"] = "old text";
  fake.diskSpace = news.size() - 1;
  EXPECT_EQ(attempt("a"), NQ_FILE_CLOSE_ERROR);
  EXPECT_EQ(fake.files, (std::map<std::string, std::string>{{"a", "old text"}}));
}

TEST(NQFile, SafeWritingEndsWithTheClose) {
  FakeSystem fake;
  fake.files["a"] = fake.files["d"] = "old";
  fake.devices = {"d"};
  fake.links = {{"round", "about"}, {"about", "round"}};
  auto file = std::make_unique<NQFile>();
  file->safeWriting(1);
  EXPECT_EQ(NQFile(*file).safeWriting(), 1);
  const auto begin = [&](const char* name, NQFileModeEnum mode) {
    ASSERT_EQ(file->open(name, mode), NQ_FILE_OK);
    const bool binary = mode == NQ_WRITE_BINARY;
    EXPECT_EQ(binary ? file->writeBinary("new", 3) : file->writeString("new"),
              NQ_FILE_OK);
    EXPECT_EQ(file->flush(), NQ_FILE_OK);
  };
  for (const NQFileModeEnum mode : {NQ_WRITE, NQ_WRITE_BINARY, NQ_WRITE_ASCII}) {
    fake.files["a"] = "old";
    begin("a", mode);
    EXPECT_EQ(fake.files["a"], "old");
    NQFile other;
    EXPECT_EQ(other.open("a", NQ_READ), NQ_FILE_OPEN_ERROR) << "is being written";
    EXPECT_EQ(file->close(), NQ_FILE_OK);
    EXPECT_EQ(fake.files["a"], "new");
  }
  begin("d", NQ_WRITE);
  EXPECT_EQ(fake.files["d"], "new") << "a device, which cannot be replaced";
  EXPECT_EQ(file->close(), NQ_FILE_OK);
  begin("a", NQ_APPEND);
  EXPECT_EQ(fake.files["a"], "newnew") << "is changed where it is";
  EXPECT_EQ(file->close(), NQ_FILE_OK);
  EXPECT_EQ(file->open("round", NQ_WRITE), NQ_FILE_OPEN_ERROR);
  begin("c", NQ_WRITE);
  EXPECT_EQ(file->open("b", NQ_WRITE), NQ_FILE_OK) << "closes the one before";
  EXPECT_EQ(fake.files["c"], "new");
  EXPECT_EQ(file->writeString("new"), NQ_FILE_OK);
  file->abandon();
  EXPECT_EQ(file->close(), NQ_FILE_CLOSE_ERROR);
  EXPECT_FALSE(fake.files.contains("b"));

  // Nobody said that the file is whole.
  begin("b", NQ_WRITE);
  *file = NQFile();
  EXPECT_FALSE(fake.files.contains("b"));
  file->safeWriting(1);
  begin("b", NQ_WRITE);
  file.reset();
  EXPECT_FALSE(fake.files.contains("b"));
  EXPECT_EQ(fake.openFiles(), 0);
}

TEST(NQFile, SafeWritingReplacesTheHostsFiles) {
  namespace fs = std::filesystem;
  const TemporaryDirectory directory;
  directory.put("a", "old");
  const auto write = [](const std::string& name) {
    NQFile file;
    file.safeWriting(1);
    const NQFileCodeEnum result = file.open(name.c_str(), NQ_WRITE);
    return result == NQ_FILE_OK && file.writeString("new") == NQ_FILE_OK ? file.close()
                                                                         : result;
  };
  fs::permissions(directory.file("a"), fs::perms::owner_all | fs::perms::group_read);
  const fs::perms before = fs::status(directory.file("a")).permissions();
  std::vector<std::string> names = {"a", "b"};
  std::error_code code;
  fs::create_symlink("a", directory.file("link"), code);
  if (!code) names.push_back("link");
  for (const std::string& name : names) {
    EXPECT_EQ(write(directory.file(name)), NQ_FILE_OK) << name;
    EXPECT_EQ(directory.contents(name), "new") << name;
    if (name != "b") directory.put("a", "old");
  }
  EXPECT_EQ(fs::status(directory.file("a")).permissions(), before);
  EXPECT_EQ(fs::is_symlink(directory.file("link")), names.size() == 3);
  EXPECT_EQ(write(directory.path()), NQ_FILE_OPEN_ERROR);
  EXPECT_EQ(write(directory.file("missing/a")), NQ_FILE_OPEN_ERROR);
  const auto files = fs::directory_iterator(directory.path());
  EXPECT_EQ(std::distance(begin(files), end(files)),
            static_cast<std::ptrdiff_t>(names.size()));
}

TEST(NQFile, SharesTheHostsFilesWithNobody) {
  const TemporaryDirectory directory;
  const std::string name = directory.file("a");
  EXPECT_EQ(NQFile::fileExist(name.c_str()), 0);
  NQFile file;
  ASSERT_EQ(file.open(name.c_str(), NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.writeString("text\r\n"), NQ_FILE_OK);
  EXPECT_EQ(NQFile::fileExist(name.c_str()), 1) << "is open";
  NQFile second;
  for (const NQFileModeEnum mode : kModes) {
    EXPECT_EQ(second.open(name.c_str(), mode), NQ_FILE_OPEN_ERROR) << mode;
    EXPECT_EQ(second.open(directory.path().c_str(), mode), NQ_FILE_OPEN_ERROR) << mode;
  }
  EXPECT_EQ(file.close(), NQ_FILE_OK);
  EXPECT_EQ(directory.contents("a"), "text\r\n");
  EXPECT_EQ(NQFile::fileExist(name.c_str()), 1);
  EXPECT_EQ(NQFile::fileExist(directory.path().c_str()), 0);
  EXPECT_EQ(NQFile::fileExist(nullptr), 0);
  EXPECT_EQ(NQFile::fileExist(std::string(300, 'n').c_str()), 0);
  ASSERT_EQ(second.open(name.c_str(), NQ_APPEND), NQ_FILE_OK);
  EXPECT_EQ(second.writeString("more"), NQ_FILE_OK);
  EXPECT_EQ(second.close(), NQ_FILE_OK);
  EXPECT_EQ(directory.contents("a"), "text\r\nmore");
}

TEST(NQFile, ReadersShareAFileThatBothAreReadyToShare) {
  const TemporaryDirectory directory;
  directory.put("a", "text");
  const std::string name = directory.file("a");
  NQFile first;
  EXPECT_EQ(first.sharedReading(1), 1);
  ASSERT_EQ(first.open(name.c_str(), NQ_READ), NQ_FILE_OK);
  NQFile second(first, NQ_ATTRIBUTE_COPY);
  for (const int shared : {1, 0}) {
    second.sharedReading(shared);
    for (const NQFileModeEnum mode : kModes) {
      EXPECT_EQ(second.open(name.c_str(), mode) == NQ_FILE_OK,
                shared != 0 && isOneOf(mode, "046"))
          << mode;
    }
  }
  NQStringHandle line;
  EXPECT_EQ(first.readString(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "text");
}

}  // namespace

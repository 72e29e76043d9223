// Lines and bytes read through the buffer, against a reader that takes one byte
// after the other.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>

#include "nq/file/system_calls.h"
#include "tests/file/test_peer.h"
#include "tests/support/fake_system.h"

namespace {

// What a buffered file does, said as plainly as possible.
class Model {
 public:
  Model(std::string data, std::size_t largestTransfer)
      : data_(std::move(data)), largestTransfer_(largestTransfer) {}

  int result = 0;
  std::string out;
  bool endOfFile = false;
  std::size_t unread() const { return buffer_.size() - taken_; }
  const std::string& buffer() const { return buffer_; }

  char next() {
    if (!endOfFile && (unread() == 256 || unread() <= 3)) {
      buffer_.erase(0, taken_);
      taken_ = 0;
      std::size_t moved;
      do {
        moved = std::min({10240 - unread(), data_.size() - read_, largestTransfer_});
        buffer_ += data_.substr(read_, moved);
        read_ += moved;
      } while (moved > 0 && unread() <= 3);
    }
    endOfFile = endOfFile || unread() == 0;
    return unread() == 0 ? '\0' : buffer_[taken_++];
  }

  void readString() {
    out.clear();
    result = 4;
    if (endOfFile) return;
    char c = next();
    if (c != '\0') result = 0;
    for (; c != '\n' && c != '\r' && c != '\0'; c = next()) out += c;
    if (c == '\0') {
      endOfFile = true;
      return;
    }
    if (unread() > 0 && buffer_[taken_] == (c == '\n' ? '\r' : '\n')) next();
    out += '\n';
  }

  void readBinary(int wanted) {
    out.clear();
    result = endOfFile ? 4 : 0;
    if (endOfFile) return;
    for (; wanted > 0; --wanted) {
      const char c = next();
      if (endOfFile) return;
      out += c;
    }
  }

 private:
  std::string data_;
  std::size_t largestTransfer_;
  std::size_t read_ = 0;
  std::string buffer_;
  std::size_t taken_ = 0;  // of the buffer
};

// Reads all of `data` both ways, in lines (0), in blocks of that size, or (below 0) in
// lines and such blocks by turns, and looks into the buffer after each so many pieces
// (0: never).
void compare(const std::string& data, std::size_t largestTransfer, int block,
             int lookEach = 0) {
  FakeSystem fake;
  fake.files["in"] = data;
  fake.largestTransfer = largestTransfer;
  NQFile file;
  ASSERT_EQ(file.open("in", NQ_READ), NQ_FILE_OK);
  Model model(data, largestTransfer);
  NQStringHandle line;
  std::string bytes;
  for (int piece = 0; model.result == 0; ++piece) {
    SCOPED_TRACE(piece);
    NQFileCodeEnum result;
    const bool asLine = block == 0 || (block < 0 && piece % 2 == 0);
    NQTestPeer::mode(file, asLine ? NQ_READ : NQ_READ_BINARY);
    if (asLine) {
      model.readString();
      result = file.readString(line);
      bytes = line.pString();
    } else {
      int count = std::abs(block);
      model.readBinary(count);
      bytes.resize(static_cast<std::size_t>(count));
      result = file.readBinary(bytes.data(), count);
      bytes.resize(result == NQ_FILE_OK ? static_cast<std::size_t>(count) : 0);
    }
    ASSERT_EQ(result, model.result);
    ASSERT_EQ(bytes, model.out);
    ASSERT_EQ(file.endOfFile(), model.endOfFile);
    ASSERT_EQ(file.error(), result != NQ_FILE_OK);
    ASSERT_EQ(NQTestPeer::unread(file), static_cast<int>(model.unread()));
    if (lookEach != 0 && piece % lookEach == 0) {
      ASSERT_EQ(NQTestPeer::buffer(file), model.buffer());
    }
  }
}

TEST(LineReading, NormalisesEveryLineEndAroundTheBufferAndItsRefills) {
  for (const char* const end : {"\n", "\r", "\n\r", "\r\n"}) {
    for (const std::size_t border : {9984u, 10240u, 19968u, 20224u}) {
      for (std::size_t length = border - 6; length < border + 6; ++length) {
        SCOPED_TRACE(testing::Message() << length << testing::PrintToString(end));
        compare(std::string(length, 'a') + end + "b" + end + end + "c",
                FakeSystem::kUnlimited, 0);
      }
    }
  }
}

TEST(LineReading, EqualsTheModelWhateverTheTransfers) {
  std::mt19937 random(20);
  const std::string letters = "abcdefghijklmnopqrstuvwxyz";
  const std::string alphabets[] = {letters + letters + letters + "\t\n", "a\n\r",
                                   "ab\n\r"};
  for (const std::size_t largestTransfer :
       {FakeSystem::kUnlimited, std::size_t{1}, std::size_t{5}, std::size_t{257},
        std::size_t{4096}}) {
    for (std::size_t round = 0; round < 30; ++round) {
      const std::string& alphabet = alphabets[round % 3];
      std::string data(random() % (round % 10 == 0 ? 150000 : 25000), ' ');
      for (char& c : data) c = alphabet[random() % alphabet.size()];
      // Zero bytes are rare, since they end the reading.
      if (round % 3 == 2 && !data.empty()) data[random() % data.size()] = '\0';
      for (const int block : {0, 1 + static_cast<int>(random() % 12000),
                              -1 - static_cast<int>(random() % 300)}) {
        SCOPED_TRACE(testing::Message() << "transfers " << largestTransfer << ", round "
                                        << round << ", block " << block);
        compare(data, largestTransfer, block, static_cast<int>(round % 4) * 5);
      }
    }
  }
}

TEST(LineReading, AZeroByteEndsTheTextAndShowsThatMoreFollows) {
  FakeSystem fake;
  fake.files["in"] = std::string("ab\0cd\n", 6);
  NQFile file;
  NQStringHandle line;
  ASSERT_EQ(file.open("in", NQ_READ), NQ_FILE_OK);
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "ab");
  EXPECT_EQ(file.endOfFile(), 1);
  EXPECT_EQ(NQTestPeer::unread(file), 3);
  EXPECT_EQ(file.readString(line), NQ_FILE_READ_ERROR);
  EXPECT_STREQ(line.pString(), "");

  // As data, it is one byte of many.
  ASSERT_EQ(file.open("in", NQ_READ_BINARY), NQ_FILE_OK);
  char bytes[10];
  int count = 10;
  EXPECT_EQ(file.readBinary(bytes, count), NQ_FILE_OK);
  EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(count)), fake.files["in"]);
  EXPECT_EQ(file.endOfFile(), 1);
}

TEST(LineReading, AFailureOfTheSystemIsNeverTheEnd) {
  FakeSystem fake;
  fake.files["in"] = "one\ntwo";
  NQStringHandle line;
  NQFile file;
  const auto reopen = [&](NQFileModeEnum mode, std::size_t transfer, int reads) {
    fake.largestTransfer = transfer;
    fake.readsUntilFailure = -1;
    ASSERT_EQ(file.open("in", mode), NQ_FILE_OK);
    fake.readsUntilFailure = reads;
  };
  const auto expectFailure = [&](NQFileCodeEnum result) {
    EXPECT_EQ(result, NQ_FILE_READ_ERROR);
    EXPECT_EQ(file.error(), 1);
    EXPECT_EQ(file.endOfFile(), 0);
  };

  for (const NQFileModeEnum mode : {NQ_READ, NQ_READ_ASCII, NQ_READ_WRITE}) {
    reopen(mode, FakeSystem::kUnlimited, 0);
    expectFailure(file.readString(line));
    expectFailure(file.readString(line));
  }
  reopen(NQ_READ, 5, 1);  // "one\nt" comes well, but not what is to follow it
  expectFailure(file.readString(line));
  reopen(NQ_READ, 4, 2);  // "one\ntwo" comes well, but not its end
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "one\n");
  expectFailure(file.readString(line));
  reopen(NQ_READ_ASCII, FakeSystem::kUnlimited, 2);
  expectFailure(NQTestPeer::readAscii(file, line));

  // Bytes that came before stay good, and reading goes on when it can.
  reopen(NQ_READ_BINARY, 5, 1);
  char bytes[7];
  int count = 7;
  expectFailure(file.readBinary(bytes, count));
  EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(count)), "one\nt");
  fake.readsUntilFailure = -1;
  count = 2;
  EXPECT_EQ(file.readBinary(bytes, count), NQ_FILE_OK);
  EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(count)), "wo");

  // Character by character, the error stays to be seen.
  reopen(NQ_READ, 5, 1);
  std::string text;
  for (char c; (c = NQTestPeer::nextChar(file)) != '\0';) text += c;
  EXPECT_EQ(text, "one\nt");
  EXPECT_EQ(file.error(), 1);
  EXPECT_EQ(file.endOfFile(), 0);
}

TEST(LineReading, UnbufferedLinesEndWithTheirOwnTerminators) {
  const NQFileCodeEnum ok = NQ_FILE_OK;
  const NQFileCodeEnum failed = NQ_FILE_READ_ERROR;
  const struct {
    std::string data;
    const char* lines[3];
    NQFileCodeEnum results[3];
    int endOfFile;  // after the last
  } kRows[] = {
      {"x\n\ry\r\r", {"x\n\r", "y\r", "\r"}, {ok, ok, ok}, 0},
      {"a\rb", {"a\r", "", ""}, {ok, ok, failed}, 1},
      {"x\nyz\r", {"x\ny", "z\r", ""}, {failed, ok, ok}, 1},
      {"\n\n\r", {"\n\n", "\r", ""}, {failed, ok, ok}, 1},
      {std::string("a\0b\r", 4), {"", "", ""}, {ok, failed, failed}, 1},
      {"", {"", "", ""}, {ok, failed, failed}, 1},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::PrintToString(row.data));
    FakeSystem fake;
    fake.files["in"] = row.data;
    NQFile file;
    NQStringHandle line;
    ASSERT_EQ(file.open("in", NQ_READ_WRITE), NQ_FILE_OK);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(file.readString(line), row.results[i]) << i;
      EXPECT_STREQ(line.pString(), row.lines[i]) << i;
    }
    EXPECT_EQ(file.endOfFile(), row.endOfFile);
  }
}

TEST(LineReading, AnAttachedHandleIsNotReadBeyondTheLine) {
  FakeSystem fake;
  fake.files["in"] = "one\rtwo\r";
  const nqdetail::Handle handle = fake.handleOn("in");
  NQStringHandle line;
  {
    NQFile file;
    ASSERT_EQ(file.attach(handle, NQ_READ_WRITE), NQ_FILE_OK);
    EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  }
  unsigned int count = 0;
  int end = -1;
  EXPECT_EQ(nqInternalRead(handle, nullptr, line, &count, &end), 1);
  EXPECT_STREQ(line.pString(), "two\r");
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(end, 0);
  EXPECT_EQ(nqInternalRead(handle, nullptr, line, &count, &end), 1);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(end, 1);
  fake.readsUntilFailure = 0;
  EXPECT_EQ(nqInternalRead(handle, nullptr, line, nullptr, &end), 0);
  EXPECT_EQ(end, 1);
}

// By name, input is fetched ahead and output gathered; on an attached handle
// neither is. Nothing may show of that.
TEST(LineReading, ReadingAndWritingInTurnLandsWhereItWouldUnbuffered) {
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    FakeSystem fake;
    fake.failingSeek = round % 4 == 0;  // as a terminal's
    std::string data(random() % 300, ' ');
    for (char& c : data) c = "abcdefgh\r"[random() % 9];
    fake.files["named"] = fake.files["attached"] = data;
    NQFile named;
    NQFile attached;
    ASSERT_EQ(named.open("named", NQ_READ_WRITE), NQ_FILE_OK);
    ASSERT_EQ(attached.attach(fake.handleOn("attached"), NQ_READ_WRITE), NQ_FILE_OK);
    NQStringHandle ours;
    NQStringHandle theirs;
    for (int step = 0; step < 20; ++step) {
      char bytes[2][7] = {};
      int counts[2] = {static_cast<int>(random() % 7), 0};
      counts[1] = counts[0];
      const std::string text(random() % 5, 'W');
      switch (random() % 8) {
        case 0:
          EXPECT_EQ(named.writeString(text.c_str()), attached.writeString(text.c_str()));
          break;
        case 1:
          EXPECT_EQ(NQTestPeer::readUnbuffered(named, bytes[0], counts[0]),
                    NQTestPeer::readUnbuffered(attached, bytes[1], counts[1]));
          EXPECT_EQ(counts[0], counts[1]);
          EXPECT_STREQ(bytes[0], bytes[1]);
          break;
        case 2:
          if (random() % 8 == 0) {  // somebody else writes in between
            unsigned int written = 0;
            EXPECT_EQ(nqInternalWrite(named.fileHandle(), nullptr, "ELSE", &written), 1);
            EXPECT_EQ(nqInternalWrite(attached.fileHandle(), nullptr, "ELSE", &written),
                      1);
          }
          break;
        default:
          EXPECT_EQ(named.readString(ours), attached.readString(theirs));
          EXPECT_STREQ(ours.pString(), theirs.pString());
      }
      ASSERT_EQ(named.endOfFile(), attached.endOfFile());
    }
    EXPECT_EQ(named.close(), NQ_FILE_OK);
    EXPECT_EQ(fake.files["named"], fake.files["attached"]);
  }
}

// One transfer gives what was asked for, however much that is; a failure shows even
// behind bytes that were there.
TEST(LineReading, UnbufferedBlocksAreReadWhole) {
  FakeSystem fake;
  fake.files["in"] = "line\r" + std::string(200000, 'x');
  NQFile file;
  NQStringHandle line;
  ASSERT_EQ(file.open("in", NQ_READ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  std::string bytes(190000, ' ');
  int count = 190000;
  EXPECT_EQ(NQTestPeer::readUnbuffered(file, bytes.data(), count), NQ_FILE_OK);
  EXPECT_EQ(count, 190000);
  EXPECT_EQ(bytes, fake.files["in"].substr(5, 190000));
  count = 1;
  EXPECT_EQ(NQTestPeer::readUnbuffered(file, bytes.data(), count), NQ_FILE_OK);
  fake.readsUntilFailure = 0;
  count = 190000;
  EXPECT_EQ(NQTestPeer::readUnbuffered(file, bytes.data(), count), NQ_FILE_READ_ERROR);
}

TEST(LineReading, FetchesAheadInFewTransfers) {
  FakeSystem fake;
  for (int i = 0; i < 1000; ++i) fake.files["in"] += std::to_string(i) + "\r";
  NQFile file;
  NQStringHandle line;
  ASSERT_EQ(file.open("in", NQ_READ_WRITE), NQ_FILE_OK);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(file.readString(line), NQ_FILE_OK);
    EXPECT_EQ(line.pString(), std::to_string(i) + "\r");
  }
  EXPECT_EQ(fake.reads, 1);
  // What cannot be given back is not overwritten.
  ASSERT_EQ(file.open("in", NQ_READ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  fake.failingSeek = true;
  EXPECT_EQ(file.writeString("x"), NQ_FILE_WRITE_ERROR);
  EXPECT_NE(file.fileHandle(), nqdetail::noHandle());
  EXPECT_EQ(file.readString(line), NQ_FILE_OK);
  EXPECT_STREQ(line.pString(), "1\r");
}

}  // namespace

#include "nq/core/string_handle.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <utility>

#include "tests/core/test_peer.h"
#include "tests/support/copy_protocol_check.h"

namespace {

// The text, checked against the length that the handle keeps.
std::string textOf(const NQStringHandle& handle) {
  EXPECT_EQ(static_cast<std::size_t>(handle.strlenBuf()), std::strlen(handle.pString()));
  EXPECT_LT(handle.strlenBuf(), handle.capacity());
  return handle.pString();
}

TEST(NQStringHandle, DoublesOneCharacterEarly) {
  NQStringHandle handle;
  EXPECT_EQ(handle.capacity(), 254);
  EXPECT_EQ(textOf(handle), "");
  for (int i = 0; i < 252; ++i) EXPECT_EQ(handle.appendChar('x'), 1);
  EXPECT_EQ(handle.capacity(), 254);
  handle.appendChar('y');
  EXPECT_EQ(handle.capacity(), 508);
  EXPECT_EQ(handle.sizeOf(), 532);
  EXPECT_EQ(textOf(handle), std::string(252, 'x') + "y");
  handle.empty();
  EXPECT_EQ(handle.capacity(), 508);
  EXPECT_EQ(textOf(handle), "");
}

TEST(NQStringHandle, EveryWayOfGrowingKeepsItsReserve) {
  // The greatest request that still fits 254 bytes when 100 characters stand
  // there, for each operation.
  const struct {
    const char* name;
    nqLong fits;
    void (*request)(NQStringHandle&, nqLong);
  } kRows[] = {
      {"needCapacity", 253, [](NQStringHandle& h, nqLong n) { h.needCapacity(n); }},
      {"increaseLength", 152, [](NQStringHandle& h, nqLong n) { h.increaseLength(n); }},
      {"appendString", 152,
       [](NQStringHandle& h, nqLong n) {
         h.appendString(std::string(static_cast<std::size_t>(n), 'z').c_str());
       }},
      {"obtainAppendBuffer", 151,
       [](NQStringHandle& h, nqLong n) { h.obtainAppendBuffer(n); }},
  };
  for (const auto& row : kRows) {
    const struct {
      nqLong n, capacity;
    } requests[] = {{row.fits, 254}, {row.fits + 1, 508}, {3000, 4064}};
    for (const auto& request : requests) {
      NQStringHandle handle;
      handle.appendString(std::string(100, 'a').c_str());
      row.request(handle, request.n);
      EXPECT_EQ(handle.capacity(), request.capacity) << row.name << ' ' << request.n;
      EXPECT_EQ(textOf(handle).substr(0, 100), std::string(100, 'a')) << row.name;
    }
  }
}

TEST(NQStringHandle, RefusesWhatCannotBeHeld) {
  NQStringHandle handle;
  handle.appendString("abc");
  EXPECT_EQ(handle.needCapacity(INT_MAX), 0);
  EXPECT_EQ(handle.increaseLength(INT_MAX), 0);
  EXPECT_EQ(handle.obtainAppendBuffer(INT_MAX), nullptr);
  EXPECT_EQ(handle.appendString(nullptr), 0);
  EXPECT_EQ(handle.needCapacity(INT_MIN), 1);
  EXPECT_EQ(handle.increaseLength(INT_MIN), 1);
  EXPECT_STREQ(handle.obtainAppendBuffer(INT_MIN), "");
  EXPECT_EQ(handle.capacity(), 254);
  EXPECT_EQ(textOf(handle), "abc");
}

TEST(NQStringHandle, FindsTheEndOfWhatOthersWrote) {
  NQStringHandle handle;
  handle.appendString("abc");
  char* buffer = handle.obtainAppendBuffer(10);
  EXPECT_EQ(buffer, handle.pString() + 3);
  std::strcpy(buffer, "defgh");
  EXPECT_EQ(textOf(handle), "abcdefgh");
  std::strcpy(buffer, "de");  // less than a moment ago
  EXPECT_EQ(textOf(handle), "abcde");
  handle.appendChar('f');
  EXPECT_EQ(textOf(handle), "abcdef");

  handle.obtainAppendBuffer(5);  // nothing written
  handle.appendString("g");
  EXPECT_EQ(textOf(handle), "abcdefg");

  std::strcpy(handle.obtainAppendBuffer(2), "h");
  handle.needCapacity(5000);  // moves the text
  EXPECT_EQ(textOf(handle), "abcdefgh");

  std::strcpy(handle.obtainAppendBuffer(2), "i");
  const NQStringHandle copy(handle);
  EXPECT_EQ(textOf(copy), "abcdefghi");
  std::strcpy(handle.obtainAppendBuffer(2), "j");
  handle.empty();
  EXPECT_EQ(textOf(handle), "");

  handle.appendString("abcdef");
  NQTestPeer::pChangeableString(handle)[2] = '\0';
  handle.appendChar('x');
  EXPECT_EQ(textOf(handle), "abx");
}

TEST(NQStringHandle, IsNotLedOutOfItsBufferByAMissingTerminator) {
  NQStringHandle handle;
  char* const buffer = handle.obtainAppendBuffer(200);
  std::memset(buffer, 'x', 254);
  EXPECT_EQ(handle.strlenBuf(), 253);
  handle.appendChar('y');
  EXPECT_EQ(textOf(handle), std::string(253, 'x') + "y");
}

TEST(NQStringHandle, AppendsItsOwnText) {
  NQStringHandle handle;
  handle.appendString("0123456789");
  std::string expected = "0123456789";
  for (int i = 0; i < 8; ++i) {
    handle.appendString(handle.pString());
    expected += expected;
  }
  handle.appendString(handle.pString() + 2555);
  EXPECT_EQ(textOf(handle), expected + "56789");
}

TEST(NQStringHandle, AZeroCharacterAddsNothing) {
  NQStringHandle handle;
  handle.appendChar('a');
  handle.appendChar('\0');
  handle.appendChar('b');
  EXPECT_EQ(textOf(handle), "ab");
}

TEST(NQStringHandle, BothKindsOfCopyTakeTextAndCapacity) {
  NQStringHandle sample;
  sample.appendString(std::string(300, 's').c_str());
  checkCopyProtocol(
      sample,
      [] {
        auto other = std::make_unique<NQStringHandle>();
        other->needCapacity(2000);
        other->appendString("other");
        return other;
      },
      [](const NQStringHandle& a, const NQStringHandle& b) {
        return textOf(a) == textOf(b) && a.capacity() == b.capacity();
      });
}

// Overriding one copy operation changes both.
class CountingHandle : public NQStringHandle {
 public:
  void copyAttributes(const NQObject*) override { ++copies; }

  int copies = 0;
};

TEST(NQStringHandle, CopyObjectGoesThroughCopyAttributes) {
  CountingHandle handle;
  handle.copyObject(&handle);
  EXPECT_EQ(handle.copies, 1);
}

TEST(NQStringHandle, FollowsAStringThroughALongRandomSequence) {
  std::mt19937 random(20);
  NQStringHandle handle;
  std::string model;
  for (int step = 0; step < 20000; ++step) {
    const auto kind = static_cast<unsigned>(random() % 100);
    const std::string piece(random() % 40, static_cast<char>('a' + random() % 26));
    if (kind < 60) {
      handle.appendChar(static_cast<char>('A' + kind % 26));
      model.push_back(static_cast<char>('A' + kind % 26));
    } else if (kind < 75) {
      if (step % 2 == 0) handle.appendString(piece.c_str());
      if (step % 2 != 0) handle.appendText(piece);
      model += piece;
    } else if (kind < 90) {
      std::strcpy(handle.obtainAppendBuffer(static_cast<nqLong>(piece.size())),
                  piece.c_str());
      model += piece;
    } else if (kind < 98) {
      handle.increaseLength(static_cast<nqLong>(piece.size()));
    } else if (kind < 99) {
      handle = NQStringHandle(handle);
    } else if (step % 7 == 0) {
      handle.empty();
      model.clear();
    }
    ASSERT_EQ(handle.strlenBuf(), static_cast<nqLong>(model.size())) << step;
    ASSERT_STREQ(handle.pString(), model.c_str()) << step;
  }
}

TEST(NQStringHandle, IsEmptyAndUsableWhenItWasMovedFrom) {
  static_assert(std::is_nothrow_move_constructible_v<NQStringHandle> &&
                std::is_nothrow_move_assignable_v<NQStringHandle>);
  const auto moved = [] {
    NQStringHandle source;
    source.appendString("abc");
    const char* const text = source.pString();
    NQStringHandle target;
    target = NQStringHandle(std::move(source));
    EXPECT_EQ(target.pString(), text);
    EXPECT_STREQ(text, "abc");
    return source;  // NOLINT(bugprone-use-after-move)
  };
  const auto expect = [](NQStringHandle handle, const char* text, nqLong capacity) {
    EXPECT_STREQ(handle.pString(), text);
    EXPECT_EQ(handle.strlenBuf(), static_cast<nqLong>(std::strlen(text)));
    EXPECT_EQ(handle.capacity(), capacity);
  };
  expect(moved(), "", 0);
  expect(NQStringHandle(moved(), NQ_DEEP_COPY), "", 0);
  NQStringHandle handle = moved();
  handle.empty();
  EXPECT_EQ(handle.appendChar('x'), 1);
  expect(handle, "x", 254);
  handle = moved();
  EXPECT_EQ(handle.appendString("yz"), 1);
  expect(handle, "yz", 254);
  handle = moved();
  std::strcpy(handle.obtainAppendBuffer(300), "long");
  expect(handle, "long", 508);
  NQStringHandle copy;
  const NQStringHandle none = moved();
  copy.appendString("had");
  copy = none;
  expect(copy, "", 0);
  NQStringHandle& self = handle;
  handle = std::move(self);
  expect(handle, "long", 508);
}

}  // namespace

#include "nq/core/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "nq/core/message_table.h"
#include "nq/platform/system_internal.h"
#include "tests/support/copy_protocol_check.h"

namespace {

bool sameText(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) return a == b;
  return std::strcmp(a, b) == 0;
}

TEST(NQInternalText, TellsNoTextFromTheEmptyText) {
  NQInternalText none(nullptr);
  EXPECT_EQ(none.pString(), nullptr);
  EXPECT_EQ(none.sizeOf(), 8);
  const NQInternalText empty("");
  EXPECT_STREQ(empty.pString(), "");
  EXPECT_EQ(empty.sizeOf(), 8);
  EXPECT_EQ(NQInternalText("abc").sizeOf(), 11);

  const NQInternalText alsoNone(none);
  EXPECT_EQ(alsoNone.pString(), nullptr);
  EXPECT_EQ(none.appendString(nullptr), nullptr);
  EXPECT_STREQ(none.appendString("b"), "b");
  EXPECT_EQ(none.pString(nullptr), nullptr);
  EXPECT_STREQ(none.prependString("b"), "b");
}

TEST(NQInternalText, GrowsAtBothEndsAndByItself) {
  NQInternalText text("b");
  EXPECT_STREQ(text.appendString("c"), "bc");
  EXPECT_STREQ(text.prependString("a"), "abc");
  EXPECT_STREQ(text.appendString(nullptr), "abc");
  EXPECT_STREQ(text.prependString(nullptr), "abc");
  const NQInternalText copy(text);
  EXPECT_STREQ(text.appendString(text.pString() + 1), "abcbc");
  EXPECT_STREQ(text.prependString(text.pString()), "abcbcabcbc");
  EXPECT_STREQ(text.pString(text.pString() + 8), "bc");
  EXPECT_STREQ(copy.pString(), "abc");
  text = copy;
  EXPECT_STREQ(text.pString(), "abc");
  EXPECT_NE(text.pString(), copy.pString());
  const NQInternalText& self = text;
  text = self;
  EXPECT_STREQ(text.pString(), "abc");
}

TEST(NQInternalText, HoldsALibraryMessageByNumber) {
  EXPECT_STREQ(NQInternalText(1).pString(), "Fatal error");
  EXPECT_STREQ(NQInternalText(51L).pString(),
               "right bracket different than left bracket");
  EXPECT_STREQ(NQInternalText(52).pString(), "");
  EXPECT_STREQ(NQInternalText(-1L).pString(), "");
  EXPECT_STREQ(NQInternalText(1U).pString(), "Fatal error");
  EXPECT_STREQ(NQInternalText(1ULL).pString(), "Fatal error");
  EXPECT_STREQ(NQInternalText(-1LL).pString(), "");
}

TEST(MessageTable, HoldsFiftyTwoTextsSafeToFormat) {
  const char* const texts[] = {
#define NQ_MESSAGE(code, text) text,
#include "nq/core/message_table.def"
#undef NQ_MESSAGE
  };
  static_assert(std::size(texts) == 52);
  for (int code = 0; code < 52; ++code) {
    const std::string_view text = getStringResource(code);
    EXPECT_EQ(text, texts[code]);
    EXPECT_FALSE(text.empty()) << code;
    int placeholders = 0;
    for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
      EXPECT_EQ(text.substr(at, 2), "%s") << code;
      ++placeholders;
    }
    EXPECT_LE(placeholders, 3) << code;
  }
  EXPECT_STREQ(getStringResource(3), "something wrong");
  EXPECT_STREQ(getStringResource(9), "`true' or `false'");
  for (const int code : {52, 53, INT_MAX, -1, INT_MIN}) {
    EXPECT_STREQ(getStringResource(code), "") << code;
  }
}

TEST(NQText, CopiesItsTextDeepOnly) {
  NQText sample("abc");
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQText>("other"); },
      [](const NQText& a, const NQText& b) { return sameText(a.pString(), b.pString()); },
      [](const NQText&, const NQText& b) { return b.pString() == nullptr; });
  EXPECT_EQ(NQText().sizeOf(), 16);
  EXPECT_EQ(sample.sizeOf(), 19);
  EXPECT_STREQ(sample.appendString("d"), "abcd");
  EXPECT_STREQ(sample.prependString("-"), "-abcd");
  EXPECT_STREQ(sample.pString("new"), "new");
}

TEST(NQErrorMsg, CopiesAsATextDoes) {
  NQErrorMsg sample("abc");
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQErrorMsg>("other"); },
      [](const NQErrorMsg& a, const NQErrorMsg& b) {
        return sameText(a.pString(), b.pString());
      },
      [](const NQErrorMsg&, const NQErrorMsg& b) { return b.pString() == nullptr; });
}

// Stands for the standard error stream: takes at most `limit` bytes at a time
// and fails when it holds `room`.
class ErrorStream {
 public:
  ErrorStream(std::size_t limit, std::size_t room) {
    taken() = "";
    limit_ = limit;
    room_ = room;
    table_.standardError = [] { return nqdetail::Handle{&limit_}; };
    table_.write = [](nqdetail::Handle handle, const void* data, std::size_t count,
                      std::size_t* transferred) {
      EXPECT_EQ(handle, &limit_) << "not the standard error stream";
      *transferred = std::min({count, limit_, room_ - taken().size()});
      taken().append(static_cast<const char*>(data), *transferred);
      ++calls_;
      return *transferred > 0;
    };
    calls_ = 0;
    nqdetail::replaceSystem(&table_);
  }
  ~ErrorStream() { nqdetail::replaceSystem(nullptr); }
  ErrorStream(const ErrorStream&) = delete;
  ErrorStream& operator=(const ErrorStream&) = delete;

  static std::string& taken() {
    static std::string text;
    return text;
  }
  static int calls() { return calls_; }

 private:
  static inline std::size_t limit_ = 0;
  static inline std::size_t room_ = 0;
  static inline int calls_ = 0;
  nqdetail::System table_ = nqdetail::hostSystem();
};

TEST(NQErrorMsg, DisplaysItsTextWholeOrAsMuchAsCanBeWritten) {
  const struct {
    std::size_t limit, room;
    const char* shown;
    int calls;
  } kRows[] = {
      {100, 100, "100% wrong: %s", 1},
      {5, 100, "100% wrong: %s", 3},
      {4, 9, "100% wron", 4},
      {100, 0, "", 1},
  };
  for (const auto& row : kRows) {
    const ErrorStream stream(row.limit, row.room);
    displayErrorMessage("100% wrong: %s");
    EXPECT_EQ(stream.taken(), row.shown);
    EXPECT_EQ(stream.calls(), row.calls);
  }
  const ErrorStream stream(100, 100);
  displayErrorMessage(nullptr);
  displayErrorMessage("");
  EXPECT_EQ(stream.calls(), 0);
}

TEST(NQText, GivesItsTextAwayWhenItIsMoved) {
  static_assert(std::is_nothrow_move_constructible_v<NQText> &&
                std::is_nothrow_move_assignable_v<NQErrorMsg>);
  NQText source("abc");
  const char* const text = source.pString();
  NQText target("old");
  target = std::move(source);
  EXPECT_EQ(target.pString(), text);
  EXPECT_EQ(source.pString(), nullptr);  // NOLINT(bugprone-use-after-move)
  EXPECT_STREQ(source.appendString("new"), "new");
}

}  // namespace

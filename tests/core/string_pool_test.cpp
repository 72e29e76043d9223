#include "nq/core/string_pool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tests/core/test_peer.h"
#include "tests/support/copy_protocol_check.h"

namespace {

constexpr nqLong kSmallest = -2147483647 - 1;
constexpr nqLong kLargest = 2147483647;

TEST(NQStringPool, GivesCodesInOrderWithAndWithoutCase) {
  const struct {
    const char* text;
    nqLong withCase;
    nqLong withoutCase;
    const char* inUpperCase;
  } kRows[] = {
      {"Node", 0, 0, "NODE"},
      {"NODE", 1, 0, "NODE"},
      {"", 2, 1, ""},
      {"node", 3, 0, "NODE"},
      {"node_with_a_long_name", 4, 2, "NODE_WITH_A_LONG_NAME"},
      {"NoDe_With_A_Long_NAME", 5, 2, "NODE_WITH_A_LONG_NAME"},
      {"@[`{\xe4\xfc", 6, 3, "@[`{\xe4\xfc"},
      {"@{`{\xc4\xdc", 7, 4, "@{`{\xc4\xdc"},
      {"Node", 0, 0, "NODE"},
  };
  NQStringPool withCase(7, 4, 1, 0);
  NQStringPool withoutCase(7, 4, 0, 0);
  for (const auto& row : kRows) {
    EXPECT_EQ(withCase.update(row.text), row.withCase) << row.text;
    EXPECT_STREQ(withCase.decode(row.withCase), row.text);
    EXPECT_EQ(withoutCase.update(row.text), row.withoutCase) << row.text;
    EXPECT_STREQ(withoutCase.decode(row.withoutCase), row.inUpperCase);
  }
  EXPECT_EQ(withCase.lookup("nODE"), -1);
  EXPECT_EQ(withoutCase.lookup("nODE"), 0);
  EXPECT_EQ(withCase.decodeTableMax(), 8);
  EXPECT_EQ(withoutCase.decodeTableMax(), 5);
  for (const nqLong code :
       {-1, 8, static_cast<int>(kLargest), static_cast<int>(kSmallest)}) {
    EXPECT_STREQ(withCase.decode(code), "") << code;
  }
}

TEST(NQStringPool, ViewsEndAtTheirFirstZeroByteAndNullIsRefused) {
  NQStringPool pool(7, 4, 1, 0);
  EXPECT_EQ(pool.update(std::string_view("ab\0cd", 5)), 0);
  EXPECT_EQ(pool.update(std::string_view("abcd").substr(0, 2)), 0);
  EXPECT_EQ(pool.lookup(std::string_view("ab\0", 3)), 0);
  EXPECT_EQ(pool.lookup(std::string_view("a\0b", 3)), -1);
  EXPECT_EQ(pool.update(std::string_view("\0ab", 3)), 1);
  EXPECT_EQ(pool.lookup(""), 1);
  EXPECT_EQ(pool.update(std::string("ab") + "cd"), 2);
  EXPECT_EQ(pool.update(pool.decode(2) + 2), 3) << "a text inside the pool";
  EXPECT_STREQ(pool.decode(3), "cd");

  const char* const null = nullptr;
  EXPECT_EQ(pool.lookup(null), -1);
  EXPECT_EQ(pool.update(null), -1);
  EXPECT_EQ(pool.lookup(std::string_view()), -1);
  EXPECT_EQ(pool.update(std::string_view()), -1);
  EXPECT_EQ(pool.decodeTableMax(), 4);
}

TEST(NQStringPool, KeepsOnePointerPerCodeWhenAsked) {
  int values[3];
  NQStringPool with(7, 2, 0, 1);
  NQStringPool without(7, 2, 0, 0);
  for (int number = 0; number < 3; ++number) {
    const std::string text = "text" + std::to_string(number);
    EXPECT_EQ(with.pointer(number, values), nullptr) << "not yet given out";
    EXPECT_EQ(without.update(text), number);
    EXPECT_EQ(with.update(text), number);
    EXPECT_EQ(with.pointer(number), nullptr);
    EXPECT_EQ(with.pointer(number, values + number), values + number);
    EXPECT_EQ(without.pointer(number, values), nullptr);
    EXPECT_EQ(without.pointer(number), nullptr);
  }
  for (int number = 0; number < 3; ++number) {
    EXPECT_EQ(with.pointer(number), values + number);
  }
  for (const nqLong code : {-1, 3, static_cast<int>(kLargest)}) {
    EXPECT_EQ(with.pointer(code, values), nullptr);
    EXPECT_EQ(with.pointer(code), nullptr);
  }
}

TEST(NQStringPool, DecodeTableGrowsWhenOneSlotIsLeft) {
  for (const nqLong asked : {10, 1, 0, -5, static_cast<int>(kSmallest), 100}) {
    NQStringPool pool(3, asked, 1, 1);
    nqLong size = asked < 0 ? 0 : asked;
    for (nqLong count = 0; count < 200; ++count) {
      EXPECT_EQ(NQTestPeer::decodeTableSizeOf(pool), size) << asked << ", " << count;
      if (count >= size - 1) size = count * 3 / 2 + 5;
      ASSERT_EQ(pool.update(std::to_string(count)), count);
    }
  }
  NQStringPool pool(3, 10, 1, 0);
  for (const char* text : {"1", "2", "3", "4", "5", "6", "7", "8", "9"})
    pool.update(text);
  EXPECT_EQ(NQTestPeer::decodeTableSizeOf(pool), 10);
  pool.update("10");
  EXPECT_EQ(NQTestPeer::decodeTableSizeOf(pool), 18);
}

TEST(NQStringPool, TakesNothingWithoutTables) {
  const NQStringPool source(5, 5, 0, 1);
  std::vector<std::unique_ptr<NQStringPool>> pools;
  for (const nqLong size : {0, -1, static_cast<int>(kSmallest)}) {
    pools.push_back(std::make_unique<NQStringPool>(size, 10, 0, 1));
    EXPECT_EQ(NQTestPeer::hashTableSizeOf(*pools.back()), size);
  }
  pools.push_back(std::make_unique<NQStringPool>(source, NQ_ATTRIBUTE_COPY));
  pools.push_back(std::make_unique<NQStringPool>(*pools.front()));
  for (const auto& pool : pools) {
    EXPECT_EQ(pool->update("a"), -1);
    EXPECT_EQ(pool->update(std::string_view("a")), -1);
    EXPECT_EQ(pool->lookup("a"), -1);
    EXPECT_EQ(pool->decodeTableMax(), 0);
    EXPECT_STREQ(pool->decode(0), "");
    EXPECT_EQ(pool->pointer(0, pool.get()), nullptr);
    *pool = source;
    EXPECT_EQ(pool->update("a"), 0);
    EXPECT_STREQ(pool->decode(0), "A");
    EXPECT_EQ(pool->pointer(0, pool.get()), pool.get());
  }
  NQStringPool huge(kLargest, 1, 1, 0);
  EXPECT_EQ(huge.update("a"), 0) << "a size is not a reason to take as much memory";
  EXPECT_EQ(NQTestPeer::hashTableSizeOf(huge), kLargest);
}

std::string inUpperCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// Texts of all lengths, alike in much, from buffers of their exact size.
TEST(NQStringPool, AgreesWithAModel) {
  static constexpr char kCharacters[] = "aAbzZ@[`{_\x80\xe1\xff";
  for (const bool caseSensitive : {true, false}) {
    std::mt19937 random(caseSensitive ? 1 : 2);
    NQStringPool pool(3, 3, caseSensitive, 0);
    std::unordered_map<std::string, nqLong> model;
    std::vector<std::pair<std::string, const char*>> decoded;
    for (int step = 0; step < 30000; ++step) {
      std::string text(random() % (random() % 50 == 0 ? 500 : 20), 'a');
      for (char& c : text) {
        if (random() % 4 == 0) c = kCharacters[random() % (sizeof kCharacters - 1)];
      }
      const std::unique_ptr<char[]> buffer(new char[text.size()]);
      std::memcpy(buffer.get(), text.data(), text.size());
      const std::string_view view(buffer.get(), text.size());
      const std::string key = caseSensitive ? text : inUpperCase(text);
      const auto found = model.find(key);
      const nqLong expected = found == model.end() ? -1 : found->second;
      ASSERT_EQ(pool.lookup(view), expected) << text;
      ASSERT_EQ(pool.lookup(text.c_str()), expected) << text;
      if (random() % 2 == 0) continue;
      const auto code = model.try_emplace(key, static_cast<nqLong>(model.size())).first;
      ASSERT_EQ(pool.update(view), code->second) << text;
      if (expected < 0) decoded.emplace_back(key, pool.decode(code->second));
    }
    ASSERT_EQ(pool.decodeTableMax(), static_cast<nqLong>(model.size()));
    for (std::size_t code = 0; code < decoded.size(); ++code) {
      const char* const stored = pool.decode(static_cast<nqLong>(code));
      ASSERT_EQ(stored, decoded[code].second) << "texts stay where they are";
      ASSERT_EQ(stored, decoded[code].first);
    }
  }
}

// Minutes, if texts were searched for in the chains that they would share: under a
// polynomial hash with factor 29, and under one that ignores case.
TEST(NQStringPool, HostileTextsCostNoMoreThanOthers) {
  const struct {
    int caseSensitive;
    const char* choices[2];
  } kRows[] = {{0, {"A_", "BB"}}, {1, {"ab", "AB"}}};
  for (const auto& row : kRows) {
    constexpr nqLong kBits = 17;
    NQStringPool pool(2, 2, row.caseSensitive, 0);
    const auto textOf = [&row](nqLong bits) {
      std::string text;
      for (int bit = 0; bit < kBits; ++bit) text += row.choices[bits >> bit & 1];
      return text;
    };
    for (nqLong bits = 0; bits < 1 << kBits; ++bits) {
      ASSERT_EQ(pool.update(textOf(bits)), bits);
    }
    for (nqLong bits = 0; bits < 1 << kBits; ++bits) {
      ASSERT_EQ(pool.lookup(textOf(bits)), bits);
    }
  }
}

TEST(NQStringPool, FollowsTheCopyProtocol) {
  int payload = 0;
  for (const int withPointers : {0, 1}) {
    NQStringPool sample(11, 3, 0, withPointers);
    for (int number = 0; number < 100; ++number) {
      sample.update("text" + std::to_string(number));
      sample.pointer(number, number % 3 == 0 ? &payload : nullptr);
    }
    checkCopyProtocol(
        sample,
        [] {
          auto other = std::make_unique<NQStringPool>(5, 5, 1, 1);
          other->update("other");
          other->pointer(0, other.get());
          return other;
        },
        [](const NQStringPool& a, const NQStringPool& b) {
          bool same =
              a.decodeTableMax() == b.decodeTableMax() && b.lookup("other") == -1 &&
              NQTestPeer::caseSensitiveOf(a) == NQTestPeer::caseSensitiveOf(b) &&
              NQTestPeer::hashTableSizeOf(a) == NQTestPeer::hashTableSizeOf(b) &&
              NQTestPeer::decodeTableSizeOf(a) == NQTestPeer::decodeTableSizeOf(b);
          for (nqLong code = 0; same && code < a.decodeTableMax(); ++code) {
            same = std::strcmp(a.decode(code), b.decode(code)) == 0 &&
                   b.lookup(a.decode(code)) == code && a.pointer(code) == b.pointer(code);
          }
          return same;
        },
        [](const NQStringPool& a, const NQStringPool& b) {
          return NQTestPeer::caseSensitiveOf(a) == NQTestPeer::caseSensitiveOf(b) &&
                 NQTestPeer::decodeTableSizeOf(b) == 0 && b.decodeTableMax() == 0 &&
                 b.lookup("text1") == -1;
        });
    const std::unique_ptr<NQStringPool> copy(sample.cloneObject());
    EXPECT_NE(copy->decode(0), sample.decode(0));
    EXPECT_EQ(copy->pointer(3), withPointers != 0 ? &payload : nullptr);
    EXPECT_EQ(copy->pointer(99, &payload), withPointers != 0 ? &payload : nullptr);
  }
}

}  // namespace

#include "nq/oml/bin_value.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "nq/oml/encoding/bin_value_builder.h"
#include "nq/oml/token.h"
#include "tests/support/copy_protocol_check.h"

namespace {

NQOMLBinValue valueOf(const std::string& bytes) {
  return NQOMLBinValue(static_cast<nqLong>(bytes.size()), bytes.data());
}

std::string bytesOf(const NQOMLBinValue& value) {
  return {value.pByteSequence(), value.pByteSequence() + value.length()};
}

TEST(NQOMLBinValue, FollowsTheCopyProtocol) {
  NQOMLBinValue sample = valueOf({"a\0b", 3});
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQOMLBinValue>(5, "other"); },
      [](const NQOMLBinValue& a, const NQOMLBinValue& b) {
        return bytesOf(a) == bytesOf(b) &&
               (&a == &b || a.pByteSequence() != b.pByteSequence());
      });
  NQOMLBinValue empty;
  sample = empty;
  EXPECT_EQ(sample.pByteSequence(), nullptr);
}

TEST(NQOMLBinValue, KeepsItsBufferWhileItSuffices) {
  NQOMLBinValue value = valueOf("abcdef");
  const char* const buffer = value.pByteSequence();
  value.fill(3, "xyz");
  EXPECT_EQ(bytesOf(value), "xyz");
  EXPECT_EQ(value.capacity(), 6);
  EXPECT_EQ(value.pByteSequence(), buffer);
  EXPECT_EQ(value.length(6), 6);
  EXPECT_EQ(bytesOf(value), "xyzdef");
  EXPECT_STREQ(std::string(value.pByteSequence("ABCDEF"), 6).c_str(), "ABCDEF");
  EXPECT_EQ(value.pByteSequence(nullptr), buffer);

  EXPECT_EQ(value.length(8), 8);
  EXPECT_EQ(bytesOf(value), std::string(8, '\0'));
  EXPECT_EQ(value.capacity(), 8);
  for (const nqLong none : {0, -5}) {
    value = valueOf("x");
    EXPECT_EQ(value.length(none), 0);
    EXPECT_EQ(value.capacity(), 0);
    EXPECT_EQ(value.pByteSequence(), nullptr);
    EXPECT_EQ(value.pByteSequence("y"), nullptr);
  }
}

TEST(NQOMLBinValue, TakesBytesFromItself) {
  NQOMLBinValue value = valueOf("abcdef");
  value.fill(4, value.pByteSequence() + 1);
  EXPECT_EQ(bytesOf(value), "bcde");
  value.concat(&value);  // does not fit
  EXPECT_EQ(bytesOf(value), "bcdebcde");
  EXPECT_EQ(value.capacity(), 8);
  value.length(4);
  value.concat(&value);  // fits
  EXPECT_EQ(bytesOf(value), "bcdebcde");
  value.fill(9, (valueOf("123456789")).pByteSequence());
  EXPECT_EQ(bytesOf(value), "123456789");
}

TEST(NQOMLBinValue, Concatenates) {
  NQOMLBinValue value;
  value.concat(nullptr);
  const NQOMLBinValue empty;
  value.concat(&empty);
  EXPECT_EQ(value.capacity(), 0);
  for (const char* piece : {"a", "bc", "def"}) {
    const NQOMLBinValue next = valueOf(piece);
    value.concat(&next);
  }
  EXPECT_EQ(bytesOf(value), "abcdef");
  EXPECT_EQ(value.capacity(), 6);
}

TEST(BinValueBuilder, MakesOneValueOfManyPieces) {
  nqdetail::BinValueBuilder builder;
  for (const std::size_t pieces : {std::size_t{0}, std::size_t{3}, std::size_t{100000}}) {
    std::string expected;
    for (std::size_t n = 0; n < pieces; ++n) {
      const std::string piece(n % 4, static_cast<char>(n));
      builder.append(piece);
      builder.append('\0');
      expected += piece + '\0';
    }
    const std::unique_ptr<NQOMLBinValue> value(builder.finish());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(bytesOf(*value), expected);
    EXPECT_EQ(value->capacity(), value->length());
  }
}

TEST(NQOMLToken, HoldsOneWord) {
  NQOMLToken token;
  token.integer(-2);
  EXPECT_EQ(token.integer(), -2);
  EXPECT_EQ(token.address(), 0xFFFFFFFEU);
  EXPECT_EQ(token.pBinValue(), nullptr);  // another tag: the word is no pointer
  token.deleteValue();
  EXPECT_EQ(token.integer(), -2);
  token.real(-0.1);
  EXPECT_EQ(token.real(), -0.1);
  token.tag = NQ_OML_BINARY_VALUE;
  token.pBinValue(new NQOMLBinValue(3, "abc"));
  token.deleteValue();
  EXPECT_EQ(token.pBinValue(), nullptr);
}

}  // namespace

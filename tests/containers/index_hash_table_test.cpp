#include "nq/containers/index_hash_table.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tests/containers/test_peer.h"
#include "tests/support/copy_protocol_check.h"

namespace {

constexpr nqInt64 kSmallest = std::numeric_limits<nqInt64>::min();
constexpr nqInt64 kLargest = std::numeric_limits<nqInt64>::max();
constexpr nqLong kSmallestLong = std::numeric_limits<nqLong>::min();

std::vector<nqInt64> keysIn(const NQIndexHashTable& table, nqLong bucket) {
  std::vector<nqInt64> keys;
  for (auto* entry = NQTestPeer::chainOf(table, bucket); entry; entry = entry->next) {
    keys.push_back(entry->key);
  }
  return keys;
}

using Model = std::unordered_map<nqInt64, nqInt64>;

// Every entry stands once, in its bucket, with the model's value, and the table
// knows it.
void expectEqual(NQIndexHashTable& table, const Model& model) {
  std::size_t count = 0;
  for (nqLong bucket = 0; bucket < table.hashTableSize(); ++bucket) {
    for (auto* entry = NQTestPeer::chainOf(table, bucket); entry; entry = entry->next) {
      ++count;
      ASSERT_EQ(NQTestPeer::bucketOf(table, entry->key), bucket) << entry->key;
      const auto found = model.find(entry->key);
      ASSERT_NE(found, model.end()) << entry->key;
      ASSERT_EQ(entry->value, found->second) << entry->key;
      ASSERT_EQ(table.lookup(entry->key), found->second) << entry->key;
    }
  }
  EXPECT_EQ(count, model.size());
}

TEST(NQIndexHashTable, BucketIsTheQuotientModuloTheSize) {
  const NQIndexHashTable small;
  const struct {
    nqInt64 key;
    nqLong bucket;
  } kRows[] = {{0, 0}, {8, 1}, {16, 2}, {24, 0}, {-8, 1}, {7, 0}, {-7, 0}, {-23, 2}};
  for (const auto& row : kRows) {
    EXPECT_EQ(NQTestPeer::bucketOf(small, row.key), row.bucket) << row.key;
  }

  std::mt19937_64 random(5);
  std::vector<nqInt64> keys = {kSmallest, kSmallest + 1, kLargest, -1, 1};
  for (int number = 0; number < 200; ++number) {
    keys.push_back(static_cast<nqInt64>(random()) >> (random() % 64));
  }
  for (const nqLong size : {1, 2, 3, 64, 65535, 160201}) {
    for (const nqLong divisor :
         {1, -1, 8, -8, 3, 1000, -4096, 2147483647, static_cast<int>(kSmallestLong)}) {
      const NQIndexHashTable table(size, divisor);
      for (const nqInt64 key : keys) {
        __extension__ using Wide = __int128;
        const Wide quotient = Wide{key} / divisor;
        ASSERT_EQ(NQTestPeer::bucketOf(table, key),
                  static_cast<nqLong>((quotient < 0 ? -quotient : quotient) % size))
            << key << " / " << divisor << " mod " << size;
      }
    }
  }
}

TEST(NQIndexHashTable, MaximaAndMeasureOnlyGrow) {
  NQIndexHashTable table(3, 8, -1);
  EXPECT_EQ(table.lookup(5), -1);
  EXPECT_EQ(table.sizeOf(), 72);
  table.update(-40, -3);
  EXPECT_EQ(table.maxHashIndex(), 0);
  EXPECT_EQ(table.maxValueIndex(), 0);
  table.update(5, 10);
  table.update(5, 3);
  EXPECT_EQ(table.lookup(5), 3);
  EXPECT_EQ(table.lookup(-40), -3);
  EXPECT_EQ(table.maxHashIndex(), 5);
  EXPECT_EQ(table.maxValueIndex(), 10);
  EXPECT_EQ(table.sizeOf(), 120);
}

TEST(NQIndexHashTable, ChainsAreNewestFirstAndDeepCopiesReverseThem) {
  NQIndexHashTable table(2, 8, -1);
  for (const nqInt64 key : {16, 0, 48, 32, 8}) table.update(key, key + 1);
  table.update(48, 5);
  using Keys = std::vector<nqInt64>;
  EXPECT_EQ(keysIn(table, 0), (Keys{32, 48, 0, 16}));
  EXPECT_EQ(keysIn(table, 1), Keys{8});
  NQIndexHashTable copy(table);
  EXPECT_EQ(keysIn(copy, 0), (Keys{16, 0, 48, 32}));
  EXPECT_EQ(copy.maxHashIndex(), 48);
  EXPECT_EQ(copy.maxValueIndex(), 33) << "the 49 that was replaced is forgotten";
  expectEqual(copy, {{16, 17}, {0, 1}, {48, 5}, {32, 33}, {8, 9}});
}

TEST(NQIndexHashTable, TakesNothingWithoutBuckets) {
  const std::pair<nqLong, nqLong> kShapes[] = {
      {0, 8}, {-1, 8}, {kSmallestLong, 8}, {5, 0}, {0, 0}};
  for (const auto& [size, divisor] : kShapes) {
    NQIndexHashTable table(size, divisor, -9);
    table.update(16, 5);
    table.update(kSmallest, 5);
    NQIndexHashTable copy(table);
    for (NQIndexHashTable* each : {&table, &copy}) {
      EXPECT_FALSE(NQTestPeer::hasBuckets(*each));
      EXPECT_EQ(each->lookup(16), -9);
      EXPECT_EQ(each->maxHashIndex(), 0);
      EXPECT_EQ(each->maxValueIndex(), 0);
      EXPECT_EQ(each->hashTableSize(), 0);
      EXPECT_EQ(each->divisor(), divisor);
      EXPECT_EQ(each->sizeOf(), 48);
    }
    table = NQIndexHashTable(7);
    table.update(16, 5);
    EXPECT_EQ(table.lookup(16), 5);
  }
}

// Keys of many shapes, in changing order, looked up in between so that the table
// changes between pushing and searching.
TEST(NQIndexHashTable, AgreesWithAModelWhateverTheKeys) {
  std::mt19937_64 random(17);
  const auto below = [&random](std::uint64_t limit) {
    return static_cast<nqInt64>(random() % limit);
  };
  nqInt64 next = 0x55d0c3a412a0;
  const struct {
    const char* name;
    std::function<nqInt64()> key;
  } kShapes[] = {
      {"ascending addresses", [&] { return next += 16 * (1 + below(7)); }},
      {"addresses in two regions",
       [&] { return (below(2) << 40) + 0x7f0000000000 + 8 * below(4000); }},
      {"small numbers", [&] { return below(3000) - 1500; }},
      {"any numbers", [&] { return static_cast<nqInt64>(random()); }},
      {"one bucket", [&] { return below(4000) * 8 * 101 * (nqInt64{1} << 20); }},
      {"far, then near",
       [&] { return below(100) < 20 ? below(2000) << 32 : below(2000); }},
      {"the ends of the range",
       [&] { return (below(2) == 0 ? kSmallest + below(40) : kLargest - below(40)); }},
  };
  for (const auto& shape : kShapes) {
    SCOPED_TRACE(shape.name);
    NQIndexHashTable table(101, 8, -77);
    Model model;
    std::vector<nqInt64> known = {0};
    for (int step = 0; step < 20000; ++step) {
      nqInt64 key = shape.key();
      if (below(3) == 0) key = known[static_cast<std::size_t>(below(known.size()))];
      if (below(2) == 0) {
        const nqInt64 value = below(1000);
        table.update(key, value);
        model[key] = value;
        known.push_back(key);
      }
      const auto found = model.find(key);
      ASSERT_EQ(table.lookup(key), found == model.end() ? -77 : found->second) << key;
    }
    expectEqual(table, model);
    NQIndexHashTable copy(table);
    expectEqual(copy, model);
  }
}

// The smallest key marks vacant places in the index: it must not be found there,
// and must be found once it is a key.
TEST(NQIndexHashTable, HoldsTheSmallestKeyToo) {
  for (const int others : {0, 1, 5, 300}) {
    NQIndexHashTable table(11, 1, -1);
    for (nqInt64 key = 0; key < others; ++key) table.update(-key, key);
    EXPECT_EQ(table.lookup(kSmallest), -1);
    table.update(kSmallest, 4);
    table.update(kSmallest, 5);
    EXPECT_EQ(table.lookup(kSmallest), 5);
    EXPECT_EQ(table.lookup(kSmallest + 1), -1);
    EXPECT_EQ(table.lookup(others), -1);
    for (nqInt64 key = 0; key < others; ++key) EXPECT_EQ(table.lookup(-key), key);
    NQIndexHashTable copy(table);
    EXPECT_EQ(copy.lookup(kSmallest), 5);
    EXPECT_EQ(copy.sizeOf(), 48 + 8 * 11 + 24 * (others + 1));
  }
}

// Minutes, if searches walked the keys that belong together.
TEST(NQIndexHashTable, HostileKeysCostNoMoreThanOthers) {
  constexpr nqInt64 kCount = 1 << 18;
  const nqInt64 kSteps[] = {8, nqInt64{8} * 160201, nqInt64{1} << 44};
  for (const nqInt64 step : kSteps) {
    for (const bool descending : {false, true}) {
      NQIndexHashTable table(160201);
      table.update(3, 0);  // now no low bits are alike in all keys
      const auto keyOf = [&](nqInt64 number) {
        return step * (descending ? kCount - number : number);
      };
      for (nqInt64 number = 0; number < kCount; ++number) table.update(keyOf(number), 1);
      nqInt64 sum = 0;
      for (nqInt64 number = 0; number < kCount; ++number) {
        sum += table.lookup(keyOf(number)) + table.lookup(keyOf(number) + 1);
      }
      EXPECT_EQ(sum, kCount) << step;
    }
  }
}

TEST(NQIndexHashTable, FollowsTheCopyProtocol) {
  NQIndexHashTable sample(7, 16, -5);
  for (nqInt64 key = 0; key < 100; ++key) sample.update(key * 40, key);
  const auto sameShape = [](const NQIndexHashTable& a, const NQIndexHashTable& b) {
    return a.hashTableSize() == b.hashTableSize() && a.divisor() == b.divisor() &&
           a.errorValue() == b.errorValue();
  };
  checkCopyProtocol(
      sample,
      [] {
        auto other = std::make_unique<NQIndexHashTable>(3, 8, 2);
        other->update(1000000, 1000000);
        return other;
      },
      [&](const NQIndexHashTable& a, const NQIndexHashTable& b) {
        bool same = sameShape(a, b) && a.sizeOf() == b.sizeOf() &&
                    a.maxHashIndex() == b.maxHashIndex() &&
                    a.maxValueIndex() == b.maxValueIndex();
        NQIndexHashTable copy(b);
        for (nqInt64 key = 0; key < 100; ++key) same &= copy.lookup(key * 40) == key;
        return same && copy.lookup(20) == copy.errorValue();
      },
      [&](const NQIndexHashTable& a, const NQIndexHashTable& b) {
        return sameShape(a, b) && b.sizeOf() == 48 + 8 * 7 && b.maxHashIndex() == 0 &&
               b.maxValueIndex() == 0;
      });
}

}  // namespace

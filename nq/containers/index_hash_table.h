// index_hash_table.h -- a map from 64-bit keys to 64-bit values.
//
// Made for keys that are object addresses or other large, regularly spaced
// numbers: a key is divided by a fixed divisor, the spacing, and the quotient
// taken modulo the number of buckets, which the user chooses once (usually by
// nextPrimeNumber(); where that answers 0, 160201 serves: a table stays quick at
// any load). An absent key is answered with an error value of the user's choice.
// Entries are never removed one by one.
//
// Lookups and updates are O(1) on average, at any load and whatever the keys. An
// entry takes 24 to 50 bytes, and 40 to 80 more in a table that was searched.
// Entries for which there is no memory are not added, in copies too.
//
// A table made with a size below 1 or a divisor of 0 has no buckets: it takes
// nothing and answers every key with the error value.
//
// How it works
//   Each bucket heads a chain, newest entry first, in the order that copies keep.
//   A key above all that came before is new without a search, so increasing keys
//   are only pushed. Searches do not walk the chains: the first one makes a second
//   index over the entries, and each one first enters there what was pushed since
//   the last. Only when memory does not suffice for it are chains walked.

#ifndef NQ_CONTAINERS_INDEX_HASH_TABLE_H
#define NQ_CONTAINERS_INDEX_HASH_TABLE_H

#include <cstdlib>
#include <memory>

#include "nq/core/copy_protocol.h"

// An entry of an NQIndexHashTable.
struct NQIndexHash {
  nqInt64 key;
  nqInt64 value;
  NQIndexHash* next;  // in the same bucket, older
};

class NQ_EXPORT NQIndexHashTable : public NQObject {
  NQ_COPY_PROTOCOL(NQIndexHashTable)

 public:
  explicit NQIndexHashTable(nqLong hashTableSize = 3, nqLong divisor = 8,
                            nqLong errorValue = 0);
  ~NQIndexHashTable() override;

  nqLong errorValue() const { return errorValue_; }
  nqLong divisor() const { return divisor_; }
  nqLong hashTableSize() const { return hashTableSize_; }

  // The largest value and the largest key that were ever given to update(), 0 at
  // least. Neither is lowered when a value is replaced.
  nqInt64 maxValueIndex() const { return maxValueIndex_; }
  nqInt64 maxHashIndex() const { return maxHashIndex_; }

  // The established measure of a table, not the bytes in use: 48, 8 for each
  // bucket and 24 for each entry, at most 2^31 - 1.
  nqLong sizeOf() const;

  // The value of `key`, or the error value when it is absent. Not const, since it
  // brings the second index up to date.
  nqInt64 lookup(nqInt64 key);

  // Sets the value of `key`. Changes nothing when the table has no buckets, or a
  // new entry finds memory exhausted.
  void update(nqInt64 key, nqInt64 value);

  // Entry points kept for compatibility; they do nothing.
  void hashStatistics(const char* title) const;
  void debugOutput(int level) override;

 protected:
  void init();

 private:
  friend class NQTestPeer;

  struct Index;
  struct Entries;

  NQIndexHash** hashTable() const { return hashTable_.get(); }
  nqInt64 maxValueIndex(nqInt64 value) { return maxValueIndex_ = value; }
  nqInt64 maxHashIndex(nqInt64 key) { return maxHashIndex_ = key; }
  nqLong hash(nqInt64 key) const;
  bool updateIndex();
  NQIndexHash* walkFor(nqInt64 key) const;
  bool push(nqInt64 key, nqInt64 value);
  void makeBuckets(nqLong hashTableSize, nqLong divisor);
  void empty();

  using Buckets = std::unique_ptr<NQIndexHash*[], void (*)(void*)>;
  Buckets hashTable_{nullptr, std::free};  // null in a table without buckets
  std::unique_ptr<Entries> entries_;       // null exactly when hashTable_ is
  Index* index_ = nullptr;                 // that of entries_ while it is up to date
  nqLong hashTableSize_ = 0;               // the number of buckets
  nqLong divisor_ = 1;
  nqInt64 maxValueIndex_ = 0;
  nqInt64 maxHashIndex_ = 0;  // no key in the table is larger
  nqLong errorValue_ = 0;
};

#endif  // NQ_CONTAINERS_INDEX_HASH_TABLE_H

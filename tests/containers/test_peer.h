// test_peer.h -- the private members that the tests of the containers look at.

#ifndef NQ_TESTS_CONTAINERS_TEST_PEER_H
#define NQ_TESTS_CONTAINERS_TEST_PEER_H

#include "nq/containers/index_hash_table.h"

class NQTestPeer {
 public:
  static nqLong bucketOf(const NQIndexHashTable& table, nqInt64 key) {
    return table.hash(key);
  }
  static const NQIndexHash* chainOf(const NQIndexHashTable& table, nqLong bucket) {
    return table.hashTable()[bucket];
  }
  static bool hasBuckets(const NQIndexHashTable& table) {
    return table.hashTable() != nullptr;
  }
};

#endif  // NQ_TESTS_CONTAINERS_TEST_PEER_H

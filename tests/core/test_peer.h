// test_peer.h -- the private members that the tests of the core look at.

#ifndef NQ_TESTS_CORE_TEST_PEER_H
#define NQ_TESTS_CORE_TEST_PEER_H

#include "nq/core/string_handle.h"
#include "nq/core/string_pool.h"

class NQTestPeer {
 public:
  static char* pChangeableString(NQStringHandle& handle) {
    return handle.pChangeableString();
  }

  static nqLong decodeTableSizeOf(const NQStringPool& pool) {
    return pool.decodeTableSize();
  }
  static nqLong hashTableSizeOf(const NQStringPool& pool) { return pool.hashTableSize(); }
  static int caseSensitiveOf(const NQStringPool& pool) { return pool.caseSensitive(); }
};

#endif  // NQ_TESTS_CORE_TEST_PEER_H

// test_peer.h -- the private members that the tests of the core look at.

#ifndef NQ_TESTS_CORE_TEST_PEER_H
#define NQ_TESTS_CORE_TEST_PEER_H

#include "nq/core/string_handle.h"

class NQTestPeer {
 public:
  static char* pChangeableString(NQStringHandle& handle) {
    return handle.pChangeableString();
  }
};

#endif  // NQ_TESTS_CORE_TEST_PEER_H

// test_peer.h -- the friend through which tests look into an NQOMLFile and its tables.

#ifndef NQ_TESTS_SUPPORT_TEST_PEER_H
#define NQ_TESTS_SUPPORT_TEST_PEER_H

#include "nq/oml/file_state_internal.h"

class NQTestPeer {
 public:
  static nqdetail::FileState& state(const NQOMLFile& file) { return *file.state_; }
  static const NQOMLSyntaxObject* root(const NQOMLFile& file) { return state(file).root; }
  static nqLong places(const NQStringPool& pool) { return pool.decodeTableSize(); }
  static const char* idText(const NQOMLFile& file, nqLong index) {
    return state(file).names->ids.text(index);
  }
  // From now on there is no memory for the names of ids.
  static void exhaustIDs(const NQOMLFile& file) {
    state(file).names->ids.names_ = NQStringPool(0, 0, 1, 0);
  }
};

#endif  // NQ_TESTS_SUPPORT_TEST_PEER_H

// test_peer.h -- the private members that the tests of the resources look at.

#ifndef NQ_TESTS_RESOURCES_TEST_PEER_H
#define NQ_TESTS_RESOURCES_TEST_PEER_H

#include "nq/resources/resource.h"

class NQTestPeer {
 public:
  static const NQResource* previous(const NQResource& resource) {
    return resource.place_.previous;
  }
  static bool isStored(const NQResource& resource) {
    return resource.place_.cell != nullptr;
  }
  static void refCount(const NQResource& resource, nqLong count) {
    const_cast<NQResource&>(resource).refCount_ = count;
  }
};

#endif  // NQ_TESTS_RESOURCES_TEST_PEER_H

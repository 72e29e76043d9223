// resource_check.h -- what a resource database must hold, and what is wrong with it.

#ifndef NQ_TESTS_SUPPORT_RESOURCE_CHECK_H
#define NQ_TESTS_SUPPORT_RESOURCE_CHECK_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "nq/resources/resource.h"
#include "tests/resources/test_peer.h"

// A resource that a database is to store.
struct ExpectedResource {
  const NQResource* resource;
  nqLong holders;
  bool permanent;
};

// The first fault of a database that is to store these resources, in this order; ""
// when there is none.
inline std::string faultOf(NQResourceDB& database,
                           const std::vector<ExpectedResource>& expected) {
  const NQSList& list = *database.pResourceList();
  if (static_cast<std::size_t>(list.length()) != expected.size()) {
    return std::to_string(list.length()) + " resources, not " +
           std::to_string(expected.size());
  }
  nqLong position = 0;
  const NQResource* previous = nullptr;
  for (const NQObject* const object : list) {
    const ExpectedResource& wanted = expected[static_cast<std::size_t>(position++)];
    const NQResource* const resource = NQResource::castDown(object);
    const std::string at = "resource " + std::to_string(position) + ": ";
    if (resource != wanted.resource) return at + "not the one that belongs there";
    const nqLong count = wanted.holders + (wanted.permanent ? 0x3FFFFFFF : 0);
    if (resource->refCount() != count) {
      return at + std::to_string(resource->refCount()) + " holders, not " +
             std::to_string(count);
    }
    if (resource->permanent() != (wanted.permanent ? 1 : 0)) return at + "permanence";
    if (resource->pResourceDB() != &database) return at + "names another database";
    if (NQTestPeer::previous(*resource) != previous) return at + "its predecessor";
    if (previous != nullptr && previous->sortKey() > resource->sortKey()) {
      return at + "its key is below that of its predecessor";
    }
    if (resource->index() != position) return at + "its index";
    const std::unique_ptr<NQResource> equal(resource->cloneObject());
    if (database.index(equal.get()) != position) return at + "not found by its value";
    previous = resource;
  }
  return "";
}

#endif  // NQ_TESTS_SUPPORT_RESOURCE_CHECK_H

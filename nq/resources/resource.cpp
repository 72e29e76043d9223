#include "nq/resources/resource.h"

#include <cstddef>
#include <iterator>
#include <limits>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "nq/core/hash_internal.h"

struct NQResourceDB::Store {
  NQSList list;
  std::map<nqLong, NQResource*> lastOfKey;
  // Chains of resources, a power of two of them, at least kSpace for each resource: with
  // fewer, walks of unforeseeable length cost more than the table.
  using Buckets = std::vector<NQResource*>;
  static constexpr std::size_t kSpace = 4;
  Buckets buckets = Buckets(64);
  nqdetail::HashSeed seed = nqdetail::newHashSeed(this);

  NQResource*& bucket(std::uint32_t hash) { return buckets[hash & (buckets.size() - 1)]; }
  void addToTable(NQResource& resource);
  void removeFromTable(const NQResource& resource);
};

void NQResourceDB::Store::addToTable(NQResource& resource) {
  const auto add = [this](NQResource* one) {
    one->place_.nextOfHash = std::exchange(bucket(one->place_.hash), one);
  };
  if (kSpace * static_cast<std::size_t>(list.length()) > buckets.size()) {
    const auto old = std::exchange(buckets, Buckets(2 * buckets.size()));
    for (NQResource* first : old) {
      while (first != nullptr) add(std::exchange(first, first->place_.nextOfHash));
    }
  }
  add(&resource);
}

void NQResourceDB::Store::removeFromTable(const NQResource& resource) {
  NQResource** link = &bucket(resource.place_.hash);
  while (*link != &resource) link = &(*link)->place_.nextOfHash;
  *link = resource.place_.nextOfHash;
}

struct NQResourceDB::FileSupport {
  NQSList list;
  std::vector<const NQResource*> byNumber;                 // what the list holds
  std::unordered_map<const NQResource*, nqLong> numberOf;  // the first one of each
};

namespace {

// Those who hold a resource hold it as const; its database counts them.
NQResource* mutableResource(const NQResource* resource) {
  return const_cast<NQResource*>(resource);
}

}  // namespace

// ---- NQResource

NQ_COPY_ALIKE_IMPL(NQResource, NQObject)

void NQResource::copyFields(const NQResource& source) {
  if (pResourceDB_ == nullptr) pResourceDB_ = source.pResourceDB_;
}

NQResource::NQResource(const NQResource& source, NQDeepFlagEnum)
    : NQResource(source.pResourceDB_) {}

NQResource::NQResource(const NQResource& source) : NQResource(source.pResourceDB_) {}

NQResource& NQResource::operator=(const NQResource& source) {
  NQCopyAccess::copyObject(*this, &source);
  return *this;
}

NQResource::~NQResource() {
  cleanup();
}

void NQResource::copyObject(const NQObject* source) {
  NQCopyAccess::copyObject(*this, source);
}

void NQResource::copyAttributes(const NQObject* source) {
  NQCopyAccess::copyAttributes(*this, source);
}

NQResource* NQResource::cloneObject() const {
  return NQCopyAccess::cloneObject(this);
}

NQResource* NQResource::cloneAttributes() const {
  return NQCopyAccess::cloneAttributes(this);
}

NQResource* NQResource::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQResource>(object);
}

nqLong NQResource::index() const {
  return pResourceDB_ == nullptr ? -1 : pResourceDB_->index(this);
}

void NQResource::cleanup() {
  if (place_.cell != nullptr) pResourceDB_->unlink(*this);
}

nqInt64 NQResource::vHash() const {
  return sortKey();
}

// ---- NQResourceDB

NQResourceDB::NQResourceDB() : store_(std::make_unique<Store>()) {}

NQResourceDB::~NQResourceDB() {
  empty();
}

NQResourceDB* NQResourceDB::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQResourceDB>(object);
}

nqLong NQResourceDB::index(const NQResource* resource) const {
  return store_->list.positionOfObject(find(resource));
}

const NQSList* NQResourceDB::pResourceList() const {
  return &store_->list;
}

const NQResource* NQResourceDB::insert(const NQResource* resource) {
  if (resource == nullptr) return nullptr;
  NQResource* const given = mutableResource(resource);
  const std::uint32_t hash = hashOf(*given);
  NQResource* stored = stores(*given) ? given : find(*given, hash);
  if (stored == nullptr) {
    NQResource* const kept = given->refCount_ == 0 ? given : given->cloneObject();
    if (kept == nullptr) return nullptr;
    if (!store(*kept, hash)) {
      if (kept != given) delete kept;
      return nullptr;
    }
    stored = kept;
  } else if (stored != given && given->refCount_ == 0) {
    delete given;
  }
  countHolder(*stored);
  return stored;
}

void NQResourceDB::countHolder(NQResource& stored) {
  if (stored.refCount_ < std::numeric_limits<nqLong>::max()) ++stored.refCount_;
}

const NQResource* NQResourceDB::insertCopy(const NQResource& probe) {
  const std::uint32_t hash = hashOf(probe);
  NQResource* stored = find(probe, hash);
  if (stored == nullptr) {
    std::unique_ptr<NQResource> copy(probe.cloneObject());
    if (copy == nullptr || !store(*copy, hash)) return nullptr;
    stored = copy.release();
  }
  countHolder(*stored);
  return stored;
}

NQResource* NQResourceDB::remove(const NQResource* resource) {
  NQResource* const given = mutableResource(resource);
  if (given == nullptr || !stores(*given)) return given;
  if (given->refCount_ != NQResource::kPermanent) --given->refCount_;
  if (given->refCount_ > 0) return given->cloneObject();
  unlink(*given);
  return given;
}

int NQResourceDB::makePermanent(const NQResource* resource) {
  NQResource* const stored = find(resource);
  if (stored == nullptr) return 0;
  makePermanent(*stored);
  return 1;
}

int NQResourceDB::makeTransient(const NQResource* resource) {
  NQResource* const stored = find(resource);
  if (stored == nullptr) return 0;
  makeTransient(*stored);
  return 1;
}

void NQResourceDB::makeAllPermanent() {
  for (NQObject* const object : store_->list) {
    makePermanent(*NQResource::castDown(object));
  }
}

void NQResourceDB::makeAllTransient() {
  for (NQSListIter iter(&store_->list); iter;) {
    NQResource* const resource = NQResource::castDown(iter.pObject());
    ++iter;  // the resource may go
    makeTransient(*resource);
  }
}

int NQResourceDB::copyPermanent(const NQResourceDB* other) {
  if (other == nullptr || other == this) return 0;
  for (const NQObject* const object : other->store_->list) {
    const NQResource* const resource = NQResource::castDown(object);
    if (resource->permanent() != 0) makePermanent(insert(resource->cloneObject()));
  }
  return 1;
}

const NQResource* NQResourceDB::pDefaultResource() {
  if (pDefault_ == nullptr) {
    pDefault_ = insert(vNewResource());
    makePermanent(pDefault_);
  }
  return pDefault_;
}

void NQResourceDB::preFileSupport() {
  fileSupport_ = std::make_unique<FileSupport>();
}

nqLong NQResourceDB::insertForFileSupport(const NQResource* resource, int append) {
  if (fileSupport_ == nullptr || resource == nullptr) return -1;
  FileSupport& support = *fileSupport_;
  const auto next = static_cast<nqLong>(support.byNumber.size());
  const auto [known, isNew] = support.numberOf.try_emplace(resource, next);
  if (!isNew && append == 0) return known->second;
  support.list.appendObject(mutableResource(resource));
  support.byNumber.push_back(resource);
  return next;
}

const NQResource* NQResourceDB::pFileSupportResource(nqLong number) const {
  const bool given = fileSupport_ != nullptr && number >= 0 &&
                     number < static_cast<nqLong>(fileSupport_->byNumber.size());
  return given ? fileSupport_->byNumber[static_cast<std::size_t>(number)] : nullptr;
}

const NQSList* NQResourceDB::pResourceListForFileSupport() const {
  return fileSupport_ == nullptr ? nullptr : &fileSupport_->list;
}

void NQResourceDB::postFileSupport(int deleteResources) {
  const std::unique_ptr<FileSupport> ended = std::move(fileSupport_);
  if (ended == nullptr || deleteResources == 0) return;
  for (const NQResource* const resource : ended->byNumber) {
    if (ended->numberOf.erase(resource) > 0) delete resource;
  }
}

void NQResourceDB::empty() {
  postFileSupport(0);
  // Let go of all at once, which is quicker than one by one.
  const std::unique_ptr<Store> emptied = std::exchange(store_, std::make_unique<Store>());
  pDefault_ = nullptr;
  for (NQObject* const object : emptied->list) {
    NQResource* const resource = NQResource::castDown(object);
    resource->place_ = {};
    resource->refCount_ = 0;
    resource->pResourceDB_ = nullptr;
  }
  emptied->list.deleteAllCellsAndObjects();
}

bool NQResourceDB::stores(const NQResource& resource) const {
  return resource.place_.cell != nullptr && resource.pResourceDB_ == this;
}

std::uint32_t NQResourceDB::hashOf(const NQResource& resource) const {
  return nqdetail::hashKey(resource.vHash(), store_->seed);
}

NQResource* NQResourceDB::find(const NQResource& probe, std::uint32_t hash) const {
  NQResource* stored = store_->bucket(hash);
  for (; stored != nullptr; stored = stored->place_.nextOfHash) {
    if (stored->place_.hash == hash && stored->place_.key == probe.sortKey() &&
        probe.isEqual(stored) != 0)
      break;
  }
  return stored;
}

NQResource* NQResourceDB::find(const NQResource* resource) const {
  if (resource == nullptr) return nullptr;
  if (stores(*resource)) return mutableResource(resource);
  return find(*resource, hashOf(*resource));
}

bool NQResourceDB::store(NQResource& resource, std::uint32_t hash) {
  const nqLong key = resource.sortKey();
  const auto next = store_->lastOfKey.upper_bound(key);
  NQResource* const previous =
      next == store_->lastOfKey.begin() ? nullptr : std::prev(next)->second;
  NQSListCell* const cell = store_->list.addObject(
      previous == nullptr ? nullptr : previous->place_.cell, &resource);
  if (cell == nullptr) return false;
  if (NQSListCell* const after = cell->pNextCell()) {
    NQResource::castDown(after->pObject())->place_.previous = &resource;
  }
  resource.pResourceDB_ = this;
  resource.place_ = {cell, previous, nullptr, hash, key};
  store_->lastOfKey.insert_or_assign(next, key, &resource);
  store_->addToTable(resource);
  return true;
}

void NQResourceDB::unlink(NQResource& resource) {
  store_->removeFromTable(resource);
  const NQResource::Place place = std::exchange(resource.place_, {});
  NQSListCell* const before =
      place.previous == nullptr ? nullptr : place.previous->place_.cell;
  NQSListCell* const after = place.cell->pNextCell();
  delete store_->list.removeNextCell(before);
  if (after != nullptr) {
    NQResource::castDown(after->pObject())->place_.previous = place.previous;
  }
  const auto last = store_->lastOfKey.find(place.key);
  if (last->second == &resource) {
    if (place.previous != nullptr && place.previous->place_.key == place.key) {
      last->second = place.previous;
    } else {
      store_->lastOfKey.erase(last);
    }
  }
  resource.refCount_ = 0;
  resource.pResourceDB_ = nullptr;
  if (pDefault_ == &resource) pDefault_ = nullptr;
}

void NQResourceDB::makePermanent(NQResource& resource) {
  if (resource.permanent() == 0) resource.refCount_ += NQResource::kPermanent;
}

void NQResourceDB::makeTransient(NQResource& resource) {
  if (resource.permanent() == 0) return;
  resource.refCount_ -= NQResource::kPermanent;
  if (pDefault_ == &resource) pDefault_ = nullptr;
  if (resource.refCount_ <= 0) delete &resource;
}

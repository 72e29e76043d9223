#include "nq/oml/oml_object.h"

#include <cstdint>
#include <forward_list>
#include <limits>
#include <unordered_set>
#include <utility>

#include "nq/containers/dlist.h"
#include "nq/containers/index_hash_table.h"
#include "nq/oml/oml_file.h"

namespace {

NQOMLObject* omlObject(const NQDListIter& iter) {
  return static_cast<NQOMLObject*>(iter.pObject());
}

// What stands in a file for a number.
std::uint32_t writtenID(nqInt64 id) {
  return static_cast<std::uint32_t>(id);
}

}  // namespace

// What a walk over parts keeps of an object that it has reached.
struct NQOMLObject::Visit {
  Walk& walk;
  NQOMLObject* object;   // null once it is destroyed
  bool entered = false;  // its own parts are or were being visited
};

// One call from outside of preFileWrite or postFileWrite, with all that come of it.
// The hooks of an application may throw, and may destroy objects.
class NQOMLObject::Walk {
 public:
  Walk() = default;
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;
  ~Walk() {
    for (const Visit& visit : visits_) {
      if (visit.object != nullptr) visit.object->visit_ = nullptr;
    }
  }

  // Makes calls of the object part of this walk, unless another one has it.
  void reach(NQOMLObject& object) {
    if (object.visit_ != nullptr) return;
    visits_.push_front({*this, &object});
    object.visit_ = &visits_.front();
  }
  // Whether the parts of the object are still to be visited; asked once.
  bool enter(NQOMLObject& object) {
    reach(object);
    return !std::exchange(object.visit_->entered, true);
  }

 private:
  std::forward_list<Visit> visits_;
};

NQ_COPY_PROTOCOL_IMPL(NQOMLObject)
NQ_COPY_ALIKE_IMPL(NQOMLObject, NQObjectWithID)

void NQOMLObject::init() {
  iUserField_ = 0;
}

NQOMLObject::~NQOMLObject() {
  if (visit_ != nullptr) visit_->object = nullptr;
}

nqInt64 NQOMLObject::graphFileID() const {
  return iUserField_;
}

int NQOMLObject::isOMLObject() const {
  return 1;
}

NQOMLObject* NQOMLObject::pOMLOwner() const {
  return nullptr;
}

void NQOMLObject::preFileWrite(NQOMLFile* file) {
  Walk own;
  Walk& walk = visit_ == nullptr ? own : visit_->walk;
  if (!walk.enter(*this)) return;
  NQIndexHashTable* const table = file == nullptr ? nullptr : file->pIndexHashTable();
  prepareIDForGraphFile(table);
  NQDList parts;
  collectOwnedOMLObjects(parts);
  for (NQDListIter iter(&parts, NQ_FORWARD); iter; ++iter) {
    if (iter.pObject() == nullptr) continue;
    walk.reach(*omlObject(iter));
    omlObject(iter)->preFileWrite(file);
  }
  makeIDsUniqueForGraphFile(table, &parts);
}

void NQOMLObject::postFileWrite(NQOMLFile* file, NQFileCodeEnum result) {
  Walk own;
  Walk& walk = visit_ == nullptr ? own : visit_->walk;
  if (!walk.enter(*this)) return;
  finalizeIDAfterWrite(file, result);
  NQDList parts;
  collectOwnedOMLObjects(parts);
  for (NQDListIter iter(&parts, NQ_BACKWARD); iter; --iter) {
    if (iter.pObject() == nullptr) continue;
    walk.reach(*omlObject(iter));
    omlObject(iter)->postFileWrite(file, result);
  }
}

int NQOMLObject::readField(NQOMLSyntaxField*, NQOMLSyntaxObject*, NQOMLFile*) {
  return 0;
}

void NQOMLObject::preReadFields(NQOMLSyntaxObject*, NQOMLFile*) {}

void NQOMLObject::postReadFields(NQOMLSyntaxObject*, NQOMLFile*) {}

void NQOMLObject::finalizeIDForGraphFile() {
  iUserField_ = 0;
}

void NQOMLObject::prepareIDForGraphFile(NQIndexHashTable* table) {
  const auto address =
      static_cast<nqInt64>(reinterpret_cast<std::intptr_t>(static_cast<NQObject*>(this)));
  iUserField_ = address;
  if (table == nullptr) return;
  const nqInt64 known = table->lookup(address);
  if (known != table->errorValue()) iUserField_ = known;
}

void NQOMLObject::finalizeIDAfterWrite(NQOMLFile*, NQFileCodeEnum) {
  iUserField_ = 0;
}

void NQOMLObject::collectOwnedOMLObjects(NQDList&) {}

void NQOMLObject::makeIDsUniqueForGraphFile(NQIndexHashTable* table, NQDList* list) {
  constexpr nqInt64 kStep = 8;  // the spacing of numbers that are addresses
  if (table == nullptr || list == nullptr) return;
  NQIUserFieldDListSort().quickSort(list, 0);
  const std::uint32_t none = writtenID(table->errorValue());
  std::unordered_set<std::uint32_t> standing = {none, 0};
  for (NQDListIter iter(list, NQ_FORWARD); iter; ++iter) {
    if (iter.pObject() != nullptr)
      standing.insert(writtenID(omlObject(iter)->iUserField_));
  }
  nqInt64 last = table->maxValueIndex();
  const auto freshID = [&standing, &last] {
    do {
      constexpr nqInt64 kLargest = std::numeric_limits<nqInt64>::max();
      last = last > kLargest - kStep ? kStep : last + kStep;
    } while (!standing.insert(writtenID(last)).second);
    return last;
  };
  std::unordered_set<std::uint32_t> taken = {none};
  for (NQDListIter iter(list, NQ_FORWARD); iter; ++iter) {
    NQOMLObject* const object = omlObject(iter);
    if (object != nullptr && !taken.insert(writtenID(object->iUserField_)).second)
      object->iUserField_ = freshID();
  }
}

int NQIUserFieldDListSort::virtualCompare(NQDListCell* a, NQDListCell* b) {
  const NQOMLObject* const first = NQOMLObject::castDown(a->pObject());
  const NQOMLObject* const second = NQOMLObject::castDown(b->pObject());
  if (first == nullptr || second == nullptr) {
    return (first != nullptr ? 1 : 0) - (second != nullptr ? 1 : 0);
  }
  const nqInt64 left = first->iUserField();
  const nqInt64 right = second->iUserField();
  return left < right ? -1 : left > right ? 1 : 0;
}

void NQIUserFieldDListSort::virtualDebugOutputElement(NQDListCell*) {}

NQ_COPY_PROTOCOL_IMPL(NQOMLObjectTuple)
NQ_COPY_ALIKE_IMPL(NQOMLObjectTuple, NQObject)

void NQOMLObjectTuple::init() {
  pFirst_ = nullptr;
  pSecond_ = nullptr;
}

void NQOMLObjectTuple::copyFields(const NQOMLObjectTuple& source) {
  pFirst_ = source.pFirst_;
  pSecond_ = source.pSecond_;
}

#include "nq/oml/oml_object.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <vector>

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

// Sorts the objects of a list among its cells.
void sortByID(const NQDList& list) {
  std::vector<NQOMLObject*> objects;
  for (NQDListIter iter(&list, NQ_FORWARD); iter; ++iter) {
    if (iter.pObject() != nullptr) objects.push_back(omlObject(iter));
  }
  std::stable_sort(objects.begin(), objects.end(),
                   [](const NQOMLObject* a, const NQOMLObject* b) {
                     return a->iUserField() < b->iUserField();
                   });
  auto next = objects.begin();
  for (NQDListIter iter(&list, NQ_FORWARD); iter; ++iter) {
    if (iter.pObject() != nullptr) iter.pCell()->pObject(*next++);
  }
}

}  // namespace

NQ_COPY_PROTOCOL_IMPL(NQOMLObject)
NQ_COPY_ALIKE_IMPL(NQOMLObject, NQObjectWithID)

void NQOMLObject::init() {
  iUserField_ = 0;
  visited_ = false;
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
  if (visited_) return;
  NQIndexHashTable* const table = file == nullptr ? nullptr : file->pIndexHashTable();
  prepareIDForGraphFile(table);
  NQDList parts;
  collectOwnedOMLObjects(parts);
  visited_ = true;
  for (NQDListIter iter(&parts, NQ_FORWARD); iter; ++iter) {
    if (iter.pObject() != nullptr) omlObject(iter)->preFileWrite(file);
  }
  visited_ = false;
  makeIDsUniqueForGraphFile(table, &parts);
}

void NQOMLObject::postFileWrite(NQOMLFile* file, NQFileCodeEnum result) {
  if (visited_) return;
  finalizeIDForGraphFile(file, result);
  NQDList parts;
  collectOwnedOMLObjects(parts);
  visited_ = true;
  for (NQDListIter iter(&parts, NQ_BACKWARD); iter; --iter) {
    if (iter.pObject() != nullptr) omlObject(iter)->postFileWrite(file, result);
  }
  visited_ = false;
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

void NQOMLObject::finalizeIDForGraphFile(NQOMLFile*, NQFileCodeEnum) {
  iUserField_ = 0;
}

void NQOMLObject::collectOwnedOMLObjects(NQDList&) {}

void NQOMLObject::makeIDsUniqueForGraphFile(NQIndexHashTable* table, NQDList* list) {
  constexpr nqInt64 kStep = 8;  // the spacing of numbers that are addresses
  if (table == nullptr || list == nullptr) return;
  sortByID(*list);
  std::unordered_set<std::uint32_t> standing = {writtenID(table->errorValue())};
  for (NQDListIter iter(list, NQ_FORWARD); iter; ++iter) {
    if (iter.pObject() != nullptr)
      standing.insert(writtenID(omlObject(iter)->iUserField_));
  }
  std::unordered_set<std::uint32_t> taken = {writtenID(table->errorValue())};
  nqInt64 next = table->maxValueIndex() + kStep;
  for (NQDListIter iter(list, NQ_FORWARD); iter; ++iter) {
    NQOMLObject* const object = omlObject(iter);
    if (object == nullptr || taken.insert(writtenID(object->iUserField_)).second)
      continue;
    while (!standing.insert(writtenID(next)).second) next += kStep;
    object->iUserField_ = next;
    next += kStep;
  }
}

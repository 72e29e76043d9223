#include "nq/oml/definitions.h"

#include <new>

#include "nq/oml/grammar/section_path.h"

namespace nqdetail {

void IndexTable::insert(nqLong key, nqLong position) {
  if (std::size_t{2} * (taken_ + 1) > slots_.size()) {
    std::vector<Slot> old(slots_.empty() ? 8 : 2 * slots_.size());
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.position >= 0) place(slot);
    }
  }
  place({key, position});
  ++taken_;
}

void IndexTable::place(Slot slot) {
  std::uint32_t at = home(slot.key);
  while (slots_[at].position >= 0) at = (at + 1) & mask();
  slots_[at] = slot;
}

IndexList::~IndexList() {
  while (pFirst_ != nullptr) {
    const NQOMLDefIndexNode* const node = pFirst_;
    pFirst_ = node->next;
    delete node;
  }
}

bool IndexList::add(nqLong index) {
  if (contains(index)) return true;
  try {
    auto node = std::make_unique<NQOMLDefIndexNode>(NQOMLDefIndexNode{index, nullptr});
    if (index >= 0) table_.insert(index, 0);
    (pLast_ == nullptr ? pFirst_ : pLast_->next) = node.get();
    pLast_ = node.release();
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

bool IndexList::operator==(const IndexList& other) const {
  const NQOMLDefIndexNode* mine = pFirst_;
  const NQOMLDefIndexNode* theirs = other.pFirst_;
  while (mine != nullptr && theirs != nullptr && mine->index == theirs->index) {
    mine = mine->next;
    theirs = theirs->next;
  }
  return mine == theirs;  // both at the end
}

}  // namespace nqdetail

NQOMLDefScope::NQOMLDefScope() = default;
NQOMLDefScope::~NQOMLDefScope() = default;

NQOMLDefField* NQOMLDefScope::pFieldNumbered(nqLong number) const {
  constexpr nqLong kNumbers = 65536;  // number() has 16 bits
  const nqLong count = numberOfFields();
  if (number < 0 || number > count || number >= kNumbers) return nullptr;
  const nqLong newest = number + (count - number) / kNumbers * kNumbers;
  return newest == 0 ? nullptr : fields_[static_cast<std::size_t>(newest - 1)].get();
}

NQOMLDefSection* NQOMLDefScope::pSection(nqLong nameIndex) const {
  NQOMLDefSection* section = pSectionList();
  while (section != nullptr && section->nameIndex() != nameIndex) {
    section = section->pNext();
  }
  return section;
}

NQOMLDefScope* NQOMLDefObjType::pScope(nqULong sectionPath) {
  if (sectionPath == 0) return this;
  return pSectionAt(sectionPath);
}

NQOMLDefSection* NQOMLDefObjType::pSectionAt(nqULong sectionPath) const {
  const NQOMLDefScope* scope = this;
  NQOMLDefSection* section = nullptr;
  for (; sectionPath != 0; sectionPath >>= 4) {
    section = scope->pSectionNumbered(nqdetail::pathNumber(sectionPath, 0));
    if (section == nullptr) return nullptr;
    scope = section;
  }
  return section;
}

NQOMLDefField* NQOMLDefObjType::addField(NQOMLDefScope& scope, nqLong nameIndex,
                                         NQFieldTypeEnum fieldType, int required) {
  if (NQOMLDefField* const known = scope.pField(nameIndex)) {
    const bool same =
        known->fieldType_ == fieldType && known->required_ == (required != 0);
    return same ? known : nullptr;
  }
  try {
    std::unique_ptr<NQOMLDefField> field(
        new NQOMLDefField(nameIndex, fieldType, required));
    field->pNext_ = scope.pFieldList();
    field->number_ = static_cast<std::uint16_t>(scope.fields_.size() + 1);
    NQOMLDefField* const made = scope.fields_.emplace_back(std::move(field)).get();
    try {
      scope.fieldTable_.insert(nameIndex, scope.numberOfFields() - 1);
    } catch (const std::bad_alloc&) {
      scope.fields_.pop_back();
      return nullptr;
    }
    if (made->required_) {
      made->requiredNumber_ = numberOfRequiredFields() + 1;
      made->requiringType_ = this;
      made->pNextRequired_ = pRequiredList_;
      pRequiredList_ = made;
    }
    return made;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

bool NQOMLDefObjType::hasRoomForSection(const NQOMLDefSection* parent) const {
  const NQOMLDefScope& scope =
      parent == nullptr ? static_cast<const NQOMLDefScope&>(*this) : *parent;
  return scope.numberOfSections() < nqdetail::kMaxSectionNumber &&
         (parent == nullptr || parent->depth() < nqdetail::kPathLevels);
}

NQOMLDefSection* NQOMLDefObjType::addSection(NQOMLDefSection* parent, nqLong nameIndex) {
  NQOMLDefScope& scope = parent == nullptr ? static_cast<NQOMLDefScope&>(*this) : *parent;
  const nqULong path =
      nqdetail::extendPath(parent == nullptr ? 0 : parent->path(),
                           static_cast<nqULong>(scope.numberOfSections() + 1));
  try {
    std::unique_ptr<NQOMLDefSection> section(new NQOMLDefSection(
        nameIndex, path, nqdetail::pathDepth(path), scope.pSectionList(), parent));
    return scope.sections_.emplace_back(std::move(section)).get();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

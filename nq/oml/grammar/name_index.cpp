#include "nq/oml/grammar/name_index.h"

#include <new>

#include "nq/core/string_pool.h"
#include "nq/oml/grammar.h"
#include "nq/oml/grammar/names.h"

namespace nqdetail {

NameIndex::NameIndex(const NQOMLStatic& grammar) : index_(this) {
  const auto addPool = [this](const NQStringPool& pool, Rank rank,
                              NQOMLTokenTagEnum tag) {
    for (nqLong index = 0; index < pool.decodeTableMax(); ++index) {
      add(pool.decode(index), rank, {tag, index, 0});
    }
  };
  addPool(*grammar.pObjTypePool(), kObjectType, NQ_OML_OBJECT_TYPE_NAME);
  addPool(*grammar.pSectionPool(), kSection, NQ_OML_SECTION_NAME);
  addPool(*grammar.pFieldPool(), kField, NQ_OML_FIELD_NAME);
  addPool(*grammar.pEnumPool(), kEnumerator, NQ_OML_ENUMERATOR);
}

NameIndex::Entry* NameIndex::find(std::string_view name, std::uint32_t hash) {
  const nqLong code = index_.find(hash, [&](nqLong entry) {
    return isNamed(entries_[static_cast<std::size_t>(entry)].name, name);
  });
  return code < 0 ? nullptr : &entries_[static_cast<std::size_t>(code)];
}

void NameIndex::add(std::string_view name, Rank rank, const NameMeaning& meaning) {
  const std::uint32_t hash = hashText<true>(name.data(), name.size(), index_.seed());
  if (Entry* const entry = find(name, hash)) {
    if (rank < entry->rank) {
      entry->rank = rank;
      entry->meaning = meaning;
    }
    return;
  }
  const auto code = static_cast<nqLong>(entries_.size());
  if (!index_.reserve(entries_.size() + 1)) throw std::bad_alloc();
  Entry& entry = entries_.emplace_back(Entry{std::string(name), rank, meaning, nullptr});
  makeUpperCase(entry.name.data(), entry.name.size());
  entry.follower = &entry;
  index_.insert(hash, code);
}

const NameMeaning* NameIndex::lookup(std::string_view name) {
  Entry* entry = last_ == nullptr ? nullptr : last_->follower;
  if (entry == nullptr || !isNamed(entry->name, name)) {
    entry = find(name, hashText<true>(name.data(), name.size(), index_.seed()));
    if (entry == nullptr) return nullptr;
    if (last_ != nullptr) last_->follower = entry;
  }
  last_ = entry;
  return &entry->meaning;
}

void NameIndex::declareSection(std::string_view name, nqLong index) {
  add(name, kDeclaredSection, {NQ_OML_SECTION_NAME, index, 0});
}

void NameIndex::declareField(std::string_view name, nqLong index) {
  add(name, kDeclaredField, {NQ_OML_FIELD_NAME, index, 1});
}

}  // namespace nqdetail

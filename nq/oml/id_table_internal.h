// id_table_internal.h -- the ids of a read, as chains of components.
//
// An id such as "a,12,b" is a chain: the component b behind the id "a,12". Each
// chain has one entry, found by its last component and the entry of what stands
// before it, so that placing an id into a scope costs one look-up for each of its
// components and no text is put together. A component that is a 32-bit integer
// as "%ld" prints it is kept as that integer. Full ids begin with "$".
//
// Texts are made when somebody asks for them and stay valid as long as the table.

#ifndef NQ_OML_ID_TABLE_INTERNAL_H
#define NQ_OML_ID_TABLE_INTERNAL_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nq/core/hash_internal.h"
#include "nq/core/memory_internal.h"
#include "nq/core/string_pool.h"
#include "nq/oml/read_tables_internal.h"
#include "nq/oml/syntax_tree.h"

namespace nqdetail {

class IDTable final : public ObjectIDs {
 public:
  static constexpr nqLong kNone =
      -1;  // no id, and what stands before the first component
  static constexpr nqLong kDefaults = 0;  // "defaults"
  static constexpr nqLong kTop = 1;       // "$"

  IDTable();

  // The id that consists of one more component behind `scope`; it is entered when
  // it is new, and kNone when memory is exhausted.
  nqLong withName(std::string_view name, nqLong scope = kNone);
  nqLong withNumber(nqLong number, nqLong scope = kNone);
  // The id of a text whose components are joined by ",".
  nqLong withText(std::string_view text, nqLong scope = kNone);
  // The id in that scope: the scope's components, then those of `id`.
  nqLong inScope(nqLong id, nqLong scope);

  // Whether the text begins with "$".
  bool isFull(nqLong id) const {
    return isEntry(id) && (entries_[id].flags & kFull) != 0;
  }
  // Whether it is one component that does not begin so.
  bool isSimple(nqLong id) const {
    return isEntry(id) && entries_[id].scope == kNone && !isFull(id);
  }
  // The digits that end the text, with a sign that stands before them; 0 without.
  nqInt64 trailingNumber(nqLong id) const;

  // Ids that objects bear in the file by their own words.
  void markWritten(nqLong id) {
    if (isEntry(id)) entries_[id].flags |= kWritten;
  }
  bool isWritten(nqLong id) const {
    return isEntry(id) && (entries_[id].flags & kWritten) != 0;
  }

  const char* text(nqLong index) const override;
  NQOMLSyntaxObject* pSyntaxObject(nqLong index) const override {
    return isEntry(index) ? entries_[index].syntax : nullptr;
  }
  // The type of that node, told without a visit to it; -1 when there is none.
  nqLong typeIndex(nqLong index) const {
    return isEntry(index) ? entries_[index].typeIndex : -1;
  }
  NQObject* pObject(nqLong index) const override {
    return isEntry(index) ? entries_[index].object : nullptr;
  }
  // Nothing when there is no such entry.
  void pSyntaxObject(nqLong index, NQOMLSyntaxObject* syntax) {
    if (!isEntry(index)) return;
    entries_[index].syntax = syntax;
    entries_[index].typeIndex = syntax->typeIndex();
  }
  void pObject(nqLong index, NQObject* object) {
    if (isEntry(index)) entries_[index].object = object;
  }

 private:
  enum Flag : std::uint32_t { kNumber = 1, kFull = 2, kWritten = 4 };

  struct Entry {
    nqLong scope;
    nqLong component;  // a number, or an index in names_
    std::uint32_t flags;
    nqLong typeIndex;  // of the node
    NQOMLSyntaxObject* syntax;
    NQObject* object;
  };
  static_assert(sizeof(Entry) == 32, "two entries to a cache line");

  bool isEntry(nqLong index) const { return index >= 0 && index < entries_.size(); }
  nqLong enter(nqLong scope, nqLong component, std::uint32_t flags);
  // Puts the entries of an id's components into chain_, the last one first.
  void walkChain(nqLong id) const;

  BlockArray<Entry> entries_;
  HashIndex index_;
  NQStringPool names_;
  mutable std::unordered_map<nqLong, std::string> texts_;  // those asked for
  mutable std::vector<nqLong> chain_;                      // the last one walked
};

}  // namespace nqdetail

#endif  // NQ_OML_ID_TABLE_INTERNAL_H

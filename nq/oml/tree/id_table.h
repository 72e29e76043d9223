// id_table.h -- the ids of a read, as chains of components.
//
// An id such as "a,12,b" is a chain: the component b behind the id "a,12". Each
// chain has one entry, found by its last component and the entry of what stands
// before it, so that placing an id into a scope costs one look-up for each of its
// components and no text is put together. A component that is a 32-bit integer
// as "%ld" prints it is kept as that integer. Programs number what they write: of
// names such as "n17" the stem is stored once, and those that are numbered closely
// are found in a table by their number. An id of one component remembers where it
// was placed last, for most references are met in the same scope. Full ids begin
// with "$".
//
// Texts are made when somebody asks for them and stay valid as long as the table.

#ifndef NQ_OML_TREE_ID_TABLE_H
#define NQ_OML_TREE_ID_TABLE_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nq/core/hash_internal.h"
#include "nq/core/memory_internal.h"
#include "nq/core/string_pool.h"
#include "nq/oml/syntax_tree.h"
#include "nq/oml/tree/read_tables.h"

class NQTestPeer;

namespace nqdetail {

class IDTable final : public ObjectIDs {
 public:
  static constexpr nqLong kNone =
      -1;  // no id, and what stands before the first component
  static constexpr nqLong kDefaults = 0;  // "defaults"
  static constexpr nqLong kTop = 1;       // "$"

  IDTable();

  // The id that consists of one more component behind `scope`; it is entered when
  // it is new, and kNone when memory is exhausted. A name has no zero byte.
  nqLong withName(std::string_view name, nqLong scope = kNone);
  nqLong withNumber(nqLong number, nqLong scope = kNone);
  // Whether an id could not be entered for lack of memory.
  bool exhausted() const { return exhausted_; }
  // The id of a text whose components are joined by ",".
  nqLong withText(std::string_view text, nqLong scope = kNone);
  // The id in that scope: the scope's components, then those of `id`.
  nqLong inScope(nqLong id, nqLong scope);
  // The same for a reference in an object's scope, with the type of the node of the
  // id that results, -1 when there is none; a full id stays. What was told of an id
  // must not change any more.
  nqLong referenceInScope(nqLong id, nqLong scope, nqLong& typeIndex);
  // Has the processor fetch what is known of the ids that the first fields of the
  // object behind the current one name: references lead all over the table.
  void prefetchReferencesBehind(const NQOMLSyntaxObjectIter& current) const;

  // Whether the text begins with "$".
  bool isFull(nqLong id) const { return isEntry(id) && entries_[id].full; }
  // Whether it is one component that does not begin so.
  bool isSimple(nqLong id) const { return isEntry(id) && entries_[id].isSimple(); }
  // The digits that end the text, with a sign that stands before them; 0 without.
  nqInt64 trailingNumber(nqLong id) const;

  // Ids that objects bear in the file by their own words.
  void markWritten(nqLong id) {
    if (isEntry(id)) entries_[id].written = 1;
  }
  bool isWritten(nqLong id) const { return isEntry(id) && entries_[id].written; }

  const char* text(nqLong index) const override;
  NQOMLSyntaxObject* pSyntaxObject(nqLong index) const override {
    return isEntry(index) && !entries_[index].isSimple() ? entries_[index].syntax
                                                         : nullptr;
  }
  NQObject* pObject(nqLong index) const override {
    return isEntry(index) ? entries_[index].object : nullptr;
  }
  // Nothing when there is no such entry; an id of one component has no node.
  void pSyntaxObject(nqLong index, NQOMLSyntaxObject* syntax) {
    if (!isEntry(index) || entries_[index].isSimple()) return;
    entries_[index].syntax = syntax;
    entries_[index].typeIndex = syntax->typeIndex();
  }
  void pObject(nqLong index, NQObject* object) {
    if (isEntry(index)) entries_[index].object = object;
  }

 private:
  friend class ::NQTestPeer;

  // A name, with the number that ends it, or a number by itself.
  struct Component {
    std::uint32_t stem;  // kNoStem, or the name's index in names_ plus one
    nqLong number;       // kNoNumber behind a stem that is the whole name
  };
  static constexpr std::uint32_t kNoStem = 0;
  static constexpr std::uint32_t kMostStems = (std::uint32_t{1} << 30) - 1;
  static constexpr nqLong kNoNumber = -1;

  // The ids of one component that share a stem. Numbers that lie close enough are
  // found in a table, which is smaller than the index and needs no comparison.
  struct Family {
    std::vector<nqLong> numbered;  // by number; kNone where there is none yet
    nqLong bare = kNone;           // the stem by itself
    std::uint32_t count = 0;       // of those with a number
    bool scattered = false;        // some of these are in the index
  };

  struct Placed {
    nqLong scope;
    nqLong id;
  };
  struct Entry {
    nqLong scope;
    nqLong number;
    std::uint32_t stem : 30;
    std::uint32_t full : 1;
    std::uint32_t written : 1;
    nqLong typeIndex;  // of the node; of a simple id, of that of the id in `placed`
    union {
      NQOMLSyntaxObject* syntax;  // unless the id is simple:
      Placed placed;              // the id that it was in a scope the last time
    };
    NQObject* object;

    bool isSimple() const { return scope == kNone && !full; }
  };
  static_assert(sizeof(Entry) == 32, "two entries to a cache line");

  bool isEntry(nqLong index) const { return index >= 0 && index < entries_.size(); }
  nqLong enter(nqLong scope, const Component& component);
  nqLong exhaust() {
    exhausted_ = true;
    return kNone;
  }
  // Where the id of that component alone is noted; null when it is in the index.
  nqLong* placeOf(const Component& component);
  static bool isBare(const Component& component) {
    return component.stem != kNoStem && component.number == kNoNumber;
  }
  const char* stemOf(std::uint32_t stem) const {
    return names_.decode(static_cast<nqLong>(stem) - 1);  // "" for kNoStem
  }
  // Adds the text of an entry's component.
  void appendComponent(std::string& text, const Entry& entry) const;
  // Puts the entries of an id's components into chain_, the last one first.
  void walkChain(nqLong id) const;

  BlockArray<Entry> entries_;
  HashIndex index_;  // of ids of more than one component, and of scattered ones
  std::size_t numberInIndex_ = 0;
  bool exhausted_ = false;
  NQStringPool names_;                                     // stems
  std::vector<Family> families_;                           // by stem
  mutable std::unordered_map<nqLong, std::string> texts_;  // those asked for
  mutable std::vector<nqLong> chain_;                      // the last one walked
};

}  // namespace nqdetail

#endif  // NQ_OML_TREE_ID_TABLE_H

// id_table.h -- the ids of a read, as chains of components.
//
// An id such as "a,12,b" is a chain: the component b behind the id "a,12". A component
// by itself is a simple id and has an entry, and so has each chain, found by its last
// component and the id of what stands before it: placing an id into a scope costs one
// look-up for each of its components, and no text is put together. Most components
// stand in one scope only: the chain that is the first to end in a component shares
// the component's entry, so that an object has one entry however often it is
// mentioned.
//
// A component that is a 32-bit integer as "%ld" prints it is kept as that integer, and
// of names such as "n17" the stem is stored once; numbers are found in tables of their
// own (number_table.h). Full ids begin with "$".
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
#include "nq/oml/tree/number_table.h"
#include "nq/oml/tree/read_tables.h"

class NQTestPeer;

namespace nqdetail {

class IDTable final : public ObjectIDs {
 public:
  static constexpr nqLong kNone =
      -1;  // no id, and what stands before the first component
  static constexpr nqLong kDefaults = 0;  // "defaults"
  static constexpr nqLong kTop = 2;       // "$"

  IDTable();

  // The id that consists of one more component behind `scope`; it is entered when
  // it is new, and kNone when memory is exhausted. A name has no zero byte.
  nqLong withName(std::string_view name, nqLong scope = kNone);
  nqLong withNumber(nqLong number, nqLong scope = kNone);
  // Whether an id could not be entered, or its text made, for lack of memory.
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
  bool isFull(nqLong id) const {
    return isEntry(id) && (isShared(id) ? entry(id).sharedFull : entry(id).full) != 0;
  }
  // Whether it is one component that does not begin so.
  bool isSimple(nqLong id) const { return isComponent(id) && !entry(id).full; }
  // The digits that end the text, with a sign that stands before them; 0 without.
  nqInt64 trailingNumber(nqLong id) const;

  // The full ids that are written in the file.
  void markWritten(nqLong id) {
    if (isEntry(id)) entry(id).written = 1;
  }
  bool isWritten(nqLong id) const { return isEntry(id) && entry(id).written; }

  // Simple ids have neither a node nor an object.
  const char* text(nqLong index) const override;
  const char* writtenText(nqLong index) const override;
  NQOMLSyntaxObject* pSyntaxObject(nqLong index) const override {
    return isTarget(index) ? entry(index).syntax : nullptr;
  }
  NQObject* pObject(nqLong index) const override {
    return isTarget(index) ? entry(index).object : nullptr;
  }
  // Nothing when there is no such entry.
  void pSyntaxObject(nqLong index, NQOMLSyntaxObject* syntax) {
    if (!isTarget(index)) return;
    entry(index).syntax = syntax;
    entry(index).typeIndex = syntax->typeIndex();
  }
  void pObject(nqLong index, NQObject* object) {
    if (isTarget(index)) entry(index).object = object;
  }

 private:
  friend class ::NQTestPeer;

  // A name, with the number that ends it, or a number by itself.
  struct Component {
    std::uint32_t stem;  // kNoStem, or the name's index in names_ plus one
    nqLong number;       // kNoNumber behind a stem that is the whole name
  };
  static constexpr std::uint32_t kNoStem = 0;
  static constexpr std::uint32_t kMostStems = (std::uint32_t{1} << 29) - 1;
  static constexpr nqLong kNoNumber = -1;

  // What is known of the simple ids that share a stem.
  struct Stem {
    nqLong bare = kNone;     // the stem by itself
    nqLong numbers = kNone;  // in numbers_, of those that end in a number
  };

  struct Entry {
    // What stands before the component: of a chain, or of the one that shares the entry
    // of a simple id; kNone when none does.
    nqLong scope;
    nqLong number;
    std::uint32_t stem : 29;
    std::uint32_t full : 1;
    std::uint32_t sharedFull : 1;  // whether the chain that shares the entry is full
    std::uint32_t written : 1;
    nqLong typeIndex;           // of the node; -1 without one
    NQOMLSyntaxObject* syntax;  // of the chain, never of a simple id
    NQObject* object;
  };
  static_assert(sizeof(Entry) == 32, "two entries to a cache line");

  // An id is twice the number of a component's entry for that component, and one more
  // for the chain that shares it; other chains begin at kChains.
  static constexpr nqLong kChains = nqLong{1} << 30;
  static bool isChain(nqLong id) { return id >= kChains; }
  static bool isShared(nqLong id) { return !isChain(id) && id % 2 != 0; }

  bool isEntry(nqLong id) const {
    return isChain(id) ? id - kChains < chains_.size()
                       : id >= 0 && id / 2 < components_.size();
  }
  bool isComponent(nqLong id) const {
    return isEntry(id) && !isChain(id) && !isShared(id);
  }
  // Whether a node and an object may be known for it.
  bool isTarget(nqLong id) const { return isEntry(id) && !isSimple(id); }
  Entry& entry(nqLong id) const {
    return isChain(id) ? chains_[id - kChains] : components_[id / 2];
  }
  nqLong scopeOf(nqLong id) const {
    return isChain(id) || isShared(id) ? entry(id).scope : kNone;
  }

  // The last component of an id.
  nqLong simpleOf(nqLong id) {
    return isChain(id) ? enter({entry(id).stem, entry(id).number}) : id - id % 2;
  }

  // The simple id of a component, and the chain that ends in it; entered when new.
  nqLong enter(const Component& component);
  nqLong enter(nqLong scope, nqLong simple);
  nqLong enterChain(nqLong scope, const Component& component);
  nqLong exhaust() {
    exhausted_ = true;
    return kNone;
  }
  // Where the simple id of a component is noted; null when memory is exhausted.
  nqLong* placeOf(const Component& component);
  // The stem of a text, kNoStem when memory is exhausted.
  std::uint32_t stemFor(std::string_view text);
  static bool isBare(const Component& component) {
    return component.stem != kNoStem && component.number == kNoNumber;
  }
  const char* stemOf(std::uint32_t stem) const {
    return names_.decode(static_cast<nqLong>(stem) - 1);  // "" for kNoStem
  }
  // The text in texts_ under a key, as `make` puts it together when it is missing.
  template <class Make>
  const char* kept(nqLong key, const Make& make) const;
  // Adds the text of an entry's component.
  void appendComponent(std::string& text, const Entry& entry) const;
  // Puts the ids of which `id` is put together into chain_, the longest first.
  void walkChain(nqLong id) const;

  BlockArray<Entry> components_;
  BlockArray<Entry> chains_;
  HashIndex index_;  // of chains_
  mutable bool exhausted_ = false;
  NQStringPool names_;                // stems
  std::vector<Stem> stems_;           // by stem
  std::vector<NumberTable> numbers_;  // of the stems that have any
  std::uint32_t lastStem_ = kNoStem;  // the last one looked up
  // Those asked for, of whole ids by the id, of their last components by its complement.
  mutable std::unordered_map<nqLong, std::string> texts_;
  mutable std::vector<nqLong> chain_;  // the last one walked
};

}  // namespace nqdetail

#endif  // NQ_OML_TREE_ID_TABLE_H

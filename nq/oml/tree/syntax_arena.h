// syntax_arena.h -- the memory of a reader's syntax tree.
//
// The arena makes nodes with everything that belongs to them in one piece: an
// object or a field with its list cell. A node is still to be added to its parent.
// clear() frees a tree of any size without visiting it; only the binary values, and
// nodes that somebody made with new and added to the tree, are deleted one by one.

#ifndef NQ_OML_TREE_SYNTAX_ARENA_H
#define NQ_OML_TREE_SYNTAX_ARENA_H

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "nq/core/memory_internal.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/syntax_tree.h"

namespace nqdetail {

// The lists of a long chain of defaults, so that joining many blocks into one
// object costs no walk along the chain for each.
class DefaultsIndex {
 public:
  NQOMLSyntaxDefaultList* pLast = nullptr;
  std::unordered_set<const NQOMLSyntaxFieldList*> lists;
};

class SyntaxArena {
 public:
  SyntaxArena() = default;
  SyntaxArena(const SyntaxArena&) = delete;
  SyntaxArena& operator=(const SyntaxArena&) = delete;
  ~SyntaxArena() { clear(); }

  // The kind equal to `kind`, in whose place it serves; null when memory is exhausted.
  NodeKind* kindOf(NodeKind kind);
  // New nodes, of a kind that lies here; null when memory is exhausted. The field takes
  // a copy of `token`, whose binary value it then owns (not when the answer is null).
  NQOMLSyntaxObject* makeObject(NodeKind* kind, nqLong line, nqLong column,
                                nqLong objectIDIndex);
  NQOMLSyntaxField* makeField(NodeKind* kind, nqLong line, nqLong column,
                              const NQOMLToken& token);

  // The current field of an iterator; a view of a field with wildcards as a copy that
  // lives as long as the nodes, the same for each visit.
  NQOMLSyntaxField* lasting(const NQOMLSyntaxFieldIter& iter) {
    return iter.section_ == nullptr ? iter.pWrittenField() : lastingView(iter);
  }

  // Destroys all nodes, those that were never added to a parent included.
  void clear();

  // For the nodes themselves.
  NQOMLSyntaxDefaultList* makeDefaultList(NQOMLSyntaxFieldList* fields,
                                          NQOMLSyntaxDefaultList* next);
  DefaultsIndex* makeDefaultsIndex();
  // `holder`, which lies here, owns something that was made with new.
  void noteHeapNodes(NQOMLSyntaxObject* holder) { holders_.push_back(holder); }
  bool hasHeapNodes() const { return !holders_.empty(); }
  // The cell that a node brings along; null for one made with new.
  static NQOMLSyntaxObjectList* cellOf(NQOMLSyntaxObject* object);
  static NQOMLSyntaxFieldList* cellOf(NQOMLSyntaxField* field);

 private:
  NQOMLSyntaxField* lastingView(const NQOMLSyntaxFieldIter& iter);

  struct ObjectRecord;
  struct FieldRecord;

  // Objects lie side by side, since every stage of a read walks over them.
  std::optional<Arena> objects_;  // absent when there is no node
  std::optional<Arena> fields_;   // also of kinds and defaults
  // Kinds met of late, by a hash; what is forgotten is made once more.
  std::array<NodeKind*, 256> kinds_ = {};
  std::vector<std::unique_ptr<NQOMLBinValue>> binValues_;
  // By the field with wildcards and the path of the section.
  std::map<std::pair<const NQOMLSyntaxField*, nqULong>, NQOMLSyntaxField*> views_;
  std::vector<std::unique_ptr<DefaultsIndex>> defaultsIndices_;
  std::vector<NQOMLSyntaxObject*> holders_;  // some of them perhaps emptied by now
};

}  // namespace nqdetail

#endif  // NQ_OML_TREE_SYNTAX_ARENA_H

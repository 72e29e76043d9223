// syntax_arena.h -- the memory of a reader's syntax tree.
//
// The arena makes nodes with everything that belongs to them in one piece: an
// object or a field with its list cell. A node is still to be added to its parent.
// clear() frees a tree of any size without visiting it; only the binary values, and
// nodes that somebody made with new and added to the tree, are deleted one by one.

#ifndef NQ_OML_TREE_SYNTAX_ARENA_H
#define NQ_OML_TREE_SYNTAX_ARENA_H

#include <memory>
#include <optional>
#include <unordered_set>
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

  // New nodes; null when memory is exhausted. The arguments are those of the
  // nodes' constructors. The field takes a copy of `token`, whose binary value it
  // then owns (not when the answer is null).
  NQOMLSyntaxObject* makeObject(NQOMLFile* file, nqLong line, int position,
                                nqLong fileNameIndex, nqLong typeIndex,
                                nqLong objectIDIndex, nqLong sectionIDIndex,
                                nqULong sectionPath, NQOMLDefObjType* defObjType);
  NQOMLSyntaxField* makeField(NQOMLFile* file, nqLong line, int position,
                              nqLong fileNameIndex, nqLong nameIndex,
                              nqLong sectionIDIndex, nqULong sectionPath,
                              const NQOMLToken& token, NQOMLDefField* defField,
                              int unchecked);

  // Destroys all nodes, those that were never added to a parent included.
  void clear();

  // For the nodes themselves.
  NQOMLSyntaxDefaultList* makeDefaultList(NQOMLSyntaxFieldList* fields,
                                          NQOMLSyntaxDefaultList* next);
  DefaultsIndex* makeDefaultsIndex();
  // `holder`, which lies here, owns something that was made with new.
  void noteHeapNodes(NQOMLSyntaxObject* holder) { holders_.push_back(holder); }
  bool hasHeapNodes() const { return !holders_.empty(); }
  static NQOMLSyntaxObjectList* cellOf(NQOMLSyntaxObject* object);
  static NQOMLSyntaxFieldList* cellOf(NQOMLSyntaxField* field);

 private:
  struct FieldRecord;

  std::optional<Arena> memory_;  // absent when there is no node
  std::vector<std::unique_ptr<NQOMLBinValue>> binValues_;
  std::vector<std::unique_ptr<DefaultsIndex>> defaultsIndices_;
  std::vector<NQOMLSyntaxObject*> holders_;  // some of them perhaps emptied by now
};

}  // namespace nqdetail

#endif  // NQ_OML_TREE_SYNTAX_ARENA_H

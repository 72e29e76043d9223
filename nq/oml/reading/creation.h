// creation.h -- the tree to application objects.
//
// Receives a tree that the semantic pass has found good. Has the application make
// its objects, parents first and in reading order, and then fill them field by
// field. The objects belong to the application from the moment it returns them,
// also when the read ends early; after that no hook is called any more.

#ifndef NQ_OML_READING_CREATION_H
#define NQ_OML_READING_CREATION_H

#include "nq/containers/index_hash_table.h"
#include "nq/oml/diagnostics/diagnostics.h"
#include "nq/oml/reading/read_hooks.h"
#include "nq/oml/syntax_tree.h"
#include "nq/oml/tree/id_table.h"
#include "nq/oml/tree/syntax_arena.h"

namespace nqdetail {

// The outermost object: what the caller of a read gives and wants to be its type,
// and what the read has made or taken.
struct TopObject {
  NQObject* given = nullptr;  // null: the application makes it
  nqLong givenType = -1;
  NQObject* object = nullptr;
  nqLong type = -1;  // -1 until there is one
};

// Files `replacement` as the object of the id of `syntax`, after destroying `old` unless
// both are the same, and its number, if there is a table for them.
void updateObject(IDTable& ids, NQIndexHashTable* numbers, nqLong objectIDIndex,
                  NQObject* old, NQObject* replacement);

class ObjectCreation {
 public:
  // `tree` holds the nodes; `numbers` may be null.
  ObjectCreation(ReadHooks& hooks, SyntaxArena& tree, IDTable& ids,
                 Diagnostics& diagnostics, TopObject& top, NQIndexHashTable* numbers)
      : hooks_(hooks),
        tree_(tree),
        ids_(ids),
        diagnostics_(diagnostics),
        top_(top),
        numbers_(numbers) {}

  void execute(NQOMLSyntaxObject& root);

 private:
  // Also for lack of memory for the text of an id, which its reader could not tell.
  bool ended() const { return diagnostics_.ended() || ids_.exhausted(); }
  bool failed() const { return diagnostics_.failed() || ended(); }

  void createAllObjects(NQOMLSyntaxObject& object);
  void createTopObject(NQOMLSyntaxObject& object);
  void createOwnedObjects(NQOMLSyntaxObject& syntax, NQOMLSyntaxObject& ownerSyntax);
  // Whether every field was taken.
  bool setOwnedFields(NQOMLSyntaxObject& syntax, NQOMLSyntaxObject& ownerSyntax);
  // Asked for before each hook: any of them may put another in its place.
  NQObject* objectOf(const NQOMLSyntaxObject& syntax) const {
    return ids_.pObject(syntax.objectIDIndex());
  }
  void fatalError(const NQOMLSyntaxObject& where, int code) {
    diagnostics_.fatalError({where.fileNameIndex(), where.line(), where.column()}, code);
  }

  ReadHooks& hooks_;
  SyntaxArena& tree_;
  IDTable& ids_;
  Diagnostics& diagnostics_;
  TopObject& top_;
  NQIndexHashTable* numbers_;
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_CREATION_H

// semantics.h -- defaults, ids, references and required fields.
//
// Receives the tree of a read without errors, and the table of its ids. Leaves
// each object under its full id, blocks of the same id joined into one, and each
// reference turned into the full id of an object that exists. Reports what does
// not fit together; a stage begins only while nothing was reported.

#ifndef NQ_OML_READING_SEMANTICS_H
#define NQ_OML_READING_SEMANTICS_H

#include <cstdint>
#include <vector>

#include "nq/oml/diagnostics/diagnostics.h"
#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/grammar.h"
#include "nq/oml/reading/read_hooks.h"
#include "nq/oml/syntax_tree.h"
#include "nq/oml/tree/id_table.h"

namespace nqdetail {

class SemanticPass {
 public:
  // Defaults may hand on `maxInherited` fields, and more in proportion to `bytesRead`,
  // how long the files were.
  SemanticPass(ReadHooks& hooks, const NQOMLStatic& grammar, IDTable& ids,
               Diagnostics& diagnostics, std::int64_t maxInherited,
               std::int64_t bytesRead)
      : hooks_(hooks),
        grammar_(grammar),
        ids_(ids),
        diagnostics_(diagnostics),
        maxInherited_(maxInherited),
        extraInherited_(kInheritablePerByte * bytesRead) {}

  void checkSemantics(NQOMLSyntaxObject& root);

 private:
  // Fields handed on from defaults to objects, in all: a small file can demand
  // a number of them that grows with the square of its size. The shortest object
  // takes some eight bytes, and so may always inherit five hundred.
  static constexpr std::int64_t kInheritablePerByte = 64;

  bool failed() const { return diagnostics_.failed() || diagnostics_.ended(); }

  // Makes the fields of each block of defaults a list of defaults of the objects
  // inside it.
  void collectDefaultFields(NQOMLSyntaxObject& object);
  // Gives the objects below `object` that bear an id by their own words their full
  // ids, which are marked as such. An object without an id, and what it contains,
  // is left for later.
  void registerWrittenIDs(NQOMLSyntaxObject& object, nqLong scope);
  // Numbers the objects below `object` that have no id yet, and joins those that
  // have the same.
  void collectObjects(NQOMLSyntaxObject& object, nqLong scope, nqLong& anonymousCounter);
  nqLong fullObjectScopeIDIndex(NQOMLSyntaxObject& object, nqLong scope,
                                nqLong& anonymousCounter);
  // Resolves references and misses required fields, in `object`, whose scope is
  // `scope`, and in all inside it.
  void checkRequiredFields(NQOMLSyntaxObject& object, nqLong objectID, nqLong scope);
  // Makes the value of a field, as it was written, the full id that it refers to.
  void checkObjectDefinition(NQOMLSyntaxField& field, const NQOMLDefField& definition,
                             nqLong scope);
  bool checkObjectsForApplication(NQOMLSyntaxObject& object);

  static Place placeOf(const NQOMLSyntaxStruct& node) {
    return {node.fileNameIndex(), node.line(), node.column()};
  }
  void error(const NQOMLSyntaxStruct& where, int code, const char* argument = nullptr) {
    diagnostics_.error(placeOf(where), code, argument);
  }
  void memoryExhausted(const NQOMLSyntaxStruct& where) {
    diagnostics_.fatalError(placeOf(where), kMemoryExhausted);
  }

  ReadHooks& hooks_;
  const NQOMLStatic& grammar_;
  IDTable& ids_;
  Diagnostics& diagnostics_;
  std::int64_t maxInherited_;
  std::int64_t extraInherited_;
  std::int64_t inherited_ = 0;  // so far
  // For each required field of a type, by its number, the last object in which it
  // was seen, counted by numberOfObjects_.
  std::vector<std::int64_t> seen_;
  std::int64_t numberOfObjects_ = 0;
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_SEMANTICS_H

// tree.h -- the tree of a read file: what it says, whatever wrote it.

#ifndef NQ_TOOLS_NQOML_TREE_H
#define NQ_TOOLS_NQOML_TREE_H

#include "nq/oml/oml_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nqoml {

// The id that is the value of a field, valid while the texts of the tree are.
const char* idText(const NQOMLSyntaxField& field);

// What two trees have in common exactly when the same objects, with the same fields
// and defaults, are made of them.
struct TreeSummary {
  std::uint64_t digest = 0;   // of everything but the reals
  std::vector<double> reals;  // in their order
  std::int64_t nodes = 0;
};

// To be called while the texts of the tree are valid.
TreeSummary summarize(const NQOMLSyntaxObject& root);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_TREE_H

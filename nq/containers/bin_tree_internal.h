// bin_tree_internal.h -- the cell that stands for every missing child of every tree.

#ifndef NQ_CONTAINERS_BIN_TREE_INTERNAL_H
#define NQ_CONTAINERS_BIN_TREE_INTERNAL_H

#include "nq/containers/bin_tree.h"

namespace nqdetail {

// Made before anything runs and never destroyed, so that any tree may refer to it.
union TreeSentinel {
  constexpr TreeSentinel() : cell(nullptr, 2) {}
  constexpr ~TreeSentinel() {}  // NOLINT(modernize-use-equals-default): cell has one

  NQBinTreeCell cell;
};
extern const TreeSentinel kTreeSentinel;

}  // namespace nqdetail

inline NQBinTreeCell* NQBinTree::sentinel() {
  return const_cast<NQBinTreeCell*>(&nqdetail::kTreeSentinel.cell);
}
inline bool NQBinTree::isReal(const NQBinTreeCell* child) {
  return child != sentinel();
}

#endif  // NQ_CONTAINERS_BIN_TREE_INTERNAL_H

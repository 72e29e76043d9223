// syntax_tree.h -- an OML file as a tree of nodes, before any object is made.
//
// Reading hooks receive these nodes: an NQOMLSyntaxObject for each object block
// and an NQOMLSyntaxField for each value, with the place in a file where it
// stood.
//
// An object owns its children and fields, a field its binary value. A reader keeps its
// tree in one piece of memory that goes as a whole: a node that a reader made is never
// deleted by hand, and must not outlive the reader's next read. Nodes made with new may
// be added to any tree, which then owns them.
//
// Adding is O(1). Destroying is iterative, however long or deep the tree.

#ifndef NQ_OML_SYNTAX_TREE_H
#define NQ_OML_SYNTAX_TREE_H

#include "nq/oml/syntax_iter.h"
#include "nq/oml/syntax_list.h"
#include "nq/oml/syntax_node.h"

#endif  // NQ_OML_SYNTAX_TREE_H

// grammar_dump.h -- a grammar as one line of text, and a check of its structure.

#ifndef NQ_TESTS_SUPPORT_GRAMMAR_DUMP_H
#define NQ_TESTS_SUPPORT_GRAMMAR_DUMP_H

#include <string>

#include "nq/oml/grammar.h"

// Each object type with its entries in the order of definition, apart from
// "$toplevel$" as long as that is empty:
//   GRAPH{NAME:S KIND:E[SMALL,MEDIUM]! TO:O<NODE> +NODE LAYOUT{SPACING:R!}}
// Fields first, then permitted object types, then sections; "!" is required, "?"
// an unknown enumerator, and the letters are those of definition lines but for O,
// a reference.
std::string dumpGrammar(const NQOMLStatic& grammar);

// What is wrong with the grammar's lists, numbers, paths or indices; "" if nothing.
std::string findFault(const NQOMLStatic& grammar);

#endif  // NQ_TESTS_SUPPORT_GRAMMAR_DUMP_H

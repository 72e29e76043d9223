// A grammar from text at run time: what is wrong with it, and what it says.

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "nq/nq.h"

namespace {

const char kText[] = R"(sections
[
  layout
]
enumerators
[
  small   1
  medium  2
]
O $toplevel$
[
  T graph
]
O graph
[
  F title S R
  E size [small meduim]
]
)";

}  // namespace

int main() {
  // A file is read by nqReadGrammarFile, which takes its name.
  std::vector<NQOMLDiagnostic> diagnostics;
  auto grammar = nqReadGrammarText(kText, "graph.grammar", diagnostics);
  for (const NQOMLDiagnostic& diagnostic : diagnostics) {
    std::cout << diagnostic.file << ':' << diagnostic.first.line << ':'
              << diagnostic.first.column << ": " << diagnostic.text << '\n';
    if (!diagnostic.hint.empty()) std::printf("  %s\n", diagnostic.hint.c_str());
  }

  // The place of the fault is known to the byte.
  std::string text = kText;
  const auto [first, last] = std::pair(diagnostics[0].first, diagnostics[0].last);
  text.replace(static_cast<std::size_t>(first.offset),
               static_cast<std::size_t>(last.offset - first.offset + 1), "medium");
  grammar = nqReadGrammarText(text, "graph.grammar", diagnostics);

  const nqLong graph = grammar->pObjTypePool()->lookup("graph");
  const NQOMLDefObjType* const type = grammar->pObjTypeDefinition(graph);
  for (const NQOMLDefField* field = type->pFieldList(); field != nullptr;
       field = field->pNext()) {
    const std::string_view name =
        grammar->spelling(grammar->pFieldPool()->decode(field->nameIndex()));
    std::printf("%.*s%s\n", static_cast<int>(name.size()), name.data(),
                field->required() != 0 ? " (required)" : "");
  }
  return 0;
}
